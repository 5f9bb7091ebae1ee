#pragma once

#include <QStringView>

/// What the translator knows of single columns; everything else about tables is the engine's.
namespace dialect {

/// Holds a date or a moment, so that it is put in order by time.
bool isDateColumn(QStringView table, QStringView column);
/// Has an index on its day number.
bool hasDayIndex(QStringView table, QStringView column);
/// A text key with an index, in whatever table: the beginning of a pattern is worth a range on it.
bool isKeyColumn(QStringView column);

} // namespace dialect
