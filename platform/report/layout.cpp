#include "platform/report/layout.h"

#include "platform/base/files.h"

#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

constexpr double mmUnits = 10;
constexpr double ptUnits = 254.0 / 72;

class LayoutReader
{
public:
    LayoutReader(const QString& text, const QString& file)
        : xml_(text)
    {
        layout_.file = file;
    }

    std::variant<ReportLayout, LayoutFault> read();

private:
    void fail(const QString& message)
    {
        if (!xml_.hasError())
            xml_.raiseError(message);
    }
    void begin();
    QString text(QStringView name, bool needed = false);
    double number(QStringView name, std::optional<double> otherwise = {}, double least = 0, double most = 2000);
    bool flag(QStringView name, bool otherwise = false);
    qsizetype choice(QStringView name, const QStringList& values);
    void end();
    void children(const std::function<bool(QStringView)>& child);

    void readReport();
    void readPaper();
    void readSource();
    void readGroup();
    void readDetail();
    void readBand(ReportBand& band, bool grows);
    void readItems(ReportBand& band);
    std::optional<ReportItem> readItem(const ReportBand& band, ReportItem::Kind kind);
    void readFormat(ReportItem& item);
    void checkFit();

    QXmlStreamReader xml_;
    QXmlStreamAttributes attributes_;
    QString element_;
    QSet<QString> used_;
    ReportLayout layout_;
    double fontSize_ = 9;
    qint64 faultLine_ = 0; ///< where a fault lies that shows only at the end
    int openGroup_ = -1;   ///< the group whose band is being read
};

/// Takes the attributes of the element that was just opened.
void LayoutReader::begin()
{
    attributes_ = xml_.attributes();
    element_ = xml_.name().toString();
    used_.clear();
}

QString LayoutReader::text(QStringView name, bool needed)
{
    used_.insert(name.toString());
    const QString value = attributes_.value(name.toString()).toString();
    if (needed && value.isEmpty())
        fail(u"<%1>缺少属性 %2"_s.arg(element_, name));
    return value;
}

double LayoutReader::number(QStringView name, std::optional<double> otherwise, double least, double most)
{
    const QString given = text(name, !otherwise);
    if (given.isEmpty())
        return otherwise.value_or(0);
    bool good = false;
    const double value = given.toDouble(&good);
    if (good && std::isfinite(value) && value >= least && value <= most)
        return value;
    fail(u"属性 %1 应为 %2 到 %3 之间的数，现为“%4”"_s.arg(name).arg(least).arg(most).arg(given));
    return otherwise.value_or(0); // reading goes on to its end; no other number may follow from this one
}

bool LayoutReader::flag(QStringView name, bool otherwise)
{
    const QString given = text(name);
    if (!given.isEmpty() && given != u"yes" && given != u"no")
        fail(u"属性 %1 只能是 yes 或 no，现为“%2”"_s.arg(name, given));
    return given.isEmpty() ? otherwise : given == u"yes";
}

/// The index of the value in `values`, the first one where the attribute is absent.
qsizetype LayoutReader::choice(QStringView name, const QStringList& values)
{
    const QString given = text(name);
    const qsizetype index = given.isEmpty() ? 0 : values.indexOf(given);
    if (index < 0)
        fail(u"属性 %1 只能是 %2，现为“%3”"_s.arg(name, values.join(u'、'), given));
    return std::max<qsizetype>(index, 0);
}

/// A word that nobody took is a slip of the pen, and would be looked for in vain on the paper.
void LayoutReader::end()
{
    for (const QXmlStreamAttribute& attribute : std::as_const(attributes_))
        if (!used_.contains(attribute.name().toString()))
            fail(u"<%1>不认识属性 %2"_s.arg(element_, attribute.name()));
}

void LayoutReader::children(const std::function<bool(QStringView)>& child)
{
    const QString parent = element_;
    while (!xml_.hasError() && xml_.readNextStartElement()) {
        const QString name = xml_.name().toString();
        begin();
        if (!child(name))
            fail(u"<%1>里不认识<%2>"_s.arg(parent, name));
    }
}

