#pragma once

struct sqlite3;

/// What a ledger carries beside its tables, whose columns are fixed: indexes, and the number of the format in the
/// engine's `user_version`. A ledger of an earlier format lacks indexes and is brought up when a session opens it.

/// The format that this program writes.
inline constexpr int ledgerFormat = 1;

/// @param format is set; nothing else is read
/// @return the engine's result code
int readFormat(sqlite3* database, int& format);
/// Makes what a ledger of an earlier format lacks, in one step or not at all.
/// @return the engine's result code
int bringUp(sqlite3* database);
