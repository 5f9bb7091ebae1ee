#include "ledger/literal.h"
#include "ledger_fixture.h"
#include "platform/base/capitals.h"
#include "platform/base/clock.h"
#include "platform/report/report.h"
#include "reports/report_rows.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTest>

/// The layouts that come with the program, each on rows as its print command stages them. With LAYOUT_PDFS=folder the
/// pages are written there, to be looked at.

namespace {

constexpr int stagedRows = 130;

/// How a print command fills its table: one sign a column.
/// n row number, 1 always '1', b document number, c goods code, t text, u unit, d date, g category (40 rows each),
/// . empty;
/// q p m quantity, price, amount as texts; Q P M as numbers
struct Staging
{
    const char* file;
    const char* table; ///< of a layout that reads a document itself, that document's header
    const char* columns;
    const char* signs;
    const char* title = "Cpt"; ///< the formula that gives it; "" the layout has its own
};

constexpr const char* flowColumns = "F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,M1,M2,V1,V2,V3,V4,V5,V6,V7";
constexpr const char* flowSigns = "nbdtttcttut.......PQMQMQM";
constexpr const char* statisticsColumns = "F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,V1,V2";
constexpr const char* eight = "F0,F1,F2,F3,F4,F5,F6,F7,F8";

// clang-format off
constexpr Staging stagings[] = {
    {"Prnta12.rpt", "PrTA1", "F1,F2,F3,F4,F5,F6,F7", "ctttttt"},
    {"PrnTA3.rpt", "PrTA1", "F1,F2", "ct"},
    {"PrnTa4.rpt", "PrTA1", "F1,F2,F3,F4,F5,F6,F7", "cttutpt"},
    {"PrnTE1.rpt", "PrTA1", "F1,F2", "ct", ""},
    {"prntb10.rpt", "TB1", "", "", ""},
    {"prntb100.rpt", "TB1", "", "", ""},
    {"prntb30.rpt", "TB3", "", "", ""},
    {"prntd10.rpt", "TD1", "", "", ""},
    {"prntd30.rpt", "TD3", "", "", ""},
    {"prnTC2.rpt", "TC2", "", "", ""},
    {"Pdan.rpt", "Plist", "F0,F1,F6,F7,F8,F9,V1,V2", "ncqpmtQP"},
    {"Pdan10.rpt", "Plist", eight, "ncttuqpmt"},
    {"Prntc1.rpt", "PRTc1", eight, "1cttutQPM", ""},
    {"Plist.rpt", "Plist", statisticsColumns, "nbdtttcttttuqpmtQM"},
    {"Psum.rpt", "Plist", statisticsColumns, "nbdtttcttgtuqpmtQM"},
    {"Prntlst.rpt", "PRTB2", eight, "1bdtctQPM"},
    {"Prntc3.rpt", "PRTB2", eight, "1bcttuQPM"},
    {"prntc15.rpt", "Plist", flowColumns, flowSigns},
    {"Plstsl.rpt", "Plist", flowColumns, flowSigns},
    {"Plstje.rpt", "Plist", flowColumns, flowSigns},
    {"pjxc01.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10", "nctpuqqqqqq"},
    {"Pjxc02.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13", "nctpqmqmqmqmgt"},
    {"Ptijian.rpt", "Plist", "F0,F1,F2,F3,F4", "ncttt", ""},
    {"Pkapian.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6,V1,V2,V3", "nductttQQQ"},
    {"Pbuhuo.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,V1,V2,V3,V4,V5", "ncttuttdqqPPPPP"},
    {"Ptukc.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6", "nctqqmt", ""},
    {"Ptujc.rpt", "Plist", "F0,F1,F2,F3,F4,F5,F6", "ncqqqqq", ""},
};
// clang-format on

QString codeOf(int row)
{
    return u"HP-"_s + Format(row, u"0000");
}

/// What the fields of a row hold: short, or as long as anybody may type them.
struct Content
{
    QString name = u"不锈钢内六角螺栓"_s;
    QString code; ///< behind each goods code
    QString remark = u"急用"_s;
    QString quantity = u"1.5"_s;
    QString price = u"2.00"_s;
    QString amount = u"3.00"_s;
    QString number = u"RK0412310001"_s;
    QString unit = u"公斤"_s;

