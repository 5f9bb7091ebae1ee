#pragma once

#include "platform/base/value.h"

#include <QList>

/// What the quantity report is asked for.
struct QuantityQuestion
{
    QString from; ///< both days included
    QString to;
    QString category; ///< code; "" for all
    QString goods;    ///< pattern; "" for all
    QString price;    ///< column of the goods
    QString order;    ///< sort key of the goods
};

/// Goods with what they had before the period, what the four documents moved in it, and what was left: worked backwards
/// from the live stock. Ten values a row: code, name and specification, price, unit, opening, in, returned, out,
/// returned by consignees, closing. Goods for which closing and movements come to nothing are left out.
/// @throws StoreError
QList<QList<Value>> quantityReport(const QuantityQuestion& question);
