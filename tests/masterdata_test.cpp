// Partners, categories, goods and operators through the real forms, looked at through a second session: what is stored,
// what is refused, what an operator without a right sees, and what a failure leaves behind.

#include "admin/S1.h"
#include "form_test.h"
#include "ledger/Module1.h"
#include "ledger/engine.h"
#include "masterdata/A4.h"
#include "masterdata/code_table_form.h"
#include "modal_forms.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/picture.h"
#include "printed.h"

#include <QListWidget>
#include <QTabBar>
#include <QtTest>

namespace {

const QString inUseText = u"本编码已经在系统中采用，不可以删除！"_s;
const QString editingText =
    u"正在有数据被编辑,现在退出会造成本次编辑的数据丢失。\n\n请您首先点击<保存>或<取消>菜单结束本次编辑。"_s;

} // namespace

class MasterdataTest : public FormTest
{
    Q_OBJECT

private:
    template <class F>
    F& open()
    {
        F& form = theForm<F>();
        form.Show();
        return form;
    }

    CodeTableForm& open(CodeTableKind kind)
    {
        CodeTableForm& form = codeTableForm(kind);
        form.Show();
        return form;
    }

    /// As an operator would: a command that is hidden or greyed fails the test.
    void run(Form& form, const char* command)
    {
        QAction* action = form.command(QString::fromLatin1(command));
        QVERIFY2(action && action->isVisible() && action->isEnabled(), command);
        action->trigger();
    }

    void fill(RecordForm& form, const QStringList& texts)
    {
        for (int i = 0; i < texts.size(); ++i)
            form.Txt[i]->setText(texts[i]);
    }

    void refused(RecordForm& form, const QString& text, QWidget* focus)
    {
        boxes_->expect(text);
        run(form, "Menu_save");
        QVERIFY(form.Edstu != 0);
        QCOMPARE(form.focusWidget(), focus);
    }

    void login(const QString& account, std::initializer_list<OperatorRight> rights)
    {
        gOperId = account;
        gRights.reset();
        for (const OperatorRight right : rights)
            gRights.set(size_t(right));
        gCanSeeCost = hasRight(OperatorRight::Cost);
        for (Form* form : Form::all())
            form->sessionChanged();
    }

    /// Makes the next inserts into that table fail, whoever runs them.
    void breakInserts(const QString& table)
    {
        ledger_->second().connection().executeOwn(
            u"create trigger broken before insert on %1 begin select raise(abort, 'no room'); end"_s.arg(table), {});
    }
    void mend() { ledger_->second().connection().executeOwn(u"drop trigger broken"_s, {}); }

    void addKinds()
    {
        QTest::addColumn<CodeTableKind>("kind");
        for (const CodeTableTraits& kind : codeTableTraits)
            QTest::addRow("%s", qPrintable(kind.form.toString())) << kind.kind;
    }

    QString goods(const QString& columns, const QString& code)
    {
        return ledger_->row(u"select %1 from TA4 where F1='%2'"_s.arg(columns, code));
    }

private slots:
    // Partners and categories -----------------------------------------------------------------------------------------

