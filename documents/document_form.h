#pragma once

#include "documents/audit.h"
#include "documents/document_kind.h"
#include "documents/kept_entry.h"
#include "platform/widgets/list_detail_form.h"

class LineEntry;
class QTimer;

/// Inbound, return, outbound, return-from-consignee documents and stock-takes: a list tab and a detail tab, draft and
/// audit. Which of them it is comes from one DocumentTraits row.
class DocumentForm : public ListDetailForm
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    explicit DocumentForm(const DocumentTraits& kind);

    /// Shows the form, and offers the entry that a session of this operator, machine and ledger left in it when its
    /// process died. No deletes that entry.
    /// @throws StoreError
    void open();

    void Menu_Add();
    void Menu_edit();
    void Menu_del();
    void Menu_Ok();    ///< audit: moves `TA4` record by record
    void Menu_noOK();  ///< un-audit, for "001" only
    void Menu_print(); ///< of a kind without items below it
    void Menu_prn(int index);
    void Menu_query(); ///< lists what meets the operator's conditions, drafts and audited documents
    void Menu_save();
    void Menu_cancel();
    void Menu_Return();
    /// A new document with partner, remark and lines of the current one, under today's date and a number of its own.
    /// Goods and quantities are taken over, all else is as entering them now gives it.
    void Menu_copy();
    void Menu_paste(); ///< lines from the clipboard
    void Menu_again(); ///< takes up the entry that was cancelled last

    /// Lists drafts only, newest first.
    void listDrafts();
    /// Lists all documents that meet the condition (a WHERE clause, or "" for all), with their audit state.
    void listAll(const QString& condition);

    QString PubSql;     ///< what the condition builder hands back
    QString ReservedNo; ///< the number held in `DanNo` from the moment of adding or editing until save or cancel

    QLineEdit* Txt[7] = {}; ///< number, date, partner's name, clerk, auditor, total, remark
    QLabel* Lab[7] = {};
    QComboBox* CmbLB = nullptr; ///< the partner; none where a name is typed
    DatePicker* DTP1 = nullptr;
    LineEntry* lines = nullptr;
    QLabel* LabKept = nullptr;    ///< tells that the entry can't be kept against a crash
    QLabel* LabLeftOut = nullptr; ///< tells what was typed and is no line of the saved document

    void sessionChanged() override;

protected:
    bool queryUnload() override;
    void unloaded() override;
    QString notice() const override;

private:
    enum ListColumn { Number, Date, PartnerName, Clerk, Auditor, Total, Remark, PartnerCode, ListColumns };

    enum PrintItem { StoredPrint, ShownPrint, PurchasePrint };

    void buildCommands();
    void addPrintItems(QMenu* menu);
    void buildList();
    void buildDetail();
    void fillPartners();

    void tabChanged(Tab tab) override;
    void refresh() override;
    void rowChanged() override;
    QString listStatement() const;
    void loadList();
    void loadDetail();
    void clearDetail();
    void listSaved(const QString& partnerCode);

    void beginAdding(const QString& number);
    void enter(Mode mode);
    void leaveEntering();
    void updateState();
    void updateStatus();
    void updateBadge();

    bool headerComplete();
    QString enteredPartner() const; ///< its code
    bool findPartner(const QString& code);
    bool numberFree(QString& number, bool typed);
    void write(const QString& number, const QString& partnerCode);

    KeptEntry entryNow() const;
    void beginKeeping();
    void keepEntry();
    void noteSaving(const QString& number, const QString& partnerCode);
    void endKeeping();
    QString keptQuestion(const KeptEntry& entry) const;
    void reopen(const KeptEntry& entry, KeptFile* file);
    bool showStored(const QString& number);
    QString numberAgain(const QString& number);
    bool ownReservation(const QString& number) const;
    QString storedDigest(const QString& number) const;

    bool auditable();
    bool afterLockDate(const QString& before, const QString& behind);
    bool move(AuditStep step);
    void listAfterAudit();

    const DocumentTraits& kind_;
    bool allDocuments_ = false; ///< set by a search; the list then shows audited documents too
    QString condition_;
    QList<QAction*> gated_; ///< commands that ask for the right of the form's menu
    QLabel* count_ = nullptr;
    std::optional<KeptFile> kept_; ///< while a document is entered, where a place for it is known
    KeptEntry keptAs_;             ///< what stays the same while the entry goes on
    QByteArray untouched_; ///< the entry at its beginning, which is not worth keeping; empty once it was changed
    QTimer* keeping_ = nullptr;
    std::optional<KeptEntry> cancelled_; ///< the last entry that was cancelled with something in it
    QString damaged_;                    ///< told above the content until the form is shown again
};

/// The form of that kind, made at first use.
DocumentForm& documentForm(DocumentKind kind);
