#pragma once

#include "platform/base/text.h"
#include "shell/session.h"

#include <array>

/// The movement documents are one form class; these rows are all that tells them apart.

enum class DocumentKind { B1, B3, D1, D3 };
enum class Stock { Up, Down };                ///< effect of the audit on `TA4.F8`
enum class Cost { Averaged, Kept };           ///< the audit recomputes `TA4.F7`, or leaves it
enum class Entry { Checked, Free };           ///< line entry asks `CheckStockEnough`, or not
enum class FirstCheck { LockDate, Question }; ///< which of the two an audit asks first
enum class UnknownPartner { Refused, Added };
enum class PriceOffer { Everybody, CostRight }; ///< who is offered the price from the goods master; others get 0
enum class NullCost { Zero, Malformed };        ///< what the audit's snapshot makes of a goods item without a cost
enum class NewGoods { Panel, None };            ///< whether goods can be added from within the form
enum class Wording { Inbound, Common };         ///< the inbound form words some refusals in its own way
enum class Templates { Hidden, None };          ///< the template menu that nothing shows

struct DocumentTraits
{
    DocumentKind kind;
    QStringView form;
    QStringView title;
    QStringView word;         ///< "入库": begins the captions of number, date, quantity and price, and names the list
    QStringView partner;      ///< caption of the partner
    QStringView header;       ///< header table; the line table is this name with "1" behind it
    QStringView prefix;       ///< of the document number
    QStringView partners;     ///< partner table
    QStringView lastColumn;   ///< caption of the partner's code in the list
    QStringView newLinePrice; ///< column of `TA4` that a new line takes its price from
    OperatorRight right;
    Stock stock;
    Cost cost;
    Entry entry;
    FirstCheck firstCheck;
    UnknownPartner unknownPartner;
    PriceOffer priceOffer;
    NullCost nullCost;
    NewGoods newGoods;
    Wording wording;
    Templates templates;

    QString headerTable() const { return header.toString(); }
    QString lineTable() const { return header + QStringLiteral("1"); }
    QString listName() const { return word + QStringLiteral("单"); }
};

// clang-format off
inline constexpr auto documentTraits = [] {
    using enum DocumentKind; using enum Stock; using enum Cost; using enum Entry; using enum FirstCheck;
    using enum UnknownPartner; using enum PriceOffer;
    return std::to_array<DocumentTraits>({
    //   form   title          word     partner       header   no.    table    last column        price
    {B1, u"B1", u"货品入库单", u"入库", u"供货单位", u"TB1", u"RK", u"TA1", u"供货单位编码", u"F7",
     OperatorRight::In,  Up,   Averaged, Free,    LockDate, Refused, CostRight, NullCost::Zero,      NewGoods::Panel, Wording::Inbound, Templates::None},
    {B3, u"B3", u"公司退货单", u"退货", u"供货单位", u"TB3", u"TH", u"TA1", u"供货单位编码", u"F7",
     OperatorRight::In,  Down, Averaged, Checked, Question, Refused, Everybody, NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::None},
    {D1, u"D1", u"货品出库单", u"出库", u"出货单位", u"TD1", u"CK", u"TA2", u"出货单位编码", u"F71",
     OperatorRight::Out, Down, Kept,     Checked, Question, Added,   Everybody, NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::Hidden},
    {D3, u"D3", u"货品退库单", u"退库", u"退库单位", u"TD3", u"TK", u"TA2", u"退库单位编码", u"F71",
     OperatorRight::Out, Up,   Kept,     Free,    LockDate, Refused, Everybody, NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::None},
    });
}();
// clang-format on

constexpr const DocumentTraits& traitsOf(DocumentKind kind)
{
    return documentTraits[size_t(kind)];
}

static_assert(
    [] {
        for (const DocumentTraits& row : documentTraits)
            if (&traitsOf(row.kind) != &row)
                return false;
        return true;
    }(),
    "the rows must follow DocumentKind");
