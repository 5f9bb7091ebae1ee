#pragma once

#include "platform/base/dialogs.h"

#include <QStringList>

/// The boxes as windows in front of the active one, in the program's look.
std::unique_ptr<DialogHost> windowDialogs();

/// What a file dialog offers from a filter of words and patterns: "恒仓宁帐本文件(*.hcn)|*.hcn" gives
/// "恒仓宁帐本文件 (*.hcn)". Several patterns stand between ";".
QStringList fileDialogFilters(const QString& filter);
/// A file name that was typed without an extension gets that of the chosen filter, as `fileDialogFilters` gave it.
QString withFilterExtension(const QString& path, const QString& chosenFilter);
