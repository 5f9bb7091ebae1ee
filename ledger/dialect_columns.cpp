#include "ledger/dialect_columns.h"

#include "ledger/document_tables.h"
#include "platform/base/text.h"

#include <algorithm>
#include <vector>

namespace dialect {

namespace {

struct DateColumns
{
    QStringView table;
    std::array<QStringView, 2> columns;
    bool dayIndex; ///< on the first of them
};

std::vector<DateColumns> allDateColumns()
{
    std::vector<DateColumns> all{{u"TC15", {u"F2", u"F18"}, false}, {u"jxc", {u"Bdate", u"Edate"}, false}};
    for (const DocumentTables& document : documentTables) {
        all.push_back({document.header, {u"F2", u"H8"}, true});
        all.push_back({document.lines, {u"F2", u"H8"}, false});
    }
    return all;
}

const DateColumns* findDateColumns(QStringView table)
{
    static const std::vector<DateColumns> dateColumns = allDateColumns();
    const auto row = std::ranges::find_if(dateColumns, [table](const auto& row) { return sameText(row.table, table); });
    return row == dateColumns.end() ? nullptr : &*row;
}

} // namespace

bool isDateColumn(QStringView table, QStringView column)
{
    const DateColumns* row = findDateColumns(table);
    return row && std::any_of(row->columns.begin(), row->columns.end(),
                              [column](QStringView date) { return sameText(date, column); });
}

bool hasDayIndex(QStringView table, QStringView column)
{
    const DateColumns* row = findDateColumns(table);
    return row && row->dayIndex && sameText(*row->columns.begin(), column);
}

bool isKeyColumn(QStringView column)
{
    const auto keys = {u"F1", u"F0", u"Hpbm", u"DanF1"};
    return std::any_of(keys.begin(), keys.end(), [column](QStringView key) { return sameText(key, column); });
}

} // namespace dialect
