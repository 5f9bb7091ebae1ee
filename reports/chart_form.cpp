#include "reports/chart_form.h"

#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

#include <QApplication>
#include <QClipboard>
#include <QStandardPaths>

ChartForm::ChartForm(const QString& name)
    : ListForm(name)
{
    Chart = new ChartBox(u"Chart"_s);
    LabSum = makeLabel(u"LabSum"_s, QString());
    auto* beside = new QHBoxLayout;
    beside->setSpacing(style::spacing);
    content()->removeWidget(GD);
    beside->addWidget(Chart, 3);
    beside->addWidget(GD, 2);
    content()->insertWidget(0, LabSum);
    content()->insertLayout(1, beside, 1);
}

void ChartForm::addChartCommands()
{
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addListCommand(nullptr, u"Menu_copy"_s, u"&C.复制图片"_s, [this] { Menu_copy(); });
    addListCommand(nullptr, u"Menu_save"_s, u"&S.保存图片"_s, [this] { Menu_save(); });
    addReturnCommand();
}

bool ChartForm::requireChart() const
{
    if (!Chart->content().empty())
        return true;
    MsgBox(u"没有数据，没有图可以输出。"_s);
    return false;
}

void ChartForm::Menu_print()
{
    const Paper printed = paper();
    if (!requireChart() || !requireReportFile(printed.report, u"报表文件"_s + printed.report + u"丢失！"_s))
        return;
    QList<int> texts;
    QString columns = u"F0"_s;
    for (int column = 0; column < GD->Cols(); ++column) {
        texts += column;
        columns += u",F%1"_s.arg(column + 1);
    }
    stageRows(u"Plist"_s, columns, numberedRows(gridRows(*GD, count(), texts)));
    preview({printed.report,
             {formula(u"Cpt", printed.heading), formula(u"regname", gCompanyName), formula(u"LB", printed.about)},
             {},
             {{u"Chart"_s, Chart->picture()}}});
}

void ChartForm::Menu_copy()
{
    if (!requireChart())
        return;
    QApplication::clipboard()->setImage(Chart->picture());
    setStatusPanel(4, u"图片已复制，可以粘贴到别的程序中。"_s);
}

void ChartForm::Menu_save()
{
    if (!requireChart())
        return;
    const QString offered = withSeparator(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)) +
                            Caption() + u' ' + todayText() + u".png"_s;
    const auto path = askFileToWrite(u"保存图片"_s, u"PNG图片(*.png)|*.png"_s, offered);
    if (!path)
        return;
    if (!Chart->savePicture(*path))
        return MsgBox(notWritten(*path), u"提示"_s, BoxIcon::Exclamation);
    setStatusPanel(4, u"图片已保存到："_s + *path);
}

void ChartForm::showState()
{
    ListForm::showState();
    const bool allowed = hasRight(listing().right);
    Chart->setVisible(allowed);
    Chart->show(allowed ? chart() : ChartContent());
    LabSum->setText(allowed ? about() : QString());
}

/// What the operator before could see, this one may not: the figures are read anew.
void ChartForm::sessionChanged()
{
    showState();
    runCommand([this] { recordsChanged(); });
}
