#pragma once

#include "platform/base/text.h"

#include <QStringList>

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

/// The figures of the comprehensive period report: what moved, and the rows that are made of it. No window is needed.

struct MovedSum
{
    double quantity = 0;
    double amount = 0;
};

struct MovedGoods
{
    MovedSum in;  ///< inbound and returned from consignees
    MovedSum out; ///< outbound and returned to suppliers
};

struct CodeHash
{
    using is_transparent = void;
    size_t operator()(std::string_view code) const { return std::hash<std::string_view>()(code); }
};

/// By goods code in UTF-8 as `foldedCode` makes it.
using MovedByGoods = std::unordered_map<std::string, MovedGoods, CodeHash, std::equal_to<>>;

/// A code as the ledger compares it, without regard to ASCII case.
std::string foldedCode(const QString& code);
std::string foldedCode(std::string_view code); ///< in UTF-8

/// What the audited documents dated within the days `from` and `to` moved. The sums are, to the last bit, those that
/// one statement for each goods item gives: the lines of a goods item are added in the order of its index, by document
/// number, quantity and price. In any other order the last bits of a sum would differ, and with them the test whether a
/// goods item moved at all.
/// @throws StoreError, also when a document's date is none
MovedByGoods movedBetween(const QString& from, const QString& to);

/// How documents and lines are brought together: from the documents of the days, or from all lines. `movedBetween`
/// takes what is faster for its range; the sums are the same.
enum class MovedPlan { ByDocument, ByLine };
MovedByGoods movedBetween(const QString& from, const QString& to, MovedPlan plan);

/// Of what the closing amount of a goods item is made.
enum class ClosingMethod { Cost, Period, Cumulative };

/// Columns of the report, as the grid and the saved rows have them.
struct PeriodColumn
{
    // clang-format off
    enum {
        Code, Name, Price,
        OpeningQuantity, OpeningAmount, ///< of the year; from here on quantity and amount take turns
        BroughtQuantity, BroughtAmount, ///< totals are shown from here on
        InQuantity, InAmount, AllInQuantity, AllInAmount,
        OutQuantity, OutAmount, AllOutQuantity, AllOutAmount,
        ClosingQuantity, ClosingAmount,
        Count
    };
    // clang-format on
};

/// The total of a column without the noise that adding up leaves in its last digits.
QString periodTotalText(int column, double total);

/// A report as it is shown: a row for each goods item, and what the totals row adds up.
struct PeriodReport
{
    QList<QStringList> rows;
    std::array<double, PeriodColumn::Count> totals{}; ///< by column; only those from `BroughtQuantity` on count
    bool overtaken = false; ///< somebody else saved this period: the rows end before the goods that told so

    void add(QStringList row);
    /// The row of totals, its caption in the column before them.
    QStringList totalRow() const;
};

/// Replaces the unsaved report in the ledger by one over the days `from` to `to`, in one write run. What was written
/// before a failure stays, in the ledger and in `report`.
/// @param begun is told the number of goods before the first of them, `passed` each time one is done
/// @throws StoreError
void generatePeriodReport(PeriodReport& report, const QString& from, const QString& to, ClosingMethod method,
                          const std::function<void(qint64)>& begun, const std::function<void()>& passed);
