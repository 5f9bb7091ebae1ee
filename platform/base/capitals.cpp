#include "platform/base/capitals.h"

#include "platform/base/number.h"
#include "platform/base/text.h"

namespace {

constexpr QStringView capitalDigits = u"零壹贰叁肆伍陆柒捌玖";

/// The whole part, sections of four digits at a time.
QString capitalYuan(QStringView digits)
{
    constexpr QStringView places[] = {u"", u"拾", u"佰", u"仟"};
    constexpr QStringView sections[] = {u"", u"万", u"亿", u"万"};
    QString text;
    bool zeros = false;                // since the digit written last
    bool sectionWritten = false;       // anything of the section at hand
    bool beyondHundredMillion = false; // 万 of 亿 was written, so that 亿 must follow
    for (qsizetype i = 0; i < digits.size(); ++i) {
        const qsizetype power = digits.size() - 1 - i;
        const int digit = digits[i].digitValue();
        if (power % 4 == 3) {
            if (sectionWritten)
                zeros = false; // 壹拾万柒仟: nobody can slip a digit in between, so no 零
            sectionWritten = false;
        }
        if (digit == 0) {
            zeros = true;
        } else {
            if (zeros && !text.isEmpty())
                text += capitalDigits[0];
            zeros = false;
            sectionWritten = true;
            text += capitalDigits[digit];
            text += places[power % 4];
        }
        if (power % 4 == 0) {
            const qsizetype section = power / 4;
            if (sectionWritten || (section == 2 && beyondHundredMillion))
                text += sections[section];
            beyondHundredMillion = beyondHundredMillion || (section == 3 && sectionWritten);
        }
    }
    return text;
}

} // namespace

QString capitals(double amount)
{
    const QString figures = Format(amount, u"0.00");
    const bool negative = figures.startsWith(u'-');
    const qsizetype point = figures.indexOf(u'.');
    const QStringView whole = QStringView(figures).first(point).sliced(negative ? 1 : 0);
    if (whole.size() > 16)
        return figures;
    const QString yuan = capitalYuan(whole);
    const int jiao = figures[point + 1].digitValue();
    const int fen = figures[point + 2].digitValue();

    QString text = negative ? u"负"_s : QString();
    if (yuan.isEmpty() && jiao == 0 && fen == 0)
        return u"零元整"_s;
    if (!yuan.isEmpty())
        text += yuan + u"元"_s;
    if (jiao == 0 && fen == 0)
        return text + u"整"_s;
    const bool zeroBefore = jiao == 0 || whole.endsWith(u'0');
    if (!yuan.isEmpty() && zeroBefore)
        text += capitalDigits[0];
    if (jiao != 0) {
        text += capitalDigits[jiao];
        text += u'角';
    }
    if (fen != 0) {
        text += capitalDigits[fen];
        text += u'分';
    }
    return text;
}
