#include "ledger/dialect_rewrite.h"

#include "ledger/dialect_columns.h"
#include "platform/base/text.h"

#include <algorithm>

namespace dialect {

namespace {

using Tables = std::vector<const From::Table*>;

template <typename... Handlers>
struct Overloaded : Handlers...
{
    using Handlers::operator()...;
};
template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

void addTables(const From& from, Tables& tables)
{
    if (const auto* table = std::get_if<From::Table>(&from.node)) {
        tables.push_back(table);
        return;
    }
    const auto& join = std::get<From::Join>(from.node);
    addTables(*join.left, tables);
    addTables(*join.right, tables);
}

Tables tablesOf(const From& from)
{
    Tables tables;
    addTables(from, tables);
    return tables;
}

/// Calls `visit` with each place in an expression that holds an expression itself. Sub-selects are their own world.
template <typename Visit>
void forEachChild(Expr& expr, const Visit& visit)
{
    std::visit(Overloaded{[](LiteralRef&) {}, [](NullConstant&) {}, [](Column&) {}, [](DayTest&) {},
                          [&](Call& call) { std::for_each(call.arguments.begin(), call.arguments.end(), visit); },
                          [&](Negation& negation) { visit(negation.operand); }, [&](Not& n) { visit(n.operand); },
                          [&](Binary& binary) {
                              visit(binary.left);
                              visit(binary.right);
                          },
                          [&](Like& like) {
                              visit(like.operand);
                              visit(like.pattern);
                          },
                          [&](IsNull& isNull) { visit(isNull.operand); },
                          [&](In& in) {
                              visit(in.operand);
                              std::for_each(in.list.begin(), in.list.end(), visit);
                          }},
               expr.node);
}

/// The tables that columns of one select may name.
class Scope
{
public:
    explicit Scope(Tables tables)
        : tables_(std::move(tables))
    {}

    const Tables& tables() const { return tables_; }

    /// The table of a column; none where that takes more than the statement's text to know.
    const From::Table* owner(const Column& column) const
    {
        if (column.table.isEmpty())
            return tables_.size() == 1 ? tables_.front() : nullptr;
        const auto owner = std::find_if(tables_.begin(), tables_.end(), [&](const From::Table* table) {
            return sameText(table->calledName(), column.table);
        });
        return owner == tables_.end() ? nullptr : *owner;
    }

    bool isOf(const Column& column, const Tables& tables) const
    {
        const From::Table* table = owner(column);
        return table && std::find(tables.begin(), tables.end(), table) != tables.end();
    }

    /// Every column in it is known to be of these tables.
    bool usesOnly(Expr& expr, const Tables& tables) const
    {
        if (const auto* column = std::get_if<Column>(&expr.node))
            return isOf(*column, tables);
        const auto* in = std::get_if<In>(&expr.node);
        bool only = !in || !in->select;
        forEachChild(expr, [&](ExprPtr& child) { only = only && usesOnly(*child, tables); });
        return only;
    }

    /// It is Null whenever all columns of these tables are.
    bool isNullWith(const Expr& expr, const Tables& tables) const
    {
        const auto with = [&](const ExprPtr& child) { return isNullWith(*child, tables); };
        return std::visit(
            Overloaded{[](const LiteralRef&) { return false; }, [](const NullConstant&) { return true; },
                       [&](const Column& column) { return isOf(column, tables); },
                       [&](const Call& call) {
                           return call.function == Function::DateDiff &&
                                  std::any_of(call.arguments.begin(), call.arguments.end(), with);
                       },
                       [&](const Negation& negation) { return with(negation.operand); },
                       [&](const Not& n) { return with(n.operand); },
                       [&](const Binary& binary) {
                           if (binary.op == Operator::And || binary.op == Operator::Or)
                               return with(binary.left) && with(binary.right);
                           return with(binary.left) || with(binary.right);
                       },
                       [&](const Like& like) { return with(like.operand) || with(like.pattern); },
                       [](const IsNull&) { return false; },
                       [](const In&) { return false; }, // nothing is in an empty list, and that is no Null
                       [&](const DayTest& test) { return isOf(test.column, tables); }},
            expr.node);
    }

