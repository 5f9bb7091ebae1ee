#include "ledger/dialect_emitter.h"

#include "platform/base/text.h"

#include <algorithm>

namespace dialect {

namespace {

const char* symbolOf(Operator op)
{
    switch (op) {
    case Operator::Or:
        return " or ";
    case Operator::And:
        return " and ";
    case Operator::Equal:
        return " = ";
    case Operator::NotEqual:
        return " <> ";
    case Operator::Less:
        return " < ";
    case Operator::LessEqual:
        return " <= ";
    case Operator::Greater:
        return " > ";
    case Operator::GreaterEqual:
        return " >= ";
    case Operator::Join:
        return " || ";
    case Operator::Add:
        return " + ";
    case Operator::Subtract:
        return " - ";
    case Operator::Multiply:
        return " * ";
    case Operator::Divide:
        return " / ";
    }
    return "";
}

const char* nameOf(Function function)
{
    switch (function) {
    case Function::Sum:
        return "sum";
    case Function::Count:
        return "count";
    case Function::Min:
        return "min";
    case Function::Max:
        return "max";
    case Function::DateDiff:
        return "datediff";
    }
    return "";
}

/// One overload a node; parameters are numbered in the order of the text, so what takes two of them does so one by one.
/// A name always stands in brackets, never in quotes: the engine reads an unknown name in quotes as a text.
class Emitter
{
public:
    explicit Emitter(const Statement& statement)
        : statement_(statement)
    {
        translation_.fixed = statement.fixed;
    }

    Translation emitted()
    {
        translation_.sql = std::visit(*this, statement_.node);
        std::sort(translation_.fixed.begin(), translation_.fixed.end());
        return std::move(translation_);
    }

    QByteArray operator()(const Select& select)
    {
        const bool outermost =
            std::holds_alternative<Select>(statement_.node) && &std::get<Select>(statement_.node) == &select;
        if (outermost) {
            translation_.isQuery = true;
            nameColumns(select);
        }
        QByteArray sql = "select " + list(select.items);
        sql += " from " + list(select.from);
        if (select.where)
            sql += " where " + text(select.where);
        if (!select.groupBy.empty())
            sql += " group by " + list(select.groupBy, [this](const ExprPtr& key) { return sortKey(*key); });
        if (!select.orderBy.empty())
            sql += " order by " + list(select.orderBy);
        if (select.top)
            sql += " limit " + parameter(*select.top, Binding::From::Literal);
        return sql;
    }

    QByteArray operator()(const Insert& insert)
    {
        return "insert into " + quoted(insert.table) + " (" +
               list(insert.columns, [](const QString& column) { return quoted(column); }) + ") values (" +
               list(insert.values) + ")";
    }

    QByteArray operator()(const Update& update)
    {
        QByteArray sql = "update " + quoted(update.table) + " set " + list(update.assignments);
        return sql += where(update.where);
    }

    QByteArray operator()(const Delete& deletion)
    {
        return "delete from " + quoted(deletion.table) + where(deletion.where);
    }

    QByteArray operator()(const SelectItem& item)
    {
        if (!item.value)
            return item.table.isEmpty() ? "*"_ba : quoted(item.table) + ".*";
        QByteArray sql = text(item.value);
        if (!item.alias.isEmpty())
            sql += " as " + quoted(item.alias);
        return sql;
    }

    QByteArray operator()(const OrderItem& item)
    {
        return sortKey(*item.value) + (item.natural ? " collate [NATURAL]" : "") + (item.descending ? " desc" : "");
    }

    QByteArray operator()(const Update::Assignment& assignment)
    {
        return quoted(assignment.column) + " = " + text(assignment.value);
    }

    QByteArray operator()(const FromPtr& from) { return std::visit(*this, from->node); }

    QByteArray operator()(const From::Table& table)
    {
        return table.alias.isEmpty() ? quoted(table.name) : quoted(table.name) + " as " + quoted(table.alias);
    }

    QByteArray operator()(const From::Join& join)
    {
        QByteArray sql = (*this)(join.left) + (join.kind == JoinKind::Left ? " left join " : " inner join ");
        const QByteArray right = (*this)(join.right);
        sql += std::holds_alternative<From::Join>(join.right->node) ? "(" + right + ")" : right;
        return sql += " on " + text(join.on);
    }

    QByteArray operator()(const ExprPtr& expr) { return text(expr); }
    QByteArray operator()(const LiteralRef& literal) { return parameter(literal.index, Binding::From::Literal); }
    QByteArray operator()(const NullConstant&) { return "null"_ba; }

    QByteArray operator()(const Column& column)
    {
        return column.table.isEmpty() ? quoted(column.name) : quoted(column.table) + "." + quoted(column.name);
    }

