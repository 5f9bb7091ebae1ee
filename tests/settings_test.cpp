// The two forms of settings: what they load, what they ask, what they write and when, and what the documents do with
// what was written, read again as a login reads it.

#include "admin/S2.h"
#include "admin/SysFuncSet.h"
#include "admin/background.h"
#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "ledger/Module1.h"
#include "memory_desktop.h"
#include "modal_forms.h"
#include "platform/base/clock.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/picture.h"
#include "scripted_dialogs.h"
#include "session_fixture.h"
#include "shell/BGForm.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/entry.h"

#include <QAction>
#include <QBuffer>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

namespace {

const QString effective = u"您的设置已生效！"_s;
const QString tooOld = u"您的帐本文件版本过旧，无法进行系统设置！"_s;
const QString stockWarning =
    u"直接修改库存数会造成进出存报表不准确，不推荐开放此功能。\n但如果出于确实需要，此功能也会给您带来一些方便，请慎重使用。\n此功能只允许系统管理员001在[基础数据]->[货品编码资料]中操作。\n确定开放此功能吗？"_s;
const QString openingWarning =
    u"随意修改年初余额（年初数量、价格）可能造成进出存报表不准确，不推荐开放此功能，请慎重使用!\n此功能只允许系统管理员001在[基础数据]->[货品编码资料]中操作。\n确定开放此功能吗？"_s;

QString decimalsNote(const QString& places)
{
    return u"系统默认价格、金额相关数据精确到小数点后 2 位。\n你可以修改设置，使系统中价格、金额数据精确到小数点后 %1 位，\n但是部份单据及报表的打印输出依然是小数点后 2 位形式。\n要想使打印输出的价格、金额都改为 %1 位小数形式，请与软件开发商联系获得技术支持！"_s
        .arg(places);
}

QByteArray pictureBytes(const char* format, QColor color, QSize size = {32, 18})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format))
        qFatal("no picture to test with");
    return bytes;
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("a test's file can't be written");
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LedgerFixture> ledger_;
    std::unique_ptr<QTemporaryDir> folder_; ///< the program folder
    std::unique_ptr<ScriptedDialogs> boxes_;
    std::unique_ptr<BGForm> background_;

    QString beside(const QString& name) const { return folder_->filePath(name); }

    QString setting(int id)
    {
        return ledger_->rows(u"select setval,setstr from sysinfo where ID=%1"_s.arg(id)).join(u';');
    }

    QString te1(const QString& column) { return ledger_->row(u"select %1 from TE1 where F1='001'"_s.arg(column)); }

    void saveSettings()
    {
        boxes_->expect(effective);
        theForm<SysFuncSet>().Cmd[0]->click();
        QCOMPARE(boxes_->lastBox.title, QString());
        QVERIFY(!Form::loaded(u"SysFuncSet"_s));
    }

    S2& personal() { return *new S2(*background_); }

    /// What the background shows in the middle.
    QColor shown() const
    {
        const QImage image = background_->Img->pixmap().toImage();
        return image.isNull() ? QColor() : image.pixelColor(image.rect().center());
    }

    static bool near(QColor a, QColor b)
    {
        return qAbs(a.red() - b.red()) + qAbs(a.green() - b.green()) + qAbs(a.blue() - b.blue()) < 30; // lossy formats
    }

