#include "platform/widgets/grid.h"

#include "platform/base/clock.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid_settings.h"
#include "platform/widgets/style.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStandardPaths>
#include <QStyledItemDelegate>

#include <set>

/// The texts of a grid: the captions apart, data rows counted from 0 as the toolkit does. A row may hold fewer cells
/// than there are columns.
class GridModel : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;
    static constexpr int groupRole = Qt::UserRole;

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(rows_.size()); }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : int(columns_.size());
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        switch (role) {
        case Qt::DisplayRole:
            return text(index.row(), index.column());
        case Qt::TextAlignmentRole:
            return alignment(index.column());
        case Qt::ForegroundRole:
            if (columns_[index.column()].kind == ColumnKind::Number) {
                const QString shown = text(index.row(), index.column());
                if (shown.startsWith(u'-') && Val(shown) < 0)
                    return style::color(style::Role::Negative);
            }
            return {};
        case Qt::BackgroundRole:
            return emphasized_.contains(index.row()) ? style::color(style::Role::HeaderGround) : QVariant();
        case Qt::FontRole:
            if (emphasized_.contains(index.row())) {
                QFont font = QApplication::font();
                font.setBold(true);
                return font;
            }
            return {};
        default:
            return {};
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation == Qt::Vertical) {
            if (role == Qt::TextAlignmentRole)
                return int(Qt::AlignCenter);
            return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
        }
        if (role == Qt::TextAlignmentRole)
            return alignment(section);
        if (role == groupRole)
            return columns_[section].group;
        return role == Qt::DisplayRole ? QVariant(columns_[section].caption) : QVariant();
    }

    QString text(int row, int column) const
    {
        const QStringList& cells = rows_[row];
        return column < cells.size() ? cells[column] : QString();
    }

    void setText(int row, int column, const QString& text)
    {
        QStringList& cells = rows_[row];
        while (cells.size() <= column)
            cells.append(QString());
        cells[column] = text;
        emit dataChanged(index(row, column), index(row, column));
    }

    const QStringList& texts(int row) const { return rows_[row]; }

    QString caption(int column) const { return columns_[column].caption; }
    QString group(int column) const { return columns_[column].group; }
    /// As it reads where no group stands above it.
    QString captionAlone(int column) const
    {
        const GridColumn& header = columns_[column];
        return header.group.isEmpty() ? header.caption : header.group + u' ' + header.caption;
    }
    /// @param headerRow above all others 0
    void setHeader(int headerRow, int column, const QString& text)
    {
        GridColumn& header = columns_[column];
        (grouped() && headerRow == 0 ? header.group : header.caption) = text;
        emit headerDataChanged(Qt::Horizontal, column, column);
    }
    bool grouped() const
    {
        return std::any_of(columns_.begin(), columns_.end(),
                           [](const auto& column) { return !column.group.isEmpty(); });
    }

    void setColumns(const QList<GridColumn>& columns)
    {
        beginResetModel();
        columns_ = columns;
        rows_.clear();
        emphasized_.clear();
        endResetModel();
    }

    void setRows(QList<QStringList> rows)
    {
        beginResetModel();
        rows_ = std::move(rows);
        emphasized_.clear();
        endResetModel();
    }

    void append(const QList<QStringList>& rows)
    {
        beginInsertRows({}, rowCount(), rowCount() + int(rows.size()) - 1);
        rows_ += rows;
        endInsertRows();
    }

    void remove(int row, int count)
    {
        beginRemoveRows({}, row, row + count - 1);
        rows_.remove(row, count);
        std::set<int> kept;
        for (const int at : emphasized_)
            if (at < row || at >= row + count)
                kept.insert(at < row ? at : at - count);
        emphasized_ = std::move(kept);
        endRemoveRows();
    }

    void emphasize(int row)
    {
        emphasized_.insert(row);
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));
    }

private:
    int alignment(int column) const
    {
        switch (columns_[column].kind) {
        case ColumnKind::Number:
            return int(Qt::AlignRight | Qt::AlignVCenter);
        case ColumnKind::Centred:
            return int(Qt::AlignCenter);
        case ColumnKind::Text:
            break;
        }
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    }

    QList<GridColumn> columns_;
    QList<QStringList> rows_;
    std::set<int> emphasized_;
};

