// The life of a document through the real forms, looked at through a second session: what is stored, what moves stock
// and average cost, what is refused and what a failure leaves behind.

#include "documents/document_form.h"
#include "documents/document_print.h"
#include "documents/goods_lookup.h"
#include "documents/line_entry.h"
#include "documents/line_paste.h"
#include "documents/new_goods_panel.h"
#include "form_test.h"
#include "ledger/Module1.h"
#include "ledger/engine.h"
#include "ledger/identity.h"
#include "memory_desktop.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/widgets/grid.h"
#include "printed.h"

#include <QCheckBox>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

namespace {

const QString auditQuestion = u"审核操作将对库存货品进行更新，\n\n审核后单据将不可修改！\n\n真的要继续吗？"_s;
const QString savedNotice =
    u"单据保存成功！\n\n但是现在单据并没有正式生效，\n必须经[审核]操作，单据才正式生效并更新库存！"_s;
const QString lockedOut = u"单据日期不能在 2004-6-1 之前！"_s;

struct Line
{
    QString code;
    QString quantity;
    QString price; ///< "" keeps the offered one
};

} // namespace

class DocumentsTest : public FormTest
{
    Q_OBJECT

private:
    /// A form as the menu shows it.
    DocumentForm& open(DocumentKind kind)
    {
        DocumentForm& form = documentForm(kind);
        form.Show();
        return form;
    }

    void run(DocumentForm& form, const char* command)
    {
        QAction* action = form.command(QString::fromLatin1(command));
        QVERIFY2(action && action->isVisible() && action->isEnabled(), command);
        action->trigger();
    }

    void enter(DocumentForm& form, const QList<Line>& lines)
    {
        for (const Line& line : lines) {
            form.lines->TxtHPBM->setText(line.code);
            form.lines->TxtSL->setText(line.quantity);
            form.lines->AddGoodsLine();
            if (line.price.isEmpty())
                continue;
            Grid& grid = *form.lines->GdMx;
            const int row = grid.Rows() - 2; // above the empty row
            grid.edit(row, 4);
            grid.TxtEnter->setText(line.price);
            QVERIFY(grid.endEdit());
        }
    }

    void add(DocumentForm& form, const QList<Line>& lines, const QString& partner = {})
    {
        run(form, "Menu_Add");
        if (!partner.isEmpty())
            form.CmbLB->setEditText(partner);
        enter(form, lines);
    }

    void save(DocumentForm& form)
    {
        boxes_->expect(savedNotice);
        run(form, "Menu_save");
    }

    void audit(DocumentForm& form)
    {
        boxes_->expect(auditQuestion, Answer::Yes);
        run(form, "Menu_Ok");
    }

    QString stock(const QString& code) { return ledger_->row(u"select F8,F7,F71 from TA4 where F1='%1'"_s.arg(code)); }

    void furnish() override
    {
        operator_ = u"王小敏"_s;
        for (const char16_t* goods :
             {u"'A1','六角螺栓','001','个','M8',2,3,10", u"'A2','平垫圈','001','片','8',0.5,1,100",
              u"'A3','电缆','001','米','BVR 2.5',4,6,0"})
            ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) values ("_s + QString::fromUtf16(goods) + u')');
    }

private slots:
    // Arithmetic ------------------------------------------------------------------------------------------------------

    void movingAverage_data()
    {
        QTest::addColumn<DocumentKind>("kind");
        QTest::addColumn<QList<double>>("before"); // quantity, cost, sale price
        QTest::addColumn<QList<double>>("line");   // quantity, price
        QTest::addColumn<bool>("updateCost");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QList<double>>("audited");
        QTest::addColumn<QList<double>>("unaudited"); // from the same state
        using enum DocumentKind;
        using L = QList<double>;
        QTest::newRow("in: worked example")
            << B1 << L{10, 2, 3} << L{30, 3} << true << 1.5 << L{40, 2.75, 4.125} << L{-20, 3.5, 5.25};
        QTest::newRow("in: no factor") << B1 << L{10, 2, 3} << L{30, 3} << true << 0.0 << L{40, 2.75, 3}
                                       << L{-20, 3.5, 3};
        QTest::newRow("in: cost kept by setting")
            << B1 << L{10, 2, 3} << L{30, 3} << false << 1.5 << L{40, 2, 3} << L{-20, 2, 3};
        QTest::newRow("in: up to exactly nothing")
            << B1 << L{-5, 2, 3} << L{5, 9} << true << 2.0 << L{0, 2, 3} << L{-10, 5.5, 11};
        QTest::newRow("return: takes its price out")
            << B3 << L{40, 2.75, 3} << L{10, 3.5} << true << 0.0 << L{30, 2.5, 3} << L{50, 2.9, 3};
        QTest::newRow("return: down to nothing")
            << B3 << L{10, 2, 3} << L{10, 9} << true << 1.0 << L{0, 2, 3} << L{20, 5.5, 5.5};
        QTest::newRow("out: below nothing")
            << D1 << L{10, 2, 3} << L{12, 99} << true << 1.5 << L{-2, 2, 3} << L{22, 2, 3};
        QTest::newRow("back in") << D3 << L{10, 2, 3} << L{4, 99} << true << 1.5 << L{14, 2, 3} << L{6, 2, 3};
    }

    void movingAverage()
    {
        QFETCH(DocumentKind, kind);
        QFETCH(QList<double>, before);
        QFETCH(QList<double>, line);
        QFETCH(bool, updateCost);
        QFETCH(double, factor);
        QFETCH(QList<double>, audited);
        QFETCH(QList<double>, unaudited);
        const auto state = [](const QList<double>& l) { return GoodsState{l[0], l[1], l[2]}; };
        QVERIFY(movedBy(traitsOf(kind), AuditStep::Audit, state(before), line[0], line[1], updateCost, factor) ==
                state(audited));
        QVERIFY(movedBy(traitsOf(kind), AuditStep::Unaudit, state(before), line[0], line[1], updateCost, factor) ==
                state(unaudited));
    }

    void aNullStaysNull()
    {
        const DocumentTraits& inbound = traitsOf(DocumentKind::B1);
        const GoodsState noCost{10.0, {}, 3.0};
        QVERIFY(movedBy(inbound, AuditStep::Audit, noCost, 5, 2, true, 1.5) == (GoodsState{15.0, {}, {}}));
        const GoodsState noStock{{}, 2.0, 3.0};
        QVERIFY(movedBy(inbound, AuditStep::Audit, noStock, 5, 2, true, 1.5) == noStock);
    }

    // Life cycle ------------------------------------------------------------------------------------------------------

    void fromEntryToAuditAndBack_data()
    {
        QTest::addColumn<DocumentKind>("kind");
        QTest::addColumn<QString>("offered"); // header and line as saved with the offered price
        QTest::addColumn<QString>("audited"); // stock, cost, sale price
        QTest::addColumn<QString>("back");
        using enum DocumentKind;
        QTest::newRow("B1") << B1 << u"A1|4|2"_s << u"14|2|3"_s << u"10|2|3"_s;
        QTest::newRow("B3") << B3 << u"A1|4|2"_s << u"6|2|3"_s << u"10|2|3"_s;
        QTest::newRow("D1") << D1 << u"A1|4|3"_s << u"6|2|3"_s << u"10|2|3"_s;
        QTest::newRow("D3") << D3 << u"A1|4|3"_s << u"14|2|3"_s << u"10|2|3"_s;
    }

