#include "ledger/engine.h"

#include "ledger/alone.h"
#include "ledger/format.h"
#include "platform/base/text.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QStringEncoder>

#include <algorithm>
#include <cmath>
#include <sqlcipher/sqlite3.h>

// ---- Errors ---------------------------------------------------------------------------------------------------------

namespace {

struct Explanation
{
    StoreError::Kind kind;
    QStringView text;
};

Explanation explanationOf(int code, bool preparing)
{
    using enum StoreError::Kind;
    switch (code & 0xff) { // the upper bits tell where in the engine it happened
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {Locked, u"其它操作员正在写入帐本，等了几秒还没有轮到，现在无法操作。请稍候再试一次。"};
    case SQLITE_FULL:
        return {Disk, u"磁盘已满，数据无法写入帐本。请清理磁盘后再试。"};
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
        return {Disk,
                u"帐本文件或它所在的文件夹不能写入。请检查网络连接、文件的只读属性和文件夹的权限，然后再试一次。"};
    case SQLITE_IOERR:
        return {Disk, u"读写帐本文件时出错。请检查磁盘和网络连接，恢复之后再试一次。"};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return {Damaged, u"帐本文件已经损坏。请从备份中恢复数据。"};
    case SQLITE_NOMEM:
        return {Other, u"内存不足，操作没有完成。请关闭其它程序后再试。"};
    case SQLITE_MISMATCH:
    case SQLITE_TOOBIG:
    case SQLITE_CONSTRAINT:
        return {Value, u"数据不能存入帐本。请检查录入的内容。"};
    case SQLITE_ERROR:
        if (preparing)
            return {Statement, u"语句有错误，或者帐本中没有它用到的表和字段。请检查录入的内容。"};
        return {Value, u"数据无法计算，可能有不是日期的文字。请检查录入的内容和查询的条件。"};
    default:
        return {Other, u"帐本操作失败。请再试一次；如果仍然失败，请退出系统后重新进入。"};
    }
}

/// Whether the ledger of a connection isn't where it was opened: its folder lies on a network that is gone.
bool isGone(sqlite3* database)
{
    const char* path = database ? sqlite3_db_filename(database, "main") : nullptr;
    return path && *path && !QFileInfo::exists(QString::fromUtf8(path));
}

QString goneText(const QString& path)
{
    return u"找不到帐本文件“"_s + QDir::toNativeSeparators(path) +
           u"”，可能是网络断开，或者存放帐本的电脑关机了。请检查网络连接，恢复之后再试一次。";
}

[[noreturn]] void refuseToOpen(StoreError::Kind kind, const QString& text, const QString& engineMessage = {})
{
    throw StoreError({.kind = kind, .what = text, .engineMessage = engineMessage});
}

} // namespace

StoreError engineError(sqlite3* database, int code, const QString& statement, bool preparing)
{
    const Explanation explanation = explanationOf(code, preparing);
    StoreError::Details details = {.kind = explanation.kind,
                                   .what = explanation.text.toString(),
                                   .engineMessage =
                                       QString::fromUtf8(database ? sqlite3_errmsg(database) : sqlite3_errstr(code)),
                                   .statement = statement};
    if (code == SQLITE_MISMATCH) // raised by a function of the dialect, in words for the operator
        details.what = std::exchange(details.engineMessage, {}) + u"。请检查录入的内容和查询的条件。";
    if (details.kind == StoreError::Kind::Locked)
        details.engineMessage.clear(); // it says the same in English
    if (details.kind == StoreError::Kind::Disk && isGone(database)) {
        details.what = goneText(QString::fromUtf8(sqlite3_db_filename(database, "main")));
        details.engineMessage.clear();
    }
    return StoreError(std::move(details));
}

// ---- Rows -----------------------------------------------------------------------------------------------------------

Value RowArena::value(qsizetype row, qsizetype column) const
{
    const Cell& cell = cells_[size_t(row * columns.size() + column)];
    switch (cell.kind) {
    case Kind::Number:
        return cell.number;
    case Kind::Text:
        return QString::fromUtf8(texts_.data() + cell.start, qsizetype(cell.length));
    case Kind::Null:
        break;
    }
    return {};
}

