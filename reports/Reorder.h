#pragma once

#include "reports/list_form.h"

/// What must be bought: goods below their lowest stock, or all that have a limit, with what drafts of inbound documents
/// promise and how much is still short of the lowest and of the highest stock.
class Reorder : public ListForm
{
    Q_OBJECT

public:
    Reorder();
    static QString formName() { return u"Reorder"_s; }

    enum class Range { Short, Limited };
    void Menu_Range(Range range);
    void Menu_card(); ///< of the current row's goods
    void Menu_print();
    void sessionChanged() override;

    QLabel* LabSum = nullptr;

protected:
    void showState() override;

private:
    Listing shortages();

    Range range_ = Range::Short;
    QAction* ranges_[2] = {};
    int promised_ = 0; ///< goods in the list that drafts promise something of
};
