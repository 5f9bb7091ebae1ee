#pragma once

#include "platform/base/text.h"

/// Whether stock covers that quantity beside what other drafts of outbound and return documents promise; asked while a
/// line is entered, and nowhere else. Tells the operator when it doesn't. Always true with setting 0 off.
/// @param code      goods code
/// @param quantity  pieces wanted
/// @param number    stored number of the document under edit, which is left out of the promises
bool CheckStockEnough(const QString& code, double quantity, const QString& number);
/// The same without telling: what speaks against it, or "".
QString stockShortage(const QString& code, double quantity, const QString& number);
