#include "platform/report/report.h"

#include <QBuffer>
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

} // namespace

/// The columns of a report's table, and where the items of its bands belong among them. Not in the unnamed namespace,
/// as a class of the report has them.
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

class Report::TableMaker
{
public:
    explicit TableMaker(const Report& report)
        : report_(report)
        , layout_(report.layout_)
        , columns_(report.layout_)
        , count_(report.rows_->rowCount())
        , page_(report.pageCount())
    {}

    TableContent make()
    {
        table_.sheet = layout_.title;
        addCaptions();
        addHeading();
        const int groups = int(layout_.groups.size());
        for (qsizetype row = 0; row < count_; ++row) {
            const int level = report_.breakLevels_[size_t(row)];
            for (int inner = groups - 1; row > 0 && inner >= level; --inner)
                addBand(layout_.groups[inner].footer, row - 1);
            for (int inner = level; inner < groups; ++inner)
                addBand(layout_.groups[inner].header, row);
            addRow(row);
        }
        for (int inner = groups - 1; count_ > 0 && inner >= 0; --inner)
            addBand(layout_.groups[inner].footer, count_ - 1);
        addBand(layout_.summary, count_ - 1);
        addPicture();
        return std::move(table_);
    }

private:
    using Kind = ReportItem::Kind;

    /// Captions stand in the innermost band above the rows that has enough of them.
    QList<const ReportItem*> heads() const
    {
        QList<const ReportBand*> above{&layout_.pageHeader, &layout_.reportHeader};
        for (const ReportGroup& group : layout_.groups)
            above.prepend(&group.header);
        QList<const ReportItem*> heads;
        for (const ReportBand* band : std::as_const(above)) {
            heads.clear();
            for (const ReportItem& item : band->items)
                if (item.kind == Kind::Text || (item.kind == Kind::Formula && item.frame))
                    heads.append(&item);
            if (heads.size() * 2 >= columns_.items().size())
                break;
        }
        return heads;
    }

    void addCaptions()
    {
        const QList<const ReportItem*> all = heads();
        for (const ReportItem* column : columns_.items()) {
            QStringList words;
            for (const ReportItem* head : TableColumns::captionOf(*column, all)) {
                words += Trim(report_.textOf(*head, -1, 1));
                captions_ += head;
            }
            const QString caption = words.join(u' ').replace(u'\n', u' ');
            table_.captions += caption.isEmpty() ? column->name : caption;
            table_.numeric += column->kind == Kind::RowNumber || column->kind == Kind::Sum ||
                              column->kind == Kind::Count || column->format == ReportItem::Format::Mask ||
                              (column->format == ReportItem::Format::AsIs && (column->alignment & Qt::AlignRight));
        }
    }

    /// What the head says besides: title, company, whose document it is. What stands side by side makes one line.
    void addHeading()
    {
        for (const ReportBand* band : {&layout_.reportHeader, &layout_.pageHeader}) {
            QList<const ReportItem*> items;
            for (const ReportItem& item : band->items)
                if (isWritten(item) && !captions_.contains(&item))
                    items.append(&item);
            std::stable_sort(items.begin(), items.end(), [](const ReportItem* a, const ReportItem* b) {
                return std::pair(a->place.top(), a->place.left()) < std::pair(b->place.top(), b->place.left());
            });
            const ReportItem* before = nullptr;
            for (const ReportItem* item : std::as_const(items)) {
                const QString text = Trim(report_.textOf(*item, count_ > 0 ? 0 : -1, 1));
                if (text.isEmpty())
                    continue;
                const bool beside = before && item->place.top() - before->place.top() < touching;
                if (!beside)
                    table_.heading += text;
                else
                    table_.heading.last() += (table_.heading.last().endsWith(u'：') ? QString() : u"　"_s) + text;
                before = item;
            }
        }
    }

    void addRow(qsizetype row)
    {
        QStringList cells;
        for (const ReportItem* item : columns_.items()) {
            const bool byPage = item->kind == Kind::RowNumber && item->over == ReportItem::Over::Page;
            cells += byPage ? plainText(double(row + 1)) : report_.textOf(*item, row, page_);
        }
        table_.rows += cells;
    }

    /// The sums of a band in the columns that they belong to, its words in one that is left.
    void addBand(const ReportBand& band, qsizetype row)
    {
        QStringList cells(columns_.items().size());
        QStringList words; // what has no column of its own
        for (const ReportItem& item : band.items) {
            if (!isWritten(item))
                continue;
            const QString text = report_.textOf(item, row, page_);
            if (text.isEmpty())
                continue;
            const int column = columns_.columnOf(item);
            const QString number = report_.contentOf(item, row, page_);
            const bool fits = column >= 0 && table_.numeric[column] && cells[column].isEmpty() && isNumber(number);
            if (!fits) {
                words += item.kind == Kind::Text ? withoutColon(text) : text;
                continue;
            }
            cells[column] = number;
            if (const QString label = withoutColon(item.before); label.size() > 1 && !words.contains(label))
                words += label;
        }
        if (const QString label = words.join(u"　"_s); !label.isEmpty())
            if (const int free = placeForWords(cells); free >= 0)
                cells[free] = label;
        if (std::any_of(cells.begin(), cells.end(), [](const QString& cell) { return !cell.isEmpty(); }))
            table_.rows += cells;
    }

    /// The picture of the head, as large as it is on paper.
    void addPicture()
    {
        for (const ReportItem& item : layout_.reportHeader.items) {
            QImage picture = item.kind == Kind::Picture ? report_.pictures_.value(item.name.toLower()) : QImage();
            if (picture.isNull())
                continue;
            const QSizeF shown = QSizeF(picture.size()).scaled(item.place.size(), Qt::KeepAspectRatio);
            constexpr double tenthsOfMetre = 10'000; // of a millimetre
            const int dots = qRound(picture.width() * tenthsOfMetre / shown.width());
            picture.setDotsPerMeterX(dots);
            picture.setDotsPerMeterY(dots);
            QBuffer bytes(&table_.picture);
            bytes.open(QIODevice::WriteOnly);
            picture.save(&bytes, "png");
            return;
        }
    }

    /// The first column that the sums leave free, and that takes texts if there is one; -1 for none.
    int placeForWords(const QStringList& cells) const
    {
        int free = -1;
        for (int i = int(cells.size()) - 1; i >= 0; --i)
            if (cells[i].isEmpty() && (free < 0 || !table_.numeric[i] || table_.numeric[free]))
                free = i;
        return free;
    }

    const Report& report_;
    const ReportLayout& layout_;
    TableColumns columns_;
    qsizetype count_;
    int page_;
    QList<const ReportItem*> captions_; ///< the items that captions are made of
    TableContent table_;
};

TableContent Report::table() const
{
    return TableMaker(*this).make();
}
