#pragma once

#include "platform/base/text.h"

/// The program's file name on this platform, without its folder.
QString programFileName();

/// Where the ledgers, the list and the other files beside the program lie; before `runEntry`.
void setProgramFolder(const QString& folder);

/// Puts a command line back together from its arguments: one that holds a blank stands in quotes.
QString commandLineOf(const QStringList& arguments);
/// The ledger that a command line names: the text between quotes, or up to the first blank; "" for none. A path with a
/// blank in it must therefore be quoted. An opening quote without a closing one counts as no command line.
QString ledgerOf(const QString& commandLine);

/// The entry procedure: fills the session globals, opens a ledger, shows the main window and the login, offers a tip
/// and the stock alarms. Runs inside the message loop; returns when the operator can begin.
void runEntry(const QString& commandLine);

/// Tells the desktop that ledger files belong to this program; done at each orderly exit, never checked.
void RegisterFileType();

/// The manual: its first page, or the chapter of a form.
void openManual(const QString& form = {});
