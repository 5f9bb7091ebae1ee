#include "documents/audit.h"

#include "ledger/literal.h"
#include "platform/base/clock.h"

namespace {

using Number = std::optional<double>; // nothing: Null

Number numberOf(const Value& value)
{
    return value.isNull() ? Number() : Number(value.number());
}

Value valueOf(const Number& number)
{
    return number ? Value(*number) : Value();
}

template <class Operation>
Number combined(const Number& a, const Number& b, Operation operation)
{
    return a && b ? Number(operation(*a, *b)) : Number();
}

} // namespace

GoodsState movedBy(const DocumentTraits& kind, AuditStep step, const GoodsState& before, double quantity, double price,
                   bool updateCost, double factor)
{
    const bool up = (kind.stock == Stock::Up) == (step == AuditStep::Audit);
    const Number stock = numberOf(before.quantity);
    const auto plus = [up](double a, double b) { return up ? a + b : a - b; };
    const Number newStock = combined(stock, Number(quantity), plus);

    GoodsState after = before;
    if (kind.cost == Cost::Averaged && updateCost && newStock && *newStock != 0) {
        const Number held = combined(numberOf(before.cost), stock, std::multiplies());
        const Number worth = combined(held, Number(price * quantity), plus);
        if (factor != 0)
            after.salePrice = valueOf(
                combined(worth, newStock, [factor](double money, double pieces) { return money * factor / pieces; }));
        after.cost = valueOf(combined(worth, newStock, std::divides()));
    }
    after.quantity = valueOf(newStock);
    return after;
}

void postDifference(Database& db, const QString& code, double difference)
{
    db.Execute(u"update TA4 set F8=F8+"_s + sqlNumber(difference) + u" where F1="_s + sqlText(code));
}

bool moveLine(Database& db, const DocumentTraits& kind, AuditStep step, const QString& number, const QString& code,
              double quantity, double price)
{
    Recordset goods = db.OpenRecordset(u"TA4"_s, RecordsetType::Dynaset);
    goods.FindFirst(u"F1="_s + sqlText(code));
    if (goods.NoMatch())
        return false;

    const GoodsState before{goods.Fields(u"F8"), goods.Fields(u"F7"), goods.Fields(u"F71")};
    const GoodsState after = movedBy(kind, step, before, quantity, price, gNoAvgUpdate != 1, gSalePriceFactor);
    goods.Edit();
    if (after.salePrice != before.salePrice)
        goods.setField(u"F71", after.salePrice);
    if (after.cost != before.cost)
        goods.setField(u"F7", after.cost);
    goods.setField(u"F8", after.quantity);
    goods.Update();

    const Value& cost = goods.Fields(u"F7");
    // Without a cost the statement has no value there and fails, unless the kind books it as 0: so it was agreed.
    const bool asZero = cost.isNull() && step == AuditStep::Audit && kind.nullCost == NullCost::Zero;
    const QString moment = step == AuditStep::Audit ? nowText() : u"00-00-00"_s;
    const QString lines = kind.lineTable();
    const QString statement = u"update "_s + lines + u" set H6="_s + sqlNumber(goods.Fields(u"F8")) + u",H7="_s +
                              sqlNumber(asZero ? Value(0.0) : cost) + u",H8="_s + sqlText(moment) + u" where "_s +
                              lines + u".F0="_s + sqlText(Trim(number)) + u" AND "_s + lines + u".F1="_s +
                              sqlText(Trim(code));
    goods.Close();
    db.Execute(statement);
    return true;
}
