#pragma once

#include "ledger/presence.h"
#include "platform/base/text.h"

#include <QHash>
#include <QMainWindow>
#include <QMdiArea>

class BGForm;
class FirstSteps;
class StatusPanels;

/// The main window: menu bar, status panels, and the area of child forms with the background behind them. It routes
/// menu items to forms and guards the end of the program; it holds no business logic.
class MForm : public QMainWindow
{
    Q_OBJECT

public:
    /// The single instance, made at first use.
    static MForm& get();
    ~MForm() override;

    void setCaption(const QString& caption);
    QString Caption() const { return caption_; }
    /// Panel 3, and the mark by which other sessions of the ledger see who is here.
    void setOperator(const QString& name);
    void setLedgerTip(const QString& tip); ///< tool tip of panel 4
    /// Enables and disables the gated menus by the session's rights.
    void applyGates();
    /// The ledger change, from the menu and from panel 4.
    void changeLedger();
    /// Tells who has the ledger open.
    void showSessions() const;

    BGForm* background() { return background_; }
    QAction* menuItem(const QString& name) const { return items_.value(name); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    MForm();
    void buildMenu();
    void fitBackground();
    void refreshFirstSteps();
    void panelClicked(int panel);
    bool mayEnd();
    void endOrderly();

    QString caption_;
    PresenceMark presence_;
    QMdiArea* area_ = nullptr;
    BGForm* background_ = nullptr;
    FirstSteps* firstSteps_ = nullptr;
    StatusPanels* panels_ = nullptr;
    QHash<QString, QAction*> items_;
};
