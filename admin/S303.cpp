#include "admin/S303.h"

#include "admin/clearing.h"
#include "ledger/literal.h"
#include "ledger/store.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QGroupBox>

#include <algorithm>
#include <array>

namespace {

struct OldDocuments
{
    QStringView caption;
    QStringView heads;
    QStringView lines;
};

constexpr std::array<OldDocuments, 5> oldDocuments{{{u"货品入库单", u"TB1", u"TB11"},
                                                    {u"公司退货单", u"TB3", u"TB31"},
                                                    {u"货品出库单", u"TD1", u"TD11"},
                                                    {u"货品退库单", u"TD3", u"TD31"},
                                                    {u"库存盘点单", u"TC2", u"TC21"}}};

} // namespace

S303::S303()
    : Form(formName(), u"清除历史单据"_s)
{
    DTP = new DatePicker(u"DTP"_s);
    DTP->setText(todayText());
    DTP->setAccessibleName(u"清除此日期之前的单据"_s);
    auto* kinds = new QGroupBox(u"单据类型"_s);
    auto* grid = new QGridLayout(kinds);
    for (int i = 0; i < int(oldDocuments.size()); ++i) {
        Opt[i] = makeOption(u"Opt"_s, oldDocuments[size_t(i)].caption.toString(), i);
        grid->addWidget(Opt[i], i / 2, i % 2);
    }
    cmd[0] = makeButton(
        u"cmd"_s, u"确 定"_s, [this] { clear(); }, 0, ButtonLook::Primary);
    cmd[1] = makeButton(
        u"cmd"_s, u"返回系统"_s, [this] { Unload(); }, 1);

    content()->addLayout(makeRow({makeLabel(u"LabBefore"_s, u"清除"_s), DTP,
                                  makeLabel(u"LabBefore2"_s, u"之前的单据（当日的单据保留）"_s), nullptr}));
    content()->addWidget(kinds);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({nullptr, cmd[0], cmd[1]}));
    style::keepWidth(content()->parentWidget(), 440);
}

void S303::clear()
{
    const QString limit = DTP->text();
    if (!askBeforeClearing(u"警告！相关数据删除后将不可恢复！真的要删除"_s + limit + u"之前的指定类型单据吗？"_s))
        return;
    const auto option = std::ranges::find_if(Opt, &QRadioButton::isChecked);
    if (option == std::end(Opt))
        return MsgBox(u"请选择要清除数所的类型！"_s);
    const OldDocuments& kind = oldDocuments[size_t(option - std::begin(Opt))];
    const bool went = clearRecords(u"清除历史单据", [&] {
        const QString older = u" where datediff('d',"_s + sqlText(limit) + u",F2)<0"_s;
        gDB.Execute(u"delete from %2 where %2.F0 in (select F1 from %1"_s.arg(kind.heads, kind.lines) + older + u')');
        gDB.Execute(u"delete from "_s + kind.heads + older);
        gDB.Execute(u"delete from TC15"_s);
    });
    if (went)
        MsgBox(u"操作完成！"_s);
}

QWidget* S303::firstFocus()
{
    return DTP;
}
