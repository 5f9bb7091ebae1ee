#pragma once

#include "platform/report/report.h"

#include <QAbstractScrollArea>

/// Shows one page of a report on a desk and draws no other: a report of a thousand pages opens as fast as one of two.
/// Arrows scroll and turn the page at its edge, PgUp, PgDn, Home and End turn it, the mouse drags it.
class PageView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    enum class Fit { Width, Page, Percent };

    explicit PageView(const QString& name);
    void setReport(std::shared_ptr<const Report> report);

    int page() const { return page_; } ///< from 1
    int pageCount() const { return report_ ? report_->pageCount() : 0; }
    /// The nearest page that there is, from its top.
    void setPage(int page);

    Fit fit() const { return fit_; }
    int percent() const; ///< of the paper's true size, also while it is fitted
    void setFit(Fit fit);
    void setPercent(int percent);
    void zoomBy(int steps); ///< positive: larger

    /// Marks a place of the page (tenths of a millimetre) and scrolls to it; an empty one takes the mark away.
    void mark(const QRectF& place);
    QRectF marked() const { return mark_; }

    static constexpr int smallestPercent = 20;
    static constexpr int largestPercent = 500;

signals:
    void changed(); ///< page, zoom or report

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    double perUnit() const; ///< pixels for a tenth of a millimetre
    double trueScale() const;
    QSizeF paper() const; ///< in tenths of a millimetre
    QPointF corner() const;
    void layOut();
    void scrollBy(int dx, int dy);
    bool turn(int by);

    std::shared_ptr<const Report> report_;
    int page_ = 1;
    Fit fit_ = Fit::Width;
    double percent_ = 100;
    QRectF mark_;
    QPoint dragFrom_;
    int wheel_ = 0;
};
