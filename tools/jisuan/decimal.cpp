#include "tools/jisuan/decimal.h"

#include <utility>

namespace jisuan {

namespace {

constexpr int shownDigits = 16;
constexpr qint64 keptLimit = 1'000'000'000'000'000'000; // 18 digits stay below it
constexpr int largestExponent = 99;                     // of the number in its scientific form
// Ten times as much still fits the wide type; a quotient of it has more digits than are kept.
__extension__ constexpr __int128 longest = __int128(keptLimit) * keptLimit * 10;

} // namespace

std::optional<Decimal> Decimal::rounded(Wide mantissa, int exponent, int digits)
{
    Wide limit = 1;
    for (int i = 0; i < digits; ++i)
        limit *= 10;
    const bool negative = mantissa < 0;
    Wide size = negative ? -mantissa : mantissa;
    int dropped = 0; // the digit dropped last decides
    while (size >= limit) {
        dropped = int(size % 10);
        size /= 10;
        ++exponent;
    }
    if (dropped >= 5)
        ++size;
    if (size == 0)
        return Decimal();
    while (size % 10 == 0) {
        size /= 10;
        ++exponent;
    }
    Decimal result;
    result.mantissa_ = negative ? -qint64(size) : qint64(size);
    result.exponent_ = exponent;
    const int scientific = exponent + int(QString::number(qint64(size)).size()) - 1;
    if (scientific > largestExponent)
        return std::nullopt;
    return scientific < -largestExponent ? Decimal() : result;
}

std::optional<Decimal> Decimal::parse(QStringView text)
{
    const QString plain = text.trimmed().toString().normalized(QString::NormalizationForm_KC);
    Wide mantissa = 0;
    int exponent = 0;
    int read = 0;
    bool point = false;
    qsizetype at = 0;
    const bool negative = plain.startsWith(u'-');
    if (negative || plain.startsWith(u'+'))
        ++at;
    for (; at < plain.size() && plain[at] != u'E' && plain[at] != u'e'; ++at) {
        const QChar c = plain[at];
        if (c == u',' && read > 0 && !point)
            continue;
        if (c == u'.' && !point) {
            point = true;
            continue;
        }
        if (c < u'0' || c > u'9')
            return std::nullopt;
        ++read;
        if (mantissa < Wide(keptLimit) * 10) { // further digits can't change the rounded number's text
            mantissa = mantissa * 10 + (c.unicode() - u'0');
            exponent -= point;
        } else {
            exponent += !point;
        }
    }
    if (read == 0)
        return std::nullopt;
    if (at < plain.size()) {
        bool ok = false;
        const int power = QStringView(plain).sliced(at + 1).toInt(&ok);
        if (!ok || qAbs(power) > 2 * largestExponent)
            return std::nullopt;
        exponent += power;
    }
    return rounded(negative ? -mantissa : mantissa, exponent);
}

QString Decimal::text() const
{
    const Decimal shown = rounded(mantissa_, exponent_, shownDigits).value_or(*this);
    QString digits = QString::number(qAbs(shown.mantissa_));
    const QString sign = shown.mantissa_ < 0 ? u"-"_s : QString();
    const int exponent = shown.exponent_;
    const int scientific = exponent + int(digits.size()) - 1;
    if (scientific >= shownDigits || scientific < -shownDigits) {
        if (digits.size() > 1)
            digits.insert(1, u'.');
        return sign + digits + u'E' + (scientific < 0 ? u'-' : u'+') + QString::number(qAbs(scientific));
    }
    if (exponent >= 0)
        return sign + digits + QString(exponent, u'0');
    if (scientific < 0)
        return sign + u"0."_s + QString(-scientific - 1, u'0') + digits;
    return sign + digits.insert(scientific + 1, u'.');
}

Decimal Decimal::negated() const
{
    Decimal result = *this;
    result.mantissa_ = -mantissa_;
    return result;
}

std::optional<Decimal> Decimal::sum(const Decimal& a, const Decimal& b)
{
    if (a.isZero())
        return b;
    if (b.isZero())
        return a;
    const Decimal& coarse = a.exponent_ >= b.exponent_ ? a : b;
    const Decimal& fine = a.exponent_ >= b.exponent_ ? b : a;
    Wide mantissa = coarse.mantissa_;
    int exponent = coarse.exponent_;
    for (; exponent > fine.exponent_; --exponent) {
        if ((mantissa < 0 ? -mantissa : mantissa) >= longest)
            return coarse; // the other is far behind its last digit
        mantissa *= 10;
    }
    return rounded(mantissa + fine.mantissa_, exponent);
}

std::optional<Decimal> Decimal::product(const Decimal& a, const Decimal& b)
{
    return rounded(Wide(a.mantissa_) * b.mantissa_, a.exponent_ + b.exponent_);
}

std::optional<Decimal> Decimal::quotient(const Decimal& a, const Decimal& b)
{
    if (b.isZero())
        return std::nullopt;
    Wide dividend = a.mantissa_;
    int exponent = a.exponent_ - b.exponent_;
    for (; dividend != 0 && (dividend < 0 ? -dividend : dividend) < longest; --exponent)
        dividend *= 10; // so that the quotient has more digits than are kept, whatever the divisor
    return rounded(dividend / b.mantissa_, exponent);
}

} // namespace jisuan
