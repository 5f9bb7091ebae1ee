#pragma once

#include "tools/play_state.h"

#include <QProcess>
#include <QTimer>

#include <functional>

namespace play {

/// One script played to its end, from outside: a worker process, and another for each new start of the program.
class Session : public QObject
{
    Q_OBJECT

public:
    /// @param prefix what stands before each line of the workers' output; "" passes it through as it is
    Session(const WorkerOrder& order, const QString& prefix = {}, QObject* parent = nullptr);

    /// Starts the first worker. @param limit seconds that the whole script may take; 0 for none
    void start(double limit);
    QString name() const { return order_.script; }
    bool ended() const { return status_ >= 0; }
    int status() const { return status_; } ///< 0 or 1; -1 while it is played

signals:
    void finished();

private:
    void startWorker();
    void workerEnded(int exitCode, QProcess::ExitStatus how);
    void end(int status);
    void fail(const QString& expected, const QString& got);
    void passOutput();

    WorkerOrder order_;
    QString prefix_;
    QProcess worker_;
    QTimer limit_;
    int status_ = -1;
};

/// Copies a folder with all that is in it, without programs; the copies can be written.
/// @return the first path that couldn't be copied, "" if all could
QString copyProgramFolder(const QString& from, const QString& to);

} // namespace play
