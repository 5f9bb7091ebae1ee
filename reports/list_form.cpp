#include "reports/list_form.h"

#include "ledger/Module1.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"

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

QString listCellText(ListContent content, const Value& value)
{
    if (value.isNull())
        return {};
    switch (content) {
    case ListContent::Quantity:
        return quantityText(value.number());
    case ListContent::Money:
        return Format(value.number(), gPriceFormat);
    case ListContent::Text:
    case ListContent::Date:
        break;
    }
    return value.text();
}

/// The records, and below them, if there are any, their sums.
QList<QStringList> readRows(const Listing& listing)
{
    Recordset records = gDB.OpenRecordset(listing.statement());
    QList<QStringList> rows;
    rows.reserve(records.RecordCount() + 1);
    QList<double> sums(listing.columns.size());
    for (; !records.isEOF(); records.MoveNext()) {
        QStringList row;
        row.reserve(listing.columns.size());
        for (qsizetype i = 0; i < listing.columns.size(); ++i) {
            const Value& value = records.Fields(i);
            row += listCellText(listing.columns[i].content, value);
            if (listing.columns[i].summed && !value.isNull())
                sums[i] += value.number();
        }
        rows += row;
    }
    if (rows.isEmpty())
        return rows;
    QStringList total;
    for (qsizetype i = 0; i < listing.columns.size(); ++i)
        total += listing.columns[i].summed ? listCellText(listing.columns[i].content, Value(sums[i])) : QString();
    total[0] = listing.totalCaption;
    rows += total;
    return rows;
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

void ListForm::addLaterCommand(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* action = addCommand(menu, name, caption, {});
    action->setEnabled(false);
    action->setToolTip(u"尚未提供"_s);
}

void ListForm::addSortMenu(int first, std::initializer_list<QStringView> captions)
{
    QMenu* menu = addCommandMenu(u"Menu_Sort"_s, u"&S.排序"_s);
    int index = first;
    for (const QStringView caption : captions) {
        QAction* item = addListCommand(menu, controlName(u"Menu_S"_s, index), caption.toString(), [this, index] {
            Listing next = listing_;
            next.order = index;
            list(std::move(next));
        });
        item->setCheckable(true);
        sortItems_.append({index++, item});
    }
}

void ListForm::addPrintMenu()
{
    QMenu* menu = addCommandMenu(u"Menu_print"_s, u"&P.打印"_s);
    menu->setToolTipsVisible(true);
    addLaterCommand(menu, u"Menu_print1"_s, u"&A.打印流水帐"_s);
    addLaterCommand(menu, u"Menu_print2"_s, u"&B.打印合计报表"_s);
}

void ListForm::addReturnCommand()
{
    addCommand(u"Menu_Return"_s, u"&R.返回"_s, [this] { Menu_Return(); });
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
    count_ = int(qMax<qsizetype>(rows.size() - 1, 0));
    if (count_ > 0) {
        GD->setRows(std::move(rows));
        GD->setEmphasized(count_ + 1);
    } else {
        GD->clearRows();
    }
    GD->select(1);
    updateStatus();
    showState();
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

QWidget* ListForm::firstFocus()
{
    return GD;
}
