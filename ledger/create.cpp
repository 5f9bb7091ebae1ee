#include "ledger/create.h"

#include "ledger/engine.h"
#include "ledger/format.h"
#include "platform/base/text.h"

#include <QFile>

#include <sqlcipher/sqlite3.h>

void createLedger(const QString& path, const QString& schema, const QString& connect)
{
    if (QFile::exists(path))
        throw StoreError({.kind = StoreError::Kind::Other, .what = u"文件“"_s + path + u"”已经存在。"_s});
    sqlite3* database = nullptr;
    int code =
        sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (code == SQLITE_OK)
        code = applyCipher(database, passwordOf(connect));
    if (code == SQLITE_OK)
        dialect::registerFunctions(database); // indexes are on a function of ours
    for (const QByteArray& statements : {QByteArray("begin"), schema.toUtf8(), QByteArray("commit")})
        if (code == SQLITE_OK)
            code = sqlite3_exec(database, statements.constData(), nullptr, nullptr, nullptr);
    if (code == SQLITE_OK)
        code = bringUp(database);
    if (code == SQLITE_OK) {
        sqlite3_close(database);
        return;
    }
    const StoreError error = engineError(database, code, {}, true);
    sqlite3_close(database);
    QFile::remove(path);
    QFile::remove(path + u"-journal"_s);
    throw error;
}
