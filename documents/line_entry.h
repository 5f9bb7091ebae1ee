#pragma once

#include "documents/document_kind.h"
#include "platform/base/value.h"

#include <QWidget>

#include <optional>

class Grid;
class Recordset;
class GoodsLookup;
class NewGoodsPanel;
struct PastedLine;
class QKeyEvent;
class QCheckBox;
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
    /// An empty row at the bottom, for the next line; its cell becomes current and opens. Who scans goes on in the code
    /// box.
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
    /// The code in the panel, if no line has it.
    QString codeWithoutLine() const;
    void showPanelTexts(const QString& code, const QString& quantity);
    /// A text that is being typed into a cell.
    struct OpenCell
    {
        QString code; ///< of the line; empty in the last row
        int column = 0;
        QString text;
    };
    std::optional<OpenCell> openCell() const;
    void reopenCell(const OpenCell& cell);

    void AddGoodsLine();
    void deleteLine();
    void lookUp();
    /// From the panel to the quantity of the line that has its code, or of the current one when it holds none.
    bool goToLines();
    /// Enters the lines that were copied from a spreadsheet (see pastedLines), each by the same rules as a typed one,
    /// and lists those that were refused. A failure of the ledger leaves the lines as they were.
    /// @throws StoreError
    void pasteLines(const QString& text);

    QFrame* PicLRQ = nullptr;
    QLineEdit* TxtHPBM = nullptr;
    QLineEdit* TxtSL = nullptr;
    QPushButton* CmdEnter = nullptr;
    QPushButton* CmdDel = nullptr;
    QPushButton* CmdQuery = nullptr;
    QCheckBox* ChkScan = nullptr; ///< a code and its Enter add one piece, as a scanner sends them; kept by operator
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

    /// Why a line isn't taken, as the operator is told it; no text when it is.
    struct Refusal
    {
        QString text;
        QString title;
        QString listed = text.section(u'\n', 0, 0); ///< in a list of refused lines
        bool unknown = false;                       ///< there are no such goods
        explicit operator bool() const { return !text.isEmpty(); }
    };

    void build();
    void connectCode();
    void connectScan();
    bool mayEdit(int row, int column) const;
    bool finishCell(int row, int column, const QString& before, const QString& after);
    bool finishCode(int row, const QString& before, const QString& after);
    bool finishNumber(int row, int column, const QString& after);
    QPoint cellAfter(int row, int column) const;
    void followCell(int row);
    void takeGoods(const QString& code);
    void enterCode();
    bool pasteKey(const QKeyEvent& key);
    /// Adds pieces to the line of that code, or a line. It shows no box and tells nobody of the change.
    /// @throws StoreError
    Refusal place(const QString& code, double quantity);
    QString placePasted(const PastedLine& line, QString& note);
    void setNumber(int row, int column, double number);
    static std::optional<QString> scannedName(const QString& text);
    static bool meantAsQuantity(const QString& text);
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
