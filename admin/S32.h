#pragma once

#include "platform/widgets/form.h"

class QLabel;
class QPushButton;

/// Puts a backup in the place of the current ledger. Whoever shows the form lets the operator log in anew when it has
/// `restored`.
class S32 : public Form
{
    Q_OBJECT

public:
    S32();
    static QString formName() { return u"S32"_s; }

    void restore();
    bool restored() const { return restored_; }

    QLabel* LabWarning = nullptr;
    QPushButton* Command1 = nullptr; ///< restores
    QPushButton* Command2 = nullptr; ///< back
    QPushButton* Command3 = nullptr; ///< to the backups

protected:
    QWidget* firstFocus() override;

private:
    static bool replaceLedger(const QString& backup);

    bool restored_ = false;
};
