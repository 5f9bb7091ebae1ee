#include "reports/C1.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/GoodsCard.h"
#include "reports/GoodsChart.h"
#include "reports/Reorder.h"
#include "reports/StockChart.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

namespace {

constexpr QStringView stockCaption = u"库存货品统计";
constexpr QStringView costCaption = u"成本价格";
constexpr int stockQuantityColumn = 5;
constexpr int stockPriceColumn = 6;
constexpr int stockAmountColumn = 7;

Listing stockListing(C1::Price price)
{
    const bool cost = price == C1::Price::Cost;
    const QString field = cost ? u"TA4.F7"_s : u"TA4.F71"_s;
    return {.caption = stockCaption.toString(),
            .statusName = u"货品库存资料"_s,
            .totalCaption = u"合计："_s,
            .right = OperatorRight::Stock,
            .columns = {{u"货品编码"_s, 130, u"TA4.F1"_s},
                        {u"货品名称"_s, 230, u"TA4.F2"_s},
                        {u"所属类别"_s, 130, u"TA3.F2"_s},
                        {u"计量单位"_s, 80, u"TA4.F4"_s},
                        {u"规格型号"_s, 180, u"TA4.F5"_s},
                        {u"数量"_s, 110, u"TA4.F8"_s, ListContent::Quantity, true},
                        {cost ? costCaption.toString() : u"销售价格"_s, 110, field, ListContent::Money},
                        {u"库存金额"_s, 130, field + u"*TA4.F8"_s, ListContent::Money, true}},
            .from = u"TA4 left join TA3 on TA4.F3=TA3.F1"_s,
            .condition = {},
            .filter = {},
            // The last two are of the cost, whatever price is shown.
            .orders = {u"TA4.F1"_s, u"TA4.F3"_s, u"TA4.F8"_s, u"TA4.F7"_s, u"TA4.F7*TA4.F8"_s},
            .stretched = 1,
            .none = u"没有货品。"_s};
}

} // namespace

C1& C1::theWindow(Mode mode)
{
    for (Form* form : all())
        if (auto* window = qobject_cast<C1*>(form); window && !window->apart_) {
            if (mode != Mode::Stock)
                window->start(mode);
            return *window;
        }
    return *new C1(mode);
}

C1& C1::newWindow(Mode mode)
{
    auto* window = new C1(mode);
    window->apart_ = true;
    return *window;
}

C1::C1(Mode mode)
    : ListForm(formName())
{
    QMenu* alarms = addCommandMenu(u"Menu_Alarm"_s, u"&A.库存报警"_s);
    addListCommand(alarms, u"Menu_Bellow"_s, u"&1.存量低于安全库存的货品"_s, [this] { Menu_Bellow(); });
    addListCommand(alarms, u"Menu_Morethan"_s, u"&2.存量超出最高库存的货品"_s, [this] { Menu_Morethan(); });
    addListCommand(nullptr, u"Menu_query"_s, u"&Q.查找"_s, [this] { Menu_query(); });
    addSortMenu(0, {u"&1.按货品编码", u"&2.按所属类别", u"&2.按库存数量", u"&3.按核算价格", u"&4.按库存金额"});
    setCommandVisible(command(controlName(u"Menu_S"_s, 1)), false);
    prices_ = addCommandMenu(u"Menu_M"_s, u"&M.价格"_s);
    for (const auto& [price, caption] : {std::pair(Price::Cost, u"&1.成本价格"_s), {Price::Sale, u"&1.销售价格"_s}}) {
        QAction* item = addListCommand(prices_, controlName(u"Menu_Price"_s, int(price)), caption,
                                       [this, price = price] { Menu_Price(price); });
        item->setCheckable(true);
        priceItems_[int(price)] = item;
    }
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addBarcodeCommand();
    addReturnCommand();
    QMenu* views = addCommandMenu(u"Menu_V"_s, u"&V.查看"_s);
    connect(GD, &Grid::activatedRow, this, [this] { runCommand([this] { Menu_card(); }); });
    addListCommand(views, u"Menu_card"_s, u"&1.货品卡片"_s, [this] { Menu_card(); });
    addListCommand(views, u"Menu_flow"_s, u"&2.货品进出图"_s, [this] { Menu_flow(); });
    addListCommand(views, u"Menu_share"_s, u"&3.库存构成图"_s, [] { theForm<StockChart>().Show(); });
    addListCommand(views, u"Menu_reorder"_s, u"&4.补货清单"_s, [] { theForm<Reorder>().Show(); });
    start(mode);
}

