#include "platform/workbook/cell_text.h"

#include "platform/base/date.h"
#include "platform/base/text.h"

#include <QLocale>

#include <cmath>

namespace {

constexpr int significantDigits = 15;
constexpr double secondsOfDay = 86'400;
constexpr double lastDay = 2'958'466; ///< 31 December 9999, counted from 1900

QString timeText(QTime time)
{
    return u"%1:%2:%3"_s.arg(time.hour())
        .arg(time.minute(), 2, 10, QLatin1Char('0'))
        .arg(time.second(), 2, 10, QLatin1Char('0'));
}

/// The letters of a format's first section, without what it only shows: quoted and escaped texts, fillers, colours,
/// languages. A duration such as [h] is kept as its letter.
QString bareFormat(QStringView code)
{
    QString bare;
    for (qsizetype at = 0; at < code.size(); ++at) {
        const QChar c = code[at];
        if (c == u';')
            break;
        if (c == u'\\' || c == u'_' || c == u'*') {
            ++at;
        } else if (c == u'"') {
            for (++at; at < code.size() && code[at] != u'"'; ++at) {
            }
        } else if (c == u'[') {
            const qsizetype close = code.indexOf(u']', at);
            const QStringView inside = code.mid(at + 1, (close < 0 ? code.size() : close) - at - 1);
            const QString name = inside.toString().toLower();
            if (!name.isEmpty() && u"hms"_s.contains(name[0]) && name.count(name[0]) == name.size())
                bare += name[0];
            at = close < 0 ? code.size() : close;
        } else {
            bare += c.toLower();
        }
    }
    return bare;
}

} // namespace

NumberFormat numberFormat(QStringView code)
{
    NumberFormat format;
    QString bare = bareFormat(code);
    if (bare.contains(u"general"_s))
        return format;
    bare.remove(u"am/pm"_s).remove(u"a/p"_s);
    const auto has = [&](QStringView letters) {
        for (const QChar letter : letters)
            if (bare.contains(letter))
                return true;
        return false;
    };
    if (has(u"yd") || (has(u"m") && !has(u"hs")))
        format.kind = NumberFormat::Kind::Date;
    else if (has(u"hs"))
        format.kind = NumberFormat::Kind::Time;
    else if (bare.size() > 1 && bare.count(u'0') == bare.size())
        format.digits = int(qMin<qsizetype>(bare.size(), significantDigits));
    return format;
}

NumberFormat builtInFormat(int id)
{
    using enum NumberFormat::Kind;
    // 27 to 36 and 50 to 58 are the dates of the East Asian editions.
    if ((id >= 14 && id <= 17) || id == 22 || (id >= 27 && id <= 31) || id == 36 || (id >= 50 && id <= 58))
        return {Date};
    if ((id >= 18 && id <= 21) || (id >= 32 && id <= 35) || (id >= 45 && id <= 47))
        return {Time};
    return {};
}

QString plainDigits(double number)
{
    if (!std::isfinite(number))
        return {};
    const QString scientific = QLocale::c().toString(std::abs(number), 'e', significantDigits - 1); // d.ddd...e+xx
    const qsizetype e = scientific.indexOf(u'e');
    QString digits = Left(scientific, e).remove(u'.');
    const int point = Mid(scientific, e + 2).toInt() + 1; // digits before the decimal point
    while (digits.size() > 1 && digits.endsWith(u'0'))
        digits.chop(1);
    if (digits == u"0")
        return digits;
    if (point <= 0)
        digits = u"0."_s + QString(-point, u'0') + digits;
    else if (digits.size() <= point)
        digits = digits.leftJustified(point, u'0');
    else
        digits.insert(point, u'.');
    return number < 0 ? u'-' + digits : digits;
}

QString numberText(double number, const NumberFormat& format, bool epoch1904)
{
    using enum NumberFormat::Kind;
    const QString plain = plainDigits(number);
    if (format.kind != Plain && number >= 0 && number < lastDay) {
        double day = std::floor(number);
        double seconds = std::round((number - day) * secondsOfDay);
        if (seconds >= secondsOfDay) {
            seconds = 0;
            ++day;
        }
        const QTime time = QTime(0, 0).addSecs(int(seconds));
        if (format.kind == Time && day == 0)
            return timeText(time);
        // Counted from 1900 there is a 29 February of that year, so that days before it begin one later.
        const QDate first = epoch1904 ? QDate(1904, 1, 1) : day < 60 ? QDate(1899, 12, 31) : QDate(1899, 12, 30);
        const QDate date = first.addDays(qint64(day));
        return seconds == 0 ? dateText(date) : momentText(QDateTime(date, time));
    }
    if (format.digits > 0 && number >= 0 && !plain.contains(u'.'))
        return plain.rightJustified(format.digits, u'0');
    return plain;
}
