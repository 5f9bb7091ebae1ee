#pragma once

#include <QStringView>

/// How the program names its maker and where the maker is reached.
inline constexpr QStringView makerName = u"恒仓宁软件";
inline constexpr QStringView makerSite = u"https://www.example.com/";
inline constexpr QStringView makerMail = u"service@example.com";
