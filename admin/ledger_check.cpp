#include "admin/ledger_check.h"

#include "ledger/document_tables.h"
#include "ledger/store.h"
#include "platform/base/date.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "shell/session.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace {

QString shown(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

/// Codes and numbers meet without regard to ASCII case.
std::string keyOf(std::string_view text)
{
    std::string key(text);
    for (char& c : key)
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
    return key;
}

class Examination
{
public:
    LedgerExamination run();

private:
    struct Goods
    {
        QString code;
        QString name;
        double stock;
        double cost;
        double expected; ///< the opening, then what the books add
        double lastPrice = 0;
        QDate lastBought;
    };
    struct Document
    {
        QString number;
        std::optional<QDate> day;
        bool audited = false;
        bool counts = false; ///< its lines stand behind the opening
        int lines = 0;
        int booked = 0;
    };
    using Documents = std::unordered_map<std::string, Document>;

    void find(const QString& kind, const QString& where, const QString& what, const QString& advice)
    {
        result_.findings.append({kind, where, what, advice});
    }
    std::unordered_set<std::string> codesOf(QStringView table) const;
    void integrity();
    void readGoods();
    void periods();
    void kind(const DocumentTables& kind);
    Documents headersOf(const DocumentTables& kind);
    void linesOf(const DocumentTables& kind, Documents& documents);
    void judge(const DocumentTables& kind, const Documents& documents);
    void judgeGoods();

    LedgerExamination result_;
    std::optional<QDate> yearStart_;
    std::unordered_map<std::string, Goods> goods_;
    std::unordered_map<std::string, int> unknownGoods_; ///< lines by code
};

std::unordered_set<std::string> Examination::codesOf(QStringView table) const
{
    std::unordered_set<std::string> codes;
    gDB.walk(u"select F1 from "_s + table, [&](const PassingRow& row) { codes.insert(keyOf(row.text(0))); });
    return codes;
}

void Examination::integrity()
{
    for (const QString& fault : integrityFaults(gDB))
        find(u"文件损坏"_s, gLedgerName, fault,
             u"请马上停止录入，另外保存一份帐本文件，再用最近的备份恢复（系统管理→数据备份与恢复）。"_s);
}

void Examination::readGoods()
{
    const auto categories = codesOf(u"TA3");
    gDB.walk(u"select F1,F2,F3,F7,F8,V3 from TA4"_s, [&](const PassingRow& row) {
        const QString code = shown(row.text(0));
        Goods goods{code, shown(row.text(1)), row.number(4), row.number(3), row.number(5), 0, {}};
        if (!goods_.try_emplace(keyOf(row.text(0)), std::move(goods)).second)
            find(u"编码重复"_s, u"货品 "_s + code, u"货品编码资料中有不止一条这个编码的记录。"_s,
                 u"请在货品编码资料中删除多余的记录，再盘点该货品。"_s);
        if (!categories.contains(keyOf(row.text(2))))
            find(u"类别不存在"_s, u"货品 "_s + code,
                 u"它的类别编码“"_s + shown(row.text(2)) + u"”在货品类别资料中没有。"_s,
                 u"请在货品类别资料中增加这个类别编码，或者修改该货品的类别。"_s);
    });
    result_.goods = qsizetype(goods_.size());
}

void Examination::periods()
{
    const QString first = LookupValue(gDB, u"select F7 from reginfo"_s);
    yearStart_ = parseDate(first);
    if (!yearStart_ && !Trim(first).isEmpty() && first != u"NoFound")
        find(u"日期有误"_s, u"会计年度"_s, u"会计年度的第一天“"_s + first + u"”不是日期。"_s,
             u"请用年度结转或帐本数据初始化重新设置会计年度。"_s);
    gDB.walk(u"select SortNo,Bdate,Edate from jxc group by SortNo,Bdate,Edate"_s, [&](const PassingRow& row) {
        for (const int column : {1, 2})
            if (const QString day = shown(row.text(column)); !IsDate(day))
                find(u"日期有误"_s, u"综合报表 "_s + plainText(row.number(0)),
                     u"报表的日期“"_s + day + u"”不是日期。"_s,
                     u"请在货品进销存综合报表中删除这份报表，重新生成并保存。"_s);
    });
}

void Examination::kind(const DocumentTables& kind)
{
    Documents documents = headersOf(kind);
    linesOf(kind, documents);
    judge(kind, documents);
    result_.documents += qsizetype(documents.size());
}

Examination::Documents Examination::headersOf(const DocumentTables& kind)
{
    const auto partners = kind.partners.isEmpty() ? std::unordered_set<std::string>() : codesOf(kind.partners);
    Documents documents;
    gDB.walk(u"select F1,F2,F3,F6 from "_s + kind.header, [&](const PassingRow& row) {
        const QString number = shown(row.text(0));
        const QString where = kind.name.toString() + u' ' + number;
        Document document{number, parseDate(shown(row.text(1))), !row.text(3).empty()};
        document.counts = document.audited && (!document.day || !yearStart_ || *document.day >= *yearStart_);
        if (!document.day)
            find(u"日期有误"_s, where, u"单据日期“"_s + shown(row.text(1)) + u"”不是日期，用到日期的报表都会出错。"_s,
                 document.audited ? u"请以001反审核后修改日期，再重新审核。"_s : u"请修改单据的日期。"_s);
        if (!kind.partners.isEmpty() && !document.audited && !partners.contains(keyOf(row.text(2))))
            find(u"往来单位不存在"_s, where,
                 u"单位编码“"_s + shown(row.text(2)) + u"”已经没有，未审核单据列表中看不到这张单据。"_s,
                 u"请在单位资料中重新增加这个编码，再打开单据处理。"_s);
        if (!documents.try_emplace(keyOf(row.text(0)), std::move(document)).second)
            find(u"单号重复"_s, where, u"有不止一张单据使用这个单号，它们的明细混在一起。"_s,
                 u"请核对原始凭证，以新的单号重新录入，再用盘点单调整库存。"_s);
    });
    return documents;
}

void Examination::linesOf(const DocumentTables& kind, Documents& documents)
{
    const bool stockTake = !kind.movesGoods();
    std::unordered_map<std::string, int> strays;
    const QString columns = stockTake ? u"select F0,F1,F6-F5,F7 from "_s : u"select F0,F1,F6,F7,H8 from "_s;
    gDB.walk(columns + kind.lines, [&](const PassingRow& row) {
        const auto at = documents.find(keyOf(row.text(0)));
        if (at == documents.end()) {
            ++strays[std::string(row.text(0))];
            return;
        }
        Document& document = at->second;
        ++document.lines;
        if (stockTake ? document.audited : IsDate(shown(row.text(4))))
            ++document.booked;
        const auto item = goods_.find(keyOf(row.text(1)));
        if (item == goods_.end()) {
            ++unknownGoods_[std::string(row.text(1))];
            return;
        }
        Goods& goods = item->second;
        if (document.counts)
            goods.expected += kind.direction * row.number(2);
        const bool bought = kind.header == u"TB1" && document.audited && document.day;
        if (bought && row.number(3) > 0 && (!goods.lastBought.isValid() || *document.day >= goods.lastBought)) {
            goods.lastBought = *document.day;
            goods.lastPrice = row.number(3);
        }
    });
    for (const auto& [number, lines] : strays)
        find(u"没有单头的明细"_s, kind.name.toString() + u' ' + shown(number),
             u"有 %1 行明细，但是没有这张单据。"_s.arg(lines),
             u"这些行不影响库存和报表。如需单据，请按原始凭证重新录入。"_s);
}

void Examination::judge(const DocumentTables& kind, const Documents& documents)
{
    for (const auto& [key, document] : documents) {
        const QString where = kind.name.toString() + u' ' + document.number;
        if (document.lines == 0)
            find(u"没有明细的单据"_s, where, u"单据没有一行明细。"_s, u"请按原始凭证补录明细；不需要的单据请删除。"_s);
        else if (!document.audited && document.booked > 0)
            find(u"审核中断"_s, where, u"单据未审核，但是有 %1 行已经记帐。"_s.arg(document.booked),
                 u"请先核对这些货品的库存，用盘点单调整后再处理单据：直接重新审核会把所有的行再记一次。"_s);
        else if (document.audited && document.booked < document.lines)
            find(u"审核不全"_s, where, u"单据已审核，但是有 %1 行没有记帐。"_s.arg(document.lines - document.booked),
                 u"请核对这些货品的库存，用盘点单调整。"_s);
    }
}

void Examination::judgeGoods()
{
    constexpr double noise = 0.0005;
    constexpr double farOff = 2; // times the last price, or its part
    for (const auto& [key, goods] : goods_) {
        const QString where = u"货品 "_s + goods.code + u' ' + goods.name;
        if (std::abs(goods.stock - goods.expected) > noise + std::abs(goods.stock) * 1e-9)
            find(u"库存不符"_s, where,
                 u"现存 "_s + Format(goods.stock, u"#0.###") + u"，按年初数和已审核的单据应为 "_s +
                     Format(goods.expected, u"#0.###") + u"。"_s,
                 u"可能直接改过库存、导入过数量、清除过单据，或者审核中断过。请盘点该货品，用盘点单调整。"_s);
        if (goods.stock < -noise)
            find(u"负库存"_s, where, u"现存 "_s + Format(goods.stock, u"#0.###") + u"。"_s,
                 u"请检查是否漏录了入库单，或者多录了出库单。"_s);
        if (goods.lastPrice > 0 && goods.stock > noise &&
            (goods.cost > goods.lastPrice * farOff || goods.cost < goods.lastPrice / farOff))
            find(u"成本异常"_s, where,
                 gCanSeeCost
                     ? u"成本均价 "_s + Format(goods.cost, gPriceFormat) + u"，最近一次入库价 "_s +
                           Format(goods.lastPrice, gPriceFormat) + u"（"_s + dateText(goods.lastBought) + u"）。"_s
                     : u"成本均价与最近一次入库价（%1）相差一倍以上。"_s.arg(dateText(goods.lastBought)),
                 u"请检查入库单的单价和数量有没有录错。"_s);
    }
    for (const auto& [code, lines] : unknownGoods_)
        find(u"货品不存在"_s, u"货品 "_s + shown(code),
             u"有 %1 行单据明细用到它，但是货品编码资料中没有。"_s.arg(lines),
             u"请在货品编码资料中重新增加这个编码。"_s);
}

LedgerExamination Examination::run()
{
    BusyProgress progress(u"请稍候，正在检查帐本……"_s, 2 + qint64(std::size(documentTables)));
    const ReadRun oneMoment(gDB); // else an audit of another session between two tables would look like a fault
    integrity();
    progress.advance();
    if (!result_.findings.isEmpty())
        return std::move(result_); // what a damaged file says of stock would only lead astray
    periods();
    readGoods();
    progress.advance();
    for (const DocumentTables& each : documentTables) {
        kind(each);
        progress.advance();
    }
    judgeGoods();
    std::sort(result_.findings.begin(), result_.findings.end(), [](const LedgerFinding& a, const LedgerFinding& b) {
        return std::tie(a.kind, a.where, a.what) < std::tie(b.kind, b.where, b.what);
    });
    return std::move(result_);
}

} // namespace

LedgerExamination examineLedger()
{
    return Examination().run();
}
