#include "admin/auto_backup.h"

#include "admin/backup_folder.h"
#include "ledger/store.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/base/durable.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/widgets/controls.h"
#include "shell/session.h"

#include <QDir>
#include <QFile>

namespace {

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

/// The backup that becomes the earlier generation: today's, which is in the way, else the newest; "" without one.
QString lastGeneration(const QStringList& files)
{
    QString last;
    QDate lastDay;
    for (const QString& name : files) {
        const auto day = dayOfBackup(name, ledgerExtension);
        if (day && (*day == Today() || last.isEmpty() || (*day > lastDay && lastDay != Today()))) {
            last = name;
            lastDay = *day;
        }
    }
    return last;
}

/// One earlier generation stays beside the newest file. False when a file stands in the way.
bool keepLastGeneration(const QString& folder)
{
    const QStringList files = filesIn(folder);
    const QString last = lastGeneration(files);
    if (last.isEmpty())
        return true; // what an earlier failure has left under its temporary name is then the best there is
    for (const QString& name : files)
        if (dayOfBackup(name, earlierExtension) && !QFile::remove(folder + name))
            return false;
    return renameDurably(folder + last, folder + earlierGeneration(last));
}

/// What the end of a process has left of a backup on another day.
void dropBrokenOff(const QString& folder)
{
    for (const QString& name : filesIn(folder))
        for (const QStringView end : {u".hcn-part", u".hcn-part-journal"})
            if (const auto day = dayOfBackup(name, end); day && *day != Today())
                QFile::remove(folder + name); // one that stays is in nobody's way
}

/// False when the backup was due and couldn't be made.
bool backUpIfDue(const QString& folder)
{
    auto settings = BackupSettings::read();
    if (!settings)
        return false;
    if (!settings->dueOn(Today()))
        return true;
    const QString target = folder + automaticBackup(Today());
    if (settings->days() > 0 && fileExists(target))
        return true;
    if (!keepLastGeneration(folder))
        return false;
    const BusyPointer busy;
    try {
        gDB.Close();
        DoEvents();
        DBEngine::CompactDatabase(gLedgerFile, target, ledgerConnect.toString());
    } catch (const StoreError&) { // told by the caller, in the same words whatever it was
        return false;
    }
    dropBrokenOff(folder);
    settings->interval = plainText(settings->days());
    settings->last = todayText();
    return settings->write();
}

} // namespace

void AutoBackup()
{
    if (!backupIsLocal())
        return;
    const QString folder = makeBackupFolder();
    if (BackupSettings::exist() && !backUpIfDue(folder))
        MsgBox(u"其它用户正在使用当前帐本，系统无法备份数据。\n请在其它用户退出之后再备份数据！"_s, u"自动备份"_s);
}
