#pragma once

#include <QString>

using namespace Qt::StringLiterals;

#if QT_VERSION < QT_VERSION_CHECK(6, 9, 0) // later versions join the two by themselves
inline QString operator+(const QString& a, QStringView b)
{
    QString joined;
    joined.reserve(a.size() + b.size());
    return joined.append(a).append(b);
}

inline QString operator+(QStringView a, const QString& b)
{
    QString joined;
    joined.reserve(a.size() + b.size());
    return joined.append(a).append(b);
}
#endif

/// The text primitives that the business rules are told in. Substrings count characters from 1.

/// Cuts blanks at both ends: the plain blank and the full-width one (U+3000). Tabs and line breaks stay.
QString Trim(QStringView text);
/// The first `count` characters, or all of them if there are fewer.
QString Left(QStringView text, qsizetype count);
/// The last `count` characters, or all of them if there are fewer.
QString Right(QStringView text, qsizetype count);
/// From character `from` (1 is the first) to the end, or `count` characters at most.
QString Mid(QStringView text, qsizetype from, qsizetype count = -1);

/// The code of a list entry that reads code, point, name: what stands before the first ".", or the whole text.
QString codeOf(QStringView entry);
/// A list entry from code and name; what `codeOf` takes apart.
QString entryOf(QStringView code, QStringView name);

/// Equal without regard to ASCII case, as the ledger compares its texts.
bool sameText(QStringView a, QStringView b);

/// The form in which texts are looked for: small letters, the full-width forms of ASCII and the full-width blank as
/// their plain ones. As long as the text itself.
QString foldedText(QString text);