    /// It can't be true when all columns of these tables are Null.
    bool rejectsNull(const Expr& expr, const Tables& tables) const
    {
        if (const auto* binary = std::get_if<Binary>(&expr.node)) {
            if (binary->op == Operator::And)
                return rejectsNull(*binary->left, tables) || rejectsNull(*binary->right, tables);
            if (binary->op == Operator::Or)
                return rejectsNull(*binary->left, tables) && rejectsNull(*binary->right, tables);
        }
        if (const auto* isNull = std::get_if<IsNull>(&expr.node))
            return isNull->negated && isNullWith(*isNull->operand, tables);
        if (const auto* in = std::get_if<In>(&expr.node))
            return !in->negated && isNullWith(*in->operand, tables);
        return isNullWith(expr, tables);
    }

private:
    Tables tables_;
};

class Rewriter
{
public:
    Rewriter(const std::vector<Literal>& literals, const Rewrites& rewrites)
        : literals_(literals)
        , rewrites_(rewrites)
    {}

    void operator()(Select& select)
    {
        Tables tables;
        for (const FromPtr& from : select.from)
            addTables(*from, tables);
        const Scope scope(std::move(tables));
        if (rewrites_.leftDeepJoins)
            for (FromPtr& from : select.from)
                makeLeftDeep(from, scope);
        if (rewrites_.innerJoins && select.where)
            makeInner(select, scope);
        for (SelectItem& item : select.items)
            rewriteTests(item.value, scope);
        for (FromPtr& from : select.from)
            rewriteJoinTests(*from, scope);
        rewriteTests(select.where, scope);
        for (OrderItem& item : select.orderBy)
            item.natural = goesByTime(*item.value, select, scope);
    }
    void operator()(Insert&) {}
    void operator()(Update& update) { rewriteTests(update.where, update.table); }
    void operator()(Delete& deletion) { rewriteTests(deletion.where, deletion.table); }

private:
    void rewriteTests(ExprPtr& where, const QString& tableName)
    {
        const From::Table table{tableName, QString()};
        rewriteTests(where, Scope({&table}));
    }

    void rewriteJoinTests(From& from, const Scope& scope)
    {
        if (auto* join = std::get_if<From::Join>(&from.node)) {
            rewriteJoinTests(*join->left, scope);
            rewriteJoinTests(*join->right, scope);
            rewriteTests(join->on, scope);
        }
    }

    /// Turns what an index can serve into its form, anywhere in an expression, and goes into the selects in it.
    void rewriteTests(ExprPtr& expr, const Scope& scope)
    {
        if (!expr)
            return;
        if (auto* like = std::get_if<Like>(&expr->node)) {
            const auto* pattern = std::get_if<LiteralRef>(&like->pattern->node);
            const auto* column = std::get_if<Column>(&like->operand->node);
            like->ranged = rewrites_.patternRanges && pattern && pattern->kind == LiteralKind::Text && column &&
                           isKeyColumn(column->name);
        }
        if (auto* in = std::get_if<In>(&expr->node); in && in->select)
            (*this)(*in->select);
        forEachChild(*expr, [&](ExprPtr& child) { rewriteTests(child, scope); });
        if (auto* binary = std::get_if<Binary>(&expr->node); binary && rewrites_.dayTests)
            if (ExprPtr test = dayTest(*binary, scope))
                expr = std::move(test);
    }

    static bool isNumber(const Expr& expr)
    {
        if (const auto* negation = std::get_if<Negation>(&expr.node))
            return isNumber(*negation->operand);
        const auto* literal = std::get_if<LiteralRef>(&expr.node);
        return literal && (literal->kind == LiteralKind::Integer || literal->kind == LiteralKind::Number);
    }

    static ExprPtr dayTest(Binary& test, const Scope& scope)
    {
        if (test.op < Operator::Equal || test.op > Operator::GreaterEqual || !isNumber(*test.right))
            return nullptr;
        const auto* call = std::get_if<Call>(&test.left->node);
        if (!call || call->function != Function::DateDiff)
            return nullptr;
        const auto* date = std::get_if<LiteralRef>(&call->arguments[0]->node);
        const auto* column = std::get_if<Column>(&call->arguments[1]->node);
        const From::Table* table = column ? scope.owner(*column) : nullptr;
        const bool isText = date && (date->kind == LiteralKind::Text || date->kind == LiteralKind::Wildcard);
        if (!isText || !table || !hasDayIndex(table->name, column->name))
            return nullptr;
        return makeExpr(DayTest{*column, table->name, test.op, date->index, std::move(test.right)});
    }

