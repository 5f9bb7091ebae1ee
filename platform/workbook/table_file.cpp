#include "platform/workbook/table_file.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>

#include <algorithm>
#include <map>
#include <xlsxwriter.h>

namespace {

/// The decimals of a text that is a number and nothing else; -1 for all others. Codes with zeros in front and numbers
/// beyond what a sheet keeps exactly are none.
int decimalsOf(const QString& text)
{
    static const QRegularExpression number(u"^-?(?:0|[1-9][0-9]*)(?:\\.([0-9]+))?$"_s);
    constexpr qsizetype longest = 15;
    const QRegularExpressionMatch match = number.match(text);
    if (!match.hasMatch() || text.size() > longest)
        return -1;
    return int(match.capturedLength(1));
}

// ---- text separated by commas

/// A spreadsheet takes a text that begins so for a formula and runs it; the apostrophe keeps it a text, as it does in
/// the spreadsheet's own cells.
QString withoutFormula(const QString& text)
{
    const bool formula = text.size() > 1 && u"=+-@\t\r"_s.contains(text[0]) && decimalsOf(text) < 0;
    return formula ? u'\'' + text : text;
}

QString csvCell(QString text)
{
    text = withoutFormula(text);
    static const QString special = u",\"\r\n"_s;
    for (const QChar c : special)
        if (text.contains(c))
            return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
    return text;
}

QString csvLine(const QStringList& cells)
{
    QStringList parts;
    for (const QString& cell : cells)
        parts.append(csvCell(cell));
    return parts.join(u',') + u"\r\n"_s;
}

QByteArray csvBytes(const TableContent& table)
{
    QByteArray bytes("\xEF\xBB\xBF");
    for (const QString& line : table.heading)
        bytes += csvLine({line}).toUtf8();
    bytes += csvLine(table.captions).toUtf8();
    for (const QStringList& row : table.rows)
        bytes += csvLine(row).toUtf8();
    return bytes;
}

// ---- workbook

QString sheetName(QString name)
{
    constexpr int longest = 31;
    static const QRegularExpression forbidden(u"[\\[\\]:*?/\\\\\\x00-\\x1f]"_s);
    static const QRegularExpression edges(u"^'+|'+$"_s);
    name = Trim(Left(Trim(name.remove(forbidden)), longest)).remove(edges);
    return name.isEmpty() || name.compare(u"History"_s, Qt::CaseInsensitive) == 0 ? u"数据"_s : name;
}

/// In digits: a Chinese character is two wide.
int textWidth(const QString& text)
{
    int width = 0;
    for (const QChar c : text)
        width += c.unicode() < 0x1100 ? 1 : 2;
    return width;
}

class SheetWriter
{
public:
    SheetWriter(lxw_workbook* workbook, const TableContent& table)
        : workbook_(workbook)
        , sheet_(workbook_add_worksheet(workbook, sheetName(table.sheet).toUtf8().constData()))
        , table_(table)
    {}

    /// False when the table has more than a sheet holds.
    bool write()
    {
        const int top = int(table_.heading.size());
        if (top + table_.rows.size() >= LXW_ROW_MAX || table_.captions.size() > LXW_COL_MAX)
            return false;
        lxw_format* header = workbook_add_format(workbook_);
        format_set_bold(header);
        format_set_bottom(header, LXW_BORDER_THIN);
        lxw_format* numberHeader = workbook_add_format(workbook_);
        format_set_bold(numberHeader);
        format_set_bottom(numberHeader, LXW_BORDER_THIN);
        format_set_align(numberHeader, LXW_ALIGN_RIGHT);
        text_ = workbook_add_format(workbook_);
        format_set_num_format_index(text_, 49); // "@": what is typed over it later stays text as well
        for (int line = 0; line < top; ++line)
            putText(line, 0, table_.heading[line], nullptr);
        QList<int> widths;
        for (int column = 0; column < table_.captions.size(); ++column) {
            putText(top, column, table_.captions[column], numeric(column) ? numberHeader : header);
            widths += textWidth(table_.captions[column]);
        }
        for (int row = 0; row < table_.rows.size(); ++row)
            for (int column = 0; column < table_.rows[row].size(); ++column) {
                const QString& text = table_.rows[row][column];
                put(top + 1 + row, column, text);
                if (column < widths.size())
                    widths[column] = std::max(widths[column], textWidth(text));
            }
        constexpr int narrowest = 8;
        constexpr int widest = 60;
        constexpr int margin = 2;
        for (int column = 0; column < widths.size(); ++column)
            worksheet_set_column(sheet_, lxw_col_t(column), lxw_col_t(column),
                                 std::clamp(widths[column] + margin, narrowest, widest), nullptr);
        worksheet_freeze_panes(sheet_, lxw_row_t(top + 1), 0);
        if (!table_.picture.isEmpty())
            worksheet_insert_image_buffer(sheet_, lxw_row_t(top + 2 + table_.rows.size()), 0,
                                          reinterpret_cast<const unsigned char*>(table_.picture.constData()),
                                          size_t(table_.picture.size()));
        return true;
    }

private:
    bool numeric(int column) const { return column < table_.numeric.size() && table_.numeric[column]; }

