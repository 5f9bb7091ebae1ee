// The care of the ledger: the backup at exit and by hand, the restore, the safety copies; and what a full disk, another
// session or a wrong file make of them.

#include "admin/S32.h"
#include "admin/auto_backup.h"
#include "admin/safety_copy.h"
#include "admin/sysDBbak.h"
#include "ledger/engine.h"
#include "memory_desktop.h"
#include "modal_forms.h"
#include "platform/base/volume.h"
#include "scripted_dialogs.h"
#include "session_fixture.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/entry.h"
#include "tools/faulty_disk.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {

const QString automaticFailed = u"其它用户正在使用当前帐本，系统无法备份数据。\n请在其它用户退出之后再备份数据！"_s;
const QString manualFailed = u"无法完成备份！其它用户正在使用此帐本。\n请其它用户停止操作并退出系统后才可以备份！"_s;
const QString manualDone = u"备份完成！请妥善保存备份文件！"_s;
const QString manualTitle = u"系统数据备份至......"_s;
const QString restoreFailed = u"系统数据恢复失败！原因如下：\n"_s;
const QString restoreDone = u"数据恢复成功！为了数据安全，请重新登录！"_s;
const QString restoreTitle = u"从备份文件中恢复数据到现在的系统"_s;
const QString unsoundQuestion = u"备份文件有部分损坏，恢复之后有些数据可能不完整或者无法使用。\n仍然要用它恢复吗？"_s;
const QString noSafety = u"操作前的安全备份没有完成！原因如下：\n"_s;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void putFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("a test's file can't be written");
}

/// The goods of a ledger file, which tell one state of the books from another; "" when it is no sound ledger.
QString goodsIn(const QString& path)
{
    try {
        Database ledger = DBEngine::OpenDatabase(path, ledgerConnect.toString());
        return LookupValue(ledger, u"select F1 from TA4"_s);
    } catch (const StoreError&) {
        return {};
    }
}

/// A ledger that opens, but whose indexes are mixed up.
void spoil(const QString& path)
{
    Database ledger = DBEngine::OpenDatabase(path, ledgerConnect.toString());
    LedgerConnection& engine = ledger.connection();
    engine.executeOwn(u"pragma writable_schema = on"_s, {});
    engine.executeOwn(
        u"update sqlite_master set rootpage = (select rootpage from sqlite_master where name = 'jxc_goods') "
        "where name = 'jxc_period'"_s,
        {});
}

} // namespace

class CareTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> folder_; ///< the program folder
    std::unique_ptr<LedgerFixture> ledger_; ///< holds the goods "OLD"
    std::unique_ptr<ScriptedDialogs> boxes_;
    MemoryDesktop* desktop_ = nullptr;

    QString beside(const QString& name) const { return folder_->filePath(name); }
    QString backup(const QString& name) const { return beside(u"数据备份/"_s + name); }
    QStringList backups(const QString& folder = {}) const
    {
        return QDir(backup(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    void enter(const QString& ledgerName)
    {
        ledger_->letGo();
        beginSession(*ledger_);
        setProgramFolder(folder_->path());
        gLedgerName = ledgerName;
    }
    /// A ledger in the backup folder with those goods.
    QString makeBackup(const QString& goods, const QString& name = u"备份-五金.hcn"_s)
    {
        QDir().mkpath(backup(QString()));
        QFile::copy(LedgerFixture::pristine(), backup(name));
        Database made = DBEngine::OpenDatabase(backup(name), ledgerConnect.toString());
        made.Execute(u"insert into TA4 (F1) values ('"_s + goods + u"')"_s);
        return backup(name);
    }

private slots:
    void init()
    {
        desktop_ = &MemoryDesktop::install();
        folder_ = std::make_unique<QTemporaryDir>();
        ledger_ = std::make_unique<LedgerFixture>();
        ledger_->run(u"insert into TA4 (F1) values ('OLD')"_s);
        boxes_ = std::make_unique<ScriptedDialogs>();
        setFileSystemProbe([](const QString&) { return u"ext4"_s; });
        enter(u"五金"_s);
    }

    void cleanup()
    {
        endSession();
        setFileSystemProbe({});
        boxes_.reset();
    }

    void networkFolder_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("fileSystem");
        QTest::addColumn<bool>("network");
        QTest::newRow("disk") << u"/opt/hcn/"_s << u"ext4"_s << false;
        QTest::newRow("disk of Windows") << u"C:\\hcn\\"_s << QString() << false;
        QTest::newRow("memory") << u"/tmp/"_s << u"tmpfs"_s << false;
        QTest::newRow("driver in user space") << u"/mnt/"_s << u"fuseblk"_s << false;
        QTest::newRow("one backslash") << u"\\hcn\\"_s << u"ext4"_s << true;
        QTest::newRow("share") << u"\\\\server\\hcn\\"_s << QString() << true;
        QTest::newRow("two slashes") << u"//server/hcn/"_s << u"ext4"_s << true;
        QTest::newRow("mounted share") << u"/mnt/hcn/"_s << u"cifs"_s << true;
        QTest::newRow("NFS") << u"/mnt/hcn/"_s << u"nfs4"_s << true;
        QTest::newRow("sshfs") << u"/mnt/hcn/"_s << u"fuse.sshfs"_s << true;
    }

    void networkFolder()
    {
        QFETCH(QString, fileSystem);
        QFETCH(QString, path);
        setFileSystemProbe([fileSystem](const QString&) { return fileSystem; });
        QTEST(isOnNetwork(path), "network");
    }

    /// All three do nothing there but tell, the one at exit not even that.
    void onNetwork()
    {
        setFileSystemProbe([](const QString&) { return u"cifs"_s; });
        putFile(beside(u"五金bak.set"_s), "0\n");
        AutoBackup();
        boxes_->expect(u"对不起，备份数据只能在数据库本地电脑上完成！"_s);
        theForm<sysDBbak>().Command3->click();
        boxes_->expect(u"数据恢复只能在数据库本地电脑上执行！"_s);
        theForm<S32>().Command1->click();
        QVERIFY(gDB.isOpen());
        QVERIFY(!QFile::exists(beside(u"数据备份"_s)));
    }

    // At exit ---------------------------------------------------------------------------------------------------------

    void automatic_data()
    {
        QTest::addColumn<QByteArray>("settings"); // "-" for no file
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QByteArray>("settingsAfter"); // "" for unchanged
        const QString today = u"五金2004-11-18.hcn"_s;
        const QByteArray never = "还没有备份记录\n";
        const QStringList none;
        const QStringList old{u"五金2004-11-10.hcn"_s};
        const QStringList oldKept{u"五金2004-11-10.___"_s, today};
        const auto row = [](const char* name, const QByteArray& settings, const QStringList& before,
                            const QStringList& after, const QByteArray& settingsAfter) {
            QTest::newRow(name) << settings << before << after << settingsAfter;
        };
        row("not configured", "-", old, old, {});
        row("first", "0\n" + never, none, {today}, "0\n2004-11-18\n");
        row("each exit", "0\n2004-11-17\n", old, oldKept, "0\n2004-11-18\n");
        row("each exit, again today", "0\n2004-11-18\n", oldKept, {u"五金2004-11-18.___"_s, today}, "0\n2004-11-18\n");
        row("each day, again today", "1\n2004-11-18\n", none, none, {});
        row("before the day", "3\n2004-11-16\n", old, old, {});
        row("on the day", "3\n2004-11-15\n", old, oldKept, "3\n2004-11-18\n");
        row("clock was ahead, within", "10\n2004-11-25\n", old, old, {});
        row("clock was ahead, beyond", "5\n2004-11-25\n", old, oldKept, "5\n2004-11-18\n");
        row("today's file is there", "3\n2004-11-1\n", {today}, {today}, {});
        row("newest by time", "0\n2004-11-17\n", {u"五金2004-11-9.hcn"_s, u"五金2004-11-10.hcn"_s},
            {u"五金2004-11-10.___"_s, u"五金2004-11-9.hcn"_s, today}, "0\n2004-11-18\n");
        row("today's before a later one", "0\n2004-11-17\n", {u"五金2004-11-20.hcn"_s, today},
            {u"五金2004-11-18.___"_s, u"五金2004-11-20.hcn"_s, today}, "0\n2004-11-18\n");
        const QStringList strangers{u"五金二2004-11-10.hcn"_s, u"五金二2004-11-9.___"_s, u"五金旧.hcn"_s,
                                    u"五金2004-11-010.hcn"_s, u"备份-五金.hcn"_s};
        row("other files stay", "0\n2004-11-17\n", strangers + old, strangers + oldKept, "0\n2004-11-18\n");
        row("after a failure", "0\n2004-11-17\n", {u"五金2004-11-10.___"_s}, oldKept, "0\n2004-11-18\n");
        row("broken off", "0\n2004-11-17\n", {u"五金2004-11-10.hcn-part"_s, u"五金2004-11-10.hcn-part-journal"_s},
            {today}, "0\n2004-11-18\n");
        row("empty settings", "", none, {today}, "0\n2004-11-18\n");
        row("one line", "2\n", none, {today}, "2\n2004-11-18\n");
        row("no dates", "2\n2004-13-40\n", none, {today}, "2\n2004-11-18\n");
        row("no numbers", "每天\n2004-11-18\n", none, {today}, "0\n2004-11-18\n");
        row("negative", "-3\n2004-11-16\n", none, none, {});
        row("fraction", "2.9\n2004-11-16\n", none, {today}, "2\n2004-11-18\n");
        row("bytes", QByteArray("\xff\xfe\x00\x9f", 4), none, {today}, "0\n2004-11-18\n");
    }

    void automatic()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        QFETCH(QByteArray, settingsAfter);
        const QString today = u"五金2004-11-18.hcn"_s;
        if (settings != "-")
            putFile(beside(u"五金bak.set"_s), settings);
        QDir().mkpath(backup(QString()));
        for (const QString& name : before)
            putFile(backup(name), name.toUtf8());
        AutoBackup();
        after.sort();
        QCOMPARE(backups(), after);
        const bool ran = !settingsAfter.isEmpty();
        QCOMPARE(gDB.isOpen(), !ran); // the program ends with it closed
        QCOMPARE(contentOf(beside(u"五金bak.set"_s)), ran               ? settingsAfter
                                                      : settings == "-" ? QByteArray("no such file")
                                                                        : settings);
        for (const QString& name : after) {
            if (name == today && ran) {
                QCOMPARE(goodsIn(backup(name)), u"OLD"_s);
                continue;
            }
            QString was = name;
            if (!before.contains(name) || (name.contains(u"11-18"_s) && ran))
                was = name.chopped(3) + u"hcn"_s;
            QCOMPARE(contentOf(backup(name)), was.toUtf8());
        }
    }

    void automaticNeedsTheLedgerAlone()
    {
        putFile(beside(u"五金bak.set"_s), "0\n2004-11-17\n");
        makeBackup(u"EARLIER"_s, u"五金2004-11-17.hcn"_s);
        ledger_->second();
        for (int exit = 0; exit < 3; ++exit) { // the earlier backup outlives any number of failures
            boxes_->expect(automaticFailed);
            AutoBackup();
            QCOMPARE(boxes_->lastBox.title, u"自动备份"_s);
            QCOMPARE(backups(), QStringList(u"五金2004-11-17.___"_s));
        }
        QCOMPARE(contentOf(beside(u"五金bak.set"_s)), "0\n2004-11-17\n");
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(QFile::rename(backup(u"五金2004-11-17.___"_s), backup(u"x.hcn"_s)));
        QCOMPARE(goodsIn(backup(u"x.hcn"_s)), u"EARLIER"_s);
    }

    void ledgerWithoutName_data()
    {
        QTest::addColumn<bool>("byPath");
        QTest::newRow("empty") << false;
        QTest::newRow("its path") << true;
    }

    void ledgerWithoutName()
    {
        QFETCH(bool, byPath);
        enter(byPath ? ledger_->path() : QString());
        auto& form = theForm<sysDBbak>();
        form.Txt->setText(u"0"_s);
        boxes_->expect(u"保存成功！"_s);
        form.Command2->click();
        AutoBackup();
        QCOMPARE(backups(), QStringList(u"帐本文件2004-11-18.hcn"_s));
        QVERIFY(QFile::exists(beside(u"帐本文件bak.set"_s)));
    }

    /// Through the exit question, and the settings of the desktop are written whatever became of the backup.
    void exitBacksUp()
    {
        putFile(beside(u"五金bak.set"_s), "0\n");
        MForm& window = MForm::get();
        boxes_->expect(u"真的要退出系统吗？"_s, Answer::No);
        window.close();
        QVERIFY(backups().isEmpty());
        boxes_->expect(u"真的要退出系统吗？"_s, Answer::Yes);
        window.close();
        QCOMPARE(backups(), QStringList(u"五金2004-11-18.hcn"_s));
        QCOMPARE(desktop_->ends, 1);
        QVERIFY(!gDB.isOpen());
        ledger_->second();
        boxes_->expect(u"真的要退出系统吗？"_s, Answer::Yes);
        boxes_->expect(automaticFailed);
        window.close();
        QCOMPARE(desktop_->ends, 2);
        delete &window;
    }

    // By hand ---------------------------------------------------------------------------------------------------------

    void settings_data()
    {
        QTest::addColumn<QByteArray>("file"); // "-" for none
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("last");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QByteArray>("saved");
        QTest::newRow("none yet") << QByteArray("-") << QString() << u"还没有备份记录"_s << u"3"_s
                                  << QByteArray("3\n还没有备份记录\n");
        QTest::newRow("changed") << QByteArray("7\n2004-11-1\n") << u"7"_s << u"2004-11-1"_s << u"0"_s
                                 << QByteArray("0\n2004-11-1\n");
        QTest::newRow("negative") << QByteArray("7\n2004-11-1\n") << u"7"_s << u"2004-11-1"_s << u"-2"_s
                                  << QByteArray("0\n2004-11-1\n");
        QTest::newRow("fraction") << QByteArray("7\n") << u"7"_s << u"还没有备份记录"_s << u"2.9天"_s
                                  << QByteArray("2\n还没有备份记录\n");
        QTest::newRow("no number") << QByteArray("\n2004-11-1\n") << QString() << u"2004-11-1"_s << u"每天"_s
                                   << QByteArray("0\n2004-11-1\n");
    }

    void settings()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, last);
        QFETCH(QString, typed);
        QFETCH(QByteArray, saved);
        if (file != "-")
            putFile(beside(u"五金bak.set"_s), file);
        auto& form = theForm<sysDBbak>();
        QTEST(form.Txt->text(), "shown");
        QVERIFY(form.Labinfo->text().endsWith(u"上次自动备份的时间为："_s + last));
        form.Txt->setText(typed);
        boxes_->expect(u"保存成功！"_s);
        form.Command2->click();
        QCOMPARE(form.Txt->text(), typed == u"-2" ? u"0"_s : typed);
        QCOMPARE(contentOf(beside(u"五金bak.set"_s)), saved);
    }

    void manual()
    {
        auto& form = theForm<sysDBbak>();
        boxes_->expectFile(manualTitle, std::nullopt);
        form.Command3->click();
        QCOMPARE(boxes_->lastFile.fileName, gAppPath + u"数据备份/备份-五金.hcn"_s);
        QVERIFY(backups().isEmpty());

        const QString taken = makeBackup(u"TAKEN"_s);
        boxes_->expectFile(manualTitle, taken);
        boxes_->expect(u"目标位置已备份的同名文件，请删除目标文件或更换备份位置！"_s);
        boxes_->expectFile(manualTitle, backup(u"二.hcn"_s));
        boxes_->expect(manualDone);
        form.Command3->click();
        QCOMPARE(goodsIn(taken), u"TAKEN"_s);
        QCOMPARE(goodsIn(backup(u"二.hcn"_s)), u"OLD"_s);
        QCOMPARE(backups().size(), 2);
        gDB.Execute(u"update TA4 set F1='NEXT'"_s); // the session goes on
        QCOMPARE(ledger_->value(u"select F1 from TA4"_s), u"NEXT"_s);
    }

    void manualFails_data()
    {
        QTest::addColumn<QString>("trouble");
        QTest::newRow("other session") << u"busy"_s;
        QTest::newRow("no such folder") << u"folder"_s;
        QTest::newRow("full disk") << u"full"_s;
    }

    void manualFails()
    {
        QFETCH(QString, trouble);
        FaultyDisk disk;
        enter(u"五金"_s);
        if (trouble == u"busy")
            ledger_->second();
        else if (trouble == u"full")
            disk.failFrom = disk.writes + 20;
        auto& form = theForm<sysDBbak>();
        boxes_->expectFile(manualTitle, trouble == u"folder" ? beside(u"没有/一.hcn"_s) : backup(u"一.hcn"_s));
        boxes_->expect(manualFailed);
        form.Command3->click();
        disk.heal();
        QVERIFY(backups().isEmpty());
        QCOMPARE(form.LabTrouble->text().isEmpty(), trouble == u"busy");
        QVERIFY(!QApplication::overrideCursor());
        gDB.Execute(u"update TA4 set F1='NEXT'"_s);
        endSession();
        ledger_->letGo();
    }

    // Restore ---------------------------------------------------------------------------------------------------------

    void restore_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("reason"); // "" when it comes off
        QTest::newRow("backup") << u"backup"_s << QString();
        QTest::newRow("backup that may only be read") << u"read only"_s << QString();
        QTest::newRow("the ledger is lost") << u"lost"_s << QString();
        QTest::newRow("the ledger is damaged") << u"damaged"_s << QString();
        QTest::newRow("other session") << u"busy"_s << u"其它用户正在使用这个帐本。请在其它用户退出系统之后再试。"_s;
        QTest::newRow("no ledger") << u"garbage"_s << u"不是本系统的帐本文件，或者密码、加密方式不对。请选择正确的帐本文件。"_s;
        QTest::newRow("another password")
            << u"password"_s << u"不是本系统的帐本文件，或者密码、加密方式不对。请选择正确的帐本文件。"_s;
        QTest::newRow("no such file") << u"missing"_s << u"请检查文件是否还在、网络是否连通。"_s;
        QTest::newRow("unsound backup, wanted all the same") << u"unsound"_s << QString();
    }

    void restore()
    {
        QFETCH(QString, what);
        QFETCH(QString, reason);
        QString source = makeBackup(u"NEW"_s);
        const bool hurt = what == u"lost" || what == u"damaged";
        if (what == u"garbage") {
            putFile(source, QByteArray(9000, 'x'));
        } else if (what == u"password") {
            QVERIFY(QFile::remove(source));
            createLedger(source, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), u";PWD=other"_s);
        } else if (what == u"missing") {
            QVERIFY(QFile::remove(source));
        } else if (what == u"unsound") {
            spoil(source);
        } else if (what == u"busy") {
            ledger_->second();
        } else if (what == u"read only") {
            QFile::setPermissions(source, QFile::ReadOwner);
        } else if (what == u"lost") {
            QVERIFY(QFile::remove(ledger_->path()));
        } else if (what == u"damaged") {
            putFile(ledger_->path(), QByteArray(9000, 'x'));
        }
        const auto modeBefore = QFile::Permissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                                   QFile::WriteGroup | QFile::ReadUser | QFile::WriteUser);
        QFile::setPermissions(ledger_->path(), modeBefore);
        auto& form = theForm<S32>();
        boxes_->expectFile(restoreTitle, std::nullopt);
        form.Command1->click();
        QCOMPARE(boxes_->lastFile.fileName, gAppPath + u"数据备份/*.hcn"_s);
        boxes_->expectFile(restoreTitle, source);
        QStringList left{u"帐本.hcn"_s};
        if (reason.isEmpty()) {
            if (what == u"unsound")
                boxes_->expect(unsoundQuestion, Answer::Yes);
            if (hurt)
                boxes_->expectQuestionStart(noSafety, Answer::Yes);
            boxes_->expect(restoreDone);
        } else {
            boxes_->expectStart(restoreFailed);
        }
        form.Command1->click();
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
        QVERIFY(boxes_->lastBox.text.contains(reason));
        QCOMPARE(form.restored(), reason.isEmpty());
        QCOMPARE(desktop_->ends, 0);
        QCOMPARE(LookupValue(gDB, u"select F1 from TA4"_s), reason.isEmpty() ? u"NEW"_s : u"OLD"_s);
        // A copy is made where something is going to be lost, and only there.
        const QStringList copies = backups(u"操作前备份"_s);
        QCOMPARE(copies, reason.isEmpty() && !hurt ? QStringList(u"五金-20041118-090503-恢复.hcn"_s) : QStringList());
        for (const QString& copy : copies)
            QCOMPARE(goodsIn(backup(u"操作前备份/"_s + copy)), u"OLD"_s);
        if (what != u"lost")
            QCOMPARE(QFile::permissions(ledger_->path()), modeBefore);
        endSession();
        ledger_->letGo();
        QCOMPARE(ledger_->files(), left);
        QVERIFY(!QApplication::overrideCursor());
    }

    void secondThoughts()
    {
        const QString source = makeBackup(u"NEW"_s);
        spoil(source);
        boxes_->expectFile(restoreTitle, source);
        boxes_->expect(unsoundQuestion, Answer::No);
        auto& form = theForm<S32>();
        form.Command1->click();
        QVERIFY(!form.restored());
        QVERIFY(backups(u"操作前备份"_s).isEmpty());
        QCOMPARE(LookupValue(gDB, u"select F1 from TA4"_s), u"OLD"_s);
    }

    void restoreOnlyWithSafetyCopy()
    {
        const QString source = makeBackup(u"NEW"_s);
        putFile(backup(u"操作前备份"_s), "no folder");
        boxes_->expectFile(restoreTitle, source);
        boxes_->expectQuestionStart(noSafety, Answer::No);
        auto& form = theForm<S32>();
        form.Command1->click();
        QVERIFY(!form.restored());
        QCOMPARE(LookupValue(gDB, u"select F1 from TA4"_s), u"OLD"_s);
    }

    /// Neither the backup nor the ledger: there is nothing left to work with.
    void nothingToGoOnWith()
    {
        QVERIFY(QFile::remove(ledger_->path()));
        boxes_->expectFile(restoreTitle, beside(u"没有.hcn"_s));
        boxes_->expectStart(restoreFailed);
        theForm<S32>().Command1->click();
        QCOMPARE(desktop_->ends, 1);
    }

    void loginFollows()
    {
        const QString source = makeBackup(u"NEW"_s);
        {
            Database other = DBEngine::OpenDatabase(source, ledgerConnect.toString());
            other.Execute(u"update TE1 set F2='旧帐管理员'"_s);
        }
        MForm& window = MForm::get();
        window.show();
        boxes_->expectFile(restoreTitle, source);
        boxes_->expect(restoreDone);
        inModal<S32>(u"S32"_s, [](S32& form) {
            inModal<Login>(u"Login"_s, [](Login& login) {
                QCOMPARE(gOperId, QString());
                login.Txt[0]->setText(u"001"_s);
                login.Cmd[0]->click();
            });
            form.Command1->click();
        });
        window.menuItem(u"Menu_zbhf"_s)->trigger();
        QCOMPARE(gOperName, u"旧帐管理员"_s);
        endSession();
        delete &window;
    }

    // Safety copies ---------------------------------------------------------------------------------------------------

    void safetyCopies()
    {
        ledger_->second(); // others may be working
        QDir().mkpath(backup(u"操作前备份"_s));
        const QString others = u"五金二-20041101-080000-结转.hcn"_s;
        putFile(backup(u"操作前备份/"_s + others), "another ledger's");
        putFile(backup(u"操作前备份/五金-20041101-080000-结转.hcn-part"_s), "broken off");
        const QDateTime start(QDate(2004, 11, 18), QTime(9, 5, 3));
        QStringList expected{others};
        for (int i = 0; i < 12; ++i) {
            setClock(start.addSecs(i));
            ledger_->run(u"update TA4 set F1='S%1'"_s.arg(i));
            QVERIFY(safetyCopy(u"清除"));
            if (i >= 2)
                expected += u"五金-20041118-0905%1-清除.hcn"_s.arg(3 + i, 2, 10, QChar(u'0'));
        }
        expected.sort();
        QCOMPARE(backups(u"操作前备份"_s), expected);
        QCOMPARE(goodsIn(backup(u"操作前备份/五金-20041118-090514-清除.hcn"_s)), u"S11"_s);

        // What is being restored isn't pushed out, nor is the newest one by a clock that goes wrong.
        const QString oldest = backup(u"操作前备份/五金-20041118-090505-清除.hcn"_s);
        setClock(start.addYears(-1));
        QVERIFY(safetyCopy(u"恢复", oldest));
        QVERIFY(safetyCopy(u"恢复", oldest));
        QCOMPARE(goodsIn(oldest), u"S2"_s);
        QCOMPARE(goodsIn(backup(u"操作前备份/五金-20031118-090503-恢复(2).hcn"_s)), u"S11"_s);
    }

    // A failing disk --------------------------------------------------------------------------------------------------

    /// The disk is full from the n-th write on: each command leaves what was there, and in the end comes off.
    void fullDisk_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("at exit") << u"exit"_s;
        QTest::newRow("restore") << u"restore"_s;
        QTest::newRow("safety copy") << u"safety"_s;
    }

    void fullDisk()
    {
        QFETCH(QString, command);
        const QString source = makeBackup(u"NEW"_s);
        makeBackup(u"EARLIER"_s, u"五金2004-11-17.hcn"_s);
        putFile(beside(u"五金bak.set"_s), "0\n2004-11-17\n");
        endSession();
        boxes_.reset();
        FaultyDisk disk;
        int failures = 0;
        for (int writes = 0, step = 1;; writes += step, step += step) {
            enter(u"五金"_s);
            bool told = false;
            setDialogHost(std::make_unique<WillingHost>(told, source));
            disk.failFrom = disk.writes + writes;
            if (command == u"exit")
                AutoBackup();
            else if (command == u"restore")
                theForm<S32>().Command1->click();
            else
                safetyCopy(u"清除");
            disk.heal();
            endSession();
            const QStringList copies = backups(u"操作前备份"_s);
            for (const QString& copy : copies)
                QVERIFY(!goodsIn(backup(u"操作前备份/"_s + copy)).isEmpty());
            if (!told)
                break;
            ++failures;
            QCOMPARE(backups().filter(u"part"_s), QStringList());
            QCOMPARE(goodsIn(ledger_->path()), u"OLD"_s);
            QVERIFY(backups().contains(command == u"exit" ? u"五金2004-11-17.___"_s : u"五金2004-11-17.hcn"_s));
        }
        setDialogHost(nullptr);
        QVERIFY2(failures > 3, "the disk never failed");
        QCOMPARE(goodsIn(ledger_->path()), command == u"restore" ? u"NEW"_s : u"OLD"_s);
        if (command == u"exit")
            QCOMPARE(goodsIn(backup(u"五金2004-11-18.hcn"_s)), u"OLD"_s);
    }

    /// A session died in the midst of a commit: the ledger needs the journal until its file is another one.
    void journalOfACrash()
    {
        const QString source = makeBackup(u"NEW"_s);
        endSession();
        FaultyDisk disk;
        int crashes = 0;
        for (int writes = 8; writes < 18; ++writes) {
            ledger_ = std::make_unique<LedgerFixture>();
            ledger_->run(u"insert into TA4 (F1) values ('OLD')"_s);
            disk.failFrom = disk.writes + writes;
            try {
                ledger_->run(u"update TA4 set F1='HALF'"_s);
            } catch (const StoreError&) { // the rest of the crash is that nothing can be taken back
            }
            ledger_->letGo();
            disk.heal();
            if (!QFile::exists(ledger_->path() + u"-journal"_s))
                continue;
            ++crashes;
            const auto replace = [&](const QString& with) {
                try {
                    DBEngine::replaceDatabase(with, ledger_->path(), ledgerConnect.toString());
                } catch (const StoreError&) { // seen by what is in the ledger
                }
            };
            replace(beside(u"没有.hcn"_s));
            if (crashes % 2 == 0)
                QCOMPARE(goodsIn(ledger_->path()), u"OLD"_s);
            replace(source);
            QCOMPARE(ledger_->files(), QStringList(u"帐本.hcn"_s));
            QCOMPARE(goodsIn(ledger_->path()), u"NEW"_s);
        }
        QVERIFY2(crashes > 1, "no journal was left");
    }

private:
    /// Says yes to everything, chooses one file, and notes whether a failure was told.
    class WillingHost : public DialogHost
    {
    public:
        WillingHost(bool& failed, QString file)
            : failed_(failed)
            , file_(std::move(file))
        {}
        Answer show(const Box& box) override
        {
            failed_ |=
                box.text == automaticFailed || box.text.startsWith(restoreFailed) || box.text.startsWith(noSafety);
            return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
        }
        std::optional<QString> input(const InputRequest&) override { return {}; }
        std::optional<QString> chooseFile(const FileRequest&) override { return file_; }
        std::optional<PrintJob> print(const PrintRequest&) override { return {}; }
        void doEvents() override {}

    private:
        bool& failed_;
        QString file_;
    };
};

QTEST_MAIN(CareTest)
#include "care_test.moc"
