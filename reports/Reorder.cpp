#include "reports/Reorder.h"

#include "platform/base/clock.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/GoodsCard.h"
#include "reports/grid_rows.h"
#include "reports/line_sums.h"
#include "reports/printing.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <optional>

namespace {

enum ReorderColumn {
    CodeColumn,
    NameColumn,
    ModelColumn,
    UnitColumn,
    CategoryColumn,
    StockColumn,
    DraftsColumn,
    LowestColumn,
    HighestColumn,
    ToLowestColumn,
    ToHighestColumn,
    SupplierColumn,
    BoughtColumn,
    PriceColumn
};

bool purchasesMayBeSeen()
{
    return hasRight(OperatorRight::In);
}

bool purchasePriceMayBeSeen()
{
    return purchasesMayBeSeen() && gCanSeeCost && gWithMoney != 0;
}

/// Pieces on inbound drafts, by folded code. A draft is what the sufficiency of stock counts as one: a document whose
/// auditor is Null. One whose audit was undone promises nothing. The left join keeps the engine from beginning with the
/// lines, of which there are many more than of drafts.
QHash<std::string, double> promisedPieces()
{
    QHash<std::string, double> pieces;
    gDB.walk(u"select TB11.F1,TB11.F6 from TB1 left join TB11 on TB1.F1=TB11.F0 where TB1.F6 IS NULL"_s,
             [&](const PassingRow& row) { pieces[foldedCode(row.text(0))] += row.number(1); });
    return pieces;
}

/// The newest audited inbound line of each goods item. Every line passes by once: asked for goods item by goods item a
/// long list would take seconds.
class LastPurchases
{
public:
    LastPurchases()
    {
        qsizetype rank = 0;
        gDB.walk(u"select F1,F3,F2 from TB1 where F6 IS NOT NULL and F6<>'' order by F2,H8"_s,
                 [&](const PassingRow& row) {
                     documents_[foldedCode(row.text(0))] = {shown(row.text(1)), shown(row.text(2)), ++rank};
                 });
        gDB.walk(u"select F1,F0,F7 from TB11"_s, [&](const PassingRow& line) {
            const auto document = documents_.find(foldedCode(line.text(1)));
            if (document == documents_.end())
                return;
            Purchase& last = purchases_[foldedCode(line.text(0))];
            if (!last.document || document->second.rank >= last.document->rank)
                last = {&document->second, line.number(2)};
        });
        for (Recordset rows = gDB.OpenRecordset(u"select F1,F2 from TA1"_s); !rows.isEOF(); rows.MoveNext())
            suppliers_[foldedCode(rows.Fields(0).text())] = rows.Fields(1).text();
    }

    /// Supplier's name (his code, where he has gone), day, price; nothing for goods that were never bought.
    std::array<Value, 3> of(const QString& code) const
    {
        const auto last = purchases_.find(foldedCode(code));
        if (last == purchases_.end())
            return {};
        const Document& document = *last->second.document;
        const auto supplier = suppliers_.find(foldedCode(document.supplier));
        return {Value(supplier == suppliers_.end() ? document.supplier : supplier->second), Value(document.day),
                Value(last->second.price)};
    }

private:
    struct Document
    {
        QString supplier;
        QString day;
        qsizetype rank = 0; ///< in order of time
    };
    struct Purchase
    {
        const Document* document = nullptr;
        double price = 0;
    };
    template <class Held>
    using ByCode = std::unordered_map<std::string, Held, CodeHash, std::equal_to<>>;

