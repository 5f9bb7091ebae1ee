#pragma once

#include <QString>

#include <functional>

/// What the forms that delete for good, and the year-end, have in common.

/// The last question before it, titled as a warning, Yes and No.
bool askBeforeClearing(const QString& question);
/// Makes the safety copy, then runs the statements as one write run; what ran before a failure stays. Open lists are
/// read anew then, also after a failure, so that none shows records that are gone.
/// @param command the command's words, which name the copy
/// @return false when the operator went no further without a safety copy: nothing was changed
/// @throws StoreError
bool clearRecords(QStringView command, const std::function<void()>& statements);
