// Text, number and date rules: the texts made here are stored and compared, so the thresholds matter.

#include "platform/base/date.h"
#include "platform/base/files.h"
#include "platform/base/finding.h"
#include "platform/base/number.h"
#include "platform/base/pinyin.h"
#include "platform/base/text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class BaseTest : public QObject
{
    Q_OBJECT

private slots:
    void sounds()
    {
        const auto sounds = [](const char16_t* text, const char16_t* typed) {
            return pinyin::beginsAs(QStringView(text), QStringView(typed));
        };
        for (const char16_t* typed : {u"CZ", u"C", u"CHUIZI", u"CHUIZ", u"CZI", u"CHZ"})
            QVERIFY2(sounds(u"锤子", typed), qPrintable(QString::fromUtf16(typed)));
        for (const char16_t* typed : {u"ZC", u"CZZ", u"CUZ", u"CHUIZIA"})
            QVERIFY2(!sounds(u"锤子", typed), qPrintable(QString::fromUtf16(typed)));
        QVERIFY(sounds(u"重庆", u"CQ") && sounds(u"重庆", u"ZQ") && sounds(u"重庆", u"ZHONGQING"));
        QVERIFY(sounds(u"绿色零号", u"LVSLH"));
        QVERIFY(sounds(u"304不锈钢-L管", u"BXGG") && sounds(u"不锈钢L管", u"BXGLG"));
        QVERIFY(!sounds(u"ABC", u"CZ") && !sounds(u"", u"C"));
        QCOMPARE(pinyin::initials(u'行') & (1u << 7), 1u << 7); // háng beside xíng
        QCOMPARE(pinyin::initials(u'A'), 0u);
    }

    void findingRanks()
    {
        FindIndex index;
        for (const auto& [code, name, model] : {std::tuple(u"X1"_s, u"圆头锤子"_s, u""_s),
                                                {u"X2"_s, u"螺丝刀"_s, u"CZ-5"_s},
                                                {u"X3"_s, u"CZ牌手套"_s, u""_s},
                                                {u"X4"_s, u"车轴"_s, u""_s},
                                                {u"cz2"_s, u"刀"_s, u""_s},
                                                {u"CZ"_s, u"刀"_s, u""_s},
                                                {u"Ａ5"_s, u"PVC管"_s, u"Ｍ8*20"_s}})
            index.add(code, name, model);
        const auto found = [&](const QString& typed, qsizetype most = 12) {
            QStringList codes;
            for (const qsizetype record : index.find(typed, most))
                codes += index.code(record);
            return codes.join(u' ');
        };
        QCOMPARE(found(u"cz"_s), u"CZ cz2 X3 X4 X2 X1"_s);
        QCOMPARE(found(u"ｃｚ"_s, 3), u"CZ cz2 X3"_s);
        QCOMPARE(found(u"锤"_s), u"X1"_s);
        QCOMPARE(found(u"pvcg m8"_s), u"Ａ5"_s); // all words, the code as it is stored
        QCOMPARE(found(u"a5"_s), u"Ａ5"_s);
        QCOMPARE(found(u"8*20"_s), u"Ａ5"_s);
        QCOMPARE(found(u"pvcg x"_s) + found(u"  "_s) + found(u"\n"_s), QString());
    }

    void plainTexts_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("text");
        const auto row = [](double x, const char* text) { QTest::newRow(text) << x << QString::fromLatin1(text); };
        row(0, "0");
        QTest::newRow("minus zero") << -0.0 << u"0"_s;
        row(0.5, "0.5");
        row(-0.5, "-0.5");
        row(100000, "100000");
        row(1234567, "1234567");
        row(123456789012345, "123456789012345");
        row(999999999999999, "999999999999999");
        row(1e15, "1E+15");
        row(1.25e300, "1.25E+300");
        row(0.00001, "0.00001");
        row(0.000001, "1E-06");
        row(-1.5e-7, "-1.5E-07");
        QTest::newRow("noise") << 0.1 + 0.2 << u"0.3"_s;
        QTest::newRow("a third") << 1.0 / 3 << u"0.333333333333333"_s;
        QTest::newRow("rounds into the exponent form") << 999999999999999.9 << u"1E+15"_s;
    }

    void plainTexts()
    {
        QFETCH(double, number);
        QFETCH(QString, text);
        QCOMPARE(plainText(number), text);
    }

    void values_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("number");
        const auto row = [](const char16_t* text, double x) {
            QTest::newRow(qPrintable(QString::fromUtf16(text))) << QString::fromUtf16(text) << x;
        };
        row(u"", 0);
        row(u"abc", 0);
        row(u"NoFound", 0);
        row(u"3x", 3);
        row(u"  12.5 个", 12.5);
        row(u"-3", -3);
        row(u"+3", 3);
        row(u".5", 0.5);
        row(u"-.5", -0.5);
        row(u"1.2.3", 1.2);
        row(u"-", 0);
        row(u".", 0);
        row(u"1E-06", 1e-6);
        row(u"1e+15", 1e15);
        row(u"2E", 2);
        row(u"1E999", 0); // beyond a double; an endless number would poison every sum
        row(u"１２．５", 12.5);
        row(u"－８", -8);
        row(u"1,234", 1);
    }

    void values()
    {
        QFETCH(QString, text);
        QFETCH(double, number);
        QCOMPARE(Val(text), number);
    }

    void formats_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("text");
        const auto row = [](double x, const QString& mask, const QString& text) {
            QTest::newRow(qPrintable(mask + u" -> "_s + text)) << x << mask << text;
        };
        row(0.125, u"#0.00"_s, u"0.13"_s);
        row(2.675, u"#0.00"_s, u"2.68"_s);
        row(-2.675, u"#0.00"_s, u"-2.68"_s);
        row(1.005, u"#0.00"_s, u"1.01"_s);
        row(0.5, u"#0"_s, u"1"_s);
        row(-0.004, u"#0.00"_s, u"0.00"_s);
        row(-0.0, u"#0.00"_s, u"0.00"_s);
        row(99.995, u"#0.00"_s, u"100.00"_s);
        row(0.0999, u"#0.00"_s, u"0.10"_s);
        row(1e-20, u"#0.000000000"_s, u"0.000000000"_s);
        row(7, u"#00000"_s, u"00007"_s);
        row(11, u"#00"_s, u"11"_s);
        row(123456, u"#00"_s, u"123456"_s);
        row(1e16, u"#0.00"_s, u"10000000000000000.00"_s);
        row(2.5, u"#0.##"_s, u"2.5"_s);
        row(1234.5, u"#0.00000000"_s, u"1234.50000000"_s);
    }

    void formats()
    {
        QFETCH(double, number);
        QFETCH(QString, mask);
        QFETCH(QString, text);
        QCOMPARE(Format(number, mask), text);
    }

    void singlePrecisionCountsByItsDecimals()
    {
        QCOMPARE(singleValue(1.1), 1.1);
        QCOMPARE(plainText(singleValue(1.1) * 3), u"3.3"_s);
        QCOMPARE(singleValue(0), 0.0);
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("date"); // "" where it is none
        const auto row = [](const QString& text, const QString& date) {
            QTest::newRow(qPrintable(text)) << text << date;
        };
        row(u"2004-1-1"_s, u"2004-1-1"_s);
        row(u"2004/01/09"_s, u"2004-1-9"_s);
        row(u" 2004-12-31 9:05:03"_s, u"2004-12-31"_s);
        row(u"2004-2-29"_s, u"2004-2-29"_s);
        row(u"2003-2-29"_s, QString());
        row(u"2024-13-45"_s, QString());
        row(u"00-00-00"_s, QString());
        row(u"00-01-01"_s, QString());
        row(u"2004-1"_s, QString());
        row(u"2004-1-1x"_s, QString());
        row(u"2004-1/1"_s, QString());
        row(u"2004-1-1 25:00"_s, QString());
        row(u""_s, QString());
        row(u"NoFound"_s, QString());
    }

    void dates()
    {
        QFETCH(QString, text);
        QFETCH(QString, date);
        const auto parsed = parseDate(text);
        QCOMPARE(parsed ? dateText(*parsed) : QString(), date);
        QCOMPARE(IsDate(text), !date.isEmpty());
    }

    void momentsAreUnpaddedInHoursOnly()
    {
        QCOMPARE(momentText(QDateTime(QDate(2004, 1, 1), QTime(9, 5, 3))), u"2004-1-1 9:05:03"_s);
        QCOMPARE(parseMoment(u"2004-1-1 9:05:03"), QDateTime(QDate(2004, 1, 1), QTime(9, 5, 3)));
        QCOMPARE(DateDiff(u"2004-2-28", u"2004-3-1 23:59:59"), 2);
        QVERIFY(!DateDiff(u"2004-2-28", u"soon"));
    }

    void textPrimitives()
    {
        QCOMPARE(Trim(u" \u3000a b\u3000 "), u"a b"_s);
        QCOMPARE(Trim(u"\ta"), u"\ta"_s);
        QCOMPARE(Left(u"货品编码：", 4), u"货品编码"_s);
        QCOMPARE(Right(u"abc", 5), u"abc"_s);
        QCOMPARE(Mid(u"abcdef", 3, 2), u"cd"_s);
        QCOMPARE(codeOf(u"001.默认.货品"), u"001"_s);
        QCOMPARE(codeOf(u"001"), u"001"_s);
        QVERIFY(sameText(u"Gh01货", u"gH01货"));
        QVERIFY(!sameText(u"É", u"é")); // beyond ASCII case counts, as in the ledger
    }

    void sumsAreDecimal()
    {
        DecimalSum sum;
        QCOMPARE(sum.text(), u"0"_s);
        for (int i = 0; i < 10; ++i)
            sum.add(u"0.1"_s);
        QCOMPARE(sum.text(), u"1.0"_s);
        for (const QStringView text : {u"-12.345", u"", u"２.00", u"9000000000.01", u"1E-06"})
            sum.add(text);
        QCOMPARE(sum.text(), u"8999999990.665001"_s);
        sum.add(u"-8999999991"_s);
        QCOMPARE(sum.text(), u"-0.334999"_s);
        QCOMPARE(foldedText(u"ＡbＣ　１（货"_s), u"abc 1(货"_s);
    }

    void namesAreFoundWithoutRegardToCase()
    {
        const QTemporaryDir folder;
        QDir(folder.path()).mkdir(u"Image"_s);
        QVERIFY(writeLines(folder.filePath(u"Image/001.JPG"_s), {u"x"_s}));
        QVERIFY(fileExists(folder.path() + u"\\image\\001.jpg"_s));
        QVERIFY(!fileExists(folder.path() + u"\\image\\002.jpg"_s));
        QVERIFY(!fileExists(folder.path() + u"\\image"_s)); // a folder is no file
        QCOMPARE(fileNameOf(u"a\\b/c.hcn"_s), u"c.hcn"_s);
        QCOMPARE(folderOf(u"/a/b\\c.hcn"_s), u"/a/b"_s);
    }

    void textFilesOfAllSorts_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("lines");
        const QStringList lines{u"货品"_s, u"b"_s};
        QTest::newRow("LF") << QByteArray("货品\nb\n") << lines;
        QTest::newRow("no line end at the end") << QByteArray("货品\nb") << lines;
        QTest::newRow("CRLF and byte-order mark") << QByteArray("\xEF\xBB\xBF货品\r\nb\r\n") << lines;
        QTest::newRow("GB18030") << QByteArray("\xBB\xF5\xC6\xB7\nb\n") << lines;
        QTest::newRow("empty") << QByteArray() << QStringList();
    }

    void textFilesOfAllSorts()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, lines);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"Learn.dat"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QCOMPARE(readLines(path).value(), lines);
        QVERIFY(!readLines(folder.filePath(u"missing"_s)));
    }
};

QTEST_GUILESS_MAIN(BaseTest)
#include "base_test.moc"