std::variant<ReportLayout, LayoutFault> LayoutReader::read()
{
    if (xml_.readNextStartElement()) {
        begin();
        if (element_ == u"report")
            readReport();
        else
            fail(u"最外层应为<report>，现为<%1>"_s.arg(element_));
    }
    while (!xml_.hasError() && !xml_.atEnd())
        xml_.readNext();
    if (!xml_.hasError())
        return layout_;
    const bool ours = xml_.error() == QXmlStreamReader::CustomError;
    return LayoutFault{layout_.file, faultLine_ > 0 ? faultLine_ : xml_.lineNumber(),
                       ours ? xml_.errorString() : u"XML 语法有误（%1）"_s.arg(xml_.errorString())};
}

void LayoutReader::readReport()
{
    layout_.title = text(u"title");
    fontSize_ = number(u"size", 9, 4, 72);
    end();
    children([this](QStringView name) {
        if (layout_.paper.isEmpty() && name != u"paper") {
            fail(u"<paper>应在最前"_s);
            return true;
        }
        if (name == u"paper")
            readPaper();
        else if (name == u"source")
            readSource();
        else if (name == u"reportheader")
            readBand(layout_.reportHeader, true);
        else if (name == u"pageheader")
            readBand(layout_.pageHeader, true);
        else if (name == u"group")
            readGroup();
        else if (name == u"detail")
            readDetail();
        else if (name == u"summary")
            readBand(layout_.summary, true);
        else if (name == u"pagefooter")
            readBand(layout_.pageFooter, false);
        else
            return false;
        return true;
    });
    if (!xml_.hasError())
        checkFit();
}

void LayoutReader::readPaper()
{
    const QStringList names{u"A4"_s, u"A5"_s, u"241x279.4"_s, u"241x139.7"_s, u"241x93.1"_s, u"printer"_s};
    const QSizeF sizes[] = {{2100, 2970}, {1480, 2100}, {2410, 2794}, {2410, 1397}, {2410, 931}, {2100, 2970}};
    const qsizetype size = choice(u"size", names);
    layout_.paper = sizes[size];
    layout_.printersPaper = names[size] == u"printer";
    if (flag(u"landscape"))
        layout_.paper.transpose();
    layout_.margins = {number(u"left", 10) * mmUnits, number(u"top", 10) * mmUnits, number(u"right", 10) * mmUnits,
                       number(u"bottom", 10) * mmUnits};
    layout_.offset = {number(u"offsetx", 0, -50, 50) * mmUnits, number(u"offsety", 0, -50, 50) * mmUnits};
    end();
    if (layout_.margins.left() + layout_.margins.right() >= layout_.paper.width() ||
        layout_.margins.top() + layout_.margins.bottom() >= layout_.paper.height())
        fail(u"页边距比纸还大"_s);
    children([](QStringView) { return false; });
}

void LayoutReader::readSource()
{
    layout_.source.line = xml_.lineNumber();
    layout_.source.table = text(u"table");
    layout_.source.order = text(u"order");
    end();
    layout_.source.statement = xml_.readElementText().trimmed();
    if (layout_.source.table.isEmpty() == layout_.source.statement.isEmpty())
        fail(u"<source>要么有属性 table，要么有一条语句"_s);
}

void LayoutReader::readGroup()
{
    ReportGroup group;
    group.line = xml_.lineNumber();
    group.by = text(u"by", true);
    group.newPage = flag(u"newpage");
    end();
    openGroup_ = int(layout_.groups.size());
    children([&](QStringView name) {
        if (name == u"header") {
            group.header.repeats = flag(u"repeat");
            readBand(group.header, true);
        } else if (name == u"footer") {
            readBand(group.footer, true);
        } else {
            return false;
        }
        return true;
    });
    openGroup_ = -1;
    layout_.groups.append(group);
}

void LayoutReader::readDetail()
{
    layout_.rowsPerPage = int(number(u"rows", 0, 1, 500));
    layout_.fill = flag(u"fill");
    readBand(layout_.detail, layout_.rowsPerPage == 0);
}

