#pragma once

#include "platform/base/text.h"

#include <QDate>
#include <QString>

#include <optional>

/// Where the backups of the current ledger lie, what they are called and when the next is due. Shared by the backup at
/// exit, the one by hand, the restore and the safety copies.

/// Backup and restore belong to the computer that has the books: false where the program runs from the network.
bool backupIsLocal();
/// "数据备份" in the program folder, with a separator at its end.
QString backupFolder();
/// The same, made if it is missing. Where that is refused, whoever writes there fails.
QString makeBackupFolder();
/// The ledger's name as the names of backups begin. One that was opened by its path has no name of its own.
QString backupLedgerName();
/// What is offered for a backup by hand.
QString manualBackupFile();

/// The file name of the backup at exit on that day, and the one it gets while the next is being made.
QString automaticBackup(QDate day);
QString earlierGeneration(const QString& fileName);
/// The day of an automatic backup of this ledger; nothing for any other file. `extension` is ".hcn" or ".___".
std::optional<QDate> dayOfBackup(const QString& fileName, QStringView extension);

inline constexpr QStringView ledgerExtension = u".hcn";
inline constexpr QStringView earlierExtension = u".___";
inline constexpr QStringView backupFilter = u"*.hcn|*.hcn|*.*|*.*";
inline constexpr QStringView neverBackedUp = u"还没有备份记录";

/// The settings file of the ledger: how often, and when last.
struct BackupSettings
{
    QString interval; ///< days as text, as it stands in the file
    QString last = neverBackedUp.toString();

    double days() const; ///< whole, never negative; what is no number is 0
    /// Whether a backup at exit is due on that day. Without a legible date it is.
    bool dueOn(QDate day) const;
    static bool exist();
    /// Nothing without a file or when it can't be read. Lines that are missing have the values above.
    static std::optional<BackupSettings> read();
    bool write() const; ///< false when the file can't be written; the old one is whole then
};
