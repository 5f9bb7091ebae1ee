#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QApplication;

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

enum class Scheme { FollowSystem, Light, Dark };

/// Sets style, palette, font, icon, stylesheet and the toolkit's Chinese texts (where they are installed) for the whole
/// application. May be called again with another scheme. Where it follows the system, HCN_LOOK=light or dark in the
/// environment has the say.
void apply(QApplication& application, Scheme scheme = Scheme::FollowSystem);
bool dark();
QColor color(Role role);
/// The light one, also where the program looks dark: for pictures that go on paper or into other programs.
QColor paperColor(Role role);
/// The program's icon, painted in code.
QIcon icon();
/// Removes the pictures that the stylesheet uses; for an end of the process that runs no destructor.
void removeFiles();

inline constexpr int rowHeight = 24;
inline constexpr int headerHeight = 26;
inline constexpr int spacing = 8; ///< the one step of the spacing scale
inline constexpr int fieldHeight = 27;

} // namespace style
