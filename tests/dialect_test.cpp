#include "ledger/dialect_functions.h"
#include "ledger/dialect_rewrite.h"
#include "ledger/format.h"
#include "platform/base/date.h"
#include "platform/base/text.h"
#include "tests/statements.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <sqlcipher/sqlite3.h>

namespace {

constexpr dialect::Rewrites noRewrites{false, false, false, false};

/// A plain database in memory that runs translated statements.
class Engine
{
public:
    Engine()
    {
        sqlite3_open(":memory:", &database_);
        dialect::registerFunctions(database_);
        QFile schema(QStringLiteral(LEDGER_SCHEMA));
        if (!schema.open(QIODevice::ReadOnly) ||
            sqlite3_exec(database_, schema.readAll().constData(), nullptr, nullptr, nullptr) != SQLITE_OK ||
            bringUp(database_) != SQLITE_OK)
            qFatal("schema.sql: %s", sqlite3_errmsg(database_));
    }
    ~Engine() { sqlite3_close(database_); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// The rows, fields parted by "|" and Null as "~"; or the one row "error: ..." for a failure.
    QStringList run(const QString& statement, const dialect::Rewrites& rewrites = {})
    {
        const dialect::Translation translation = dialect::translate(statement, rewrites);
        return run(translation.sql, translation.bindings, dialect::scan(statement).literals);
    }

    QStringList run(const QByteArray& sql, const std::vector<dialect::Binding>& bindings = {},
                    const std::vector<dialect::Literal>& literals = {})
    {
        std::vector<dialect::Literal> values;
        for (const dialect::Binding& binding : bindings)
            values.push_back(dialect::bound(binding, literals));
        sqlite3_stmt* prepared = nullptr;
        QStringList rows;
        if (sqlite3_prepare_v2(database_, sql.constData(), -1, &prepared, nullptr) != SQLITE_OK)
            return {error()};
        int parameter = 0;
        for (const dialect::Literal& value : values)
            bind(prepared, ++parameter, value);
        int result = SQLITE_ROW;
        while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
            QStringList fields;
            for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, i));
                fields << (text ? QString::fromUtf8(text) : u"~"_s);
            }
            rows << fields.join(u'|');
        }
        if (result != SQLITE_DONE)
            rows = {error()};
        sqlite3_finalize(prepared);
        return rows;
    }

    int errorCode() const { return sqlite3_errcode(database_); }

private:
    static void bind(sqlite3_stmt* to, int parameter, const dialect::Literal& value)
    {
        if (const auto* text = std::get_if<QString>(&value))
            sqlite3_bind_text(to, parameter, text->toUtf8().constData(), -1, SQLITE_TRANSIENT);
        else if (const auto* whole = std::get_if<qint64>(&value))
            sqlite3_bind_int64(to, parameter, *whole);
        else
            sqlite3_bind_double(to, parameter, std::get<double>(value));
    }
    QString error() const { return u"error: "_s + QString::fromUtf8(sqlite3_errmsg(database_)); }

    sqlite3* database_ = nullptr;
};

QStringList sorted(QStringList rows)
{
    rows.sort();
    return rows;
}

/// Random statements over a few small tables, so that Nulls, orphans and duplicates meet all the time.
class StatementMaker
{
public:
    explicit StatementMaker(quint32 seed)
        : random_(seed)
    {}

    int below(int bound) { return static_cast<int>(random_.bounded(bound)); }
    QString oneOf(const QStringList& texts) { return texts[below(static_cast<int>(texts.size()))]; }

    void fill(Engine& engine)
    {
        const QStringList codes{u"null"_s, u"'a'"_s, u"'A'"_s, u"'ab'"_s, u"'b'"_s, u"''"_s, u"'a*'"_s};
        const QStringList dates{u"null"_s, u"'2004-9-30'"_s, u"'2004-10-1'"_s, u"'2004/10/02 9:05:03'"_s};
        for (const QString& table : tables()) {
            engine.run(u"delete from %1"_s.arg(table));
            for (int rows = 2 + below(5); rows > 0; --rows)
                engine.run(u"insert into %1 (F1,F2,F3) values (%2,%3,%4)"_s.arg(table, oneOf(codes), oneOf(dates),
                                                                                oneOf(codes)));
        }
    }

