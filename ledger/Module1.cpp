#include "ledger/Module1.h"

#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "shell/session.h"

#include <array>

QString clockDoubt()
{
    std::optional<QDate> newest;
    const auto meet = [&newest](const QString& statement) {
        if (const auto day = parseDate(LookupValue(gDB, statement)); day && (!newest || *day > *newest))
            newest = day;
    };
    for (const DocumentTables& kind : documentTables)
        if (kind.movesGoods()) // a stock-take keeps no moment
            meet(u"select top 1 H8 from %1 order by H8 desc"_s.arg(kind.header));
    meet(u"select top 1 Edate from jxc where SortNo>0 order by SortNo desc"_s);
    constexpr int yearsOfRest = 2; // a ledger may well lie unused that long
    if (!newest || (Today() >= *newest && Today() < newest->addYears(yearsOfRest)))
        return {};
    return u"请核对电脑的日期！今天是 "_s + todayText() + u"，"_s +
           (Today() < *newest ? u"早于帐本中最新的记录 "_s : u"比帐本中最新的记录晚了两年以上："_s) +
           dateText(*newest) + u"。日期不对时，请不要录入单据或保存报表。"_s;
}

const QString noNumberLeft = u"请录入单据号"_s;
const QString busyText = u"请稍候，系统正在读入数据……"_s;

namespace {

constexpr int ledgerPanel = 4;
constexpr int lastSequence = 9999;

/// The fraction of a number as its text shows it, with the number's sign.
double textFraction(double x)
{
    const QString text = plainText(x);
    const qsizetype point = text.indexOf(u'.');
    const double fraction = point < 0 ? 0 : Val(u'0' + text.sliced(point));
    return x < 0 ? -fraction : fraction;
}

} // namespace

QString PriceMask(int& n)
{
    n = qMin(n, 8);
    return n > 0 ? u"#0."_s + QString(n, u'0') : u"#0"_s;
}

QString NumText(double x)
{
    return plainText(x); // which never begins with the point
}

double SplitSub(double a, double b)
{
    const double whole = Fix(a) - Fix(b);
    double fraction = textFraction(a) - textFraction(b);
    if (plainText(fraction).contains(u'E'))
        fraction = Val(Format(fraction, u"#0.000000000"));
    return whole + fraction;
}

void LoadYearStart()
{
    const QString lastEnd = LookupValue(gDB, u"select top 1 Edate from jxc where SortNo>0 order by SortNo desc "_s);
    if (const auto end = parseDate(lastEnd)) {
        gYearStart = dateText(end->addDays(1));
        return;
    }
    const QString first = LookupValue(gDB, u"select F7 from reginfo"_s);
    gYearStart = IsDate(first) ? first : u"2004-1-1"_s;
}

QString NextDocNumber(const QString& prefix, const QString& table)
{
    const QDate today = Today();
    const QString base = prefix + Right(QString::number(today.year()), 2) + Format(today.month(), u"#00");
    const QString highest = LookupValue(gDB, u"select top 1 F1 from "_s + table + u" where F1 like "_s +
                                                 sqlText(base + u"??????"_s) + u" order by F1 desc"_s);
    // A number that was typed may end in anything, such as "-123" or "1E99".
    const double last = highest.size() >= 8 ? Val(Right(highest, 4)) : 0;
    int n = last >= 0 && last <= lastSequence ? int(last) + 1 : 1;
    const ReadRun reads(gDB);
    for (; n <= lastSequence; ++n) {
        const QString sequence = Format(n, u"#0000");
        const Recordset used =
            gDB.OpenRecordset(u"select F1 from "_s + table + u" where F1 like "_s + sqlText(base + u"??"_s + sequence));
        if (!used.isEOF())
            continue;
        QString candidate = base + Format(today.day(), u"#00") + sequence;
        if (DanNoFree(candidate))
            return candidate;
    }
    return noNumberLeft;
}

QString NextDocNumberReserved(const QString& prefix, const QString& table)
{
    try {
        const WriteRun alone(gDB); // between the search and the reservation nobody else takes the number
        QString number = NextDocNumber(prefix, table);
        DanNoReserve(number, 0);
        return number;
    } catch (const StoreError&) { // a reservation that fails is ignored; a ledger that can't be read is told here
        return NextDocNumber(prefix, table);
    }
}

bool DanNoFree(QString& no)
{
    no = Trim(no);
    const Recordset rows = gDB.OpenRecordset(u"select DanF1 from DanNo where DanF1="_s + sqlText(no));
    return rows.isEOF() && rows.isBOF();
}

void DanNoReserve(QString& no, int flag)
{
    no = Trim(no);
    if (no == noNumberLeft)
        return; // a prompt, not a number
    try {
        if (DanNoFree(no))
            gDB.Execute(u"insert into DanNo (DanF1,Flg,Other) values ("_s + sqlText(no) + u',' + NumText(flag) + u',' +
                        sqlText(gOperName) + u')');
    } catch (const StoreError&) { // as told in the header
    }
}

void DanNoRelease(const QString& no)
{
    try {
        gDB.Execute(u"delete from DanNo where DanF1="_s + sqlText(Trim(no)));
    } catch (const StoreError&) { // as told in the header
    }
}

QString PartnerName(const QString& text)
{
    const QString code = codeOf(Trim(text));
    QString name = LookupValue(gDB, u"select F2 from Ta1 where F1="_s + sqlText(code));
    if (name == u"NoFound")
        name = LookupValue(gDB, u"select F2 from Ta2 where F1="_s + sqlText(code));
    return name.isEmpty() || name == u"NoFound" ? code : name;
}

void EnsureDefaultRow(const QString& table, const QString& name)
{
    const QString first = LookupValue(gDB, u"select F1 from "_s + table);
    if (first.isEmpty() || first == u"NoFound")
        gDB.Execute(u"insert into "_s + table + u" (F1,F2) values ('001',"_s + sqlText(name) + u')');
}

void LoadSettings()
{
    constexpr int salePriceFactorId = 4; // the one that is kept as text

    Recordset rows = gDB.OpenRecordset(u"select ID,setval,Setstr from sysinfo order by ID"_s);
    for (; !rows.isEOF(); rows.MoveNext()) {
        const int id = int(rows.Fields(0).number());
        if (id == salePriceFactorId)
            gSalePriceFactor = singleValue(rows.Fields(2).number());
        for (const NumberSetting& setting : numberSettings)
            if (setting.id == id)
                *setting.value = int(rows.Fields(1).number());
    }
    gPriceDecimals = qMax(gPriceDecimals, 0);
    gPriceFormat = PriceMask(gPriceDecimals);
}

void LedgerStatus()
{
    setStatusPanel(ledgerPanel, gLedgerName);
}

void BusyStatus()
{
    setStatusPanel(ledgerPanel, busyText);
}

void SavedNotice()
{
    MsgBox(u"单据保存成功！\n\n但是现在单据并没有正式生效，\n必须经[审核]操作，单据才正式生效并更新库存！"_s);
}

void EditingNotice()
{
    MsgBox(u"正在有数据被编辑,现在退出会造成本次编辑的数据丢失。\n\n请您首先点击<保存>或<取消>菜单结束本次编辑。"_s);
}