    QByteArray operator()(const Call& call)
    {
        return nameOf(call.function) + ("(" + (call.arguments.empty() ? "*"_ba : list(call.arguments)) + ")");
    }

    QByteArray operator()(const Negation& negation) { return "(- " + text(negation.operand) + ")"; }
    QByteArray operator()(const Not& n) { return "(not " + text(n.operand) + ")"; }

    QByteArray operator()(const Binary& binary)
    {
        QByteArray left = text(binary.left);
        if (binary.op == Operator::Divide) // of whole numbers too the quotient is a real one
            left = "cast(" + left + " as real)";
        left += symbolOf(binary.op) + text(binary.right);
        return "(" + left + ")";
    }

    QByteArray operator()(const Like& like)
    {
        const QByteArray operand = text(like.operand);
        const QByteArray matches = "matches(" + operand + ", " + text(like.pattern) + ")";
        if (!like.ranged)
            return matches;
        const size_t pattern = std::get<LiteralRef>(like.pattern->node).index;
        QByteArray range = operand + " >= " + parameter(pattern, Binding::From::PatternStart);
        range += " and " + operand + " < " + parameter(pattern, Binding::From::PatternEnd);
        return "(" + range + " and " + matches + ")";
    }

    QByteArray operator()(const IsNull& isNull)
    {
        return "(" + text(isNull.operand) + (isNull.negated ? " is not null)" : " is null)");
    }

    QByteArray operator()(const In& in)
    {
        QByteArray sql = "(" + text(in.operand) + (in.negated ? " not in (" : " in (");
        return sql += (in.select ? (*this)(*in.select) : list(in.list)) + "))";
    }

    /// The bound itself looks for a text that is no date, by the same index: such rows lie outside of most ranges, and
    /// an operator must hear of them all the same. As a select of its own it is worked out once, not for each row.
    QByteArray operator()(const DayTest& test)
    {
        const QByteArray column = quoted(test.column.name);
        QByteArray bound =
            "select checkedday(" + parameter(test.date, Binding::From::DayNumber) + ", min(" + column + "))";
        bound += " + " + text(test.days) + " from " + quoted(test.table) + " where dayno(" + column + ") = nodate()";
        return "(dayno(" + (*this)(test.column) + ")" + symbolOf(test.op) + "(" + bound + "))";
    }

private:
    static QByteArray quoted(const QString& name) { return "[" + name.toUtf8() + "]"; }

    QByteArray text(const ExprPtr& expr) { return std::visit(*this, expr->node); }
    QByteArray where(const ExprPtr& test) { return test ? " where " + text(test) : QByteArray(); }

    template <typename Items, typename Write>
    static QByteArray list(const Items& items, Write write)
    {
        QByteArray sql;
        for (const auto& item : items) {
            if (!sql.isEmpty())
                sql += ", ";
            sql += write(item);
        }
        return sql;
    }
    template <typename Items>
    QByteArray list(const Items& items)
    {
        return list(items, [this](const auto& item) { return (*this)(item); });
    }

    /// A number alone counts the columns of the list; as a parameter it would be a constant and sort nothing.
    QByteArray sortKey(const Expr& key)
    {
        const auto* literal = std::get_if<LiteralRef>(&key.node);
        if (!literal || literal->kind != LiteralKind::Integer)
            return std::visit(*this, key.node);
        translation_.fixed.push_back(literal->index);
        return QByteArray::number(std::get<qint64>(statement_.literals[literal->index]));
    }

    QByteArray parameter(size_t literal, Binding::From from)
    {
        auto& bindings = translation_.bindings;
        auto place = std::find_if(bindings.begin(), bindings.end(), [&](const Binding& binding) {
            return binding.literal == literal && binding.from == from;
        });
        if (place == bindings.end())
            place = bindings.insert(bindings.end(), Binding{literal, from});
        return "?" + QByteArray::number(place - bindings.begin() + 1);
    }

    /// The engine would name a column without alias by its text, and that holds parameters.
    void nameColumns(const Select& select)
    {
        if (std::any_of(select.items.begin(), select.items.end(), [](const SelectItem& item) { return !item.value; }))
            return;
        for (size_t i = 0; i < select.items.size(); ++i) {
            const SelectItem& item = select.items[i];
            const auto* column = std::get_if<Column>(&item.value->node);
            translation_.columns << (!item.alias.isEmpty() ? item.alias
                                     : column              ? column->name
                                                           : u"Expr%1"_s.arg(1000 + i));
        }
    }

    const Statement& statement_;
    Translation translation_;
};

} // namespace

Translation emitSqlite(const Statement& statement)
{
    return Emitter(statement).emitted();
}

} // namespace dialect
