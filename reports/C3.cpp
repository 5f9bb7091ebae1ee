#include "reports/C3.h"

#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/widgets/grid.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

namespace {

Listing gainsListing()
{
    const QString gain = u"(TC21.F6-TC21.F5)"_s;
    const QString amount = gain + u"*TC21.F7"_s;
    return {.caption = u"库存货品盘点统计"_s,
            .statusName = u"货品入库资料"_s, // as it has always read, and operators know it so
            .totalCaption = u"盈亏额合计："_s,
            .right = OperatorRight::Stock,
            .columns = {{u"盘点单号"_s, 130, u"TC2.F1"_s},
                        {u"盘点日期"_s, 92, u"TC2.F2"_s, ListContent::Date},
                        {u"盘点人"_s, 90, u"TC2.F3"_s},
                        {u"货品编码"_s, 120, u"TC21.F1"_s},
                        {u"货品名称"_s, 200, u"TA4.F2"_s, ListContent::Text, false, false},
                        {u"规格"_s, 140, u"TA4.F5"_s, ListContent::Text, false, false},
                        {u"单位"_s, 56, u"TA4.F4"_s, ListContent::Text, false, false},
                        {u"盈亏数"_s, 96, gain, ListContent::Quantity},
                        {u"核算价格"_s, 100, u"TC21.F7"_s, ListContent::Money},
                        {u"盈亏额"_s, 116, amount, ListContent::Money, true}},
            .from = u"TC2 left join (TC21 left join TA4 on TC21.F1=TA4.F1) on TC21.F0=TC2.F1"_s,
            .condition = u"(TC2.F6 is not Null)"_s, // here an empty auditor counts as audited
            .filter = u"datediff('d',"_s + sqlText(todayText()) + u",TC2.F2 ) = 0"_s,
            // The first is the opening order, which no menu item reaches. The second sorts by the stock-taker, though
            // its item speaks of the date.
            .orders = {u"TC2.F2"_s, u"TC2.F3"_s, u"TC21.F1"_s, gain, u"TC21.F7"_s, amount},
            .stretched = 4,
            .none = u"今天没有已审核的盘点单。要看其它日期的，请按[查找]（Alt+Q）。"_s};
}

} // namespace

C3::C3()
    : ListForm(formName())
{
    addListCommand(nullptr, u"Menu_query"_s, u"&Q.查找"_s, [this] { Menu_query(); });
    addSortMenu(1, {u"&1.按盘点日期", u"&2.按货品编码", u"&3.按盈亏数量", u"&4.按核算价格", u"&5.按盈亏金额"});
    addPrintMenu([this] { Menu_print1(); }, [this] { Menu_print2(); });
    addReturnCommand();
    openDocumentsOf([] { return QList{DocumentKind::C2}; });
    list(gainsListing());
}

void C3::Menu_print1()
{
    if (!printable())
        return;
    QList<QStringList> rows =
        gridRows(*GD, count(), {NumberCell, DateCell, TakerCell, GoodsCell}, {GainCell, PriceCell, AmountCell});
    for (int row = 1; row <= count(); ++row) {
        QStringList goods;
        for (const int column : {NameCell, ModelCell, UnitCell})
            goods += GD->TextMatrix(row, column);
        rows[row - 1].insert(GoodsCell + 1, sqlText(goods.join(u'/')));
    }
    print(u"Prntlst.rpt"_s, u"货品盘点流水帐"_s, std::move(rows));
}

void C3::Menu_print2()
{
    if (printable())
        print(u"Prntc3.rpt"_s, u"货品盘点报表"_s,
              gridRows(*GD, count(), {NumberCell, GoodsCell, NameCell, ModelCell, UnitCell},
                       {GainCell, PriceCell, AmountCell}));
}

bool C3::printable() const
{
    return requireRecords() && requireReportFile(u"prntc3.rpt"_s, u"报表文件prntc3.rpt丢失！"_s);
}

void C3::print(const QString& reportFile, const QString& title, QList<QStringList> rows)
{
    for (QStringList& row : rows)
        row.prepend(sqlText(u"1"));
    stageRows(u"PRTB2"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8"_s, rows);
    preview({reportFile, {formula(u"Cpt", title)}, {}});
}
