#include "ledger/alone.h"
#include "ledger/engine.h"
#include "ledger/format.h"
#include "ledger/literal.h"
#include "ledger/presence.h"
#include "ledger/store.h"
#include "platform/base/dialogs.h"
#include "tests/ledger_fixture.h"
#include "tests/statements.h"
#include "tools/faulty_disk.h"

#include <QProcess>
#include <QTest>

#include <array>

namespace {

using Kind = StoreError::Kind;

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void makePlainDatabase(const QString& path)
{
    sqlite3* database = nullptr;
    QCOMPARE(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
    QCOMPARE(sqlite3_exec(database, "create table TE1 (F1 text)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

/// The failure of some work; a test that expects one fails without.
template <typename Work>
std::optional<StoreError> failureOf(Work work)
{
    try {
        work();
    } catch (const StoreError& error) {
        return error;
    }
    return std::nullopt;
}

/// Answers every box and lets a test look at the ledger meanwhile.
class WatchingHost : public DialogHost
{
public:
    explicit WatchingHost(std::function<void()> watch)
        : watch_(std::move(watch))
    {}
    Answer show(const Box&) override
    {
        watch_();
        return Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return std::nullopt; }
    std::optional<QString> chooseFile(const FileRequest&) override { return std::nullopt; }
    void doEvents() override { watch_(); }

private:
    std::function<void()> watch_;
};

void dontWait(Database& database)
{
    sqlite3_busy_timeout(database.connection().handle(), 0);
}

constexpr int refusedExit = 3;

/// What this program does as a second process: takes the write lock, or tells that it can't.
int otherSession(const QString& path)
{
    Database database = DBEngine::OpenDatabase(path, ledgerConnect.toString());
    dontWait(database);
    const auto refused = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"insert into TA3 (F1,F2) values ('X','其它进程')"_s);
        std::puts("holding");
        std::fflush(stdout);
        std::getchar(); // until the test ends this process
    });
    return refused ? refusedExit : 0;
}

} // namespace

class StoreTest : public QObject
{
    Q_OBJECT

private slots:
    void newLedgerHasItsRows();
    void lookUp_data();
    void lookUp();
    void textsAreStoredAsTyped_data();
    void textsAreStoredAsTyped();
    void everyStatementOfTheSystemRuns();
    void oneShapeWithManyLiterals();
    void recordsetWalks();
    void dynasetWritesOneRow();
    void refusedFileStaysAsItIs_data();
    void refusedFileStaysAsItIs();
    void damagedLedgerIsTold();
    void presenceLock();
    void marksTellWhoIsHere();
    void earlierFormatIsBroughtUp();
    void ciphersOfOtherPrograms_data();
    void ciphersOfOtherPrograms();
    void laterFormatIsRefused();
    void runCommitsOnce();
    void runKeepsWhatRan();
    void failedManyRowStatementLeavesNoRow();
    void runCommitsBeforeBox();
    void runWithinRun();
    void fullDiskUndoesRun_data();
    void fullDiskUndoesRun();
    void undoneRunRefusesTheRest();
    void undoneRunIsToldWhenItsErrorWasIgnored();
    void lockedOutCommitIsUndone();
    void otherProcessHoldsTheLedger();
    void readRunSharesOneTransaction();
    void copyOfOpenLedger();
    void failedCopyLeavesNothing();
    void compactNeedsTheLedgerAlone();
    void restoreTakesThePlaceOfALedger();
};

void StoreTest::newLedgerHasItsRows()
{
    LedgerFixture ledger;
    QCOMPARE(ledger.rows(u"select F1,F2,F3,F61,F66 from TE1"_s), QStringList(u"001|管理员||1|1"_s));
    QCOMPARE(ledger.row(u"select F1,F2 from TA1"_s), u"001|默认货品来源"_s);
    QCOMPARE(ledger.row(u"select F1,F2 from TA2"_s), u"001|默认货品去向"_s);
    QCOMPARE(ledger.row(u"select F1,F2 from TA3"_s), u"001|所有货品"_s);
    QCOMPARE(ledger.value(u"select Versn from theVer"_s), QString());
    QCOMPARE(ledger.value(u"select F7 from reginfo"_s), u"2004-1-1"_s);
    QStringList settings = ledger.rows(u"select setval from sysinfo order by ID"_s);
    QCOMPARE(settings.join(u','), u"0,0,0,0,0,1,0,0,0,2,0"_s);
}

void StoreTest::lookUp_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("answer");
    QTest::newRow("text") << u"select F2 from TA4 where F1='A1'"_s << u"螺丝"_s;
    QTest::newRow("code in other case") << u"select F2 from ta4 where f1='a1'"_s << u"螺丝"_s;
    QTest::newRow("Null") << u"select F6 from TA4 where F1='A1'"_s << QString();
    QTest::newRow("no row") << u"select F2 from TA4 where F1='A9'"_s << u"NoFound"_s;
    QTest::newRow("missing table") << u"select F2 from TA9 where F1='A1'"_s << QString();
    QTest::newRow("malformed") << u"select F2 from TA4 where F1='A1"_s << QString();
    QTest::newRow("no query") << u"delete from TA4"_s << QString();
    QTest::newRow("whole number") << u"select F8 from TA4 where F1='A1'"_s << u"120"_s;
    QTest::newRow("fraction") << u"select F7 from TA4 where F1='A1'"_s << u"0.5"_s;
    QTest::newRow("tiny number") << u"select F71 from TA4 where F1='A1'"_s << u"1E-06"_s;
    QTest::newRow("sum of binary fractions") << u"select V1+V2 from TA4 where F1='A1'"_s << u"0.3"_s;
    QTest::newRow("number unquoted into text") << u"select F5 from TA4 where F1='A1'"_s << u"8"_s;
}

