#pragma once

#include <QByteArray>
#include <QString>

/// Gives a file, whose content is on the disk already, another name in the same folder, and does not return before
/// that is on the disk too. Never replaces a file. Returns false when the name could not be given.
bool renameDurably(const QString& from, const QString& to);
/// The same, but in place of what bears the name now: afterwards it is the one file or the other, whole.
bool replaceDurably(const QString& from, const QString& to);
/// Writes a file that nobody but its owner may read, and does not return before it is on the disk. An old one of that
/// name is replaced in one step, and stays whole when this fails.
bool writePrivately(const QString& path, const QByteArray& content);
/// Removes a file and does not return before that is on the disk. True when there is no such file any more.
bool removeDurably(const QString& path);
