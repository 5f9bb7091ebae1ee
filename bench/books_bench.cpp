// Reports over large books (10,000 goods, 100,000 documents, 1,000,000 audited lines) beside what somebody would write
// by hand against the engine: the aggregates of each report, and its inserts where it keeps rows.

#include "bench/bare_ledger.h"
#include "bench/beside.h"
#include "bench/offscreen.h"
#include "ledger/Module1.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "reports/C1.h"
#include "reports/C15.h"
#include "reports/C18.h"
#include "reports/C181.h"
#include "reports/Lst.h"
#include "tests/ledger_fixture.h"
#include "tools/books.h"

#include <QComboBox>
#include <QPushButton>

namespace {

const QDate lastDay(2025, 12, 31);

/// The reports say nothing while they are made; saving says that it is done.
class OnlySaved : public DialogHost
{
public:
    Answer show(const Box& box) override
    {
        if (box.text != u"保存成功！")
            qFatal("%s", qPrintable(box.text));
        return Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}
    std::optional<PrintJob> print(const PrintRequest&) override { return {}; }
};

/// The books, written once, and a session in them.
class BooksSession
{
public:
    explicit BooksSession(LedgerFixture& of = books())
    {
        resetSession();
        setClock(lastDay.startOfDay());
        gDB = DBEngine::OpenDatabase(copyOf(of.path(), u"本帐.hcn"_s), ledgerConnect.toString());
        gRights.set();
        gOperId = u"001"_s;
        gCanSeeCost = true;
        LoadSettings();
    }
    ~BooksSession()
    {
        for (Form* form : QList<Form*>(Form::all()))
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        resetSession();
    }
    BooksSession(const BooksSession&) = delete;
    BooksSession& operator=(const BooksSession&) = delete;

    /// The same ledger for the bare engine: on one file each side's commits would cost the other its cache.
    QString copy() const { return copyOf(path_, u"另本.hcn"_s); }

