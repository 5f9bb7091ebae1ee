#include "platform/base/desktop.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/grid_settings.h"
#include "platform/widgets/style.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <optional>
#include <set>

/// What an operator makes of a grid: the columns' widths, order and choice, the rows that show, the sum of those that
/// are selected.

namespace {

QString& gridOperator()
{
    static QString account;
    return account;
}

/// As it is remembered: "width", or "column:width" where columns have been moved, with "-" behind a hidden one; in the
/// order in which they are seen.
struct Arrangement
{
    QList<int> order;
    QList<int> widths;      ///< by column
    std::vector<bool> away; ///< by column

    /// @return nothing for what was made of another set of columns
    static std::optional<Arrangement> parse(const QString& text, qsizetype columns)
    {
        const QStringList parts = text.split(u',', Qt::SkipEmptyParts);
        if (parts.size() != columns)
            return {};
        Arrangement result{{}, QList<int>(columns, 0), std::vector<bool>(size_t(columns))};
        for (qsizetype place = 0; place < columns; ++place) {
            const QString& part = parts[place];
            const qsizetype colon = part.indexOf(u':');
            const int column = colon < 0 ? int(place) : int(Val(part.left(colon)));
            if (column < 0 || column >= columns || result.order.contains(column))
                return {};
            result.order += column;
            result.widths[column] = int(Val(part.mid(colon + 1)));
            result.away[size_t(column)] = column > 0 && part.endsWith(u'-');
        }
        return result;
    }
};

/// The keys that lead out of the narrowing line into the rows.
bool leadsIntoRows(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

} // namespace

// ---- columns

void Grid::setOperator(const QString& account)
{
    if (gridOperator() == account)
        return;
    gridOperator() = account;
    for (QWidget* widget : QApplication::allWidgets())
        if (auto* grid = qobject_cast<Grid*>(widget); grid && !grid->widthsKey_.isEmpty())
            grid->arrange();
}

QString Grid::ownKey() const
{
    return gridOperator().isEmpty() ? widthsKey_ : gridOperator() + u'/' + widthsKey_;
}

void Grid::rememberWidths(const QString& key)
{
    widthsKey_ = key;
    arrange();
}

/// Columns as the form made them, and over that what is remembered: the operator's own, or else what this user had
/// before operators were told apart.
void Grid::arrange()
{
    arranging_ = true;
    QString kept;
    if (!widthsKey_.isEmpty()) {
        kept = GetSetting(gridSettings, gridSection, ownKey());
        if (kept.isEmpty())
            kept = GetSetting(gridSettings, gridSection, widthsKey_);
    }
    const auto arrangement = Arrangement::parse(kept, columns_.size());
    QHeaderView* header = horizontalHeader();
    putAside_.assign(size_t(columns_.size()), false);
    for (int place = 0; place < columns_.size(); ++place) {
        const int column = arrangement && list_ ? arrangement->order[place] : place;
        header->moveSection(header->visualIndex(column), place);
    }
    for (int column = 0; column < columns_.size(); ++column) {
        const int width = arrangement ? arrangement->widths[column] : 0;
        columns_[column].width = width >= smallestColumn ? width : defaultWidths_[column];
        setColumnWidth(column, style::scaled(columns_[column].width));
        putAside_[size_t(column)] = arrangement && list_ && arrangement->away[size_t(column)];
        showColumn(column);
    }
    arranging_ = false;
    fitColumns();
    placeEditor();
}

void Grid::saveWidths() const
{
    if (widthsKey_.isEmpty())
        return;
    const QHeaderView* header = horizontalHeader();
    bool moved = false;
    for (int place = 0; place < columns_.size(); ++place)
        moved = moved || header->logicalIndex(place) != place;
    QStringList parts;
    for (int place = 0; place < columns_.size(); ++place) {
        const int column = header->logicalIndex(place);
        QString part = plainText(columns_[column].width);
        if (moved)
            part.prepend(plainText(column) + u':');
        if (putAside_[size_t(column)])
            part += u'-';
        parts += part;
    }
    SaveSetting(gridSettings, gridSection, ownKey(), parts.join(u','));
}

void Grid::resetColumns()
{
    // Not "": that would bring back what was there before operators were told apart.
    SaveSetting(gridSettings, gridSection, ownKey(), u"-"_s);
    arrange();
}

void Grid::showColumn(int column)
{
    setColumnHidden(column, columns_[column].hidden || putAside_[size_t(column)]);
}

void Grid::hideColumn(int column, bool hidden)
{
    putAside_[size_t(column)] = hidden;
    showColumn(column);
    if (!hidden)
        setColumnWidth(column, style::scaled(columns_[column].width));
    fitColumns();
    saveWidths();
    applyNarrowing(); // only what shows is searched
}

QList<int> Grid::seenColumns() const
{
    QList<int> result;
    for (int place = 0; place < Cols(); ++place)
        if (const int column = horizontalHeader()->logicalIndex(place); !isColumnHidden(column))
            result += column;
    return result;
}

void Grid::openColumnMenu()
{
    popUpColumnMenu(viewport()->mapToGlobal(QPoint(0, 0)));
}

/// The columns that the program shows at all; the first one stays in sight.
void Grid::popUpColumnMenu(const QPoint& at)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int place = 0; place < Cols(); ++place) {
        const int column = horizontalHeader()->logicalIndex(place);
        if (columns_[column].hidden)
            continue;
        QString caption = (columns_[column].group + u' ' + columns_[column].caption).trimmed();
        QAction* item = menu->addAction(caption.replace(u'&', u"&&"_s));
        item->setObjectName(controlName(u"GridColumn"_s, column));
        item->setCheckable(true);
        item->setChecked(!putAside_[size_t(column)]);
        item->setEnabled(column > 0);
        connect(item, &QAction::triggered, this,
                [this, column](bool shown) { runCommand([=, this] { hideColumn(column, !shown); }); });
    }
    menu->addSeparator();
    QAction* reset = menu->addAction(u"恢复默认列(&R)"_s);
    reset->setObjectName(u"GridColumnsReset"_s);
    connect(reset, &QAction::triggered, this, [this] { runCommand([this] { resetColumns(); }); });
    menu->popup(at);
}

