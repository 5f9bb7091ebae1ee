#pragma once

#include "platform/base/status.h"

#include <QList>
#include <QWidget>

class QLabel;
class QProgressBar;

/// The panels of the main window's status bar: labels named "StB(1)" to "StB(4)", the last one taking the width that is
/// left, and at the right end "LabSelection" for the rows that are selected in a list. Stands in a QStatusBar by
/// `addWidget(panels, 1)`.
class StatusPanels : public QWidget
{
    Q_OBJECT

public:
    explicit StatusPanels(int count = 4, QWidget* parent = nullptr);

    /// Panels count from 1; others are ignored, reading one gives "". A text is repainted at once, since long work
    /// writes its progress here without a turn of the event loop.
    void setText(int panel, const QString& text);
    QString text(int panel) const;
    void setToolTip(int panel, const QString& text);

    /// The host that lets procedures without a window write here; it outlives the panels and is silent then.
    StatusHost host();

signals:
    void clicked(int panel);

private:
    QLabel* label(int panel) const;

    void showProgress(qint64 done, qint64 total);

    QList<QLabel*> labels_;
    QLabel* selection_ = nullptr;
    QProgressBar* bar_ = nullptr; ///< over the end of the last panel while long work goes on
};
