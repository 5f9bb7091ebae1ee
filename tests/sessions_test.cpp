// Several sessions on one ledger, as processes of their own: numbers, audits, reports and prints at the same moment, a
// session that dies, a lock that lasts, a folder that goes away, and one ledger under many names.

#include "admin/CheckUp.h"
#include "admin/S1.h"
#include "admin/SysFuncSet.h"
#include "ledger/presence.h"
#include "masterdata/A4.h"
#include "masterdata/code_table_form.h"
#include "operator_process.h"
#include "reports/C15.h"
#include "reports/C18.h"
#include "reports/C3.h"
#include "reports/Lst.h"
#include "session_fixture.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/ZbSet.h"
#include "shell/rights.h"

#include <QMenu>
#include <QtTest>

namespace {

const QString overtaken = u"网络内其它操作员已经生成了本月报表！请重新打开本窗口再查看！"_s;
const QString backupRefused = u"无法完成备份！其它用户正在使用此帐本。 请其它用户停止操作并退出系统后才可以备份！"_s;

/// A command that is given while something keeps the ledger away, and what it leaves.
struct Command
{
    const char* name;
    void (*prepare)();
    void (*run)();
    const char* state;                    ///< a statement whose value it changes; none: the operator who is logged in
    bool (*kept)() = [] { return true; }; ///< what the operator entered or chose is still on screen
};

template <DocumentKind kind = DocumentKind::B1>
bool entryStands()
{
    const DocumentForm& form = documentForm(kind);
    return form.Edstu != 0 && form.lines->count() > 0 && form.TabS->currentIndex() == 1;
}

bool rowStands()
{
    return documentForm(DocumentKind::B1).GD->TextMatrix(1, 0) == u"RK0411180001";
}

void addInbound()
{
    trigger(DocumentKind::B1, "Menu_Add");
    headless::enterLine(documentForm(DocumentKind::B1), u"A1"_s, u"5"_s);
}

void openDrafts()
{
    documentForm(DocumentKind::B1);
}

void addPartner()
{
    CodeTableForm& form = codeTableForm(CodeTableKind::A1);
    form.command(u"Menu_Add"_s)->trigger();
    form.Txt[0]->setText(u"G9"_s);
    form.Txt[1]->setText(u"新供货商"_s);
}

void addGoods()
{
    auto& form = theForm<A4>();
    form.command(u"Menu_Add"_s)->trigger();
    form.Txt[0]->setText(u"A9"_s);
    form.Txt[1]->setText(u"新货品"_s);
}

const Command commands[] = {
    {"save", addInbound, [] { trigger(DocumentKind::B1, "Menu_save"); }, "select count(*) from TB11", entryStands},
    {"save edited",
     [] {
         openDrafts();
         trigger(DocumentKind::B1, "Menu_edit");
         headless::enterLine(documentForm(DocumentKind::B1), u"A2"_s, u"3"_s);
     },
     [] { trigger(DocumentKind::B1, "Menu_save"); }, "select count(*) from TB11", entryStands},
    {"delete", openDrafts, [] { trigger(DocumentKind::B1, "Menu_del"); }, "select count(*) from TB11", rowStands},
    {"audit", openDrafts, [] { trigger(DocumentKind::B1, "Menu_Ok"); }, "select F8 from TA4 where F1='A1'", rowStands},
    {"un-audit",
     [] {
         openDrafts();
         trigger(DocumentKind::B1, "Menu_Ok");
         documentForm(DocumentKind::B1).listAll({});
     },
     [] { trigger(DocumentKind::B1, "Menu_noOK"); }, "select F8 from TA4 where F1='A1'", rowStands},
    {"save partner", addPartner, [] { codeTableForm(CodeTableKind::A1).command(u"Menu_save"_s)->trigger(); },
     "select count(*) from TA1", [] { return codeTableForm(CodeTableKind::A1).Txt[1]->text() == u"新供货商"; }},
    {"delete partner", [] { codeTableForm(CodeTableKind::A1).GD->select(2); },
     [] { codeTableForm(CodeTableKind::A1).command(u"Menu_del"_s)->trigger(); }, "select count(*) from TA1"},
    {"save goods", addGoods, [] { theForm<A4>().command(u"Menu_save"_s)->trigger(); }, "select count(*) from TA4",
     [] { return theForm<A4>().Txt[1]->text() == u"新货品"; }},
    {"settings", [] {},
     [] {
         theForm<SysFuncSet>().Chk[0]->setChecked(true);
         theForm<SysFuncSet>().Cmd[0]->click();
     },
     "select setval from sysinfo where ID=0"},
    {"generate report", [] { theForm<C181>(); }, generateReport, "select count(*) from jxc where SortNo=0"},
    {"save report", generateReport, [] { theForm<C181>().CmdDel->click(); }, "select max(SortNo) from jxc"},
    {"print", [] { C1::theWindow(); }, printStock, "select count(*) from PRTc1"},
    {"login",
     [] {
         MForm::get();
         logOut();
         theForm<Login>().Txt[0]->setText(u"001"_s);
     },
     [] { theForm<Login>().Cmd[0]->click(); }, nullptr},
};

const Command& commandCalled(const QByteArray& name)
{
    return *std::find_if(std::begin(commands), std::end(commands),
                         [&](const Command& command) { return command.name == name; });
}

/// What a command does and tells undisturbed.
struct Usual
{
    QString before, after;
    QStringList boxes;
};

} // namespace

