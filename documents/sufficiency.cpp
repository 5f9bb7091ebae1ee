#include "documents/sufficiency.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "shell/session.h"

namespace {

/// Pieces of the goods on drafts. Only a header whose auditor is Null counts: a document whose audit was undone holds
/// an empty text there and promises nothing, as was agreed between the operators.
double promised(const QString& header, const QString& code, const QString& number)
{
    const QString lines = header + u'1';
    return Val(LookupValue(gDB, u"select SUM ("_s + lines + u".F6) AS SLSL from "_s + lines + u" left join "_s +
                                    header + u" on "_s + header + u".F1="_s + lines + u".F0 WHERE "_s + header +
                                    u".F6 IS NULL and "_s + lines + u".F0<>"_s + sqlText(Trim(number)) + u" AND "_s +
                                    lines + u".F1="_s + sqlText(code) + u" GROUP BY "_s + lines + u".F1"_s));
}

QString wantedElsewhere(const QString& documents, const QString& code)
{
    return u"系统中存在的其它尚未审核的"_s + documents + u"中含有编码为"_s + code +
           u"的货品！\n此种货品现存数量不足以供给所有未审核的出库需求！"_s;
}

} // namespace

bool CheckStockEnough(const QString& code, double quantity, const QString& number)
{
    const QString shortage = stockShortage(code, quantity, number);
    if (!shortage.isEmpty())
        MsgBox(shortage, QString());
    return shortage.isEmpty();
}

QString stockShortage(const QString& code, double quantity, const QString& number)
{
    if (quantity == 0 || gNoOverIssue == 0)
        return {};
    const double stock = Val(LookupValue(gDB, u"select F8 FROM TA4 WHERE F1="_s + sqlText(Trim(code))));
    if (stock < quantity)
        return code + u"库存数量不足！"_s;
    const double outbound = promised(u"TD1"_s, code, number);
    if (stock - outbound < quantity)
        return wantedElsewhere(u"出库单"_s, code);
    const double returns = promised(u"TB3"_s, code, number);
    return stock - outbound - returns >= quantity ? QString() : wantedElsewhere(u"出库单或退货单"_s, code);
}
