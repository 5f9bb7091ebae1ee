#include "platform/report/report.h"

#include "platform/base/capitals.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double unitsPerMm = 10;
constexpr double unitsPerInch = 254;
constexpr double sidePadding = 8; // between a frame and its text
constexpr double inkPadding = 10; // above and below a text that made its row grow
constexpr int smallestFont = 6;   // where shrinking ends; legible with a glass
constexpr double paperHair = 0.5;

QFont paperFont(int size, bool bold)
{
    // The one family whose texts come out of a PDF as they went in.
    QFont font(QStringList{u"WenQuanYi Micro Hei"_s, u"WenQuanYi Zen Hei"_s, u"AR PL UMing CN"_s});
    font.setPixelSize(size);
    font.setBold(bold);
    font.setKerning(false); // widths are sums of advances
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// A zero that was staged as a text with a sign loses it.
QString withoutSignedZero(const QString& text)
{
    const QStringView digits = QStringView(text).sliced(text.startsWith(u'-') ? 1 : 0);
    const bool zero = digits.size() < text.size() && digits.contains(u'0') &&
                      std::all_of(digits.begin(), digits.end(), [](QChar c) { return c == u'0' || c == u'.'; });
    return zero ? digits.toString() : text;
}

bool breaksAnywhere(QChar c)
{
    return c.unicode() >= 0x2E80 && !c.isSurrogate();
}

bool mayNotBegin(QChar c)
{
    return QStringView(u"，。、；：！？）》」』】〕％,.;:!?)]%").contains(c);
}

double shifted(double y, const auto& rises)
{
    double result = y;
    for (const auto& rise : rises)
        if (y >= rise.edge - paperHair)
            result += rise.by;
    return result;
}

} // namespace

/// Widths of texts as sums of advances, each looked up once: a report measures every text that could wrap.
class Report::Measure
{
public:
    double advance(QStringView character, bool bold, double size)
    {
        if (character.size() > 1)
            return metrics_[bold].horizontalAdvance(character.toString()) * size / base;
        float& known = advances_[bold][character.front().unicode()];
        if (known < 0)
            known = float(metrics_[bold].horizontalAdvance(character.front()));
        return double(known) * size / base;
    }

    double width(QStringView text, bool bold, double size)
    {
        double sum = 0;
        for (qsizetype i = 0; i < text.size(); i += step(text, i))
            sum += advance(text.sliced(i, step(text, i)), bold, size);
        return sum;
    }

    static double lineHeight(double size) { return size * 1.2; }

    QStringList wrap(const QString& text, bool bold, double size, double width);

private:
    static constexpr int base = 100;

    static qsizetype step(QStringView text, qsizetype i)
    {
        return text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
    }

    std::array<QFontMetricsF, 2> metrics_{QFontMetricsF(paperFont(base, false)), QFontMetricsF(paperFont(base, true))};
    std::array<std::vector<float>, 2> advances_{std::vector<float>(65536, -1), std::vector<float>(65536, -1)};
};

/// Breaks at blanks and around Chinese characters, inside a word only where it is wider than the line.
QStringList Report::Measure::wrap(const QString& text, bool bold, double size, double width)
{
    QStringList lines;
    for (const QString& paragraph : text.split(u'\n')) {
        const QStringView view(paragraph);
        qsizetype from = 0;
        qsizetype breakAt = 0; // the last place where the line could end
        double sum = 0;
        for (qsizetype i = 0; i < view.size(); i += step(view, i)) {
            const QChar c = view[i];
            if (i > from && !mayNotBegin(c) && c != u' ' &&
                (breaksAnywhere(c) || breaksAnywhere(view[i - 1]) || view[i - 1] == u' '))
                breakAt = i;
            sum += advance(view.sliced(i, step(view, i)), bold, size);
            if (sum > width && i > from && c != u' ') {
                const qsizetype to = breakAt > from ? breakAt : i;
                lines.append(view.sliced(from, to - from).toString().trimmed());
                from = to;
                sum = this->width(view.sliced(from, i + step(view, i) - from), bold, size);
            }
        }
        lines.append(view.sliced(from).toString());
    }
    return lines;
}

