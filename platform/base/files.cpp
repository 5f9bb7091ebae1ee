#include "platform/base/files.h"

#include "platform/base/text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

namespace {

qsizetype lastSeparator(const QString& path)
{
    return qMax(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
}

std::optional<QString> decode(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(bytes);
    if (!utf8.hasError())
        return text;
    QStringDecoder chinese("GB18030");
    if (!chinese.isValid())
        return {};
    return QString(chinese(bytes));
}

} // namespace

QString localPath(QString path)
{
    return path.replace(u'\\', QDir::separator());
}

QString resolvedPath(const QString& path)
{
    const QString local = localPath(path);
    if (local.isEmpty() || QFileInfo::exists(local))
        return local;
    const QFileInfo info(local);
    const QString folder = resolvedPath(info.path());
    const QString name = info.fileName();
    if (folder.isEmpty() || name.isEmpty() || !QFileInfo(folder).isDir())
        return local;
    const auto entries = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return folder.endsWith(u'/') ? folder + entry : folder + u'/' + entry;
    return local;
}

bool fileExists(const QString& path)
{
    return !path.isEmpty() && QFileInfo(resolvedPath(path)).isFile();
}

bool sameFile(const QString& a, const QString& b)
{
    const QString file = a.isEmpty() ? QString() : QFileInfo(resolvedPath(a)).canonicalFilePath();
    return !file.isEmpty() && !b.isEmpty() && file == QFileInfo(resolvedPath(b)).canonicalFilePath();
}

QString programPath(const QString& path)
{
    const QString suffix = u".exe"_s;
    if (fileExists(path))
        return resolvedPath(path);
    if (path.endsWith(suffix, Qt::CaseInsensitive) && fileExists(path.chopped(suffix.size())))
        return resolvedPath(path.chopped(suffix.size()));
    return {};
}

QString fileNameOf(const QString& path)
{
    return path.sliced(lastSeparator(path) + 1);
}

QString folderOf(const QString& path)
{
    return path.first(qMax(lastSeparator(path), qsizetype(0)));
}

QString withSeparator(const QString& folder)
{
    const QString native = QDir::toNativeSeparators(folder);
    return native.endsWith(QDir::separator()) ? native : native + QDir::separator();
}

std::optional<QStringList> readLines(const QString& path)
{
    QFile file(resolvedPath(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto text = decode(file.readAll());
    if (!text)
        return {};
    QStringList lines = text->split(u'\n');
    for (QString& line : lines)
        while (line.endsWith(u'\r'))
            line.chop(1);
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool writeLines(const QString& path, const QStringList& lines)
{
    QSaveFile file(resolvedPath(path));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QString& line : lines)
        file.write(line.toUtf8() + '\n');
    return file.commit();
}
