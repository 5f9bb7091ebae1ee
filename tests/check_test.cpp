// The check-up of a ledger: one that was lived in through the forms has no finding, and each fault that is put into it
// behind the program's back gives just its own.

#include "admin/CheckUp.h"
#include "admin/ledger_check.h"
#include "form_test.h"
#include "ledger/engine.h"
#include "printed.h"
#include "tools/headless.h"

#include <QLabel>
#include <QtTest>

class CheckTest : public FormTest
{
    Q_OBJECT

private:
    /// Enters, saves and, unless it is to stay a draft, audits a document of five pieces each.
    DocumentForm& document(DocumentKind kind, const QStringList& codes, bool audited = true)
    {
        DocumentForm& form = documentForm(kind);
        form.Menu_Add();
        if (!form.CmbLB)
            form.Txt[2]->setText(u"老王"_s);
        for (const QString& code : codes)
            headless::enterLine(form, code, u"5"_s);
        boxes_->expectStart(u"单据保存成功！"_s);
        form.Menu_save();
        if (audited) {
            boxes_->expectStart(u"审核操作将"_s, Answer::Yes);
            form.Menu_Ok();
        }
        return form;
    }
    /// Documents of all kinds, one of them a draft and one un-audited.
    void live()
    {
        using enum DocumentKind;
        document(B1, {u"A1"_s, u"A2"_s});
        document(B1, {u"A1"_s}, false);
        document(D1, {u"A1"_s, u"A3"_s});
        document(B3, {u"A2"_s});
        document(C2, {u"A3"_s});
        DocumentForm& back = document(D3, {u"A3"_s});
        back.listAll(QString());
        boxes_->expectStart(u"撤销审核操作将"_s, Answer::Yes);
        back.Menu_noOK();
        for (Form* form : QList<Form*>(Form::all()))
            form->Unload();
    }

    void furnish() override
    {
        for (const char16_t* goods : {u"'A1',20,20,2", u"'A2',100,100,0.5", u"'A3',7.3,7.3,4"})
            ledger_->run(u"insert into TA4 (F1,F8,V3,F7,F2,F3,F71) values (%1,'螺栓','001',3)"_s.arg(goods));
    }

private slots:
    void oneFault_data()
    {
        QTest::addColumn<QStringList>("statements");
        QTest::addColumn<QStringList>("found"); // "kind|where"
        const auto row = [](const char* name, const QStringList& statements, const QString& found) {
            QTest::newRow(name) << statements << (found.isEmpty() ? QStringList() : QStringList(found));
        };
        const QString draft = u"货品入库单 RK0411180002"_s;
        row("lived in", {}, {});
        row("year closed", {u"update TA4 set V3=F8"_s, u"update reginfo set F7='2004-11-19'"_s}, {});
        row("noise of binary fractions", {u"update TA4 set F8=F8+1E-10"_s}, {});
        row("stock", {u"update TA4 set F8=F8-0.001 where F1='A1'"_s}, u"库存不符|货品 A1 螺栓"_s);
        row("stock-take forgotten", {u"update TA4 set F8=F8-2.3+5 where F1='A3'"_s}, u"库存不符|货品 A3 螺栓"_s);
        row("half-way audit", {u"update TB11 set H8='2004-11-18 9:05:03' where F0='RK0411180002'"_s},
            u"审核中断|"_s + draft);
        row("unbooked line", {u"update TB11 set H8=Null where F0='RK0411180001' and F1='A1'"_s},
            u"审核不全|货品入库单 RK0411180001"_s);
        row("line without header", {u"insert into TD31 (F0,F1,F6) values ('TK9','A1',1)"_s},
            u"没有单头的明细|货品退库单 TK9"_s);
        row("header without lines", {u"insert into TC2 (F1,F2,F3) values ('PD9','2004-11-1','老王')"_s},
            u"没有明细的单据|货品盘点单 PD9"_s);
        row("number twice", {u"insert into TB1 (F1,F2,F3) values ('rk0411180002','2004-11-18','001')"_s},
            u"单号重复|货品入库单 rk0411180002"_s);
        row("unknown goods", {u"update TB11 set F1='X9' where F0='RK0411180002'"_s}, u"货品不存在|货品 X9"_s);
        row("code twice", {u"insert into TA4 (F1,F3,F8) values ('a1','001',3)"_s}, u"编码重复|货品 a1"_s);
        row("supplier gone", {u"delete from TA1"_s}, u"往来单位不存在|"_s + draft);
        row("category gone", {u"update TA4 set F3='77' where F1='A2'"_s}, u"类别不存在|货品 A2"_s);
        row("negative stock", {u"update TA4 set F8=F8-100,V3=V3-100 where F1='A3'"_s}, u"负库存|货品 A3 螺栓"_s);
        row("average too high", {u"update TA4 set F7=4.01 where F1='A1'"_s}, u"成本异常|货品 A1 螺栓"_s);
        row("average too low", {u"update TA4 set F7=0.24 where F1='A2'"_s}, u"成本异常|货品 A2 螺栓"_s);
        row("day of a document", {u"update TB1 set F2='2004-13-45' where F1='RK0411180002'"_s}, u"日期有误|"_s + draft);
        row("day of a report", {u"insert into jxc (SortNo,Bdate,Edate) values (3,'2004-1-1','月底')"_s},
            u"日期有误|综合报表 3"_s);
        row("accounting year", {u"update reginfo set F7='年初'"_s}, u"日期有误|会计年度"_s);
    }

