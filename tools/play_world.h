#pragma once

#include "platform/base/text.h"

#include <QAction>
#include <QPointer>
#include <QWidget>

#include <optional>

/// The running program as a script sees it: windows and controls by their names, and what they show.
namespace play::world {

/// A control, or a window when a form alone was named.
struct Found
{
    QWidget* form = nullptr;
    QWidget* widget = nullptr; ///< the form itself when it alone was named
    QAction* action = nullptr;

    explicit operator bool() const { return widget || action; }
};

/// The program has ended: none of its windows is there any more.
void setEnded();

/// By `FORM`, `FORM.CONTROL` or `FORM#1.CONTROL`. Names are met exactly if possible, else without regard to case.
Found find(const QString& name);
/// The part of a name that isn't there, for the telling: "no form B1", "no control Txt(9) in B1".
QString missing(const QString& name);

/// A window that the operator can see or bring forward: shown, or a tab of the area.
bool showing(const QWidget* form);
/// Shown in its form, which may stand behind others. A menu item: its own state.
bool visible(const Found& found);
bool enabled(const Found& found);
bool focused(const Found& found);
/// Ticked, checked, chosen; nothing for what can't be.
std::optional<bool> on(const Found& found);
/// What it says: text, label, caption with its letter, current item or tab. Nothing for what has no text.
std::optional<QString> text(const Found& found);
/// A password: what stands in it is told nobody.
bool secret(const QWidget* widget);
/// The items of a combo box or list; nothing for anything else.
std::optional<QStringList> items(const Found& found);

/// The menus that an item stands in, innermost first.
QList<QMenu*> menusAbove(const QAction* action);
/// The modal window that keeps the operator from that one, or null.
QWidget* blockerOf(const QWidget* window);
/// The main window, or the modal one in front of it; null when the program shows none.
QWidget* windowInFront();
/// How a window is called in a message.
QString nameOf(const QWidget* window);

} // namespace play::world
