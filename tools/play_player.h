#pragma once

#include "tools/play_script.h"
#include "tools/play_state.h"
#include "tools/play_world.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>

#include <functional>
#include <memory>

class Database;

namespace play {

class Session;

/// A command's use of one control.
struct ControlUse
{
    world::Found found;
    QString name; ///< as the script writes it
    const Line& line;
    int phase = 0; ///< counts from 0; the program came to rest between two of them
};

/// Tells "SCRIPT:LINE: expected ..., got ..." of the line being played and ends this process, which is the script's.
[[noreturn]] void fail(const QString& expected, const QString& got);

/// Plays a script's lines in the running event loop, each when the program is idle.
class Player : public QObject
{
    Q_OBJECT

public:
    Player(const WorkerOrder& order, Script script);
    ~Player() override;
    void start();

private:
    /// @return true when the line isn't done: it is called again at rest, with the next phase
    using Handler = std::function<bool(const Line& line, int phase)>;

    void addActing();
    void addExpecting();
    void addBoxes();
    void addFolder();
    void addKeeping();
    /// A command on a control: the operator turns to its window before, and it must be within reach each time.
    void act(const QString& command, std::function<bool(const ControlUse& use)> handler);
    /// A command that looks at a control.
    void look(const QString& command, std::function<void(const ControlUse& use)> handler);

    void post(int milliseconds);
    void step();
    void playNext();
    bool prepareMainWindow(); ///< to the size of a common screen; true when it was done just now
    void turnOfLoop();
    [[noreturn]] void leaveHeld();
    [[noreturn]] void programEnds();

    void openProgram(const QString& commandLine);
    /// Ends this process as it stands, no destructor run; the lines left are for the next worker.
    [[noreturn]] void handOver();
    bool playBeside(const QString& path, int phase);
    /// Runs `use` on the ledger, also on the one that was open when the program ended.
    void withLedger(const std::function<void(Database&)>& use);
    void runSql(const QString& sql);
    QString inProgramFolder(const QString& path) const;
    bool anyFile(const QString& pattern) const;
    QString shotPath(const QString& name) const;
    void claimBox(const QString& text, bool part);

    WorkerOrder order_;
    Script script_;
    SessionState state_;
    QHash<QString, Handler> handlers_;
    std::unique_ptr<Session> beside_;

    QElapsedTimer idle_;
    QList<int> levels_; ///< loop levels of what runs and hasn't returned: no line is played at or below the last
    bool posted_ = false;
    int calmTurns_ = 0;
    int calmLevel_ = 0;
    int phase_ = 0;
    qsizetype played_ = 0; ///< lines begun, repetitions included
    bool started_ = false;
    bool programEnded_ = false;
    bool sized_ = false;
    bool resumed_ = state_.next > 0; ///< the last worker told of the first line already
    QString lastLedger_;
};

/// The worker process: plays one script, from the line where the last worker stopped.
int playAsWorker(int argc, char* argv[]);

} // namespace play
