#pragma once

#include "platform/base/desktop.h"

#include <QStringList>

#include <optional>

/// The real desktop. Settings stand in the user's configuration folder, one file an application, and are on disk when
/// `SaveSetting` returns. A file type is registered for the present user: in the class root of Windows, elsewhere as a
/// type of the shared MIME database with a desktop entry and an icon; a failure is not told, as the type is a
/// convenience only. A page or program that can't be opened is told in a box. The manual is read in the program's own
/// window (see `manualOf`). Ending the process runs no closing step.
std::unique_ptr<DesktopHost> systemDesktop();

/// Program and arguments of a command line. A program's path may hold blanks without standing in quotes: the longest
/// beginning that is a file is the program.
QStringList splitCommandLine(const QString& commandLine);

struct ManualTarget
{
    QString folder;  ///< of the manual's pages
    QString chapter; ///< "" for the first page
};

/// What a call of the help viewer asks for, "hh.exe C:\folder\book.chm" or "hh.exe C:\folder\book.chm::/B1.htm": the
/// pages of a book stand in the folder named as the book. Nothing for any other command line.
std::optional<ManualTarget> manualOf(const QString& commandLine);