    void fromEntryToAuditAndBack()
    {
        QFETCH(DocumentKind, kind);
        QFETCH(QString, offered);
        QFETCH(QString, audited);
        QFETCH(QString, back);
        const DocumentTraits& traits = traitsOf(kind);
        const QString header = traits.headerTable();
        const QString number = traits.prefix + u"0411180001"_s;
        DocumentForm& form = open(kind);
        add(form, {{u"A1"_s, u"4"_s, {}}});
        QCOMPARE(form.Txt[0]->text(), number);
        QCOMPARE(ledger_->row(u"select * from DanNo"_s), number + u"|0|王小敏"_s);
        form.Txt[6]->setText(u"it's 附注"_s);
        save(form);
        QCOMPARE(form.Edstu, 0);
        const QString total = kind == DocumentKind::B1 || kind == DocumentKind::B3 ? u"8"_s : u"12"_s;
        QCOMPARE(ledger_->row(u"select F1,F2,F3,F5,F6,F9,F10,H8 from "_s + header),
                 number + u"|2004-11-18|001|王小敏|Null|"_s + total + u"|it's 附注|2004-11-18 9:05:03"_s);
        QCOMPARE(ledger_->row(u"select F1,F6,F7 from "_s + header + u"1 where F0='"_s + number + u'\''), offered);
        QCOMPARE(stock(u"A1"_s), u"10|2|3"_s); // a draft has no effect

        setClock(QDateTime(QDate(2004, 11, 19), QTime(10, 0)));
        form.TabS->setCurrentIndex(0); // the audit loads the detail by itself
        audit(form);
        QCOMPARE(stock(u"A1"_s), audited);
        QCOMPARE(ledger_->row(u"select F6,H8 from "_s + header), u"王小敏|2004-11-19 10:00:00"_s);
        const QStringList after = audited.split(u'|');
        QCOMPARE(ledger_->row(u"select H6,H7,H8 from "_s + header + u'1'),
                 after[0] + u'|' + after[1] + u"|2004-11-19 10:00:00"_s);
        QVERIFY(form.GD->TextMatrix(1, 0).isEmpty()); // the list of drafts is empty now

        form.listAll({});
        QCOMPARE(form.GD->TextMatrix(1, 4), u"王小敏"_s);
        const bool inbound = kind == DocumentKind::B1;
        boxes_->expect(
            inbound
                ? u"如果这批已审核入库的货品已经出库，\n\n撤销审核操作可能会造成库存货品数据出现负数！\n\n真的要继续吗？"_s
                : u"撤销审核操作将对库存货品进行更新，\n\n请小心操作！\n\n真的要继续吗？"_s,
            Answer::Yes);
        run(form, "Menu_noOK");
        QCOMPARE(stock(u"A1"_s), back);
        QCOMPARE(ledger_->row(u"select F6 from "_s + header), QString());
        QCOMPARE(ledger_->row(u"select H8 from "_s + header + u'1'), u"00-00-00"_s);
        QCOMPARE(form.GD->TextMatrix(1, 4), QString());
        form.listDrafts(); // un-audited: the empty text counts as draft
        QCOMPARE(form.GD->TextMatrix(1, 0), number);
    }

    void editedDocumentMayChangeItsNumber()
    {
        DocumentForm& form = open(DocumentKind::B1);
        add(form, {{u"A1"_s, u"4"_s, u"2.5"_s}, {u"A2"_s, u"10"_s, {}}});
        save(form);
        run(form, "Menu_edit");
        form.Txt[0]->setText(u" my-1 "_s);
        enter(form, {{u"A3"_s, u"1"_s, {}}, {u"a1"_s, u"6"_s, {}}}); // A1 is there: its quantity grows
        save(form);
        QCOMPARE(ledger_->rows(u"select F1,F9 from TB1"_s), QStringList{u"MY-1|34"_s});
        QCOMPARE(ledger_->rows(u"select F0,F1,F6,F7 from TB11 order by F1"_s),
                 (QStringList{u"MY-1|A1|10|2.5"_s, u"MY-1|A2|10|0.5"_s, u"MY-1|A3|1|4"_s}));
        // The number that was given up is free again, the typed one is taken.
        QCOMPARE(ledger_->rows(u"select DanF1,Flg from DanNo"_s), QStringList{u"MY-1|1"_s});
        QCOMPARE(form.GD->Rows(), 2);
        QCOMPARE(form.GD->TextMatrix(1, 0), u"MY-1"_s);
    }

    void cancelFreesTheNumberOfANewDocumentOnly()
    {
        DocumentForm& form = open(DocumentKind::D1);
        add(form, {{u"A1"_s, u"1"_s, {}}});
        run(form, "Menu_cancel");
        QCOMPARE(ledger_->value(u"select DanF1 from DanNo"_s), u"NoFound"_s);
        add(form, {{u"A1"_s, u"1"_s, {}}});
        QCOMPARE(form.Txt[0]->text(), u"CK0411180001"_s);
        save(form);
        run(form, "Menu_edit");
        enter(form, {{u"A2"_s, u"7"_s, {}}});
        run(form, "Menu_cancel");
        QCOMPARE(form.lines->count(), 1); // as stored
        QCOMPARE(ledger_->value(u"select DanF1 from DanNo"_s), u"CK0411180001"_s);
    }

    void deleteKeepsTheReservation()
    {
        DocumentForm& form = open(DocumentKind::B3);
        boxes_->expect(u"无单据可删除！"_s);
        run(form, "Menu_del");
        for (int i = 0; i < 2; ++i) {
            add(form, {{u"A1"_s, u"1"_s, {}}});
            save(form);
        }
        boxes_->expect(u"真的要删除编码为TH0411180002的单据吗？"_s, Answer::No);
        run(form, "Menu_del");
        QCOMPARE(ledger_->value(u"select count(*) from TB3"_s), u"2"_s);
        boxes_->expect(u"真的要删除编码为TH0411180002的单据吗？"_s, Answer::Yes);
        run(form, "Menu_del");
        QCOMPARE(ledger_->rows(u"select F1 from TB3"_s), QStringList{u"TH0411180001"_s});
        QCOMPARE(ledger_->rows(u"select F0 from TB31"_s), QStringList{u"TH0411180001"_s});
        QCOMPARE(form.TabS->currentIndex(), 0);
        run(form, "Menu_Add"); // 0002 was given out once and isn't again
        QCOMPARE(form.Txt[0]->text(), u"TH0411180003"_s);
    }

