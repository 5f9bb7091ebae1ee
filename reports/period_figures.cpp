#include "reports/period_figures.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/date.h"
#include "shell/session.h"

#include <optional>
#include <vector>

// What moved ----------------------------------------------------------------------------------------------------------

namespace {

struct MovingDocument
{
    QString header;
    QString lines;
    MovedSum MovedGoods::*side;
};

/// In the order in which their sums are added up.
const std::array<MovingDocument, 4> movingDocuments = {{{u"TB1"_s, u"TB11"_s, &MovedGoods::in},
                                                        {u"TD3"_s, u"TD31"_s, &MovedGoods::in},
                                                        {u"TD1"_s, u"TD11"_s, &MovedGoods::out},
                                                        {u"TB3"_s, u"TB31"_s, &MovedGoods::out}}};

QString withinDays(const QString& header, const QString& from, const QString& to)
{
    return u"  datediff('d',"_s + sqlText(from) + u',' + header + u".F2 ) >= 0  And datediff('d',"_s + sqlText(to) +
           u',' + header + u".F2 ) <= 0  "_s;
}

QString auditedWithin(const QString& header, const QString& from, const QString& to)
{
    return header + u".F6 IS NOT NULL and "_s + header + u".F6<>'' AND "_s + withinDays(header, from, to);
}

void foldCode(std::string_view code, std::string& into)
{
    into.assign(code);
    for (char& c : into)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
}

/// Adds up lines that come sorted by goods, document number, quantity and price, as one statement for each goods item
/// would meet them.
class LineSums
{
public:
    LineSums(MovedByGoods& moved, MovedSum MovedGoods::*side)
        : moved_(moved)
        , side_(side)
    {}
    ~LineSums() { close(); }
    LineSums(const LineSums&) = delete;
    LineSums& operator=(const LineSums&) = delete;

    /// Columns of the row: goods, document number, quantity, price. The line counts once for each document of its
    /// number.
    void add(const PassingRow& line, int documents)
    {
        if (line.isNull(0))
            return; // belongs to no goods
        foldCode(line.text(0), folded_);
        if (!open_ || folded_ != code_) {
            close();
            code_ = folded_;
            open_ = true;
        }
        if (line.isNull(2))
            return;
        const double quantity = line.number(2);
        const double amount = line.isNull(3) ? 0 : quantity * line.number(3);
        for (int i = 0; i < documents; ++i) {
            sum_.quantity += quantity;
            sum_.amount += amount;
        }
    }

private:
    void close()
    {
        if (!std::exchange(open_, false))
            return;
        MovedSum& total = moved_[code_].*side_;
        total.quantity += sum_.quantity;
        total.amount += sum_.amount;
        sum_ = {};
    }

    MovedByGoods& moved_;
    MovedSum MovedGoods::*side_;
    std::string code_;
    std::string folded_;
    bool open_ = false;
    MovedSum sum_;
};

QString linesOf(const MovingDocument& kind)
{
    return u"select %1.F1,%1.F0,%1.F6,%1.F7 from %1"_s.arg(kind.lines);
}

QString inSumOrder(const MovingDocument& kind)
{
    return u" order by %1.F1,%1.F0,%1.F6,%1.F7"_s.arg(kind.lines);
}

void addByDocument(MovedByGoods& moved, const MovingDocument& kind, const QString& from, const QString& to)
{
    LineSums sums(moved, kind.side);
    gDB.walk(linesOf(kind) + u" left join %1 on %1.F1=%2.F0 where "_s.arg(kind.header, kind.lines) +
                 auditedWithin(kind.header, from, to) + inSumOrder(kind),
             [&](const PassingRow& line) { sums.add(line, 1); });
}

void addByLine(MovedByGoods& moved, const MovingDocument& kind, const QString& from, const QString& to)
{
    std::unordered_map<std::string, int, CodeHash, std::equal_to<>> documents; // no number need be unique
    std::string number;
    gDB.walk(u"select F1 from %1 where "_s.arg(kind.header) + auditedWithin(kind.header, from, to),
             [&](const PassingRow& row) {
                 foldCode(row.text(0), number);
                 ++documents[number];
             });
    if (documents.empty())
        return;
    LineSums sums(moved, kind.side);
    gDB.walk(linesOf(kind) + inSumOrder(kind), [&](const PassingRow& line) {
        if (line.isNull(1))
            return;
        foldCode(line.text(1), number);
        if (const auto found = documents.find(number); found != documents.end())
            sums.add(line, found->second);
    });
}

double documentCount(const QString& statement)
{
    return gDB.OpenRecordset(statement).Fields(0).number();
}

/// A tenth of all documents is about where a look at every line begins to be cheaper than the search for the lines of
/// each document.
MovedPlan planFor(const MovingDocument& kind, const QString& from, const QString& to)
{
    const double all = documentCount(u"select count(*) from "_s + kind.header);
    const double within =
        documentCount(u"select count(*) from %1 where "_s.arg(kind.header) + withinDays(kind.header, from, to));
    return 10 * within > all ? MovedPlan::ByLine : MovedPlan::ByDocument;
}

void addMoved(MovedByGoods& moved, const MovingDocument& kind, const QString& from, const QString& to, MovedPlan plan)
{
    if (plan == MovedPlan::ByLine)
        addByLine(moved, kind, from, to);
    else
        addByDocument(moved, kind, from, to);
}

} // namespace

