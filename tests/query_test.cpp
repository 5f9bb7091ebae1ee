// The condition builder: what each row becomes in words and in SQL, what comes back to the caller, and that the ledger
// understands all of it.

#include "ledger_fixture.h"
#include "memory_desktop.h"
#include "modal_forms.h"
#include "platform/base/clock.h"
#include "platform/widgets/controls.h"
#include "reports/Query.h"
#include "scripted_dialogs.h"

#include <QListWidget>
#include <QtTest>

namespace {

const QString untouched = u"as before"_s;

/// A form that can be handed a condition.
class Caller : public Form
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    Caller()
        : Form(u"Caller"_s, u"列表"_s)
    {}
    QString PubSql = untouched;
};

/// One row of the builder as the operator sets it; a date field takes the value in its picker.
struct Row
{
    QString field;
    QString relation;
    QString value;
    QString connective = u"并且"_s;
};

} // namespace

class QueryTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ScriptedDialogs> boxes_;

    static QList<QueryField> fields()
    {
        return {{u"货品编码"_s, u"TA4.F1"_s},
                {u"年初数"_s, u"[jxc.As]"_s, QueryType::Number},
                {u"金额"_s, u"TA4.F7*TA4.F8"_s, QueryType::Number},
                {u"日期"_s, u"jxc.Bdate"_s, QueryType::Date}};
    }

    static void set(Query& query, const Row& row)
    {
        query.CmbLG->setCurrentText(row.connective);
        query.CmbF->setCurrentText(row.field);
        query.CmbGX->setCurrentText(row.relation);
        QCOMPARE(query.CmbGX->currentText(), row.relation);
        if (query.DTP->isVisibleTo(&query))
            query.DTP->setText(row.value);
        else
            query.Txt->setText(row.value);
    }

    static void add(Query& query, const QList<Row>& rows)
    {
        for (const Row& row : rows) {
            set(query, row);
            query.CmdAdd->click();
        }
    }

    static QStringList texts(const QListWidget* list)
    {
        QStringList all;
        for (int row = 0; row < list->count(); ++row)
            all += list->item(row)->text();
        return all;
    }

    /// Opens the builder, does `act` in it, and gives what came back. `act` must close it.
    static QString ask(std::function<void(Query&)> act, bool* searched = nullptr)
    {
        Caller caller;
        inModal<Query>(u"Query"_s, [&act](Query& query) {
            act(query);
            if (query.isVisible()) {
                QTest::qFail("the builder stayed open", __FILE__, __LINE__);
                query.hide();
            }
        });
        const bool found = Query::ask(caller, fields());
        if (searched)
            *searched = found;
        return caller.PubSql;
    }

