#include "admin/backup_folder.h"

#include "platform/base/date.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/base/volume.h"
#include "shell/session.h"

#include <QDir>

#include <cmath>

namespace {

QString backupSettingsPath()
{
    return gAppPath + backupLedgerName() + u"bak.set"_s;
}

} // namespace

bool backupIsLocal()
{
    return !isOnNetwork(gAppPath);
}

QString backupFolder()
{
    return withSeparator(gAppPath + u"数据备份"_s);
}

QString makeBackupFolder()
{
    QDir().mkpath(backupFolder());
    return backupFolder();
}

QString backupLedgerName()
{
    return gLedgerName.isEmpty() || gLedgerName == gLedgerFile ? u"帐本文件"_s : gLedgerName;
}

QString manualBackupFile()
{
    return makeBackupFolder() + u"备份-"_s + backupLedgerName() + ledgerExtension;
}

QString automaticBackup(QDate day)
{
    return backupLedgerName() + dateText(day) + ledgerExtension;
}

QString earlierGeneration(const QString& fileName)
{
    return fileName.chopped(3) + u"___"_s;
}

std::optional<QDate> dayOfBackup(const QString& fileName, QStringView extension)
{
    // Whole: the name of one ledger may be the beginning of another's.
    const QString ledger = backupLedgerName();
    if (!fileName.startsWith(ledger) || !fileName.endsWith(extension, Qt::CaseInsensitive) ||
        fileName.size() < ledger.size() + extension.size())
        return {};
    const QString text = fileName.sliced(ledger.size()).chopped(extension.size());
    const auto day = parseDate(text);
    return day && dateText(*day) == text ? day : std::nullopt;
}

double BackupSettings::days() const
{
    return std::abs(Fix(Val(interval)));
}

bool BackupSettings::dueOn(QDate day) const
{
    const auto lastDay = parseDate(last);
    return !lastDay || double(qAbs(lastDay->daysTo(day))) >= days();
}

bool BackupSettings::exist()
{
    return fileExists(backupSettingsPath());
}

std::optional<BackupSettings> BackupSettings::read()
{
    const auto lines = readLines(backupSettingsPath());
    if (!lines)
        return {};
    BackupSettings settings;
    settings.interval = lines->value(0);
    if (lines->size() > 1)
        settings.last = lines->at(1);
    return settings;
}

bool BackupSettings::write() const
{
    return writeLines(backupSettingsPath(), {interval, last});
}
