#pragma once

#include "ledger/dialect_tree.h"

namespace dialect {

/// Reads one whole statement. @throws StoreError (Statement) with the place of what can't be read, also for anything
/// that follows the statement
Statement parse(QStringView statement);

} // namespace dialect
