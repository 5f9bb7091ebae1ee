#pragma once

#include "documents/document_kind.h"
#include "platform/widgets/form.h"
#include "reports/Query.h"
#include "shell/session.h"

class Grid;
class QLabel;

enum class ListContent { Text, Date, Quantity, Money, Percent };

/// How a list writes its numbers. Usual: quantities to three places at most, money by the decimals setting. FivePlaces:
/// all as they were booked, to five places at most.
enum class NumberStyle { Usual, FivePlaces };

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
    QString totalCaption; ///< of the row of sums; "" for a list without one
    OperatorRight right;
    QList<ListColumn> columns;
    QString from;
    QString condition;  ///< the form's own, always in force; "" for none
    QString filter;     ///< what a search replaces, in brackets or a single test; "" for none
    QStringList orders; ///< the sort keys
    int stretched = 0;  ///< the column that takes what width is left
    int order = 0;      ///< of `orders`
    int top = 0;        ///< rows at most; 0 for all
    NumberStyle numbers = NumberStyle::Usual;
    /// Works the records out, one value a column, in `orders[order]`; the statement is not used then.
    std::function<QList<QList<Value>>(const Listing&)> compute = {};
    /// What an empty list says below its one empty row: why there is nothing, and what to do.
    QString none = {};

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
    void recordsChanged() override;

    Grid* GD = nullptr; ///< the records, then the row of sums; an empty list shows one empty row
    QString PubSql;     ///< what the condition builder hands back

protected:
    explicit ListForm(const QString& name);

    /// A command that asks for the right of the list first.
    QAction* addListCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run);
    /// The items "Menu_S(first)" and following; an item's index is that of its key in `Listing::orders`.
    void addSortMenu(int first, std::initializer_list<QStringView> captions, const QString& name = u"Menu_S"_s);
    /// The two prints that document lists have.
    void addPrintMenu(std::function<void()> ledger, std::function<void()> summary);
    void addReturnCommand(const QString& name = u"Menu_Return"_s);
    /// Enter, or a double click, opens the document of a record, whose number and date stand in its first two cells.
    /// @param kinds asked anew each time; where two have such a document, the first one's
    void openDocumentsOf(std::function<QList<DocumentKind>()> kinds);
    /// The item for barcodes, which the system doesn't print: it stands hidden.
    void addBarcodeCommand();

    const Listing& listing() const { return listing_; }
    /// Records, which are the rows 1 to `count` of `GD`, without the sums: what `gridRows` stages of a list.
    int count() const { return count_; }
    /// Whether there is a record to print; tells the operator when there is none.
    bool requireRecords(const QString& none = u"无数据可打印！"_s) const;
    /// Reads and shows that list.
    /// @throws StoreError; the list before it then stays, and stays what a refresh reads
    void list(Listing next);
    /// Takes the list over without reading it and shows no record: for an operator who may not see what was read.
    void empty(Listing next);

    /// The keys are the list's from now on, if it has something to read: what was asked for stands there.
    void goToList();

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