    QString literal(char sign, int row) const
    {
        switch (sign) {
        case 'n':
            return sqlText(Format(row, u"#00000"));
        case '1':
            return sqlText(u"1");
        case 'c':
            return sqlText(codeOf(row) + code);
        case 't':
            return sqlText(name);
        case 'b':
            return sqlText(number);
        case 'u':
            return sqlText(unit);
        case 'd':
            return sqlText(u"2004-12-31");
        case 'g':
            return sqlText(name.isEmpty() ? u"NoFound"_s : Format(row / 40, u"000"));
        case 'q':
            return sqlText(quantity);
        case 'p':
            return sqlText(price);
        case 'm':
            return sqlText(amount);
        case 'Q':
            return quantity;
        case 'P':
            return price;
        case 'M':
            return amount;
        }
        return u"''"_s;
    }
};

const Content longest{u"外六角法兰面螺栓（镀锌 8.8级）GB/T5789-1986 M16×120 适用于桥梁钢结构与重型机械联接部位的紧固"_s,
                      u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s,
                      u"本批货物由供方自行运输到指定仓库，数量短缺或质量不符时应在三日内书面提出，逾期视为验收合格"_s,
                      u"12345678.125"_s,
                      u"1234567.12345678"_s,
                      u"1234567890.12"_s,
                      u"RK04123100010000000000025"_s,
                      u"公斤/千件"_s};

/// The first rows of others.
class FirstRows : public RowSource
{
public:
    FirstRows(std::shared_ptr<const RowSource> rows, qsizetype count)
        : rows_(std::move(rows))
        , count_(count)
    {}
    QStringList columns() const override { return rows_->columns(); }
    qsizetype rowCount() const override { return count_; }
    Value value(qsizetype row, int column) const override { return rows_->value(row, column); }

private:
    std::shared_ptr<const RowSource> rows_;
    qsizetype count_;
};

QHash<QString, QString> formulas()
{
    QHash<QString, QString> texts{{u"Cpt"_s, u"某某单"_s},
                                  {u"regname"_s, u"恒仓五金'机电'公司"_s},
                                  {u"regaddr"_s, u"地址：青岛市四方区"_s},
                                  {u"regtel"_s, u"电话：0532-3760001"_s},
                                  {u"danNo"_s, u"CK0401050001"_s},
                                  {u"rq"_s, u"2004-1-5"_s},
                                  {u"gys"_s, u"出货单位：一车间"_s},
                                  {u"sumje"_s, u"1680.32"_s},
                                  {u"sumsl"_s, u"15"_s},
                                  {u"kh"_s, u"往来单位：所有单位"_s},
                                  {u"LB"_s, u"货品类别：所有类别"_s},
                                  {u"a"_s, u"上期结存"_s},
                                  {u"b"_s, u"本期入库"_s},
                                  {u"c"_s, u"本期出库"_s},
                                  {u"d"_s, u"本期结存"_s}};
    for (int i = 1; i <= 8; ++i)
        texts.insert(u"s%1"_s.arg(i), u"77%1.50"_s.arg(i));
    return texts;
}

} // namespace

class LayoutsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setClock(QDateTime(QDate(2004, 1, 5), QTime(9, 0))); }
    void allAreTested();
    void columnsStandUnderTheirCaptions_data() { eachLayout(); }
    void columnsStandUnderTheirCaptions();
    void breaksIntoPages_data() { eachLayout(); }
    void breaksIntoPages();
    void showsTotals_data() { eachLayout(); }
    void showsTotals();
    void keepsLongTextsWhole_data() { eachLayout(); }
    void keepsLongTextsWhole();
    void sparesWhatIsMissing_data() { eachLayout(); }
    void sparesWhatIsMissing();
    void noteReadsWellInItsPdf();

private:
    static void eachLayout();
    ReportLayout layoutOf(const Staging& staging);
    /// The rows that the layout reads from a ledger that was filled so.
    std::shared_ptr<const RowSource> rowsOf(const Staging& staging, const ReportLayout& layout, const Content& content);
    static int fullPage(const ReportLayout& layout, const std::shared_ptr<const RowSource>& rows);
    static void look(const Report& report, const Staging& staging, const QString& which);
};

void LayoutsTest::eachLayout()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(stagings)); ++i)
        QTest::newRow(stagings[i].file) << i;
}

ReportLayout LayoutsTest::layoutOf(const Staging& staging)
{
    const auto read = readLayout(QStringLiteral(LAYOUTS "/") + QString::fromLatin1(staging.file));
    if (const auto* fault = std::get_if<LayoutFault>(&read))
        qFatal("%s", qPrintable(fault->text()));
    return std::get<ReportLayout>(read);
}