    void addEditDelete_data() { addKinds(); }
    void addEditDelete()
    {
        QFETCH(CodeTableKind, kind);
        const CodeTableTraits& traits = traitsOf(kind);
        const QString table = traits.table.toString();
        CodeTableForm& form = open(kind);
        run(form, "Menu_Add");
        QVERIFY(!form.TabS->isEnabled());
        QVERIFY(!form.command(u"Menu_del"_s)->isVisible());
        // Long, with an apostrophe, a tab and a line break: stored as typed. The code loses its break, as no document
        // could name it.
        QStringList texts{u" gh\n02\r "_s, u"O'Hara\t第一\n分店"_s};
        while (texts.size() < form.Txt.size())
            texts += QString(40'000, u'长') + u"２"_s;
        fill(form, texts);
        run(form, "Menu_save");
        texts[0] = u"GH02"_s;
        QCOMPARE(ledger_->row(u"select * from %1 where F1='gh02'"_s.arg(table)), texts.join(u'|'));
        QCOMPARE(form.Edstu, 0);
        QCOMPARE(form.GD->Rows(), 3);
        QCOMPARE(form.GD->TextMatrix(2, 1), texts[1]);
        QVERIFY(form.Txt[1]->isReadOnly());

        // An unused code may change, also in its letters' case only; the old row goes.
        run(form, "Menu_edit");
        QVERIFY(!form.Txt[0]->isReadOnly());
        form.Txt[0]->setText(u"gh03"_s);
        run(form, "Menu_save");
        run(form, "Menu_edit");
        form.Txt[0]->setText(u"Gh03"_s);
        run(form, "Menu_save");
        texts[0] = u"GH03"_s;
        QCOMPARE(ledger_->rows(u"select * from %1 where F1<>'001'"_s.arg(table)), QStringList(texts.join(u'|')));

        run(form, "Menu_edit");
        form.Txt[1]->setText(u"别的"_s);
        run(form, "Menu_cancel");
        QCOMPARE(form.Txt[1]->text(), texts[1]);

        boxes_->expect(u"真的要删除"_s + texts[1] + u"的资料吗？"_s, Answer::No);
        run(form, "Menu_del");
        boxes_->expect(u"真的要删除"_s + texts[1] + u"的资料吗？"_s, Answer::Yes);
        run(form, "Menu_del");
        QCOMPARE(ledger_->value(u"select count(*) from "_s + table), u"1"_s);
        QCOMPARE(form.Txt[0]->text(), u"001"_s); // the row that is current now
        boxes_->expect(traits.lastOne.toString());
        run(form, "Menu_del");
        QCOMPARE(ledger_->value(u"select count(*) from "_s + table), u"1"_s);
    }

    void refusals_data() { addKinds(); }
    void refusals()
    {
        QFETCH(CodeTableKind, kind);
        CodeTableForm& form = open(kind);
        const QString table = form.Name().replace(u'A', u"TA"_s);
        const QString oldName = ledger_->value(u"select F2 from "_s + table);
        run(form, "Menu_Add");
        fill(form, {u"　"_s, u"甲"_s});
        refused(form, form.Lab[0]->text() + u"不能为空！"_s, form.Txt[0]);
        fill(form, {u"X"_s, u" "_s});
        refused(form, form.Lab[1]->text() + u"不能为空！"_s, form.Txt[1]);
        fill(form, {u"001"_s, u"甲"_s});
        refused(form, u"[%1]已经使用了001这个编码，请重新设置编码!"_s.arg(oldName), form.Txt[0]);
        QCOMPARE(ledger_->value(u"select count(*) from "_s + table), u"1"_s);
        boxes_->expect(editingText);
        QVERIFY(!form.Unload());

        fill(form, {u"X"_s, u"甲"_s});
        run(form, "Menu_save");
        run(form, "Menu_edit");
        form.Txt[0]->setText(u"001"_s);
        refused(form, u"[%1]已经使用了001这个编码，请重新设置编码!"_s.arg(oldName), form.Txt[0]);
        QCOMPARE(ledger_->value(u"select count(*) from "_s + table), u"2"_s);
        run(form, "Menu_cancel");
        QVERIFY(form.Unload());
    }

    void useProtects_data()
    {
        QTest::addColumn<CodeTableKind>("kind");
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("inUse");
        using enum CodeTableKind;
        const auto row = [](CodeTableKind kind, const QString& user, bool inUse) {
            QTest::addRow("%s in %s", qPrintable(traitsOf(kind).form.toString()), qPrintable(user))
                << kind << user << inUse;
        };
        row(A1, u"TB1"_s, true);
        row(A1, u"TB3"_s, true);
        row(A1, u"TD1"_s, false);
        row(A2, u"TD1"_s, true);
        row(A2, u"TD3"_s, true);
        row(A2, u"TB1"_s, false);
        row(A3, u"TA4"_s, true);
        row(A3, u"TB1"_s, false);
    }
    void useProtects()
    {
        QFETCH(CodeTableKind, kind);
        QFETCH(QString, user);
        QFETCH(bool, inUse);
        const QString table = traitsOf(kind).table.toString();
        ledger_->run(u"insert into %1 (F1,F2) values ('N''1','新')"_s.arg(table));
        ledger_->run(u"insert into %1 (F1,F3) values ('X','n''1')"_s.arg(user));
        CodeTableForm& form = open(kind);
        form.GD->select(2);
        if (inUse)
            boxes_->expect(inUseText);
        else
            boxes_->expect(u"真的要删除新的资料吗？"_s, Answer::No);
        run(form, "Menu_del");
        run(form, "Menu_edit");
        QCOMPARE(form.Txt[0]->isReadOnly(), inUse);
        form.Txt[1]->setText(u"更名"_s);
        run(form, "Menu_save");
        QCOMPARE(ledger_->value(u"select F2 from %1 where F1='N''1'"_s.arg(table)), u"更名"_s);
    }

    void aSearchShowsOneOfMany()
    {
        ledger_->run(u"insert into TA1 (F1,F2) values ('B','乙')"_s);
        CodeTableForm& form = open(CodeTableKind::A1);
        inModal<Query>(u"Query"_s, [](Query& query) {
            query.Txt->setText(u"乙"_s);
            query.CmbF->setCurrentIndex(1);
            query.add();
            query.search();
        });
        run(form, "Menu_query");
        QCOMPARE(form.GD->Rows(), 2);
        // It is the only row of the list, but not of the ledger.
        boxes_->expect(u"真的要删除乙的资料吗？"_s, Answer::Yes);
        run(form, "Menu_del");
        QCOMPARE(form.GD->Rows(), 2);
        boxes_->expect(u"没有数据可修改！"_s);
        run(form, "Menu_edit");
    }

    void aFailingInsertLeavesWhatRan()
    {
        ledger_->run(u"insert into TA1 (F1,F2) values ('B','乙')"_s);
        CodeTableForm& form = open(CodeTableKind::A1);
        form.GD->select(2);
        run(form, "Menu_edit");
        fill(form, {u"C"_s, u"丙"_s});
        breakInserts(u"TA1"_s);
        boxes_->expectError(u"no room"_s);
        run(form, "Menu_save");
        QCOMPARE(ledger_->value(u"select count(*) from TA1"_s), u"1"_s); // the old row is gone
        QCOMPARE(form.Edstu, 2);                                         // but the form still holds the record
        mend();
        run(form, "Menu_save");
        QCOMPARE(ledger_->rows(u"select F1,F2 from TA1 order by F1"_s),
                 (QStringList{u"001|默认货品来源"_s, u"C|丙"_s}));
    }

    // Goods -----------------------------------------------------------------------------------------------------------

    void compositeKeys_data()
    {
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("key");
        QTest::newRow("both short") << u"A"_s << u"B1"_s << u"A00052B1000000"_s;
        QTest::newRow("entry of the list") << u" 001.所有货品 "_s << u" LS08 "_s << u"001.124LS080000"_s;
        QTest::newRow("both just fit") << u"ABCD"_s << u"12345678"_s << u"ABCD8812345678"_s;
        QTest::newRow("long code takes the category's place")
            << u"001.货"_s << u"123456789"_s << u"1234567899123456789"_s;
    }
    void compositeKeys()
    {
        QFETCH(QString, category);
        QFETCH(QString, code);
        QTEST(compositeKey(category, code), "key");
    }

    void newGoodsBeginWithTheirOpeningBalance()
    {
        A4& form = open<A4>();
        run(form, "Menu_Add");
        QCOMPARE(form.LabSL->text(), u"原始库存"_s);
        QVERIFY(form.TxtSL->isVisible() && !form.Txt[10]->isVisible());
        fill(form,
             {u" dz-1\r\n"_s, u" O'Hara 垫圈 "_s, {}, {}, u"φ8"_s, u"１２．５"_s, u"备注"_s, u"20"_s, u"3"_s, u"x"_s});
        form.CmbDW->setEditText(u" 只 "_s);
        form.TxtSL->setText(u"40"_s);
        run(form, "Menu_save");
        QCOMPARE(goods(u"F1,F2,F3,F4,F5,F6,F7,F71,F8,F9,F11,V1,V2,V3,V4,V5"_s, u"DZ-1"_s),
                 u"DZ-1|O'Hara 垫圈|001|只|φ8|备注|12.5|20|40|双击此处导入图片|001.124DZ-10000|3|0|40|12.5|Null"_s);
        QCOMPARE(form.GD->Rows(), 2); // the place-holder row is gone
        QCOMPARE(form.GD->TextMatrix(1, 5), u"12.5"_s);
        QCOMPARE(form.Txt[2]->text(), u"所有货品"_s);
        QVERIFY(form.CmbDW->findText(u"只"_s) >= 0);
    }

    void goodsRefusals()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3) values ('A1','螺栓','001')"_s);
        A4& form = open<A4>();
        run(form, "Menu_Add");
        fill(form, {u"\n"_s, u"垫圈"_s});
        refused(form, u"货品编码不能为空！"_s, form.Txt[0]);
        fill(form, {u"a1"_s, {}});
        refused(form, u"货品名称不能为空！"_s, form.Txt[1]);
        form.Txt[1]->setText(u"垫圈"_s);
        form.CmbLB->setEditText(u" "_s);
        refused(form, u"所属类别不能为空！"_s, form.CmbLB);
        form.CmbLB->setEditText(u"9.所有货品"_s);
        refused(form, u"所属类别编码输入错误！"_s, form.CmbLB);
        form.CmbLB->setEditText(u"001"_s); // the code alone will do
        refused(form, u"[螺栓]已经使用了A1这个编码，请重新设置编码!"_s, form.Txt[0]);
        QCOMPARE(ledger_->value(u"select count(*) from TA4"_s), u"1"_s);
        boxes_->expect(editingText);
        QVERIFY(!form.Unload());
    }

    void goodsInUse_data()
    {
        QTest::addColumn<QString>("insert");
        QTest::addColumn<bool>("inUse");
        QTest::newRow("a period report") << u"jxc (SortNo,hpbm) values (1,'a1')"_s << true;
        for (const QString& lines : {u"TB11"_s, u"TB31"_s, u"TD11"_s, u"TD31"_s})
            QTest::addRow("%s", qPrintable(lines)) << u"%1 (F0,F1) values ('X','A1')"_s.arg(lines) << true;
        QTest::newRow("a stock-take alone") << u"TC21 (F0,F1) values ('X','A1')"_s << false;
    }
    void goodsInUse()
    {
        QFETCH(QString, insert);
        QFETCH(bool, inUse);
        ledger_->run(u"insert into TA4 (F1,F2,F3) values ('A1','螺栓','001')"_s);
        ledger_->run(u"insert into "_s + insert);
        A4& form = open<A4>();
        run(form, "Menu_edit");
        QCOMPARE(form.Txt[0]->isReadOnly(), inUse);
        run(form, "Menu_cancel");
        if (inUse)
            boxes_->expect(inUseText);
        else
            boxes_->expect(u"真的要删除螺栓的资料吗？"_s, Answer::Yes);
        run(form, "Menu_del");
        QCOMPARE(ledger_->value(u"select count(*) from TA4"_s), inUse ? u"1"_s : u"0"_s);
        QCOMPARE(form.GD->Rows(), 2);
    }

    void stockAndOpeningBalanceAreForTheTopAdministrator_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<int>("stockSetting");
        QTest::addColumn<int>("openingSetting");
        QTest::addColumn<QString>("stored"); // stock, opening quantity and price after typing 1, 2 and 3
        QTest::newRow("001, both") << u"001"_s << 1 << 1 << u"1|2|3"_s;
        QTest::newRow("001, stock") << u"001"_s << 1 << 0 << u"1|20|30"_s;
        QTest::newRow("001, opening") << u"001"_s << 0 << 1 << u"10|2|3"_s;
        QTest::newRow("001, neither") << u"001"_s << 0 << 0 << u"10|20|30"_s;
        QTest::newRow("another") << u"102"_s << 1 << 1 << u"10|20|30"_s;
    }
    void stockAndOpeningBalanceAreForTheTopAdministrator()
    {
        QFETCH(QString, account);
        QFETCH(int, stockSetting);
        QFETCH(int, openingSetting);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F7,F8,V3,V4,V5) values ('A1','螺栓','001',2,10,20,30,40)"_s);
        gStockEdit001 = stockSetting;
        gOpeningEdit001 = openingSetting;
        login(account, {OperatorRight::Base, OperatorRight::Cost});
        A4& form = open<A4>();
        run(form, "Menu_edit");
        QCOMPARE(form.TxtSL->text(), u"10"_s); // held also while it is hidden
        for (QLineEdit* edit : {form.TxtSL, form.Txt[10], form.Txt[11]})
            if (edit->isVisible())
                edit->setText(edit == form.TxtSL ? u"1"_s : edit == form.Txt[10] ? u"2"_s : u"3"_s);
        run(form, "Menu_save");
        QTEST(goods(u"F8,V3,V4"_s, u"A1"_s), "stored");
        QCOMPARE(goods(u"V5"_s, u"A1"_s), u"Null"_s);
    }

    void anAuditDuringAnEditIsNotUndone()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3,F7,F71,F8,V3,V4) values ('A1','螺栓','001',2,4,10,20,30)"_s);
        gSalePriceFactor = 2;
        A4& form = open<A4>();
        ledger_->run(u"update TA4 set F7=2.333333333333 where F1='A1'"_s); // since the list was read
        run(form, "Menu_edit");
        QCOMPARE(form.Txt[5]->text(), u"2.333333333333"_s);
        form.Txt[1]->setText(u"外六角螺栓"_s);
        ledger_->run(u"update TA4 set F7=2.5,F71=4.75,F8=12,V3=21 where F1='A1'"_s);
        run(form, "Menu_save");
        QCOMPARE(goods(u"F2,F7,F71,F8,V3,V4"_s, u"A1"_s), u"外六角螺栓|2.5|4.75|12|21|30"_s);
        QCOMPARE(form.GD->TextMatrix(1, 5), u"2.5"_s);
    }

    void salePriceFollowsCost_data()
    {
        QTest::addColumn<double>("factor");
        QTest::addColumn<QString>("note");
        QTest::addColumn<QString>("sale"); // after a cost of 3.333
        QTest::newRow("off") << 0.0 << u"当前设置：成本价格与销售价格无关联"_s << u"9"_s;
        QTest::newRow("on")
            << 1.5 << u"当前设置：修改成本价格会影响销售价格(销售价格=成本价格 x 1.5) 修改销售价格不会影响成本价格"_s
            << u"5.00"_s;
    }
    void salePriceFollowsCost()
    {
        QFETCH(double, factor);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F7,F71) values ('A1','螺栓','001',2,9)"_s);
        gSalePriceFactor = factor;
        A4& form = open<A4>();
        run(form, "Menu_edit");
        QTEST(form.LabPrice->text(), "note");
        QCOMPARE(form.Txt[7]->text(), u"9"_s); // showing a record changes nothing
        form.Txt[5]->setText(u"3.333"_s);
        QTEST(form.Txt[7]->text(), "sale");
        form.Txt[7]->setText(u"8"_s);
        QCOMPARE(form.Txt[5]->text(), u"3.333"_s);
    }

    void costIsHidden()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3,F7,F71) values ('A1','螺栓','001',2.125,9)"_s);
        A4& form = open<A4>();
        login(u"102"_s, {OperatorRight::Base});
        QVERIFY(!form.GD->columnVisible(5));
        form.GD->select(1);
        QVERIFY(!form.GD->selectionAsText().contains(u"2.125"_s));
        run(form, "Menu_edit");
        QCOMPARE(form.Txt[5]->displayText(), u"*****"_s);
        run(form, "Menu_save");
        QCOMPARE(goods(u"F7"_s, u"A1"_s), u"2.125"_s);
        gWithMoney = 0;
        login(u"102"_s, {OperatorRight::Base, OperatorRight::Cost});
        QVERIFY(!form.GD->columnVisible(5) && !form.Txt[5]->isVisible() && !form.Txt[7]->isVisible());
    }

    void prints_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QStringList>("formulas");
        QTest::addColumn<QString>("staged"); // the last row
        const QString partner = u"002|O'Hara|路'1|电|传|信|备"_s;
        QTest::newRow("A1") << u"Prnta12.rpt"_s << u"prnta12"_s << QStringList{u"Cpt='供货单位列表'"_s} << partner;
        QTest::newRow("A2") << u"Prnta12.rpt"_s << u"prnta12"_s << QStringList{u"Cpt='出货单位列表'"_s} << partner;
        QTest::newRow("A3") << u"PrnTA3.rpt"_s << u"prnTA32"_s << QStringList{u"Cpt='货品类别编码表'"_s}
                            << u"002|O'Hara|Null|Null|Null|Null|Null"_s;
        const QStringList letterhead{u"Cpt='货品编码资料'"_s, u"regname='O'Hara's'"_s, u"regaddr='地址：路'"_s,
                                     u"regtel='电话：8'"_s};
        QTest::newRow("A4") << u"PrnTa4.rpt"_s << u"prnTa4"_s << letterhead << u"A2|螺栓|所有货品|个|M8|2.125|it's"_s;
        QTest::newRow("A4, cost hidden") << u"PrnTa4.rpt"_s << u"prnTa4"_s << letterhead
                                         << u"A2|螺栓|所有货品|个|M8|9|it's"_s;
    }

    void prints()
    {
        for (const QString& table : {u"TA1"_s, u"TA2"_s})
            ledger_->run(
                u"insert into %1 (F1,F2,F3,F4,F5,F6,F7) values ('002','O''Hara','路''1','电','传','信','备')"_s.arg(
                    table));
        ledger_->run(u"insert into TA3 (F1,F2) values ('002','O''Hara')"_s);
        ledger_->run(u"insert into PrTA1 (F1) values ('of the print before')"_s);
        gCompanyName = u"O'Hara's"_s;
        gCompanyAddr = u"路"_s;
        gCompanyTel = u"8"_s;
        const QString row = QString::fromUtf8(QTest::currentDataTag());
        const bool goodsList = row.startsWith(u"A4");
        RecordForm& form =
            goodsList ? static_cast<RecordForm&>(open<A4>()) : open(CodeTableKind(row.right(1).toInt() - 1));
        if (goodsList) {
            boxes_->expect(u"没有数据可打印！"_s);
            run(form, "Menu_print");
            for (const QString& code : {u"'A1'"_s, u"'A2'"_s})
                ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F6,F7,F71) values (%1,'螺栓','001','个','M8','it''s',"
                             "2.125,9)"_s.arg(code));
            form.recordsChanged();
        }
        if (row.contains(u"hidden"))
            login(u"102"_s, {OperatorRight::Base});
        QFETCH(QString, missing);
        boxes_->expect(u"报表文件%1.rpt丢失！"_s.arg(missing));
        run(form, "Menu_print");
        gAppPath = QStringLiteral(LAYOUTS "/");
        const Printed paper = printed([&] { run(form, "Menu_print"); });
        QTEST(paper.file, "report");
        QTEST(paper.formulas, "formulas");
        const QStringList staged = ledger_->rows(u"select F1,F2,F3,F4,F5,F6,F7 from PrTA1"_s);
        QCOMPARE(staged.size(), 2);
        QTEST(staged[1], "staged");
        QVERIFY(paper.texts.join(u'\n').contains(goodsList ? u"it's" : u"O'Hara"));
    }

    void goodsOfAVanishedCategoryAreFoundBySearch()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3) values ('A1','螺栓','gone')"_s);
        A4& form = open<A4>();
        QCOMPARE(form.GD->TextMatrix(1, 0), QString());
        inModal<Query>(u"Query"_s, [](Query& query) { query.search(); });
        run(form, "Menu_query");
        QCOMPARE(form.GD->TextMatrix(1, 0), u"A1"_s);
        run(form, "Menu_edit");
        refused(form, u"所属类别编码输入错误！"_s, form.CmbLB);
    }

    void pictures_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("trouble");
        const auto picture = [](const char* format) {
            QByteArray bytes;
            QBuffer buffer(&bytes);
            QImage(40, 30, QImage::Format_RGB32).save(&buffer, format);
            return bytes;
        };
        QTest::newRow("of another format than its name") << picture("BMP") << QString();
        QTest::newRow("cut off") << picture("PNG").chopped(30) << u"图片文件已损坏"_s;
        QTest::newRow("a text") << QByteArray("not a picture") << u"不是图片，或格式不支持"_s;
        QTest::newRow("empty") << QByteArray("") << u"不是图片，或格式不支持"_s;
        QTest::newRow("huge") << QByteArray("P6 30000 30000 255\n") << u"图片尺寸太大"_s;
        QTest::newRow("missing") << QByteArray() << u"图片文件不存在"_s;
    }
    void pictures()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, trouble);
        const QString path = ledger_->folder() + u"/螺栓.jpg"_s;
        if (!content.isNull()) {
            QFile file(path);
            QVERIFY(file.open(QFile::WriteOnly) && file.write(content) == content.size());
        }
        A4& form = open<A4>();
        run(form, "Menu_Add");
        boxes_->expectFile(u"导入货品图片"_s, std::nullopt);
        form.choosePicture();
        QCOMPARE(form.LabInfo->text(), u"双击此处导入图片"_s);
        boxes_->expectFile(u"导入货品图片"_s, path);
        QTest::mouseDClick(form.Img, Qt::LeftButton);
        QCOMPARE(boxes_->lastFile.filter, u"图片文件(*.jpg;*.gif;*.bmp)|*.jpg;*.gif;*.bmp"_s);
        QCOMPARE(form.Img->hasPicture(), trouble.isEmpty());
        QCOMPARE(form.Img->text(), trouble);
        fill(form, {u"A1"_s, u"螺栓"_s});
        run(form, "Menu_save");
        QCOMPARE(goods(u"F9"_s, u"A1"_s), path); // never validated
        QCOMPARE(form.LabInfo->text(), path);
        QCOMPARE(form.Img->hasPicture(), trouble.isEmpty());
        form.choosePicture(); // nothing while browsing
    }

    void aFailingGoodsInsertLosesTheRowButNotTheEntry()
    {
        ledger_->run(u"insert into TA4 (F1,F2,F3,F8) values ('A1','螺栓','001',10)"_s);
        A4& form = open<A4>();
        run(form, "Menu_edit");
        breakInserts(u"TA4"_s);
        boxes_->expectError(u"no room"_s);
        run(form, "Menu_save");
        QCOMPARE(ledger_->value(u"select count(*) from TA4"_s), u"0"_s);
        mend();
        run(form, "Menu_save");
        QCOMPARE(goods(u"F2,F8"_s, u"A1"_s), u"螺栓|10"_s);
    }

    // Operators -------------------------------------------------------------------------------------------------------

    void operators()
    {
        S1& form = open<S1>();
        run(form, "Menu_Add");
        fill(form, {u" li "_s, u"O'Hara"_s});
        form.Chk[1]->setChecked(true);
        QVERIFY(form.Chk[4]->isChecked()); // who books goods in must see their cost
        form.Chk[1]->setChecked(false);
        QVERIFY(form.Chk[4]->isChecked());
        form.Chk[1]->setChecked(true);
        form.Chk[4]->setChecked(false);
        QVERIFY(!form.Chk[1]->isChecked());
        form.Chk[4]->setChecked(true);
        QVERIFY(!form.Chk[1]->isChecked());
        run(form, "Menu_save");
        QCOMPARE(ledger_->row(u"select * from TE1 where F1='li'"_s), u"li|O'Hara|Null|0|0|0|0|1|0|Null|Null"_s);
        QVERIFY(!form.Chk[0]->isEnabled());

        ledger_->run(u"update TE1 set F3='pw',F75='大字',pad='记事',F66=Null where F1='li'"_s);
        run(form, "Menu_edit");
        form.Chk[0]->setChecked(true);
        run(form, "Menu_save");
        QCOMPARE(ledger_->row(u"select * from TE1 where F1='li'"_s), u"li|O'Hara|Null|1|0|0|0|1|0|Null|Null"_s);

        run(form, "Menu_edit");
        form.Txt[0]->setText(u"001"_s);
        refused(form, u"[管理员]已经使用了001这个编码，请重新设置编码!"_s, form.Txt[0]);
        form.Txt[0]->clear();
        refused(form, u"操作员帐号不能为空！"_s, form.Txt[0]);
        QCOMPARE(form.property("Edstu").toInt(), 0); // nothing that the main window would guard
        run(form, "Menu_cancel");

        boxes_->expect(u"真的要删除O'Hara的资料吗？"_s, Answer::Yes);
        run(form, "Menu_del");
        boxes_->expect(u"001是本系统最高权限管理员专用帐号，不能删除！"_s);
        run(form, "Menu_del");
        QCOMPARE(ledger_->value(u"select count(*) from TE1"_s), u"1"_s);
        run(form, "Menu_edit");
        QVERIFY(form.Txt[0]->isReadOnly() && !form.Txt[1]->isReadOnly());
        QVERIFY(form.Unload()); // an entry is dropped without a word
        QCOMPARE(ledger_->value(u"select F2 from TE1"_s), u"管理员"_s);
    }

    void rightsAreShownAsStored()
    {
        // A row of an older ledger that the coupling would not allow.
        ledger_->run(u"insert into TE1 (F1,F2,F62,F65) values ('9','旧',1,0)"_s);
        S1& form = open<S1>();
        form.GD->select(2);
        form.TabS->setCurrentIndex(1);
        QVERIFY(form.Chk[1]->isChecked() && !form.Chk[4]->isChecked() && !form.Chk[0]->isChecked());
    }

    // Rights ----------------------------------------------------------------------------------------------------------

    void aFormLeftOpenShowsNothingWithoutTheRight()
    {
        const QList<std::pair<RecordForm*, OperatorRight>> forms{{&open(CodeTableKind::A1), OperatorRight::Base},
                                                                 {&open<A4>(), OperatorRight::Base},
                                                                 {&open<S1>(), OperatorRight::Admin}};
        for (const auto& [form, right] : forms) {
            login(u"102"_s, {right});
            run(*form, "Menu_Add");
            fill(*form, {u"X"_s, u"甲"_s});
            login(u"102"_s, {});
            QVERIFY(!form->Txt[0]->isVisible() && !form->GD->isVisible());
            QVERIFY(!form->command(u"Menu_save"_s)->isEnabled());
            login(u"102"_s, {right});
            QVERIFY(form->Txt[0]->isVisible());
            QCOMPARE(form->Txt[0]->text(), u"X"_s);
            run(*form, "Menu_cancel");
        }
    }
};

QTEST_MAIN(MasterdataTest)
#include "masterdata_test.moc"
