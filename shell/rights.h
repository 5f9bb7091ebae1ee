#pragma once

#include <QString>

/// The main window's caption while nobody is logged in; a login adds the company.
QString mainCaption();

/// Reads company and rights of the operator in `gOperId` and sets the main menu from them; forms that are open follow.
/// @throws StoreError: then call `logOut`
void ApplyRights();

/// Reads the company's data anew and shows its name in the main window's caption.
/// @throws StoreError
void showCompany();

/// The background as the operator wants it: own picture, and over it the own big caption or the company's name.
/// Decoration only: neither a failed look-up nor an unreadable picture is told.
void dressBackground();

/// Nobody is logged in: every gated menu is disabled, as before the first login.
void logOut();
