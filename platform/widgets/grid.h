#pragma once

#include "platform/base/text.h"
#include "platform/workbook/table_file.h"

#include <QLineEdit>
#include <QStringList>
#include <QTableView>

#include <functional>
#include <vector>

class GridModel;
class QLabel;
class QMenu;

/// What a grid shows in a column; the cells are texts in any case, and a cell's text is data.
enum class ColumnKind { Text, Number, Centred };

struct GridColumn
{
    QString caption;
    int width = 100; ///< pixels with the standard font; the operator's own width is remembered over it
    ColumnKind kind = ColumnKind::Text;
    bool hidden = false;
    bool stretch = false; ///< takes what width the others leave, but no less than its own; one column at most. In a
                          ///< list texts that are cut off come first, where the operator set no other width
    QString group = {};   ///< neighbours with the same one stand under it, in a header row of its own
};

/// A grid of text cells. Row 0 holds the captions and shows as the header; data rows count from 1, columns from 0.
/// Where columns have groups, row 0 holds these and row 1 the captions, and data rows count from 2.
class Grid : public QTableView
{
    Q_OBJECT

public:
    /// `name` becomes the objectName ("GD").
    explicit Grid(const QString& name, QWidget* parent = nullptr);

    /// Sets the columns and leaves no data row.
    void setColumns(const QList<GridColumn>& columns);
    /// Leaves one empty data row, as the forms show an empty list.
    void clearRows();
    /// Replaces all data rows at once; the fast way to fill. An empty list leaves no data row. An edit that is open is
    /// dropped, as with every change that takes the edited row away.
    void setRows(QList<QStringList> rows);

    int Rows() const; ///< header rows included
    int Cols() const;
    void setRowCount(int rows);                    ///< header rows included
    QString TextMatrix(int row, int column) const; ///< "" outside the grid
    QStringList rowTexts(int row) const;           ///< of a data row; empty cells at its end may be left out
    void SetTextMatrix(int row, int column, const QString& text);
    /// A row from tab-separated cells, at the end.
    void AddItem(const QString& tabbed);
    void RemoveItem(int row);

    /// The current cell; row 0 when there is none.
    int Row() const;
    int Col() const;
    /// Makes a cell current and scrolls to it. No editor opens by it.
    void select(int row, int column = 0);

    /// Whether the program shows the column, which a right or a setting may forbid. An operator who has hidden it has
    /// only put it aside: prints still have it.
    bool columnVisible(int column) const;
    void setColumnVisible(int column, bool visible);
    /// Sets the last row off and keeps it in view below the others, until rows come or go.
    void pinTotals();
    /// What stands below the one empty row of an empty list: why there is nothing, and what to do. "" for no words.
    void setEmptyNote(const QString& text);

    /// In-cell editing with the one line edit `TxtEnter` over the grid. A cell opens when it is clicked, reached by the
    /// arrows, or typed into. Enter and Tab end the edit and go to `nextCell`, Up and Down to the neighbouring row, Esc
    /// drops it. All functions run through `runCommand`; a failure in `endEditing` refuses.

    /// Whether the cell opens when it is clicked or reached. Without it no cell does.
    std::function<bool(int row, int column)> mayEdit;
    /// Called once when an edit ends with another text than it began with. Writes the cells itself (without it the grid
    /// writes the text); false refuses: the old text comes back and the cell keeps the cursor.
    std::function<bool(int row, int column, const QString& before, const QString& after)> endEditing;
    /// Where Enter leads from a cell, once its edit has ended: x column, y row of the cell to go to; outside the grid
    /// for none. Without it the next cell of the row that opens, then the first such of the next row.
    std::function<QPoint(int row, int column)> nextCell;
    /// Opens the editor on a cell if `mayEdit` allows, else only makes it current.
    void edit(int row, int column);
    using QTableView::edit;
    bool editing() const;
    /// The only way out of an edit: true when none is open or it ended well; false when it was refused, or while its
    /// ending is still under way. Commands call it first and stop on false.
    bool endEdit();
    /// Drops the text being typed; the cell keeps its old one.
    void cancelEdit();
    QLineEdit* TxtEnter = nullptr;

