#include "platform/base/text.h"

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\u3000';
}

char16_t asciiLower(QChar c)
{
    const char16_t u = c.unicode();
    return u >= u'A' && u <= u'Z' ? char16_t(u + 32) : u;
}

} // namespace

QString Trim(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text.toString();
}

QString Left(QStringView text, qsizetype count)
{
    return text.first(qBound(qsizetype(0), count, text.size())).toString();
}

QString Right(QStringView text, qsizetype count)
{
    return text.last(qBound(qsizetype(0), count, text.size())).toString();
}

QString Mid(QStringView text, qsizetype from, qsizetype count)
{
    return text.mid(qMax(qsizetype(0), from - 1), count).toString();
}

QString codeOf(QStringView entry)
{
    const qsizetype point = entry.indexOf(u'.');
    return (point < 0 ? entry : entry.first(point)).toString();
}

QString entryOf(QStringView code, QStringView name)
{
    return code.toString() + u'.' + name.toString();
}

QString foldedText(QString text)
{
    for (QChar& c : text) {
        if (c >= u'\uFF01' && c <= u'\uFF5E')
            c = QChar(char16_t(c.unicode() - u'\uFF01' + u'!'));
        if (c < u'\x80')
            c = asciiLower(c);
        else if (c == u'\u3000')
            c = u' ';
        else if (c < u'\u2E80') // Chinese characters, most of what there is, have no case
            c = c.toLower();
    }
    return text;
}

bool sameText(QStringView a, QStringView b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i]))
            return false;
    return true;
}
