#include "tools/play_player.h"
#include "tools/play_script.h"
#include "tools/play_session.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

using namespace play;

constexpr int BadArguments = 2;

struct Options
{
    QString app;
    QString shots = u"."_s;
    double limit = 120;
    bool trace = false;
    QStringList scripts;
};

/// Nothing when the arguments can't be understood, after saying why.
std::optional<Options> readOptions(const QStringList& arguments)
{
    const QString usage = u"usage: play [--app DIR] [--shots DIR] [--limit SECONDS] [--trace] SCRIPT..."_s;
    const auto refuse = [&usage](const QString& why) {
        printFault(u"play: "_s + why);
        printFault(usage);
        return std::nullopt;
    };
    Options options;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--trace") {
            options.trace = true;
        } else if (argument == u"--app" || argument == u"--shots" || argument == u"--limit") {
            if (i + 1 == arguments.size())
                return refuse(argument + u" needs a value"_s);
            const QString& value = arguments[++i];
            if (argument == u"--app") {
                options.app = value;
            } else if (argument == u"--shots") {
                options.shots = value;
            } else {
                bool ok = false;
                options.limit = value.toDouble(&ok);
                if (!ok || !(options.limit > 0) || options.limit > 1e6)
                    return refuse(u"--limit needs a number of seconds, not \"%1\""_s.arg(value));
            }
        } else if (argument.startsWith(u"-")) {
            return refuse(u"unknown option "_s + argument);
        } else {
            options.scripts += argument;
        }
    }
    if (options.scripts.isEmpty())
        return refuse(u"no script is named"_s);
    if (!options.app.isEmpty() && !QFileInfo(options.app).isDir())
        return refuse(u"no such folder: "_s + options.app);
    if (options.app.isEmpty() && !QFileInfo::exists(QCoreApplication::applicationDirPath() + u"/vemaro.dat"_s))
        return refuse(u"%1 is no program folder (it holds no vemaro.dat); name one with --app"_s.arg(
            QCoreApplication::applicationDirPath()));
    return options;
}

/// Plays one script in a scratch folder. @return its exit status
int playOne(const QString& path, const Options& options)
{
    const auto script = readScript(path, path);
    if (const auto* fault = std::get_if<QString>(&script)) {
        printFault(*fault);
        return BadArguments;
    }
    QTemporaryDir scratch;
    QDir folder(scratch.path());
    if (!scratch.isValid() || !folder.mkdir(u"session"_s)) {
        printFault(u"play: no scratch folder: "_s + scratch.errorString());
        return 1;
    }
    WorkerOrder order{path,
                      QFileInfo(path).absoluteFilePath(),
                      QFileInfo(options.app).absoluteFilePath(),
                      folder.filePath(u"session"_s),
                      QFileInfo(options.shots).absoluteFilePath(),
                      options.trace};
    if (options.app.isEmpty()) {
        order.programFolder = folder.filePath(u"program"_s);
        const QString fault = copyProgramFolder(QCoreApplication::applicationDirPath(), order.programFolder);
        if (!fault.isEmpty()) {
            printFault(u"play: %1 can't be copied to the scratch folder"_s.arg(fault));
            return 1;
        }
    }
    Session session(order);
    QEventLoop loop;
    QObject::connect(&session, &Session::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    session.start(options.limit);
    if (!session.ended())
        loop.exec();
    return session.status();
}

void useUtf8Locale()
{
#ifndef Q_OS_WIN
    qputenv("LC_ALL", "C.UTF-8"); // the toolkit warns about any locale that isn't UTF-8; nothing else depends on it
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    useUtf8Locale();
    if (argc > 1 && qstrcmp(argv[1], "--worker") == 0)
        return playAsWorker(argc, argv);

    QCoreApplication application(argc, argv);
    const auto options = readOptions(QCoreApplication::arguments().mid(1));
    if (!options)
        return BadArguments;
    int status = 0;
    for (const QString& script : options->scripts)
        status = qMax(status, playOne(script, *options));
    return status;
}