std::string foldedCode(const QString& code)
{
    const QByteArray text = code.toUtf8();
    return foldedCode(std::string_view(text.constData(), size_t(text.size())));
}

std::string foldedCode(std::string_view code)
{
    std::string folded;
    foldCode(code, folded);
    return folded;
}

MovedByGoods movedBetween(const QString& from, const QString& to)
{
    MovedByGoods moved;
    for (const MovingDocument& kind : movingDocuments)
        addMoved(moved, kind, from, to, planFor(kind, from, to));
    return moved;
}

MovedByGoods movedBetween(const QString& from, const QString& to, MovedPlan plan)
{
    MovedByGoods moved;
    for (const MovingDocument& kind : movingDocuments)
        addMoved(moved, kind, from, to, plan);
    return moved;
}

// The report
// -----------------------------------------------------------------------------------------------------------

namespace {

double periodMoney(double amount)
{
    return Val(Format(amount, gPriceFormat));
}

/// What a stock-take found too much or too little. The test of the difference stands inside the literal, so that the
/// statement asks for goods whose code ends in it: of all others a stock-take adds nothing to the report, and its
/// closing quantity alone tells of it. The books have been kept so.
struct StockTakeSum
{
    QString difference;
    QString amount;

    QString condition() const { return u" AND ("_s + difference + u")>0"_s; }
    QString from(const QString& firstDay, const QString& lastDay) const
    {
        return u" FROM TC21 LEFT JOIN TC2 ON TC2.F1=TC21.F0 WHERE "_s + auditedWithin(u"TC2"_s, firstDay, lastDay);
    }
    /// The codes, if any, that such a statement finds.
    QStringList codes(const QString& firstDay, const QString& lastDay) const
    {
        QStringList found;
        Recordset rows = gDB.OpenRecordset(u"SELECT TC21.F1"_s + from(firstDay, lastDay) + u" AND TC21.F1 like "_s +
                                           sqlText(u'*' + condition()) + u" GROUP BY TC21.F1"_s);
        for (; !rows.isEOF(); rows.MoveNext())
            found += rows.Fields(0).text();
        return found;
    }
    std::optional<MovedSum> of(const QString& code, const QString& firstDay, const QString& lastDay) const
    {
        Recordset row = gDB.OpenRecordset(u" SELECT Sum("_s + difference + u") AS SSL,Sum("_s + amount + u") as JE"_s +
                                          from(firstDay, lastDay) + u" AND TC21.F1="_s + sqlText(code + condition()) +
                                          u" GROUP BY TC21.F1"_s);
        if (row.isEOF())
            return {};
        return MovedSum{row.Fields(0).number(), row.Fields(1).number()};
    }
};

const StockTakeSum surplus = {u"TC21.F6-TC21.F5"_s, u"TC21.F6*TC21.F7-TC21.F5*TC21.F7"_s};
const StockTakeSum deficit = {u"TC21.F5-TC21.F6"_s, u"TC21.F5*TC21.F7-TC21.F6*TC21.F7"_s};

/// The statement of a goods item is asked only where it finds a line: two for each of 10,000 goods would be most of
/// the report's time.
class StockTakes
{
public:
    StockTakes(const QString& from, const QString& to)
        : from_(from)
        , to_(to)
        , surplusCodes_(surplus.codes(from, to))
        , deficitCodes_(deficit.codes(from, to))
    {}

    /// The deficit's quantity goes to what came in, its amount to what went out.
    void addTo(MovedGoods& moved, const QString& code) const
    {
        if (const auto sum = sumOf(surplus, surplusCodes_, code)) {
            moved.in.quantity += sum->quantity;
            moved.in.amount += sum->amount;
        }
        if (const auto sum = sumOf(deficit, deficitCodes_, code)) {
            moved.in.quantity += sum->quantity;
            moved.out.amount += sum->amount;
        }
    }

private:
    std::optional<MovedSum> sumOf(const StockTakeSum& sum, const QStringList& codes, const QString& code) const
    {
        const auto meant = [wanted = code + sum.condition()](const QString& found) { return sameText(found, wanted); };
        if (std::none_of(codes.begin(), codes.end(), meant))
            return {};
        return sum.of(code, from_, to_);
    }

