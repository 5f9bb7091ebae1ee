// What a report costs: from the print command of a long list to its first page, and the whole of it as a PDF beside the
// toolkit drawing the same texts.

#include "bench/bare_ledger.h"
#include "bench/beside.h"
#include "bench/offscreen.h"
#include "platform/base/dialogs.h"
#include "platform/report/page_view.h"
#include "reports/Prnt.h"
#include "tests/ledger_fixture.h"

#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace {

constexpr int rowCount = 30'000;

/// A list as the program prints it: ruled, nine columns, sums, a head and a foot on each page.
const QString list = uR"(<report title="货品流水帐">
  <paper size="A4" landscape="yes" left="10" right="10" top="10" bottom="10"/>
  <source table="Plist" order="F0"/>
  <pageheader height="22">
    <formula name="regname" x="0" y="0" w="277" h="8" size="14" bold="yes" align="center"/>
    <formula name="Cpt" x="0" y="8" w="277" h="7" size="11" align="center"/>
    <text x="0" y="16" w="17" h="6" frame="yes" align="center">序号</text>
    <text x="17" y="16" w="25" h="6" frame="yes" align="center">日期</text>
    <text x="42" y="16" w="35" h="6" frame="yes" align="center">单号</text>
    <text x="77" y="16" w="25" h="6" frame="yes" align="center">货品编码</text>
    <text x="102" y="16" w="65" h="6" frame="yes" align="center">货品名称</text>
    <text x="167" y="16" w="30" h="6" frame="yes" align="center">规格型号</text>
    <text x="197" y="16" w="25" h="6" frame="yes" align="center">数量</text>
    <text x="222" y="16" w="25" h="6" frame="yes" align="center">单价</text>
    <text x="247" y="16" w="30" h="6" frame="yes" align="center">金额</text>
  </pageheader>
  <detail height="5.5">
    <rownumber x="0" w="17" frame="yes" align="center"/>
    <field name="F1" x="17" w="25" frame="yes"/>
    <field name="F2" x="42" w="35" frame="yes"/>
    <field name="F3" x="77" w="25" frame="yes"/>
    <field name="F4" x="102" w="65" frame="yes"/>
    <field name="F5" x="167" w="30" frame="yes"/>
    <field name="V1" x="197" w="25" frame="yes" align="right" format="#0.##"/>
    <field name="V2" x="222" w="25" frame="yes" align="right" format="#0.00"/>
    <field name="V3" x="247" w="30" frame="yes" align="right" format="#0.00"/>
  </detail>
  <summary height="7">
    <sum field="V1" x="197" w="25" frame="yes" align="right" format="#0.##"/>
    <sum field="V3" x="247" w="30" frame="yes" align="right" format="#0.00"/>
  </summary>
  <pagefooter height="6"><page x="0" w="277" align="center">第 {page} 页 共 {pages} 页</page></pagefooter>
</report>)"_s;

class StagedList : public LedgerFixture
{
public:
    StagedList()
    {
        BareLedger bare(path());
        bare.run("begin");
        bare.run(
            "insert into Plist (F0,F1,F2,F3,F4,F5,V1,V2,V3) select printf('%05d', i), '2004-' || (1 + i % 12) || "
            "'-' || (1 + i % 28), printf('RK0401%08d', i), printf('G%05d', i * 7 % 10000), '不锈钢六角螺栓 ' || i, "
            "'M' || (i % 30) || '×' || (i % 80), i % 50, 2.25, (i % 50) * 2.25 from (with recursive n(i) as "
            "(select 1 union all select i + 1 from n where i < " +
            QByteArray::number(rowCount) + ") select i from n)");
        bare.run("commit");
        if (!writeLines(layout(), list.split(u'\n')))
            qFatal("no layout");
    }

    QString layout() const { return QDir(folder()).filePath(u"list.rpt"_s); }

    Prnt& load() const
    {
        auto& form = theForm<Prnt>();
        form.Cry.DataFiles(0) = path();
        form.Cry.ReportFileName = layout();
        form.Cry.Formulas(0) = u"Cpt='货品流水帐'"_s;
        form.Cry.Formulas(1) = u"regname='恒仓五金公司'"_s;
        if (const QString fault = form.run(); !fault.isEmpty())
            qFatal("%s", qPrintable(fault));
        return form;
    }
};

/// Command to painted page: the ledger opened anew, its rows read, all pages laid out, the first drawn. Beside it the
/// same rows through the engine's interface alone.
void firstPage(benchmark::State& state)
{
    const StagedList staged;
    BareLedger bare(staged.path());
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                Prnt& form = staged.load();
                form.resize(1320, 700);
                form.show();
                QCoreApplication::processEvents();
                benchmark::DoNotOptimize(form.View->grab());
                form.Unload();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            },
            [&] { bare.run("select * from Plist order by F0"); });
}
BENCHMARK(firstPage)->UseManualTime()->Unit(benchmark::kMillisecond);

/// All pages as PDF, lines and all, beside their texts alone, each drawn where it stands with the toolkit.
void wholePdf(benchmark::State& state)
{
    const StagedList staged;
    Prnt& form = staged.load();
    const auto report = form.Cry.report();
    std::vector<std::vector<Report::PlacedText>> pages;
    for (int page = 1; page <= report->pageCount(); ++page)
        pages.push_back(report->placedTexts(page));
    QFont font(u"WenQuanYi Micro Hei"_s);
    font.setPixelSize(32);
    const QString path = QDir(staged.folder()).filePath(u"list.pdf"_s);
    Beside beside(state);
    for (auto _ : state)
        beside.turn(
            [&] {
                if (!report->toPdf(path))
                    state.SkipWithError("no PDF");
            },
            [&] {
                QPdfWriter writer(path);
                writer.setPageSize(QPageSize(report->paperSize(), QPageSize::Millimeter));
                writer.setPageMargins({});
                QPainter painter(&writer);
                painter.scale(writer.logicalDpiX() / 254.0, writer.logicalDpiX() / 254.0);
                painter.setFont(font);
                for (size_t page = 0; page < pages.size(); ++page) {
                    if (page > 0)
                        writer.newPage();
                    for (const auto& [text, place] : pages[page])
                        painter.drawText(place.bottomLeft(), text);
                }
            });
    state.counters["pages"] = report->pageCount();
    form.Unload();
}
BENCHMARK(wholePdf)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    return runOffscreen(argc, argv);
}
