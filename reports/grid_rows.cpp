#include "reports/grid_rows.h"

#include "ledger/literal.h"
#include "platform/base/number.h"
#include "platform/widgets/grid.h"

QList<QStringList> gridRows(const Grid& grid, int count, const QList<int>& texts, const QList<int>& numbers)
{
    const auto cell = [&grid](int row, int column) {
        return grid.columnVisible(column) ? grid.TextMatrix(row, column) : QString();
    };
    QList<QStringList> rows;
    rows.reserve(count);
    for (int row = 1; row <= count; ++row) {
        QStringList literals;
        literals.reserve(texts.size() + numbers.size() + 1);
        for (const int column : texts)
            literals += sqlText(cell(row, column));
        for (const int column : numbers)
            literals += sqlNumber(Val(cell(row, column)));
        rows += std::move(literals);
    }
    return rows;
}

QList<QStringList> numberedRows(QList<QStringList> rows, QStringView mask)
{
    for (qsizetype i = 0; i < rows.size(); ++i)
        rows[i].prepend(sqlText(Format(double(i + 1), mask)));
    return rows;
}
