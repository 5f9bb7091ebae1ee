#pragma once

#include "platform/widgets/form.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The function settings of a ledger (`sysinfo`), for the account "001" only. They hold for this session as soon as
/// they are saved; forms that are open keep what they read when they were loaded.
class SysFuncSet : public Form
{
    Q_OBJECT

public:
    SysFuncSet();
    static QString formName() { return u"SysFuncSet"_s; }

    void save();

    QCheckBox* Chk[10] = {}; ///< by setting, except 9, which is setting 10
    /// 4 the sale price factor, 9 the decimal places; the others are null.
    QLineEdit* Txt[10] = {};
    QLabel* Lab[10] = {};
    QPushButton* Cmd[2] = {};

protected:
    QWidget* firstFocus() override;

private:
    void build();
    void load();
    void listen();
    void factorTicked(bool on);
    void quantitiesOnlyTicked(bool on);
    void factorTyped();
    void decimalsTyped();
    void writeAll();

    QString factorBefore_ = u"0"_s; ///< what a new tick brings back
};
