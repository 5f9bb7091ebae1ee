#pragma once

#include "ledger/document_tables.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <algorithm>
#include <array>

/// The documents are one form class; these rows are all that tells them apart.

enum class DocumentKind { B1, B3, D1, D3, C2 };
enum class Stock { Up, Down, ByDifference };  ///< effect of the audit on `TA4.F8`
enum class Cost { Averaged, Kept };           ///< the audit recomputes `TA4.F7`, or leaves it
enum class Entry { Checked, Free };           ///< line entry asks `CheckStockEnough`, or not
enum class FirstCheck { LockDate, Question }; ///< which of the two an audit asks first
enum class Unaudit { ByAdministrator, Never };
enum class Partner { Required, AddedIfUnknown, TypedName }; ///< TypedName: a person's name without a master table
enum class PriceOffer { Everybody, CostRight };             ///< who is offered the goods master's price; others get 0
enum class NullCost { Zero, Malformed }; ///< what the audit's snapshot makes of a goods item without a cost
enum class NewGoods { Panel, None };     ///< whether goods can be added from within the form
enum class Wording { Inbound, Common };  ///< the inbound form words some refusals in its own way
enum class Templates { Hidden, None };   ///< the template menu that nothing shows
enum class Stamp { SaveTime, None };     ///< whether the header keeps the time of its last change, `H8`
enum class Letterhead { Company, None }; ///< what scheme one prints above a document

/// What the lines of a document hold and how they count.
struct LineSheet
{
    QStringView thirdCaption;
    QStringView third;        ///< its column of `TA4`, for a new line
    QStringView storedThird;  ///< where a stored line has it; %1 is the line table
    QStringView quantityWord; ///< begins the caption of the quantity; empty: the document's own word
    QStringView priceWord;
    QStringView amountCaption;
    QStringView storedAmount;
    QStringView stockCaption; ///< in the goods look-up
    QStringView removal;      ///< end of the question before a line goes
    bool counted; ///< a stock-take: the third column is the book quantity, the amount that of the difference
};

inline constexpr LineSheet movementLines{u"计量单位", u"F4",          u"TA4.F4", u"",     u"",
                                         u"小计金额", u"%1.F6*%1.F7", u"现存",   u"吗？", false};
inline constexpr LineSheet countLines{
    u"帐面数量",       u"F8", u"%1.F5", u"实盘", u"核算", u"盈亏金额", u"(%1.F6-%1.F5)*%1.F7", u"帐面数",
    u"的盘点资料吗？", true};

/// Captions of a document's total: in the list and below the lines, with prices and in quantity-only mode.
struct TotalCaptions
{
    QStringView list, listQuantity, detail, detailQuantity;
};

inline constexpr TotalCaptions movementTotals{u"金额", u"数量", u"金额合计", u"数量合计"};
inline constexpr TotalCaptions countTotals{u"盈亏额", u"盈亏数", u"盈亏额合计", u"盈亏数量"};

/// What a kind of document hands to the print host. Scheme one prints the document as the ledger has it, scheme two the
/// lines as the grid shows them.
struct DocumentPrints
{
    QStringView items;    ///< control array of the items below `Menu_print`; empty: a command without items
    QStringView report;   ///< scheme one
    QStringView tested;   ///< the file whose presence is asked for; empty: the one that prints
    QStringView missing;  ///< %1 is the tested file
    QStringView purchase; ///< the purchase form, which nothing shows
    Letterhead letterhead;
    QStringView title;     ///< from here on scheme two
    QStringView partner;   ///< in front of the partner's name
    QStringView signature; ///< %1 clerk, %2 auditor
    QStringView tenRows;   ///< for the sheet of ten lines
};

// The forms of the users are ruled for these words and blanks.
// clang-format off
inline constexpr DocumentPrints inboundPrints{
    u"Menu_prn", u"prntb10.rpt", u"", u"报表文件%1丢失！", u"prntb100.rpt", Letterhead::Company,
    u"货品入库单", u"供货单位：", u"制单人:%1                  审核人:%2                  经手人:", u""};
inline constexpr DocumentPrints returnPrints{
    u"menu_prn", u"prntb30.rpt", u"", u"报表文件丢失！", u"", Letterhead::Company,
    u"退  货  单", u"供货单位：", u"", u""};
inline constexpr DocumentPrints outboundPrints{
    u"Menu_prn", u"prntd10.rpt", u"", u"报表文件丢失！", u"", Letterhead::Company,
    u"货品出库单", u"出货单位：", u"制单人：%1              审核人：%2            经手人： ", u"Pdan10.rpt"};
inline constexpr DocumentPrints backPrints{
    u"Menu_prn", u"prntd30.rpt", u"", u"报表文件丢失！", u"", Letterhead::Company,
    u"货品退库单", u"出货单位：", u"", u""};
inline constexpr DocumentPrints countPrints{
    u"", u"prnTC2.rpt", u"prntc2.rpt", u"报表文件%1丢失！", u"", Letterhead::None, u"", u"", u"", u""};