    void aStockTakePostsDifferences()
    {
        gWithMoney = 0;
        DocumentForm& form = open(DocumentKind::C2);
        QVERIFY(!form.command(u"Menu_noOK"_s)); // once audited, it stays
        add(form, {{u"A1"_s, u"7"_s, {}}, {u"A2"_s, u"100.5"_s, {}}, {u"A3"_s, u"1"_s, {}}});
        QCOMPARE(form.Lab[5]->text(), u"盈亏数量"_s);
        QCOMPARE(form.Txt[5]->text(), u"-1.5"_s);
        form.Txt[2]->setText(u"老王"_s);
        save(form);
        QCOMPARE(ledger_->row(u"select F1,F2,F3,F5,F6,F9 from TC2"_s),
                 u"PD0411180001|2004-11-18|老王|王小敏|Null|-1.5"_s);
        QCOMPARE(ledger_->rows(u"select F1,F5,F6,F7 from TC21 order by F1"_s),
                 (QStringList{u"A1|10|7|2"_s, u"A2|100|100.5|0.5"_s, u"A3|0|1|4"_s}));
        ledger_->run(u"update TA4 set F8=5 where F1='A1'"_s); // sold since the count
        ledger_->run(u"delete from TA4 where F1='A3'"_s);     // and a code has gone, of which nobody is told
        boxes_->expect(
            u"审核操作将根据盘点盈亏数量对存库货品的数量进行更新，\n\n审核后单据将不可修改！\n\n真的要继续吗？"_s,
            Answer::Yes);
        run(form, "Menu_Ok");
        QCOMPARE(stock(u"A1"_s), u"2|2|3"_s);
        QCOMPARE(stock(u"A2"_s), u"100.5|0.5|1"_s);
        QCOMPARE(ledger_->value(u"select F6 from TC2"_s), u"王小敏"_s);
        // Unlike the other documents, one with an empty auditor counts as audited here.
        ledger_->run(u"update TC2 set F6=''"_s);
        form.listDrafts();
        QVERIFY(form.GD->TextMatrix(1, 0).isEmpty());
    }

    // Refusals --------------------------------------------------------------------------------------------------------

