#include "ledger/change_mark.h"

#include "ledger/engine.h"
#include "ledger/store.h"

using namespace Qt::StringLiterals;

ChangeMark changeMark(Database& db)
{
    LedgerConnection& connection = db.connection();
    const auto number = [&](const QString& statement) {
        return qint64(connection.selectOwn(statement).value(0, 0).number());
    };
    const qint64 others = number(u"pragma data_version"_s);
    return {connection.handle(), connection.serial(), others, number(u"select total_changes()"_s)};
}
