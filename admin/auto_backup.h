#pragma once

/// The backup at the end of the program: when the ledger's settings ask for one and it is due, the ledger is closed and
/// compacted into the backup folder under today's name; the backup before it is kept under another name. The ledger
/// stays closed, since the program is ending. A failure is told and ends nothing else.
void AutoBackup();
