#pragma once

#include "platform/base/text.h"

class QComboBox;
class QLineEdit;
class Suggestions;

/// What is suggested while somebody types: goods or partners of the session's ledger by a part of their texts or by the
/// sound of their names. Names and codes are kept in memory, one index for each table of records; it is read at first
/// use and again when the ledger has changed, by this session or another one (see ChangeMark). What a list shows is
/// read afresh.

/// Suggestions for a field that takes the code of goods. @param stockCaption of the column that shows what is in stock
/// @param name of the list
Suggestions* suggestGoods(QLineEdit* field, const QString& stockCaption, const QString& name = u"GdSuggest"_s);
/// Suggestions for the box of a document's partner. @param table of the partners
Suggestions* suggestPartners(QComboBox* box, const QString& table);

/// The codes of goods ("TA4") or partners ("TA1", "TA2") that the typed text leads to, the best first.
/// @throws StoreError
QStringList codesFor(const QString& table, const QString& typed, int most);