Report::Report(ReportLayout layout, std::shared_ptr<const RowSource> rows, const QHash<QString, QString>& texts,
               QSizeF printersPaper, const QHash<QString, QImage>& pictures)
    : layout_(std::move(layout))
    , rows_(std::move(rows))
    , measure_(std::make_unique<Measure>())
{
    for (auto i = texts.begin(); i != texts.end(); ++i)
        texts_.insert(i.key().toLower(), i.value());
    for (auto i = pictures.begin(); i != pictures.end(); ++i)
        pictures_.insert(i.key().toLower(), i.value());
    build(printersPaper);
}

Report::Report(const Report& other, QSizeF printersPaper)
    : layout_(other.layout_)
    , rows_(other.rows_)
    , texts_(other.texts_)
    , pictures_(other.pictures_)
    , measure_(std::make_unique<Measure>())
{
    build(printersPaper);
}

void Report::build(QSizeF printersPaper)
{
    if (layout_.printersPaper && !printersPaper.isEmpty())
        layout_.paper = printersPaper * unitsPerMm;
    resolveColumns();
    findGroups();
    layOut();
}

Report::~Report() = default;

int Report::pageCount() const
{
    return int(pages_.size());
}

QSizeF Report::paperSize() const
{
    return layout_.paper / unitsPerMm;
}

void Report::resolveColumns()
{
    const QStringList columns = rows_->columns();
    const auto indexOf = [&columns](const QString& name) {
        for (int i = 0; i < columns.size(); ++i)
            if (sameText(columns[i], name))
                return i;
        return -1;
    };
    const auto resolve = [&indexOf](ReportBand& band) {
        for (ReportItem& item : band.items) {
            item.column = indexOf(item.name);
            item.unlessColumn = item.unless.isEmpty() ? -1 : indexOf(item.unless);
        }
    };
    for (ReportBand* band :
         {&layout_.reportHeader, &layout_.pageHeader, &layout_.detail, &layout_.summary, &layout_.pageFooter})
        resolve(*band);
    for (ReportGroup& group : layout_.groups) {
        group.column = indexOf(group.by);
        resolve(group.header);
        resolve(group.footer);
    }
}

void Report::findGroups()
{
    const qsizetype groups = layout_.groups.size();
    groupStarts_.resize(size_t(groups));
    breakLevels_.assign(size_t(rows_->rowCount()), int(groups));
    for (qsizetype row = 0; groups > 0 && row < rows_->rowCount(); ++row) {
        int level = 0;
        while (row > 0 && level < groups &&
               rows_->value(row, layout_.groups[level].column) == rows_->value(row - 1, layout_.groups[level].column))
            ++level;
        breakLevels_[size_t(row)] = level;
        for (int inner = level; inner < groups; ++inner)
            groupStarts_[size_t(inner)].push_back(row);
    }
}

double Report::bottom() const
{
    return layout_.paper.height() - layout_.margins.bottom() - layout_.pageFooter.height;
}

void Report::startPage(qsizetype row, int openGroups)
{
    const bool first = pages_.empty();
    pages_.push_back({{}, row, row});
    y_ = layout_.margins.top();
    rowsOnPage_ = 0;
    const qsizetype context = std::min(row, rows_->rowCount() - 1);
    if (first)
        place(layout_.reportHeader, context);
    place(layout_.pageHeader, context);
    for (int level = 0; level < openGroups; ++level)
        if (layout_.groups[level].header.repeats)
            place(layout_.groups[level].header, context);
}

void Report::place(const ReportBand& band, qsizetype row, bool blank)
{
    if (band.height <= 0)
        return;
    const double room = std::max(bottom() - y_, band.height);
    pages_.back().pieces.push_back({&band, y_, room, row, blank});
    y_ += blank ? band.height : heightOf(band, row, room);
}