namespace {

/// The whole row is selected; a thin frame tells which of its cells the keys belong to.
class CellPainter : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem plain = option;
        plain.state &= ~QStyle::State_HasFocus;
        QStyledItemDelegate::paint(painter, plain, index);
        if (!(option.state & QStyle::State_HasFocus))
            return;
        painter->save();
        painter->setPen(style::color(style::Role::Accent));
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }

protected:
    /// A number and the text in the next column need more air between them than the toolkit leaves.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->displayAlignment & Qt::AlignRight)
            option->text += u' ';
        else if (option->displayAlignment & Qt::AlignLeft)
            option->text.prepend(u' ');
    }
};

/// The toolkit measures all captions and up to 200 row numbers anew after each change. The captions' height is given,
/// and the last row number is the widest. Groups stand over their captions as one cell.
class GridHeader : public QHeaderView
{
public:
    using QHeaderView::QHeaderView;

    QSize sizeHint() const override
    {
        if (orientation() == Qt::Horizontal)
            return {0, height()};
        return count() == 0 ? QHeaderView::sizeHint() : sectionSizeFromContents(count() - 1);
    }

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override
    {
        const int above = groupOf(section).isEmpty() ? 0 : style::headerHeight();
        QHeaderView::paintSection(painter, rect.adjusted(0, above, 0, 0), section);
    }

    void paintEvent(QPaintEvent* event) override
    {
        QHeaderView::paintEvent(event);
        QPainter painter(viewport());
        for (int first = 0, next = 0; first < count(); first = next) {
            const QString group = groupOf(first);
            int width = 0;
            for (next = first; next < count() && groupOf(next) == group; ++next)
                width += sectionSize(next);
            if (group.isEmpty() || width == 0)
                continue;
            QStyleOptionHeader option;
            initStyleOption(&option);
            option.rect = QRect(sectionViewportPosition(first), 0, width, style::headerHeight());
            option.section = first;
            option.text = group;
            option.textAlignment = Qt::AlignCenter;
            style()->drawControl(QStyle::CE_Header, &option, &painter, this);
        }
    }

private:
    QString groupOf(int section) const
    {
        return orientation() == Qt::Horizontal && model()
                   ? model()->headerData(section, orientation(), GridModel::groupRole).toString()
                   : QString();
    }
};

/// The editor over a cell. A cell of a number column takes no input method, which only this answer keeps away.
class CellEdit : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override
    {
        return query == Qt::ImEnabled && number ? QVariant(false) : QLineEdit::inputMethodQuery(query);
    }

    bool number = false;
};

/// A tab or a line break inside a cell would look like the next cell or row.
QString tabbedLine(QStringList cells)
{
    for (QString& cell : cells)
        for (QChar& c : cell)
            if (c == u'\t' || c == u'\n' || c == u'\r')
                c = u' ';
    return cells.join(u'\t') + u'\n';
}

/// What a cell needs beside its text, the line at its end included.
int cellMargins(const QWidget& grid)
{
    return 2 * (grid.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid) + 1) + 1;
}

constexpr int numbersWidth = 38; ///< of the row numbers, up to 9999; more digits widen it

} // namespace

/// The pinned row, painted below the viewport from the cells of the row that it stands for.
class Grid::Totals : public QWidget
{
public:
    explicit Totals(Grid& grid)
        : QWidget(&grid)
        , grid_(grid)
    {
        hide();
    }

    bool pinned = false;
    QPersistentModelIndex row; ///< its first cell

    /// What a column needs to show its cell whole.
    int widthOf(int column) const
    {
        QString text = textOf(column);
        if (column == firstWithText())
            text.prepend(allRows);
        return QFontMetrics(bold()).horizontalAdvance(text) + 2 * textMargin + 2;
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), style::color(style::Role::HeaderGround));
        const QColor lines = style::color(style::Role::Lines);
        const int left = grid_.viewport()->x() - x();
        painter.setPen(lines);
        painter.drawLine(0, 0, width(), 0);
        painter.drawLine(0, height() - 1, width(), height() - 1);
        painter.drawLine(left - 1, 0, left - 1, height());
        painter.setClipRect(left, 0, width() - left, height());
        painter.setFont(bold());
        const int marked = grid_.narrowed() ? firstWithText() : -1; // it isn't the sum of the rows above it then
        for (int column = 0; column < grid_.Cols(); ++column) {
            const QRect cell(left + grid_.columnViewportPosition(column), 1, grid_.columnWidth(column), height() - 2);
            if (cell.width() == 0)
                continue;
            const QModelIndex index = row.sibling(row.row(), column);
            const auto ink = grid_.model_->data(index, Qt::ForegroundRole).value<QColor>();
            painter.setPen(lines);
            painter.drawLine(cell.topRight(), cell.bottomRight());
            painter.setPen(ink.isValid() ? ink : style::color(style::Role::Text));
            const QRect inside = cell.adjusted(textMargin, 0, -textMargin - 1, 0);
            QString text = textOf(column);
            if (column == marked)
                text.prepend(allRows);
            text = painter.fontMetrics().elidedText(text, Qt::ElideRight, inside.width());
            painter.drawText(inside, grid_.model_->data(index, Qt::TextAlignmentRole).toInt(), text);
        }
    }

