#include "admin/S3.h"

#include "admin/clearing.h"
#include "admin/sysDBbak.h"
#include "ledger/Module1.h"
#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <algorithm>

namespace {

enum Box { DocumentsBox, StockBox, MasterDataBox, YearStartBox };

} // namespace

S3::S3()
    : Form(formName(), u"帐本数据初始化"_s)
{
    auto* heading = makeLabel(u"LabHeading"_s, u"要清除的内容"_s);
    setLook(heading, LabelLook::Heading);
    Chk[DocumentsBox] = makeCheck(u"Chk"_s, u"清除所有单据记录"_s, DocumentsBox);
    Chk[StockBox] = makeCheck(u"Chk"_s, u"所有货品库存数量归零"_s, StockBox);
    Chk[MasterDataBox] = makeCheck(u"Chk"_s, u"清除所有基础数据"_s, MasterDataBox);
    Chk[YearStartBox] = makeCheck(u"Chk"_s, u"设置会计年度从"_s, YearStartBox);
    couple();
    DTP = new DatePicker(u"DTP"_s);
    DTP->setText(NumText(Today().year()) + u"-1-1"_s);
    DTP->setAccessibleName(u"会计年度的第一天"_s);
    cmd[0] = makeButton(
        u"cmd"_s, u"确定执行"_s, [this] { clear(); }, 0, ButtonLook::Primary);
    cmd[1] = makeButton(
        u"cmd"_s, u"备份数据"_s, [] { theForm<sysDBbak>().ShowModal(); }, 1);
    cmd[2] = makeButton(
        u"cmd"_s, u"返回系统"_s, [this] { Unload(); }, 2);

    content()->addWidget(heading);
    for (QCheckBox* box : {Chk[DocumentsBox], Chk[StockBox], Chk[MasterDataBox]})
        content()->addWidget(box);
    content()->addLayout(makeRow({Chk[YearStartBox], DTP, makeLabel(u"LabStart"_s, u"开始"_s), nullptr}));
    auto* note = makeLabel(u"LabNote"_s, u"改变会计年度的第一天时，已保存的进销存报表将一并清除。"_s);
    setLook(note, LabelLook::Field);
    content()->addWidget(note);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({cmd[1], nullptr, cmd[0], cmd[2]}));
    style::keepWidth(content()->parentWidget(), 440);
}

/// Stock can't be reset without a new start of the year.
void S3::couple()
{
    for (QCheckBox* box : {Chk[StockBox], Chk[MasterDataBox]})
        connect(box, &QCheckBox::toggled, this, [this](bool on) {
            if (on)
                Chk[YearStartBox]->setChecked(true);
        });
    connect(Chk[YearStartBox], &QCheckBox::toggled, this, [this](bool on) {
        if (!on)
            for (QCheckBox* box : {Chk[StockBox], Chk[MasterDataBox]})
                box->setChecked(false);
    });
}

void S3::clear()
{
    if (std::ranges::none_of(Chk, &QCheckBox::isChecked))
        return MsgBox(u"请选择要清除的对象！"_s);
    if (!askBeforeClearing(u"数据清除后将无法恢复！真的继续吗？"_s))
        return;
    if (clearRecords(u"初始化", [this] { deleteAll(); }))
        MsgBox(u"系统数据清除成功！"_s);
}

void S3::deleteAll()
{
    if (Chk[DocumentsBox]->isChecked()) { // heads first here, as ever
        for (const DocumentTables& kind : documentTables)
            for (const QStringView table : {kind.header, kind.lines})
                gDB.Execute(u"delete from "_s + table);
        gDB.Execute(u"delete from TC15"_s);
    }
    if (Chk[StockBox]->isChecked())
        gDB.Execute(u"UPDATE TA4 SET F8=0,V3=0,V4=0 "_s);
    if (Chk[MasterDataBox]->isChecked()) {
        gDB.Execute(u"delete from TA1"_s);
        EnsureDefaultRow(u"TA1"_s, u"默认货品来源"_s);
        gDB.Execute(u"delete from TA2"_s);
        EnsureDefaultRow(u"TA2"_s, u"默认货品去向"_s);
        gDB.Execute(u"delete from TA3"_s);
        EnsureDefaultRow(u"TA3"_s, u"所有货品"_s);
        gDB.Execute(u"delete from TA4"_s); // an empty goods table gets no row
    }
    if (Chk[YearStartBox]->isChecked()) {
        gDB.Execute(u"delete from jxc"_s); // its figures belong to the old start
        gDB.Execute(u"update REGINFO SET F7="_s + sqlText(DTP->text()));
    }
}

QWidget* S3::firstFocus()
{
    return Chk[DocumentsBox];
}