/// Blank rows to the number that a form has, or as many as leave that much of the page free.
void Report::fillUp(double keepFree)
{
    const auto wanted = [&] {
        if (layout_.rowsPerPage > 0)
            return rowsOnPage_ < layout_.rowsPerPage;
        return layout_.fill && y_ + layout_.detail.height + keepFree <= bottom() + paperHair;
    };
    for (; wanted(); ++rowsOnPage_)
        place(layout_.detail, -1, true);
}

void Report::layOut()
{
    const qsizetype count = rows_->rowCount();
    const int groups = int(layout_.groups.size());
    const auto closeGroups = [&](int level, qsizetype lastRow) {
        for (int inner = groups - 1; inner >= level; --inner) {
            const ReportBand& footer = layout_.groups[inner].footer;
            if (y_ + heightOf(footer, lastRow, bottom()) > bottom() + paperHair) {
                startPage(lastRow, inner + 1);
                pages_.back().firstRow = lastRow + 1;
                pages_.back().endRow = lastRow + 1;
            }
            place(footer, lastRow);
            ++rowsOnPage_;
        }
    };
    const double room = bottom() - layout_.margins.top();
    startPage(0, 0);
    for (qsizetype row = 0; row < count; ++row) {
        const int level = breakLevels_[size_t(row)];
        bool newPage = false;
        if (row > 0 && level < groups) {
            closeGroups(level, row - 1);
            for (int inner = level; inner < groups; ++inner)
                newPage = newPage || layout_.groups[inner].newPage;
        }
        const bool last = row == count - 1;
        double needed = heightOf(layout_.detail, row, room);
        for (int inner = level; inner < groups; ++inner) // a header never stands at the foot of a page alone
            needed += heightOf(layout_.groups[inner].header, row, bottom());
        for (int inner = last ? 0 : breakLevels_[size_t(row) + 1]; inner < groups; ++inner) // nor sums at its top
            needed += heightOf(layout_.groups[inner].footer, row, bottom());
        if (last)
            needed += heightOf(layout_.summary, row, room);
        const bool full =
            layout_.rowsPerPage > 0 ? rowsOnPage_ >= layout_.rowsPerPage : y_ + needed > bottom() + paperHair;
        if (newPage || (full && rowsOnPage_ > 0)) {
            if (layout_.rowsPerPage == 0)
                fillUp(0);
            startPage(row, level);
        }
        for (int inner = level; inner < groups; ++inner)
            place(layout_.groups[inner].header, row);
        place(layout_.detail, row);
        ++rowsOnPage_;
        pages_.back().endRow = row + 1;
    }
    if (count > 0)
        closeGroups(0, count - 1);
    const double summary = heightOf(layout_.summary, count - 1, room);
    if (layout_.rowsPerPage == 0 && y_ + summary > bottom() + paperHair) {
        fillUp(0);
        startPage(count, 0);
    }
    fillUp(summary);
    place(layout_.summary, count - 1);
}

double Report::heightOf(const ReportBand& band, qsizetype row, double room) const
{
    double height = band.height;
    for (const Rise& rise : risesOf(band, row, int(pages_.size()), room))
        height += rise.by;
    return height;
}

/// Where the band is pushed apart by texts that need more lines than their place has, from top to bottom.
std::vector<Report::Rise> Report::risesOf(const ReportBand& band, qsizetype row, int page, double room) const
{
    std::vector<Rise> rises;
    if (!band.grows || band.height <= 0)
        return rises;
    struct Wish
    {
        double top;
        double bottom;
        double height;
    };
    std::vector<Wish> wishes;
    for (const ReportItem& item : band.items) {
        using Kind = ReportItem::Kind;
        if (item.kind == Kind::Line || item.kind == Kind::Box || item.kind == Kind::Page ||
            item.fit != ReportItem::Fit::Wrap)
            continue;
        const QString text = textOf(item, row, page);
        const double width = item.place.width() - (item.frame ? 2 * sidePadding : 0);
        if (double(text.size()) * item.fontSize * 1.1 <= width && !text.contains(u'\n'))
            continue; // no character is wider than that
        const QStringList lines = measure_->wrap(text, item.bold, item.fontSize, width);
        const double height = double(lines.size()) * Measure::lineHeight(item.fontSize) + inkPadding;
        if (lines.size() > 1 && height > item.place.height())
            wishes.push_back({item.place.top(), item.place.bottom(), height});
    }
    std::sort(wishes.begin(), wishes.end(), [](const Wish& a, const Wish& b) { return a.bottom < b.bottom; });
    double spare = room - band.height;
    for (const Wish& wish : wishes) {
        const double has = shifted(wish.bottom, rises) - shifted(wish.top, rises);
        const double by = std::min(wish.height - has, spare);
        if (by <= 0)
            continue;
        rises.push_back({wish.bottom, by});
        spare -= by;
    }
    return rises;
}

