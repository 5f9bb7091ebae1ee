#pragma once

#include "platform/base/value.h"

#include <QString>

/// The small procedures that several subsystems rest on. All work on the session's ledger `gDB`.

/// The mask for prices and amounts with n decimals: 0 gives "#0", 2 gives "#0.00". Above 8, n itself becomes 8.
QString PriceMask(int& n);
/// A number as text that is fit for SQL and for reading: "0.5", never ".5".
QString NumText(double x);
/// a - b without the noise that binary fractions leave in the last digits: whole parts and fractions are subtracted
/// apart, the fractions as their texts read.
double SplitSub(double a, double b);

/// Sets `gYearStart`, the first day on which documents may still be audited or un-audited: the day after the newest
/// saved period report, else the first day of the accounting year, else "2004-1-1".
/// @throws nothing: a failed look-up falls through to the next source
void LoadYearStart();

/// Why the machine's date can't be right as the ledger sees it: before its newest booking or saved report, or years
/// after. One report saved on a wrong day locks all documents before it. "" when nothing speaks against the date.
QString clockDoubt();

/// What `NextDocNumber` answers when the month's numbers are used up; it must be overtyped.
extern const QString noNumberLeft;
/// The next number for a document: prefix, year, month and day in two digits each, and a sequence of four digits that
/// runs through the month. Numbers saved or reserved are passed over; a hole below the highest is never refilled.
/// @throws StoreError
QString NextDocNumber(const QString& prefix, const QString& table);

/// The next number, reserved for this operator before anybody else can be offered it. Where that can't be written the
/// number is only proposed; it is tested again at save.
/// @throws StoreError when no number can be looked for
QString NextDocNumberReserved(const QString& prefix, const QString& table);

/// Whether nobody has reserved that number. Trims it in place.
bool DanNoFree(QString& no);
/// Reserves a number for this operator; flag 0 for one that the system proposed, 1 for one that was typed. Failures are
/// ignored: the number is then tested again at save.
void DanNoReserve(QString& no, int flag);
/// Gives a reservation up; failures are ignored, as a row left behind only makes a number unused.
void DanNoRelease(const QString& no);

/// The partner's name for a code, or for a list entry "code.name": supplier first, then consignee, else the code.
QString PartnerName(const QString& text);

/// Puts a row "001" with that name into a master table that has no row left (or none with a code that can be told).
/// @throws StoreError
void EnsureDefaultRow(const QString& table, const QString& name);

/// Reads `sysinfo` into the settings globals; a setting without a row keeps its value.
/// @throws StoreError
void LoadSettings();

/// What panel 4 of the status bar says while a report reads.
extern const QString busyText;
/// Panel 4 of the status bar shows the ledger's name, or that the program is busy.
void LedgerStatus();
void BusyStatus();

void SavedNotice();
void EditingNotice();
