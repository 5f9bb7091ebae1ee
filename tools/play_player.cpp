#include "tools/play_player.h"

#include "ledger/store.h"
#include "platform/base/clock.h"
#include "platform/widgets/form.h"
#include "platform/widgets/look.h"
#include "shell/entry.h"
#include "shell/session.h"
#include "tools/play_hosts.h"
#include "tools/play_session.h"

#include <QApplication>
#include <QEventLoop>
#include <QPushButton>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

#ifdef HCN_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace play {

namespace {

QString currentScript;
int currentLine = 0;

constexpr int calmEnough = 3; ///< turns of the loop: what a command queued, and what that queued, has run by then

/// After its end the program must not hear anything, while its windows go.
class DeafWidgets : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent*) override { return watched->isWidgetType(); }
};

/// A windowing system brings focus and exposure with a delay of its own.
int turnPause()
{
    return QGuiApplication::platformName() == u"offscreen" ? 0 : 15;
}

/// A button whose letter was typed stays down for a moment and acts when it comes up.
bool buttonIsDown()
{
    const QWidget* window = QApplication::activeWindow();
    const auto buttons = window ? window->findChildren<QPushButton*>() : QList<QPushButton*>();
    return std::any_of(buttons.begin(), buttons.end(), [](const auto* button) { return button->isDown(); });
}

/// Without a window manager the platform complains about what it can't do; that is no news to a script's reader.
void passMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!text.startsWith(u"This plugin does not support"))
        printFault(qFormatLogMessage(type, context, text));
    if (type == QtFatalMsg)
        std::abort();
}

/// The line as it may be printed.
QString printable(const Line& line)
{
    static const QStringList textOfControl{u"type"_s, u"expect"_s, u"expect-has"_s};
    if (line.command == u"keys" && world::secret(QApplication::focusWidget()))
        return line.command + u" ***"_s;
    if (textOfControl.contains(line.command) && world::secret(world::find(line.operands[0]).widget))
        return line.command + u' ' + line.operands[0] + u" ***"_s;
    return line.source;
}

[[noreturn]] void leaveProcess(ExitStatus status)
{
#ifdef HCN_COVERAGE
    __gcov_dump(); // else only an orderly end does it
#endif
    std::_Exit(status); // nothing of the program may run any more, destructors included
}

} // namespace

void fail(const QString& expected, const QString& got)
{
    printFault(u"%1:%2: expected %3, got %4"_s.arg(currentScript, QString::number(currentLine), expected, got));
    leaveProcess(Failed);
}

Player::Player(const WorkerOrder& order, Script script)
    : order_(order)
    , script_(std::move(script))
    , state_(SessionState::load(order.sessionFolder))
{
    currentScript = order_.script;
    addActing();
    addExpecting();
    addBoxes();
    addFolder();
    addKeeping();
    for (const QString& name : commandNames())
        Q_ASSERT_X(handlers_.contains(name), "play", qPrintable(name));
    setDialogHost(std::make_unique<ScriptedDialogs>(state_, order_.programFolder, [this] { turnOfLoop(); }));
    setDesktopHost(std::make_unique<ScriptedDesktop>(state_, order_.sessionFolder, [this] { programEnds(); }));
    if (state_.clock)
        setClock(state_.clock);
}

Player::~Player() = default;

void Player::start()
{
    post(0);
}

void Player::post(int milliseconds)
{
    if (posted_)
        return;
    posted_ = true;
    // A timer of its own each time: a repeating one doesn't tick inside a loop that its own slot opened.
    QTimer::singleShot(milliseconds, this, &Player::step);
}

void Player::step()
{
    posted_ = false;
    const int level = QThread::currentThread()->loopLevel();
    // `exec` raises the level, a turn of the loop from within a command doesn't: that command isn't waiting.
    if (!levels_.isEmpty() && level <= levels_.last()) {
        calmTurns_ = 0;
        return post(1);
    }
    if (buttonIsDown())
        return post(5);
    if (level != calmLevel_) {
        calmLevel_ = level;
        calmTurns_ = 0;
    }
    if (calmTurns_ < calmEnough) {
        ++calmTurns_;
        return post(turnPause());
    }
    calmTurns_ = 0;
    if (prepareMainWindow())
        return post(0);
    playNext();
}

