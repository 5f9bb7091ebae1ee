// The shared procedures: number text, the accounting-year boundary, document numbers and their reservation, partner
// names and the settings.

#include "ledger/Module1.h"
#include "ledger_fixture.h"
#include "platform/base/clock.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "scripted_dialogs.h"

#include <QtTest>

class Module1Test : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LedgerFixture> ledger_;

private slots:
    void init()
    {
        ledger_ = std::make_unique<LedgerFixture>();
        resetSession();
        gDB = ledger_->open();
        gOperName = u"王小敏"_s;
        setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
    }

    void cleanup() { resetSession(); }

    void priceMask_data()
    {
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<int>("after");
        QTest::newRow("none") << 0 << u"#0"_s << 0;
        QTest::newRow("money") << 2 << u"#0.00"_s << 2;
        QTest::newRow("most") << 8 << u"#0.00000000"_s << 8;
        QTest::newRow("too many") << 9 << u"#0.00000000"_s << 8;
        QTest::newRow("negative") << -1 << u"#0"_s << -1;
    }

    void priceMask()
    {
        QFETCH(int, decimals);
        QTEST(PriceMask(decimals), "mask");
        QTEST(decimals, "after");
    }

    void splitSub_data()
    {
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<QString>("difference");
        QTest::newRow("fractions") << 0.3 << 0.1 << u"0.2"_s;
        QTest::newRow("across the point") << 5.0 << 4.99 << u"0.01"_s;
        QTest::newRow("negative first") << -1.25 << 0.5 << u"-1.75"_s;
        QTest::newRow("negative second") << 1.1 << -1.1 << u"2.2"_s;
        QTest::newRow("both negative") << -2.75 << -0.25 << u"-2.5"_s;
        QTest::newRow("noise in the operand") << 0.1 + 0.2 << 0.3 << u"0"_s;
        QTest::newRow("large with fraction") << 123456789.37 << 123456789.12 << u"0.25"_s;
        QTest::newRow("small but kept") << 2.0000001 << 2.0 << u"1E-07"_s;
        QTest::newRow("too small") << 2.0000000001 << 2.0 << u"0"_s;
        QTest::newRow("no point in the exponent form") << 0.000001 << 0.0 << u"0"_s;
        QTest::newRow("exponent form as it reads") << 0.0000015 << 0.0 << u"5E-07"_s;
    }

    void splitSub()
    {
        QFETCH(double, a);
        QFETCH(double, b);
        QTEST(plainText(SplitSub(a, b)), "difference");
    }

    void yearStart_data()
    {
        QTest::addColumn<QStringList>("statements");
        QTest::addColumn<QString>("start");
        QTest::newRow("accounting year as it is written")
            << QStringList{u"update reginfo set F7='2004/03/01'"_s} << u"2004/03/01"_s;
        QTest::newRow("no date there") << QStringList{u"update reginfo set F7='00-00-00'"_s} << u"2004-1-1"_s;
        QTest::newRow("Null there") << QStringList{u"update reginfo set F7=Null"_s} << u"2004-1-1"_s;
        QTest::newRow("no company at all") << QStringList{u"delete from reginfo"_s} << u"2004-1-1"_s;
        QTest::newRow("day after the newest report")
            << QStringList{u"insert into jxc (SortNo,Edate) values (2,'2004-12-31')"_s,
                           u"insert into jxc (SortNo,Edate) values (10,'2004-2-28')"_s,
                           u"insert into jxc (SortNo,Edate) values (9,'2005-6-30')"_s}
            << u"2004-2-29"_s;
        QTest::newRow("unsaved rows don't count")
            << QStringList{u"insert into jxc (SortNo,Edate) values (0,'2004-12-31')"_s} << u"2004-1-1"_s;
        QTest::newRow("report without a date")
            << QStringList{u"insert into jxc (SortNo,Edate) values (1,'?')"_s, u"update reginfo set F7='2004-7-1'"_s}
            << u"2004-7-1"_s;
    }

    void yearStart()
    {
        QFETCH(QStringList, statements);
        for (const QString& statement : statements)
            ledger_->run(statement);
        LoadYearStart();
        QTEST(gYearStart, "start");
    }

    void nextNumber_data()
    {
        QTest::addColumn<QStringList>("saved");
        QTest::addColumn<QStringList>("reserved");
        QTest::addColumn<QString>("next");
        const QStringList none;
        QTest::newRow("first ever") << none << none << u"RK0411180001"_s;
        QTest::newRow("first of the month") << QStringList{u"RK0410310412"_s} << none << u"RK0411180001"_s;
        QTest::newRow("runs through the month")
            << QStringList{u"RK0411020007"_s, u"RK0411180003"_s} << none << u"RK0411180004"_s;
        QTest::newRow("used on another day")
            << QStringList{u"RK0411020004"_s, u"RK0411180003"_s} << none << u"RK0411180005"_s;
        QTest::newRow("hole isn't refilled")
            << QStringList{u"RK0411180004"_s, u"RK0411180006"_s, u"RK0411180009"_s} << none << u"RK0411180010"_s;
        QTest::newRow("held by another operator") << none << QStringList{u"RK0411180001"_s} << u"RK0411180002"_s;
        QTest::newRow("held since an earlier day") << none << QStringList{u"RK0411170001"_s} << u"RK0411180001"_s;
        QTest::newRow("held and saved in turn")
            << QStringList{u"RK0411180001"_s} << QStringList{u"RK0411180002"_s} << u"RK0411180003"_s;
        QTest::newRow("letters at the end walk up over the used")
            << QStringList{u"RK041118ABCD"_s, u"RK0411180001"_s, u"RK0411050002"_s} << none << u"RK0411180003"_s;
        QTest::newRow("minus at the end") << QStringList{u"RK041118-123"_s} << none << u"RK0411180001"_s;
        QTest::newRow("exponent at the end") << QStringList{u"RK0411181E99"_s} << none << u"RK0411180001"_s;
        QTest::newRow("typed number of another length")
            << QStringList{u"RK04111800055"_s, u"RK0411-7"_s} << none << u"RK0411180001"_s;
        QTest::newRow("used up") << QStringList{u"RK0411019999"_s} << none << u"请录入单据号"_s;
        QTest::newRow("last one held") << QStringList{u"RK0411019998"_s} << QStringList{u"RK0411189999"_s}
                                       << u"请录入单据号"_s;
    }

    void nextNumber()
    {
        QFETCH(QStringList, saved);
        QFETCH(QStringList, reserved);
        for (const QString& number : saved)
            ledger_->run(u"insert into TB1 (F1) values ('%1')"_s.arg(number));
        for (const QString& number : reserved)
            ledger_->run(u"insert into DanNo (DanF1,Flg,Other) values ('%1',0,'另一人')"_s.arg(number));
        QTEST(NextDocNumber(u"RK"_s, u"TB1"_s), "next");
        QCOMPARE(ledger_->value(u"select count(*) from DanNo"_s), plainText(double(reserved.size()))); // only proposed
    }

    void numbersOfTheDay_data()
    {
        QTest::addColumn<QDate>("today");
        QTest::addColumn<QString>("next");
        QTest::newRow("padded") << QDate(2005, 1, 9) << u"PD0501090001"_s;
        QTest::newRow("another century's digits") << QDate(2110, 12, 31) << u"PD1012310001"_s;
    }

    void numbersOfTheDay()
    {
        QFETCH(QDate, today);
        setClock(today.startOfDay());
        ledger_->run(u"insert into TB1 (F1) values ('PD%1')"_s.arg(today.toString(u"yyMMdd"_s) + u"0007"_s));
        QTEST(NextDocNumber(u"PD"_s, u"TC2"_s), "next");
    }

    void reservation()
    {
        QString number = u" RK0411180001　"_s;
        QVERIFY(DanNoFree(number));
        QCOMPARE(number, u"RK0411180001"_s);

        gOperName = u"O'Neil"_s;
        number = u"  RK0411180001"_s;
        DanNoReserve(number, 0);
        QCOMPARE(number, u"RK0411180001"_s);
        QVERIFY(!DanNoFree(number));
        gOperName = u"另一人"_s;
        DanNoReserve(number, 1); // taken: the first one keeps it
        QString typed = u"A'1"_s;
        DanNoReserve(typed, 1);
        QCOMPARE(ledger_->rows(u"select DanF1,Flg,Other from DanNo order by Flg"_s),
                 (QStringList{u"RK0411180001|0|O'Neil"_s, u"A'1|1|另一人"_s}));

        DanNoRelease(u" RK0411180001 "_s);
        QVERIFY(DanNoFree(number));
        QVERIFY(!DanNoFree(typed));
    }

    void promptIsNoNumber()
    {
        QString prompt = noNumberLeft;
        DanNoReserve(prompt, 0);
        QCOMPARE(ledger_->value(u"select count(*) from DanNo"_s), u"0"_s);
    }

    void failuresOfReservation()
    {
        gDB.Close();
        QString number = u"RK0411180001"_s;
        DanNoReserve(number, 0); // ignored: the number is tested again at save
        DanNoRelease(number);
        QVERIFY_EXCEPTION_THROWN(DanNoFree(number), StoreError);
        QVERIFY_EXCEPTION_THROWN(NextDocNumber(u"RK"_s, u"TB1"_s), StoreError);
    }

    void partnerName_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::newRow("supplier wins") << u"K1"_s << u"供货甲"_s;
        QTest::newRow("consignee") << u"K2"_s << u"出货乙"_s;
        QTest::newRow("list entry") << u" K2.旧名.分店 "_s << u"出货乙"_s;
        QTest::newRow("as it was typed") << u"k2"_s << u"出货乙"_s;
        QTest::newRow("unknown") << u"K9.谁"_s << u"K9"_s;
        QTest::newRow("supplier without a name hides the consignee") << u"K3"_s << u"K3"_s;
        QTest::newRow("apostrophe") << u"K'4"_s << u"K'4"_s;
        QTest::newRow("nothing") << u" "_s << QString();
    }

    void partnerName()
    {
        for (const QString& row : {u"TA1 (F1,F2) values ('K1','供货甲')"_s, u"TA2 (F1,F2) values ('K1','出货甲')"_s,
                                   u"TA2 (F1,F2) values ('K2','出货乙')"_s, u"TA1 (F1,F2) values ('K3',Null)"_s,
                                   u"TA2 (F1,F2) values ('K3','出货丙')"_s})
            ledger_->run(u"insert into "_s + row);
        QFETCH(QString, text);
        QTEST(PartnerName(text), "name");
    }

    void settingsByIds()
    {
        // A value of its own for each, so that two exchanged ones show.
        for (int id = 0; id <= 10; ++id)
            ledger_->run(u"update sysinfo set setval=%1,setstr='1%1.1' where ID=%1"_s.arg(id));
        ledger_->run(u"insert into sysinfo (ID,setval,setstr) values (11,77,'77')"_s);
        LoadSettings();
        QCOMPARE((QList<int>{gNoOverIssue, gNoPriceEdit, gNoAvgUpdate, gNoNegativeQty, gWithMoney, gLowAlarm,
                             gHighAlarm, gStockEdit001, gPriceDecimals, gOpeningEdit001}),
                 (QList<int>{0, 1, 2, 3, 5, 6, 7, 8, 8, 10}));
        QCOMPARE(plainText(gSalePriceFactor), u"14.1"_s);
        QCOMPARE(gPriceFormat, u"#0.00000000"_s);
    }

    void settingsWithoutRows()
    {
        ledger_->run(u"delete from sysinfo where ID<>9"_s);
        ledger_->run(u"update sysinfo set setval=0"_s);
        gNoOverIssue = 1;
        LoadSettings();
        QCOMPARE(gNoOverIssue, 1);
        QCOMPARE(gWithMoney, 1);
        QCOMPARE(gPriceFormat, u"#0"_s);
    }

    void nullSettings()
    {
        ledger_->run(u"update sysinfo set setval=Null,setstr=Null"_s);
        gWithMoney = 1;
        LoadSettings();
        QCOMPARE(gWithMoney, 0);
        QCOMPARE(gSalePriceFactor, 0.0);
        QCOMPARE(gPriceFormat, u"#0"_s);
    }

    void notices()
    {
        ScriptedDialogs boxes;
        boxes.expect(u"单据保存成功！\n\n但是现在单据并没有正式生效，\n必须经[审核]操作，单据才正式生效并更新库存！"_s);
        SavedNotice();
        boxes.expect(
            u"正在有数据被编辑,现在退出会造成本次编辑的数据丢失。\n\n请您首先点击<保存>或<取消>菜单结束本次编辑。"_s);
        EditingNotice();
        QCOMPARE(boxes.lastBox.title, u"提示"_s);

        QHash<int, QString> panels;
        setStatusHost({[&](int panel, const QString& text) { panels[panel] = text; },
                       [&](int panel) { return panels.value(panel); }});
        gLedgerName = u"五金商行"_s;
        BusyStatus();
        QCOMPARE(statusPanel(4), u"请稍候，系统正在读入数据……"_s);
        LedgerStatus();
        QCOMPARE(statusPanel(4), u"五金商行"_s);
        setStatusHost({});
    }
};

QTEST_GUILESS_MAIN(Module1Test)
#include "module1_test.moc"
