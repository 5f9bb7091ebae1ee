#include "admin/S302.h"

#include "admin/clearing.h"
#include "ledger/Module1.h"
#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QGroupBox>

#include <array>

namespace {

enum Choice { NoChoice = -1, SupplierChoice, ConsigneeChoice, CategoryChoice, GoodsChoice };

constexpr std::array<QStringView, 4> choiceCaptions{u"指定供货单位", u"指定出货单位", u"指定货品类别", u"指定货品编码"};

void deletePartner(const QString& table, const QString& defaultName, const QString& code)
{
    const QString quoted = sqlText(code);
    gDB.Execute(u"delete from "_s + table + u" where F1="_s + quoted);
    EnsureDefaultRow(table, defaultName);
    for (const DocumentTables& kind : documentTables) {
        if (kind.partners != table)
            continue;
        gDB.Execute(u"delete from %2 where %2.F0 in (select %1.F1 from %1 where %1.F3="_s.arg(kind.header, kind.lines) +
                    quoted + u')');
        gDB.Execute(u"delete from %1 where  %1.F3="_s.arg(kind.header) + quoted);
    }
}

/// A whole document goes, with its lines for other goods.
void deleteGoods(const QString& code)
{
    const QString quoted = sqlText(code);
    gDB.Execute(u"delete from TA4 where F1="_s + quoted);
    for (const DocumentTables& kind : documentTables) {
        if (!kind.movesGoods())
            continue;
        const QString numbers = u" IN ( SELECT F0 FROM %1 WHERE %1.F1="_s.arg(kind.lines) + quoted + u')';
        gDB.Execute(u"delete from %1 where %1.F1"_s.arg(kind.header) + numbers);
        gDB.Execute(u"delete from %1 where %1.F0"_s.arg(kind.lines) + numbers);
    }
    gDB.Execute(u"delete from jxc where hpbm="_s + quoted);
}

} // namespace

S302::S302()
    : Form(formName(), u"清除指定基础数据"_s)
{
    // The notice has a gap where the next line is to begin.
    const QString text =
        u"   本模块在清除指定编码基础数据的同时，会把所有与指定编码基础数据相关的单据信息清除掉。                因此会造成历史单据的丢失！"_s;
    auto* notice = makeLabel(u"LabNotice"_s, text.split(u' ', Qt::SkipEmptyParts).join(u'\n'));
    notice->setProperty("caption", text);
    notice->setWordWrap(true);
    auto* kinds = new QGroupBox(u"要清除资料的类型"_s);
    auto* grid = new QGridLayout(kinds);
    for (int i = 0; i < int(choiceCaptions.size()); ++i) {
        Opt[i] = makeOption(u"Opt"_s, choiceCaptions[size_t(i)].toString(), i);
        grid->addWidget(Opt[i], i / 2, i % 2);
    }
    Txt = makeEdit(u"Txt"_s, -1, EditKind::Code);
    enterMovesOn(Txt);
    auto* fields = new FieldLayout;
    fields->add(u"要清除资料的编码"_s, Txt);
    cmd[0] = makeButton(
        u"cmd"_s, u"确 定"_s, [this] { clear(); }, 0, ButtonLook::Primary);
    cmd[1] = makeButton(
        u"cmd"_s, u"返回系统"_s, [this] { Unload(); }, 1);

    content()->addWidget(notice);
    content()->addWidget(kinds);
    content()->addLayout(fields);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({nullptr, cmd[0], cmd[1]}));
    style::keepWidth(content()->parentWidget(), 460);
}

int S302::chosen() const
{
    for (int i = 0; i < int(std::size(Opt)); ++i)
        if (Opt[i]->isChecked())
            return i;
    return NoChoice;
}

void S302::clear()
{
    if (!askBeforeClearing(u"警告！相关数据删除后将不可恢复！真的要继续吗？"_s))
        return;
    const QString code = Txt->text();
    if (code.isEmpty()) {
        MsgBox(u"必须输入指定编码！"_s);
        return Txt->setFocus();
    }
    const int choice = chosen();
    if (choice == NoChoice)
        return MsgBox(u"请选择要清除数所的类型！"_s);
    const bool went = clearRecords(u"清除基础数据", [&] {
        if (choice == SupplierChoice)
            deletePartner(u"TA1"_s, u"默认货品来源"_s, code);
        else if (choice == ConsigneeChoice)
            deletePartner(u"TA2"_s, u"默认货品去向"_s, code);
        else if (choice == GoodsChoice)
            deleteGoods(code);
        // A category is offered and nothing of it removed: its goods would be left without one.
        gDB.Execute(u"delete from TC15"_s);
    });
    if (went)
        MsgBox(u"操作完成！"_s);
}

QWidget* S302::firstFocus()
{
    return Opt[0];
}
