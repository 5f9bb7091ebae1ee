#pragma once

#include <QLabel>
#include <QPixmap>
#include <QWidget>

/// The full-size background behind all child forms: a picture and, over a personal one, the big caption. It is
/// disabled, so that a click on it leaves the form in front alone.
class BGForm : public QWidget
{
    Q_OBJECT

public:
    explicit BGForm(QWidget* area);

    /// Shows that picture file, whatever its format; nothing changes when it can't be read.
    /// @return whether it could
    bool loadPicture(const QString& path);
    void setBigCaption(const QString& text);
    QString bigCaption() const;
    void setCaptionVisible(bool visible);
    void fitTo(QSize size);

    QLabel* Img = nullptr;
    QLabel* LabBig[2] = {}; ///< the lower one is the other's shadow
    QLabel* Lab = nullptr;
    QWidget* Pic = nullptr;

private:
    QPixmap picture_;
};
