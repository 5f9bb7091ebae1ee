#include "reports/Lst.h"

#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/widgets/grid.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int statisticsQuantityColumn = 11;
constexpr int statisticsAmountColumn = 13;

Listing statisticsListing(const StatisticsTraits& kind)
{
    const QString header = kind.header.toString();
    const QString line = header + u'1';
    const QString partner = kind.partners.toString();
    const QString amount = line + u".F6*"_s + line + u".F7"_s;
    return {.caption = kind.word + u"统计"_s,
            .statusName = kind.word + u"资料"_s,
            .totalCaption = u"合计："_s,
            .right = kind.right,
            .columns = {{u"单号"_s, 108, header + u".F1"_s},
                        {u"日期"_s, 84, header + u".F2"_s, ListContent::Date},
                        {u"单位编码"_s, 70, header + u".F3"_s},
                        {kind.partnerWord + u"单位"_s, 120, partner + u".F2"_s},
                        {u"单据附注"_s, 90, header + u".F10"_s},
                        {u"货品编码"_s, 84, line + u".F1"_s},
                        {u"货品名称"_s, 120, u"TA4.F2"_s},
                        {u"规格"_s, 80, u"TA4.F5"_s},
                        {u"所属类别编码"_s, 92, u"TA4.F3"_s},
                        {u"所属类别"_s, 76, u"TA3.F2"_s},
                        {u"单位"_s, 44, u"TA4.F4"_s},
                        {u"数量"_s, 60, line + u".F6"_s, ListContent::Quantity, true},
                        {u"价格"_s, 64, line + u".F7"_s, ListContent::Money},
                        {u"金额"_s, 78, amount, ListContent::Money, true},
                        {u"备注"_s, 90, line + u".F8"_s}},
            .from = u"(%1 left join %2 on %1.F3=%2.F1) left join (%3 left join (TA4 left join TA3 on TA4.F3=TA3.F1) "
                    "on %3.F1=TA4.F1) on %3.F0=%1.F1"_s.arg(header, partner, line),
            .condition = u"(%1.F6 is not Null) and %1.F6<>''"_s.arg(header),
            .filter = u"datediff('d',"_s + sqlText(todayText()) + u',' + header + u".F2 ) = 0"_s,
            .orders = {header + u".F2"_s, header + u".F3"_s, line + u".F1"_s, line + u".F6"_s, line + u".F7"_s, amount},
            .stretched = 6,
            .none = u"今天没有已审核的%1单。要看其它日期的，请按[查找]（Alt+Q）。"_s.arg(kind.word)};
}

} // namespace

Lst& Lst::theWindow(StatisticsMode mode)
{
    auto* window = static_cast<Lst*>(loaded(formName()));
    if (!window)
        return *new Lst(mode);
    if (window->mode_ != mode)
        window->start(mode);
    return *window;
}

Lst::Lst(StatisticsMode mode)
    : ListForm(formName())
{
    addListCommand(nullptr, u"Menu_query"_s, u"&Q.查找"_s, [this] { Menu_query(); });
    addSortMenu(0, {u"&1.按单据日期", u"&2.按相关单位", u"&3.按货品编码", u"&4.按发生数量", u"&5.按货品价格",
                    u"&6.按发生金额"});
    addPrintMenu([this] { Menu_print1(); }, [this] { Menu_print2(); });
    addReturnCommand();
    openDocumentsOf([this] {
        const auto kind = std::ranges::find(documentTraits, traitsOf(mode_).header, &DocumentTraits::header);
        return QList{kind->kind};
    });
    start(mode);
}

void Lst::start(StatisticsMode mode)
{
    list(statisticsListing(traitsOf(mode)));
    mode_ = mode;
}

void Lst::Menu_print1()
{
    print(u"Plist.rpt"_s, traitsOf(mode_).word + u"流水帐"_s);
}

void Lst::Menu_print2()
{
    print(u"Psum.rpt"_s, traitsOf(mode_).word + u"统计表"_s);
}

void Lst::print(const QString& reportFile, const QString& title)
{
    if (!requireRecords())
        return;
    QList<int> texts(GD->Cols());
    std::iota(texts.begin(), texts.end(), 0);
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,V1,V2"_s,
              numberedRows(gridRows(*GD, count(), texts, {statisticsQuantityColumn, statisticsAmountColumn})));
    preview({reportFile, {formula(u"Cpt", title)}, {}});
}
