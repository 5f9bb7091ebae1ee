// What must not be: a command that a gate closes reached by another way, a password in a place where it can be read,
// and a value typed that changes the statement around it.

#include "admin/S2.h"
#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "ledger/engine.h"
#include "ledger/literal.h"
#include "ledger_fixture.h"
#include "memory_desktop.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/status_panels.h"
#include "reports/C1.h"
#include "reports/Query.h"
#include "shell/BGForm.h"
#include "shell/CompanySet.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/ZbSet.h"
#include "shell/rights.h"
#include "tools/headless.h"

#include <QComboBox>
#include <QDirIterator>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QtTest>

#include <set>

namespace {

/// Says the same to every question and keeps what it was told.
class Listener : public DialogHost
{
public:
    Answer show(const Box& box) override
    {
        told += box;
        return box.buttons == BoxButtons::YesNo ? (agrees ? Answer::Yes : Answer::No) : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}

    QList<Box> told;
    bool agrees = true;
};

/// Each modal form that comes is noted, handed to `use` and sent away.
class ModalForms : public QObject
{
public:
    ModalForms()
    {
        connect(&timer_, &QTimer::timeout, this, [this] { look(); });
        timer_.start(1);
    }
    QStringList came;
    std::function<void(Form&)> use;

private:
    void look()
    {
        auto* form = qobject_cast<Form*>(QApplication::activeModalWidget());
        if (!form)
            return;
        came += form->Name();
        const QPointer<Form> kept = form;
        if (use)
            use(*form);
        if (auto* directory = qobject_cast<ZbSet*>(kept))
            directory->Cmd[3]->click();
        else if (kept && kept->isVisible())
            kept->Unload();
    }
    QTimer timer_;
};

const QStringList waysOut{u"Menu_Return"_s, u"Menu_Rtn"_s, u"Menu_R"_s};

/// The commands of a form or of the main window, menus and ways out left aside.
QList<QAction*> commandsOf(QWidget* window)
{
    QList<QAction*> commands;
    for (QAction* action : window->findChildren<QAction*>())
        if (!action->menu() && !action->isSeparator() && !action->objectName().isEmpty() &&
            !qobject_cast<QAbstractItemView*>(action->parent()) && !waysOut.contains(action->objectName()))
            commands += action;
    return commands;
}

/// As if the greyed item had been reached all the same, which the toolkit doesn't allow.
void force(QAction* action)
{
    emit action->triggered(false);
}

} // namespace

class GuardTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LedgerFixture> ledger_;
    std::unique_ptr<ModalForms> modals_;
    MemoryDesktop* desktop_ = nullptr;
    Listener* boxes_ = nullptr;

    /// All rows of all tables.
    QStringList books()
    {
        QStringList all;
        const RowArena tables = ledger_->second().connection().selectOwn(
            u"select name from sqlite_master where type='table' order by name"_s);
        for (qsizetype i = 0; i < tables.rowCount(); ++i) {
            const QString table = tables.value(i, 0).text();
            for (const QString& row : ledger_->rows(u"select * from ["_s + table + u']'))
                all += table + u": "_s + row;
        }
        return all;
    }

    void logIn(const QString& account, const QString& password = {})
    {
        auto& login = theForm<Login>();
        login.Txt[0]->setText(account);
        login.Txt[1]->setText(password);
        login.Cmd[0]->click();
    }

    /// Every form there is, opened from the menu by "001"; modal ones go at once.
    void openAll()
    {
        boxes_->agrees = false; // nothing is to end
        for (QAction* item : commandsOf(&MForm::get()))
            if (item->parent() == &MForm::get() || qobject_cast<QMenu*>(item->parent()))
                force(item);
        boxes_->agrees = true;
    }

    /// Whatever can be done in the main window and in all forms, beyond what is in reach.
    void tryEverything()
    {
        static const QStringList forEverybody{u"Quit"_s, u"Relogin"_s};
        for (QAction* item : commandsOf(&MForm::get()))
            if (!forEverybody.contains(item->objectName()) &&
                (item->parent() == &MForm::get() || qobject_cast<QMenu*>(item->parent())))
                force(item);
        auto* panels = MForm::get().findChild<StatusPanels*>();
        for (int panel = 1; panel <= 4; ++panel)
            emit panels->clicked(panel);
        for (Form* form : QList<Form*>(Form::all())) {
            form->Show();
            for (QAction* action : commandsOf(form))
                if (action->objectName() != u"Menu_cancel") // gives up an entry, which must stay possible
                    force(action);
            for (QShortcut* shortcut : form->findChildren<QShortcut*>())
                emit shortcut->activated();
            for (Grid* grid : form->findChildren<Grid*>())
                emit grid->activatedRow(1);
            for (QAbstractButton* button : form->findChildren<QAbstractButton*>())
                if (button->isVisible())
                    button->click();
            for (const Qt::Key key : {Qt::Key_F2, Qt::Key_F4, Qt::Key_F5, Qt::Key_Return, Qt::Key_Delete})
                QTest::keyClick(form, key);
            for (char letter = 'A'; letter <= 'Z'; ++letter)
                if (letter != 'R') // the way out
                    QTest::keyClick(form, letter, Qt::AltModifier);
        }
    }

    /// The forms that show records: a grid, or anything that can be typed in.
    static QStringList formsThatShow()
    {
        std::set<QString> names;
        for (Form* form : Form::all())
            for (QWidget* widget : form->findChildren<QWidget*>())
                if ((qobject_cast<Grid*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                     qobject_cast<QComboBox*>(widget)) &&
                    widget->isVisibleTo(form))
                    names.insert(form->Name());
        return {names.begin(), names.end()};
    }

    QStringList texts() const
    {
        QStringList all;
        for (const Box& box : boxes_->told)
            all << box.text << box.title;
        return all;
    }

