#pragma once

#include "platform/base/text.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QStringList>

#include <optional>

namespace play {

/// How a worker process ends, for the driver. Any other status means that the program ended the process by itself.
enum ExitStatus { Held = 40, Failed = 41, HandOver = 42 };

/// What the driver tells a worker.
struct WorkerOrder
{
    QString script; ///< as it was named, for the telling
    QString scriptFile;
    QString programFolder; ///< the worker's working folder, so that a command line can name a ledger in it
    QString sessionFolder; ///< outside the program folder: settings, and what passes from one worker to the next
    QString shots;
    bool trace = false;

    QStringList arguments() const;
    static WorkerOrder fromArguments(const QStringList& arguments);
};

struct KeptBox
{
    QString text;
    QString title;
    bool isError = false;
};

/// What of a script's session outlives the program's process: a new start goes on with it in a new worker.
struct SessionState
{
    qsizetype next = 0; ///< index of the line to play
    QList<KeptBox> boxes;
    QStringList answers;
    QStringList shellCalls;
    std::optional<QString> claimedTitle;
    std::optional<QDateTime> clock;

    bool save(const QString& sessionFolder) const;
    /// A fresh one when nothing was handed over.
    static SessionState load(const QString& sessionFolder);
};

/// The per-user settings of a session, by application, section and key without regard to case.
class SettingsFile
{
public:
    explicit SettingsFile(const QString& sessionFolder);
    std::optional<QString> value(const QString& application, const QString& section, const QString& key) const;
    bool set(const QString& application, const QString& section, const QString& key, const QString& value);

private:
    QString path_;
    QHash<QString, QString> values_;
};

/// The line that a worker plays, where the driver finds it when that worker doesn't end by itself.
void noteLine(const QString& sessionFolder, int number);
int notedLine(const QString& sessionFolder);

/// UTF-8, whatever the locale, at once.
void printLine(const QString& text);
void printFault(const QString& text);
/// A text's line breaks as `\n`, as they are written in scripts.
QString oneLine(QString text);

} // namespace play
