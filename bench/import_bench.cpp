// What an import of goods from a sheet costs above the statements that it runs.

#include "bench/beside.h"
#include "bench/filled_ledger.h"
#include "bench/offscreen.h"
#include "ledger/Module1.h"
#include "masterdata/FromExcel.h"
#include "platform/widgets/grid.h"

namespace {

constexpr int importedRows = 10'000;

/// A sheet over goods that the ledger has; all fields that an import knows.
QList<QStringList> sheetRows()
{
    QList<QStringList> rows;
    for (int row = 0; row < importedRows; ++row)
        rows += {goodsCode(row),
                 u"六角螺栓"_s + QString::number(row),
                 u"001"_s,
                 u"个"_s,
                 u'M' + QString::number(row % 30),
                 u"第二仓库"_s,
                 QString::number(row % 97) + u".25"_s,
                 QString::number(row % 97) + u".5"_s,
                 QString::number(row % 1000),
                 u"10"_s,
                 u"2000"_s};
    return rows;
}

/// The import as the command runs it, grid and outcome included, beside its own statements.
void importGoods(benchmark::State& state)
{
    resetSession();
    const FilledLedger ledger({.goods = importedRows});
    gDB = ledger.open();
    gRights.set();
    gOperId = u"001"_s;
    LoadSettings();
    {
        FromExcel& form = theForm<FromExcel>();
        form.Show();
        QList<GridColumn> columns;
        for (char16_t letter = u'A'; letter <= u'K'; ++letter)
            columns += {QString(QChar(letter))};
        form.Gd->setColumns(columns);
        form.Gd->setRows(sheetRows());
        const std::pair<ImportField, QStringView> choices[] = {
            {ImportField::Code, u"A"},   {ImportField::Name, u"B"},   {ImportField::CategoryCode, u"C"},
            {ImportField::Unit, u"D"},   {ImportField::Model, u"E"},  {ImportField::Remark, u"F"},
            {ImportField::Cost, u"G"},   {ImportField::Sale, u"H"},   {ImportField::Quantity, u"I"},
            {ImportField::Lowest, u"J"}, {ImportField::Highest, u"K"}};
        for (const auto& [field, letter] : choices)
            form.CmbCol[int(field)]->setEditText(letter.toString());

        BareLedger bare(ledger.copy());
        Recording recording(gDB.connection().handle(), [&] { form.run(GoodsImport::Mode::Writing); });
        state.counters["statements_asked"] = double(recording.statements.size());
        recording.withoutRereading();
        Beside beside(state);
        for (auto _ : state)
            beside.turn([&] { form.run(GoodsImport::Mode::Writing); }, [&] { bare.run(recording.statements); });
        state.counters["statements"] = double(recording.statements.size());
        form.Unload();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    resetSession();
}

BENCHMARK(importGoods)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char* argv[])
{
    return runOffscreen(argc, argv);
}
