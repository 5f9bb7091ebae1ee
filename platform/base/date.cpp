#include "platform/base/date.h"

#include "platform/base/text.h"

namespace {

/// Takes one run of at least `least` and at most `most` ASCII digits off the front; -1 if there is none such.
int takeNumber(QStringView& text, int least, int most)
{
    int count = 0;
    int value = 0;
    while (count < text.size() && text[count] >= u'0' && text[count] <= u'9') {
        if (++count > most)
            return -1;
        value = value * 10 + (text[count - 1].unicode() - u'0');
    }
    text = text.sliced(count);
    return count < least ? -1 : value;
}

bool takeCharacter(QStringView& text, QChar c)
{
    if (text.isEmpty() || text.front() != c)
        return false;
    text = text.sliced(1);
    return true;
}

struct DayAndTime
{
    QDate day;
    QTime time;
};

/// Not by way of a QDateTime, which asks the system for its time zone each time.
std::optional<DayAndTime> readMoment(QStringView given)
{
    const QString trimmed = Trim(given);
    QStringView text = trimmed;
    const int year = takeNumber(text, 4, 4);
    if (text.isEmpty() || (text.front() != u'-' && text.front() != u'/'))
        return {};
    const QChar separator = text.front();
    text = text.sliced(1);
    const int month = takeNumber(text, 1, 2);
    if (!takeCharacter(text, separator))
        return {};
    const int day = takeNumber(text, 1, 2);
    if (year < 100 || !QDate::isValid(year, month, day))
        return {};
    const QDate date(year, month, day);
    if (text.isEmpty())
        return DayAndTime{date, QTime(0, 0)};
    if (!takeCharacter(text, u' '))
        return {};
    while (takeCharacter(text, u' ')) {
    }
    const int hour = takeNumber(text, 1, 2);
    if (!takeCharacter(text, u':'))
        return {};
    const int minute = takeNumber(text, 1, 2);
    const int second = takeCharacter(text, u':') ? takeNumber(text, 1, 2) : 0;
    if (!text.isEmpty() || !QTime::isValid(hour, minute, second))
        return {};
    return DayAndTime{date, QTime(hour, minute, second)};
}

} // namespace

std::optional<QDateTime> parseMoment(QStringView text)
{
    const auto moment = readMoment(text);
    return moment ? std::optional(QDateTime(moment->day, moment->time)) : std::nullopt;
}

std::optional<QDate> parseDate(QStringView text)
{
    const auto moment = readMoment(text);
    return moment ? std::optional(moment->day) : std::nullopt;
}

bool IsDate(QStringView text)
{
    return readMoment(text).has_value();
}

QString dateText(QDate date)
{
    // Reading wants four digits of the year.
    return u"%1-%2-%3"_s.arg(date.year(), 4, 10, QChar(u'0')).arg(date.month()).arg(date.day());
}

QString momentText(const QDateTime& moment)
{
    const QTime time = moment.time();
    return dateText(moment.date()) + u" %1:%2:%3"_s.arg(time.hour())
                                         .arg(time.minute(), 2, 10, QChar(u'0'))
                                         .arg(time.second(), 2, 10, QChar(u'0'));
}

std::optional<qint64> DateDiff(QStringView a, QStringView b)
{
    const auto from = parseDate(a);
    const auto to = parseDate(b);
    return from && to ? std::optional(from->daysTo(*to)) : std::nullopt;
}
