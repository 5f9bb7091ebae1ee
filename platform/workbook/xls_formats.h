#pragma once

#include <QHash>
#include <QString>

/// Whether the texts of an older workbook end where their records end. The library that reads it doesn't look, and
/// would take what lies behind them in memory for a damaged text.
bool xlsTextsFit(const QString& path);

/// What FreeXL doesn't tell of an older workbook: which cells show their number with zeros in front (00123), as codes
/// are often kept.
class XlsFormats
{
public:
    /// Whatever can't be made out is left out.
    explicit XlsFormats(const QString& path);
    /// Places that the cell's format fills up with zeros; 0 for any other format.
    int digits(int sheet, int row, int column) const;

private:
    void readCells(const QByteArray& stream, qint64 from, int sheet);

    QHash<int, int> digitsOfStyle_;    ///< by number of the cell style
    QHash<quint64, int> digitsOfCell_; ///< by sheet, row and column
};
