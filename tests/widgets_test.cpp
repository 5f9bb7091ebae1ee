#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/manual_window.h"
#include "platform/widgets/status_panels.h"
#include "platform/widgets/style.h"
#include "platform/widgets/system_desktop.h"
#include "platform/widgets/window_dialogs.h"
#include "tests/memory_desktop.h"
#include "tests/modal_forms.h"
#include "tests/scripted_dialogs.h"
#include "tools/typing.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QWindow>

#include <stdexcept>

namespace {

class PlainForm : public Form
{
public:
    explicit PlainForm(const QString& name)
        : Form(name, u"窗体"_s + name)
    {
        Txt = makeEdit(u"Txt"_s, 0);
        content()->addWidget(Txt);
    }

    QLineEdit* Txt;
    bool vetoes = false;
    int* asked = nullptr;
    int* ended = nullptr;

protected:
    bool queryUnload() override
    {
        if (asked)
            ++*asked;
        return !vetoes;
    }
    void unloaded() override
    {
        if (ended)
            ++*ended;
    }
};

/// A main window with the area for child forms and a menu whose letters meet those of the forms.
struct MainWindow
{
    MainWindow()
    {
        area = new QMdiArea;
        window.setCentralWidget(area);
        Form::setArea(area);
        menu = window.menuBar()->addMenu(u"&C.库存管理"_s);
        QObject::connect(menu, &QMenu::aboutToShow, menu, [this] { ++menuOpened; });
        Form::shareLetters(window.menuBar());
        window.resize(900, 600);
        window.show();
        window.activateWindow();
        settle();
    }
    ~MainWindow()
    {
        QObject::disconnect(area, nullptr, nullptr, nullptr);
        Form::setArea(nullptr);
    }

    static void settle()
    {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    QTabBar* tabs() const { return area->findChild<QTabBar*>(); }

    QMainWindow window;
    QMdiArea* area = nullptr;
    QMenu* menu = nullptr;
    int menuOpened = 0;
};

QPoint middleOf(const Grid& grid, int row, int column)
{
    return grid.visualRect(grid.model()->index(row - 1, column)).center();
}

void clickCell(Grid& grid, int row, int column)
{
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(grid, row, column));
}

/// A grid as a document's lines use it: code, name, quantity. The code "X" is refused with a box, an empty one removes
/// its row; names never open.
struct LineGrid
{
    LineGrid()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&grid);
        layout->addWidget(&other);
        grid.setColumns({{u"编码"_s, 100}, {u"名称"_s, 100}, {u"数量"_s, 100, ColumnKind::Number}});
        grid.setRows({{u"A1"_s, u"螺栓"_s, u"10"_s}, {u"A2"_s, u"螺母"_s, u"-20"_s}, {}});
        grid.mayEdit = [this](int row, int column) {
            return column == 0 || (column == 2 && !grid.TextMatrix(row, 0).isEmpty());
        };
        grid.endEditing = [this](int row, int column, const QString& before, const QString& after) {
            ends += u"%1,%2 %3>%4"_s.arg(row).arg(column).arg(before, after);
            if (after == u"X") {
                MsgBox(u"无效的编码"_s);
                return false;
            }
            if (column == 0 && after.isEmpty())
                grid.RemoveItem(row);
            else
                grid.SetTextMatrix(row, column, after);
            return true;
        };
        window.resize(500, 300);
        window.show();
        window.activateWindow();
        MainWindow::settle();
    }

    QWidget window;
    Grid grid{u"GdMx"_s};
    QLineEdit other;
    QStringList ends;
};

} // namespace

class WidgetsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        style::apply(*qApp, {style::Scheme::Light});
        MemoryDesktop::install();
    }

    void cleanup()
    {
        for (Form* form : QList<Form*>(Form::all()))
            delete form;
    }

    // ---- commands and letters

    void hiddenCommandGivesUpItsLetter()
    {
        MainWindow main;
        auto* form = new PlainForm(u"B1"_s);
        int audits = 0;
        int cancels = 0;
        QAction* audit = form->addCommand(u"Menu_Ok"_s, u"&C.审核"_s, [&] { ++audits; });
        QAction* cancel = form->addCommand(u"Menu_cancel"_s, u"&C.取消"_s, [&] { ++cancels; });
        setCommandVisible(audit, false);
        form->Show();
        MainWindow::settle();
        for (int press = 0; press < 3; ++press) // a shared letter would answer every second time
            pressKey(Qt::Key_C, Qt::AltModifier);
        QCOMPARE(cancels, 3);
        QCOMPARE(audits, 0);
        QCOMPARE(commandCaption(audit), u"&C.审核"_s);

        setCommandVisible(audit, true);
        setCommandVisible(cancel, false);
        MainWindow::settle();
        pressKey(Qt::Key_C, Qt::AltModifier);
        pressKey(Qt::Key_C, Qt::AltModifier);
        QCOMPARE(audits, 2);
        QCOMPARE(cancels, 3);
        QCOMPARE(main.menuOpened, 0); // though the main menu has the same letter

        setCommandCaption(cancel, u"&C.放弃"_s);
        QVERIFY(!cancel->text().contains(u'&')); // still hidden
    }

    void mainMenuTakesItsLettersBack()
    {
        MainWindow main;
        auto* form = new PlainForm(u"B1"_s);
        int runs = 0;
        form->addCommand(u"Menu_Ok"_s, u"&C.审核"_s, [&] { ++runs; });
        form->Show();
        MainWindow::settle();
        QAction* menu = main.menu->menuAction();
        QCOMPARE(menu->text(), u"C.库存管理"_s);
        QCOMPARE(commandCaption(menu), u"&C.库存管理"_s);

        pressKey(Qt::Key_Alt); // Alt alone goes to the main menu
        MainWindow::settle();
        QCOMPARE(menu->text(), u"&C.库存管理"_s);
        pressKey(Qt::Key_Escape);
        MainWindow::settle();
        QVERIFY(form->Txt->hasFocus());
        pressKey(Qt::Key_C, Qt::AltModifier);
        QCOMPARE(runs, 1);

        QVERIFY(form->Unload());
        MainWindow::settle();
        main.window.setFocus();
        MainWindow::settle();
        QCOMPARE(menu->text(), u"&C.库存管理"_s);
    }

    void failureOfACommandIsToldOnce()
    {
        ScriptedDialogs boxes;
        PlainForm form(u"B1"_s);
        int after = 0;
        QAction* action = form.addCommand(u"Menu_save"_s, u"&S.保存"_s, [&] {
            throw std::runtime_error("帐本被锁定");
            ++after;
        });
        boxes.expectError(u"帐本被锁定"_s);
        action->trigger();
        QCOMPARE(after, 0);
        QVERIFY2(boxes.finished(), qPrintable(boxes.report()));
    }

    // ---- windows

    void closingRoads_data()
    {
        QTest::addColumn<int>("road");
        QTest::newRow("command") << 0;
        QTest::newRow("child window's close box") << 1;
        QTest::newRow("tab's close button") << 2;
        QTest::newRow("Ctrl+F4") << 3;
    }

    void closingRoads()
    {
        QFETCH(int, road);
        MainWindow main;
        auto* form = new PlainForm(u"B1"_s);
        const QPointer<Form> alive = form;
        int asked = 0;
        int ended = 0;
        form->asked = &asked;
        form->ended = &ended;
        form->addCommand(u"Menu_Return"_s, u"&R.返回"_s, [form] { form->Unload(); });
        form->Show();
        MainWindow::settle();
        const auto close = [&] {
            if (road == 0)
                form->command(u"Menu_Return"_s)->trigger();
            else if (road == 1)
                main.area->currentSubWindow()->close();
            else if (road == 2)
                emit main.tabs()->tabCloseRequested(0);
            else
                pressKey(Qt::Key_F4, Qt::ControlModifier);
            MainWindow::settle();
        };
        form->vetoes = true;
        close();
        QCOMPARE(asked, 1);
        QCOMPARE(ended, 0);
        QVERIFY(form->isVisible());
        QCOMPARE(Form::loaded(u"B1"_s), form);
        QCOMPARE(Form::activeChild(), form);

        form->vetoes = false;
        close();
        QCOMPARE(asked, 2);
        QCOMPARE(ended, 1);
        QVERIFY(!Form::loaded(u"B1"_s));
        QVERIFY(!alive);
        QCOMPARE(main.area->subWindowList().size(), 0);
        QCOMPARE(main.tabs()->count(), 0); // none is left over
    }

    void failureWhileAskingKeepsTheForm()
    {
        struct Failing : PlainForm
        {
            using PlainForm::PlainForm;
            bool queryUnload() override { throw std::runtime_error("磁盘已满"); }
        };
        ScriptedDialogs boxes;
        Failing form(u"B1"_s);
        form.Show();
        boxes.expectError(u"磁盘已满"_s);
        QVERIFY(!form.Unload());
        QCOMPARE(Form::loaded(u"B1"_s), &form);
    }

    void showBringsForwardWithTheFocusInside()
    {
        MainWindow main;
        auto* first = new PlainForm(u"B1"_s);
        auto* second = new PlainForm(u"B3"_s);
        first->Show();
        second->Show();
        MainWindow::settle();
        QCOMPARE(Form::activeChild(), second);
        QVERIFY(second->Txt->hasFocus());
        first->Show();
        MainWindow::settle();
        QCOMPARE(Form::activeChild(), first);
        QVERIFY(first->Txt->hasFocus());
        QCOMPARE(main.area->subWindowList().size(), 2);
        second->setCaption(u"公司退货单"_s);
        QCOMPARE(main.tabs()->tabText(1), u"公司退货单"_s);
    }

    void modalInModal()
    {
        ScriptedDialogs boxes;
        MainWindow main;
        auto* child = new PlainForm(u"B1"_s);
        int letters = 0;
        child->addCommand(u"Menu_Add"_s, u"&A.增加"_s, [&] { ++letters; });
        child->Show();
        MainWindow::settle();

        QStringList steps;
        auto* outer = new PlainForm(u"Query"_s);
        outer->addCommand(u"Inner"_s, u"内"_s, [&] {
            auto* inner = new PlainForm(u"PrntHelp"_s);
            inModal(u"PrntHelp"_s, [&](Form& form) {
                steps += u"inner"_s;
                form.close(); // its close box
            });
            inner->ShowModal();
            steps += Form::loaded(u"PrntHelp"_s) ? u"left"_s : u"gone"_s;
        });
        inModal(u"Query"_s, [&](Form& form) {
            form.command(u"Inner"_s)->trigger();
            steps += form.isVisible() ? u"outer still there"_s : u"outer hidden"_s;
            form.hide(); // a form that answers by its members is hidden, then unloaded by who showed it
        });
        outer->ShowModal();
        steps += Form::loaded(u"Query"_s) == outer ? u"loaded"_s : u"lost"_s;
        QVERIFY(outer->Unload());
        MainWindow::settle();
        QCOMPARE(steps, (QStringList{u"inner"_s, u"gone"_s, u"outer still there"_s, u"loaded"_s}));
        QCOMPARE(Form::all().size(), 1);

        // The window before it works again: without a window manager nobody gives it back its activation.
        QCOMPARE(QApplication::activeWindow(), &main.window);
        child->Txt->setFocus();
        pressKey(Qt::Key_A, Qt::AltModifier);
        QCOMPARE(letters, 1);
    }

    void modalFormVetoesItsCloseBox()
    {
        MainWindow main;
        auto* form = new PlainForm(u"ZbSet"_s);
        form->vetoes = true;
        bool refused = false;
        inModal<PlainForm>(u"ZbSet"_s, [&](PlainForm& shown) {
            shown.close();
            refused = shown.isVisible() && Form::loaded(u"ZbSet"_s);
            shown.vetoes = false;
            shown.close();
        });
        form->ShowModal();
        QVERIFY(refused);
        QVERIFY(!Form::loaded(u"ZbSet"_s));
    }

    void openRunIsCommittedBeforeAModalForm()
    {
        int commits = 0;
        const auto before = setBeforeAsking([&] { ++commits; });
        auto* form = new PlainForm(u"Query"_s);
        inModal(u"Query"_s, [](Form& shown) { shown.Unload(); });
        form->ShowModal();
        setBeforeAsking(before);
        QCOMPARE(commits, 1);
    }

    // ---- grid

    void gridHoldsTexts()
    {
        Grid grid(u"GD"_s);
        grid.setColumns({{u"编码"_s, 80}, {u"名称"_s, 80}, {.caption = u"金额"_s, .kind = ColumnKind::Number}});
        QCOMPARE(grid.Rows(), 1);
        grid.clearRows();
        QCOMPARE(grid.Rows(), 2);
        QCOMPARE(grid.TextMatrix(1, 2), QString());
        grid.AddItem(u"A1\t螺栓\t-3.50"_s);
        grid.AddItem(u"A2"_s);
        QCOMPARE(grid.Rows(), 4);
        QCOMPARE(grid.TextMatrix(0, 1), u"名称"_s);
        QCOMPARE(grid.TextMatrix(2, 1), u"螺栓"_s);
        QCOMPARE(grid.TextMatrix(3, 2), QString());
        for (const QPoint outside : {QPoint(-1, 1), QPoint(3, 1), QPoint(0, 4), QPoint(0, -1)}) {
            grid.SetTextMatrix(outside.y(), outside.x(), u"x"_s);
            QCOMPARE(grid.TextMatrix(outside.y(), outside.x()), QString());
        }
        grid.SetTextMatrix(3, 2, u"7"_s);
        grid.SetTextMatrix(0, 2, u"成本"_s);
        QCOMPARE(grid.TextMatrix(3, 2), u"7"_s);
        QCOMPARE(grid.model()->headerData(2, Qt::Horizontal).toString(), u"成本"_s);

        const auto* model = grid.model();
        const auto bold = [&](int row) {
            return model->data(model->index(row - 1, 0), Qt::FontRole).value<QFont>().bold();
        };
        grid.pinTotals();
        grid.RemoveItem(1);
        QCOMPARE(grid.Rows(), 3);
        QVERIFY(bold(2)); // went along with its row
        QVERIFY(!bold(1));
        QCOMPARE(model->data(model->index(0, 2), Qt::ForegroundRole).value<QColor>(),
                 style::color(style::Role::Negative));
        QVERIFY(!model->data(model->index(1, 2), Qt::ForegroundRole).isValid());
        grid.setRowCount(6);
        QCOMPARE(grid.Rows(), 6);
        grid.setRowCount(2);
        QCOMPARE(grid.Rows(), 2);
        QCOMPARE(grid.TextMatrix(1, 0), u"A1"_s);
        grid.RemoveItem(0); // the captions stay
        QCOMPARE(grid.Rows(), 2);
    }

    void currentRowIsTold()
    {
        LineGrid lines;
        lines.grid.setRows({{u"A1"_s}, {u"A2"_s}});
        QList<int> told;
        connect(&lines.grid, &Grid::currentRowChanged, this, [&](int row) { told += row; });
        QCOMPARE(lines.grid.Row(), 0);
        lines.grid.select(2, 1);
        QCOMPARE(lines.grid.Row(), 2);
        QCOMPARE(lines.grid.Col(), 1);
        QVERIFY(!lines.grid.editing());
        lines.grid.select(2, 0); // the same row
        lines.grid.select(9);    // there is none
        lines.grid.select(1);
        QCOMPARE(told, (QList<int>{2, 1}));
    }

    void selectionIsCopiedAsText()
    {
        LineGrid lines;
        lines.grid.SetTextMatrix(1, 1, u"螺栓\tM8\n长"_s);
        lines.grid.select(1);
        lines.grid.setFocus();
        QTest::keyClick(&lines.grid, Qt::Key_Down, Qt::ShiftModifier);
        QVERIFY(!lines.grid.editing()); // Shift extends the selection, it reaches no cell
        QTest::keyClick(&lines.grid, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), u"A1\t螺栓 M8 长\t10\nA2\t螺母\t-20\n"_s);
        lines.grid.setColumnVisible(1, false);
        QCOMPARE(lines.grid.selectionAsText(), u"A1\t10\nA2\t-20\n"_s);
        // All of it, with captions, is also what is saved: what doesn't show stays behind.
        QTest::keyClick(&lines.grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        const QString all = QApplication::clipboard()->text();
        QCOMPARE(all.section(u'\n', 0, 0).count(u'\t'), 1);
        QCOMPARE(all.section(u'\n', 1, 2), u"A1\t10\nA2\t-20"_s);
        QCOMPARE(lines.grid.content().numeric, QList<bool>({false, true}));
        lines.grid.clearRows();
        QVERIFY(lines.grid.content().rows.isEmpty()); // the one empty row of an empty list is none
    }

    void clickOpensAlsoTheCurrentCell()
    {
        LineGrid lines;
        lines.grid.select(1, 0);
        QVERIFY(!lines.grid.editing());
        QList<QPoint> reached;
        connect(&lines.grid, &Grid::cellReached, this, [&](int row, int column) { reached += QPoint(column, row); });
        clickCell(lines.grid, 1, 0);
        QVERIFY(lines.grid.editing());
        QVERIFY(lines.grid.TxtEnter->hasFocus());
        QCOMPARE(lines.grid.TxtEnter->selectedText(), u"A1"_s);
        clickCell(lines.grid, 2, 1); // a name: reached, but it doesn't open
        QVERIFY(!lines.grid.editing());
        QCOMPARE(lines.grid.Row(), 2);
        QCOMPARE(reached, (QList<QPoint>{{0, 1}, {1, 2}}));
        QCOMPARE(lines.ends, QStringList()); // nothing was typed, nothing is told
    }

    void enterTabAndArrowsLeadOn()
    {
        LineGrid lines;
        lines.grid.nextCell = [](int row, int column) { return column == 0 ? QPoint(2, row) : QPoint(0, row + 1); };
        lines.grid.edit(1, 0);
        typeText(u"B7\n"_s);
        QCOMPARE(lines.grid.TextMatrix(1, 0), u"B7"_s);
        QVERIFY(lines.grid.editing());
        QCOMPARE(lines.grid.TxtEnter->text(), u"10"_s);
        typeText(u"35\t"_s);
        QCOMPARE(lines.grid.TextMatrix(1, 2), u"35"_s);
        QCOMPARE(lines.grid.TxtEnter->text(), u"A2"_s);
        QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Up);
        QCOMPARE(lines.grid.Row(), 1);
        QCOMPARE(lines.grid.TxtEnter->text(), u"B7"_s);
        QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Up); // nowhere to go: the cell stays open
        QVERIFY(lines.grid.editing());
        QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Down);
        QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Backtab);
        QCOMPARE(lines.grid.Row(), 1);
        QCOMPARE(lines.grid.Col(), 2); // over the name, which doesn't open
        QCOMPARE(lines.ends, (QStringList{u"1,0 A1>B7"_s, u"1,2 10>35"_s}));
    }

    void escRestores()
    {
        LineGrid lines;
        lines.grid.edit(1, 0);
        typeText(u"ZZ"_s);
        QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Escape);
        QVERIFY(!lines.grid.editing());
        QVERIFY(lines.grid.hasFocus());
        QCOMPARE(lines.grid.TextMatrix(1, 0), u"A1"_s);
        QCOMPARE(lines.ends, QStringList());
    }

    void refusalGivesOneBoxAndKeepsTheCell_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("Enter") << 0;
        QTest::newRow("another cell") << 1;
        QTest::newRow("another field") << 2;
        QTest::newRow("a command") << 3;
        QTest::newRow("Down") << 4;
    }

    void refusalGivesOneBoxAndKeepsTheCell()
    {
        QFETCH(int, way);
        ScriptedDialogs boxes;
        LineGrid lines;
        lines.grid.edit(1, 0);
        typeText(u"X"_s);
        boxes.expect(u"无效的编码"_s);
        if (way == 0)
            typeText(u"\n"_s);
        else if (way == 1)
            clickCell(lines.grid, 2, 0);
        else if (way == 2)
            lines.other.setFocus();
        else if (way == 3)
            QVERIFY(!lines.grid.endEdit());
        else
            QTest::keyClick(lines.grid.TxtEnter, Qt::Key_Down);
        MainWindow::settle();
        QVERIFY2(boxes.finished(), qPrintable(boxes.report()));
        QVERIFY(lines.grid.editing());
        QVERIFY(lines.grid.TxtEnter->hasFocus());
        QCOMPARE(lines.grid.TxtEnter->selectedText(), u"A1"_s); // the old text is back
        QCOMPARE(lines.grid.Row(), 1);
        QVERIFY(lines.grid.endEdit());
        QCOMPARE(lines.ends.size(), 1);
    }

    void failureInAnEditRefusesToo()
    {
        ScriptedDialogs boxes;
        LineGrid lines;
        lines.grid.endEditing = [](int, int, const QString&, const QString&) -> bool {
            throw std::runtime_error("帐本被锁定");
        };
        lines.grid.edit(1, 0);
        typeText(u"B"_s);
        boxes.expectError(u"帐本被锁定"_s);
        QVERIFY(!lines.grid.endEdit());
        QVERIFY(lines.grid.editing());
        QCOMPARE(lines.grid.TextMatrix(1, 0), u"A1"_s);
    }

    void endingIsNotEnteredTwice()
    {
        LineGrid lines;
        int inner = 0;
        lines.grid.endEditing = [&](int row, int, const QString&, const QString&) {
            inner += lines.grid.endEdit() ? 100 : 1; // as a command behind a box would
            lines.grid.RemoveItem(row);              // and the cell goes away
            return true;
        };
        lines.grid.edit(1, 0);
        typeText(u"B"_s);
        QVERIFY(lines.grid.endEdit());
        QCOMPARE(inner, 1);
        QVERIFY(!lines.grid.editing());
        QCOMPARE(lines.grid.TextMatrix(1, 0), u"A2"_s);
    }

    void leavingTheGridEndsTheEdit()
    {
        LineGrid lines;
        lines.grid.edit(1, 2);
        typeText(u"12"_s);
        lines.other.setFocus();
        MainWindow::settle();
        QVERIFY(!lines.grid.editing());
        QVERIFY(lines.other.hasFocus());
        QCOMPARE(lines.grid.TextMatrix(1, 2), u"12"_s);
    }

    void newRowsDropAnOpenEdit()
    {
        LineGrid lines;
        lines.grid.edit(2, 0);
        typeText(u"B"_s);
        lines.grid.setRows({{u"C1"_s}});
        QVERIFY(!lines.grid.editing());
        QVERIFY(!lines.grid.TxtEnter->isVisible());
        QCOMPARE(lines.ends, QStringList());
        QCOMPARE(lines.grid.TextMatrix(1, 0), u"C1"_s);
    }

    void typingOpensTheCell()
    {
        LineGrid lines;
        lines.grid.select(1, 0);
        lines.grid.setFocus();
        typeText(&lines.grid, u"货"_s);
        QVERIFY(lines.grid.editing());
        typeText(u"架7"_s);
        QCOMPARE(lines.grid.TxtEnter->text(), u"货架7"_s); // in place of the old text
        lines.grid.cancelEdit();

        QInputMethodEvent commit;
        commit.setCommitString(u"库"_s);
        QCoreApplication::sendEvent(&lines.grid, &commit); // as an input method does when no editor is open
        QCOMPARE(lines.grid.TxtEnter->text(), u"库"_s);
        QVERIFY(lines.grid.TxtEnter->inputMethodQuery(Qt::ImEnabled).toBool());
        lines.grid.edit(1, 2);
        QVERIFY(!lines.grid.TxtEnter->inputMethodQuery(Qt::ImEnabled).toBool()); // a number
        lines.grid.cancelEdit();

        lines.grid.select(1, 1);
        lines.grid.setFocus();
        typeText(&lines.grid, u"a"_s);
        QVERIFY(!lines.grid.editing());
    }

    void doubleClickAndEnterActivateARow()
    {
        LineGrid lines;
        lines.grid.mayEdit = nullptr;
        QList<int> rows;
        connect(&lines.grid, &Grid::activatedRow, this, [&](int row) { rows += row; });
        QTest::mouseDClick(lines.grid.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(lines.grid, 2, 0));
        lines.grid.select(1);
        QTest::keyClick(&lines.grid, Qt::Key_Return);
        QTest::mouseDClick(lines.grid.viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 180)); // below the rows
        QCOMPARE(rows, (QList<int>{2, 1}));
    }

    void widthsAreRememberedPerUser()
    {
        MemoryDesktop& desktop = MemoryDesktop::install();
        const QList<GridColumn> columns = {{u"编码"_s, 100}, {.caption = u"备注"_s, .width = 60, .stretch = true}};
        Grid grid(u"GD"_s);
        grid.setColumns(columns);
        grid.rememberWidths(u"B1/GD"_s);
        grid.resize(500, 200);
        grid.show();
        MainWindow::settle();
        QCOMPARE(grid.columnWidth(0) + grid.columnWidth(1), grid.viewport()->width());
        QVERIFY(desktop.settings.isEmpty()); // only what the operator does is kept

        QWidget* header = grid.horizontalHeader()->viewport();
        QTest::mousePress(header, Qt::LeftButton, Qt::NoModifier, QPoint(99, 10));
        QTest::mouseMove(header, QPoint(110, 10));
        QTest::mouseMove(header, QPoint(139, 10));
        QTest::mouseRelease(header, Qt::LeftButton, Qt::NoModifier, QPoint(139, 10));
        QCOMPARE(grid.columnWidth(0), 140);
        QCOMPARE(desktop.settings.value(u"vemaroware/grid/b1/gd"_s), u"140,60"_s);

        Grid next(u"GD"_s);
        next.setColumns(columns);
        next.rememberWidths(u"B1/GD"_s);
        QCOMPARE(next.columnWidth(0), 140);
        Grid otherColumns(u"GD"_s);
        otherColumns.setColumns(columns + columns);
        otherColumns.rememberWidths(u"B1/GD"_s);
        QCOMPARE(otherColumns.columnWidth(0), 100);
    }

    void listsAreArrangedPerOperator()
    {
        MemoryDesktop& desktop = MemoryDesktop::install();
        Grid grid(u"GD"_s);
        grid.actAsList();
        grid.setColumns({{u"编码"_s, 100}, {u"名称"_s, 100}, {u"成本"_s, 100}, {u"数量"_s, 100, ColumnKind::Number}});
        grid.setColumnVisible(2, false); // as where a right is missing
        grid.setRows({{u"A1"_s, u"螺栓"_s, u"9"_s, u"10"_s}, {u"A2"_s, u"螺母"_s, u"8"_s, u"20"_s}});
        grid.rememberWidths(u"C1/GD"_s);
        Grid::setOperator(u"002"_s);
        grid.resize(600, 200);
        grid.show();
        MainWindow::settle();

        QWidget* header = grid.horizontalHeader()->viewport();
        QTest::mousePress(header, Qt::LeftButton, Qt::NoModifier, QPoint(250, 10));
        QTest::mouseMove(header, QPoint(200, 10));
        QTest::mouseMove(header, QPoint(120, 10));
        QTest::mouseRelease(header, Qt::LeftButton, Qt::NoModifier, QPoint(120, 10));
        QCOMPARE(grid.content().captions.join(u'|'), u"编码|数量|名称"_s); // as seen
        QCOMPARE(grid.TextMatrix(1, 3), u"10"_s);
        grid.selectAll();
        QCOMPARE(grid.selectionAsText(), u"A1\t10\t螺栓\nA2\t20\t螺母\n"_s);

        const auto menuOf = [&](auto&& look) {
            grid.findChild<QAction*>(u"GridColumns"_s)->trigger();
            look(*grid.findChild<QMenu*>());
            qDeleteAll(grid.findChildren<QMenu*>());
        };
        menuOf([](QMenu& menu) {
            QVERIFY(!menu.findChild<QAction*>(u"GridColumn(2)"_s)); // not to be had that way
            QVERIFY(!menu.findChild<QAction*>(u"GridColumn(0)"_s)->isEnabled());
            menu.findChild<QAction*>(u"GridColumn(1)"_s)->trigger();
        });
        QCOMPARE(grid.content().captions.join(u'|'), u"编码|数量"_s);
        QVERIFY(grid.columnVisible(1)); // prints still have it
        QCOMPARE(desktop.settings.value(u"vemaroware/grid/002/c1/gd"_s), u"0:100,3:100,1:100-,2:100"_s);
        grid.setColumnVisible(2, true);
        Grid::setOperator(u"003"_s);
        QCOMPARE(grid.content().captions.join(u'|'), u"编码|名称|成本|数量"_s);
        Grid::setOperator(u"002"_s);
        QCOMPARE(grid.content().captions.join(u'|'), u"编码|数量|成本"_s);
        menuOf([](QMenu& menu) { menu.findChild<QAction*>(u"GridColumnsReset"_s)->trigger(); });
        QCOMPARE(grid.content().captions.join(u'|'), u"编码|名称|成本|数量"_s);
        Grid::setOperator({});
    }

    void figuresOfAListAreNeverCutOff()
    {
        Grid grid(u"GD"_s);
        grid.actAsList();
        grid.setColumns({{u"编码"_s, 100}, {u"数量"_s, 40, ColumnKind::Number}});
        const auto whole = [&](int row) {
            return grid.columnWidth(1) > grid.fontMetrics().horizontalAdvance(grid.TextMatrix(row, 1));
        };
        grid.setRows({{u"A1"_s, u"1234567.125"_s}});
        QVERIFY(whole(1));
        grid.AddItem(u"A2"_s);
        grid.SetTextMatrix(2, 1, u"-98765432109.125"_s);
        QVERIFY(whole(2));
    }

    void narrowedListsKeepTheirRows()
    {
        QWidget holder;
        Grid grid(u"GD"_s, &holder);
        grid.actAsList();
        grid.setColumns({{u"编码"_s, 100}, {u"名称"_s, 100}, {u"数量"_s, 100, ColumnKind::Number}});
        const QList<QStringList> rows = {{u"A1"_s, u"螺栓 M8"_s, u"0.1"_s},
                                         {u"A2"_s, u"螺母"_s, u"7"_s},
                                         {u"B1"_s, u"螺栓 m10"_s, u"0.20"_s},
                                         {u"合计"_s, QString(), u"7.3"_s}};
        grid.setRows(rows);
        grid.pinTotals();
        grid.resize(500, 300);
        holder.show();
        holder.activateWindow();
        MainWindow::settle();
        grid.setFocus();
        grid.select(2);
        QStringList sums;
        setStatusHost({[](int, const QString&) {},
                       [](int) { return QString(); },
                       {},
                       {},
                       [&](const QString& text) { sums += text; }});

        grid.narrow(u"Ｍ 螺栓"_s);
        QCOMPARE(grid.shownRows(), 2);
        QCOMPARE(grid.Row(), 3); // the row that was current is out of sight
        QCOMPARE(grid.Rows(), 5);
        QCOMPARE(grid.TextMatrix(2, 0), u"A2"_s);
        QCOMPARE(grid.content().rows.size(), 2); // no totals, which are those of all rows
        grid.select(2);
        QCOMPARE(grid.Row(), 3);
        grid.select(1, 2);
        QTest::keyClick(&grid, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(sums.value(sums.size() - 1), u"已选 2 行　数量 合计 0.30"_s); // without the row between
        QCOMPARE(grid.selectionAsText().count(u'\n'), 2);
        grid.narrow(u"没有"_s);
        QCOMPARE(grid.shownRows(), 2);
        grid.narrow(u"螺母"_s);
        grid.RemoveItem(2); // the last one that shows; the totals are a row like others now
        QCOMPARE(grid.shownRows(), 3);
        QVERIFY(!grid.narrowed());
        grid.setRows(rows);
        grid.pinTotals();
        QCOMPARE(grid.shownRows(), 1);
        style::apply(*qApp, {style::Scheme::Light, 14});
        QCOMPARE(grid.shownRows(), 1);
        QCOMPARE(grid.rowHeight(1), style::rowHeight());
        QVERIFY(style::rowHeight() > 30);
        QTest::keyClick(&grid, Qt::Key_Escape);
        QCOMPARE(grid.shownRows(), 3);
        QCOMPARE(grid.rowHeight(0), style::rowHeight()); // also of those that were out of sight
        style::apply(*qApp, {style::Scheme::Light});
        QCOMPARE(grid.columnWidth(1), 100);
        setStatusHost({});
    }

    // ---- controls

    void comboTakesWhatIsTyped()
    {
        std::unique_ptr<QComboBox> combo(makeCombo(u"CmbLB"_s));
        combo->addItems({u"GH001.甲乙五金"_s, u"K07X.丙丁"_s});
        combo->setCurrentIndex(-1);
        combo->show();
        combo->activateWindow();
        combo->setFocus();
        MainWindow::settle(); // only a field with the focus completes
        QVERIFY(combo->hasFocus());
        typeText(combo.get(), u"k07"_s);
        QCOMPARE(combo->currentText(), u"k07"_s);
        QTest::keyClick(combo.get(), Qt::Key_Return);
        QCOMPARE(combo->currentText(), u"k07"_s);
        QCOMPARE(combo->count(), 2);
    }

    void codesTurnToCapitals()
    {
        std::unique_ptr<QLineEdit> code(makeEdit(u"TxtHPBM"_s, -1, EditKind::Code));
        typeText(code.get(), u"ls-8货ß"_s);
        QCOMPARE(code->text(), u"LS-8货ß"_s);
        code->setCursorPosition(2);
        typeText(code.get(), u"xy"_s);
        QCOMPARE(code->text(), u"LSXY-8货ß"_s);
        typeText(code.get(), u"ａ－１"_s);
        QCOMPARE(code->text(), u"LSXYA-1-8货ß"_s);
    }

    void numbersTakeNoInputMethod()
    {
        std::unique_ptr<QLineEdit> number(makeEdit(u"TxtSL"_s, 0, EditKind::Number));
        std::unique_ptr<QLineEdit> text(makeEdit(u"Txt"_s, 0));
        QCOMPARE(number->inputMethodQuery(Qt::ImEnabled).toBool(), false);
        QCOMPARE(text->inputMethodQuery(Qt::ImEnabled).toBool(), true);
        typeText(number.get(), u"－１２．５"_s);
        QCOMPARE(number->text(), u"－１２．５"_s); // stays as typed; Val reads it
        QCOMPARE(number->objectName(), u"TxtSL(0)"_s);
    }

    void enterMovesOnLikeTab()
    {
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        QLineEdit* first = makeEdit(u"Txt"_s, 0);
        QComboBox* second = makeCombo(u"CmbLB"_s);
        QComboBox* third = makeCombo(u"CmbCK"_s, -1, false);
        QLineEdit* fourth = makeEdit(u"Txt"_s, 1);
        for (QWidget* widget : {static_cast<QWidget*>(first), static_cast<QWidget*>(second),
                                static_cast<QWidget*>(third), static_cast<QWidget*>(fourth)})
            layout->addWidget(widget);
        enterMovesOn(first);
        enterMovesOn(second);
        enterMovesOn(third);
        QStringList events;
        onFocusOut(first, [&] { events += u"left first"_s; });
        onFocusIn(second, [&] { events += u"in second"_s; });
        window.show();
        window.activateWindow();
        first->setFocus();
        MainWindow::settle();
        setLocked(first, true); // also from a field that is only shown
        typeText(u"x\n"_s);
        QCOMPARE(first->text(), QString());
        QVERIFY(second->hasFocus());
        QCOMPARE(events, (QStringList{u"left first"_s, u"in second"_s}));
        typeText(u"\n"_s);
        QVERIFY(third->hasFocus());
        typeText(u"\n"_s);
        QVERIFY(fourth->hasFocus());
    }

    void pickerDropsDownOnF4()
    {
        DatePicker picker(u"DTP1"_s);
        picker.show();
        picker.activateWindow();
        picker.setText(u"2004-12-18"_s);
        picker.setText(u"2004-13-45"_s);
        QCOMPARE(picker.text(), u"2004-12-18"_s);
        picker.setFocus();
        MainWindow::settle();
        QSignalSpy picked(&picker, &DatePicker::picked);
        QTest::keyClick(&picker, Qt::Key_F4);
        QWidget* popup = QApplication::activePopupWidget();
        QVERIFY(popup);
        QCOMPARE(picked.count(), 0);
        emit picker.calendarWidget()->clicked(QDate(2005, 1, 2));
        QCOMPARE(picked.count(), 1);
        popup->close();
    }

    void calendarUnderAFieldLeavesTheFocus()
    {
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        QLineEdit* field = makeEdit(u"Txt"_s, 1);
        QLineEdit* other = makeEdit(u"Txt"_s, 2);
        auto* picker = new DatePicker(u"DTP1"_s);
        layout->addWidget(field);
        layout->addWidget(other);
        layout->addWidget(picker);
        window.resize(400, 400);
        window.show();
        window.activateWindow();
        field->setFocus();
        MainWindow::settle();
        QStringList dates;
        connect(picker, &DatePicker::picked, this, [&] { dates += picker->text(); });

        picker->dropDownFor(field);
        MainWindow::settle();
        QVERIFY(field->hasFocus());
        QVERIFY(picker->droppedCalendar()->isVisible());
        typeText(u"2006-7-9"_s);
        QCOMPARE(field->text(), u"2006-7-9"_s);
        QCOMPARE(picker->droppedCalendar()->selectedDate(), QDate(2006, 7, 9));
        auto* days = picker->droppedCalendar()->findChild<QTableView*>(u"qt_calendar_calendarview"_s);
        QTest::mouseClick(days->viewport(), Qt::LeftButton, {}, days->visualRect(days->currentIndex()).center());
        QCOMPARE(dates, QStringList(u"2006-7-9"_s));
        QVERIFY(!picker->droppedCalendar());
        QVERIFY(field->hasFocus());

        picker->dropDownFor(field);
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!picker->droppedCalendar());
        picker->dropDownFor(field);
        other->setFocus();
        QVERIFY(!picker->droppedCalendar());
        QCOMPARE(dates.size(), 1);
    }

    void tabIsKeptWhenThePageRefuses()
    {
        bool may = false;
        std::unique_ptr<QTabWidget> tabs(makeTabs(u"Tab"_s, [&] { return may; }));
        tabs->addTab(new QWidget, u"列表"_s);
        tabs->addTab(new QWidget, u"明细"_s);
        tabs->show();
        const auto clickSecond = [&] {
            QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
        };
        clickSecond();
        QCOMPARE(tabs->currentIndex(), 0);
        may = true;
        clickSecond();
        QCOMPARE(tabs->currentIndex(), 1);
    }

    void fieldsStandAligned()
    {
        QWidget window;
        auto* fields = new FieldLayout(2);
        window.setLayout(fields);
        QLabel* shortLabel = makeLabel(u"Lab"_s, u"附注"_s, 0);
        QLabel* longLabel = makeLabel(u"Lab"_s, u"供货单位编码"_s, 1);
        QList<QLineEdit*> edits;
        for (int i = 0; i < 4; ++i)
            edits += makeEdit(u"Txt"_s, i);
        fields->add(shortLabel, edits[0]);
        fields->add(u"日期"_s, edits[1]);
        fields->add(longLabel, edits[2], 2); // goes to the next row, over both columns
        fields->add(u"备注"_s, edits[3]);
        window.resize(600, 200);
        window.show();
        MainWindow::settle();
        QCOMPARE(edits[2]->x(), edits[0]->x());
        QCOMPARE(edits[3]->x(), edits[0]->x());
        QCOMPARE(edits[2]->geometry().right(), edits[1]->geometry().right());
        QVERIFY(edits[2]->y() > edits[0]->y());
        QVERIFY(edits[3]->y() > edits[2]->y());
        QCOMPARE(shortLabel->geometry().right(), longLabel->geometry().right());
        QCOMPARE(edits[2]->accessibleName(), u"供货单位编码"_s);
    }

    void panelsAreWrittenAndClicked()
    {
        StatusPanels panels;
        setStatusHost(panels.host());
        setStatusPanel(4, u"恒仓宁"_s);
        setStatusPanel(9, u"x"_s);
        QCOMPARE(statusPanel(4), u"恒仓宁"_s);
        QCOMPARE(statusPanel(9), QString());
        panels.show();
        QSignalSpy clicked(&panels, &StatusPanels::clicked);
        QTest::mouseClick(panels.findChild<QLabel*>(u"StB(4)"_s), Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(clicked[0][0].toInt(), 4);

        const auto* bar = panels.findChild<QProgressBar*>();
        {
            BusyProgress outer(u"正在读入数据……"_s, 4);
            BusyProgress inner(u"里面的"_s, 9);
            QCOMPARE(statusPanel(4), u"正在读入数据……"_s);
            QVERIFY(QApplication::overrideCursor());
            panels.host().progress(3, 4);
            QVERIFY(bar->isVisible());
            QCOMPARE(bar->value(), 75);
        }
        QVERIFY(!bar->isVisible());
        QVERIFY(!QApplication::overrideCursor());
        QCOMPARE(statusPanel(4), u"恒仓宁"_s);
        {
            BusyProgress done(u"正在读入数据……"_s);
            setStatusPanel(4, u"共 7 行"_s);
        }
        QCOMPARE(statusPanel(4), u"共 7 行"_s); // what a form tells at the end of its work stays
        setStatusHost({});
    }

    // ---- boxes as windows

    void boxesAsWindows_data()
    {
        QTest::addColumn<QString>("ask");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("answer");
        QTest::newRow("yes is the default") << u"question"_s << int(Qt::Key_Return) << u"yes"_s;
        QTest::newRow("letter of no") << u"question"_s << int(Qt::Key_N) << u"no"_s;
        QTest::newRow("Esc is no") << u"question"_s << int(Qt::Key_Escape) << u"no"_s;
        QTest::newRow("input, taken") << u"input"_s << int(Qt::Key_Return) << u"旧名"_s;
        QTest::newRow("input, cancelled") << u"input"_s << int(Qt::Key_Escape) << u"nothing"_s;
    }

    void boxesAsWindows()
    {
        QFETCH(QString, ask);
        QFETCH(int, key);
        QFETCH(QString, answer);
        MainWindow main;
        const auto host = windowDialogs();
        QTimer::singleShot(0, this, [&] {
            MainWindow::settle();
            pressKey(Qt::Key(key), key == Qt::Key_N ? Qt::AltModifier : Qt::NoModifier);
        });
        QString got;
        if (ask == u"input")
            got = host->input({u"名称："_s, u"帐本"_s, u"旧名"_s}).value_or(u"nothing"_s);
        else
            got = host->show({u"真的吗？"_s, u"提示"_s, BoxIcon::Question, BoxButtons::YesNo}) == Answer::Yes ? u"yes"_s
                                                                                                              : u"no"_s;
        QCOMPARE(got, answer);
        MainWindow::settle();
        QCOMPARE(QApplication::activeWindow(), &main.window);
    }

    void fileFilters()
    {
        QCOMPARE(fileDialogFilters(u"恒仓宁帐本文件(*.hcn)|*.hcn|所有文件(*.*)|*.*"_s),
                 (QStringList{u"恒仓宁帐本文件 (*.hcn)"_s, u"所有文件 (*)"_s}));
        QCOMPARE(fileDialogFilters(u"图片文件(*.jpg;*.gif)|*.jpg;*.gif;*.bmp"_s),
                 QStringList(u"图片文件 (*.jpg *.gif *.bmp)"_s));
        QCOMPARE(fileDialogFilters(QString()), QStringList());
        QCOMPARE(withFilterExtension(u"/a.b/帐本"_s, u"恒仓宁帐本文件 (*.hcn)"_s), u"/a.b/帐本.hcn"_s);
        QCOMPARE(withFilterExtension(u"/a/x.dat"_s, u"恒仓宁帐本文件 (*.hcn)"_s), u"/a/x.dat"_s);
        QCOMPARE(withFilterExtension(u"/a/x"_s, u"所有文件 (*)"_s), u"/a/x"_s);
    }

    // ---- desktop

    void settingsAreOnDiskAndCaseBlind()
    {
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
        const auto first = systemDesktop();
        QCOMPARE(first->setting(u"Vemaroware"_s, u"CangKu"_s, u"MainFile"_s, u"没有"_s), u"没有"_s);
        first->saveSetting(u"Vemaroware"_s, u"CangKu"_s, u"MainFiLe"_s, u"C:\\程序, 一;\"二\""_s);
        const auto second = systemDesktop(); // as another process reads it
        QCOMPARE(second->setting(u"VEMAROWARE"_s, u"cangku"_s, u"mainfile"_s, {}), u"C:\\程序, 一;\"二\""_s);
        QCOMPARE(second->setting(u"Vemaroware"_s, u"Options"_s, u"MainFile"_s, u"1"_s), u"1"_s);
        qunsetenv("XDG_CONFIG_HOME");
    }

    void fileTypeIsRegisteredForTheUser()
    {
#ifdef Q_OS_LINUX
        QTemporaryDir home;
        qputenv("XDG_DATA_HOME", home.path().toUtf8());
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", ""); // without the tools that refresh the desktop's caches
        const auto desktop = systemDesktop();
        desktop->registerClass(u"Ledger"_s, {}, u"帐本 & 文件"_s);
        desktop->registerClass(u"Ledger\\DefaultIcon"_s, {}, home.filePath(u"none.ico"_s));
        desktop->registerClass(u".hcn"_s, {}, u"Ledger"_s);
        QVERIFY(!QFileInfo::exists(home.filePath(u"applications"_s)));
        desktop->registerClass(u"Ledger"_s, u"shell\\open\\command"_s, u"/opt/old/hcn %1"_s);
        desktop->registerClass(u"Ledger"_s, u"shell\\open\\command"_s, u"/opt/my $apps/hcn %1"_s); // has moved
        qunsetenv("XDG_DATA_HOME");
        qputenv("PATH", path);
        const auto read = [&](const QString& path) {
            QFile file(home.filePath(path));
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        const QString type = read(u"mime/packages/ledger.xml"_s);
        QVERIFY2(type.contains(u"<glob pattern=\"*.hcn\"/>"), qPrintable(type));
        QVERIFY2(type.contains(u"<comment>帐本 &amp; 文件</comment>"), qPrintable(type));
        const QString entry = read(u"applications/ledger.desktop"_s);
        QVERIFY2(entry.contains(u"\nExec=\"/opt/my \\\\$apps/hcn\" %f\n"), qPrintable(entry));
        QVERIFY2(entry.contains(u"\nMimeType=application/x-ledger;\n"), qPrintable(entry));
        QCOMPARE(read(u"applications/mimeinfo.cache"_s), u"[MIME Cache]\napplication/x-ledger=ledger.desktop;\n"_s);
        QVERIFY(!QPixmap(home.filePath(u"icons/hicolor/64x64/mimetypes/application-x-ledger.png"_s)).isNull());
#endif
    }

    void commandLinesAreSplit()
    {
        QTemporaryDir folder;
        const QString program = folder.filePath(u"my tool.exe"_s);
        QFile(program).open(QIODevice::WriteOnly);
        QCOMPARE(splitCommandLine(program), QStringList(program));
        QCOMPARE(splitCommandLine(folder.filePath(u"MY Tool.exe"_s) + u" -a \"b c\""_s),
                 (QStringList{program, u"-a"_s, u"b c"_s}));
        QCOMPARE(splitCommandLine(u"\"/no such/tool\" x"_s), (QStringList{u"/no such/tool"_s, u"x"_s}));
        const QString plain = folder.filePath(u"jisuan"_s); // programs are named with ".exe", files do without
        QFile(plain).open(QIODevice::WriteOnly);
        QCOMPARE(splitCommandLine(plain + u".exe"_s), QStringList(plain));
    }

    void whatCannotBeStartedIsTold()
    {
        QTemporaryDir folder;
        ScriptedDialogs boxes;
        boxes.expectStart(u"没找到使用说明！"_s);
        systemDesktop()->run(u"hh.exe "_s + folder.filePath(u"使用说明.chm"_s));
        boxes.expectStart(u"无法启动程序："_s);
        systemDesktop()->run(folder.filePath(u"none.exe"_s));
    }

    /// The manual itself: F1 in a modal form leads to that form's chapter, in a window that the form doesn't block.
    void manualOpensAtTheForm()
    {
        const QString folder = QFileInfo(QStringLiteral(LEDGER_SCHEMA)).dir().filePath(u"../docs/manual"_s);
        Form::setHelp(
            [&](const QString& form) { systemDesktop()->run(u"hh.exe %1.chm::/%2.htm"_s.arg(folder, form)); });
        auto* form = new PlainForm(u"YearEnd"_s);
        QPointer<ManualWindow> window;
        QWindow* before = nullptr;
        QString text;
        inModal<PlainForm>(u"YearEnd"_s, [&](PlainForm& modal) {
            QTest::keyClick(modal.Txt, Qt::Key_F1);
            for (QWidget* widget : QApplication::topLevelWidgets())
                if (auto* found = qobject_cast<ManualWindow*>(widget)) {
                    window = found;
                    before = found->windowHandle()->transientParent();
                    text = found->findChild<QTextBrowser*>()->toPlainText();
                }
            if (before != modal.windowHandle())
                before = nullptr;
            modal.Unload();
        });
        form->ShowModal();
        Form::setHelp({});
        QVERIFY(before);
        QVERIFY2(text.startsWith(u"库存年度结转\n"_s), qPrintable(text.left(40)));
        QVERIFY(window && window->isVisible()); // it outlives the form
        window->close();
    }

    void manualIsSearched()
    {
        const QString folder = QFileInfo(QStringLiteral(LEDGER_SCHEMA)).dir().filePath(u"../docs/manual"_s);
        QVERIFY(!ManualWindow::open(folder + u"/none"_s, {}));
        ManualWindow* window = ManualWindow::open(folder, u"no such form"_s);
        auto* page = window->findChild<QTextBrowser*>();
        QVERIFY(page->toPlainText().startsWith(u"恒仓宁仓库管理系统 使用说明"_s));
        auto* contents = window->findChild<QTreeWidget*>();
        const auto listed = [&] {
            QStringList titles;
            for (QTreeWidgetItemIterator item(contents, QTreeWidgetItemIterator::NotHidden); *item; ++item)
                if (!(*item)->parent() || !(*item)->parent()->isHidden())
                    titles += (*item)->text(0);
            return titles;
        };
        QVERIFY(listed().size() > 30);
        window->search(u"数所"_s); // nowhere
        QCOMPARE(listed(), QStringList());
        window->search(u"200＋5 %"_s);
        QCOMPARE(listed(), (QStringList{u"公用的窗口"_s, u"计算器"_s}));
        QTest::keyClick(window->findChild<QLineEdit*>(), Qt::Key_Return);
        QVERIFY(page->toPlainText().startsWith(u"计算器"_s));
        QCOMPARE(page->textCursor().selectedText(), u"200＋5 %"_s);
        window->search({});
        QVERIFY(listed().size() > 30);
        window->close();
    }

    // ---- look

    void bothSchemesComeFromTheTable()
    {
        qunsetenv("HCN_LOOK"); // it would have the say
        style::apply(*qApp, {style::Scheme::Dark});
        QVERIFY(style::dark());
        QCOMPARE(QApplication::palette().color(QPalette::Window), style::color(style::Role::Window));
        QVERIFY(!qApp->styleSheet().contains(u'@')); // every name was replaced
        style::apply(*qApp, {style::Scheme::Light});
        QVERIFY(style::color(style::Role::Window).lightness() > 128);
    }
};

QTEST_MAIN(WidgetsTest)
#include "widgets_test.moc"
