// The print host: what the callers hand over, the rows behind a layout, the preview, the ways out of it.

#include "form_test.h"
#include "ledger/literal.h"
#include "modal_forms.h"
#include "platform/report/page_view.h"
#include "platform/report/preview_probe.h"
#include "platform/report/printers.h"
#include "reports/Prnt.h"
#include "reports/printing.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPageSize>
#include <QPdfWriter>
#include <QProcess>
#include <QPushButton>

namespace {

const QString staged = uR"(<report title="流水帐">
  <paper size="A4" left="10" right="10" top="10" bottom="10"/>
  <source table="Plist" order="F0"/>
  <pageheader height="20">
    <formula name="regname" x="0" w="190" h="7" align="center"/>
    <text x="0" y="7" w="30" h="6">列表</text>
    <text x="0" y="14" w="30" h="6" frame="yes">编码</text>
    <text x="30" y="14" w="40" h="6" frame="yes">数量</text>
    <formula name="head" x="70" y="8" w="40" h="6" frame="yes"/>
    <text x="70" y="14" w="40" h="6" frame="yes">金额</text>
  </pageheader>
  <detail height="6">
    <field name="F1" x="0" w="30" frame="yes"/>
    <field name="V1" x="30" w="40" frame="yes" align="right" format="#0.##"/>
    <field name="F6" x="70" w="40" frame="yes" align="right"/>
  </detail>
  <summary height="6"><sum field="V1" x="0" w="70" before="合计："/></summary>
</report>)"_s;

const QString document = uR"(<report title="入库单">
  <paper size="241x139.7"/>
  <source>select TB1.F1 as D, TB11.F1 as C from TB1 left join TB11 on TB1.F1=TB11.F0
    where {selection} order by TB11.F1</source>
  <pageheader height="6"><field name="D" x="0" w="80"/></pageheader>
  <detail height="6"><field name="C" x="0" w="30"/></detail>
</report>)"_s;

/// One printer, whose paper is a PDF file.
class PdfPrinter : public PrinterHost
{
public:
    explicit PdfPrinter(QString path)
        : path_(std::move(path))
    {}
    QStringList names() override { return {u"LQ-630K"_s}; }
    QString standard() override { return u"LQ-630K"_s; }
    QSizeF paperOf(const QString&) override { return {241, 139.7}; }
    std::unique_ptr<QPagedPaintDevice> open(const PrintJob& job, const QString&) override
    {
        return std::make_unique<QPdfWriter>(job.printer.isEmpty() ? QString() : path_);
    }

private:
    QString path_;
};

class NoPrinter : public PdfPrinter
{
public:
    NoPrinter()
        : PdfPrinter({})
    {}
    QStringList names() override { return {}; }
    QString standard() override { return {}; }
    std::unique_ptr<QPagedPaintDevice> open(const PrintJob&, const QString&) override { return nullptr; }
};

/// The words of a PDF, page by page.
QStringList pdfPages(const QString& path)
{
    QProcess reader;
    reader.start(u"pdftotext"_s, {u"-layout"_s, path, u"-"_s});
    if (!reader.waitForFinished())
        return {};
    return QString::fromUtf8(reader.readAllStandardOutput()).split(u'\f', Qt::SkipEmptyParts);
}

} // namespace

class PrintTest : public FormTest
{
    Q_OBJECT

private:
    QString file(const QString& name) const { return QDir(ledger_->folder()).filePath(name); }
    void layout(const QString& text) const { QVERIFY(writeLines(file(u"Form.rpt"_s), text.split(u'\n'))); }
    void stage(int rows) const;
    /// Shows the preview of that layout, runs `act` in it, and closes it.
    void previewed(const std::function<void(Prnt&)>& act, PrintOrder order = {}) const;

    void furnish() override { setPrinterHost(std::make_unique<PdfPrinter>(file(u"paper.pdf"_s))); }
    void inspect() override
    {
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
        QCOMPARE(openPreview(), nullptr);
        setPrinterHost(nullptr);
    }

private slots:
    void textsAreTakenApart_data();
    void textsAreTakenApart();
    void stagingReplacesTheRows();
    void selectionIsData();
    void faultsAreToldAndTheCallerGoesOn_data();
    void faultsAreToldAndTheCallerGoesOn();
    void pagesZoomAndSearch();
    void printsOnTheChosenPrinter();
    void withoutPrinter();
    void exportsWhatIsOnPaper();
};

