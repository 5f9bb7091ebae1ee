#pragma once

#include <QList>
#include <QStringList>

/// Reading of Excel workbooks, `.xls` and `.xlsx`; which of the two a file is, its first bytes tell and not its name.
/// Whatever is no such workbook, is damaged, locked by a password or beyond all measure is refused with a reason for
/// the operator.

struct SheetNames
{
    QStringList names; ///< the worksheets in their order, hidden ones too; without charts
    QString refusal;   ///< why there are none; else ""
};

struct SheetRows
{
    /// From the sheet's row 1 to the last that holds anything, each row to its last cell that does. A text cell as it
    /// stands; a number in plain digits, without what its format adds but with the zeros of a format such as 00000; a
    /// date as 2004-1-5, a moment as 2004-1-5 9:05:03; a truth value as 1 or 0; of a formula the value that was last
    /// worked out.
    QList<QStringList> rows;
    QString refusal; ///< why nothing was read; else ""
};

SheetNames sheetNames(const QString& path);
/// @param sheet  a worksheet's name, in any case
SheetRows readSheet(const QString& path, const QString& sheet);