    QString select()
    {
        QStringList left = tables();
        for (qsizetype i = left.size() - 1; i > 0; --i)
            left.swapItemsAt(i, below(static_cast<int>(i) + 1));
        left = left.first(2 + below(3));
        QStringList items;
        for (const QString& table : left)
            items << table + u".F1"_s << table + u".F2"_s << table + u".F3"_s;
        return u"select %1 from %2 where %3"_s.arg(items.join(u','), joined(left), condition(left, 2));
    }

private:
    static QStringList tables() { return {u"TB1"_s, u"TB3"_s, u"TD1"_s, u"TD3"_s}; }

    QString column(const QStringList& tables) { return oneOf(tables) + oneOf({u".F1"_s, u".F3"_s}); }

    QString joined(const QStringList& tables)
    {
        if (tables.size() == 1)
            return tables.front();
        const qsizetype cut = 1 + below(static_cast<int>(tables.size()) - 1);
        const QStringList left = tables.first(cut);
        const QStringList right = tables.sliced(cut);
        const auto bracketed = [this](const QStringList& part) {
            return part.size() == 1 ? joined(part) : u"("_s + joined(part) + u")"_s;
        };
        QString on = column(left) + u"="_s + column(right);
        if (below(4) == 0)
            on += (below(2) ? u" and "_s : u" or "_s) + condition(tables, 0);
        return bracketed(left) + (below(5) ? u" left join "_s : u" inner join "_s) + bracketed(right) + u" on "_s + on;
    }

    QString condition(const QStringList& tables, int depth)
    {
        if (depth > 0 && below(3) > 0) {
            const QString left = condition(tables, depth - 1);
            const QString right = condition(tables, depth - 1);
            return (below(4) ? u"(%1 %2 %3)"_s : u"not (%1 %2 %3)"_s).arg(left, oneOf({u"and"_s, u"or"_s}), right);
        }
        switch (below(8)) {
        case 0:
            return column(tables) + oneOf({u" is null"_s, u" is not null"_s});
        case 1:
            return u"not "_s + column(tables) + u"='a'"_s;
        case 2:
            return column(tables) + oneOf({u" like "_s, u" not like "_s}) +
                   oneOf({u"'a*'"_s, u"'A?'"_s, u"'*b'"_s, u"'?'"_s, u"''"_s, u"'ab'"_s});
        case 3:
            return column(tables) + oneOf({u" in "_s, u" not in "_s}) +
                   oneOf({u"('a','b')"_s, u"(select F1 from TA3 where F1='none')"_s});
        case 4:
        case 5:
            return u"datediff('d','2004-10-1',%1.F2 ) %2 %3"_s.arg(
                oneOf(tables), oneOf({u">="_s, u"<="_s, u"="_s, u"<>"_s, u"<"_s, u">"_s}),
                oneOf({u"0"_s, u"1"_s, u"-1"_s, u"0.5"_s}));
        default:
            return column(tables) + oneOf({u"="_s, u"<>"_s, u"<="_s}) + oneOf({u"'a'"_s, u"'b'"_s, column(tables)});
        }
    }

    QRandomGenerator random_;
};

} // namespace

class DialectTest : public QObject
{
    Q_OBJECT

private slots:
    void translates_data();
    void translates();
    void refuses_data();
    void refuses();
    void scansToShapes();
    void namesColumnsAsTheFormsKnowThem();
    void fixesWhatAValueDecides();
    void runsEveryStatementOfTheSystem();
    void rewritesKeepRows();
    void rewritesUseIndexes_data();
    void rewritesUseIndexes();
    void nonDateRaises_data();
    void nonDateRaises();
    void addsByTheKindOfTerms();
    void matchesPatterns_data();
    void matchesPatterns();
    void dayNumbersAreThoseOfDates();
    void naturalOrderIsAnOrder();
};