std::shared_ptr<const RowSource> LayoutsTest::rowsOf(const Staging& staging, const ReportLayout& layout,
                                                     const Content& content)
{
    LedgerFixture ledger;
    const QString table = QString::fromLatin1(staging.table);
    const bool document = staging.columns[0] == 0;
    const bool count = table == u"TC2";
    std::optional<ReportSelection> selection;
    {
        WriteRun run(ledger.second());
        const QString partner = sqlTexts({u"U1"_s, content.name, u"四方区"_s + content.name, u"0532-3760001"_s});
        if (document) {
            selection = ReportSelection{table, u"F1"_s, u"RK'1"_s};
            ledger.run(u"insert into TA1 (F1,F2,F3,F4) values (%1)"_s.arg(partner));
            ledger.run(u"insert into TA2 (F1,F2,F3,F4) values (%1)"_s.arg(partner));
            for (const QString& number : {u"RK'1"_s, u"other"_s}) {
                const QString who = count ? content.name : u"U1"_s;
                ledger.run(u"insert into %1 (F1,F2,F3,F5,F6,F9,F10) values (%2,%3,0,%4)"_s.arg(
                    table, sqlTexts({number, u"2004-1-5"_s, who, u"张三"_s}), sqlText(u"李四"),
                    sqlText(content.remark)));
            }
        }
        for (int row = 1; row <= stagedRows; ++row) {
            const auto of = [&](char sign) { return content.literal(sign, row); };
            ledger.run(u"insert into TA4 (F1,F2,F4,F5,F7) values (%1,%2,%3,%2,98765)"_s.arg(of('c'), of('t'), of('u')));
            if (count) {
                ledger.run(u"insert into TC21 (F0,F1,F5,F6,F7,F8) values ('RK''1',%1,0,%2,%3,%4)"_s.arg(
                    of('c'), of('Q'), of('P'), sqlText(content.remark)));
            } else if (document) {
                ledger.run(u"insert into %1 (F0,F1,F6,F7,F8) values ('RK''1',%2,%3,%4,%5)"_s.arg(
                    table + u'1', of('c'), of('Q'), of('P'), sqlText(content.remark)));
            } else {
                QStringList values;
                for (const char* sign = staging.signs; *sign != 0; ++sign)
                    values += of(*sign);
                ledger.run(u"insert into %1 (%2) values (%3)"_s.arg(table, QString::fromLatin1(staging.columns),
                                                                    values.join(u',')));
            }
        }
    }
    const auto read = readReportRows(ledger.path(), layout, selection);
    if (const auto* fault = std::get_if<LayoutFault>(&read))
        qFatal("%s", qPrintable(fault->text()));
    const auto rows = std::get<std::shared_ptr<const RowSource>>(read);
    if (const auto fault = missingColumn(layout, rows->columns()))
        qFatal("%s", qPrintable(fault->text()));
    return rows;
}

/// The most rows that one page holds together with its totals.
int LayoutsTest::fullPage(const ReportLayout& layout, const std::shared_ptr<const RowSource>& rows)
{
    int count = 1;
    while (count < stagedRows && Report(layout, std::make_shared<FirstRows>(rows, count + 1), {}).pageCount() == 1)
        ++count;
    return count;
}

void LayoutsTest::look(const Report& report, const Staging& staging, const QString& which)
{
    const QString folder = qEnvironmentVariable("LAYOUT_PDFS");
    if (!folder.isEmpty())
        QVERIFY(report.toPdf(QDir(folder).filePath(QString::fromLatin1(staging.file) + u'-' + which + u".pdf"_s)));
}

void LayoutsTest::allAreTested()
{
    QStringList tested;
    for (const Staging& staging : stagings)
        tested += QString::fromLatin1(staging.file);
    tested.sort();
    QStringList found = QDir(QStringLiteral(LAYOUTS)).entryList({u"*"_s}, QDir::Files);
    found.sort();
    QCOMPARE(found, tested);
}

