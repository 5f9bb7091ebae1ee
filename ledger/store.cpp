#include "ledger/store.h"

#include "ledger/alone.h"
#include "ledger/engine.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/durable.h"
#include "platform/base/files.h"

#include <QFile>
#include <QFileInfo>

#include <exception>
#include <map>
#include <sqlcipher/sqlite3.h>

// ---- Recordset ------------------------------------------------------------------------------------------------------

/// A snapshot has all its rows from the start. A dynaset has none, then the one that was found or written, then all if
/// somebody walks on; its hidden first column is the row's identity in the table.
struct Recordset::Rows
{
    enum class Extent { None, One, All };
    enum class Editing { No, Edit, Add };

    RowArena arena;
    Extent extent = Extent::All;
    qsizetype at = 0;
    bool noMatch = false;
    bool closed = false;

    LedgerConnection* connection = nullptr; ///< of a dynaset only
    QString table;
    Editing editing = Editing::No;
    std::vector<std::optional<Value>> put; ///< by column, since `Edit` or `AddNew`

    std::vector<std::optional<Value>> current; ///< fields of the current row that were asked for

    qsizetype hidden() const { return connection ? 1 : 0; }
    qsizetype width() const { return arena.columns.size() - hidden(); }

    void moveTo(qsizetype row)
    {
        at = row;
        current.assign(size_t(width()), std::nullopt);
        editing = Editing::No;
    }
    bool onRow() const { return !closed && at >= 0 && at < arena.rowCount(); }
    void requireRow() const
    {
        if (!onRow())
            throw StoreError({.kind = StoreError::Kind::Other, .what = u"没有当前记录。请重新查询后再试。"_s});
    }
    void requireTable() const
    {
        if (!connection || closed)
            throw StoreError({.kind = StoreError::Kind::Other, .what = u"这些记录只能查看，不能修改。"_s});
    }
    void requireEditing() const
    {
        if (editing == Editing::No)
            throw StoreError({.kind = StoreError::Kind::Other, .what = u"记录还没有开始修改。"_s});
    }
    void startEditing(Editing how)
    {
        editing = how;
        put.assign(size_t(width()), std::nullopt);
    }
    qint64 rowId() const { return qint64(arena.value(at, 0).number()); }
    RowArena read(qint64 rowId) const
    {
        return connection->selectOwn(u"select rowid, * from "_s + table + u" where rowid = ?1"_s,
                                     {Value(double(rowId))});
    }
    void showOnly(RowArena row)
    {
        arena = std::move(row);
        extent = Extent::One;
        moveTo(0);
    }
    /// All rows of the table; the current one stays so.
    void complete()
    {
        if (extent == Extent::All || closed)
            return;
        const qint64 here = onRow() ? rowId() : 0; // identities count from 1
        arena = connection->selectOwn(u"select rowid, * from "_s + table);
        const bool fresh = extent == Extent::None;
        extent = Extent::All;
        qsizetype row = fresh ? 0 : arena.rowCount();
        for (qsizetype i = 0; here != 0 && i < arena.rowCount(); ++i)
            if (qint64(arena.value(i, 0).number()) == here)
                row = i;
        moveTo(row);
    }
    void completeIfUnread()
    {
        if (extent == Extent::None)
            complete();
    }
    qsizetype find(QStringView name) const;
    const Value& field(qsizetype index);
};

namespace {

/// A name as it is compared: the last part of a qualified one, without brackets.
QStringView lastPartOf(QStringView name)
{
    name = name.sliced(name.lastIndexOf(u'.') + 1);
    if (name.startsWith(u'['))
        name = name.sliced(1);
    return name.endsWith(u']') ? name.chopped(1) : name;
}

QString bracketedName(QStringView name)
{
    return u'[' + lastPartOf(name).toString() + u']';
}

/// Whether that is a table's name and no statement.
bool isTableName(QStringView text)
{
    if (text.startsWith(u'[') && text.indexOf(u']') == text.size() - 1)
        return true;
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber() || c == u'_'; });
}

} // namespace

qsizetype Recordset::Rows::find(QStringView name) const
{
    for (qsizetype i = hidden(); i < arena.columns.size(); ++i)
        if (sameText(arena.columns[i], name))
            return i - hidden();
    const QStringView last = lastPartOf(name);
    qsizetype found = -1;
    for (qsizetype i = hidden(); i < arena.columns.size(); ++i) {
        if (!sameText(lastPartOf(arena.columns[i]), last))
            continue;
        if (found >= 0)
            throw StoreError(
                {.kind = StoreError::Kind::Statement, .what = u"记录中有几个字段叫“"_s + last.toString() + u"”。"_s});
        found = i - hidden();
    }
    if (found < 0)
        throw StoreError(
            {.kind = StoreError::Kind::Statement, .what = u"记录中没有字段“"_s + name.toString() + u"”。"_s});
    return found;
}

