#include "tools/books.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/date.h"
#include "platform/base/text.h"

#include <array>
#include <optional>
#include <random>
#include <vector>

namespace {

constexpr int categories = 20;
constexpr int partners = 100;
constexpr int linesOfStockTake = 10;
constexpr int documentsOfRun = 2000; ///< share a commit: all the year in one would keep all its pages in memory

struct BookedKind
{
    QString header;
    QString prefix;
    bool in;
};

const std::array<BookedKind, 4> bookedKinds = {
    {{u"TB1"_s, u"RK"_s, true}, {u"TD1"_s, u"CK"_s, false}, {u"TB3"_s, u"TH"_s, false}, {u"TD3"_s, u"TK"_s, true}}};

const std::array goodsNames = {u"六角螺栓"_s, u"平垫圈"_s, u"铜芯电缆"_s, u"角钢"_s, u"球阀"_s, u"轴承"_s, u"砂轮片"_s};
const std::array units = {u"个"_s, u"片"_s, u"米"_s, u"公斤"_s, u"只"_s, u"套"_s, u"张"_s};

class BooksWriter
{
public:
    BooksWriter(Database& ledger, const BooksSize& size)
        : ledger_(ledger)
        , size_(size)
    {}

    void write()
    {
        writeMasters();
        const int stockTakeEvery = size_.stockTakes > 0 ? std::max(size_.documents / size_.stockTakes, 1) : 0;
        std::optional<WriteRun> run;
        for (int i = 0; i < size_.documents; ++i) {
            if (i % documentsOfRun == 0) {
                run.reset();
                run.emplace(ledger_);
            }
            writeDocument(i);
            if (stockTakeEvery > 0 && i % stockTakeEvery == stockTakeEvery - 1)
                writeStockTake(i);
        }
        run.reset();
        const WriteRun last(ledger_);
        for (size_t i = 0; i < goods_.size(); ++i)
            ledger_.Execute(u"update TA4 set F8="_s + NumText(goods_[i].stock) + u" where F1="_s +
                            sqlText(goods_[i].code));
    }

private:
    struct Goods
    {
        QString code;
        double cost = 0;
        double stock = 0;
        double step = 1; ///< quantities are multiples of it
    };

    int upTo(int bound) { return int(random_() % unsigned(bound)); }

    void insert(const QString& into, const QStringList& values)
    {
        ledger_.Execute(u"insert into "_s + into + u" values ("_s + values.join(u',') + u')');
    }

    void writeMasters()
    {
        const WriteRun run(ledger_);
        ledger_.Execute(u"update reginfo set F1='恒达五金有限公司',F7="_s + sqlText(dateText(size_.firstDay)));
        for (int i = 1; i <= categories; ++i)
            insert(u"TA3 (F1,F2)"_s, {sqlTexts({numbered(i, 2), u"类别"_s + numbered(i, 2)})});
        for (const QString& table : {u"TA1"_s, u"TA2"_s})
            for (int i = 2; i <= partners; ++i)
                insert(table + u" (F1,F2)"_s, {sqlTexts({numbered(i, 3), u"往来单位"_s + numbered(i, 3)})});
        goods_.resize(size_t(size_.goods));
        for (int i = 0; i < size_.goods; ++i) {
            Goods& goods = goods_[size_t(i)];
            const size_t sort = size_t(i) % goodsNames.size();
            goods.code = u'G' + numbered(i, 5);
            goods.cost = (100 + i * 37 % 9900) / 100.0;
            goods.step = sort == 3 ? 0.125 : sort == 2 ? 0.5 : 1;
            goods.stock = upTo(400) * goods.step;
            insert(u"TA4 (F1,F2,F3,F4,F5,F6,F7,F71,F8,F9,F11,V1,V2,V3,V4)"_s,
                   {sqlTexts({goods.code, goodsNames[sort], numbered(i % categories + 1, 2), units[sort],
                              u"M"_s + NumText(i % 30 + 1), QString()}),
                    NumText(goods.cost), NumText(goods.cost * 1.25), NumText(goods.stock),
                    sqlTexts({QString(), goods.code}), NumText(upTo(20)), u"0"_s, NumText(goods.stock),
                    NumText(goods.cost)});
        }
    }

