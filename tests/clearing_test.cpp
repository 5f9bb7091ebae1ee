// What deletes for good: the resulting tables, what stays when a statement fails in the midst, and what open lists show
// then. The year-end with them.

#include "admin/S3.h"
#include "admin/S302.h"
#include "admin/S303.h"
#include "admin/YearEnd.h"
#include "documents/document_form.h"
#include "form_test.h"
#include "ledger/engine.h"
#include "masterdata/A4.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"

#include <QtTest>

namespace {

const QString resetQuestion = u"数据清除后将无法恢复！真的继续吗？"_s;
const QString codeQuestion = u"警告！相关数据删除后将不可恢复！真的要继续吗？"_s;
const QString yearQuestion =
    u"警告！此操作危险！所有货品年初余额及会计年度设置将被刷新，您真的要进行库存结转操作吗？"_s;
const QString noKind = u"请选择要清除数所的类型！"_s;
const QString done = u"操作完成！"_s;

/// What stands in the tables that clearing may touch, each row by what tells it.
struct Watched
{
    QStringView table;
    QStringView columns;
};

constexpr Watched watchedTables[] = {
    {u"TA1", u"F1"},     {u"TA2", u"F1"},     {u"TA3", u"F1"},  {u"TA4", u"F1,F8,V3,V4,F7"},
    {u"TB1", u"F1"},     {u"TB11", u"F0,F1"}, {u"TB3", u"F1"},  {u"TB31", u"F0,F1"},
    {u"TC2", u"F1"},     {u"TC21", u"F0,F1"}, {u"TD1", u"F1"},  {u"TD11", u"F0,F1"},
    {u"TD3", u"F1"},     {u"TD31", u"F0,F1"}, {u"TC15", u"F1"}, {u"jxc", u"SortNo,Hpbm"},
    {u"reginfo", u"F7"},
};

QMap<QString, QString> contents(LedgerFixture& ledger)
{
    QMap<QString, QString> all;
    for (const auto& [table, columns] : watchedTables)
        all[table.toString()] =
            ledger.rows(u"select "_s + columns + u" from " + table + u" order by " + columns).join(u' ');
    return all;
}

} // namespace

class ClearingTest : public FormTest
{
    Q_OBJECT

private:
    QMap<QString, QString> before_;

    /// The tables that are other than before: "TA1: 001; TB1: ". Nothing is "".
    QString changes()
    {
        QStringList changed;
        const auto now = contents(*ledger_);
        for (const auto& [table, columns] : watchedTables)
            if (const QString name = table.toString(); now[name] != before_[name])
                changed += name + u": "_s + now[name];
        return changed.join(u"; "_s);
    }

    void breakTable(const QString& name)
    {
        ledger_->second().connection().executeOwn(u"alter table %1 rename to Gone"_s.arg(name), {});
    }

    QStringList safetyCopies() const
    {
        return QDir(ledger_->folder() + u"/数据备份/操作前备份"_s).entryList(QDir::Files);
    }

