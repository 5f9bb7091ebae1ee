#include "ledger/dialect.h"

#include "ledger/dialect_emitter.h"
#include "ledger/dialect_functions.h"
#include "ledger/dialect_parser.h"
#include "ledger/dialect_rewrite.h"
#include "platform/base/text.h"

namespace dialect {

namespace {

/// What stands in a pattern before its first wildcard.
QStringView fixedBeginning(QStringView pattern)
{
    qsizetype length = 0;
    while (length < pattern.size() && pattern[length] != u'*' && pattern[length] != u'?')
        ++length;
    return pattern.first(length);
}

} // namespace

Translation translate(QStringView statement)
{
    return translate(statement, Rewrites());
}

Translation translate(QStringView text, const Rewrites& rewrites)
{
    Statement statement = parse(text);
    rewrite(statement, rewrites);
    return emitSqlite(statement);
}

Literal bound(const Binding& binding, const std::vector<Literal>& literals)
{
    const Literal& literal = literals.at(binding.literal);
    switch (binding.from) {
    case Binding::From::Literal:
        break;
    case Binding::From::DayNumber: {
        const QString& text = std::get<QString>(literal);
        if (const auto day = dayNumber(text))
            return *day;
        StoreError::Details details;
        details.kind = StoreError::Kind::Value;
        details.what = noDateMessage(text);
        throw StoreError(std::move(details));
    }
    case Binding::From::PatternStart:
        return fixedBeginning(std::get<QString>(literal)).toString();
    case Binding::From::PatternEnd: {
        QString end = fixedBeginning(std::get<QString>(literal)).toString();
        end += QStringView(u"\U0010FFFF"); // no character, and behind all of them
        return end;
    }
    }
    return literal;
}

} // namespace dialect
