// Goods from a sheet's rows: what each choice of columns stores, and that the check tells beforehand what the import
// then does.

#include "form_test.h"
#include "ledger/engine.h"
#include "ledger/literal.h"
#include "masterdata/FromExcel.h"
#include "platform/widgets/grid.h"
#include "platform/workbook/table_file.h"

#include <QtTest>

namespace {

QString told(const ImportedRow& row)
{
    static const QStringList fates = {u"added"_s, u"changed"_s, u"unchanged"_s, u"skipped"_s};
    return QStringList{fates[int(row.fate)],  row.code,        row.name,       row.before.stock, row.before.cost,
                       row.before.sale,       row.after.stock, row.after.cost, row.after.sale,   row.newCategory,
                       row.remarks.join(u';')}
        .join(u'|');
}

} // namespace

class ImportTest : public FormTest
{
    Q_OBJECT

private:
    QStringList import(const ImportChoice& choice, const QList<QStringList>& rows, GoodsImport::Mode mode)
    {
        GoodsImport import(choice, mode);
        QStringList outcome;
        for (int i = 0; i < rows.size(); ++i)
            outcome += told(import.take(i + 1, rows[i]));
        return outcome;
    }

    /// The fields of the first row, a Null as an empty text; "" when there is no row.
    QString stored(const QString& statement)
    {
        const QStringList rows = ledger_->rows(statement);
        return rows.isEmpty() ? QString() : QString(rows.first()).replace(u"Null"_s, QString());
    }

    FromExcel& openWith(const QList<QStringList>& rows)
    {
        const QString file = ledger_->folder() + u"/goods.xlsx"_s;
        if (!writeTable(file, {u"S"_s, {u"编码"_s, u"名称"_s, u"数量"_s}, {}, rows}).isEmpty())
            qFatal("no workbook");
        FromExcel& form = theForm<FromExcel>();
        form.Show();
        form.TxtFile->setText(file);
        form.TxtTab->setEditText(u"S"_s);
        form.readSheetIn();
        form.CmbCol[int(ImportField::Code)]->setEditText(u"A"_s);
        form.CmbCol[int(ImportField::Quantity)]->setEditText(u"C"_s);
        return form;
    }