    void furnish() override
    {
        for (const char16_t* statement : {
                 u"insert into TA1 (F1,F2) values ('S2','二号供货')",
                 u"insert into TA2 (F1,F2) values ('K2','二号出货')",
                 u"insert into TA4 (F1,F2,F3,F7,F8,V3,V4) values ('A1','螺丝','001',2,10,4,1.5)",
                 u"insert into TA4 (F1,F2,F3,F7,F8,V3,V4) values ('A2','螺母','001',3,20,5,2.5)",
                 u"insert into TB1 (F1,F2,F3,F5) values ('RK1','2004-11-1','001','a')",
                 u"insert into TB11 (F0,F1,F6,F7) values ('RK1','A1',1,1)",
                 u"insert into TB11 (F0,F1,F6,F7) values ('RK1','A2',1,1)",
                 u"insert into TB1 (F1,F2,F3,F5) values ('RK2','2004-11-10','S2','a')",
                 u"insert into TB11 (F0,F1,F6,F7) values ('RK2','A2',1,1)",
                 u"insert into TB3 (F1,F2,F3,F5) values ('TH1','2004-11-10','S2','a')",
                 u"insert into TB31 (F0,F1,F6,F7) values ('TH1','A1',1,1)",
                 u"insert into TD1 (F1,F2,F3,F5) values ('CK1','2004-11-9','K2','a')",
                 u"insert into TD11 (F0,F1,F6,F7) values ('CK1','A1',1,1)",
                 u"insert into TD3 (F1,F2,F3,F5) values ('TK1','2004-11-12','001','a')",
                 u"insert into TD31 (F0,F1,F6,F7) values ('TK1','A2',1,1)",
                 u"insert into TC2 (F1,F2,F3,F5) values ('PD1','2004-11-9','a','a')",
                 u"insert into TC21 (F0,F1,F5,F6) values ('PD1','A1',1,1)",
                 u"insert into TC15 (F1) values ('x')",
                 u"insert into jxc (SortNo,Bdate,Edate,Hpbm) values (2,'2004-1-1','2004-11-18','A1')",
                 u"insert into jxc (SortNo,Bdate,Edate,Hpbm) values (-1,'2003-1-1','2003-12-31','A2')",
                 u"insert into jxc (SortNo,Bdate,Edate,Hpbm) values (0,'2004-1-1','2004-11-18','A2')",
             })
            ledger_->run(QString::fromUtf16(statement));
        before_ = contents(*ledger_);
    }

private slots:
    void reset_data()
    {
        QTest::addColumn<QList<int>>("boxes");
        QTest::addColumn<QString>("after");
        QTest::newRow("documents")
            << QList<int>{0} << u"TB1: ; TB11: ; TB3: ; TB31: ; TC2: ; TC21: ; TD1: ; TD11: ; TD3: ; TD31: ; TC15: "_s;
        QTest::newRow("stock, the year with it")
            << QList<int>{1} << u"TA4: A1|0|0|0|2 A2|0|0|0|3; jxc: ; reginfo: 2005-3-1"_s;
        QTest::newRow("master data, the year with them")
            << QList<int>{2} << u"TA1: 001; TA2: 001; TA4: ; jxc: ; reginfo: 2005-3-1"_s;
        QTest::newRow("the year alone") << QList<int>{3} << u"jxc: ; reginfo: 2005-3-1"_s;
    }

    void reset()
    {
        QFETCH(QList<int>, boxes);
        S3 form;
        QCOMPARE(form.DTP->text(), u"2004-1-1"_s);
        form.DTP->setText(u"2005-3-1"_s);
        for (const int box : boxes)
            form.Chk[box]->setChecked(true);
        boxes_->expect(resetQuestion, Answer::No);
        form.clear();
        QCOMPARE(changes(), QString());
        QVERIFY(safetyCopies().isEmpty());
        boxes_->expect(resetQuestion, Answer::Yes);
        boxes_->expect(u"系统数据清除成功！"_s);
        form.clear();
        QTEST(changes(), "after");
        QCOMPARE(safetyCopies().size(), 1);
        QVERIFY(Form::loaded(S3::formName()));
    }

    void resetBoxesAreCoupled()
    {
        S3 form;
        boxes_->expect(u"请选择要清除的对象！"_s);
        form.clear();
        form.Chk[1]->setChecked(true);
        QVERIFY(form.Chk[3]->isChecked());
        form.Chk[2]->setChecked(true);
        form.Chk[3]->setChecked(false);
        QVERIFY(!form.Chk[1]->isChecked() && !form.Chk[2]->isChecked());
    }