void StoreTest::lookUp()
{
    QFETCH(QString, statement);
    static LedgerFixture ledger;
    static Database database = [] {
        ledger.run(u"insert into TA4 (F1,F2,F5,F7,F71,F8,V1,V2) values ('A1','螺丝',8,0.5,1E-06,120,0.1,0.2)"_s);
        return ledger.open();
    }();
    QTEST(LookupValue(database, statement), "answer");
    QCOMPARE(ledger.value(u"select F1 from TA4"_s), u"A1"_s);
}

void StoreTest::textsAreStoredAsTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("apostrophe") << u"O'Neill ''x'' '"_s;
    QTest::newRow("like an end of the statement") << u"'); delete from TA1; --"_s;
    QTest::newRow("beyond the basic plane") << u"𠮷野家😀"_s;
    QTest::newRow("line breaks and blanks") << u" a\r\nb\t　"_s;
    QTest::newRow("looks like a number") << u"007.50"_s;
    QTest::newRow("long") << QString(70000, u'长');
}

void StoreTest::textsAreStoredAsTyped()
{
    QFETCH(QString, text);
    LedgerFixture ledger;
    Database database = ledger.open();
    database.Execute(u"insert into TA1 (F1,F2) values ("_s + sqlText(text) + u",'x')"_s);
    QCOMPARE(ledger.value(u"select F1 from TA1 where F2='x'"_s), text);
    QCOMPARE(ledger.value(u"select F2 from TA1 where F1="_s + sqlText(text)), u"x"_s);
    Recordset goods = database.OpenRecordset(u"TA4"_s, RecordsetType::Dynaset);
    goods.AddNew();
    goods.setField(u"F2", text);
    goods.Update();
    QCOMPARE(goods.Fields(u"f2").text(), text);
    QCOMPARE(ledger.value(u"select F2 from TA4"_s), text);
}

void StoreTest::everyStatementOfTheSystemRuns()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    for (int round = 0; round < 2; ++round) { // the second time out of the cache
        const WriteRun run(database);
        for (const char16_t* text : systemStatements) {
            const QString statement = QString::fromUtf16(text);
            const bool query = statement.trimmed().startsWith(u"select"_s, Qt::CaseInsensitive);
            const auto failure = failureOf([&] {
                if (query)
                    database.OpenRecordset(statement);
                else
                    database.Execute(statement);
            });
            if (failure)
                QFAIL(qPrintable(statement + u": "_s + failure->description()));
        }
    }
}

void StoreTest::oneShapeWithManyLiterals()
{
    // Literals that stand in the text itself, more shapes than are kept, and values bound anew at each call.
    LedgerFixture ledger;
    Database database = ledger.open();
    const WriteRun run(database);
    for (int i = 0; i < 300; ++i) {
        const QString n = QString::number(i);
        database.Execute(u"insert into TA1 (F1,F2) values ("_s + sqlText(n) + u",'n"_s + n + u"')"_s);
        QCOMPARE(LookupValue(database, u"select F2 from TA1 where F1="_s + sqlText(n)), u'n' + n);
        QCOMPARE(LookupValue(database, u"select '"_s + n + u"' from TA1"_s), n);
        QCOMPARE(LookupValue(database, u"select top 1 F2 from TA1 where F2 like '?"_s + n + u"'"_s), u'n' + n);
        QCOMPARE(LookupValue(database, u"select F2 as a"_s + n + u" from TA1 where F1="_s + sqlText(n)), u'n' + n);
    }
    QCOMPARE(LookupValue(database, u"select F2 as a0 from TA1 where F1='0'"_s), u"n0"_s);
    database.Execute(u"update TA2 set F2='9'"_s);
    database.Execute(u"insert into TA2 (F1,F2) values ('A','1')"_s);
    QCOMPARE(LookupValue(database, u"select F1,F2 from TA2 order by 1"_s), u"001"_s);
    QCOMPARE(LookupValue(database, u"select F1,F2 from TA2 order by 2"_s), u"A"_s); // no value: it names a column
}

