#include "platform/report/report.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

/// A report as a table: one column for each item of the detail band, from left to right.

namespace {

constexpr double touching = 10; // bands of texts one over the other are no further apart

double overlap(const QRectF& a, const QRectF& b)
{
    return std::min(a.right(), b.right()) - std::max(a.left(), b.left());
}

bool isWritten(const ReportItem& item)
{
    using Kind = ReportItem::Kind;
    return item.kind != Kind::Line && item.kind != Kind::Box && item.kind != Kind::Page && item.kind != Kind::Picture &&
           item.over != ReportItem::Over::Page;
}

bool isNumber(const QString& text)
{
    static const QRegularExpression number(u"^-?[0-9]+(\\.[0-9]+)?$"_s);
    return number.match(text).hasMatch();
}

QString withoutColon(const QString& text)
{
    const QString trimmed = Trim(text);
    return trimmed.endsWith(u'：') || trimmed.endsWith(u':') ? trimmed.chopped(1) : trimmed;
}

/// The columns of a report's table, and where the items of its bands belong among them.
class TableColumns
{
public:
    explicit TableColumns(const ReportLayout& layout)
    {
        for (const ReportItem& item : layout.detail.items)
            if (isColumn(item))
                items_.append(&item);
        std::stable_sort(items_.begin(), items_.end(),
                         [](const ReportItem* a, const ReportItem* b) { return a->place.left() < b->place.left(); });
    }

    static bool isColumn(const ReportItem& item)
    {
        using Kind = ReportItem::Kind;
        return item.kind == Kind::Field || item.kind == Kind::RowNumber || item.kind == Kind::Sum ||
               item.kind == Kind::Count || item.kind == Kind::Formula;
    }

    const QList<const ReportItem*>& items() const { return items_; }

    /// The column that an item adds up, else the one that it stands below; -1 for none.
    int columnOf(const ReportItem& item) const
    {
        if (item.kind == ReportItem::Kind::Sum)
            for (int i = 0; i < items_.size(); ++i)
                if (items_[i]->column == item.column && items_[i]->kind == ReportItem::Kind::Field)
                    return i;
        int best = -1;
        double widest = 0;
        for (int i = 0; i < items_.size(); ++i)
            if (const double common = overlap(items_[i]->place, item.place); common > widest) {
                widest = common;
                best = i;
            }
        return best;
    }

    /// The text right above a column, and those that stand on top of it in the same ruled head; from top to bottom.
    static QList<const ReportItem*> captionOf(const ReportItem& column, const QList<const ReportItem*>& heads)
    {
        QList<const ReportItem*> above;
        for (const ReportItem* head : heads)
            if (overlap(head->place, column.place) > std::min(head->place.width(), column.place.width()) / 2)
                above.append(head);
        std::stable_sort(above.begin(), above.end(), [](const ReportItem* a, const ReportItem* b) {
            return a->place.bottom() > b->place.bottom();
        });
        QList<const ReportItem*> caption;
        for (const ReportItem* head : std::as_const(above)) {
            const bool joined =
                caption.isEmpty() || (head->frame && caption.first()->frame &&
                                      std::abs(caption.first()->place.top() - head->place.bottom()) <= touching);
            if (!joined)
                break;
            caption.prepend(head);
        }
        return caption;
    }

private:
    QList<const ReportItem*> items_;
};

} // namespace

