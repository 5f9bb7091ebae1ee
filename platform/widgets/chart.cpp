#include "platform/widgets/chart.h"

#include "platform/base/number.h"
#include "platform/widgets/controls.h"

#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QEvent>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QHorizontalBarSeries>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>
#include <QSaveFile>
#include <QToolTip>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using ChartColour = QColor (*)(style::Role);

constexpr QSize paperChart(1000, 560);
constexpr int paperChartScale = 2; ///< about 260 dots an inch over the width of a sheet
constexpr int longestPlace = 14;

QString valueText(double value)
{
    return Format(value, u"#0.###");
}

/// Room above the bars, and a scale whose steps can be read.
void fitValues(QValueAxis& axis, const ChartContent& content)
{
    double lowest = 0;
    double highest = 0;
    for (const auto* series : {&content.bars, &content.lines})
        for (const ChartContent::Series& each : *series)
            for (const double value : each.values) {
                lowest = std::min(lowest, value);
                highest = std::max(highest, value);
            }
    const double room = content.sideways ? 1.15 : 1.02; // the values are written behind the ends of the bars
    axis.setRange(lowest * room, highest * room);
    axis.applyNiceNumbers();
    const double step = (axis.max() - axis.min()) / (axis.tickCount() - 1);
    axis.setLabelFormat(step >= 1 || step == 0 ? u"%.0f"_s : u"%.2f"_s);
}

QString shortPlace(const QString& place)
{
    return place.size() > longestPlace ? place.left(longestPlace - 1) + u'…' : place;
}

QBarSet* barSet(const ChartContent::Series& series, bool reversed, const QColor& fill, const QColor& ink)
{
    auto* set = new QBarSet(series.name);
    QList<double> values = series.values;
    if (reversed)
        std::reverse(values.begin(), values.end());
    for (const double value : values)
        set->append(Val(valueText(value))); // a label shows what the set holds
    set->setColor(fill);
    set->setBorderColor(fill);
    set->setLabelColor(ink);
    return set;
}

QChart* makeChart(const ChartContent& content, ChartColour colour)
{
    using style::Role;
    const QColor ink = colour(Role::Text);
    auto* chart = new QChart;
    chart->setBackgroundRoundness(0);
    chart->setBackgroundPen(Qt::NoPen);
    chart->setBackgroundBrush(colour(Role::Field));
    chart->setMargins({6, 6, 6, 6});
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    QFont font = QApplication::font();
    QFont heading = font;
    heading.setBold(true);
    heading.setPointSizeF(font.pointSizeF() + 1.5);
    chart->setTitle(content.title);
    chart->setTitleFont(heading);
    chart->setTitleBrush(ink);

    auto* places = new QBarCategoryAxis;
    auto* values = new QValueAxis;
    QStringList names;
    for (const QString& place : content.places) { // the axis takes no name twice
        QString name = shortPlace(place);
        while (names.contains(name))
            name += u' ';
        names += name;
    }
    if (content.sideways)
        std::reverse(names.begin(), names.end());
    places->append(names);
    places->setGridLineVisible(false);
    fitValues(*values, content);
    for (QAbstractAxis* axis : {static_cast<QAbstractAxis*>(places), static_cast<QAbstractAxis*>(values)}) {
        axis->setLabelsFont(font);
        axis->setLabelsBrush(ink);
        axis->setLinePen(QPen(colour(Role::MutedText)));
        axis->setGridLinePen(QPen(colour(Role::Lines), 1, Qt::DotLine));
    }
    chart->addAxis(places, content.sideways ? Qt::AlignLeft : Qt::AlignBottom);
    chart->addAxis(values, content.sideways ? Qt::AlignBottom : Qt::AlignLeft);

    QAbstractBarSeries* bars = content.sideways ? static_cast<QAbstractBarSeries*>(new QHorizontalBarSeries)
                                                : static_cast<QAbstractBarSeries*>(new QBarSeries);
    for (const ChartContent::Series& series : content.bars)
        bars->append(barSet(series, content.sideways, colour(series.colour), ink));
    const double share = double(content.places.size()) / 10;
    bars->setBarWidth(content.sideways ? std::clamp(share, 0.2, 0.7) : 0.7); // a few would be as broad as a hand
    bars->setLabelsVisible(content.sideways);
    bars->setLabelsPosition(QAbstractBarSeries::LabelsOutsideEnd);
    bars->setLabelsPrecision(12);
    chart->addSeries(bars);
    bars->attachAxis(places);
    bars->attachAxis(values);
    QObject::connect(bars, &QAbstractBarSeries::hovered, chart, [places](bool inside, int index, QBarSet* set) {
        if (inside)
            QToolTip::showText(QCursor::pos(), places->categories().value(index) + u' ' + set->label() + u' ' +
                                                   valueText(set->at(index)));
        else
            QToolTip::hideText();
    });
    for (const ChartContent::Series& series : content.lines) {
        auto* line = new QLineSeries;
        line->setName(series.name);
        line->setPen(QPen(colour(series.colour), 2.5));
        line->setPointsVisible(true);
        for (qsizetype i = 0; i < series.values.size(); ++i)
            line->append(double(i), series.values[i]);
        chart->addSeries(line);
        line->attachAxis(places);
        line->attachAxis(values);
    }
    chart->legend()->setVisible(content.bars.size() + content.lines.size() > 1);
    chart->legend()->setAlignment(Qt::AlignBottom);
    chart->legend()->setFont(font);
    chart->legend()->setLabelColor(ink);
    return chart;
}

} // namespace

