#pragma once

#include "reports/flow_filter.h"
#include "reports/list_form.h"

/// Quantities of the goods over any days: opening, movements, closing, worked backwards from the live stock.
class C18 : public ListForm
{
    Q_OBJECT

public:
    enum class Price { Cost, Sale };

    C18();
    static QString formName() { return u"C18"_s; }

    /// Makes the report that the strip asks for.
    void generate();
    /// The report that stands, with that price.
    void Menu_price(Price price);
    void Menu_print();

    void sessionChanged() override;

protected:
    void showState() override;
    QWidget* firstFocus() override;

private:
    Price price() const;
    void report(const std::optional<FlowChoice>& choice, Price price);

    FlowFilter* filter_ = nullptr;
    std::optional<FlowChoice> shown_; ///< what the report that stands was asked for
    QMenu* prices_ = nullptr;
    QAction* priceItems_[2] = {};
};