void DialectTest::translates_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QByteArray>("sql");
    const auto row = [](const char* name, const char16_t* statement, const char* sql) {
        QTest::newRow(name) << QString::fromUtf16(statement) << QByteArray(sql);
    };
    row("top becomes limit, a prefix pattern a range", u"select top 500 F1,F2 from TA4 where F1 like 'A*'  order by F1",
        "select [F1], [F2] from [TA4] where ([F1] >= ?2 and [F1] < ?3 and matches([F1], ?1)) order by [F1] limit ?4");
    row("a pattern without beginning has no range", u"select F1 from TA4 where F1 like '*A' and F2 like 'B*'",
        "select [F1] from [TA4] where (matches([F1], ?1) and matches([F2], ?2))");
    row("texts are joined, numbers added", u"select (F2+'/'+F5) AS MC,F7+F8 from TA4",
        "select (([F2] || ?1) || [F5]) as [MC], ([F7] + [F8]) from [TA4]");
    row("comma join, Null test, moments go by time",
        u"select TB1.F1 from TB1,TA1 WHERE TB1.F3=TA1.F1 and (TB1.F6 is Null or TB1.F6='')  order by TB1.H8 desc ",
        "select [TB1].[F1] from [TB1], [TA1] where (([TB1].[F3] = [TA1].[F1]) and (([TB1].[F6] is null) or "
        "([TB1].[F6] = ?1))) order by [TB1].[H8] collate [NATURAL] desc");
    row("order of an alias, an alone name and an ordinal by time",
        u"select a.F2 as D,Bdate from TB1 a,jxc order by D,Bdate,2 desc,a.F1",
        "select [a].[F2] as [D], [Bdate] from [TB1] as [a], [jxc] order by [D] collate [NATURAL], "
        "[Bdate] collate [NATURAL], 2 collate [NATURAL] desc, [a].[F1]");
    row("a bracketed path is table and column", u"select [JXC.As],[As] from jxc order by jxc.hpbm",
        "select [JXC].[As], [As] from [jxc] order by [jxc].[hpbm]");
    row("unary minus", u"update TA4 set F8=F8+-3,V1=-F8 where F1='A1'",
        "update [TA4] set [F8] = ([F8] + (- ?1)), [V1] = (- [F8]) where ([F1] = ?2)");
    row("a broken column name", u"insert into TC15 (F1 3,[F1] 4,F15) values (1,Null,'x')",
        "insert into [TC15] ([F13], [F14], [F15]) values (?1, null, ?2)");
    row("delete with a star", u"DELETE * FROM JXC", "delete from [JXC]");
    row("division is that of real numbers", u"select F9/2 as q from TB1",
        "select (cast([F9] as real) / ?1) as [q] from [TB1]");
    row("sub-select with a day test",
        u"delete from TB11 where F0 in (select F1 from TB1 where datediff('D','2004-1-1',F2)<0)",
        "delete from [TB11] where ([F0] in (select [F1] from [TB1] where (dayno([F2]) < (select checkedday(?1, "
        "min([F2])) "
        "+ ?2 from [TB1] where dayno([F2]) = nodate()))))");
    row("a day test elsewhere stays", u"select F1 from reginfo where datediff('d','2004-1-1',F7)<0",
        "select [F1] from [reginfo] where (datediff(?1, [F7]) < ?2)");
    row("not binds weaker than a comparison", u"select * from TA4 where F1='a' AND Not F8>=1 Or F7<>2",
        "select * from [TA4] where ((([F1] = ?1) and (not ([F8] >= ?2))) or ([F7] <> ?3))");
    row("nested left joins become left-deep, and inner where the Null row goes anyway",
        u"select TB1.F1,TB11.F7 from (TB1 left join TA1 on TB1.F3=TA1.F1) left join (TB11 left Join ( TA4 left join "
        u"TA3 "
        u"on TA4.F3=TA3.F1) on TB11.F1=TA4.F1) on TB11.F0=TB1.F1 where TA4.F3='001'",
        "select [TB1].[F1], [TB11].[F7] from [TB1] left join [TA1] on ([TB1].[F3] = [TA1].[F1]) inner join [TB11] on "
        "([TB11].[F0] = [TB1].[F1]) inner join [TA4] on ([TB11].[F1] = [TA4].[F1]) left join [TA3] on ([TA4].[F3] = "
        "[TA3].[F1]) where ([TA4].[F3] = ?1)");
    row("a nested join that takes no part in its own test stays",
        u"select TA1.F1 from TA1 left join (TA4 left join TA3 on TA3.F1='001') on TA1.F1=TA4.F1",
        "select [TA1].[F1] from [TA1] left join ([TA4] left join [TA3] on ([TA3].[F1] = ?1)) on ([TA1].[F1] = "
        "[TA4].[F1])");
    row("a Null test keeps the left join",
        u"select SUM (TD11.F6) AS SLSL from TD11 left join TD1 on TD1.F1=TD11.F0 WHERE TD1.F6 IS NULL GROUP BY TD11.F1",
        "select sum([TD11].[F6]) as [SLSL] from [TD11] left join [TD1] on ([TD1].[F1] = [TD11].[F0]) where "
        "([TD1].[F6] is null) group by [TD11].[F1]");
}

