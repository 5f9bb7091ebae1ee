#include "platform/workbook/xls_formats.h"

#include "platform/base/text.h"
#include "platform/workbook/cell_text.h"

#include <QFile>
#include <QtEndian>

namespace {

/// A number of the file; 0 beyond its end.
template <class T>
T numberAt(const QByteArray& bytes, qint64 at)
{
    return at >= 0 && at + qint64(sizeof(T)) <= bytes.size() ? qFromLittleEndian<T>(bytes.constData() + at) : T(0);
}

/// The container that an older workbook stands in: a file system of sectors, each of which names its successor.
class Container
{
public:
    explicit Container(const QByteArray& bytes)
        : bytes_(bytes)
        , sectorSize_(1 << qBound(7, int(numberAt<quint16>(bytes, 30)), 16))
    {
        quint32 lists = numberAt<quint32>(bytes, 68);
        const int entries = sectorSize_ / 4;
        constexpr int entriesOfHeader = 109;
        for (int i = 0; i < entriesOfHeader; ++i)
            addTable(numberAt<quint32>(bytes, 76 + 4 * i));
        for (qint64 turn = 0; lists < lastSector && turn < sectors(); ++turn) {
            for (int i = 0; i < entries - 1; ++i)
                addTable(numberAt<quint32>(bytes, place(lists) + 4 * i));
            lists = numberAt<quint32>(bytes, place(lists) + 4 * (entries - 1));
        }
    }

    /// The stream of that name, "" if there is none; one kept among the small ones is left out, as a workbook never is.
    QByteArray stream(const QString& name) const
    {
        constexpr int entrySize = 128;
        const QByteArray folder = chain(numberAt<quint32>(bytes_, 48));
        for (qint64 at = 0; at + entrySize <= folder.size(); at += entrySize) {
            QString entry;
            for (int i = 0; i < 32 && numberAt<quint16>(folder, at + 2 * i) != 0; ++i)
                entry += QChar(numberAt<quint16>(folder, at + 2 * i));
            const quint32 size = numberAt<quint32>(folder, at + 120);
            if (entry == name && size >= numberAt<quint32>(bytes_, 56))
                return chain(numberAt<quint32>(folder, at + 116)).left(size);
        }
        return {};
    }

private:
    static constexpr quint32 lastSector = 0xfffffffa; ///< above are marks

    qint64 place(quint32 sector) const { return (qint64(sector) + 1) * sectorSize_; }
    qint64 sectors() const { return bytes_.size() / sectorSize_; }

    void addTable(quint32 sector)
    {
        if (sector >= lastSector || place(sector) >= bytes_.size() || next_.size() > sectors())
            return;
        for (int i = 0; i < sectorSize_ / 4; ++i)
            next_ += numberAt<quint32>(bytes_, place(sector) + 4 * i);
    }

    QByteArray chain(quint32 sector) const
    {
        QByteArray all;
        for (qint64 turn = 0; sector < lastSector && turn <= sectors(); ++turn) { // a damaged chain may be a circle
            all += bytes_.mid(place(sector), sectorSize_);
            sector = sector < next_.size() ? next_[sector] : lastSector;
        }
        return all;
    }

