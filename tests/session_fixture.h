#pragma once

#include "ledger_fixture.h"
#include "tools/headless.h"

/// "001" at work in that ledger, on the morning of 18 November 2004, as after a login.
inline void beginSession(const LedgerFixture& ledger, const QString& operatorName = u"管理员"_s)
{
    headless::beginSession(ledger.path());
    gLedgerName = u"五金帐本"_s;
    gOperName = operatorName;
}

using headless::endSession;
