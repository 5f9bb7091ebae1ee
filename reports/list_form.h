#pragma once

#include "platform/widgets/form.h"
#include "reports/Query.h"
#include "shell/session.h"

class Grid;
class QLabel;

enum class ListContent { Text, Date, Quantity, Money };

struct ListColumn
{
    QString caption;
    int width;
    QString expression; ///< in the statement, and where the operator's condition is about this column
    ListContent content = ListContent::Text;
    bool summed = false;
    bool searched = true; ///< offered by the condition builder
};

/// What a list form shows: the parts of one statement, the words around it, and who may see it.
struct Listing
{
    QString caption; ///< of the window
    QString statusName;
    QString totalCaption;
    OperatorRight right;
    QList<ListColumn> columns;
    QString from;
    QString condition;  ///< the form's own, always in force; "" for none
    QString filter;     ///< what a search replaces, in brackets or a single test; "" for none
    QStringList orders; ///< the sort keys
    int stretched = 0;  ///< the column that takes what width is left
    int order = 0;      ///< of `orders`
    int top = 0;        ///< rows at most; 0 for all

    QString statement() const;
};

/// A form over one read-only list with a row of sums below it: search, sort menu, refresh.
class ListForm : public Form
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    /// Lists anew what meets the conditions that the operator composes.
    void Menu_query();
    void Menu_Return();
    void sessionChanged() override;

    Grid* GD = nullptr; ///< the records, then the row of sums; an empty list shows one empty row
    QString PubSql;     ///< what the condition builder hands back

protected:
    explicit ListForm(const QString& name);

    /// A command that asks for the right of the list first.
    QAction* addListCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run);
    /// Stands disabled, as its work comes with a later version.
    void addLaterCommand(QMenu* menu, const QString& name, const QString& caption);
    /// The items "Menu_S(first)" and following; an item's index is that of its key in `Listing::orders`.
    void addSortMenu(int first, std::initializer_list<QStringView> captions);
    /// The two prints that document lists have.
    void addPrintMenu();
    void addReturnCommand();

    const Listing& listing() const { return listing_; }
    /// Reads and shows that list.
    /// @throws StoreError; the list before it then stays, and stays what a refresh reads
    void list(Listing next);
    /// Takes the list over without reading it and shows no record: for an operator who may not see what was read.
    void empty(Listing next);

    virtual QList<QueryField> queryFields() const;
    virtual QString queryCaption() const { return u"查找条件"_s; }
    /// The list has changed, or what the operator may do.
    virtual void showState();

    void unloaded() override;
    QWidget* firstFocus() override;

private:
    void refresh();
    void show(Listing&& next, QList<QStringList> rows);
    void updateStatus();

    Listing listing_;
    QList<QAction*> listCommands_;
    QList<std::pair<int, QAction*>> sortItems_;
    QLabel* barred_ = nullptr;
    int count_ = 0; ///< records, without the sums
};
