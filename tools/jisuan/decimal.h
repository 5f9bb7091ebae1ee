#pragma once

#include "platform/base/text.h"

#include <optional>

namespace jisuan {

/// A decimal number of 18 significant digits, of which 16 are shown, as a desk calculator does: 0.1 + 0.2 is 0.3, and a
/// third taken three times is 1. What has more digits is rounded, halves away from zero.
class Decimal
{
public:
    Decimal() = default;
    /// Digits with at most one point, a sign before them, also full-width ones; commas between digits are skipped.
    /// Nothing for anything else.
    static std::optional<Decimal> parse(QStringView text);
    /// Plain digits, or "1.5E+20" where they would be longer than the display.
    QString text() const;

    bool isZero() const { return mantissa_ == 0; }
    Decimal negated() const;
    friend bool operator==(const Decimal&, const Decimal&) = default;

    /// Each gives nothing when the result is out of range; a division by zero does so too.
    static std::optional<Decimal> sum(const Decimal& a, const Decimal& b);
    static std::optional<Decimal> product(const Decimal& a, const Decimal& b);
    static std::optional<Decimal> quotient(const Decimal& a, const Decimal& b);

private:
    __extension__ using Wide = __int128;
    static std::optional<Decimal> rounded(Wide mantissa, int exponent, int digits = 18);

    qint64 mantissa_ = 0; ///< without zeros at its end
    int exponent_ = 0;    ///< of ten
};

} // namespace jisuan