const Value& Recordset::Rows::field(qsizetype index)
{
    completeIfUnread();
    if (index < 0 || index >= width())
        throw StoreError({.kind = StoreError::Kind::Statement,
                          .what = u"记录中没有第 "_s + plainText(double(index)) + u" 个字段。"_s});
    if (editing != Editing::No && put[size_t(index)])
        return *put[size_t(index)];
    static const Value null;
    if (editing == Editing::Add)
        return null;
    requireRow();
    std::optional<Value>& value = current[size_t(index)];
    if (!value)
        value = arena.value(at, index + hidden());
    return *value;
}

Recordset::Recordset(std::unique_ptr<Rows> rows)
    : rows_(std::move(rows))
{
    rows_->moveTo(0);
}

Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

bool Recordset::isEOF() const
{
    rows_->completeIfUnread();
    return rows_->closed || rows_->at >= rows_->arena.rowCount();
}

bool Recordset::isBOF() const
{
    rows_->completeIfUnread();
    return rows_->closed || rows_->arena.rowCount() == 0;
}

qsizetype Recordset::RecordCount() const
{
    rows_->completeIfUnread();
    return rows_->arena.rowCount();
}

void Recordset::MoveFirst()
{
    rows_->complete();
    rows_->moveTo(0);
    rows_->requireRow();
}

void Recordset::MoveLast()
{
    rows_->complete();
    rows_->moveTo(rows_->arena.rowCount() - 1);
    rows_->requireRow();
}

void Recordset::MoveNext()
{
    rows_->complete();
    rows_->requireRow();
    rows_->moveTo(rows_->at + 1);
}

void Recordset::Close()
{
    rows_->closed = true;
    rows_->arena = {};
}

qsizetype Recordset::fieldCount() const
{
    return rows_->width();
}

QString Recordset::fieldName(qsizetype index) const
{
    return rows_->arena.columns.value(index + rows_->hidden());
}

const Value& Recordset::Fields(qsizetype index) const
{
    return rows_->field(index);
}

const Value& Recordset::Fields(QStringView name) const
{
    return rows_->field(rows_->find(name));
}

Value Recordset::valueAt(qsizetype row, qsizetype index) const
{
    return rows_->arena.value(row, index + rows_->hidden());
}

bool Recordset::NoMatch() const
{
    return rows_->noMatch;
}

void Recordset::FindFirst(const QString& criterion)
{
    Rows& rows = *rows_;
    rows.requireTable();
    // The criterion is the form's own text, so the dialect reads it; the row is then read by its identity.
    const RowArena found =
        rows.connection->select(u"select top 1 rowid from "_s + rows.table + u" where "_s + criterion);
    RowArena row = rows.read(found.rowCount() > 0 ? qint64(found.value(0, 0).number()) : -1);
    rows.noMatch = row.rowCount() == 0;
    rows.showOnly(std::move(row));
}

void Recordset::Edit()
{
    rows_->requireTable();
    rows_->completeIfUnread();
    rows_->requireRow();
    rows_->startEditing(Rows::Editing::Edit);
}

void Recordset::AddNew()
{
    rows_->requireTable();
    rows_->startEditing(Rows::Editing::Add);
}

void Recordset::setField(QStringView name, const Value& value)
{
    rows_->requireEditing();
    rows_->put[size_t(rows_->find(name))] = value;
}

void Recordset::Update()
{
    Rows& rows = *rows_;
    rows.requireEditing();
    const bool adding = rows.editing == Rows::Editing::Add;
    QStringList names;
    QStringList places;
    std::vector<Value> values;
    for (size_t i = 0; i < rows.put.size(); ++i) {
        if (!rows.put[i])
            continue;
        values.push_back(*rows.put[i]);
        names += bracketedName(rows.arena.columns[qsizetype(i) + 1]);
        places += u'?' + QString::number(values.size());
    }
    if (adding) {
        const QString what = names.isEmpty()
                                 ? u" default values"_s
                                 : u" ("_s + names.join(u", "_s) + u") values ("_s + places.join(u", "_s) + u')';
        rows.connection->executeOwn(u"insert into "_s + rows.table + what, values);
        rows.showOnly(rows.read(rows.connection->lastRowId()));
        return;
    }
    const qint64 id = rows.rowId();
    if (!names.isEmpty()) {
        for (qsizetype i = 0; i < names.size(); ++i)
            names[i] += u" = "_s + places[i];
        values.emplace_back(double(id));
        rows.connection->executeOwn(u"update "_s + rows.table + u" set "_s + names.join(u", "_s) +
                                        u" where rowid = ?"_s + QString::number(values.size()),
                                    values);
    }
    const RowArena stored = rows.read(id);
    if (stored.rowCount() == 0)
        throw StoreError(
            {.kind = StoreError::Kind::Other, .what = u"记录已被其它用户删除，没有保存。请重新查询后再试。"_s});
    rows.arena.replaceRow(rows.at, stored);
    rows.moveTo(rows.at);
}

