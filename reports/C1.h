#pragma once

#include "reports/list_form.h"

/// What is in stock, at sale price or at cost, and the two stock alarms.
class C1 : public ListForm
{
    Q_OBJECT

public:
    /// What the list opens with; the alarms of the program's start hand their number over.
    enum class Mode { Stock = 0, LowAlarm = 1, HighAlarm = 2 };
    enum class Price { Cost, Sale };

    static QString formName() { return u"C1"_s; }
    /// The window that menu item and high alarm share: made at first use; one that is there goes to an alarm that is
    /// asked for, and otherwise keeps its list.
    static C1& theWindow(Mode mode = Mode::Stock);
    /// A window of its own, as the low alarm at start has it: the menu item doesn't find it.
    static C1& newWindow(Mode mode);

    void Menu_Bellow();   ///< goods below their safety stock, at sale price
    void Menu_Morethan(); ///< goods above their highest stock, at sale price
    /// All goods, at that price; the operator's conditions stay in force.
    void Menu_Price(Price price);
    void Menu_print();
    void Menu_card(); ///< of the current row's goods
    void Menu_flow(); ///< in and out of the current row's goods, as a chart

    void sessionChanged() override;

protected:
    QList<QueryField> queryFields() const override;
    QString queryCaption() const override;
    void showState() override;

private:
    explicit C1(Mode mode);
    void start(Mode mode);
    bool costShown() const;
    QString currentCode() const;

    bool apart_ = false;
    bool sawCost_ = gCanSeeCost; ///< the operator of the present list may see the cost
    QMenu* prices_ = nullptr;
    QAction* priceItems_[2] = {};
};