    void furnish() override
    {
        ledger_->run(u"insert into TA3 (F1,F2) values ('J1','紧固件')"_s);
        ledger_->run(u"insert into TA4 (F1,F2,F3,F4,F5,F6,F7,F71,F8,V1,V2,V3,V4) values "
                     u"('A1','旧名','J1','个','M8','旧注',2,3,10,1,9,5,6)"_s);
    }

private slots:
    /// Columns by letter: A code, B name, C category's name, D unit, E model, F and G remarks, H cost, I sale price,
    /// J category's code, K quantity, L lowest, M highest.
    void rules_data()
    {
        QTest::addColumn<QString>("choice"); // the combos' texts in their order, by "|"
        QTest::addColumn<QString>("cells");  // rows by "/", cells by "|"
        QTest::addColumn<QString>("goods");  // F1,F2,F3,F4,F5,F6,F7,F71,F8,V1,V2,V3,V4 of the first row's goods
        QTest::addColumn<QString>("categories");
        const auto row = [](const char* name, QStringView choice, QStringView cells, QStringView goods,
                            QStringView categories = u"默认") {
            QTest::newRow(name) << choice.toString() << cells.toString() << goods.toString() << categories.toString();
        };
        row("new, code only", u"A", u"b1", u"B1||001| | ||0|0|0|||0|0");
        row("new, all", u"A|B|C|D|E|FG|H|I||K|L|M", u"b1|名|紧固件|只|M6|注|二|1.5|2|x|7|1|8",
            u"B1|名|J1|只|M6|  注  二|1.5|2|7|1|8|7|1.5");
        row("old, code only: all stays", u"A", u"a1", u"A1|旧名|J1|个|M8|旧注|2|3|10|1|9|5|6");
        row("old, quantity and cost with the opening", u"A||||||H|||K", u"A1|||||||4.5|||12",
            u"A1|旧名|J1|个|M8|旧注|4.5|3|12|1|9|12|4.5");
        row("empty cells of a chosen column", u"A|||D|E|F|H|I||K|L|M", u"A1", u"A1|旧名|J1| | |  |0|0|0|0|0|0|0");
        row("text in a number's place", u"A||||||||||L|M", u"A1|||||||||||3x|约9",
            u"A1|旧名|J1|个|M8|旧注|2|3|10|3|0|5|6");
        row("no code", u"A", u"", u"");
        row("code of blanks", u"A", u"  ", u"");
        row("no name, new: nothing stored, no category made", u"A|B|||||||J", u"b1||||||||||X9", u"");
        row("no name, old: nothing stored", u"A|B||||||||K", u"A1||||||||||99",
            u"A1|旧名|J1|个|M8|旧注|2|3|10|1|9|5|6");
        row("unknown category's name: the default", u"A||C", u"b1||没有", u"B1||001| | ||0|0|0|||0|0");
        row("no category's name: the default, for old goods too", u"A||C", u"A1",
            u"A1|旧名|001|个|M8|旧注|2|3|10|1|9|5|6");
        row("new category by code", u"A||||||||J", u"b1|||||||||X9", u"B1||X9| | ||0|0|0|||0|0", u"默认,X9.NoFound");
        row("made once, found by the next", u"A||||||||J", u"b1|||||||||X9/b2|||||||||x9", u"B1||X9| | ||0|0|0|||0|0",
            u"默认,X9.NoFound");
        row("category's code and name", u"A||C||||||J", u"b1||电工|||||||X9", u"B1||X9| | ||0|0|0|||0|0",
            u"默认,X9.电工");
        row("known code beats the name", u"A||C||||||J", u"b1||紧固件|||||||001", u"B1||001| | ||0|0|0|||0|0");
        row("first characters of the code", u"A||||||||A,2", u"j123", u"J123||j1| | ||0|0|0|||0|0");
        row("apostrophes are data", u"A|B|C||||||J", u"o'1|名'|类'|||||||'", u"O'1|名'|'| | ||0|0|0|||0|0",
            u"默认,'.类'");
        row("the last of two rows holds", u"A|||||||||K", u"b1||||||||||1/B1||||||||||2", u"B1||001| | ||0|0|2|||2|0");
    }
    void rules()
    {
        QFETCH(QString, choice);
        QFETCH(QString, cells);
        ImportChoice chosen;
        chosen.defaultCategory = u"001"_s;
        chosen.defaultCategoryName = u"默认"_s;
        const QStringList columns = choice.split(u'|');
        for (int i = 0; i < columns.size(); ++i)
            chosen.columns[i] = columns[i];
        QList<QStringList> rows;
        for (const QString& row : cells.split(u'/'))
            rows += row.split(u'|');

        const QString all =
            u"select F1,F2,F3,F4,F5,F6,F7,F71,F8,V1,V2,V3,V4 from TA4 where F1=%1"_s.arg(sqlText(rows[0][0].toUpper()));
        const QString before = stored(all);
        const QStringList rehearsal = import(chosen, rows, GoodsImport::Mode::Rehearsal);
        QCOMPARE(stored(all), before);
        QCOMPARE(import(chosen, rows, GoodsImport::Mode::Writing), rehearsal);
        QTEST(stored(all), "goods");
        QFETCH(QString, categories);
        const QString added = categories.section(u',', 1);
        QCOMPARE(stored(u"select F1+'.'+F2 from TA3 where F1<>'001' and F1<>'J1'"_s), added);
    }

    void onlyTheAdministrator()
    {
        FromExcel& form = openWith({{u"b1"_s, u"名"_s, u"5"_s}});
        gOperId = u"002"_s;
        for (const auto run : {&FromExcel::Menu_Run, &FromExcel::Menu_Check}) {
            boxes_->expect(u"本操作仅系统最高权限用户001可以执行！"_s);
            (form.*run)();
        }
        QCOMPARE(ledger_->row(u"select count(*) from TA4"_s), u"1"_s);
    }

    /// A row that can't be stored: told by its number, the rows before it stay, none after it is stored.
    void failingRow()
    {
        FromExcel& form =
            openWith({{u"b1"_s, u"名"_s, u"5"_s}, {u"bad"_s, u"名"_s, u"6"_s}, {u"b3"_s, u"名"_s, u"7"_s}});
        ledger_->second().connection().executeOwn(u"create trigger broken before insert on TA4 when new.F1='BAD' begin "
                                                  u"select raise(abort, 'no room'); end"_s,
                                                  {});
        boxes_->expect(u"此操作危险！可能会改变系统内存在的部份信息。建议您先备份现有数据，再导入新数据！\n"
                       u"现在就开始导入新数据吗？"_s,
                       Answer::Yes);
        boxes_->expectError(u"第 2 行没有导入，导入到此停止；前面的 1 行已经保存。"_s);
        form.command(u"Menu_Run"_s)->trigger();
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
        QCOMPARE(ledger_->row(u"select F8 from TA4 where F1='B1'"_s), u"5"_s);
        QCOMPARE(ledger_->row(u"select count(*) from TA4"_s), u"2"_s);
    }
};

QTEST_MAIN(ImportTest)
#include "import_test.moc"
