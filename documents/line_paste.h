#pragma once

#include "platform/base/text.h"

#include <QList>

#include <optional>

/// A row of a spreadsheet as a line of a document, in its own words.
struct PastedLine
{
    int row = 0; ///< of what was copied, from 1
    QString code;
    QString quantity;
    QString price; ///< "" for the offered one
    QString remark;
};

/// The filled rows of what a spreadsheet copies: cells between tabs, in quotes where a cell has line breaks in it. A
/// first row of captions says which column is what, in any order and with others between; without one they are code,
/// quantity, price, remark.
QList<PastedLine> pastedLines(const QString& text);

/// A number as a spreadsheet shows it: thousands between commas, a sign of currency before it, full width. Nothing when
/// the text is something else.
std::optional<double> pastedNumber(const QString& text);
