#pragma once

#include "platform/base/text.h"

#include <QHash>
#include <QImage>
#include <QStringList>

/// What all print commands of the forms share: test the layout, stage the rows, show the preview.

/// What a print command hands to the print host.
struct PrintOrder
{
    QString reportFile;       ///< in the program folder, found without regard to case
    QStringList formulas;     ///< name='value', in order from index 0
    QString selectionFormula; ///< {TB1.F1}='K...' for a layout that reads a document itself; "" for all rows
    QHash<QString, QImage> pictures = {}; ///< by the name that the layout has for them
};

/// Whether that layout file stands in the program folder; tells the operator by that message when it doesn't.
bool requireReportFile(const QString& tested, const QString& missing);

/// name='value' as the host takes it; the value stands as it is, quotes and all.
QString formula(QStringView name, QStringView value);

/// Empties a staging table of the ledger and fills it, in one write run.
/// @param columns  as they stand in the insert, "F0,F1,V1"
/// @param rows     of literals made by `sqlText` and `sqlNumber`, one for each column; `gridRows` takes them from a
/// grid
/// @throws StoreError
void stageRows(const QString& table, const QString& columns, const QList<QStringList>& rows);

/// Yields once to the message loop, shows the preview modally and returns when it is closed. What keeps a layout from
/// being shown is told in a box; the form that called goes on.
/// @throws StoreError when the ledger can't be read
void preview(const PrintOrder& order);