    static LedgerFixture& books()
    {
        static LedgerFixture* made = written({});
        return *made;
    }
    static LedgerFixture& manyGoods()
    {
        static LedgerFixture* made = written({.goods = 100'000, .documents = 1'000, .lines = 10'000});
        return *made;
    }

private:
    /// As long as the process: its folder goes with `main`.
    static LedgerFixture* written(const BooksSize& size)
    {
        auto* fixture = new LedgerFixture;
        Database ledger = fixture->open();
        writeBooks(ledger, size);
        return fixture;
    }
    QString copyOf(const QString& from, const QString& name) const
    {
        const QString to = QDir(folder_.path()).filePath(name);
        DBEngine::copyDatabase(from, to, ledgerConnect.toString());
        return to;
    }

    QTemporaryDir folder_;
    QString path_ = QDir(folder_.path()).filePath(u"本帐.hcn"_s);
};

/// Memory of the process at its highest since `forget`, in megabytes.
class HighestMemory
{
public:
    static void forget()
    {
        QFile file(u"/proc/self/clear_refs"_s);
        if (file.open(QIODevice::WriteOnly))
            file.write("5");
    }
    static double megabytes()
    {
        QFile file(u"/proc/self/status"_s);
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        for (const QByteArray& line : file.readAll().split('\n'))
            if (line.startsWith("VmHWM:"))
                return line.sliced(6).trimmed().split(' ').first().toDouble() / 1024;
        return 0;
    }
};

/// By hand: from the documents of the days by the index, or from the lines in the order of goods, whichever is faster.
QByteArray aggregate(const QByteArray& header, bool year)
{
    const QByteArray days = "dayno(h.F2) between dayno('2025-" + QByteArray(year ? "1" : "12") +
                            "-1') and dayno('2025-12-31') and h.F6 <> ''";
    return "select l.F1, sum(l.F6), sum(l.F6 * l.F7) from " +
           (year ? header + "1 l left join " + header + " h on h.F1 = l.F0"
                 : header + " h join " + header + "1 l on l.F0 = h.F1") +
           " where " + days + " group by l.F1";
}

/// The comprehensive period report of December, with a report saved at the end of November, or of the year.
void comprehensiveReport(benchmark::State& state)
{
    const bool year = state.range(0) == 1;
    BooksSession session;
    if (!year) {
        setClock(QDate(2025, 11, 30).startOfDay());
        auto& form = theForm<C181>();
        form.generateOrOpen();
        form.saveOrDelete();
        form.Unload();
        setClock(lastDay.startOfDay());
    }
    auto& form = theForm<C181>();
    HighestMemory::forget();
    const Recording recording(gDB.connection().handle(), [&] { form.generateOrOpen(); });
    state.counters["highest_mb"] = HighestMemory::megabytes();
    std::vector<BareStatement> inserts;
    for (const BareStatement& statement : recording.statements)
        if (statement.sql.startsWith("insert into"))
            inserts.push_back(statement);
    state.counters["rows"] = double(inserts.size());

    BareLedger bare(session.copy());
    std::vector<BareStatement> reads;
    for (const char* header : {"TB1", "TD3", "TD1", "TB3"})
        reads.push_back({aggregate(header, year), {}});
    std::vector<double> aggregates;
    std::vector<double> store; // the statements of the report alone, without its texts and its grid
    {
        Beside beside(state);
        for (auto _ : state) {
            beside.turn([&] { form.generateOrOpen(); },
                        [&] {
                            bare.run("begin immediate");
                            bare.run("delete from jxc where SortNo = 0");
                            bare.run(BareStatement{
                                "select F1, F2 || '/' || F5 || '/' || F4, F7, F8, V3, V4 from TA4 order by F1", {}});
                            bare.run(BareStatement{"select Hpbm, Bdate, Gs, Gj, Ds, Dj, Fs, Fj from jxc where SortNo = "
                                                   "(select max(SortNo) from jxc where SortNo > 0)",
                                                   {}});
                            aggregates.push_back(timed([&] { bare.run(reads); }).processor);
                            bare.run(inserts);
                            bare.run("commit");
                        });
            store.push_back(timed([&] { bare.run(recording.statements); }).processor);
        }
    }
    state.counters["aggregates_us"] = median(aggregates) * 1e6;
    state.counters["own_statements_us"] = median(store) * 1e6;
}
BENCHMARK(comprehensiveReport)->DenseRange(0, 1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// What days a form is asked for; the last is the last of the year.
void askFrom(const Form& form, const QString& firstDay)
{
    form.findChild<DatePicker*>(u"DTP(0)"_s)->setText(firstDay);
    form.findChild<DatePicker*>(u"DTP(1)"_s)->setText(dateText(lastDay));
}

/// By hand: the quantities alone, of the days of December or of the year, or of what came later.
QByteArray quantities(const QByteArray& header, bool year, bool later)
{
    const QByteArray days =
        later ? "dayno(h.F2) > dayno('2025-12-31')"
              : "dayno(h.F2) between dayno('2025-" + QByteArray(year ? "1" : "12") + "-1') and dayno('2025-12-31')";
    return "select l.F1, sum(l.F6) from " +
           (year && !later ? header + "1 l left join " + header + " h on h.F1 = l.F0"
                           : header + " h join " + header + "1 l on l.F0 = h.F1") +
           " where " + days + " and h.F6 is not null group by l.F1";
}

/// The quantity report of December, or of the year, beside its eight aggregates and the goods.
void quantitiesOfGoods(benchmark::State& state)
{
    const bool year = state.range(0) == 1;
    const BooksSession session;
    auto& form = theForm<C18>();
    askFrom(form, year ? u"2025-1-1"_s : u"2025-12-1"_s);
    BareLedger bare(session.copy());
    std::vector<BareStatement> reads{
        {"select F1, F2 || '/' || F5, F71, F4, F8 from TA4 where F3 is not null order by F1", {}}};
    for (const char* header : {"TB1", "TB3", "TD1", "TD3"})
        for (const bool later : {false, true})
            reads.push_back({quantities(header, year, later), {}});
    Beside beside(state);
    for (auto _ : state)
        beside.turn([&] { form.generate(); }, [&] { bare.run(reads); });
    state.counters["rows"] = form.GD->Rows() - 2;
}
BENCHMARK(quantitiesOfGoods)->DenseRange(0, 1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The flow ledger of December: beside a table filled by four statements that copy, and read in its order.
void flowLedger(benchmark::State& state)
{
    const BooksSession session;
    auto& form = theForm<C15>();
    askFrom(form, u"2025-12-1"_s);
    BareLedger bare(session.copy());
    std::vector<BareStatement> copies;
    for (const auto& [header, partners] :
         {std::pair<QByteArray, QByteArray>("TB1", "TA1"), {"TB3", "TA1"}, {"TD1", "TA2"}, {"TD3", "TA2"}})
        copies.push_back({"insert into TC15 select h.F1, h.F2, p.F2, h.F10, c.F2, l.F1, g.F2, g.F5, g.F4, l.F7, l.F6, "
                          "l.F6 * l.F7, 0, 0, l.H6, l.H6 * l.H7, l.F8, h.H8 from " +
                              header + " h left join " + header + "1 l on l.F0 = h.F1 left join " + partners +
                              " p on h.F3 = p.F1 left join TA4 g on l.F1 = g.F1 left join TA3 c on g.F3 = c.F1 where "
                              "dayno(h.F2) between dayno('2025-12-1') and dayno('2025-12-31')",
                          {}});
    const BareStatement listed{"select F1, F2, F3, F4, F5, F6, F7, F8, F9, F10, F11, F12, F13, F14, F15, F16, F17 from "
                               "TC15 order by F1",
                               {}};
    Beside beside(state);
    for (auto _ : state)
        beside.turn([&] { form.generate(); },
                    [&] {
                        bare.run("delete from TC15");
                        bare.run("begin immediate");
                        bare.run(copies);
                        bare.run("commit");
                        bare.run(listed);
                    });
    state.counters["rows"] = form.GD->Rows() - 2;
}
BENCHMARK(flowLedger)->UseManualTime()->Unit(benchmark::kMillisecond);

/// A list from nothing to its texts in the grid, beside its own statements without a copy of their rows.
template <typename Open>
void openList(benchmark::State& state, const BooksSession& session, Open open)
{
    const Recording recording(gDB.connection().handle(), [&] { open().Unload(); });
    BareLedger bare(session.copy());
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                open().Unload();
                QCoreApplication::sendPostedEvents(); // else they pile up
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            },
            [&] { bare.run(recording.statements); });
}

/// The outbound lines of today, as the statistics open.
void linesOfToday(benchmark::State& state)
{
    const BooksSession session;
    openList(state, session, []() -> Form& { return Lst::theWindow(StatisticsMode::D2); });
}
BENCHMARK(linesOfToday)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The stock list over 100,000 goods.
void stockList(benchmark::State& state)
{
    const BooksSession session(BooksSession::manyGoods());
    openList(state, session, []() -> Form& { return C1::theWindow(); });
}
BENCHMARK(stockList)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    return runOffscreen(argc, argv, std::make_unique<OnlySaved>());
}