void Grid::fitStretch()
{
    if (fitting_ || arranging_)
        return;
    int stretching = -1;
    int room = viewport()->width();
    const auto ownWidth = [this](int column) { return style::scaled(columns_[column].width); };
    const auto grows = [this](int column) {
        return column < wishedWidths_.size() && columns_[column].kind != ColumnKind::Number &&
               columns_[column].width == defaultWidths_[column];
    };
    for (int column = 0; column < columns_.size(); ++column) {
        if (isColumnHidden(column))
            continue;
        if (columns_[column].stretch)
            stretching = column;
        room -= columns_[column].stretch || grows(column) ? ownWidth(column) : columnWidth(column);
    }
    if (stretching < 0)
        return;
    fitting_ = true;
    const auto granted = [&](int column) {
        const int wanted = grows(column) ? std::max(wishedWidths_[column] - ownWidth(column), 0) : 0;
        const int more = std::clamp(room, 0, wanted);
        room -= more;
        return ownWidth(column) + more;
    };
    const int stretched = granted(stretching);
    for (int column = 0; column < columns_.size(); ++column)
        if (column != stretching && !isColumnHidden(column) && grows(column))
            setColumnWidth(column, granted(column));
    setColumnWidth(stretching, stretched + std::max(room, 0));
    fitting_ = false;
}

// ---- narrowing

