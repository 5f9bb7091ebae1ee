#pragma once

#include "documents/audit.h"
#include "documents/document_kind.h"
#include "platform/widgets/form.h"

class DatePicker;
class Grid;
class LineEntry;
class QComboBox;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QTabBar;

/// Inbound, return, outbound and return-from-consignee documents: a list tab and a detail tab, draft and audit. Which
/// of the four it is comes from one DocumentTraits row.
class DocumentForm : public Form
{
    Q_OBJECT
    Q_PROPERTY(int Edstu MEMBER Edstu)

public:
    explicit DocumentForm(const DocumentTraits& kind);

    void Menu_Add();
    void Menu_edit();
    void Menu_del();
    void Menu_Ok();   ///< audit: moves `TA4` record by record
    void Menu_noOK(); ///< un-audit, for "001" only
    void Menu_save();
    void Menu_cancel();
    void Menu_Return();

    /// Lists drafts only, newest first.
    void listDrafts();
    /// Lists all documents that meet the condition (a WHERE clause, or "" for all), with their audit state.
    void listAll(const QString& condition);

    int Edstu = 0;      ///< 0 viewing, 1 adding, 2 editing; read by the main window's close guard
    QString ReservedNo; ///< the number held in `DanNo` from the moment of adding or editing until save or cancel

    QTabBar* TabS = nullptr;
    Grid* GD = nullptr;
    QLineEdit* Txt[7] = {}; ///< number, date, partner's name, clerk, auditor, total, remark
    QLabel* Lab[7] = {};
    QComboBox* CmbLB = nullptr;
    DatePicker* DTP1 = nullptr;
    LineEntry* lines = nullptr;

    void sessionChanged() override;

protected:
    bool queryUnload() override;
    void unloaded() override;
    QWidget* firstFocus() override;

private:
    enum ListColumn { Number, Date, Partner, Clerk, Auditor, Total, Remark, PartnerCode, ListColumns };
    enum Tab { ListTab, DetailTab };
    enum Mode { Viewing, Adding, Editing };

    void buildCommands();
    void buildList();
    void buildDetail();
    void buildShortcuts();
    void fillPartners();

    void loadList();
    void loadDetail();
    void clearDetail();
    void tabChanged(int tab);
    void selectListRow(int row);
    void removeListRow(int row);
    void addListRow(const QString& partnerCode);
    QString listCell(int column) const; ///< of the current row
    bool listEmpty() const;
    bool onDetail() const;

    void enter(Mode mode);
    void leaveEntering();
    void updateState();
    void updateStatus();
    void updateBadge();

    bool headerComplete();
    bool findPartner(QString& code);
    bool numberFree(QString& number, bool typed);
    void write(const QString& number, const QString& partnerCode);
    void refuse(const QString& text, QWidget* where);

    bool auditable();
    bool afterLockDate(const QString& before, const QString& behind);
    bool move(AuditStep step);
    void listAfterAudit();

    const DocumentTraits& kind_;
    int listRow_ = 1;
    bool allDocuments_ = false; ///< set by a search; the list then shows audited documents too
    QString condition_;
    QStackedWidget* pages_ = nullptr;
    QWidget* body_ = nullptr;
    QLabel* barred_ = nullptr;
    QLabel* badge_ = nullptr;
    QLabel* count_ = nullptr;
};

/// The form of that kind, made at first use.
DocumentForm& documentForm(DocumentKind kind);