void DialectTest::translates()
{
    QFETCH(QString, statement);
    QFETCH(QByteArray, sql);
    QCOMPARE(dialect::translate(statement).sql, sql);
}

void DialectTest::refuses_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<qsizetype>("offset");
    const auto row = [](const char* name, const char16_t* statement, qsizetype offset) {
        QTest::newRow(name) << QString::fromUtf16(statement) << offset;
    };
    row("nothing", u"  ", 2);
    row("unknown verb", u"selec F1 from TA4", 0);
    row("second statement", u"select F1 from TA4; delete from TA4", 18);
    row("text behind it", u"delete from TA4 TB1", 16);
    row("missing number", u"update TB11 set H6=1,H7=,H8='x'", 24);
    row("open quote", u"select F2 from TA1 where F1='O'Neil'", 35);
    row("open bracket", u"select [As from jxc", 7);
    row("reserved word as a column", u"select As from jxc", 7);
    row("quoted name", u"select \"F1\" from TA4", 7);
    row("comment", u"delete from TA4 -- all", 16);
    row("control character", u"select \u0003 from TA4", 7);
    row("unknown function", u"select F1 from TA4 where left(F1,1)='A'", 25);
    row("other unit of time", u"select F1 from TB1 where datediff('m','2004-1-1',F2)=0", 34);
    row("number out of range", u"select 1E+999 from TA4", 7);
    row("values and columns", u"insert into TA3 (F1,F2) values (5,000,'x')", 24);
    row("join without its test", u"select * from TA1 left join TA2", 31);
    row("deep nesting", QString(u"select "_s + QString(100000, u'(')).toStdU16String().c_str(), 106);
}

void DialectTest::refuses()
{
    QFETCH(QString, statement);
    QFETCH(qsizetype, offset);
    try {
        dialect::translate(statement);
        QFAIL("accepted");
    } catch (const StoreError& error) {
        QCOMPARE(error.kind(), StoreError::Kind::Statement);
        QCOMPARE(error.details().offset, offset);
        QCOMPARE(error.details().statement, statement);
        QVERIFY(error.details().what.startsWith(u"语句有误："));
    }
}

