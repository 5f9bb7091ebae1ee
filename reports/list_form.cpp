#include "reports/list_form.h"

#include "documents/document_opening.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/five_places.h"

#include <QShortcut>

namespace {

constexpr int listStatusPanel = 4;

/// A quantity without the noise of its binary form: three places at most.
QString quantityText(double quantity)
{
    const QString text = plainText(quantity);
    const qsizetype point = text.indexOf(u'.');
    const bool noisy = text.contains(u'E') || (point >= 0 && text.size() - point - 1 > 3);
    return noisy ? Format(quantity, u"#0.000") : text;
}

QString listCellText(const Listing& listing, qsizetype column, const Value& value)
{
    if (value.isNull())
        return {};
    const ListContent content = listing.columns[column].content;
    if (content >= ListContent::Quantity && listing.numbers == NumberStyle::FivePlaces)
        return fivePlaces(value.number());
    switch (content) {
    case ListContent::Quantity:
        return quantityText(value.number());
    case ListContent::Money:
        return Format(value.number(), gPriceFormat);
    case ListContent::Percent:
        return Format(value.number(), u"#0.0");
    case ListContent::Text:
    case ListContent::Date:
        break;
    }
    return value.text();
}

/// The texts of records, and below them, if there are any, their sums.
class ListRows
{
public:
    explicit ListRows(const Listing& listing)
        : listing_(listing)
        , sums_(listing.columns.size())
    {}

    /// @param fields gives the value of a column by its index
    template <typename Fields>
    void add(const Fields& fields)
    {
        QStringList row;
        row.reserve(sums_.size());
        for (qsizetype i = 0; i < sums_.size(); ++i) {
            const Value& value = fields(i);
            row += listCellText(listing_, i, value);
            if (listing_.columns[i].summed && !value.isNull())
                sums_[i] += value.number();
        }
        rows_ += std::move(row);
    }

    QList<QStringList> withSums()
    {
        if (rows_.isEmpty() || listing_.totalCaption.isEmpty())
            return std::move(rows_);
        QStringList total;
        for (qsizetype i = 0; i < sums_.size(); ++i)
            total += listing_.columns[i].summed ? listCellText(listing_, i, Value(sums_[i])) : QString();
        total[0] = listing_.totalCaption;
        rows_ += std::move(total);
        return std::move(rows_);
    }

private:
    const Listing& listing_;
    QList<double> sums_;
    QList<QStringList> rows_;
};

QList<QStringList> readRows(const Listing& listing)
{
    ListRows rows(listing);
    if (listing.compute) {
        for (const QList<Value>& record : listing.compute(listing))
            rows.add([&](qsizetype i) -> const Value& { return record[i]; });
        return rows.withSums();
    }
    for (Recordset records = gDB.OpenRecordset(listing.statement()); !records.isEOF(); records.MoveNext())
        rows.add([&](qsizetype i) -> const Value& { return records.Fields(i); });
    return rows.withSums();
}

} // namespace

QString Listing::statement() const
{
    QStringList expressions;
    for (const ListColumn& column : columns)
        expressions += column.expression;
    QStringList conditions{condition, filter};
    conditions.removeAll(QString());
    return u"select "_s + (top > 0 ? u"top %1 "_s.arg(top) : QString()) + expressions.join(u',') + u" from "_s + from +
           (conditions.isEmpty() ? QString() : u" where "_s + conditions.join(u" and ")) + u" order by "_s +
           orders[order];
}

ListForm::ListForm(const QString& name)
    : Form(name, QString())
{
    GD = new Grid(u"GD"_s);
    GD->actAsList();
    barred_ = makeLabel(u"LabBarred"_s, QString());
    barred_->setAlignment(Qt::AlignCenter);
    barred_->hide();
    content()->addWidget(GD, 1);
    content()->addWidget(barred_, 1);
    connect(GD, &Grid::currentRowChanged, this, &ListForm::updateStatus);
    auto* key = new QShortcut(QKeySequence(Qt::Key_F5), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(key, &QShortcut::activated, this, [this] { runCommand([this] { refresh(); }); });
}

QAction* ListForm::addListCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run)
{
    QAction* action = addCommand(menu, name, caption, [this, run = std::move(run)] {
        showState(); // a click has moved the check of a checkable item, which follows the list
        if (requireRight(listing_.right))
            run();
    });
    listCommands_ += action;
    return action;
}

void ListForm::addSortMenu(int first, std::initializer_list<QStringView> captions, const QString& name)
{
    QMenu* menu = addCommandMenu(u"Menu_Sort"_s, u"&S.排序"_s);
    int index = first;
    for (const QStringView caption : captions) {
        QAction* item = addListCommand(menu, controlName(name, index), caption.toString(), [this, index] {
            Listing next = listing_;
            next.order = index;
            list(std::move(next));
        });
        item->setCheckable(true);
        sortItems_.append({index++, item});
    }
}

void ListForm::addPrintMenu(std::function<void()> ledger, std::function<void()> summary)
{
    QMenu* menu = addCommandMenu(u"Menu_print"_s, u"&P.打印"_s);
    addListCommand(menu, u"Menu_print1"_s, u"&A.打印流水帐"_s, std::move(ledger));
    addListCommand(menu, u"Menu_print2"_s, u"&B.打印合计报表"_s, std::move(summary));
}

