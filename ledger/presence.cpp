#include "ledger/presence.h"

#include "platform/base/clock.h"
#include "platform/base/files.h"
#include "platform/base/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

#include <algorithm>

namespace {

constexpr qint64 secondsToTidyUp = 24 * 60 * 60;

/// Ends so that no pattern of ledgers or backups meets it.
QString markStart(const QString& ledger)
{
    return ledger + u"-open-"_s;
}

} // namespace

PresenceMark::~PresenceMark()
{
    remove();
}

void PresenceMark::place(const QString& ledger, const QString& operatorName)
{
    const QFileInfo file(ledger);
    const QString there = file.exists() ? file.canonicalFilePath() : ledger;
    if (there != ledger_) {
        remove();
        ledger_ = there;
        path_ =
            markStart(there) + QSysInfo::machineHostName() + u'-' + QString::number(QCoreApplication::applicationPid());
    }
    operatorName_ = operatorName;
    since_ = nowText();
    touch();
}

void PresenceMark::touch() const
{
    if (!path_.isEmpty())
        writeLines(path_, {QSysInfo::machineHostName(), operatorName_, since_});
}

void PresenceMark::remove()
{
    if (!path_.isEmpty())
        QFile::remove(path_);
    path_.clear();
    ledger_.clear();
}

QList<PresentSession> PresenceMark::sessions() const
{
    if (path_.isEmpty())
        return {};
    touch();
    // The clocks of two machines may differ; all these times are the file server's.
    const QDateTime present = QFileInfo(path_).lastModified();
    const QFileInfo ledger(ledger_);
    const QString start = fileNameOf(markStart(ledger_));
    QList<PresentSession> found;
    const auto files = QDir(ledger.absolutePath()).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo& file : files) {
        if (!file.fileName().startsWith(start))
            continue;
        const qint64 age = file.lastModified().secsTo(present);
        if (age > secondsToTidyUp)
            QFile::remove(file.filePath());
        if (age > secondsToLapse)
            continue;
        const QStringList lines = readLines(file.filePath()).value_or(QStringList());
        if (lines.size() >= 3)
            found.append({lines[0], lines[1], lines[2], file.fileName() == fileNameOf(path_)});
    }
    std::sort(found.begin(), found.end(), [](const PresentSession& a, const PresentSession& b) {
        return std::tie(a.host, a.operatorName, a.since) < std::tie(b.host, b.operatorName, b.since);
    });
    return found;
}