void RowArena::addRow(sqlite3_stmt* row)
{
    for (int i = 0; i < int(columns.size()); ++i) {
        Cell cell = {.number = 0, .length = 0, .kind = Kind::Null};
        switch (sqlite3_column_type(row, i)) {
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            cell.kind = Kind::Number;
            cell.number = sqlite3_column_double(row, i);
            break;
        case SQLITE_TEXT:
        case SQLITE_BLOB: {
            const auto* text = static_cast<const char*>(sqlite3_column_blob(row, i));
            cell.kind = Kind::Text;
            cell.length = quint32(sqlite3_column_bytes(row, i));
            cell.start = texts_.size();
            if (cell.length > 0)
                texts_.append(text, cell.length);
            break;
        }
        default:
            break;
        }
        cells_.push_back(cell);
    }
    ++rows_;
}

void RowArena::replaceRow(qsizetype row, const RowArena& from)
{
    const size_t width = size_t(columns.size());
    for (size_t i = 0; i < width; ++i) {
        Cell cell = from.cells_[i];
        if (cell.kind == Kind::Text) {
            const size_t start = texts_.size();
            texts_.append(from.texts_, cell.start, cell.length);
            cell.start = start;
        }
        cells_[size_t(row) * width + i] = cell;
    }
}

// ---- Opening --------------------------------------------------------------------------------------------------------

namespace {

int busyTimeout = 5000; // milliseconds

/// The locking between sessions happens on a companion file. Its name ends so that no pattern of ledgers or backups
/// meets it.
QString lockFileOf(const QString& ledger)
{
    return ledger + u"-lock"_s;
}

/// Ledgers that this process keeps for itself at the moment.
QSet<QString> keptAlone;

/// One of these makes a database a ledger. Which of them a command needs is told when it runs.
constexpr const char* knownTable =
    "select 1 from sqlite_master where type = 'table' and lower(name) in ('te1', 'ta1', 'ta2', 'ta3', 'ta4', 'tb1',"
    "'tb11', 'tb3', 'tb31', 'td1', 'td11', 'td3', 'td31', 'tc2', 'tc21', 'tc15', 'c15set', 'sysinfo', 'reginfo',"
    "'thever', 'danno', 'jxc', 'prta1', 'prtc1', 'prtb2', 'plist', 'nta4') limit 1";

constexpr const char* connectionSettings[] = {
    "pragma cache_size = -64000", // KiB; decrypted pages cost nothing then
    "pragma cache_spill = off",   // a spill would lock out all readers to the end of the run
    "pragma secure_delete = off", // scratch tables are emptied all the time, and the file is encrypted anyway
    // The end of the journal is synced too: else a power cut could bring it back and undo what was told as saved.
    "pragma synchronous = extra",
    "pragma journal_mode = delete", // ledgers lie in shared folders, where a write-ahead log can't be used
};

} // namespace

void setBusyTimeout(int milliseconds)
{
    busyTimeout = milliseconds;
}

int applyCipher(sqlite3* database, const QString& password)
{
    const QByteArray key = password.toUtf8();
    if (key.isEmpty())
        return SQLITE_NOTADB; // no ledger is without one
    int code = sqlite3_key(database, key.constData(), int(key.size()));
    for (const char* pragma : {"pragma cipher_compatibility = 3", "pragma cipher_page_size = 4096"}) // in this order
        if (code == SQLITE_OK)
            code = sqlite3_exec(database, pragma, nullptr, nullptr, nullptr);
    return code;
}

QString passwordOf(const QString& connect)
{
    const auto parts = connect.split(u';');
    for (const QString& part : parts)
        if (part.startsWith(u"PWD="_s, Qt::CaseInsensitive))
            return part.sliced(4);
    return {};
}

