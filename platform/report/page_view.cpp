#include "platform/report/page_view.h"

#include "platform/widgets/style.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr double pageUnitsPerInch = 254;
constexpr int desk = 12; // around the page
constexpr int shadow = 3;
constexpr double zoomStep = 1.2;
constexpr int wheelStep = 120;
constexpr int lineStep = 40;

} // namespace

PageView::PageView(const QString& name)
{
    setObjectName(name);
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(u"打印预览"_s);
    viewport()->setCursor(Qt::OpenHandCursor);
    setCornerWidget(new QWidget); // the style would draw a frame there
    horizontalScrollBar()->setSingleStep(lineStep);
    verticalScrollBar()->setSingleStep(lineStep);
}

void PageView::setReport(std::shared_ptr<const Report> report)
{
    report_ = std::move(report);
    page_ = 1;
    mark_ = {};
    layOut();
    emit changed();
}

void PageView::setPage(int page)
{
    const int next = std::clamp(page, 1, std::max(pageCount(), 1));
    if (next == page_)
        return;
    page_ = next;
    mark_ = {};
    verticalScrollBar()->setValue(0);
    viewport()->update();
    emit changed();
}

QSizeF PageView::paper() const
{
    return report_ ? report_->paperSize() * 10 : QSizeF(2100, 2970);
}

double PageView::trueScale() const
{
    return logicalDpiX() / pageUnitsPerInch;
}

double PageView::perUnit() const
{
    // What the viewport has when no scroll bar stands in it, else a fitted page would flicker between two sizes.
    const QSizeF room = QSizeF(maximumViewportSize()) - QSizeF(2 * desk, 2 * desk);
    const double bar = verticalScrollBar()->sizeHint().width();
    double scale = percent_ / 100 * trueScale();
    if (fit_ == Fit::Page)
        scale = std::min(room.width() / paper().width(), room.height() / paper().height());
    if (fit_ == Fit::Width) {
        scale = room.width() / paper().width();
        if (scale * paper().height() > room.height())
            scale = (room.width() - bar) / paper().width();
    }
    return std::clamp(scale, trueScale() * smallestPercent / 100, trueScale() * largestPercent / 100);
}

int PageView::percent() const
{
    return int(std::lround(perUnit() / trueScale() * 100));
}

void PageView::setFit(Fit fit)
{
    if (fit == Fit::Percent)
        percent_ = percent();
    fit_ = fit;
    layOut();
    emit changed();
}

void PageView::setPercent(int percent)
{
    fit_ = Fit::Percent;
    percent_ = std::clamp(percent, smallestPercent, largestPercent);
    layOut();
    emit changed();
}

void PageView::zoomBy(int steps)
{
    setPercent(int(std::lround(percent() * std::pow(zoomStep, steps))));
}

void PageView::layOut()
{
    const QSize view = maximumViewportSize();
    const QSize whole = (paper() * perUnit()).toSize() + QSize(2 * desk, 2 * desk);
    const QScrollBar* bars[] = {horizontalScrollBar(), verticalScrollBar()};
    // One bar takes room that may make the other one needed.
    const bool down = whole.height() > view.height() ||
                      (whole.width() > view.width() && whole.height() > view.height() - bars[0]->sizeHint().height());
    const bool across = whole.width() > view.width() - (down ? bars[1]->sizeHint().width() : 0);
    const auto set = [](QScrollBar* bar, int whole, int seen) {
        const double at = bar->maximum() > 0 ? double(bar->value()) / bar->maximum() : 0;
        bar->setPageStep(seen);
        bar->setRange(0, std::max(whole - seen, 0));
        bar->setValue(int(std::lround(at * bar->maximum())));
    };
    set(horizontalScrollBar(), whole.width(), view.width() - (down ? bars[1]->sizeHint().width() : 0));
    set(verticalScrollBar(), whole.height(), view.height() - (across ? bars[0]->sizeHint().height() : 0));
    viewport()->update();
}