// ---- Database -------------------------------------------------------------------------------------------------------

Database::Database() = default;
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

bool Database::isOpen() const
{
    return connection_ != nullptr;
}

LedgerConnection& Database::connection()
{
    if (!connection_)
        throw StoreError({.kind = StoreError::Kind::Missing, .what = u"没有打开帐本。请先选择帐本。"_s});
    return *connection_;
}

void Database::Execute(const QString& sql)
{
    connection().execute(sql);
}

Recordset Database::OpenRecordset(const QString& statementOrTable, RecordsetType type)
{
    auto rows = std::make_unique<Recordset::Rows>();
    const QString text = statementOrTable.trimmed();
    if (!isTableName(text)) {
        rows->arena = connection().select(statementOrTable);
    } else if (type == RecordsetType::Snapshot) {
        rows->arena = connection().selectOwn(u"select * from "_s + bracketedName(text));
    } else {
        rows->table = bracketedName(text);
        rows->connection = &connection();
        rows->arena = connection().selectOwn(u"select rowid, * from "_s + rows->table + u" limit 0"_s);
        rows->extent = Recordset::Rows::Extent::None;
    }
    return Recordset(std::move(rows));
}

void Database::walk(const QString& statement, const std::function<void(const PassingRow&)>& take)
{
    connection().walk(statement, [&take](sqlite3_stmt* row) { take(PassingRow(row)); });
}

QStringList integrityFaults(Database& db)
{
    const RowArena rows = db.connection().selectOwn(u"pragma integrity_check(10)"_s);
    QStringList faults;
    for (qsizetype row = 0; row < rows.rowCount(); ++row)
        if (const QString line = rows.value(row, 0).text(); line != u"ok")
            faults += line;
    return faults;
}

bool PassingRow::isNull(int column) const
{
    return sqlite3_column_type(at_, column) == SQLITE_NULL;
}

double PassingRow::number(int column) const
{
    return sqlite3_column_double(at_, column);
}

std::string_view PassingRow::text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(at_, column));
    return text ? std::string_view(text, size_t(sqlite3_column_bytes(at_, column))) : std::string_view();
}

void Database::Close()
{
    const std::unique_ptr<LedgerConnection> closing = std::move(connection_);
    if (closing)
        closing->commitRun();
}

Database DBEngine::OpenDatabase(const QString& path, const QString& connect)
{
    Database database;
    database.connection_ =
        LedgerConnection::open(resolvedPath(path), passwordOf(connect), LedgerConnection::Use::Session);
    return database;
}

namespace {

using RowCounts = std::map<QString, double>;

/// How many rows each table holds, by the table itself: an index may be what is at fault.
RowCounts rowCounts(LedgerConnection& ledger)
{
    RowCounts counts;
    const RowArena tables =
        ledger.selectOwn(u"select name from sqlite_master where type = 'table' and name not like 'sqlite_%'"_s);
    for (qsizetype i = 0; i < tables.rowCount(); ++i) {
        const QString name = tables.value(i, 0).text();
        counts[name] = ledger.selectOwn(u"select count(*) from ["_s + name + u"] not indexed"_s).value(0, 0).number();
    }
    return counts;
}

bool isSound(LedgerConnection& ledger)
{
    try {
        return ledger.selectOwn(u"pragma integrity_check(1)"_s).value(0, 0).text() == u"ok";
    } catch (const StoreError&) { // a page that can't be read at all
        return false;
    }
}

/// A copy that is on its way. What isn't finished is removed.
class HalfCopy
{
public:
    explicit HalfCopy(const QString& target)
        : target_(target)
        , path_(target + u"-part"_s)
    {
        remove();
    }
    ~HalfCopy()
    {
        sqlite3_close(database_);
        remove();
    }
    HalfCopy(const HalfCopy&) = delete;
    HalfCopy& operator=(const HalfCopy&) = delete;

