#pragma once

#include "platform/widgets/form.h"

#include <QComboBox>

class QCheckBox;
class QLabel;
class QPushButton;

/// What may stand in a ledger's name: digits, letters and everything beyond ASCII, since the name becomes part of a
/// file name. Trimmed; "" stays "".
QString CleanLedgerName(const QString& text);

/// The ledger directory: opens a ledger, creates, imports, renames and unlists ledgers. The list lies in dbsetup.dat
/// beside the program. Shown modally at start and from the main window.
class ZbSet : public Form
{
    Q_OBJECT

public:
    ZbSet();
    static QString formName() { return u"ZbSet"_s; }

    /// Fills the lists from dbsetup.dat; true if the form must be shown. When it need not be, `gLedgerFile` and
    /// `gLedgerName` are those of the first entry. Without the file the ledger in the globals is the list.
    bool LoadLedgerList();
    /// Writes the list, the selected ledger first.
    void SaveLedgerList();

    /// "退出系统", which ends the program, or "返回系统" when the main window shows the form.
    void setLeaveCaption(const QString& caption);
    /// Without this the form refuses to close.
    void allowClosing() { closingAllowed_ = true; }

    void OpenSelected();
    void newone();
    void setpath();
    void zbrename();
    void unlist();
    void leave();
    void openFolder();

    QComboBox* Cmb[2] = {}; ///< names and paths; an index means the same ledger in both
    QCheckBox* Chk = nullptr;
    QPushButton* Cmd[4] = {};
    QLabel* Label2 = nullptr;

protected:
    bool queryUnload() override { return closingAllowed_; }
    QWidget* firstFocus() override;

private:
    void showEditMenu();
    void select(int index);
    void addLedger(const QString& name, const QString& path);
    QString selectedName() const;
    QString selectedPath() const;
    void closeAllowed();

    bool closingAllowed_ = false;
};
