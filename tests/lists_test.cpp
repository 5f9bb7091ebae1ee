// The lists of stock, documents and stock-takes through the real forms: which rows, which sums, which conditions, and
// who sees what.

#include "form_test.h"
#include "ledger/Module1.h"
#include "ledger/engine.h"
#include "modal_forms.h"
#include "platform/base/clock.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "printed.h"
#include "reports/C1.h"
#include "reports/C3.h"
#include "reports/Lst.h"

#include <QLabel>
#include <QtTest>

namespace {

struct Condition
{
    QString field;
    QString relation;
    QString value;
    QString connective = u"并且"_s;
};

} // namespace

class ListsTest : public FormTest
{
    Q_OBJECT

private:
    QString status_;

    void run(Form& form, const QString& name)
    {
        QAction* action = form.command(name);
        QVERIFY2(action && action->isVisible() && action->isEnabled(), qPrintable(name));
        action->trigger();
    }

    /// The first column of the records, then the text in the row of sums; "" for an empty list.
    static QString codes(const ListForm& form, int column = 0)
    {
        QStringList found;
        for (int row = 1; row < form.GD->Rows(); ++row)
            found += form.GD->TextMatrix(row, column);
        return found.join(u' ');
    }

    static QStringList line(const ListForm& form, int row)
    {
        QStringList cells;
        for (int column = 0; column < form.GD->Cols(); ++column)
            cells += form.GD->TextMatrix(row, column);
        return cells;
    }

    static QString checkedSort(const Form& form)
    {
        QStringList checked;
        for (int i = 0; i < 6; ++i)
            if (const QAction* item = form.command(controlName(u"Menu_S"_s, i)); item && item->isChecked())
                checked += QString::number(i);
        return checked.join(u' ');
    }

    void search(ListForm& form, const QList<Condition>& conditions)
    {
        inModal<Query>(u"Query"_s, [conditions](Query& query) {
            for (const Condition& condition : conditions) {
                query.CmbLG->setCurrentText(condition.connective);
                query.CmbF->setCurrentText(condition.field);
                query.CmbGX->setCurrentText(condition.relation);
                if (query.DTP->isVisibleTo(&query))
                    query.DTP->setText(condition.value);
                else
                    query.Txt->setText(condition.value);
                query.CmdAdd->click();
            }
            query.CmbF->setCurrentIndex(0);
            query.Txt->clear();
            query.CmdQuery->click();
        });
        run(form, u"Menu_query"_s);
    }

    QStringList searchFields(ListForm& form)
    {
        QStringList fields;
        inModal<Query>(u"Query"_s, [&fields](Query& query) {
            for (int i = 0; i < query.CmbF->count(); ++i)
                fields += query.CmbF->itemText(i) + u'=' + query.Gd->TextMatrix(i + 1, 1) + u'/' +
                          query.Gd->TextMatrix(i + 1, 2);
            query.Cmdcancel->click();
        });
        run(form, u"Menu_query"_s);
        return fields;
    }

    static void refresh(ListForm& form)
    {
        form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.GD->setFocus();
        QTest::keyClick(form.windowHandle(), Qt::Key_F5);
    }

    void become(std::initializer_list<OperatorRight> rights)
    {
        gOperId = u"002"_s;
        gRights.reset();
        for (const OperatorRight right : rights)
            gRights.set(size_t(right));
        gCanSeeCost = hasRight(OperatorRight::Cost);
        for (Form* form : Form::all())
            form->sessionChanged();
    }

    void goods(const QString& code, const QString& category, const QString& numbers)
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8,V1,V2) values ('%1','名%1','%2','个','M',%3)"_s.arg(
            code, category, numbers));
    }

    void document(const QString& header, const QString& number, const QString& date, const QString& auditor,
                  const QString& lines)
    {
        ledger_->run(u"insert into %1 (F1,F2,F3,F5,F6,F10) values ('%2','%3','001','甲',%4,'附')"_s.arg(header, number,
                                                                                                        date, auditor));
        for (const QString& values : lines.split(u';', Qt::SkipEmptyParts))
            ledger_->run(u"insert into %1 (F0,%3) values ('%2',%4)"_s.arg(
                header + u'1', number, header == u"TC2" ? u"F1,F5,F6,F7"_s : u"F1,F6,F7"_s, values));
    }

    void furnish() override
    {
        setStatusHost({[this](int panel, const QString& text) {
                           if (panel == 4)
                               status_ = text;
                       },
                       [this](int) { return status_; }});
    }

