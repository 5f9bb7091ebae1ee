#include "ledger/dialect_columns.h"

#include "platform/base/text.h"

#include <algorithm>

namespace dialect {

namespace {

struct DateColumns
{
    QStringView table;
    std::initializer_list<QStringView> columns;
    bool dayIndex; ///< on the first of them
};
const DateColumns dateColumns[] = {
    {u"TB1", {u"F2", u"H8"}, true},    {u"TB3", {u"F2", u"H8"}, true},        {u"TD1", {u"F2", u"H8"}, true},
    {u"TD3", {u"F2", u"H8"}, true},    {u"TC2", {u"F2", u"H8"}, true},        {u"TB11", {u"F2", u"H8"}, false},
    {u"TB31", {u"F2", u"H8"}, false},  {u"TD11", {u"F2", u"H8"}, false},      {u"TD31", {u"F2", u"H8"}, false},
    {u"TC15", {u"F2", u"F18"}, false}, {u"jxc", {u"Bdate", u"Edate"}, false},
};

const DateColumns* findDateColumns(QStringView table)
{
    const auto row = std::find_if(std::begin(dateColumns), std::end(dateColumns),
                                  [table](const DateColumns& row) { return sameText(row.table, table); });
    return row == std::end(dateColumns) ? nullptr : row;
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
