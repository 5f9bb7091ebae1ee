#pragma once

#include "platform/base/text.h"

#include <QStringList>

class Grid;

/// What a print stages of a list: the cells of its grid as literals for `stageRows`.

/// The data rows 1 to `count` of a grid, without what stands below them such as sums. A column that the grid hides is
/// staged empty or as 0: what an operator may not see doesn't come out on paper either.
/// @param texts    columns that are staged as they show, in this order
/// @param numbers  columns that are staged by their value, behind the texts; an empty cell counts as 0
QList<QStringList> gridRows(const Grid& grid, int count, const QList<int>& texts, const QList<int>& numbers = {});

/// The rows with their number in front, which keeps their order in the staging table.
/// @param mask  with enough zeros that numbers sort as texts, "#00000"
QList<QStringList> numberedRows(QList<QStringList> rows, QStringView mask = u"#00000");
