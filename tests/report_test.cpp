#include "platform/base/capitals.h"
#include "platform/report/report.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A delivery note on the half form: 10 rows of 6 mm between heads and signatures.
const QString note = uR"(<report title="出库单" size="9">
  <paper size="241x139.7" left="12" right="12" top="8" bottom="8"/>
  <pageheader height="32">
    <formula name="regname" x="0" y="0" w="217" h="8" size="15" bold="yes" align="center"/>
    <text x="0" y="9" w="217" h="7" size="12" align="center">货品出库单</text>
    <formula name="gys" x="0" y="18" w="150" h="6"/>
    <field name="F2" x="157" y="18" w="60" h="6" align="right" format="longdate" before="日期："/>
    <text x="0" y="26" w="15" h="6" frame="yes" align="center">序号</text>
    <text x="15" y="26" w="112" h="6" frame="yes" align="center">货品名称</text>
    <text x="127" y="26" w="45" h="6" frame="yes" align="center">数量</text>
    <text x="172" y="26" w="45" h="6" frame="yes" align="center">金额</text>
  </pageheader>
  <detail height="6" rows="10">
    <rownumber x="0" w="15" frame="yes" align="center"/>
    <field name="F1" x="15" w="112" frame="yes"/>
    <field name="F6" x="127" w="45" frame="yes" align="right"/>
    <field name="F8" x="172" w="45" frame="yes" align="right" format="#0.00"/>
  </detail>
  <summary height="7">
    <sum field="F8" x="0" w="150" h="7" format="capitals" before="合计（大写）："/>
    <sum field="F8" x="150" w="67" h="7" format="#0.00" align="right" before="合计："/>
  </summary>
  <pagefooter height="12">
    <text x="0" y="1" w="150" h="6">制单人：　　　　审核人：　　　　经手人：</text>
    <sum field="F8" over="page" x="150" y="1" w="67" h="6" format="#0.00" align="right" before="本页小计："/>
    <page x="0" y="6" w="217" h="6" align="center">第 {page} 页 共 {pages} 页</page>
  </pagefooter>
</report>)"_s;

/// A list on A4 with two groups; a page holds 44 rows of 6 mm besides the head.
const QString list = uR"(<report title="流水帐">
  <paper size="A4" left="10" right="10" top="10" bottom="10"/>
  <pageheader height="7"><text x="0" w="190">流水帐</text></pageheader>
  <group by="D"><header height="6" repeat="yes"><field name="D" x="0" w="60" before="单位："/></header>
    <footer height="6"><sum field="N" over="group" x="0" w="100" before="小计："/>
      <count over="group" x="100" w="60" after="笔"/></footer></group>
  <detail height="6">
    <field name="D" x="0" w="60" frame="yes"/>
    <field name="T" x="60" w="40" frame="yes"/>
    <field name="N" x="100" w="40" frame="yes" blankzero="yes" format="#0.00"/>
  </detail>
  <summary height="6"><sum field="N" x="0" w="100" before="总计："/></summary>
</report>)"_s;

ReportLayout layoutOf(const QString& text)
{
    const auto read = parseLayout(text, u"form.rpt"_s);
    if (const auto* fault = std::get_if<LayoutFault>(&read))
        qFatal("%s", qPrintable(fault->text()));
    return std::get<ReportLayout>(read);
}

std::shared_ptr<RowList> noteRows(int count, const QString& name = u"不锈钢螺栓 M8×12"_s)
{
    QList<QList<Value>> rows;
    for (int i = 0; i < count; ++i)
        rows.append({name, u"2004-1-5"_s, u"-0.00"_s, 10.25});
    return std::make_shared<RowList>(QStringList{u"f1"_s, u"F2"_s, u"F6"_s, u"F8"_s}, rows);
}

const QHash<QString, QString> noteTexts{{u"RegName"_s, u"恒仓'宁\"公司"_s}, {u"gys"_s, u"出货单位：甲"_s}};

std::shared_ptr<RowList> listRows(const QList<QList<Value>>& rows)
{
    return std::make_shared<RowList>(QStringList{u"D"_s, u"T"_s, u"N"_s}, rows);
}