namespace {

/// What other programs make of the same password, or of none.
constexpr struct
{
    bool keyed;
    const char* pragmas;
    QStringView told;
} otherFormats[] = {
    {false, "", u"没有加密"},
    {true, "pragma cipher_page_size = 1024", u"加密时每页为1024字节"},
    {true, "pragma cipher_page_size = 1024; pragma kdf_iter = 4000", u"加密时每页为1024字节，密钥只计算了4000次"},
    {true, "pragma cipher_page_size = 4096; pragma kdf_iter = 256000", u"加密时密钥计算了256000次"},
};

/// What a file that was refused is, if that can be said. It is only read, and by the engine: another descriptor of a
/// file that is open here would drop the engine's locks on it.
QString otherFormatOf(const QString& path, const QString& password)
{
    const QByteArray key = password.toUtf8();
    for (const auto& format : otherFormats) {
        sqlite3* database = nullptr;
        int code = sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr);
        if (code == SQLITE_OK && format.keyed)
            code = sqlite3_key(database, key.constData(), int(key.size()));
        for (const char* statement : {format.pragmas, "select count(*) from sqlite_master"})
            if (code == SQLITE_OK)
                code = sqlite3_exec(database, statement, nullptr, nullptr, nullptr);
        sqlite3_close(database);
        if (code == SQLITE_OK)
            return format.told.toString();
    }
    return {};
}

} // namespace

std::unique_ptr<LedgerConnection> LedgerConnection::open(const QString& path, const QString& password, Use use)
{
    const QFileInfo file(path);
    if (!file.isFile())
        refuseToOpen(StoreError::Kind::Missing, u"找不到帐本文件“"_s + QDir::toNativeSeparators(path) +
                                                    u"”。请检查文件是否还在、网络是否连通。"_s);
    const QString ledger = file.canonicalFilePath();

    std::unique_ptr<LedgerConnection> connection(new LedgerConnection);
    if (use == Use::Session) {
        connection->path_ = ledger;
        connection->password_ = password;
    }
    const bool ours = use == Use::Unnamed || (use == Use::Aside && keptAlone.contains(ledger));
    const auto presence = ours ? LockFile::Outcome::Held
                               : connection->presence_->take(lockFileOf(ledger), LockFile::Hold::Shared, ledger);
    if (presence == LockFile::Outcome::Refused)
        refuseToOpen(StoreError::Kind::Locked,
                     u"其它用户正在备份、恢复或整理这个帐本，现在无法打开。请稍候再试一次。"_s);
    if (presence == LockFile::Outcome::Failed && use == Use::Session)
        refuseToOpen(StoreError::Kind::Disk,
                     u"帐本所在的文件夹“"_s + QDir::toNativeSeparators(file.absolutePath()) +
                         u"”不能写入，帐本无法打开。请检查文件夹的权限，或者把帐本复制到别处再打开。"_s);

    // Without a flag to create. One thread uses a connection, so that its mutexes are only a cost.
    const int code = sqlite3_open_v2(ledger.toUtf8().constData(), &connection->database_,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK)
        throw engineError(connection->database_, code, {}, false);
    connection->configure(password, ledger, use);
    return connection;
}

