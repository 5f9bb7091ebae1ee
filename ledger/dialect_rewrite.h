#pragma once

#include "ledger/dialect_tree.h"

namespace dialect {

/// The rewrites, each of which keeps the rows of a statement. Only a test that compares the rows leaves one out.
struct Rewrites
{
    bool leftDeepJoins = true; ///< A left join (B left join C) becomes (A left join B) left join C
    bool innerJoins = true;    ///< a left join becomes an inner one where its Null row is rejected anyway
    bool dayTests = true;      ///< datediff of a constant and a day column becomes a test on the column's index
    bool patternRanges = true; ///< a pattern's beginning bounds an index
};

/// Also marks the sort keys that go by time, which is no matter of cost.
void rewrite(Statement& statement, const Rewrites& rewrites);

/// `translate` with a choice of rewrites.
Translation translate(QStringView statement, const Rewrites& rewrites);

} // namespace dialect