    void writeDocument(int place)
    {
        const BookedKind& kind = bookedKinds[size_t(place) % bookedKinds.size()];
        const QDate day = dayOf(place);
        const QString number = numberOf(kind.prefix, day, place);
        const QString moment = dateText(day) + u" 9:"_s + numbered(place / 60 % 60, 2) + u':' + numbered(place % 60, 2);
        double total = 0;
        const int lines =
            int(qint64(place + 1) * size_.lines / size_.documents - qint64(place) * size_.lines / size_.documents);
        for (int i = 0; i < lines; ++i) {
            Goods& goods = pick(kind.in);
            double quantity = (1 + upTo(40)) * goods.step;
            if (!kind.in)
                quantity = std::min(quantity, goods.stock);
            const double price = (qRound(goods.cost * 100) + upTo(40)) / 100.0;
            goods.stock += kind.in ? quantity : -quantity;
            total += quantity * price;
            insert(kind.header + u"1 (F0,F1,F6,F7,F8,H6,H7,H8)"_s,
                   {sqlTexts({number, goods.code}), NumText(quantity), NumText(price), u"''"_s, NumText(goods.stock),
                    NumText(goods.cost), sqlText(moment)});
        }
        insert(kind.header + u" (F1,F2,F3,F5,F6,F9,F10,H8)"_s,
               {sqlTexts({number, dateText(day), numbered(upTo(partners) + 1, 3), u"王小敏"_s, u"李经理"_s}),
                NumText(total), sqlTexts({QString(), moment})});
        insert(u"DanNo (DanF1,Flg,Other)"_s, {sqlText(number), u"0"_s, sqlText(u"王小敏")});
    }

    /// Finds what is there: it moves no stock.
    void writeStockTake(int place)
    {
        const QDate day = dayOf(place);
        const QString number = numberOf(u"PD"_s, day, place);
        for (int i = 0; i < linesOfStockTake; ++i) {
            const Goods& goods = pick(true);
            insert(u"TC21 (F0,F1,F5,F6,F7,F8)"_s, {sqlTexts({number, goods.code}), NumText(goods.stock),
                                                   NumText(goods.stock), NumText(goods.cost), u"''"_s});
        }
        insert(u"TC2 (F1,F2,F3,F5,F6,F9,F10)"_s,
               {sqlTexts({number, dateText(day), u"老王"_s, u"王小敏"_s, u"李经理"_s}), u"0"_s, u"''"_s});
    }

    /// A goods item to go in, or one that there is something of to go out.
    Goods& pick(bool in)
    {
        Goods* goods = nullptr;
        do
            goods = &goods_[size_t(upTo(size_.goods))];
        while (!in && goods->stock <= 0);
        return *goods;
    }

    QDate dayOf(int place) const
    {
        return size_.firstDay.addDays(qint64(place) * size_.firstDay.daysInYear() / size_.documents);
    }
    static QString numbered(int number, int width) { return QString::number(number).rightJustified(width, u'0'); }
    /// The sequence runs through the month, so each kind's documents of a month must be less than 10,000.
    QString numberOf(const QString& prefix, QDate day, int place)
    {
        if (const int month = day.month(); month != month_) {
            month_ = month;
            monthBegan_ = place;
        }
        return prefix + numbered(day.year() % 100, 2) + numbered(day.month(), 2) + numbered(day.day(), 2) +
               numbered((place - monthBegan_) / int(bookedKinds.size()) + 1, 4);
    }

    Database& ledger_;
    const BooksSize size_;
    std::mt19937 random_; // the same numbers everywhere
    std::vector<Goods> goods_;
    int month_ = 0;
    int monthBegan_ = 0;
};

} // namespace

void writeBooks(Database& ledger, const BooksSize& size)
{
    BooksWriter(ledger, size).write();
}
