#include "tools/play_session.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace play {

namespace {

/// The session's own places for whatever the toolkit keeps per user.
QProcessEnvironment workerEnvironment(const QString& sessionFolder)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : {u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CACHE_HOME"_s})
        environment.insert(name, sessionFolder);
    if (!environment.contains(u"XDG_RUNTIME_DIR"_s))
        environment.insert(u"XDG_RUNTIME_DIR"_s, sessionFolder);
    return environment;
}

} // namespace

Session::Session(const WorkerOrder& order, const QString& prefix, QObject* parent)
    : QObject(parent)
    , order_(order)
    , prefix_(prefix)
{
    worker_.setProgram(QCoreApplication::applicationFilePath());
    worker_.setArguments(order_.arguments());
    worker_.setWorkingDirectory(order_.programFolder);
    worker_.setProcessChannelMode(prefix_.isEmpty() ? QProcess::ForwardedChannels : QProcess::SeparateChannels);
    // The toolkit wants a place for its sockets that nobody else can enter.
    QFile::setPermissions(order_.sessionFolder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    worker_.setProcessEnvironment(workerEnvironment(order_.sessionFolder));
    worker_.setReadChannel(QProcess::StandardOutput);
    limit_.setSingleShot(true);
    connect(&worker_, &QProcess::finished, this, &Session::workerEnded);
    connect(&worker_, &QProcess::readyReadStandardOutput, this, &Session::passOutput);
    connect(&worker_, &QProcess::readyReadStandardError, this,
            [this] { fputs(worker_.readAllStandardError().constData(), stderr); });
    connect(&worker_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            fail(u"a worker process"_s, worker_.errorString());
    });
    connect(&limit_, &QTimer::timeout, this, [this] {
        fail(u"the end of the script within %1 seconds"_s.arg(limit_.interval() / 1000.0),
             u"a script that still runs"_s);
    });
}

void Session::start(double limit)
{
    if (limit > 0)
        limit_.start(int(limit * 1000));
    startWorker();
}

void Session::startWorker()
{
    // The worker's input stays open as long as this process lives: its end tells the worker that it is alone.
    worker_.start();
}

void Session::passOutput()
{
    while (worker_.canReadLine()) {
        QString line = QString::fromUtf8(worker_.readLine());
        line.chop(1);
        printLine(prefix_ + line);
    }
}

void Session::workerEnded(int exitCode, QProcess::ExitStatus how)
{
    if (ended())
        return;
    if (how == QProcess::CrashExit)
        return fail(u"a running program"_s, u"a crash"_s);
    switch (exitCode) {
    case Held:
        return end(0);
    case Failed:
        return end(1);
    case HandOver:
        return startWorker();
    default:
        fail(u"a running program"_s, u"the process's end with status %1"_s.arg(exitCode));
    }
}

void Session::fail(const QString& expected, const QString& got)
{
    printFault(
        u"%1:%2: expected %3, got %4"_s.arg(order_.script).arg(notedLine(order_.sessionFolder)).arg(expected, got));
    end(1);
}

void Session::end(int status)
{
    if (ended())
        return;
    status_ = status;
    limit_.stop();
    if (worker_.state() != QProcess::NotRunning) {
        worker_.kill();
        worker_.waitForFinished();
    }
    emit finished();
}

QString copyProgramFolder(const QString& from, const QString& to)
{
    if (!QDir().mkpath(to))
        return to;
    const auto entries = QDir(from).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const QString target = to + u'/' + entry.fileName();
        if (entry.isDir()) {
            if (const QString fault = copyProgramFolder(entry.filePath(), target); !fault.isEmpty())
                return fault;
            continue;
        }
        const QString suffix = entry.suffix().toLower();
        if (entry.isExecutable() && (suffix.isEmpty() || suffix == u"exe" || suffix == u"dll" || suffix == u"so"))
            continue;
        if (!QFile::copy(entry.filePath(), target) ||
            !QFile::setPermissions(target, QFile::permissions(target) | QFile::ReadOwner | QFile::WriteOwner))
            return entry.filePath();
    }
    return {};
}

} // namespace play
