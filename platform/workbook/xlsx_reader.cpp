#include "platform/workbook/xlsx_reader.h"

#include "platform/base/date.h"
#include "platform/base/text.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QXmlStreamReader>

#include <zip.h>

namespace {

constexpr qint64 unpackedLimit = 600'000'000; ///< of all parts together; a small file can claim any size
constexpr qint64 cellLimit = 6'000'000;
constexpr int lastRow = 1'048'576;
constexpr int lastColumn = 16'384;

const QString xlsxDamaged = u"工作簿已损坏，不能读取。请用Excel打开它，另存为新文件后再试。"_s;
const QString xlsxTooLarge = u"工作簿太大，不能读取。请把需要的数据复制到新的工作簿后再试。"_s;

/// A path within the archive; targets are relative to the folder of the part that names them, or absolute.
QString archivePath(const QString& fromPart, const QString& target)
{
    const QString path = target.startsWith(u'/') ? target : u'/' + fromPart.section(u'/', 0, -2) + u'/' + target;
    return QDir::cleanPath(path).remove(0, 1);
}

/// Characters that XML can't hold stand as _x000D_; an underscore that would read so as _x005F_.
QString unescaped(QString text)
{
    constexpr int length = 7;
    for (qsizetype at = text.indexOf(u"_x"_s); at >= 0 && at + length <= text.size();
         at = text.indexOf(u"_x"_s, at + 1)) {
        bool hexadecimal = false;
        const ushort code = QStringView(text).mid(at + 2, 4).toUShort(&hexadecimal, 16);
        if (hexadecimal && text[at + length - 1] == u'_')
            text.replace(at, length, QChar(code));
    }
    return text;
}

/// The text inside an element that holds runs: all `t`, but none of the pronunciation (`rPh`). Ends behind the element.
QString richText(QXmlStreamReader& xml)
{
    QString text;
    for (int depth = 1; depth > 0 && !xml.atEnd();) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            if (xml.name() == u"rPh")
                xml.skipCurrentElement();
            else if (xml.name() == u"t")
                text += xml.readElementText(QXmlStreamReader::IncludeChildElements);
            else
                ++depth;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return unescaped(text);
}

/// The column of a reference such as "AB12", from 0; the row goes to `row`, from 1. False when it is none.
bool readReference(QStringView reference, int& row, int& column)
{
    qsizetype at = 0;
    int letters = 0;
    for (; at < reference.size() && reference[at] >= u'A' && reference[at] <= u'Z' && letters <= lastColumn; ++at)
        letters = letters * 26 + (reference[at].unicode() - u'A' + 1);
    bool number = false;
    row = reference.mid(at).toInt(&number);
    column = letters - 1;
    return at > 0 && number && row >= 1 && row <= lastRow && letters <= lastColumn;
}

/// "2004-01-05T09:05:03" as the sheets of some writers have it.
QString isoText(const QString& iso)
{
    const QDateTime moment = QDateTime::fromString(iso, Qt::ISODate);
    if (!moment.isValid())
        return iso;
    return moment.time() == QTime(0, 0) ? dateText(moment.date()) : momentText(moment);
}

bool isTrue(QStringView flag)
{
    return flag == u"1" || flag == u"true";
}

} // namespace

XlsxReader::XlsxReader(const QString& path)
{
    archive_ = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, nullptr);
    if (!archive_)
        refuse(xlsxDamaged);
}

XlsxReader::~XlsxReader()
{
    if (archive_)
        zip_discard(archive_);
}

void XlsxReader::refuse(const QString& why)
{
    if (refusal_.isEmpty())
        refusal_ = why;
}

