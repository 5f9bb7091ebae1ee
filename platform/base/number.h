#pragma once

#include <QString>

/// Numbers are doubles; these functions are the only way between a number and its text. No locale touches them.

/// A number without a mask: at most 15 significant digits, no trailing zeros, "0.5" with its zero, the exponent form
/// "1E-06" below 1E-5 and "1E+15" from 1E15 on. Minus zero is "0".
QString plainText(double x);

/// The leading number of a text, 0 if there is none. Blanks before it are skipped; full-width digits, sign and point
/// ("－１２．５") count as plain ones; an exponent is read ("1E-06"). A number beyond the range of a double counts as
/// 0.
double Val(QStringView text);

/// A number by a mask of `#`, `0` and `.`, such as "#0.00" or "#00000": rounded on its decimal text, halves away from
/// zero, so 2.675 by "#0.00" is "2.68". A zero never has a sign.
QString Format(double x, QStringView mask);

/// The sum of written numbers, exact to the last decimal of them, where doubles would drift.
class DecimalSum
{
public:
    /// The number that the text begins with, read as `Val` does; a text without one adds nothing.
    void add(QStringView text);
    /// With as many decimals as the longest of what was added, 15 at most.
    QString text() const;

private:
    static constexpr int places = 15;

    qint64 whole_ = 0;
    qint64 part_ = 0; ///< behind the point, in units of the last place; of the same sign as `whole_`, or it stands at 0
    qsizetype decimals_ = 0;
};

/// The whole part, towards zero.
double Fix(double x);

/// The decimal value that a single-precision number stands for: 1.1f is 1.1, without the noise of its binary form.
double singleValue(double x);
