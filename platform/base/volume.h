#pragma once

#include <QString>

#include <functional>

/// Whether that folder lies on another computer: its path begins with two separators or a backslash, or the file
/// system that is mounted there is one of the network's.
bool isOnNetwork(const QString& folder);

/// Tells the type of the file system that a folder lies on ("ext4", "cifs", "fuse.sshfs"). Tests put one of their own
/// in the place of the machine's; an empty function brings that back.
using FileSystemProbe = std::function<QString(const QString& folder)>;
void setFileSystemProbe(FileSystemProbe probe);
