#pragma once

#include "documents/document_kind.h"

class Grid;

/// What a document's header says, as the detail shows it.
struct PrintedHeader
{
    QString number;
    QString date;
    QString partner;
    QString clerk;
    QString auditor;
    QString total;
};

enum class CompactForm { Plain, TenRows }; ///< TenRows: the outbound form whose sheet is ruled for ten lines

/// Scheme one: the layout reads the document from the ledger by its number.
/// @param report  of the kind's `DocumentPrints`
/// @throws StoreError
void printStored(const DocumentTraits& kind, QStringView report, const QString& number);

/// Scheme two: the lines as the grid shows them, the header as texts.
/// @throws StoreError
void printShown(const DocumentTraits& kind, const PrintedHeader& header, const Grid& lines, CompactForm form);
