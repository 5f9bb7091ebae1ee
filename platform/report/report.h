#pragma once

#include "platform/base/value.h"
#include "platform/report/layout.h"
#include "platform/workbook/table_file.h"

#include <QHash>
#include <QImage>
#include <QSizeF>
#include <QStringList>

#include <map>
#include <memory>
#include <tuple>
#include <vector>

class QPagedPaintDevice;
class QPainter;

/// The rows behind a report: what the caller has in hand, a staging table or a statement. Sorted as they shall print.
class RowSource
{
public:
    virtual ~RowSource() = default;
    virtual QStringList columns() const = 0;
    virtual qsizetype rowCount() const = 0;
    /// Row and column count from 0.
    virtual Value value(qsizetype row, int column) const = 0;
};

/// Rows in memory.
class RowList : public RowSource
{
public:
    RowList(QStringList columns, QList<QList<Value>> rows)
        : columns_(std::move(columns))
        , rows_(std::move(rows))
    {}
    QStringList columns() const override { return columns_; }
    qsizetype rowCount() const override { return rows_.size(); }
    Value value(qsizetype row, int column) const override { return rows_[row].value(column); }

private:
    QStringList columns_;
    QList<QList<Value>> rows_;
};

/// A layout filled with rows and named texts. The pages are laid out at once, so that "page N of M" is known; a page is
/// drawn when it is asked for. Needs a QGuiApplication for its fonts.
class Report
{
public:
    /// @param layout  its columns must be among those of the rows (`missingColumn`)
    /// @param texts   the formulas, by name (case does not matter)
    /// @param pictures  likewise; a layout's place for one that isn't among them stays blank
    /// @param printersPaper  size in millimetres for a layout that takes the printer's own paper; empty if unknown
    Report(ReportLayout layout, std::shared_ptr<const RowSource> rows, const QHash<QString, QString>& texts,
           QSizeF printersPaper = {}, const QHash<QString, QImage>& pictures = {});
    /// The same report on a printer's paper of another size.
    Report(const Report& other, QSizeF printersPaper);
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    ~Report();

    /// A text as it stands on a page: place in tenths of a millimetre from the corner of the paper.
    struct PlacedText
    {
        QString text;
        QRectF place;
    };

    int pageCount() const;
    QString title() const { return layout_.title; }
    bool takesPrintersPaper() const { return layout_.printersPaper; }
    /// Paper size in millimetres.
    QSizeF paperSize() const;
    /// Draws a page, counted from 1. The painter's unit must be a tenth of a millimetre: scaled by dpi/254.
    void draw(QPainter& painter, int page) const;
    /// All texts of a page, counted from 1, each whole, in the order of the bands and of the items in them.
    QStringList pageTexts(int page) const;
    /// The same with their places.
    std::vector<PlacedText> placedTexts(int page) const;
    /// The rows as a table: the fields of the detail band under the captions that stand above them, sums among them.
    TableContent table() const;
    /// Draws pages first to last on a PDF writer or a printer, whose paper and margins it sets.
    /// @param paper  in millimetres, if it isn't the layout's: the page stands in its upper left corner then, made
    ///               smaller if it would not fit
    /// @return false when the device can't be opened or a page can't be begun
    bool print(QPagedPaintDevice& device, int first, int last, QSizeF paper = {}) const;
    /// @return false when the file can't be written; an old one is whole then
    bool toPdf(const QString& path) const;

private:
    class TableMaker;
    struct Piece
    {
        const ReportBand* band;
        double y;
        double room;   ///< it must not grow beyond
        qsizetype row; ///< -1 there is none
        bool blank;
    };
    struct Page
    {
        std::vector<Piece> pieces;
        qsizetype firstRow = 0;
        qsizetype endRow = 0;
    };
    struct Rise
    {
        double edge;
        double by;
    };
    struct Lines
    {
        QStringList lines;
        double size = 0;
    };
    class Measure;

    void build(QSizeF printersPaper);
    void resolveColumns();
    void findGroups();
    void layOut();
    void startPage(qsizetype row, int openGroups);
    void place(const ReportBand& band, qsizetype row, bool blank = false);
    void fillUp(double keepFree);
    double bottom() const;
    double heightOf(const ReportBand& band, qsizetype row, double room) const;
    std::vector<Rise> risesOf(const ReportBand& band, qsizetype row, int page, double room) const;
    bool blankAt(const ReportItem& item, qsizetype row) const;
    QString textOf(const ReportItem& item, qsizetype row, int page) const;
    QString contentOf(const ReportItem& item, qsizetype row, int page) const;
    QString formatted(const ReportItem& item, const Value& value) const;
    double sumOf(const ReportItem& item, qsizetype first, qsizetype end) const;
    std::pair<qsizetype, qsizetype> rangeOf(const ReportItem& item, qsizetype row, int page) const;
    Lines linesOf(const ReportItem& item, const QString& text, double height) const;
    template <class Take>
    void eachPiece(int page, Take take) const;
    void drawItem(QPainter& painter, const ReportItem& item, const QRectF& place, const QString& text) const;

    ReportLayout layout_;
    std::shared_ptr<const RowSource> rows_;
    QHash<QString, QString> texts_;
    QHash<QString, QImage> pictures_;
    std::unique_ptr<Measure> measure_;
    std::vector<std::vector<qsizetype>> groupStarts_; ///< by group, rows where one begins
    std::vector<int> breakLevels_;                    ///< by row, the outermost group that begins there
    std::vector<Page> pages_;
    double y_ = 0;
    int rowsOnPage_ = 0; ///< group footers count as well
    mutable std::map<std::tuple<const ReportItem*, qsizetype, qsizetype>, double> sums_;
};