Q_DECLARE_METATYPE(const Command*)

class SessionsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> folder_; ///< what stands beside the program
    std::unique_ptr<FaultyDisk> disk_;
    std::unique_ptr<LedgerFixture> ledger_;
    Clerk* clerk_ = nullptr;

    std::unique_ptr<Operator> somebody(const QString& name, int patience = 5000)
    {
        return std::make_unique<Operator>(ledger_->path(), name, folder_->path(), patience);
    }
    std::vector<std::unique_ptr<Operator>> crew(const QStringList& names)
    {
        std::vector<std::unique_ptr<Operator>> operators;
        for (const QString& name : names)
            operators.push_back(somebody(name));
        return operators;
    }
    static QStringList answersOf(const std::vector<std::unique_ptr<Operator>>& operators, const QString& line)
    {
        QStringList all;
        for (const auto& each : operators)
            each->tell(line);
        for (const auto& each : operators)
            all += each->answer().mid(1);
        return all;
    }
    QString stateOf(const Command& command)
    {
        if (!command.state)
            return gOperId;
        return ledger_->value(QString::fromLatin1(command.state));
    }
    void beginAtWork()
    {
        ledger_ = std::make_unique<LedgerFixture>();
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('A1','六角螺栓','001','个','M8',2,3,1000)"_s);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('A2','平垫圈','001','片','8',1,2,1000)"_s);
        ledger_->run(u"insert into TA1 (F1,F2) values ('G8','旧供货商')"_s);
        beginSession(*ledger_);
        gAppPath = withSeparator(folder_->path());
    }
    void endAtWork()
    {
        endSession();
        const auto windows = QApplication::topLevelWidgets();
        const auto main =
            std::find_if(windows.begin(), windows.end(), [](QWidget* w) { return qobject_cast<MForm*>(w); });
        if (main != windows.end()) // made by the login
            delete *main;
        ledger_.reset();
    }
    /// Work that leaves one draft behind.
    void makeDraft()
    {
        addInbound();
        trigger(DocumentKind::B1, "Menu_save");
        documentForm(DocumentKind::B1).Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QString renamedFolder() const { return ledger_->folder() + u"-away"_s; }

private slots:
    void initTestCase()
    {
        MemoryDesktop::install();
        QApplication::setQuitOnLastWindowClosed(false);
        folder_ = std::make_unique<QTemporaryDir>();
        for (const QString& layout : QDir(QStringLiteral(LAYOUTS)).entryList({u"*.rpt"_s}))
            QFile::link(QStringLiteral(LAYOUTS) + u'/' + layout, folder_->filePath(layout));
    }

    void init()
    {
        setBusyTimeout(50);
        clerk_ = &Clerk::install();
        disk_ = std::make_unique<FaultyDisk>();
        beginAtWork();
    }

    void cleanup()
    {
        endAtWork();
        disk_.reset();
        setDialogHost(nullptr);
    }

    // At the same moment
    // ------------------------------------------------------------------------------------------------

    void numbersAndAuditsAtTheSameMoment()
    {
        constexpr int each = 8;
        const auto operators = crew({u"甲"_s, u"乙"_s, u"丙"_s, u"丁"_s});
        const int all = each * int(operators.size());
        const QStringList told = answersOf(operators, u"fill B1 %1 A1 5"_s.arg(each));
        QCOMPARE(told.filter(u"单据保存成功"_s).size(), all);
        QCOMPARE(told.size(), all);
        for (const QString& table : {u"TB1"_s, u"DanNo"_s}) {
            const QString key = table == u"TB1" ? u"F1"_s : u"DanF1"_s;
            const QStringList numbers = ledger_->rows(u"select "_s + key + u" from "_s + table);
            QCOMPARE(numbers.size(), all);
            QCOMPARE(QSet(numbers.begin(), numbers.end()).size(), all); // none was given twice
        }
        QCOMPARE(ledger_->value(u"select count(*) from TB11"_s), QString::number(all));

        // Each audits what it entered, at a price of its own: no change of the same goods is lost.
        double worth = 1000 * 2;
        for (int i = 0; i < int(operators.size()); ++i) {
            const QString clerk = QString(u"甲乙丙丁"[i]);
            ledger_->run(
                u"update TB11 set F7=%1 where F0 in (select F1 from TB1 where F5='%2')"_s.arg(i + 1).arg(clerk));
            worth += each * 5 * (i + 1);
        }
        QCOMPARE(answersOf(operators, u"list B1"_s), QStringList());
        for (int i = 0; i < int(operators.size()); ++i)
            operators[i]->tell(u"audit B1 "_s + QString(u"甲乙丙丁"[i]));
        for (const auto& one : operators)
            QCOMPARE(one->answer().first(), QString::number(each));
        const double stock = 1000 + all * 5;
        QCOMPARE(ledger_->value(u"select F8 from TA4 where F1='A1'"_s).toDouble(), stock);
        QCOMPARE(ledger_->value(u"select F7 from TA4 where F1='A1'"_s).toDouble(), worth / stock);
        QCOMPARE(ledger_->value(u"select count(*) from TB1 where F6<>''"_s), QString::number(all));
        for (const QString& code : ledger_->rows(u"select H6 from TB11"_s)) // each stock was there once
            QVERIFY(code.toDouble() > 1000 && code.toDouble() <= stock);
        const QStringList snapshots = ledger_->rows(u"select H6 from TB11"_s);
        QCOMPARE(QSet(snapshots.begin(), snapshots.end()).size(), all);

        // A list shows what it was read with, and that is what an audit asks: the same document goes twice.
        QCOMPARE(operators[0]->ask(u"fill B1 1 A2 7"_s).size(), 2);
        const QString number = ledger_->value(u"select F1 from TB1 where F6 is Null"_s);
        operators[1]->ask(u"list B1"_s);
        QCOMPARE(operators[0]->ask(u"audit B1 "_s + number).first(), u"1"_s);
        QCOMPARE(operators[1]->ask(u"audit B1 "_s + number).first(), u"1"_s);
        QCOMPARE(ledger_->value(u"select F8 from TA4 where F1='A2'"_s), u"1014"_s);
        operators[2]->ask(u"list B1"_s);
        QCOMPARE(operators[2]->ask(u"audit B1 "_s + number).first(), u"0"_s);
    }

    void reportsAtTheSameMoment()
    {
        for (int i = 0; i < 200; ++i)
            ledger_->run(u"insert into TA4 (F1,F2,F7,F8) values ('G%1','货',2,5)"_s.arg(i));
        const auto operators = crew({u"甲"_s, u"乙"_s, u"丙"_s});
        operators[2]->ask(u"generate"_s);
        for (const QString& line : {u"generate"_s, u"keep"_s}) {
            for (int i : {0, 1})
                operators[i]->tell(line);
            QStringList told;
            for (int i : {0, 1})
                told += operators[i]->answer().mid(1);
            QVERIFY2(std::all_of(told.begin(), told.end(),
                                 [&](const QString& box) { return box == overtaken || box == u"保存成功！"; }),
                     qPrintable(told.join(u'\n')));
            if (line == u"keep")
                QCOMPARE(told.count(u"保存成功！"_s), 1);
        }
        // One report, of one moment: each goods once, all under one number.
        QCOMPARE(ledger_->rows(u"select SortNo,count(*) from jxc group by SortNo"_s), QStringList{u"1|202"_s});
        QCOMPARE(ledger_->rows(u"select Hpbm from jxc group by Hpbm"_s).size(), 202);
        // Who opened the form before that is told so, and saves nothing.
        QCOMPARE(operators[2]->ask(u"generate"_s).mid(1), QStringList{overtaken});
        QCOMPARE(ledger_->rows(u"select SortNo,count(*) from jxc group by SortNo"_s), QStringList{u"1|202"_s});
    }

    void printsAtTheSameMoment()
    {
        for (int i = 0; i < 100; ++i)
            ledger_->run(u"insert into TA4 (F1,F2,F7,F8) values ('G%1','货',2,5)"_s.arg(i));
        const auto operators = crew({u"甲"_s, u"乙"_s, u"丙"_s});
        for (int i = 0; i < 5; ++i)
            QCOMPARE(answersOf(operators, u"print"_s), QStringList());
        for (const auto& one : operators)
            QVERIFY(one->isRunning());
        const WriteRun nobodyHoldsALock(gDB);
        QCOMPARE(ledger_->value(u"select count(*) from PRTc1"_s), u"102"_s); // each staging replaces the rows whole
    }

    // Beside a session that hangs or dies
    // ---------------------------------------------------------------------------------

    void aSessionDiesInItsWriteRun_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("place");
        for (const QString& command : {u"audit B1 甲"_s, u"save B1"_s})
            for (int place : {0, 9, 14, 19})
                QTest::addRow("%s %d", qPrintable(command.section(u' ', 0, 0)), place) << command << place;
    }

    void aSessionDiesInItsWriteRun()
    {
        QFETCH(QString, command);
        QFETCH(int, place);
        const auto dying = somebody(u"甲"_s);
        const auto living = somebody(u"乙"_s, 50);
        dying->ask(u"fill B1 1 A1 5"_s);
        dying->ask(u"enter B1 A2 4"_s);
        if (command.startsWith(u"audit")) {
            dying->ask(u"save B1"_s); // two drafts to audit
            dying->ask(u"list B1"_s);
        }
        living->ask(u"enter B1 A1 1"_s);
        if (dying->ask(u"halt %1 "_s.arg(place) + command).first() != u"halted")
            QSKIP("the command is shorter");
        // It holds the lock: the other is told, keeps its entry, and backs nothing up.
        const QStringList told = living->ask(u"save B1"_s);
        QCOMPARE(told.first(), u"1"_s);
        QVERIFY2(told.size() == 2 && told[1].contains(u"请稍候再试"_s), qPrintable(told.join(u'\n')));
        if (place == 0) // later on it keeps readers out too
            QCOMPARE(living->ask(u"backup "_s + folder_->filePath(u"手工.hcn"_s)).mid(1), QStringList{backupRefused});
        QVERIFY(!QFile::exists(folder_->filePath(u"手工.hcn"_s)));
        dying->kill();
        // From now on nothing is in its way, and the dead one's command is there whole or not at all.
        QCOMPARE(living->ask(u"save B1"_s).first(), u"0"_s);
        QCOMPARE(integrityFaults(gDB), QStringList());
        const int saved = ledger_->value(u"select count(*) from TB1"_s).toInt() - 1;
        QCOMPARE(ledger_->value(u"select count(*) from TB11"_s).toInt() - 1, saved);
        const int audited = ledger_->value(u"select count(*) from TB1 where F6<>''"_s).toInt();
        const QString stock = ledger_->row(u"select sum(F8) from TA4"_s);
        QVERIFY2(command.startsWith(u"save")
                     ? stock == u"2000" && (saved == 1 || saved == 2)
                     : saved == 2 && QStringList({u"2000"_s, u"2004"_s, u"2005"_s, u"2009"_s}).contains(stock) &&
                           (stock == u"2000") == (audited == 0),
                 qPrintable(u"%1 documents, %2 audited, stock %3"_s.arg(saved).arg(audited).arg(stock)));
        QCOMPARE(QDir(ledger_->folder()).entryList({u"*-journal"_s}), QStringList());
    }

    // What keeps the ledger away
    // ------------------------------------------------------------------------------------------

    void commandsSurvive_data()
    {
        QTest::addColumn<QString>("trouble");
        QTest::addColumn<const Command*>("command");
        const auto add = [](const char* trouble, const Command& command) {
            QTest::addRow("%s, %s", command.name, trouble) << QString::fromLatin1(trouble) << &command;
        };
        for (const char* trouble : {"write lock", "commit lock", "read lock", "dead disk", "renamed folder"})
            for (const Command& command : commands)
                add(trouble, command);
        for (const char* name : {"save", "audit", "generate report"})
            add("other files", commandCalled(name));
    }

    /// Told, kept on screen, and done once when it is given again behind the trouble.
    void commandsSurvive()
    {
        QFETCH(QString, trouble);
        QFETCH(const Command*, command);
        static QHash<const Command*, Usual> known;
        if (!known.contains(command)) {
            makeDraft();
            command->prepare();
            Usual& usual = known[command];
            usual.before = stateOf(*command);
            clerk_->boxes.clear();
            command->run();
            usual.after = stateOf(*command);
            usual.boxes = clerk_->boxes;
            QVERIFY2(usual.before != usual.after, qPrintable(usual.before));
            endAtWork();
            beginAtWork();
        }
        const auto& [before, after, usual] = known[command];
        makeDraft();
        command->prepare();
        ledger_->letGo();
        std::unique_ptr<Operator> other;
        const bool lock = trouble.endsWith(u"lock");
        if (lock) {
            other = somebody(u"乙"_s);
            QCOMPARE(other->ask(u"hold "_s + trouble.section(u' ', 0, 0)).first(), u"held"_s);
        } else if (trouble == u"dead disk") {
            disk_->goneFrom = disk_->operations;
        } else {
            QVERIFY(QDir().rename(ledger_->folder(), renamedFolder()));
        }
        clerk_->boxes.clear();
        command->run();
        const QStringList told = clerk_->boxes;
        const bool kept = command->kept();
        if (lock) {
            other->ask(u"release"_s);
        } else if (trouble == u"dead disk") {
            disk_->heal();
        } else if (trouble == u"renamed folder") {
            QVERIFY(QDir().rename(renamedFolder(), ledger_->folder()));
        } else { // as when a server comes back with the same files: none of them is the one that was open
            QVERIFY(QDir().mkdir(ledger_->folder()));
            QVERIFY(QFile::copy(renamedFolder() + u"/帐本.hcn"_s, ledger_->path()));
            QVERIFY(QDir(renamedFolder()).removeRecursively());
        }
        ledger_->letGo(); // the file may be another one now

        const auto news = [&](const QString& box) { return !usual.contains(box); };
        if (stateOf(*command) == before) {
            const auto reason = std::find_if(told.begin(), told.end(), [&](const QString& box) {
                return news(box) && (box.contains(u"再试"_s) || box.contains(u"重新设置"_s));
            });
            QVERIFY2(reason != told.end(), qPrintable(u"not told: "_s + told.join(u'\n')));
            QVERIFY2(usual.isEmpty() || usual.last().startsWith(u"真的") || told.last() != usual.last(),
                     "success was told");
            QVERIFY2(kept, "what was on screen is gone");
            clerk_->boxes.clear();
            command->run();
        }
        QVERIFY2(std::none_of(clerk_->boxes.begin(), clerk_->boxes.end(), news), qPrintable(clerk_->boxes.join(u'\n')));
        QCOMPARE(stateOf(*command), after);
        QCOMPARE(integrityFaults(ledger_->second()), QStringList());
    }

    void theFolderGoesInTheMidstOfARun_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("step");
        QTest::newRow("save") << u"save"_s << 1;
        QTest::newRow("audit") << u"audit"_s << 4;
    }

    /// At each operation on the disk; what was told as done is there when the folder is back, and nothing twice.
    void theFolderGoesInTheMidstOfARun()
    {
        QFETCH(QString, command);
        QFETCH(int, step);
        const Command& given = commandCalled(command.toLatin1());
        bool met = true;
        int tries = 0;
        for (; met; tries += step) {
            makeDraft();
            given.prepare();
            const QString before = stateOf(given);
            const int place = disk_->operations + tries;
            met = false;
            disk_->before = [&](int operation) {
                if (operation == place)
                    met = QDir().rename(ledger_->folder(), renamedFolder());
            };
            clerk_->boxes.clear();
            given.run();
            disk_->before = {};
            const QStringList told = clerk_->boxes;
            if (met)
                QVERIFY(QDir().rename(renamedFolder(), ledger_->folder()));
            const bool lost = stateOf(given) == before;
            if (lost) {
                QVERIFY2(told.filter(u"再试"_s).size() == 1, qPrintable(u"at %1: "_s.arg(tries) + told.join(u'\n')));
                QVERIFY2(given.kept(), qPrintable(QString::number(tries)));
                given.run();
            }
            const QString after = stateOf(given);
            QVERIFY2(after != before, qPrintable(clerk_->boxes.join(u'\n')));
            QCOMPARE(after, command == u"save" ? u"2"_s : u"1005"_s);
            QCOMPARE(integrityFaults(ledger_->second()), QStringList());
            endAtWork();
            beginAtWork();
        }
        QVERIFY2(tries > 10, qPrintable(QString::number(tries)));
    }

    void marksAndLocksOutliveAFolderThatWasAway()
    {
        const auto other = somebody(u"乙"_s);
        PresenceMark mark;
        mark.place(ledger_->path(), u"甲"_s);
        QCOMPARE(mark.sessions().size(), 1);
        QVERIFY(QDir().rename(ledger_->folder(), renamedFolder()));
        mark.touch();
        QCOMPARE(mark.sessions().size(), 0);
        QVERIFY(!QFileInfo::exists(ledger_->folder())); // nobody made an empty one in its place
        QVERIFY(QDir().rename(renamedFolder(), ledger_->folder()));
        QCOMPARE(mark.sessions().size(), 1);
        ledger_->letGo();
        QVERIFY(other->ask(u"alone"_s).value(1).contains(u"其它用户正在使用"_s));
        // With other files in its place the mark comes with the next touch and the lock with the next command.
        QVERIFY(QDir().rename(ledger_->folder(), renamedFolder()));
        QVERIFY_THROWS_EXCEPTION(StoreError, gDB.Execute(u"delete from TA1"_s));
        QVERIFY(QDir().mkdir(ledger_->folder()));
        QVERIFY(QFile::copy(renamedFolder() + u"/帐本.hcn"_s, ledger_->path()));
        QVERIFY(QDir(renamedFolder()).removeRecursively());
        mark.touch();
        QCOMPARE(mark.sessions().size(), 1);
        QCOMPARE(LookupValue(gDB, u"select count(*) from TA1"_s), u"2"_s);
        QVERIFY(other->ask(u"alone"_s).value(1).contains(u"其它用户正在使用"_s));
    }

    // One ledger under several names
    // --------------------------------------------------------------------------------------

    void otherNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("linked folder") << u"link/帐本.hcn"_s;
        QTest::newRow("linked file") << u"other.hcn"_s;
        QTest::newRow("dots") << u"sub/../帐本.hcn"_s;
        QTest::newRow("case") << u"帐本.HCN"_s;
    }

    void otherNames()
    {
        QFETCH(QString, name);
        const QDir folder(ledger_->folder());
        QVERIFY(folder.mkdir(u"sub"_s));
        QVERIFY(QFile::link(folder.path(), folder.filePath(u"link"_s)));
        QVERIFY(QFile::link(ledger_->path(), folder.filePath(u"other.hcn"_s)));
        const QString other = folder.path() + u'/' + name;
        QVERIFY(sameFile(other, ledger_->path()));
        const auto outside = somebody(u"乙"_s, 0);
        const auto untouched = [&] {
            return outside->ask(u"hold write"_s).first() == u"refused" &&
                   outside->ask(u"alone"_s).value(1).contains(u"其它用户正在使用"_s);
        };
        ledger_->letGo();
        const QString connect = ledgerConnect.toString();
        {
            const WriteRun run(gDB);
            gDB.Execute(u"update TA4 set F8=7 where F1='A1'"_s);
            QVERIFY(untouched());
            DBEngine::OpenDatabase(other, connect).Close(); // as the import of a ledger into the list tests it
            QVERIFY(untouched());
            QVERIFY(DBEngine::checkLedger(other, connect)); // as a restore does
            DBEngine::copyDatabase(other, folder.filePath(u"副本.hcn"_s), connect);
            QVERIFY(untouched());
            QVERIFY_THROWS_EXCEPTION(StoreError,
                                     DBEngine::replaceDatabase(folder.filePath(u"副本.hcn"_s), other, connect));
            QVERIFY_THROWS_EXCEPTION(StoreError,
                                     DBEngine::CompactDatabase(other, folder.filePath(u"再.hcn"_s), connect));
            QVERIFY_THROWS_EXCEPTION(StoreError, LedgerAlone{resolvedPath(other)});
            QVERIFY(untouched());
        }
        QCOMPARE(outside->ask(u"hold write"_s).first(), u"held"_s);
        outside->ask(u"release"_s);
        QCOMPARE(ledger_->value(u"select F8 from TA4 where F1='A1'"_s), u"7"_s);

        // One ledger in the list as well: the other name of the one in use can't be struck off, nor is it another mark.
        PresenceMark mark;
        mark.place(ledger_->path(), u"甲"_s);
        mark.place(other, u"甲"_s);
        QCOMPARE(folder.entryList({u"*-open-*"_s}).size(), 1);
        QCOMPARE(folder.entryList({u"*-lock"_s}), QStringList{u"帐本.hcn-lock"_s});
        QVERIFY(writeLines(folder_->filePath(u"dbsetup.dat"_s), {u"No"_s, u"五金"_s, localPath(other)}));
        auto& directory = theForm<ZbSet>();
        directory.LoadLedgerList();
        gLedgerFile = ledger_->path();
        clerk_->boxes.clear();
        directory.Cmd[2]->click();
        QCOMPARE(clerk_->boxes, QStringList{u"您选择的是当前正在使用的帐本，不能删除！"_s});
        directory.OpenSelected();
        QVERIFY(outside->ask(u"alone"_s).value(1).contains(u"其它用户正在使用"_s));
        directory.allowClosing();
        QVERIFY(QFile::remove(folder_->filePath(u"dbsetup.dat"_s)));
    }

    // F5
    // ------------------------------------------------------------------------------------------------------------------

    void everyListIsReadAnew_data()
    {
        QTest::addColumn<QString>("what");
        for (const char* what : {"B1", "B3",  "D1",  "D3",  "C2",  "A1", "A2",  "A3",  "A4",   "S1",
                                 "C1", "TB1", "TB3", "TD1", "TD3", "C3", "C15", "C18", "C181", "CheckUp"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }

    void everyListIsReadAnew()
    {
        QFETCH(QString, what);
        const QHash<QString, DocumentKind> documents = {{u"B1"_s, DocumentKind::B1},
                                                        {u"B3"_s, DocumentKind::B3},
                                                        {u"D1"_s, DocumentKind::D1},
                                                        {u"D3"_s, DocumentKind::D3},
                                                        {u"C2"_s, DocumentKind::C2}};
        const QHash<QString, QString> masters = {
            {u"A1"_s, u"TA1"_s}, {u"A2"_s, u"TA2"_s}, {u"A3"_s, u"TA3"_s}, {u"S1"_s, u"TE1"_s}};
        const QStringList statistics{u"TB1"_s, u"TB3"_s, u"TD1"_s, u"TD3"_s};
        const auto document = [this](const QString& header, const QString& auditor) {
            ledger_->run(
                u"insert into %1 (F1,F2,F3,F5,F6) values ('新的','2004-11-18','001','甲',%2)"_s.arg(header, auditor));
            ledger_->run(u"insert into "_s + header + u"1 (F0,F1,F6,F7) values ('新的','A1',5,2)");
        };
        Form* form = nullptr;
        std::function<void()> change = [&] {
            ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('新的','新的','001','个','',2,3,-9)"_s);
        };
        if (documents.contains(what)) {
            form = &documentForm(documents[what]);
            change = [&] { document(traitsOf(documents[what]).headerTable(), u"Null"_s); };
        } else if (masters.contains(what)) {
            form = what == u"S1"   ? static_cast<Form*>(&theForm<S1>())
                   : what == u"A1" ? &codeTableForm(CodeTableKind::A1)
                   : what == u"A2" ? &codeTableForm(CodeTableKind::A2)
                                   : &codeTableForm(CodeTableKind::A3);
            change = [&] { ledger_->run(u"insert into %1 (F1,F2) values ('新的','新的')"_s.arg(masters[what])); };
        } else if (statistics.contains(what)) {
            form = &Lst::theWindow(StatisticsMode(statistics.indexOf(what)));
            change = [&] { document(what, u"'甲'"_s); };
        } else if (what == u"C3") {
            form = &theForm<C3>();
            change = [&] { document(u"TC2"_s, u"'甲'"_s); };
        } else if (what == u"C15") {
            form = &theForm<C15>();
            change = [&] { ledger_->run(u"insert into TC15 (F1) values ('新的')"_s); };
        } else if (what == u"C18") {
            auto& report = theForm<C18>();
            report.generate();
            form = &report;
        } else if (what == u"C181") {
            form = &theForm<C181>();
            change = [&] {
                ledger_->run(u"insert into jxc (SortNo,Bdate,Edate,Hpbm) values (1,'2004-1-1','新的','A1')"_s);
            };
        } else {
            form = what == u"A4"   ? static_cast<Form*>(&theForm<A4>())
                   : what == u"C1" ? &C1::theWindow()
                                   : static_cast<Form*>(&theForm<CheckUp>());
        }
        const auto shown = [&] {
            if (auto* report = qobject_cast<C181*>(form))
                return report->Comb->findText(u"新的"_s, Qt::MatchContains) >= 0;
            const auto* list = form->findChild<Grid*>(u"GD"_s);
            for (int row = 1; row < list->Rows(); ++row)
                for (int column = 0; column < list->Cols(); ++column)
                    if (list->TextMatrix(row, column).contains(u"新的"_s))
                        return true;
            return false;
        };
        form->Show();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form));
        change();
        QVERIFY(!shown());
        QTest::keyClick(form->windowHandle(), Qt::Key_F5);
        QVERIFY(shown());
    }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == u"--operator")
        return OperatorAtWork(arguments.mid(2)).run();
    SessionsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "sessions_test.moc"
