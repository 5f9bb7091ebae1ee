#include "platform/base/text.h"

#include <QBuffer>
#include <QDataStream>
#include <QDir>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QSaveFile>

#include <array>
#include <cstdio>
#include <vector>

/// Draws the pictures that stand beside the program: the background of the main window and the icon of ledger files.
/// Usage: make_pictures FOLDER ICONS, the latter for the icon in the sizes that desktops install. Nothing here writes
/// text, so it needs neither a display nor a font.

namespace {

/// Shelves of a store seen from the front. A digit is a box, the greater the taller and darker; a blank is an empty
/// place.
constexpr std::array<const char*, 4> shelves = {
    " 2143 4 141254",
    "323 143241 3422",
    "142342 13254131",
    "45 4321432 3254",
};

QImage backgroundPicture()
{
    constexpr QSize size(1920, 1080);
    constexpr double pitch = 87, boxWidth = 75, shelfHeight = 93, rightMargin = 54, bottomMargin = 96;

    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient light(0, size.height() * 0.2, size.width(), size.height() * 0.8);
    light.setColorAt(0, QColor(0xe2e9f2));
    light.setColorAt(0.5, QColor(0xcbdae8));
    light.setColorAt(1, QColor(0xb6cae1));
    painter.fillRect(picture.rect(), light);

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (std::size_t row = 0; row < shelves.size(); ++row) {
        const QByteArrayView shelf(shelves[row]);
        const double foot = size.height() - bottomMargin - shelfHeight * double(shelves.size() - 1 - row);
        for (qsizetype column = 0; column < shelf.size(); ++column) {
            if (shelf[column] == ' ')
                continue;
            const int step = shelf[column] - '0';
            const double height = 46 + 6.0 * step;
            const double left = size.width() - rightMargin - pitch * double(shelf.size() - column) + (pitch - boxWidth);
            QColor colour = step % 2 == 0 ? QColor(0x7fa6cf) : QColor(0x86a3c4);
            colour.setAlpha(34 + 14 * step);
            painter.setBrush(colour);
            painter.drawRoundedRect(QRectF(left, foot - height, boxWidth, height), 4, 4);
        }
    }
    return picture;
}

/// A bound book with a label and ruled lines, drawn on a field of 64 by 64.
QImage ledgerIcon(int size)
{
    QImage icon(size, size, QImage::Format_ARGB32);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size / 64.0, size / 64.0);

    painter.setBrush(QColor(0x22466b)); // back cover
    painter.drawRoundedRect(QRectF(8, 4, 50, 56), 5, 5);
    painter.setBrush(QColor(0xf4f7fb)); // edge of the pages
    painter.drawRect(QRectF(14, 52, 42, 5));
    QLinearGradient cover(0, 4, 0, 54);
    cover.setColorAt(0, QColor(0x3583c8));
    cover.setColorAt(1, QColor(0x1f6fb8));
    painter.setBrush(cover);
    QPainterPath front;
    front.addRoundedRect(QRectF(8, 4, 50, 49), 5, 5);
    painter.drawPath(front);
    painter.setBrush(QColor(0x22466b)); // spine
    painter.setClipPath(front);
    painter.drawRect(QRectF(8, 4, 8, 49));
    painter.setClipping(false);
    painter.setBrush(QColor(0xffffff)); // label
    painter.drawRoundedRect(QRectF(22, 13, 30, 28), 2, 2);
    painter.setBrush(QColor(0x9fb8d3));
    if (size < 32) { // below that, ruled lines run together
        painter.drawRect(QRectF(26, 20, 22, 4));
        painter.drawRect(QRectF(26, 30, 22, 4));
    } else {
        for (const double top : {18.0, 25.0, 32.0}) {
            painter.drawRect(QRectF(26, top, 12, 3));
            painter.drawRect(QRectF(41, top, 7, 3));
        }
    }
    return icon;
}

QByteArray asPng(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

/// An icon file with one PNG a size; the toolkit's own writer puts a single size into a file.
QByteArray asIcon(std::initializer_list<int> sizes)
{
    struct Entry
    {
        int size;
        QByteArray png;
    };
    std::vector<Entry> entries;
    for (const int size : sizes)
        entries.push_back({size, asPng(ledgerIcon(size))});

    constexpr quint32 headerSize = 6, entrySize = 16;
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0) << quint16(1) << quint16(entries.size());
    quint32 offset = headerSize + entrySize * quint32(entries.size());
    for (const Entry& entry : entries) {
        const auto side = quint8(entry.size); // 256 is told as 0
        out << side << side << quint8(0) << quint8(0) << quint16(1) << quint16(32) << quint32(entry.png.size())
            << offset;
        offset += quint32(entry.png.size());
    }
    for (const Entry& entry : entries)
        out.writeRawData(entry.png.constData(), int(entry.png.size()));
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    std::fprintf(stderr, "make_pictures: %s: %s\n", qUtf8Printable(path), qUtf8Printable(file.errorString()));
    return false;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::fputs("usage: make_pictures FOLDER ICONS\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const QDir icons(QString::fromLocal8Bit(argv[2]));
    bool written = writeFile(folder.filePath(u"syspic.dat"_s), asPng(backgroundPicture())) &&
                   writeFile(folder.filePath(u"zb.ico"_s), asIcon({16, 24, 32, 48, 64, 256}));
    for (const int size : {48, 128, 256})
        written = written && writeFile(icons.filePath(u"icon%1.png"_s.arg(size)), asPng(ledgerIcon(size)));
    return written ? 0 : 1;
}
