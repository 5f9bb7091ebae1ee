#pragma once

#include <QString>

/// Letters, digits and signs in full width, as an input method leaves them, count as the plain ones in codes, numbers
/// and what is searched for. One for one, so that a cursor keeps its place.
inline QString plainWidth(QString text)
{
    for (QChar& c : text) {
        if (c >= u'\uFF01' && c <= u'\uFF5E')
            c = QChar(c.unicode() - u'\uFF01' + u'!');
        else if (c == u'\u3000')
            c = u' ';
    }
    return text;
}
