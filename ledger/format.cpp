#include "ledger/format.h"

#include <QByteArray>

#include <sqlcipher/sqlite3.h>

namespace {

constexpr const char* indexes[] = {
    "TA1_F1 on TA1 (F1)",
    "TA2_F1 on TA2 (F1)",
    "TA3_F1 on TA3 (F1)",
    "TA4_F1 on TA4 (F1)",
    "TB1_F1 on TB1 (F1)",
    "TB3_F1 on TB3 (F1)",
    "TD1_F1 on TD1 (F1)",
    "TD3_F1 on TD3 (F1)",
    "TC2_F1 on TC2 (F1)",
    "TB1_day on TB1 (dayno(F2))",
    "TB3_day on TB3 (dayno(F2))",
    "TD1_day on TD1 (dayno(F2))",
    "TD3_day on TD3 (dayno(F2))",
    "TC2_day on TC2 (dayno(F2))",
    "TB11_F0 on TB11 (F0)",
    "TB31_F0 on TB31 (F0)",
    "TD11_F0 on TD11 (F0)",
    "TD31_F0 on TD31 (F0)",
    "TC21_F0 on TC21 (F0)",
    "TC21_F1 on TC21 (F1)",
    "TB11_goods on TB11 (F1, F0, F6, F7)", // these answer the sums of a goods item by themselves
    "TB31_goods on TB31 (F1, F0, F6, F7)",
    "TD11_goods on TD11 (F1, F0, F6, F7)",
    "TD31_goods on TD31 (F1, F0, F6, F7)",
    "DanNo_DanF1 on DanNo (DanF1)",
    "jxc_goods on jxc (Hpbm, SortNo)",
    "jxc_period on jxc (SortNo, Bdate, Edate)",
};

int run(sqlite3* database, const QByteArray& statement)
{
    return sqlite3_exec(database, statement.constData(), nullptr, nullptr, nullptr);
}

} // namespace

int readFormat(sqlite3* database, int& format)
{
    const auto take = [](void* to, int, char** values, char**) {
        *static_cast<int*>(to) = QByteArray(values[0]).toInt();
        return 0;
    };
    return sqlite3_exec(database, "pragma user_version", take, &format, nullptr);
}

int bringUp(sqlite3* database)
{
    int code = run(database, "begin immediate");
    if (code != SQLITE_OK)
        return code;
    for (const char* index : indexes) {
        code = run(database, QByteArray("create index if not exists ") + index);
        // A table or column isn't there: the command that needs it tells so, and can't be helped by an index.
        if (code == SQLITE_ERROR)
            code = SQLITE_OK;
        if (code != SQLITE_OK)
            break;
    }
    if (code == SQLITE_OK)
        code = run(database, "pragma user_version = " + QByteArray::number(ledgerFormat));
    if (code == SQLITE_OK)
        code = run(database, "commit");
    if (code != SQLITE_OK && !sqlite3_get_autocommit(database))
        run(database, "rollback");
    return code;
}
