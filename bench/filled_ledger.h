#pragma once

#include "bench/bare_ledger.h"
#include "tests/ledger_fixture.h"

/// What a ledger is filled with: goods "G00000" and so on, inbound documents of ten lines.
struct Filling
{
    int goods = 10'000;
    int documents = 0;
    bool audited = true;
    static constexpr int linesOfDocument = 10;
};

inline QString goodsCode(int number)
{
    return u'G' + QString::number(number).rightJustified(5, u'0');
}

class FilledLedger : public LedgerFixture
{
public:
    explicit FilledLedger(const Filling& filling)
    {
        BareLedger bare(path());
        bare.run("begin");
        bare.run("insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8) select printf('G%05d', i), '六角螺栓' || i, '001', '个', "
                 "'M' || (i % 30), 2, 3, 100 from (" +
                 numbers(filling.goods) + ")");
        bare.run("insert into TB1 (F1,F2,F3,F5,F6,F9,F10,H8) select printf('RK04%02d%02d%04d', 1 + i / 2000, "
                 "1 + i % 28, i % 2000 + 1), printf('2004-%d-%d', 1 + i / 2000, 1 + i % 28), '001', '王小敏', " +
                 QByteArray(filling.audited ? "'王小敏'" : "null") +
                 ", 60, '附注' || i, printf('2004-%d-%d 9:%02d:%02d', 1 + i / 2000, 1 + i % 28, i / 60 % 60, i % 60) "
                 "from (" +
                 numbers(filling.documents) + ")");
        bare.run("insert into TB11 (F0,F1,F6,F7,F8) select d.F1, printf('G%05d', (d.rowid * 7 + i * 331) % " +
                 QByteArray::number(filling.goods) + "), 3, 2, '' from TB1 d, (" + numbers(Filling::linesOfDocument) +
                 ")");
        bare.run("commit");
    }

    /// Another ledger with the same in it.
    QString copy() const
    {
        const QString to = QDir(folder()).filePath(u"另本.hcn"_s);
        if (!QFile::copy(path(), to))
            qFatal("the ledger can't be copied");
        return to;
    }

private:
    static QByteArray numbers(int count)
    {
        return "with recursive n(i) as (select 0 where " + QByteArray::number(count) +
               " > 0 union all select i + 1 from n where i + 1 < " + QByteArray::number(count) + ") select i from n";
    }
};
