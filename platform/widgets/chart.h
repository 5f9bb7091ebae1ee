#pragma once

#include "platform/widgets/style.h"

#include <QImage>
#include <QList>
#include <QStackedWidget>
#include <QStringList>

class QChartView;
class QLabel;

/// What a chart shows: for each place (a month, a category) a value of every series.
struct ChartContent
{
    struct Series
    {
        QString name;
        style::Role colour;
        QList<double> values; ///< one a place
    };

    QString title;
    QStringList places;
    QList<Series> bars; ///< side by side at each place
    QList<Series> lines;
    bool sideways = false; ///< bars only: from left to right, the first place at the top, the value written at its end

    /// No place, or nothing but zeros.
    bool empty() const;
};

/// A chart in the colours of the program, or the words for none. It takes no focus: what it shows must stand in a grid
/// beside it too, for those who can't tell its colours.
class ChartBox : public QStackedWidget
{
    Q_OBJECT

public:
    explicit ChartBox(const QString& name);
    void show(ChartContent content);
    const ChartContent& content() const { return content_; }
    /// The chart as it goes on paper, in dark ink on white whatever the program looks like; null when there is none.
    QImage picture() const;
    /// `picture` as a PNG file.
    /// @return false when there is none or the file can't be written; an old one is whole then
    bool savePicture(const QString& path) const;

protected:
    void changeEvent(QEvent* event) override;

private:
    using QStackedWidget::show;
    void draw();

    ChartContent content_;
    QChartView* view_ = nullptr;
    QLabel* none_ = nullptr;
};
