#include "reports/goods_history.h"

#include "ledger/literal.h"
#include "platform/base/date.h"
#include "shell/session.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

/// Names of partners, each looked up once. A join would count a line twice where two rows have the same code.
class PartnerNames
{
public:
    QString of(const DocumentTraits& kind, const QString& code)
    {
        if (kind.partners.isEmpty()) // a stock-take has the name itself
            return code;
        const auto key = std::pair(kind.partners.toString(), code);
        if (const auto known = names_.constFind(key); known != names_.constEnd())
            return *known;
        const QString found = LookupValue(gDB, u"select F2 from "_s + kind.partners + u" where F1="_s + sqlText(code));
        return *names_.insert(key, found == u"NoFound" ? code : found);
    }

private:
    QHash<std::pair<QString, QString>, QString> names_;
};

struct TimedMovement
{
    GoodsMovement movement;
    QDateTime audited; ///< invalid for a stock-take

    auto place() const { return std::tuple(movement.day, movement.kind == DocumentKind::C2, audited, movement.number); }
};

void addMovements(QList<TimedMovement>& all, const DocumentTraits& kind, const QString& code, PartnerNames& partners)
{
    const bool count = kind.stock == Stock::ByDifference;
    const QString text = u"select %1.F2,%1.F1,%1.F3,%1.F6,%1.F10,%11.F6,"_s +
                         (count ? u"%11.F5,0 as SJ"_s : u"0 as ZM,%11.H8"_s) +
                         u" from %11 inner join %1 on %1.F1=%11.F0 where %1.F6 IS NOT NULL and %1.F6<>'' and %11.F1="_s;
    Recordset lines = gDB.OpenRecordset(QString(text).replace(u"%1"_s, kind.header.toString()) + sqlText(code));
    for (; !lines.isEOF(); lines.MoveNext()) {
        const auto field = [&lines](qsizetype i) { return lines.Fields(i).text(); };
        const double quantity = lines.Fields(5).number();
        GoodsMovement movement{.kind = kind.kind,
                               .day = parseDate(field(0)).value_or(QDate()),
                               .dayText = field(0),
                               .number = field(1),
                               .partner = partners.of(kind, field(2)),
                               .auditor = field(3),
                               .remark = field(4),
                               .change = count                     ? quantity - lines.Fields(6).number()
                                         : kind.stock == Stock::Up ? quantity
                                                                   : -quantity};
        all += {std::move(movement), count ? QDateTime() : parseMoment(field(7)).value_or(QDateTime())};
    }
}

} // namespace

double withoutNoise(double quantity)
{
    constexpr double finest = 1e6; // of what a document can hold to be read
    const double tidied = std::round(quantity * finest) / finest;
    return std::isfinite(tidied) ? tidied : quantity;
}

double GoodsMovement::in() const
{
    const Stock stock = traitsOf(kind).stock;
    return stock == Stock::Up || (stock == Stock::ByDifference && change > 0) ? change : 0;
}

double GoodsMovement::out() const
{
    const Stock stock = traitsOf(kind).stock;
    return stock == Stock::Down || (stock == Stock::ByDifference && change < 0) ? -change : 0;
}

bool GoodsHistory::counts(const GoodsMovement& movement) const
{
    return !yearStart.isValid() || !movement.day.isValid() || movement.day >= yearStart;
}

double GoodsHistory::expected() const
{
    double sum = opening;
    for (const GoodsMovement& movement : movements)
        if (counts(movement))
            sum += movement.change;
    return withoutNoise(sum);
}

std::optional<GoodsHistory> goodsHistory(const QString& code)
{
    const ReadRun oneMoment(gDB); // else an audit between two statements would look like a fault of the stock
    const Recordset goods =
        gDB.OpenRecordset(u"select F1,F2,F5,F4,F3,F8,F7,F71,V1,V2,V3 from TA4 where F1="_s + sqlText(code));
    if (goods.isEOF())
        return {};
    const auto text = [&goods](qsizetype i) { return goods.Fields(i).text(); };
    const auto number = [&goods](qsizetype i) { return goods.Fields(i).number(); };
    GoodsHistory history{.code = text(0),
                         .name = text(1),
                         .model = text(2),
                         .unit = text(3),
                         .category = LookupValue(gDB, u"select F2 from TA3 where F1="_s + sqlText(text(4))),
                         .stock = number(5),
                         .cost = number(6),
                         .sale = number(7),
                         .lowest = number(8),
                         .highest = number(9),
                         .opening = number(10),
                         .yearStart = parseDate(LookupValue(gDB, u"select F7 from reginfo"_s)).value_or(QDate()),
                         .movements = {}};
    if (history.category == u"NoFound")
        history.category = text(4);
    PartnerNames partners;
    QList<TimedMovement> all;
    for (const DocumentTraits& kind : documentTraits)
        addMovements(all, kind, code, partners);
    std::stable_sort(all.begin(), all.end(),
                     [](const TimedMovement& a, const TimedMovement& b) { return a.place() < b.place(); });
    history.movements.reserve(all.size());
    for (TimedMovement& each : all)
        history.movements += std::move(each.movement);
    return history;
}

QList<GoodsMonth> goodsMonths(const GoodsHistory& history, QDate day, int months)
{
    const QDate last(day.year(), day.month(), 1);
    QList<GoodsMonth> result;
    for (int i = months - 1; i >= 0; --i)
        result += GoodsMonth{.first = last.addMonths(-i)};
    double later = 0; // changes behind the last month, of documents dated ahead
    for (const GoodsMovement& movement : history.movements) {
        if (!movement.day.isValid() || movement.day < result.first().first)
            continue;
        const qsizetype at = (movement.day.year() - result.first().first.year()) * 12 + movement.day.month() -
                             result.first().first.month();
        if (at >= result.size()) {
            later += movement.change;
            continue;
        }
        GoodsMonth& month = result[at];
        if (movement.kind == DocumentKind::C2) {
            month.counted += movement.change;
        } else {
            month.in += movement.in();
            month.out += movement.out();
        }
    }
    double balance = history.stock - later;
    for (auto month = result.rbegin(); month != result.rend(); ++month) {
        month->closing = withoutNoise(balance);
        balance -= month->in - month->out + month->counted;
        month->opening = withoutNoise(balance);
        for (double* figure : {&month->in, &month->out, &month->counted})
            *figure = withoutNoise(*figure);
    }
    return result;
}
