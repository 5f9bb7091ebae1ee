// Tables out of the program, workbooks into it: what survives the way, and that no file, however damaged, does more
// than be refused.

#include "platform/workbook/cell_text.h"
#include "platform/workbook/table_file.h"
#include "platform/workbook/workbook.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <zip.h>

namespace {

const QByteArray sheetStart =
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>";
const QByteArray sheetEnd = "</sheetData></worksheet>";

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class WorkbookTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir folder_;

    QString path(const QString& name) const { return folder_.filePath(name); }

    /// A workbook of one sheet "S" as other writers make them: absolute targets, inline texts, parts in strange places.
    QString workbook(const QByteArray& cells, const QByteArray& workbookPart = {}) const
    {
        const QMap<QByteArray, QByteArray> parts{
            {"_rels/.rels", "<Relationships><Relationship Id='a' Type='http://x/officeDocument' Target='/book/w.xml'/>"
                            "</Relationships>"},
            {"book/w.xml", "<workbook xmlns:r='http://r'>" + workbookPart +
                               "<sheets><sheet name='图' r:id='c'/><sheet name='S' r:id='s'/></sheets></workbook>"},
            {"book/_rels/w.xml.rels",
             "<Relationships><Relationship Id='s' Type='http://x/worksheet' Target='../data/one.xml'/>"
             "<Relationship Id='c' Type='http://x/chartsheet' Target='chart.xml'/>"
             "<Relationship Id='t' Type='http://x/sharedStrings' Target='/book/texts.xml'/>"
             "<Relationship Id='f' Type='http://x/styles' Target='styles.xml'/></Relationships>"},
            {"book/texts.xml", "<sst><si><t>零</t></si><si><r><t xml:space='preserve'>富 </t></r><r><t>文本</t></r>"
                               "<rPh sb='0' eb='1'><t>fu</t></rPh></si></sst>"},
            {"book/styles.xml",
             "<styleSheet><numFmts><numFmt numFmtId='170' formatCode='00000'/>"
             "<numFmt numFmtId='171' formatCode='[$-804]yyyy&quot;年&quot;m&quot;月&quot;d&quot;日&quot;'/>"
             "<numFmt numFmtId='172' formatCode='&quot;数d&quot;#,##0.00_);[Red]\\(0\\)'/></numFmts>"
             "<cellStyleXfs><xf numFmtId='14'/></cellStyleXfs><cellXfs><xf numFmtId='0'/><xf numFmtId='14'/>"
             "<xf numFmtId='170'/><xf numFmtId='171'/><xf numFmtId='172'/><xf numFmtId='46'/></cellXfs></styleSheet>"},
            {"data/one.xml", sheetStart + cells + sheetEnd},
        };
        const QString to = path(u"made.xlsx"_s);
        QFile::remove(to);
        zip_t* archive = zip_open(QFile::encodeName(to).constData(), ZIP_CREATE, nullptr);
        for (auto part = parts.cbegin(); part != parts.cend(); ++part)
            zip_file_add(archive, part.key().constData(),
                         zip_source_buffer(archive, part.value().constData(), zip_uint64_t(part.value().size()), 0),
                         ZIP_FL_ENC_UTF_8);
        if (zip_close(archive) != 0)
            qFatal("the workbook wasn't made");
        return to;
    }

private slots:
    void numberFormats_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("text");
        QTest::newRow("general") << u"General"_s << 37991.0 << u"37991"_s;
        QTest::newRow("amount") << u"\"¥\"#,##0.00;[Red]-0.00"_s << 1234.5 << u"1234.5"_s;
        QTest::newRow("scientific") << u"0.00E+00"_s << 1e15 << u"1000000000000000"_s;
        QTest::newRow("binary noise") << u"0.00"_s << 0.1 + 0.2 << u"0.3"_s;
        QTest::newRow("beyond 15 digits") << u"0"_s << 690123456789012345.0 << u"690123456789012000"_s;
        QTest::newRow("tiny") << u"0.0"_s << -1e-7 << u"-0.0000001"_s;
        QTest::newRow("minus zero") << u"0"_s << -0.0 << u"0"_s;
        QTest::newRow("zeros in front") << u"00000"_s << 123.0 << u"00123"_s;
        QTest::newRow("zeros, fraction") << u"00000"_s << 12.5 << u"12.5"_s;
        QTest::newRow("date") << u"yyyy-mm-dd"_s << 37991.0 << u"2004-1-5"_s;
        QTest::newRow("chinese date") << u"[$-804]yyyy\"年\"m\"月\";@"_s << 37991.0 << u"2004-1-5"_s;
        QTest::newRow("moment") << u"m/d/yy h:mm"_s << 37991 + 32703 / 86400.0 << u"2004-1-5 9:05:03"_s;
        QTest::newRow("last second rounds up") << u"yyyy-m-d h:mm"_s << 37991.9999999 << u"2004-1-6"_s;
        QTest::newRow("time") << u"h:mm AM/PM"_s << 32703 / 86400.0 << u"9:05:03"_s;
        QTest::newRow("duration") << u"[mm]:ss"_s << 60 / 86400.0 << u"0:01:00"_s;
        QTest::newRow("colour is no date") << u"[Red]0"_s << 5.0 << u"5"_s;
        QTest::newRow("quoted is no date") << u"0\" days\""_s << 5.0 << u"5"_s;
        QTest::newRow("escaped is no date") << u"0\\d"_s << 5.0 << u"5"_s;
        QTest::newRow("before the leap day that never was") << u"d"_s << 59.0 << u"1900-2-28"_s;
        QTest::newRow("behind it") << u"d"_s << 61.0 << u"1900-3-1"_s;
        QTest::newRow("no date below zero") << u"yyyy"_s << -5.0 << u"-5"_s;
    }
    void numberFormats()
    {
        QFETCH(QString, code);
        QFETCH(double, number);
        QTEST(numberText(number, numberFormat(code), false), "text");
    }

    void foreignCells_data()
    {
        QTest::addColumn<QByteArray>("cells");
        QTest::addColumn<QString>("text"); // of all rows: cells by "|", rows by "/"
        const auto row = [](const char* name, const char* cells, const QString& text) {
            QTest::newRow(name) << QByteArray(cells) << text;
        };
        row("shared, rich, without pronunciation", "<row r='1'><c r='A1' t='s'><v>1</v></c></row>", u"富 文本"_s);
        row("inline", "<row><c t='inlineStr'><is><t xml:space='preserve'> 甲&#10;乙 </t></is></c></row>",
            u" 甲\n乙 "_s);
        row("escaped", "<row><c t='inlineStr'><is><t>_x0041__x005F_x0041_</t></is></c></row>", u"A_x0041_"_s);
        row("gaps", "<row r='3'><c r='C3'><v>7</v></c><c r='AA3'/></row>", u"//||7"_s);
        row("without references", "<row><c><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>", u"1|2/3"_s);
        row("formula", "<row><c t='str'><f>A9&amp;1</f><v>值</v></c><c><f>1+1</f><v>2</v></c><c><f>x</f></c></row>",
            u"值|2"_s);
        row("truth and fault", "<row><c t='b'><v>1</v></c><c t='e'><v>#N/A</v></c></row>", u"1|#N/A"_s);
        row("styles",
            "<row><c s='1'><v>37991</v></c><c s='2'><v>42</v></c><c s='3'><v>37991.5</v></c>"
            "<c s='4'><v>1234.5</v></c><c s='5'><v>0.5</v></c><c s='99'><v>5</v></c></row>",
            u"2004-1-5|00042|2004-1-5 12:00:00|1234.5|12:00:00|5"_s);
        row("iso date", "<row><c t='d'><v>2004-01-05T09:05:03</v></c></row>", u"2004-1-5 9:05:03"_s);
        row("empty", "", QString());
    }
    void foreignCells()
    {
        QFETCH(QByteArray, cells);
        const QString file = workbook(cells);
        QCOMPARE(sheetNames(file).names, QStringList{u"S"_s});
        const SheetRows sheet = readSheet(file, u"s"_s);
        QCOMPARE(sheet.refusal, QString());
        QStringList rows;
        for (const QStringList& row : sheet.rows)
            rows += row.join(u'|');
        QTEST(rows.join(u'/'), "text");
    }

    void daysFrom1904()
    {
        const QString file = workbook("<row><c s='1'><v>0</v></c></row>", "<workbookPr date1904='1'/>");
        QCOMPARE(readSheet(file, u"S"_s).rows, QList<QStringList>{{u"1904-1-1"_s}});
    }

    /// The older kind, as an office program saved it.
    void olderKind()
    {
        const QString copy = path(u"名字不对.xlsx"_s);
        QVERIFY(QFile::copy(QStringLiteral(TEST_DATA) + u"/hard_cells.xls"_s, copy));
        QCOMPARE(sheetNames(copy).names, QStringList({u"货品"_s, u"第二页"_s}));
        const QList<QStringList> rows = readSheet(copy, u"货品"_s).rows;
        const QList<QStringList> expected{
            {u"编码"_s, u"名称"_s, u"数量"_s, u"日期"_s},
            {u"00123"_s, u"六角螺栓\U00020000"_s, u"1234.5"_s, u"2004-1-5"_s},
            {u"00123"_s, u" 两端 "_s, u"-7"_s, u"2004-1-5 9:05:03"_s},
            {u"6901234567890"_s, u"x\ny"_s, u"1000000000000000"_s, u"9:05:03"_s},
            {u"1"_s, {}, u"0.0000001"_s, u"0.5"_s},
            {},
            {u"最后"_s, {}, u"2004"_s},
        };
        QCOMPARE(rows, expected);
        QCOMPARE(readSheet(copy, u"没有"_s).refusal, u"工作簿中没有名为“没有”的工作表。"_s);
    }

    void writtenAndReadAgain()
    {
        const TableContent table{
            .sheet = u"货品/编码[1]: "_s + QString(40, u'长'),
            .captions = {u"编码"_s, u"数量"_s, u"说明"_s},
            .numeric = {false, true, false},
            .rows = {{u"00123"_s, u"1234.50"_s, u"=1+1"_s},
                     {u"12"_s, u"-0.5"_s, u"http://x 引号\" 换行\n<&> 行"_s},
                     {u"1E5"_s, u"007"_s, u"_x0041_"_s},
                     {u""_s, u"12345678901234567890"_s, u"\U00020000"_s},
                     {u""_s, u"*"_s}},
            .picture = QByteArray::fromBase64(
                "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNgAAAAAgABSK+kcQAAAABJRU5ErkJggg==")};
        const QString file = path(u"out.XLSX"_s);
        QCOMPARE(writeTable(file, table), QString());
        QVERIFY(readBytes(file).contains("xl/media/image1.png"));
        const SheetNames sheets = sheetNames(file);
        QCOMPARE(sheets.names, QStringList{u"货品编码1 "_s + QString(25, u'长')});
        QList<QStringList> expected = table.rows;
        expected.prepend(table.captions);
        expected[1][1] = u"1234.5"_s; // a number; its two decimals are its format's
        QCOMPARE(readSheet(file, sheets.names[0]).rows, expected);
    }

    void separatedByCommas()
    {
        const TableContent table{
            .sheet = {},
            .captions = {u"名称"_s, u"数量"_s},
            .numeric = {false, true},
            .rows = {{u"a,\"b\"\nc"_s, u"-5"_s}, {u"=HYPERLINK(\"x\")"_s, u"@SUM(A1)"_s}, {u"-"_s, u"-1+2"_s}}};
        const QString file = path(u"out.csv"_s);
        QCOMPARE(writeTable(file, table), QString());
        const QByteArray bytes = readBytes(file);
        QVERIFY(bytes.startsWith("\xEF\xBB\xBF"));
        QCOMPARE(QString::fromUtf8(bytes), // which leaves the mark out
                 u"名称,数量\r\n\"a,\"\"b\"\"\nc\",-5\r\n\"'=HYPERLINK(\"\"x\"\")\",'@SUM(A1)\r\n-,'-1+2\r\n"_s);
    }

    /// A reason, no file, and an old one as it was.
    void notWritten_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::newRow("workbook") << u".xlsx"_s;
        QTest::newRow("text") << u".csv"_s;
    }
    void notWritten()
    {
        QFETCH(QString, ending);
        const TableContent table{.sheet = u"S"_s, .captions = {u"a"_s}, .numeric = {}, .rows = {}};
        const QString missing = path(u"没有/这里"_s + ending);
        QVERIFY(writeTable(missing, table).contains(missing));
        const QString taken = path(u"folder"_s + ending);
        QVERIFY(QDir(folder_.path()).mkpath(taken));
        QVERIFY(!writeTable(taken, table).isEmpty());
        QVERIFY(QDir(taken).exists());
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        const QByteArray container = readBytes(QStringLiteral(TEST_DATA) + u"/hard_cells.xls"_s);
        const QString locked = u"密码"_s;
        QTest::newRow("empty") << QByteArray() << u"是空的"_s;
        QTest::newRow("text") << QByteArray("编码,名称\r\n") << u"不是Excel工作簿"_s;
        QTest::newRow("page") << QByteArray("<html><table>") << u"不是Excel工作簿"_s;
        QTest::newRow("cut archive") << QByteArray("PK\x03\x04 and no more") << u"损坏"_s;
        QTest::newRow("cut container") << container.left(700) << u"损坏"_s;

        // The file has a name for its stream of records, which makes it a workbook: another makes it a locked archive.
        const auto wide = [](const QString& text) {
            return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        };
        QByteArray archive = container;
        archive.replace(wide(u"Workbook"_s) + QByteArray(18, '\0'), wide(u"EncryptedPackage"_s) + QByteArray(2, '\0'));
        QTest::newRow("locked archive") << archive << locked;
        // In the place of the first record behind the beginning of the stream.
        QByteArray pass = container;
        const qsizetype stream = pass.indexOf(QByteArray::fromHex("09081000"));
        pass.replace(stream + 20, 2, QByteArray::fromHex("2f00"));
        QTest::newRow("locked workbook") << pass << locked;

        const QString archived = workbook({});
        QFile::remove(path(u"other.zip"_s));
        zip_t* other = zip_open(QFile::encodeName(path(u"other.zip"_s)).constData(), ZIP_CREATE, nullptr);
        zip_file_add(other, "mimetype", zip_source_buffer(other, "x", 1, 0), 0);
        zip_close(other);
        QTest::newRow("other archive") << readBytes(path(u"other.zip"_s)) << u"不是可以读取的Excel工作簿"_s;
        for (const char* cells :
             {"<row><c t='s'><v>77</v></c></row>", "<row><c r='A0'><v>1</v></c></row>",
              "<row><c r='XFE1'><v>1</v></c></row>", "<row r='9999999'><c><v>1</v></c></row>", "<row><c></row>"})
            QTest::newRow(cells) << readBytes(workbook(cells)) << u"损坏"_s;
        QByteArray endless;
        for (int row = 1; row <= 500; ++row)
            endless +=
                "<row r='" + QByteArray::number(row) + "'><c r='XFD" + QByteArray::number(row) + "'><v>1</v></c></row>";
        QTest::newRow("wide without end") << readBytes(workbook(endless)) << u"太大"_s;
    }
    void refused()
    {
        QFETCH(QByteArray, bytes);
        const QString file = path(u"bad.xls"_s);
        writeBytes(file, bytes);
        SheetNames sheets = sheetNames(file);
        if (sheets.refusal.isEmpty()) {
            QVERIFY(!sheets.names.isEmpty());
            const SheetRows rows = readSheet(file, sheets.names[0]);
            QVERIFY(rows.rows.isEmpty());
            sheets.refusal = rows.refusal;
        }
        QFETCH(QString, reason);
        QVERIFY2(sheets.refusal.contains(reason), qPrintable(sheets.refusal));
    }

    /// Each file cut and with bytes turned: it may be refused or read, but comes to an end either way.
    void damaged_data()
    {
        QTest::addColumn<QByteArray>("whole");
        QTest::newRow("older kind") << readBytes(QStringLiteral(TEST_DATA) + u"/hard_cells.xls"_s);
        QTest::newRow("newer kind") << readBytes(workbook("<row><c t='s'><v>1</v></c><c s='1'><v>37991</v></c></row>"));
    }
    void damaged()
    {
        QFETCH(QByteArray, whole);
        const QString file = path(u"damaged"_s);
        QRandomGenerator random(20041118);
        int refusals = 0;
        for (int turn = 0; turn < 300; ++turn) {
            QByteArray bytes = whole;
            if (turn % 3 == 0)
                bytes.truncate(random.bounded(int(bytes.size())));
            for (int flips = turn % 3 * 4; flips > 0; --flips)
                bytes[random.bounded(int(bytes.size()))] = char(random.bounded(256));
            writeBytes(file, bytes);
            const SheetNames sheets = sheetNames(file);
            QCOMPARE(sheets.names.isEmpty(), !sheets.refusal.isEmpty());
            bool refused = !sheets.refusal.isEmpty();
            for (const QString& name : sheets.names)
                refused = !readSheet(file, name).refusal.isEmpty() || refused;
            refusals += refused;
        }
        QVERIFY(refusals > 100);
    }
};

QTEST_GUILESS_MAIN(WorkbookTest)
#include "workbook_test.moc"