std::pair<qsizetype, qsizetype> Report::rangeOf(const ReportItem& item, qsizetype row, int page) const
{
    switch (item.over) {
    case ReportItem::Over::Page:
        if (page > int(pages_.size()))
            return {0, 0};
        return {pages_[size_t(page - 1)].firstRow, pages_[size_t(page - 1)].endRow};
    case ReportItem::Over::Group: {
        const auto& starts = groupStarts_[size_t(item.group)];
        const auto next = std::upper_bound(starts.begin(), starts.end(), row);
        if (next == starts.begin())
            return {0, 0};
        return {*std::prev(next), next == starts.end() ? rows_->rowCount() : *next};
    }
    case ReportItem::Over::Report:
        break;
    }
    return {0, rows_->rowCount()};
}

/// Each row counts as the item's format would show it: what stands above a sum on paper must add up to it.
double Report::sumOf(const ReportItem& item, qsizetype first, qsizetype end) const
{
    const QString mask = item.format == ReportItem::Format::Capitals ? u"0.00"_s : item.mask;
    const auto key = std::tuple(&item, first, end);
    if (const auto known = sums_.find(key); known != sums_.end())
        return known->second;
    double sum = 0;
    for (qsizetype row = first; row < end; ++row) {
        const double number = rows_->value(row, item.column).number();
        sum += mask.isEmpty() ? number : Val(Format(number, mask));
    }
    sums_.emplace(key, sum);
    return sum;
}

/// Whether what the item names in `unless` is blank. Without a row there is nothing to be told about.
bool Report::blankAt(const ReportItem& item, qsizetype row) const
{
    if (item.unlessColumn < 0)
        return Trim(texts_.value(item.unless.toLower())).isEmpty();
    return row >= 0 && Trim(rows_->value(row, item.unlessColumn).text()).isEmpty();
}

QString Report::textOf(const ReportItem& item, qsizetype row, int page) const
{
    const QString text = contentOf(item, row, page);
    return text.isEmpty() ? text : item.before + text + item.after;
}

/// Without what is put before and behind it.
QString Report::contentOf(const ReportItem& item, qsizetype row, int page) const
{
    using Kind = ReportItem::Kind;
    QString text;
    switch (item.kind) {
    case Kind::Text:
        text = item.text;
        break;
    case Kind::Field:
        if (row >= 0)
            text = formatted(item, rows_->value(row, item.column));
        break;
    case Kind::Formula:
        text = formatted(item, texts_.value(item.name.toLower(), item.text));
        break;
    case Kind::Sum: {
        const auto [first, end] = rangeOf(item, row, page);
        const double sum = sumOf(item, first, end);
        // Ten places are more than any column has, and fewer than the noise of adding up.
        text = item.format == ReportItem::Format::AsIs && !(item.blankZero && sum == 0) ? Format(sum, u"0.##########")
                                                                                        : formatted(item, sum);
        break;
    }
    case Kind::Count: {
        const auto [first, end] = rangeOf(item, row, page);
        text = plainText(double(end - first));
        break;
    }
    case Kind::RowNumber:
        if (row >= 0)
            text = plainText(double(row - rangeOf(item, row, page).first + 1));
        break;
    case Kind::Page:
        text = item.text;
        text.replace(u"{pages}"_s, plainText(pageCount()))
            .replace(u"{page}"_s, plainText(page))
            .replace(u"{today}"_s, todayText());
        break;
    case Kind::Line:
    case Kind::Box:
    case Kind::Picture:
        break;
    }
    return text;
}