void LayoutReader::readBand(ReportBand& band, bool grows)
{
    if (band.height > 0)
        fail(u"<%1>出现了两次"_s.arg(element_));
    band.line = xml_.lineNumber();
    band.height = number(u"height", {}, 0.1) * mmUnits;
    band.grows = grows;
    end();
    readItems(band);
}

void LayoutReader::readItems(ReportBand& band)
{
    using Kind = ReportItem::Kind;
    const QStringList names{u"text"_s,      u"field"_s, u"formula"_s, u"sum"_s, u"count"_s,
                            u"rownumber"_s, u"page"_s,  u"line"_s,    u"box"_s, u"picture"_s};
    children([&](QStringView name) {
        const qsizetype kind = names.indexOf(name);
        if (kind < 0)
            return false;
        if (const auto item = readItem(band, Kind(kind)))
            band.items.append(*item);
        return true;
    });
}

std::optional<ReportItem> LayoutReader::readItem(const ReportBand& band, ReportItem::Kind kind)
{
    using Kind = ReportItem::Kind;
    ReportItem item;
    item.kind = kind;
    item.line = xml_.lineNumber();
    const bool drawn = kind == Kind::Line || kind == Kind::Box;
    const std::optional<double> size = kind == Kind::Line ? std::optional(0.0) : std::nullopt;
    item.place = {number(u"x", 0) * mmUnits, number(u"y", 0) * mmUnits, number(u"w", size) * mmUnits,
                  number(u"h", drawn ? size : band.height / mmUnits) * mmUnits};
    item.unless = text(u"unless");
    item.thickness = number(u"thick", 0.2, 0.05, 5) * mmUnits;
    if (!drawn && kind != Kind::Picture) {
        item.fontSize = int(std::lround(number(u"size", fontSize_, 4, 72) * ptUnits));
        item.bold = flag(u"bold");
        item.frame = flag(u"frame");
        const Qt::Alignment across[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
        const Qt::Alignment down[] = {Qt::AlignVCenter, Qt::AlignTop, Qt::AlignBottom};
        item.alignment = across[choice(u"align", {u"left"_s, u"center"_s, u"right"_s})];
        item.alignment |= down[choice(u"valign", {u"middle"_s, u"top"_s, u"bottom"_s})];
        item.fit = ReportItem::Fit(choice(u"fit", {u"wrap"_s, u"shrink"_s}));
        item.before = text(u"before");
        item.after = text(u"after");
    }
    if (kind == Kind::Field || kind == Kind::Formula || kind == Kind::Sum || kind == Kind::Picture)
        item.name = text(kind == Kind::Sum ? u"field" : u"name", true);
    if (kind == Kind::Field)
        item.omitted = text(u"omit");
    if (kind == Kind::Formula)
        item.text = text(u"default");
    if (kind == Kind::Field || kind == Kind::Formula || kind == Kind::Sum)
        readFormat(item);
    if (kind == Kind::Sum || kind == Kind::Count || kind == Kind::RowNumber) {
        item.over = ReportItem::Over(choice(u"over", {u"report"_s, u"group"_s, u"page"_s}));
        if (item.over == ReportItem::Over::Group) {
            item.group = openGroup_ >= 0 ? openGroup_ : int(layout_.groups.size()) - 1;
            if (item.group < 0)
                fail(u"over=\"group\" 之前没有<group>"_s);
        }
    }
    end();
    if (kind == Kind::Text || kind == Kind::Page)
        item.text = xml_.readElementText();
    else
        children([](QStringView) { return false; });
    constexpr double slack = 0.5; // so that thirds of a width may be rounded
    const double width = layout_.paper.width() - layout_.margins.left() - layout_.margins.right();
    if (!layout_.printersPaper && item.place.right() > width + slack)
        fail(u"超出右边距：x+w 为 %1 毫米，版心只有 %2 毫米"_s.arg(item.place.right() / mmUnits).arg(width / mmUnits));
    if (item.place.bottom() > band.height + slack)
        fail(u"超出带区：y+h 为 %1 毫米，带区高 %2 毫米"_s.arg(item.place.bottom() / mmUnits)
                 .arg(band.height / mmUnits));
    if (xml_.hasError())
        return {};
    return item;
}

void LayoutReader::readFormat(ReportItem& item)
{
    item.blankZero = flag(u"blankzero");
    const QString format = text(u"format");
    if (format.isEmpty())
        return;
    if (format == u"capitals") {
        item.format = ReportItem::Format::Capitals;
    } else if (format == u"date") {
        item.format = ReportItem::Format::Date;
    } else if (format == u"longdate") {
        item.format = ReportItem::Format::LongDate;
    } else {
        item.format = ReportItem::Format::Mask;
        item.mask = format;
        const bool known =
            std::all_of(format.begin(), format.end(), [](QChar c) { return c == u'#' || c == u'0' || c == u'.'; });
        if (!known || format.count(u'.') > 1)
            fail(u"格式“%1”有误：应为 #、0 和一个点，或 capitals、date、longdate"_s.arg(format));
    }
}

void LayoutReader::checkFit()
{
    if (layout_.paper.isEmpty())
        return fail(u"缺少<paper>"_s);
    if (layout_.detail.height <= 0)
        return fail(u"缺少<detail>"_s);
    faultLine_ = layout_.detail.line;
    if (layout_.rowsPerPage > 0 && !layout_.groups.isEmpty())
        return fail(u"<detail>的 rows 不能与<group>同用"_s);
    if (layout_.printersPaper) {
        faultLine_ = 0;
        return;
    }
    const double room = layout_.paper.height() - layout_.margins.top() - layout_.margins.bottom();
    double needed = layout_.reportHeader.height + layout_.pageHeader.height + layout_.pageFooter.height +
                    layout_.detail.height * std::max(layout_.rowsPerPage, 1);
    for (const ReportGroup& group : std::as_const(layout_.groups))
        needed += group.header.height;
    if (layout_.rowsPerPage > 0)
        needed += layout_.summary.height;
    if (needed > room + 0.5)
        return fail(u"一页放不下：各带区共需 %1 毫米，版心高 %2 毫米"_s.arg(needed / mmUnits).arg(room / mmUnits));
    faultLine_ = 0;
}

} // namespace

