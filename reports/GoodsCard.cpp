#include "reports/GoodsCard.h"

#include "documents/document_opening.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "reports/GoodsChart.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

#include <algorithm>
#include <cmath>

namespace {

enum CardField {
    NameField,
    ModelField,
    UnitField,
    CategoryField,
    StockField,
    LimitField,
    CostField,
    AmountField,
    SaleField
};

constexpr QStringView cardCaptions[] = {u"货品名称：",  u"规格型号：", u"计量单位：", u"所属类别：", u"现存数量：",
                                        u"最低/最高：", u"成本价格：", u"库存金额：", u"销售价格："};

constexpr int cardKindColumn = 1;
constexpr int cardNumberColumn = 2;

QString cardQuantity(double quantity)
{
    return Format(withoutNoise(quantity), u"#0.###");
}

Value unlessZero(double quantity)
{
    return quantity == 0 ? Value() : Value(quantity);
}

} // namespace

GoodsCard::GoodsCard()
    : ListForm(formName())
{
    Txt = makeEdit(u"Txt"_s, -1, EditKind::Code);
    Cmd = makeButton(
        u"Cmd"_s, u"显示"_s, [this] { showCard(); }, -1, ButtonLook::Primary);
    for (int i : {0, 1}) {
        DTP[i] = new DatePicker(u"DTP"_s, i);
        DTP[i]->setText(todayText());
    }
    auto* fields = new FieldLayout(5);
    fields->add(u"货品编码："_s, Txt);
    fields->add(u"日期由"_s, DTP[0]);
    fields->add(u"至"_s, DTP[1]);
    auto* button = new QWidget;
    button->setLayout(makeRow({Cmd, nullptr}));
    fields->addUnlabelled(button);
    fields->newRow();
    for (int i = 0; i < int(std::size(Lab)); ++i) {
        captions_[i] = makeLabel(u"LabCaption"_s, cardCaptions[i].toString(), i);
        Lab[i] = makeLabel(u"Lab"_s, QString(), i);
        Lab[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        fields->add(captions_[i], Lab[i]);
    }
    auto* strip = makePanel(u"PanelCard"_s);
    strip->setLayout(fields);
    content()->insertWidget(0, strip);
    LabEnd = makeBadge(u"LabEnd"_s);
    LabEnd->setWordWrap(true);
    content()->addWidget(LabEnd);
    connect(Txt, &QLineEdit::returnPressed, this, [this] { runCommand([this] { showCard(); }); });
    connect(GD, &Grid::activatedRow, this, [this](int) { runCommand([this] { Menu_document(); }); });

    addListCommand(nullptr, u"Menu_document"_s, u"&O.打开单据"_s, [this] { Menu_document(); });
    addListCommand(nullptr, u"Menu_chart"_s, u"&G.进出图"_s, [this] { Menu_chart(); });
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addReturnCommand();
    empty(movementsListed());
}

void GoodsCard::open(const QString& code)
{
    if (!requireRight(OperatorRight::Stock))
        return;
    if (code.isEmpty())
        return MsgBox(u"请先选一种货品。"_s);
    auto& form = theForm<GoodsCard>();
    if (form.read(code, true))
        form.Show();
    else if (!form.history_)
        form.Unload();
}

/// An unknown code leaves the card that stands.
bool GoodsCard::read(const QString& code, bool allDays)
{
    const auto found = goodsHistory(code);
    if (!found) {
        MsgBox(u"没有编码为“"_s + code + u"”的货品。"_s);
        return false;
    }
    code_ = found->code;
    Txt->setText(code_);
    if (allDays) { // to the last document, of which some may be dated ahead
        const QDate last = found->movements.isEmpty() ? QDate() : found->movements.last().day;
        DTP[0]->setText(dateText(found->yearStart.isValid() ? found->yearStart : Today()));
        DTP[1]->setText(dateText(std::max({last, Today(), found->yearStart})));
        if (const auto& all = found->movements;
            !found->yearStart.isValid() && !all.isEmpty() && all.first().day.isValid())
            DTP[0]->setText(all.first().dayText);
    }
    list(movementsListed());
    return true;
}

void GoodsCard::showCard()
{
    if (requireRight(listing().right))
        read(Trim(Txt->text()), !sameText(Trim(Txt->text()), code_));
}

Listing GoodsCard::movementsListed()
{
    const auto quantity = [](const QString& caption, bool summed) {
        return ListColumn{caption, 96, {}, ListContent::Quantity, summed};
    };
    return {.caption = u"货品卡片"_s,
            .statusName = u"货品卡片"_s,
            .totalCaption = u"合计："_s,
            .right = OperatorRight::Stock,
            .columns = {{u"日期"_s, 92, {}, ListContent::Date},
                        {u"单据"_s, 84, {}},
                        {u"单据号码"_s, 130, {}},
                        {u"往来单位"_s, 200, {}},
                        quantity(u"入库数"_s, true),
                        quantity(u"出库数"_s, true),
                        quantity(u"结存数"_s, false),
                        {u"审核人"_s, 84, {}},
                        {u"单据附注"_s, 150, {}}},
            .from = {},
            .condition = {},
            .filter = {},
            .orders = {QString()},
            .stretched = 3,
            .compute = [this, from = parseDate(DTP[0]->text()).value_or(QDate()),
                        to = parseDate(DTP[1]->text()).value_or(QDate())](const Listing&) {
                QList<QList<Value>> records;
                history_ = goodsHistory(code_);
                if (!history_)
                    return records;
                double balance = history_->opening;
                QList<QList<Value>> rows;
                double brought = balance;
                for (const GoodsMovement& movement : std::as_const(history_->movements)) {
                    if (!history_->counts(movement) || movement.day > to)
                        continue;
                    balance += movement.change;
                    if (movement.day < from) {
                        brought = balance;
                        continue;
                    }
                    rows += {movement.dayText,
                             traitsOf(movement.kind).documentName(),
                             movement.number,
                             movement.partner,
                             unlessZero(movement.in()),
                             unlessZero(movement.out()),
                             withoutNoise(balance),
                             movement.auditor,
                             movement.remark};
                }
                const bool wholeYear = !history_->yearStart.isValid() || from <= history_->yearStart;
                records += {wholeYear && history_->yearStart.isValid() ? Value(dateText(history_->yearStart))
                                                                       : Value(dateText(from)),
                            wholeYear ? u"年初结存"_s : u"期初结存"_s,
                            Value(),
                            Value(),
                            Value(),
                            Value(),
                            withoutNoise(brought),
                            Value(),
                            Value()};
                records += rows;
                return records;
            }};
}

bool GoodsCard::endsWell() const
{
    constexpr double noise = 0.0005; // as the check-up of the ledger has it
    return std::abs(history_->stock - history_->expected()) <= noise + std::abs(history_->stock) * 1e-9;
}

QString GoodsCard::ending() const
{
    double in = 0;
    double out = 0;
    for (const GoodsMovement& movement : history_->movements)
        if (history_->counts(movement)) {
            in += movement.in();
            out += movement.out();
        }
    const QString sum = u"年初 "_s + cardQuantity(history_->opening) + u"，其后共入 "_s + cardQuantity(in) +
                        u"、共出 "_s + cardQuantity(out) + u"（含盘盈、盘亏），应存 "_s +
                        cardQuantity(history_->expected());
    if (endsWell())
        return sum + u"，与现存数量一致。"_s;
    const double difference = history_->stock - history_->expected();
    return sum + u"；现存 "_s + cardQuantity(history_->stock) + (difference > 0 ? u"，多出 "_s : u"，少了 "_s) +
           cardQuantity(std::abs(difference)) +
           u"。可能直接改过库存、导入过数量、清除过单据，或者审核中断过。请盘点该货品，用盘点单调整。"_s;
}

// Commands ------------------------------------------------------------------------------------------------------------

void GoodsCard::Menu_document()
{
    const QString kind = GD->TextMatrix(GD->Row(), cardKindColumn);
    for (const DocumentTraits& traits : documentTraits)
        if (traits.documentName() == kind)
            return showDocument(traits.kind, GD->TextMatrix(GD->Row(), cardNumberColumn));
    MsgBox(u"这一行不是单据。"_s);
}

void GoodsCard::Menu_chart()
{
    GoodsChart::open(code_);
}

void GoodsCard::Menu_print()
{
    if (!history_)
        return MsgBox(u"无数据可打印！"_s);
    if (!requireReportFile(u"Pkapian.rpt"_s, u"报表文件Pkapian.rpt丢失！"_s))
        return;
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,V1,V2,V3"_s,
              numberedRows(gridRows(*GD, count(), {0, 1, 2, 3, 7, 8}, {4, 5, 6})));
    QString figures;
    for (const CardField field : {StockField, LimitField, CostField, AmountField, SaleField})
        if (!captions_[field]->isHidden() && !Lab[field]->text().isEmpty())
            figures += captions_[field]->text() + Lab[field]->text() + u"　"_s;
    QStringList goods{code_, Lab[NameField]->text(), Lab[ModelField]->text(), Lab[UnitField]->text(),
                      Lab[CategoryField]->text()};
    goods.removeAll(QString());
    preview({u"Pkapian.rpt"_s,
             {formula(u"Cpt", u"货品卡片"_s), formula(u"regname", gCompanyName),
              formula(u"hp", u"货品："_s + goods.join(u"　"_s)), formula(u"kc", figures),
              formula(u"RQ", u"日期："_s + DTP[0]->text() + u"至"_s + DTP[1]->text()), formula(u"yz", LabEnd->text())},
             {}});
}