/// Each column of the rows has its caption above it, and no two texts of a band share a place.
void LayoutsTest::columnsStandUnderTheirCaptions()
{
    QFETCH(int, index);
    const ReportLayout layout = layoutOf(stagings[index]);
    for (const ReportItem& item : layout.detail.items) {
        const auto above = [&](const ReportItem& caption) {
            return caption.frame && caption.place.left() == item.place.left() &&
                   caption.place.right() == item.place.right() && caption.place.bottom() == layout.pageHeader.height;
        };
        QVERIFY2(std::any_of(layout.pageHeader.items.begin(), layout.pageHeader.items.end(), above),
                 qPrintable(item.name));
    }
    QList<const ReportBand*> bands{&layout.pageHeader, &layout.detail, &layout.summary, &layout.pageFooter};
    for (const ReportGroup& group : layout.groups)
        bands += {&group.header, &group.footer};
    for (const ReportBand* band : std::as_const(bands))
        for (auto one = band->items.begin(); one != band->items.end(); ++one)
            for (auto other = one + 1; other != band->items.end(); ++other) {
                const QRectF shared = one->place.intersected(other->place);
                QVERIFY2(shared.width() < 0.1 || shared.height() < 0.1,
                         qPrintable(u"lines %1 and %2"_s.arg(one->line).arg(other->line)));
            }
}

/// A page is full, runs over, goes on: each row prints once, each page has the captions and its number.
void LayoutsTest::breaksIntoPages()
{
    QFETCH(int, index);
    const Staging& staging = stagings[index];
    const ReportLayout layout = layoutOf(staging);
    const auto rows = rowsOf(staging, layout, {});
    QCOMPARE(rows->rowCount(), stagedRows);
    const int full = fullPage(layout, rows);
    QVERIFY2(full >= 8 && full < 60, qPrintable(QString::number(full)));
    const std::pair<int, QString> cases[]{{1, u"1 row"_s}, {full, u"full"_s}, {full + 1, u"over"_s}, {0, u"3 pages"_s}};
    for (const auto& [wanted, which] : cases) {
        int count = wanted;
        for (count = std::max(count, 1); wanted == 0 && count < stagedRows; ++count)
            if (Report(layout, std::make_shared<FirstRows>(rows, count), {}).pageCount() == 3)
                break;
        const Report report(layout, std::make_shared<FirstRows>(rows, count), formulas());
        look(report, staging, which);
        const int pages = which == u"over"_s ? 2 : which == u"3 pages"_s ? 3 : 1;
        QCOMPARE(report.pageCount(), pages);
        QStringList all;
        for (int page = 1; page <= pages; ++page) {
            const QStringList texts = report.pageTexts(page);
            QVERIFY2(texts.contains(u"第 %1 页 共 %2 页"_s.arg(page).arg(pages)), qPrintable(texts.join(u'\n')));
            for (const ReportItem& item : layout.pageHeader.items)
                if (item.kind == ReportItem::Kind::Text) // the documents in the ledger have an auditor
                    QCOMPARE(texts.contains(item.text), item.unless != u"审核人");
            if (staging.title[0] != 0)
                QVERIFY(texts.contains(formulas().value(u"Cpt"_s)));
            QVERIFY2(texts.filter(u"HP-"_s).size() > 0, "totals stand on a page of their own");
            all += texts;
        }
        for (int row = 1; row <= stagedRows; ++row)
            QCOMPARE(all.count(codeOf(row)), row <= count ? 1 : 0);
        QVERIFY(!all.contains(u"98765"_s) && !all.contains(u"98765.00"_s)); // the cost of the goods is nobody's
    }
}

void LayoutsTest::showsTotals()
{
    QFETCH(int, index);
    const Staging& staging = stagings[index];
    const ReportLayout layout = layoutOf(staging);
    Content content;
    content.quantity = u"1.005"_s;
    content.price = u"0.33"_s;
    content.amount = u"0.33"_s;
    const auto rows = rowsOf(staging, layout, content);
    const Report report(layout, std::make_shared<FirstRows>(rows, 120), formulas());
    const QString texts = u'\n' + report.pageTexts(report.pageCount()).join(u'\n') + u'\n';
    const QString signs = QString::fromLatin1(staging.signs);
    const bool document = signs.isEmpty();
    QStringList expected;
    if (signs.contains(u'Q') || document)
        expected += u"120.6"_s; // 120 times 1.005
    if (document)               // 120 times 0.33, as the lines show: each to the fen
        expected += {u"39.60"_s, capitals(39.6)};
    else if (signs.contains(u'M') && layout.file != u"Plstsl.rpt")
        expected += u"39.60"_s;
    if (layout.file.startsWith(u"Pdan"))
        expected += {u"￥1680.32"_s, u"壹仟陆佰捌拾元零叁角贰分"_s};
    if (layout.file.startsWith(u"pjxc"_s, Qt::CaseInsensitive))
        for (int i = 1; i <= (layout.file == u"pjxc01.rpt"_s ? 6 : 8); ++i)
            expected += u"77%1.50"_s.arg(i);
    for (const QString& text : std::as_const(expected))
        QVERIFY2(texts.contains(text), qPrintable(text + u" is not among"_s + texts));
}

