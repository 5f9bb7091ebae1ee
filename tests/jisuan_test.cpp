#include "tools/jisuan/calculator.h"

#include <QTest>

using jisuan::Calculator;

class JisuanTest : public QObject
{
    Q_OBJECT

private slots:
    void keysGiveTexts_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("display");
        const auto row = [](const char* name, QStringView keys, QStringView display) {
            QTest::newRow(name) << keys.toString() << display.toString();
        };
        row("no noise of binary fractions", u"0.1+0.2=", u"0.3");
        row("which doesn't gather either", u"0.1*3-0.3=", u"0");
        row("cents of a large sum", u"12345678901234.56+0.01=", u"12345678901234.57");
        row("one after the other", u"2+3*4=", u"20");
        row("a third, and back", u"1/3*3=", u"1");
        row("rounded half away from zero", u"2/3=", u"0.6666666666666667");
        row("negative as well", u"2n/3=", u"-0.6666666666666667");
        row("a long divisor", u"1/9999999999999999=", u"0.0000000000000001");
        row("too long for the display", u"9999999999999999*9999999999999999=", u"9.999999999999998E+31");
        row("large and small", u"9999999999999999*9999999999999999+1=", u"9.999999999999998E+31");
        row("the later operation counts", u"8+-*2=", u"16");
        row("equals repeats", u"5+3===", u"14");
        row("on a new number too", u"5+3=10=", u"13");
        row("percent of the left side", u"200+5%=", u"210");
        row("a hundredth in a product", u"200*5%=", u"10");
        row("discount", u"80-15%=", u"68");
        row("memory", u"12*3=P5*2=PR", u"46");
        row("memory less", u"12P5MR", u"7");
        row("memory outlives a clear", u"7Pc1+R=", u"8");
        row("backwards", u"12.5bbb9=", u"19");
        row("a result isn't taken apart", u"6*7=b", u"42");
        row("clear the entry only", u"6*7e8=", u"48");
        row("one point", u"1.2.5=", u"1.25");
        row("change of sign", u"5-n=", u"10");
        row("sixteen digits at most", u"12345678901234567=", u"1234567890123456");
        row("nothing by zero", u"5/0=", u"除数不能为零");
        row("and on after it", u"5/0=3+4=", u"7");
    }

    void keysGiveTexts()
    {
        QFETCH(QString, keys);
        Calculator calculator;
        for (const char key : keys.toLatin1())
            QVERIFY(calculator.press(key));
        QTEST(calculator.display(), "display");
    }

    void outOfRange()
    {
        Calculator calculator;
        QVERIFY(calculator.enter(u"9E+98"));
        for (const char key : QByteArray("*100="))
            calculator.press(key);
        QCOMPARE(calculator.display(), u"数字太大"_s);
        QCOMPARE(calculator.number(), QString());
    }

    void pastedNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("number"); // "" for none
        QTest::newRow("with commas") << u" 1,234.50\n"_s << u"1234.5"_s;
        QTest::newRow("full-width") << u"－１２．５"_s << u"-12.5"_s;
        QTest::newRow("words") << u"12个"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
    }

    void pastedNumbers()
    {
        QFETCH(QString, text);
        QFETCH(QString, number);
        Calculator calculator;
        QCOMPARE(calculator.enter(text), !number.isEmpty());
        if (!number.isEmpty())
            QCOMPARE(calculator.number(), number);
    }

    void tapeTellsTheSum()
    {
        Calculator calculator;
        for (const char key : QByteArray("12*3"))
            calculator.press(key);
        QCOMPARE(calculator.tape(), u"12 ×"_s);
        calculator.press('=');
        QCOMPARE(calculator.tape(), u"12 × 3 ="_s);
    }
};

QTEST_GUILESS_MAIN(JisuanTest)
#include "jisuan_test.moc"
