#include "reports/C18.h"

#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"
#include "reports/quantity_report.h"
#include "reports/statistics_mode.h"

namespace {

constexpr int reportPriceColumn = 2;
constexpr int firstReportQuantity = 4;

Listing quantityListing(const std::optional<FlowChoice>& choice, C18::Price price)
{
    const auto quantity = [](const QString& caption) {
        return ListColumn{caption, 96, {}, ListContent::Quantity, true};
    };
    QList<ListColumn> columns{{u"货品编码"_s, 130, {}},
                              {u"货品名称/规格"_s, 260, {}},
                              {u"货品价格"_s, 96, price == C18::Price::Cost ? u"F7"_s : u"F71"_s, ListContent::Money},
                              {u"计量单位"_s, 76, {}},
                              quantity(u"上期结存"_s)};
    for (const StatisticsTraits& kind : statisticsTraits)
        columns += quantity(u"本期"_s + kind.word);
    columns += quantity(u"本期结存"_s);
    return {.caption = u"货品进出存统计报表"_s,
            .statusName = u"货品进出存报表"_s,
            .totalCaption = u"合计："_s,
            .right = OperatorRight::Cost,
            .columns = columns,
            .from = {},
            .condition = {},
            .filter = {},
            .orders = {u"F1"_s, u"F2"_s, u"F5"_s, u"F4"_s, u"F8 desc"_s},
            .stretched = 1,
            .compute = [choice](const Listing& listing) -> QList<QList<Value>> {
                if (!choice)
                    return {}; // nothing has been asked for yet
                return quantityReport({choice->from, choice->to, choice->category, choice->goods,
                                       listing.columns[reportPriceColumn].expression, listing.orders[listing.order]});
            },
            .none = FlowFilter::none(choice.has_value())};
}

} // namespace

C18::C18()
    : ListForm(formName())
{
    filter_ = new FlowFilter(4, [this] { generate(); });
    filter_->DTP[0]->setText(dateText(Today().addDays(1 - Today().day())));
    content()->insertWidget(0, filter_);

    addSortMenu(0, {u"&1.按货品编码", u"&2.按货品名称", u"&3.按货品规格", u"&4.按计量单位", u"&5.按现存数量"},
                u"menu_S"_s);
    prices_ = addCommandMenu(u"menu_M"_s, u"&M.价格"_s);
    for (const auto& [price, caption] : {std::pair(Price::Cost, u"&1.成本价格"_s), {Price::Sale, u"&2.销售价格"_s}}) {
        QAction* item = addListCommand(prices_, controlName(u"Menu_price"_s, int(price)), caption,
                                       [this, price = price] { Menu_price(price); });
        item->setCheckable(true);
        priceItems_[int(price)] = item;
    }
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addReturnCommand(u"Menu_Rtn"_s);
    report({}, Price::Sale);
}

C18::Price C18::price() const
{
    return listing().columns[reportPriceColumn].expression == u"F7" ? Price::Cost : Price::Sale;
}

void C18::report(const std::optional<FlowChoice>& choice, Price price)
{
    Listing next = quantityListing(choice, price);
    next.order = listing().order;
    list(std::move(next));
    shown_ = choice;
}

void C18::generate()
{
    if (!requireRight(listing().right))
        return;
    report(filter_->choice(), price());
    goToList();
}

void C18::Menu_price(Price price)
{
    report(shown_, price);
}

void C18::Menu_print()
{
    if (!requireRecords(u"没有数据可打印！"_s) || !requireReportFile(u"pjxc01.rpt"_s, u"报表文件pjxc01.rpt丢失！"_s))
        return;
    QString names = u"F0"_s;
    QList<int> columns;
    for (int i = 0; i < GD->Cols(); ++i) {
        names += u",F%1"_s.arg(i + 1);
        columns += i;
    }
    stageRows(u"plist"_s, names, numberedRows(gridRows(*GD, count(), columns), u"#0000"));
    QStringList formulas{formula(u"RQ", u"报表周期："_s + shown_->from + u"至"_s + shown_->to),
                         formula(u"LB", u"货品类别："_s + shown_->categoryWords), formula(u"cpt", Caption())};
    for (int i = 0; i < GD->Cols() - firstReportQuantity; ++i)
        formulas += formula(u"s%1"_s.arg(i + 1), GD->TextMatrix(count() + 1, firstReportQuantity + i));
    preview({u"pjxc01.rpt"_s, formulas, {}});
}

void C18::showState()
{
    ListForm::showState();
    filter_->setVisible(hasRight(listing().right));
    setCommandVisible(prices_->menuAction(), gCanSeeCost && gWithMoney != 0);
    for (const Price item : {Price::Cost, Price::Sale})
        priceItems_[int(item)]->setChecked(item == price());
}

void C18::sessionChanged()
{
    if (!gCanSeeCost && price() == Price::Cost) // nor does it come back with the next operator's report
        empty(quantityListing(shown_ = std::nullopt, Price::Sale));
    ListForm::sessionChanged();
}

QWidget* C18::firstFocus()
{
    return filter_->DTP[0];
}
