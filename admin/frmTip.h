#pragma once

#include "platform/widgets/form.h"

#include <QStringList>

class QCheckBox;
class QLabel;
class QPushButton;

/// The tip of the day, one line of Learn.dat picked at random.
class frmTip : public Form
{
    Q_OBJECT

public:
    frmTip();
    static QString formName() { return u"frmTip"_s; }

    /// The per-user key under which showing at start is kept, "1" or "0".
    static const QString showAtStart;

    void nextTip();

    QLabel* lblTipText = nullptr;
    QCheckBox* chkLoadTipsAtStartup = nullptr;
    QPushButton* cmdNextTip = nullptr;
    QPushButton* cmdOK = nullptr;

protected:
    QWidget* firstFocus() override;

private:
    QStringList tips_;
};
