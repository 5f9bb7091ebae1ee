#pragma once

#include <QString>

/// The main window's caption while nobody is logged in; a login adds the company.
QString mainCaption();

/// Reads company and rights of the operator in `gOperId` and sets the main menu from them; forms that are open follow.
/// @throws StoreError: then call `logOut`
void ApplyRights();

/// Nobody is logged in: every gated menu is disabled, as before the first login.
void logOut();
