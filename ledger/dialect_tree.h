#pragma once

#include "ledger/dialect.h"

#include <memory>
#include <optional>
#include <variant>
#include <vector>

/// The syntax tree of a statement: only what the system's statements use. Parser and rewrites make it, the emitter
/// reads it; nothing in it belongs to one engine.
namespace dialect {

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;
struct Select;

enum class LiteralKind { Text, Wildcard, Integer, Number }; ///< Wildcard: a text that begins with `*` or `?`

struct LiteralRef
{
    size_t index = 0; ///< among the statement's literals
    LiteralKind kind = LiteralKind::Text;
};
struct NullConstant
{};
struct Column
{
    QString table; ///< as written; empty when the column stands alone
    QString name;
};
enum class Function { Sum, Count, Min, Max, DateDiff };
struct Call
{
    Function function = Function::Sum;
    std::vector<ExprPtr> arguments; ///< none for count(*); DateDiff has its two dates
};
struct Negation ///< unary minus
{
    ExprPtr operand;
};
struct Not
{
    ExprPtr operand;
};
// clang-format off
enum class Operator { Or, And, Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual,
                      Join, Add, Subtract, Multiply, Divide }; ///< Join puts texts together
// clang-format on
struct Binary
{
    Operator op = Operator::And;
    ExprPtr left, right;
};
struct Like
{
    ExprPtr operand, pattern;
    bool ranged = false; ///< by a rewrite: the pattern's beginning bounds an index
};
struct IsNull
{
    ExprPtr operand;
    bool negated = false;
};
struct In
{
    ExprPtr operand;
    std::vector<ExprPtr> list;
    std::unique_ptr<Select> select; ///< instead of the list
    bool negated = false;
};
/// By a rewrite: DateDiff of a constant and a day column, compared with a number of days.
struct DayTest
{
    Column column;
    QString table; ///< the column's, by its own name
    Operator op = Operator::Equal;
    size_t date = 0; ///< the constant, a literal
    ExprPtr days;
};

struct Expr
{
    std::variant<LiteralRef, NullConstant, Column, Call, Negation, Not, Binary, Like, IsNull, In, DayTest> node;
};

template <typename Node>
ExprPtr makeExpr(Node node)
{
    return std::make_unique<Expr>(Expr{std::move(node)});
}

enum class JoinKind { Left, Inner };
struct From
{
    struct Table
    {
        QString name;
        QString alias; ///< empty for none
        const QString& calledName() const { return alias.isEmpty() ? name : alias; }
    };
    struct Join
    {
        JoinKind kind = JoinKind::Left;
        std::unique_ptr<From> left, right;
        ExprPtr on;
    };
    std::variant<Table, Join> node;
};
using FromPtr = std::unique_ptr<From>;

struct SelectItem
{
    ExprPtr value; ///< none for a star
    QString table; ///< of `T.*`
    QString alias;
};
struct OrderItem
{
    ExprPtr value;
    bool descending = false;
    bool natural = false; ///< by a rewrite: dates and moments go by time
};
struct Select
{
    std::optional<size_t> top; ///< a literal
    std::vector<SelectItem> items;
    std::vector<FromPtr> from;
    ExprPtr where; ///< may be none
    std::vector<ExprPtr> groupBy;
    std::vector<OrderItem> orderBy;
};
struct Insert
{
    QString table;
    QStringList columns;
    std::vector<ExprPtr> values;
};
struct Update
{
    struct Assignment
    {
        QString column;
        ExprPtr value;
    };
    QString table;
    std::vector<Assignment> assignments;
    ExprPtr where;
};
struct Delete
{
    QString table;
    ExprPtr where;
};

struct Statement
{
    std::variant<Select, Insert, Update, Delete> node;
    std::vector<Literal> literals;
    std::vector<size_t> fixed; ///< literals whose very value is part of the tree
};

} // namespace dialect