QString Report::formatted(const ReportItem& item, const Value& value) const
{
    if (value.isNull() || value.text().isEmpty() || (!item.omitted.isEmpty() && value.text() == item.omitted))
        return {};
    switch (item.format) {
    case ReportItem::Format::Mask: {
        const QString text = Format(value.number(), item.mask);
        return item.blankZero && Val(text) == 0 ? QString() : text;
    }
    case ReportItem::Format::Capitals:
        return item.blankZero && value.number() == 0 ? QString() : capitals(value.number());
    case ReportItem::Format::Date:
    case ReportItem::Format::LongDate:
        if (const auto date = parseDate(value.text()))
            return item.format == ReportItem::Format::Date
                       ? dateText(*date)
                       : u"%1年%2月%3日"_s.arg(date->year()).arg(date->month()).arg(date->day());
        break; // what is no date prints as it stands
    case ReportItem::Format::AsIs:
        break;
    }
    const QString text = withoutSignedZero(value.text());
    return item.blankZero && Val(text) == 0 ? QString() : text;
}

/// The lines of a text for its place, in the largest font up to the item's own in which nothing is cut.
Report::Lines Report::linesOf(const ReportItem& item, const QString& text, double height) const
{
    const double width = item.place.width() - (item.frame ? 2 * sidePadding : 0);
    if (item.fit == ReportItem::Fit::Shrink && !text.contains(u'\n')) {
        const double needed = measure_->width(text, item.bold, item.fontSize);
        const double size = needed > width ? std::floor(item.fontSize * width / needed) : item.fontSize;
        const bool broken =
            std::any_of(text.begin(), text.end(), [](QChar c) { return c == u' ' || breaksAnywhere(c); });
        if (size >= item.fontSize * 0.6 || !broken) // half of a number would be read as a number
            return {{text}, std::max(size, double(smallestFont))};
    }
    double size = item.fontSize;
    QStringList lines = measure_->wrap(text, item.bold, size, width);
    const auto fits = [&] {
        const bool wide = std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
            return line.size() == 1 && measure_->width(line, item.bold, size) > width;
        });
        return !wide && (double(lines.size()) * Measure::lineHeight(size) <= height + paperHair);
    };
    while (size > smallestFont && lines.size() > 1 && !fits())
        lines = measure_->wrap(text, item.bold, --size, width);
    return {lines, size};
}

