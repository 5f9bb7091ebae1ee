// The flow ledger and the quantity report through the real forms: what a line becomes, what is asked for, what is
// remembered, and figures that are those of the goods' own statements.

#include "form_test.h"
#include "ledger/literal.h"
#include "platform/base/date.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/C15.h"
#include "reports/C18.h"
#include "reports/quantity_report.h"
#include "reports/statistics_mode.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

/// An operator who uses the one moment at which a run lets them.
class Impatient : public DialogHost
{
public:
    explicit Impatient(std::function<void()> act)
        : act_(std::move(act))
    {}
    Answer show(const Box& box) override
    {
        QTest::qFail(qPrintable(box.text), __FILE__, __LINE__);
        return Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    std::optional<PrintJob> print(const PrintRequest&) override { return {}; }
    void doEvents() override { act_(); }

private:
    std::function<void()> act_;
};

} // namespace

class FlowTest : public FormTest
{
    Q_OBJECT

private:
    void document(const QString& header, const QString& number, const QString& date, const QString& partner,
                  const QString& auditor, const QString& booked)
    {
        ledger_->run(u"insert into %1 (F1,F2,F3,F5,F6,F10,H8) values ('%2','%3','%4','甲',%5,'附注',%6)"_s.arg(
            header, number, date, partner, auditor, booked));
    }
    void line(const QString& header, const QString& number, const QString& values)
    {
        ledger_->run(u"insert into %11 (F0,F1,F6,F7,F8,H6,H7) values ('%2',%3)"_s.replace(u"%1"_s, header)
                         .replace(u"%2"_s, number)
                         .replace(u"%3"_s, values));
    }
    void fewDocuments()
    {
        ledger_->run(u"insert into TA3 (F1,F2) values ('01','五金')"_s);
        ledger_->run(u"insert into TA1 (F1,F2) values ('K07.x','供货.厂')"_s);
        ledger_->run(u"insert into TA2 (F1,F2) values ('C1','客户')"_s);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('A1','螺栓','01','个','M8',2,3,10)"_s);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('B1','垫圈','001','片',Null,1,2,0)"_s);
        document(u"TB1"_s, u"RK2"_s, u"2004-11-2"_s, u"K07.x"_s, u"'乙'"_s, u"'2004-11-3 9:00:00'"_s);
        line(u"TB1"_s, u"RK2"_s, u"'A1',3,0.3333333,'备',13,2"_s);
        line(u"TB1"_s, u"RK2"_s, u"'ZZ',-0.0000004,2,Null,1.5,2"_s);
        document(u"TB3"_s, u"TH1"_s, u"2004-11-10"_s, u"001"_s, u"'乙'"_s, u"'2004-11-10 10:00:00'"_s);
        line(u"TB3"_s, u"TH1"_s, u"'A1',1,2.5,'O''Neil',12,2"_s);
        document(u"TD1"_s, u"CK1"_s, u"2004-11-9"_s, u"C1"_s, u"Null"_s, u"Null"_s);
        line(u"TD1"_s, u"CK1"_s, u"'B1',4,5,'',Null,Null"_s);
        document(u"TD3"_s, u"TK1"_s, u"2004-12-1"_s, u"C1"_s, u"'乙'"_s, u"'2004-12-1 8:00:00'"_s);
        line(u"TD3"_s, u"TK1"_s, u"'A1',2,5,'',14,2"_s);
    }

    static void ask(const Form& form, const QString& from, const QString& to)
    {
        form.findChild<DatePicker*>(u"DTP(0)"_s)->setText(from);
        form.findChild<DatePicker*>(u"DTP(1)"_s)->setText(to);
    }
    static QString column(const ListForm& form, int column)
    {
        QStringList found;
        for (int row = 1; row < form.GD->Rows(); ++row)
            found += form.GD->TextMatrix(row, column);
        return found.join(u' ');
    }
    static QString line(const ListForm& form, int row)
    {
        QStringList cells;
        for (int column = 0; column < form.GD->Cols(); ++column)
            cells += form.GD->TextMatrix(row, column);
        return cells.join(u'|');
    }

