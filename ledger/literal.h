#pragma once

#include "platform/base/value.h"

#include <QString>
#include <QStringList>

/// The only two ways for a value into the text of a statement.

/// In single quotes, quotes in it doubled: an apostrophe is data.
QString sqlText(QStringView text);
/// As a number's text (`NumText`). A Null is no value and gives "", which makes a malformed statement where the rules
/// of the business ask for one.
QString sqlNumber(const Value& number);
/// Several texts, joined by commas as a list of values wants them.
QString sqlTexts(const QStringList& texts);
