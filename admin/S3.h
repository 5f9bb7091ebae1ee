#pragma once

#include "platform/widgets/form.h"

class DatePicker;
class QCheckBox;
class QPushButton;

/// Resets a ledger: its documents, its stock, its master data, its first day; each by a box of its own.
class S3 : public Form
{
    Q_OBJECT

public:
    S3();
    static QString formName() { return u"S3"_s; }

    void clear();

    QCheckBox* Chk[4] = {}; ///< documents, stock, master data, first day of the accounting year
    DatePicker* DTP = nullptr;
    QPushButton* cmd[3] = {};

protected:
    QWidget* firstFocus() override;

private:
    void couple();
    void deleteAll();
};
