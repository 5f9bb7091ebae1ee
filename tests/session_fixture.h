#pragma once

#include "ledger/Module1.h"
#include "ledger_fixture.h"
#include "platform/base/clock.h"
#include "platform/base/files.h"
#include "platform/widgets/form.h"

/// "001" at work in that ledger, on the morning of 18 November 2004, as after a login.
inline void beginSession(const LedgerFixture& ledger, const QString& operatorName = u"管理员"_s)
{
    setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
    resetSession();
    gDB = ledger.open();
    gLedgerFile = ledger.path();
    gAppPath = withSeparator(ledger.folder());
    gLedgerName = u"五金帐本"_s;
    gOperId = u"001"_s;
    gOperName = operatorName;
    gRights.set();
    gCanSeeCost = true;
    LoadSettings();
    LoadYearStart();
}

/// Closes all forms, entries that are open included, and the ledger.
inline void endSession()
{
    for (Form* form : QList<Form*>(Form::all())) {
        form->setProperty("Edstu", 0);
        form->Unload();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    resetSession();
}
