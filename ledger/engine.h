#pragma once

#include "ledger/dialect.h"
#include "ledger/store_error.h"
#include "platform/base/lock_file.h"
#include "platform/base/value.h"

#include <QHash>
#include <QStringList>

#include <array>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// The rows of a statement, copied out. Texts lie one behind the other in UTF-8 and become a QString when they are
/// asked for: a list of 100,000 rows then costs two allocations and not a million.
class RowArena
{
public:
    QStringList columns;

    qsizetype rowCount() const { return rows_; }
    Value value(qsizetype row, qsizetype column) const;
    void addRow(sqlite3_stmt* row);
    /// Puts the first row of another arena with the same columns in place of a row.
    void replaceRow(qsizetype row, const RowArena& from);

private:
    enum class Kind : quint8 { Null, Number, Text };
    struct Cell
    {
        union {
            double number;
            size_t start;
        };
        quint32 length;
        Kind kind;
    };
    std::vector<Cell> cells_;
    std::string texts_;
    qsizetype rows_ = 0;
};

class LedgerConnection;

/// A write run under way; shared by the connection and the guard object, either of which may go first.
struct RunInProgress
{
    LedgerConnection* connection = nullptr; ///< nothing once the ledger is closed
    bool undone = false;                    ///< the engine has undone the whole run: nothing of it may go on
    bool told = false;                      ///< somebody was given the error that tells so
    std::optional<StoreError> failure;      ///< the last one, which a run undone later adds its aftermath to
};

/// One connection to a ledger: opening, statements, transactions. It knows SQLite and the dialect, and no recordset.
class LedgerConnection
{
public:
    /// Session: takes part in the locking between sessions and must be able to write. Aside: a step of a copy, which
    /// may read what lies on a read-only medium, also while this process keeps the ledger for itself. Unnamed: a file
    /// that is being made and that nobody else knows of.
    enum class Use { Session, Aside, Unnamed };

    /// @throws StoreError: Missing, NotLedger, Locked, Disk, Damaged. Nothing is created or changed in any of these.
    static std::unique_ptr<LedgerConnection> open(const QString& path, const QString& password, Use use);
    ~LedgerConnection();
    LedgerConnection(const LedgerConnection&) = delete;
    LedgerConnection& operator=(const LedgerConnection&) = delete;

    sqlite3* handle() const { return database_; }
    quint64 serial() const { return serial_; } ///< another one for each connection of the process

    // Statements of the dialect. All throw StoreError.
    void execute(const QString& statement);
    RowArena select(const QString& statement);
    /// Shows each row while the statement stands on it.
    void walk(const QString& statement, const std::function<void(sqlite3_stmt*)>& take);
    /// The first column of the first row; nothing if there is no row.
    std::optional<QString> firstText(const QString& statement);

    // Statements of the store's own, in SQLite's language with parameters ?1, ?2 ...
    RowArena selectOwn(const QString& sql, const std::vector<Value>& values = {});
    /// Returns the number of changed rows.
    int executeOwn(const QString& sql, const std::vector<Value>& values);
    qint64 lastRowId() const;

    /// Takes the write lock. Returns nothing inside a run: the outer one gathers the statements of both.
    /// @throws StoreError (Locked) when it isn't to be had
    std::shared_ptr<RunInProgress> beginRun();
    /// Commits what ran; from then on each statement commits by itself. Nothing to do without a run.
    /// @throws StoreError when the run was or had to be undone and nobody was told yet
    void commitRun();
    /// The same at the end of a run's scope. With an error in flight it throws nothing: that error gets the aftermath.
    void endRun(const std::shared_ptr<RunInProgress>& run, bool errorInFlight);
    /// From here to `endReading` reads share a transaction, which ends before each write and each `pauseReading`, and
    /// begins again with the next read.
    void beginReading() { ++readers_; }
    void endReading();
    void pauseReading();
    /// Raises what keeps the ledger from being read just now.
    void requireReadable();

private:
    struct Prepared;
    class InUse;
    using Family = std::vector<std::list<Prepared>::iterator>;

    enum class Control { Begin, BeginImmediate, Commit, Rollback, Savepoint, Release, RollbackTo };

    LedgerConnection();
    void configure(const QString& password, const QString& path, Use use);
    Prepared& preparedFor(const QString& statement, const dialect::Shape& shape);
    Prepared& preparedOwn(const QString& sql);
    Prepared& keep(Prepared&& fresh);
    bool drop(std::list<Prepared>::iterator victim);
    sqlite3_stmt* prepare(const QByteArray& sql, const QString& statement);
    void bind(Prepared& to, const std::vector<dialect::Literal>& literals);
    static void bindOwn(Prepared& to, const std::vector<Value>& values);
    void run(Prepared& prepared, const QString& statement);
    void readAll(Prepared& prepared, const QString& statement, RowArena& rows);
    int control(Control what);
    bool inTransaction() const;
    static void requireKind(const Prepared& prepared, bool query, const QString& statement);
    void beforeRead();
    void refuseIfUndone() const;
    template <typename Work>
    auto noting(Work work);
    void note(const StoreError& error);
    void renewIfDoubtful();
    void finalizeAll();

    static inline quint64 opened_ = 0;
    const quint64 serial_ = ++opened_;
    sqlite3* database_ = nullptr;
    std::array<sqlite3_stmt*, 7> controls_ = {};
    std::unique_ptr<LockFile> presence_;
    QString path_;                    // of a session's ledger; "" where the connection is a step of a copy
    QString password_;                // likewise
    bool doubtful_ = false;           // the disk or the network failed: the open file may lead nowhere any more
    std::list<Prepared> statements_;  // the most recently used one first
    QHash<QString, Family> families_; // the same by key: the variants and busy copies of one shape
    std::string textsBound_;          // what the statement in use is bound to; kept for its capacity
    std::shared_ptr<RunInProgress> run_;
    int changesBefore_ = 0; // rows changed by the connection when the run began
    int readers_ = 0;
};

/// How long a statement waits for another session's lock: 5,000 ms, unless a test waits less. For connections opened
/// from now on.
void setBusyTimeout(int milliseconds);

/// What stands behind ";PWD=" in a connect text, whatever its case; "" without it.
QString passwordOf(const QString& connect);
/// Key and page format, for a connection that has read nothing yet. Both libraries, 3.x and 4.x, read and write it.
/// Returns the engine's result code.
int applyCipher(sqlite3* database, const QString& password);
/// What a result code of the engine means to an operator. @param preparing the statement was being translated
StoreError engineError(sqlite3* database, int code, const QString& statement, bool preparing);

inline constexpr QStringView nothingKept = u"本次操作没有改变帐本中的任何数据。";
