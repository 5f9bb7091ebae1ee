#pragma once

#include "documents/document_kind.h"
#include "platform/base/value.h"

#include <optional>

/// The arithmetic of audit and un-audit on one record of the goods master.

enum class AuditStep { Audit, Unaudit };

/// Quantity, average cost and sale price of a goods item. A Null makes Null whatever it enters, as in the store.
struct GoodsState
{
    Value quantity;  ///< `F8`
    Value cost;      ///< `F7`
    Value salePrice; ///< `F71`

    bool operator==(const GoodsState&) const = default;
};

/// The state after one line. Quantities and prices may be negative; nothing is rounded or clamped. When the new
/// quantity is exactly 0 the cost stays as it was, since there is nothing left to average over. Un-audit computes
/// backwards from the state as it is now; it knows no earlier cost.
/// @param updateCost  whether the moving average is kept (setting 2 off)
/// @param factor      sale price as a multiple of the cost; 0 leaves the sale price alone
GoodsState movedBy(const DocumentTraits& kind, AuditStep step, const GoodsState& before, double quantity, double price,
                   bool updateCost, double factor);

/// Posts the difference of one line of a stock-take: it is added, so what moved between the count and its audit stays.
/// Cost is never touched, and a code that has left the goods master changes nothing.
/// @param difference  counted less book quantity
/// @throws StoreError
void postDifference(Database& db, const QString& code, double difference);

/// Moves the goods record of one line and writes the line's snapshot: `H6` and `H7` are the record's quantity and cost
/// after the step, `H8` the moment, or "00-00-00" at un-audit.
/// @param code      as the line grid shows it
/// @param quantity  pieces, from the grid's text; may be negative or 0
/// @param price     money a piece, with the decimals that the grid shows, not the stored precision
/// @return false when the goods master has no such code; nothing is changed then
/// @throws StoreError; what ran before it stays
bool moveLine(Database& db, const DocumentTraits& kind, AuditStep step, const QString& number, const QString& code,
              double quantity, double price);
