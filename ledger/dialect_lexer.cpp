#include "ledger/dialect_lexer.h"

#include "platform/base/text.h"

#include <array>
#include <charconv>
#include <string>

namespace dialect {

namespace {

enum class CharClass : unsigned char { Bad, Blank, Letter, Digit, Quote, Bracket, Symbol };

constexpr auto charClasses = [] {
    std::array<CharClass, 128> classes{};
    for (const char c : {' ', '\t', '\r', '\n'})
        classes[static_cast<size_t>(c)] = CharClass::Blank;
    for (char c = 'a'; c <= 'z'; ++c)
        classes[static_cast<size_t>(c)] = classes[static_cast<size_t>(c - 'a' + 'A')] = CharClass::Letter;
    classes['_'] = CharClass::Letter;
    for (char c = '0'; c <= '9'; ++c)
        classes[static_cast<size_t>(c)] = CharClass::Digit;
    for (const char c : {'(', ')', ',', '.', '+', '-', '*', '/', '=', '<', '>'})
        classes[static_cast<size_t>(c)] = CharClass::Symbol;
    classes['\''] = CharClass::Quote;
    classes['['] = CharClass::Bracket;
    return classes;
}();

CharClass classOf(QChar c)
{
    return c.unicode() < charClasses.size() ? charClasses[c.unicode()] : CharClass::Bad;
}

bool isWordCharacter(QChar c)
{
    const CharClass kind = classOf(c);
    return kind == CharClass::Letter || kind == CharClass::Digit;
}

/// Stands in a key for a literal. Control characters are refused by the lexer, so no statement can hold one itself.
char16_t placeholderFor(const Token& token, const Literal& literal)
{
    switch (token.kind) {
    case TokenKind::Integer:
        return 1;
    case TokenKind::Number:
        return 2;
    default:
        return beginsWithWildcard(std::get<QString>(literal)) ? 4 : 3;
    }
}

} // namespace

void failStatement(QStringView statement, qsizetype at, const QString& what)
{
    StoreError::Details details;
    details.kind = StoreError::Kind::Statement;
    details.what = u"语句有误：第 %1 个字符处%2。"_s.arg(at + 1).arg(what);
    details.statement = statement.toString();
    details.offset = at;
    throw StoreError(std::move(details));
}

bool beginsWithWildcard(QStringView text)
{
    return !text.isEmpty() && (text.front() == u'*' || text.front() == u'?');
}

Token Lexer::next()
{
    const qsizetype size = text_.size();
    while (at_ < size && classOf(text_[at_]) == CharClass::Blank)
        ++at_;
    if (at_ == size)
        return {TokenKind::End, size, 0};

    const bool afterName = std::exchange(afterName_, false);
    const qsizetype start = at_;
    switch (classOf(text_[at_])) {
    case CharClass::Letter:
        while (++at_ < size && isWordCharacter(text_[at_])) {
        }
        afterName_ = true;
        return {TokenKind::Word, start, at_ - start};
    case CharClass::Digit:
        return number();
    case CharClass::Quote:
        return text();
    case CharClass::Bracket: {
        const qsizetype close = text_.indexOf(u']', at_);
        if (close <= at_ + 1)
            failStatement(text_, start, close < 0 ? u"的方括号没有结束"_s : u"的方括号中没有名称"_s);
        at_ = close + 1;
        afterName_ = true;
        return {TokenKind::Bracketed, start, at_ - start};
    }
    case CharClass::Symbol:
        if (text_[at_] == u'.' && !afterName && at_ + 1 < size && classOf(text_[at_ + 1]) == CharClass::Digit)
            return number();
        ++at_;
        if (at_ < size && ((text_[start] == u'<' && (text_[at_] == u'>' || text_[at_] == u'=')) ||
                           (text_[start] == u'>' && text_[at_] == u'=')))
            ++at_;
        return {TokenKind::Symbol, start, at_ - start};
    default:
        failStatement(text_, start, u"的字符“%1”不能出现在引号之外"_s.arg(text_[start]));
    }
}

Token Lexer::text()
{
    const qsizetype start = at_;
    qsizetype close = text_.indexOf(u'\'', start + 1);
    bool doubled = false;
    while (close >= 0 && close + 1 < text_.size() && text_[close + 1] == u'\'') {
        doubled = true;
        close = text_.indexOf(u'\'', close + 2);
    }
    if (close < 0)
        failStatement(text_, start, u"的引号没有结束"_s);
    at_ = close + 1;
    QString value = text_.sliced(start + 1, close - start - 1).toString();
    if (doubled)
        value.replace("''"_L1, "'"_L1);
    literal_ = std::move(value);
    return {TokenKind::Text, start, at_ - start};
}

Token Lexer::number()
{
    const qsizetype start = at_;
    const auto isDigit = [this](qsizetype at) { return at < text_.size() && classOf(text_[at]) == CharClass::Digit; };
    qint64 whole = 0;
    bool isWhole = true;
    for (; isDigit(at_); ++at_) {
        qint64 next = 0;
        if (__builtin_mul_overflow(whole, 10, &next) ||
            __builtin_add_overflow(next, text_[at_].unicode() - u'0', &whole))
            isWhole = false;
    }
    if (at_ < text_.size() && text_[at_] == u'.') {
        isWhole = false;
        while (isDigit(++at_)) {
        }
    }
    if (at_ < text_.size() && (text_[at_] == u'E' || text_[at_] == u'e')) {
        qsizetype digits = at_ + 1;
        if (digits < text_.size() && (text_[digits] == u'+' || text_[digits] == u'-'))
            ++digits;
        if (isDigit(digits)) {
            isWhole = false;
            for (at_ = digits; isDigit(at_); ++at_) {
            }
        }
    }
    const Token token{isWhole ? TokenKind::Integer : TokenKind::Number, start, at_ - start};
    if (isWhole) {
        literal_ = whole;
        return token;
    }
    std::string digits;
    digits.reserve(static_cast<size_t>(token.length));
    for (const QChar c : textOf(token))
        digits += static_cast<char>(c.unicode());
    double value = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        failStatement(text_, start, u"的数字超出范围"_s);
    literal_ = value;
    return token;
}

Shape scan(QStringView statement)
{
    Shape shape;
    shape.key = QString(statement.size(), Qt::Uninitialized); // a literal is never shorter than its placeholder
    shape.literals.reserve(static_cast<size_t>(statement.size() / 8 + 1));
    QChar* out = shape.key.data();
    qsizetype copied = 0;
    Lexer lexer(statement);
    for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
        if (!isLiteral(token.kind))
            continue;
        out = std::copy(statement.begin() + copied, statement.begin() + token.at, out);
        copied = token.at + token.length;
        const Literal& literal = shape.literals.emplace_back(lexer.takeLiteral());
        *out++ = placeholderFor(token, literal);
    }
    out = std::copy(statement.begin() + copied, statement.end(), out);
    shape.key.truncate(out - shape.key.constData());
    return shape;
}

} // namespace dialect