void LedgerConnection::configure(const QString& password, const QString& path, Use use)
{
    sqlite3_extended_result_codes(database_, 1);
    sqlite3_busy_timeout(database_, busyTimeout); // first of all: already the settings read the file
    int code = applyCipher(database_, password);
    if (code == SQLITE_OK)
        dialect::registerFunctions(database_);
    for (const char* setting : connectionSettings)
        if (code == SQLITE_OK)
            code = sqlite3_exec(database_, setting, nullptr, nullptr, nullptr);

    bool known = false;
    const auto row = [](void* found, int, char**, char**) {
        *static_cast<bool*>(found) = true;
        return 0;
    };
    if (code == SQLITE_OK)
        code = sqlite3_exec(database_, knownTable, row, &known, nullptr);
    if ((code & 0xff) == SQLITE_NOTADB || (code == SQLITE_OK && !known)) {
        const QString other = code == SQLITE_OK ? QString() : otherFormatOf(path, password);
        const QString why = other.isEmpty()
                                ? u"不是本系统的帐本文件，或者密码、加密方式不对。请选择正确的帐本文件。"_s
                                : other + u"，与本系统的帐本不同，不能打开。请用生成它的程序按本系统的格式另存，"
                                          "或者选择正确的帐本文件。"_s;
        refuseToOpen(StoreError::Kind::NotLedger, u"文件“"_s + QDir::toNativeSeparators(path) + u'”' + why,
                     code == SQLITE_OK ? QString() : QString::fromUtf8(sqlite3_errstr(code)));
    }
    int format = 0;
    if (code == SQLITE_OK)
        code = readFormat(database_, format);
    if (code != SQLITE_OK)
        throw engineError(database_, code, {}, false);
    if (format > ledgerFormat)
        refuseToOpen(StoreError::Kind::NotLedger,
                     u"帐本文件“"_s + QDir::toNativeSeparators(path) +
                         u"”是更新版本的程序使用过的，本版本不能打开。请升级程序后再打开。"_s);
    if (use != Use::Session)
        return;
    if (sqlite3_db_readonly(database_, "main") == 1)
        refuseToOpen(StoreError::Kind::Disk, u"帐本文件“"_s + QDir::toNativeSeparators(path) +
                                                 u"”是只读的，无法打开。请去掉文件的只读属性。"_s);
    if (format < ledgerFormat)
        code = bringUp(database_);
    // While others work the ledger serves as it is; the next opening tries again.
    if (code != SQLITE_OK && (code & 0xff) != SQLITE_BUSY)
        throw engineError(database_, code, {}, false);
}

LedgerAlone::LedgerAlone(const QString& path)
{
    const QFileInfo file(path);
    path_ = file.exists() ? file.canonicalFilePath() : file.absoluteFilePath();
    switch (lock_.take(lockFileOf(path_), LockFile::Hold::Exclusive, path_)) {
    case LockFile::Outcome::Held:
        break;
    case LockFile::Outcome::Refused:
        refuseToOpen(StoreError::Kind::Locked, u"其它用户正在使用这个帐本。请在其它用户退出系统之后再试。"_s);
    case LockFile::Outcome::Failed:
        refuseToOpen(StoreError::Kind::Disk, u"帐本所在的文件夹不能写入。请检查文件夹的权限。"_s);
    }
    keptAlone.insert(path_);
}

LedgerAlone::~LedgerAlone()
{
    keptAlone.remove(path_);
}

// ---- Prepared statements --------------------------------------------------------------------------------------------

/// One prepared statement with the translation it came from. A shape has several when its fixed literals differ, or
/// while one is in use.
struct LedgerConnection::Prepared
{
    QString key;
    sqlite3_stmt* statement = nullptr;
    std::shared_ptr<const dialect::Translation> translation;
    std::vector<dialect::Literal> fixed; ///< the literals that stand in the text itself
    QStringList columns;
    bool needsSavepoint = false; ///< inside a transaction, so that it leaves all its rows or none
    bool busy = false;
};

/// Holds a statement while it is stepped. No lock may outlive that, so it is reset at once.
class LedgerConnection::InUse
{
public:
    explicit InUse(Prepared& prepared)
        : prepared_(prepared)
    {
        prepared.busy = true;
    }
    ~InUse()
    {
        sqlite3_reset(prepared_.statement);
        sqlite3_clear_bindings(prepared_.statement);
        prepared_.busy = false;
    }
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

private:
    Prepared& prepared_;
};

namespace {

constexpr size_t keptStatements = 200;
constexpr size_t keptVariants = 8;

constexpr const char* controlTexts[] = {"begin",         "begin immediate", "commit",         "rollback",
                                        "savepoint one", "release one",     "rollback to one"};

/// Whether a statement can fail after it has changed some rows already: several may meet it and it calls a function.
bool canFailHalfWay(const QByteArray& sql)
{
    const QByteArray text = sql.trimmed().toLower();
    if (text.startsWith("insert") && !text.contains("select"))
        return false;
    for (qsizetype at = text.indexOf('('); at > 0; at = text.indexOf('(', at + 1))
        if (text[at - 1] != ' ' && text[at - 1] != '(')
            return true;
    return false;
}

/// Own statements share the cache with those of the dialect, whose keys never begin like this.
constexpr QChar ownKey = u'\u0001';

} // namespace

