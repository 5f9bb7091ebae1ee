// From the command line to the exit question: which ledger is opened, who may in and what for, and how the main window
// routes, changes the ledger and ends.

#include "admin/AboutUS.h"
#include "admin/frmTip.h"
#include "ledger/Module1.h"
#include "ledger_fixture.h"
#include "memory_desktop.h"
#include "platform/base/clock.h"
#include "platform/base/status.h"
#include "scripted_dialogs.h"
#include "shell/BGForm.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/ZbSet.h"
#include "shell/entry.h"
#include "shell/program_folder.h"
#include "shell/rights.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringEncoder>
#include <QTimer>
#include <QtTest>

#include <deque>

namespace {

const QString exitQuestion = u"真的要退出系统吗？"_s;
const QString unopened = u"无法打开帐本！系统返回如下信息："_s;
const QString templateName = u"货品进出存帐本"_s;
const QStringList gatedItems{u"Menu_A"_s,  u"Menu_B"_s,  u"Menu_C"_s,   u"Menu_D"_s,   u"Menu_E"_s,
                             u"Menu_S1"_s, u"Menu_S3"_s, u"Menu_S25"_s, u"Menu_zbhf"_s};

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("a test's file can't be written");
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

/// A ledger made of the schema with one word of it changed.
void makeLedger(const QString& path, const QString& word, const QString& instead, const QString& connect)
{
    QString schema = readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n');
    createLedger(path, word.isEmpty() ? schema : schema.replace(word, instead), connect);
}

/// What the operator does in the modal forms that one command shows, form after form. Each step waits until its form
/// is there, and must end its modality.
class Walk : public QObject
{
public:
    Walk() { again(); }
    ~Walk() override
    {
        if (!steps_.empty())
            QTest::qFail(qPrintable(u"the form %1 never came"_s.arg(steps_.front().name)), __FILE__, __LINE__);
    }

    template <class F>
    void in(std::type_identity_t<std::function<void(F&)>> act)
    {
        steps_.push_back({F::formName(), [act = std::move(act)](Form& form) { act(static_cast<F&>(form)); }});
    }

private:
    struct Step
    {
        QString name;
        std::function<void(Form&)> act;
    };

    void again()
    {
        QTimer::singleShot(1, this, [this] { look(); });
    }

    void look()
    {
        again();
        Form* form = steps_.empty() ? nullptr : Form::loaded(steps_.front().name);
        if (form && form->isVisible()) {
            waiting_.restart();
            const Step step = std::move(steps_.front());
            steps_.pop_front();
            step.act(*form);
        } else if (QApplication::activeModalWidget() && waiting_.elapsed() > 5000) {
            // A form that no step is for would block the test for ever.
            auto* stray = qobject_cast<Form*>(QApplication::activeModalWidget());
            QTest::qFail(qPrintable(u"nothing to do in "_s + (stray ? stray->Name() : QString())), __FILE__, __LINE__);
            QApplication::activeModalWidget()->hide();
        }
    }

    std::deque<Step> steps_;
    QElapsedTimer waiting_ = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
};

void enterAs(Login& login, const QString& account, const QString& password = {})
{
    login.Txt[0]->setText(account);
    login.Txt[1]->setText(password);
    login.Cmd[0]->click();
}

/// Chooses from the menu that the button of that form pops up; "" closes it without a choice.
void choosePopup(QPushButton* button, const QString& item)
{
    QTimer::singleShot(0, button, [item] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu && menu->objectName() == u"editzb");
        if (auto* action = item.isEmpty() ? nullptr : menu->findChild<QAction*>(item)) {
            menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Return);
        } else {
            QTest::keyClick(menu, Qt::Key_Escape);
        }
    });
    button->click();
}

} // namespace

class ShellTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> folder_; ///< the program folder
    std::unique_ptr<LedgerFixture> ledger_; ///< a ledger elsewhere
    std::unique_ptr<ScriptedDialogs> boxes_;
    MemoryDesktop* desktop_ = nullptr;

    QString beside(const QString& name) const { return folder_->filePath(name); }

    /// The main window over the ledger, nobody logged in.
    MForm& mainWindow()
    {
        gDB = ledger_->open();
        gLedgerFile = ledger_->path();
        gLedgerName = u"五金"_s;
        MForm::get().show();
        return MForm::get();
    }

    void logInAs(const QString& account, const QString& password = {})
    {
        enterAs(theForm<Login>(), account, password);
        QCOMPARE(gOperId, account);
    }

    QStringList closedItems() const
    {
        QStringList closed;
        for (const QString& name : gatedItems)
            if (!MForm::get().menuItem(name)->isEnabled())
                closed += name;
        return closed;
    }

    void compareClosed(QStringList closed)
    {
        QStringList found = closedItems();
        closed.sort();
        found.sort();
        QCOMPARE(found, closed);
    }

