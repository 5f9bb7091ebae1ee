#pragma once

#include "reports/line_sums.h"

#include <QStringList>

#include <array>
#include <functional>
#include <optional>

/// The figures of the comprehensive period report: what moved, and the rows that are made of it. No window is needed.

struct MovedGoods
{
    MovedSum in;  ///< inbound and returned from consignees
    MovedSum out; ///< outbound and returned to suppliers
};

using MovedByGoods = ByGoods<MovedGoods>;

/// What the audited documents dated within the days `from` and `to` moved.
/// @param plan  for tests; else what is faster is taken
/// @throws StoreError, also when a document's date is none
MovedByGoods movedBetween(const QString& from, const QString& to, std::optional<SumPlan> plan = {});

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