LedgerConnection::LedgerConnection()
    : presence_(std::make_unique<LockFile>())
{}

LedgerConnection::~LedgerConnection()
{
    if (run_) {
        run_->connection = nullptr;
        if (!run_->undone)
            control(Control::Commit); // what ran stays; when this fails the engine undoes it all
    }
    finalizeAll();
    sqlite3_close(database_);
}

void LedgerConnection::finalizeAll()
{
    for (const Prepared& prepared : statements_)
        sqlite3_finalize(prepared.statement);
    statements_.clear();
    families_.clear();
    for (sqlite3_stmt*& statement : controls_)
        sqlite3_finalize(std::exchange(statement, nullptr));
}

/// After a failure of disk or network the ledger is opened anew before it is used again: the open file of a share that
/// was gone may lead to nothing, and its server may have forgotten the locks. Never in the midst of a transaction.
void LedgerConnection::renewIfDoubtful()
{
    if (!doubtful_ || path_.isEmpty() || run_ || inTransaction() ||
        std::any_of(statements_.begin(), statements_.end(), [](const Prepared& each) { return each.busy; }))
        return;
    if (!QFileInfo::exists(path_))
        refuseToOpen(StoreError::Kind::Missing, goneText(path_));
    const auto fresh = open(path_, password_, Use::Session);
    finalizeAll();
    // The new lock is held before the old one goes, so that nobody takes the ledger for himself in between.
    std::swap(database_, fresh->database_);
    std::swap(presence_, fresh->presence_);
    doubtful_ = false;
}

void LedgerConnection::requireReadable()
{
    selectOwn(u"select 1 from sqlite_master limit 1"_s);
}

sqlite3_stmt* LedgerConnection::prepare(const QByteArray& sql, const QString& statement)
{
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v2(database_, sql.constData(), int(sql.size()) + 1, &prepared, nullptr);
    if (code != SQLITE_OK)
        throw engineError(database_, code, statement, true);
    return prepared;
}

LedgerConnection::Prepared& LedgerConnection::preparedFor(const QString& statement, const dialect::Shape& shape)
{
    std::shared_ptr<const dialect::Translation> translation;
    if (const auto family = families_.constFind(shape.key); family != families_.cend()) {
        for (const auto& candidate : *family) {
            const auto& places = candidate->translation->fixed;
            const bool fits = std::equal(places.begin(), places.end(), candidate->fixed.begin(),
                                         [&](size_t place, const auto& held) { return shape.literals[place] == held; });
            if (!fits)
                continue;
            if (!candidate->busy) {
                if (candidate != statements_.begin())
                    statements_.splice(statements_.begin(), statements_, candidate);
                return *candidate;
            }
            translation = candidate->translation;
        }
    }
    if (!translation)
        translation = std::make_shared<const dialect::Translation>(dialect::translate(statement));

    Prepared fresh;
    fresh.key = shape.key;
    fresh.key.detach(); // the shape may share its text with something long
    fresh.translation = translation;
    for (const size_t place : translation->fixed)
        fresh.fixed.push_back(shape.literals[place]);
    fresh.statement = prepare(translation->sql, statement);
    fresh.columns = translation->columns;
    fresh.needsSavepoint = !translation->isQuery && canFailHalfWay(translation->sql);
    return keep(std::move(fresh));
}

LedgerConnection::Prepared& LedgerConnection::preparedOwn(const QString& sql)
{
    const QString key = ownKey + sql;
    if (const auto family = families_.constFind(key); family != families_.cend()) {
        for (const auto& candidate : *family) {
            if (!candidate->busy) {
                statements_.splice(statements_.begin(), statements_, candidate);
                return *candidate;
            }
        }
    }
    Prepared fresh;
    fresh.key = key;
    fresh.translation = std::make_shared<const dialect::Translation>();
    fresh.statement = prepare(sql.toUtf8(), sql);
    return keep(std::move(fresh));
}

