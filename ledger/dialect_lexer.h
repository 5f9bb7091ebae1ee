#pragma once

#include "ledger/dialect.h"

#include <utility>

namespace dialect {

enum class TokenKind { End, Word, Bracketed, Symbol, Text, Integer, Number };

struct Token
{
    TokenKind kind = TokenKind::End;
    qsizetype at = 0; ///< place in the statement; brackets and quotes belong to the token
    qsizetype length = 0;
};

constexpr bool isLiteral(TokenKind kind)
{
    return kind >= TokenKind::Text;
}

/// True for a text that as a pattern has no fixed beginning; such a literal is a kind of its own in a shape, since the
/// plan for it is another one.
bool beginsWithWildcard(QStringView text);

/// Walks over a statement once. `scan` and the parser share it, so that both count the same literals.
class Lexer
{
public:
    explicit Lexer(QStringView statement)
        : text_(statement)
    {}

    /// @throws StoreError (Statement) for what begins no token, or an open quote or bracket
    Token next();
    QStringView textOf(const Token& token) const { return text_.sliced(token.at, token.length); }
    /// The value of the literal that `next` gave last; to be taken once.
    Literal takeLiteral() { return std::exchange(literal_, {}); }

private:
    Token text();
    Token number();

    QStringView text_;
    qsizetype at_ = 0;
    bool afterName_ = false; // a point behind a name parts it from a column, and never begins a number
    Literal literal_;
};

/// A failure to read a statement. @param at its place, in characters @param what what is wrong there, in Chinese
[[noreturn]] void failStatement(QStringView statement, qsizetype at, const QString& what);

} // namespace dialect
