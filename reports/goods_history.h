#pragma once

#include "documents/document_kind.h"

#include <QDate>
#include <QList>

#include <optional>

/// What moved one goods item, document by document: the figures of its card and of its chart. No window is needed.

/// A line of an audited document.
struct GoodsMovement
{
    DocumentKind kind = DocumentKind::B1;
    QDate day; ///< invalid where the document's date is none
    QString dayText;
    QString number;
    QString partner; ///< the name; of a stock-take who counted
    QString auditor;
    QString remark;    ///< of the document
    double change = 0; ///< of the stock

    /// What came in and what went out, as the documents say it: of an inbound document with a negative quantity a
    /// negative in. A stock-take's surplus is in, its deficit out.
    double in() const;
    double out() const;
};

struct GoodsHistory
{
    QString code;
    QString name;
    QString model;
    QString unit;
    QString category;
    double stock = 0; ///< at present
    double cost = 0;
    double sale = 0;
    double lowest = 0;
    double highest = 0;
    double opening = 0; ///< of the accounting year
    QDate yearStart;    ///< its first day; invalid where the ledger has none, and then all documents stand behind it
    QList<GoodsMovement> movements; ///< all that the ledger holds, in order of time

    /// Whether a movement stands behind the opening, as the check-up of the ledger counts it.
    bool counts(const GoodsMovement& movement) const;
    /// The opening and what counts: the present stock, unless that was changed by something else than a document.
    double expected() const;
};

/// Reads it from the goods master and the lines of the audited documents, stock-takes among them. Documents of one day
/// follow each other as they were audited, stock-takes, which don't keep that moment, behind them.
/// @return nothing when there is no such goods item
/// @throws StoreError
std::optional<GoodsHistory> goodsHistory(const QString& code);

/// A month of a goods item. In and out are those of the period report: stock-takes stand apart.
struct GoodsMonth
{
    QDate first; ///< day of the month
    double opening = 0;
    double in = 0;      ///< inbound and returned from consignees
    double out = 0;     ///< outbound and returned to suppliers
    double counted = 0; ///< surplus less deficit of stock-takes
    double closing = 0;
};

/// The months that end with the one of `day`, worked backwards from the present stock as the quantity report does.
QList<GoodsMonth> goodsMonths(const GoodsHistory& history, QDate day, int months = 12);

/// A sum of quantities without the almost nothing that adding binary fractions leaves behind.
double withoutNoise(double quantity);