LedgerConnection::Prepared& LedgerConnection::keep(Prepared&& fresh)
{
    if (fresh.columns.isEmpty())
        for (int i = 0; i < sqlite3_column_count(fresh.statement); ++i)
            fresh.columns += QString::fromUtf8(sqlite3_column_name(fresh.statement, i));

    Family& family = families_[fresh.key];
    if (family.size() >= keptVariants)
        for (const auto& oldest : Family(family)) // in the order in which they came
            if (drop(oldest))
                break;
    statements_.push_front(std::move(fresh));
    families_[statements_.front().key].push_back(statements_.begin());

    for (auto last = std::prev(statements_.end());
         statements_.size() > keptStatements && last != statements_.begin();) {
        const auto victim = last--;
        drop(victim);
    }
    return statements_.front();
}

bool LedgerConnection::drop(std::list<Prepared>::iterator victim)
{
    if (victim->busy)
        return false;
    const auto family = families_.find(victim->key);
    std::erase(*family, victim);
    if (family->empty())
        families_.erase(family);
    sqlite3_finalize(victim->statement);
    statements_.erase(victim);
    return true;
}

void LedgerConnection::bind(Prepared& to, const std::vector<dialect::Literal>& literals)
{
    // The texts are turned to UTF-8 one behind the other in a buffer that is kept, and bound where they lie.
    const auto& bindings = to.translation->bindings;
    std::vector<dialect::Literal> made;
    qsizetype room = 0;
    const auto makeRoom = [&room](const dialect::Literal& value) {
        if (const auto* text = std::get_if<QString>(&value))
            room += 3 * text->size();
    };
    for (const dialect::Binding& binding : bindings) {
        if (binding.from != dialect::Binding::From::Literal)
            makeRoom(made.emplace_back(dialect::bound(binding, literals)));
        else
            makeRoom(literals[binding.literal]);
    }
    if (textsBound_.size() < size_t(room))
        textsBound_.resize(size_t(2 * room));

    char* next = textsBound_.data();
    int place = 0;
    auto nextMade = made.cbegin();
    for (const dialect::Binding& binding : bindings) {
        ++place;
        const bool asItIs = binding.from == dialect::Binding::From::Literal;
        const dialect::Literal& value = asItIs ? literals[binding.literal] : *nextMade++;
        if (const auto* text = std::get_if<QString>(&value)) {
            QStringEncoder encoder(QStringEncoder::Utf8);
            char* end = encoder.appendToBuffer(next, *text);
            sqlite3_bind_text(to.statement, place, next, int(end - next), SQLITE_STATIC);
            next = end;
        } else if (const auto* whole = std::get_if<qint64>(&value)) {
            sqlite3_bind_int64(to.statement, place, *whole);
        } else {
            sqlite3_bind_double(to.statement, place, std::get<double>(value));
        }
    }
}

