#pragma once

#include "platform/widgets/form.h"

class DatePicker;
class QPushButton;
class QRadioButton;

/// Removes the documents of one kind that are older than a day; those of the day itself stay.
class S303 : public Form
{
    Q_OBJECT

public:
    S303();
    static QString formName() { return u"S303"_s; }

    void clear();

    DatePicker* DTP = nullptr;
    QRadioButton* Opt[5] = {};
    QPushButton* cmd[2] = {};

protected:
    QWidget* firstFocus() override;
};
