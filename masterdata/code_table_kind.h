#pragma once

#include "platform/base/text.h"

#include <array>
#include <span>

/// The small code tables are one form class; these rows are all that tells them apart.

enum class CodeTableKind { A1, A2, A3 };

struct CodeTableField
{
    QStringView label;      ///< in the detail
    QStringView caption;    ///< in the list
    int width;              ///< in the list
    int span;               ///< columns it takes in the detail
    bool stretched = false; ///< takes what width the list has left
};

inline constexpr CodeTableField partnerFields[] = {
    {u"单位编码", u"编码", 110, 1},   {u"单位名称", u"名称", 240, 1}, {u"地址", u"地址", 260, 2},
    {u"电话", u"电话", 130, 1},       {u"传真", u"传真", 130, 1},     {u"电子信箱", u"电子信箱", 180, 2},
    {u"备注", u"备注", 200, 2, true},
};
inline constexpr CodeTableField categoryFields[] = {
    {u"类别编码", u"编码", 160, 1},
    {u"类别名称", u"类别", 320, 1, true},
};

struct CodeTableTraits
{
    CodeTableKind kind;
    QStringView form;
    QStringView caption;
    QStringView word; ///< begins the captions of the tabs
    QStringView table;
    QStringView list;                       ///< statement of the list
    std::span<const CodeTableField> fields; ///< columns F1, F2, ... of the table
    QStringView lastOne;                    ///< why the last record must stay
    QStringView report;
    QStringView tested;  ///< the file whose presence is asked for
    QStringView missing; ///< the file that is told of when that one isn't there
    QStringView printTitle;
};

// clang-format off
inline constexpr auto codeTableTraits = [] {
    using enum CodeTableKind;
    return std::to_array<CodeTableTraits>({
    {A1, u"A1", u"供货单位资料", u"供货单位", u"TA1", u"select * from ta1 order by F1", partnerFields,
     u"系统中必须保留至少一条供货单位记录！", u"Prnta12.rpt", u"prnta12.rpt", u"prnta12.rpt", u"供货单位列表"},
    {A2, u"A2", u"出货单位资料", u"出货单位", u"TA2", u"select * from TA2 order by F1", partnerFields,
     u"系统中必须保留至少一条出货单位记录！", u"Prnta12.rpt", u"prnta12.rpt", u"prnta12.rpt", u"出货单位列表"},
    {A3, u"A3", u"货品类别资料", u"货品类别", u"TA3", u"select * from TA3 order by F1", categoryFields,
     u"系统中必须保留至少一种货品类别！", u"PrnTA3.rpt", u"prnTA3.rpt", u"prnTA32.rpt", u"货品类别编码表"}, // tells of a file that there never was
    });
}();
// clang-format on

constexpr const CodeTableTraits& traitsOf(CodeTableKind kind)
{
    return codeTableTraits[size_t(kind)];
}

static_assert(
    [] {
        for (const CodeTableTraits& row : codeTableTraits)
            if (&traitsOf(row.kind) != &row)
                return false;
        return true;
    }(),
    "the rows must follow CodeTableKind");