QString LayoutFault::text() const
{
    return line > 0 ? u"报表文件 %1 第 %2 行：%3。"_s.arg(file).arg(line).arg(message)
                    : u"报表文件 %1：%2。"_s.arg(file, message);
}

std::variant<ReportLayout, LayoutFault> readLayout(const QString& path)
{
    const auto lines = readLines(path);
    if (!lines)
        return LayoutFault{fileNameOf(path), 0, u"读不出来，或者不是文本文件"_s};
    return parseLayout(lines->join(u'\n'), fileNameOf(path));
}

std::variant<ReportLayout, LayoutFault> parseLayout(const QString& text, const QString& file)
{
    return LayoutReader(text, file).read();
}

std::optional<LayoutFault> missingColumn(const ReportLayout& layout, const QStringList& columns)
{
    const auto known = [&columns](const QString& name) {
        return std::any_of(columns.begin(), columns.end(), [&](const QString& c) { return sameText(c, name); });
    };
    const auto fault = [&layout](qint64 line, const QString& name) {
        return LayoutFault{layout.file, line, u"数据里没有列 %1"_s.arg(name)};
    };
    QList<const ReportBand*> bands{&layout.reportHeader, &layout.pageHeader};
    for (const ReportGroup& group : layout.groups) {
        if (!known(group.by))
            return fault(group.line, group.by);
        bands += {&group.header, &group.footer};
    }
    bands += {&layout.detail, &layout.summary, &layout.pageFooter};
    for (const ReportBand* band : std::as_const(bands))
        for (const ReportItem& item : band->items)
            if ((item.kind == ReportItem::Kind::Field || item.kind == ReportItem::Kind::Sum) && !known(item.name))
                return fault(item.line, item.name);
    return {};
}
