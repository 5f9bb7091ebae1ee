#pragma once

#include "platform/widgets/form.h"

class QLineEdit;
class QPushButton;

/// The company that keeps the ledger (`reginfo`): its name stands in the main window, and with address and telephone at
/// the head of what is printed. For the account "001" only.
class CompanySet : public Form
{
    Q_OBJECT

public:
    CompanySet();
    static QString formName() { return u"CompanySet"_s; }

    void save();

    QLineEdit* Txt[5] = {};   ///< name, English name, address, telephone, fax
    QPushButton* Cmd[2] = {}; ///< save, cancel

protected:
    bool queryUnload() override;

private:
    QStringList typed() const;
    void write(const QStringList& texts);

    QStringList saved_; ///< what the ledger has
};
