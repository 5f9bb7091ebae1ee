#pragma once

#include "documents/audit.h"
#include "documents/document_kind.h"
#include "platform/widgets/list_detail_form.h"

class LineEntry;

/// Inbound, return, outbound, return-from-consignee documents and stock-takes: a list tab and a detail tab, draft and
/// audit. Which of them it is comes from one DocumentTraits row.
class DocumentForm : public ListDetailForm
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    explicit DocumentForm(const DocumentTraits& kind);

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

    void sessionChanged() override;

protected:
    bool queryUnload() override;
    void unloaded() override;
    QString notice() const override;

private:
    enum ListColumn { Number, Date, PartnerName, Clerk, Auditor, Total, Remark, PartnerCode, ListColumns };

    enum PrintItem { StoredPrint, ShownPrint, PurchasePrint };

    void reserveNumber();
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

    void enter(Mode mode);
    void leaveEntering();
    void updateState();
    void updateStatus();
    void updateBadge();

    bool headerComplete();
    bool findPartner(QString& code);
    bool numberFree(QString& number, bool typed);
    void write(const QString& number, const QString& partnerCode);

    bool auditable();
    bool afterLockDate(const QString& before, const QString& behind);
    bool move(AuditStep step);
    void listAfterAudit();

    const DocumentTraits& kind_;
    bool allDocuments_ = false; ///< set by a search; the list then shows audited documents too
    QString condition_;
    QList<QAction*> gated_; ///< commands that ask for the right of the form's menu
    QLabel* count_ = nullptr;
};

/// The form of that kind, made at first use.
DocumentForm& documentForm(DocumentKind kind);
