#include "documents/line_paste.h"

#include "platform/base/number.h"
#include "platform/base/width.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>

namespace {

/// A cell in quotes ends at the quote that closes it; one that none closes is an inch sign.
qsizetype closingQuote(QStringView text, qsizetype open)
{
    for (qsizetype i = open + 1; i < text.size(); ++i) {
        if (text[i] != u'"')
            continue;
        if (i + 1 < text.size() && text[i + 1] == u'"')
            ++i;
        else
            return i + 1 == text.size() || text[i + 1] == u'\t' || text[i + 1] == u'\n' ? i : -1;
    }
    return -1;
}

QList<QStringList> cellsOf(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    QList<QStringList> rows{{}};
    for (qsizetype at = 0; at <= text.size();) {
        qsizetype end = at < text.size() && text[at] == u'"' ? closingQuote(text, at) : -1;
        if (end > 0) {
            QString cell = text.sliced(at + 1, end - at - 1);
            rows.back() += Trim(cell.replace(u"\"\""_s, u"\""_s).replace(u'\n', u' '));
            ++end;
        } else {
            for (end = at; end < text.size() && text[end] != u'\t' && text[end] != u'\n';)
                ++end;
            rows.back() += Trim(QStringView(text).sliced(at, end - at));
        }
        if (end < text.size() && text[end] == u'\n')
            rows += QStringList();
        at = end + 1;
    }
    return rows;
}

enum Column { Code, Quantity, Price, Remark, ColumnCount };
using Columns = std::array<qsizetype, ColumnCount>;

/// Where the columns stand, if these are captions. Of two that fit, the later one counts: a stock-take has the quantity
/// of the books before the counted one.
std::optional<Columns> captions(const QStringList& cells)
{
    static const std::array<QRegularExpression, ColumnCount> words{
        QRegularExpression(u"编码|编号|货号|条码|代码"_s), QRegularExpression(u"数量|件数"_s),
        QRegularExpression(u"价"_s), QRegularExpression(u"备注|附注|说明"_s)};
    Columns columns;
    columns.fill(-1);
    for (qsizetype i = 0; i < cells.size(); ++i)
        for (size_t column = 0; column < words.size(); ++column)
            if (cells[i].contains(words[column]))
                columns[column] = i;
    return columns[Code] < 0 || columns[Quantity] < 0 ? std::nullopt : std::optional(columns);
}

} // namespace

QList<PastedLine> pastedLines(const QString& text)
{
    const QList<QStringList> rows = cellsOf(text);
    QList<PastedLine> lines;
    Columns columns{0, 1, 2, 3};
    bool first = true;
    for (int row = 0; row < rows.size(); ++row) {
        if (rows[row].join(QString()).isEmpty())
            continue;
        if (std::exchange(first, false))
            if (const auto named = captions(rows[row])) {
                columns = *named;
                continue;
            }
        const auto cell = [&](Column column) { return rows[row].value(columns[column]); };
        lines.append({row + 1, plainWidth(cell(Code)).toUpper(), cell(Quantity), cell(Price), cell(Remark)});
    }
    return lines;
}

std::optional<double> pastedNumber(const QString& text)
{
    static const QRegularExpression shape(u"^[¥￥$]?\\s*([+-]?(\\d{1,3}(,\\d{3})+|\\d+)?(\\.\\d*)?(E[+-]?\\d+)?)$"_s);
    const QRegularExpressionMatch match = shape.match(Trim(plainWidth(text).toUpper()));
    QString number = match.captured(1).remove(u',');
    if (!number.contains(QRegularExpression(u"^[+-]?\\.?\\d"_s)))
        return std::nullopt;
    return Val(number);
}
