#pragma once

#include "platform/base/text.h"

/// Where grids keep what the operator has made of them.
inline const QString gridSettings = u"Vemaroware"_s;
inline const QString gridSection = u"Grid"_s;

inline constexpr int smallestColumn = 24;
