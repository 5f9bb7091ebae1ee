#include "shell/FirstSteps.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/desktop.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/style.h"
#include "shell/MForm.h"
#include "shell/session.h"

#include <QVBoxLayout>

namespace {

/// Whether the statement finds anything. A failure counts as found: the steps are a help and must not stand in the way.
bool any(const QString& statement)
{
    return LookupValue(gDB, statement) != u"NoFound";
}

struct Step
{
    QStringView todo;
    QStringView button;
    const char* menuItem; ///< the command of the main menu that does it
    bool (*done)();
};

// What the template has: a company "我的公司", "001" without a password, no goods.
constexpr Step steps[] = {
    {u"建立自己的帐本（也可以直接使用现在打开的空帐本）", u"帐本设置", "Menu_S2501",
     +[] { return resolvedPath(gLedgerFile) != resolvedPath(gAppPath + u"vemaro.dat"_s); }},
    {u"填写公司名称、地址和电话", u"公司资料", "Menu_S2503",
     +[] { return !any(u"select F1 from reginfo where F1='我的公司'"_s); }},
    {u"为帐号 001 设置密码", u"个人设置", "Menu_S2",
     +[] { return any(u"select F1 from TE1 where F1='001' and F3<>''"_s); }},
    {u"登记货品；货品多时可以从 Excel 导入", u"货品资料", "Menu_A4",
     +[] { return any(u"select top 1 F1 from TA4"_s); }},
    {u"录入第一张入库单并保存", u"入库单", "Menu_B1", +[] { return any(u"select top 1 F1 from TB1"_s); }},
    {u"审核入库单，货品就进了库存", u"审核", "Menu_B1",
     +[] { return any(u"select top 1 F1 from TB1 where F6<>''"_s); }},
};
static_assert(std::size(steps) == FirstSteps::stepCount);

/// A ledger in use, whatever it lacks: its keepers need no first steps.
bool inUse()
{
    return steps[FirstSteps::stepCount - 1].done() || any(u"select top 1 F1 from TD1"_s) ||
           any(u"select top 1 SortNo from jxc"_s);
}

const QString settingSection = u"Options"_s;
const QString settingKey = u"FirstSteps"_s; // "0" once put away

} // namespace

FirstSteps::FirstSteps(QWidget* area)
    : QFrame(area)
{
    setObjectName(u"FirstSteps"_s);
    setProperty("look", u"panel"_s);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(2 * style::spacing, 2 * style::spacing, 2 * style::spacing, 2 * style::spacing);
    rows->setSpacing(style::spacing);
    auto* heading = makeLabel(u"LabHeading"_s, u"开始使用"_s);
    setLook(heading, LabelLook::Heading);
    rows->addWidget(heading);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2 * style::spacing);
    grid->setVerticalSpacing(style::spacing);
    grid->setColumnStretch(0, 1);
    for (int i = 0; i < stepCount; ++i) {
        const QString item = QString::fromLatin1(steps[i].menuItem);
        LabStep[i] = makeLabel(u"LabStep"_s, QString(), i);
        CmdStep[i] = makeButton(
            u"CmdStep"_s, steps[i].button.toString(), [item] { MForm::get().menuItem(item)->trigger(); }, i);
        grid->addWidget(LabStep[i], i, 0);
        grid->addWidget(CmdStep[i], i, 1);
    }
    rows->addLayout(grid);
    CmdHide = makeButton(u"CmdHide"_s, u"不再显示"_s, [this] { putAway(); });
    auto* note = makeLabel(u"LabNote"_s, u"随时按 F1 查看使用说明"_s);
    setLook(note, LabelLook::Field);
    rows->addLayout(makeRow({note, nullptr, CmdHide}));
    hide();
}

void FirstSteps::refresh()
{
    const bool wanted = isTopAdministrator() && !Form::activeChild() &&
                        GetSetting(gProgramName, settingSection, settingKey, u"1"_s) != u"0";
    if (!wanted || inUse())
        return hide();

    int next = -1;
    for (int i = 0; i < stepCount; ++i) {
        const bool done = steps[i].done();
        LabStep[i]->setText((done ? u"✓　"_s : u"%1　"_s.arg(i + 1)) + steps[i].todo);
        LabStep[i]->setEnabled(!done);
        CmdStep[i]->setVisible(!done);
        if (next < 0 && !done)
            next = i;
    }
    for (int i = 0; i < stepCount; ++i)
        CmdStep[i]->setDefault(i == next);
    show();
    place();
    if (next >= 0)
        CmdStep[next]->setFocus();
}

void FirstSteps::place()
{
    const QSize area = parentWidget()->size();
    const QSize wanted = sizeHint();
    resize(wanted.boundedTo(area));
    move(qMax(0, area.width() - width() - 6 * style::spacing), qMax(0, (area.height() - height()) / 2));
}

void FirstSteps::putAway()
{
    SaveSetting(gProgramName, settingSection, settingKey, u"0"_s);
    hide();
}