void DialectTest::scansToShapes()
{
    const auto shape = dialect::scan(u"select 'it''s',12,.5,1E-06,5.0,99999999999999999999,'' from T1 where F11=F8+-3");
    const std::vector<dialect::Literal> expected{u"it's"_s, qint64(12), 0.5, 1e-6, 5.0, 1e20, u""_s, qint64(3)};
    QCOMPARE(shape.literals.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
        QVERIFY2(shape.literals[i] == expected[i], qPrintable(QString::number(i)));

    const auto key = [](QStringView statement) { return dialect::scan(statement).key; };
    QCOMPARE(key(u"select 1 from T where F1='a'"), key(u"select 22 from T where F1='b''c'"));
    QVERIFY(key(u"select 1 from T") != key(u"select '1' from T")); // "+" joins or adds
    QVERIFY(key(u"select 1 from T") != key(u"select 1.5 from T")); // an ordinal or a constant
    QVERIFY(key(u"F1 like 'a*'") != key(u"F1 like '*a'"));         // with or without a range
    QVERIFY(key(u"select F1 from T") != key(u"select F2 from T"));
    QVERIFY(key(u"select [1] from T") != key(u"select [2] from T"));
}

void DialectTest::namesColumnsAsTheFormsKnowThem()
{
    const auto columns = [](QStringView statement) { return dialect::translate(statement).columns; };
    QCOMPARE(columns(u"select TB1.F1,2 as sl,[JXC.As],F6*F7,'x' from TB1"),
             QStringList({u"F1"_s, u"sl"_s, u"As"_s, u"Expr1003"_s, u"Expr1004"_s}));
    QCOMPARE(columns(u"select * from TA3"), QStringList());
    QCOMPARE(columns(u"Select TA1.* from TA1"), QStringList());
    QVERIFY(dialect::translate(u"select * from TA3").isQuery);
    QVERIFY(!dialect::translate(u"delete from TA3 where F1 in (select F3 from TA4)").isQuery);
}

void DialectTest::fixesWhatAValueDecides()
{
    const auto fixed = [](QStringView statement) { return dialect::translate(statement).fixed; };
    QCOMPARE(fixed(u"select 7 as n,F1 from TB1 where datediff('d','2004-1-1',F2)=0 group by 2 order by 2 desc"),
             std::vector<size_t>({1, 4, 5}));
    QCOMPARE(fixed(u"insert into TC15 (F1 3,F1 4) values (1,2)"), std::vector<size_t>({0, 1}));
    QCOMPARE(fixed(u"select F1 from TB1 where F1 like 'RK*' and F6<>'' order by F1"), std::vector<size_t>());
}

void DialectTest::runsEveryStatementOfTheSystem()
{
    Engine engine;
    for (const char16_t* text : systemStatements) {
        const QString statement = QString::fromUtf16(text);
        for (const dialect::Rewrites& rewrites : {dialect::Rewrites(), noRewrites}) {
            const QStringList rows = engine.run(statement, rewrites);
            QVERIFY2(!rows.value(0).startsWith(u"error"), qPrintable(statement + u'\n' + rows.value(0)));
        }
    }
    QCOMPARE(engine.run(u"select F14 from TC15"_s), QStringList(4, u"0.0"_s)); // also where its name was broken
    QCOMPARE(engine.run(u"select setval,setstr from sysinfo where ID=4"_s).size(), 3);
}

void DialectTest::rewritesKeepRows()
{
    Engine engine;
    StatementMaker maker(20041118);
    int changed = 0;
    int withRows = 0;
    for (int round = 0; round < 3000; ++round) {
        if (round % 10 == 0)
            maker.fill(engine);
        const QString statement = maker.select();
        const QStringList plain = sorted(engine.run(statement, noRewrites));
        QVERIFY2(!plain.value(0).startsWith(u"error"), qPrintable(statement + plain.join(u'\n')));
        for (const dialect::Rewrites& rewrites :
             {dialect::Rewrites{true, false, false, false}, dialect::Rewrites{false, true, false, false},
              dialect::Rewrites{false, false, true, false}, dialect::Rewrites{false, false, false, true},
              dialect::Rewrites()})
            QVERIFY2(sorted(engine.run(statement, rewrites)) == plain,
                     qPrintable(statement + u'\n' + QString::fromUtf8(dialect::translate(statement, rewrites).sql)));
        changed += dialect::translate(statement).sql != dialect::translate(statement, noRewrites).sql;
        withRows += !plain.isEmpty();
    }
    QVERIFY(changed > 1500); // else the statements above prove little
    QVERIFY(withRows > 1000);
}

void DialectTest::rewritesUseIndexes_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("plan");
    QTest::newRow("goods by the beginning of the code")
        << u"select top 500 F1,F2 from TA4 where F1 like 'A*' order by F1"_s << u"TA4_F1 (F1>? AND F1<?)"_s;
    QTest::newRow("documents of a period")
        << u"select F1 from TB1 where datediff('d','2004-11-1',F2 ) >= 0 and datediff('d','2004-11-18',F2 ) <= 0"_s
        << u"TB1_day (<expr>>? AND <expr><?)"_s;
    QTest::newRow("lines of a day")
        << u"select TD1.F1,TD11.F6 from (TD1 left join TA2 on TD1.F3=TA2.F1) left join (TD11 left Join ( TA4 left join "
           "TA3 on TA4.F3=TA3.F1) on TD11.F1=TA4.F1) on TD11.F0=TD1.F1 where datediff('d','2004-11-18',TD1.F2 ) = 0"_s
        << u"TD1_day (<expr>=?)"_s;
}

