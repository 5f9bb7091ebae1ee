#pragma once

#include "platform/base/text.h"

#include <QList>
#include <QMarginsF>
#include <QRectF>
#include <QString>

#include <optional>
#include <variant>

/// Report layouts: XML files in millimetres that a user can change, described in docs/layouts.md. In here all lengths
/// are tenths of a millimetre.

/// What is wrong with a layout, and where.
struct LayoutFault
{
    QString file;
    qint64 line = 0; ///< from 1; 0 when the file as a whole is meant
    QString message;

    /// For an error box: file, line and message in one sentence.
    QString text() const;
};

struct ReportItem
{
    enum class Kind { Text, Field, Formula, Sum, Count, RowNumber, Page, Line, Box, Picture };
    enum class Fit { Wrap, Shrink };
    enum class Over { Report, Group, Page };
    enum class Format { AsIs, Mask, Capitals, Date, LongDate };

    Kind kind = Kind::Text;
    QRectF place; ///< within the band, from the left margin
    QString name; ///< the column, or the name of the formula or picture
    QString text; ///< of Text and Page; what a Formula shows that the caller did not give
    QString before;
    QString after;
    Format format = Format::AsIs;
    QString mask;
    bool blankZero = false;
    QString omitted; ///< a value that prints nothing
    QString unless;  ///< a column, or a formula where no column is called so: only where it is blank the item prints
    bool bold = false;
    bool frame = false;
    int fontSize = 32; ///< the em
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    Fit fit = Fit::Wrap;
    Over over = Over::Report;
    int group = -1; ///< the group that Over::Group means, 0 is the outermost
    double thickness = 2;
    qint64 line = 0;
    int column = -1; ///< filled by the report
    int unlessColumn = -1;
};

struct ReportBand
{
    double height = 0; ///< 0: the layout has no such band
    bool grows = true; ///< with texts that wrap
    bool repeats = false;
    QList<ReportItem> items;
    qint64 line = 0;
};

struct ReportGroup
{
    QString by; ///< a column; a new group begins where its value, or that of a group around it, changes
    bool newPage = false;
    ReportBand header;
    ReportBand footer;
    qint64 line = 0;
    int column = -1; ///< filled by the report
};

/// Where the rows come from; the engine itself does not read it.
struct ReportSource
{
    QString table;
    QString order;
    QString statement;
    qint64 line = 0;
};

struct ReportLayout
{
    QString file; ///< the name without its folder
    QString title;
    ReportSource source;
    bool printersPaper = false; ///< whatever lies in the printer; `paper` is A4 then, for want of a better guess
    QSizeF paper;
    QMarginsF margins;
    QPointF offset;
    ReportBand reportHeader;
    ReportBand pageHeader;
    QList<ReportGroup> groups;
    ReportBand detail;
    int rowsPerPage = 0; ///< 0: as many as fit
    bool fill = false;   ///< blank rows down to the foot of the page
    ReportBand summary;
    ReportBand pageFooter;
};

/// Reads a layout file in UTF-8 or GB18030 and checks it whole. The first fault found is given.
std::variant<ReportLayout, LayoutFault> readLayout(const QString& path);
/// The same from a text; `file` is what faults name.
std::variant<ReportLayout, LayoutFault> parseLayout(const QString& text, const QString& file);
/// The first place where the layout asks for a column that is not among those, or nothing.
std::optional<LayoutFault> missingColumn(const ReportLayout& layout, const QStringList& columns);
