#include "admin/LookSet.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/look.h"

#include <QGroupBox>

LookSet::LookSet()
    : Form(formName(), u"显示设置"_s)
{
    const auto group = [](const QString& caption, const QList<QRadioButton*>& options) {
        auto* box = new QGroupBox(caption);
        auto* rows = new QVBoxLayout(box);
        rows->setSpacing(style::spacing);
        for (QRadioButton* option : options)
            rows->addWidget(option);
        rows->addStretch(1);
        return box;
    };
    for (const QStringView caption : {u"跟随系统", u"浅色", u"深色"})
        OptLook += makeOption(u"OptLook"_s, caption.toString(), int(OptLook.size()));
    for (const FontSize& size : fontSizes)
        OptFont += makeOption(u"OptFont"_s, size.name.toString(), int(OptFont.size()));
    for (int i = 0; i < OptLook.size(); ++i)
        connect(OptLook[i], &QRadioButton::clicked, this, [i] {
            runCommand([i] { changeLook({style::Scheme(i), style::look().points}); });
        });
    for (int i = 0; i < OptFont.size(); ++i)
        connect(OptFont[i], &QRadioButton::clicked, this, [i] {
            runCommand([i] { changeLook({style::look().scheme, fontSizes[size_t(i)].points}); });
        });
    CmdDefault = makeButton(u"CmdDefault"_s, u"恢复默认"_s, [this] { restore(); });
    CmdClose = makeButton(
        u"CmdClose"_s, u"关 闭"_s, [this] { Unload(); }, -1, ButtonLook::Primary);
    auto* note =
        makeLabel(u"LabNote"_s, u"选中后立即生效，下次启动时仍然这样。只影响这台电脑上的您自己。\n"
                                "在任何窗口中：Ctrl 和 + 放大文字，Ctrl 和 - 缩小文字，Ctrl 和 0 恢复标准大小。"_s);
    setLook(note, LabelLook::Field);

    auto* groups = new QHBoxLayout;
    groups->setSpacing(2 * style::spacing);
    groups->addWidget(group(u"颜色"_s, OptLook), 1);
    groups->addWidget(group(u"文字大小"_s, OptFont), 1);
    content()->addLayout(groups, 1);
    content()->addWidget(note);
    content()->addLayout(makeRow({CmdDefault, nullptr, CmdClose}));
    style::keepWidth(content()->parentWidget(), 460);
    style::follow(this, [this] { showPresent(); }); // the keys change it too
}

void LookSet::restore()
{
    changeLook({});
}

void LookSet::showPresent()
{
    const style::Look& look = style::look();
    OptLook[int(look.scheme)]->setChecked(true);
    OptFont[presentFontSize()]->setChecked(true);
}

QWidget* LookSet::firstFocus()
{
    return OptLook[int(style::look().scheme)];
}