private slots:
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void init()
    {
        desktop_ = &MemoryDesktop::install();
        auto listener = std::make_unique<Listener>();
        boxes_ = listener.get();
        setDialogHost(std::move(listener));
        setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
        resetSession();
        ledger_ = std::make_unique<LedgerFixture>();
        for (const QFileInfo& layout : QDir(QStringLiteral(LAYOUTS)).entryInfoList({u"*.rpt"_s}))
            QVERIFY(QFile::copy(layout.filePath(), ledger_->folder() + u'/' + layout.fileName()));
        for (const char16_t* goods : {u"'A1',20,20,2", u"'A2',100,100,777.25"})
            ledger_->run(u"insert into TA4 (F1,F8,V3,F7,F2,F3,F71,V1) values (%1,'螺栓','001',3,50)"_s.arg(goods));
        for (const auto& [header, number] : {std::pair(u"TB1"_s, u"RK1"_s),
                                             {u"TB3"_s, u"TH1"_s},
                                             {u"TD1"_s, u"CK1"_s},
                                             {u"TD3"_s, u"TK1"_s},
                                             {u"TC2"_s, u"PD1"_s}}) {
            ledger_->run(u"insert into %1 (F1,F2,F3) values ('%2','2004-11-18','001')"_s.arg(header, number));
            ledger_->run(
                u"insert into %1 (F1,F2,F3,F6) values ('%2-9','2004-11-18','001','李经理')"_s.arg(header, number));
            for (const QString& document : {number, number + u"-9"_s})
                ledger_->run(u"insert into %1 (F0,F1,F6,F7) values ('%2','A2',1,3)"_s.arg(header + u'1', document));
        }
        ledger_->run(u"insert into jxc (SortNo,Hpbm,Bdate,Edate) values (1,'A1','2004-1-1','2004-10-31')"_s);
        ledger_->run(u"insert into TE1 (F1,F2) values ('200','无权')"_s);
        for (int right = 1; right <= int(rightCount); ++right)
            ledger_->run(u"insert into TE1 (F1,F2,F6%1) values ('20%1','一权',1)"_s.arg(right));
        gAppPath = withSeparator(ledger_->folder());
        gDB = ledger_->open();
        gLedgerFile = ledger_->path();
        gLedgerName = u"五金"_s;
        MForm::get().show();
        modals_ = std::make_unique<ModalForms>();
        logIn(u"001"_s);
        QCOMPARE(gOperId, u"001"_s);
    }

    void cleanup()
    {
        modals_.reset();
        for (Form* form : QList<Form*>(Form::all())) {
            form->setProperty("Edstu", 0);
            form->Unload();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete &MForm::get();
        setDialogHost(nullptr);
        resetSession();
    }

    void gatesHold();
    void eachRightOpensItsOwn();
    void passwordsAreNotTold();
    void typedValuesStayValues();
};

/// All forms were left open by "001", one of them with an entry; then comes somebody who may nothing.
void GuardTest::gatesHold()
{
    openAll();
    DocumentForm& entry = documentForm(DocumentKind::B1);
    entry.Menu_Add();
    headless::enterLine(entry, u"A1"_s, u"5"_s);
    QVERIFY(formsThatShow().size() > 15);
    logIn(u"200"_s);
    QCOMPARE(gOperId, u"200"_s);
    QCOMPARE(formsThatShow(), QStringList());

    const QStringList before = books();
    modals_->came.clear();
    tryEverything();
    QCOMPARE(books(), before);
    QCOMPARE(formsThatShow(), QStringList());
    modals_->came.removeDuplicates();
    modals_->came.sort();
    QCOMPARE(modals_->came, (QStringList{u"AboutUS"_s, u"LookSet"_s, u"S2"_s, u"frmTip"_s, u"sysDBbak"_s})); // open to everybody
    QCOMPARE(gOperId, u"200"_s);

    // Nor does a form that is made only now show anything, whoever made it.
    for (Form* form : QList<Form*>(Form::all())) {
        form->setProperty("Edstu", 0);
        form->Unload();
    }
    tryEverything();
    QVERIFY2(Form::all().isEmpty(), qPrintable(Form::all().isEmpty() ? QString() : Form::all().first()->Name()));
    QCOMPARE(books(), before);
}

