#pragma once

#include "tools/play_script.h"
#include "tools/play_world.h"

/// What an operator does to a control. Each refuses what an operator couldn't do: the script fails there.
namespace play::acting {

/// The operator turns to the control's window: closes a pop-up menu in front of it, brings its tab forward.
/// @return whether anything changed, so that the program must come to rest first
bool turnTo(const world::Found& found, const QString& name);
/// Fails unless the window isn't blocked and the control is visible and enabled.
void needReachable(const world::Found& found, const QString& name);

void focus(const world::Found& found);
void needFocus(const world::Found& found, const QString& name);
void selectAllAndType(const world::Found& found, const QString& text);
/// To the next control in the tab order.
void leave(const world::Found& found);

void click(const world::Found& found, const QString& name);
void doubleClick(const world::Found& found, const QString& name, std::optional<int> row);
void clickCell(const world::Found& found, const QString& name, int row, int column);
void choose(const world::Found& found, const QString& name, const QString& text);
void setDate(const world::Found& found, const QString& name, const QString& date);
void selectTab(const world::Found& found, const QString& name, int index);
void selectRow(const world::Found& found, const QString& name, int row);
void closeWindow(QWidget* form);

} // namespace play::acting