/// A part, unpacked; "" and a refusal when it can't be had.
QByteArray XlsxReader::part(const QString& name, bool required)
{
    if (!refusal_.isEmpty())
        return {};
    zip_stat_t about;
    if (zip_stat(archive_, name.toUtf8().constData(), ZIP_FL_NOCASE, &about) != 0) {
        if (required)
            refuse(xlsxDamaged);
        return {};
    }
    if (about.encryption_method != ZIP_EM_NONE) {
        refuse(u"工作簿有密码保护，不能读取。请用Excel打开它，取消密码后另存再试。"_s);
        return {};
    }
    unpacked_ += qint64(qMin<zip_uint64_t>(about.size, unpackedLimit + 1));
    if (unpacked_ > unpackedLimit) {
        refuse(xlsxTooLarge);
        return {};
    }
    QByteArray bytes(qsizetype(about.size), Qt::Uninitialized);
    zip_file_t* file = zip_fopen_index(archive_, about.index, 0);
    bool whole = file;
    if (file) {
        // One byte more than announced must not come; the checksum is only looked at by a read that meets the end.
        whole = zip_fread(file, bytes.data(), about.size) == zip_int64_t(about.size);
        char more = 0;
        whole = whole && zip_fread(file, &more, 1) == 0;
        whole = zip_fclose(file) == 0 && whole;
    }
    if (!whole) {
        refuse(xlsxDamaged);
        return {};
    }
    return bytes;
}

/// What a part refers to, by the identifiers that it uses.
QHash<QString, XlsxReader::Link> XlsxReader::links(const QString& ofPart)
{
    const qsizetype name = ofPart.lastIndexOf(u'/') + 1;
    const QByteArray bytes = part(Left(ofPart, name) + u"_rels/"_s + ofPart.mid(name) + u".rels"_s);
    QHash<QString, Link> found;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"Relationship") {
            const QXmlStreamAttributes attributes = xml.attributes();
            // Two editions of the standard name the types differently but for their ends.
            found.insert(attributes.value(u"Id"_s).toString(),
                         {attributes.value(u"Type"_s).toString().section(u'/', -1),
                          archivePath(ofPart, attributes.value(u"Target"_s).toString())});
        }
    if (xml.hasError())
        refuse(xlsxDamaged);
    return found;
}

bool XlsxReader::openWorkbook()
{
    if (!refusal_.isEmpty())
        return false;
    QString workbook;
    if (zip_name_locate(archive_, "_rels/.rels", ZIP_FL_NOCASE) >= 0)
        for (const Link& link : links({}))
            if (link.type == u"officeDocument")
                workbook = link.part;
    if (refusal_.isEmpty() && (workbook.isEmpty() || !workbook.endsWith(u".xml"_s))) {
        refuse(
            u"这个文件不是可以读取的Excel工作簿。请用Excel打开它，另存为“Excel工作簿(.xlsx)”或“Excel 97-2003(.xls)”。"_s);
        return false;
    }
    const QByteArray bytes = part(workbook);
    const QHash<QString, Link> linked = links(workbook);
    for (const Link& link : linked) {
        if (link.type == u"sharedStrings")
            stringsPart_ = link.part;
        else if (link.type == u"styles")
            stylesPart_ = link.part;
    }
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.name() == u"workbookPr") {
            epoch1904_ = isTrue(attributes.value(u"date1904"_s));
        } else if (xml.name() == u"sheet") {
            QString id;
            for (const QXmlStreamAttribute& attribute : attributes)
                if (attribute.name() == u"id") // in the namespace of relationships, whose prefix is the writer's choice
                    id = attribute.value().toString();
            const Link link = linked.value(id);
            if (link.type == u"worksheet")
                sheets_.append({attributes.value(u"name"_s).toString(), link.part});
        }
    }
    if (xml.hasError() || sheets_.isEmpty())
        refuse(xlsxDamaged);
    return refusal_.isEmpty();
}

QStringList XlsxReader::sharedStrings(const QString& name)
{
    QStringList strings;
    if (name.isEmpty())
        return strings;
    const QByteArray bytes = part(name);
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"si")
            strings += richText(xml);
    if (xml.hasError())
        refuse(xlsxDamaged);
    return strings;
}

