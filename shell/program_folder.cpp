#include "shell/program_folder.h"

#include "platform/base/files.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <QCryptographicHash>
#include <QDir>
#include <QMap>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

const QString templateName = u"vemaro.dat"_s;
const QString manualName = u"使用说明"_s;
const QString recordName = u"package.sum"_s; // as layouts.sum: checksum, two blanks, name

bool isLedger(const QString& name)
{
    return sameText(name, templateName) || name.endsWith(u".hcn"_s, Qt::CaseInsensitive);
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString checksum(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// The checksum of each file as it was put there.
QMap<QString, QString> readRecord(const QString& path)
{
    constexpr qsizetype sumLength = 64;
    QMap<QString, QString> sums;
    for (const QString& line : readLines(path).value_or(QStringList()))
        sums.insert(line.mid(sumLength + 2), line.left(sumLength));
    return sums;
}

bool writeRecord(const QString& path, const QMap<QString, QString>& sums)
{
    QStringList lines;
    for (auto sum = sums.begin(); sum != sums.end(); ++sum)
        lines += *sum + u"  "_s + sum.key();
    return writeLines(path, lines);
}

bool put(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

/// A ledger that another process of the user has just put there and opened stays: copying never replaces.
bool putLedger(const QString& from, const QString& to)
{
    return QFile::exists(to) || QFile::copy(from, to) || QFile::exists(to);
}

/// Once put there, a file follows the package until somebody changes it.
bool renew(const QString& from, const QString& to, QString& known)
{
    const QByteArray bytes = bytesOf(from);
    const QString wanted = checksum(bytes);
    const QString found = QFile::exists(to) ? checksum(bytesOf(to)) : QString();
    if (found != wanted) {
        if (!found.isEmpty() && found != known)
            return true;
        if (!put(to, bytes))
            return false;
    }
    known = wanted;
    return true;
}

/// A link of an earlier installation is replaced, a file of the user's isn't.
bool link(const QString& target, const QString& path)
{
    const QFileInfo there(path);
    if (there.isSymLink() && there.symLinkTarget() != target)
        QFile::remove(path);
    return QFileInfo(path).isSymLink() || QFileInfo::exists(path) || QFile::link(target, path);
}

} // namespace

QString renewProgramFolder(const QString& parts, const QString& executables, const QString& folder)
{
    const QString refusal = u"无法建立或更新您的程序文件夹：\n%1\n\n"
                            "请检查磁盘是否已满、文件夹是否可以写入，然后重新启动软件。"_s.arg(folder);
    const QDir source(parts);
    const QDir target(folder);
    if (!target.mkpath(u"."_s))
        return refusal;
    QMap<QString, QString> sums = readRecord(target.filePath(recordName));
    const QMap<QString, QString> before = sums;
    bool done = true;
    for (const QString& name : source.entryList(QDir::Files)) {
        const QString from = source.filePath(name);
        const QString to = target.filePath(name);
        if (isLedger(name)) {
            done &= putLedger(from, to);
            continue;
        }
        QString known = sums.value(name);
        done &= renew(from, to, known);
        if (!known.isEmpty())
            sums.insert(name, known);
    }
    for (const QFileInfo& program : QDir(executables).entryInfoList(QDir::Files | QDir::Executable))
        done &= link(program.absoluteFilePath(), target.filePath(program.fileName()));
    done &= link(source.absoluteFilePath(manualName), target.filePath(manualName));
    if (sums != before)
        done &= writeRecord(target.filePath(recordName), sums);
    return done ? QString() : refusal;
}

ProgramFolder programFolder(const QString& executables)
{
    const QDir own(executables);
    const QDir parts(QDir::cleanPath(own.filePath(u"../../share/"_s + gProgramName)));
    if (own.exists(templateName) || !parts.exists(templateName))
        return {executables, {}};
    const QString folder =
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)).filePath(gProgramName);
    return {folder, renewProgramFolder(parts.absolutePath(), executables, folder)};
}