    void put(int row, int column, const QString& text)
    {
        if (text.isEmpty())
            return;
        const int decimals = numeric(column) ? decimalsOf(text) : -1;
        if (decimals < 0)
            putText(row, column, text, numeric(column) ? nullptr : text_);
        else
            worksheet_write_number(sheet_, lxw_row_t(row), lxw_col_t(column), text.toDouble(), ofDecimals(decimals));
    }

    void putText(int row, int column, const QString& text, lxw_format* format)
    {
        constexpr int longest = 32'767; // what a cell holds
        // A text that reads like the escape of a character would come back as that character.
        static const QRegularExpression escape(u"_(?=x[0-9A-Fa-f]{4}_)"_s);
        QString escaped = Left(text, longest);
        if (escaped.contains(u"_x"_s))
            escaped.replace(escape, u"_x005F_"_s);
        worksheet_write_string(sheet_, lxw_row_t(row), lxw_col_t(column), escaped.toUtf8().constData(), format);
    }

    /// The format that shows that many decimals, as the table did; none where there are none.
    lxw_format* ofDecimals(int decimals)
    {
        if (decimals == 0)
            return nullptr;
        lxw_format*& format = decimals_[decimals];
        if (!format) {
            format = workbook_add_format(workbook_);
            format_set_num_format(format, ("0." + QByteArray(decimals, '0')).constData());
        }
        return format;
    }

    lxw_workbook* workbook_;
    lxw_worksheet* sheet_;
    const TableContent& table_;
    lxw_format* text_ = nullptr;
    std::map<int, lxw_format*> decimals_;
};

const QString workbookFailed = u"不能生成工作簿：临时文件夹不可写，或磁盘空间不足。"_s;

/// The bytes of the workbook; "" and a reason when it can't be made. It is made in a folder of its own, as the library
/// tells a folder that can't be written to on the error output.
QByteArray workbookBytes(const TableContent& table, QString& reason)
{
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        reason = workbookFailed;
        return {};
    }
    const QString path = folder.filePath(u"table.xlsx"_s);
    QByteArray temporary = QFile::encodeName(folder.path());
    lxw_workbook_options options{};
    options.tmpdir = temporary.data();
    lxw_workbook* workbook = workbook_new_opt(QFile::encodeName(path).constData(), &options);
    const bool fits = workbook && SheetWriter(workbook, table).write();
    const bool closed = workbook && workbook_close(workbook) == LXW_NO_ERROR;
    QFile file(path);
    if (!fits)
        reason = u"数据太多，一个工作表放不下。"_s;
    else if (!closed || !file.open(QIODevice::ReadOnly))
        reason = workbookFailed;
    return reason.isEmpty() ? file.readAll() : QByteArray();
}

} // namespace

QString writeTable(const QString& path, const TableContent& table)
{
    QString reason;
    const bool workbook = path.endsWith(u".xlsx"_s, Qt::CaseInsensitive);
    const QByteArray bytes = workbook ? workbookBytes(table, reason) : csvBytes(table);
    if (!reason.isEmpty())
        return reason;
    QSaveFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
    return written ? QString() : u"不能写入文件“%1”：%2"_s.arg(path, file.errorString());
}