private:
    static constexpr int textMargin = 6;
    static constexpr QStringView allRows = u"全部"; // before the totals of a narrowed list

    QString textOf(int column) const { return row.sibling(row.row(), column).data().toString(); }

    int firstWithText() const
    {
        for (int column = 0; column < grid_.Cols(); ++column)
            if (!grid_.isColumnHidden(column) && !textOf(column).isEmpty())
                return column;
        return -1;
    }

    QFont bold() const
    {
        QFont font = grid_.font();
        font.setBold(true);
        return font;
    }

    Grid& grid_;
};

Grid::Grid(const QString& name, QWidget* parent)
    : QTableView(parent)
    , TxtEnter(new CellEdit(viewport()))
    , model_(new GridModel(this))
    , totals_(new Totals(*this))
{
    setObjectName(name);
    TxtEnter->setObjectName(u"TxtEnter"_s);
    TxtEnter->hide();
    TxtEnter->installEventFilter(this);
    connect(TxtEnter, &QLineEdit::returnPressed, this, &Grid::goOn);

    setHorizontalHeader(new GridHeader(Qt::Horizontal, this));
    setVerticalHeader(new GridHeader(Qt::Vertical, this));
    setModel(model_);
    setItemDelegate(new CellPainter(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerItem);
    setCornerButtonEnabled(false);

    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setMinimumSectionSize(smallestColumn);
    for (QHeaderView* header : {verticalHeader(), horizontalHeader()}) {
        header->setHighlightSections(false);
        header->setSectionsClickable(false); // a click there would take the current row from under an edit
    }
    horizontalHeader()->viewport()->installEventFilter(this);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (dragging_ && !fitting_ && column < columns_.size() && width > 0) {
            columns_[column].width = style::unscaled(width);
            widthsChanged_ = true;
        }
        fitStretch();
        placeEditor();
        totals_->update();
    });
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, [this] {
        if (arranging_)
            return;
        saveWidths();
        placeEditor();
        totals_->update();
    });
    for (const auto change : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(model_, change, this, &Grid::unpinTotals);
    // Before it: behind a reset nobody knows any more which row was hidden, and a row of the new list would stay so.
    connect(model_, &QAbstractItemModel::modelAboutToBeReset, this, &Grid::unpinTotals);
    connect(model_, &QAbstractItemModel::dataChanged, totals_, qOverload<>(&QWidget::update));
    connect(model_, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& from, const QModelIndex& to) {
        if (!list_)
            return;
        measureRows(from.row(), to.row());
        fitColumns();
    });

    addAction(u"GridCopy"_s, u"复制(&C)"_s, QKeySequence::Copy, &Grid::copySelection);
    addAction(u"GridCopyAll"_s, u"全部复制(&A)"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_C, &Grid::copyAll);
    addAction(u"GridSave"_s, u"保存为文件(&S)..."_s, Qt::CTRL | Qt::SHIFT | Qt::Key_S, &Grid::saveAs);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    style::follow(this, [this] { dress(); });
}

/// Measures that follow the font.
void Grid::dress()
{
    const bool pinned = totals_->pinned;
    showAllRows(); // a row out of sight would come back in its old height
    unpinTotals();
    verticalHeader()->setMinimumSectionSize(style::rowHeight());
    verticalHeader()->setDefaultSectionSize(style::rowHeight());
    verticalHeader()->setMinimumWidth(style::scaled(numbersWidth));
    horizontalHeader()->setFixedHeight(fixedRows_ * style::headerHeight());
    for (int column = 0; column < columns_.size(); ++column)
        setColumnWidth(column, style::scaled(columns_[column].width));
    measureAllRows();
    if (pinned)
        pinTotals();
    else
        applyNarrowing();
    placeEditor();
    placeNote();
}