void StoreTest::recordsetWalks()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    for (const char16_t* code : {u"A1", u"A2", u"A3"})
        ledger.run(u"insert into TA4 (F1,F8) values ("_s + sqlText(QStringView(code)) + u",2)"_s);

    Recordset set = database.OpenRecordset(u"select TA4.F1,F8 as sl,TA4.F7,TA1.F1 from TA4,TA1 order by TA4.F1"_s);
    database.Execute(u"delete from TA4"_s); // a snapshot has its rows
    QVERIFY(!set.isEOF() && !set.isBOF());
    set.MoveLast();
    QCOMPARE(set.RecordCount(), 3);
    QCOMPARE(set.Fields(0).text(), u"A3"_s);
    set.MoveFirst();
    set.MoveNext();
    QCOMPARE(set.Fields(u"f1").text(), u"A2"_s);
    QCOMPARE(set.Fields(u"TA4.F7"), Value());
    QVERIFY2(failureOf([&] { set.Fields(u"TA1.F1"); }), "two fields bear the name");
    QCOMPARE(set.Fields(3).text(), u"001"_s);
    QCOMPARE(set.Fields(u"SL"), Value(2.0));
    QCOMPARE(failureOf([&] { set.Fields(u"F99"); }).value().kind(), Kind::Statement);
    set.MoveNext();
    set.MoveNext();
    QVERIFY(set.isEOF() && !set.isBOF());
    QVERIFY(failureOf([&] { set.Fields(0); }));

    Recordset none = database.OpenRecordset(u"TA4"_s);
    QVERIFY(none.isEOF() && none.isBOF());
    QCOMPARE(none.RecordCount(), 0);
    QCOMPARE(none.fieldCount(), 16);
    QVERIFY(failureOf([&] { none.MoveFirst(); }));
    QCOMPARE(failureOf([&] { database.OpenRecordset(u"TA9"_s); }).value().kind(), Kind::Statement);
}

void StoreTest::dynasetWritesOneRow()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    for (const char16_t* code : {u"A1", u"B'2", u"C3"})
        ledger.run(u"insert into TA4 (F1,F7,F8) values ("_s + sqlText(QStringView(code)) + u",1,10)"_s);

    Recordset goods = database.OpenRecordset(u"TA4"_s, RecordsetType::Dynaset);
    goods.FindFirst(u"F1='A9'"_s);
    QVERIFY(goods.NoMatch());
    QVERIFY(failureOf([&] { goods.Edit(); }));
    goods.FindFirst(u"F1="_s + sqlText(u"b'2"));
    QVERIFY(!goods.NoMatch());
    QCOMPARE(goods.Fields(u"F8").number(), 10);
    ledger.run(u"update TA4 set F71=7 where F1='B''2'"_s); // another session, another field of the row
    goods.Edit();
    goods.setField(u"F8", Value(goods.Fields(u"F8").number() + 1.0 / 3));
    goods.setField(u"F6", Value());
    QCOMPARE(ledger.value(u"select F8 from TA4 where F1='B''2'"_s), u"10"_s);
    goods.Update();
    QCOMPARE(goods.Fields(u"F8").number(), 10 + 1.0 / 3);
    QCOMPARE(goods.Fields(u"F71").number(), 7);
    QCOMPARE(ledger.rows(u"select F1,F6,F8,F71 from TA4 order by F1"_s),
             QStringList({u"A1|Null|10|Null"_s, u"B'2|Null|10.3333333333333|7"_s, u"C3|Null|10|Null"_s}));

    goods.MoveNext();
    QCOMPARE(goods.Fields(u"F1").text(), u"C3"_s);
    goods.Edit();
    goods.setField(u"F8", Value(0.0));
    goods.MoveFirst(); // gives the edit up
    QVERIFY(failureOf([&] { goods.Update(); }));
    QCOMPARE(goods.RecordCount(), 3);

    goods.Edit();
    goods.setField(u"F8", Value(5.0));
    ledger.run(u"delete from TA4 where F1='A1'"_s);
    QVERIFY2(failureOf([&] { goods.Update(); }), "the row is gone");
    QCOMPARE(failureOf([&] { goods.FindFirst(u"F1='x"_s); }).value().kind(), Kind::Statement);

    Recordset fixed = database.OpenRecordset(u"select * from TA4"_s);
    QVERIFY(failureOf([&] { fixed.Edit(); }));
}

void StoreTest::refusedFileStaysAsItIs_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<Kind>("kind");
    for (const char* content : {"garbage", "short garbage", "zero length", "plain database", "another password",
                                "no table of ours", "cut short"})
        QTest::newRow(content) << QString::fromLatin1(content) << Kind::NotLedger;
    QTest::newRow("missing") << u"missing"_s << Kind::Missing;
    QTest::newRow("folder") << u"folder"_s << Kind::Missing;
    QTest::newRow("no room for the lock file") << u"lock taken"_s << Kind::Disk;
}

