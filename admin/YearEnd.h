#pragma once

#include "platform/widgets/form.h"

#include <QDate>

class QCheckBox;
class QLabel;
class QPushButton;

/// Closes the accounting year: stock and cost of all goods become the opening balance, tomorrow becomes the new year's
/// first day. Opened, modally, by the comprehensive period report once the period's report is saved.
class YearEnd : public Form
{
    Q_OBJECT

public:
    YearEnd();
    static QString formName() { return u"YearEnd"_s; }

    void carryForward();

    QLabel* labinf = nullptr;
    QCheckBox* Chk[2] = {}; ///< 0 clears the saved reports, 1 the documents
    QPushButton* Cmd[3] = {};

protected:
    QWidget* firstFocus() override;

private:
    void writeAll();

    QString firstDay_; ///< of the new year, as it stood when the form was opened
    bool yearBegun_ = false;
};
