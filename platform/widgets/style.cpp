#include "platform/widgets/style.h"

#include "platform/base/text.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QRegularExpression>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTranslator>
#include <QWidget>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace style {

namespace {

struct Shade
{
    Role role;
    QStringView name; ///< in the stylesheet, behind an "@"
    QRgb light;
    QRgb dark;
};

// clang-format off
constexpr auto shades = std::to_array<Shade>({
    {Role::Window,        u"window",        0xffeef1f5, 0xff23282e},
    {Role::Panel,         u"panel",         0xfff8fafc, 0xff2a3037},
    {Role::Field,         u"field",         0xffffffff, 0xff1a1e22},
    {Role::GridBase,      u"gridBase",      0xffffffff, 0xff1d2126},
    {Role::GridAlternate, u"gridAlternate", 0xfff4f7fb, 0xff22272d},
    {Role::Text,          u"text",          0xff1c2733, 0xffdde3e9},
    {Role::MutedText,     u"mutedText",     0xff5d6b7a, 0xff93a0ad},
    {Role::Lines,         u"lines",         0xffc3ccd6, 0xff414b56},
    {Role::HeaderGround,  u"headerGround",  0xffe3e9f0, 0xff2f3740},
    {Role::HeaderText,    u"headerText",    0xff2a3a4a, 0xffc9d3dd},
    {Role::MenuGround,    u"menuGround",    0xff22466b, 0xff16202b},
    {Role::MenuText,      u"menuText",      0xfff2f6fa, 0xffd5dee7},
    {Role::MenuHot,       u"menuHot",       0xff31608f, 0xff2b4560},
    {Role::Accent,        u"accent",        0xff1f6fb8, 0xff3d8fd6},
    {Role::AccentText,    u"accentText",    0xffffffff, 0xffffffff},
    {Role::SelectedRow,   u"selectedRow",   0xffcfe2f5, 0xff284a6b},
    {Role::SelectedText,  u"selectedText",  0xff10263c, 0xffeef4fa},
    {Role::ReadOnly,      u"readOnly",      0xfff0f3f6, 0xff262b31},
    {Role::Good,          u"good",          0xff1d7a45, 0xff7fd3a0},
    {Role::GoodGround,    u"goodGround",    0xffddf2e5, 0xff1e3a2a},
    {Role::Warning,       u"warning",       0xffa15c00, 0xfff0bd6a},
    {Role::WarningGround, u"warningGround", 0xfffdeed3, 0xff40321a},
    {Role::Negative,      u"negative",      0xffb3261e, 0xffff8a80},
    {Role::ChartIn,       u"chartIn",       0xff2f7fc6, 0xff5aa6e6},
    {Role::ChartOut,      u"chartOut",      0xffdd8a2b, 0xffe8a252},
    {Role::ChartBalance,  u"chartBalance",  0xff2b6b4f, 0xff8fd6b0},
});
// clang-format on

static_assert(
    [] {
        for (size_t i = 0; i < shades.size(); ++i)
            if (static_cast<size_t>(shades[i].role) != i)
                return false;
        return true;
    }(),
    "row order must follow Role");

/// Behind "@" stands a colour or a picture, behind "~" a measure that follows the font.
constexpr QStringView sheet = uR"(
QToolTip { color: @text; background: @panel; border: 1px solid @lines; padding: ~3px ~6px; }

QMenuBar { background: @menuGround; color: @menuText; padding: 0; }
QMenuBar::item { background: transparent; padding: ~6px ~11px; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: @menuHot; color: @menuText; }
QMenuBar::item:disabled { color: @mutedText; }
Form > QMenuBar { background: @panel; color: @text; border-bottom: 1px solid @lines; padding: ~2px 1px; }
Form > QMenuBar::item { padding: ~5px ~12px; margin: 1px; border-radius: 3px; }
Form > QMenuBar::item:selected, Form > QMenuBar::item:pressed { background: @selectedRow; color: @selectedText; }
Form > QMenuBar::item:disabled { color: @mutedText; }
QMenu { background: @panel; color: @text; border: 1px solid @lines; padding: ~4px 0; }
QMenu::item { padding: ~5px ~28px ~5px ~22px; }
QMenu::item:selected { background: @selectedRow; color: @selectedText; }
QMenu::item:disabled { color: @mutedText; }
QMenu::separator { height: 1px; background: @lines; margin: 4px 8px; }

QStatusBar { background: @window; border-top: 1px solid @lines; }
QStatusBar::item { border: none; }
StatusPanels QLabel { padding: ~2px ~14px; }
StatusPanels QLabel:hover { background: @selectedRow; color: @selectedText; }
StatusPanels QFrame[look="line"] { background: @lines; min-width: 1px; max-width: 1px; }

QTabWidget::pane { background: @panel; border: 1px solid @lines; border-radius: 3px; top: -1px; }
QTabBar { background: transparent; }
QTabBar::tab { background: @window; color: @mutedText; border: 1px solid @lines; border-bottom: none;
    border-top-left-radius: 3px; border-top-right-radius: 3px; padding: ~5px ~14px; margin: 2px 2px 0 0; }
QTabBar::tab:hover { color: @text; }
QTabBar::tab:selected { background: @panel; color: @text; border-top: 2px solid @accent; padding: ~5px ~14px ~6px ~14px;
    margin-top: 0; }
QTabBar::close-button { image: url(@closePicture); subcontrol-position: right; margin-right: 2px; }
QTabBar::close-button:hover { image: url(@closeHotPicture); }
QMdiArea > QTabBar { background: @window; border-bottom: 1px solid @lines; }
QMdiArea > QTabBar::tab { padding: ~4px ~10px; margin-bottom: 0; }
QMdiArea > QTabBar::tab:selected { padding: ~4px ~10px ~5px ~10px; }

QLabel[look="field"] { color: @mutedText; }
QLabel[look="total"] { font-size: ~15px; font-weight: bold; }
QLabel[look="heading"] { font-size: ~17px; font-weight: bold; }
QLabel[look="good"], QLabel[look="warning"] { border-radius: 3px; }
QLabel[look="good"] { color: @good; background: @goodGround; border: 1px solid @good; }
QLabel[look="warning"] { color: @warning; background: @warningGround; border: 1px solid @warning; }
QLineEdit[look="total"] { font-size: ~15px; font-weight: bold; border: none; background: transparent; padding: 0; }
QDateEdit[look="button"] { padding: 0; min-width: 0; }
QFrame[look="panel"] { background: @panel; border: 1px solid @lines; border-radius: 3px; }
QGroupBox { border: 1px solid @lines; border-radius: 3px; margin-top: ~9px; padding-top: ~8px; }
QGroupBox::title { subcontrol-origin: margin; left: 9px; padding: 0 ~3px; color: @mutedText; }

QLineEdit, QComboBox, QDateEdit, QSpinBox, QPlainTextEdit, QTextEdit, QTextBrowser, QListView, QTreeView {
    background: @field; color: @text; border: 1px solid @lines; border-radius: 3px;
    selection-background-color: @accent; selection-color: @accentText; }
QLineEdit, QComboBox, QDateEdit, QSpinBox { padding: ~2px ~5px; min-height: ~21px; }
QDateEdit { min-width: ~88px; }
QLineEdit:focus, QComboBox:focus, QDateEdit:focus, QSpinBox:focus, QPlainTextEdit:focus, QTextEdit:focus,
    QListView:focus, QTreeView:focus { border-color: @accent; }
QLineEdit:read-only, QPlainTextEdit:read-only { background: @readOnly; }
QLineEdit:disabled, QComboBox:disabled, QDateEdit:disabled, QSpinBox:disabled, QPlainTextEdit:disabled {
    background: @readOnly; color: @mutedText; }
QComboBox { padding-right: ~18px; }
QComboBox QLineEdit, QDateEdit QLineEdit, QSpinBox QLineEdit { border: none; padding: 0; min-height: 0;
    background: transparent; }
QComboBox::drop-down, QDateEdit::drop-down { border: none; width: ~18px; subcontrol-origin: border; }
QComboBox::down-arrow, QDateEdit::down-arrow { image: url(@arrowPicture); width: ~9px; height: ~6px; }
QComboBox::down-arrow:disabled, QDateEdit::down-arrow:disabled { image: url(@arrowOffPicture); }
QComboBox QAbstractItemView { background: @field; border: 1px solid @lines; border-radius: 0; outline: none;
    selection-background-color: @selectedRow; selection-color: @selectedText; }
QListView, QTreeView { selection-background-color: @selectedRow; selection-color: @selectedText;
    alternate-background-color: @gridAlternate; }
QListView[look="conditions"] { background: @selectedRow; color: @selectedText;
    selection-background-color: @accent; selection-color: @accentText; }

QPushButton { background: @field; color: @text; border: 1px solid @lines; border-radius: 3px; padding: ~2px ~12px;
    min-height: ~21px; }
QPushButton:hover { background: @selectedRow; color: @selectedText; }
QPushButton:checked { background: @selectedRow; color: @selectedText; border-color: @accent; }
QPushButton:pressed { background: @headerGround; }
QPushButton:focus { border-color: @accent; }
QPushButton:default { border-color: @accent; }
QPushButton:disabled { background: @readOnly; color: @mutedText; }
QPushButton[look="primary"] { background: @accent; color: @accentText; border-color: @accent; }
QPushButton[look="primary"]:hover { background: @menuHot; border-color: @menuHot; color: @menuText; }
QPushButton[look="primary"]:focus { border-color: @text; }
QPushButton[look="primary"]:disabled { background: @readOnly; color: @mutedText; border-color: @lines; }
QPushButton[look="compact"] { padding: ~2px ~6px; min-width: ~16px; }

QCheckBox::indicator, QRadioButton::indicator { width: ~13px; height: ~13px; background: @field;
    border: 1px solid @mutedText; border-radius: 3px; }
QRadioButton::indicator { border-radius: ~7px; }
QCheckBox::indicator:focus, QRadioButton::indicator:focus { border-color: @accent; }
QCheckBox::indicator:checked, QRadioButton::indicator:checked { background: @accent; border-color: @accent; }
QCheckBox::indicator:checked { image: url(@tickPicture); }
QRadioButton::indicator:checked { image: url(@dotPicture); }
QCheckBox::indicator:disabled, QRadioButton::indicator:disabled { background: @readOnly; border-color: @lines; }
QCheckBox::indicator:checked:disabled, QRadioButton::indicator:checked:disabled { background: @mutedText; }

QTableView { background: @gridBase; alternate-background-color: @gridAlternate; gridline-color: @lines;
    border: 1px solid @lines; selection-background-color: @selectedRow; selection-color: @selectedText; }
QTableView QLineEdit#TxtEnter { background: @field; border: 2px solid @accent; border-radius: 0; padding: 0 3px;
    min-height: 0; }