/// Where ink is, in tenths of a millimetre.
QRect inkOf(const Report& report, int page)
{
    QImage image((report.paperSize() * 10).toSize(), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    report.draw(painter, page);
    painter.end();
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 128)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace

class ReportTest : public QObject
{
    Q_OBJECT

private slots:
    void amountsInCapitals_data();
    void amountsInCapitals();
    void faultsNameFileAndLine_data();
    void faultsNameFileAndLine();
    void columnsAreChecked();
    void fixedFormHasItsRows_data();
    void fixedFormHasItsRows();
    void listBreaksBySpace_data();
    void listBreaksBySpace();
    void groupsAndSums();
    void longTextsPushTheirRow();
    void longTextsShrinkInAFixedRow();
    void blankRowsFillThePage();
    void offsetMovesThePage();
    void picturesFitTheirPlace();
    void pdfIsWrittenWhole();
};

void ReportTest::amountsInCapitals_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("text");
    const auto row = [](double amount, const QString& text) { QTest::addRow("%.2f", amount) << amount << text; };
    row(0, u"零元整"_s);
    row(-0.004, u"零元整"_s);
    row(0.05, u"伍分"_s);
    row(0.5, u"伍角"_s);
    row(10, u"壹拾元整"_s);
    row(1409.5, u"壹仟肆佰零玖元伍角"_s);
    row(6007.14, u"陆仟零柒元壹角肆分"_s);
    row(1680.32, u"壹仟陆佰捌拾元零叁角贰分"_s);
    row(107000.53, u"壹拾万柒仟元零伍角叁分"_s);
    row(16409.02, u"壹万陆仟肆佰零玖元零贰分"_s);
    row(325.04, u"叁佰贰拾伍元零肆分"_s);
    row(100000001, u"壹亿零壹元整"_s);
    row(1000007000, u"壹拾亿零柒仟元整"_s);
    row(1000000000000, u"壹万亿元整"_s);
    row(20030, u"贰万零叁拾元整"_s);
    row(-3.05, u"负叁元零伍分"_s);
    row(2.675, u"贰元陆角捌分"_s);
}

void ReportTest::amountsInCapitals()
{
    QFETCH(double, amount);
    QTEST(capitals(amount), "text");
}

void ReportTest::faultsNameFileAndLine_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("part");
    QTest::newRow("broken") << u"</pageheader>"_s << u"</pagehead>"_s << 12 << u"XML 语法有误"_s;
    QTest::newRow("element") << u"<rownumber"_s << u"<rowno"_s << 14 << u"不认识<rowno>"_s;
    QTest::newRow("attribute") << u"align=\"right\" format=\"longdate\""_s << u"aline=\"right\""_s << 7
                               << u"不认识属性 aline"_s;
    QTest::newRow("number") << u"w=\"112\" frame=\"yes\"/>"_s << u"w=\"1l2\"/>"_s << 15 << u"“1l2”"_s;
    QTest::newRow("missing") << u"field=\"F8\" x=\"0\""_s << u"x=\"0\""_s << 20 << u"缺少属性 field"_s;
    QTest::newRow("mask") << u"x=\"172\" w=\"45\" frame=\"yes\" align=\"right\" format=\"#0.00\""_s
                          << u"x=\"172\" w=\"45\" format=\"#,##0\""_s << 17 << u"#,##0"_s;
    QTest::newRow("beyond the margin") << u"x=\"172\" w=\"45\" frame"_s << u"x=\"172\" w=\"46\" frame"_s << 17
                                       << u"超出右边距"_s;
    QTest::newRow("beyond the band") << u"y=\"6\" w=\"217\" h=\"6\""_s << u"y=\"7\" w=\"217\" h=\"6\""_s << 26
                                     << u"超出带区"_s;
    QTest::newRow("too many rows") << u"rows=\"10\""_s << u"rows=\"20\""_s << 13 << u"一页放不下"_s;
    QTest::newRow("paper") << u"241x139.7"_s << u"B5"_s << 2 << u"241x279.4"_s;
    QTest::newRow("no group") << u"over=\"page\""_s << u"over=\"group\""_s << 25 << u"没有<group>"_s;
}

void ReportTest::faultsNameFileAndLine()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, part);
    QString text = note;
    QVERIFY(text.contains(from));
    text.replace(from, to);
    const auto read = parseLayout(text, u"form.rpt"_s);
    const auto* fault = std::get_if<LayoutFault>(&read);
    QVERIFY(fault);
    QVERIFY2(fault->text().startsWith(u"报表文件 form.rpt 第 "_s), qPrintable(fault->text()));
    QVERIFY2(fault->message.contains(part), qPrintable(fault->text()));
    QTEST(int(fault->line), "line");
}

