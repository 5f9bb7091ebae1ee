#include "reports/line_sums.h"

#include "shell/session.h"

#include <utility>

namespace {

void foldCode(std::string_view code, std::string& into)
{
    into.assign(code);
    for (char& c : into)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
}

/// Adds up lines that come sorted by goods, document number, quantity and price.
class LineSums
{
public:
    explicit LineSums(const std::function<void(const std::string&, const MovedSum&)>& take)
        : take_(take)
    {}

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
    void close()
    {
        if (std::exchange(open_, false))
            take_(code_, std::exchange(sum_, {}));
    }

private:
    const std::function<void(const std::string&, const MovedSum&)>& take_;
    std::string code_;
    std::string folded_;
    bool open_ = false;
    MovedSum sum_;
};

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

SumPlan planFor(QStringView header, const QString& dayTest)
{
    const auto count = [header](const QString& condition) {
        return gDB.OpenRecordset(u"select count(*) from "_s + header + condition).Fields(0).number();
    };
    // A tenth of all documents is about where a look at every line begins to be cheaper than the search for the lines
    // of each document.
    return 10 * count(u" where "_s + dayTest) > count({}) ? SumPlan::ByLine : SumPlan::ByDocument;
}

void sumLines(QStringView header, const QString& documentTest, SumPlan plan,
              const std::function<void(const std::string& code, const MovedSum& sum)>& take)
{
    const QString lines = header + u"1"_s;
    const QString columns = u"select %1.F1,%1.F0,%1.F6,%1.F7 from %1"_s.arg(lines);
    const QString order = u" order by %1.F1,%1.F0,%1.F6,%1.F7"_s.arg(lines);
    LineSums sums(take);
    if (plan == SumPlan::ByDocument) {
        gDB.walk(columns + u" left join %1 on %1.F1=%2.F0 where "_s.arg(header, lines) + documentTest + order,
                 [&](const PassingRow& line) { sums.add(line, 1); });
        return sums.close();
    }
    ByGoods<int> documents; // by number, which need not be unique
    std::string number;
    gDB.walk(u"select F1 from "_s + header + u" where " + documentTest, [&](const PassingRow& row) {
        foldCode(row.text(0), number);
        ++documents[number];
    });
    if (documents.empty())
        return;
    gDB.walk(columns + order, [&](const PassingRow& line) {
        if (line.isNull(1))
            return;
        foldCode(line.text(1), number);
        if (const auto found = documents.find(number); found != documents.end())
            sums.add(line, found->second);
    });
    sums.close();
}