QHeaderView { background: @window; border: none; }
QHeaderView::section { background: @headerGround; color: @headerText; border: none; padding: 0 ~5px;
    border-right: 1px solid @lines; border-bottom: 1px solid @lines; }
QTableCornerButton::section { background: @headerGround; border: none; border-right: 1px solid @lines;
    border-bottom: 1px solid @lines; }

QScrollBar:vertical { background: @window; width: 12px; margin: 0; }
QScrollBar:horizontal { background: @window; height: 12px; margin: 0; }
QScrollBar::handle { background: @lines; border-radius: 4px; margin: 2px; }
QScrollBar::handle:hover { background: @mutedText; }
QScrollBar::handle:vertical { min-height: ~28px; }
QScrollBar::handle:horizontal { min-width: ~28px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QAbstractScrollArea::corner { background: @window; border: none; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }

QProgressBar { background: @field; border: 1px solid @lines; border-radius: 3px; text-align: center; }
QProgressBar::chunk { background: @accent; }
QSplitter::handle { background: @window; }
QCalendarWidget QWidget#qt_calendar_navigationbar { background: @headerGround; }
QCalendarWidget QToolButton { color: @headerText; background: transparent; border: none; padding: ~3px ~8px; }
QCalendarWidget QToolButton:hover { background: @selectedRow; }
QCalendarWidget QToolButton::menu-indicator { image: none; }
QCalendarWidget QToolButton#qt_calendar_prevmonth { qproperty-icon: url(@previousPicture); }
QCalendarWidget QToolButton#qt_calendar_nextmonth { qproperty-icon: url(@nextPicture); }
QCalendarWidget QTableView { border: none; border-radius: 0; selection-background-color: @accent;
    selection-color: @accentText; }
)";

