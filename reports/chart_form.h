#pragma once

#include "platform/widgets/chart.h"
#include "reports/list_form.h"

/// A list with its figures as a chart beside it. The chart is made of what the operator may see of the list; it can be
/// printed with the list, copied, and saved as a picture.
class ChartForm : public ListForm
{
    Q_OBJECT

public:
    void Menu_print();
    void Menu_copy(); ///< the picture, on the clipboard
    void Menu_save(); ///< the picture, as a PNG file that the operator names
    void sessionChanged() override;

    ChartBox* Chart = nullptr;
    QLabel* LabSum = nullptr; ///< what the chart is about, in words

protected:
    explicit ChartForm(const QString& name);
    /// Print, copy, save and return, at the end of the bar.
    void addChartCommands();

    struct Paper
    {
        QString report;
        QString heading;
        QString about; ///< the line below it
    };

    virtual ChartContent chart() const = 0;
    virtual Paper paper() const = 0;
    virtual QString about() const = 0;
    void showState() override;

private:
    bool requireChart() const;
};