    const QByteArray& bytes_;
    int sectorSize_;
    QList<quint32> next_;
};

enum RecordType {
    EndRecord = 0x000a,
    FormatRecord = 0x041e,
    LabelRecord = 0x0204,
    StyleRecord = 0x00e0,
    SheetRecord = 0x0085,
    NumberRecord = 0x0203,
    ShortNumberRecord = 0x027e,
    ShortNumbersRecord = 0x00bd,
    FormulaRecord = 0x0006
};

struct Record
{
    int type = EndRecord;
    qint64 data = 0; ///< its place in the stream
    int size = 0;
};

/// Goes on behind the record.
Record nextRecord(const QByteArray& stream, qint64& at)
{
    if (at + 4 > stream.size())
        return {};
    const Record record{numberAt<quint16>(stream, at), at + 4, numberAt<quint16>(stream, at + 2)};
    at = record.data + record.size;
    return record;
}

quint64 cellKey(int sheet, int row, int column)
{
    return (quint64(sheet) << 32) | (quint64(row) << 16) | quint64(column);
}

/// The code in a format record: 8 or 16 bits a character.
QString formatCode(const QByteArray& stream, const Record& record)
{
    const int length = numberAt<quint16>(stream, record.data + 2);
    const bool wide = numberAt<quint8>(stream, record.data + 4) & 1;
    QString code;
    for (int i = 0; i < length && i < record.size; ++i)
        code += wide ? QChar(numberAt<quint16>(stream, record.data + 5 + 2 * i))
                     : QLatin1Char(char(numberAt<quint8>(stream, record.data + 5 + i)));
    return code;
}

/// Whether a text of that many characters, which a byte of flags stands before, ends within its record.
bool textFits(const QByteArray& stream, const Record& record, int length, int flagsAt)
{
    const bool wide = numberAt<quint8>(stream, record.data + flagsAt) & 1;
    return flagsAt + 1 + length * (wide ? 2 : 1) <= record.size;
}

} // namespace

bool xlsTextsFit(const QString& path)
{
    constexpr int longestRecord = 8224;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    const QByteArray stream = Container(bytes).stream(u"Workbook"_s);
    for (qint64 at = 0; at + 4 <= stream.size();) {
        const Record record = nextRecord(stream, at);
        const auto length = [&](int place) { return int(numberAt<quint16>(stream, record.data + place)); };
        if (record.size > longestRecord || (record.type == FormatRecord && !textFits(stream, record, length(2), 4)) ||
            (record.type == LabelRecord && !textFits(stream, record, length(6), 8)) ||
            (record.type == SheetRecord && !textFits(stream, record, numberAt<quint8>(stream, record.data + 6), 7)))
            return false;
    }
    return true;
}

XlsFormats::XlsFormats(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    const QByteArray stream = Container(bytes).stream(u"Workbook"_s);
    QHash<int, int> digitsOfFormat;
    QList<qint64> sheets;
    int style = 0;
    qint64 at = 0;
    for (Record record = nextRecord(stream, at); record.type != EndRecord; record = nextRecord(stream, at)) {
        if (record.type == FormatRecord) {
            const int digits = numberFormat(formatCode(stream, record)).digits;
            if (digits > 0)
                digitsOfFormat[numberAt<quint16>(stream, record.data)] = digits;
        } else if (record.type == StyleRecord) {
            const int digits = digitsOfFormat.value(numberAt<quint16>(stream, record.data + 2));
            if (digits > 0)
                digitsOfStyle_[style] = digits;
            ++style;
        } else if (record.type == SheetRecord) {
            sheets += numberAt<quint32>(stream, record.data);
        }
    }
    if (!digitsOfStyle_.isEmpty())
        for (int sheet = 0; sheet < sheets.size(); ++sheet)
            readCells(stream, sheets[sheet], sheet);
}

void XlsFormats::readCells(const QByteArray& stream, qint64 from, int sheet)
{
    const auto note = [&](int row, int column, int style) {
        if (const int digits = digitsOfStyle_.value(style))
            digitsOfCell_[cellKey(sheet, row, column)] = digits;
    };
    for (Record record = nextRecord(stream, from); record.type != EndRecord; record = nextRecord(stream, from)) {
        const int row = numberAt<quint16>(stream, record.data);
        const int column = numberAt<quint16>(stream, record.data + 2);
        switch (record.type) {
        case NumberRecord:
        case ShortNumberRecord:
        case FormulaRecord:
            note(row, column, numberAt<quint16>(stream, record.data + 4));
            break;
        case ShortNumbersRecord: // several cells, each a style and a number in 6 bytes; at the end the last column
            for (int i = 0; 4 + 6 * (i + 1) + 2 <= record.size; ++i)
                note(row, column + i, numberAt<quint16>(stream, record.data + 4 + 6 * i));
            break;
        default:
            break;
        }
    }
}

int XlsFormats::digits(int sheet, int row, int column) const
{
    return digitsOfCell_.value(cellKey(sheet, row, column));
}
