#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/// Dates are text, "2004-1-1" without padding; a moment is "2004-1-1 9:05:03". These texts are stored and compared.

/// Reads "2004-1-1" or "2004/01/01", with or without a time behind it. Nothing for "", "00-00-00", "2024-13-45".
std::optional<QDate> parseDate(QStringView text);
/// The same with its time; midnight where there is none.
std::optional<QDateTime> parseMoment(QStringView text);
bool IsDate(QStringView text);

QString dateText(QDate date);
QString momentText(const QDateTime& moment);

/// Whole days from date text a to date text b (DateDiff("d", a, b)); nothing when one of them is no date.
std::optional<qint64> DateDiff(QStringView a, QStringView b);
