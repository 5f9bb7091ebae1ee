#pragma once

#include "admin/backup_folder.h"
#include "platform/widgets/form.h"

class QLabel;
class QLineEdit;
class QPushButton;

/// Backups: how often one is made at the end of the program, and one by hand at once. Open to every operator.
class sysDBbak : public Form
{
    Q_OBJECT

public:
    sysDBbak();
    static QString formName() { return u"sysDBbak"_s; }

    void saveSettings();
    /// Closes the ledger, compacts it into a file of the operator's choice and opens it again.
    /// @throws StoreError when the ledger can't be opened again
    void backUpNow();

    QLineEdit* Txt = nullptr;  ///< days between the automatic backups
    QLabel* Labinfo = nullptr; ///< how the automatic backup works, where it goes, when it was last made
    /// Where the last backup by hand went, or why it failed unless the ledger was just in use.
    QLabel* LabTrouble = nullptr;
    QPushButton* Command1 = nullptr; ///< back
    QPushButton* Command2 = nullptr; ///< saves the settings
    QPushButton* Command3 = nullptr; ///< backs up now

protected:
    bool queryUnload() override { return !working_; }
    QWidget* firstFocus() override;

private:
    std::optional<QString> askTarget();
    void tellOutcome(const QString& text);

    BackupSettings settings_;
    bool working_ = false; ///< the ledger is closed for the moment
};
