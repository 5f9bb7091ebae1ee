// What the store costs above the engine: look-ups, the translation of statements, opening a ledger.

#include "bench/beside.h"
#include "bench/filled_ledger.h"
#include "ledger/literal.h"

#include <array>

namespace {

constexpr int turnCalls = 1000;

struct Keys
{
    Keys()
    {
        for (int i = 0; i < turnCalls; ++i) {
            const QString code = goodsCode(i * 331 % Filling().goods);
            statements += u"select F2 from TA4 where F1="_s + sqlText(code);
            bare.push_back({dialect::translate(statements.last()).sql, {code.toUtf8()}});
        }
    }
    QStringList statements;
    std::vector<BareStatement> bare;
};

void lookUpKeys(Database& ours, BareLedger& bare, benchmark::State& state)
{
    const Keys keys;
    Beside beside(state, turnCalls);
    for (auto _ : state)
        beside.turn(
            [&] {
                for (const QString& statement : keys.statements)
                    benchmark::DoNotOptimize(LookupValue(ours, statement));
            },
            [&] { bare.run(keys.bare); });
}

void lookUp(benchmark::State& state)
{
    FilledLedger ledger({});
    Database ours = ledger.open();
    BareLedger bare(ledger.path());
    lookUpKeys(ours, bare, state);
}
BENCHMARK(lookUp)->UseManualTime();

void lookUpInReadRun(benchmark::State& state)
{
    FilledLedger ledger({});
    Database ours = ledger.open();
    BareLedger bare(ledger.path());
    const ReadRun reads(ours);
    bare.run("begin");
    lookUpKeys(ours, bare, state);
    bare.run("commit");
}
BENCHMARK(lookUpInReadRun)->UseManualTime();

/// All goods through a snapshot, each field asked for, beside stepping through the same rows.
void snapshot(benchmark::State& state)
{
    FilledLedger ledger({.goods = 100'000});
    Database ours = ledger.open();
    BareLedger bare(ledger.path());
    const QString statement = u"select F1,F2,F4,F5,F7,F8 from TA4 order by F1"_s;
    const BareStatement same{dialect::translate(statement).sql, {}};
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                for (Recordset rows = ours.OpenRecordset(statement); !rows.isEOF(); rows.MoveNext())
                    for (qsizetype i = 0; i < rows.fieldCount(); ++i)
                        benchmark::DoNotOptimize(rows.Fields(i));
            },
            [&] { bare.run(same); });
}
BENCHMARK(snapshot)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The statement behind the goods look-up panel over 100,000 goods, nothing typed (500 rows) and a prefix (100 rows).
void lookUpStatement(benchmark::State& state)
{
    FilledLedger ledger({.goods = 100'000});
    Database ours = ledger.open();
    BareLedger bare(ledger.path());
    const QString statement = u"select top 500 F1,F2,F5,F8,F4 from TA4 where F1 like '"_s +
                              (state.range(0) == 0 ? QString() : u"G123"_s) + u"*'  order by F1"_s;
    const Recording recording(ours.connection().handle(), [&] { ours.OpenRecordset(statement); });
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                for (Recordset rows = ours.OpenRecordset(statement); !rows.isEOF(); rows.MoveNext())
                    for (qsizetype i = 0; i < rows.fieldCount(); ++i)
                        benchmark::DoNotOptimize(rows.Fields(i));
            },
            [&] { bare.run(recording.statements); });
}
BENCHMARK(lookUpStatement)->DenseRange(0, 1)->UseManualTime();

/// Includes the derivation of the key, which is most of it on either side.
void openLedger(benchmark::State& state)
{
    FilledLedger ledger({.goods = 100});
    Beside beside(state);
    for (auto _ : state)
        beside.turn([&] { benchmark::DoNotOptimize(ledger.open().isOpen()); },
                    [&] {
                        BareLedger bare(ledger.path());
                        bare.run("select count(*) from theVer");
                    });
}
BENCHMARK(openLedger)->UseManualTime()->Unit(benchmark::kMillisecond);

const std::array statements = {
    u"select F2 from TA4 where F1='G00001'"_s,
    u"select F1,(F2+'/'+F5) AS MC,F4,12 as sl,F7 from TA4 where F1='G00001'"_s,
    u"insert into TB11 (F0,F1,F6,F7,F8) VALUES ('RK0411180001','G00001',12,2.5,'新批次')"_s,
    u"select TB1.F1,TB1.F2,TA1.F2 AS LB,TB1.F5,TB1.F6,TB1.F9,TB1.F10,TB1.F3 from TB1,TA1 WHERE TB1.F3=TA1.F1 and "
    "(TB1.F6 is Null or TB1.F6='')  order by TB1.H8 desc "_s,
};

/// Done at each call: the statement's shape, by which its translation is found.
void scanStatement(benchmark::State& state)
{
    const QString& statement = statements[size_t(state.range(0))];
    for (auto _ : state)
        benchmark::DoNotOptimize(dialect::scan(statement));
}
BENCHMARK(scanStatement)->DenseRange(0, int(statements.size()) - 1);

/// Done once for each shape.
void translateStatement(benchmark::State& state)
{
    const QString& statement = statements[size_t(state.range(0))];
    for (auto _ : state)
        benchmark::DoNotOptimize(dialect::translate(statement));
}
BENCHMARK(translateStatement)->DenseRange(0, int(statements.size()) - 1);

} // namespace

BENCHMARK_MAIN();