bool ChartContent::empty() const
{
    const auto nothing = [](const Series& series) {
        return std::all_of(series.values.begin(), series.values.end(), [](double value) { return value == 0; });
    };
    return places.isEmpty() ||
           (std::all_of(bars.begin(), bars.end(), nothing) && std::all_of(lines.begin(), lines.end(), nothing));
}

ChartBox::ChartBox(const QString& name)
{
    setObjectName(name);
    view_ = new QChartView;
    view_->setRenderHint(QPainter::Antialiasing);
    view_->setFocusPolicy(Qt::NoFocus);
    view_->setFrameShape(QFrame::NoFrame);
    view_->setMinimumSize(320, 240);
    none_ = makeLabel(name + u"None"_s, u"没有数据"_s);
    none_->setAlignment(Qt::AlignCenter);
    setLook(none_, LabelLook::Field);
    addWidget(none_);
    addWidget(view_);
}

void ChartBox::show(ChartContent content)
{
    content_ = std::move(content);
    draw();
}

void ChartBox::draw()
{
    setAccessibleName(content_.title);
    setCurrentWidget(content_.empty() ? static_cast<QWidget*>(none_) : view_);
    const std::unique_ptr<QChart> before(view_->chart());
    view_->setChart(content_.empty() ? new QChart : makeChart(content_, &style::color));
    view_->setBackgroundBrush(style::color(style::Role::Field));
}

/// The program may change between light and dark while the chart stands.
void ChartBox::changeEvent(QEvent* event)
{
    QStackedWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && view_)
        draw();
}

QImage ChartBox::picture() const
{
    if (content_.empty())
        return {};
    QImage image(paperChart * paperChartScale, QImage::Format_RGB32);
    image.fill(style::paperColor(style::Role::Field));
    QGraphicsScene scene;
    QChart* chart = makeChart(content_, &style::paperColor);
    scene.addItem(chart);
    chart->resize(paperChart);
    chart->layout()->activate();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, image.rect(), QRectF({}, QSizeF(paperChart)));
    return image;
}

bool ChartBox::savePicture(const QString& path) const
{
    const QImage image = picture();
    QSaveFile file(path);
    return !image.isNull() && file.open(QIODevice::WriteOnly) && image.save(&file, "png") && file.commit();
}
