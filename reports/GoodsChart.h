#pragma once

#include "reports/chart_form.h"
#include "reports/goods_history.h"

/// What went in and out of a goods item in the last twelve months, and what was left at the end of each.
class GoodsChart : public ChartForm
{
    Q_OBJECT

public:
    GoodsChart();
    static QString formName() { return u"GoodsChart"_s; }
    /// The window, with that goods item; tells the operator when the right to the stock is missing or there is no such
    /// goods item.
    /// @throws StoreError
    static void open(const QString& code);

protected:
    ChartContent chart() const override;
    Paper paper() const override;
    QString about() const override;

private:
    Listing monthly();

    QString code_;
    std::optional<GoodsHistory> history_; ///< as it was read last
    QList<GoodsMonth> months_;
};
