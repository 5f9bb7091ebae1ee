#include "reports/quantity_report.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/status.h"
#include "platform/base/text.h"
#include "reports/line_sums.h"
#include "reports/statistics_mode.h"
#include "shell/session.h"

#include <array>
#include <numeric>
#include <vector>

namespace {

/// Quantities that one kind of document moved, by goods.
using Quantities = ByGoods<double>;

/// Only the auditor's Null tells a draft here; an empty auditor counts as audited.
Quantities quantitiesOf(QStringView header, const QString& dayTest)
{
    Quantities found;
    sumLines(header, header + u".F6 IS NOT NULL AND  "_s + dayTest, planFor(header, dayTest),
             [&found](const std::string& code, const MovedSum& sum) { found.emplace(code, sum.quantity); });
    return found;
}

/// The sums of one goods, in the order of the documents' kinds. That in which they are added is fixed: a difference is
/// told by its last digit.
struct Moved
{
    static constexpr size_t kinds = statisticsTraits.size();
    std::array<double, kinds> inPeriod;
    std::array<double, kinds> later;

    /// Back from the stock of today to the last day.
    double closing(double stock) const
    {
        for (size_t i = 0; i < kinds; ++i)
            stock += goesIn(i) ? -later[i] : later[i];
        return stock;
    }
    /// Back from the last day to the first: what came in, then what went out, the newest kind first.
    double opening(double closing) const
    {
        for (size_t i = 0; i < kinds; ++i)
            if (goesIn(i))
                closing -= inPeriod[i];
        for (size_t i = kinds; i-- > 0;)
            if (!goesIn(i))
                closing += inPeriod[i];
        return closing;
    }
    /// What decides whether the goods has a row.
    double weight(double closing) const { return std::accumulate(inPeriod.begin(), inPeriod.end(), closing); }

private:
    static bool goesIn(size_t kind) { return statisticsTraits[kind].direction == Direction::In; }
};

class AllSums
{
public:
    AllSums(const QuantityQuestion& question, BusyProgress& progress)
    {
        for (const StatisticsTraits& kind : statisticsTraits) {
            const auto until = u" datediff('d',"_s + sqlText(question.to) + u',' + kind.header + u".F2 ) "_s;
            inPeriod_.push_back(quantitiesOf(kind.header, u" datediff('d',"_s + sqlText(question.from) + u',' +
                                                              kind.header + u".F2 ) >= 0  And"_s + until +
                                                              u"<= 0  "_s));
            progress.advance();
            later_.push_back(quantitiesOf(kind.header, until + u"> 0  "_s));
            progress.advance();
        }
    }

    Moved of(const QString& code) const
    {
        const std::string key = foldedCode(code);
        const auto sumOf = [&key](const Quantities& sums) {
            const auto found = sums.find(key);
            return found == sums.end() ? 0 : found->second;
        };
        Moved moved{};
        for (size_t i = 0; i < Moved::kinds; ++i) {
            moved.inPeriod[i] = sumOf(inPeriod_[i]);
            moved.later[i] = sumOf(later_[i]);
        }
        return moved;
    }

    static constexpr int statements = 2 * int(Moved::kinds);

private:
    std::vector<Quantities> inPeriod_;
    std::vector<Quantities> later_;
};

} // namespace

QList<QList<Value>> quantityReport(const QuantityQuestion& question)
{
    BusyProgress progress(busyText, AllSums::statements + 1);
    const ReadRun together(gDB);
    Recordset goods = gDB.OpenRecordset(
        u"select F1,(F2+'/'+F5) as pm,"_s + question.price + u",F4,F8 from TA4 where "_s +
        (question.category.isEmpty() ? u" F3 is not null "_s : u" F3="_s + sqlText(question.category) + u' ') +
        (question.goods.isEmpty() ? QString() : u" and F1 like "_s + sqlText(question.goods) + u' ') + u" Order by "_s +
        question.order);
    const AllSums sums(question, progress);
    QList<QList<Value>> rows;
    for (; !goods.isEOF(); goods.MoveNext()) {
        const QString code = goods.Fields(0).text();
        double stock = goods.Fields(4).number();
        if (plainText(stock).contains(u'E'))
            stock = Val(Format(stock, u"#0.000"));
        const Moved moved = sums.of(code);
        const double closing = moved.closing(stock);
        if (moved.weight(closing) == 0)
            continue;
        QList<Value> row{code, goods.Fields(1).text(), goods.Fields(2).number(), goods.Fields(3).text(),
                         moved.opening(closing)};
        row.append(QList<Value>(moved.inPeriod.begin(), moved.inPeriod.end()));
        row += closing;
        rows += std::move(row);
    }
    return rows;
}
