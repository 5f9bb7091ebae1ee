#pragma once

#include <QString>

#include <optional>
#include <string_view>

/// What translated statements call in the engine, as plain functions.
namespace dialect {

/// The number of a date text's day; nothing for what is no date. Days count as in `DateDiff`.
std::optional<qint64> dayNumber(QStringView text);

/// Digit runs compare as numbers, all else by bytes without regard to ASCII case: texts of dates and moments go by
/// time. Negative, 0 or positive.
int compareNatural(std::string_view a, std::string_view b);

/// `*` stands for any run, `?` for one character, everything else for itself without regard to ASCII case.
bool matchesPattern(std::string_view text, std::string_view pattern);

/// How the operator hears of a text that should be a date, from a parameter and from the engine alike.
QString noDateMessage(const QString& text);

} // namespace dialect
