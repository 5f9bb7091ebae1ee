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

/// The whole part, towards zero.
double Fix(double x);

/// The decimal value that a single-precision number stands for: 1.1f is 1.1, without the noise of its binary form.
double singleValue(double x);
