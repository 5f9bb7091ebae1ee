#pragma once

#include "platform/widgets/form.h"
#include "platform/widgets/style.h"

class QPushButton;
class QRadioButton;

/// How the program looks to the user of this machine: light or dark, and the size of the font. A choice shows at once
/// everywhere and is kept; there is nothing to save. No right is asked for: nothing of a ledger depends on it.
class LookSet : public Form
{
    Q_OBJECT

public:
    LookSet();
    static QString formName() { return u"LookSet"_s; }

    void restore(); ///< the look of a first start

    QList<QRadioButton*> OptLook; ///< in the order of `style::Scheme`
    QList<QRadioButton*> OptFont; ///< in the order of `fontSizes`
    QPushButton* CmdDefault = nullptr;
    QPushButton* CmdClose = nullptr;

protected:
    QWidget* firstFocus() override;

private:
    void showPresent();
};
