// The comprehensive period report through the real form: its figures against one statement for each goods item, the
// chain of saved reports, and who may delete what.

#include "form_test.h"
#include "ledger/engine.h"
#include "ledger/literal.h"
#include "modal_forms.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/C181.h"
#include "reports/Query.h"

#include <QListWidget>
#include <QtTest>

#include <random>

namespace {

const QString surplusTest = u" AND (TC21.F6-TC21.F5)>0"_s;
const QString deficitTest = u" AND (TC21.F5-TC21.F6)>0"_s;

/// The sums of one goods item by one statement over one kind of document.
MovedSum literalSum(LedgerFixture& ledger, const QString& header, const QString& code, const QString& from,
                    const QString& to)
{
    Recordset row = ledger.second().OpenRecordset(
        u" SELECT Sum(%5.F6) AS SSL,Sum(%5.F6*%5.F7) as JE FROM %5 LEFT JOIN %1 ON %1.F1=%5.F0 WHERE %1.F6 IS NOT NULL "
        "and %1.F6<>'' AND   datediff('d',%2,%1.F2 ) >= 0  And datediff('d',%3,%1.F2 ) <= 0   AND %5.F1=%4 GROUP BY "
        "%5.F1"_s.arg(header, sqlText(from), sqlText(to), sqlText(code), header + u'1'));
    if (row.isEOF())
        return {};
    return {row.Fields(0).number(), row.Fields(1).number()};
}

} // namespace

class PeriodTest : public FormTest
{
    Q_OBJECT

private:
    QString status_;

    void sql(std::initializer_list<QString> statements)
    {
        for (const QString& statement : statements)
            ledger_->run(statement);
    }
    void document(const QString& header, const QString& number, const QString& day, const QString& auditor,
                  const QStringList& lines)
    {
        ledger_->run(
            u"insert into %1 (F1,F2,F6) values (%2,%3,%4)"_s.arg(header, sqlText(number), sqlText(day), auditor));
        for (const QString& line : lines)
            ledger_->run(u"insert into %1 (F0,F1,F6,F7) values (%2,%3)"_s.arg(header + u'1', sqlText(number), line));
    }
    void books()
    {
        sql({u"insert into TA4 (F1,F2,F4,F5,F7,F8,V3,V4) values ('A1','六角螺栓','个','M8',2.5,40,10,2)"_s,
             u"insert into TA4 (F1,F2,F4,F5,F7,F8,V3) values ('B1','平垫圈','片','8',1,0,0)"_s,
             u"insert into TA4 (F1,F2,F4,F5,F7,F8) values ('C1','电缆','米','2.5',Null,-2.5)"_s});
        document(u"TB1"_s, u"RK1"_s, u"2004-11-2"_s, u"'李'"_s, {u"'A1',30,3"_s, u"'a1',4,2.25"_s});
        document(u"TB1"_s, u"RK2"_s, u"2004-11-3"_s, u"''"_s, {u"'A1',100,3"_s});
        document(u"TB1"_s, u"RK3"_s, u"2004-11-3"_s, u"Null"_s, {u"'A1',100,3"_s});
        document(u"TB1"_s, u"RK4"_s, u"2003-12-31"_s, u"'李'"_s, {u"'A1',100,3"_s});
        document(u"TD3"_s, u"TK1"_s, u"2004-11-18"_s, u"'李'"_s, {u"'A1',2,3"_s});
        document(u"TD1"_s, u"CK1"_s, u"2004-1-1"_s, u"'李'"_s, {u"'A1',5,3.5"_s, u"'C1',2.5,5"_s});
        document(u"TB3"_s, u"TH1"_s, u"2004-11-5"_s, u"'李'"_s, {u"'A1',1,3"_s});
    }
    /// An hour of the operator's: the day changes, and the form is opened anew.
    C181& reopened(QDate day)
    {
        setClock(day.startOfDay());
        if (Form* form = Form::loaded(C181::formName()))
            form->Unload();
        return theForm<C181>();
    }
    static QStringList line(const C181& form, int row)
    {
        QStringList cells;
        for (int column = 0; column < form.GD->Cols(); ++column)
            cells += form.GD->TextMatrix(row, column);
        return cells;
    }
    static QStringList items(const C181& form)
    {
        QStringList texts;
        for (int i = 0; i < form.Comb->count(); ++i)
            texts += form.Comb->itemText(i);
        return texts;
    }
    /// "生成报表 保存报表-": what the two buttons say, a dash where one is disabled.
    static QString buttons(const C181& form)
    {
        const auto told = [](const QPushButton* button) {
            return button->text() + (button->isEnabled() ? QString() : u"-"_s);
        };
        return told(form.Cmd) + u' ' + told(form.CmdDel);
    }
    QString saved() { return ledger_->rows(u"select SortNo,Hpbm from jxc order by SortNo,Hpbm"_s).join(u' '); }
    void generateAndSave(C181& form)
    {
        form.generateOrOpen();
        boxes_->expect(u"保存成功！"_s);
        form.saveOrDelete();
    }
    void search(C181& form, const QList<QStringList>& conditions)
    {
        inModal<Query>(u"Query"_s, [conditions](Query& query) {
            for (const QStringList& condition : conditions) {
                query.CmbLG->setCurrentText(u"或者"_s);
                query.CmbF->setCurrentText(condition[0]);
                query.CmbGX->setCurrentText(condition[1]);
                query.Txt->setText(condition[2]);
                query.add();
            }
            query.search();
        });
        form.command(u"Menu_Query"_s)->trigger();
    }

