#pragma once

#include "platform/report/report_control.h"

/// Reads the rows of a report for the report control: through a connection of its own to the file, in one snapshot, and
/// is done with the file when it returns. What the layout's source asks for and the ledger doesn't have is told as a
/// fault of the layout.
/// @param selection  a condition on one column: goes into a statement at `{selection}`; "all" where there is none
/// @throws StoreError when the ledger can't be read
ReportControl::Rows readReportRows(const QString& dataFile, const ReportLayout& layout,
                                   const std::optional<ReportSelection>& selection);
