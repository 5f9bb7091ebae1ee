#include "reports/StockChart.h"

#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"

#include <algorithm>

namespace {

constexpr qsizetype mostShares = 12; ///< in the chart, the rest group among them; the table has all
constexpr int shareMoneyColumn = 4;

bool costMayBeSeen()
{
    return gCanSeeCost && gWithMoney != 0;
}

} // namespace

StockChart::StockChart()
    : ChartForm(formName())
{
    QMenu* menu = addCommandMenu(u"Menu_M"_s, u"&M.统计口径"_s);
    for (const auto& [measure, caption] : {std::pair(Measure::Cost, u"&1.成本金额"_s),
                                           {Measure::Quantity, u"&2.库存数量"_s},
                                           {Measure::Goods, u"&3.货品种数"_s}}) {
        QAction* item = addListCommand(menu, controlName(u"Menu_By"_s, int(measure)), caption,
                                       [this, measure = measure] { Menu_By(measure); });
        item->setCheckable(true);
        measures_[int(measure)] = item;
    }
    addChartCommands();
    empty(byCategory());
    if (hasRight(OperatorRight::Stock))
        list(byCategory());
}

StockChart::Measure StockChart::measure() const
{
    return asked_ == Measure::Cost && !costMayBeSeen() ? Measure::Quantity : asked_;
}

QStringView StockChart::nameOf(Measure measure)
{
    static constexpr QStringView names[] = {u"成本金额", u"库存数量", u"货品种数"};
    return names[int(measure)];
}

void StockChart::Menu_By(Measure measure)
{
    if (measure == Measure::Cost && !requireRight(OperatorRight::Cost))
        return;
    asked_ = measure;
    list(byCategory());
}

Listing StockChart::byCategory()
{
    return {
        .caption = u"库存构成图"_s,
        .statusName = u"库存构成"_s,
        .totalCaption = u"合计："_s,
        .right = OperatorRight::Stock,
        .columns = {{u"类别编码"_s, 68, {}},
                    {u"类别名称"_s, 90, {}},
                    {u"货品种数"_s, 68, {}, ListContent::Quantity, true},
                    {u"库存数量"_s, 80, {}, ListContent::Quantity, true},
                    {u"成本金额"_s, 100, {}, ListContent::Money, true},
                    {u"占比%"_s, 56, {}, ListContent::Percent}},
        .from = {},
        .condition = {},
        .filter = {},
        .orders = {QString()},
        .stretched = 1,
        .compute = [this](const Listing&) {
            struct Category
            {
                QString code, name;
                double figures[3]; ///< by measure
            };
            const int by = int(measure());
            QList<Category> categories;
            double total = 0;
            for (Recordset rows = gDB.OpenRecordset(
                     u"select TA4.F3,TA3.F2 AS LB,SUM(TA4.F7*TA4.F8) AS JE,SUM(TA4.F8) AS SL,COUNT(*) AS ZS from TA4 "
                     "left join TA3 on TA4.F3=TA3.F1 where TA4.F8<>0 group by TA4.F3,TA3.F2"_s);
                 !rows.isEOF(); rows.MoveNext()) {
                categories += {rows.Fields(0).text(),
                               rows.Fields(1).text(),
                               {rows.Fields(2).number(), rows.Fields(3).number(), rows.Fields(4).number()}};
                total += categories.last().figures[by];
            }
            std::stable_sort(categories.begin(), categories.end(),
                             [by](const Category& a, const Category& b) { return a.figures[by] > b.figures[by]; });
            QList<QList<Value>> records;
            shares_.clear();
            for (const Category& category : std::as_const(categories)) {
                const double value = category.figures[by];
                // A part of less than nothing can't be told in percents.
                const bool part = total > 0 && value >= 0;
                records += {category.code,
                            category.name,
                            category.figures[int(Measure::Goods)],
                            category.figures[int(Measure::Quantity)],
                            costMayBeSeen() ? Value(category.figures[int(Measure::Cost)]) : Value(),
                            part ? Value(Val(Format(100 * value / total, u"#0.0"))) : Value()};
                const QString name = category.name.isEmpty() ? category.code : category.name;
                shares_ += {name.isEmpty() ? u"（无类别）"_s : name, value};
            }
            return records;
        }};
}

QString StockChart::about() const
{
    return u"全部有库存的货品，按类别，"_s + nameOf(measure()) + u"，截至 "_s + todayText();
}

ChartContent StockChart::chart() const
{
    ChartContent content;
    content.title = u"库存构成（"_s + nameOf(measure()) + u"）"_s;
    content.sideways = true;
    ChartContent::Series bars{nameOf(measure()).toString(), style::Role::ChartIn, {}};
    const qsizetype single = shares_.size() > mostShares ? mostShares - 1 : shares_.size();
    double rest = 0;
    for (qsizetype i = 0; i < shares_.size(); ++i) {
        const double value = Val(Format(shares_[i].value, measure() == Measure::Cost ? gPriceFormat : u"#0.###"_s));
        if (i < single) {
            content.places += shares_[i].name;
            bars.values += value;
        } else {
            rest += value;
        }
    }
    if (single < shares_.size()) {
        content.places += u"其余 %1 类"_s.arg(shares_.size() - single);
        bars.values += rest;
    }
    content.bars = {bars};
    return content;
}

ChartForm::Paper StockChart::paper() const
{
    return {u"Ptukc.rpt"_s, u"库存构成图"_s, about()};
}

void StockChart::showState()
{
    ChartForm::showState();
    GD->setColumnVisible(shareMoneyColumn, costMayBeSeen());
    measures_[int(Measure::Cost)]->setVisible(costMayBeSeen());
    for (const Measure each : {Measure::Cost, Measure::Quantity, Measure::Goods})
        measures_[int(each)]->setChecked(each == measure());
}