    QString from_;
    QString to_;
    QStringList surplusCodes_;
    QStringList deficitCodes_;
};

/// What a goods item's latest saved row carries over.
struct Carried
{
    QString firstDay;
    MovedSum closing;
    MovedSum allIn;
    MovedSum allOut;
};

const QString carriedColumns = u"Bdate,Gs,Gj,Ds,Dj,Fs,Fj"_s;

Carried carriedIn(const Recordset& row, qsizetype first)
{
    const auto sum = [&](qsizetype at) {
        return MovedSum{row.Fields(first + at).number(), row.Fields(first + at + 1).number()};
    };
    return {row.Fields(first).text(), sum(1), sum(3), sum(5)};
}

/// The latest saved row of each goods item. Nearly all goods are in the newest report, which one statement reads; a
/// goods item that was left out of it is looked up.
class CarriedOver
{
public:
    CarriedOver()
    {
        Recordset newest = gDB.OpenRecordset(u"select top 1 SortNo from jxc where SortNo>0 order by SortNo desc "_s);
        if (newest.isEOF())
            return;
        anySaved_ = true;
        Recordset rows = gDB.OpenRecordset(u"select Hpbm,"_s + carriedColumns + u" from jxc where SortNo="_s +
                                           sqlNumber(newest.Fields(0)));
        newest_.reserve(size_t(rows.RecordCount()));
        for (; !rows.isEOF(); rows.MoveNext())
            newest_[foldedCode(rows.Fields(0).text())] = carriedIn(rows, 1);
    }

    std::optional<Carried> of(const QString& code, std::string_view folded) const
    {
        if (const auto found = newest_.find(folded); found != newest_.end())
            return found->second;
        if (!anySaved_)
            return {};
        const Recordset row = gDB.OpenRecordset(u"select top 1 "_s + carriedColumns + u" from jxc where hpbm="_s +
                                                sqlText(code) + u" and SortNo>0 order by SortNo desc "_s);
        if (row.isEOF())
            return {};
        return carriedIn(row, 0);
    }

private:
    std::unordered_map<std::string, Carried, CodeHash, std::equal_to<>> newest_;
    bool anySaved_ = false;
};

/// Tells rows of a period that begins on that day. Nearly all rows are of one report, so that a day is read once.
class BeginsOn
{
public:
    explicit BeginsOn(const QString& day)
        : day_(day)
    {}
    bool operator()(const QString& firstDay)
    {
        if (firstDay != asked_) {
            asked_ = firstDay;
            same_ = DateDiff(firstDay, day_) == 0;
        }
        return same_;
    }

private:
    QString day_;
    QString asked_; ///< "" is no day
    bool same_ = false;
};

/// One goods item while the report is made.
struct ReportedGoods
{
    QString code;
    QString name;
    double price = 0;
    double stock = 0;
    MovedSum opening;
};

ReportedGoods reportedGoodsIn(const Recordset& row)
{
    ReportedGoods goods;
    goods.code = row.Fields(0).text();
    goods.name = row.Fields(1).text();
    goods.price = row.Fields(2).number();
    goods.stock = row.Fields(3).number();
    if (NumText(goods.stock).contains(u'E'))
        goods.stock = Val(Format(goods.stock, u"#0.000"));
    goods.opening.quantity = row.Fields(4).number();
    goods.opening.amount = periodMoney(goods.opening.quantity * row.Fields(5).number());
    return goods;
}

/// A quantity that must not show the noise of its binary form.
QString tidiedQuantity(const QString& quantity)
{
    const qsizetype point = quantity.indexOf(u'.');
    const bool noisy = quantity.contains(u'E') || (point >= 0 && quantity.size() - point - 1 > 3);
    return noisy ? NumText(Val(Format(Val(quantity), u"#0.000"))) : quantity;
}

QStringList periodRowOf(const ReportedGoods& goods, const MovedSum& brought, const MovedGoods& moved,
                        const std::optional<Carried>& carried, ClosingMethod method)
{
    const MovedSum in = carried ? carried->allIn : MovedSum();
    const MovedSum out = carried ? carried->allOut : MovedSum();
    QStringList row;
    row.reserve(PeriodColumn::Count);
    row << goods.code << goods.name << Format(goods.price, gPriceFormat);
    for (const MovedSum& sum :
         {goods.opening, brought, moved.in, MovedSum{in.quantity + moved.in.quantity, in.amount + moved.in.amount},
          moved.out, MovedSum{out.quantity + moved.out.quantity, out.amount + moved.out.amount}})
        row << NumText(sum.quantity) << NumText(periodMoney(sum.amount));
    row << NumText(goods.stock);
    const auto cell = [&row](int column) { return Val(row[column]); };
    switch (method) { // from the cells, whose decimals are those that an operator can check it with
    case ClosingMethod::Cost:
        row << NumText(periodMoney(goods.stock * goods.price));
        break;
    case ClosingMethod::Period:
        row << NumText(
            SplitSub(cell(PeriodColumn::BroughtAmount) + cell(PeriodColumn::InAmount), cell(PeriodColumn::OutAmount)));
        break;
    case ClosingMethod::Cumulative:
        row << NumText(SplitSub(cell(PeriodColumn::OpeningAmount) + cell(PeriodColumn::AllInAmount),
                                cell(PeriodColumn::AllOutAmount)));
        break;
    }
    return row;
}

void insertPeriodRow(const QStringList& row, const QString& from, const QString& to, double price)
{
    QString values = u"(0,"_s + sqlTexts({from, to, row[PeriodColumn::Code]}) + u',' + NumText(price);
    for (int column = PeriodColumn::OpeningQuantity; column < PeriodColumn::Count; ++column) {
        values += u',';
        values += row[column];
    }
    gDB.Execute(
        u"insert into jxc (SortNo,Bdate,Edate,Hpbm,Gprice,[As],Aj,Bs,Bj,Cs,Cj,Ds,Dj,Es,Ej,Fs,Fj,Gs,Gj) values "_s +
        values + u')');
}

} // namespace