    /// A left join (B left join C on q) on p is (A left join B on p) left join C on q when p knows nothing of C, and q
    /// fails for an A without a B. The engine works out a join in brackets whole, before it looks at A.
    static void makeLeftDeep(FromPtr& from, const Scope& scope)
    {
        auto* join = std::get_if<From::Join>(&from->node);
        if (!join)
            return;
        makeLeftDeep(join->left, scope);
        makeLeftDeep(join->right, scope);
        auto* inner = std::get_if<From::Join>(&join->right->node);
        if (!inner || inner->kind != JoinKind::Left)
            return;
        Tables outside = tablesOf(*join->left);
        addTables(*inner->left, outside);
        const bool rejects = join->kind == JoinKind::Inner || scope.rejectsNull(*inner->on, tablesOf(*inner->left));
        if (!rejects || !scope.usesOnly(*join->on, outside) || !scope.usesOnly(*inner->on, tablesOf(*join->right)))
            return;
        FromPtr nested = std::move(join->right);
        join->right = std::move(inner->left);
        inner->left = std::move(from);
        from = std::move(nested);
        makeLeftDeep(std::get<From::Join>(from->node).left, scope);
    }

    /// Each inner join brings its own test, which may settle a further one.
    static void makeInner(Select& select, const Scope& scope)
    {
        bool changed = true;
        while (changed) {
            std::vector<const Expr*> tests{select.where.get()};
            for (const FromPtr& from : select.from)
                addInnerTests(*from, tests);
            changed = false;
            for (const FromPtr& from : select.from)
                changed = makeInner(*from, tests, scope) || changed;
        }
    }

    static void addInnerTests(const From& from, std::vector<const Expr*>& tests)
    {
        const auto* join = std::get_if<From::Join>(&from.node);
        if (!join)
            return;
        addInnerTests(*join->left, tests);
        if (join->kind == JoinKind::Inner) {
            tests.push_back(join->on.get());
            addInnerTests(*join->right, tests);
        }
    }

    static bool makeInner(From& from, const std::vector<const Expr*>& tests, const Scope& scope)
    {
        auto* join = std::get_if<From::Join>(&from.node);
        if (!join)
            return false;
        bool changed = makeInner(*join->left, tests, scope);
        if (join->kind == JoinKind::Left) {
            const Tables right = tablesOf(*join->right);
            if (std::any_of(tests.begin(), tests.end(),
                            [&](const Expr* test) { return scope.rejectsNull(*test, right); })) {
                join->kind = JoinKind::Inner;
                changed = true;
            }
        }
        if (join->kind == JoinKind::Inner)
            changed = makeInner(*join->right, tests, scope) || changed;
        return changed;
    }

    /// A sort key may be an ordinal, an alias or a column.
    bool goesByTime(const Expr& key, const Select& select, const Scope& scope) const
    {
        if (const auto* ordinal = std::get_if<LiteralRef>(&key.node)) {
            if (ordinal->kind != LiteralKind::Integer)
                return false;
            const qint64 place = std::get<qint64>(literals_[ordinal->index]);
            if (place < 1 || place > static_cast<qint64>(select.items.size()))
                return false;
            const SelectItem& item = select.items[static_cast<size_t>(place - 1)];
            return item.value && isByTime(*item.value, scope);
        }
        if (const auto* column = std::get_if<Column>(&key.node); column && column->table.isEmpty())
            for (const SelectItem& item : select.items)
                if (!item.alias.isEmpty() && sameText(item.alias, column->name))
                    return isByTime(*item.value, scope);
        return isByTime(key, scope);
    }

    static bool isByTime(const Expr& expr, const Scope& scope)
    {
        const auto* column = std::get_if<Column>(&expr.node);
        if (!column)
            return false;
        if (!column->table.isEmpty()) {
            const From::Table* table = scope.owner(*column);
            return table && isDateColumn(table->name, column->name);
        }
        // Alone it names the one table that has it, or else the engine refuses it.
        return std::any_of(scope.tables().begin(), scope.tables().end(),
                           [column](const From::Table* table) { return isDateColumn(table->name, column->name); });
    }

    const std::vector<Literal>& literals_;
    const Rewrites& rewrites_;
};

} // namespace

void rewrite(Statement& statement, const Rewrites& rewrites)
{
    std::visit(Rewriter(statement.literals, rewrites), statement.node);
}

} // namespace dialect