struct State
{
    Look look;
    bool dark = false;
    std::optional<QPalette> systemPalette;
    std::unique_ptr<QTemporaryDir> pictures;
    std::unique_ptr<QTranslator> toolkitTexts;
    std::map<QObject*, std::vector<std::function<void()>>> followers;
};

State& state()
{
    static State instance;
    return instance;
}

/// Paints a picture for the stylesheet, in the size of the font, for plain and denser screens, and gives its path. A
/// name of its own for each look: the toolkit keeps what it has read.
QString picture(const QString& name, QSize size, const std::function<void(QPainter&)>& paint)
{
    const QDir folder(state().pictures->path());
    const QString base = u"%1-%2%3"_s.arg(name).arg(scaled(100)).arg(state().dark ? u"-dark"_s : QString());
    const QSize shown(scaled(size.width()), scaled(size.height()));
    for (const int ratio : {1, 2, 3}) {
        QPixmap pixmap(shown * ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(double(shown.width()) * ratio / size.width(), double(shown.height()) * ratio / size.height());
        paint(painter);
        painter.end();
        pixmap.save(folder.filePath(base + (ratio == 1 ? u".png"_s : u"@%1x.png"_s.arg(ratio))));
    }
    return folder.filePath(base + u".png"_s);
}

QString arrowPicture(const QString& name, Role role)
{
    return picture(name, {9, 6}, [role](QPainter& painter) {
        painter.setPen(QPen(color(role), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{{1, 1}, {4.5, 4.5}, {8, 1}});
    });
}

QString sidewaysPicture(const QString& name, bool left)
{
    return picture(name, {16, 16}, [left](QPainter& painter) {
        painter.setPen(QPen(color(Role::HeaderText), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(left ? QPolygonF{{10, 3.5}, {5.5, 8}, {10, 12.5}}
                                  : QPolygonF{{6, 3.5}, {10.5, 8}, {6, 12.5}});
    });
}

QString tickPicture()
{
    return picture(u"tick"_s, {13, 13}, [](QPainter& painter) {
        painter.setPen(QPen(color(Role::AccentText), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{{3, 6.5}, {5.5, 9.5}, {10, 3.5}});
    });
}

QString dotPicture()
{
    return picture(u"dot"_s, {13, 13}, [](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color(Role::AccentText));
        painter.drawEllipse(QPointF(6.5, 6.5), 2.5, 2.5);
    });
}

QString closePicture(const QString& name, Role role, bool hot)
{
    return picture(name, {16, 16}, [role, hot](QPainter& painter) {
        if (hot) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(color(Role::Lines));
            painter.drawRoundedRect(QRectF(0, 0, 16, 16), 3, 3);
        }
        painter.setPen(QPen(color(role), 1.4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
        painter.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
    });
}

QPalette makePalette()
{
    QPalette palette;
    const auto set = [&](QPalette::ColorRole target, Role role) { palette.setColor(target, color(role)); };
    set(QPalette::Window, Role::Window);
    set(QPalette::WindowText, Role::Text);
    set(QPalette::Base, Role::Field);
    set(QPalette::AlternateBase, Role::GridAlternate);
    set(QPalette::Text, Role::Text);
    set(QPalette::Button, Role::Panel);
    set(QPalette::ButtonText, Role::Text);
    set(QPalette::BrightText, Role::Negative);
    set(QPalette::Highlight, Role::Accent);
    set(QPalette::HighlightedText, Role::AccentText);
    set(QPalette::ToolTipBase, Role::Panel);
    set(QPalette::ToolTipText, Role::Text);
    set(QPalette::PlaceholderText, Role::MutedText);
    set(QPalette::Link, Role::Accent);
    set(QPalette::Light, Role::Field);
    set(QPalette::Midlight, Role::Panel);
    set(QPalette::Mid, Role::Lines);
    set(QPalette::Dark, Role::MutedText);
    for (const auto target : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, target, color(Role::MutedText));
    palette.setColor(QPalette::Disabled, QPalette::Base, color(Role::ReadOnly));
    return palette;
}

QString makeSheet()
{
    if (!state().pictures)
        state().pictures = std::make_unique<QTemporaryDir>();
    QList<std::pair<QString, QString>> names = {
        {u"arrowPicture"_s, arrowPicture(u"arrow"_s, Role::MutedText)},
        {u"arrowOffPicture"_s, arrowPicture(u"arrow-off"_s, Role::Lines)},
        {u"previousPicture"_s, sidewaysPicture(u"previous"_s, true)},
        {u"nextPicture"_s, sidewaysPicture(u"next"_s, false)},
        {u"tickPicture"_s, tickPicture()},
        {u"dotPicture"_s, dotPicture()},
        {u"closePicture"_s, closePicture(u"close"_s, Role::MutedText, false)},
        {u"closeHotPicture"_s, closePicture(u"close-hot"_s, Role::Negative, true)},
    };
    for (const Shade& shade : shades)
        names.append({shade.name.toString(), color(shade.role).name()});
    // Longest first, so that no name is replaced inside a longer one.
    std::ranges::sort(names, std::ranges::greater(), [](const auto& name) { return name.first.size(); });
    QString result = sheet.toString();
    // Before a path comes in, which may have such a sign.
    static const QRegularExpression measure(u"~(\\d+)"_s);
    for (auto found = measure.match(result); found.hasMatch(); found = measure.match(result, found.capturedStart()))
        result.replace(found.capturedStart(), found.capturedLength(),
                       QString::number(scaled(found.captured(1).toInt())));
    for (const auto& [name, value] : names)
        result.replace(u'@' + name, value);
    return result;
}

} // namespace

bool dark()
{
    return state().dark;
}

QColor color(Role role)
{
    const Shade& shade = shades[static_cast<size_t>(role)];
    return QColor::fromRgb(state().dark ? shade.dark : shade.light);
}

QColor paperColor(Role role)
{
    return QColor::fromRgb(shades[static_cast<size_t>(role)].light);
}

QIcon icon()
{
    // A carton, seen from the front: the goods that the program counts.
    constexpr QRgb carton = 0xfff0a63a, tape = 0xffd9822b, outline = 0xff7a4510;
    QIcon result;
    for (const int size : {16, 32, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        painter.setPen(QPen(QColor(outline), 1));
        painter.setBrush(QColor(carton));
        painter.drawRoundedRect(QRectF(1.5, 6.5, 13, 7), 1, 1);
        painter.setBrush(QColor(tape));
        painter.drawRoundedRect(QRectF(1.5, 3.5, 13, 4), 1.5, 1.5);
        painter.setBrush(QColor(carton));
        painter.drawRect(QRectF(6.5, 6.5, 3, 3));
        painter.end();
        result.addPixmap(pixmap);
    }
    return result;
}

const Look& look()
{
    return state().look;
}

int scaled(int pixels)
{
    return qRound(pixels * state().look.points / standardPoints);
}

int unscaled(int pixels)
{
    return qRound(pixels * standardPoints / state().look.points);
}

void follow(QObject* owner, std::function<void()> dress)
{
    dress();
    auto& followers = state().followers;
    if (!followers.contains(owner))
        QObject::connect(owner, &QObject::destroyed, [owner] { state().followers.erase(owner); });
    followers[owner].push_back(std::move(dress));
}

void fixWidth(QWidget* widget, int pixels)
{
    follow(widget, [widget, pixels] { widget->setFixedWidth(scaled(pixels)); });
}

void keepWidth(QWidget* widget, int least)
{
    follow(widget, [widget, least] { widget->setMinimumWidth(scaled(least)); });
}

void apply(QApplication& application, const Look& look)
{
    State& current = state();
    if (!current.systemPalette)
        current.systemPalette = QApplication::palette();
    current.look = look;
    constexpr int middle = 128;
    Scheme scheme = look.scheme;
    if (const QString forced = qEnvironmentVariable("HCN_LOOK"); !forced.isEmpty())
        scheme = forced == u"dark" ? Scheme::Dark : Scheme::Light;
    current.dark = scheme == Scheme::Dark || (scheme == Scheme::FollowSystem &&
                                              current.systemPalette->color(QPalette::Window).lightness() < middle);

    // Anew each time: with the style kept, the toolkit (6.4) reaches for widgets that are gone when it takes a new
    // sheet.
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication::setPalette(makePalette());
    QFont font;
    font.setFamilies({u"Noto Sans CJK SC"_s, u"Noto Sans SC"_s, u"Microsoft YaHei UI"_s, u"Microsoft YaHei"_s,
                      u"Source Han Sans SC"_s, u"PingFang SC"_s, u"WenQuanYi Micro Hei"_s, u"SimSun"_s});
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(look.points);
    QApplication::setFont(font);
    QApplication::setWindowIcon(icon());
    application.setStyleSheet(makeSheet());

    if (!current.toolkitTexts) {
        current.toolkitTexts = std::make_unique<QTranslator>();
        const QString name = u"qtbase_zh_CN"_s;
        if (current.toolkitTexts->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath)) ||
            current.toolkitTexts->load(name, QCoreApplication::applicationDirPath() + u"/translations"_s))
            QCoreApplication::installTranslator(current.toolkitTexts.get());
    }
    const auto followers = current.followers; // dressing may make widgets that follow, or end some
    for (const auto& [owner, dresses] : followers)
        if (current.followers.contains(owner))
            for (const auto& dress : dresses)
                dress();
}

void removeFiles()
{
    state().pictures.reset();
}

} // namespace style