    void fill(sqlite3* source, const QString& password)
    {
        check(sqlite3_open_v2(path_.toUtf8().constData(), &database_,
                              SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr));
        check(applyCipher(database_, password));
        check(sqlite3_exec(database_, "pragma synchronous = full", nullptr, nullptr, nullptr));
        // Not byte by byte: closing another descriptor of a file that is open here would drop the engine's locks on it.
        sqlite3_backup* backup = sqlite3_backup_init(database_, "main", source, "main");
        if (!backup)
            check(sqlite3_extended_errcode(database_));
        const int code = sqlite3_backup_step(backup, -1); // waits for a writer as long as the source's time-out
        const int finished = sqlite3_backup_finish(backup);
        check(code == SQLITE_DONE ? finished : code);
        check(sqlite3_close(std::exchange(database_, nullptr)));
    }
    void fillCompacted(sqlite3* source, const QString& password)
    {
        if (!QFile(path_).open(QIODevice::WriteOnly)) // the source was opened without leave to create a file
            check(SQLITE_CANTOPEN);
        const QByteArray attach = "attach " + quoted(path_) + " as compacted key " + quoted(password);
        const auto kept = [source](const QByteArray& name) { // the export leaves these numbers out
            QByteArray number;
            const auto read = [](void* to, int, char** row, char**) {
                *static_cast<QByteArray*>(to) = row[0];
                return 0;
            };
            check(sqlite3_exec(source, "pragma " + name, read, &number, nullptr), source);
            return "pragma compacted." + name + " = " + number;
        };
        const QByteArray keepVersion = kept("user_version");
        const QByteArray keepIdentity = kept("application_id");
        for (const char* step :
             {"pragma cipher_default_compatibility = 3", attach.constData(), "pragma compacted.cipher_page_size = 4096",
              "pragma compacted.synchronous = full", "select sqlcipher_export('compacted')", keepVersion.constData(),
              keepIdentity.constData(), "detach compacted"}) {
            const int code = sqlite3_exec(source, step, nullptr, nullptr, nullptr);
            check(code == SQLITE_ERROR ? SQLITE_IOERR : code, source); // the export keeps to itself what failed in it
        }
    }
    /// Opens the copy as a ledger and compares it with what was counted in the source.
    void prove(const RowCounts& expected, const QString& password, bool sourceIsSound = true) const
    {
        const auto copy = LedgerConnection::open(path_, password, LedgerConnection::Use::Unnamed);
        if ((sourceIsSound && !isSound(*copy)) || rowCounts(*copy) != expected)
            throw StoreError(
                {.kind = StoreError::Kind::Damaged,
                 .what = u"复制出来的文件没有通过检查，已经删除。帐本或者磁盘可能有损坏，请检查后再试。"_s});
    }
    void giveName()
    {
        if (!renameDurably(path_, target_))
            check(SQLITE_CANTOPEN);
    }
    void takePlace(const QString& password)
    {
        settleJournal(password);
        // Whoever could work in the old file can work in the new one.
        if (const QFileInfo old(target_); old.exists())
            QFile::setPermissions(path_, old.permissions());
        if (!replaceDurably(path_, target_))
            check(SQLITE_CANTOPEN);
    }

private:
    static void check(int code, sqlite3* at = nullptr)
    {
        if (code != SQLITE_OK)
            throw engineError(at, code, {}, false);
    }
    static QByteArray quoted(const QString& text) { return sqlText(text).toUtf8(); }
    /// The journal of a crash would spoil the new file, but until that stands in its place the old one needs it: so
    /// the old one takes it in. One that can't even be opened is of no use any more, nor is its journal.
    void settleJournal(const QString& password) const
    {
        const QString journal = target_ + u"-journal"_s;
        if (!QFile::exists(journal))
            return;
        try {
            LedgerConnection::open(target_, password, LedgerConnection::Use::Aside);
        } catch (const StoreError&) {
        }
        if (!removeDurably(journal))
            check(SQLITE_CANTOPEN);
    }
    void remove()
    {
        QFile::remove(path_);
        QFile::remove(path_ + u"-journal"_s);
    }

    QString target_;
    QString path_;
    sqlite3* database_ = nullptr;
};

} // namespace

namespace {

void requireFree(const QString& target)
{
    if (QFileInfo::exists(target))
        throw StoreError(
            {.kind = StoreError::Kind::Other, .what = u"目标位置已有文件“"_s + target + u"”。请删除它或更换位置。"_s});
}

} // namespace