void DialectTest::rewritesUseIndexes()
{
    QFETCH(QString, statement);
    QFETCH(QString, plan);
    Engine engine;
    const QStringList rows = engine.run("explain query plan " + dialect::translate(statement).sql);
    QVERIFY2(rows.value(0).contains(plan), qPrintable(rows.join(u'\n')));
    for (const QString& row : rows)
        QVERIFY2(!row.contains(u"SCAN TABLE"), qPrintable(rows.join(u'\n')));
}

void DialectTest::nonDateRaises_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("below") << u"select F1 from TB1 where datediff('d','2004-11-18',F2)<0"_s;
    QTest::newRow("above") << u"select F1 from TB1 where datediff('d','2004-11-18',F2)>0"_s;
    QTest::newRow("range without rows")
        << u"select F1 from TB1 where datediff('d','1990-1-1',F2)>=0 and datediff('d','1990-1-2',F2)<=0"_s;
    QTest::newRow("delete")
        << u"delete from TB11 where F0 in (select F1 from TB1 where datediff('d','2004-11-18',F2)<0)"_s;
    QTest::newRow("sum of a joined table")
        << u"select Sum(TB11.F6) as s from TB11 left join TB1 on TB1.F1=TB11.F0 where TB1.F6 is not null and "
           "datediff('d','2004-11-18',TB1.F2)<=0 and TB11.F1='A1' group by TB11.F1"_s;
}

void DialectTest::nonDateRaises()
{
    QFETCH(QString, statement);
    Engine engine;
    engine.run(u"insert into TB1 (F1,F2,F6) values ('1',Null,'x')"_s);
    engine.run(u"insert into TB1 (F1,F2,F6) values ('2','2004-2-30','x')"_s);
    engine.run(u"insert into TB11 (F0,F1,F6) values ('2','A1',1)"_s);
    for (const dialect::Rewrites& rewrites : {dialect::Rewrites(), noRewrites}) {
        QCOMPARE(engine.run(statement, rewrites), QStringList(u"error: “2004-2-30”不是有效的日期"_s));
        QCOMPARE(engine.errorCode() & 0xff, SQLITE_MISMATCH);
    }
    QCOMPARE(engine.run(u"select F6 from TB11"_s).size(), 1);

    QString wrong = statement;
    wrong.replace(u"2004-11-18"_s, u"2004-11-31"_s).replace(u"1990-1-1"_s, u""_s);
    try {
        engine.run(wrong);
        QFAIL("a constant that is no date was taken");
    } catch (const StoreError& error) {
        QCOMPARE(error.kind(), StoreError::Kind::Value);
    }
}

void DialectTest::addsByTheKindOfTerms()
{
    Engine engine;
    engine.run(u"delete from TA4"_s);
    engine.run(u"insert into TA4 (F1,F2,F3,F5,F7,F8) values (5,'名','a',Null,7,1E-06)"_s);
    QCOMPARE(engine.run(u"select F1+'.'+F2,F2+'/'+F5,F7+F7+-3,('x'+F2)+F3,F3+(F2+'x'),7/2,F1,F8 from TA4"_s),
             QStringList(u"5.名|~|11.0|x名a|a名x|3.5|5|1.0e-06"_s));
    QCOMPARE(engine.run(u"select F1 from TA4 where F1=5 and F2+'/'+F5 is null and F3='A'"_s), QStringList(u"5"_s));
    QCOMPARE(engine.run(u"select Sum(F7)+'' as s,count(*) as n,Max(F7)-Min(F7) as d from TA4"_s).size(), 1);
}

