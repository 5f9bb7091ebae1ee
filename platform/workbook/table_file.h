#pragma once

#include "platform/base/text.h"

#include <QList>
#include <QStringList>

/// A table as it leaves the program: what is on screen or on paper, in its order.
struct TableContent
{
    QString sheet; ///< name of the worksheet
    QStringList captions;
    QList<bool> numeric; ///< by column: a cell whose whole text is a number is one; other columns are text, so that
                         ///< codes keep their zeros
    QList<QStringList> rows;
    QStringList heading = {}; ///< lines above the captions, such as title and company
    QByteArray picture = {};  ///< a PNG of the size that it says, below the rows; text separated by commas has none
};

/// Writes the table as a workbook (`.xlsx`) or as text separated by commas (any other name; UTF-8 with byte-order
/// mark). The file is made beside its place and then gets its name: an old one stays whole if this fails.
/// @return "" or the reason of a failure, for the operator
QString writeTable(const QString& path, const TableContent& table);