void StoreTest::refusedFileStaysAsItIs()
{
    QFETCH(QString, content);
    QFETCH(Kind, kind);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"帐本.hcn"_s);
    if (content == u"garbage"_s)
        writeBytes(path, QByteArray(3 * 4096, 'x'));
    else if (content == u"short garbage"_s)
        writeBytes(path, "short");
    else if (content == u"zero length"_s)
        writeBytes(path, {});
    else if (content == u"plain database"_s)
        makePlainDatabase(path);
    else if (content == u"another password"_s)
        createLedger(path, u"create table TE1 (F1 text)"_s, u";PWD=other"_s);
    else if (content == u"no table of ours"_s)
        createLedger(path, u"create table songs (title text)"_s, ledgerConnect.toString());
    else if (content == u"cut short"_s)
        writeBytes(path, bytesOf(LedgerFixture::pristine()).first(1000));
    else if (content == u"folder"_s)
        QVERIFY(QDir().mkdir(path));
    else if (content == u"lock taken"_s)
        QVERIFY(QFile::copy(LedgerFixture::pristine(), path) && QDir().mkdir(path + u"-lock"_s));
    const QStringList before = QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    const QByteArray bytes = bytesOf(path);

    const auto failure = failureOf([&] { DBEngine::OpenDatabase(path, ledgerConnect.toString()); });
    QVERIFY(failure);
    QCOMPARE(failure->kind(), kind);
    QVERIFY2(failure->description().contains(kind == Kind::Missing ? u"找不到帐本文件"_s : u"帐本"_s), failure->what());
    QCOMPARE(bytesOf(path), bytes);
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
}

void StoreTest::damagedLedgerIsTold()
{
    LedgerFixture ledger;
    QByteArray bytes = bytesOf(ledger.path());
    for (qsizetype at = bytes.size() / 2; at < bytes.size(); at += 1024)
        bytes[at] = char(bytes[at] ^ 1);
    writeBytes(ledger.path(), bytes);
    const auto failure = failureOf([&] {
        Database database = ledger.open();
        for (const char16_t* table : {u"TE1", u"sysinfo", u"reginfo", u"theVer", u"jxc", u"Plist"})
            database.OpenRecordset(QString::fromUtf16(table));
    });
    QVERIFY(failure);
    QCOMPARE(failure->kind(), Kind::Damaged);
}

void StoreTest::presenceLock()
{
    LedgerFixture ledger;
    {
        Database one = ledger.open();
        Database two = ledger.open();
        QVERIFY(ledger.files().contains(u"帐本.hcn-lock"_s));
        one.Close();
        QCOMPARE(failureOf([&] { LedgerAlone alone(ledger.path()); }).value().kind(), Kind::Locked);
    }
    QCOMPARE(ledger.files(), QStringList(u"帐本.hcn"_s));
    {
        const LedgerAlone alone(ledger.path());
        QCOMPARE(failureOf([&] { ledger.open(); }).value().kind(), Kind::Locked);
    }
    QVERIFY(ledger.open().isOpen());
    QCOMPARE(ledger.files(), QStringList(u"帐本.hcn"_s));
}

void StoreTest::marksTellWhoIsHere()
{
    LedgerFixture ledger;
    const QString start = ledger.path() + u"-open-"_s;
    const auto putMark = [&start](const QString& host, const QString& name, int secondsAgo) {
        QVERIFY(writeLines(start + host, {host, name, u"2004-1-5 9:05:00"_s}));
        QFile file(start + host);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo), QFile::FileModificationTime));
    };
    const auto names = [](const PresenceMark& mark) {
        QStringList all;
        for (const PresentSession& session : mark.sessions())
            all += session.operatorName + (session.ours ? u"!"_s : QString());
        all.sort();
        return all;
    };
    {
        PresenceMark mark;
        mark.place(ledger.path(), u"张三"_s);
        putMark(u"host2-1"_s, u"李四"_s, PresenceMark::secondsBetweenTouches);
        putMark(u"host3-1"_s, u"死机的"_s, PresenceMark::secondsToLapse + 10);
        putMark(u"host4-1"_s, u"早已不在的"_s, 3 * 24 * 60 * 60);
        QCOMPARE(names(mark), QStringList({u"张三!"_s, u"李四"_s}));
        QVERIFY(QFile::exists(start + u"host3-1"_s));
        QVERIFY(!QFile::exists(start + u"host4-1"_s));
        mark.place(ledger.path(), u"王五"_s);
        QCOMPARE(names(mark), QStringList({u"李四"_s, u"王五!"_s}));
    }
    QCOMPARE(ledger.files().filter(u"-open-"_s).size(), 2);
}

