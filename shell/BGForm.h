#pragma once

#include "admin/background.h"

#include <QLabel>
#include <QPixmap>
#include <QWidget>

/// The full-size background behind all child forms: a picture and, over a personal one, the big caption. It is
/// disabled, so that a click on it leaves the form in front alone.
class BGForm : public QWidget, public Background
{
    Q_OBJECT

public:
    explicit BGForm(QWidget* area);

    bool loadPicture(const QString& path) override;
    void setBigCaption(const QString& text) override;
    QString bigCaption() const override;
    void setCaptionVisible(bool visible) override;
    void fitTo(QSize size);

    QLabel* Img = nullptr;
    QLabel* LabBig[2] = {}; ///< the lower one is the other's shadow
    QLabel* Lab = nullptr;
    QWidget* Pic = nullptr;

private:
    QPixmap picture_;
};