/// The number format of each cell style.
QList<NumberFormat> XlsxReader::styles(const QString& name)
{
    QList<NumberFormat> found;
    if (name.isEmpty())
        return found;
    const QByteArray bytes = part(name);
    QHash<int, NumberFormat> custom;
    bool ofCells = false; // the same elements also describe named styles
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (xml.name() == u"cellXfs") {
            ofCells = token == QXmlStreamReader::StartElement;
        } else if (token == QXmlStreamReader::StartElement && xml.name() == u"numFmt") {
            custom.insert(xml.attributes().value(u"numFmtId"_s).toInt(),
                          numberFormat(xml.attributes().value(u"formatCode"_s)));
        } else if (token == QXmlStreamReader::StartElement && ofCells && xml.name() == u"xf") {
            const int id = xml.attributes().value(u"numFmtId"_s).toInt();
            found += custom.contains(id) ? custom.value(id) : builtInFormat(id);
        }
    }
    if (xml.hasError())
        refuse(xlsxDamaged);
    return found;
}

/// The text of the cell that begins here; ends behind it.
QString XlsxReader::cell(QXmlStreamReader& xml)
{
    const QString type = xml.attributes().value(u"t"_s).toString();
    const int style = xml.attributes().value(u"s"_s).toInt();
    QString value;
    QString text;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"v")
            value = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        else if (xml.name() == u"is")
            text = richText(xml);
        else
            xml.skipCurrentElement();
    }
    if (type == u"inlineStr")
        return text;
    if (type == u"str")
        return unescaped(value);
    if (type == u"s") {
        bool number = false;
        const int index = value.toInt(&number);
        if (!value.isEmpty() && (!number || index < 0 || index >= strings_.size()))
            refuse(xlsxDamaged);
        return strings_.value(index);
    }
    if (type == u"b")
        return isTrue(value) ? u"1"_s : u"0"_s;
    if (type == u"d")
        return isoText(value);
    bool number = false;
    const double amount = value.toDouble(&number);
    if (type == u"e" || !number)
        return value; // a fault as the sheet shows it, such as #N/A
    return numberText(amount, styles_.value(style), epoch1904_);
}

QList<QStringList> XlsxReader::cells(const QString& name)
{
    QList<QStringList> rows;
    const QByteArray bytes = part(name);
    qint64 count = 0;
    int row = 0; // from 1; 0 before the first
    int column = 0;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd() && refusal_.isEmpty()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"row") {
            const QStringView number = xml.attributes().value(u"r"_s);
            row = number.isEmpty() ? row + 1 : number.toInt();
            column = 0;
        } else if (xml.name() == u"c") {
            const QString reference = xml.attributes().value(u"r"_s).toString();
            if (!reference.isEmpty() && !readReference(reference, row, column))
                refuse(xlsxDamaged);
            const QString text = cell(xml);
            if (row < 1 || row > lastRow || column >= lastColumn)
                refuse(xlsxDamaged);
            if (!text.isEmpty() && refusal_.isEmpty()) {
                if (rows.size() < row)
                    rows.resize(row);
                QStringList& cells = rows[row - 1];
                if (cells.size() <= column) {
                    count += column + 1 - cells.size();
                    cells.resize(column + 1);
                }
                cells[column] = text;
                if (count > cellLimit)
                    refuse(xlsxTooLarge);
            }
            ++column;
        }
    }
    if (xml.hasError())
        refuse(xlsxDamaged);
    return rows;
}

SheetNames XlsxReader::names()
{
    if (!openWorkbook())
        return {{}, refusal_};
    QStringList names;
    for (const Sheet& sheet : sheets_)
        names += sheet.name;
    return {names, {}};
}

SheetRows XlsxReader::rows(const QString& sheet)
{
    if (!openWorkbook())
        return {{}, refusal_};
    for (const Sheet& one : sheets_)
        if (one.name.compare(sheet, Qt::CaseInsensitive) == 0) {
            strings_ = sharedStrings(stringsPart_);
            styles_ = styles(stylesPart_);
            QList<QStringList> rows = cells(one.part);
            return refusal_.isEmpty() ? SheetRows{std::move(rows), {}} : SheetRows{{}, refusal_};
        }
    return {{}, u"工作簿中没有名为“%1”的工作表。"_s.arg(sheet)};
}