    void saveRefuses_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("partner");
        QTest::addColumn<bool>("withLine");
        QTest::addColumn<QString>("text");
        const QString n = u"X1"_s;
        const QString d = u"2004-11-18"_s;
        const QString p = u"001"_s;
        QTest::newRow("no number") << u"  "_s << d << p << true << u"入库单号不能为空！"_s;
        QTest::newRow("no date") << n << QString() << p << true << u"入库日期不能为空！"_s;
        QTest::newRow("no partner") << n << d << QString() << true << u"供货单位不能为空！"_s;
        QTest::newRow("no date at all") << n << u"2024-13-45"_s << p << true << u"“2024-13-45”不是有效的日期！"_s;
        QTest::newRow("unknown partner") << n << d << u"GH9.某"_s << true << u"供货单位编码输入错误！"_s;
        QTest::newRow("no line") << n << d << p << false << u"不能保存空的单据！请录入入库货品！"_s;
        QTest::newRow("reserved") << u"taken"_s << d << p << true << u"系统内已经有其它单据使用了 TAKEN 这个单号!"_s;
        QTest::newRow("saved already") << u"old"_s << d << p << true << u"已经存在[OLD[这个编码，请重新设置编码!"_s;
    }

    void saveRefuses()
    {
        QFETCH(QString, number);
        QFETCH(QString, date);
        QFETCH(QString, partner);
        QFETCH(bool, withLine);
        QFETCH(QString, text);
        ledger_->run(u"insert into DanNo (DanF1,Flg,Other) values ('TAKEN',1,'x')"_s);
        ledger_->run(u"insert into TB1 (F1,F2,F3) values ('OLD','2004-1-1','gone')"_s);
        DocumentForm& form = open(DocumentKind::B1);
        add(form, withLine ? QList<Line>{{u"A1"_s, u"1"_s, {}}} : QList<Line>{});
        form.Txt[0]->setText(number);
        form.Txt[1]->setText(date);
        form.CmbLB->setEditText(partner);
        boxes_->expect(text);
        run(form, "Menu_save");
        QCOMPARE(form.Edstu, 1); // the entry stands as it was typed
        QCOMPARE(form.lines->count(), withLine ? 1 : 0);
        QCOMPARE(ledger_->rows(u"select F1 from TB1"_s), QStringList{u"OLD"_s});
        QCOMPARE(ledger_->value(u"select count(*) from TB11"_s), u"0"_s);
    }

    void anUnknownConsigneeIsAdded()
    {
        DocumentForm& form = open(DocumentKind::D1);
        add(form, {{u"A1"_s, u"1"_s, {}}}, u"o'hara"_s);
        save(form);
        QCOMPARE(ledger_->row(u"select F1,F2,F3 from TA2 where F1<>'001'"_s), u"O'HARA|O'HARA|Null"_s);
        QCOMPARE(ledger_->value(u"select F3 from TD1"_s), u"O'HARA"_s);
        QCOMPARE(form.GD->TextMatrix(1, 2), u"O'HARA"_s);
    }

    void auditRefuses_data()
    {
        QTest::addColumn<DocumentKind>("kind");
        QTest::addColumn<bool>("questionFirst");
        QTest::newRow("B1") << DocumentKind::B1 << false;
        QTest::newRow("B3") << DocumentKind::B3 << true;
        QTest::newRow("D1") << DocumentKind::D1 << true;
        QTest::newRow("D3") << DocumentKind::D3 << false;
    }

    void auditRefuses()
    {
        QFETCH(DocumentKind, kind);
        QFETCH(bool, questionFirst);
        DocumentForm& form = open(kind);
        boxes_->expect(u"没有供审核的单据！"_s);
        run(form, "Menu_Ok");
        setClock(QDateTime(QDate(2004, 5, 31), QTime(9, 0)));
        add(form, {{u"A1"_s, u"1"_s, {}}});
        save(form);
        // Another operator saves a report meanwhile: its period is closed, and its first open day passes.
        ledger_->run(u"insert into jxc (SortNo,Bdate,Edate,Hpbm) values (1,'2004-5-1','2004-5-31','A1')"_s);
        if (questionFirst)
            boxes_->expect(auditQuestion, Answer::Yes);
        boxes_->expect(lockedOut);
        run(form, "Menu_Ok");
        QCOMPARE(stock(u"A1"_s), u"10|2|3"_s);
        ledger_->run(u"update jxc set Edate='2004-5-30'"_s);
        boxes_->expect(auditQuestion, Answer::No);
        run(form, "Menu_Ok");
        QCOMPARE(stock(u"A1"_s), u"10|2|3"_s);
        audit(form);
        QVERIFY(stock(u"A1"_s) != u"10|2|3"_s);

        form.listAll({});
        boxes_->expect(u"该单据已审核，不需要再次审核！"_s);
        run(form, "Menu_Ok");
        boxes_->expect(u"此单据已经审核，不可修改！"_s);
        run(form, "Menu_edit");
        boxes_->expect(u"该单据已审核，不能删除！"_s);
        run(form, "Menu_del");
        ledger_->run(u"update jxc set Edate='2004-5-31'"_s);
        boxes_->expect(u"单据日期在 2004-6-1 之前，不能撤销审核！"_s);
        run(form, "Menu_noOK");
        QVERIFY(stock(u"A1"_s) != u"10|2|3"_s);
    }

    // Failures --------------------------------------------------------------------------------------------------------

    void goodsGoneInMidAudit()
    {
        DocumentForm& form = open(DocumentKind::B1);
        add(form, {{u"A1"_s, u"5"_s, {}}, {u"A2"_s, u"5"_s, {}}, {u"A3"_s, u"5"_s, {}}});
        save(form);
        ledger_->run(u"delete from TA4 where F1='A2'"_s); // the detail on screen still shows the line
        boxes_->expect(auditQuestion, Answer::Yes);
        boxes_->expect(u"货品编码资料丢失！"_s);
        run(form, "Menu_Ok");
        QCOMPARE(stock(u"A1"_s), u"15|2|3"_s); // what ran stays
        QCOMPARE(stock(u"A3"_s), u"0|4|6"_s);
        QCOMPARE(ledger_->value(u"select F6 from TB1"_s), QString());
        QCOMPARE(ledger_->rows(u"select F1,H6 from TB11 order by F1"_s),
                 (QStringList{u"A1|15"_s, u"A2|Null"_s, u"A3|Null"_s}));
    }

    void goodsWithoutCost_data()
    {
        QTest::addColumn<DocumentKind>("kind");
        QTest::addColumn<bool>("fails");
        QTest::newRow("B1 books nothing as cost") << DocumentKind::B1 << false;
        QTest::newRow("B3") << DocumentKind::B3 << true;
        QTest::newRow("D1") << DocumentKind::D1 << true;
        QTest::newRow("D3") << DocumentKind::D3 << true;
    }

    void goodsWithoutCost()
    {
        QFETCH(DocumentKind, kind);
        QFETCH(bool, fails);
        gNoAvgUpdate = 1;
        ledger_->run(u"update TA4 set F7=Null where F1='A1'"_s);
        DocumentForm& form = open(kind);
        add(form, {{u"A1"_s, u"4"_s, {}}});
        save(form);
        boxes_->expect(auditQuestion, Answer::Yes);
        if (fails)
            boxes_->expectError(u"语句"_s);
        run(form, "Menu_Ok");
        const bool up = traitsOf(kind).stock == Stock::Up;
        QCOMPARE(ledger_->value(u"select F8 from TA4 where F1='A1'"_s), up ? u"14"_s : u"6"_s);
        const QString header = traitsOf(kind).headerTable();
        QCOMPARE(ledger_->value(u"select F6 from "_s + header), fails ? QString() : u"王小敏"_s);
        QCOMPARE(ledger_->row(u"select H7 from "_s + header + u'1'), fails ? u"Null"_s : u"0"_s);
    }

    void aLockedLedgerChangesNothing()
    {
        DocumentForm& form = open(DocumentKind::D1);
        add(form, {{u"A1"_s, u"4"_s, {}}});
        {
            const WriteRun other(ledger_->second());
            boxes_->expectError(u"帐本"_s);
            run(form, "Menu_save");
            QCOMPARE(form.Edstu, 1);
        }
        QCOMPARE(ledger_->value(u"select count(*) from TD1"_s), u"0"_s);
        save(form); // the command can simply be given again
        QCOMPARE(ledger_->value(u"select count(*) from TD1"_s), u"1"_s);
    }

    // Line entry ------------------------------------------------------------------------------------------------------

    void quantitiesAsTyped_data()
    {
        QTest::addColumn<int>("noNegative");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("cell");
        QTest::newRow("full width") << 0 << u"１２．５"_s << u"12.5"_s;
        QTest::newRow("negative") << 0 << u"-3"_s << u"-3"_s;
        QTest::newRow("negative forbidden") << 1 << u"-3"_s << u"3"_s;
        QTest::newRow("no number") << 0 << u"abc"_s << u"0"_s;
    }

    void quantitiesAsTyped()
    {
        QFETCH(int, noNegative);
        QFETCH(QString, typed);
        QFETCH(QString, cell);
        gNoNegativeQty = noNegative;
        DocumentForm& form = open(DocumentKind::B1);
        add(form, {{u"A1"_s, u"-3"_s, {}}}); // a negative entry beside the code adds no line
        QCOMPARE(form.lines->count(), 0);
        enter(form, {{u"A1"_s, u"1"_s, {}}});
        Grid& grid = *form.lines->GdMx;
        grid.edit(1, 3);
        grid.TxtEnter->setText(typed);
        QVERIFY(grid.endEdit());
        QCOMPARE(grid.TextMatrix(1, 3), cell);
        QCOMPARE(grid.TextMatrix(1, 5), Format(Val(cell) * 2, u"#0.00"));
        QCOMPARE(form.Txt[5]->text(), grid.TextMatrix(1, 5));
    }

    void codeCells()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F5,F7,F8) values ('O''RING','密封圈','10',Null,0)"_s);
        DocumentForm& form = open(DocumentKind::B1);
        add(form, {{u"A1"_s, u"2"_s, {}}, {u"O'RING"_s, u"1"_s, {}}});
        Grid& grid = *form.lines->GdMx;
        QCOMPARE(grid.TextMatrix(2, 1), u"密封圈/10"_s);
        QCOMPARE(grid.TextMatrix(2, 4), u"0.00"_s); // no cost yet
        const auto type = [&grid](int row, const QString& text) {
            grid.edit(row, 0);
            grid.TxtEnter->setText(text);
            return grid.endEdit();
        };
        boxes_->expect(u"相同的货品编码已经存在！"_s);
        QVERIFY(!type(2, u"a1"_s));
        QCOMPARE(grid.TextMatrix(2, 0), u"O'RING"_s);
        boxes_->expect(
            u"货品资料库中不存在这个货品编码！\n请在顶部“货品编码”栏输入模糊查找条件，并点击“？”按钮查找系统中存在的货品编码，\n或在基础数据中增加新的货品资料！"_s);
        QVERIFY(!type(2, u"nothing"_s));
        QVERIFY(type(2, u"a3"_s));
        QCOMPARE(grid.TextMatrix(2, 0), u"A3"_s);
        QCOMPARE(grid.TextMatrix(2, 4), u"4.00"_s);
        QVERIFY(type(3, u"a2"_s)); // the empty row at the bottom becomes a line of one
        QCOMPARE(grid.TextMatrix(3, 3), u"1"_s);
        QCOMPARE(grid.Rows(), 5);
        boxes_->expect(u"真的要删除货品[A2]吗？"_s, Answer::No);
        QVERIFY(!type(3, QString()));
        QCOMPARE(grid.TextMatrix(3, 0), u"A2"_s);
        boxes_->expect(u"真的要删除货品[A2]吗？"_s, Answer::Yes);
        QVERIFY(type(3, QString()));
        QCOMPARE(form.lines->count(), 2);
        boxes_->expect(u"此入库单中没有指定的货品编码：ZZ！"_s);
        form.lines->TxtHPBM->setText(u"ZZ"_s);
        form.lines->deleteLine();
        boxes_->expect(u"真的要删除货品[A1]吗？"_s, Answer::Yes);
        form.lines->TxtHPBM->setText(u"A1"_s);
        form.lines->deleteLine();
        QCOMPARE(form.lines->count(), 1);
    }

    void settingsAtWork()
    {
        gNoPriceEdit = 1;
        DocumentForm& form = open(DocumentKind::D1);
        add(form, {{u"A1"_s, u"2"_s, {}}});
        Grid& grid = *form.lines->GdMx;
        QVERIFY(!grid.mayEdit(1, 4));
        QCOMPARE(grid.nextCell(1, 3), QPoint(6, 1)); // straight to the remark
        run(form, "Menu_cancel");
        form.Unload();

        gNoPriceEdit = 0;
        gWithMoney = 0;
        DocumentForm& plain = open(DocumentKind::D3);
        add(plain, {{u"A1"_s, u"0.1"_s, {}}, {u"A2"_s, u"0.2"_s, {}}});
        QVERIFY(!plain.lines->GdMx->columnVisible(4));
        QCOMPARE(plain.Lab[5]->text(), u"数量合计"_s);
        QCOMPARE(plain.Txt[5]->text(), u"0.3"_s);
        save(plain);
        QCOMPARE(ledger_->value(u"select F9 from TD3"_s), u"0.3"_s);
        QCOMPARE(plain.GD->TextMatrix(0, 5), u"数量"_s);
        QCOMPARE(plain.GD->TextMatrix(1, 5), u"0.3"_s);
    }

    void withoutTheCostRight()
    {
        gCanSeeCost = false;
        DocumentForm& form = open(DocumentKind::B1);
        add(form, {{u"A1"_s, u"2"_s, {}}});
        QCOMPARE(form.lines->GdMx->TextMatrix(1, 4), u"0.00"_s);
        save(form);
        QCOMPARE(ledger_->value(u"select F7 from TB11"_s), u"0"_s);
    }

    void anotherOperatorAtAnOpenForm()
    {
        DocumentForm& form = open(DocumentKind::B1);
        gOperId = u"102"_s;
        gRights.reset();
        gRights.set(size_t(OperatorRight::Out));
        form.sessionChanged();
        QVERIFY(!form.command(u"Menu_Add"_s)->isEnabled());
        QVERIFY(!form.command(u"Menu_noOK"_s)->isVisible());
        QVERIFY(!form.GD->isVisible());
        gRights.set(size_t(OperatorRight::In));
        form.sessionChanged();
        QVERIFY(form.GD->isVisible());
        QVERIFY(form.command(u"Menu_Add"_s)->isEnabled());
    }

    void promisedStock()
    {
        gNoOverIssue = 1;
        ledger_->run(u"insert into TD1 (F1,F2,F3) values ('CKX','2004-11-1','001')"_s);
        ledger_->run(u"insert into TD11 (F0,F1,F6) values ('CKX','A1',3)"_s);
        ledger_->run(u"insert into TB3 (F1,F2,F3) values ('THX','2004-11-1','001')"_s);
        ledger_->run(u"insert into TB31 (F0,F1,F6) values ('THX','A1',4)"_s);
        // An audit that was undone leaves an empty text, and such a document promises nothing.
        ledger_->run(u"insert into TD1 (F1,F2,F3,F6) values ('CKY','2004-11-1','001','')"_s);
        ledger_->run(u"insert into TD11 (F0,F1,F6) values ('CKY','A1',8)"_s);
        DocumentForm& form = open(DocumentKind::D1);
        const QString tail = u"中含有编码为A1的货品！\n此种货品现存数量不足以供给所有未审核的出库需求！"_s;
        boxes_->expect(u"A1库存数量不足！"_s);
        add(form, {{u"A1"_s, u"11"_s, {}}});
        boxes_->expect(u"系统中存在的其它尚未审核的出库单"_s + tail);
        enter(form, {{u"A1"_s, u"8"_s, {}}});
        boxes_->expect(u"系统中存在的其它尚未审核的出库单或退货单"_s + tail);
        enter(form, {{u"A1"_s, u"4"_s, {}}});
        QCOMPARE(form.lines->count(), 0);
        enter(form, {{u"A1"_s, u"3"_s, {}}});
        QCOMPARE(form.lines->count(), 1);
        boxes_->expect(u"系统中存在的其它尚未审核的出库单或退货单"_s + tail);
        enter(form, {{u"A1"_s, u"1"_s, {}}}); // on the line already: the sum counts
        QCOMPARE(form.lines->GdMx->TextMatrix(1, 3), u"3"_s);
    }

    void lookUp_data()
    {
        QTest::addColumn<int>("goods");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("info");
        QTest::newRow("some") << 498 << u"Q"_s << u"所有货品编码以“Q”开头的记录"_s;
        QTest::newRow("just 500") << 500 << u"Q"_s << u"货品编码以“Q”开头的前500条记录"_s;
        QTest::newRow("all but one of 500") << 496 << QString() << u"所有货品编码资料"_s;
        QTest::newRow("all") << 600 << QString() << u"货品资料库中前500条记录"_s;
        QTest::newRow("none") << 0 << u"Q"_s << u"没有以“Q”开头的货品编码"_s;
    }

    void lookUp()
    {
        QFETCH(int, goods);
        QFETCH(QString, typed);
        QFETCH(QString, info);
        {
            const WriteRun run(ledger_->second());
            for (int i = 0; i < goods; ++i)
                ledger_->run(
                    u"insert into TA4 (F1,F2,F5,F4,F8) values ('Q%1','n','m','个',7)"_s.arg(i, 4, 10, QChar(u'0')));
        }
        DocumentForm& form = open(DocumentKind::B1);
        run(form, "Menu_Add");
        form.lines->TxtHPBM->setText(typed);
        form.lines->lookUp();
        QCOMPARE(form.lines->lookup->LabInfo->text(), info);
        Grid& found = *form.lines->lookup->GdQuery;
        QVERIFY(found.Rows() <= 501);
        if (goods == 0)
            return;
        found.select(found.Rows() - 1);
        const QString code = found.TextMatrix(found.Row(), 0);
        form.lines->lookup->CmdBox[0]->click();
        QCOMPARE(form.lines->TxtHPBM->text(), code);
        QVERIFY(!form.lines->lookup->isVisible());
    }

    void newGoodsFromTheDocument()
    {
        DocumentForm& form = open(DocumentKind::B1);
        run(form, "Menu_Add");
        NewGoodsPanel& panel = *form.lines->newGoods;
        panel.open(u"n1"_s);
        const auto refused = [&](const QString& text) {
            boxes_->expect(text);
            panel.save();
        };
        refused(u"货品名称不能为空！"_s);
        panel.TxtN[1]->setText(u"新货"_s);
        refused(u"入库数量不能为0！"_s);
        panel.TxtN[9]->setText(u"12"_s);
        panel.CmbHPLB->setEditText({});
        refused(u"所属类别不能为空！"_s);
        panel.CmbHPLB->setEditText(u"777"_s);
        refused(u"编码输入错误！"_s);
        panel.CmbHPLB->setCurrentIndex(0);
        panel.TxtN[0]->setText(u"A1"_s);
        refused(u"[六角螺栓]已经使用了货品编码这个编码，请重新设置编码!"_s);
        panel.TxtN[0]->setText(u"N1"_s);
        panel.TxtN[5]->setText(u"1.25"_s);
        panel.save();
        QCOMPARE(ledger_->row(u"select F1,F2,F3,F11,F7,F71,F8 from TA4 where F1='N1'"_s), u"N1|新货|001|N1|1.25|0|0"_s);
        QCOMPARE(form.lines->GdMx->TextMatrix(1, 0), u"N1"_s);
        QCOMPARE(form.lines->GdMx->TextMatrix(1, 5), u"15.00"_s);
        QVERIFY(!panel.isVisible());
    }

    // On paper --------------------------------------------------------------------------------------------------------

    void prints_data()
    {
        QTest::addColumn<DocumentKind>("kind");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QStringList>("words"); // of scheme two: title, in front of the partner, signatures
        using enum DocumentKind;
        QTest::newRow("B1") << B1 << u"Menu_prn"_s << u"prntb10.rpt"_s << u"报表文件prntb10.rpt丢失！"_s
                            << QStringList{u"货品入库单"_s, u"供货单位："_s,
                                           u"制单人:王小敏                  审核人:                  经手人:"_s};
        QTest::newRow("B3") << B3 << u"menu_prn"_s << u"prntb30.rpt"_s << u"报表文件丢失！"_s
                            << QStringList{u"退  货  单"_s, u"供货单位："_s};
        QTest::newRow("D1") << D1 << u"Menu_prn"_s << u"prntd10.rpt"_s << u"报表文件丢失！"_s
                            << QStringList{u"货品出库单"_s, u"出货单位："_s,
                                           u"制单人：王小敏              审核人：            经手人： "_s};
        QTest::newRow("D3") << D3 << u"Menu_prn"_s << u"prntd30.rpt"_s << u"报表文件丢失！"_s
                            << QStringList{u"货品退库单"_s, u"出货单位："_s};
    }

    void prints()
    {
        QFETCH(DocumentKind, kind);
        QFETCH(QString, item);
        QFETCH(QString, report);
        QFETCH(QString, missing);
        QFETCH(QStringList, words);
        const QByteArray stored = (item + u"(0)"_s).toLatin1();
        const QByteArray shown = (item + u"(1)"_s).toLatin1();
        gCompanyName = u"O'Hara's 五金"_s;
        gCompanyAddr = u"和平路 1 号"_s;
        gCompanyTel = u"027-8"_s;
        DocumentForm& form = open(kind);
        for (const QByteArray& command : {stored, shown}) {
            boxes_->expect(u"无数据可打印！"_s);
            run(form, command);
        }
        add(form, {{u"A2"_s, u"7"_s, u"1.25"_s}});
        QVERIFY(!form.command(u"Menu_print"_s)->isVisible());
        save(form);
        add(form, {{u"A1"_s, u"4"_s, u"2.5"_s}, {u"A3"_s, u"0.5"_s, u"4"_s}});
        form.lines->GdMx->SetTextMatrix(1, 6, u"it's 'urgent'"_s);
        save(form);

        boxes_->expect(missing); // there are no layouts in this folder
        run(form, stored);
        QVERIFY(ledger_->rows(u"select * from Plist"_s).isEmpty());
        gAppPath = QStringLiteral(LAYOUTS "/");
        const QString number = traitsOf(kind).prefix + u"0411180002"_s;
        Printed paper = printed([&] { run(form, stored); });
        QCOMPARE(paper.file, report);
        QCOMPARE(paper.selection, u"{%1.F1}='%2'"_s.arg(traitsOf(kind).header, number));
        QCOMPARE(paper.formulas, (QStringList{u"regname='O'Hara's 五金'"_s, u"regaddr='地址：和平路 1 号'"_s,
                                              u"regtel='电话：027-8'"_s}));
        for (const QString& text : {gCompanyName, u"it's 'urgent'"_s, u"单号："_s + number})
            QVERIFY2(paper.texts.contains(text), qPrintable(text));
        const QString mark = u"未审核"_s; // on drafts, in both schemes
        QVERIFY(paper.texts.contains(mark));

        // Scheme two prints what the list points at, also when the detail shows another document.
        form.TabS->setCurrentIndex(0);
        form.GD->select(1);
        form.TabS->setCurrentIndex(1);
        form.TabS->setCurrentIndex(0);
        form.GD->select(2);
        const QString total = u"12.00"_s;
        const QString partner = traitsOf(kind).partners == u"TA1" ? u"默认货品来源"_s : u"默认货品去向"_s;
        const QString second = form.GD->TextMatrix(2, 0);
        paper = printed([&] { run(form, shown); });
        QCOMPARE(paper.file, u"Pdan.rpt"_s);
        QCOMPARE(paper.selection, QString());
        QStringList formulas{u"Cpt='"_s + words[0] + u"'"_s, u"danNo='"_s + second + u"'"_s,
                             u"rq='2004-11-18'"_s,           u"gys='"_s + words[1] + partner + u"'"_s,
                             u"regname='O'Hara's 五金'"_s,   u"sumje='%1'"_s.arg(total)};
        if (words.size() > 2)
            formulas += u"qianming='"_s + words[2] + u"'"_s;
        formulas += u"shenhe=''"_s;
        QCOMPARE(second, number);
        QCOMPARE(paper.formulas, formulas);
        QCOMPARE(ledger_->rows(u"select F0,F1,F6,F7,F8,F9,V1,V2 from Plist order by F0"_s),
                 (QStringList{u"00001|A1|4|2.50|10.00|it's 'urgent'|4|2.5"_s, u"00002|A3|0.5|4.00|2.00||0.5|4"_s}));
        QVERIFY(paper.texts.contains(u"it's 'urgent'"_s) && paper.texts.contains(mark));

        // An audited document prints too; without prices scheme two can't.
        ledger_->run(u"update %1 set F6='李经理'"_s.arg(traitsOf(kind).header));
        form.listAll(QString());
        paper = printed([&] { run(form, shown); });
        QCOMPARE(paper.formulas.last(), u"shenhe='李经理'"_s);
        QCOMPARE(words.size() > 2, paper.formulas.at(6).contains(u"审核人"_s));
        QVERIFY(!paper.texts.contains(mark));
        paper = printed([&] { run(form, stored); });
        QVERIFY(!paper.texts.contains(mark) && paper.texts.contains(u"李经理"_s));
        gWithMoney = 0;
        form.sessionChanged();
        QVERIFY(!form.command(QString::fromLatin1(shown))->isEnabled());
        QVERIFY(form.command(QString::fromLatin1(stored))->isEnabled());
    }

    void printsThatNothingShows()
    {
        gAppPath = QStringLiteral(LAYOUTS "/");
        DocumentForm& inbound = open(DocumentKind::B1);
        add(inbound, {{u"A1"_s, u"4"_s, {}}});
        save(inbound);
        QVERIFY(!inbound.command(u"Menu_prn(2)"_s)->isVisible());
        Printed paper = printed([&] { inbound.Menu_prn(2); });
        QCOMPARE(paper.file, u"prntb100.rpt"_s);
        QCOMPARE(paper.selection, u"{TB1.F1}='RK0411180001'"_s);

        DocumentForm& outbound = open(DocumentKind::D1);
        add(outbound, {{u"A1"_s, u"4"_s, {}}, {u"A2"_s, u"1.5"_s, {}}});
        const PrintedHeader header{u"CK1"_s, u"2004-11-18"_s, u"甲"_s, u"小王"_s, u"老李"_s, u"13.5"_s};
        outbound.lines->GdMx->RemoveItem(3); // where the next line would go
        paper = printed(
            [&] { printShown(traitsOf(DocumentKind::D1), header, *outbound.lines->GdMx, CompactForm::TenRows); });
        QCOMPARE(paper.file, u"Pdan10.rpt"_s);
        QCOMPARE(paper.formulas.mid(5), (QStringList{u"sumje='13.50'"_s, u"qianming='制单:小王       审核:老李'"_s,
                                                     u"sumsl='5.5'"_s, u"shenhe='老李'"_s}));
        const QStringList rows = ledger_->rows(u"select F0,F1,F2,F3,F4,F5,F6,F7,F8 from Plist order by F0"_s);
        QCOMPARE(rows.size(), 10);
        QCOMPARE(rows[1], u"00002|A2|平垫圈|8|片|1.5|1.00|1.50|"_s);
        QCOMPARE(rows[9], u"00010| | | | | | | | "_s);
    }

    void printsAStockTake()
    {
        DocumentForm& form = open(DocumentKind::C2);
        boxes_->expect(u"无数据可打印！"_s);
        run(form, "Menu_print");
        add(form, {{u"A1"_s, u"7"_s, {}}});
        form.Txt[2]->setText(u"老王"_s);
        save(form);
        boxes_->expect(u"报表文件prntc2.rpt丢失！"_s);
        run(form, "Menu_print");
        gAppPath = QStringLiteral(LAYOUTS "/");
        const Printed paper = printed([&] { run(form, "Menu_print"); });
        QCOMPARE(paper.file, u"prnTC2.rpt"_s);
        QCOMPARE(paper.selection, u"{TC2.F1}='PD0411180001'"_s);
        QVERIFY(paper.formulas.isEmpty());
        QVERIFY(paper.texts.contains(u"盘点人：老王"_s) && paper.texts.contains(u"未审核"_s));
    }

    // What outlives the process ---------------------------------------------------------------------------------------

    /// The moment of the form's next keeping comes now.
    void keep(DocumentForm& form) { QMetaObject::invokeMethod(form.findChild<QTimer*>(), "timeout"); }
    /// The form goes as with its process: nothing is said or tidied up, and the lock is free.
    void die(DocumentForm& form)
    {
        form.setProperty("Edstu", 0);
        form.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QFileInfoList keptFiles(const QString& folder)
    {
        return QDir(folder + u"/drafts"_s).entryInfoList(QDir::Files, QDir::Name);
    }

    void anEntryIsOfferedToWhoTypedIt()
    {
        const QTemporaryDir user;
        MemoryDesktop::install().folder = user.path();
        const QString question = u"上次有一张入库单没有录完，程序就中断了："_s;
        add(open(DocumentKind::B1), {{u"A1"_s, u"30"_s, {}}, {u"A2"_s, u"5"_s, u"0.7"_s}});
        DocumentForm& form = documentForm(DocumentKind::B1);
        keep(form);
        QFileInfoList files = keptFiles(user.path());
        QCOMPARE(files.size(), 2); // with its lock
        QCOMPARE(files[0].suffix(), u"entry"_s);
        for (const QFileInfo& file : files)
            QVERIFY(
                !(file.permissions() & ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser)));
        const auto found = [&] {
            return KeptSearch(user.path() + u"/drafts"_s, u"B1"_s, QFileInfo(gLedgerFile).canonicalFilePath(), u"001"_s)
                .found.size();
        };
        QCOMPARE(found(), 0U); // its process lives
        die(form);
        QCOMPARE(found(), 1U);

        gOperId = u"002"_s;
        documentForm(DocumentKind::B1).open();
        gOperId = u"001"_s;
        const QString identity = ledgerIdentity(gDB);
        gDB.connection().selectOwn(u"pragma application_id = 7"_s); // as another ledger in the place of this one
        documentForm(DocumentKind::B1).open();
        gDB.connection().selectOwn(u"pragma application_id = "_s + identity);

        // The right to see costs is gone, and the number was taken.
        gCanSeeCost = false;
        ledger_->run(u"insert into TB1 (F1) values ('RK0411180001')"_s);
        boxes_->expectStart(question, Answer::Yes);
        boxes_->expect(u"上次的录入已经打开，请注意：\n\n单号 RK0411180001 已经被占用，改用 RK0411180002"_s);
        documentForm(DocumentKind::B1).open();
        DocumentForm& again = documentForm(DocumentKind::B1);
        QCOMPARE(again.Txt[0]->text(), u"RK0411180002"_s);
        QCOMPARE(again.lines->GdMx->TextMatrix(2, 3), u"5"_s);
        QCOMPARE(again.Txt[5]->text(), u"0.00"_s);
        die(again);

        // Damaged, it is put aside and told of above the list.
        files = keptFiles(user.path());
        QFile file(files[0].filePath());
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(file.size() - 20) && file.write("~") == 1);
        file.close();
        DocumentForm& third = documentForm(DocumentKind::B1);
        third.open();
        QVERIFY(third.findChild<QLabel*>(u"notice"_s)->text().contains(u"已经损坏"_s));
        QVERIFY(QFile::exists(files[0].filePath() + u"-damaged"_s));

        // Where nothing can be written a line in the form says so, and typing goes on.
        QDir(user.path()).rename(u"drafts"_s, u"away"_s);
        QVERIFY(QFile::copy(ledger_->path(), user.filePath(u"drafts"_s)));
        add(third, {{u"A1"_s, u"1"_s, {}}});
        keep(third);
        QVERIFY(third.LabKept->isVisibleTo(&third));
        QFile::remove(user.filePath(u"drafts"_s));
        keep(third);
        QVERIFY(third.LabKept->isHidden());
        save(third);
        QVERIFY(keptFiles(user.path()).isEmpty());
        MemoryDesktop::install();
    }

    // Copies ----------------------------------------------------------------------------------------------------------

    void aCopyIsEnteredAnew()
    {
        gNoOverIssue = 1;
        ledger_->run(u"insert into TA2 (F1,F2) values ('K1','客户')"_s);
        ledger_->run(u"insert into TD1 (F1,F2,F3,F5,F6,F10,H8) values "
                     "('X1','2004-11-1','K1','旧人','审核','附注','2004-11-1 9:05:03')"_s);
        for (const QStringView line : {u"'A1',4,9,'一'", u"'A2',101,9,'二'", u"'gone',1,9,''"})
            ledger_->run(u"insert into TD11 (F0,F1,F6,F7,F8) values ('X1',"_s + line + u')');
        DocumentForm& form = open(DocumentKind::D1);
        boxes_->expect(u"没有单据可复制！"_s);
        run(form, "Menu_copy");
        form.listAll({});
        boxes_->expect(u"单据 X1 中有几项没有复制过来：\n\nA2库存数量不足！\ngone：货品资料库中没有这个编码"_s);
        run(form, "Menu_copy");
        QCOMPARE(form.Edstu, 1);
        QCOMPARE(form.CmbLB->currentText(), u"K1.客户"_s);
        QCOMPARE(form.Txt[6]->text(), u"附注"_s);
        save(form);
        QCOMPARE(ledger_->row(u"select F1,F2,F3,F5,F6,F9,F10 from TD1 where F1<>'X1'"_s),
                 u"CK0411180001|2004-11-18|K1|王小敏|Null|12|附注"_s);
        QCOMPARE(ledger_->rows(u"select F1,F6,F7,F8 from TD11 where F0='CK0411180001'"_s), QStringList{u"A1|4|3|一"_s});
        // A consignee who is gone is to be chosen anew; a stock-take has a name that was typed.
        ledger_->run(u"delete from TA2 where F1='K1'"_s);
        boxes_->expectStart(u"单据 CK0411180001 中有几项没有复制过来：\n\n出货单位"_s);
        run(form, "Menu_copy");
        QCOMPARE(form.CmbLB->currentText(), QString());
        QCOMPARE(form.lines->count(), 1);
        run(form, "Menu_cancel");
        ledger_->run(u"insert into TC2 (F1,F2,F3,F6) values ('P1','2004-11-1','老王','审核')"_s);
        ledger_->run(u"insert into TC21 (F0,F1,F6,F7) values ('P1','A1',4,9)"_s);
        DocumentForm& count = open(DocumentKind::C2);
        count.listAll({});
        run(count, "Menu_copy");
        QCOMPARE(count.Txt[2]->text(), u"老王"_s);
        QCOMPARE(count.lines->count(), 1);
        run(count, "Menu_cancel");
        ledger_->run(u"delete from TD1"_s);
        boxes_->expectStart(u"单据 CK0411180001 已经不在帐本里"_s);
        run(form, "Menu_copy");
    }

    // Fast entry ------------------------------------------------------------------------------------------------------

    void inputMethodsAndSuggestions()
    {
        DocumentForm& form = open(DocumentKind::B1);
        run(form, "Menu_Add");
        QLineEdit* box = form.lines->TxtHPBM;
        form.lines->focusCode();
        const auto listed = [&] {
            const auto* list = form.findChild<Grid*>(u"GdSuggest"_s);
            return list && list->isVisible() ? list->TextMatrix(1, 0) : QString();
        };
        const auto compose = [&](const QString& preedit, const QString& commit) {
            QInputMethodEvent event(preedit, {});
            event.setCommitString(commit);
            QCoreApplication::sendEvent(box, &event);
        };
        const auto takesInputMethod = [](QWidget* field) {
            QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
            QCoreApplication::sendEvent(field, &query);
            return query.value(Qt::ImEnabled).toBool();
        };
        QTest::keyClicks(box, u"a2"_s);
        QCOMPARE(listed(), u"A2"_s);
        compose(u"dian"_s, {});
        QCOMPARE(listed(), QString());
        box->clear();
        compose(u"dian"_s, {});
        QCOMPARE(listed(), QString());
        compose({}, u"垫"_s);
        QCOMPARE(listed(), u"A2"_s);
        QCOMPARE(box->text(), u"垫"_s);
        QVERIFY(takesInputMethod(box) && !takesInputMethod(form.lines->TxtSL));
        form.lines->ChkScan->click();
        QVERIFY(!takesInputMethod(box));
        form.lines->ChkScan->click();
        run(form, "Menu_cancel");
    }

    void whatASpreadsheetCopies()
    {
        const QList<PastedLine> lines = pastedLines(u"\"a\"\"1\"\t\"2\"\r\n\r\n \t\t\r\nb 2\"\t3\t1.5\t\"x\ny\"\r\n"_s);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].code + lines[0].quantity + lines[0].price, u"A\"12"_s);
        QCOMPARE(lines[1].code + lines[1].remark, u"B 2\"x y"_s);
        QCOMPARE(lines[1].row, 4);
        for (const auto& [text, number] : {std::pair(u"1,234.5"_s, 1234.5),
                                           {u"１，２３４"_s, 1234.0},
                                           {u"￥ 3"_s, 3.0},
                                           {u" .5 "_s, 0.5},
                                           {u"1E+2"_s, 100.0}})
            QCOMPARE(pastedNumber(text), std::optional(number));
        for (const QString& text : {u""_s, u"-"_s, u"1,5"_s, u"3个"_s, u"1.2.3"_s, u"E5"_s})
            QVERIFY2(!pastedNumber(text), qPrintable(text));
    }

    // The form --------------------------------------------------------------------------------------------------------

    void theFormStaysWhileItIsEntered()
    {
        DocumentForm& form = open(DocumentKind::B1);
        run(form, "Menu_Add");
        boxes_->expect(
            u"正在有数据被编辑,现在退出会造成本次编辑的数据丢失。\n\n请您首先点击<保存>或<取消>菜单结束本次编辑。"_s);
        run(form, "Menu_Return");
        QVERIFY(Form::loaded(u"B1"_s));
        run(form, "Menu_cancel");
        run(form, "Menu_Return");
        QVERIFY(!Form::loaded(u"B1"_s));
    }

    void theListIsInOrderOfTime()
    {
        ledger_->run(u"insert into TA1 (F1,F2) values ('G2','二')"_s);
        for (const QString& row :
             {u"'R1','2004-9-30','001','2004-9-30 10:05:03'"_s, u"'R2','2004-10-1','G2','2004-10-1 9:05:03'"_s,
              u"'R3','2004-10-1','gone','2004-10-1 10:05:03'"_s})
            ledger_->run(u"insert into TB1 (F1,F2,F3,H8) values ("_s + row + u')');
        DocumentForm& form = open(DocumentKind::B1);
        QCOMPARE(form.GD->Rows(), 3); // R3's partner is gone
        QCOMPARE(form.GD->TextMatrix(1, 0), u"R2"_s);
        QCOMPARE(form.GD->TextMatrix(2, 0), u"R1"_s);
        form.listAll({});
        QCOMPARE(form.GD->TextMatrix(1, 0), u"R3"_s);
        QCOMPARE(form.GD->TextMatrix(1, 2), QString());
        form.GD->select(2);
        emit form.GD->activatedRow(2);
        QCOMPARE(form.TabS->currentIndex(), 1);
        QCOMPARE(form.CmbLB->currentText(), u"G2.二"_s);
    }
};

QTEST_MAIN(DocumentsTest)
#include "documents_test.moc"