// The window ----------------------------------------------------------------------------------------------------------

void GoodsCard::showState()
{
    ListForm::showState();
    const bool allowed = hasRight(listing().right);
    const bool money = gWithMoney != 0;
    const bool costs = money && gCanSeeCost;
    const bool known = allowed && history_;
    const auto money2 = [](double amount) { return Format(amount, gPriceFormat); };
    QString texts[std::size(cardCaptions)];
    if (known) {
        texts[NameField] = history_->name;
        texts[ModelField] = history_->model;
        texts[UnitField] = history_->unit;
        texts[CategoryField] = history_->category;
        texts[StockField] = cardQuantity(history_->stock);
        texts[LimitField] = cardQuantity(history_->lowest) + u" / "_s +
                            (history_->highest == 0 ? u"不限"_s : cardQuantity(history_->highest));
        if (costs) {
            texts[CostField] = money2(history_->cost);
            texts[AmountField] = money2(history_->cost * history_->stock);
        }
        if (money)
            texts[SaleField] = money2(history_->sale);
    }
    for (int i = 0; i < int(std::size(Lab)); ++i) {
        Lab[i]->setText(texts[i]);
        const bool shown = i == SaleField ? money : (i != CostField && i != AmountField) || costs;
        Lab[i]->setVisible(shown);
        captions_[i]->setVisible(shown);
    }
    for (QWidget* control : {static_cast<QWidget*>(Txt), static_cast<QWidget*>(DTP[0]), static_cast<QWidget*>(DTP[1]),
                             static_cast<QWidget*>(Cmd)})
        control->setEnabled(allowed);
    if (known)
        setBadge(LabEnd, ending(), endsWell() ? BadgeLook::Good : BadgeLook::Warning);
    else
        setBadge(LabEnd, allowed && !code_.isEmpty() ? u"没有编码为“"_s + code_ + u"”的货品。"_s : QString(),
                 BadgeLook::Warning);
}

/// The card stays open for the operator who comes; what he may not see was never kept in its list.
void GoodsCard::sessionChanged()
{
    showState();
    if (!code_.isEmpty())
        runCommand([this] { recordsChanged(); });
}

QWidget* GoodsCard::firstFocus()
{
    return GD;
}