QString periodTotalText(int column, double total)
{
    const bool quantity = (column - PeriodColumn::OpeningQuantity) % 2 == 0;
    return quantity ? tidiedQuantity(NumText(total)) : NumText(periodMoney(total));
}

void PeriodReport::add(QStringList row)
{
    for (int column = PeriodColumn::BroughtQuantity; column < PeriodColumn::Count; ++column)
        totals[size_t(column)] += Val(row[column]);
    rows += std::move(row);
}

QStringList PeriodReport::totalRow() const
{
    QStringList row(PeriodColumn::Count);
    row[PeriodColumn::OpeningAmount] = u"合计："_s;
    for (int column = PeriodColumn::BroughtQuantity; column < PeriodColumn::Count; ++column)
        row[column] = periodTotalText(column, totals[size_t(column)]);
    return row;
}

void generatePeriodReport(PeriodReport& report, const QString& from, const QString& to, ClosingMethod method,
                          const std::function<void(qint64)>& begun, const std::function<void()>& passed)
{
    const WriteRun run(gDB);
    gDB.Execute(u"delete from jxc where SortNo=0"_s);
    Recordset all = gDB.OpenRecordset(u"select F1,(F2+'/'+F5+'/'+F4) as pm,F7,F8,V3,V4 from TA4 order by F1"_s);
    if (all.isEOF())
        return;
    begun(all.RecordCount());
    report.rows.reserve(all.RecordCount() + 1);
    const CarriedOver carriedOver;
    BeginsOn beginsLikeThis(from);
    std::optional<MovedByGoods> movedByGoods; // not read before the first goods has passed the guard
    std::optional<StockTakes> stockTakes;
    for (; !all.isEOF(); all.MoveNext(), passed()) {
        const ReportedGoods goods = reportedGoodsIn(all);
        const std::string folded = foldedCode(goods.code);
        const std::optional<Carried> carried = carriedOver.of(goods.code, folded);
        if (carried && beginsLikeThis(carried->firstDay)) {
            report.overtaken = true;
            return;
        }
        if (!movedByGoods) {
            movedByGoods = movedBetween(from, to);
            stockTakes.emplace(from, to);
        }
        const auto found = movedByGoods->find(folded);
        MovedGoods moved = found == movedByGoods->end() ? MovedGoods() : found->second;
        stockTakes->addTo(moved, goods.code);
        const MovedSum brought = carried ? carried->closing : goods.opening;
        if (goods.stock == 0 && brought.quantity == 0 && moved.out.quantity == 0)
            continue;
        QStringList row = periodRowOf(goods, brought, moved, carried, method);
        report.add(row); // the totals count the stock as it is, the row shows it tidied
        row[PeriodColumn::ClosingQuantity] = tidiedQuantity(row[PeriodColumn::ClosingQuantity]);
        insertPeriodRow(row, from, to, goods.price);
        report.rows.last() = std::move(row);
    }
}
