#include "reports/GoodsChart.h"

#include "platform/base/clock.h"
#include "platform/base/dialogs.h"

#include <algorithm>

namespace {

QString monthText(QDate month)
{
    return month.toString(u"yyyy-MM"_s);
}

} // namespace

GoodsChart::GoodsChart()
    : ChartForm(formName())
{
    addChartCommands();
    steps_[0] = addListCommand(nullptr, u"Menu_back"_s, u"&B.前十二个月"_s, [this] { Menu_step(-1); });
    steps_[1] = addListCommand(nullptr, u"Menu_forth"_s, u"&N.后十二个月"_s, [this] { Menu_step(1); });
    empty(monthly());
}

void GoodsChart::open(const QString& code)
{
    if (!requireRight(OperatorRight::Stock))
        return;
    if (code.isEmpty())
        return MsgBox(u"请先选一种货品。"_s);
    auto& form = theForm<GoodsChart>();
    form.code_ = code;
    form.yearsBack_ = 0;
    form.list(form.monthly());
    if (!form.history_) {
        form.Unload();
        return MsgBox(u"没有编码为“"_s + code + u"”的货品。"_s);
    }
    form.Show();
}

bool GoodsChart::canStep(int years) const
{
    if (!history_ || months_.isEmpty())
        return false;
    const QDate first = months_.first().first;
    return years > 0 ? yearsBack_ > 0
                     : std::any_of(history_->movements.begin(), history_->movements.end(),
                                   [&](const GoodsMovement& each) { return each.day.isValid() && each.day < first; });
}

void GoodsChart::Menu_step(int years)
{
    if (!canStep(years))
        return;
    yearsBack_ -= years;
    list(monthly());
}

Listing GoodsChart::monthly()
{
    const auto quantity = [](const QString& caption, bool summed = false) {
        return ListColumn{caption, 84, {}, ListContent::Quantity, summed};
    };
    return {.caption = u"货品进出图"_s,
            .statusName = u"货品进出"_s,
            .totalCaption = u"合计："_s,
            .right = OperatorRight::Stock,
            .columns = {{u"月份"_s, 72, {}},
                        quantity(u"月初结存"_s),
                        quantity(u"入库"_s, true),
                        quantity(u"出库"_s, true),
                        quantity(u"盘点盈亏"_s, true),
                        quantity(u"月末结存"_s)},
            .from = {},
            .condition = {},
            .filter = {},
            .orders = {QString()},
            .compute = [this](const Listing&) {
                history_ = goodsHistory(code_);
                months_ = history_ ? goodsMonths(*history_, Today().addYears(-yearsBack_)) : QList<GoodsMonth>();
                QList<QList<Value>> records;
                for (const GoodsMonth& month : std::as_const(months_))
                    records +=
                        {monthText(month.first), month.opening, month.in, month.out, month.counted, month.closing};
                return records;
            }};
}

QString GoodsChart::about() const
{
    if (!history_)
        return u"没有编码为“"_s + code_ + u"”的货品。"_s;
    QStringList words{history_->code, history_->name, history_->model};
    words.removeAll(QString());
    return words.join(u"　"_s) + (history_->unit.isEmpty() ? QString() : u"（"_s + history_->unit + u"）"_s) +
           u"　现存 "_s + Format(history_->stock, u"#0.###");
}

ChartContent GoodsChart::chart() const
{
    ChartContent::Series in{u"入库"_s, style::Role::ChartIn, {}};
    ChartContent::Series out{u"出库"_s, style::Role::ChartOut, {}};
    ChartContent::Series balance{u"月末结存"_s, style::Role::ChartBalance, {}};
    ChartContent content;
    for (const GoodsMonth& month : months_) {
        content.places += u"%1月"_s.arg(month.first.month());
        in.values += month.in;
        out.values += month.out;
        balance.values += month.closing;
    }
    if (history_)
        content.title = Trim(history_->name + u' ' + history_->model) + u"的进出（"_s +
                        monthText(months_.first().first) + u" 至 "_s + monthText(months_.last().first) + u"）"_s;
    content.bars = {in, out};
    content.lines = {balance};
    return content;
}

ChartForm::Paper GoodsChart::paper() const
{
    return {u"Ptujc.rpt"_s, u"货品进出图"_s, about()};
}

void GoodsChart::showState()
{
    ChartForm::showState();
    const bool allowed = hasRight(listing().right);
    steps_[0]->setEnabled(allowed && canStep(-1));
    steps_[1]->setEnabled(allowed && canStep(1));
}