void GuardTest::eachRightOpensItsOwn()
{
    openAll();
    force(C1::theWindow().command(u"Menu_Price(0)"_s)); // shows the cost
    modals_->use = [](Form& form) {
        if (auto* query = qobject_cast<Query*>(&form)) {
            query->CmbF->setCurrentText(u"价格"_s);
            query->CmbGX->setCurrentIndex(0);
            query->Txt->setText(u"777"_s);
            query->CmdAdd->click();
            query->CmdQuery->click();
        }
    };
    auto* goods = Form::loaded(u"A4"_s);
    force(goods->command(u"Menu_query"_s));
    auto* list = goods->findChild<Grid*>(u"GD"_s);
    QCOMPARE(list->Rows(), 2); // the one whose cost is above 777

    const QStringList expected[rightCount] = {{u"A1"_s, u"A2"_s, u"A3"_s, u"A4"_s, u"FromExcel"_s},
                                              {u"B1"_s, u"B3"_s},
                                              {u"C1"_s, u"C2"_s, u"C3"_s},
                                              {u"D1"_s, u"D3"_s, u"Lst"_s},
                                              {u"C15"_s, u"C18"_s, u"C181"_s},
                                              {u"CheckUp"_s, u"S1"_s}};
    for (int right = 0; right < int(rightCount); ++right) {
        logIn(u"20%1"_s.arg(right + 1));
        QCOMPARE(formsThatShow(), expected[right]);
        if (hasRight(OperatorRight::Cost))
            continue;
        for (Form* form : Form::all())
            for (Grid* grid : form->findChildren<Grid*>())
                for (int row = 0; row < grid->Rows() && grid->isVisibleTo(form); ++row)
                    for (int column = 0; column < grid->Cols(); ++column)
                        if (grid->columnVisible(column))
                            QVERIFY2(!grid->TextMatrix(row, column).contains(u"777.25"_s) &&
                                         grid->TextMatrix(row, column) != u"成本价格",
                                     qPrintable(form->Name() + u": "_s + grid->TextMatrix(row, column)));
    }
    QCOMPARE(list->Rows(), 3); // which of them a search by cost has found isn't told either
}