void Grid::setColumns(const QList<GridColumn>& columns)
{
    dropEdit();
    showAllRows();
    columns_ = columns;
    defaultWidths_.clear();
    for (const GridColumn& column : columns)
        defaultWidths_ += column.width;
    wishedWidths_.clear();
    model_->setColumns(columns);
    fixedRows_ = model_->grouped() ? 2 : 1;
    horizontalHeader()->setFixedHeight(fixedRows_ * style::headerHeight());
    arrange();
}

void Grid::clearRows()
{
    setRows({QStringList()});
}

void Grid::setRows(QList<QStringList> rows)
{
    dropEdit();
    showAllRows();
    model_->setRows(std::move(rows));
    measureAllRows();
    applyNarrowing();
}

int Grid::Rows() const
{
    return model_->rowCount() + fixedRows_;
}

int Grid::Cols() const
{
    return model_->columnCount();
}

void Grid::setRowCount(int rows)
{
    const int wanted = std::max(rows - fixedRows_, 0);
    const int present = model_->rowCount();
    if (wanted > present) {
        model_->append(QList<QStringList>(wanted - present));
    } else if (wanted < present) {
        if (state_ == EditState::Open && cell_.y() >= rows)
            dropEdit();
        model_->remove(wanted, present - wanted);
    }
}

QString Grid::TextMatrix(int row, int column) const
{
    if (row < 0 || row >= Rows() || column < 0 || column >= Cols())
        return {};
    if (row < fixedRows_)
        return row < fixedRows_ - 1 ? model_->group(column) : model_->caption(column);
    return model_->text(row - fixedRows_, column);
}

QStringList Grid::rowTexts(int row) const
{
    return row < 1 || row >= Rows() ? QStringList() : model_->texts(row - 1);
}

void Grid::SetTextMatrix(int row, int column, const QString& text)
{
    if (row < 0 || row >= Rows() || column < 0 || column >= Cols())
        return;
    if (row < fixedRows_)
        model_->setHeader(row, column, text);
    else
        model_->setText(row - fixedRows_, column, text);
}

void Grid::AddItem(const QString& tabbed)
{
    model_->append({tabbed.split(u'\t')});
}

void Grid::RemoveItem(int row)
{
    if (!isDataRow(row))
        return;
    if (state_ == EditState::Open) {
        if (cell_.y() == row)
            dropEdit();
        else if (cell_.y() > row)
            cell_.ry() -= 1;
    }
    model_->remove(row - fixedRows_, 1);
    if (!words_.isEmpty()) { // it may have been the last one that showed
        showAllRows();
        applyNarrowing();
    }
    placeEditor();
}

int Grid::Row() const
{
    return rowOf(currentIndex());
}

int Grid::Col() const
{
    return std::max(currentIndex().column(), 0);
}

void Grid::select(int row, int column)
{
    if (!isDataRow(row) || (state_ == EditState::Open && !endEdit()))
        return;
    const QModelIndex index = indexOf(shownRowAt(row), std::clamp(column, 0, std::max(Cols() - 1, 0)));
    setCurrentIndex(index);
    scrollTo(index);
}

bool Grid::columnVisible(int column) const
{
    return column >= 0 && column < Cols() && !columns_[column].hidden;
}

void Grid::setColumnVisible(int column, bool visible)
{
    if (column < 0 || column >= Cols())
        return;
    columns_[column].hidden = !visible;
    showColumn(column);
    fitStretch();
}

QModelIndex Grid::indexOf(int row, int column) const
{
    return model_->index(row - fixedRows_, column);
}

// ---- the pinned row

void Grid::pinTotals()
{
    unpinTotals();
    const int last = model_->rowCount() - 1;
    if (last < 0 || Cols() == 0)
        return;
    model_->emphasize(last);
    setRowHidden(last, true);
    totals_->pinned = true;
    totals_->row = model_->index(last, 0);
    fitColumns();
    if (!words_.isEmpty())
        applyNarrowing(); // which took them for a row
    updateGeometries();
}

