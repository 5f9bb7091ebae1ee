#pragma once

#include "documents/document_kind.h"
#include "platform/base/value.h"

#include <QWidget>

class Grid;
class Recordset;
class GoodsLookup;
class NewGoodsPanel;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

/// A line as the grid's texts say it.
struct DocumentLine
{
    QString code;
    double quantity = 0; ///< pieces; the counted ones on a stock-take
    double book = 0;     ///< book quantity, on a stock-take
    double price = 0;    ///< money a piece, as the grid shows it
    QString remark;
};

/// The lines of a document: the grid `GdMx` and, while a document is entered, the panel `PicLRQ` above it, where a
/// goods code and a quantity make a line. Sums and prices are those of the grid's texts.
class LineEntry : public QWidget
{
    Q_OBJECT

public:
    explicit LineEntry(const DocumentTraits& kind);

    /// Shows the stored lines of a document; none leaves one empty row.
    void load(const QString& number);
    void clear();
    /// While a document is entered, cells open and the panel shows. `storedNumber` is the number that the document has
    /// in the ledger, or is to have: its own lines don't count as promised to others.
    void setEntering(bool entering, const QString& storedNumber = {});
    /// An empty row at the bottom, for the next line; its cell becomes current.
    void openNextRow();
    /// Hides price and amount where no prices are kept.
    void followSettings();

    /// The code box takes the focus, its text selected.
    void focusCode();
    bool endEdit();
    void cancelEdit();
    bool isEmpty() const; ///< whether the first row has no code
    QList<DocumentLine> lines() const;
    /// Rows that hold a code.
    int count() const;
    int currentRow() const;
    /// The document's total as `Txt(5)` shows it: money in the price format, or pieces where no prices are kept.
    QString totalText() const;

    /// Enters a line of another document anew: name, unit and price are those that entering its code gives now, and
    /// what would refuse the line does so here. The caller shows the sums afterwards with `openNextRow`.
    /// @return why there is no such line, or ""
    /// @throws StoreError
    QString takeOver(const QString& code, double quantity, const QString& remark);
    /// The cells of the rows that hold a code.
    QList<QStringList> shownLines() const;
    /// Shows such rows in place of what there is, their prices as 0 if they aren't for this operator.
    void showLines(QList<QStringList> rows, bool withPrices);
    /// What stands in the panel, code and quantity, unless it only repeats the current row.
    std::pair<QString, QString> panelTexts() const;
    void showPanelTexts(const QString& code, const QString& quantity);

    void AddGoodsLine();
    void deleteLine();
    void lookUp();

    QFrame* PicLRQ = nullptr;
    QLineEdit* TxtHPBM = nullptr;
    QLineEdit* TxtSL = nullptr;
    QPushButton* CmdEnter = nullptr;
    QPushButton* CmdDel = nullptr;
    QPushButton* CmdQuery = nullptr;
    Grid* GdMx = nullptr;
    GoodsLookup* lookup = nullptr;
    NewGoodsPanel* newGoods = nullptr; ///< where the kind has it

signals:
    void changed(); ///< a line was added, changed or removed
    void rowReached(int row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum LineColumn { Code, Name, Third, Quantity, Price, Amount, Remark };

    void build();
    bool mayEdit(int row, int column) const;
    bool finishCell(int row, int column, const QString& before, const QString& after);
    bool finishCode(int row, const QString& before, const QString& after);
    bool finishNumber(int row, int column, const QString& after);
    QPoint cellAfter(int row, int column) const;
    void followCell(int row);
    void takeGoods(const QString& code);
    void fillLastRow(const Recordset& goods);
    int findRow(const QString& code, int except = 0) const;
    void removeRow(int row);
    void keepEmptyRow();
    /// What a row's quantity counts for: a stock-take counts by the difference to the book.
    double weight(int row) const;
    void updateAmount(int row);
    bool stockCovers(const QString& code, double quantity) const;
    QString offeredPrice(const Value& price) const;

    const DocumentTraits& kind_;
    bool entering_ = false;
    QString storedNumber_;
};
