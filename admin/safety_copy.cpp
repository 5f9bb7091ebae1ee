#include "admin/safety_copy.h"

#include "admin/backup_folder.h"
#include "ledger/store.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "shell/session.h"

#include <QDir>
#include <QFile>

namespace {

constexpr qsizetype safetyCopiesKept = 10;
constexpr QStringView safetyMoment = u"yyyyMMdd-hhmmss"; // the names sort by time

/// A folder of its own: the backup at exit never meets these names.
QString safetyFolder()
{
    const QString folder = makeBackupFolder() + u"操作前备份"_s;
    QDir().mkpath(folder);
    return folder + QDir::separator();
}

/// When a safety copy of this ledger was made, finished or not; nothing for any other file.
std::optional<QDateTime> momentOfCopy(const QString& fileName)
{
    const QString start = backupLedgerName() + u'-';
    if (!fileName.startsWith(start) || fileName.size() < start.size() + safetyMoment.size())
        return {};
    const auto moment = QDateTime::fromString(fileName.mid(start.size(), safetyMoment.size()), safetyMoment.toString());
    return moment.isValid() ? std::optional(moment) : std::nullopt;
}

QString freeName(const QString& folder, QStringView command)
{
    const QString name = backupLedgerName() + u'-' + Now().toString(safetyMoment.toString()) + u'-' + command;
    QString path = folder + name + ledgerExtension;
    for (int i = 2; QFile::exists(path); ++i)
        path = folder + name + u"(%1)"_s.arg(i) + ledgerExtension;
    return path;
}

/// Keeps the newest ones, and what was made just now whatever the clock said before. A file that can't be removed
/// stays; it is looked at again the next time.
void dropOldCopies(const QString& folder, const QString& made, const QString& inUse)
{
    QStringList old;
    for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name)) {
        const auto moment = momentOfCopy(name);
        if (!moment)
            continue;
        if (name.endsWith(ledgerExtension))
            old += folder + name;
        else if (moment->date() != Today()) // of a copy that was broken off
            QFile::remove(folder + name);
    }
    const qsizetype surplus = old.size() - safetyCopiesKept;
    for (qsizetype i = 0; i < surplus; ++i)
        if (old[i] != made && !sameFile(old[i], inUse)) // which may have been chosen by another path
            QFile::remove(old[i]);
}

} // namespace

bool safetyCopy(QStringView command, const QString& inUse)
{
    QString trouble;
    try {
        const BusyPointer busy;
        const QString folder = safetyFolder();
        const QString target = freeName(folder, command);
        DBEngine::copyDatabase(gLedgerFile, target, ledgerConnect.toString());
        dropOldCopies(folder, target, inUse);
        return true;
    } catch (const StoreError& error) { // told with the question
        trouble = error.description();
    }
    return askYesNo(u"操作前的安全备份没有完成！原因如下：\n"_s + trouble +
                    u"\n\n没有安全备份，操作之后就无法恢复到现在的状态。\n仍然要继续吗？"_s);
}