/// What a list's columns need to show these rows, as far as it is more than before.
void Grid::measureRows(int first, int last)
{
    constexpr int measured = 500; // a long list's texts aren't all measured for a few more letters
    const QFontMetrics metrics(font());
    const int digit = metrics.horizontalAdvance(u'0'); // the widest character of a number
    const int blank = metrics.horizontalAdvance(u' ') + cellMargins(*this);
    wishedWidths_.resize(list_ ? Cols() : 0);
    for (int column = 0; column < wishedWidths_.size(); ++column) {
        const bool figures = columns_[column].kind == ColumnKind::Number;
        const int end = figures ? last : std::min(last, measured - 1);
        int widest = 0;
        for (int row = first; row <= end; ++row) {
            const QString text = model_->text(row, column);
            widest = std::max(widest, figures ? int(text.size()) * digit : metrics.horizontalAdvance(text));
        }
        wishedWidths_[column] = std::max(wishedWidths_[column], widest + blank);
    }
}

void Grid::measureAllRows()
{
    wishedWidths_.clear();
    measureRows(0, model_->rowCount() - 1);
    fitColumns();
}

/// A number that is cut off reads as another one, so its column grows in any case; those of texts where there is room.
void Grid::fitColumns()
{
    for (int column = 0; column < Cols(); ++column)
        if (!isColumnHidden(column) && columns_[column].kind == ColumnKind::Number)
            setColumnWidth(column, std::max({columnWidth(column), wishedWidths_.value(column),
                                             totals_->pinned ? totals_->widthOf(column) : 0}));
    fitStretch();
}

// ---- the words of an empty list

