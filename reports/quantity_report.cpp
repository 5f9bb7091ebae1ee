#include "reports/quantity_report.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/status.h"
#include "platform/base/text.h"
#include "reports/statistics_mode.h"
#include "shell/session.h"

#include <QHash>

#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

/// A code as its comparisons see it: without regard to ASCII case.
QString sumKey(QString code)
{
    for (QChar& c : code)
        if (c >= u'A' && c <= u'Z')
            c = QChar(c.unicode() + 0x20);
    return code;
}

/// Which days a sum is about.
struct SumDays
{
    QString from; ///< "" for the days after `to`
    QString to;

    QString test(const QString& header) const
    {
        const auto until = u" datediff('d',"_s + sqlText(to) + u',' + header + u".F2 ) "_s;
        return from.isEmpty()
                   ? until + u"> 0  "_s
                   : u" datediff('d',"_s + sqlText(from) + u',' + header + u".F2 ) >= 0  And"_s + until + u"<= 0  "_s;
    }
    /// The same test, written so that the day index doesn't answer it.
    QString slowTest(const QString& header) const
    {
        const auto until = u" datediff('d',"_s + sqlText(to) + u',' + header + u".F2 ) "_s;
        return from.isEmpty() ? u" 0 <"_s + until
                              : u" 0 <= datediff('d',"_s + sqlText(from) + u',' + header + u".F2 )  And 0 >="_s + until;
    }
};

/// The quantities that one kind of document moved on some days, by goods.
class QuantitySums
{
public:
    QuantitySums(const StatisticsTraits& kind, const SumDays& days)
        : header_(kind.header.toString())
        , days_(days)
        , goodsOrder_(overMuch())
    {
        Recordset rows = gDB.OpenRecordset(
            statement(header_ + u"1.F1,"_s, goodsOrder_ ? days_.slowTest(header_) : days_.test(header_), QString()));
        for (; !rows.isEOF(); rows.MoveNext())
            if (!rows.Fields(0).isNull())
                sums_.insert(sumKey(rows.Fields(0).text()), rows.Fields(1).number());
    }

    double of(const QString& key) const { return sums_.value(key); }

    /// The sum as a statement of that goods' own adds it up. Doubles don't add up to the same last digit in every
    /// order, and beside the day index the grouped statement adds a document's day before its number.
    double exactly(const QString& key, const QString& code) const
    {
        if (goodsOrder_ || !sums_.contains(key))
            return of(key);
        Recordset row =
            gDB.OpenRecordset(statement({}, days_.test(header_), u" AND "_s + header_ + u"1.F1="_s + sqlText(code)));
        return row.isEOF() ? 0 : row.Fields(0).number();
    }

private:
    /// So many documents that it is quicker to go through all lines as they lie in the index of goods than to look the
    /// documents' lines up and sort them.
    bool overMuch() const
    {
        const auto count = [this](const QString& condition) {
            return gDB.OpenRecordset(u"select count(*) from "_s + header_ + condition).Fields(0).number();
        };
        return 2 * count(u" where"_s + days_.test(header_)) > count({});
    }

    /// Only the auditor's Null tells a draft here; an empty auditor counts as audited.
    QString statement(const QString& fields, const QString& days, const QString& goods) const
    {
        const QString lines = header_ + u'1';
        return u" SELECT "_s + fields + u"SUM("_s + lines + u".F6) AS SSL FROM "_s + lines + u" LEFT JOIN "_s +
               header_ + u" ON "_s + header_ + u".F1="_s + lines + u".F0 WHERE "_s + header_ +
               u".F6 IS NOT NULL AND  "_s + days + goods + u" GROUP BY "_s + lines + u".F1"_s;
    }

    QString header_;
    SumDays days_;
    bool goodsOrder_;
    QHash<QString, double> sums_;
};

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
            inPeriod_.emplace_back(kind, SumDays{question.from, question.to});
            progress.advance();
            later_.emplace_back(kind, SumDays{{}, question.to});
            progress.advance();
        }
    }

    /// Whether a sum is 0 to the last digit decides about a row. Where it hangs on the last digits the sums are added
    /// up as the goods' own statements do; elsewhere these digits never show.
    Moved of(const QString& code, double stock) const
    {
        constexpr double digits = 1e-6;
        const QString key = sumKey(code);
        Moved moved = gathered([&](const QuantitySums& sums) { return sums.of(key); });
        if (std::abs(moved.weight(moved.closing(stock))) < digits)
            moved = gathered([&](const QuantitySums& sums) { return sums.exactly(key, code); });
        return moved;
    }

    static constexpr int statements = 2 * int(statisticsTraits.size());

private:
    template <typename SumOf>
    Moved gathered(const SumOf& sumOf) const
    {
        Moved moved{};
        for (size_t i = 0; i < statisticsTraits.size(); ++i) {
            moved.inPeriod[i] = sumOf(inPeriod_[i]);
            moved.later[i] = sumOf(later_[i]);
        }
        return moved;
    }

    std::vector<QuantitySums> inPeriod_;
    std::vector<QuantitySums> later_;
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
        const Moved moved = sums.of(code, stock);
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
