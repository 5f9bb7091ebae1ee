#pragma once

#include "ledger/store_error.h"
#include "platform/base/value.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <string_view>

class LedgerConnection;
struct sqlite3_stmt;

enum class RecordsetType { Dynaset = 2, Snapshot = 4 };

/// The rows of a statement or table. A snapshot is copied out before it is returned: no lock outlives the call. A
/// dynaset is made of a bare table name; it reads nothing until `FindFirst`, which is one keyed look-up, and `Update`
/// writes that one row.
class Recordset
{
public:
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    bool isEOF() const; ///< EOF and BOF of the old interface; the plain names are macros of the C library
    bool isBOF() const;
    /// Rows read so far; complete after `MoveLast` (a snapshot always knows them all).
    qsizetype RecordCount() const;
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void Close();

    qsizetype fieldCount() const;
    QString fieldName(qsizetype index) const;
    /// The field of the current row, or the value put by `setField` since `Edit` or `AddNew`.
    /// @throws StoreError when there is no current row or no such field
    const Value& Fields(qsizetype index) const;
    const Value& Fields(QStringView name) const;
    /// The field of any row of a snapshot, for who goes through the rows in an order of his own; the current row stays.
    Value valueAt(qsizetype row, qsizetype index) const;

    /// Makes the first row that meets the criterion ("F1='...'", built with `sqlText`) current, else sets NoMatch.
    void FindFirst(const QString& criterion);
    bool NoMatch() const;
    void Edit();
    void AddNew();
    void setField(QStringView name, const Value& value);
    /// Writes the fields that were set; the row stays current and shows the values as stored.
    void Update();

private:
    friend class Database;
    struct Rows;
    explicit Recordset(std::unique_ptr<Rows> rows);
    std::unique_ptr<Rows> rows_;
};

/// The row that a walk through a statement has come to; it lives for that call only.
class PassingRow
{
public:
    explicit PassingRow(sqlite3_stmt* at)
        : at_(at)
    {}
    bool isNull(int column) const;
    double number(int column) const;         ///< a Null gives 0
    std::string_view text(int column) const; ///< in UTF-8, until the row has passed; a Null gives ""

private:
    sqlite3_stmt* at_;
};

/// An open ledger. `gDB` is the one of the session.
class Database
{
public:
    Database();
    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    bool isOpen() const;
    /// Runs one insert, update or delete. A statement that changes no row raises nothing.
    /// @throws StoreError
    void Execute(const QString& sql);
    /// A statement, or a bare table name.
    /// @throws StoreError
    Recordset OpenRecordset(const QString& statementOrTable, RecordsetType type = RecordsetType::Snapshot);
    /// Shows the rows of a statement one after the other and keeps none: for sums over more lines than a recordset
    /// should hold. `take` neither uses the ledger nor shows a box.
    /// @throws StoreError
    void walk(const QString& statement, const std::function<void(const PassingRow&)>& take);
    void Close();

    LedgerConnection& connection(); ///< for the store's own helpers; throws StoreError when nothing is open

private:
    friend class DBEngine;
    std::unique_ptr<LedgerConnection> connection_;
};

class DBEngine
{
public:
    /// Opens a ledger that exists; never creates a file. The connect text is ";PWD=" and the password.
    /// @throws StoreError: no such file, no ledger, another password, locked, damaged
    static Database OpenDatabase(const QString& path, const QString& connect);
    /// Opens a file as a ledger, also one that may only be read, and closes it again.
    /// @return whether the engine finds all of it sound
    /// @throws StoreError: no such file, no ledger, another password
    static bool checkLedger(const QString& path, const QString& connect);
    /// Copies a ledger to a path where no file may be, through the engine's backup, so that also one that is open in
    /// this process is copied whole and keeps its locks. Others may write meanwhile; they wait while it is read. The
    /// copy is synced and proven (it opens, it is sound, each table has the source's rows), then gets its name.
    /// @throws StoreError; no half copy is left behind
    static void copyDatabase(const QString& source, const QString& target, const QString& connect);
    /// The same, without the room that deleted rows have left. The source must not be open in any session.
    /// @throws StoreError (Locked) when it is; no half copy is left behind
    static void CompactDatabase(const QString& source, const QString& target, const QString& connect);
    /// Puts a copy of a ledger in the place of another, which must not be open in any session and may be missing. The
    /// other's lock is held until the end, and its place is taken in one step: also a power cut leaves the one or the
    /// other. The copy is proven as above; a fault that the source has itself is no reason to refuse it.
    /// @throws StoreError; the other is then as it was
    static void replaceDatabase(const QString& source, const QString& target, const QString& connect);
};

/// The first column of the first row as text: a Null gives "", no row gives "NoFound", any failure gives "".
QString LookupValue(Database& db, const QString& sql);

/// Raises what keeps the ledger from being read just now: a lock that lasts, a network that is gone. For commands that
/// decide by `LookupValue`, which tells no failure; inside a `ReadRun` the look-ups behind it find the same moment.
/// @throws StoreError
void requireReadable(Database& db);

/// What the engine's own check finds broken in the file, at most ten things; nothing when it is sound.
/// @throws StoreError
QStringList integrityFaults(Database& db);

/// Gathers a command's statements into one commit. Opened after the command's last question and before its first read
/// of what it will change: it takes the ledger's write lock at once, waiting as long as the busy time-out. Commits at
/// the end of its scope, also when a statement failed (what ran stays), and before any box or turn of the message
/// loop in its midst, after which each statement commits by itself. When the engine had to undo the whole run, the
/// error in flight says so.
class WriteRun
{
public:
    explicit WriteRun(Database& db); ///< @throws StoreError when the lock isn't to be had: nothing was changed
    ~WriteRun() noexcept(false);     ///< @throws StoreError when the commit fails and no error is in flight already
    WriteRun(const WriteRun&) = delete;
    WriteRun& operator=(const WriteRun&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_; // nothing inside another run
};

/// One read transaction over a loop of look-ups; it never turns into a writing one. It pauses at each write, box and
/// turn of the message loop and goes on with the next read. Nothing inside a write run.
class ReadRun
{
public:
    explicit ReadRun(Database& db);
    ~ReadRun();
    ReadRun(const ReadRun&) = delete;
    ReadRun& operator=(const ReadRun&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};
