#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

#include <functional>

class QApplication;
class QWidget;

/// The one visual language: Fusion with a palette and a stylesheet made from one table of colours, light and dark. No
/// other file names a colour.
namespace style {

enum class Role {
    Window,
    Panel,
    Field,
    GridBase,
    GridAlternate,
    Text,
    MutedText,
    Lines,
    HeaderGround,
    HeaderText,
    MenuGround,
    MenuText,
    MenuHot,
    Accent,
    AccentText,
    SelectedRow,
    SelectedText,
    ReadOnly,
    Good,
    GoodGround,
    Warning,
    WarningGround,
    Negative,
    ChartIn,
    ChartOut,
    ChartBalance
};

inline constexpr double standardPoints = 9.75;

enum class Scheme { FollowSystem, Light, Dark };

/// What an operator may choose of the look.
struct Look
{
    Scheme scheme = Scheme::FollowSystem;
    double points = standardPoints; ///< of the font; all measures follow it

    bool operator==(const Look&) const = default;
};

/// Sets style, palette, font, icon, stylesheet and the toolkit's Chinese texts (where they are installed) for the whole
/// application. May be called again with another look: what is open changes at once. HCN_LOOK=light or dark in the
/// environment has the say over the scheme.
void apply(QApplication& application, const Look& look = {});
/// The look applied last.
const Look& look();
bool dark();
QColor color(Role role);
/// The light one, also where the program looks dark: for pictures that go on paper or into other programs.
QColor paperColor(Role role);
/// The program's icon, painted in code.
QIcon icon();
/// Removes the pictures that the stylesheet uses; for an end of the process that runs no destructor.
void removeFiles();

/// A measure for the standard font, in pixels, as it is for the present one.
int scaled(int pixels);
/// The way back: a width on the screen as it is for the standard font.
int unscaled(int pixels);
inline int rowHeight()
{
    return scaled(24);
}
inline int headerHeight()
{
    return scaled(26);
}
inline constexpr int spacing = 8; ///< the one step of the spacing scale

/// Runs `dress` now and after each change of the look, for what neither palette nor stylesheet reaches: measures and
/// colours that a widget was given. It ends with the owner.
void follow(QObject* owner, std::function<void()> dress);
/// `setFixedWidth` and `setMinimumWidth`, for the standard font; they follow it.
void fixWidth(QWidget* widget, int pixels);
void keepWidth(QWidget* widget, int least);

} // namespace style
