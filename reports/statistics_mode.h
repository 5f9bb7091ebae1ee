#pragma once

#include "shell/session.h"

#include <array>

enum class StatisticsMode { B2, B4, D2, D4 };
enum class Direction { In, Out }; ///< of the goods, seen from the warehouse

/// What tells the statistics of the four kinds of document apart.
struct StatisticsTraits
{
    StatisticsMode mode;
    QStringView word;
    QStringView header; ///< header table; the line table is this name with "1" behind it
    QStringView partners;
    QStringView partnerWord;
    OperatorRight right;
    Direction direction;
};

// clang-format off
inline constexpr auto statisticsTraits = std::to_array<StatisticsTraits>({
    {StatisticsMode::B2, u"入库", u"TB1", u"TA1", u"供货", OperatorRight::In, Direction::In},
    {StatisticsMode::B4, u"退货", u"TB3", u"TA1", u"供货", OperatorRight::In, Direction::Out},
    {StatisticsMode::D2, u"出库", u"TD1", u"TA2", u"出货", OperatorRight::Out, Direction::Out},
    {StatisticsMode::D4, u"退库", u"TD3", u"TA2", u"出货", OperatorRight::Out, Direction::In},
});
// clang-format on

constexpr const StatisticsTraits& traitsOf(StatisticsMode mode)
{
    return statisticsTraits[size_t(mode)];
}

static_assert(
    [] {
        for (const StatisticsTraits& row : statisticsTraits)
            if (&traitsOf(row.mode) != &row)
                return false;
        return true;
    }(),
    "the rows must follow StatisticsMode");