void Grid::setEmptyNote(const QString& text)
{
    if (!note_) {
        note_ = makeLabel(objectName() + u"None"_s, QString());
        note_->setParent(viewport());
        note_->setWordWrap(true);
        note_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        note_->setAttribute(Qt::WA_TransparentForMouseEvents);
        setLook(note_, LabelLook::Field);
        for (const auto change : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
            connect(model_, change, this, &Grid::placeNote);
        connect(model_, &QAbstractItemModel::modelReset, this, &Grid::placeNote);
        connect(model_, &QAbstractItemModel::dataChanged, this, &Grid::placeNote);
    }
    note_->setText(text);
    placeNote();
}

bool Grid::emptyList() const
{
    if (model_->rowCount() != 1)
        return model_->rowCount() == 0;
    const QStringList& cells = model_->texts(0);
    return std::all_of(cells.begin(), cells.end(), [](const QString& cell) { return cell.isEmpty(); });
}

void Grid::placeNote()
{
    if (!note_)
        return;
    const bool shown = !note_->text().isEmpty() && emptyList();
    note_->setVisible(shown);
    setAccessibleDescription(shown ? note_->text() : QString());
    const int room = viewport()->width() - 4 * style::spacing;
    note_->setGeometry(2 * style::spacing, 2 * style::rowHeight(), room, qMax(0, note_->heightForWidth(room)));
}

bool Grid::totalsPinned() const
{
    return totals_->pinned;
}

void Grid::unpinTotals()
{
    if (!std::exchange(totals_->pinned, false))
        return;
    if (totals_->row.isValid())
        setRowHidden(totals_->row.row(), false);
    totals_->row = QModelIndex();
    updateGeometries();
}

void Grid::updateGeometries()
{
    QTableView::updateGeometries(); // which knows nothing of a margin at the bottom and takes it away
    placeTotals();
}

/// Right below the rows; at the lower edge, with room of its own, when they fill the grid.
void Grid::placeTotals()
{
    const bool pinned = totals_->pinned && totals_->row.isValid();
    const QMargins margins = viewportMargins();
    const int line = narrowing_ && !narrowing_->isHidden() ? narrowing_->sizeHint().height() : 0;
    const int room = viewport()->height() + margins.bottom() - line;
    const int rows = verticalHeader()->length();
    const int reserved = pinned && rows + style::rowHeight() > room ? style::rowHeight() : 0;
    if (margins.bottom() != reserved + line)
        setViewportMargins(margins.left(), margins.top(), margins.right(), reserved + line);
    if (line > 0) {
        const int left = verticalHeader()->x();
        narrowing_->setGeometry(left, viewport()->geometry().bottom() + 1 + reserved,
                                viewport()->geometry().right() + 1 - left, line);
        narrowing_->raise();
    }
    totals_->setVisible(pinned);
    if (!pinned)
        return;
    const QRect view = viewport()->geometry();
    const int left = verticalHeader()->x();
    totals_->setGeometry(left, view.top() + std::min(rows, view.height()), view.right() + 1 - left, style::rowHeight());
    totals_->raise();
    totals_->update();
}

// ---- in-cell editing

bool Grid::editing() const
{
    return state_ != EditState::Idle;
}

bool Grid::opens(int row, int column) const
{
    if (!mayEdit || !isDataRow(row) || !columnVisible(column))
        return false;
    bool may = false;
    runCommand([&] { may = mayEdit(row, column); });
    return may;
}

void Grid::edit(int row, int column)
{
    if (state_ == EditState::Ending || !endEdit())
        return;
    select(row, column);
    if (opens(row, column))
        openEditor(row, column);
}

/// What a click or an arrow does once the cell is current.
void Grid::reach(int row, int column)
{
    runCommand([&] { emit cellReached(row, column); });
    if (state_ == EditState::Idle && Row() == row && Col() == column && opens(row, column))
        openEditor(row, column);
}

void Grid::openEditor(int row, int column)
{
    state_ = EditState::Open;
    cell_ = {column, row};
    before_ = TextMatrix(row, column);
    const bool number = columns_[column].kind == ColumnKind::Number;
    static_cast<CellEdit*>(TxtEnter)->number = number;
    TxtEnter->setAlignment((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    TxtEnter->setAccessibleName(TextMatrix(fixedRows_ - 1, column));
    TxtEnter->setText(before_);
    placeEditor();
    TxtEnter->show();
    TxtEnter->setFocus();
    TxtEnter->selectAll();
}

bool Grid::endEdit()
{
    if (state_ == EditState::Idle)
        return true;
    if (state_ == EditState::Ending)
        return false; // the box of this very edit is up
    const QString after = TxtEnter->text();
    if (after != before_) {
        state_ = EditState::Ending;
        const QPoint at = cell_;
        bool accepted = true;
        const bool ran = runCommand([&] {
            if (endEditing)
                accepted = endEditing(at.y(), at.x(), before_, after);
            else
                SetTextMatrix(at.y(), at.x(), after);
        });
        if (!ran || !accepted) {
            refuse();
            return false;
        }
    }
    hideEditor();
    return true;
}

/// The old text comes back and the cell keeps the cursor.
void Grid::refuse()
{
    if (cell_.y() >= Rows()) { // the cell went away meanwhile
        hideEditor();
        return;
    }
    state_ = EditState::Open;
    setCurrentIndex(indexOf(cell_.y(), cell_.x()));
    placeEditor();
    TxtEnter->setText(before_);
    TxtEnter->setFocus();
    TxtEnter->selectAll();
}

void Grid::cancelEdit()
{
    if (state_ == EditState::Open)
        hideEditor();
}

void Grid::hideEditor()
{
    state_ = EditState::Idle;
    if (TxtEnter->hasFocus())
        setFocus(); // before hiding, else the focus would wander on to another field
    TxtEnter->hide();
}

/// The rows are about to change: an open edit has lost its cell. One that is ending closes by itself.
void Grid::dropEdit()
{
    if (state_ == EditState::Open)
        hideEditor();
}

void Grid::placeEditor()
{
    if (state_ != EditState::Idle)
        TxtEnter->setGeometry(visualRect(indexOf(cell_.y(), cell_.x())));
}

QPoint Grid::following(int row, int column) const
{
    if (nextCell) {
        QPoint next(-1, -1);
        runCommand([&] { next = nextCell(row, column); });
        return next;
    }
    for (int r = row; r < std::min(row + 2, Rows()); ++r)
        for (int c = r == row ? column + 1 : 0; c < Cols(); ++c)
            if (opens(r, c))
                return {c, r};
    return {-1, -1};
}

void Grid::goOn()
{
    const QPoint from = cell_;
    if (!endEdit())
        return;
    const QPoint next = following(from.y(), from.x());
    edit(next.y(), next.x());
}

void Grid::goBack()
{
    const QPoint from = cell_;
    if (!endEdit())
        return;
    for (int row = from.y(); row >= std::max(from.y() - 1, fixedRows_); --row)
        for (int column = row == from.y() ? from.x() - 1 : Cols() - 1; column >= 0; --column)
            if (opens(row, column)) {
                edit(row, column);
                return;
            }
}

void Grid::goVertically(int step)
{
    const QPoint from = cell_;
    if (!endEdit())
        return;
    const int row = from.y() + step;
    if (!isDataRow(row)) {
        edit(from.y(), from.x());
        return;
    }
    select(row, from.x());
    reach(row, from.x());
}

/// Keys of the open editor that lead out of it. Enter comes through `returnPressed`, which an input method that still
/// composes doesn't raise.
bool Grid::editorKey(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Tab:
        goOn();
        return true;
    case Qt::Key_Backtab:
        goBack();
        return true;
    case Qt::Key_Up:
        goVertically(-1);
        return true;
    case Qt::Key_Down:
        goVertically(1);
        return true;
    case Qt::Key_Escape:
        cancelEdit();
        return true;
    default:
        return false;
    }
}

bool Grid::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == TxtEnter) {
        if (event->type() == QEvent::KeyPress && state_ == EditState::Open)
            return editorKey(static_cast<QKeyEvent*>(event));
        if (event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // A menu, a box or another program in front is no leaving of the cell.
            if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason &&
                reason != Qt::MenuBarFocusReason)
                // Not in the midst of a change of focus: a refusal shows a box and takes the focus back.
                QMetaObject::invokeMethod(
                    this,
                    [this] {
                        if (state_ == EditState::Open && !TxtEnter->hasFocus())
                            endEdit();
                    },
                    Qt::QueuedConnection);
        }
    } else if (watched == horizontalHeader()->viewport()) {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
            dragging_ = true;
            // Groups stand over the columns as they were made.
            horizontalHeader()->setSectionsMovable(list_ && !model_->grouped());
        } else if (event->type() == QEvent::MouseButtonRelease) {
            dragging_ = false;
            if (std::exchange(widthsChanged_, false))
                saveWidths();
        }
    }
    if (TxtNarrow && watched == TxtNarrow && narrowingKey(event))
        return true;
    return QTableView::eventFilter(watched, event);
}

