#pragma once

#include "ledger/store.h"

#include <QDate>

/// How large a year of books is.
struct BooksSize
{
    int goods = 10'000;
    int documents = 100'000; ///< of the four kinds in turn, spread evenly over the year, all audited
    int lines = 1'000'000;   ///< spread evenly over the documents
    int stockTakes = 300;    ///< of ten lines, within the year as well
    QDate firstDay = QDate(2025, 1, 1);
};

/// Writes such a year into a ledger that is as new: the same books for the same size on every machine. Stock and
/// snapshots are what the documents make of the opening, and no goods is ever below zero.
/// @throws StoreError
void writeBooks(Database& ledger, const BooksSize& size);
