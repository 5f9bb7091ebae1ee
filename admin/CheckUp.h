#pragma once

#include "reports/list_form.h"

/// The check-up of a ledger: what in it can't be right, and what to do about it. It only reads.
class CheckUp : public ListForm
{
    Q_OBJECT

public:
    CheckUp();
    static QString formName() { return u"CheckUp"_s; }

    void Menu_run();
    void Menu_print();
    void sessionChanged() override;

    QLabel* LabSum = nullptr; ///< how much was looked at and found

protected:
    void showState() override;

private:
    qsizetype goods_ = 0;
    qsizetype documents_ = 0;
    bool toldCosts_ = false; ///< the findings on the list may name costs
};