/// The first format had no number, and no index if another tool had made it anew. The file is one that the first
/// version wrote, so it also holds the cipher parameters that every later library must go on reading.
void StoreTest::earlierFormatIsBroughtUp()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"旧帐本.hcn"_s);
    QVERIFY(QFile::copy(QStringLiteral(TEST_DATA "/first_format.hcn"), path));
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    const auto indexCount = [](LedgerConnection& connection) {
        return connection.selectOwn(u"select count(*) from sqlite_master where type = 'index'"_s).value(0, 0).number();
    };
    Database made = DBEngine::OpenDatabase(LedgerFixture::pristine(), ledgerConnect.toString());
    const double wanted = indexCount(made.connection());
    {
        Database old = DBEngine::OpenDatabase(path, ledgerConnect.toString());
        old.connection().executeOwn(u"drop index TA4_F1"_s, {});
        old.connection().executeOwn(u"drop index TB1_day"_s, {});
        sqlite3_exec(old.connection().handle(), "pragma user_version = 0", nullptr, nullptr, nullptr);
        QCOMPARE(indexCount(old.connection()), wanted - 2);
    }
    Database raised = DBEngine::OpenDatabase(path, ledgerConnect.toString());
    QCOMPARE(indexCount(raised.connection()), wanted);
    int format = 0;
    QCOMPARE(readFormat(raised.connection().handle(), format), SQLITE_OK);
    QCOMPARE(format, ledgerFormat);
    QCOMPARE(LookupValue(raised, u"select F1 from TE1"_s), u"001"_s);
}

/// The same format may be asked for in several words; what differs in it is refused with what it is, and left alone.
void StoreTest::ciphersOfOtherPrograms_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("refused"); // "" opens
    QTest::newRow("as the program asks") << u"short_form.hcn"_s << QString();
    QTest::newRow("each parameter by name") << u"long_form.hcn"_s << QString();
    QTest::newRow("by no library") << u"by_hand.hcn"_s << QString();
    QTest::newRow("other pages") << u"refused_page_1024.hcn"_s << u"加密时每页为1024字节，与本系统"_s;
    QTest::newRow("of the 2.x library") << u"refused_4000_rounds.hcn"_s << u"密钥只计算了4000次，与本系统"_s;
    QTest::newRow("other rounds") << u"refused_256000_rounds.hcn"_s << u"加密时密钥计算了256000次，与本系统"_s;
    QTest::newRow("of the 4.x library") << u"refused_sha512.hcn"_s << u"或者密码、加密方式不对"_s; // like a wrong key
    QTest::newRow("not encrypted") << QString() << u"没有加密，与本系统"_s;
}

void StoreTest::ciphersOfOtherPrograms()
{
    QFETCH(QString, file);
    QFETCH(QString, refused);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"帐本.hcn"_s);
    if (file.isEmpty()) {
        sqlite3* plain = nullptr;
        QCOMPARE(sqlite3_open(path.toUtf8().constData(), &plain), SQLITE_OK);
        QCOMPARE(sqlite3_exec(plain, "create table TE1 (F1)", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(plain);
    } else {
        QVERIFY(QFile::copy(QStringLiteral(TEST_DATA "/cipher/") + file, path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    }
    const auto bytes = [&path] {
        QFile read(path);
        return read.open(QIODevice::ReadOnly) ? read.readAll() : QByteArray();
    };
    const QByteArray before = bytes();
    QString told;
    try {
        Database ledger = DBEngine::OpenDatabase(path, ledgerConnect.toString());
        ledger.Execute(u"update TE1 set F2='新名' where F1='001'"_s);
    } catch (const StoreError& error) {
        told = error.details().what;
    }
    QCOMPARE(told.isEmpty(), refused.isEmpty());
    QVERIFY2(told.contains(refused), qPrintable(told));
    if (!refused.isEmpty()) {
        QCOMPARE(bytes(), before);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList(u"帐本.hcn"_s));
        return;
    }
    Database again = DBEngine::OpenDatabase(path, ledgerConnect.toString());
    QCOMPARE(LookupValue(again, u"select F2 from TE1"_s), u"新名"_s);
    QVERIFY(integrityFaults(again).isEmpty());
}

void StoreTest::laterFormatIsRefused()
{
    LedgerFixture ledger;
    {
        Database database = ledger.open();
        const QByteArray later = "pragma user_version = " + QByteArray::number(ledgerFormat + 1);
        QCOMPARE(sqlite3_exec(database.connection().handle(), later.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    }
    const QByteArray bytes = bytesOf(ledger.path());
    const auto failure = failureOf([&] { ledger.open(); });
    QVERIFY(failure && failure->description().contains(u"更新版本"_s));
    QCOMPARE(bytesOf(ledger.path()), bytes);
}

void StoreTest::runCommitsOnce()
{
    LedgerFixture ledger;
    FaultyDisk disk;
    Database database = ledger.open();
    disk.syncs = 0;
    {
        const WriteRun run(database);
        for (int i = 0; i < 30; ++i)
            database.Execute(u"insert into TB11 (F0,F1,F6) values ('RK0411180001','A1',1)"_s);
        database.Execute(u"update TB11 set H8='2004-11-18' where F0='RK0411180001'"_s);
        database.Execute(u"insert into TB1 (F1) values ('RK0411180001')"_s);
    }
    QVERIFY2(disk.syncs <= 5, qPrintable(QString::number(disk.syncs)));
    QCOMPARE(ledger.value(u"select count(*) from TB11 where H8='2004-11-18'"_s), u"30"_s);
    ledger.letGo();
}

void StoreTest::runKeepsWhatRan()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"delete from TA3"_s);
        database.Execute(u"insert into TA3 (F1,F9) values ('B','x')"_s);
        database.Execute(u"delete from TA1"_s);
    });
    QCOMPARE(failure.value().kind(), Kind::Statement);
    QVERIFY(failure->details().aftermath.isEmpty());
    QCOMPARE(failure->details().statement, u"insert into TA3 (F1,F9) values ('B','x')"_s);
    QCOMPARE(ledger.row(u"select F1 from TA3"_s), u"NoRow"_s);
    QCOMPARE(ledger.row(u"select F1 from TA1"_s), u"001"_s);
}

