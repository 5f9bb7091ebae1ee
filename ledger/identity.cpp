#include "ledger/identity.h"

#include "ledger/engine.h"
#include "ledger/store.h"
#include "platform/base/text.h"

#include <QRandomGenerator>

QString ledgerIdentity(Database& db)
{
    try {
        LedgerConnection& ledger = db.connection();
        const auto stored = [&ledger] { return ledger.selectOwn(u"pragma application_id"_s).value(0, 0).text(); };
        if (const QString known = stored(); known != u"0")
            return known;
        const qint32 fresh = qint32(QRandomGenerator::system()->bounded(1, 0x7fffffff));
        ledger.selectOwn(u"pragma application_id = "_s + QString::number(fresh));
        return stored();
    } catch (const StoreError&) { // another session writes just now
        return {};
    }
}