private slots:
    void linesOfTheFlow()
    {
        fewDocuments();
        C15& form = theForm<C15>();
        ask(form, u"2004-11-1"_s, u"2004-12-31"_s);
        form.generate();
        QCOMPARE(ledger_->rows(u"select F1,F9,F10,F11,F12,F13,F14,F15,F16,F17,F18 from TC15"_s),
                 QStringList({u"RK2|个|0.33333|3|1|0|0|13|26|备|2004-11-3 9:00:00"_s,
                              u"RK2||2|0|0|0|0|1.5|3||2004-11-3 9:00:00"_s,
                              u"TH1|个|2.5|0|0|1|2.5|12|24|O'Neil|2004-11-10 10:00:00"_s,
                              u"CK1|片|5|0|0|4|20|0|0||00-01-01"_s, u"TK1|个|5|2|10|0|0|14|28||2004-12-1 8:00:00"_s}));
        QCOMPARE(line(form, 1), u"CK1|2004-11-9|客户|附注|所有货品|B1|垫圈||片|5|0|0|4|20|0|0|"_s);
        QCOMPARE(line(form, 2), u"RK2|2004-11-2|供货.厂|附注|五金|A1|螺栓|M8|个|0.33333|3|1|0|0|13|26|备"_s);
        QCOMPARE(line(form, 6), u"合计：||||||||||5|11|5|22.5|||"_s);
    }

    void sorts_data()
    {
        QTest::addColumn<QString>("numbers");
        const QStringList orders{u"CK1 RK2 RK2 TH1 TK1"_s, u"RK2 RK2 CK1 TH1 TK1"_s, u"RK2 RK2 CK1 TK1 TH1"_s,
                                 u"RK2 RK2 TH1 TK1 CK1"_s, u"RK2 TH1 TK1 CK1 RK2"_s, u"RK2 TK1 RK2 TH1 CK1"_s,
                                 u"CK1 TH1 RK2 RK2 TK1"_s, u"TK1 RK2 RK2 TH1 CK1"_s, u"CK1 TH1 RK2 RK2 TK1"_s,
                                 u"CK1 RK2 RK2 TH1 TK1"_s};
        for (int i = 0; i < orders.size(); ++i)
            QTest::addRow("%d", i) << orders[i];
    }
    void sorts()
    {
        fewDocuments();
        C15& form = theForm<C15>();
        ask(form, u"2004-11-1"_s, u"2004-12-31"_s);
        form.generate();
        QAction* item = form.command(u"Menu_S(%1)"_s.arg(QString::fromLatin1(QTest::currentDataTag())));
        item->trigger();
        QVERIFY(item->isChecked());
        QTEST(column(form, 0).chopped(4), "numbers");
        form.generate(); // which keeps the order
        QTEST(column(form, 0).chopped(4), "numbers");
    }

    void whatIsAskedFor_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("goods");
        QTest::addColumn<QString>("partner");
        QTest::addColumn<QString>("numbers");
        const QString all = u"所有类别"_s, goods = u"所有货品"_s, anybody = u"所有单位"_s, early = u"2004-11-1"_s;
        QTest::newRow("days") << u"2004-11-9"_s << all << goods << anybody << u"CK1 TH1"_s;
        QTest::newRow("category") << early << u"001.所有货品"_s << goods << anybody << u"CK1"_s;
        QTest::newRow("pattern") << early << all << u"?1"_s << anybody << u"CK1 RK2 TH1"_s;
        QTest::newRow("code, its case no matter") << early << all << u"b1"_s << anybody << u"CK1"_s;
        QTest::newRow("no wildcard is added") << early << all << u"A"_s << anybody << u""_s;
        QTest::newRow("emptied fields") << early << all << u""_s << u" "_s << u"CK1 RK2 RK2 TH1"_s;
        QTest::newRow("picked, with a point in its code")
            << early << all << goods << u"K07.x.供货.厂"_s << u"RK2 RK2"_s;
        QTest::newRow("typed") << early << all << goods << u" c1 "_s << u"CK1"_s;
        QTest::newRow("typed pattern") << early << all << goods << u"K07.*"_s << u"RK2 RK2"_s;
        QTest::newRow("a quote") << early << all << u"A'"_s << anybody << u""_s;
    }
    void whatIsAskedFor()
    {
        QFETCH(QString, category);
        QFETCH(QString, goods);
        QFETCH(QString, partner);
        QFETCH(QString, from);
        fewDocuments();
        C15& form = theForm<C15>();
        ask(form, from, u"2004-11-30"_s);
        form.findChild<QComboBox*>(u"Comb"_s)->setCurrentText(category);
        form.findChild<QLineEdit*>(u"Txt"_s)->setText(goods);
        form.findChild<QComboBox*>(u"CmbF3"_s)->setEditText(partner);
        form.generate();
        QTEST(column(form, 0).chopped(column(form, 0).isEmpty() ? 0 : 4), "numbers");

        const QString kept = goods.isEmpty() ? u"所有货品"_s : goods;
        QCOMPARE(ledger_->rows(u"select D1,D2,A3,A4 from c15set"_s).join(u'/'),
                 QStringList({from, u"2004-11-30"_s, category, kept}).join(u'|'));
        form.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        C15& again = theForm<C15>();
        QCOMPARE(again.findChild<DatePicker*>(u"DTP(0)"_s)->text(), from);
        QCOMPARE(again.findChild<QComboBox*>(u"Comb"_s)->currentText(), category);
        QCOMPARE(again.findChild<QLineEdit*>(u"Txt"_s)->text(), kept);
        QCOMPARE(again.GD->Rows(), 2);
    }

    void cancelling()
    {
        fewDocuments();
        C15& form = theForm<C15>();
        form.Show();
        ask(form, u"2004-11-1"_s, u"2004-12-31"_s);
        auto* button = form.findChild<QPushButton*>(u"CmdCancel"_s);
        QVERIFY(!button->isVisible());
        setDialogHost(std::make_unique<Impatient>([&] {
            QVERIFY(button->isVisible());
            QVERIFY(!form.findChild<QPushButton*>(u"Cmd"_s)->isEnabled());
            QVERIFY(!form.Unload());
            form.generate(); // does nothing meanwhile
            button->click();
            QVERIFY(!button->isVisible());
        }));
        form.generate();
        QCOMPARE(column(form, 0), u"CK1 RK2 TH1 TK1 合计："_s); // of each kind the line after which the flag is asked
        QCOMPARE(ledger_->value(u"select count(*) from c15set"_s), u"1"_s);
        QVERIFY(form.findChild<QPushButton*>(u"Cmd"_s)->isEnabled());
        setDialogHost(std::make_unique<Impatient>([] {}));
        form.generate(); // the flag is down again
        QCOMPARE(form.GD->Rows(), 1 + 5 + 1);
    }

    void figuresOfTheGoodsOwnStatements_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("a month") << u"2004-3-1"_s << u"2004-3-31"_s;
        QTest::newRow("a day at the end") << u"2004-11-28"_s << u"2004-11-28"_s;
        QTest::newRow("most of it") << u"2004-2-1"_s << u"2004-11-5"_s;
        QTest::newRow("the whole") << u"2004-1-1"_s << u"2004-12-31"_s;
        QTest::newRow("nothing") << u"2005-1-1"_s << u"2005-1-2"_s;
    }
    void figuresOfTheGoodsOwnStatements()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QRandomGenerator random(20041118);
        constexpr int goods = 60;
        {
            const WriteRun all(ledger_->second());
            QList<double> stock(goods);
            const QString auditors[] = {u"'乙'"_s, u"''"_s, u"Null"_s, u"'乙'"_s};
            for (int i = 0; i < 400; ++i) {
                const StatisticsTraits& kind = statisticsTraits[random.bounded(4)];
                const QString header = kind.header.toString();
                const QString& auditor = auditors[random.bounded(4)];
                // Numbers in another order than days; a few are given twice.
                const QString number = u"N%1"_s.arg(random.bounded(900));
                document(header, number, dateText(QDate(2004, 1, 1).addDays(random.bounded(333))), u"001"_s, auditor,
                         u"Null"_s);
                for (int j = random.bounded(6); j > 0; --j) {
                    const int item = random.bounded(goods);
                    const double quantity = random.bounded(-20, 90) / (item % 3 == 0 ? 10.0 : 1000.0);
                    line(header, number,
                         u"'%1%2',%3,1,'',Null,Null"_s.arg(item % 2 == 0 ? u"g"_s : u"G"_s).arg(item).arg(quantity));
                    if (auditor != u"Null")
                        stock[item] += kind.direction == Direction::In ? quantity : -quantity;
                }
            }
            for (int i = 0; i < goods; ++i) // half of them begin at nothing, some with noise that is almost nothing
                ledger_->run(
                    u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ('G%1','名','001','个','M',2,3,%2)"_s.arg(
                        QString::number(i), sqlNumber(i % 4 == 3   ? 7.25
                                                      : i % 4 == 2 ? 0
                                                                   : stock[i])));
        }

        QStringList expected;
        for (Recordset row = gDB.OpenRecordset(u"select F1,F8 from TA4 order by F1"_s); !row.isEOF(); row.MoveNext()) {
            const double stock = row.Fields(1).text().contains(u'E') ? 0 : row.Fields(1).number();
            const auto sum = [&](const StatisticsTraits& kind, bool later) {
                const QString header = kind.header.toString();
                const QString days = later ? u"datediff('d','%3',%1.F2 ) > 0"_s
                                           : u"datediff('d','%2',%1.F2 ) >= 0  And datediff('d','%3',%1.F2 ) <= 0"_s;
                const QString own = u" SELECT SUM(%11.F6) AS SSL FROM %11 LEFT JOIN %1 ON %1.F1=%11.F0 WHERE %1.F6 IS "
                                    "NOT NULL AND  "_s +
                                    days + u" AND %11.F1="_s + sqlText(row.Fields(0).text()) + u" GROUP BY %11.F1"_s;
                const Recordset found = gDB.OpenRecordset(
                    QString(own).replace(u"%1"_s, header).replace(u"%2"_s, from).replace(u"%3"_s, to));
                return found.isEOF() ? 0 : found.Fields(0).number();
            };
            const auto& kinds = statisticsTraits;
            double closing = stock - sum(kinds[0], true) + sum(kinds[1], true);
            closing = closing + sum(kinds[2], true) - sum(kinds[3], true);
            const double in = sum(kinds[0], false), returned = sum(kinds[1], false);
            const double out = sum(kinds[2], false), back = sum(kinds[3], false);
            if (closing + in + returned + out + back == 0)
                continue;
            QStringList cells{row.Fields(0).text()};
            for (const double figure : {closing - in - back + out + returned, in, returned, out, back, closing})
                cells += plainText(figure);
            expected += cells.join(u'|');
        }
        QStringList found;
        for (const QList<Value>& row : quantityReport({from, to, {}, {}, u"F7"_s, u"F1"_s})) {
            QStringList cells{row[0].text()};
            for (int i = 4; i < row.size(); ++i)
                cells += row[i].text();
            found += cells.join(u'|');
        }
        QCOMPARE(found, expected);
    }

    void theReport()
    {
        fewDocuments();
        C18& form = theForm<C18>();
        form.Show();
        QCOMPARE(form.findChild<DatePicker*>(u"DTP(0)"_s)->text(), u"2004-11-1"_s);
        QCOMPARE(form.findChild<DatePicker*>(u"DTP(1)"_s)->text(), u"2004-11-18"_s);
        form.command(u"menu_S(4)"_s)->trigger(); // chosen before there is a report
        QCOMPARE(form.GD->Rows(), 2);
        form.generate();
        QCOMPARE(line(form, 1), u"A1|螺栓/M8|3.00|个|6|3|1|0|0|8"_s);
        QCOMPARE(line(form, 2), u"合计：||||6|3|1|0|0|8"_s); // B1: only a draft
        form.command(u"Menu_price(0)"_s)->trigger();
        QCOMPARE(form.GD->TextMatrix(1, 2), u"2.00"_s);
        ask(form, u"2004-1-1"_s, u"2004-1-2"_s);
        form.command(u"menu_S(0)"_s)->trigger(); // sorts the report that stands
        QCOMPARE(form.GD->TextMatrix(1, 5), u"3"_s);
        form.generate();
        QCOMPARE(line(form, 1), u"A1|螺栓/M8|2.00|个|6|0|0|0|0|6"_s);

        gOperId = u"002"_s;
        gRights.reset();
        gCanSeeCost = false;
        form.sessionChanged();
        QVERIFY(!form.GD->isVisible());
        QVERIFY(!form.command(u"menu_M"_s)->isVisible());
        QCOMPARE(line(form, 1), QString(9, u'|'));
    }
};

QTEST_MAIN(FlowTest)
#include "flow_test.moc"