void ListForm::addReturnCommand(const QString& name)
{
    addCommand(name, u"&R.返回"_s, [this] { Menu_Return(); });
}

void ListForm::openDocumentsOf(std::function<QList<DocumentKind>()> kinds)
{
    connect(GD, &Grid::activatedRow, this, [this, kinds = std::move(kinds)](int row) {
        runCommand([&] {
            if (row > count_ || !requireRight(listing_.right))
                return;
            const QString number = GD->TextMatrix(row, 0);
            const QString condition =
                u" where F1="_s + sqlText(number) + u" and F2="_s + sqlText(GD->TextMatrix(row, 1));
            const QList<DocumentKind> asked = kinds();
            for (const DocumentKind kind : asked)
                if (LookupValue(gDB, u"select F1 from "_s + traitsOf(kind).header + condition) != u"NoFound")
                    return showDocument(kind, number);
            showDocument(asked.first(), number); // which tells that it has gone
        });
    });
}

void ListForm::addBarcodeCommand()
{
    QAction* barcodes = addCommand(u"Menu_T"_s, u"&T.打印条码"_s, {});
    barcodes->setEnabled(false);
    setCommandVisible(barcodes, false);
}

// The list ------------------------------------------------------------------------------------------------------------

void ListForm::list(Listing next)
{
    const BusyPointer busy;
    QList<QStringList> rows = readRows(next); // nothing has changed yet if this fails
    show(std::move(next), std::move(rows));
}

void ListForm::empty(Listing next)
{
    show(std::move(next), {});
}

void ListForm::show(Listing&& next, QList<QStringList> rows)
{
    listing_ = std::move(next);
    setCaption(listing_.caption);
    if (GD->Cols() != listing_.columns.size()) {
        QList<GridColumn> columns;
        for (const ListColumn& column : listing_.columns)
            columns += {column.caption, column.width,
                        column.content >= ListContent::Quantity ? ColumnKind::Number : ColumnKind::Text};
        columns[listing_.stretched].stretch = true;
        GD->setColumns(columns);
        GD->rememberWidths(Name() + u"/GD"_s);
    }
    for (int i = 0; i < GD->Cols(); ++i)
        GD->SetTextMatrix(0, i, listing_.columns[i].caption);
    const bool summed = !listing_.totalCaption.isEmpty();
    count_ = int(qMax<qsizetype>(rows.size() - (summed ? 1 : 0), 0));
    if (count_ > 0) {
        GD->setRows(std::move(rows));
        if (summed)
            GD->pinTotals();
    } else {
        GD->clearRows();
    }
    GD->setEmptyNote(listing_.none);
    GD->select(1);
    updateStatus();
    showState();
}

void ListForm::goToList()
{
    if (count_ > 0)
        GD->setFocus();
}

void ListForm::refresh()
{
    if (!requireRight(listing_.right))
        return;
    const int row = GD->Row();
    list(listing_);
    GD->select(qBound(1, row, GD->Rows() - 1));
}

void ListForm::updateStatus()
{
    const int row = qBound(1, GD->Row(), qMax(count_, 1));
    setStatusPanel(listStatusPanel,
                   count_ == 0 ? u"无信息"_s
                               : u"%1：共 %2 条记录 当前为第 %3 条"_s.arg(listing_.statusName).arg(count_).arg(row));
}

void ListForm::showState()
{
    for (const auto& [index, item] : sortItems_)
        item->setChecked(index == listing_.order);
    for (int i = 0; i < GD->Cols(); ++i)
        GD->setColumnVisible(i, gWithMoney != 0 || listing_.columns[i].content != ListContent::Money);
    const bool allowed = hasRight(listing_.right);
    for (QAction* action : listCommands_)
        action->setEnabled(allowed);
    GD->setVisible(allowed);
    barred_->setVisible(!allowed);
    barred_->setText(allowed
                         ? QString()
                         : u"当前操作员没有“%1”权限，不能查看%2。"_s.arg(rightName(listing_.right), listing_.caption));
}

void ListForm::sessionChanged()
{
    showState();
}

void ListForm::recordsChanged()
{
    if (hasRight(listing_.right))
        refresh();
}

// Commands ------------------------------------------------------------------------------------------------------------

QList<QueryField> ListForm::queryFields() const
{
    QList<QueryField> fields;
    for (const ListColumn& column : listing_.columns) {
        const QueryType type = column.content == ListContent::Text   ? QueryType::Text
                               : column.content == ListContent::Date ? QueryType::Date
                                                                     : QueryType::Number;
        if (column.searched)
            fields += {column.caption, column.expression, type};
    }
    return fields;
}

void ListForm::Menu_query()
{
    if (!Query::ask(*this, queryFields(), queryCaption()))
        return;
    Listing next = listing_;
    next.filter = bracketedConditionOf(PubSql);
    next.none = u"没有符合条件的记录。按[查找]（Alt+Q）可以换一个条件。"_s;
    list(std::move(next));
}

void ListForm::Menu_Return()
{
    Unload();
}

void ListForm::unloaded()
{
    LedgerStatus();
}

bool ListForm::requireRecords(const QString& none) const
{
    if (count_ == 0)
        MsgBox(none);
    return count_ > 0;
}

QWidget* ListForm::firstFocus()
{
    return GD;
}