    void oneFault()
    {
        QFETCH(QStringList, statements);
        live();
        for (const QString& statement : statements)
            ledger_->run(statement);
        const LedgerExamination examination = examineLedger();
        QStringList found;
        for (const LedgerFinding& finding : examination.findings) {
            found += finding.kind + u'|' + finding.where;
            QVERIFY(!finding.what.isEmpty() && !finding.advice.isEmpty());
        }
        QTEST(found, "found");
        QVERIFY(examination.goods == 3 && examination.documents >= 6);
    }

    void demonstrationLedgerIsClean()
    {
        endSession();
        ledger_->letGo();
        QVERIFY(QFile::remove(ledger_->path()) && QFile::copy(QStringLiteral(DEMO_LEDGER), ledger_->path()));
        beginSession(*ledger_);
        const LedgerExamination examination = examineLedger();
        for (const LedgerFinding& finding : examination.findings)
            QTest::qFail(qPrintable(finding.kind + finding.where + finding.what), __FILE__, __LINE__);
        QVERIFY(examination.documents > 500);
    }

    /// Of a file that is broken nothing else is told: what it says of stock can't be relied on.
    void brokenFile()
    {
        live();
        ledger_->run(u"update TA4 set F8=1"_s);
        for (const QString& sql : {u"pragma writable_schema = on"_s,
                                   u"delete from sqlite_master where type = 'index' and tbl_name = 'TB11'"_s})
            ledger_->second().connection().executeOwn(sql, {});
        ledger_->letGo();
        endSession();
        beginSession(*ledger_);
        const LedgerExamination examination = examineLedger();
        QVERIFY(!examination.findings.isEmpty());
        for (const LedgerFinding& finding : examination.findings)
            QCOMPARE(finding.kind, u"文件损坏"_s);
    }

    void formTellsAndPrints()
    {
        live();
        auto& form = theForm<CheckUp>();
        QCOMPARE(form.LabSum->text(), u"检查了 3 种货品、6 张单据，没有发现问题。"_s);
        boxes_->expect(u"无数据可打印！"_s);
        form.command(u"Menu_print"_s)->trigger();
        ledger_->run(u"update TA4 set F8=1 where F1='A1'"_s);
        form.command(u"Menu_run"_s)->trigger();
        QCOMPARE(form.LabSum->text(), u"检查了 3 种货品、6 张单据，发现 1 处问题。"_s);
        QCOMPARE(form.GD->Rows(), 2);
        QCOMPARE(form.GD->TextMatrix(1, 2), u"现存 1，按年初数和已审核的单据应为 20。"_s);
        gAppPath = QStringLiteral(LAYOUTS "/");
        const Printed page = printed([&] { form.command(u"Menu_print"_s)->trigger(); });
        QCOMPARE(page.file, u"Ptijian.rpt"_s);
        for (const QString& text : {u"帐本体检报告"_s, u"库存不符"_s, form.LabSum->text(), form.GD->TextMatrix(1, 3)})
            QVERIFY2(page.texts.join(QString()).contains(text), qPrintable(text));
        gRights.reset();
        gOperId = u"002"_s;
        form.sessionChanged();
        QVERIFY(!form.GD->isVisibleTo(&form) && form.LabSum->text().isEmpty());
    }
};

QTEST_MAIN(CheckTest)
#include "check_test.moc"