void GuardTest::passwordsAreNotTold()
{
    const QString secret = u"Geheim$7密"_s;
    const auto change = [&] {
        auto* form = new S2(*MForm::get().background());
        form->txt[1]->setText(secret);
        form->txt[2]->setText(secret);
        form->cmd[0]->click();
        const bool gone = !Form::loaded(u"S2"_s);
        form->Unload();
        return gone;
    };
    // A ledger that can't take it.
    ledger_->second().connection().executeOwn(
        u"create trigger refuse before update on TE1 begin select raise(abort, 'no'); end"_s, {});
    QVERIFY(!change());
    QCOMPARE(boxes_->told.last().kind, BoxKind::Error);
    ledger_->second().connection().executeOwn(u"drop trigger refuse"_s, {});
    QVERIFY(change());
    QCOMPARE(ledger_->value(u"select F3 from TE1 where F1='001'"_s), secret);

    openAll();
    logOut();
    logIn(u"001"_s, secret + u"!"_s);
    QCOMPARE(gOperId, QString());
    logIn(u"001"_s, secret);
    QCOMPARE(gOperId, u"001"_s);
    force(Form::loaded(u"S1"_s)->command(u"Menu_edit"_s));
    // Another file is no ledger, or has another key: the text names neither.
    const QString other = ledger_->folder() + u"/其它.hcn"_s;
    QVERIFY(writeLines(other, QStringList(400, u"not a ledger"_s)));
    QString refusal;
    try {
        DBEngine::OpenDatabase(other, ledgerConnect.toString());
    } catch (const StoreError& error) {
        refusal = error.description();
    }
    QVERIFY(!refusal.isEmpty());

    QStringList places = texts() + desktop_->settings.values() + desktop_->settings.keys() + desktop_->started +
                         desktop_->opened + desktop_->classes + QStringList(refusal);
    for (QWidget* widget : QApplication::allWidgets()) {
        places << widget->windowTitle() << widget->toolTip() << widget->accessibleName() << widget->statusTip();
        if (const auto* edit = qobject_cast<QLineEdit*>(widget))
            places << edit->displayText();
        if (const auto* label = qobject_cast<QLabel*>(widget))
            places << label->text();
    }
    const QString ledgerPassword = passwordOf(ledgerConnect.toString());
    for (const QString& place : places)
        QVERIFY2(!place.contains(secret) && !place.contains(ledgerPassword), qPrintable(place));

    gDB.Close();
    ledger_->letGo();
    for (QDirIterator file(ledger_->folder(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         file.hasNext();) {
        QFile read(file.next());
        QVERIFY(read.open(QIODevice::ReadOnly));
        const QByteArray bytes = read.readAll();
        for (const QString& word : {secret, ledgerPassword})
            QVERIFY2(!bytes.contains(word.toUtf8()) &&
                         !bytes.contains(QByteArray(reinterpret_cast<const char*>(word.utf16()), word.size() * 2)),
                     qPrintable(read.fileName()));
    }
}

/// In every field of every form stands what would end a text, and every command is given: no statement breaks.
void GuardTest::typedValuesStayValues()
{
    const QString hostile = u"x' or '1'='1"_s;
    const auto fill = [&](QWidget& form) {
        for (QLineEdit* edit : form.findChildren<QLineEdit*>())
            if (!edit->isReadOnly() && !qobject_cast<QAbstractSpinBox*>(edit->parent()))
                edit->setText(hostile);
    };
    modals_->use = [&](Form& form) {
        if (qobject_cast<ZbSet*>(&form) || qobject_cast<Login*>(&form))
            return;
        fill(form);
        if (auto* company = qobject_cast<CompanySet*>(&form))
            return company->save();
        if (auto* query = qobject_cast<Query*>(&form)) {
            for (int field = 0; field < query->CmbF->count(); ++field) {
                query->CmbF->setCurrentIndex(field);
                for (int relation = 0; relation < query->CmbGX->count(); ++relation) {
                    query->CmbGX->setCurrentIndex(relation);
                    query->CmdAdd->click();
                }
            }
            query->CmdQuery->click();
        }
    };
    openAll();
    const auto goods = ledger_->rows(u"select F1,F2,F8 from TA4 order by F1"_s);
    for (Form* form : QList<Form*>(Form::all())) {
        const QPointer<Form> kept = form;
        for (const QStringView name : {u"Menu_Add", u"Menu_save", u"Menu_query", u"Menu_edit", u"Menu_save",
                                       u"Menu_Query", u"Menu_print", u"Menu_print1", u"Menu_prn(0)", u"Menu_prn(1)"}) {
            QAction* action = kept->command(name.toString());
            if (!action)
                continue;
            if (action->objectName() == u"Menu_save") {
                fill(*kept);
                for (LineEntry* lines : kept->findChildren<LineEntry*>()) {
                    lines->TxtHPBM->setText(u"A1"_s);
                    lines->TxtSL->setText(u"1"_s);
                    lines->CmdEnter->click();
                    lines->CmdQuery->click();
                }
                if (auto* document = qobject_cast<DocumentForm*>(kept)) {
                    document->Txt[1]->setText(u"2004-11-18"_s);
                    document->Txt[0]->setText(kept->Name() + hostile); // a number is used once among all documents
                }
                if (auto* chosen = kept->findChild<QComboBox*>(u"CmbLB"_s)) {
                    chosen->setCurrentIndex(-1);
                    chosen->setCurrentIndex(0);
                }
            }
            force(action);
        }
        fill(*kept); // what filters a report
        for (QPushButton* button : kept->findChildren<QPushButton*>())
            if (button->isVisible() && button->isEnabled())
                button->click();
    }
    for (const Box& box : boxes_->told)
        QVERIFY2(!box.text.contains(u"语句"_s), qPrintable(box.text));
    // It is there as it was typed, and did nothing else.
    QCOMPARE(ledger_->value(u"select F2 from TA1 where F1="_s + sqlText(hostile.toUpper())), hostile);
    for (const auto& [header, form] : {std::pair(u"TB1"_s, u"B1"_s), {u"TD3"_s, u"D3"_s}, {u"TC2"_s, u"C2"_s}})
        QCOMPARE(ledger_->value(u"select F10 from %1 where F1="_s.arg(header) + sqlText((form + hostile).toUpper())),
                 hostile);
    QStringList now = ledger_->rows(u"select F1,F2,F8 from TA4 order by F1"_s);
    QVERIFY(now.removeIf([](const QString& row) { return row.startsWith(u"X'"); }) == 1);
    QCOMPARE(now, goods);
}

QTEST_MAIN(GuardTest)
#include "guard_test.moc"
