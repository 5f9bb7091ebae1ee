#include "platform/base/durable.h"

#include <QFile>
#include <QFileInfo>

#include <filesystem>
#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

/// The names in a folder are content of their own. A file system that can't sync a folder keeps its names by itself.
void syncFolderOf([[maybe_unused]] const QString& path)
{
#ifndef Q_OS_WIN
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
#endif
}

bool syncFile(int descriptor)
{
#ifdef Q_OS_WIN
    return _commit(descriptor) == 0;
#else
    return fsync(descriptor) == 0;
#endif
}

} // namespace

bool renameDurably(const QString& from, const QString& to)
{
    if (QFileInfo::exists(to) || !QFile::rename(from, to))
        return false;
    syncFolderOf(to);
    return true;
}

bool replaceDurably(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(from.toStdU16String(), to.toStdU16String(), error);
    if (error)
        return false;
    syncFolderOf(to);
    return true;
}

bool writePrivately(const QString& path, const QByteArray& content)
{
    const QString half = path + QStringLiteral("-part");
    QFile::remove(half); // what a killed process left might not be ours to read
    QFile file(half);
    const bool written =
        file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
        file.write(content) == content.size() && file.flush() && syncFile(file.handle());
    file.close();
    if (written && replaceDurably(half, path))
        return true;
    QFile::remove(half);
    return false;
}

bool removeDurably(const QString& path)
{
    if (!QFile::remove(path) && QFileInfo::exists(path))
        return false;
    syncFolderOf(path);
    return true;
}
