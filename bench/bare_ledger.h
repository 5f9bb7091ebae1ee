#pragma once

#include "ledger/dialect.h"
#include "ledger/engine.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <QByteArray>
#include <QHash>

#include <benchmark/benchmark.h>
#include <cstring>
#include <functional>
#include <map>
#include <sqlcipher/sqlite3.h>
#include <variant>
#include <vector>

/// A statement as the engine was given it, with the values of its parameters.
struct BareStatement
{
    using Parameter = std::variant<std::monostate, qint64, double, QByteArray>;
    QByteArray sql;
    std::vector<Parameter> parameters;
};

/// A ledger through the engine's C interface and with the store's settings: what the store is compared with. Each
/// statement is prepared once and kept.
class BareLedger
{
public:
    explicit BareLedger(const QString& path)
    {
        check(sqlite3_open_v2(path.toUtf8().constData(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                              nullptr));
        check(applyCipher(database_, passwordOf(ledgerConnect.toString())));
        dialect::registerFunctions(database_);
        for (const char* pragma : {"cache_size = -64000", "cache_spill = off", "secure_delete = off",
                                   "synchronous = extra", "journal_mode = delete"})
            run(QByteArray("pragma ") + pragma);
    }
    ~BareLedger()
    {
        for (const auto& [sql, statement] : statements_)
            sqlite3_finalize(statement);
        sqlite3_close(database_);
    }
    BareLedger(const BareLedger&) = delete;
    BareLedger& operator=(const BareLedger&) = delete;

    sqlite3_stmt* prepared(const QByteArray& sql)
    {
        sqlite3_stmt*& statement = statements_[sql];
        if (!statement)
            check(sqlite3_prepare_v2(database_, sql.constData(), int(sql.size()), &statement, nullptr));
        return statement;
    }
    void run(const QByteArray& sql) { check(sqlite3_exec(database_, sql.constData(), nullptr, nullptr, nullptr)); }
    /// Runs a statement to its end and looks at each value of its rows.
    void run(const BareStatement& what)
    {
        sqlite3_stmt* statement = prepared(what.sql);
        int place = 0;
        for (const BareStatement::Parameter& parameter : what.parameters) {
            ++place;
            if (const auto* text = std::get_if<QByteArray>(&parameter))
                sqlite3_bind_text(statement, place, text->constData(), int(text->size()), SQLITE_STATIC);
            else if (const auto* whole = std::get_if<qint64>(&parameter))
                sqlite3_bind_int64(statement, place, *whole);
            else if (const auto* number = std::get_if<double>(&parameter))
                sqlite3_bind_double(statement, place, *number);
            else
                sqlite3_bind_null(statement, place);
        }
        int code = SQLITE_OK;
        while ((code = sqlite3_step(statement)) == SQLITE_ROW)
            for (int column = 0; column < sqlite3_column_count(statement); ++column)
                if (sqlite3_column_type(statement, column) == SQLITE_TEXT)
                    benchmark::DoNotOptimize(sqlite3_column_bytes(statement, column));
                else
                    benchmark::DoNotOptimize(sqlite3_column_double(statement, column));
        if (code != SQLITE_DONE)
            check(code);
        sqlite3_reset(statement);
    }
    void run(const std::vector<BareStatement>& statements)
    {
        for (const BareStatement& statement : statements)
            run(statement);
    }

private:
    void check(int code)
    {
        if (code != SQLITE_OK)
            qFatal("the bare ledger: %s", sqlite3_errmsg(database_));
    }

    sqlite3* database_ = nullptr;
    std::map<QByteArray, sqlite3_stmt*> statements_;
};

/// What a command asks of the engine: the statements as translated, with their values, in order.
class Recording
{
public:
    Recording(sqlite3* database, const std::function<void()>& command)
    {
        sqlite3_trace_v2(
            database, SQLITE_TRACE_STMT,
            [](unsigned, void* to, void* statement, void*) {
                static_cast<Recording*>(to)->add(static_cast<sqlite3_stmt*>(statement));
                return 0;
            },
            this);
        command();
        sqlite3_trace_v2(database, 0, nullptr, nullptr);
    }

    /// Leaves out the reads that a recordset makes of its own row: whoever writes against the engine reads a row once.
    Recording& withoutRereading()
    {
        std::erase_if(statements, [](const BareStatement& one) { return one.sql.startsWith("select rowid, *"); });
        return *this;
    }
    /// The same for another document: each parameter that is `was` becomes `is`. Returns how many did.
    int renumber(const QByteArray& was, const QByteArray& is)
    {
        int count = 0;
        for (BareStatement& statement : statements)
            for (BareStatement::Parameter& parameter : statement.parameters)
                if (const auto* text = std::get_if<QByteArray>(&parameter); text && *text == was) {
                    parameter = is;
                    ++count;
                }
        return count;
    }

    std::vector<BareStatement> statements;

private:
    void add(sqlite3_stmt* statement)
    {
        BareStatement& added = statements.emplace_back();
        added.sql = sqlite3_sql(statement);
        added.parameters.resize(size_t(sqlite3_bind_parameter_count(statement)));
        char* expanded = sqlite3_expanded_sql(statement);
        readParameters(added, expanded);
        sqlite3_free(expanded);
    }

    /// The engine doesn't tell what a statement is bound to, but writes it into the text; both are read side by side.
    static void readParameters(BareStatement& into, const char* expanded)
    {
        const QByteArray& sql = into.sql;
        for (qsizetype at = 0; at < sql.size();) {
            if (sql[at] == '\'') { // a text in the statement itself
                do
                    ++at, ++expanded;
                while (sql[at] != '\'');
            } else if (sql[at] == '?') {
                qsizetype place = 0;
                for (++at; at < sql.size() && sql[at] >= '0' && sql[at] <= '9'; ++at)
                    place = place * 10 + (sql[at] - '0');
                into.parameters[size_t(place) - 1] = readValue(expanded);
                continue;
            }
            ++at, ++expanded;
        }
        if (*expanded)
            qFatal("can't read the values of %s", sql.constData());
    }

    static BareStatement::Parameter readValue(const char*& from)
    {
        if (*from == '\'') {
            QByteArray text;
            for (++from; *from != '\'' || from[1] == '\''; ++from) {
                if (*from == '\'')
                    ++from;
                text += *from;
            }
            ++from;
            return text;
        }
        const char* start = from;
        while (*from && !std::strchr(" ,)", *from))
            ++from;
        const QByteArray word(start, from - start);
        if (word == "NULL")
            return {};
        bool whole = false;
        const qint64 number = word.toLongLong(&whole);
        if (whole)
            return number;
        return word.toDouble();
    }
};
