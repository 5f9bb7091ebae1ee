#pragma once

#include "platform/widgets/grid.h"
#include "platform/widgets/list_detail_form.h"
#include "reports/Query.h"
#include "shell/session.h"

/// What tells the forms over one table of coded records apart.
struct RecordTable
{
    QString form;
    QString caption;
    QString listTab;
    QString detailTab;
    QString table;        ///< its `F1` is the code, its `F2` the name
    OperatorRight right;  ///< of the form's menu
    QStringList useTests; ///< statements that lack the code at their end; a row means the code is in use
};

/// What a form over a table of records prints of its list.
struct RecordPrint
{
    QString report;
    QString tested;  ///< the file whose presence is asked for
    QString missing; ///< what is told when it isn't there
    QStringList formulas;
    QList<int> columns; ///< of the list, staged as `F1`, `F2`, ...
};

/// A form over one table of coded records: list and detail, add, edit, delete. Which table, which fields and what more
/// a record needs comes from the forms built on it. An edit is written as a delete and an insert.
class RecordForm : public ListDetailForm
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    void Menu_Add();
    void Menu_edit();
    void Menu_del();
    void Menu_query(); ///< lists what meets the operator's conditions
    void Menu_print(); ///< the list as it stands
    void Menu_save();
    void Menu_cancel();
    void Menu_Return();

    QString PubSql; ///< what the condition builder hands back

    QList<QLineEdit*> Txt; ///< the first two hold code and name
    QList<QLabel*> Lab;    ///< their captions, which the refusals name

    void sessionChanged() override;

protected:
    explicit RecordForm(RecordTable table);

    enum RecordField { CodeField, NameField };

    /// The command bar's parts, in this order; a form may put commands of its own between them.
    void addEditCommands();
    void addListCommands(); ///< find and print
    void addEndCommands();
    /// Makes the next of `Txt` and `Lab`.
    void addField(const QString& caption, EditKind kind = EditKind::Text);
    /// Sets the list's columns, remembered under the form's name.
    void setListColumns(const QList<GridColumn>& columns);

    /// The statement of the list, its columns those of `GD`.
    virtual QString listStatement() const = 0;
    virtual QList<QueryField> queryFields() const { return {}; }
    virtual RecordPrint printed() const { return {}; }
    /// Set by a search: the list's statement may be another one then, and takes the condition.
    bool searched() const { return searched_; }
    const QString& condition() const { return condition_; }
    /// The list is the usual one again, at the latest when an entry ends.
    void dropSearch();
    void loadList();

    /// The current row in the detail fields.
    virtual void showRecord() = 0;
    /// The fields as a new record begins.
    virtual void clearRecord();
    /// The record is shown; what else an edit needs.
    virtual void beginEdit() {}
    /// What the form shows and locks in its mode and for its operator; a form adds its own behind it.
    virtual void updateState();
    /// An existing record's code that must stay as it is.
    virtual bool codeFixed(const QString& code) { return inUse(code); }
    /// Tells when a record must stay.
    virtual bool deletable(const QString& code);
    bool inUse(const QString& code) const;

    /// The code as it is to be stored.
    virtual QString tidyCode(const QString& text) const;
    /// Tests what the operator has entered before anything is written; tells what is wrong.
    virtual bool complete();
    /// In the write run, before the old row goes: what has changed in it meanwhile and isn't this form's to undo.
    virtual void keepChanges(const QString& /*oldCode*/) {}
    virtual void insert() = 0;
    /// The saved record as a row of the list.
    virtual QStringList savedRow() const = 0;

    void tabChanged(Tab tab) override;
    void refresh() override;
    void rowChanged() override;
    void unloaded() override;

    const RecordTable table_;

private:
    QAction* addGated(const char* name, const QString& caption, Shown shown, void (RecordForm::*run)());
    bool codeFree();
    void enter(Mode mode);
    void leaveEntering();

    QList<QAction*> gated_; ///< commands that ask for the right of the form's menu
    bool codeFixed_ = false;
    bool searched_ = false;
    bool listStale_ = false; ///< it shows what a search found that was dropped
    QString condition_;
};