// clang-format on

inline constexpr QStringView moves = u"审核操作将对库存货品进行更新，";
inline constexpr QStringView adjusts = u"审核操作将根据盘点盈亏数量对存库货品的数量进行更新，";

struct DocumentTraits
{
    DocumentKind kind;
    QStringView form;
    QStringView title;
    QStringView warning;      ///< behind the title while the document is entered
    QStringView word;         ///< "入库": begins the captions of number, date, quantity and price
    QStringView statusName;   ///< how the status line and some refusals call the document
    QStringView partner;      ///< caption of the partner
    QStringView header;       ///< header table; the line table is this name with "1" behind it
    QStringView prefix;       ///< of the document number
    QStringView partners;     ///< partner table
    QStringView lastColumn;   ///< caption of the partner's code in the list
    QStringView newLinePrice; ///< column of `TA4` that a new line takes its price from
    QStringView auditWarning; ///< first line of the question before an audit
    OperatorRight right;
    Stock stock;
    Cost cost;
    Entry entry;
    FirstCheck firstCheck;
    Unaudit unaudit;
    Partner partnerRule;
    PriceOffer priceOffer;
    NullCost nullCost;
    NewGoods newGoods;
    Wording wording;
    Templates templates;
    Stamp stamp;
    const LineSheet* sheet;
    const TotalCaptions* totals;
    const DocumentPrints* prints;

    QString headerTable() const { return header.toString(); }
    QString lineTable() const { return header + QStringLiteral("1"); }
    QString documentName() const { return word + QStringLiteral("单"); }
};

// clang-format off
inline constexpr auto documentTraits = [] {
    using enum DocumentKind; using enum Stock; using enum Cost; using enum Entry; using enum FirstCheck;
    using enum Partner; using enum PriceOffer;
    const LineSheet* movement = &movementLines;
    const TotalCaptions* sums = &movementTotals;
    return std::to_array<DocumentTraits>({
    //   form   title          warning word    status     partner       header  no.    table   last column       price
    {B1, u"B1", u"货品入库单", u"", u"入库", u"入库单", u"供货单位", u"TB1", u"RK", u"TA1", u"供货单位编码", u"F7", moves,
     OperatorRight::In,  Up,   Averaged, Free,    LockDate, Unaudit::ByAdministrator, Required, CostRight,
     NullCost::Zero,      NewGoods::Panel, Wording::Inbound, Templates::None,   Stamp::SaveTime, movement, sums,
     &inboundPrints},
    {B3, u"B3", u"公司退货单", u"", u"退货", u"退货单", u"供货单位", u"TB3", u"TH", u"TA1", u"供货单位编码", u"F7", moves,
     OperatorRight::In,  Down, Averaged, Checked, Question, Unaudit::ByAdministrator, Required, Everybody,
     NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::None,   Stamp::SaveTime, movement, sums,
     &returnPrints},
    {D1, u"D1", u"货品出库单", u"", u"出库", u"出库单", u"出货单位", u"TD1", u"CK", u"TA2", u"出货单位编码", u"F71", moves,
     OperatorRight::Out, Down, Kept,     Checked, Question, Unaudit::ByAdministrator, AddedIfUnknown, Everybody,
     NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::Hidden, Stamp::SaveTime, movement, sums,
     &outboundPrints},
    {D3, u"D3", u"货品退库单", u"", u"退库", u"退库单", u"退库单位", u"TD3", u"TK", u"TA2", u"退库单位编码", u"F71", moves,
     OperatorRight::Out, Up,   Kept,     Free,    LockDate, Unaudit::ByAdministrator, Required, Everybody,
     NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::None,   Stamp::SaveTime, movement, sums,
     &backPrints},
    // The status line of the stock-take has always spoken of inbound documents, and operators know it so.
    {C2, u"C2", u"货品盘点单", u"  警告！在货品盘点至盘点单录入结束期间，不可以进行任何出库入库操作！",
     u"盘点", u"入库单", u"盘点人", u"TC2", u"PD", u"", u"", u"F7", adjusts,
     OperatorRight::Stock, ByDifference, Kept, Free, LockDate, Unaudit::Never, TypedName, Everybody,
     NullCost::Malformed, NewGoods::None,  Wording::Common,  Templates::None,   Stamp::None, &countLines, &countTotals,
     &countPrints},
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

/// The comparison of the toolkit isn't for the compiler.
constexpr bool sameWord(QStringView a, QStringView b)
{
    bool same = a.size() == b.size();
    for (qsizetype i = 0; same && i < a.size(); ++i)
        same = a[i] == b[i];
    return same;
}

static_assert(
    [] {
        const auto known = [](const DocumentTraits& row) {
            for (const DocumentTables& tables : documentTables)
                if (sameWord(tables.header, row.header) && sameWord(tables.partners, row.partners))
                    return true;
            return false;
        };
        return std::all_of(documentTraits.begin(), documentTraits.end(), known);
    }(),
    "each kind has its tables in ledger/document_tables.h");