    void furnish() override
    {
        setStatusHost({[this](int, const QString& text) { status_ = text; }, [this](int) { return status_; }});
    }

private slots:
    /// Numbers whose sum depends on the order of adding, numbers given twice, codes in either case.
    void sumsAreThoseOfOneStatementPerGoods()
    {
        std::mt19937 random(20041118);
        const auto upTo = [&](int bound) { return int(random() % unsigned(bound)); };
        const QStringList quantities{u"0.1"_s,    u"0.2"_s, u"0.7"_s,  u"1E+16"_s,
                                     u"-1E+16"_s, u"3"_s,   u"-0.3"_s, u"Null"_s};
        const QStringList prices{u"0.1"_s, u"3.3"_s, u"-2"_s, u"1E-07"_s, u"Null"_s};
        const QStringList auditors{u"'李'"_s, u"'李'"_s, u"'李'"_s, u"''"_s, u"Null"_s};
        const QStringList codes{u"'A1'"_s, u"'a1'"_s, u"'B1'"_s, u"'铜1'"_s, u"'Zz'"_s, u"Null"_s};
        {
            const WriteRun run(gDB);
            for (const QString& header : {u"TB1"_s, u"TB3"_s, u"TD1"_s, u"TD3"_s})
                for (int i = 0; i < 120; ++i) {
                    const QString number = sqlText(u"N%1"_s.arg(upTo(90)));
                    gDB.Execute(u"insert into %1 (F1,F2,F6) values (%2,'2004-%3-%4',%5)"_s.arg(
                        header, number, QString::number(1 + upTo(12)), QString::number(1 + upTo(28)),
                        auditors[upTo(5)]));
                    for (int lines = upTo(6); lines > 0; --lines)
                        gDB.Execute(u"insert into %1 (F0,F1,F6,F7) values (%2,%3,%4,%5)"_s.arg(
                            header + u'1', upTo(9) == 0 ? number.toLower() : number, codes[upTo(6)],
                            quantities[upTo(8)], prices[upTo(5)]));
                }
        }
        for (const auto& [from, to] : {std::pair(u"2004-1-1"_s, u"2004-12-31"_s),
                                       {u"2004-3-5"_s, u"2004-3-31"_s},
                                       {u"2004-2-1"_s, u"2004-8-20"_s},
                                       {u"2004-5-2"_s, u"2004-5-1"_s}})
            for (const SumPlan plan : {SumPlan::ByDocument, SumPlan::ByLine}) {
                const MovedByGoods moved = movedBetween(from, to, plan);
                for (const QString& code : {u"A1"_s, u"B1"_s, u"铜1"_s, u"ZZ"_s, u"none"_s}) {
                    const auto found = moved.find(foldedCode(code));
                    const MovedGoods ours = found == moved.end() ? MovedGoods() : found->second;
                    const auto both = [&](const QString& one, const QString& other) {
                        const MovedSum a = literalSum(*ledger_, one, code, from, to);
                        const MovedSum b = literalSum(*ledger_, other, code, from, to);
                        return MovedSum{a.quantity + b.quantity, a.amount + b.amount};
                    };
                    const MovedSum in = both(u"TB1"_s, u"TD3"_s);
                    const MovedSum out = both(u"TD1"_s, u"TB3"_s);
                    QVERIFY(ours.in.quantity == in.quantity && ours.in.amount == in.amount);
                    QVERIFY(ours.out.quantity == out.quantity && ours.out.amount == out.amount);
                }
            }
    }

