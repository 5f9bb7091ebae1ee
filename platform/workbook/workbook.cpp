#include "platform/workbook/workbook.h"

#include "platform/base/date.h"
#include "platform/base/text.h"
#include "platform/workbook/cell_text.h"
#include "platform/workbook/xls_formats.h"
#include "platform/workbook/xlsx_reader.h"

#include <QFile>
#include <QFileInfo>

#include <freexl.h>
#include <limits>

namespace {

constexpr qint64 fileLimit = 300'000'000;

const QString locked = u"工作簿有密码保护，不能读取。请用Excel打开它，取消密码后另存再试。"_s;
const QString xlsDamaged = u"工作簿已损坏，不能读取。请用Excel打开它，另存为新文件后再试。"_s;

enum class WorkbookKind { Refused, Xls, Xlsx };

WorkbookKind kindOf(const QString& path, QString& refusal)
{
    const QFileInfo about(path);
    QFile file(path);
    if (!about.exists() || about.isDir())
        refusal = u"找不到文件“%1”。"_s.arg(path);
    else if (!file.open(QIODevice::ReadOnly))
        refusal = u"不能打开文件“%1”：%2"_s.arg(path, file.errorString());
    else if (file.size() == 0)
        refusal = u"文件“%1”是空的。"_s.arg(path);
    else if (file.size() > fileLimit)
        refusal = u"工作簿太大，不能读取。请把需要的数据复制到新的工作簿后再试。"_s;
    if (!refusal.isEmpty())
        return WorkbookKind::Refused;
    const QByteArray start = file.read(8);
    if (start.startsWith("PK\x03\x04"))
        return WorkbookKind::Xlsx;
    if (start == QByteArray::fromHex("d0cf11e0a1b11ae1"))
        return WorkbookKind::Xls;
    refusal = u"这个文件不是Excel工作簿，可能是网页或文本改了名字。请用Excel打开它，另存为“Excel工作簿”后再试。"_s;
    return WorkbookKind::Refused;
}

/// A workbook of the newer kind with a password is an archive inside a container of the older kind.
bool holdsLockedArchive(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QString name = u"EncryptedPackage"_s;
    return file.readAll().contains(
        QByteArray(reinterpret_cast<const char*>(name.utf16()), name.size() * qsizetype(sizeof(char16_t))));
}

/// A workbook of the older kind.
class XlsFile
{
public:
    explicit XlsFile(const QString& path)
        : path_(path)
    {
        if (!xlsTextsFit(path) || freexl_open(QFile::encodeName(path).constData(), &handle_) != FREEXL_OK) {
            handle_ = nullptr;
            refusal = holdsLockedArchive(path) ? locked : xlsDamaged;
            return;
        }
        if (info(FREEXL_BIFF_PASSWORD) == FREEXL_BIFF_OBFUSCATED)
            refusal = locked;
        else
            readNames();
    }
    ~XlsFile()
    {
        if (handle_)
            freexl_close(handle_);
    }
    XlsFile(const XlsFile&) = delete;
    XlsFile& operator=(const XlsFile&) = delete;

    QList<QStringList> rows(unsigned short sheet)
    {
        unsigned int count = 0;
        unsigned short columns = 0;
        if (freexl_select_active_worksheet(handle_, sheet) != FREEXL_OK ||
            freexl_worksheet_dimensions(handle_, &count, &columns) != FREEXL_OK) {
            refusal = xlsDamaged;
            return {};
        }
        const XlsFormats formats(path_);
        QList<QStringList> rows;
        for (unsigned int row = 0; row < count; ++row)
            for (unsigned short column = 0; column < columns; ++column) {
                FreeXL_CellValue value;
                if (freexl_get_cell_value(handle_, row, column, &value) != FREEXL_OK) {
                    refusal = xlsDamaged;
                    return {};
                }
                const bool number = value.type == FREEXL_CELL_INT || value.type == FREEXL_CELL_DOUBLE;
                QString text = cellText(value);
                if (number && !text.contains(u'.') && !text.startsWith(u'-'))
                    text = text.rightJustified(formats.digits(sheet, int(row), column), u'0');
                if (text.isEmpty())
                    continue;
                rows.resize(row + 1);
                rows[row].resize(column + 1);
                rows[row][column] = text;
            }
        return rows;
    }

    QStringList names;
    QString refusal;

private:
    unsigned int info(unsigned short what) const
    {
        unsigned int value = 0;
        return freexl_get_info(handle_, what, &value) == FREEXL_OK ? value : 0;
    }

    void readNames()
    {
        const unsigned int sheets = info(FREEXL_BIFF_SHEET_COUNT);
        for (unsigned int sheet = 0; sheet < sheets; ++sheet) {
            const char* name = nullptr;
            if (sheet > std::numeric_limits<unsigned short>::max() || // the library can't be asked for it
                freexl_get_worksheet_name(handle_, static_cast<unsigned short>(sheet), &name) != FREEXL_OK || !name) {
                refusal = xlsDamaged;
                return;
            }
            names += QString::fromUtf8(name);
        }
        if (names.isEmpty())
            refusal = xlsDamaged;
    }

    static QString cellText(const FreeXL_CellValue& value)
    {
        switch (value.type) {
        case FREEXL_CELL_INT:
            return QString::number(value.value.int_value);
        case FREEXL_CELL_DOUBLE:
            return plainDigits(value.value.double_value);
        case FREEXL_CELL_TEXT:
        case FREEXL_CELL_SST_TEXT:
            return QString::fromUtf8(value.value.text_value);
        case FREEXL_CELL_DATE:
        case FREEXL_CELL_DATETIME: { // padded there
            const QString text = QString::fromUtf8(value.value.text_value);
            const auto moment = parseMoment(text);
            if (!moment)
                return text;
            return moment->time() == QTime(0, 0) ? dateText(moment->date()) : momentText(*moment);
        }
        case FREEXL_CELL_TIME: {
            const QString text = QString::fromUtf8(value.value.text_value);
            return text.startsWith(u'0') ? text.mid(1) : text;
        }
        default:
            return {};
        }
    }

    QString path_;
    const void* handle_ = nullptr;
};

} // namespace

SheetNames sheetNames(const QString& path)
{
    QString refusal;
    switch (kindOf(path, refusal)) {
    case WorkbookKind::Xlsx:
        return XlsxReader(path).names();
    case WorkbookKind::Xls: {
        const XlsFile file(path);
        return {file.refusal.isEmpty() ? file.names : QStringList(), file.refusal};
    }
    case WorkbookKind::Refused:
        break;
    }
    return {{}, refusal};
}

SheetRows readSheet(const QString& path, const QString& sheet)
{
    QString refusal;
    switch (kindOf(path, refusal)) {
    case WorkbookKind::Xlsx:
        return XlsxReader(path).rows(sheet);
    case WorkbookKind::Xls: {
        XlsFile file(path);
        if (!file.refusal.isEmpty())
            return {{}, file.refusal};
        for (qsizetype i = 0; i < file.names.size(); ++i)
            if (file.names[i].compare(sheet, Qt::CaseInsensitive) == 0) {
                QList<QStringList> rows = file.rows(static_cast<unsigned short>(i));
                return file.refusal.isEmpty() ? SheetRows{std::move(rows), {}} : SheetRows{{}, file.refusal};
            }
        return {{}, u"工作簿中没有名为“%1”的工作表。"_s.arg(sheet)};
    }
    case WorkbookKind::Refused:
        break;
    }
    return {{}, refusal};
}
