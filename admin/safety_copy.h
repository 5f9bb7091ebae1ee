#pragma once

#include <QString>

/// Before a command that can't be undone: copies the ledger as it stands into "数据备份/操作前备份", while other
/// sessions may go on working. The copy is checked, and named after the ledger, the moment and the command. The newest
/// ten of each ledger are kept. Call it behind the operator's last Yes and before the first change; no write run may be
/// open.
/// @param command what the name tells, such as "恢复" or "结转"
/// @param inUse   a file that the command is going to read, and which is kept however old it is
/// @return whether to go on: also when there is no copy, if the operator was told why and wants to all the same
bool safetyCopy(QStringView command, const QString& inUse = {});