void Grid::actAsList()
{
    if (list_)
        return;
    list_ = true;
    TxtNarrow = makeEdit(u"TxtNarrow"_s);
    TxtNarrow->setAccessibleName(u"筛选"_s);
    TxtNarrow->setPlaceholderText(u"几个字，用空格隔开"_s);
    TxtNarrow->installEventFilter(this);
    style::fixWidth(TxtNarrow, 220);
    narrowed_ = makeBadge(u"LabNarrow"_s);
    auto* close = makeButton(
        u"CmdNarrow"_s, u"关闭"_s,
        [this] {
            endNarrowing();
            setFocus();
        },
        -1, ButtonLook::Compact);
    close->setToolTip(u"显示全部行 (Esc)"_s);
    close->setFocusPolicy(Qt::NoFocus);
    auto* line = makePanel(u"PanelNarrow"_s);
    line->setParent(this);
    line->hide();
    QHBoxLayout* row = makeRow({makeLabel(u"LabNarrowing"_s, u"筛选："_s), TxtNarrow, narrowed_, nullptr, close});
    row->setContentsMargins(style::spacing, 3, style::spacing / 2, 3);
    line->setLayout(row);
    narrowing_ = line;
    connect(TxtNarrow, &QLineEdit::textChanged, this, [this](const QString& text) {
        runCommand([&] {
            words_ = foldedText(text).split(u' ', Qt::SkipEmptyParts);
            applyNarrowing();
        });
    });
    setAttribute(Qt::WA_InputMethodEnabled);
    addAction(u"GridNarrow"_s, u"筛选(&F)"_s, QKeySequence::Find, &Grid::openNarrowing)
        ->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(u"GridColumns"_s, u"显示的列(&L)"_s, {}, &Grid::openColumnMenu);
    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(horizontalHeader(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { popUpColumnMenu(horizontalHeader()->mapToGlobal(at)); });
}

void Grid::openNarrowing()
{
    if (narrowing_->isHidden()) {
        narrowing_->show();
        tellNarrowing();
        updateGeometries();
    }
    TxtNarrow->setFocus();
    TxtNarrow->selectAll();
}

void Grid::narrow(const QString& text)
{
    if (narrowing_->isHidden()) {
        narrowing_->show();
        updateGeometries();
    }
    TxtNarrow->setText(text);
    tellNarrowing();
}

void Grid::endNarrowing()
{
    if (!list_ || narrowing_->isHidden())
        return;
    const bool inside = TxtNarrow->hasFocus();
    if (inside)
        setFocus(); // before hiding, else the focus would wander on to another field
    TxtNarrow->clear();
    narrowing_->hide();
    updateGeometries();
    if (currentIndex().isValid())
        scrollTo(currentIndex());
}

bool Grid::narrowingKey(QEvent* event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Escape) {
        event->accept(); // it closes the line, not the window that a shortcut would close
        if (event->type() == QEvent::KeyPress)
            endNarrowing();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        setFocus();
        return true;
    }
    if (!leadsIntoRows(key->key()))
        return false;
    setFocus();
    QCoreApplication::sendEvent(this, event);
    return true;
}

/// The data rows without pinned totals.
int Grid::listedRows() const
{
    return Rows() - fixedRows_ - (totalsPinned() ? 1 : 0);
}

bool Grid::narrowed() const
{
    return list_ && shownRows() < listedRows();
}

int Grid::shownRows() const
{
    return Rows() - fixedRows_ - verticalHeader()->hiddenSectionCount();
}

/// The row itself, or the nearest one that shows, if any does.
int Grid::shownRowAt(int row) const
{
    for (int below = row; below < Rows(); ++below)
        if (!isRowHidden(below - fixedRows_))
            return below;
    for (int above = row - 1; above >= fixedRows_; --above)
        if (!isRowHidden(above - fixedRows_))
            return above;
    return row;
}

void Grid::showAllRows()
{
    QHeaderView* rows = verticalHeader();
    if (!list_ || rows->hiddenSectionCount() == 0)
        return;
    const QSignalBlocker quiet(rows); // it would have each row laid out by itself
    rows->setUpdatesEnabled(false);
    for (int row = 0; row < rows->count(); ++row)
        if (rows->isSectionHidden(row))
            rows->setSectionHidden(row, false);
    rows->setUpdatesEnabled(true);
}