void LedgerConnection::bindOwn(Prepared& to, const std::vector<Value>& values)
{
    int place = 0;
    for (const Value& value : values) {
        ++place;
        if (value.isNull())
            continue; // a parameter without a value is Null
        if (!value.isNumber()) {
            const QByteArray text = value.text().toUtf8();
            sqlite3_bind_text(to.statement, place, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        } else if (const double number = value.number(); number == std::trunc(number) && std::abs(number) < 1e15) {
            sqlite3_bind_int64(to.statement, place, qint64(number)); // "5", not "5.0", where it meets a text column
        } else {
            sqlite3_bind_double(to.statement, place, number);
        }
    }
}

// ---- Statements -----------------------------------------------------------------------------------------------------

template <typename Work>
auto LedgerConnection::noting(Work work)
{
    refuseIfUndone();
    renewIfDoubtful();
    try {
        return work();
    } catch (const StoreError& error) {
        note(error);
        throw;
    }
}

void LedgerConnection::refuseIfUndone() const
{
    if (run_ && run_->undone)
        throw StoreError(*run_->failure);
}

void LedgerConnection::note(const StoreError& error)
{
    const bool disk = error.kind() == StoreError::Kind::Disk;
    doubtful_ |= disk;
    if (!run_) {
        if (disk && inTransaction()) // of a reading run, which goes on with the next read
            control(Control::Rollback);
        return;
    }
    run_->failure = error;
    run_->undone = !inTransaction();
    // Nothing was written so far either where already the journal couldn't be made.
    if (run_->undone || (disk && sqlite3_total_changes(database_) == changesBefore_))
        error.setAftermath(nothingKept.toString());
}

void LedgerConnection::run(Prepared& prepared, const QString& statement)
{
    // In a transaction a function that fails in the midst of a statement leaves the rows that were changed before.
    const bool atomic = run_ && prepared.needsSavepoint;
    if (atomic)
        if (const int code = control(Control::Savepoint); code != SQLITE_OK)
            throw engineError(database_, code, statement, false);
    const int code = sqlite3_step(prepared.statement);
    if (code != SQLITE_DONE) {
        const StoreError error = engineError(database_, code, statement, false);
        sqlite3_reset(prepared.statement);
        if (atomic && inTransaction()) {
            control(Control::RollbackTo);
            control(Control::Release);
        }
        throw error;
    }
    if (atomic)
        control(Control::Release);
}

void LedgerConnection::requireKind(const Prepared& prepared, bool query, const QString& statement)
{
    if (prepared.translation->isQuery != query)
        throw StoreError({.kind = StoreError::Kind::Statement,
                          .what = query ? u"这里需要查询语句。"_s : u"这里不能执行查询语句。"_s,
                          .statement = statement});
}

void LedgerConnection::execute(const QString& statement)
{
    noting([&] {
        const dialect::Shape shape = dialect::scan(statement);
        pauseReading();
        Prepared& prepared = preparedFor(statement, shape);
        requireKind(prepared, false, statement);
        const InUse use(prepared);
        bind(prepared, shape.literals);
        run(prepared, statement);
    });
}

int LedgerConnection::executeOwn(const QString& sql, const std::vector<Value>& values)
{
    return noting([&] {
        pauseReading();
        Prepared& prepared = preparedOwn(sql);
        const InUse use(prepared);
        bindOwn(prepared, values);
        run(prepared, sql);
        return sqlite3_changes(database_);
    });
}

void LedgerConnection::readAll(Prepared& prepared, const QString& statement, RowArena& rows)
{
    rows.columns = prepared.columns;
    int code = SQLITE_OK;
    while ((code = sqlite3_step(prepared.statement)) == SQLITE_ROW)
        rows.addRow(prepared.statement);
    if (code != SQLITE_DONE)
        throw engineError(database_, code, statement, false);
}

RowArena LedgerConnection::select(const QString& statement)
{
    return noting([&] {
        const dialect::Shape shape = dialect::scan(statement);
        beforeRead();
        Prepared& prepared = preparedFor(statement, shape);
        requireKind(prepared, true, statement);
        const InUse use(prepared);
        bind(prepared, shape.literals);
        RowArena rows;
        readAll(prepared, statement, rows);
        return rows;
    });
}

void LedgerConnection::walk(const QString& statement, const std::function<void(sqlite3_stmt*)>& take)
{
    noting([&] {
        const dialect::Shape shape = dialect::scan(statement);
        beforeRead();
        Prepared& prepared = preparedFor(statement, shape);
        requireKind(prepared, true, statement);
        const InUse use(prepared);
        bind(prepared, shape.literals);
        int code = SQLITE_OK;
        while ((code = sqlite3_step(prepared.statement)) == SQLITE_ROW)
            take(prepared.statement);
        if (code != SQLITE_DONE)
            throw engineError(database_, code, statement, false);
    });
}

RowArena LedgerConnection::selectOwn(const QString& sql, const std::vector<Value>& values)
{
    return noting([&] {
        beforeRead();
        Prepared& prepared = preparedOwn(sql);
        const InUse use(prepared);
        bindOwn(prepared, values);
        RowArena rows;
        readAll(prepared, sql, rows);
        return rows;
    });
}

std::optional<QString> LedgerConnection::firstText(const QString& statement)
{
    return noting([&]() -> std::optional<QString> {
        const dialect::Shape shape = dialect::scan(statement);
        beforeRead();
        Prepared& prepared = preparedFor(statement, shape);
        requireKind(prepared, true, statement);
        const InUse use(prepared);
        bind(prepared, shape.literals);
        const int code = sqlite3_step(prepared.statement);
        if (code == SQLITE_DONE)
            return std::nullopt;
        if (code != SQLITE_ROW)
            throw engineError(database_, code, statement, false);
        switch (sqlite3_column_type(prepared.statement, 0)) {
        case SQLITE_NULL:
            return QString();
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return plainText(sqlite3_column_double(prepared.statement, 0));
        default: {
            const auto* text = static_cast<const char*>(sqlite3_column_blob(prepared.statement, 0));
            return QString::fromUtf8(text, sqlite3_column_bytes(prepared.statement, 0));
        }
        }
    });
}

qint64 LedgerConnection::lastRowId() const
{
    return sqlite3_last_insert_rowid(database_);
}

// ---- Transactions ---------------------------------------------------------------------------------------------------

int LedgerConnection::control(Control what)
{
    sqlite3_stmt*& statement = controls_[size_t(what)];
    if (!statement) {
        const int code = sqlite3_prepare_v2(database_, controlTexts[size_t(what)], -1, &statement, nullptr);
        if (code != SQLITE_OK)
            return code;
    }
    const int code = sqlite3_step(statement);
    sqlite3_reset(statement); // gives the same code again, so that the engine's words stay those of the step
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

bool LedgerConnection::inTransaction() const
{
    return !sqlite3_get_autocommit(database_);
}

void LedgerConnection::beforeRead()
{
    if (readers_ > 0 && !run_ && !inTransaction())
        control(Control::Begin); // takes no lock yet; if it fails the read runs by itself
}

void LedgerConnection::pauseReading()
{
    if (!run_ && inTransaction())
        control(Control::Commit);
}

void LedgerConnection::endReading()
{
    if (--readers_ == 0)
        pauseReading();
}

std::shared_ptr<RunInProgress> LedgerConnection::beginRun()
{
    if (run_)
        return {};
    pauseReading(); // a reading transaction that turns into a writing one doesn't wait for others
    try {
        renewIfDoubtful();
        if (const int code = control(Control::BeginImmediate); code != SQLITE_OK)
            throw engineError(database_, code, {}, false);
    } catch (const StoreError& error) {
        note(error);
        error.setAftermath(nothingKept.toString());
        throw;
    }
    run_ = std::make_shared<RunInProgress>();
    run_->connection = this;
    changesBefore_ = sqlite3_total_changes(database_);
    return run_;
}

void LedgerConnection::commitRun()
{
    if (!run_)
        return;
    if (run_->undone) {
        if (std::exchange(run_->told, true))
            return;
        throw StoreError(*run_->failure);
    }
    int code = control(Control::Commit);
    if ((code & 0xff) == SQLITE_BUSY)
        code = control(Control::Commit);
    if (code == SQLITE_OK) {
        run_.reset();
        return;
    }
    const StoreError error = engineError(database_, code, {}, false);
    doubtful_ |= error.kind() == StoreError::Kind::Disk;
    if (inTransaction()) // never left open: it would keep all readers out
        control(Control::Rollback);
    error.setAftermath(nothingKept.toString());
    if (run_->failure)
        run_->failure->setAftermath(nothingKept.toString());
    run_->undone = true;
    run_->told = true;
    run_->failure = error;
    throw error;
}

void LedgerConnection::endRun(const std::shared_ptr<RunInProgress>& run, bool errorInFlight)
{
    if (run_ != run)
        return; // committed before a box
    if (errorInFlight && run->undone)
        run->told = true;
    std::optional<StoreError> error;
    try {
        commitRun();
    } catch (const StoreError& failure) {
        error = failure;
    }
    run_.reset();
    // The error in flight has got the aftermath; two can't be told at once.
    if (error && !errorInFlight)
        throw StoreError(*error);
}
