#pragma once

#include "ledger/store_error.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

struct sqlite3;

/// The forms write their statements in the dialect of the old desktop engine; this translates them to SQLite's.
/// `docs/ledger.md` states the grammar that is accepted.
namespace dialect {

/// A literal as it stood in the statement: text without its quotes, a number of digits only, or any other number.
using Literal = std::variant<QString, qint64, double>;

/// A statement scanned once: its text with a placeholder of the literal's kind in place of each literal, and the
/// literals in order. Two statements of one key differ in their literals only. Cheap: this is done at each call, the
/// translation once for each key.
struct Shape
{
    QString key;
    std::vector<Literal> literals;
};
/// @throws StoreError (Statement) for an open quote or bracket, with its place
Shape scan(QStringView statement);

/// What a parameter is bound to: a literal as it is, or what a rewrite made of it.
struct Binding
{
    enum class From { Literal, DayNumber, PatternStart, PatternEnd };
    size_t literal = 0;
    From from = From::Literal;
};

struct Translation
{
    QByteArray sql;                ///< SQLite's text, UTF-8, parameters ?1, ?2 ...
    std::vector<Binding> bindings; ///< for parameter n, at n - 1
    /// Literals that stand in the text itself or decided what it says (ordinals, the unit of datediff, the digits of a
    /// broken column name): the translation serves only statements whose literals at these places are equal.
    std::vector<size_t> fixed;
    bool isQuery = false;
    QStringList columns; ///< names of a query's columns as the dialect gives them; empty for "*"
};

/// Lexer, parser, rewrites, emitter.
/// @throws StoreError (Statement) with the place of what can't be read
Translation translate(QStringView statement);

/// The value for a parameter. @throws StoreError (Value) when a literal that must be a date is none
Literal bound(const Binding& binding, const std::vector<Literal>& literals);

/// Registers the functions and the collation that translated statements and the ledger's indexes use on a connection.
/// A text that should be a date and is none fails a statement with SQLITE_MISMATCH and the operator's message.
/// @throws StoreError (Other)
void registerFunctions(sqlite3* connection);

} // namespace dialect