void DialectTest::matchesPatterns_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("pattern");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char* text, const char* pattern, bool expected) {
        QTest::addRow("%s like %s", text, pattern) << QByteArray(text) << QByteArray(pattern) << expected;
    };
    row("RK0411180001", "rk0411??????", true);
    row("RK04111800012", "rk0411??????", false);
    row("PD0411180012", "PD0411??0012", true);
    row("", "", true);
    row("", "*", true);
    row("", "?", false);
    row("货品", "?品", true);
    row("货品", "??", true);
    row("货品", "???", false);
    row("a货品b", "*?b", true);
    row("aXbXc", "a*x*C", true);
    row("abcabd", "*ab?", true);
    row("50%_#[a]", "50%_#[A]", true);
    row("501", "50%", false);
    row("5a", "5#", false);
    row("a*b", "a*b", true);
    row("É", "é", false);
}

void DialectTest::matchesPatterns()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, pattern);
    QTEST(dialect::matchesPattern(text.toStdString(), pattern.toStdString()), "expected");
}

void DialectTest::dayNumbersAreThoseOfDates()
{
    Engine engine;
    QRandomGenerator random(1);
    const QStringList pieces{u"2004"_s, u"1900"_s, u"99"_s, u"0100"_s, u"12345"_s,  u"-"_s,
                             u"/"_s,    u"1"_s,    u"02"_s, u"13"_s,   u"29"_s,     u"31"_s,
                             u"0"_s,    u" "_s,    u":"_s,  u"59"_s,   u"\u3000"_s, u"24"_s};
    const auto check = [&engine](const QString& text) {
        const auto date = parseDate(text);
        const QByteArray sql = "select case when dayno(?1) = nodate() then 'none' else dayno(?1) end";
        const QString expected = date ? QString::number(date->toJulianDay()) : u"none"_s;
        return engine.run(sql, {dialect::Binding()}, {text}) == QStringList(expected);
    };
    for (int i = 0; i < 4000; ++i) { // mostly dates in full, with one piece changed
        QStringList parts{pieces[static_cast<qsizetype>(random.bounded(4))], u"-"_s, u"2"_s, u"-"_s, u"28"_s};
        if (i % 2)
            parts << u" "_s << u"9"_s << u":"_s << u"05"_s << u":"_s << u"59"_s;
        for (quint32 changes = random.bounded(3u); changes > 0; --changes)
            parts[random.bounded(static_cast<int>(parts.size()))] =
                pieces[random.bounded(static_cast<int>(pieces.size()))];
        if (i % 7 == 0)
            parts.insert(random.bounded(static_cast<int>(parts.size())),
                         pieces[random.bounded(static_cast<int>(pieces.size()))]);
        QVERIFY2(check(parts.join(QString())), qPrintable(parts.join(QString())));
    }
    for (QDate day(1895, 12, 1); day < QDate(2105, 3, 1); day = day.addDays(17))
        QVERIFY2(check(dateText(day)), qPrintable(dateText(day)));
}

void DialectTest::naturalOrderIsAnOrder()
{
    const auto sign = [](const std::string& a, const std::string& b) {
        const int difference = dialect::compareNatural(a, b);
        return (difference > 0) - (difference < 0);
    };
    QCOMPARE(sign("2004-9-30", "2004-10-1"), -1);
    QCOMPARE(sign("2004-1-1 9:05:03", "2004-1-1 10:05:03"), -1);
    QCOMPARE(sign("2004-1-1", "2004-1-1 0:00:00"), -1);
    QCOMPARE(sign("2004-1-1", "2004-01-01"), 0);
    QCOMPARE(sign("00-00-00", "2004-1-1"), -1);
    QCOMPARE(sign("99999999999999999999999", "100000000000000000000000"), -1);
    QCOMPARE(sign("rk9", "RK10"), -1);

    QRandomGenerator random(2);
    const std::string alphabet = "0019aA-/:b ";
    std::vector<std::string> texts(60);
    for (std::string& text : texts)
        for (quint32 length = random.bounded(6u); length > 0; --length)
            text += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
    for (const std::string& a : texts)
        for (const std::string& b : texts) {
            QCOMPARE(sign(a, b), -sign(b, a));
            for (const std::string& c : texts)
                if (sign(a, b) <= 0 && sign(b, c) <= 0)
                    QVERIFY2(sign(a, c) <= 0, (a + " | " + b + " | " + c).c_str());
        }
}

QTEST_APPLESS_MAIN(DialectTest)
#include "dialect_test.moc"