private slots:
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void init()
    {
        desktop_ = &MemoryDesktop::install();
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(QFile::copy(LedgerFixture::pristine(), beside(u"vemaro.dat"_s)));
        ledger_ = std::make_unique<LedgerFixture>();
        boxes_ = std::make_unique<ScriptedDialogs>();
        setProgramFolder(folder_->path());
        setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
        SaveSetting(gProgramName, u"Options"_s, frmTip::showAtStart, u"0"_s);
        resetSession();
    }

    void cleanup()
    {
        for (Form* form : QList<Form*>(Form::all())) {
            if (auto* directory = qobject_cast<ZbSet*>(form))
                directory->allowClosing();
            form->Unload();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete &MForm::get();
        boxes_.reset();
        resetSession();
    }

    // Entry -----------------------------------------------------------------------------------------------------------

    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("ledger");
        QTest::newRow("none") << QStringList() << QString();
        QTest::newRow("plain") << QStringList{u"/a/b.hcn"_s} << u"/a/b.hcn"_s;
        QTest::newRow("blank inside one argument") << QStringList{u"/a b/c.hcn"_s} << u"/a b/c.hcn"_s;
        QTest::newRow("unquoted, cut at the blank") << QStringList{u"/a"_s, u"b/c.hcn"_s} << u"/a"_s;
        QTest::newRow("quoted by the caller") << QStringList{u"\"/a"_s, u"b/c.hcn\""_s} << u"/a b/c.hcn"_s;
        QTest::newRow("no closing quote") << QStringList{u"\"/a/b.hcn"_s} << QString();
        QTest::newRow("nothing between the quotes") << QStringList{u"\"\""_s} << QString();
        QTest::newRow("behind the closing quote") << QStringList{u"\"/a.hcn\"x"_s} << u"/a.hcn"_s;
    }

    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QTEST(ledgerOf(commandLineOf(arguments)), "ledger");
    }

    void programFolder_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("plain") << u"/a/b"_s;
        QTest::newRow("ended") << u"/a/b/"_s;
    }

    void programFolder()
    {
        QFETCH(QString, folder);
        setProgramFolder(folder);
        QCOMPARE(gAppPath, QDir::toNativeSeparators(u"/a/b/"_s));
    }

    void namedFile_data()
    {
        QTest::addColumn<QString>("change"); // a statement, a word of the schema "from>to", or a whole file
        QTest::addColumn<bool>("taken");
        QTest::newRow("ledger") << QString() << true;
        QTest::newRow("Null in Versn") << u"update theVer set Versn=Null"_s << true;
        QTest::newRow("no theVer") << u"theVer>noVer"_s << true;
        QTest::newRow("text in Versn") << u"update theVer set Versn='1.0'"_s << false;
        QTest::newRow("empty theVer") << u"delete from theVer"_s << false;
        QTest::newRow("another password") << u"password"_s << false;
        QTest::newRow("no database") << u"file"_s << false;
        QTest::newRow("empty file") << u"empty"_s << false;
    }

    void namedFile()
    {
        QFETCH(QString, change);
        QFETCH(bool, taken);
        const QString path = ledger_->path();
        if (change == u"file" || change == u"empty") {
            writeFile(path, change == u"file" ? QByteArray(9000, 'x') : QByteArray());
        } else if (change == u"password" || change.contains(u'>')) {
            QVERIFY(QFile::remove(path));
            const QStringList words = change.split(u'>');
            makeLedger(path, taken ? words[0] : QString(), words.value(1),
                       taken ? ledgerConnect.toString() : u";PWD=other"_s);
        } else if (!change.isEmpty()) {
            ledger_->run(change);
        }
        ledger_->letGo();
        const QByteArray before = readFile(path);
        // A rejected file leads to the list, which here says to open its first ledger unseen.
        writeFile(beside(u"dbsetup.dat"_s), u"No\n商行\n%AppPath%vemaro.dat\n"_s.toUtf8());

        if (!taken)
            boxes_->expect(u"文件["_s + path + u"]不是恒仓宁9.69帐本文件！"_s);
        Walk walk;
        walk.in<Login>([this, taken](Login& login) {
            if (!taken)
                QCOMPARE(boxes_->lastBox.title, QString());
            enterAs(login, u"001"_s);
        });
        runEntry(path);
        QCOMPARE(gLedgerFile, taken ? path : beside(u"vemaro.dat"_s));
        QCOMPARE(gLedgerName, taken ? path : u"商行"_s);
        QCOMPARE(statusPanel(4), gLedgerName);
        QCOMPARE(gOperId, u"001"_s);
        QCOMPARE(gYearStart, u"2004-1-1"_s);
        gDB.Close();
        QCOMPARE(readFile(path), before);
    }

    void lostFile_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<QString>("list");
        QTest::newRow("named on the command line") << u"lost.hcn"_s << QString();
        QTest::newRow("first in the list") << QString() << u"No\n旧帐\n%AppPath%lost.hcn\n"_s;
    }

    /// Told once, then the ledgers are shown, and the program goes on with the one that is opened there.
    void lostFile()
    {
        QFETCH(QString, commandLine);
        QFETCH(QString, list);
        if (!list.isEmpty())
            writeFile(beside(u"dbsetup.dat"_s), list.toUtf8());
        boxes_->expectStart(unopened);
        Walk walk;
        walk.in<ZbSet>([&](ZbSet& directory) {
            QCOMPARE(boxes_->lastBox.icon, BoxIcon::Exclamation);
            QVERIFY(boxes_->lastBox.text.endsWith(u"\n\n请重新设置帐本"_s));
            QCOMPARE(directory.Cmd[3]->text(), u"退出系统"_s);
            boxes_->expectFile(u"请选择已存在的帐本文件"_s, ledger_->path());
            boxes_->expectInput(u"请输入新建帐本的名称："_s, u"五金"_s);
            choosePopup(directory.Cmd[1], u"setpath"_s);
            directory.Cmd[0]->click();
        });
        walk.in<Login>([](Login& login) { enterAs(login, u"001"_s); });
        runEntry(commandLine);
        QVERIFY(!QFile::exists(beside(u"lost.hcn"_s)));
        QCOMPARE(statusPanel(4), u"五金"_s);
        QCOMPARE(gOperId, u"001"_s);
    }

    void tipAtStart()
    {
        writeFile(beside(u"dbsetup.dat"_s), u"No\n商行\n%AppPath%vemaro.dat\n"_s.toUtf8());
        desktop_->settings.clear();
        Walk walk;
        walk.in<Login>([](Login& login) { login.close(); });
        walk.in<frmTip>([](frmTip& tip) {
            tip.chkLoadTipsAtStartup->click();
            tip.cmdOK->click();
        });
        runEntry({});
        QCOMPARE(gOperId, QString()); // the login may be closed; nobody is in then
        compareClosed(gatedItems);

        walk.in<Login>([](Login& login) { enterAs(login, u"001"_s); });
        runEntry({});
        QVERIFY(!Form::loaded(u"frmTip"_s));
    }

    void alarmsAtStart_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("settings"); // those of `sysinfo` that are on
        QTest::addColumn<QString>("limits");   // safety and highest stock of goods that has 10
        QTest::addColumn<QString>("told");     // "+" and "-": asked for high and low stock and shown; "!": declined
        QTest::newRow("both") << u"001"_s << u"6,7"_s << u"11,9"_s << u"+-"_s;
        QTest::newRow("declined") << u"001"_s << u"6,7"_s << u"11,9"_s << u"!-"_s;
        QTest::newRow("low only") << u"001"_s << u"6"_s << u"11,9"_s << u"-"_s;
        QTest::newRow("high only") << u"001"_s << u"7"_s << u"11,9"_s << u"+"_s;
        QTest::newRow("off") << u"001"_s << u"99"_s << u"11,9"_s << QString();
        QTest::newRow("no limits") << u"001"_s << u"6,7"_s << u"Null,0"_s << QString();
        QTest::newRow("at the limits") << u"001"_s << u"6,7"_s << u"10,10"_s << QString();
        QTest::newRow("with the stock right") << u"002"_s << u"6,7"_s << u"11,0"_s << u"-"_s;
        QTest::newRow("without it") << u"003"_s << u"6,7"_s << u"11,9"_s << QString();
    }

    void alarmsAtStart()
    {
        QFETCH(QString, account);
        QFETCH(QString, settings);
        QFETCH(QString, limits);
        QFETCH(QString, told);
        ledger_->run(u"insert into TA4 (F1,F8,V1,V2) values ('A1',10,"_s + limits + u')');
        ledger_->run(u"update sysinfo set setval=1 where ID in ("_s + settings + u')');
        ledger_->run(u"insert into TE1 (F1,F2,F3,F63) values ('002','小李','',1)"_s);
        ledger_->run(u"insert into TE1 (F1,F2,F3,F63) values ('003','小王','',0)"_s);
        const QString turnOff = u"您要查看详细内容吗？\n\n如果希望系统不再自动报警，\n"
                                "您可以在主界面[系统管理]->[系统设置]->[系统功能设置]中关闭本功能。"_s;
        for (const QChar alarm : told)
            boxes_->expect((alarm == u'-' ? u"库存中发现低于安全存量的货品！"_s : u"库存中发现超过最高存量的货品！"_s) +
                               turnOff,
                           alarm == u'!' ? Answer::No : Answer::Yes);
        Walk walk;
        walk.in<Login>([&account](Login& login) { enterAs(login, account); });
        runEntry(ledger_->path());
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
        QString shown;
        for (const Form* form : Form::all())
            if (form->Name() == u"C1")
                shown += form->Caption() == u"库存报警：低于安全库存的货品" ? u'-' : u'+';
        QCOMPARE(shown, told.remove(u'!'));
        if (!told.isEmpty())
            QCOMPARE(boxes_->lastBox.title,
                     told.endsWith(u'-') ? u" 库存自动报警--低于安全存量"_s : u" 库存自动报警--超出最高存量"_s);
    }

    // The ledger list -------------------------------------------------------------------------------------------------

    void readingTheList_data()
    {
        QTest::addColumn<QByteArray>("file"); // {} for none; "@" stands for the program folder in the paths below
        QTest::addColumn<bool>("show");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("paths");
        const QStringList own{templateName};
        const QStringList ownPath{u"@vemaro.dat"_s};
        const QStringList two{u"甲"_s, u"乙"_s};
        const QStringList twoPaths{u"/帐/a.hcn"_s, u"@我的帐本/b.hcn"_s};
        const QString plain = u"甲\n/帐/a.hcn\n乙\n%AppPath%我的帐本\\b.hcn\n"_s;
        QStringEncoder chinese("GB18030");
        QVERIFY(chinese.isValid());
        QTest::newRow("none") << QByteArray() << true << own << ownPath;
        QTest::newRow("shown") << (u"Yes\n"_s + plain).toUtf8() << true << two << twoPaths;
        QTest::newRow("not shown") << (u" No \n"_s + plain).toUtf8() << false << two << twoPaths;
        QTest::newRow("any other first line") << (u"no\n"_s + plain).toUtf8() << true << two << twoPaths;
        QTest::newRow("no last line end") << (u"No\n"_s + plain).chopped(1).toUtf8() << false << two << twoPaths;
        QTest::newRow("CRLF and mark") << "\xEF\xBB\xBF" +
                                              QString(u"No\n"_s + plain).replace(u"\n"_s, u"\r\n"_s).toUtf8()
                                       << false << two << twoPaths;
        QTest::newRow("GB18030") << QByteArray(chinese(u"No\n"_s + plain)) << false << two << twoPaths;
        QTest::newRow("name without a path")
            << (u"No\n"_s + plain + u"丙\n"_s).toUtf8() << false << two + QStringList{u"丙"_s} << twoPaths;
        QTest::newRow("nothing but a name") << u"No\n丙\n"_s.toUtf8() << true << QStringList{u"丙"_s} << QStringList();
        QTest::newRow("first line only") << QByteArray("No\n") << true << own << ownPath;
        QTest::newRow("mark inside a path") << u"Yes\n甲\n/x/%AppPath%a.hcn\n"_s.toUtf8() << true
                                            << QStringList{u"甲"_s} << QStringList{u"/x/%AppPath%a.hcn"_s};
    }

    void readingTheList()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, show);
        QFETCH(QStringList, names);
        QFETCH(QStringList, paths);
        paths.replaceInStrings(u"@"_s, gAppPath);
        if (!file.isNull())
            writeFile(beside(u"DBSetup.dat"_s), file); // found whatever its case
        gLedgerFile = gAppPath + u"vemaro.dat"_s;
        gLedgerName = templateName;
        auto& directory = theForm<ZbSet>();
        QCOMPARE(directory.LoadLedgerList(), show);
        const auto items = [](const QComboBox* list) {
            QStringList texts;
            for (int i = 0; i < list->count(); ++i)
                texts += list->itemText(i);
            return texts;
        };
        QCOMPARE(items(directory.Cmb[0]), names);
        QCOMPARE(items(directory.Cmb[1]), paths);
        QCOMPARE(directory.Cmb[0]->currentIndex(), 0);
        QCOMPARE(directory.Chk->isChecked(), QString::fromUtf8(file).contains(u"No"_s));
        QCOMPARE(gLedgerName, show ? templateName : names[0]);
        QCOMPARE(gLedgerFile, show ? gAppPath + u"vemaro.dat"_s : paths[0]);
    }

    void writingTheList()
    {
        writeFile(beside(u"dbsetup.dat"_s),
                  u"\uFEFFYes\r\n甲\r\n/帐/a.hcn\r\n乙\r\n%AppPath%b.hcn\r\n丙\r\n/帐/c.hcn\r\n"_s.toUtf8());
        auto& directory = theForm<ZbSet>();
        directory.LoadLedgerList();
        directory.Cmb[1]->setCurrentIndex(1); // either list leads the other
        QCOMPARE(directory.Cmb[0]->currentText(), u"乙"_s);
        QCOMPARE(directory.Cmb[0]->toolTip(), gAppPath + u"b.hcn"_s);
        directory.Chk->setChecked(true);
        directory.SaveLedgerList();
        QCOMPARE(QString::fromUtf8(readFile(beside(u"dbsetup.dat"_s))),
                 u"No\n乙\n%AppPath%b.hcn\n甲\n/帐/a.hcn\n丙\n/帐/c.hcn\n"_s);
    }

    void ledgerNames_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::newRow("blanks around") << u"  五金 帐 "_s << u"五金帐"_s;
        QTest::newRow("punctuation only") << u"./:@[`{~-_*"_s << QString();
        QTest::newRow("edges of what stays") << u"/09:@AZ[`az{"_s << u"09AZaz"_s;
        QTest::newRow("beyond ASCII") << u"五金（二）Ⅱ\u0080é"_s << u"五金（二）Ⅱ\u0080é"_s;
        QTest::newRow("nothing") << QString() << QString();
    }

    void ledgerNames()
    {
        QFETCH(QString, typed);
        QTEST(CleanLedgerName(typed), "name");
    }

    // ZbSet -----------------------------------------------------------------------------------------------------------

    /// The directory over the template and two entries elsewhere; the template is in use.
    ZbSet& directory()
    {
        writeFile(
            beside(u"dbsetup.dat"_s),
            (u"Yes\n五金\n"_s + ledger_->path() + u"\n原始\n%AppPath%VEMARO.DAT\n旧帐\n/gone/old.hcn\n"_s).toUtf8());
        gLedgerFile = gAppPath + u"vemaro.dat"_s;
        gLedgerName = templateName;
        auto& form = theForm<ZbSet>();
        form.LoadLedgerList();
        return form;
    }

    QStringList listed() const { return readLines(beside(u"dbsetup.dat"_s)).value(); }

    void newLedger_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::newRow("named") << u"新-店 2"_s << u"新店2"_s;
        QTest::newRow("punctuation") << u"-!-"_s << u"新建"_s + templateName;
        QTest::newRow("cancelled") << QString() << u"新建"_s + templateName;
    }

    void newLedger()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        ZbSet& form = directory();
        boxes_->expectFile(u"请指定文件的存放位置及文件名"_s, ledger_->path());
        boxes_->expect(u"目标位置已存在同名文件，请更换存放位置或文件名！"_s);
        boxes_->expectFile(u"请指定文件的存放位置及文件名"_s, beside(u"我的帐本/店.hcn"_s));
        boxes_->expectInput(u"请输入新建帐本的名称："_s, typed.isNull() ? std::nullopt : std::optional(typed));
        choosePopup(form.Cmd[1], u"newone"_s);
        QCOMPARE(boxes_->lastFile.purpose, FileRequest::Purpose::Save);
        QCOMPARE(boxes_->lastInput.title, u"新建帐本"_s);
        QCOMPARE(boxes_->lastInput.preset, u"新建"_s + templateName);
        QCOMPARE(form.Cmb[0]->currentIndex(), 3);
        QCOMPARE(listed().mid(0, 3), (QStringList{u"Yes"_s, name, u"%AppPath%我的帐本/店.hcn"_s}));
        QVERIFY(!gDB.isOpen());
        gDB = DBEngine::OpenDatabase(beside(u"我的帐本/店.hcn"_s), ledgerConnect.toString());
        QCOMPARE(LookupValue(gDB, u"select F2 from TE1"_s), u"管理员"_s);
    }

    void newLedgerOffersItsPlace()
    {
        ZbSet& form = directory();
        boxes_->expectFile(u"请指定文件的存放位置及文件名"_s, std::nullopt);
        form.newone();
        QCOMPARE(boxes_->lastFile.fileName, gAppPath + u"我的帐本/新建帐本.hcn"_s);
        QCOMPARE(boxes_->lastFile.filter, u"恒仓宁帐本文件(*.hcn)|*.hcn|所有文件(*.*)|*.*"_s);
        QVERIFY(QFileInfo(beside(u"我的帐本"_s)).isDir());
        QCOMPARE(form.Cmb[0]->count(), 3);
    }

    void newLedgerWithoutSource()
    {
        ZbSet& form = directory();
        gLedgerFile = u"/gone/old.hcn"_s;
        boxes_->expectFile(u"请指定文件的存放位置及文件名"_s, beside(u"店.hcn"_s));
        boxes_->expectError(u"/gone/old.hcn"_s);
        choosePopup(form.Cmd[1], u"newone"_s);
        QCOMPARE(form.Cmb[0]->count(), 3);
        QVERIFY(!QFile::exists(beside(u"店.hcn"_s)));
    }

    void import_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("preset");
        QTest::newRow("first point ends the name") << u"五金.2004.hcn"_s << u"五金"_s;
        QTest::newRow("point in front stays") << u".帐"_s << u".帐"_s;
        QTest::newRow("no point") << u"帐"_s << u"帐"_s;
    }

    void import()
    {
        QFETCH(QString, file);
        ZbSet& form = directory();
        const QString path = ledger_->folder() + u'/' + file;
        QVERIFY(QFile::copy(ledger_->path(), path));
        boxes_->expectFile(u"请选择已存在的帐本文件"_s, path);
        boxes_->expectInput(u"请输入新建帐本的名称："_s, u"?"_s);
        form.setpath();
        QTEST(boxes_->lastInput.preset, "preset");
        QCOMPARE(boxes_->lastInput.title, u"导入帐本"_s);
        QCOMPARE(form.Cmb[0]->currentText(), u"新建"_s + templateName);
        QCOMPARE(form.Cmb[1]->currentText(), path);
        QVERIFY(!gDB.isOpen());
    }

    void importOfNoLedger()
    {
        ZbSet& form = directory();
        writeFile(beside(u"x.hcn"_s), QByteArray(9000, 'x'));
        boxes_->expectFile(u"请选择已存在的帐本文件"_s, beside(u"x.hcn"_s));
        boxes_->expect(u"无效的文件格式！您只能选择使用本软件建立的帐本文件或数据备份文件！"_s);
        form.setpath();
        QCOMPARE(boxes_->lastFile.fileName, gAppPath + u"我的帐本/*.hcn"_s);
        QCOMPARE(form.Cmb[0]->count(), 3);
        boxes_->expectFile(u"请选择已存在的帐本文件"_s, std::nullopt);
        form.setpath();
    }

    void rename_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("moved"); // the backup settings
        QTest::newRow("renamed") << u"商-行"_s << u"商行"_s << true;
        QTest::newRow("settings of that name exist") << u"乙帐"_s << u"乙帐"_s << false;
        QTest::newRow("nothing left") << u"-"_s << u"五金"_s << false;
        QTest::newRow("cancelled") << QString() << u"五金"_s << false;
    }

    void rename()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(bool, moved);
        writeFile(beside(u"五金bak.set"_s), "1");
        writeFile(beside(u"乙帐bak.set"_s), "2");
        ZbSet& form = directory();
        boxes_->expectInput(u"请输入帐本的名称："_s, typed.isNull() ? std::nullopt : std::optional(typed));
        choosePopup(form.Cmd[1], u"zbrename"_s);
        QCOMPARE(boxes_->lastInput.title, u"帐本更名"_s);
        QCOMPARE(boxes_->lastInput.preset, u"五金"_s);
        QCOMPARE(listed().mid(1, 3), (QStringList{name, ledger_->path(), u"原始"_s}));
        QCOMPARE(QFile::exists(beside(u"五金bak.set"_s)), !moved);
        QCOMPARE(readFile(beside(moved ? u"商行bak.set"_s : u"五金bak.set"_s)), QByteArray("1"));
        QCOMPARE(readFile(beside(u"乙帐bak.set"_s)), QByteArray("2"));
        QVERIFY(QFile::exists(ledger_->path()));
        QCOMPARE(gLedgerName, templateName); // another one is in use
    }

    void popupWithoutAChoiceSavesToo()
    {
        ZbSet& form = directory();
        form.Cmb[0]->setCurrentIndex(1);
        choosePopup(form.Cmd[1], {});
        QCOMPARE(listed().mid(1, 2), (QStringList{u"原始"_s, u"%AppPath%VEMARO.DAT"_s}));
    }

    void unlist_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("box");
        QTest::addColumn<bool>("yes");
        const QString question =
            u"此删除操作只在帐本列表中去除指定帐本，依然在硬盘上保留帐本文件。\n真的要删除[旧帐]吗？"_s;
        QTest::newRow("template") << 1 << u"您选择的是系统原始帐本，不能删除！"_s << false;
        QTest::newRow("in use") << 0 << u"您选择的是当前正在使用的帐本，不能删除！"_s << false;
        QTest::newRow("no") << 2 << question << false;
        QTest::newRow("yes") << 2 << question << true;
    }

    void unlist()
    {
        QFETCH(int, index);
        QFETCH(QString, box);
        QFETCH(bool, yes);
        ZbSet& form = directory();
        gLedgerFile = ledger_->path();
        form.Cmb[0]->setCurrentIndex(index);
        if (box.contains(u"真的"_s))
            boxes_->expect(box, yes ? Answer::Yes : Answer::No);
        else
            boxes_->expect(box);
        form.Cmd[2]->click();
        QCOMPARE(boxes_->lastBox.icon, box.contains(u"真的"_s) ? BoxIcon::Question : BoxIcon::Exclamation);
        QCOMPARE(form.Cmb[0]->count(), yes ? 2 : 3);
        QCOMPARE(form.Cmb[1]->count(), yes ? 2 : 3);
        QCOMPARE(form.Cmb[0]->currentIndex(), yes ? 0 : index);
        QCOMPARE(listed().contains(u"旧帐"_s), !yes);
    }

    void openSelected()
    {
        ZbSet& form = directory();
        form.Cmb[0]->setCurrentIndex(2);
        boxes_->expectStart(u"打开帐本时发现错误！系统返回如下信息："_s);
        form.Cmd[0]->click();
        QVERIFY(boxes_->lastBox.text.endsWith(u"请重新进行帐本设置!"_s));
        QCOMPARE(gLedgerName, templateName);
        QCOMPARE(listed()[1], u"五金"_s);
        form.close(); // the close box does nothing here
        QVERIFY(Form::loaded(u"ZbSet"_s));

        form.Cmb[0]->setCurrentIndex(1);
        form.Cmd[0]->click();
        QVERIFY(gDB.isOpen());
        QCOMPARE(gLedgerName, u"原始"_s);
        QCOMPARE(listed()[1], u"原始"_s);
        QVERIFY(!Form::loaded(u"ZbSet"_s));
    }

    void leave()
    {
        ZbSet& form = directory();
        form.Cmb[0]->setCurrentIndex(1);
        form.Cmd[3]->click();
        QCOMPARE(desktop_->ends, 1);
        QCOMPARE(listed()[1], u"原始"_s);
    }

    void ledgerFolderIsOpened()
    {
        ZbSet& form = directory();
        form.Cmb[0]->setCurrentIndex(2);
        boxes_->expect(u"是否需要打开帐本文件所在的文件夹？"_s, Answer::Yes);
        QTest::mouseDClick(form.Label2, Qt::LeftButton);
        QCOMPARE(boxes_->lastBox.title, u" 帐本文件维护"_s);
        QCOMPARE(desktop_->opened, QStringList{u"file:///gone"_s});
    }

    // Login -----------------------------------------------------------------------------------------------------------

    void loginRefuses_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("box"); // "" lets in
        QTest::addColumn<int>("focus");
        const QString wrong = u"密码输入错误！"_s;
        QTest::newRow("no account") << u"  "_s << QString() << u"请输入或在下拉列表中选择用户帐号!"_s << 0;
        QTest::newRow("unknown") << u"009"_s << QString() << u"无效的用户帐号！建议您在下拉列表中选择！"_s << 0;
        QTest::newRow("quote is data") << u"' or ''='"_s << QString() << u"无效的用户帐号！建议您在下拉列表中选择！"_s
                                       << 0;
        QTest::newRow("no password") << u"002"_s << QString() << wrong << 1;
        QTest::newRow("another case") << u"002"_s << u"ab c "_s << wrong << 1;
        QTest::newRow("blank missing") << u"002"_s << u"Ab c"_s << wrong << 1;
        QTest::newRow("blank too many") << u"003"_s << u" "_s << wrong << 1;
        QTest::newRow("exact") << u"002"_s << u"Ab c "_s << QString() << 0;
        QTest::newRow("account trimmed") << u" 002　"_s << u"Ab c "_s << QString() << 0;
        QTest::newRow("Null password is empty") << u"003"_s << QString() << QString() << 0;
    }

    void loginRefuses()
    {
        QFETCH(QString, account);
        QFETCH(QString, password);
        QFETCH(QString, box);
        QFETCH(int, focus);
        ledger_->run(u"insert into TE1 (F1,F2,F3,F61) values ('002','小李','Ab c ',1)"_s);
        ledger_->run(u"insert into TE1 (F1,F2,F61) values ('003','小张',1)"_s);
        mainWindow();
        auto& login = theForm<Login>();
        if (!box.isEmpty())
            boxes_->expect(box);
        enterAs(login, account, password);
        if (box.isEmpty()) {
            QVERIFY(!Form::loaded(u"Login"_s));
            QCOMPARE(gOperId, Trim(account));
            QCOMPARE(statusPanel(3), gOperName);
            QVERIFY(!gOperName.isEmpty());
            return;
        }
        QVERIFY(Form::loaded(u"Login"_s));
        QCOMPARE(login.focusWidget(), login.Txt[focus]);
        if (focus == 1)
            QCOMPARE(login.Txt[1]->text(), QString());
        QCOMPARE(gOperId, QString());
        compareClosed(gatedItems);
    }

    void loginFields()
    {
        ledger_->run(u"insert into TE1 (F1,F2,F3) values ('002','李.四','x')"_s);
        ledger_->run(u"insert into TE1 (F1,F2,F3) values ('003',Null,'x')"_s);
        ledger_->run(u"update TE1 set F3='秘' where F1='001'"_s);
        mainWindow();
        Walk walk;
        walk.in<Login>([this](Login& login) {
            QVERIFY(QTest::qWaitForWindowActive(&login)); // else no focus is lost
            QCOMPARE(login.Caption(), u"登录帐本...2004-11-18"_s);
            QCOMPARE(login.Cmb->count(), 3);
            QCOMPARE(login.Cmb->itemText(0), u"001.管理员"_s);
            QCOMPARE(login.Cmb->itemText(2), QString()); // without a name not to be chosen
            const auto leaving = [&](const QString& text) {
                login.Cmb->setFocus();
                login.Cmb->setEditText(text);
                QTest::keyClick(login.Cmb->lineEdit(), Qt::Key_Return);
                return login.Txt[0]->text();
            };
            QCOMPARE(leaving(u" 002.李.四 "_s), u"002"_s);
            QCOMPARE(login.focusWidget(), login.Txt[1]);
            QCOMPARE(leaving(u"003"_s), u"003"_s);
            QCOMPARE(leaving(u" "_s), QString());
            QTest::keyClick(login.Txt[1], Qt::Key_Return);
            QCOMPARE(login.focusWidget(), login.Cmd[0]);

            boxes_->expect(u"密码输入错误！"_s);
            QTest::keyClick(login.Txt[0], Qt::Key_S, Qt::ControlModifier); // the password still counts
            QCOMPARE(login.Txt[0]->text(), u"001"_s);
            login.Txt[1]->setText(u"秘"_s);
            QTest::keyClick(login.Txt[1], Qt::Key_S, Qt::ControlModifier);
        });
        theForm<Login>().ShowModal();
        QCOMPARE(gOperId, u"001"_s);
    }

    void loginHelp_data()
    {
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("start");
        QTest::newRow("none") << u"''"_s
                              << u"系统默认用户为“001”，默认密码为空。也就是不需要输入密码，直接按<登录>按钮登录。\n\n"
                                 u"在系统中可以使用[操作员修改密码]功能为“001”或其它用户名设定密码。"_s;
        QTest::newRow("Null") << u"Null"_s << u"系统默认用户为“001”，默认密码为空。"_s;
        QTest::newRow("set") << u"'x'"_s << u"如果您忘记了最高管理员“001”的密码，请通过以下流程找回密码："_s;
    }

    void loginHelp()
    {
        QFETCH(QString, password);
        QFETCH(QString, start);
        ledger_->run(u"update TE1 set F3="_s + password);
        mainWindow();
        boxes_->expectStart(start);
        theForm<Login>().Cmd[2]->click();
        QVERIFY(
            boxes_->lastBox.text.endsWith(u"关于如何使用本软件，您可以在登录系统后查看主菜单[使用说明]中的信息。"_s));
        QCOMPARE(boxes_->lastBox.title, u"帮助"_s);
    }

    void leavingTheLoginEndsAtOnce()
    {
        mainWindow();
        theForm<Login>().Cmd[1]->click();
        QCOMPARE(desktop_->ends, 1);
        QVERIFY(desktop_->classes.isEmpty());
    }

    void rights_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("flags"); // F61 to F66
        QTest::addColumn<QStringList>("closed");
        QTest::newRow("base") << u"002"_s << u"0,1,1,1,1,1"_s << QStringList{u"Menu_A"_s};
        QTest::newRow("in") << u"002"_s << u"1,0,1,1,1,1"_s << QStringList{u"Menu_B"_s};
        QTest::newRow("stock") << u"002"_s << u"1,1,0,1,1,1"_s << QStringList{u"Menu_C"_s};
        QTest::newRow("out") << u"002"_s << u"1,1,1,0,1,1"_s << QStringList{u"Menu_D"_s};
        QTest::newRow("cost") << u"002"_s << u"1,1,1,1,0,1"_s << QStringList{u"Menu_E"_s};
        QTest::newRow("admin") << u"002"_s << u"1,1,1,1,1,0"_s
                               << QStringList{u"Menu_S1"_s, u"Menu_S3"_s, u"Menu_S25"_s, u"Menu_zbhf"_s};
        QTest::newRow("all") << u"002"_s << u"1,-1,2,1,1,1"_s << QStringList();
        QTest::newRow("none") << u"002"_s << u"0,0,0,0,0,0"_s << gatedItems;
        QTest::newRow("Null denies") << u"002"_s << u"Null,Null,Null,Null,Null,Null"_s << gatedItems;
        QTest::newRow("001 isn't tested") << u"001"_s << u"0,0,0,0,0,Null"_s << QStringList();
    }

    void rights()
    {
        QFETCH(QString, account);
        QFETCH(QString, flags);
        QFETCH(QStringList, closed);
        ledger_->run(u"delete from TE1"_s);
        ledger_->run(
            u"insert into TE1 (F1,F2,F3,F61,F62,F63,F64,F65,F66) values ('%1','员','',%2)"_s.arg(account, flags));
        ledger_->run(u"update reginfo set F1='和顺五金',F3='西街',F4=Null"_s);
        MForm& window = mainWindow();
        compareClosed(gatedItems);
        logInAs(account);
        compareClosed(closed);
        QCOMPARE(gCanSeeCost, !closed.contains(u"Menu_E"_s));
        for (const char* name : {"menu_S", "Menu_S26", "Relogin", "Quit", "H"})
            QVERIFY2(window.menuItem(QString::fromLatin1(name))->isEnabled(), name);
        QCOMPARE(window.Caption(), u"恒仓宁仓库管理系统 Ver:9.69 和顺五金"_s);
        QCOMPARE(QStringList({gCompanyName, gCompanyAddr, gCompanyTel}),
                 QStringList({u"和顺五金"_s, u"西街"_s, QString()}));
        // An item under a closed menu does nothing either, even if its letter still reaches it.
        window.menuItem(u"Menu_B1"_s)->trigger();
        QCOMPARE(Form::loaded(u"B1"_s) != nullptr, !closed.contains(u"Menu_B"_s));
    }

    void changeOfOperator()
    {
        class Watching : public Form
        {
        public:
            Watching()
                : Form(u"Watching"_s, u"看"_s)
            {}
            void sessionChanged() override { seen += gOperId + (gCanSeeCost ? u"+"_s : u"-"_s); }
            QStringList seen;
        };
        ledger_->run(u"insert into TE1 (F1,F2,F3) values ('002','小李','')"_s);
        MForm& window = mainWindow();
        auto* panel = window.findChild<QLabel*>(u"StB(4)"_s);
        auto* open = new Watching;
        open->Show();
        logInAs(u"001"_s);
        QVERIFY(!panel->toolTip().isEmpty());
        for (const char* account : {"002", "001", "002"}) {
            Walk walk;
            walk.in<Login>([&](Login& login) { enterAs(login, QString::fromLatin1(account)); });
            window.menuItem(u"Relogin"_s)->trigger();
            const bool top = isTopAdministrator();
            compareClosed(top ? QStringList() : gatedItems);
            QCOMPARE(panel->toolTip().isEmpty(), !top); // only "001" changes the ledger there
        }
        QCOMPARE(open->seen, (QStringList{u"001+"_s, u"002-"_s, u"001+"_s, u"002-"_s}));

        Walk walk;
        walk.in<Login>([](Login& login) { login.close(); });
        window.menuItem(u"Relogin"_s)->trigger();
        QCOMPARE(gOperId, u"002"_s); // nobody came instead
    }

    void halfALoginIsNone_data()
    {
        QTest::addColumn<QString>("word"); // of the schema, that isn't found in this ledger
        QTest::newRow("password") << u"F3 text collate nocase, F61"_s;
        QTest::newRow("settings") << u"sysinfo"_s;
        QTest::newRow("company") << u"reginfo"_s;
        QTest::newRow("rights") << u"F66"_s;
    }

    void halfALoginIsNone()
    {
        QFETCH(QString, word);
        const QString path = beside(u"坏.hcn"_s);
        if (word.startsWith(u"F3"_s)) {
            QString schema = readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n');
            schema.replace(word, QString(word).replace(u"F3"_s, u"G3"_s)).replace(u"F2, F3, F61"_s, u"F2, G3, F61"_s);
            createLedger(path, schema, ledgerConnect.toString());
        } else {
            makeLedger(path, word, u"gone"_s, ledgerConnect.toString());
        }
        mainWindow();
        logInAs(u"001"_s);
        gDB = DBEngine::OpenDatabase(path, ledgerConnect.toString());
        gDB.Execute(u"insert into TE1 (F1,F2) values ('002','小李')"_s);
        auto& login = theForm<Login>();
        boxes_->expectError({});
        enterAs(login, u"002"_s);
        QVERIFY(Form::loaded(u"Login"_s));
        QCOMPARE(gOperId + gOperName + statusPanel(3), QString());
        QCOMPARE(MForm::get().Caption(), u"恒仓宁仓库管理系统 Ver:9.69"_s);
        QVERIFY(!gCanSeeCost);
        compareClosed(gatedItems);
    }

    void background_data()
    {
        QTest::addColumn<QString>("stored"); // F75
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("visible");
        QTest::newRow("own picture and caption") << u"' 日日进货 '"_s << u"jpg"_s << u"日日进货"_s << true;
        QTest::newRow("own picture") << u"Null"_s << u"jpg"_s << u"我的公司"_s << true;
        QTest::newRow("caption hidden without one") << u"'日日进货'"_s << QString() << u"日日进货"_s << false;
        QTest::newRow("common picture") << u"''"_s << u"syspic"_s << u"我的公司"_s << false;
        QTest::newRow("unreadable picture") << u"''"_s << u"broken"_s << u"我的公司"_s << true; // as before the login
    }

    void background()
    {
        QFETCH(QString, stored);
        QFETCH(QString, picture);
        ledger_->run(u"update TE1 set F75="_s + stored);
        QDir(folder_->path()).mkpath(u"Image"_s);
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        if (picture == u"jpg")
            QVERIFY(image.save(beside(u"Image/001.JPG"_s), "JPG"));
        else if (picture == u"syspic")
            QVERIFY(image.save(beside(u"syspic.dat"_s), "PNG"));
        else if (picture == u"broken")
            writeFile(beside(u"Image/001.jpg"_s), "no picture");
        BGForm& behind = *mainWindow().background();
        QVERIFY(!behind.isEnabled());
        QCOMPARE(behind.bigCaption(), u"恒仓宁仓库管理"_s);
        logInAs(u"001"_s);
        QTEST(behind.bigCaption(), "caption");
        QTEST(behind.LabBig[0]->isVisible(), "visible");
        QTEST(behind.LabBig[1]->isVisible(), "visible");
        QTEST(behind.Lab->isVisible(), "visible");
        QCOMPARE(!behind.Img->pixmap().isNull(), picture == u"jpg" || picture == u"syspic");
    }

    // Main window -----------------------------------------------------------------------------------------------------

    void menuTree()
    {
        MForm& window = mainWindow();
        logInAs(u"001"_s);
        const QStringList tree{u"Menu_A &A.基础数据"_s,
                               u" Menu_A1 &1.供货单位资料"_s,
                               u" Menu_A2 &2.出货单位资料"_s,
                               u" Menu_A3 &3.货品类别资料"_s,
                               u" Menu_A4 &4.货品编码资料"_s,
                               u" menu_Aline -"_s,
                               u" Menu_A5 &5.从Excell导入货品资料"_s,
                               u"Menu_B &B.入库管理"_s,
                               u" Menu_B1 &1.货品入库单"_s,
                               u" Menu_B2 &2.入库单统计"_s,
                               u" bl -"_s,
                               u" Menu_B3 &3.公司退货单"_s,
                               u" Menu_B4 &4.退货单统计"_s,
                               u"Menu_C &C.库存管理"_s,
                               u" Menu_C1 &1.仓库存货统计"_s,
                               u" Menu_C15 &2.货品进出流水帐 hidden"_s,
                               u" Menu_C18(0) &3.货品进出存报表(一) hidden"_s,
                               u" Menu_C18(1) &4.货品进出存报表(二) hidden"_s,
                               u" Menu_C19 &5.库存年度结转 hidden"_s,
                               u" cl -"_s,
                               u" Menu_C2 &2.库存货品盘点"_s,
                               u" Menu_C3 &3.库存盘点统计"_s,
                               u"Menu_D &D.出库管理"_s,
                               u" Menu_D1 &1.货品出库单"_s,
                               u" Menu_D2 &2.出库单统计"_s,
                               u" dl -"_s,
                               u" Menu_D3 &3.货品退库单"_s,
                               u" Menu_D4 &4.退库单统计"_s,
                               u"Menu_E &E.综合报表"_s,
                               u" Menu_E1 &1.货品进出流水帐"_s,
                               u" Menu_E2 &2.货品进出存数量报表"_s,
                               u" Menu_E3 &3.货品进销存综合报表"_s,
                               u"menu_S &S.系统管理"_s,
                               u" Menu_S1 &1.操作员权限分配"_s,
                               u" Menu_S2 &2.操作员个人设置"_s,
                               u" Menu_S25 &3.系统设置"_s,
                               u"  Menu_S2501 系统套帐设置"_s,
                               u"  Menu_S2502 系统功能设置"_s,
                               u"  Menu_S2503 公司资料设置"_s,
                               u" sl -"_s,
                               u" Menu_S26 &4.数据备份与恢复"_s,
                               u"  Menu_zbbf &B.帐本备份"_s,
                               u"  Menu_zbhf &R.帐本恢复"_s,
                               u" Menu_S3 &5.帐本数据清除"_s,
                               u"  MS300 数据备份与恢复 hidden"_s,
                               u"  MS302 清除指定基础数据"_s,
                               u"  MS303 清除历史单据"_s,
                               u"  MS3 帐本数据初始化"_s,
                               u" dddds -"_s,
                               u" Relogin &7.更换登录用户"_s,
                               u" Quit &8.退出本系统"_s,
                               u" Menu_Who &9.谁在使用帐本"_s,
                               u" Menu_check &0.帐本体检"_s,
                               u" Menu_Look &D.显示设置"_s,
                               u"H &H.使用说明"_s,
                               u" Menu_help &1.软件使用说明书"_s,
                               u" Menu_frmtip &2.[恒仓宁]知识点滴"_s,
                               u" ab &3.关于本软件"_s,
                               u" Menu_200491 -"_s,
                               u" Menu_H3 &4.软件升级"_s,
                               u" Menu_H4 &5.技术支持"_s,
                               u" Menu_H5 &6.意见反馈"_s,
                               u" Menu_H6 恒仓宁软件网站"_s,
                               u" Menu_jishuan &8.辅助工具--计算器"_s};
        QStringList found;
        const std::function<void(const QList<QAction*>&, int)> walk = [&](const QList<QAction*>& actions, int depth) {
            for (QAction* action : actions) {
                const QString words = action->isSeparator() ? u"-"_s : commandCaption(action);
                found += QString(depth, u' ') + action->objectName() + u' ' + words +
                         (action->isVisible() ? u""_s : u" hidden"_s);
                // The toolkit disables what is hidden.
                QVERIFY2(action->isSeparator() || action->isEnabled() == action->isVisible(),
                         qPrintable(action->objectName()));
                if (action->menu())
                    walk(action->menu()->actions(), depth + 1);
            }
        };
        walk(window.menuBar()->actions(), 0);
        QCOMPARE(found.join(u'\n'), tree.join(u'\n'));
        for (const char* name : {"Menu_B1", "Menu_B3", "Menu_D1", "Menu_D3", "Menu_S2501", "Relogin", "Quit", "ab",
                                 "Menu_frmtip", "Menu_H3", "Menu_H6", "Menu_jishuan"})
            QVERIFY2(window.menuItem(QString::fromLatin1(name))->isEnabled(), name);
    }

    void panels_data()
    {
        QTest::addColumn<int>("panel");
        QTest::addColumn<QString>("account");
        QTest::addColumn<bool>("busy");
        QTest::addColumn<QString>("shows"); // a form, "*" the calculator, "" nothing
        QTest::newRow("maker") << 1 << u"002"_s << true << u"AboutUS"_s;
        QTest::newRow("operator") << 2 << u"002"_s << false << u"Login"_s;
        QTest::newRow("operator while busy") << 2 << u"001"_s << true << QString();
        QTest::newRow("ledger by 001") << 4 << u"001"_s << false << u"ZbSet"_s;
        QTest::newRow("ledger by 001 while busy") << 4 << u"001"_s << true << u"*"_s;
        QTest::newRow("ledger by another") << 4 << u"002"_s << false << u"*"_s;
    }

    void panels()
    {
        QFETCH(int, panel);
        QFETCH(QString, account);
        QFETCH(bool, busy);
        QFETCH(QString, shows);
        ledger_->run(u"insert into TE1 (F1,F2,F3,F66) values ('002','小李','',1)"_s);
        MForm& window = mainWindow();
        logInAs(account);
        if (busy)
            BusyStatus();
        const auto click = [&] {
            QTest::mouseClick(window.findChild<QLabel*>(u"StB(%1)"_s.arg(panel)), Qt::LeftButton);
        };
        Walk walk;
        if (shows == u"*") {
            click(); // without the program nothing happens
            QVERIFY(desktop_->started.isEmpty());
            writeFile(beside(u"JiSuan.exe"_s), "x");
        } else if (shows == u"AboutUS") {
            walk.in<AboutUS>([](AboutUS& form) { form.Unload(); });
        } else if (shows == u"Login") {
            walk.in<Login>([](Login& form) { form.close(); });
        } else if (shows == u"ZbSet") {
            walk.in<ZbSet>([](ZbSet& form) { form.leave(); });
        }
        click();
        QCOMPARE(desktop_->started, shows == u"*" ? QStringList{gAppPath + u"jisuan.exe"_s} : QStringList());
        QCOMPARE(gOperId, account);
        QVERIFY(gDB.isOpen());
    }

    void calculatorFromTheMenu()
    {
        QAction* item = mainWindow().menuItem(u"Menu_jishuan"_s);
        boxes_->expect(u"没找到文件 jisuan.exe ！"_s);
        item->trigger();
        writeFile(beside(u"jisuan.exe"_s), "x");
        item->trigger();
        QCOMPARE(desktop_->started, QStringList{gAppPath + u"jisuan.exe"_s});
    }

    void ledgerChange_data()
    {
        QTest::addColumn<QString>("choice"); // an entry of the list; "" leaves
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("again"); // a login is asked for
        QTest::newRow("left") << QString() << u"五金"_s << false;
        QTest::newRow("the same") << u"五金"_s << u"五金"_s << false;
        QTest::newRow("the same by another name") << u"五金二"_s << u"五金二"_s << false;
        QTest::newRow("another") << u"原始"_s << u"原始"_s << true;
    }

    void ledgerChange()
    {
        QFETCH(QString, choice);
        QFETCH(QString, name);
        QFETCH(bool, again);
        // The list's first entry is another ledger than the one in use.
        writeFile(beside(u"dbsetup.dat"_s),
                  u"No\n原始\n%AppPath%vemaro.dat\n五金\n%1\n五金二\n%1\n"_s.arg(ledger_->path()).toUtf8());
        const QByteArray before = readFile(beside(u"dbsetup.dat"_s));
        MForm& window = mainWindow();
        logInAs(u"001"_s);
        Walk walk;
        walk.in<ZbSet>([&](ZbSet& form) {
            QVERIFY(!gDB.isOpen());
            QVERIFY(form.Chk->isChecked());
            QCOMPARE(form.Cmd[3]->text(), u"返回系统"_s);
            form.close();
            QVERIFY(form.isVisible());
            if (!choice.isEmpty())
                form.Cmb[0]->setCurrentText(choice);
            form.Cmd[choice.isEmpty() ? 3 : 0]->click();
        });
        if (again)
            walk.in<Login>([this](Login& login) {
                QCOMPARE(gOperId, QString());
                compareClosed(gatedItems);
                QCOMPARE(statusPanel(4), u"原始"_s);
                login.close();
            });
        window.menuItem(u"Menu_S2501"_s)->trigger();
        QVERIFY(gDB.isOpen());
        QCOMPARE(gLedgerName, name);
        QCOMPARE(statusPanel(4), name);
        QCOMPARE(gLedgerFile, again ? beside(u"vemaro.dat"_s) : ledger_->path());
        QCOMPARE(gOperId, again ? QString() : u"001"_s); // a login that is closed leaves nobody
        QCOMPARE(statusPanel(3), gOperName);
        if (choice.isEmpty())
            QCOMPARE(readFile(beside(u"dbsetup.dat"_s)), before);
    }

    void ledgerInUseIsRenamed()
    {
        MForm& window = mainWindow();
        logInAs(u"001"_s);
        Walk walk;
        walk.in<ZbSet>([this](ZbSet& form) {
            boxes_->expectInput(u"请输入帐本的名称："_s, u"商行"_s);
            form.zbrename();
            QCOMPARE(statusPanel(4), u"商行"_s);
            form.leave();
        });
        window.changeLedger();
        QCOMPARE(gLedgerName, u"商行"_s);
    }

    void close_data()
    {
        QTest::addColumn<QVariant>("inFront"); // Edstu of the form in front
        QTest::addColumn<QVariant>("behind");
        QTest::addColumn<QString>("answer"); // "" when the question isn't asked
        const QVariant none;
        QTest::newRow("no form, yes") << none << none << u"yes"_s;
        QTest::newRow("no form, no") << none << none << u"no"_s;
        QTest::newRow("browsing") << QVariant(0) << none << u"yes"_s;
        QTest::newRow("form without the member") << QVariant(u"none"_s) << none << u"yes"_s;
        QTest::newRow("adding") << QVariant(1) << none << QString();
        QTest::newRow("editing") << QVariant(2) << none << QString();
        QTest::newRow("editing behind isn't asked") << QVariant(0) << QVariant(2) << u"yes"_s;
    }

    void close()
    {
        QFETCH(QVariant, inFront);
        QFETCH(QVariant, behind);
        QFETCH(QString, answer);
        MForm& window = mainWindow();
        logInAs(u"001"_s);
        const auto open = [](const QString& name, const QVariant& state) {
            if (!state.isValid())
                return;
            auto* form = new Form(name, name);
            if (state.typeId() == QMetaType::Int)
                form->setProperty("Edstu", state);
            form->Show();
        };
        open(u"Behind"_s, behind);
        open(u"InFront"_s, inFront);
        if (answer.isEmpty())
            boxes_->expect(
                u"正在有数据被编辑,现在退出会造成本次编辑的数据丢失。\n\n请您首先点击<保存>或<取消>菜单结束本次编辑。"_s);
        else
            boxes_->expect(exitQuestion, answer == u"yes" ? Answer::Yes : Answer::No);
        window.menuItem(u"Quit"_s)->trigger();
        const bool ended = answer == u"yes";
        QCOMPARE(desktop_->ends, ended ? 1 : 0);
        QVERIFY(window.isVisible());
        QCOMPARE(Form::loaded(u"InFront"_s) != nullptr, inFront.isValid()); // no form is asked to close
        QCOMPARE(desktop_->settings.value(u"vemaroware/cangku/ver"_s), ended ? u"9.69"_s : QString());
        QCOMPARE(desktop_->settings.value(u"vemaroware/cangku/mainfile"_s),
                 ended ? gAppPath + programFileName() : QString());
        const QStringList classes{u"Hengcangning||恒仓宁帐本文件"_s,
                                  u"Hengcangning\\DefaultIcon||"_s + gAppPath + u"zb.ico"_s, u".hcn||Hengcangning"_s,
                                  u"Hengcangning|shell\\open\\command|"_s + gAppPath + programFileName() + u" %1"_s};
        QCOMPARE(desktop_->classes, ended ? classes : QStringList());
    }

    // Tips and about --------------------------------------------------------------------------------------------------

    void tips()
    {
        writeFile(beside(u"Learn.dat"_s), u"先入库\r\n再审核\r\n"_s.toUtf8());
        auto& form = theForm<frmTip>();
        QSet<QString> seen{form.lblTipText->text()};
        for (int i = 0; i < 200; ++i) {
            form.cmdNextTip->click();
            seen += form.lblTipText->text();
        }
        QCOMPARE(seen, (QSet<QString>{u"先入库"_s, u"再审核"_s}));

        const QString key = (gProgramName + u"/options/在启动时显示提示"_s);
        QVERIFY(!form.chkLoadTipsAtStartup->isChecked());
        form.chkLoadTipsAtStartup->click();
        QCOMPARE(desktop_->settings.value(key), u"1"_s); // at once
        form.cmdOK->click();
        QVERIFY(theForm<frmTip>().chkLoadTipsAtStartup->isChecked());
    }

    void tipsMissing_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("no file") << false;
        QTest::newRow("no line in it") << true;
    }

    void tipsMissing()
    {
        QFETCH(bool, exists);
        const QString file = gAppPath + u"Learn.dat"_s;
        if (exists)
            writeFile(file, {});
        auto& form = theForm<frmTip>();
        form.cmdNextTip->click();
        QCOMPARE(form.lblTipText->text(),
                 exists ? QString()
                        : u"文件 "_s + file + u" 没有被找到吗? \n创建文本文件名为 "_s + file +
                              u" 使用记事本每行写一条提示。 然后将它存放在应用程序所在的目录 "_s + gAppPath);
    }

    void aboutAndService()
    {
        MForm& window = mainWindow();
        for (const char* name : {"ab", "Menu_H3", "ab"}) {
            Walk walk;
            walk.in<AboutUS>([name](AboutUS& form) {
                QCOMPARE(form.LabEdition->text(), u"标准版 9.69"_s);
                QCOMPARE(form.LabService->isVisible(), qstrcmp(name, "ab") != 0);
                form.Cmd[2]->click();
            });
            window.menuItem(QString::fromLatin1(name))->trigger();
        }
        auto& form = theForm<AboutUS>();
        form.Cmd[0]->click();
        form.Cmd[1]->click();
        window.menuItem(u"Menu_H6"_s)->trigger();
        QCOMPARE(desktop_->opened.size(), 3);
        QVERIFY(desktop_->opened[0].startsWith(u"https://"_s));
        QVERIFY(desktop_->opened[1].startsWith(u"mailto:"_s) && desktop_->opened[1].endsWith(u"9.69"_s));
        QCOMPARE(desktop_->opened[2], desktop_->opened[0]);
    }

    /// A user's own program folder, made of what a package installed: it follows the package, but for what was changed.
    void programFolderOfAUser()
    {
        const QDir home(gAppPath);
        const QString parts = home.filePath(u"share"_s);
        const QString programs = home.filePath(u"lib"_s);
        const QString own = home.filePath(u"data/hcn"_s);
        const auto inOwn = [&own](const QString& name) { return own + u'/' + name; };
        const auto install = [&](const QByteArray& text) {
            for (const QString& name : {u"Plist.rpt"_s, u"Learn.dat"_s, u"vemaro.dat"_s, u"demo.hcn"_s})
                writeFile(parts + u'/' + name, text);
            QCOMPARE(renewProgramFolder(parts, programs, own), QString());
        };
        QVERIFY(home.mkpath(parts + u"/使用说明"_s) && home.mkpath(programs));
        writeFile(programs + u"/hcn"_s, "program");
        QFile::setPermissions(programs + u"/hcn"_s, QFile::ReadOwner | QFile::ExeOwner);
        install("first");
        QCOMPARE(readFile(inOwn(u"vemaro.dat"_s)), "first");
        QCOMPARE(readFile(inOwn(u"hcn"_s)), "program");
        QVERIFY(QDir(inOwn(u"使用说明"_s)).exists());
        writeFile(inOwn(u"Plist.rpt"_s), "mine");
        QFile::remove(inOwn(u"demo.hcn"_s));
        install("second");
        install("third");
        QCOMPARE(readFile(inOwn(u"Plist.rpt"_s)), "mine");
        QCOMPARE(readFile(inOwn(u"Learn.dat"_s)), "third");
        QCOMPARE(readFile(inOwn(u"vemaro.dat"_s)), "first"); // a ledger is never replaced
        QCOMPARE(readFile(inOwn(u"demo.hcn"_s)), "second");
        QFile::remove(inOwn(u"Plist.rpt"_s));
        install("fourth");
        QCOMPARE(readFile(inOwn(u"Plist.rpt"_s)), "fourth");
        // Where the folder can't be made the operator hears it.
        writeFile(home.filePath(u"taken"_s), "a file");
        QVERIFY(renewProgramFolder(parts, programs, home.filePath(u"taken/hcn"_s)).contains(u"程序文件夹"_s));
        // A folder that has a ledger of its own is a program folder wherever it lies.
        QCOMPARE(::programFolder(parts).path, parts);
    }
};

QTEST_MAIN(ShellTest)
#include "shell_test.moc"
