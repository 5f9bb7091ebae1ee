#pragma once

#include "platform/widgets/form.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// Proves the operator against `TE1`, fills the session globals, loads the settings and sets the menu from the rights.
/// Shown modally at start, for a change of operator, and after a change of ledger. Loading it reads the operators, so
/// that a ledger that can't be read raises StoreError here.
class Login : public Form
{
    Q_OBJECT

public:
    Login();
    static QString formName() { return u"Login"_s; }

    void logIn();
    void help();

    QComboBox* Cmb = nullptr; ///< operators, "account.name"
    QLineEdit* Txt[2] = {};   ///< account, password
    QPushButton* Cmd[3] = {};
    QLabel* Image1 = nullptr;

protected:
    QWidget* firstFocus() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeAccount();
    void refuse(const QString& text, QLineEdit* where);
    bool proven(const QString& account);
    void completeLogin(const QString& account);
    void warnOfWeakLocks();

    QString helpText_;
};