/// Where the page's upper left corner is in the viewport.
QPointF PageView::corner() const
{
    const QSizeF size = paper() * perUnit();
    const auto along = [](double whole, int seen, const QScrollBar* bar) {
        return bar->maximum() > 0 ? double(desk - bar->value()) : std::floor((seen - whole) / 2);
    };
    const double y = fit_ == Fit::Page ? along(size.height(), viewport()->height(), verticalScrollBar())
                                       : double(desk - verticalScrollBar()->value());
    return {along(size.width(), viewport()->width(), horizontalScrollBar()), y};
}

void PageView::mark(const QRectF& place)
{
    mark_ = place;
    viewport()->update();
    if (place.isEmpty())
        return;
    const QRectF seen(corner() + place.topLeft() * perUnit(), place.size() * perUnit());
    const QRect view = viewport()->rect();
    if (!view.contains(seen.toRect()))
        scrollBy(int(seen.center().x()) - view.center().x(), int(seen.center().y()) - view.center().y());
}

void PageView::scrollBy(int dx, int dy)
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + dx);
    verticalScrollBar()->setValue(verticalScrollBar()->value() + dy);
}

bool PageView::turn(int by)
{
    const int before = page_;
    setPage(page_ + by);
    return page_ != before;
}

// Events --------------------------------------------------------------------------------------------------------------

void PageView::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), style::color(style::Role::ReadOnly));
    if (!report_)
        return;
    const QRectF sheet(corner(), paper() * perUnit());
    painter.fillRect(sheet.translated(shadow, shadow), style::color(style::Role::Lines));
    painter.fillRect(sheet, Qt::white); // paper is white whatever the screen's colours are
    painter.setClipRect(sheet);
    if (!mark_.isEmpty()) {
        QColor ground = style::color(style::Role::Accent);
        ground.setAlpha(70);
        painter.fillRect(QRectF(sheet.topLeft() + mark_.topLeft() * perUnit(), mark_.size() * perUnit()), ground);
    }
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.translate(sheet.topLeft());
    painter.scale(perUnit(), perUnit());
    report_->draw(painter, page_);
}

void PageView::resizeEvent(QResizeEvent*)
{
    layOut();
    emit changed(); // a fitted page has another percentage now
}

void PageView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        wheel_ += event->angleDelta().y();
        if (const int steps = wheel_ / wheelStep) {
            wheel_ -= steps * wheelStep;
            zoomBy(steps);
        }
        return event->accept();
    }
    const QScrollBar* bar = verticalScrollBar();
    const int delta = event->angleDelta().y();
    const bool atEdge = delta < 0 ? bar->value() >= bar->maximum() : bar->value() <= bar->minimum();
    if (!atEdge || delta == 0)
        return QAbstractScrollArea::wheelEvent(event);
    if (turn(delta < 0 ? 1 : -1) && delta > 0)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    event->accept();
}

void PageView::keyPressEvent(QKeyEvent* event)
{
    QScrollBar* down = verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Home:
        return setPage(1);
    case Qt::Key_End:
        return setPage(pageCount());
    case Qt::Key_PageUp:
        turn(-1);
        return;
    case Qt::Key_PageDown:
        turn(1);
        return;
    case Qt::Key_Left:
        return scrollBy(-lineStep, 0);
    case Qt::Key_Right:
        return scrollBy(lineStep, 0);
    case Qt::Key_Up:
        if (down->value() > 0)
            scrollBy(0, -lineStep);
        else if (turn(-1))
            down->setValue(down->maximum());
        return;
    case Qt::Key_Down:
        if (down->value() < down->maximum())
            scrollBy(0, lineStep);
        else
            turn(1);
        return;
    default:
        event->ignore();
    }
}

void PageView::mousePressEvent(QMouseEvent* event)
{
    dragFrom_ = event->pos();
    viewport()->setCursor(Qt::ClosedHandCursor);
}

void PageView::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPoint by = dragFrom_ - event->pos();
    scrollBy(by.x(), by.y());
    dragFrom_ = event->pos();
}

void PageView::mouseReleaseEvent(QMouseEvent*)
{
    viewport()->setCursor(Qt::OpenHandCursor);
}
