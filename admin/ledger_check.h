#pragma once

#include "platform/base/text.h"

#include <QList>

/// Something in a ledger that can't be right, in words for those who keep it.
struct LedgerFinding
{
    QString kind;  ///< 库存不符, 审核中断, ...
    QString where; ///< the document, goods item or period
    QString what;
    QString advice; ///< what to do about it
};

struct LedgerExamination
{
    QList<LedgerFinding> findings;
    qsizetype goods = 0; ///< how much was looked at
    qsizetype documents = 0;
};

/// Reads the whole ledger of the session at one moment and writes nothing: the engine's integrity check, and what the
/// rules of the books say of each goods item, document and period.
/// @throws StoreError
LedgerExamination examineLedger();