void Report::drawItem(QPainter& painter, const ReportItem& item, const QRectF& place, const QString& text) const
{
    using Kind = ReportItem::Kind;
    if (item.kind == Kind::Line || item.kind == Kind::Box || item.frame) {
        painter.setPen(QPen(Qt::black, item.thickness, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        if (item.kind == Kind::Line)
            painter.drawLine(place.topLeft(), place.bottomRight());
        else
            painter.drawRect(place);
    }
    if (item.kind == Kind::Picture) {
        const QImage picture = pictures_.value(item.name.toLower());
        QRectF fitted({}, QSizeF(picture.size()).scaled(place.size(), Qt::KeepAspectRatio));
        fitted.moveCenter(place.center());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        if (!picture.isNull())
            painter.drawImage(fitted, picture);
    }
    if (text.isEmpty())
        return;
    const Lines set = linesOf(item, text, place.height());
    painter.setPen(Qt::black);
    // The family has no bold face, and on a screen the toolkit makes one up that smears at small sizes.
    const bool smears = item.bold && painter.paintEngine()->type() == QPaintEngine::Raster;
    painter.setFont(paperFont(int(set.size), item.bold && !smears));
    const double lineHeight = Measure::lineHeight(set.size);
    const double height = lineHeight * double(set.lines.size());
    double y = place.top();
    if (item.alignment & Qt::AlignVCenter)
        y += (place.height() - height) / 2;
    else if (item.alignment & Qt::AlignBottom)
        y += place.height() - height;
    const double padding = item.frame ? sidePadding : 0;
    for (const QString& line : set.lines) {
        double x = place.left() + padding;
        const double spare = place.width() - 2 * padding - measure_->width(line, item.bold, set.size);
        if (item.alignment & Qt::AlignRight)
            x += spare;
        else if (item.alignment & Qt::AlignHCenter)
            x += spare / 2;
        for (const double shift : {0.0, 0.03, 0.06})
            if (shift == 0 || smears)
                painter.drawText(QPointF(x + shift * set.size, y + lineHeight * 0.8), line);
        y += lineHeight;
    }
}

/// The bands of a page from top to bottom, each item with its place on the paper: take(item, place, piece).
template <class Take>
void Report::eachPiece(int page, Take take) const
{
    const Page& sheet = pages_[size_t(page - 1)];
    const auto takeBand = [&](const Piece& piece) {
        const auto rises = piece.blank ? std::vector<Rise>() : risesOf(*piece.band, piece.row, page, piece.room);
        for (const ReportItem& item : piece.band->items) {
            if (!item.unless.isEmpty() && !blankAt(item, piece.row))
                continue;
            const double top = shifted(item.place.top(), rises);
            const double left = layout_.margins.left() + item.place.left();
            take(item, QRectF(left, piece.y + top, item.place.width(), shifted(item.place.bottom(), rises) - top),
                 piece);
        }
    };
    for (const Piece& piece : sheet.pieces)
        takeBand(piece);
    takeBand({&layout_.pageFooter, bottom(), layout_.pageFooter.height, sheet.endRow - 1, false});
}

void Report::draw(QPainter& painter, int page) const
{
    painter.save();
    painter.translate(layout_.offset);
    painter.setBrush(Qt::NoBrush);
    eachPiece(page, [&](const ReportItem& item, const QRectF& place, const Piece& piece) {
        drawItem(painter, item, place, piece.blank ? QString() : textOf(item, piece.row, page));
    });
    painter.restore();
}

std::vector<Report::PlacedText> Report::placedTexts(int page) const
{
    std::vector<PlacedText> texts;
    eachPiece(page, [&](const ReportItem& item, const QRectF& place, const Piece& piece) {
        if (const QString text = piece.blank ? QString() : textOf(item, piece.row, page); !text.isEmpty())
            texts.push_back({text, place.translated(layout_.offset)});
    });
    return texts;
}

QStringList Report::pageTexts(int page) const
{
    QStringList texts;
    for (const PlacedText& placed : placedTexts(page))
        texts.append(placed.text);
    return texts;
}

bool Report::print(QPagedPaintDevice& device, int first, int last, QSizeF paper) const
{
    const QSizeF own = paperSize();
    const QSizeF sheet = paper.isEmpty() ? own : paper;
    if (!layout_.printersPaper || !paper.isEmpty())
        device.setPageSize(QPageSize(sheet, QPageSize::Millimeter, layout_.title, QPageSize::ExactMatch));
    device.setPageMargins(QMarginsF());
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    const double fit = std::min({1.0, sheet.width() / own.width(), sheet.height() / own.height()});
    const double scale = device.logicalDpiX() / unitsPerInch * fit;
    painter.scale(scale, scale);
    for (int page = first; page <= last; ++page) {
        if (page > first && !device.newPage())
            return false;
        draw(painter, page);
    }
    return painter.end();
}

bool Report::toPdf(const QString& path) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    {
        QPdfWriter writer(&file);
        writer.setTitle(layout_.title);
        if (layout_.printersPaper)
            writer.setPageSize(QPageSize(paperSize(), QPageSize::Millimeter, layout_.title, QPageSize::ExactMatch));
        if (!print(writer, 1, pageCount()))
            return false;
    }
    return file.error() == QFileDevice::NoError && file.commit();
}
