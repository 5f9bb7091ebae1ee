#pragma once

#include "ledger/dialect_tree.h"

namespace dialect {

/// Writes a tree in SQLite's words.
Translation emitSqlite(const Statement& statement);

} // namespace dialect