void StoreTest::failedManyRowStatementLeavesNoRow()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    for (const char16_t* day : {u"2004-1-2", u"2004-1-3", u"不是日期"})
        ledger.run(u"insert into c15set (D1,A3) values ("_s + sqlText(QStringView(day)) + u",'old')"_s);
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"insert into TA3 (F1) values ('before')"_s);
        database.Execute(u"update c15set set A3='new',A4=datediff('d','2004-1-1',D1)"_s);
    });
    QCOMPARE(failure.value().kind(), Kind::Value);
    QVERIFY2(failure->description().startsWith(u"“不是日期”不是有效的日期"_s), failure->what());
    QCOMPARE(ledger.rows(u"select A3 from c15set where A3='new'"_s), QStringList());
    QCOMPARE(ledger.value(u"select F1 from TA3 where F1='before'"_s), u"before"_s);
}

void StoreTest::runCommitsBeforeBox()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    QStringList seen;
    setDialogHost(std::make_unique<WatchingHost>([&] {
        dontWait(ledger.second());
        seen += ledger.value(u"select count(*) from TA3"_s);
        ledger.run(u"insert into TA3 (F1) values ('other')"_s); // no lock waits for the operator
    }));
    {
        const WriteRun run(database);
        database.Execute(u"insert into TA3 (F1) values ('A')"_s);
        MsgBox(u"货品编码资料丢失！"_s);
        database.Execute(u"insert into TA3 (F1) values ('B')"_s);
        DoEvents();
    }
    QCOMPARE(seen, QStringList({u"2"_s, u"4"_s}));
    {
        const ReadRun run(database);
        LookupValue(database, u"select F1 from TA3"_s);
        DoEvents();
        QCOMPARE(LookupValue(database, u"select count(*) from TA3"_s), u"6"_s);
    }
    MsgBox(u"没有运行中的操作"_s); // the hooks are gone with their runs
    QCOMPARE(seen.size(), 4);
    setDialogHost(nullptr);
}

void StoreTest::runWithinRun()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    {
        const WriteRun outer(database);
        {
            const WriteRun inner(database);
            const ReadRun reading(database);
            database.Execute(u"delete from TA3"_s);
        }
        QCOMPARE(ledger.value(u"select F1 from TA3"_s), u"001"_s);
    }
    QCOMPARE(ledger.value(u"select F1 from TA3"_s), u"NoFound"_s);
}

void StoreTest::fullDiskUndoesRun_data()
{
    QTest::addColumn<int>("code");
    QTest::newRow("full") << SQLITE_FULL;
    QTest::newRow("failing") << SQLITE_IOERR_WRITE;
}

void StoreTest::fullDiskUndoesRun()
{
    // Wherever in the run the disk fills up, at a statement or at the commit: all of it or nothing.
    QFETCH(int, code);
    LedgerFixture ledger;
    FaultyDisk disk;
    disk.failWith = code;
    Database database = ledger.open();
    int failures = 0;
    for (int at = 0;; ++at) {
        disk.failFrom = disk.writes + at;
        const auto failure = failureOf([&] {
            const WriteRun run(database);
            database.Execute(u"delete from TA3"_s);
            database.Execute(u"insert into TA3 (F1,F2) values ('N','"_s + QString(9000, u'新') + u"')"_s);
            database.Execute(u"update TA1 set F2='new'"_s);
        });
        disk.heal();
        if (!failure)
            break;
        ++failures;
        QCOMPARE(failure->kind(), Kind::Disk);
        QCOMPARE(failure->details().aftermath, nothingKept.toString());
        QVERIFY(QByteArray(failure->what()).contains(nothingKept.toUtf8()));
        QCOMPARE(ledger.row(u"select TA3.F1,TA1.F2 from TA3,TA1"_s), u"001|默认货品来源"_s);
    }
    QVERIFY2(failures > 5, "the disk never failed");
    QCOMPARE(ledger.row(u"select TA3.F1,TA1.F2 from TA3,TA1"_s), u"N|new"_s);
    ledger.letGo();
}