void ReportTest::columnsAreChecked()
{
    const ReportLayout layout = layoutOf(note);
    QVERIFY(!missingColumn(layout, {u"F1"_s, u"f2"_s, u"F6"_s, u"F8"_s}));
    const auto fault = missingColumn(layout, {u"F1"_s, u"F2"_s, u"F8"_s});
    QVERIFY(fault);
    QCOMPARE(fault->text(), u"报表文件 form.rpt 第 16 行：数据里没有列 F6。"_s);
    const auto absent = readLayout(u"/nowhere/x.rpt"_s);
    QVERIFY(std::holds_alternative<LayoutFault>(absent));
}

void ReportTest::fixedFormHasItsRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("pages");
    QTest::addColumn<QString>("lastPageSum");
    QTest::newRow("none") << 0 << 1 << u"本页小计：0.00"_s;
    QTest::newRow("one") << 1 << 1 << u"本页小计：10.25"_s;
    QTest::newRow("full") << 10 << 1 << u"本页小计：102.50"_s;
    QTest::newRow("one more") << 11 << 2 << u"本页小计：10.25"_s;
    QTest::newRow("three pages") << 30 << 3 << u"本页小计：102.50"_s;
}

void ReportTest::fixedFormHasItsRows()
{
    QFETCH(int, rows);
    QFETCH(int, pages);
    QFETCH(QString, lastPageSum);
    const Report report(layoutOf(note), noteRows(rows), noteTexts);
    QCOMPARE(report.pageCount(), pages);
    for (int page = 1; page <= pages; ++page) {
        const QStringList texts = report.pageTexts(page);
        QCOMPARE(texts.first(), u"恒仓'宁\"公司"_s);
        QVERIFY(texts.contains(u"第 %1 页 共 %2 页"_s.arg(page).arg(pages)));
        QVERIFY(!texts.join(u'|').contains(u"-0"_s));
        QCOMPARE(texts.contains(u"合计：%1"_s.arg(Format(rows * 10.25, u"0.00"))), page == pages);
        // The summary stands at the same place whatever the number of rows, so the ruling reaches as far down.
        QCOMPARE(inkOf(report, page), inkOf(report, pages));
    }
    const QStringList last = report.pageTexts(pages);
    QVERIFY2(last.contains(lastPageSum), qPrintable(last.join(u'|')));
    QVERIFY(last.contains(u"合计（大写）：%1"_s.arg(capitals(rows * 10.25))));
    if (rows > 0) {
        QVERIFY(last.contains(u"日期：2004年1月5日"_s));
        QVERIFY(last.contains(plainText(rows)));
    }
}

void ReportTest::listBreaksBySpace_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("pages");
    // 277 mm less the heads leave 44 rows; the footer and the summary need two rows' room.
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("full") << 42 << 1;
    QTest::newRow("one more") << 43 << 2;
    QTest::newRow("three pages") << 44 + 44 + 42 << 3;
}

void ReportTest::listBreaksBySpace()
{
    QFETCH(int, rows);
    QList<QList<Value>> data;
    for (int i = 0; i < rows; ++i)
        data.append({u"甲"_s, u"t%1"_s.arg(i), 0.1});
    const Report report(layoutOf(list), listRows(data), {});
    QTEST(report.pageCount(), "pages");
    QStringList all;
    for (int page = 1; page <= report.pageCount(); ++page) {
        const QStringList texts = report.pageTexts(page);
        QCOMPARE(texts.first(), u"流水帐"_s);
        all += texts;
        QVERIFY(inkOf(report, page).bottom() < 2872);
    }
    for (int i = 0; i < rows; ++i)
        QCOMPARE(all.count(u"t%1"_s.arg(i)), 1);
    QCOMPARE(all.last(), u"总计："_s + Format(rows * 0.1, u"0.##"));
}