void C1::start(Mode mode)
{
    switch (mode) {
    case Mode::LowAlarm:
        return Menu_Bellow();
    case Mode::HighAlarm:
        return Menu_Morethan();
    case Mode::Stock:
        break;
    }
    Listing opening = stockListing(Price::Sale);
    opening.condition = u"TA4.F8<>0"_s;
    opening.none = u"现在没有库存的货品。单据审核之后，库存才会变化。"_s;
    opening.top = 1800;
    list(std::move(opening));
}

bool C1::costShown() const
{
    return !listing().columns.isEmpty() && listing().columns[stockPriceColumn].caption == costCaption;
}

// An alarm begins a list of its own: a search before it must not hide goods from it.

void C1::Menu_Bellow()
{
    Listing alarm = stockListing(Price::Sale);
    alarm.caption = u"库存报警：低于安全库存的货品"_s;
    alarm.condition = u"TA4.F8<TA4.V1"_s;
    alarm.none = u"没有货品低于安全库存，也就是[货品编码资料]中设的“最低库存”。"_s;
    alarm.order = listing().order;
    alarm.top = 1000;
    list(std::move(alarm));
}

void C1::Menu_Morethan()
{
    Listing alarm = stockListing(Price::Sale);
    alarm.caption = u"库存报警：高于最高库存的货品"_s;
    alarm.condition = u"TA4.F8>TA4.V2 and TA4.V2<>0"_s; // 0 means no upper limit
    alarm.none = u"没有货品高于[货品编码资料]中设的“最高库存”，0 表示不限。"_s;
    alarm.order = listing().order;
    alarm.top = 1000;
    list(std::move(alarm));
}

void C1::Menu_Price(Price price)
{
    if (price == Price::Cost && !requireRight(OperatorRight::Cost))
        return;
    Listing all = stockListing(price);
    all.filter = listing().filter;
    if (!all.filter.isEmpty())
        all.none = listing().none;
    all.order = listing().order;
    list(std::move(all));
}

void C1::Menu_print()
{
    if (!requireRecords() || !requireReportFile(u"prntc1.rpt"_s, u"报表文件prntc1.rpt丢失！"_s))
        return;
    const QList<int> texts{0, 1, 2, 3, 4};
    QList<QStringList> rows =
        gCanSeeCost ? gridRows(*GD, count(), texts, {stockQuantityColumn, stockPriceColumn, stockAmountColumn})
                    : gridRows(*GD, count(), texts, {stockQuantityColumn});
    for (QStringList& row : rows) {
        row.prepend(sqlText(u"1"));
        if (!gCanSeeCost) // no price at all, so that no cost can come out
            row.append({u"0"_s, u"0"_s});
    }
    stageRows(u"PRTc1"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8"_s, rows);
    preview({u"Prntc1.rpt"_s, {}, {}});
}

/// "" on the row of sums and in an empty list.
QString C1::currentCode() const
{
    return GD->Row() <= count() ? GD->TextMatrix(GD->Row(), 0) : QString();
}

void C1::Menu_card()
{
    GoodsCard::open(currentCode());
}

void C1::Menu_flow()
{
    GoodsChart::open(currentCode());
}

QList<QueryField> C1::queryFields() const
{
    QList<QueryField> fields{{u"货品编码"_s, u"TA4.F1"_s}, {u"货品名称"_s, u"TA4.F2"_s},
                             {u"类别编码"_s, u"TA4.F3"_s}, {u"计量单位"_s, u"TA4.F4"_s},
                             {u"规格型号"_s, u"TA4.F5"_s}, {u"数量"_s, u"TA4.F8"_s, QueryType::Number}};
    if (gCanSeeCost && gWithMoney != 0) // else a few searches would tell any cost
        fields += {{costCaption.toString(), u"TA4.F7"_s, QueryType::Number},
                   {u"库存金额"_s, u"Ta4.F7*Ta4.F8"_s, QueryType::Number}};
    return fields;
}

QString C1::queryCaption() const
{
    return u"库存存货统计-按条件查找"_s;
}

void C1::showState()
{
    ListForm::showState();
    setCommandVisible(prices_->menuAction(), gCanSeeCost && gWithMoney != 0);
    priceItems_[int(Price::Cost)]->setChecked(costShown());
    priceItems_[int(Price::Sale)]->setChecked(!costShown());
}

void C1::sessionChanged()
{
    // What the operator before could see, or search by, this one can't: nothing of it stays.
    const bool lost = sawCost_ && !gCanSeeCost;
    sawCost_ = gCanSeeCost;
    if (lost && (costShown() || !listing().filter.isEmpty())) {
        Listing all = stockListing(Price::Sale);
        all.order = listing().order;
        empty(std::move(all));
    }
    ListForm::sessionChanged();
}