void StoreTest::undoneRunRefusesTheRest()
{
    LedgerFixture ledger;
    FaultyDisk disk;
    Database database = ledger.open();
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"delete from TA3"_s);
        disk.failFrom = disk.writes;
        QVERIFY(failureOf([&] { database.Execute(u"insert into TA1 (F1) values ('B')"_s); }));
        disk.heal();
        // The engine has dropped the transaction: this one would be kept alone.
        QVERIFY(failureOf([&] { database.Execute(u"insert into TA2 (F1) values ('C')"_s); }));
        QCOMPARE(LookupValue(database, u"select F1 from TA2"_s), QString());
    });
    QCOMPARE(failure.value().details().aftermath, nothingKept.toString());
    QCOMPARE(ledger.rows(u"select TA1.F1,TA2.F1,TA3.F1 from TA1,TA2,TA3"_s), QStringList(u"001|001|001"_s));
    database.Execute(u"insert into TA2 (F1) values ('C')"_s); // the next command is free again
    ledger.letGo();
}

void StoreTest::undoneRunIsToldWhenItsErrorWasIgnored()
{
    LedgerFixture ledger;
    FaultyDisk disk;
    Database database = ledger.open();
    bool shown = false;
    setDialogHost(std::make_unique<WatchingHost>([&] { shown = true; }));
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"delete from TA3"_s);
        disk.failFrom = disk.writes;
        failureOf([&] { database.Execute(u"insert into DanNo (DanF1) values ('RK0411180001')"_s); });
        disk.heal();
        MsgBox(u"单据保存成功！"_s);
    });
    QVERIFY2(!shown, "the success was told though nothing was kept");
    QCOMPARE(failure.value().details().aftermath, nothingKept.toString());
    setDialogHost(nullptr);
}

void StoreTest::lockedOutCommitIsUndone()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    dontWait(database);
    sqlite3_stmt* reading = nullptr;
    sqlite3* other = ledger.second().connection().handle();
    QCOMPARE(sqlite3_prepare_v2(other, "select F1 from TA1", -1, &reading, nullptr), SQLITE_OK);
    QCOMPARE(sqlite3_step(reading), SQLITE_ROW);
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"delete from TA3"_s);
    });
    sqlite3_finalize(reading);
    QCOMPARE(failure.value().kind(), Kind::Locked);
    QCOMPARE(failure->details().aftermath, nothingKept.toString());
    QCOMPARE(ledger.value(u"select F1 from TA3"_s), u"001"_s);
    ledger.run(u"delete from TA3"_s); // no lock was left behind
}

void StoreTest::otherProcessHoldsTheLedger()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    dontWait(database);
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {u"--session"_s, ledger.path()});
    QVERIFY(other.waitForReadyRead());
    const auto failure = failureOf([&] {
        const WriteRun run(database);
        database.Execute(u"delete from TA3"_s);
    });
    QCOMPARE(failure.value().kind(), Kind::Locked);
    QCOMPARE(failure->details().aftermath, nothingKept.toString());
    QCOMPARE(failureOf([&] { database.Execute(u"delete from TA3"_s); }).value().kind(), Kind::Locked);
    QCOMPARE(LookupValue(database, u"select count(*) from TA3"_s), u"1"_s); // reading goes on
    database.Close();
    QCOMPARE(failureOf([&] { LedgerAlone alone(ledger.path()); }).value().kind(), Kind::Locked);

    other.kill();
    QVERIFY(other.waitForFinished());
    QVERIFY(!failureOf([&] { LedgerAlone alone(ledger.path()); }));
    QCOMPARE(ledger.value(u"select count(*) from TA3"_s), u"1"_s);
}

void StoreTest::readRunSharesOneTransaction()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    dontWait(database);
    dontWait(ledger.second());
    sqlite3* handle = database.connection().handle();
    {
        const ReadRun run(database);
        QCOMPARE(LookupValue(database, u"select F1 from TA3"_s), u"001"_s);
        QVERIFY(!sqlite3_get_autocommit(handle));
        database.Execute(u"insert into TA3 (F1) values ('A')"_s); // commits by itself
        QCOMPARE(ledger.value(u"select count(*) from TA3"_s), u"2"_s);
        QCOMPARE(LookupValue(database, u"select count(*) from TA3"_s), u"2"_s);
        {
            const WriteRun writing(database);
            database.Execute(u"delete from TA3"_s);
        }
        QCOMPARE(ledger.value(u"select count(*) from TA3"_s), u"0"_s);
        LookupValue(database, u"select F1 from TA3"_s);
        QVERIFY(!sqlite3_get_autocommit(handle));
    }
    QVERIFY(sqlite3_get_autocommit(handle));
    ledger.run(u"insert into TA3 (F1) values ('B')"_s);
}

