#pragma once

#include "platform/base/desktop.h"

#include <QStringList>

/// The real desktop. Settings stand in the user's configuration folder, one file an application, and are on disk when
/// `SaveSetting` returns. A file type is registered for the present user: in the class root of Windows, elsewhere as a
/// type of the shared MIME database with a desktop entry and an icon; a failure is not told, as the type is a
/// convenience only. Ending the process runs no closing step.
std::unique_ptr<DesktopHost> systemDesktop();

/// Program and arguments of a command line. A program's path may hold blanks without standing in quotes: the longest
/// beginning that is a file is the program.
QStringList splitCommandLine(const QString& commandLine);
