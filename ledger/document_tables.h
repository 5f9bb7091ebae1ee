#pragma once

#include "platform/base/text.h"

#include <array>

/// The tables of a kind of document, for whatever goes over the documents of all kinds: clearing, check-up, use tests,
/// reports. What the forms make of a kind is told in `documents/document_kind.h`.
struct DocumentTables
{
    QStringView name; ///< of the document, as operators call it
    QStringView header;
    QStringView lines;
    QStringView partners; ///< none for the stock-take, which names a person
    int direction;        ///< of the stock when it is audited; the differences of a stock-take have a sign of their own

    bool movesGoods() const { return !partners.isEmpty(); }
};

/// In the order in which clearing and year-end go over them.
// clang-format off
inline constexpr auto documentTables = std::to_array<DocumentTables>({
    {u"货品入库单", u"TB1", u"TB11", u"TA1",  1},
    {u"公司退货单", u"TB3", u"TB31", u"TA1", -1},
    {u"货品盘点单", u"TC2", u"TC21", u"",     1},
    {u"货品出库单", u"TD1", u"TD11", u"TA2", -1},
    {u"货品退库单", u"TD3", u"TD31", u"TA2",  1},
});
// clang-format on
