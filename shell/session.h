#pragma once

#include "ledger/store.h"

#include <QString>

#include <array>
#include <bitset>

/// The session globals: plain data, read by everybody, written only where it is said.

extern const QString gProgramName; ///< the executable's name, also in the per-user settings
extern const QString gVersion;     ///< shown in captions, compared with the per-user key `Ver` at exit
extern QString gAppPath;           ///< the program folder, ends in the platform's separator; written at entry
extern Database gDB;               ///< the one open ledger; written at entry, by `ZbSet`, by backup and restore
extern QString gLedgerFile;        ///< full path of the current ledger; written at entry and by `ZbSet`
extern QString gLedgerName;        ///< its display name; written at entry and by `ZbSet`

extern QString gOperId;   ///< account of the operator ("001" may everything); these by `Login`
extern QString gOperName; ///< written into documents
extern QString gCompanyName;
extern QString gCompanyAddr;
extern QString gCompanyTel;
extern bool gCanSeeCost;

extern QString gYearStart; ///< first legal document date; written by `LoadYearStart`

extern int gNoOverIssue; ///< the settings of `sysinfo`, IDs 0 to 10; written by `LoadSettings` and `SysFuncSet`
extern int gNoPriceEdit;
extern int gNoAvgUpdate;
extern int gNoNegativeQty;
extern double gSalePriceFactor; ///< the decimal value of a single-precision number
extern int gWithMoney;          ///< 0: quantities only
extern int gLowAlarm;
extern int gHighAlarm;
extern int gStockEdit001;
extern int gPriceDecimals;
extern int gOpeningEdit001;
extern QString gPriceFormat; ///< mask made of gPriceDecimals

/// A setting that is one number in `sysinfo`.
struct NumberSetting
{
    int id;
    int* value;
    int preset; ///< before any ledger is read
};
/// All but number 4, the factor, which is kept as text.
inline constexpr auto numberSettings = std::to_array<NumberSetting>({{0, &gNoOverIssue, 0},
                                                                     {1, &gNoPriceEdit, 0},
                                                                     {2, &gNoAvgUpdate, 0},
                                                                     {3, &gNoNegativeQty, 0},
                                                                     {5, &gWithMoney, 1},
                                                                     {6, &gLowAlarm, 0},
                                                                     {7, &gHighAlarm, 0},
                                                                     {8, &gStockEdit001, 0},
                                                                     {9, &gPriceDecimals, 2},
                                                                     {10, &gOpeningEdit001, 0}});

inline constexpr int gOutboundFlagA = 1; ///< on: saving `D1` adds an unknown consignee
inline constexpr int gOutboundFlagB = 0; ///< off: `D1` prints scheme two on the compact form, not on the ten-row one

/// The connect text of every ledger; the password is the same for all and no secret of an operator.
inline constexpr QStringView ledgerConnect = u";PWD=KZD1987";

/// The six flags of an operator's row, `F61` to `F66`. The account "001" has them all.
enum class OperatorRight { Base, In, Stock, Out, Cost, Admin };
inline constexpr size_t rightCount = 6;
extern std::bitset<rightCount> gRights; ///< as read at login, none before it; written by `ApplyRights` and `logOut`

/// The words for a right, as the operator form labels it.
QString rightName(OperatorRight right);
bool hasRight(OperatorRight right);
/// Asked when a command runs, also one whose form was opened under another operator: tells the operator when the right
/// is missing.
bool requireRight(OperatorRight right);
/// The account "001", which may everything.
bool isTopAdministrator();

/// The defaults that hold before any ledger is read; nobody is logged in.
void resetSession();
