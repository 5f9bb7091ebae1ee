#include "ledger/literal.h"

QString sqlText(QStringView text)
{
    QString quoted;
    quoted.reserve(text.size() + 2);
    quoted += u'\'';
    if (!text.contains(u'\'')) { // nearly all
        quoted += text;
        quoted += u'\'';
        return quoted;
    }
    for (const QChar c : text) {
        quoted += c;
        if (c == u'\'')
            quoted += c;
    }
    quoted += u'\'';
    return quoted;
}

QString sqlNumber(const Value& number)
{
    return number.isNull() ? QString() : plainText(number.number());
}

QString sqlTexts(const QStringList& texts)
{
    QStringList quoted;
    for (const QString& text : texts)
        quoted += sqlText(text);
    return quoted.join(u',');
}
