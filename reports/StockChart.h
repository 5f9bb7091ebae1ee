#pragma once

#include "reports/chart_form.h"

/// What the stock is made of, by category: money at cost, quantities or numbers of goods.
class StockChart : public ChartForm
{
    Q_OBJECT

public:
    enum class Measure { Cost, Quantity, Goods };

    StockChart();
    static QString formName() { return u"StockChart"_s; }

    void Menu_By(Measure measure);

protected:
    ChartContent chart() const override;
    Paper paper() const override;
    QString about() const override;
    void showState() override;

private:
    struct Share
    {
        QString name;
        double value;
    };

    Listing byCategory();
    /// What was asked for, or quantities where the operator may not see money.
    Measure measure() const;
    static QStringView nameOf(Measure measure);

    Measure asked_ = Measure::Cost;
    QAction* measures_[3] = {};
    QList<Share> shares_; ///< of the list, in its order
};
