#include "tools/play_script.h"

#include <QTemporaryDir>
#include <QTest>

using namespace play;

/// Reading scripts: what a line means, and what is refused before anything is played.
class PlayScriptTest : public QObject
{
    Q_OBJECT

private slots:
    void operands_data();
    void operands();
    void refusals_data();
    void refusals();
    void controlNames();
    void keys_data();
    void keys();
    void clock();
    void wholeFile();
};

void PlayScriptTest::operands_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("operands");

    QTest::newRow("rest of the line") << u"type B1.Txt(0)   a  b  "_s << QStringList{u"B1.Txt(0)"_s, u"a  b"_s};
    QTest::newRow("escapes") << u"expect-box a\\nb\\tc\\s\\\\n"_s << QStringList{u"a\nb\tc \\n"_s};
    QTest::newRow("a plain backslash") << u"answer D:\\books\\x.hcn"_s << QStringList{u"D:\\books\\x.hcn"_s};
    QTest::newRow("empty text") << u"type B1.Txt(0) \"\""_s << QStringList{u"B1.Txt(0)"_s, QString()};
    QTest::newRow("quotes inside") << u"say \"\"x"_s << QStringList{u"\"\"x"_s};
    QTest::newRow("full-width blank") << u"expect B1.Lab(0) \u3000名\u3000"_s
                                      << QStringList{u"B1.Lab(0)"_s, u"\u3000名\u3000"_s};
    QTest::newRow("tab between") << u"\tcell B1.GD\t1 2\t x y"_s << QStringList{u"B1.GD"_s, u"1"_s, u"2"_s, u"x y"_s};
    QTest::newRow("paths keep backslashes")
        << u"set-up \"my books\\a.hcn\" ../n b.hcn"_s << QStringList{u"my books\\a.hcn"_s, u"../n b.hcn"_s};
    QTest::newRow("optional, missing") << u"open"_s << QStringList();
    QTest::newRow("optional, there") << u"open \"a b.hcn\""_s << QStringList{u"\"a b.hcn\""_s};
    QTest::newRow("optional number") << u"dbl B1.GD 2"_s << QStringList{u"B1.GD"_s, u"2"_s};
    QTest::newRow("statement") << u"expect-sql select F1 from T where F8>=2 => \"\""_s
                               << QStringList{u"select F1 from T where F8>=2"_s, QString()};
    QTest::newRow("older window") << u"close C1#1"_s << QStringList{u"C1#1"_s};
}

void PlayScriptTest::operands()
{
    QFETCH(QString, source);
    const auto read = readLine(source, 7);
    QVERIFY2(read.index() == 0, qPrintable(read.index() ? std::get<1>(read) : QString()));
    const auto line = std::get<0>(read);
    QVERIFY(line);
    QCOMPARE(line->number, 7);
    QTEST(line->operands, "operands");
}

void PlayScriptTest::refusals_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("fault");

    QTest::newRow("command") << u"expct A.B x"_s << u"expected a command, got \"expct\""_s;
    QTest::newRow("case") << u"Do A.B"_s << u"expected a command, got \"Do\""_s;
    QTest::newRow("control") << u"do"_s << u"expected a control as FORM.CONTROL, got nothing"_s;
    QTest::newRow("form") << u"close B1.Txt"_s << u"expected a form, got \"B1.Txt\""_s;
    QTest::newRow("number") << u"tab B1.SSTab1 -1"_s << u"expected a number from 0, got \"-1\""_s;
    QTest::newRow("text") << u"type B1.Txt(0)"_s << u"expected a text (\"\" for the empty one), got nothing"_s;
    QTest::newRow("state") << u"tick B1.Chk yes"_s << u"expected on or off, got \"yes\""_s;
    QTest::newRow("date") << u"date B1.DT(0) 2004-2-30"_s << u"expected a date, got \"2004-2-30\""_s;
    QTest::newRow("key") << u"key Strg+S"_s << u"expected a key, got \"Strg+S\""_s;
    QTest::newRow("clock") << u"clock +2m"_s << u"expected DATE, DATE TIME, +1d, +2h or +30s, got \"+2m\""_s;
    QTest::newRow("statement") << u"expect-sql select 1"_s << u"expected STATEMENT => TEXT, got \"select 1\""_s;
    QTest::newRow("too much") << u"leave B1.Txt(0) now"_s << u"expected the end of the line, got \"now\""_s;
    QTest::newRow("nothing wanted") << u"end now"_s << u"expected the end of the line, got \"now\""_s;
}