TableContent Report::table() const
{
    using Kind = ReportItem::Kind;
    const int page = pageCount();
    const TableColumns columns(layout_);
    const qsizetype count = rows_->rowCount();
    TableContent table;
    table.sheet = layout_.title;

    // Captions stand in the innermost band above the rows that has enough of them.
    QList<const ReportBand*> above{&layout_.pageHeader, &layout_.reportHeader};
    for (const ReportGroup& group : layout_.groups)
        above.prepend(&group.header);
    QList<const ReportItem*> heads;
    for (const ReportBand* band : std::as_const(above)) {
        heads.clear();
        for (const ReportItem& item : band->items)
            if (item.kind == Kind::Text || (item.kind == Kind::Formula && item.frame))
                heads.append(&item);
        if (heads.size() * 2 >= columns.items().size())
            break;
    }
    QList<const ReportItem*> used;
    for (const ReportItem* column : columns.items()) {
        QStringList words;
        for (const ReportItem* head : TableColumns::captionOf(*column, heads)) {
            words += Trim(textOf(*head, -1, 1));
            used += head;
        }
        const QString caption = words.join(u' ').replace(u'\n', u' ');
        table.captions += caption.isEmpty() ? column->name : caption;
        table.numeric += column->kind == Kind::RowNumber || column->kind == Kind::Sum || column->kind == Kind::Count ||
                         column->format == ReportItem::Format::Mask ||
                         (column->format == ReportItem::Format::AsIs && (column->alignment & Qt::AlignRight));
    }

    // What the head says besides: title, company, whose document it is. What stands side by side makes one line.
    for (const ReportBand* band : {&layout_.reportHeader, &layout_.pageHeader}) {
        QList<const ReportItem*> items;
        for (const ReportItem& item : band->items)
            if (isWritten(item) && !used.contains(&item))
                items.append(&item);
        std::stable_sort(items.begin(), items.end(), [](const ReportItem* a, const ReportItem* b) {
            return std::pair(a->place.top(), a->place.left()) < std::pair(b->place.top(), b->place.left());
        });
        const ReportItem* before = nullptr;
        for (const ReportItem* item : std::as_const(items)) {
            const QString text = Trim(textOf(*item, count > 0 ? 0 : -1, 1));
            if (text.isEmpty())
                continue;
            const bool beside = before && item->place.top() - before->place.top() < touching;
            if (!beside)
                table.heading += text;
            else
                table.heading.last() += (table.heading.last().endsWith(u'：') ? QString() : u"　"_s) + text;
            before = item;
        }
    }

    const auto addBand = [&](const ReportBand& band, qsizetype row) {
        QStringList cells(columns.items().size());
        QStringList words; // what has no column of its own
        for (const ReportItem& item : band.items) {
            if (!isWritten(item))
                continue;
            const QString text = textOf(item, row, page);
            if (text.isEmpty())
                continue;
            const int column = columns.columnOf(item);
            const QString number = contentOf(item, row, page);
            const bool fits = column >= 0 && table.numeric[column] && cells[column].isEmpty() && isNumber(number);
            if (!fits) {
                words += item.kind == Kind::Text ? withoutColon(text) : text;
                continue;
            }
            cells[column] = number;
            if (const QString label = withoutColon(item.before); label.size() > 1 && !words.contains(label))
                words += label;
        }
        const QString label = words.join(u"　"_s);
        if (!label.isEmpty()) {
            // The words stand in the first column that the sums leave free and that takes texts.
            int free = -1;
            for (int i = 0; i < cells.size() && free < 0; ++i)
                if (cells[i].isEmpty() && !table.numeric[i])
                    free = i;
            for (int i = 0; i < cells.size() && free < 0; ++i)
                if (cells[i].isEmpty())
                    free = i;
            if (free >= 0)
                cells[free] = label;
        }
        if (std::any_of(cells.begin(), cells.end(), [](const QString& cell) { return !cell.isEmpty(); }))
            table.rows += cells;
    };
    const int groups = int(layout_.groups.size());
    for (qsizetype row = 0; row < count; ++row) {
        const int level = breakLevels_[size_t(row)];
        for (int inner = groups - 1; row > 0 && inner >= level; --inner)
            addBand(layout_.groups[inner].footer, row - 1);
        for (int inner = level; inner < groups; ++inner)
            addBand(layout_.groups[inner].header, row);
        QStringList cells;
        for (const ReportItem* item : columns.items()) {
            const bool byPage = item->kind == Kind::RowNumber && item->over == ReportItem::Over::Page;
            cells += byPage ? plainText(double(row + 1)) : textOf(*item, row, page);
        }
        table.rows += cells;
    }
    for (int inner = groups - 1; count > 0 && inner >= 0; --inner)
        addBand(layout_.groups[inner].footer, count - 1);
    addBand(layout_.summary, count - 1);
    return table;
}