    void oneCode_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("after");
        QTest::newRow("supplier") << 0 << u"s2"_s
                                  << u"TA1: 001; TB1: RK1; TB11: RK1|A1 RK1|A2; TB3: ; TB31: ; TC15: "_s;
        QTest::newRow("consignee") << 1 << u"K2"_s << u"TA2: 001; TD1: ; TD11: ; TC15: "_s;
        QTest::newRow("a category: only the scratch rows") << 2 << u"001"_s << u"TC15: "_s;
        QTest::newRow("goods: whole documents, no stock-take")
            << 3 << u"A1"_s
            << u"TA4: A2|20|5|2.5|3; TB1: RK2; TB11: RK2|A2; TB3: ; TB31: ; TD1: ; TD11: ; TC15: ; "
               u"jxc: -1|A2 0|A2"_s;
        QTest::newRow("an apostrophe") << 3 << u"' or ''='"_s << u"TC15: "_s;
    }

    void oneCode()
    {
        QFETCH(int, kind);
        QFETCH(QString, code);
        S302 form;
        boxes_->expect(codeQuestion, Answer::Yes);
        boxes_->expect(u"必须输入指定编码！"_s);
        form.clear();
        form.Txt->setText(code);
        boxes_->expect(codeQuestion, Answer::Yes);
        boxes_->expect(noKind);
        form.clear();
        form.Opt[kind]->setChecked(true);
        boxes_->expect(codeQuestion, Answer::No);
        form.clear();
        QCOMPARE(changes(), QString());
        boxes_->expect(codeQuestion, Answer::Yes);
        boxes_->expect(done);
        form.clear();
        QTEST(changes(), "after");
    }

    void lastPartnerLeavesADefault()
    {
        ledger_->run(u"delete from TA1 where F1='001'"_s);
        S302 form;
        form.Txt->setText(u"S2"_s);
        form.Opt[0]->setChecked(true);
        boxes_->expect(codeQuestion, Answer::Yes);
        boxes_->expect(done);
        form.clear();
        QCOMPARE(ledger_->rows(u"select F1,F2 from TA1"_s), QStringList{u"001|默认货品来源"_s});
    }

    void oldDocuments_data()
    {
        QTest::addColumn<int>("kind"); // -1 for none
        QTest::addColumn<QString>("limit");
        QTest::addColumn<QString>("after");
        QTest::newRow("the day itself stays") << 0 << u"2004-11-10"_s << u"TB1: RK2; TB11: RK2|A2; TC15: "_s;
        QTest::newRow("returned") << 1 << u"2004-11-11"_s << u"TB3: ; TB31: ; TC15: "_s;
        QTest::newRow("out; by days, not by text") << 2 << u"2004-11-10"_s << u"TD1: ; TD11: ; TC15: "_s;
        QTest::newRow("returned by consignees, none that old") << 3 << u"2004-11-12"_s << u"TC15: "_s;
        QTest::newRow("stock-takes") << 4 << u"2004-12-1"_s << u"TC2: ; TC21: ; TC15: "_s;
        QTest::newRow("none chosen") << -1 << u"2005-1-1"_s << QString();
    }

    void oldDocuments()
    {
        QFETCH(int, kind);
        QFETCH(QString, limit);
        S303 form;
        QCOMPARE(form.DTP->text(), u"2004-11-18"_s);
        form.DTP->setText(limit);
        if (kind >= 0)
            form.Opt[kind]->setChecked(true);
        boxes_->expect(u"警告！相关数据删除后将不可恢复！真的要删除"_s + limit + u"之前的指定类型单据吗？"_s,
                       Answer::Yes);
        boxes_->expect(kind >= 0 ? done : noKind);
        form.clear();
        QTEST(changes(), "after");
        QCOMPARE(safetyCopies().size(), kind >= 0 ? 1 : 0);
    }

    void yearEnd_data()
    {
        QTest::addColumn<bool>("documents");
        QTest::addColumn<bool>("reports");
        QTest::addColumn<QString>("after");
        const QString carried = u"TA4: A1|10|10|2|2 A2|20|20|3|3; "_s;
        const QString begun = u"reginfo: 2004-11-19"_s;
        QTest::newRow("all kept") << false << false << carried + u"jxc: -2|A1 -1|A2 0|A2; "_s + begun;
        QTest::newRow("reports cleared") << false << true << carried + u"jxc: ; "_s + begun;
        QTest::newRow("documents cleared")
            << true << false
            << carried +
                   u"TB1: ; TB11: ; TB3: ; TB31: ; TC2: ; TC21: ; TD1: ; TD11: ; TD3: ; TD31: ; "
                   u"jxc: -2|A1 -1|A2 0|A2; "_s +
                   begun;
    }

    void yearEnd()
    {
        QFETCH(bool, documents);
        QFETCH(bool, reports);
        YearEnd form;
        QVERIFY2(form.labinf->text().startsWith(
                     u"    今天确实是 2004-11-18 吗？\n    库存年度结转功能将： \n    1.把 2004-11-19 设为"_s),
                 qPrintable(form.labinf->text()));
        form.Chk[1]->setChecked(documents);
        form.Chk[0]->setChecked(reports);
        gOperId = u"002"_s;
        boxes_->expect(u"只允许以001帐号的身份操作库存结转功能！您无权操作！"_s);
        form.carryForward();
        gOperId = u"001"_s;
        boxes_->expect(yearQuestion, Answer::No);
        form.carryForward();
        QCOMPARE(changes(), QString());
        boxes_->expect(yearQuestion, Answer::Yes);
        boxes_->expect(u"库存结转操作成功！"_s);
        form.carryForward();
        QTEST(changes(), "after");
        QCOMPARE(boxes_->lastBox.title, QString());
        QCOMPARE(safetyCopies().size(), 1);
    }

    void secondYearEndOfADayChangesNothing()
    {
        YearEnd form;
        for (int i = 0; i < 2; ++i) {
            if (i == 1)
                before_ = contents(*ledger_);
            boxes_->expect(yearQuestion, Answer::Yes);
            boxes_->expect(u"库存结转操作成功！"_s);
            form.carryForward();
        }
        QCOMPARE(changes(), QString());
    }

    /// A statement fails in the midst: what ran before it stays, what comes behind it didn't run.
    void failureHalfWay_data()
    {
        QTest::addColumn<QString>("broken");
        QTest::addColumn<QString>("after");
        QTest::newRow("S3") << u"TB31"_s << u"TB1: ; TB11: ; TB3: "_s;
        QTest::newRow("S302") << u"TB31"_s << u"TA4: A2|20|5|2.5|3; TB1: RK2; TB11: RK2|A2"_s;
        QTest::newRow("S303") << u"TB1"_s << QString();
        QTest::newRow("YearEnd") << u"TB3"_s
                                 << u"TA4: A1|10|10|2|2 A2|20|20|3|3; TB1: ; TB11: ; TB31: ; reginfo: 2004-11-19"_s;
    }

    void failureHalfWay()
    {
        QFETCH(QString, broken);
        const QString form = QString::fromUtf8(QTest::currentDataTag());
        const auto run = [&](auto& window, const QString& question) {
            breakTable(broken);
            boxes_->expect(question, Answer::Yes);
            boxes_->expectError(broken);
            if constexpr (requires { window.clear(); })
                runCommand([&] { window.clear(); });
            else
                runCommand([&] { window.carryForward(); });
            ledger_->second().connection().executeOwn(u"alter table Gone rename to "_s + broken, {});
        };
        S3 reset;
        reset.Chk[0]->setChecked(true);
        S302 code;
        code.Opt[3]->setChecked(true);
        code.Txt->setText(u"A1"_s);
        S303 old;
        old.Opt[0]->setChecked(true);
        YearEnd year;
        year.Chk[1]->setChecked(true);
        if (form == u"S3")
            run(reset, resetQuestion);
        else if (form == u"S302")
            run(code, codeQuestion);
        else if (form == u"S303")
            run(old, u"警告！相关数据删除后将不可恢复！真的要删除2004-11-18之前的指定类型单据吗？"_s);
        else
            run(year, yearQuestion);
        QTEST(changes(), "after");
    }

    void withoutASafetyCopy_data()
    {
        QTest::addColumn<bool>("allTheSame");
        QTest::newRow("stop") << false;
        QTest::newRow("go on all the same") << true;
    }

    void withoutASafetyCopy()
    {
        QFETCH(bool, allTheSame);
        QFile(ledger_->folder() + u"/数据备份"_s).open(QIODevice::WriteOnly); // a file where the folder should be
        YearEnd form;
        boxes_->expect(yearQuestion, Answer::Yes);
        boxes_->expectStart(u"操作前的安全备份没有完成！"_s, allTheSame ? Answer::Yes : Answer::No);
        if (allTheSame)
            boxes_->expect(u"库存结转操作成功！"_s);
        form.carryForward();
        QCOMPARE(changes().isEmpty(), !allTheSame);
    }

    void openListsShowNoGhosts()
    {
        auto& goods = theForm<A4>();
        auto& inbound = documentForm(DocumentKind::B1);
        auto& outbound = documentForm(DocumentKind::D1);
        QCOMPARE(goods.GD->Rows(), 3);
        QCOMPARE(inbound.GD->TextMatrix(1, 0).isEmpty(), false);
        outbound.Menu_Add(); // an entry under way isn't disturbed
        S302 form;
        form.Opt[3]->setChecked(true);
        form.Txt->setText(u"A2"_s);
        boxes_->expect(codeQuestion, Answer::Yes);
        boxes_->expect(done);
        form.clear();
        QCOMPARE(goods.GD->Rows(), 2);
        QCOMPARE(goods.GD->TextMatrix(1, 0), u"A1"_s);
        QCOMPARE(inbound.GD->TextMatrix(1, 0), QString());
        QCOMPARE(outbound.Edstu, 1);
    }
};

QTEST_MAIN(ClearingTest)
#include "clearing_test.moc"