    /// The selected rows as text, cells separated by tabs: what Ctrl+C puts on the clipboard.
    QString selectionAsText() const;
    void copySelection();
    /// The captions and all rows of the columns that show, in their order: what leaves the program is what is seen.
    TableContent content() const;
    /// `content` on the clipboard, cells separated by tabs.
    void copyAll();
    /// `content` as a workbook or as text, in a file that the operator names. The name offered is the form's caption
    /// and the day.
    void saveAs();
    /// Under this name the column widths are remembered per user and operator ("B1/GD"); empty: not at all. After
    /// `setColumns`. With the columns of a list, their order and which of them the operator has hidden.
    void rememberWidths(const QString& key);
    /// Whose arrangement counts from here on; all grids take it over. "" for nobody in particular.
    static void setOperator(const QString& account);
    /// The columns as the form made them; what was remembered is forgotten.
    void resetColumns();

    /// Makes the grid a list of the operator's own: its columns can be hidden and moved (but for the first, by which
    /// records are known, which stays in sight), and its rows narrowed. Not for grids in which something is entered.
    void actAsList();
    /// Shows only the rows that have all words of the text in one of their visible columns, whatever case or width of
    /// letters. A text that no row has changes nothing but says so: the current row is always one that shows, so that
    /// no command meets a row out of sight. All else goes on over all rows: `Rows`, `TextMatrix`, the pinned totals,
    /// prints. Only `content` and copying take what is seen, and leave the totals out, which are those of all rows.
    void narrow(const QString& text);
    /// Opens the line below the rows where that text is typed.
    void openNarrowing();
    /// Shows all rows again and closes it.
    void endNarrowing();
    bool narrowed() const; ///< some rows are out of sight
    int shownRows() const; ///< of the data rows without pinned totals
    QLineEdit* TxtNarrow = nullptr;

signals:
    void currentRowChanged(int row);       ///< by the operator or by `select`
    void cellReached(int row, int column); ///< clicked or reached by the arrows, before an editor opens
    void activatedRow(int row);            ///< double click, or Enter where no cell opens

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void updateGeometries() override;

private:
    void reset() override { QTableView::reset(); } ///< the toolkit's; hidden, as it doesn't touch the rows

    enum class EditState { Idle, Open, Ending };

    bool opens(int row, int column) const;
    void reach(int row, int column);
    void openEditor(int row, int column);
    void hideEditor();
    void dropEdit();
    void refuse();
    void placeEditor();
    bool editorKey(QKeyEvent* event);
    bool narrowingKey(QEvent* event);
    void goOn();
    void goBack();
    void goVertically(int step);
    QPoint following(int row, int column) const;
    void dress();
    void fitStretch();
    void arrange();
    void saveWidths() const;
    QString ownKey() const;
    void hideColumn(int column, bool hidden);
    void showColumn(int column);
    void measureRows(int first, int last);
    void measureAllRows();
    void fitColumns();
    bool emptyList() const;
    void placeNote();
    void openColumnMenu();
    void popUpColumnMenu(const QPoint& at);
    void applyNarrowing();
    void showAllRows();
    void tellNarrowing();
    int shownRowAt(int row) const;
    int listedRows() const;
    bool totalsPinned() const;
    void showSelection() const;
    int rowOf(const QModelIndex& index) const { return index.isValid() ? index.row() + fixedRows_ : 0; }
    bool isDataRow(int row) const { return row >= fixedRows_ && row < Rows(); }
    QModelIndex indexOf(int row, int column) const;
    void unpinTotals();
    void placeTotals();
    QAction* addAction(const QString& name, const QString& caption, const QKeySequence& key, void (Grid::*run)());
    QString captionOfForm() const;
    QList<int> seenColumns() const; ///< in the order in which they are seen

    class Totals;

    GridModel* model_ = nullptr;
    Totals* totals_ = nullptr; ///< the pinned row as it is shown; the row itself is hidden meanwhile
    int fixedRows_ = 1;
    QLabel* note_ = nullptr; ///< of `setEmptyNote`
    QList<GridColumn> columns_;
    EditState state_ = EditState::Idle;
    QPoint cell_;    ///< of the open edit: x column, y row
    QString before_; ///< the text that the edit began with
    QString widthsKey_;
    QList<int> defaultWidths_;
    QList<int> wishedWidths_;    ///< of a list's columns for what stands in them, in pixels
    std::vector<bool> putAside_; ///< columns that the operator has hidden
    bool list_ = false;
    bool arranging_ = false;
    QWidget* narrowing_ = nullptr; ///< the line with `TxtNarrow`
    QLabel* narrowed_ = nullptr;
    QStringList words_; ///< that a row must have to show
    bool nothingFound_ = false;
    bool fitting_ = false;
    bool dragging_ = false; ///< the operator holds a column's edge
    bool widthsChanged_ = false;
};
