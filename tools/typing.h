#pragma once

#include "platform/base/text.h"

class QWidget;

/// Types a text key by key into whatever has the focus, Chinese included. A line break is Enter, a tab is Tab.
void typeText(const QString& text);
/// The same into that widget, wherever the focus is.
void typeText(QWidget* widget, const QString& text);
/// One key as the window system brings it, so that menus, shortcuts and pop-ups see it first.
void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {});
