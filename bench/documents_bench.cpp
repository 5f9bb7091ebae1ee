// What the forms cost above the statements that they run: entering, saving and auditing documents, lists, the look-up
// panel. The forms are driven as an operator drives them, in windows that nobody sees.

#include "bench/beside.h"
#include "bench/filled_ledger.h"
#include "bench/offscreen.h"
#include "documents/document_form.h"
#include "documents/goods_lookup.h"
#include "documents/line_entry.h"
#include "ledger/Module1.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "tools/faulty_disk.h"
#include "tools/headless.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace {

class Session
{
public:
    explicit Session(const Filling& filling)
        : ledger(filling)
    {
        resetSession();
        gDB = ledger.open();
        gRights.set();
        gOperId = u"001"_s;
        gOperName = u"王小敏"_s;
        gCanSeeCost = true;
        LoadSettings();
        tick();
    }
    ~Session()
    {
        closeForms();
        resetSession();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    DocumentForm& open()
    {
        DocumentForm& form = documentForm(DocumentKind::B1);
        form.Show();
        QCoreApplication::processEvents();
        return form;
    }
    void closeForms()
    {
        for (Form* form : QList<Form*>(Form::all()))
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// An hour later: a month has numbers for 9999 documents only.
    void tick()
    {
        now_ = now_.addSecs(3600);
        setClock(now_);
    }

    FaultyDisk disk; // outlives the files on it
    FilledLedger ledger;

private:
    QDateTime now_ = QDateTime(QDate(2005, 1, 1), QTime(9, 5, 3));
};

void run(DocumentForm& form, const char* command)
{
    form.command(QString::fromLatin1(command))->trigger();
}

void enter(DocumentForm& form, int lines)
{
    run(form, "Menu_Add");
    for (int i = 0; i < lines; ++i) {
        form.lines->TxtHPBM->setText(goodsCode(i * 331 % Filling().goods));
        form.lines->TxtSL->setText(u"12"_s);
        form.lines->AddGoodsLine();
    }
}

constexpr auto firstNumber = "RK0501010001"; ///< of a session: by its clock

/// A command of the form beside the statements that it runs, on two ledgers with the same in them. The bare statements
/// are the command's own, as translated, kept prepared, with their values; a recordset's second and third read of its
/// row are left out.
void besideItsStatements(benchmark::State& state, const std::function<void(DocumentForm&)>& before,
                         const std::function<void(DocumentForm&)>& command,
                         const std::function<void(DocumentForm&)>& after)
{
    Session session({.documents = 20'000});
    DocumentForm& form = session.open();
    BareLedger bare(session.ledger.copy());
    Recording preparing(gDB.connection().handle(), [&] { before(form); });
    Recording recording(gDB.connection().handle(), [&] { command(form); });
    recording.withoutRereading();
    after(form);
    QByteArray number = firstNumber;

    int syncs = 0;
    int turns = 0;
    {
        Beside beside(state);
        for (auto _ : state) {
            session.tick();
            before(form);
            const QByteArray next = "RK0501B" + QByteArray::number(++turns);
            preparing.renumber(number, next);
            if (!recording.renumber(number, next))
                qFatal("the recorded document isn't %s", number.constData());
            number = next;
            bare.run(preparing.statements);
            beside.turn(
                [&] {
                    const int syncsBefore = session.disk.syncs;
                    command(form);
                    syncs = qMax(syncs, session.disk.syncs - syncsBefore);
                },
                [&] { bare.run(recording.statements); });
            after(form);
        }
        state.counters["documents_per_s"] = 1 / beside.ours().clock;
        state.counters["bare_documents_per_s"] = 1 / beside.bare().clock;
        state.counters["documents_per_processor_s"] = 1 / beside.ours().processor;
    }
    state.counters["syncs"] = syncs;
    state.counters["statements"] = double(recording.statements.size());
}

void save(DocumentForm& form)
{
    run(form, "Menu_save");
}

void audit(DocumentForm& form)
{
    run(form, "Menu_Ok");
}

void enterThirty(DocumentForm& form)
{
    enter(form, 30);
}

void saveThirtyLines(benchmark::State& state)
{
    besideItsStatements(state, enterThirty, save, audit);
}
BENCHMARK(saveThirtyLines)->UseManualTime()->Unit(benchmark::kMillisecond);

void auditThirtyLines(benchmark::State& state)
{
    const auto enterAndSave = [](DocumentForm& form) {
        enterThirty(form);
        save(form);
    };
    besideItsStatements(state, enterAndSave, audit, [](DocumentForm&) {});
}
BENCHMARK(auditThirtyLines)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Whole documents of ten lines, one after the other, the window painted after each.
void documentsOfTenLines(benchmark::State& state)
{
    const auto nothing = [](DocumentForm&) {};
    const auto document = [](DocumentForm& form) {
        enter(form, 10);
        save(form);
        audit(form);
        QCoreApplication::processEvents();
    };
    besideItsStatements(state, nothing, document, nothing);
}
BENCHMARK(documentsOfTenLines)->UseManualTime()->Unit(benchmark::kMillisecond);

/// A form with 20,000 drafts, from the menu to the painted window.
void openList(benchmark::State& state)
{
    Session session({.documents = 20'000, .audited = false});
    BareLedger bare(session.ledger.path());
    const Recording recording(gDB.connection().handle(), [&] { session.open(); });
    session.closeForms();
    Beside beside(state);
    for (auto _ : state) {
        beside.turn([&] { session.open(); }, [&] { bare.run(recording.statements); });
        session.closeForms();
    }
}
BENCHMARK(openList)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The look-up panel over 100,000 goods: all of them (the first 500 are shown), and a prefix.
void lookUpGoods(benchmark::State& state)
{
    Session session({.goods = 100'000});
    const QString typed = state.range(0) == 0 ? QString() : u"G123"_s;
    DocumentForm& form = session.open();
    run(form, "Menu_Add");
    BareLedger bare(session.ledger.path());
    const Recording recording(gDB.connection().handle(), [&] { form.lines->lookup->fill(typed); });
    Beside beside(state);
    for (auto _ : state) {
        beside.turn(
            [&] {
                form.lines->lookup->fill(typed);
                QCoreApplication::processEvents();
            },
            [&] { bare.run(recording.statements); });
    }
    run(form, "Menu_cancel");
}
BENCHMARK(lookUpGoods)->DenseRange(0, 1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// A key in the code box over 100,000 goods, from the key to the painted list, beside the search for a part of a text
/// that the engine would do: a letter, initials, whole syllables, a part of the name, a part of the model, nothing that
/// fits; then the first key after another session has booked something, and after it has renamed goods.
void suggestGoods(benchmark::State& state)
{
    static const QStringList typed{u"L"_s,  u"LJLS"_s, u"JIAOLUOSHUAN"_s, u"角螺"_s,
                                   u"M2"_s, u"QQQ"_s,  u"LJ"_s,           u"LJ"_s};
    static const QByteArray others[] = {"update TA4 set F8=F8+1 where F1='G00007'",
                                        "update TA4 set F2=F2||'x' where F1='G00007'"};
    Session session({.goods = 100'000});
    DocumentForm& form = session.open();
    run(form, "Menu_Add");
    BareLedger bare(session.ledger.path());
    const QString text = typed[state.range(0)];
    const QByteArray like = " like '%" + text.toUtf8() + "%'";
    const QByteArray search =
        "select F1,F2,F5,F4,F8 from TA4 where F1" + like + " or F2" + like + " or F5" + like + " order by F1 limit 12";
    const auto key = [&] {
        QLineEdit* box = form.lines->TxtHPBM;
        box->setText(text.chopped(1));
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, text.last(1));
        QCoreApplication::sendEvent(box, &press);
        QCoreApplication::processEvents();
    };
    key(); // reads the index
    Beside beside(state);
    for (auto _ : state) {
        if (state.range(0) >= 6)
            bare.run(others[state.range(0) - 6]);
        beside.turn(key, [&] { bare.run(search); });
    }
    run(form, "Menu_cancel");
}
BENCHMARK(suggestGoods)->DenseRange(0, 7)->UseManualTime()->Unit(benchmark::kMillisecond);

QList<QStringList> manyRows()
{
    QList<QStringList> rows;
    for (int row = 0; row < 100'000; ++row) {
        QStringList& cells = rows.emplaceBack();
        for (int column = 0; column < 8; ++column)
            cells += QString::number(row * 8 + column);
    }
    return rows;
}

void openWide(Grid& grid)
{
    QList<GridColumn> columns;
    for (int column = 0; column < 8; ++column)
        columns += GridColumn{QString::number(column), 100, column % 2 ? ColumnKind::Number : ColumnKind::Text};
    grid.setColumns(columns);
    grid.resize(1200, 700);
    grid.show();
}

/// 100,000 rows of eight cells into a grid and on to the screen, beside making the texts alone.
void fillGrid(benchmark::State& state)
{
    Grid grid(u"GD"_s);
    openWide(grid);
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                grid.setRows(manyRows());
                grid.select(grid.Rows() - 1);
                QCoreApplication::processEvents();
            },
            [&] { benchmark::DoNotOptimize(manyRows()); });
}
BENCHMARK(fillGrid)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The same rows narrowed to about a tenth and shown again, as two letters typed do, beside making the texts alone.
void narrowGrid(benchmark::State& state)
{
    Grid grid(u"GD"_s);
    grid.actAsList();
    openWide(grid);
    grid.setRows(manyRows());
    grid.select(1);
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                for (const QString& text : {u"777"_s, QString()}) {
                    grid.narrow(text);
                    QCoreApplication::processEvents();
                }
            },
            [&] { benchmark::DoNotOptimize(manyRows()); });
}
BENCHMARK(narrowGrid)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    return runOffscreen(argc, argv, std::make_unique<headless::Agreeing>());
}