void Grid::keyPressEvent(QKeyEvent* event)
{
    const int row = Row();
    const int column = Col();
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool printable = plain && !event->text().isEmpty() && event->text().at(0).isPrint();
    if (plain && row > 0 && (enter || printable || event->key() == Qt::Key_F2) && opens(row, column)) {
        openEditor(row, column);
        if (printable)
            QCoreApplication::sendEvent(TxtEnter, event); // the text is selected: it replaces it
        return;
    }
    if (enter && plain && row > 0) {
        runCommand([&] { emit activatedRow(row); });
        return;
    }
    if (list_ && plain && event->key() == Qt::Key_Escape && !narrowing_->isHidden()) {
        endNarrowing();
        return;
    }
    if (list_ && printable && !event->text().trimmed().isEmpty()) {
        openNarrowing();
        TxtNarrow->deselect(); // what is typed goes on what stands there
        TxtNarrow->end(false);
        QCoreApplication::sendEvent(TxtNarrow, event);
        return;
    }
    QTableView::keyPressEvent(event);
    const bool extends = event->modifiers() & Qt::ShiftModifier;
    if (state_ == EditState::Idle && plain && !extends && Row() > 0 && (Row() != row || Col() != column))
        reach(Row(), Col());
}

void Grid::inputMethodEvent(QInputMethodEvent* event)
{
    if (list_) {
        openNarrowing();
        QCoreApplication::sendEvent(TxtNarrow, event);
        return;
    }
    if (state_ != EditState::Idle || !opens(Row(), Col())) {
        QTableView::inputMethodEvent(event);
        return;
    }
    openEditor(Row(), Col());
    QCoreApplication::sendEvent(TxtEnter, event);
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTableView::currentChanged(current, previous);
    setAttribute(Qt::WA_InputMethodEnabled,
                 list_ || (current.isValid() && columns_[current.column()].kind != ColumnKind::Number &&
                           opens(rowOf(current), current.column())));
    if (current.column() != previous.column())
        showSelection();
    if (current.isValid() && current.row() != previous.row())
        runCommand([&] { emit currentRowChanged(rowOf(current)); });
}

