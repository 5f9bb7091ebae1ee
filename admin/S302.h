#pragma once

#include "platform/widgets/form.h"

class QLineEdit;
class QPushButton;
class QRadioButton;

/// Removes one partner or one goods code, with all documents that it stands in. Stock isn't recalculated.
class S302 : public Form
{
    Q_OBJECT

public:
    S302();
    static QString formName() { return u"S302"_s; }

    void clear();

    QRadioButton* Opt[4] = {}; ///< supplier, consignee, category, goods
    QLineEdit* Txt = nullptr;
    QPushButton* cmd[2] = {};

protected:
    QWidget* firstFocus() override;

private:
    int chosen() const;
};