void ReportTest::groupsAndSums()
{
    const Report report(
        layoutOf(list),
        listRows(
            {{u"甲"_s, u"a"_s, 0.1}, {u"甲"_s, u"b"_s, 0.2}, {u"乙"_s, u"c"_s, u"-0.3"_s}, {u"丙"_s, u"d"_s, 0.0}}),
        {});
    QCOMPARE(report.pageCount(), 1);
    const QStringList expected{u"流水帐"_s, u"单位：甲"_s, u"甲"_s,         u"a"_s,      u"0.10"_s,     u"甲"_s,
                               u"b"_s,      u"0.20"_s,     u"小计：0.3"_s,  u"2笔"_s,    u"单位：乙"_s, u"乙"_s,
                               u"c"_s,      u"-0.30"_s,    u"小计：-0.3"_s, u"1笔"_s,    u"单位：丙"_s, u"丙"_s,
                               u"d"_s,      u"小计：0"_s,  u"1笔"_s,        u"总计：0"_s};
    QCOMPARE(report.pageTexts(1), expected);
}

void ReportTest::longTextsPushTheirRow()
{
    const auto heightWith = [](const QString& text) {
        const Report report(layoutOf(list), listRows({{u"甲"_s, text, 1.0}}), {});
        return inkOf(report, 1).bottom();
    };
    const int plain = heightWith(u"短"_s);
    QVERIFY(heightWith(u"不锈钢内六角圆柱头螺栓镀锌加长加厚型"_s.repeated(2)) > plain + 40);
    QVERIFY(heightWith(u"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJ"_s) > plain + 15);
    // More than a page can hold shrinks instead of running off it.
    QVERIFY(heightWith(u"长"_s.repeated(3000)) < 2872);
}

void ReportTest::longTextsShrinkInAFixedRow()
{
    const QString longName = u"不锈钢内六角圆柱头螺栓镀锌加长加厚型"_s.repeated(8);
    const Report plain(layoutOf(note), noteRows(10), noteTexts);
    const Report report(layoutOf(note), noteRows(10, longName), noteTexts);
    QCOMPARE(report.pageCount(), 1);
    QCOMPARE(report.pageTexts(1).count(longName), 10);
    QCOMPARE(inkOf(report, 1), inkOf(plain, 1));
}

void ReportTest::blankRowsFillThePage()
{
    QString text = list;
    text.replace(u"<detail height=\"6\">"_s, u"<detail height=\"6\" fill=\"yes\">"_s);
    const QList<QList<Value>> rows{{u"甲"_s, u"a"_s, 1.0}};
    const Report filled(layoutOf(text), listRows(rows), {});
    QCOMPARE(filled.pageCount(), 1);
    QVERIFY(inkOf(filled, 1).bottom() > 2780);
    const Report plain(layoutOf(list), listRows(rows), {});
    QCOMPARE(filled.pageTexts(1), plain.pageTexts(1));
}

void ReportTest::offsetMovesThePage()
{
    QString text = note;
    text.replace(u"bottom=\"8\"/>"_s, u"bottom=\"8\" offsetx=\"1.5\" offsety=\"-0.7\"/>"_s);
    const Report plain(layoutOf(note), noteRows(3), noteTexts);
    const Report moved(layoutOf(text), noteRows(3), noteTexts);
    QCOMPARE(inkOf(moved, 1), inkOf(plain, 1).translated(15, -7));
}

void ReportTest::picturesFitTheirPlace()
{
    const ReportLayout layout = layoutOf(uR"(<report title="图"><paper size="A4"/>
      <detail height="50"><picture name="Chart" x="20" y="10" w="60" h="30"/></detail></report>)"_s);
    QImage black(90, 90, QImage::Format_RGB32);
    black.fill(Qt::black);
    const Report report(layout, listRows({{}}), {}, {}, {{u"chart"_s, black}});
    QCOMPARE(inkOf(report, 1), QRect(450, 200, 300, 300));
    QVERIFY(report.pageTexts(1).isEmpty() && report.table().captions.isEmpty());
    QVERIFY(inkOf(Report(layout, listRows({{}}), {}), 1).isEmpty()); // nothing given, nothing printed
}

void ReportTest::pdfIsWrittenWhole()
{
    const QTemporaryDir folder;
    const Report report(layoutOf(note), noteRows(21), noteTexts);
    const QString path = folder.filePath(u"出库单.pdf"_s);
    QVERIFY(report.toPdf(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray pdf = file.readAll();
    QVERIFY(pdf.startsWith("%PDF-") && pdf.trimmed().endsWith("%%EOF"));
    QVERIFY(pdf.contains("/Count 3"));
    QVERIFY(pdf.contains("683") && pdf.contains("396")); // 241 x 139.7 mm in points
    QVERIFY(!report.toPdf(folder.filePath(u"none/x.pdf"_s)));
}

QTEST_MAIN(ReportTest)
#include "report_test.moc"