void PrintTest::stage(int count) const
{
    QList<QStringList> rows;
    for (int i = 1; i <= count; ++i)
        rows += {sqlText(Format(i, u"00000")), sqlText(u"0"_s + plainText(i)), sqlText(u"-0.00"), sqlNumber(0.5)};
    stageRows(u"Plist"_s, u"F0,F1,F6,V1"_s, rows);
}

void PrintTest::previewed(const std::function<void(Prnt&)>& act, PrintOrder order) const
{
    order.reportFile = u"fORM.RPT"_s;
    bool shown = false;
    inModal<Prnt>(u"Prnt"_s, [&](Prnt& form) {
        shown = true;
        const QPointer<Prnt> still = &form;
        act(form);
        if (still)
            still->Unload();
    });
    preview(order);
    QVERIFY(shown);
    QCOMPARE(Form::loaded(u"Prnt"_s), nullptr);
}

void PrintTest::textsAreTakenApart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parts"); // name|value, or table|column|value
    const auto row = [](const QString& text, const QString& parts) {
        QTest::addRow("%s", qPrintable(text)) << text << parts;
    };
    row(formula(u"regname", u"老'王\"的=店'"), u"regname|老'王\"的=店'"_s);
    row(formula(u"Cpt", u""), u"Cpt|"_s);
    row(u"a='b='c'"_s, u"a|b='c"_s);
    row(u"Cpt='没有完"_s, {});
    row(u"='无名'"_s, {});
    row(u"{TB1.F1}='RK0401'"_s, u"TB1|F1|RK0401"_s);
    row(u"{TB1.F1}='x' or '1'='1'"_s, u"TB1|F1|x' or '1'='1"_s);
    row(u"{TB1.F1] or 1=1 --}='x'"_s, {});
    row(u"{F1}='x'"_s, {});
}

void PrintTest::textsAreTakenApart()
{
    QFETCH(QString, text);
    QString parts;
    if (text.startsWith(u'{')) {
        if (const auto selection = parseSelection(text))
            parts = u"%1|%2|%3"_s.arg(selection->table, selection->column, selection->value);
    } else if (const auto pair = parseFormula(text)) {
        parts = pair->first + u'|' + pair->second;
    }
    QTEST(parts, "parts");
}

void PrintTest::stagingReplacesTheRows()
{
    stage(3);
    stageRows(u"Plist"_s, u"F0,F1"_s, {{sqlText(u"1"), sqlText(u"老王's")}});
    QCOMPARE(ledger_->row(u"select count(*),max(F1) from Plist"_s), u"1|老王's"_s);

    // What ran before a failure stays; the failure reaches the caller.
    QVERIFY_THROWS_EXCEPTION(StoreError, stageRows(u"Plist"_s, u"F0"_s, {{u"'1'"_s}, {QString()}}));
    QCOMPARE(ledger_->row(u"select count(*) from Plist"_s), u"1"_s);

    boxes_->expect(u"报表文件x.rpt丢失！"_s);
    QVERIFY(!requireReportFile(u"x.rpt"_s, u"报表文件x.rpt丢失！"_s));
    layout(staged);
    QVERIFY(requireReportFile(u"form.RPT"_s, {}));
}

/// The preview shows the one document, by a number with quotes in it, and a number that is made like a condition finds
/// nothing more.
void PrintTest::selectionIsData()
{
    layout(document);
    for (const QString& number : {u"RK1"_s, u"RK'2"_s, u"x' or 'a'='a"_s})
        ledger_->run(u"insert into TB1 (F1) values (%1)"_s.arg(sqlText(number)));
    for (const auto& [number, code] : {std::pair(u"RK1"_s, u"A"_s), {u"RK'2"_s, u"B"_s}, {u"RK'2"_s, u"C"_s}})
        ledger_->run(u"insert into TB11 (F0,F1) values (%1)"_s.arg(sqlTexts({number, code})));
    const auto texts = [&](const QString& selection) {
        QStringList found;
        PrintOrder order;
        order.selectionFormula = selection;
        previewed([&](Prnt&) { found = openPreview()->pageTexts(1); }, order);
        return found.join(u'|');
    };
    QCOMPARE(texts(u"{TB1.F1}='RK1'"_s), u"RK1|A"_s);
    QCOMPARE(texts(u"{TB1.F1}='RK'2'"_s), u"RK'2|B|C"_s);
    QCOMPARE(texts(u"{TB1.F1}='x' or 'a'='a'"_s), u"x' or 'a'='a"_s);
    QCOMPARE(texts({}).count(u'|'), 3); // all of them, and no code for the document without lines
}

