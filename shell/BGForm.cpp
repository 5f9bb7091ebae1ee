#include "shell/BGForm.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/picture.h"
#include "platform/widgets/style.h"

#include <QPainter>

namespace {
constexpr int captionLeft = 62; // where the caption stands on the picture, from the left

/// The background is disabled, and a plain label would grey its picture.
class PictureLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        constexpr QColor shade(0, 0, 0, 150); // a bright picture would dazzle among dark forms
        QPainter painter(this);
        painter.drawPixmap(0, 0, pixmap());
        if (style::dark())
            painter.fillRect(rect(), shade);
    }
};
} // namespace

BGForm::BGForm(QWidget* area)
    : QWidget(area)
{
    setObjectName(u"BGForm"_s);
    setProperty("caption", QString());
    Img = new PictureLabel(this);
    Img->setObjectName(u"Img"_s);
    Pic = new QWidget(this);
    Pic->setObjectName(u"Pic"_s);
    for (int i = 1; i >= 0; --i) {
        LabBig[i] = makeLabel(u"LabBig"_s, u"恒仓宁仓库管理"_s, i);
        LabBig[i]->setParent(Pic);
    }
    Lab = makeLabel(u"Lab"_s, u"仓库管理系统"_s);
    Lab->setParent(Pic);
    QFont big = font();
    big.setPixelSize(48);
    big.setBold(true);
    QFont small = font();
    small.setPixelSize(20);
    Lab->setFont(small);
    for (QLabel* label : LabBig)
        label->setFont(big);
    const auto paint = [](QLabel* label, style::Role role) {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, style::color(role));
        palette.setColor(QPalette::Disabled, QPalette::WindowText, style::color(role));
        label->setPalette(palette);
    };
    style::follow(this, [this, paint] {
        const auto text = style::dark() ? style::Role::MenuText : style::Role::MenuGround;
        paint(LabBig[0], text);
        paint(LabBig[1], style::dark() ? style::Role::MenuGround : style::Role::MenuText);
        paint(Lab, text);
    });
    setEnabled(false);
}

bool BGForm::loadPicture(const QString& path)
{
    const QImage image = readPicture(path).image;
    if (image.isNull())
        return false;
    picture_ = QPixmap::fromImage(image);
    fitTo(size());
    return true;
}

void BGForm::setBigCaption(const QString& text)
{
    for (QLabel* label : LabBig)
        label->setText(text);
    fitTo(size());
}

QString BGForm::bigCaption() const
{
    return LabBig[0]->text();
}

void BGForm::setCaptionVisible(bool visible)
{
    for (QLabel* label : {LabBig[0], LabBig[1], Lab})
        label->setVisible(visible);
}

void BGForm::fitTo(QSize size)
{
    resize(size);
    Img->setGeometry(rect());
    if (!picture_.isNull() && !size.isEmpty()) {
        const qreal ratio = devicePixelRatioF();
        const QSize dots = size * ratio;
        const QPixmap scaled = picture_.scaled(dots, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
        QPixmap shown = scaled.copy((scaled.width() - dots.width()) / 2, (scaled.height() - dots.height()) / 2,
                                    dots.width(), dots.height());
        shown.setDevicePixelRatio(ratio);
        Img->setPixmap(shown);
    }
    for (QLabel* label : {LabBig[0], LabBig[1], Lab})
        label->adjustSize();
    Pic->setGeometry(captionLeft, size.height() * 2 / 7, qMax(0, size.width() - captionLeft), 120);
    LabBig[0]->move(0, 0);
    LabBig[1]->move(2, 2);
    Lab->move(2, LabBig[0]->height() + style::spacing);
    LabBig[0]->raise();
}
