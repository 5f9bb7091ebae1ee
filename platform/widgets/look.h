#pragma once

#include "platform/base/text.h"
#include "platform/widgets/style.h"

#include <array>

/// The look that the user of this machine has chosen. It stands in the settings of the desktop, not in a ledger: it is
/// there before any ledger is open, and eyes and screen are the user's.

struct FontSize
{
    QStringView name;
    double points;
};

inline constexpr std::array<FontSize, 5> fontSizes = {
    {{u"小", 9.0}, {u"标准", style::standardPoints}, {u"较大", 10.5}, {u"大", 12.0}, {u"特大", 14.0}}};

/// As it was kept; what can't be understood counts as never chosen.
style::Look keptLook();
/// Applies it to everything that is open, and keeps it for the next start.
void changeLook(const style::Look& look);
/// The index in `fontSizes` of the present size.
int presentFontSize();
/// From here on Ctrl+Plus and Ctrl+Minus choose the next font size in every window, Ctrl+0 the standard one.
void listenForFontKeys();
/// But not in that window, where they enlarge something else: the page of a print preview.
void keepFontKeys(QWidget* window);
