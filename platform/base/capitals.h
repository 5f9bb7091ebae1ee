#pragma once

#include <QString>

/// An amount of money in Chinese capitals as bills want it: "壹仟肆佰零玖元伍角", "壹佰元整", "负叁元零伍分". Rounded
/// to 分 first; what rounds to nothing is "零元整". 整 stands behind 元 only, and a run of zeros is one 零. Beyond
/// 9,999 万亿, which no bill can carry, the figures themselves are given.
QString capitals(double amount);