bool DBEngine::checkLedger(const QString& path, const QString& connect)
{
    return isSound(*LedgerConnection::open(resolvedPath(path), passwordOf(connect), LedgerConnection::Use::Aside));
}

void DBEngine::copyDatabase(const QString& source, const QString& target, const QString& connect)
{
    const QString password = passwordOf(connect);
    auto from = LedgerConnection::open(resolvedPath(source), password, LedgerConnection::Use::Aside);
    const QString to = localPath(target);
    requireFree(to);
    HalfCopy copy(to);
    from->beginReading(); // others may be writing: what is counted and what is copied are one state
    const RowCounts rows = rowCounts(*from);
    copy.fill(from->handle(), password);
    from.reset(); // nobody waits while the copy is read
    copy.prove(rows, password);
    copy.giveName();
}

void DBEngine::CompactDatabase(const QString& source, const QString& target, const QString& connect)
{
    const QString password = passwordOf(connect);
    const QString path = resolvedPath(source);
    const LedgerAlone alone(path);
    const QString to = localPath(target);
    requireFree(to);
    HalfCopy copy(to);
    RowCounts rows;
    {
        const auto from = LedgerConnection::open(path, password, LedgerConnection::Use::Aside);
        rows = rowCounts(*from);
        copy.fillCompacted(from->handle(), password);
    }
    copy.prove(rows, password);
    copy.giveName();
}

void DBEngine::replaceDatabase(const QString& source, const QString& target, const QString& connect)
{
    const QString password = passwordOf(connect);
    const QString named = resolvedPath(target);
    const QFileInfo present(named);
    const QString to = present.exists() ? present.canonicalFilePath() : named; // a link goes on leading to the ledger
    const LedgerAlone alone(to);
    HalfCopy copy(to);
    RowCounts rows;
    bool sound = false;
    {
        const auto from = LedgerConnection::open(resolvedPath(source), password, LedgerConnection::Use::Aside);
        from->beginReading();
        sound = isSound(*from);
        rows = rowCounts(*from);
        copy.fill(from->handle(), password);
    }
    copy.prove(rows, password, sound); // with a fault of its source it is better than no ledger
    copy.takePlace(password);
}

QString LookupValue(Database& db, const QString& sql)
{
    try {
        return db.connection().firstText(sql).value_or(u"NoFound"_s);
    } catch (const StoreError&) {
        return {}; // a look-up that fails answers like one that found nothing in the field, and shows no box
    }
}

void requireReadable(Database& db)
{
    db.connection().requireReadable();
}

// ---- Runs -----------------------------------------------------------------------------------------------------------

struct WriteRun::State
{
    std::shared_ptr<RunInProgress> run;
    std::function<void()> hookBefore;
    int errorsBefore = std::uncaught_exceptions();
};

WriteRun::WriteRun(Database& db)
{
    auto run = db.connection().beginRun();
    if (!run)
        return;
    state_ = std::make_unique<State>();
    state_->run = run;
    state_->hookBefore = setBeforeAsking([this] {
        const auto hook = state_->hookBefore; // the run may end under our feet
        if (LedgerConnection* connection = state_->run->connection)
            connection->commitRun();
        if (hook)
            hook();
    });
}

WriteRun::~WriteRun() noexcept(false)
{
    if (!state_)
        return;
    setBeforeAsking(state_->hookBefore);
    if (LedgerConnection* connection = state_->run->connection)
        connection->endRun(state_->run, std::uncaught_exceptions() > state_->errorsBefore);
}

struct ReadRun::State
{
    Database* database = nullptr;
    LedgerConnection* connection = nullptr;
    std::function<void()> hookBefore;

    /// Nothing once the ledger was closed or changed for another.
    LedgerConnection* stillOpen() const
    {
        return database->isOpen() && &database->connection() == connection ? connection : nullptr;
    }
};

ReadRun::ReadRun(Database& db)
    : state_(std::make_unique<State>())
{
    state_->database = &db;
    state_->connection = &db.connection();
    state_->connection->beginReading();
    state_->hookBefore = setBeforeAsking([this] {
        const auto hook = state_->hookBefore;
        if (LedgerConnection* connection = state_->stillOpen())
            connection->pauseReading();
        if (hook)
            hook();
    });
}

ReadRun::~ReadRun()
{
    setBeforeAsking(state_->hookBefore);
    if (LedgerConnection* connection = state_->stillOpen())
        connection->endReading();
}
