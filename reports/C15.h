#pragma once

#include "reports/flow_filter.h"
#include "reports/list_form.h"

class BusyProgress;

/// The flow ledger: every line of the four documents over some days, with the stock that each left behind.
class C15 : public ListForm
{
    Q_OBJECT

public:
    C15();
    static QString formName() { return u"C15"_s; }

    /// Gathers what the strip asks for and lists it.
    void generate();
    /// Stops a gathering under way; what was gathered stays.
    void cancel();
    void menu_P01(); ///< quantities
    void menu_P02(); ///< amounts

protected:
    void showState() override;
    bool queryUnload() override { return !gathering_; }
    void resizeEvent(QResizeEvent* event) override;
    QWidget* firstFocus() override;

private:
    struct Choice : FlowChoice
    {
        QString partner;     ///< code or pattern; "" for all
        QString partnerName; ///< for the paper
    };
    class Gathering;

    void readSettings();
    Choice choice();
    void gather(const Choice& choice, BusyProgress& progress);
    void print(const QString& reportFile);
    void placePanel();

    FlowFilter* filter_ = nullptr;
    QComboBox* CmbF3 = nullptr;
    QFrame* cancelfrm = nullptr;
    QPushButton* CmdCancel = nullptr;
    QAction* priceItems_[2] = {};
    Choice shown_; ///< what the list that stands was gathered for
    bool gathering_ = false;
    bool cancelled_ = false;
};
