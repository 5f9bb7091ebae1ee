#include "platform/base/text.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The session player on the real program: what it holds against a script, and what it tells.
class PlayTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void verdicts_data();
    void verdicts();
    void nextScriptIsPlayed();
    void newStartKeepsTheSession();
    void secondOperator();
    void workInPlace();
    void passwordsStayUntold();
    void arguments();

private:
    QString script(const QString& name, const QString& text) const;
    int play(const QStringList& arguments);

    std::unique_ptr<QTemporaryDir> folder_;
    QString output_; ///< of the last `play`
    QString faults_;
};

namespace {

const QString login = u"open vemaro.dat\ntype Login.Txt(0) 001\ndo Login.Cmd(0)\nwait frmTip\nclose frmTip\n"_s;

} // namespace

void PlayTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
}

QString PlayTest::script(const QString& name, const QString& text) const
{
    QFile file(folder_->filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
    return file.fileName();
}

int PlayTest::play(const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder_->path());
    process.start(QStringLiteral(PLAY_PROGRAM), arguments);
    process.waitForFinished(120'000);
    output_ = QString::fromUtf8(process.readAllStandardOutput());
    faults_ = QString::fromUtf8(process.readAllStandardError());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

void PlayTest::verdicts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("told"); ///< behind the script's name

    QTest::newRow("holds")
        << u"open vemaro.dat\nexpect Login.Cmd(1) 退出\nexpect-focus Login.Cmb\nexpect-open MForm\n"_s << 0
        << QString();
    QTest::newRow("expectation") << u"open vemaro.dat\nexpect Login.Cmd(1) x\nsay no"_s << 1
                                 << u":2: expected Login.Cmd(1) \"x\", got \"退出\""_s;
    QTest::newRow("no such control") << u"open vemaro.dat\ndo Login.Cmd(9)"_s << 1
                                     << u":2: expected Login.Cmd(9), got no control Cmd(9) in Login"_s;
    QTest::newRow("no such form") << u"open vemaro.dat\n\ndo X9.Cmd(1)"_s << 1
                                  << u":3: expected X9.Cmd(1), got no form X9"_s;
    QTest::newRow("behind a modal form") << u"open vemaro.dat\ndo MForm.Menu_B1"_s << 1
                                         << u":2: expected MForm.Menu_B1 within reach, got Login in front of it"_s;
    QTest::newRow("hidden") << login + u"do MForm.Menu_C19"_s << 1
                            << u":6: expected MForm.Menu_C19 to be visible, got a hidden command"_s;
    QTest::newRow("question without an answer")
        << login + u"do MForm.Quit"_s << 1
        << u":6: expected an answer queued for [提示] \"真的要退出系统吗？\", got none"_s;
    QTest::newRow("answer of another sort")
        << login + u"answer 好\ndo MForm.Quit"_s << 1
        << u":7: expected yes or no for \"真的要退出系统吗？\", got the answer \"好\""_s;
    QTest::newRow("message left over") << u"open vemaro.dat\ndo Login.Cmd(0)\nexpect-open Login"_s << 0 << QString();
    QTest::newRow("limit") << u"open vemaro.dat\nwait B1"_s << 1
                           << u":2: expected the end of the script within 3 seconds, got a script that still runs"_s;
    QTest::newRow("ends") << u"open vemaro.dat\ndo Login.Cmd(1)\nexpect-ended\nexpect-closed MForm\ndo MForm.Quit"_s
                          << 1 << u":5: expected MForm.Quit, got no form MForm"_s;
    QTest::newRow("unreadable") << u"say no\nopn"_s << 2 << u":2: expected a command, got \"opn\""_s;
}

void PlayTest::verdicts()
{
    QFETCH(QString, text);
    QFETCH(int, status);
    QFETCH(QString, told);
    const QString path = script(u"s.play"_s, text);
    const int got = play({u"--limit"_s, told.contains(u"3 seconds") ? u"3"_s : u"60"_s, path});
    QCOMPARE(faults_, told.isEmpty() ? QString() : path + told + u'\n');
    QCOMPARE(got, status);
    QVERIFY(!output_.split(u'\n').contains(u"no"_s));
}

void PlayTest::nextScriptIsPlayed()
{
    const QString bad = script(u"bad.play"_s, u"expect-ended"_s);
    const QString good = script(u"good.play"_s, u"say played\nsay 货\\n品"_s);
    QCOMPARE(play({bad, good}), 1);
    QCOMPARE(output_, u"played\n货\n品\n"_s);
    QCOMPARE(faults_, bad + u":1: expected the program to have ended, got one that never started\n"_s);
    QCOMPARE(play({bad, folder_->filePath(u"none.play"_s), good}), 2);
    QVERIFY(output_.startsWith(u"played"));
}

void PlayTest::newStartKeepsTheSession()
{
    const QString path = script(u"s.play"_s, u"clock 2004-1-5 9:05\n"_s + login +
                                                 u"sql update reginfo set F1='甲'\n"
                                                 u"answer yes\ndo MForm.Quit\nexpect-ended\n"
                                                 u"clock +1d\n"
                                                 u"answer no\n"
                                                 u"open vemaro.dat\n"
                                                 u"expect Login 登录帐本...2004-1-6\n"
                                                 u"expect-sql select F1 from reginfo => 甲\n"
                                                 u"type Login.Txt(0) 001\ndo Login.Cmd(0)\nclose frmTip\n"
                                                 u"do MForm.Quit\n"
                                                 u"expect-box 真的要退出系统吗？\nexpect-title 提示\n"
                                                 u"expect-box 真的要退出系统吗？\nexpect-no-box\n"
                                                 u"expect-open MForm\n"_s);
    const int status = play({path});
    QCOMPARE(faults_, QString());
    QCOMPARE(status, 0);
    QCOMPARE(output_, u"box [提示] 真的要退出系统吗？ -> yes\nbox [提示] 真的要退出系统吗？ -> no\n"_s);
}

void PlayTest::secondOperator()
{
    script(u"second.play"_s, login + u"sql update reginfo set F1='乙'\nsay fertig\n"_s);
    script(u"failing.play"_s, u"expect-ended"_s);
    const QString path = script(u"first.play"_s, login + u"beside second.play\n"
                                                         u"expect-sql select F1 from reginfo => 乙\n"
                                                         u"beside failing.play\nsay no"_s);
    QCOMPARE(play({path}), 1);
    QCOMPARE(output_, folder_->filePath(u"second.play"_s) + u": fertig\n"_s);
    QVERIFY2(faults_.contains(path + u":8: expected "_s), qPrintable(faults_));
}

void PlayTest::workInPlace()
{
    const QDir program = QFileInfo(QStringLiteral(PLAY_PROGRAM)).dir();
    QDir own(folder_->filePath(u"own"_s));
    QVERIFY(own.mkpath(u"."_s));
    QVERIFY(QFile::copy(program.filePath(u"vemaro.dat"_s), own.filePath(u"vemaro.dat"_s)));
    script(u"a.txt"_s, u"a"_s);
    const QString path = script(u"s.play"_s, u"set-up Sub\\B.txt a.txt\nexpect-file sub/*.TXT\nremove sub/none\n"
                                             u"expect-no-file sub/?\nopen\nshot deep/p.png\n"_s);
    QCOMPARE(play({u"--app"_s, own.path(), u"--shots"_s, folder_->filePath(u"shots"_s), path}), 0);
    QVERIFY(own.exists(u"Sub/B.txt"_s));
    QVERIFY(!QImage(folder_->filePath(u"shots/deep/p.png"_s)).isNull());
}

void PlayTest::passwordsStayUntold()
{
    const QString path = script(u"s.play"_s, u"open vemaro.dat\ntype Login.Txt(1) geheim\nkeys auch\n"
                                             u"expect Login.Txt(1) geheimauch\nexpect Login.Txt(1) geheimer"_s);
    QCOMPARE(play({u"--trace"_s, path}), 1);
    QCOMPARE(faults_, path + u":5: expected Login.Txt(1) with that password, got another one\n"_s);
    QVERIFY(output_.contains(path + u":2: type Login.Txt(1) ***\n"_s));
    QVERIFY2(!output_.contains(u"geheim"_s) && !output_.contains(u"auch"_s), qPrintable(output_));
}

void PlayTest::arguments()
{
    const QString path = script(u"s.play"_s, u"say x"_s);
    for (const QStringList& bad :
         {QStringList(), QStringList{u"--limit"_s, u"0"_s, path}, QStringList{u"--foo"_s, path},
          QStringList{u"--app"_s, folder_->filePath(u"none"_s), path}}) {
        QCOMPARE(play(bad), 2);
        QCOMPARE(output_, QString());
        QVERIFY(faults_.startsWith(u"play: "));
    }
}

QTEST_GUILESS_MAIN(PlayTest)
#include "play_test.moc"
