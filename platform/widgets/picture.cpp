#include "platform/widgets/picture.h"

#include "platform/base/files.h"
#include "platform/base/text.h"

#include <QFileInfo>
#include <QImageReader>

namespace {

constexpr qint64 largestPictureFile = 64 * 1024 * 1024;
constexpr qint64 mostPicturePixels = 60'000'000; // four bytes for each is what a decoder of the toolkit may take
constexpr int longestPictureSide = 2048;         // what is shown needs no more

} // namespace

Picture readPicture(const QString& path)
{
    const QString found = resolvedPath(path);
    const QFileInfo file(found);
    if (!file.exists())
        return {{}, u"图片文件不存在"_s};
    if (!file.isFile()) // a folder, or a device that never ends
        return {{}, u"这不是图片文件"_s};
    if (!file.isReadable())
        return {{}, u"图片文件无法读取"_s};
    if (file.size() > largestPictureFile)
        return {{}, u"图片文件太大"_s};
    QImageReader reader(found);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (!reader.canRead())
        return {{}, u"不是图片，或格式不支持"_s};
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > mostPicturePixels)
        return {{}, u"图片尺寸太大"_s};
    if (size.width() > longestPictureSide || size.height() > longestPictureSide)
        reader.setScaledSize(
            size.scaled(longestPictureSide, longestPictureSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    QImage image;
    if (!reader.read(&image))
        return {{}, u"图片文件已损坏"_s};
    return {image, {}};
}

PictureBox::PictureBox(const QString& name)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored); // the picture follows the place, not the other way round
    setMinimumSize(120, 90);
}

void PictureBox::showPicture(const Picture& picture)
{
    if (picture.image.isNull())
        return showWords(picture.trouble);
    image_ = picture.image;
    fit();
}

void PictureBox::showWords(const QString& words)
{
    image_ = {};
    setText(words);
}

void PictureBox::fit()
{
    const qreal ratio = devicePixelRatioF();
    const QSize room = contentsRect().size() * ratio;
    QImage shown = image_;
    if (image_.width() > room.width() || image_.height() > room.height())
        shown = image_.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    shown.setDevicePixelRatio(ratio);
    setPixmap(QPixmap::fromImage(shown));
}

void PictureBox::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    if (hasPicture())
        fit();
}
