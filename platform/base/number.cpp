#include "platform/base/number.h"

#include "platform/base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace {

/// A number as decimal digits d1 d2 d3 ... with the point after `pointAt` digits (0 or less: zeros in front).
struct Decimal
{
    bool negative = false;
    std::string digits;
    int pointAt = 0;
};

Decimal decimalOf(double x, int significant)
{
    std::array<char, 40> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, std::chars_format::scientific, significant - 1)
            .ptr;
    const std::string_view text(buffer.data(), size_t(end - buffer.data()));
    const size_t e = text.find('e');
    Decimal result;
    for (const char c : text.substr(0, e)) {
        if (c == '-')
            result.negative = true;
        else if (c != '.')
            result.digits += c;
    }
    int exponent = 0;
    const std::string_view exponentText = text.substr(e + (text[e + 1] == '+' ? 2 : 1));
    std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    result.pointAt = exponent + 1;
    while (!result.digits.empty() && result.digits.back() == '0')
        result.digits.pop_back();
    return result;
}

constexpr int significantDigits = 15; // beyond them a double holds noise

/// Rounds to `places` digits behind the point, halves away from zero.
void roundTo(Decimal& d, int places)
{
    const int keep = d.pointAt + places;
    if (keep >= int(d.digits.size()))
        return;
    const bool up = keep >= 0 && d.digits[size_t(keep)] >= '5';
    d.digits.resize(size_t(std::max(keep, 0)));
    if (!up)
        return;
    int i = keep - 1;
    while (i >= 0 && d.digits[size_t(i)] == '9')
        d.digits[size_t(i--)] = '0';
    if (i >= 0) {
        ++d.digits[size_t(i)];
    } else {
        d.digits.insert(d.digits.begin(), '1');
        ++d.pointAt;
    }
}

/// The plain digit of a digit in half or full width, or 0.
char plainCharacter(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80)
        return char(u);
    if (u >= u'\uFF01' && u <= u'\uFF5E') // the full-width forms of ASCII
        return char(u - u'\uFF01' + '!');
    if (u == u'\u3000')
        return ' ';
    return 0;
}

} // namespace

QString plainText(double x)
{
    if (x == 0 || !std::isfinite(x))
        return QStringLiteral("0");
    constexpr double beyond = 1e15;
    if (std::abs(x) < beyond && std::trunc(x) == x) // nearly all quantities, and at no cost
        return QString::number(qint64(x));
    const Decimal d = decimalOf(x, significantDigits);
    std::string text = d.negative ? "-" : "";
    if (d.pointAt > significantDigits || d.pointAt < -4) {
        text += d.digits[0];
        if (d.digits.size() > 1)
            text += '.' + d.digits.substr(1);
        const int exponent = d.pointAt - 1;
        text += exponent < 0 ? "E-" : "E+";
        const std::string e = std::to_string(std::abs(exponent));
        text += (e.size() < 2 ? "0" : "") + e;
    } else if (d.pointAt <= 0) {
        text += "0." + std::string(size_t(-d.pointAt), '0') + d.digits;
    } else if (int(d.digits.size()) <= d.pointAt) {
        text += d.digits + std::string(size_t(d.pointAt) - d.digits.size(), '0');
    } else {
        text += d.digits.substr(0, size_t(d.pointAt)) + '.' + d.digits.substr(size_t(d.pointAt));
    }
    return QString::fromStdString(text);
}

double Val(QStringView text)
{
    std::string number;
    qsizetype i = 0;
    const auto at = [&](qsizetype k) { return k < text.size() ? plainCharacter(text[k]) : char(0); };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    while (at(i) == ' ' || at(i) == '\t')
        ++i;
    if (at(i) == '-' || at(i) == '+') {
        if (at(i) == '-')
            number += '-';
        ++i;
    }
    bool anyDigit = false;
    bool point = false;
    for (; isDigit(at(i)) || (at(i) == '.' && !point); ++i) {
        anyDigit = anyDigit || at(i) != '.';
        point = point || at(i) == '.';
        if (at(i) == '.' && (number.empty() || number == "-"))
            number += '0'; // from_chars wants a digit before the point
        number += at(i);
    }
    if (!anyDigit)
        return 0;
    if (at(i) == 'E' || at(i) == 'e') {
        qsizetype k = i + 1;
        std::string exponent = "e";
        if (at(k) == '-' || at(k) == '+')
            exponent += at(k++);
        if (isDigit(at(k))) {
            for (; isDigit(at(k)); ++k)
                exponent += at(k);
            number += exponent;
        }
    }
    double result = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), result);
    return read.ec == std::errc() && std::isfinite(result) ? result : 0;
}

