#include "admin/frmTip.h"

#include "platform/base/desktop.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QRandomGenerator>

const QString frmTip::showAtStart = u"在启动时显示提示"_s;

frmTip::frmTip()
    : Form(formName(), u"日积月累--恒仓宁知识点滴"_s)
{
    lblTipText = makeLabel(u"lblTipText"_s, QString());
    lblTipText->setWordWrap(true);
    lblTipText->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    style::follow(lblTipText, [this] { lblTipText->setMinimumSize(style::scaled(440), style::scaled(150)); });
    auto* heading = makeLabel(u"lblHeading"_s, u"您知道吗……"_s);
    setLook(heading, LabelLook::Heading);
    chkLoadTipsAtStartup = makeCheck(u"chkLoadTipsAtStartup"_s, u"每次启动系统时都自动显示一条"_s);
    cmdNextTip = makeButton(u"cmdNextTip"_s, u"下一条提示"_s, [this] { nextTip(); });
    cmdOK = makeButton(
        u"cmdOK"_s, u"确  定"_s, [this] { Unload(); }, -1, ButtonLook::Primary);
    cmdOK->setDefault(true);

    content()->addWidget(heading);
    content()->addWidget(lblTipText, 1);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({chkLoadTipsAtStartup, nullptr, cmdNextTip, cmdOK}));

    chkLoadTipsAtStartup->setChecked(GetSetting(gProgramName, u"Options"_s, showAtStart, u"1"_s) != u"0");
    connect(chkLoadTipsAtStartup, &QCheckBox::toggled, this,
            [](bool on) { SaveSetting(gProgramName, u"Options"_s, showAtStart, on ? u"1"_s : u"0"_s); });

    const QString file = gAppPath + u"Learn.dat"_s;
    if (const auto lines = readLines(file)) {
        tips_ = *lines;
        nextTip();
    } else {
        lblTipText->setText(u"文件 "_s + file + u" 没有被找到吗? \n创建文本文件名为 "_s + file +
                            u" 使用记事本每行写一条提示。 然后将它存放在应用程序所在的目录 "_s + gAppPath);
    }
}

void frmTip::nextTip()
{
    if (!tips_.isEmpty())
        lblTipText->setText(tips_.at(QRandomGenerator::global()->bounded(tips_.size())));
}

QWidget* frmTip::firstFocus()
{
    return cmdOK;
}