void Grid::mousePressEvent(QMouseEvent* event)
{
    if (!endEdit()) {
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
    const QModelIndex pressed = indexAt(event->position().toPoint());
    if (pressed.isValid() && event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier &&
        pressed == currentIndex())
        reach(rowOf(pressed), pressed.column());
}

void Grid::mouseMoveEvent(QMouseEvent* event)
{
    if (state_ == EditState::Idle) // else the press that opened the editor would go on selecting rows
        QTableView::mouseMoveEvent(event);
}

void Grid::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (!endEdit()) {
        event->accept();
        return;
    }
    QTableView::mouseDoubleClickEvent(event);
    const QModelIndex hit = indexAt(event->position().toPoint());
    if (hit.isValid() && event->button() == Qt::LeftButton)
        runCommand([&] { emit activatedRow(rowOf(hit)); });
}

void Grid::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    fitStretch();
    placeEditor();
    placeNote();
}

void Grid::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    placeEditor();
    placeNote();
    if (dx != 0)
        totals_->update();
}

// ---- copying and saving

QString Grid::selectionAsText() const
{
    std::set<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    QString result;
    for (const int row : rows) {
        if (isRowHidden(row))
            continue; // selected over, but out of sight
        QStringList cells;
        for (const int column : seenColumns())
            cells += model_->text(row, column);
        result += tabbedLine(cells);
    }
    return result;
}

void Grid::copySelection()
{
    const QString text = selectionAsText();
    if (!text.isEmpty())
        QApplication::clipboard()->setText(text);
}

TableContent Grid::content() const
{
    TableContent table;
    const QList<int> columns = seenColumns();
    for (const int column : columns) {
        table.captions += model_->captionAlone(column);
        table.numeric += columns_[column].kind == ColumnKind::Number;
    }
    const bool some = narrowed();
    for (int row = 0; row < model_->rowCount(); ++row) {
        if (some && isRowHidden(row)) // the totals too, which are hidden where they are pinned
            continue;
        QStringList cells;
        for (const int column : columns)
            cells += model_->text(row, column);
        table.rows += cells;
    }
    const bool placeHolder = table.rows.size() == 1 && table.rows[0].join(QString()).isEmpty();
    if (placeHolder) // of an empty list
        table.rows.clear();
    return table;
}

void Grid::copyAll()
{
    const TableContent table = content();
    QString text = tabbedLine(table.captions);
    for (const QStringList& row : table.rows)
        text += tabbedLine(row);
    QApplication::clipboard()->setText(text);
}

/// The form's caption as a file's name; what stands behind two blanks in it is a remark.
QString Grid::captionOfForm() const
{
    const QWidget* above = parentWidget();
    while (above && !qobject_cast<const Form*>(above))
        above = above->parentWidget();
    static const QRegularExpression forbidden(u"[\\\\/:*?\"<>|]"_s);
    const QString caption = above ? static_cast<const Form*>(above)->Caption() : QString();
    const QString name = Trim(caption.section(u"  "_s, 0, 0).remove(forbidden));
    return name.isEmpty() ? u"表格"_s : name;
}

void Grid::saveAs()
{
    if (!endEdit())
        return;
    const QString folderKey = u"SaveFolder"_s;
    const QString title = captionOfForm();
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString offered = withSeparator(GetSetting(gridSettings, gridSection, folderKey, documents)) + title + u' ' +
                            todayText() + u".xlsx"_s;
    const auto path =
        askFileToWrite(u"保存表格"_s, u"Excel工作簿(*.xlsx)|*.xlsx|逗号分隔的文本(*.csv)|*.csv"_s, offered);
    if (!path)
        return;
    TableContent table = content();
    table.sheet = title;
    const QString failure = writeTable(*path, table);
    if (!failure.isEmpty())
        return MsgBox(u"表格没有保存。\n\n"_s + failure, u"提示"_s, BoxIcon::Exclamation);
    SaveSetting(gridSettings, gridSection, folderKey, folderOf(*path));
    constexpr int panel = 4;
    setStatusPanel(panel, u"表格已保存到："_s + *path);
}

QAction* Grid::addAction(const QString& name, const QString& caption, const QKeySequence& key, void (Grid::*run)())
{
    auto* action = new QAction(caption, this);
    action->setObjectName(name);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, [this, run] { runCommand([this, run] { (this->*run)(); }); });
    QTableView::addAction(action);
    return action;
}