    static QString shown(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

    ByCode<Document> documents_;
    ByCode<Purchase> purchases_;
    ByCode<QString> suppliers_;
};

} // namespace

Reorder::Reorder()
    : ListForm(formName())
{
    LabSum = makeLabel(u"LabSum"_s, QString());
    content()->insertWidget(0, LabSum);
    QMenu* menu = addCommandMenu(u"Menu_V"_s, u"&V.范围"_s);
    for (const auto& [range, caption] :
         {std::pair(Range::Short, u"&1.低于最低库存的货品"_s), {Range::Limited, u"&2.所有设了上下限的货品"_s}}) {
        QAction* item = addListCommand(menu, controlName(u"Menu_Range"_s, int(range)), caption,
                                       [this, range = range] { Menu_Range(range); });
        item->setCheckable(true);
        ranges_[int(range)] = item;
    }
    addSortMenu(0, {u"&1.按供货单位", u"&2.按所属类别", u"&3.按货品编码", u"&4.按缺货数量"});
    addListCommand(nullptr, u"Menu_card"_s, u"&K.货品卡片"_s, [this] { Menu_card(); });
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addReturnCommand();
    connect(GD, &Grid::activatedRow, this, [this](int) { runCommand([this] { Menu_card(); }); });
    empty(shortages());
    if (hasRight(OperatorRight::Stock))
        list(shortages());
}

Listing Reorder::shortages()
{
    const auto quantity = [](const QString& caption) { return ListColumn{caption, 76, {}, ListContent::Quantity}; };
    return {.caption = u"补货清单"_s,
            .statusName = u"补货清单"_s,
            .totalCaption = {},
            .right = OperatorRight::Stock,
            .columns = {{u"货品编码"_s, 96, {}},
                        {u"货品名称"_s, 150, {}},
                        {u"规格型号"_s, 100, {}},
                        {u"单位"_s, 44, {}},
                        {u"所属类别"_s, 90, {}},
                        quantity(u"现存"_s),
                        quantity(u"未审入库"_s),
                        quantity(u"最低库存"_s),
                        quantity(u"最高库存"_s),
                        quantity(u"缺至最低"_s),
                        quantity(u"补至最高"_s),
                        {u"最近供货单位"_s, 150, {}},
                        {u"最近进货"_s, 80, {}, ListContent::Date},
                        {u"最近进价"_s, 80, {}, ListContent::Money}},
            .from = {},
            .condition = {},
            .filter = {},
            .orders = {QString(), QString(), QString(), QString()},
            .stretched = NameColumn,
            .order = listing().order,
            .compute = [this, range = range_](const Listing& asked) {
                const ReadRun oneMoment(gDB);
                const auto promised = promisedPieces();
                std::optional<LastPurchases> purchases;
                if (purchasesMayBeSeen())
                    purchases.emplace();
                const bool prices = purchasePriceMayBeSeen();
                int withDrafts = 0;
                QList<QList<Value>> records;
                Recordset goods = gDB.OpenRecordset(
                    u"select TA4.F1,TA4.F2,TA4.F5,TA4.F4,TA3.F2 AS LB,TA4.F8,TA4.V1,TA4.V2 from TA4 left join TA3 on "
                    "TA4.F3=TA3.F1 where "_s +
                    (range == Range::Short ? u"TA4.F8<TA4.V1"_s : u"(TA4.V1<>0 or TA4.V2<>0)"_s) +
                    u" order by TA4.F1"_s);
                for (; !goods.isEOF(); goods.MoveNext()) {
                    const QString code = goods.Fields(0).text();
                    const double stock = goods.Fields(5).number();
                    const double lowest = goods.Fields(6).number();
                    const double highest = goods.Fields(7).number();
                    const double drafts = promised.value(foldedCode(code));
                    const auto lacking = [&](double limit) {
                        return Value(std::max(withoutNoise(limit - stock - drafts), 0.0));
                    };
                    QList<Value> row;
                    for (int column = CodeColumn; column <= StockColumn; ++column)
                        row += goods.Fields(column);
                    row += drafts == 0 ? Value() : Value(drafts);
                    row += lowest;
                    row += highest == 0 ? Value() : Value(highest); // 0 means no upper limit
                    row += lacking(lowest);
                    row += highest > 0 ? lacking(highest) : Value();
                    const auto [supplier, day, price] = purchases ? purchases->of(code) : std::array<Value, 3>();
                    row += {supplier, day, prices ? price : Value()};
                    withDrafts += drafts != 0;
                    records += std::move(row);
                }
                static constexpr int keys[] = {SupplierColumn, CategoryColumn, CodeColumn, ToLowestColumn};
                std::stable_sort(records.begin(), records.end(),
                                 [key = keys[asked.order]](const QList<Value>& a, const QList<Value>& b) {
                                     return key == ToLowestColumn ? a[key].number() > b[key].number()
                                                                  : a[key].text() < b[key].text();
                                 });
                promised_ = withDrafts;
                return records;
            }};
}

void Reorder::Menu_Range(Range range)
{
    range_ = range;
    list(shortages());
}

void Reorder::Menu_card()
{
    if (requireRecords(u"没有数据！"_s))
        GoodsCard::open(GD->TextMatrix(GD->Row(), CodeColumn));
}

void Reorder::Menu_print()
{
    if (!requireRecords() || !requireReportFile(u"Pbuhuo.rpt"_s, u"报表文件Pbuhuo.rpt丢失！"_s))
        return;
    const QList<int> texts{CodeColumn,     NameColumn,   ModelColumn,   UnitColumn,     CategoryColumn,
                           SupplierColumn, BoughtColumn, HighestColumn, ToHighestColumn};
    const QList<int> numbers{StockColumn, DraftsColumn, LowestColumn, ToLowestColumn, PriceColumn};
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,V1,V2,V3,V4,V5"_s,
              numberedRows(gridRows(*GD, count(), texts, numbers)));
    preview({u"Pbuhuo.rpt"_s,
             {formula(u"Cpt", u"补货清单"_s), formula(u"regname", gCompanyName), formula(u"LB", LabSum->text())},
             {}});
}

void Reorder::showState()
{
    ListForm::showState();
    const bool allowed = hasRight(listing().right);
    for (const int column : {int(SupplierColumn), int(BoughtColumn)})
        GD->setColumnVisible(column, purchasesMayBeSeen());
    GD->setColumnVisible(PriceColumn, purchasePriceMayBeSeen());
    for (const Range range : {Range::Short, Range::Limited})
        ranges_[int(range)]->setChecked(range == range_);
    const QString what = range_ == Range::Short ? u"低于最低库存的货品"_s : u"设了上下限的货品"_s;
    LabSum->setText(
        !allowed ? QString()
        : count() == 0
            ? u"没有"_s + what + u"。"_s
            : u"%1 %2 种，其中 %3 种已有未审核的入库单。截至 %4。"_s.arg(what).arg(count()).arg(promised_).arg(
                  todayText()));
}

/// Suppliers and prices that the operator before could see don't stay in the list.
void Reorder::sessionChanged()
{
    showState();
    runCommand([this] { recordsChanged(); });
}
