#pragma once

#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"

class Grid;
class QStackedWidget;
class QTabBar;

/// A form over one list: a tab with the list, a tab with the current record, and commands that come and go with the
/// mode. While a record is entered the detail tab stands and the tab strip is disabled.
class ListDetailForm : public Form
{
    Q_OBJECT
    Q_PROPERTY(int Edstu MEMBER Edstu)

public:
    int Edstu = 0; ///< 0 viewing, 1 adding, 2 editing; read by the main window's close guard
    QTabBar* TabS = nullptr;
    Grid* GD = nullptr; ///< an empty list shows one empty row

    /// An entry under way stays as it is.
    void recordsChanged() override;

protected:
    enum Tab { ListTab, DetailTab };
    enum Mode { Viewing, Adding, Editing };
    enum class Shown { Always, Viewing, Entering, Never };

    ListDetailForm(const QString& name, const QString& caption, const QString& listTab, const QString& detailTab);

    /// A command at the end of the bar, or of a menu in it, that is seen in those modes. Without `run` it stands
    /// disabled.
    QAction* addModeCommand(const QString& name, const QString& caption, Shown shown, std::function<void()> run);
    QAction* addModeCommand(QMenu* menu, const QString& name, const QString& caption, Shown shown,
                            std::function<void()> run);
    QMenu* addModeMenu(const QString& name, const QString& caption, Shown shown);
    /// Shows commands and tabs for `Edstu`; forms with further conditions do theirs behind it.
    void showMode();
    QVBoxLayout* listPage() const { return pages_[ListTab]; }
    QVBoxLayout* detailPage() const { return pages_[DetailTab]; }
    bool onDetail() const;
    void showTab(Tab tab);
    /// The operator or the form has changed the tab; not called while a record is entered.
    virtual void tabChanged(Tab tab) = 0;
    /// F5 while viewing: reads the list anew.
    virtual void refresh() = 0;
    /// The current row has changed, or what it holds.
    virtual void rowChanged() = 0;

    /// The words in the place of the content for an operator who may not see it; "" shows the content.
    void setBarred(const QString& why);
    void setState(const QString& text, BadgeLook look);

    int listRow() const { return listRow_; }
    QString listCell(int column) const; ///< of the current row
    bool listEmpty() const;
    /// Replaces the list; the current row is kept within it.
    void fillList(QList<QStringList> rows);
    void selectListRow(int row);
    void removeListRow(int row);
    /// At the end, made current.
    void addListRow(const QStringList& cells);
    /// Tells a refusal and leads to the field to correct, its text selected.
    void refuse(const QString& text, QWidget* where);
    /// A key that works anywhere in the form.
    void addKey(Qt::Key key, std::function<void()> run);

    QWidget* firstFocus() override;

private:
    QList<std::pair<QAction*, Shown>> modeCommands_;
    QVBoxLayout* pages_[2] = {};
    QStackedWidget* stack_ = nullptr;
    QWidget* body_ = nullptr;
    QLabel* barred_ = nullptr;
    QLabel* state_ = nullptr;
    int listRow_ = 1;
};