void PlayScriptTest::refusals()
{
    QFETCH(QString, source);
    const auto read = readLine(source, 1);
    QCOMPARE(read.index(), size_t(1));
    QTEST(std::get<1>(read), "fault");
}

void PlayScriptTest::controlNames()
{
    const auto path = controlPath(u"MForm.Menu_C18(1)"_s);
    QCOMPARE(path->form, u"MForm"_s);
    QCOMPARE(path->control, u"Menu_C18(1)"_s);
    QCOMPARE(path->instance, 0);
    QCOMPARE(controlPath(u"C1#2.GD"_s)->instance, 2);
    QVERIFY(!controlPath(u"C1#0"_s));
    QVERIFY(!controlPath(u".GD"_s));
}

void PlayScriptTest::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");

    QTest::newRow("Enter") << int(Qt::Key_Return) << 0 << u"\r"_s;
    QTest::newRow("F4") << int(Qt::Key_F4) << 0 << QString();
    QTest::newRow("Ctrl+S") << int(Qt::Key_S) << int(Qt::ControlModifier) << QString();
    QTest::newRow("Alt+a") << int(Qt::Key_A) << int(Qt::AltModifier) << QString();
    QTest::newRow("ctrl+Shift+End") << int(Qt::Key_End) << int(Qt::ControlModifier | Qt::ShiftModifier) << QString();
    QTest::newRow("Shift+Tab") << int(Qt::Key_Backtab) << int(Qt::ShiftModifier) << QString();
    QTest::newRow("a") << int(Qt::Key_A) << 0 << u"a"_s;
    QTest::newRow("Shift+a") << int(Qt::Key_A) << int(Qt::ShiftModifier) << u"A"_s;
    QTest::newRow("+") << int(Qt::Key_Plus) << 0 << u"+"_s;
}

void PlayScriptTest::keys()
{
    const auto key = keyNamed(QString::fromUtf8(QTest::currentDataTag()));
    QVERIFY(key);
    QTEST(int(key->key), "key");
    QTEST(int(key->modifiers), "modifiers");
    QTEST(key->text, "text");
}

void PlayScriptTest::clock()
{
    const QDateTime now(QDate(2004, 2, 28), QTime(23, 59, 50));
    const auto moment = [&now](const QString& operand) {
        return clockMoment(operand, now).value_or(QDateTime()).toString(u"yyyy-MM-dd HH:mm:ss"_s);
    };
    QCOMPARE(moment(u"2006-7-9"_s), u"2006-07-09 00:00:00"_s);
    QCOMPARE(moment(u"2006-7-9 8:05"_s), u"2006-07-09 08:05:00"_s);
    QCOMPARE(moment(u"2006-7-9 8:05:07"_s), u"2006-07-09 08:05:07"_s);
    QCOMPARE(moment(u"+1d"_s), u"2004-02-29 23:59:50"_s);
    QCOMPARE(moment(u"+2h"_s), u"2004-02-29 01:59:50"_s);
    QCOMPARE(moment(u"+30s"_s), u"2004-02-29 00:00:20"_s);
}

void PlayScriptTest::wholeFile()
{
    QTemporaryDir folder;
    const auto script = [&folder](const QByteArray& bytes) {
        QFile file(folder.filePath(u"s.play"_s));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return file.fileName();
    };
    const auto read = readScript(script("\xEF\xBB\xBF# \xE6\x97\xA5\r\n\r\n  say a\r\nend"), u"a.play"_s);
    QCOMPARE(read.index(), size_t(0));
    const Script& whole = std::get<0>(read);
    QCOMPARE(whole.lines.size(), 2);
    QCOMPARE(whole.lines[0].number, 3);
    QCOMPARE(whole.lines[0].operands, QStringList{u"a"_s});
    QCOMPARE(whole.lastNumber, 4);

    const auto fault = [](const QString& path) { return std::get<1>(readScript(path, u"a.play"_s)); };
    QCOMPARE(fault(script("say a\n\nfoo\n")), u"a.play:3: expected a command, got \"foo\""_s);
    QVERIFY(fault(script("say \xFF\n")).contains(u"expected UTF-8"_s));
    QVERIFY(fault(folder.filePath(u"none.play"_s)).contains(u"expected a script"_s));
}

QTEST_GUILESS_MAIN(PlayScriptTest)
#include "play_script_test.moc"
