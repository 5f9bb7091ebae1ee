#pragma once

#include "platform/base/text.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

/// Sums over the lines of documents, by goods. They are, to the last bit, those that one statement for each goods item
/// gives: the lines of a goods item are added in the order of its index, by document number, quantity and price. In any
/// other order the last bits of a sum would differ, and with them the test whether a goods item moved at all.

struct MovedSum
{
    double quantity = 0;
    double amount = 0;
};

struct CodeHash
{
    using is_transparent = void;
    size_t operator()(std::string_view code) const { return std::hash<std::string_view>()(code); }
};

/// By goods code in UTF-8 as `foldedCode` makes it.
template <typename Sum>
using ByGoods = std::unordered_map<std::string, Sum, CodeHash, std::equal_to<>>;

/// A code as the ledger compares it, without regard to ASCII case.
std::string foldedCode(const QString& code);
std::string foldedCode(std::string_view code); ///< in UTF-8

/// How documents and lines are brought together: from the documents that count, or from all lines. The sums are the
/// same.
enum class SumPlan { ByDocument, ByLine };
/// What is faster for the documents of these days.
/// @param header   the table of the documents; that of their lines is this name with "1" behind it
/// @param dayTest  of the header's date
SumPlan planFor(QStringView header, const QString& dayTest);

/// Gives the sum of each goods item that the lines of these documents hold; a line counts once for each document of its
/// number.
/// @param documentTest  which documents count: a test of the header's columns
/// @throws StoreError, also when a document's date is none
void sumLines(QStringView header, const QString& documentTest, SumPlan plan,
              const std::function<void(const std::string& code, const MovedSum& sum)>& take);