void Player::playNext()
{
    if (state_.next >= script_.lines.size()) {
        currentLine = script_.lastNumber;
        for (const KeptBox& box : state_.boxes)
            if (box.isError)
                fail(u"no error box left at the end"_s, u'"' + oneLine(box.text) + u'"');
        leaveHeld();
    }
    const Line& line = script_.lines.at(state_.next++);
    int phase = std::exchange(phase_, 0);
    currentLine = line.number;
    if (phase == 0) {
        noteLine(order_.sessionFolder, line.number);
        if (order_.trace && !resumed_)
            printLine(u"%1:%2: %3"_s.arg(order_.script).arg(line.number).arg(printable(line)));
        resumed_ = false;
    }
    const qsizetype mine = ++played_;
    constexpr int longWait = 10;    // phases after which a line waits for something slower than the program
    post(phase > longWait ? 5 : 0); // before the line runs: it may open a loop in which the next one is to be played
    levels_.append(QThread::currentThread()->loopLevel());
    bool again = handlers_[line.command](line, phase);
    // When other lines were played inside this one, the program is at this line's rest already.
    while (again && played_ != mine)
        again = handlers_[line.command](line, ++phase);
    levels_.removeLast();
    if (again) {
        --state_.next;
        phase_ = phase + 1;
    }
}

void Player::leaveHeld()
{
    leaveProcess(Held);
}

bool Player::prepareMainWindow()
{
    constexpr QSize screenSize(1366, 768);
    const world::Found main = sized_ ? world::Found() : world::find(u"MForm"_s);
    if (!main || !main.widget->isVisible())
        return false;
    sized_ = true;
    if (main.widget->isMaximized())
        main.widget->showNormal();
    main.widget->resize(screenSize);
    return true;
}

void Player::turnOfLoop()
{
    levels_.append(QThread::currentThread()->loopLevel());
    QCoreApplication::processEvents();
    levels_.removeLast();
}

void Player::openProgram(const QString& commandLine)
{
    if (programEnded_) {
        --state_.next;
        handOver();
    }
    if (started_)
        fail(u"a program that hasn't started or has ended"_s, u"one that runs"_s);
    started_ = true;
    runCommand([&commandLine] { runEntry(commandLine); });
}

void Player::handOver()
{
    if (!state_.save(order_.sessionFolder))
        fail(u"the session to be handed over"_s, u"a failure to write"_s);
    leaveProcess(HandOver);
}

void Player::programEnds()
{
    programEnded_ = true;
    lastLedger_ = gDB.isOpen() ? gLedgerFile : QString();
    gDB.Close();
    world::setEnded();
    qApp->installEventFilter(new DeafWidgets(qApp));
    for (QWidget* window : QApplication::topLevelWidgets())
        window->hide();
    // What the program was about to do never goes on; the lines left are played from here.
    for (;;)
        QEventLoop().exec();
}

int playAsWorker(int argc, char* argv[])
{
#if !defined(Q_OS_WIN) && !defined(Q_OS_MACOS)
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    // The driver holds the other end: without it nobody waits for this session any more.
    std::thread([] {
        while (getchar() != EOF) {
        }
        std::_Exit(Failed);
    }).detach();

    qInstallMessageHandler(passMessage);
    QApplication application(argc, argv);
    const WorkerOrder order = WorkerOrder::fromArguments(QApplication::arguments().mid(1));
    auto script = readScript(order.scriptFile, order.script);
    if (const auto* fault = std::get_if<QString>(&script)) {
        printFault(*fault);
        return Failed;
    }
    QApplication::setApplicationName(gProgramName);
    QApplication::setQuitOnLastWindowClosed(false);
    for (const Qt::UIEffect effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo, Qt::UI_AnimateTooltip,
                                      Qt::UI_FadeTooltip, Qt::UI_AnimateToolBox})
        QApplication::setEffectEnabled(effect, false);
    setProgramFolder(order.programFolder);
    Player player(order, std::get<Script>(script));
    style::apply(application, keptLook());
    listenForFontKeys();
    player.start();
    QApplication::exec();
    fail(u"a running program"_s, u"the end of its message loop"_s);
}

} // namespace play
