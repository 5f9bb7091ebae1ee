#pragma once

#include <QDateTime>
#include <QString>

/// How a worksheet's numbers become the texts that an import reads.

/// What a cell's number format says about its number.
struct NumberFormat
{
    enum class Kind { Plain, Date, Time };
    Kind kind = Kind::Plain;
    int digits = 0; ///< at least so many places, filled up with zeros: codes such as 00123; 0 for any
};

/// Reads a format code, such as `#,##0.00`, `yyyy"年"m"月"`, `[h]:mm` or `00000`; only its first section counts.
NumberFormat numberFormat(QStringView code);
/// The formats that a workbook needn't spell out.
NumberFormat builtInFormat(int id);

/// A number in plain digits whatever its size, with the 15 significant ones that a sheet keeps: 1234.5, 0.0000001,
/// 6901234567890000.
QString plainDigits(double number);

/// The text of a number cell: a date as 2004-1-5, a moment as 2004-1-5 9:05:03, a time as 9:05:03, all else in plain
/// digits.
/// @param epoch1904  whether the workbook counts its days from 1904
QString numberText(double number, const NumberFormat& format, bool epoch1904);