QString Format(double x, QStringView mask)
{
    const qsizetype point = mask.indexOf(u'.');
    const QStringView wholeMask = point < 0 ? mask : mask.first(point);
    const QStringView fractionMask = point < 0 ? QStringView() : mask.sliced(point + 1);
    const int leastWhole = int(wholeMask.count(u'0'));
    const int leastPlaces = int(fractionMask.lastIndexOf(u'0')) + 1;
    const int mostPlaces = int(fractionMask.size());

    Decimal d;
    if (std::isfinite(x) && x != 0) {
        d = decimalOf(x, significantDigits);
        roundTo(d, mostPlaces);
    }
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    const auto digit = [&d](int index) {
        return index >= 0 && index < int(d.digits.size()) ? d.digits[size_t(index)] : '0';
    };

    std::string text = d.negative && !d.digits.empty() ? "-" : "";
    const int whole = d.digits.empty() ? 0 : std::max(d.pointAt, 0);
    text += std::string(size_t(std::max(leastWhole - whole, 0)), '0');
    for (int i = 0; i < whole; ++i)
        text += digit(i);
    std::string fraction;
    for (int i = 0; i < mostPlaces; ++i)
        fraction += d.digits.empty() ? '0' : digit(d.pointAt + i);
    while (int(fraction.size()) > leastPlaces && fraction.back() == '0')
        fraction.pop_back();
    if (!fraction.empty())
        text += '.' + fraction;
    return QString::fromStdString(text);
}

void DecimalSum::add(QStringView text)
{
    constexpr qint64 unit = 1'000'000'000'000'000;
    // By the decimal text of what is read, which has neither exponent nor another sign than "-".
    QString decimal = Format(Val(text), u"#0.###############");
    const bool negative = decimal.startsWith(u'-');
    if (negative)
        decimal.remove(0, 1);
    const qsizetype point = decimal.indexOf(u'.');
    const QString part = point < 0 ? QString() : decimal.mid(point + 1);
    decimals_ = std::max(decimals_, part.size());
    // A money column writes its zeros: so does its sum.
    const qsizetype writtenPoint = text.lastIndexOf(u'.');
    if (writtenPoint >= 0 && !text.contains(u'E'))
        decimals_ = std::clamp(text.size() - writtenPoint - 1, decimals_, qsizetype(places));
    const qint64 whole = decimal.left(point < 0 ? decimal.size() : point).toLongLong();
    const qint64 behind = part.leftJustified(places, u'0').toLongLong();
    whole_ += negative ? -whole : whole;
    part_ += negative ? -behind : behind;
    whole_ += part_ / unit;
    part_ %= unit;
    if (whole_ > 0 && part_ < 0) {
        --whole_;
        part_ += unit;
    } else if (whole_ < 0 && part_ > 0) {
        ++whole_;
        part_ -= unit;
    }
}

QString DecimalSum::text() const
{
    const QString whole = QString::number(std::abs(whole_));
    const QString part = QString::number(std::abs(part_)).rightJustified(places, u'0').left(decimals_);
    return (whole_ < 0 || part_ < 0 ? u"-"_s : QString()) + whole + (part.isEmpty() ? QString() : u'.' + part);
}

double Fix(double x)
{
    return std::trunc(x);
}

double singleValue(double x)
{
    const float single = float(x);
    std::array<char, 40> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), single).ptr; // shortest that is this float
    double result = 0;
    std::from_chars(buffer.data(), end, result);
    return std::isfinite(result) ? result : 0;
}
