#include "admin/YearEnd.h"

#include "admin/clearing.h"
#include "admin/sysDBbak.h"
#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "ledger/store.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "reports/C181.h"
#include "shell/session.h"

namespace {

enum Box { ReportsBox, DocumentsBox };

} // namespace

YearEnd::YearEnd()
    : Form(formName(), u"库存年度结转"_s)
    , firstDay_(dateText(Today().addDays(1)))
{
    auto* greeting = makeLabel(u"LabGreeting"_s, u"新年好！祝您事业恒达，财源广进！"_s);
    setLook(greeting, LabelLook::Heading);
    labinf = makeLabel(
        u"labinf"_s, u"    今天确实是 "_s + todayText() + u" 吗？\n    库存年度结转功能将： \n    1.把 "_s + firstDay_ +
                         u" 设为下个会计年度的第一天；\n    2.并且把所有货品数量、金额结转为新的会计年度的年初余额。\n"
                         u"     强列建议您在结转操作之前备份当前数据，确保年度帐目科学合理！"_s);
    Chk[DocumentsBox] = makeCheck(u"Chk"_s, u"结转的同时清除历史单据"_s, DocumentsBox);
    Chk[ReportsBox] = makeCheck(u"Chk"_s, u"结转的同时清除历史报表"_s, ReportsBox);
    Cmd[0] = makeButton(
        u"Cmd"_s, u"备份数据"_s, [] { theForm<sysDBbak>().ShowModal(); }, 0);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"库存结转"_s, [this] { carryForward(); }, 1, ButtonLook::Primary);
    Cmd[2] = makeButton(
        u"Cmd"_s, u"返回系统"_s, [this] { Unload(); }, 2);

    content()->addWidget(greeting);
    content()->addWidget(labinf);
    content()->addSpacing(style::spacing);
    content()->addWidget(Chk[DocumentsBox]);
    content()->addWidget(Chk[ReportsBox]);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({Cmd[0], nullptr, Cmd[1], Cmd[2]}));
}

void YearEnd::carryForward()
{
    if (!isTopAdministrator())
        return MsgBox(u"只允许以001帐号的身份操作库存结转功能！您无权操作！"_s);
    if (!askBeforeClearing(u"警告！此操作危险！所有货品年初余额及会计年度设置将被刷新，您真的要进行库存结转操作吗？"_s))
        return;
    // An open report form reads its list when the closed year's reports have their negative numbers, and also when a
    // later statement failed: the new year has begun by then.
    const auto tellReport = [this] {
        if (yearBegun_)
            runCommand([this] { C181::yearStartChanged(firstDay_); });
    };
    yearBegun_ = false;
    try {
        if (!clearRecords(u"结转", [this] { writeAll(); }))
            return;
    } catch (const StoreError& error) {
        if (error.details().aftermath.isEmpty()) // else nothing was kept, not even the new year
            tellReport();
        throw;
    }
    tellReport();
    MsgBox(u"库存结转操作成功！"_s, QString());
}

void YearEnd::writeAll()
{
    gDB.Execute(u"update TA4 set V3=F8,V4=F7 "_s);
    gDB.Execute(u"update reginfo set F7="_s + sqlText(firstDay_));
    yearBegun_ = true;
    if (Chk[DocumentsBox]->isChecked()) // lines first: a failure in between leaves heads that can be cleared again
        for (const DocumentTables& kind : documentTables)
            for (const QStringView table : {kind.lines, kind.header})
                gDB.Execute(u"delete * from "_s + table);
    if (Chk[ReportsBox]->isChecked())
        gDB.Execute(u"DELETE * FROM JXC"_s);
    else // the closed year's reports are told by a negative number
        gDB.Execute(u"update jxc set SortNo=-SortNo where SortNo>0"_s);
}

QWidget* YearEnd::firstFocus()
{
    return Cmd[0];
}
