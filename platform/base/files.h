#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Paths as the business rules write them hold "\" on every platform; here they meet the file system.

/// "\" becomes the platform's separator.
QString localPath(QString path);
/// The path as it stands on disk: separators turned, names found without regard to case. A path that leads nowhere
/// comes back with its separators turned.
QString resolvedPath(const QString& path);
/// Whether that file (no folder) exists.
bool fileExists(const QString& path);
/// Whether both lead to one file that exists, by whatever links, dots and case.
bool sameFile(const QString& a, const QString& b);
/// The program's file. Programs are named with ".exe" on every platform; where there is no such file, the one without
/// it is meant. "" when there is neither.
QString programPath(const QString& path);
/// The text behind the last separator of either kind, and what stands before it (without the separator).
QString fileNameOf(const QString& path);
QString folderOf(const QString& path);
/// A folder's text with the platform's separator at its end.
QString withSeparator(const QString& folder);

/// The lines of a text file: UTF-8 with or without byte-order mark, else GB18030; LF or CRLF. Nothing if it can't be
/// read.
std::optional<QStringList> readLines(const QString& path);
/// Writes UTF-8 lines, each ended by LF, in one step: the old file stays whole if it fails.
bool writeLines(const QString& path, const QStringList& lines);
