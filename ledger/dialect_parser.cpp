#include "ledger/dialect_parser.h"

#include "ledger/dialect_lexer.h"
#include "platform/base/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace dialect {

namespace {

/// Words of the grammar; as a name they must stand in brackets.
constexpr std::array reservedWords = {
    "and"_L1,   "as"_L1,     "asc"_L1,   "by"_L1,     "delete"_L1, "desc"_L1,   "from"_L1,
    "group"_L1, "in"_L1,     "inner"_L1, "insert"_L1, "into"_L1,   "is"_L1,     "join"_L1,
    "left"_L1,  "like"_L1,   "not"_L1,   "null"_L1,   "on"_L1,     "or"_L1,     "order"_L1,
    "outer"_L1, "select"_L1, "set"_L1,   "top"_L1,    "update"_L1, "values"_L1, "where"_L1,
};

bool isSameWord(QStringView a, QLatin1StringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isReserved(QStringView word)
{
    return std::any_of(reservedWords.begin(), reservedWords.end(),
                       [word](QLatin1StringView reserved) { return isSameWord(word, reserved); });
}

struct FunctionRow
{
    QLatin1StringView name;
    Function function;
    size_t arguments;
};
constexpr FunctionRow functionRows[] = {
    {"sum"_L1, Function::Sum, 1}, {"count"_L1, Function::Count, 1},       {"min"_L1, Function::Min, 1},
    {"max"_L1, Function::Max, 1}, {"datediff"_L1, Function::DateDiff, 3},
};

struct OperatorRow
{
    QLatin1StringView symbol;
    Operator op;
};
constexpr OperatorRow comparisonRows[] = {
    {"="_L1, Operator::Equal},         {"<>"_L1, Operator::NotEqual}, {"<="_L1, Operator::LessEqual},
    {">="_L1, Operator::GreaterEqual}, {"<"_L1, Operator::Less},      {">"_L1, Operator::Greater},
};

/// Recursive descent; each function reads the rule that stands above it.
class Parser
{
public:
    explicit Parser(QStringView text)
        : text_(text)
    {
        Lexer lexer(text);
        do {
            tokens_.push_back({lexer.next(), statement_.literals.size()});
            if (isLiteral(tokens_.back().kind))
                statement_.literals.push_back(lexer.takeLiteral());
        } while (tokens_.back().kind != TokenKind::End);
    }

    // statement = select | insert | update | delete
    Statement statement()
    {
        if (accept("select"_L1))
            statement_.node = select();
        else if (accept("insert"_L1))
            statement_.node = insert();
        else if (accept("update"_L1))
            statement_.node = update();
        else if (accept("delete"_L1))
            statement_.node = deletion();
        else
            failHere(u"应是 select、insert、update 或 delete"_s);
        if (token().kind != TokenKind::End)
            failHere(u"语句已经结束，不能再有内容"_s);
        return std::move(statement_);
    }

private:
    struct PlacedToken : Token
    {
        size_t literal = 0;
    };

    /// Bounds the recursion, so that a text of brackets alone can't exhaust the stack.
    class Nesting
    {
    public:
        explicit Nesting(Parser& parser)
            : parser_(parser)
        {
            if (++parser_.depth_ > 200)
                parser_.failHere(u"嵌套过深"_s);
        }
        ~Nesting() { --parser_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Parser& parser_;
    };

    const PlacedToken& token() const { return tokens_[position_]; }
    const PlacedToken& following() const { return tokens_[std::min(position_ + 1, tokens_.size() - 1)]; }
    QStringView tokenText(const Token& token) const { return text_.sliced(token.at, token.length); }

    [[noreturn]] void failHere(const QString& expected) const
    {
        if (token().kind == TokenKind::End)
            failStatement(text_, token().at, u"语句不完整，"_s + expected);
        failStatement(text_, token().at, u"的“%1”不能理解，%2"_s.arg(tokenText(token()), expected));
    }

    /// A word of the grammar, or a symbol.
    bool isNext(QLatin1StringView wanted) const
    {
        const TokenKind kind = token().kind;
        return (kind == TokenKind::Word || kind == TokenKind::Symbol) && isSameWord(tokenText(token()), wanted);
    }
    bool accept(QLatin1StringView wanted)
    {
        if (!isNext(wanted))
            return false;
        ++position_;
        return true;
    }
    void expect(QLatin1StringView wanted)
    {
        if (!accept(wanted))
            failHere(u"应是“%1”"_s.arg(wanted));
    }
    bool isName() const
    {
        return token().kind == TokenKind::Bracketed ||
               (token().kind == TokenKind::Word && !isReserved(tokenText(token())));
    }

    // name = word | "[" text "]"
    QString name()
    {
        if (!isName())
            failHere(u"应是名称"_s);
        const PlacedToken& taken = tokens_[position_++];
        const QStringView text = tokenText(taken);
        return (taken.kind == TokenKind::Bracketed ? text.sliced(1, text.size() - 2) : text).toString();
    }

    // column = name ["." name]; "[T.C]" stands for a table and its column
    Column column()
    {
        const bool bracketed = token().kind == TokenKind::Bracketed;
        const QString first = name();
        if (accept("."_L1))
            return {first, name()};
        const qsizetype point = bracketed ? first.indexOf(u'.') : -1;
        if (point < 0)
            return {QString(), first};
        return {first.left(point), first.mid(point + 1)};
    }

    // column name = column, of which only the column counts
    QString columnName() { return column().name; }

    // inserted column = column name {word | digits}: a blank in the midst of a name is no part of it
    QString insertedColumn()
    {
        QString whole = columnName();
        while (token().kind == TokenKind::Word || token().kind == TokenKind::Integer) {
            if (token().kind == TokenKind::Word) {
                whole += tokenText(token());
            } else {
                whole += QString::number(std::get<qint64>(statement_.literals[token().literal]));
                statement_.fixed.push_back(token().literal);
            }
            ++position_;
        }
        return whole;
    }

    // select = "select" ["top" digits] item {"," item} "from" joined {"," joined} ["where" expression]
    //          ["group" "by" expression {"," expression}] ["order" "by" order {"," order}]
    Select select()
    {
        const Nesting nesting(*this);
        Select select;
        if (accept("top"_L1)) {
            if (token().kind != TokenKind::Integer)
                failHere(u"应是行数"_s);
            select.top = tokens_[position_++].literal;
        }
        do
            select.items.push_back(selectItem());
        while (accept(","_L1));
        expect("from"_L1);
        do
            select.from.push_back(joined());
        while (accept(","_L1));
        select.where = where();
        if (accept("group"_L1)) {
            expect("by"_L1);
            do
                select.groupBy.push_back(expression());
            while (accept(","_L1));
        }
        if (accept("order"_L1)) {
            expect("by"_L1);
            do
                select.orderBy.push_back(orderItem());
            while (accept(","_L1));
        }
        return select;
    }

    // item = "*" | name "." "*" | expression ["as" name]
    SelectItem selectItem()
    {
        SelectItem item;
        if (accept("*"_L1))
            return item;
        if (isName() && position_ + 2 < tokens_.size() && tokenText(tokens_[position_ + 1]) == "."_L1 &&
            tokenText(tokens_[position_ + 2]) == "*"_L1) {
            item.table = name();
            position_ += 2;
            return item;
        }
        item.value = expression();
        if (accept("as"_L1))
            item.alias = name();
        return item;
    }

    // joined = table {["left" ["outer"] | "inner"] "join" table "on" expression}
    FromPtr joined()
    {
        FromPtr left = table();
        while (isNext("left"_L1) || isNext("inner"_L1)) {
            From::Join join;
            join.kind = accept("inner"_L1) ? JoinKind::Inner : JoinKind::Left;
            if (join.kind == JoinKind::Left) {
                expect("left"_L1);
                accept("outer"_L1);
            }
            expect("join"_L1);
            join.left = std::move(left);
            join.right = table();
            expect("on"_L1);
            join.on = expression();
            left = std::make_unique<From>(From{std::move(join)});
        }
        return left;
    }

    // table = "(" joined ")" | name [["as"] name]
    FromPtr table()
    {
        const Nesting nesting(*this);
        if (accept("("_L1)) {
            FromPtr inner = joined();
            expect(")"_L1);
            return inner;
        }
        From::Table table;
        table.name = name();
        if (accept("as"_L1) || isName())
            table.alias = name();
        return std::make_unique<From>(From{std::move(table)});
    }

    // order = expression ["asc" | "desc"]
    OrderItem orderItem()
    {
        OrderItem item;
        item.value = expression();
        item.descending = accept("desc"_L1);
        if (!item.descending)
            accept("asc"_L1);
        return item;
    }

    // where = ["where" expression]
    ExprPtr where() { return accept("where"_L1) ? expression() : nullptr; }

    // insert = "insert" "into" name "(" inserted {"," inserted} ")" "values" "(" expression {"," expression} ")"
    Insert insert()
    {
        Insert insert;
        expect("into"_L1);
        insert.table = name();
        expect("("_L1);
        do
            insert.columns.push_back(insertedColumn());
        while (accept(","_L1));
        expect(")"_L1);
        const qsizetype valuesAt = token().at;
        expect("values"_L1);
        expect("("_L1);
        do
            insert.values.push_back(expression());
        while (accept(","_L1));
        expect(")"_L1);
        if (static_cast<size_t>(insert.columns.size()) != insert.values.size())
            failStatement(text_, valuesAt,
                          u"有 %1 个值，却有 %2 列"_s.arg(insert.values.size()).arg(insert.columns.size()));
        return insert;
    }

    // update = "update" name "set" column "=" expression {"," column "=" expression} ["where" expression]
    Update update()
    {
        Update update;
        update.table = name();
        expect("set"_L1);
        do {
            Update::Assignment assignment;
            assignment.column = columnName();
            expect("="_L1);
            assignment.value = additive(); // no comparison: in a list of settings a second "=" is a slip
            update.assignments.push_back(std::move(assignment));
        } while (accept(","_L1));
        update.where = where();
        return update;
    }

    // delete = "delete" ["*"] "from" name ["where" expression]
    Delete deletion()
    {
        Delete deletion;
        accept("*"_L1);
        expect("from"_L1);
        deletion.table = name();
        deletion.where = where();
        return deletion;
    }

    // expression = conjunction {"or" conjunction}
    ExprPtr expression()
    {
        ExprPtr left = conjunction();
        while (accept("or"_L1))
            left = makeExpr(Binary{Operator::Or, std::move(left), conjunction()});
        return left;
    }

    // conjunction = negation {"and" negation}
    ExprPtr conjunction()
    {
        ExprPtr left = negation();
        while (accept("and"_L1))
            left = makeExpr(Binary{Operator::And, std::move(left), negation()});
        return left;
    }

    // negation = "not" negation | comparison
    ExprPtr negation()
    {
        const Nesting nesting(*this);
        return accept("not"_L1) ? makeExpr(Not{negation()}) : comparison();
    }

    // comparison = additive [("=" | "<>" | "<" | "<=" | ">" | ">=") additive | "is" ["not"] "null"
    //              | ["not"] "like" additive | ["not"] "in" "(" (select | expression {"," expression}) ")"]
    ExprPtr comparison()
    {
        ExprPtr left = additive();
        for (const OperatorRow& row : comparisonRows)
            if (accept(row.symbol))
                return makeExpr(Binary{row.op, std::move(left), additive()});
        if (accept("is"_L1)) {
            const bool negated = accept("not"_L1);
            expect("null"_L1);
            return makeExpr(IsNull{std::move(left), negated});
        }
        const bool negated = accept("not"_L1);
        if (accept("like"_L1)) {
            ExprPtr like = makeExpr(Like{std::move(left), additive()});
            return negated ? makeExpr(Not{std::move(like)}) : std::move(like);
        }
        if (accept("in"_L1))
            return in(std::move(left), negated);
        if (negated)
            failHere(u"应是“like”或“in”"_s);
        return left;
    }

    ExprPtr in(ExprPtr operand, bool negated)
    {
        In in;
        in.operand = std::move(operand);
        in.negated = negated;
        expect("("_L1);
        if (accept("select"_L1)) {
            in.select = std::make_unique<Select>(select());
        } else {
            do
                in.list.push_back(expression());
            while (accept(","_L1));
        }
        expect(")"_L1);
        return makeExpr(std::move(in));
    }

    static bool isText(const Expr& expr)
    {
        if (const auto* literal = std::get_if<LiteralRef>(&expr.node))
            return literal->kind == LiteralKind::Text || literal->kind == LiteralKind::Wildcard;
        const auto* binary = std::get_if<Binary>(&expr.node);
        return binary && binary->op == Operator::Join;
    }

    // additive = term {("+" | "-") term}: a chain of "+" that has a text among its terms joins texts
    ExprPtr additive()
    {
        std::vector<ExprPtr> terms;
        std::vector<Operator> operators;
        terms.push_back(term());
        while (isNext("+"_L1) || isNext("-"_L1)) {
            operators.push_back(accept("+"_L1) ? Operator::Add : Operator::Subtract);
            if (operators.back() == Operator::Subtract)
                expect("-"_L1);
            terms.push_back(term());
        }
        const bool joins =
            std::all_of(operators.begin(), operators.end(), [](Operator op) { return op == Operator::Add; }) &&
            std::any_of(terms.begin(), terms.end(), [](const ExprPtr& term) { return isText(*term); });
        ExprPtr left = std::move(terms.front());
        for (size_t i = 0; i < operators.size(); ++i)
            left = makeExpr(Binary{joins ? Operator::Join : operators[i], std::move(left), std::move(terms[i + 1])});
        return left;
    }

    // term = factor {("*" | "/") factor}
    ExprPtr term()
    {
        ExprPtr left = factor();
        while (true) {
            if (accept("*"_L1))
                left = makeExpr(Binary{Operator::Multiply, std::move(left), factor()});
            else if (accept("/"_L1))
                left = makeExpr(Binary{Operator::Divide, std::move(left), factor()});
            else
                return left;
        }
    }

    // factor = ("-" | "+") factor | "(" expression ")" | literal | "null" | call | column
    ExprPtr factor()
    {
        const Nesting nesting(*this);
        if (accept("-"_L1))
            return makeExpr(Negation{factor()});
        if (accept("+"_L1))
            return factor();
        if (accept("("_L1)) {
            ExprPtr inner = expression();
            expect(")"_L1);
            return inner;
        }
        if (isLiteral(token().kind))
            return literal();
        if (accept("null"_L1))
            return makeExpr(NullConstant{});
        if (!isName())
            failHere(u"应是值或列"_s);
        if (token().kind == TokenKind::Word && tokenText(following()) == "("_L1)
            return call();
        return makeExpr(column());
    }

    ExprPtr literal()
    {
        const PlacedToken& taken = tokens_[position_++];
        const auto* text = std::get_if<QString>(&statement_.literals[taken.literal]);
        const LiteralKind kind = text ? (beginsWithWildcard(*text) ? LiteralKind::Wildcard : LiteralKind::Text)
                                 : taken.kind == TokenKind::Integer ? LiteralKind::Integer
                                                                    : LiteralKind::Number;
        return makeExpr(LiteralRef{taken.literal, kind});
    }

    // call = ("sum" | "count" | "min" | "max") "(" expression ")" | "count" "(" "*" ")"
    //        | "datediff" "(" "'d'" "," expression "," expression ")"
    ExprPtr call()
    {
        const QStringView called = tokenText(token());
        const auto* row = std::find_if(std::begin(functionRows), std::end(functionRows),
                                       [called](const FunctionRow& row) { return isSameWord(called, row.name); });
        if (row == std::end(functionRows))
            failHere(u"没有这个函数"_s);
        Call call;
        call.function = row->function;
        position_ += 2;
        if (row->function == Function::Count && accept("*"_L1)) {
            expect(")"_L1);
            return makeExpr(std::move(call));
        }
        size_t missing = row->arguments;
        if (row->function == Function::DateDiff) {
            dayUnit();
            expect(","_L1);
            --missing;
        }
        call.arguments.push_back(expression());
        while (--missing > 0) {
            expect(","_L1);
            call.arguments.push_back(expression());
        }
        expect(")"_L1);
        return makeExpr(std::move(call));
    }

    /// Days are the only unit in use.
    void dayUnit()
    {
        const size_t index = token().literal;
        if (token().kind != TokenKind::Text || !isSameWord(std::get<QString>(statement_.literals[index]), "d"_L1))
            failHere(u"应是“'d'”"_s);
        statement_.fixed.push_back(index);
        ++position_;
    }

    QStringView text_;
    std::vector<PlacedToken> tokens_;
    size_t position_ = 0;
    int depth_ = 0;
    Statement statement_;
};

} // namespace

Statement parse(QStringView statement)
{
    return Parser(statement).statement();
}

} // namespace dialect