    void firstDayOfTheYear()
    {
        sql({u"update reginfo set F7='2004-11-18'"_s});
        boxes_->expect(u"今天是会计年度的第一天，不能统计报表！"_s);
        auto& form = theForm<C181>();
        QCOMPARE(form.Labyear->text(), u"会计年度由 2004-11-18 开始"_s);
        boxes_->expect(u"电脑日期为会计年度第一天，不能生成报表！"_s);
        form.generateOrOpen();
        form.Menu_Year(); // nothing to close, nothing is said
        boxes_->expect(u"没有数据可打印！"_s);
        form.Menu_P(C181::Print::Period);
    }

    void figures_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("closing"); // of the two goods, then the total
        QTest::addRow("cost") << 0 << u"100 0 100"_s;
        QTest::addRow("period") << 1 << u"104.5 -12.5 92"_s;
        QTest::addRow("cumulative") << 2 << u"104.5 -12.5 92"_s;
    }

    void figures()
    {
        QFETCH(int, method);
        QFETCH(QString, closing);
        books();
        auto& form = theForm<C181>();
        if (method != 1) {
            boxes_->expect(method == 0 ? u"点击“生成报表”，系统就会按成本价格统计结存金额!"_s
                                       : u"点击“生成报表”，系统就会按累计出入统计结存金额!"_s);
            form.command(controlName(u"Menu_FangFa"_s, method))->trigger();
        }
        form.generateOrOpen();
        QCOMPARE(line(form, 0).mid(2, 3).join(u'|'), u"货品属性|年初余额|年初余额"_s);
        QCOMPARE(line(form, 1).mid(2, 3).join(u'|'), u"成本均价|数量|金额"_s);
        QCOMPARE(form.GD->content().captions.mid(2, 2).join(u'|'), u"货品属性 成本均价|年初余额 数量"_s);
        QCOMPARE(form.GD->Rows(), 5);
        QVERIFY(form.GD->isRowHidden(2) && !form.GD->isRowHidden(1)); // the totals stand below the others
        QCOMPARE(line(form, 2).mid(0, 16).join(u'|'),
                 u"A1|六角螺栓/M8/个|2.50|10|20|10|20|36|105|36|105|6|20.5|6|20.5|40"_s);
        QCOMPARE(line(form, 3).mid(0, 16).join(u'|'), u"C1|电缆/2.5/米|0.00|0|0|0|0|0|0|0|0|2.5|12.5|2.5|12.5|-2.5"_s);
        QCOMPARE(line(form, 4).mid(0, 16).join(u'|'), u"||||合计：|10|20|36|105|36|105|8.5|33|8.5|33|37.5"_s);
        QCOMPARE(line(form, 2).last() + u' ' + line(form, 3).last() + u' ' + line(form, 4).last(), closing);
        QCOMPARE(ledger_
                     ->rows(u"select SortNo,Bdate,Edate,Hpbm,Gprice,[As],Aj,Bs,Bj,Cs,Cj,Ds,Dj,Es,Ej,Fs,Fj,Gs,Gj "
                            "from jxc"_s)
                     .join(u' '),
                 u"0|2004-1-1|2004-11-18|A1|2.5|10|20|10|20|36|105|36|105|6|20.5|6|20.5|40|%1 "
                 "0|2004-1-1|2004-11-18|C1|0|0|0|0|0|0|0|0|0|2.5|12.5|2.5|12.5|-2.5|%2"_s.arg(
                     closing.section(u' ', 0, 0), closing.section(u' ', 1, 1)));
        QCOMPARE(status_, u"货品进出存报表：共 2 条记录 当前为第 1 条"_s);
        QCOMPARE(buttons(form), u"生成报表 保存报表"_s);
    }

    /// The test of the difference is part of the code that is looked for.
    void stockTakesCountForOddCodesOnly()
    {
        books();
        sql({u"insert into TC2 (F1,F2,F6) values ('PD1','2004-11-9','李')"_s,
             u"insert into TC21 (F0,F1,F5,F6,F7) values ('PD1','A1',1,9,2)"_s});
        auto& form = theForm<C181>();
        form.generateOrOpen();
        QCOMPARE(line(form, 2)[PeriodColumn::InQuantity], u"36"_s);
        sql({u"insert into TC21 (F0,F1,F5,F6,F7) values ('PD1',%1,1,9,2)"_s.arg(sqlText(u"a1"_s + surplusTest)),
             u"insert into TC21 (F0,F1,F5,F6,F7) values ('PD1',%1,7,4,2)"_s.arg(sqlText(u"A1"_s + deficitTest))});
        form.generateOrOpen();
        QCOMPARE(line(form, 2).mid(PeriodColumn::InQuantity, 2).join(u'|'), u"47|121"_s);
        QCOMPARE(line(form, 2).mid(PeriodColumn::OutQuantity, 2).join(u'|'), u"6|26.5"_s);
    }

    void chain()
    {
        books();
        auto* form = &theForm<C181>();
        QCOMPARE(items(*form).join(u' '), u"生成报表：2004-1-1 至 2004-11-18"_s);
        QCOMPARE(buttons(*form), u"生成报表 保存报表-"_s);
        generateAndSave(*form);
        QCOMPARE(items(*form).join(u' '), u"历史报表：2004-1-1 至 2004-11-18"_s);
        QCOMPARE(buttons(*form), u"打开报表 删除报表"_s);
        QCOMPARE(saved(), u"1|A1 1|C1"_s);
        QCOMPARE(gYearStart, u"2004-11-19"_s);

        form = &reopened({2004, 11, 19}); // no day has passed since the period began
        QCOMPARE(items(*form).join(u' '), u"历史报表：2004-1-1 至 2004-11-18"_s);
        document(u"TB1"_s, u"RK9"_s, u"2004-11-19"_s, u"'李'"_s, {u"'A1',10,3"_s});
        sql({u"update TA4 set F8=50 where F1='A1'"_s, u"update TA4 set F8=4,V3=9 where F1='B1'"_s,
             u"delete from jxc where Hpbm='C1'"_s});
        form = &reopened({2004, 11, 20});
        QCOMPARE(items(*form).join(u' '), u"生成报表：2004-11-19 至 2004-11-20 历史报表：2004-1-1 至 2004-11-18"_s);
        form->generateOrOpen();
        QCOMPARE(line(*form, 2).mid(3).join(u'|'), u"10|20|40|104.5|10|30|46|135|0|0|6|20.5|50|134.5"_s);
        QCOMPARE(line(*form, 3).mid(3).join(u'|'), u"9|0|9|0|0|0|0|0|0|0|0|0|4|0"_s); // never reported before
        boxes_->expect(u"今天是 2004-11-20 ，请首先生成本期报表并保存，之后才可以进行年度结转操作！"_s);
        form->Menu_Year();
        boxes_->expect(u"保存成功！"_s);
        form->saveOrDelete();
        QCOMPARE(saved(), u"1|A1 2|A1 2|B1 2|C1"_s);

        form->Comb->setCurrentIndex(1); // only the newest can go
        form->generateOrOpen();
        QCOMPARE(buttons(*form), u"打开报表 删除报表-"_s);
        form->Comb->setCurrentIndex(0);
        QCOMPARE(buttons(*form), u"打开报表 删除报表-"_s);
        form->generateOrOpen();
        QCOMPARE(line(*form, 2).mid(0, 3).join(u'|'), u"A1|六角螺栓/M8/个|2.50"_s);
        QCOMPARE(line(*form, 5).mid(4, 3).join(u'|'), u"合计：|49|104.5"_s);
        search(*form, {{u"货品编码"_s, u"等于(=)"_s, u"b1"_s}, {u"本期结存数"_s, u"大于(>)"_s, u"10"_s}});
        QCOMPARE(form->GD->Rows(), 5); // A1 and B1 of this report, none of another's
        QCOMPARE(buttons(*form), u"打开报表 删除报表-"_s);
        boxes_->expect(u"没有找到相关数据！"_s);
        search(*form, {{u"货品编码"_s, u"等于(=)"_s, u"zz"_s}});
        form->generateOrOpen();
        boxes_->expect(u"真的要删除下面的统计报表吗？"_s, Answer::No);
        form->saveOrDelete();
        boxes_->expect(u"真的要删除下面的统计报表吗？"_s, Answer::Yes);
        form->saveOrDelete();
        QCOMPARE(saved(), u"1|A1"_s);
        QCOMPARE(gYearStart, u"2004-11-19"_s);
        QCOMPARE(items(*form).first(), u"生成报表：2004-11-19 至 2004-11-20"_s);
        QCOMPARE(form->GD->TextMatrix(2, 0), QString());
    }

    void lastYearsReports()
    {
        books();
        auto* form = &theForm<C181>();
        generateAndSave(*form);
        sql({u"update jxc set SortNo=-SortNo where SortNo>0"_s, u"update reginfo set F7='2004-11-19'"_s});
        C181::yearStartChanged(u"2004-11-19"_s);
        QCOMPARE(form->Labyear->text(), u"会计年度由 2004-11-19 开始"_s);
        QCOMPARE(items(*form).join(u' '), u"历史报表：2004-1-1 至 2004-11-18"_s);
        form = &reopened({2004, 11, 21});
        generateAndSave(*form);
        QCOMPARE(saved(), u"-1|A1 -1|C1 2|A1 2|C1"_s); // numbers go on past last year's
        form->Comb->setCurrentIndex(1);
        form->generateOrOpen();
        QCOMPARE(buttons(*form), u"打开报表 删除报表"_s);
        gOperId = u"002"_s;
        boxes_->expect(u"您选择的是上一年度的报表，您无权删除！\n只有最高权限帐户“001”才可以执行本操作！"_s);
        form->saveOrDelete();
        gOperId = u"001"_s;
        for (const Answer last : {Answer::No, Answer::Yes}) {
            boxes_->expect(u"您选择的是上一年度的报表，不能单个删除！\n只能同时删除 2004-11-19 之前的所有报表！\n\n"
                           "确认要执行此操作吗？ "_s,
                           Answer::Yes);
            boxes_->expect(u"您选择了删除 2004-11-19 之前的所有报表！\n\n请最后确认真的要执行此操作吗？ "_s, last);
            form->saveOrDelete();
            QCOMPARE(boxes_->lastBox.title, u"警告"_s);
        }
        QCOMPARE(saved(), u"2|A1 2|C1"_s);
    }

    /// Somebody saved the period between the opening of the form and the report: told by the first goods that is in it.
    void overtaken()
    {
        books();
        auto& form = theForm<C181>();
        sql({u"insert into jxc (SortNo,Bdate,Edate,Hpbm,Gs) values (1,'2004-1-1','2004-11-18','C1',1)"_s});
        boxes_->expect(u"网络内其它操作员已经生成了本月报表！请重新打开本窗口再查看！"_s);
        form.generateOrOpen();
        QCOMPARE(saved(), u"0|A1 1|C1"_s);
        QCOMPARE(form.GD->TextMatrix(2, 0), u"A1"_s);
        QCOMPARE(buttons(form), u"生成报表 保存报表-"_s);
        QVERIFY(!status_.contains(u"请稍候"_s));
    }

    void failures_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("kept");
        QTest::addRow("a date that is none")
            << u"insert into TD3 (F1,F2) values ('TK9','无日期')"_s << u"“无日期”不是有效的日期"_s << QString();
        QTest::addRow("half-way") << u"create trigger full before insert on jxc when new.Hpbm='C1' begin "
                                     "select raise(abort, 'full'); end"_s
                                  << u"数据不能存入帐本"_s << u"0|A1"_s;
    }

    void failures()
    {
        QFETCH(QString, statement);
        QFETCH(QString, told);
        QFETCH(QString, kept);
        books();
        ledger_->second().connection().executeOwn(statement, {});
        auto& form = theForm<C181>();
        boxes_->expectStart(told);
        form.generateOrOpen();
        QCOMPARE(boxes_->lastBox.title, u"提示"_s);
        QCOMPARE(saved(), kept);
        QCOMPARE(form.GD->TextMatrix(2, 0), kept.section(u'|', 1));
        QVERIFY(!form.CmdDel->isEnabled());
    }

    void costUpdate()
    {
        books();
        sql({u"update TA4 set F8=0 where F1='C1'"_s, u"insert into TA4 (F1,F7,F8,V3,V4) values ('D1',1,-3,5,1)"_s});
        auto& form = theForm<C181>();
        form.generateOrOpen();
        boxes_->expect(u"确定要更新货品库存均价吗?"_s, Answer::No);
        form.Menu_updTA4F7();
        boxes_->expect(u"确定要更新货品库存均价吗?"_s, Answer::Yes);
        boxes_->expect(u"报表中所有货品的库存均价(成本价)更新完成！"_s);
        form.command(u"Menu_updTA4F7"_s)->trigger();
        // C1 has nothing left to divide by; D1 is below zero.
        QCOMPARE(ledger_->rows(u"select F1,F7 from TA4 order by F1"_s).join(u' '), u"A1|2.61 B1|1 C1|Null D1|-1.67"_s);
        QCOMPARE(form.GD->TextMatrix(2, PeriodColumn::Price), u"2.61"_s);
        QCOMPARE(ledger_->value(u"select Gprice from jxc where Hpbm='A1'"_s), u"2.5"_s);
        QCOMPARE(status_, u"货品进出存报表：共 3 条记录 当前为第 3 条"_s);
        boxes_->expect(u"点击“生成报表”，系统就会按成本价格统计结存金额!"_s);
        form.Menu_FangFa(ClosingMethod::Cost);
        boxes_->expect(u"当前报表的是按照成本均价统计的,没有必要再按照统计报表更新成本价!"_s);
        form.Menu_updTA4F7();
    }

    void costIsBarred()
    {
        books();
        auto& form = theForm<C181>();
        gRights.reset();
        form.sessionChanged();
        QVERIFY(form.GD->isHidden() || !form.GD->isVisibleTo(&form));
        QVERIFY(!form.command(u"Menu_updTA4F7"_s)->isEnabled());
        boxes_->expectStart(u"对不起"_s);
        form.generateOrOpen();
        QCOMPARE(saved(), QString());
    }
};

QTEST_MAIN(PeriodTest)
#include "period_test.moc"