void PrintTest::faultsAreToldAndTheCallerGoesOn_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("fault");
    const auto changed = [](const QString& from, const QString& to) { return QString(staged).replace(from, to); };
    QTest::newRow("no file") << QString() << QString() << u"报表文件 fORM.RPT：文件不存在"_s;
    QTest::newRow("damaged") << staged.left(300) << QString() << u"报表文件 Form.rpt 第 "_s;
    QTest::newRow("column") << changed(u"\"V1\" x"_s, u"\"VX\" x"_s) << QString() << u"第 14 行：数据里没有列 VX"_s;
    QTest::newRow("table") << changed(u"Plist"_s, u"Nirgends"_s) << QString() << u"第 3 行：数据源有误"_s;
    QTest::newRow("order") << changed(u"order=\"F0\""_s, u"order=\"FX\""_s) << QString() << u"第 3 行：数据源有误"_s;
    QTest::newRow("statement") << QString(document).replace(u"left join"_s, u"left"_s) << QString()
                               << u"第 3 行：数据源有误"_s;
    QTest::newRow("no place") << QString(document).replace(u"{selection}"_s, u"1=1"_s) << u"{TB1.F1}='x'"_s
                              << u"第 3 行：语句里没有 {selection}"_s;
    QTest::newRow("selection") << document << u"{TB1}='x'"_s << u"选择公式"_s;
}

void PrintTest::faultsAreToldAndTheCallerGoesOn()
{
    QFETCH(QString, text);
    QFETCH(QString, selection);
    QFETCH(QString, fault);
    if (!text.isEmpty())
        layout(text);
    boxes_->expectError(fault);
    preview({u"fORM.RPT"_s, {}, selection});
    QCOMPARE(Form::loaded(u"Prnt"_s), nullptr);
}

void PrintTest::pagesZoomAndSearch()
{
    layout(staged);
    stage(100); // 42 rows on a page
    previewed([&](Prnt& form) {
        QCOMPARE(openPreview()->pageCount(), 3);
        QCOMPARE(form.LabPages->text(), u"/ 3 页"_s);
        QCOMPARE(form.focusWidget(), form.View);
        QVERIFY(!form.CmdPrev->isEnabled());
        const auto pageAfter = [&](Qt::Key key) {
            QTest::keyClick(&form, key);
            return form.TxtPage->text();
        };
        QCOMPARE(pageAfter(Qt::Key_PageDown), u"2"_s);
        form.CmdNext->click();
        QCOMPARE(form.TxtPage->text(), u"3"_s);
        QVERIFY(!form.CmdNext->isEnabled() && form.CmdFirst->isEnabled());
        QCOMPARE(pageAfter(Qt::Key_PageDown), u"3"_s);
        for (const auto& [typed, page] : {std::pair(u"2"_s, 2), {u"77"_s, 3}, {u"0"_s, 3}, {u"1"_s, 1}}) {
            form.TxtPage->setText(typed);
            QTest::keyClick(form.TxtPage, Qt::Key_Return);
            QCOMPARE(form.View->page(), page);
        }

        // Once round the report, forward and back.
        form.TxtFind->setText(u"09"_s);
        QStringList hits;
        for (int i = 0; i < 12; ++i) {
            form.findNext();
            hits += plainText(form.View->page());
        }
        QCOMPARE(hits.join(u' '), u"1 3 3 3 3 3 3 3 3 3 3 1"_s);
        QVERIFY(!form.View->marked().isEmpty());
        form.findPrevious();
        QCOMPARE(form.View->page(), 3);
        form.TxtFind->setText(u"没有的"_s);
        form.findNext();
        QCOMPARE(form.LabFind->text(), u"没有找到"_s);
        QVERIFY(form.View->marked().isEmpty());

        // A fitted page follows the window, a percentage does not.
        form.CmdPage->click();
        const int fitted = form.View->percent();
        form.resize(form.width(), form.height() - 200);
        QCoreApplication::processEvents();
        QVERIFY(form.View->percent() < fitted);
        QCOMPARE(form.CmbZoom->currentText(), plainText(form.View->percent()) + u'%');
        QTest::keyClick(&form, Qt::Key_Plus, Qt::ControlModifier);
        QVERIFY(!form.CmdPage->isChecked());
        form.CmbZoom->setEditText(u"130"_s);
        QTest::keyClick(form.CmbZoom->lineEdit(), Qt::Key_Return);
        QCOMPARE(form.View->percent(), 130);
    });
    previewed([](Prnt& form) { QCOMPARE(form.CmbZoom->currentText(), u"130%"_s); }); // kept for the operator
    previewed([](Prnt& form) { QTest::keyClick(form.View, Qt::Key_Escape); });
}

