#pragma once

#include "platform/base/number.h"
#include "platform/base/text.h"

/// A number as the flow ledger writes it, in its table and on the screen: as it stands, but to five places at most.
inline QString fivePlaces(double number)
{
    const QString text = plainText(number);
    const qsizetype point = text.indexOf(u'.');
    const bool tiny = text.contains(u"E-");
    const bool longer = point >= 0 && !text.contains(u'E') && text.size() - point - 1 > 5;
    return tiny || longer ? Format(number, u"#0.00000") : text;
}