void StoreTest::copyOfOpenLedger()
{
    LedgerFixture ledger;
    Database database = ledger.open();
    database.Execute(u"insert into TA3 (F1) values ('A')"_s);
    const QString copy = ledger.folder() + u"/副本.hcn"_s;
    {
        const WriteRun run(database);
        database.Execute(u"insert into TA3 (F1) values ('B')"_s);
        DBEngine::copyDatabase(ledger.path(), copy, ledgerConnect.toString());
        // Only another process sees whether the lock is still there.
        QCOMPARE(QProcess::execute(QCoreApplication::applicationFilePath(), {u"--session"_s, ledger.path()}),
                 refusedExit);
    }
    Database copied = DBEngine::OpenDatabase(copy, ledgerConnect.toString());
    QCOMPARE(LookupValue(copied, u"select count(*) from TA3"_s), u"2"_s);
    copied.Execute(u"insert into TA3 (F1) values ('C')"_s);
    QCOMPARE(ledger.value(u"select count(*) from TA3"_s), u"3"_s);
    QVERIFY2(failureOf([&] { DBEngine::copyDatabase(ledger.path(), copy, ledgerConnect.toString()); }),
             "a file was written over");
    QCOMPARE(LookupValue(copied, u"select count(*) from TA3"_s), u"3"_s);
}

void StoreTest::failedCopyLeavesNothing()
{
    LedgerFixture ledger;
    const QString copy = ledger.folder() + u"/副本.hcn"_s;
    FaultyDisk disk;
    for (const auto& make : {&DBEngine::copyDatabase, &DBEngine::CompactDatabase}) {
        disk.failFrom = disk.writes + 4;
        QCOMPARE(failureOf([&] { make(ledger.path(), copy, ledgerConnect.toString()); }).value().kind(), Kind::Disk);
        disk.heal();
        QCOMPARE(ledger.files(), QStringList(u"帐本.hcn"_s));
        QCOMPARE(failureOf([&] { make(ledger.path(), copy, u";PWD=other"_s); }).value().kind(), Kind::NotLedger);
        QCOMPARE(ledger.files(), QStringList(u"帐本.hcn"_s));
    }
}

void StoreTest::compactNeedsTheLedgerAlone()
{
    LedgerFixture ledger;
    const QString copy = ledger.folder() + u"/备份.hcn"_s;
    ledger.run(u"insert into TC15 (F17) values ('"_s + QString(300000, u'行') + u"')"_s);
    ledger.run(u"delete from TC15"_s);
    const auto compact = [&] { DBEngine::CompactDatabase(ledger.path(), copy, ledgerConnect.toString()); };
    QCOMPARE(failureOf(compact).value().kind(), Kind::Locked);
    ledger.letGo();
    compact();
    QCOMPARE(ledger.files(), QStringList({u"备份.hcn"_s, u"帐本.hcn"_s}));
    QVERIFY(QFileInfo(copy).size() < QFileInfo(ledger.path()).size() / 2);
    Database copied = DBEngine::OpenDatabase(copy, ledgerConnect.toString());
    QCOMPARE(LookupValue(copied, u"select F2 from TE1 where F1='001'"_s), u"管理员"_s);
    copied.Execute(u"insert into TB1 (F1,F2) values ('RK0411180001','2004-11-18')"_s);
    QCOMPARE(LookupValue(copied, u"select F1 from TB1 where datediff('d','2004-11-18',F2)=0"_s), u"RK0411180001"_s);
}

void StoreTest::restoreTakesThePlaceOfALedger()
{
    LedgerFixture ledger;
    LedgerFixture backup;
    backup.run(u"insert into TA3 (F1) values ('B')"_s);
    ledger.run(u"insert into TA3 (F1) values ('L')"_s);
    const auto restore = [&](const QString& source) {
        return failureOf([&] { DBEngine::replaceDatabase(source, ledger.path(), ledgerConnect.toString()); });
    };
    QCOMPARE(restore(backup.path()).value().kind(), Kind::Locked);
    ledger.letGo();
    writeBytes(ledger.folder() + u"/坏.hcn"_s, "garbage");
    QCOMPARE(restore(ledger.folder() + u"/坏.hcn"_s).value().kind(), Kind::NotLedger);
    QCOMPARE(ledger.value(u"select F1 from TA3 where F1<>'001'"_s), u"L"_s);
    ledger.letGo();
    QVERIFY(!restore(backup.path()));
    QCOMPARE(ledger.value(u"select F1 from TA3 where F1<>'001'"_s), u"B"_s);
    QCOMPARE(backup.value(u"select F1 from TA3 where F1<>'001'"_s), u"B"_s);
    ledger.letGo();
    QCOMPARE(ledger.files(), QStringList({u"坏.hcn"_s, u"帐本.hcn"_s}));
    QVERIFY(QFile::remove(ledger.path()) && !restore(backup.path()));
    QCOMPARE(ledger.value(u"select F1 from TA3 where F1<>'001'"_s), u"B"_s);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() == 3 && arguments[1] == u"--session"_s)
        return otherSession(arguments[2]);
    StoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "store_test.moc"