void PrintTest::printsOnTheChosenPrinter()
{
    layout(staged);
    stage(100);
    PrintOrder order;
    order.formulas = {formula(u"regname", u"老'王\"公司'")};
    previewed(
        [&](Prnt& form) {
            QVERIFY(!form.L->isVisible());
            form.Menu_prnt();
            QCOMPARE(Form::loaded(u"Prnt"_s), nullptr); // straight back to the caller
        },
        order);
    const QStringList pages = pdfPages(file(u"paper.pdf"_s));
    QCOMPARE(pages.size(), 3);
    QVERIFY2(pages[2].contains(u"老'王\"公司'"_s) && pages[2].contains(u"合计：50"_s), qPrintable(pages[2]));
    QVERIFY(!pages.join(u' ').contains(u"-0.00"_s) && pages[0].contains(u"0.00"_s));

    previewed([&](Prnt& form) {
        boxes_->expectPrint(u"打印设置"_s, std::nullopt);
        QFile::remove(file(u"paper.pdf"_s));
        form.Menu_set();
        QVERIFY(!QFile::exists(file(u"paper.pdf"_s)));
        boxes_->expectPrint(u"打印设置"_s, PrintJob{u"LQ-630K"_s, {}, 1, true, 2, 2, {148, 210}});
        form.Menu_set();
        QCOMPARE(boxes_->lastPrint.pages, 3);
        QCOMPARE(boxes_->lastPrint.paper, QSizeF(210, 297));
        const QStringList some = pdfPages(file(u"paper.pdf"_s));
        QCOMPARE(some.size(), 1);
        QVERIFY(some[0].contains(u"043 "_s) && !some[0].contains(u"085 "_s)); // its second page, whole on smaller paper
    });
}

void PrintTest::withoutPrinter()
{
    setPrinterHost(std::make_unique<NoPrinter>());
    layout(staged);
    stage(1);
    previewed([&](Prnt& form) {
        QVERIFY(form.L->isVisible());
        QCOMPARE(form.L->text(), u"对不起，您的电脑没有安装打印机!"_s);
        boxes_->expectPrint(u"打印设置"_s, PrintJob{});
        boxes_->expect(u"没有可用的打印机。请检查打印机是否已安装并打开。"_s);
        form.Menu_set();
        form.Menu_prnt();
        QCOMPARE(Form::loaded(u"Prnt"_s), nullptr);
    });
}

void PrintTest::exportsWhatIsOnPaper()
{
    layout(staged);
    stage(2);
    PrintOrder order;
    order.formulas = {formula(u"regname", u"甲公司"), formula(u"head", u"本期")};
    previewed(
        [&](Prnt& form) {
            const TableContent table = form.Cry.report()->table();
            QCOMPARE(table.heading.join(u'|'), u"甲公司|列表"_s);
            QCOMPARE(table.captions.join(u'|'), u"编码|数量|本期 金额"_s);
            QCOMPARE(table.numeric, QList<bool>({false, true, true}));
            QCOMPARE(table.rows,
                     QList<QStringList>(
                         {{u"01"_s, u"0.5"_s, u"0.00"_s}, {u"02"_s, u"0.5"_s, u"0.00"_s}, {u"合计"_s, u"1"_s, {}}}));

            boxes_->expectFile(u"导出PDF"_s, file(u"list.pdf"_s));
            form.Menu_pdf();
            QVERIFY(boxes_->lastFile.fileName.endsWith(u"/流水帐 "_s + todayText() + u".pdf"));
            QVERIFY(pdfPages(file(u"list.pdf"_s)).value(0).contains(u"甲公司"_s));
            boxes_->expectFile(u"导出Excel"_s, file(u"list.xlsx"_s));
            form.Menu_xls();
            QFile workbook(file(u"list.xlsx"_s));
            QVERIFY(workbook.open(QIODevice::ReadOnly) && workbook.read(2) == "PK");

            // An old file is only replaced when the operator says so.
            boxes_->expectFile(u"导出PDF"_s, file(u"list.xlsx"_s));
            boxes_->expect(u"文件“list.xlsx”已经存在，要替换它吗？"_s, Answer::No);
            form.Menu_pdf();
            boxes_->expectFile(u"导出PDF"_s, file(u"nowhere/list.pdf"_s));
            boxes_->expectStart(u"文件 "_s + file(u"nowhere/list.pdf"_s));
            form.Menu_pdf();
        },
        order);
}

QTEST_MAIN(PrintTest)
#include "print_test.moc"