private slots:
    // Stock -----------------------------------------------------------------------------------------------------------

    void stockList_data()
    {
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<QString>("codes");
        QTest::addColumn<QString>("amounts"); // the last column
        QTest::addColumn<QString>("caption");
        const QString plain = u"库存货品统计"_s;
        const QString low = u"库存报警：低于安全库存的货品"_s;
        const QString high = u"库存报警：高于最高库存的货品"_s;
        const auto row = [](const char* name, const QStringList& commands, const QString& codes, const QString& amounts,
                            const QString& caption) { QTest::newRow(name) << commands << codes << amounts << caption; };
        row("opening: what isn't 0, at sale price", {}, u"A B D 合计："_s, u"30.00 20.00 -4.00 46.00"_s, plain);
        row("at cost: all", {u"Menu_Price(0)"_s}, u"A B C D 合计："_s, u"20.00 30.00 0.00 -2.00 48.00"_s, plain);
        row("all at sale price", {u"Menu_Price(0)"_s, u"Menu_Price(1)"_s}, u"A B C D 合计："_s,
            u"30.00 20.00 0.00 -4.00 46.00"_s, plain);
        row("by quantity", {u"Menu_S(2)"_s}, u"D A B 合计："_s, u"-4.00 30.00 20.00 46.00"_s, plain);
        row("by cost, though the sale price shows", {u"Menu_S(3)"_s}, u"D B A 合计："_s, u"-4.00 20.00 30.00 46.00"_s,
            plain);
        row("by amount at cost", {u"Menu_S(4)"_s}, u"D A B 合计："_s, u"-4.00 30.00 20.00 46.00"_s, plain);
        row("below safety stock; a Null there is none", {u"Menu_Bellow"_s}, u"A C 合计："_s, u"30.00 0.00 30.00"_s,
            low);
        row("above highest stock; 0 is none", {u"Menu_Morethan"_s}, u"B 合计："_s, u"20.00 20.00"_s, high);
        row("an alarm is at sale price", {u"Menu_Price(0)"_s, u"Menu_Morethan"_s}, u"B 合计："_s, u"20.00 20.00"_s,
            high);
        row("a price leaves the alarm", {u"Menu_Bellow"_s, u"Menu_Price(0)"_s}, u"A B C D 合计："_s,
            u"20.00 30.00 0.00 -2.00 48.00"_s, plain);
    }

    void stockList()
    {
        QFETCH(QStringList, commands);
        goods(u"A"_s, u"001"_s, u"2,3,10,11,10"_s);
        goods(u"B"_s, u"001"_s, u"1.5,1,20,20,19"_s);
        goods(u"C"_s, u"009"_s, u"4,5,0,0.1,0"_s);
        goods(u"D"_s, u"009"_s, u"1,2,-2,Null,0"_s);
        C1& form = C1::theWindow();
        form.Show();
        for (const QString& command : commands)
            run(form, command);
        QTEST(codes(form), "codes");
        QTEST(codes(form, 7), "amounts");
        QTEST(form.Caption(), "caption");
        const bool cost = form.GD->TextMatrix(0, 6) == u"成本价格";
        QCOMPARE(form.command(u"Menu_Price(0)"_s)->isChecked(), cost);
        QCOMPARE(form.command(u"Menu_Price(1)"_s)->isChecked(), !cost);
        const QString last = commands.isEmpty() ? QString() : commands.last();
        QCOMPARE(checkedSort(form), last.startsWith(u"Menu_S(") ? last.mid(7, 1) : u"0"_s);
        QCOMPARE(status_, u"货品库存资料：共 %1 条记录 当前为第 1 条"_s.arg(form.GD->Rows() - 2));
    }

    void quantities()
    {
        goods(u"A"_s, u"001"_s, u"1,1,0.12345,0,0"_s);
        goods(u"B"_s, u"001"_s, u"1,1,0.125,0,0"_s);
        goods(u"C"_s, u"001"_s, u"1,1,0.00000001,0,0"_s);
        goods(u"D"_s, u"001"_s, u"Null,Null,7,0,0"_s);
        gPriceFormat = PriceMask(gPriceDecimals = 3);
        const C1& form = C1::theWindow();
        QCOMPARE(codes(form, 5), u"0.123 0.125 0.000 7 7.248"_s);
        QCOMPARE(codes(form, 6), u"1.000 1.000 1.000  "_s);
        QCOMPARE(form.GD->TextMatrix(5, 7), u"0.248"_s);
    }

    void limits()
    {
        {
            const WriteRun all(ledger_->second());
            for (int i = 0; i < 1801; ++i)
                goods(u"G%1"_s.arg(i, 4, 10, QChar(u'0')), u"001"_s, u"1,1,%1,5000,0"_s.arg(1801 - i));
        }
        C1& form = C1::theWindow();
        QCOMPARE(form.GD->Rows(), 1 + 1800 + 1);
        QCOMPARE(form.GD->TextMatrix(1800, 0), u"G1799"_s);
        run(form, u"Menu_Bellow"_s);
        QCOMPARE(form.GD->Rows(), 1 + 1000 + 1);
        run(form, u"Menu_Price(1)"_s);
        QCOMPARE(form.GD->Rows(), 1 + 1801 + 1);
    }

    void searchTheStock()
    {
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        goods(u"B"_s, u"001"_s, u"1,1,20,0,0"_s);
        goods(u"C"_s, u"009"_s, u"4,5,0,1,0"_s);
        C1& form = C1::theWindow();
        form.Show();
        QCOMPARE(searchFields(form).join(u' '),
                 u"货品编码=TA4.F1/0 货品名称=TA4.F2/0 类别编码=TA4.F3/0 计量单位=TA4.F4/0 规格型号=TA4.F5/0 "
                 "数量=TA4.F8/1 成本价格=TA4.F7/1 库存金额=Ta4.F7*Ta4.F8/1"_s);
        search(form, {{u"货品编码"_s, u"等于(=)"_s, u"A"_s}, {u"类别编码"_s, u"等于(=)"_s, u"009"_s, u"或者"_s}});
        QCOMPARE(codes(form), u"A 合计："_s); // C has no stock, which the opening list doesn't show
        run(form, u"Menu_Price(0)"_s);
        QCOMPARE(codes(form), u"A C 合计："_s);
        run(form, u"Menu_Bellow"_s);
        QCOMPARE(codes(form), u"A C 合计："_s);
        search(form, {{u"成本价格"_s, u"大于(>)"_s, u"3"_s}});
        QCOMPARE(codes(form), u"C 合计："_s);
        search(form, {});
        QCOMPARE(codes(form), u"A C 合计："_s);
        search(form, {{u"货品编码"_s, u"等于(=)"_s, u"O'Neil"_s}});
        QCOMPARE(codes(form), QString());
        QCOMPARE(form.GD->Rows(), 2);
        QCOMPARE(status_, u"无信息"_s);
    }

    void costIsForThoseWithTheRight()
    {
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        goods(u"B"_s, u"001"_s, u"9,3,10,11,0"_s);
        C1& form = C1::theWindow();
        form.Show();
        search(form, {{u"成本价格"_s, u"小于(<)"_s, u"5"_s}});
        run(form, u"Menu_Price(0)"_s);
        QCOMPARE(line(form, 1).mid(6), (QStringList{u"2.00"_s, u"20.00"_s}));
        become({OperatorRight::Stock});
        QCOMPARE(codes(form, 6), QString()); // neither the cost nor what was found by it
        QVERIFY(!form.command(u"Menu_M"_s)->isVisible());
        QCOMPARE(searchFields(form).size(), 6);
        refresh(form);
        QCOMPARE(codes(form, 6), u"3.00 3.00 "_s);
        boxes_->expectStart(u""_s);
        form.Menu_Price(C1::Price::Cost);
        QCOMPARE(form.GD->TextMatrix(0, 6), u"销售价格"_s);

        become({OperatorRight::Stock}); // the same one again: the list stays
        QCOMPARE(codes(form), u"A B 合计："_s);
        become({OperatorRight::In, OperatorRight::Cost});
        QVERIFY(!form.GD->isVisible());
        QVERIFY(form.findChild<QLabel*>(u"LabBarred"_s)->isVisible());
        QVERIFY(!form.command(u"Menu_query"_s)->isEnabled());
        become({OperatorRight::Stock, OperatorRight::Cost});
        QVERIFY(form.GD->isVisible());
        QVERIFY(form.command(u"Menu_M"_s)->isVisible());
    }

    void quantityOnly()
    {
        gWithMoney = 0;
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        const auto hidden = [](const ListForm& form) {
            QStringList columns;
            for (int i = 0; i < form.GD->Cols(); ++i)
                if (!form.GD->columnVisible(i))
                    columns += form.GD->TextMatrix(0, i);
            return columns.join(u' ');
        };
        QCOMPARE(hidden(C1::theWindow()), u"销售价格 库存金额"_s);
        QVERIFY(!C1::theWindow().command(u"Menu_M"_s)->isVisible());
        QCOMPARE(hidden(Lst::theWindow(StatisticsMode::B2)), u"价格 金额"_s);
        QCOMPARE(hidden(theForm<C3>()), u"核算价格 盈亏额"_s);
    }

    void alarmWindows()
    {
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        C1& alarm = C1::newWindow(C1::Mode::LowAlarm);
        C1& stock = C1::theWindow();
        QVERIFY(&stock != &alarm);
        QCOMPARE(stock.Caption(), u"库存货品统计"_s);
        QCOMPARE(&C1::theWindow(C1::Mode::HighAlarm), &stock);
        QCOMPARE(stock.Caption(), u"库存报警：高于最高库存的货品"_s);
        stock.Unload();
        QCOMPARE(status_, u"五金帐本"_s);
        QVERIFY(&C1::theWindow() != &alarm);
    }

    // Documents -------------------------------------------------------------------------------------------------------

    void statistics_data()
    {
        QTest::addColumn<StatisticsMode>("mode");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("partner"); // caption and first name
        QTest::newRow("inbound") << StatisticsMode::B2 << u"TB1"_s << u"入库"_s << u"供货单位 供甲"_s;
        QTest::newRow("returned") << StatisticsMode::B4 << u"TB3"_s << u"退货"_s << u"供货单位 供甲"_s;
        QTest::newRow("outbound") << StatisticsMode::D2 << u"TD1"_s << u"出库"_s << u"出货单位 出乙"_s;
        QTest::newRow("taken back") << StatisticsMode::D4 << u"TD3"_s << u"退库"_s << u"出货单位 出乙"_s;
    }

    void statistics()
    {
        QFETCH(StatisticsMode, mode);
        QFETCH(QString, header);
        QFETCH(QString, word);
        QFETCH(QString, partner);
        ledger_->run(u"delete from TA1"_s);
        ledger_->run(u"delete from TA2"_s);
        ledger_->run(u"insert into TA1 (F1,F2) values ('001','供甲')"_s);
        ledger_->run(u"insert into TA2 (F1,F2) values ('001','出乙')"_s);
        ledger_->run(u"insert into TA3 (F1,F2) values ('X','五金')"_s);
        goods(u"A"_s, u"X"_s, u"2,3,10,11,0"_s);
        document(header, u"N1"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',3,1.5;'ZZ',0.1,10"_s);
        document(header, u"N2"_s, u"2004-11-18"_s, u"Null"_s, u"'A',100,1"_s);
        document(header, u"N3"_s, u"2004-11-18"_s, u"''"_s, u"'A',100,1"_s);
        document(header, u"N4"_s, u"2004-11-9"_s, u"'甲'"_s, u"'A',-1,7"_s);
        document(header, u"N5"_s, u"2004-11-10"_s, u"'甲'"_s, u"'A',2,1"_s);
        Lst& form = Lst::theWindow(mode);
        form.Show();
        QCOMPARE(form.Caption(), word + u"统计"_s);
        QCOMPARE(codes(form), u"N1 N1 合计："_s);
        const int first = form.GD->TextMatrix(1, 5) == u"A" ? 1 : 2; // lines of a document have no order
        QCOMPARE(line(form, first),
                 (QStringList{u"N1"_s, u"2004-11-18"_s, u"001"_s, partner.section(u' ', 1), u"附"_s, u"A"_s, u"名A"_s,
                              u"M"_s, u"X"_s, u"五金"_s, u"个"_s, u"3"_s, u"1.50"_s, u"4.50"_s, QString()}));
        QCOMPARE(form.GD->TextMatrix(0, 3), partner.section(u' ', 0, 0));
        QCOMPARE(form.GD->TextMatrix(3 - first, 6), QString());
        QCOMPARE(line(form, 3).mid(11), (QStringList{u"3.1"_s, QString(), u"5.50"_s, QString()}));
        QCOMPARE(status_, word + u"资料：共 2 条记录 当前为第 1 条"_s);

        // A search replaces the day; what it joins by "or" stays in brackets before the audit is asked for.
        search(form, {{u"货品编码"_s, u"等于(=)"_s, u"无"_s}, {u"数量"_s, u"大于(>)"_s, u"-5"_s, u"或者"_s}});
        QCOMPARE(codes(form), u"N4 N5 N1 N1 合计："_s); // in the order of time
        run(form, u"Menu_S(3)"_s);
        QCOMPARE(codes(form, 11), u"-1 0.1 2 3 4.1"_s);
        QCOMPARE(checkedSort(form), u"3"_s);
        run(form, u"Menu_S(5)"_s);
        QCOMPARE(codes(form, 13), u"-7.00 1.00 2.00 4.50 0.50"_s);
        search(form, {{u"日期"_s, u"小于(<=)"_s, u"2004-11-9"_s}}); // the date named is until
        QCOMPARE(codes(form), u"N4 合计："_s);
        search(form, {});
        QCOMPARE(codes(form, 13), u"-7.00 1.00 2.00 4.50 0.50"_s);

        QCOMPARE(searchFields(form).size(), 15);
        QCOMPARE(searchFields(form)[13], u"金额=%1.F6*%1.F7/1"_s.arg(header + u'1'));
    }

    void statisticsShareAWindow()
    {
        document(u"TB1"_s, u"N1"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',3,1.5"_s);
        Lst& form = Lst::theWindow(StatisticsMode::B2);
        form.Show();
        run(form, u"Menu_S(4)"_s);
        QCOMPARE(&Lst::theWindow(StatisticsMode::B2), &form);
        QCOMPARE(checkedSort(form), u"4"_s);
        QCOMPARE(&Lst::theWindow(StatisticsMode::D2), &form);
        QCOMPARE(form.Caption(), u"出库统计"_s);
        QCOMPARE(checkedSort(form), u"0"_s);
        QCOMPARE(status_, u"无信息"_s);
        become({OperatorRight::In});
        QVERIFY(!form.GD->isVisible());
        Lst::theWindow(StatisticsMode::B4);
        QVERIFY(form.GD->isVisible());
    }

    void aFailureKeepsTheList()
    {
        document(u"TB1"_s, u"N1"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',3,1.5"_s);
        Lst& form = Lst::theWindow(StatisticsMode::B2);
        form.Show();
        ledger_->second().connection().executeOwn(u"alter table TB11 rename to Gone"_s, {});
        boxes_->expectError(QString());
        run(form, u"Menu_S(2)"_s);
        QCOMPARE(codes(form), u"N1 合计："_s);
        QCOMPARE(checkedSort(form), u"0"_s);
        ledger_->second().connection().executeOwn(u"alter table TD11 rename to GoneToo"_s, {});
        QVERIFY_EXCEPTION_THROWN(Lst::theWindow(StatisticsMode::D2), StoreError);
        QCOMPARE(form.Caption(), u"入库统计"_s);
        ledger_->second().connection().executeOwn(u"alter table GoneToo rename to TD11"_s, {});
        QCOMPARE(Lst::theWindow(StatisticsMode::D2).Caption(), u"出库统计"_s);
    }

    // Stock-takes -----------------------------------------------------------------------------------------------------

    void gains()
    {
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        document(u"TC2"_s, u"P1"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',10,7,2;'B',5,5,4"_s);
        document(u"TC2"_s, u"P2"_s, u"2004-11-18"_s, u"Null"_s, u"'A',1,9,2"_s);
        document(u"TC2"_s, u"P3"_s, u"2004-11-18"_s, u"''"_s, u"'A',1,1.5,2"_s);
        document(u"TC2"_s, u"P4"_s, u"2004-11-9"_s, u"'甲'"_s, u"'A',1,3,2"_s);
        ledger_->run(u"update TC2 set F3='002' where F1='P1'"_s);
        C3& form = theForm<C3>();
        form.Show();
        QCOMPARE(form.Caption(), u"库存货品盘点统计"_s);
        QCOMPARE(form.GD->Rows(), 5); // an empty auditor counts as audited, a Null doesn't
        QCOMPARE(line(form, 4), (QStringList{u"盈亏额合计："_s, QString(), QString(), QString(), QString(), QString(),
                                             QString(), QString(), QString(), u"-5.00"_s}));
        QCOMPARE(status_, u"货品入库资料：共 3 条记录 当前为第 1 条"_s);
        QCOMPARE(checkedSort(form), QString());
        QVERIFY(!form.command(u"Menu_S(0)"_s));

        search(form, {{u"盘点单号"_s, u"等于(=)"_s, u"P2"_s}, {u"盈亏数"_s, u"大于(>)"_s, u"-9"_s, u"或者"_s}});
        QCOMPARE(form.GD->TextMatrix(1, 0), u"P4"_s);
        QCOMPARE(form.GD->Rows(), 6);
        run(form, u"Menu_S(1)"_s); // speaks of the date, sorts by the stock-taker
        QCOMPARE(codes(form, 2), u"001 001 002 002 "_s);
        run(form, u"Menu_S(3)"_s);
        QCOMPARE(codes(form, 7), u"-3 0 0.5 2 "_s);
        QCOMPARE(codes(form, 3), u"A B A A "_s);
        QCOMPARE(codes(form, 4), u"名A  名A 名A "_s); // B is no goods any more
        run(form, u"Menu_S(4)"_s);
        QCOMPARE(form.GD->TextMatrix(4, 8), u"4.00"_s);
        run(form, u"Menu_S(5)"_s);
        QCOMPARE(codes(form, 9), u"-6.00 0.00 1.00 4.00 -1.00"_s);
        QCOMPARE(checkedSort(form), u"5"_s);
        QCOMPARE(searchFields(form).join(u' '),
                 u"盘点单号=TC2.F1/0 盘点日期=TC2.F2/2 盘点人=TC2.F3/0 货品编码=TC21.F1/0 "
                 "盈亏数=(TC21.F6-TC21.F5)/1 核算价格=TC21.F7/1 盈亏额=(TC21.F6-TC21.F5)*TC21.F7/1"_s);
    }

    // On paper --------------------------------------------------------------------------------------------------------

    void prints_data()
    {
        QTest::addColumn<QString>("list"); // a form, or the statistics of a kind
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("missing"); // the file that is told of; "" where none is asked for
        QTest::addColumn<QString>("report");
        QTest::addColumn<QStringList>("formulas");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("staged");
        const auto row = [](const char* name, const QString& list, const QString& command, const QString& missing,
                            const QString& report, const QString& title, const QString& table,
                            const QStringList& staged) {
            QTest::newRow(name) << list << command << missing << report
                                << (title.isEmpty() ? QStringList() : QStringList{u"Cpt='%1'"_s.arg(title)}) << table
                                << staged;
        };
        const QString eight = u"F0,F1,F2,F3,F4,F5,F6,F7,F8 from "_s;
        const QString all = u"F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,V1,V2 from Plist order by F0"_s;
        const QString line = u"|2004-11-18|001|%1|附|A|名A|it's|001|所有货品|个|10|2.50|25.00|急'|10|25"_s;
        const QString gone = u"|2004-11-18|001|%1|附|B||||||0.5|4.00|2.00||0.5|2"_s;
        const QString supplier = u"默认货品来源"_s;
        const QString consignee = u"默认货品去向"_s;
        row("stock", u"C1"_s, u"Menu_print"_s, u"prntc1"_s, u"Prntc1.rpt"_s, {}, eight + u"PRTc1"_s,
            {u"1|A|名A|所有货品|个|it's|10|3|30"_s});
        row("stock at cost", u"C1 cost"_s, u"Menu_print"_s, u"prntc1"_s, u"Prntc1.rpt"_s, {}, eight + u"PRTc1"_s,
            {u"1|A|名A|所有货品|个|it's|10|2|20"_s});
        row("stock, cost hidden", u"C1 hidden"_s, u"Menu_print"_s, u"prntc1"_s, u"Prntc1.rpt"_s, {}, eight + u"PRTc1"_s,
            {u"1|A|名A|所有货品|个|it's|10|0|0"_s});
        row("inbound lines", u"B2"_s, u"Menu_print1"_s, {}, u"Plist.rpt"_s, u"入库流水帐"_s, all,
            {u"00001|N"_s + line.arg(supplier), u"00002|N"_s + gone.arg(supplier)});
        row("outbound sums", u"D2"_s, u"Menu_print2"_s, {}, u"Psum.rpt"_s, u"出库统计表"_s, all,
            {u"00001|N"_s + line.arg(consignee), u"00002|N"_s + gone.arg(consignee)});
        row("stock-take lines", u"C3"_s, u"Menu_print1"_s, u"prntc3"_s, u"Prntlst.rpt"_s, u"货品盘点流水帐"_s,
            eight + u"PRTB2"_s, {u"1|N|2004-11-18|001|A|名A/it's/个|-2.5|4|-10"_s, u"1|N|2004-11-18|001|B|//|0|4|0"_s});
        row("stock-take sums", u"C3"_s, u"Menu_print2"_s, u"prntc3"_s, u"Prntc3.rpt"_s, u"货品盘点报表"_s,
            eight + u"PRTB2"_s, {u"1|N|A|名A|it's|个|-2.5|4|-10"_s, u"1|N|B||||0|4|0"_s});
    }

    void prints()
    {
        QFETCH(QString, list);
        QFETCH(QString, command);
        QFETCH(QString, missing);
        QFETCH(QString, table);
        const auto open = [&list]() -> ListForm& {
            if (list.startsWith(u"C1"))
                return C1::theWindow();
            if (list == u"C3")
                return theForm<C3>();
            return Lst::theWindow(list == u"B2" ? StatisticsMode::B2 : StatisticsMode::D2);
        };
        ListForm& empty = open();
        empty.Show();
        boxes_->expect(u"无数据可打印！"_s);
        run(empty, command);
        empty.Unload();

        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        ledger_->run(u"update TA4 set F5='it''s'"_s);
        for (const QString& header : {u"TB1"_s, u"TD1"_s}) {
            document(header, u"N"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',10,2.5;'B',0.5,4"_s);
            ledger_->run(u"update "_s + header + u"1 set F8='急''' where F1='A'"_s);
        }
        document(u"TC2"_s, u"N"_s, u"2004-11-18"_s, u"'甲'"_s, u"'A',10,7.5,4;'B',5,5,4"_s);
        ListForm& form = open();
        form.Show();
        if (list == u"C1 cost")
            run(form, u"Menu_Price(0)"_s);
        if (list == u"C1 hidden")
            become({OperatorRight::Stock});
        if (!missing.isEmpty()) {
            boxes_->expect(u"报表文件%1.rpt丢失！"_s.arg(missing));
            run(form, command);
        }
        gAppPath = QStringLiteral(LAYOUTS "/");
        const Printed paper = printed([&] { run(form, command); });
        QTEST(paper.file, "report");
        QTEST(paper.formulas, "formulas");
        QStringList staged = ledger_->rows(u"select "_s + table);
        staged.replaceInStrings(u"Null"_s, QString());
        QTEST(staged, "staged");
        QVERIFY(paper.texts.join(u'\n').contains(u"it's"));
    }

    void refreshKeepsTheRow()
    {
        goods(u"A"_s, u"001"_s, u"2,3,10,11,0"_s);
        goods(u"B"_s, u"001"_s, u"2,3,10,11,0"_s);
        C1& form = C1::theWindow();
        form.Show();
        form.GD->select(2);
        QCOMPARE(status_, u"货品库存资料：共 2 条记录 当前为第 2 条"_s);
        goods(u"C"_s, u"001"_s, u"2,3,10,11,0"_s);
        refresh(form);
        QCOMPARE(status_, u"货品库存资料：共 3 条记录 当前为第 2 条"_s);
        form.GD->select(4); // the sums
        QCOMPARE(status_, u"货品库存资料：共 3 条记录 当前为第 3 条"_s);
    }
};

QTEST_MAIN(ListsTest)
#include "lists_test.moc"
