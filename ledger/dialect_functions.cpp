#include "ledger/dialect_functions.h"

#include "ledger/dialect.h"
#include "platform/base/date.h"
#include "platform/base/number.h"
#include "platform/base/text.h"

#include <sqlcipher/sqlite3.h>
#include <string_view>

namespace dialect {

namespace {

/// The day number of what is no date: behind all real ones. An index on day numbers holds such rows too, since
/// storing a document must not fail on it; the statements that ask for days raise the error.
constexpr int noDate = 9'999'999;

constexpr int registration = SQLITE_UTF8 | SQLITE_DETERMINISTIC;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

unsigned char folded(char c)
{
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
}

/// `parseDate` on UTF-8, without a copy: a report asks for the day of each line of a ledger.
class DayParser
{
public:
    explicit DayParser(std::string_view text)
        : text_(text)
    {}

    int day()
    {
        trim();
        const int year = number(4, 4);
        const char separator = text_.empty() ? '\0' : text_.front();
        if (year < 100 || (separator != '-' && separator != '/'))
            return noDate;
        text_.remove_prefix(1);
        const int month = number(1, 2);
        if (!take(separator))
            return noDate;
        const int day = number(1, 2);
        if (month < 1 || month > 12 || day < 1 || day > daysIn(year, month) || !(text_.empty() || time()))
            return noDate;
        const int shift = (14 - month) / 12; // a year that begins in March has its odd day at the end
        const int y = year + 4800 - shift;
        return day + (153 * (month + 12 * shift - 3) + 2) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
    }

private:
    static int daysIn(int year, int month)
    {
        constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        return days[month - 1] + (month == 2 && leap ? 1 : 0);
    }

    void trim()
    {
        constexpr std::string_view wideBlank = "\u3000";
        while (true) {
            if (text_.starts_with(' '))
                text_.remove_prefix(1);
            else if (text_.starts_with(wideBlank))
                text_.remove_prefix(wideBlank.size());
            else if (text_.ends_with(' '))
                text_.remove_suffix(1);
            else if (text_.ends_with(wideBlank))
                text_.remove_suffix(wideBlank.size());
            else
                return;
        }
    }

    int number(size_t least, size_t most)
    {
        size_t count = 0;
        int value = 0;
        while (count < text_.size() && isDigit(text_[count])) {
            if (count == most)
                return -1;
            value = value * 10 + (text_[count++] - '0');
        }
        text_.remove_prefix(count);
        return count < least ? -1 : value;
    }

    bool take(char c)
    {
        if (!text_.starts_with(c))
            return false;
        text_.remove_prefix(1);
        return true;
    }

    bool time()
    {
        if (!take(' '))
            return false;
        while (take(' ')) {
        }
        const int hour = number(1, 2);
        if (!take(':'))
            return false;
        const int minute = number(1, 2);
        const int second = take(':') ? number(1, 2) : 0;
        return text_.empty() && hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    }

    std::string_view text_;
};

std::string_view textOf(sqlite3_value* value)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text ? std::string_view(text, static_cast<size_t>(sqlite3_value_bytes(value))) : std::string_view();
}

bool isNull(sqlite3_value* value)
{
    return sqlite3_value_type(value) == SQLITE_NULL;
}

/// The code tells this error from all others of a statement.
void raiseNoDate(sqlite3_context* context, sqlite3_value* value)
{
    const QByteArray message = noDateMessage(QString::fromUtf8(textOf(value))).toUtf8();
    sqlite3_result_error(context, message.constData(), static_cast<int>(message.size()));
    sqlite3_result_error_code(context, SQLITE_MISMATCH);
}

void dayFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (!isNull(values[0])) // of Null it stays Null
        sqlite3_result_int(context, DayParser(textOf(values[0])).day());
}

void noDateFunction(sqlite3_context* context, int, sqlite3_value**)
{
    sqlite3_result_int(context, noDate);
}

/// Takes a day and a text that is no date, if there is one.
void checkedDayFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (isNull(values[1]))
        sqlite3_result_value(context, values[0]);
    else
        raiseNoDate(context, values[1]);
}

void dateDiffFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (isNull(values[0]) || isNull(values[1]))
        return;
    int days[2];
    for (int i = 0; i < 2; ++i) {
        days[i] = DayParser(textOf(values[i])).day();
        if (days[i] == noDate)
            return raiseNoDate(context, values[i]);
    }
    sqlite3_result_int(context, days[1] - days[0]);
}

void matchesFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (isNull(values[0]) || isNull(values[1]))
        return;
    const std::string_view pattern = textOf(values[1]);
    const bool isReal = sqlite3_value_type(values[0]) == SQLITE_FLOAT;
    const std::string number = isReal ? plainText(sqlite3_value_double(values[0])).toStdString() : std::string();
    sqlite3_result_int(context, matchesPattern(isReal ? number : textOf(values[0]), pattern));
}

int naturalCollation(void*, int sizeA, const void* a, int sizeB, const void* b)
{
    return compareNatural({static_cast<const char*>(a), static_cast<size_t>(sizeA)},
                          {static_cast<const char*>(b), static_cast<size_t>(sizeB)});
}

struct FunctionRegistration
{
    const char* name;
    int arguments;
    void (*function)(sqlite3_context*, int, sqlite3_value**);
};
constexpr FunctionRegistration functionRegistrations[] = {
    {"dayno", 1, dayFunction},         {"nodate", 0, noDateFunction},   {"checkedday", 2, checkedDayFunction},
    {"datediff", 2, dateDiffFunction}, {"matches", 2, matchesFunction},
};

} // namespace

std::optional<qint64> dayNumber(QStringView text)
{
    const auto date = parseDate(text);
    return date ? std::optional(date->toJulianDay()) : std::nullopt;
}

int compareNatural(std::string_view a, std::string_view b)
{
    size_t i = 0;
    size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (!isDigit(a[i]) || !isDigit(b[j])) {
            if (const int difference = folded(a[i]) - folded(b[j]); difference != 0)
                return difference;
            ++i;
            ++j;
            continue;
        }
        const auto takeNumber = [](std::string_view text, size_t& at) {
            while (at < text.size() && text[at] == '0')
                ++at;
            const size_t start = at;
            while (at < text.size() && isDigit(text[at]))
                ++at;
            return text.substr(start, at - start);
        };
        const std::string_view left = takeNumber(a, i);
        const std::string_view right = takeNumber(b, j);
        if (left.size() != right.size())
            return left.size() < right.size() ? -1 : 1;
        if (const int difference = left.compare(right); difference != 0)
            return difference;
    }
    return static_cast<int>(i < a.size()) - static_cast<int>(j < b.size());
}

bool matchesPattern(std::string_view text, std::string_view pattern)
{
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    size_t t = 0;
    size_t p = 0;
    size_t starPattern = std::string_view::npos; // where to go on when what stands behind the last star fails
    size_t starText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starPattern = ++p;
            starText = t;
        } else if (p < pattern.size() && pattern[p] == '?') {
            ++p;
            while (++t < text.size() && isContinuation(text[t])) {
            }
        } else if (p < pattern.size() && folded(pattern[p]) == folded(text[t])) {
            ++p;
            ++t;
        } else if (starPattern != std::string_view::npos) {
            p = starPattern;
            t = ++starText;
            while (t < text.size() && isContinuation(text[t])) // a star never ends inside a character
                starText = ++t;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

QString noDateMessage(const QString& text)
{
    return u"“%1”不是有效的日期"_s.arg(text);
}

void registerFunctions(sqlite3* connection)
{
    int result = sqlite3_create_collation_v2(connection, "NATURAL", SQLITE_UTF8, nullptr, naturalCollation, nullptr);
    for (const FunctionRegistration& row : functionRegistrations)
        if (result == SQLITE_OK)
            result = sqlite3_create_function_v2(connection, row.name, row.arguments, registration, nullptr,
                                                row.function, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        return;
    StoreError::Details details;
    details.what = u"数据库引擎不能使用，请重新启动程序！"_s;
    details.engineMessage = QString::fromUtf8(sqlite3_errmsg(connection));
    throw StoreError(std::move(details));
}

} // namespace dialect
