#include "reports/PrntHelp.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"

#include <QKeyEvent>

namespace {

struct HelpRow
{
    QStringView what; ///< the controls
    QStringView words;
};

constexpr HelpRow helpRows[] = {
    {{}, u"打印输出界面工具按钮"},
    {u"首页　上页　下页　末页", u"翻页按钮"},
    {u"－　100%　＋　适合页宽　适合整页", u"缩放显示"},
    {u"打印设置", u"可设置打印起止页、打印份数"},
    {u"导出PDF　导出Excel", u"可输出数据到Excel等类型的文件"},
};

} // namespace

PrntHelp::PrntHelp()
    : Form(formName(), u" 使用说明"_s)
{
    auto* panel = makePanel(u"PanelHelp"_s);
    auto* rows = new QGridLayout(panel);
    rows->setHorizontalSpacing(3 * style::spacing);
    rows->setVerticalSpacing(style::spacing);
    for (int i = 0; i < int(std::size(helpRows)); ++i) {
        Lab[i] = makeLabel(u"Lab"_s, helpRows[i].words.toString(), i);
        if (helpRows[i].what.isEmpty()) {
            setLook(Lab[i], LabelLook::Heading);
            rows->addWidget(Lab[i], i, 0, 1, 2);
            continue;
        }
        auto* what = makeLabel(u"LabWhat"_s, helpRows[i].what.toString(), i);
        setLook(what, LabelLook::Field);
        rows->addWidget(what, i, 0);
        rows->addWidget(Lab[i], i, 1);
    }
    CmdOK = makeButton(
        u"CmdOK"_s, u"确  定"_s, [this] { Unload(); }, -1, ButtonLook::Primary);
    content()->addWidget(panel);
    content()->addLayout(makeRow({nullptr, CmdOK}));
}

void PrntHelp::explain(const QWidget& toolBar)
{
    auto& form = theForm<PrntHelp>();
    const QWidget* window = toolBar.window();
    const int right = toolBar.mapToGlobal(QPoint(toolBar.width(), 0)).x() - form.sizeHint().width();
    form.corner_ = {std::max(right, window->x()), toolBar.mapToGlobal(QPoint(0, toolBar.height())).y()};
    form.ShowModal();
}

QWidget* PrntHelp::firstFocus()
{
    return CmdOK;
}

void PrntHelp::showEvent(QShowEvent* event)
{
    move(corner_); // not in the middle, where a modal form stands: what it explains must stay in sight
    Form::showEvent(event);
}

void PrntHelp::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        Unload();
    else
        Form::keyPressEvent(event);
}