void LayoutsTest::keepsLongTextsWhole()
{
    QFETCH(int, index);
    const Staging& staging = stagings[index];
    const ReportLayout layout = layoutOf(staging);
    const auto rows = std::make_shared<FirstRows>(rowsOf(staging, layout, longest), 30);
    QHash<QString, QString> texts = formulas();
    for (const QString& name : {u"regname"_s, u"gys"_s, u"regaddr"_s, u"regtel"_s, u"LB"_s, u"kh"_s})
        texts[name] = longest.name;
    texts[u"danNo"_s] = u"CK04010500010000000000001"_s;
    const Report report(layout, rows, texts);
    look(report, staging, u"long"_s);
    QSet<QString> codes;
    for (int page = 1; page <= report.pageCount(); ++page) {
        const QStringList found = report.pageTexts(page);
        for (const QString& text : found)
            if (text.endsWith(longest.code))
                codes += text;
    }
    QCOMPARE(codes.size(), 30);
    QVERIFY(report.pageCount() <= 30);
}

/// Formulas that a form doesn't pass and fields that hold nothing print nothing, and a zero has no sign.
void LayoutsTest::sparesWhatIsMissing()
{
    QFETCH(int, index);
    const Staging& staging = stagings[index];
    const ReportLayout layout = layoutOf(staging);
    const Content zero{u""_s, u""_s, u""_s, u"-0"_s, u"-0.00"_s, u"-0.00"_s};
    const Report report(layout, std::make_shared<FirstRows>(rowsOf(staging, layout, zero), 3), {});
    look(report, staging, u"empty"_s);
    const QStringList texts = report.pageTexts(1);
    for (const QString& text : texts) {
        QVERIFY2(!text.contains(u'{') && (!text.contains(u"NoFound"_s) || layout.file == u"Psum.rpt"_s),
                 qPrintable(text));
        QVERIFY2(!text.contains(u"-0"_s) || text.startsWith(u"HP-0"_s) || text.contains(u"2004"_s), qPrintable(text));
        QVERIFY2(!text.contains(u"零元"_s), qPrintable(text));
    }
    if (layout.file == u"Pdan.rpt"_s)
        QVERIFY(texts.last().startsWith(u"第"_s) && texts.at(texts.size() - 2).startsWith(u"制单人："_s));
}

void LayoutsTest::noteReadsWellInItsPdf()
{
    const Staging& staging = *std::find_if(std::begin(stagings), std::end(stagings),
                                           [](const Staging& one) { return qstrcmp(one.file, "prntd10.rpt") == 0; });
    const ReportLayout layout = layoutOf(staging);
    const Report report(layout, std::make_shared<FirstRows>(rowsOf(staging, layout, {}), 27), formulas());
    QTemporaryDir folder;
    const QString pdf = folder.filePath(u"出库单.pdf"_s);
    QVERIFY(report.toPdf(pdf));
    QProcess reader;
    reader.start(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
    QVERIFY(reader.waitForFinished());
    const QStringList pages = QString::fromUtf8(reader.readAllStandardOutput()).remove(u' ').split(u'\f');
    QCOMPARE(pages.size(), report.pageCount() + 1);
    for (const QString& text :
         {u"货品出库单"_s, u"出货单位：不锈钢内六角螺栓"_s, u"单号：RK'1"_s, u"日期：2004年1月5日"_s, u"HP-0001"_s,
          u"恒仓五金'机电'公司"_s, u"制单人：张三"_s, u"第1页共3页"_s})
        QVERIFY2(pages[0].contains(text), qPrintable(text + u" is not in "_s + pages[0]));
    for (const QString& text : {u"捌拾壹元整"_s, u"￥81.00"_s, u"40.5"_s, u"附注：急用"_s, u"第3页共3页"_s})
        QVERIFY2(pages[2].contains(text), qPrintable(text + u" is not in "_s + pages[2]));
}

QTEST_MAIN(LayoutsTest)
#include "layouts_test.moc"
