#pragma once

#include <QString>

/// The folder that the program works in: ledgers, their list, backups, layouts, tips.
struct ProgramFolder
{
    QString path;
    QString trouble; ///< why it can't be worked in, for the operator; "" for none
};

/// The executable's own folder; or, where the program was installed for all users of the machine (its parts lie in
/// share/ beside lib/), a folder of the user's own, made at the first start and renewed at each.
/// @param executables the folder that the executable lies in
ProgramFolder programFolder(const QString& executables);

/// Makes or renews a program folder from installed parts. A file comes when it is missing and is renewed while nobody
/// has changed it; ledgers come only when they are missing. Programs and the manual are linked.
/// @return what went wrong, for the operator; "" for nothing
QString renewProgramFolder(const QString& parts, const QString& executables, const QString& folder);