private slots:
    void initTestCase()
    {
        MemoryDesktop::install();
        QApplication::setQuitOnLastWindowClosed(false);
    }

    void init()
    {
        boxes_ = std::make_unique<ScriptedDialogs>();
        setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
    }

    void cleanup()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!Form::loaded(u"Query"_s));
        boxes_.reset();
    }

    void oneCondition_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("relation");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("sql");
        const auto row = [](const char* name, const QString& field, const QString& relation, const QString& value,
                            const QString& sql) { QTest::newRow(name) << field << relation << value << sql; };
        row("text, equal", u"货品编码"_s, u"等于(=)"_s, u"A1"_s, u"TA4.F1   ='A1'  "_s);
        row("text, contained", u"货品编码"_s, u"包含(like)"_s, u"A"_s, u"TA4.F1 like '*A*'  "_s);
        row("wildcards in the value", u"货品编码"_s, u"包含(like)"_s, u"A?*1"_s, u"TA4.F1 like '*A?*1*'  "_s);
        row("an apostrophe", u"货品编码"_s, u"等于(=)"_s, u"O'Neil"_s, u"TA4.F1   ='O''Neil'  "_s);
        row("an apostrophe, contained", u"货品编码"_s, u"包含(like)"_s, u"' or ''='"_s,
            u"TA4.F1 like '*'' or ''''=''*'  "_s);
        row("no text", u"货品编码"_s, u"等于(=)"_s, QString(), u"TA4.F1   =''  "_s);
        row("number, above", u"年初数"_s, u"大于(>)"_s, u"-2.50"_s, u"[jxc.As]>-2.5"_s);
        row("number, below", u"金额"_s, u"小于(<)"_s, u"12件"_s, u"TA4.F7*TA4.F8<12"_s);
        row("number, equal", u"年初数"_s, u"等于(=)"_s, u"．５"_s, u"[jxc.As]=0.5"_s);
        row("no number", u"年初数"_s, u"等于(=)"_s, u"or 1=1"_s, u"[jxc.As]=0"_s);
        row("a huge number", u"年初数"_s, u"小于(<)"_s, u"1e20"_s, u"[jxc.As]<1E+20"_s);
        row("date, from", u"日期"_s, u"大于(>=)"_s, u"2004-1-1"_s, u"datediff('d','2004-1-1',jxc.Bdate )>=0 "_s);
        row("date, until", u"日期"_s, u"小于(<=)"_s, u"2004-12-31"_s, u"datediff('d','2004-12-31',jxc.Bdate )<=0 "_s);
        row("date, on", u"日期"_s, u"等于(=)"_s, u"2004-2-29"_s, u"datediff('d','2004-2-29',jxc.Bdate )=0 "_s);
    }

    void oneCondition()
    {
        QFETCH(QString, field);
        QFETCH(QString, relation);
        QFETCH(QString, value);
        QFETCH(QString, sql);
        const QString pubSql = ask([&](Query& query) {
            add(query, {{field, relation, value}});
            QCOMPARE(texts(query.Lst), QStringList{u"        "_s + field + u"  "_s + relation + u' ' + value});
            query.CmdQuery->click();
        });
        QCOMPARE(pubSql, u"ALL Where "_s + sql);

        // The ledger takes it: with the condition, and with it in brackets behind another.
        const LedgerFixture ledger;
        Database database = ledger.open();
        const QString select = u"select TA4.F1 from TA4 left join jxc on jxc.Hpbm=TA4.F1 "_s;
        database.OpenRecordset(select + conditionOf(pubSql) + u" order by TA4.F1"_s);
        database.OpenRecordset(select + u" where TA4.F8>=0 and "_s + bracketedConditionOf(pubSql));
    }

    void connectivesAndRemoval_data()
    {
        QTest::addColumn<QList<int>>("removed"); // rows, one after the other
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("pubSql");
        const QString first = u"        货品编码  等于(=) A"_s;
        const QString second = u"    或者货品编码  包含(like) B"_s;
        const QString third = u"    排除年初数  大于(>) 3"_s;
        const QString fourth = u"    并且日期  等于(=) 2004-1-1"_s;
        const QString day = u" And datediff('d','2004-1-1',jxc.Bdate )=0 "_s;
        QTest::newRow("all") << QList<int>() << QStringList{first, second, third, fourth}
                             << u"ALL Where TA4.F1   ='A'   Or TA4.F1 like '*B*'   AND Not [jxc.As]>3"_s + day;
        QTest::newRow("the first") << QList<int>{0} << QStringList{u"  货品编码  包含(like) B"_s, third, fourth}
                                   << u"ALL Where TA4.F1 like '*B*'   AND Not [jxc.As]>3"_s + day;
        QTest::newRow("the first two: the negation goes too")
            << QList<int>{0, 0} << QStringList{u"  年初数  大于(>) 3"_s, fourth} << u"ALL Where [jxc.As]>3"_s + day;
        QTest::newRow("one between") << QList<int>{1} << QStringList{first, third, fourth}
                                     << u"ALL Where TA4.F1   ='A'   AND Not [jxc.As]>3"_s + day;
        QTest::newRow("the last") << QList<int>{3} << QStringList{first, second, third}
                                  << u"ALL Where TA4.F1   ='A'   Or TA4.F1 like '*B*'   AND Not [jxc.As]>3"_s;
        QTest::newRow("all but the last") << QList<int>{2, 1, 0} << QStringList{u"  日期  等于(=) 2004-1-1"_s}
                                          << u"ALL Where datediff('d','2004-1-1',jxc.Bdate )=0 "_s;
        QTest::newRow("none left") << QList<int>{0, 0, 0, 0} << QStringList() << u"ALL"_s;
    }

    void connectivesAndRemoval()
    {
        QFETCH(QList<int>, removed);
        QFETCH(QStringList, words);
        QFETCH(QString, pubSql);
        const QString back = ask([&](Query& query) {
            query.CmdRemove->click(); // the line for no condition is none to remove
            QCOMPARE(texts(query.Lst), QStringList{u"系统中存在的所有记录"_s});
            add(query, {{u"货品编码"_s, u"等于(=)"_s, u"A"_s, u"排除"_s},
                        {u"货品编码"_s, u"包含(like)"_s, u"B"_s, u"或者"_s},
                        {u"年初数"_s, u"大于(>)"_s, u"3"_s, u"排除"_s},
                        {u"日期"_s, u"等于(=)"_s, u"2004-1-1"_s}});
            for (const int row : removed) {
                query.Lst->setCurrentRow(row);
                query.CmdRemove->click();
            }
            QCOMPARE(texts(query.Lst), words);
            query.CmbF->setCurrentIndex(0);
            query.Txt->clear();
            query.CmdQuery->click();
        });
        QCOMPARE(back, pubSql);
        const LedgerFixture ledger;
        Database database = ledger.open();
        database.OpenRecordset(u"select TA4.F1 from TA4 left join jxc on jxc.Hpbm=TA4.F1 "_s + conditionOf(back));
    }

    void afterRemovingAllTheNextIsFirst()
    {
        const QString back = ask([](Query& query) {
            add(query, {{u"货品编码"_s, u"等于(=)"_s, u"A"_s}});
            query.CmdRemove->click();
            add(query, {{u"年初数"_s, u"大于(>)"_s, u"1"_s, u"或者"_s}});
            query.CmdQuery->click();
        });
        QCOMPARE(back, u"ALL Where [jxc.As]>1"_s);
    }

    void relationsFollowTheField()
    {
        ask([](Query& query) {
            QCOMPARE(query.CmbF->currentText(), u"货品编码"_s);
            QCOMPARE(query.focusWidget(), query.CmbF);
            QVERIFY(query.Txt->isVisible() && !query.DTP->isVisible());
            query.CmbF->setCurrentText(u"日期"_s);
            QVERIFY(!query.Txt->isVisible() && query.DTP->isVisible());
            QCOMPARE(query.CmbGX->currentText(), u"大于(>=)"_s);
            QCOMPARE(query.DTP->text(), u"2004-11-18"_s);
            query.DTP->setFocus();
            QTest::keyClick(query.DTP, Qt::Key_Return);
            QCOMPARE(query.focusWidget(), query.CmdAdd);
            query.CmbF->setCurrentText(u"金额"_s);
            QVERIFY(query.Txt->isVisible() && !query.DTP->isVisible());
            QCOMPARE(query.CmbGX->count(), 3);
            query.Cmdcancel->click();
        });
    }

    void theLettersWork()
    {
        const QString back = ask([](Query& query) {
            QVERIFY(QTest::qWaitForWindowActive(&query));
            query.Txt->setText(u"A1"_s);
            QTest::keyClick(query.windowHandle(), Qt::Key_A, Qt::AltModifier);
            QTRY_COMPARE(query.LstSql->count(), 1);
            QTest::keyClick(query.windowHandle(), Qt::Key_Q, Qt::AltModifier);
            QTRY_VERIFY(!query.isVisible());
        });
        QCOMPARE(back, u"ALL Where TA4.F1   ='A1'  "_s);
    }

    void reminder_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("advice"); // "" for none: the search goes on
        const QString text = u"如果要让系统无条件列出所有数据，请保持“值”一栏中内容为空，再按[查找]按钮。"_s;
        const QString date =
            u"如果要让系统无条件列出所有数据，请把“项目”切换到非日期项，保持“值”内容为空，再按[查找]。"_s;
        QTest::newRow("a value") << u"货品编码"_s << u"A1"_s << text;
        QTest::newRow("a value of a number field") << u"年初数"_s << u"0"_s << text;
        QTest::newRow("a date") << u"日期"_s << u"2004-1-1"_s << date;
        QTest::newRow("blanks are no value") << u"货品编码"_s << u"  "_s << QString();
        QTest::newRow("nothing") << u"货品编码"_s << QString() << QString();
    }

    void reminder()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(QString, advice);
        bool searched = false;
        const QString back = ask(
            [&](Query& query) {
                query.CmbF->setCurrentText(field);
                set(query, {field, query.CmbGX->currentText(), value});
                if (!advice.isEmpty())
                    boxes_->expect(u"必须首先点击[增加]按钮，把查询条件添加到兰色条件窗口中，再点击[查找]按钮！\n"_s +
                                   advice + u"\n如果想中止查找操作，请点击[取消]按钮！"_s);
                query.CmdQuery->click();
                QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));
                QCOMPARE(query.isVisible(), !advice.isEmpty());
                query.hide();
            },
            &searched);
        QCOMPARE(back, advice.isEmpty() ? u"ALL"_s : QString());
        QCOMPARE(searched, advice.isEmpty());
        QCOMPARE(conditionOf(back), QString());
        QCOMPARE(bracketedConditionOf(back), QString());
    }

    void cancelling_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("the button") << 0;
        QTest::newRow("Esc") << 1;
        QTest::newRow("the close box") << 2;
    }

    void cancelling()
    {
        QFETCH(int, way);
        bool searched = true;
        const QString back = ask(
            [&](Query& query) {
                add(query, {{u"货品编码"_s, u"等于(=)"_s, u"A1"_s}});
                if (way == 0)
                    query.Cmdcancel->click();
                else if (way == 1)
                    QTest::keyClick(query.focusWidget(), Qt::Key_Escape);
                else
                    query.close();
            },
            &searched);
        QCOMPARE(back, QString());
        QVERIFY(!searched);
    }

    void eachOpeningStartsEmpty()
    {
        ask([](Query& query) {
            add(query, {{u"日期"_s, u"等于(=)"_s, u"2004-1-1"_s, u"或者"_s}});
            query.CmdQuery->click();
        });
        ask([](Query& query) {
            QCOMPARE(texts(query.Lst), QStringList{u"系统中存在的所有记录"_s});
            QCOMPARE(query.LstSql->count(), 0);
            QCOMPARE(query.CmbF->count(), 4);
            QCOMPARE(query.CmbF->currentIndex(), 0);
            QCOMPARE(query.CmbLG->currentIndex(), 0);
            QCOMPARE(query.Txt->text(), QString());
            query.Cmdcancel->click();
        });
    }

    void anOrStaysWithinTheBrackets()
    {
        LedgerFixture ledger;
        for (const char16_t* row : {u"'R1','李经理','补货'", u"'R2','','补货'", u"'R3','李经理','急'", u"'R4','','急'"})
            ledger.run(u"insert into TB1 (F1,F6,F10) values ("_s + QString::fromUtf16(row) + u')');
        Caller caller;
        inModal<Query>(u"Query"_s, [](Query& query) {
            add(query, {{u"单号"_s, u"等于(=)"_s, u"R1"_s}, {u"附注"_s, u"等于(=)"_s, u"急"_s, u"或者"_s}});
            query.CmdQuery->click();
        });
        QVERIFY(Query::ask(caller, {{u"单号"_s, u"TB1.F1"_s}, {u"附注"_s, u"TB1.F10"_s}}));
        QCOMPARE(bracketedConditionOf(caller.PubSql), u"(TB1.F1   ='R1'   Or TB1.F10   ='急')"_s);
        QCOMPARE(ledger.rows(u"select F1 from TB1 where TB1.F6<>'' and "_s + bracketedConditionOf(caller.PubSql) +
                             u" order by F1"_s),
                 (QStringList{u"R1"_s, u"R3"_s}));
    }
};

QTEST_MAIN(QueryTest)
#include "query_test.moc"
