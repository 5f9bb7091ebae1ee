#include "tools/jisuan/calculator_window.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>

#include <array>
#include <optional>

namespace jisuan {

namespace {

struct Button
{
    QStringView caption;
    char key;
    QStringView tip; ///< what it does and the key that does it
};

constexpr int buttonsInRow = 5;
constexpr std::array<Button, 25> buttons{{
    {u"MC", 'L', u"清除存储 (Ctrl+L)"},
    {u"MR", 'R', u"取出存储 (Ctrl+R)"},
    {u"M−", 'M', u"从存储中减去 (Ctrl+Q)"},
    {u"M+", 'P', u"加入存储 (Ctrl+P)"},
    {u"←", 'b', u"退一位 (Backspace)"},
    {u"7", '7', u""},
    {u"8", '8', u""},
    {u"9", '9', u""},
    {u"÷", '/', u""},
    {u"C", 'c', u"全部清除 (Esc)"},
    {u"4", '4', u""},
    {u"5", '5', u""},
    {u"6", '6', u""},
    {u"×", '*', u""},
    {u"CE", 'e', u"清除本次输入 (Delete)"},
    {u"1", '1', u""},
    {u"2", '2', u""},
    {u"3", '3', u""},
    {u"−", '-', u""},
    {u"%", '%', u"百分数；200 + 5 % 得 210"},
    {u"±", 'n', u"变号 (F9)"},
    {u"0", '0', u""},
    {u".", '.', u""},
    {u"+", '+', u""},
    {u"=", '=', u"得数 (Enter)"},
}};

struct KeyRow
{
    int key;
    Qt::KeyboardModifiers modifiers;
    char press;
};

constexpr std::array<KeyRow, 12> keyRows{{{Qt::Key_Return, Qt::NoModifier, '='},
                                          {Qt::Key_Enter, Qt::KeypadModifier, '='},
                                          {Qt::Key_Enter, Qt::NoModifier, '='},
                                          {Qt::Key_Escape, Qt::NoModifier, 'c'},
                                          {Qt::Key_Backspace, Qt::NoModifier, 'b'},
                                          {Qt::Key_Delete, Qt::NoModifier, 'e'},
                                          {Qt::Key_Delete, Qt::KeypadModifier, '.'},
                                          {Qt::Key_F9, Qt::NoModifier, 'n'},
                                          {Qt::Key_L, Qt::ControlModifier, 'L'},
                                          {Qt::Key_R, Qt::ControlModifier, 'R'},
                                          {Qt::Key_P, Qt::ControlModifier, 'P'},
                                          {Qt::Key_Q, Qt::ControlModifier, 'M'}}};

/// The key of the calculator that a typed character stands for, also in its full-width form.
std::optional<char> keyOf(const QString& typed)
{
    const QString plain = typed.normalized(QString::NormalizationForm_KC);
    if (plain.size() != 1)
        return {};
    switch (plain[0].unicode()) {
    case u'×':
        return '*';
    case u'÷':
        return '/';
    case u'。':
    case u',':
        return '.';
    default:
        break;
    }
    const char key = plain[0].toLatin1();
    return QLatin1StringView("0123456789.+-*/=%").contains(QLatin1Char(key)) ? std::optional(key) : std::nullopt;
}

} // namespace

CalculatorWindow::CalculatorWindow()
{
    setObjectName(u"jisuan"_s);
    setWindowTitle(u"计算器"_s);
    setFocusPolicy(Qt::StrongFocus);
    auto* panel = makePanel(u"Panel"_s);
    memory_ = makeLabel(u"LabMemory"_s, u"M"_s);
    tape_ = makeLabel(u"LabTape"_s, QString());
    setLook(tape_, LabelLook::Field);
    tape_->setAlignment(Qt::AlignRight);
    display_ = makeLabel(u"LabDisplay"_s, QString());
    display_->setAlignment(Qt::AlignRight);
    style::keepWidth(display_, 300);
    style::follow(display_, [this] {
        QFont large = QApplication::font();
        large.setPointSizeF(large.pointSizeF() * 2);
        display_->setFont(large);
    });
    auto* texts = new QVBoxLayout(panel);
    auto* above = makeRow({memory_, tape_});
    above->setStretch(1, 1);
    texts->addLayout(above);
    texts->addWidget(display_);

    auto* grid = new QGridLayout;
    grid->setSpacing(style::spacing / 2);
    for (int i = 0; i < int(buttons.size()); ++i) {
        const Button& row = buttons[size_t(i)];
        QPushButton* button = makeButton(
            u"Cmd"_s, row.caption.toString(), [this, key = row.key] { press(key); }, i,
            row.key == '=' ? ButtonLook::Primary : ButtonLook::Plain);
        button->setFocusPolicy(Qt::NoFocus);
        button->setMinimumSize(56, 40);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        button->setToolTip(row.tip.toString());
        grid->addWidget(button, i / buttonsInRow, i % buttonsInRow);
    }
    auto* hint = makeLabel(u"LabHint"_s, u"Enter 得数　Esc 清除　Ctrl+C 复制得数"_s);
    setLook(hint, LabelLook::Field);

    auto* all = new QVBoxLayout(this);
    all->setSpacing(style::spacing);
    all->addWidget(panel);
    all->addLayout(grid, 1);
    all->addWidget(hint);
    showState();
}

void CalculatorWindow::press(char key)
{
    calculator_.press(key);
    showState();
}

void CalculatorWindow::copy() const
{
    if (const QString number = calculator_.number(); !number.isEmpty())
        QGuiApplication::clipboard()->setText(number);
}

void CalculatorWindow::paste()
{
    if (calculator_.enter(QGuiApplication::clipboard()->text()))
        showState();
}

void CalculatorWindow::showState()
{
    display_->setText(calculator_.display());
    tape_->setText(calculator_.tape());
    memory_->setVisible(calculator_.hasMemory());
}

bool CalculatorWindow::command(const QKeyEvent& event)
{
    for (const KeyRow& row : keyRows)
        if (row.key == event.key() && row.modifiers == event.modifiers()) {
            press(row.press);
            return true;
        }
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    const auto key = keyOf(event.text());
    if (key)
        press(*key);
    return key.has_value();
}

void CalculatorWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::Paste))
        paste();
    else if (!command(*event))
        QWidget::keyPressEvent(event);
}

} // namespace jisuan
