#include "admin/AboutUS.h"

#include "admin/maker.h"
#include "platform/base/desktop.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QUrl>

namespace {
constexpr QStringView product = u"恒仓宁仓库管理系统";
constexpr int iconSize = 72;
} // namespace

AboutUS::AboutUS()
    : Form(formName(), u"关于本软件"_s)
{
    LabTitle = makeLabel(u"LabTitle"_s, product.toString());
    setLook(LabTitle, LabelLook::Heading);
    LabVersion = makeLabel(u"LabVersion"_s, u"版本 "_s + gVersion);
    LabEdition = makeLabel(u"LabEdition"_s, u"标准版 "_s + gVersion);
    LabMaker =
        makeLabel(u"LabMaker"_s, u"软件作者："_s + makerName + u"\n网站："_s + makerSite + u"\n信箱："_s + makerMail);
    LabService = makeLabel(u"LabService"_s, QString());
    LabService->setWordWrap(true);
    LabService->hide();
    Cmd[0] = makeButton(
        u"Cmd"_s, u"访问网站"_s, [this] { openSite(); }, 0);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"发送邮件"_s, [this] { openMail(); }, 1);
    Cmd[2] = makeButton(
        u"Cmd"_s, u"返回系统"_s, [this] { Unload(); }, 2, ButtonLook::Primary);
    Cmd[2]->setDefault(true);

    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    auto* lines = new QVBoxLayout;
    lines->setSpacing(style::spacing);
    for (QLabel* label : {LabTitle, LabVersion, LabEdition, LabMaker, LabService})
        lines->addWidget(label);
    auto* row = new QHBoxLayout;
    row->setSpacing(style::spacing * 3);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(lines, 1);
    content()->addLayout(row);
    content()->addSpacing(style::spacing * 2);
    content()->addLayout(makeRow({nullptr, Cmd[0], Cmd[1], Cmd[2]}));
    style::keepWidth(content()->parentWidget(), 480);
}

void AboutUS::setService(const QString& line)
{
    LabService->setText(line);
    LabService->setVisible(!line.isEmpty());
}

void AboutUS::openSite()
{
    ShellExecute(makerSite.toString());
}

void AboutUS::openMail()
{
    ShellExecute(u"mailto:"_s + makerMail + u"?subject="_s +
                 QString::fromLatin1(QUrl::toPercentEncoding(product + (u' ' + gVersion))));
}

QWidget* AboutUS::firstFocus()
{
    return Cmd[2];
}
