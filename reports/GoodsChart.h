#pragma once

#include "reports/chart_form.h"
#include "reports/goods_history.h"

/// What went in and out of a goods item in twelve months, the last ones at first, and what was left at the end of each.
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
    /// The twelve months before those that show, or behind them; not beyond the first document or the present.
    void Menu_step(int years);

protected:
    ChartContent chart() const override;
    Paper paper() const override;
    QString about() const override;
    void showState() override;

private:
    Listing monthly();
    bool canStep(int years) const;

    QString code_;
    int yearsBack_ = 0;                   ///< how far what shows ends before the present month
    std::optional<GoodsHistory> history_; ///< as it was read last
    QList<GoodsMonth> months_;
    QAction* steps_[2] = {}; ///< back, forth
};