void Grid::applyNarrowing()
{
    if (!list_)
        return;
    const int count = listedRows();
    const QList<int> columns = seenColumns();
    std::vector<bool> shows(size_t(std::max(count, 0)), true);
    nothingFound_ = false;
    if (!words_.isEmpty()) {
        QString cells;
        bool any = false;
        for (int row = 0; row < count; ++row) {
            cells.resize(0); // keeps its room
            for (const int column : columns) {
                cells += TextMatrix(row + fixedRows_, column);
                cells += u'\n'; // no word stands in two cells
            }
            cells = foldedText(std::move(cells));
            shows[size_t(row)] = std::ranges::all_of(words_, [&](const QString& word) { return cells.contains(word); });
            any = any || shows[size_t(row)];
        }
        nothingFound_ = !any;
    }
    QHeaderView* rows = verticalHeader();
    bool changed = false;
    if (!nothingFound_) {
        const QSignalBlocker quiet(rows);
        rows->setUpdatesEnabled(false);
        for (int row = 0; row < count; ++row)
            if (rows->isSectionHidden(row) == shows[size_t(row)]) {
                rows->setSectionHidden(row, !shows[size_t(row)]);
                changed = true;
            }
        rows->setUpdatesEnabled(true);
    }
    tellNarrowing();
    if (!changed)
        return;
    if (const QModelIndex current = currentIndex(); current.isValid()) {
        const QModelIndex kept = indexOf(shownRowAt(rowOf(current)), current.column());
        setCurrentIndex(kept); // which also leaves nothing selected that is out of sight
        selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    updateGeometries();
    if (currentIndex().isValid())
        scrollTo(currentIndex());
    viewport()->update();
    rows->viewport()->update();
}

void Grid::tellNarrowing()
{
    if (narrowing_->isHidden())
        return;
    const int all = listedRows();
    QString text = u"显示 %1 / %2 行"_s.arg(shownRows()).arg(all);
    if (nothingFound_)
        text = u"没有符合的行，%1"_s.arg(text);
    else if (narrowed())
        text += totalsPinned() ? u"　合计和打印的仍是全部行"_s : u"　打印的仍是全部行"_s;
    setBadge(narrowed_, text, BadgeLook::Warning);
    if (!nothingFound_)
        setLook(narrowed_, LabelLook::Field);
}

// ---- the sum of what is selected

void Grid::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTableView::selectionChanged(selected, deselected);
    showSelection();
}

void Grid::focusInEvent(QFocusEvent* event)
{
    QTableView::focusInEvent(event);
    showSelection();
}

void Grid::focusOutEvent(QFocusEvent* event)
{
    QTableView::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        setStatusSelection({});
}

void Grid::hideEvent(QHideEvent* event)
{
    QTableView::hideEvent(event);
    if (hasFocus())
        setStatusSelection({});
}

/// The rows selected, and what they come to in the current column.
void Grid::showSelection() const
{
    if (!hasFocus())
        return;
    int count = 0;
    DecimalSum sum;
    const int column = currentIndex().column();
    const bool number = column >= 0 && column < columns_.size() && columns_[column].kind == ColumnKind::Number;
    std::set<std::pair<int, int>> ranges; // one range a row, where rows are selected
    for (const QItemSelectionRange& range : selectionModel()->selection())
        ranges.insert({range.top(), range.bottom()});
    int next = 0;
    for (const auto& [top, bottom] : ranges)
        for (int row = std::max(top, next); row <= bottom; ++row) {
            next = row + 1;
            if (isRowHidden(row))
                continue;
            ++count;
            if (number)
                sum.add(TextMatrix(row + fixedRows_, column));
        }
    if (count < 2)
        return setStatusSelection({});
    const QString rows = u"已选 %1 行"_s.arg(count);
    setStatusSelection(number ? u"%1　%2 合计 %3"_s.arg(rows, TextMatrix(fixedRows_ - 1, column), sum.text()) : rows);
}
