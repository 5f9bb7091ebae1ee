#pragma once

#include <QImage>
#include <QLabel>

/// A picture out of a file, or the words for the operator why there is none.
struct Picture
{
    QImage image;
    QString trouble; ///< "" when there is an image
};

/// Reads a picture, its first frame only. The content counts, not the file's name; large ones come back reduced. A path
/// as the business keeps it ("\" and any case).
Picture readPicture(const QString& path);

/// Shows a picture fitted in and never enlarged, or a few words in its place.
class PictureBox : public QLabel
{
    Q_OBJECT

public:
    explicit PictureBox(const QString& name);
    void showPicture(const Picture& picture);
    void showWords(const QString& words);
    bool hasPicture() const { return !image_.isNull(); }
    QSize sizeHint() const override { return minimumSize(); }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fit();

    QImage image_;
};