private slots:
    void initTestCase()
    {
        MemoryDesktop::install();
        QApplication::setQuitOnLastWindowClosed(false);
    }

    void init()
    {
        ledger_ = std::make_unique<LedgerFixture>();
        folder_ = std::make_unique<QTemporaryDir>();
        boxes_ = std::make_unique<ScriptedDialogs>();
        background_ = std::make_unique<BGForm>(nullptr);
        background_->fitTo({320, 180});
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('A1','螺栓','001','个','M8',2,3,10)"_s);
        beginSession(*ledger_);
        setProgramFolder(folder_->path());
        writeBytes(beside(u"syspic.dat"_s), pictureBytes("JPG", Qt::blue));
    }

    void cleanup()
    {
        endSession();
        background_.reset();
        boxes_.reset();
    }

    // Function settings: loading and coupling -------------------------------------------------------------------------

    void loading()
    {
        gNoPriceEdit = gHighAlarm = gStockEdit001 = gOpeningEdit001 = 1; // ticked without a warning
        gSalePriceFactor = 1.25;
        gWithMoney = 0;
        gPriceDecimals = 5; // shown without a note
        auto& form = theForm<SysFuncSet>();
        QString ticks;
        for (const QCheckBox* box : form.Chk)
            ticks += box->isChecked() ? u'1' : u'0';
        QCOMPARE(ticks, u"0100110111"_s);
        QCOMPARE(form.Txt[4]->text(), u"1.25"_s);
        QCOMPARE(form.Txt[9]->text(), u"5"_s);
        for (const QWidget* closed :
             std::initializer_list<QWidget*>{form.Chk[1], form.Chk[2], form.Chk[4], form.Txt[4]})
            QVERIFY(!closed->isEnabled());
        QVERIFY(form.Txt[9]->isEnabled()); // a tick closes it, loading doesn't
        form.Chk[5]->click();
        QVERIFY(form.Chk[1]->isEnabled() && form.Txt[4]->isEnabled() && form.Lab[9]->isEnabled());
        form.Chk[5]->click();
        QVERIFY(!form.Chk[2]->isEnabled() && !form.Lab[4]->isEnabled() && !form.Txt[9]->isEnabled());
    }

    void factorAndItsBox()
    {
        gSalePriceFactor = 1.5;
        auto& form = theForm<SysFuncSet>();
        form.Chk[4]->click();
        QCOMPARE(form.Txt[4]->text(), u"0"_s);
        form.Chk[4]->click();
        QCOMPARE(form.Txt[4]->text(), u"1.5"_s);
        form.Txt[4]->setText(u"0"_s);
        QVERIFY(!form.Chk[4]->isChecked());
        form.Txt[4]->setText(u"2"_s);
        QVERIFY(form.Chk[4]->isChecked());
        QCOMPARE(form.Txt[4]->text(), u"2"_s);
        form.Show(); // with the focus in the field a fraction can be typed though it begins as 0
        form.Txt[4]->setFocus();
        QTRY_VERIFY(form.Txt[4]->hasFocus());
        for (const auto& [typed, kept] : {std::pair("0.75", u"0.75"_s), {".5", u".5"_s}, {"abc", u"0"_s}}) {
            form.Txt[4]->setText(u"1.5"_s);
            form.Txt[4]->selectAll();
            QTest::keyClicks(form.Txt[4], QString::fromLatin1(typed));
            if (QString::fromLatin1(typed) != u"abc")
                QCOMPARE(form.Txt[4]->text(), kept);
            QCOMPARE(form.Chk[4]->isChecked(), Val(form.Txt[4]->text()) != 0);
        }
    }

    void warnings_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<QString>("text");
        QTest::newRow("stock") << 8 << stockWarning;
        QTest::newRow("opening balance") << 9 << openingWarning;
    }

    void warnings()
    {
        QFETCH(int, box);
        QFETCH(QString, text);
        auto& form = theForm<SysFuncSet>();
        boxes_->expect(text, Answer::No);
        form.Chk[box]->click();
        QVERIFY(!form.Chk[box]->isChecked());
        QCOMPARE(boxes_->lastBox.title, u"警告"_s);
        boxes_->expect(text, Answer::Yes);
        form.Chk[box]->click();
        QVERIFY(form.Chk[box]->isChecked());
        form.Chk[box]->click(); // clearing asks nothing
        QVERIFY(!form.Chk[box]->isChecked());
    }

    void decimals_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::newRow("0") << u"0"_s << u"0"_s;
        QTest::newRow("8") << u"8"_s << u"8"_s;
        QTest::newRow("whole part") << u"4.7"_s << u"4"_s;
        QTest::newRow("whole part is the usual") << u"2.5"_s << u"2"_s;
        QTest::newRow("too many") << u"9"_s << u"2"_s;
        QTest::newRow("just too many") << u"8.5"_s << u"2"_s;
        QTest::newRow("negative") << u"-1"_s << u"2"_s;
        QTest::newRow("empty") << QString() << u"2"_s;
        QTest::newRow("no plain number") << u"04"_s << u"2"_s;
        QTest::newRow("full width") << u"４"_s << u"2"_s;
        QTest::newRow("words") << u"4x"_s << u"2"_s;
    }

    void decimals()
    {
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        gPriceDecimals = 3;
        auto& form = theForm<SysFuncSet>();
        if (kept != u"2")
            boxes_->expect(decimalsNote(kept));
        form.Txt[9]->setText(typed);
        QCOMPARE(form.Txt[9]->text(), kept);
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
    }

    // Function settings: saving ---------------------------------------------------------------------------------------

    void written_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("on"); // setval|setstr
        QTest::addColumn<QString>("off");
        QTest::newRow("over-issue") << 0 << 0 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("price edit") << 1 << 1 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("average") << 2 << 2 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("negative") << 3 << 3 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("quantities only, the other way round") << 5 << 5 << u"0|Null"_s << u"1|Null"_s;
        QTest::newRow("low alarm") << 6 << 6 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("high alarm") << 7 << 7 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("stock edit") << 8 << 8 << u"1|Null"_s << u"0|Null"_s;
        QTest::newRow("opening edit follows the stock box") << 9 << 10 << u"0|Null"_s << u"0|Null"_s;
    }

    /// Only the row of that setting changes, and the session follows at once.
    void written()
    {
        QFETCH(int, box);
        QFETCH(int, id);
        QFETCH(QString, on);
        QFETCH(QString, off);
        const int* const globals[] = {&gNoOverIssue, &gNoPriceEdit, &gNoAvgUpdate, &gNoNegativeQty, nullptr,
                                      &gWithMoney,   &gLowAlarm,    &gHighAlarm,   &gStockEdit001,  &gOpeningEdit001};
        const QString others = u"select ID,setval,setstr from sysinfo where ID<>%1 order by ID"_s.arg(id);
        const QStringList before = ledger_->rows(others);
        for (const bool tick : {true, false}) {
            auto& form = theForm<SysFuncSet>();
            if (tick && box >= 8)
                boxes_->expect(box == 8 ? stockWarning : openingWarning, Answer::Yes);
            form.Chk[box]->click();
            saveSettings();
            QCOMPARE(setting(id), tick ? on : off);
            QCOMPARE(*globals[box] == 1, tick != (box == 5));
            QCOMPARE(ledger_->rows(others), before);
        }
    }

    void openingBalanceFollowsTheStockBox()
    {
        auto& form = theForm<SysFuncSet>();
        boxes_->expect(stockWarning, Answer::Yes);
        form.Chk[8]->click();
        boxes_->expect(openingWarning, Answer::Yes);
        form.Chk[9]->click();
        saveSettings();
        QCOMPARE(setting(10), u"1|Null"_s);
        auto& again = theForm<SysFuncSet>();
        again.Chk[8]->click(); // only the stock box: the opening row isn't touched
        saveSettings();
        QCOMPARE(setting(10), u"1|Null"_s);
        QCOMPARE(gOpeningEdit001, 1);
    }

    void factorAndDecimals()
    {
        auto& form = theForm<SysFuncSet>();
        form.Txt[4]->setText(u"1.1"_s);
        boxes_->expect(decimalsNote(u"4"_s));
        form.Txt[9]->setText(u"4"_s);
        saveSettings();
        QCOMPARE(setting(4), u"1.1|1.1"_s);
        QCOMPARE(setting(9), u"4|Null"_s);
        QCOMPARE(gPriceFormat, u"#0.0000"_s);
        QCOMPARE(gSalePriceFactor, 1.1);
        resetSession();
        gDB = ledger_->open();
        LoadSettings();
        QCOMPARE(gSalePriceFactor, 1.1);
        QCOMPARE(gPriceFormat, u"#0.0000"_s);
        theForm<SysFuncSet>().Chk[4]->click(); // no link between the prices any more
        saveSettings();
        QCOMPARE(setting(4), u"0|0"_s);
    }

    void writtenOnlyWhenChanged()
    {
        // Nobody could tell a row that was written with the same value; what another session changed tells.
        ledger_->run(u"update sysinfo set setval=7,setstr='7'"_s);
        theForm<SysFuncSet>().Chk[6]->click();
        saveSettings();
        QCOMPARE(setting(6), u"1|Null"_s);
        QCOMPARE(ledger_->value(u"select count(*) from sysinfo where setval=7"_s), u"10"_s);
        theForm<SysFuncSet>().Chk[7]->click();
        theForm<SysFuncSet>().Cmd[1]->click(); // 取消
        QVERIFY(!Form::loaded(u"SysFuncSet"_s));
        QCOMPARE(setting(7), u"7|7"_s);
        QCOMPARE(gHighAlarm, 0);
    }

    void failureHalfWay()
    {
        // A ledger whose factor can be nothing but 0: the rows before it are written, it and those behind it are not.
        ledger_->letGo();
        gDB = Database();
        QVERIFY(QFile::remove(ledger_->path()));
        QString schema = readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n');
        schema.replace(u"setstr text collate nocase"_s, u"setstr text collate nocase check (setstr='0')"_s);
        createLedger(ledger_->path(), schema, ledgerConnect.toString());
        gDB = ledger_->open();
        LoadSettings();
        auto& form = theForm<SysFuncSet>();
        form.Chk[0]->click();
        form.Chk[3]->click();
        form.Txt[4]->setText(u"1.5"_s);
        form.Chk[7]->click();
        boxes_->expect(tooOld);
        form.Cmd[0]->click();
        QVERIFY(!Form::loaded(u"SysFuncSet"_s));
        QCOMPARE(setting(0), u"1|Null"_s);
        QCOMPARE(setting(3), u"1|Null"_s);
        QCOMPARE(setting(4), QString()); // deleted already
        QCOMPARE(setting(7), u"0|Null"_s);
        QCOMPARE(gNoOverIssue + gNoNegativeQty, 2);
        QCOMPARE(gSalePriceFactor, 0.0);
        QCOMPARE(gHighAlarm, 0);
    }

    void lockedLedger()
    {
        const WriteRun other(ledger_->second());
        theForm<SysFuncSet>().Chk[0]->click();
        boxes_->expect(tooOld);
        boxes_->expectError(u"请稍候再试一次"_s); // the true reason
        theForm<SysFuncSet>().Cmd[0]->click();
        QVERIFY(!Form::loaded(u"SysFuncSet"_s));
        QCOMPARE(gNoOverIssue, 0);
    }

    // Function settings: what the documents make of them
    // ----------------------------------------------------------------

    void documentsFollow_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<bool>("on");
        for (const char* what :
             {"0 over-issue", "1 price edit", "2 average", "3 negative", "4 factor", "5 quantities", "9 decimals"})
            for (const bool on : {false, true})
                QTest::addRow("%s %s", what, on ? "on" : "off") << QString::fromLatin1(what) << on;
    }

    void documentsFollow()
    {
        QFETCH(QString, what);
        QFETCH(bool, on);
        const int id = what.left(1).toInt();
        // Set by the form to the other state and then to this one, so that both ways are gone.
        for (const bool state : {!on, on}) {
            auto& form = theForm<SysFuncSet>();
            if (id == 4) {
                form.Txt[4]->setText(state ? u"1.5"_s : u"0"_s);
            } else if (id == 9) {
                if (state)
                    boxes_->expect(decimalsNote(u"4"_s));
                form.Txt[9]->setText(state ? u"4"_s : u"2"_s);
            } else {
                form.Chk[id]->setChecked(state);
            }
            saveSettings();
        }
        resetSession();
        gDB = ledger_->open();
        gRights.set();
        gOperId = u"001"_s;
        gCanSeeCost = true;
        LoadSettings();
        LoadYearStart();

        DocumentForm& form = documentForm(id == 0 ? DocumentKind::D1 : DocumentKind::B1);
        form.Show();
        form.command(u"Menu_Add"_s)->trigger();
        LineEntry& lines = *form.lines;
        if (id == 0 && on)
            boxes_->expect(u"A1库存数量不足！"_s);
        lines.TxtHPBM->setText(u"A1"_s);
        lines.TxtSL->setText(u"30"_s);
        lines.AddGoodsLine();
        QCOMPARE(lines.count(), id == 0 && on ? 0 : 1);
        Grid& grid = *lines.GdMx;
        const auto type = [&grid](int column, const QString& text) {
            grid.edit(1, column);
            grid.TxtEnter->setText(text);
            return grid.endEdit();
        };
        switch (id) {
        case 1:
            QCOMPARE(grid.mayEdit(1, 4), !on);
            break;
        case 3:
            QVERIFY(type(3, u"-4"_s));
            QCOMPARE(grid.TextMatrix(1, 3), on ? u"4"_s : u"-4"_s);
            break;
        case 5:
            QCOMPARE(grid.columnVisible(4), !on);
            QCOMPARE(form.Txt[5]->text(), on ? u"30"_s : u"60.00"_s);
            break;
        case 9:
            QVERIFY(type(4, u"1.23456"_s));
            QCOMPARE(grid.TextMatrix(1, 5), on ? u"37.0368"_s : u"37.04"_s);
            break;
        case 2:
        case 4:
            QVERIFY(type(4, u"3"_s));
            boxes_->expectStart(u"单据保存成功！"_s);
            form.command(u"Menu_save"_s)->trigger();
            boxes_->expect(u"审核操作将对库存货品进行更新，\n\n审核后单据将不可修改！\n\n真的要继续吗？"_s,
                           Answer::Yes);
            form.command(u"Menu_Ok"_s)->trigger();
            // 10 at 2.00 and 30 at 3.00 make 40 at 2.75.
            QCOMPARE(ledger_->row(u"select F8,F7,F71 from TA4 where F1='A1'"_s),
                     id == 2 ? (on ? u"40|2|3"_s : u"40|2.75|3"_s)
                     : on    ? u"40|2.75|4.125"_s
                             : u"40|2.75|3"_s);
            break;
        default:
            break;
        }
    }

    /// A form that is open keeps the columns that it read; the next entry takes the new ones.
    void openFormsKeepWhatTheyRead()
    {
        DocumentForm& form = documentForm(DocumentKind::B1);
        form.Show();
        theForm<SysFuncSet>().Chk[5]->click();
        saveSettings();
        QVERIFY(form.lines->GdMx->columnVisible(4));
        form.command(u"Menu_Add"_s)->trigger();
        QVERIFY(!form.lines->GdMx->columnVisible(4));
    }

    // Personal settings -----------------------------------------------------------------------------------------------

    void password_data()
    {
        QTest::addColumn<QString>("stored"); // a statement's value
        QTest::addColumn<QStringList>("typed");
        QTest::addColumn<QString>("says");
        QTest::addColumn<QString>("after");
        const QString changed = u"密码修改成功！"_s;
        const QString unequal = u"新密码两次输入不同，请重新输入！"_s;
        const QString wrong = u"旧密码错误，你无权修改该用户密码！"_s;
        QTest::newRow("from none") << u"Null"_s << QStringList{{}, u"新 'a "_s, u"新 'a "_s} << changed << u"新 'a "_s;
        QTest::newRow("to none") << u"'x'"_s << QStringList{u"x"_s, {}, {}} << changed << QString();
        QTest::newRow("unequal comes first") << u"'x'"_s << QStringList{u"y"_s, u"1"_s, u"2"_s} << unequal << u"x"_s;
        QTest::newRow("wrong") << u"'x'"_s << QStringList{{}, u"1"_s, u"1"_s} << wrong << u"x"_s;
        QTest::newRow("case counts") << u"'x'"_s << QStringList{u"X"_s, u"1"_s, u"1"_s} << wrong << u"x"_s;
        QTest::newRow("blanks count") << u"'x '"_s << QStringList{u"x"_s, u"1"_s, u"1"_s} << wrong << u"x "_s;
        QTest::newRow("no way round") << u"'x'"_s << QStringList{u"' or '1'='1"_s, u"1"_s, u"1"_s} << wrong << u"x"_s;
    }

    void password()
    {
        QFETCH(QString, stored);
        QFETCH(QStringList, typed);
        QFETCH(QString, says);
        QFETCH(QString, after);
        ledger_->run(u"update TE1 set F3="_s + stored);
        S2& form = personal();
        QCOMPARE(form.LabUser->text(), u"帐号：001  名称：管理员"_s);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(form.txt[i]->echoMode(), QLineEdit::Password);
            form.txt[i]->setText(typed[i]);
        }
        boxes_->expect(says);
        form.cmd[0]->click();
        QCOMPARE(te1(u"F3"_s), after);
        QCOMPARE(Form::loaded(u"S2"_s) == nullptr, says.startsWith(u"密码修改"));
    }

    void passwordOfAnOperatorWhoIsGone()
    {
        S2& form = personal();
        ledger_->run(u"delete from TE1"_s);
        boxes_->expect(u"旧密码错误，你无权修改该用户密码！"_s);
        form.cmd[0]->click();
    }

    void texts_data()
    {
        QTest::addColumn<QString>("memo");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("pad"); // as stored; "*" is what another session put there meanwhile
        QTest::addColumn<QString>("F75");
        QTest::newRow("unchanged") << u"旧\n二"_s << u"我的公司"_s << u"*"_s << u"*"_s;
        QTest::newRow("memo") << u"it's\n'新'"_s << u"我的公司"_s << u"it’s\n’新’"_s << u"*"_s;
        QTest::newRow("caption") << u"旧\n二"_s << u"O'Hara"_s << u"*"_s << u"O’Hara"_s;
        QTest::newRow("both emptied") << QString() << QString() << QString() << QString();
    }

    void texts()
    {
        QFETCH(QString, memo);
        QFETCH(QString, caption);
        ledger_->run(u"update TE1 set pad='旧\r\n二'"_s);
        background_->setBigCaption(u"我的公司"_s);
        S2& form = personal();
        QCOMPARE(form.TxtBgCpt->text(), u"我的公司"_s);
        ledger_->run(u"update TE1 set pad='*',F75='*'"_s);
        form.TxtPad->setPlainText(memo);
        form.TxtBgCpt->setText(caption);
        form.close(); // the close box saves like the buttons
        QVERIFY(!Form::loaded(u"S2"_s));
        QTEST(te1(u"pad"_s), "pad");
        QTEST(te1(u"F75"_s), "F75");
        QCOMPARE(background_->LabBig[1]->text(), QString(caption).replace(u'\'', u'’'));
    }

    void textsOutliveALockedLedger()
    {
        S2& form = personal();
        form.TxtPad->setPlainText(u"一页备忘"_s);
        form.TxtBgCpt->setText(u"大字"_s);
        {
            const WriteRun other(ledger_->second());
            boxes_->expectError(u"帐本"_s);
            form.CmdPad->click();
            QVERIFY(Form::loaded(u"S2"_s)); // nothing of it is lost
            QVERIFY(background_->bigCaption() != u"大字");
        }
        form.CmdCptSet->click();
        QVERIFY(!Form::loaded(u"S2"_s));
        QCOMPARE(ledger_->row(u"select pad,F75 from TE1"_s), u"一页备忘|大字"_s);
    }

    void aMemoThatCannotBeReadIsNotEmpty()
    {
        gDB.Close();
        QVERIFY_THROWS_EXCEPTION(StoreError, personal());
        QVERIFY(!Form::loaded(u"S2"_s));
    }

    void pictureLife()
    {
        background_->setCaptionVisible(false);
        S2& form = personal();
        QVERIFY(!form.Img->pixmap().isNull()); // the common one
        QVERIFY(!form.CmdSet[1]->isEnabled());
        // Cancelled: nothing is chosen, but the folder is there.
        boxes_->expectFile(u"打开图片文件"_s, std::nullopt);
        form.CmdSet[0]->click();
        QCOMPARE(boxes_->lastFile.filter, u"*.jpg|*.jpg|*.bmp|*.bmp|*.gif|*.gif|*.*|*.*"_s);
        QVERIFY(QFileInfo(beside(u"image"_s)).isDir());
        QVERIFY(!form.CmdSet[1]->isEnabled());
        // A bitmap becomes the operator's .jpg, byte for byte, and is shown for what it is.
        const QByteArray bitmap = pictureBytes("BMP", Qt::red);
        writeBytes(beside(u"red.bmp"_s), bitmap);
        boxes_->expectFile(u"打开图片文件"_s, beside(u"red.bmp"_s));
        form.CmdSet[0]->click();
        QVERIFY(!QFile::exists(beside(u"image/001.jpg"_s)));
        boxes_->expect(u"管理员，您的背景图片设置成功！"_s);
        form.CmdSet[1]->click();
        QCOMPARE(readBytes(beside(u"image/001.jpg"_s)), bitmap);
        QVERIFY(near(shown(), Qt::red));
        QVERIFY(!background_->LabBig[0]->isHidden());
        QVERIFY(!form.CmdSet[1]->isEnabled());
        // Dropped, then taken back.
        form.CmdSet[3]->click();
        form.CmdSet[2]->click();
        QVERIFY(!form.CmdSet[1]->isEnabled());
        QVERIFY(QFile::exists(beside(u"image/001.jpg"_s)));
        form.CmdSet[3]->click();
        boxes_->expect(u"管理员，您的背景图片设置成功！"_s);
        form.CmdSet[1]->click();
        QVERIFY(!QFile::exists(beside(u"image/001.jpg"_s)));
        QVERIFY(near(shown(), Qt::blue));
        QVERIFY(background_->LabBig[0]->isHidden());
    }

    void unusablePictures_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("why");
        QByteArray huge = pictureBytes("BMP", Qt::red);
        huge.replace(18, 8, QByteArray::fromHex("803e0000803e0000")); // says 16000 by 16000
        QTest::newRow("missing") << QByteArray() << u"图片文件不存在"_s;
        QTest::newRow("empty") << QByteArray("") << u"不是图片，或格式不支持"_s;
        QTest::newRow("words") << QByteArray("no picture at all") << u"不是图片，或格式不支持"_s;
        QTest::newRow("cut") << pictureBytes("BMP", Qt::red).first(40) << u"图片文件已损坏"_s;
        QTest::newRow("huge") << huge << u"图片尺寸太大"_s;
    }

    /// Refused when chosen, told when it lies there already; the form works on.
    void unusablePictures()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, why);
        const QString path = beside(u"p.gif"_s);
        if (!bytes.isNull())
            writeBytes(path, bytes);
        S2& form = personal();
        boxes_->expectFile(u"打开图片文件"_s, path);
        boxes_->expect(u"无法使用图片“p.gif”：%1！"_s.arg(why));
        form.CmdSet[0]->click();
        QVERIFY(!form.CmdSet[1]->isEnabled());
        QVERIFY(!form.Img->pixmap().isNull());
        if (bytes.isNull())
            return;
        writeBytes(beside(u"image/001.jpg"_s), bytes);
        form.CmdSet[2]->click();
        QCOMPARE(form.Img->text(), why);
        dressFor(*background_, u"001"_s); // as a login does
    }

    void aPictureThatCannotBeKept()
    {
        writeBytes(beside(u"image"_s), "a file where the folder should be");
        writeBytes(beside(u"red.bmp"_s), pictureBytes("BMP", Qt::red));
        S2& form = personal();
        boxes_->expectFile(u"打开图片文件"_s, beside(u"red.bmp"_s));
        form.CmdSet[0]->click();
        boxes_->expectStart(u"无法保存图片文件"_s);
        form.CmdSet[1]->click();
        QVERIFY(form.CmdSet[1]->isEnabled()); // to try again
    }

    void accountsAsFileNames_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("file");
        QTest::newRow("plain") << u"001"_s << u"001.jpg"_s;
        QTest::newRow("Chinese, apostrophe, blank") << u"老王's a"_s << u"老王's a.jpg"_s;
        QTest::newRow("out of the folder") << u"../../x"_s << u"..%2F..%2Fx.jpg"_s;
        QTest::newRow("a drive") << u"C:\\a"_s << u"C%3A%5Ca.jpg"_s;
        QTest::newRow("wildcards") << u"?*"_s << u"%3F%2A.jpg"_s;
        QTest::newRow("its own sign") << u"a%2Fb"_s << u"a%252Fb.jpg"_s;
        QTest::newRow("a line break") << u"a\nb"_s << u"a%0Ab.jpg"_s;
    }

    void accountsAsFileNames()
    {
        QFETCH(QString, account);
        QFETCH(QString, file);
        writeBytes(beside(u"red.bmp"_s), pictureBytes("BMP", Qt::red));
        QVERIFY(keepOperatorPicture(account, beside(u"red.bmp"_s)));
        QCOMPARE(QDir(beside(u"image"_s)).entryList(QDir::Files | QDir::Hidden), QStringList{file});
        dressFor(*background_, account);
        QVERIFY(near(shown(), Qt::red));
        QVERIFY(dropOperatorPicture(account));
        QVERIFY(QDir(beside(u"image"_s)).isEmpty());
    }

    // The way in ------------------------------------------------------------------------------------------------------

    void whoMayOpenWhat()
    {
        MForm& window = MForm::get();
        window.show();
        window.applyGates();
        inModal<SysFuncSet>(u"SysFuncSet"_s, [](SysFuncSet& form) {
            QCOMPARE(form.focusWidget(), form.Chk[0]);
            form.Cmd[1]->click();
        });
        window.menuItem(u"Menu_S2502"_s)->trigger();
        gOperId = u"102"_s;
        boxes_->expect(u"对不起，此功能仅系统最高权限管理员“001”可以使用！您无此权限！"_s);
        window.menuItem(u"Menu_S2502"_s)->trigger();
        gRights.reset();
        window.applyGates();
        inModal<S2>(u"S2"_s, [](S2& form) {
            QCOMPARE(form.focusWidget(), form.txt[0]);
            form.cmd[1]->click();
        });
        window.menuItem(u"Menu_S2"_s)->trigger(); // everybody
        gOperId.clear();
        boxes_->expect(u"请先登录系统！"_s);
        window.menuItem(u"Menu_S2"_s)->trigger();
        QVERIFY(!Form::loaded(u"S2"_s));
        delete &window;
    }
};

QTEST_MAIN(SettingsTest)
#include "settings_test.moc"
