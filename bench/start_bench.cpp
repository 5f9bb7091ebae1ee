// The start of the program, from its call to the login that waits for an operator, as `play` runs it: the real program
// in processes of its own, on a program folder of its own. What `play` costs by itself is measured beside it.

#include "bench/beside.h"
#include "platform/base/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <vector>

namespace {

class ProgramFolder
{
public:
    ProgramFolder()
    {
        const QDir built = QFileInfo(QStringLiteral(PLAY_PROGRAM)).dir();
        for (const char* name : {"vemaro.dat", "syspic.dat", "zb.ico", "Learn.dat"}) {
            const QString file = QString::fromLatin1(name);
            if (!QFile::copy(built.filePath(file), folder_.filePath(file)))
                qFatal("%s isn't built", name);
        }
        write("start.play", "open vemaro.dat\nwait Login\nend\n");
        write("nothing.play", "end\n");
    }

    void play(const char* script) const
    {
        const QStringList arguments{u"--app"_s, folder_.path(), u"--shots"_s, folder_.path(),
                                    folder_.filePath(QString::fromLatin1(script))};
        if (QProcess::execute(QStringLiteral(PLAY_PROGRAM), arguments) != 0)
            qFatal("%s wasn't played to its end", script);
    }

private:
    void write(const char* name, const char* script)
    {
        QFile file(folder_.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(script) < 0)
            qFatal("no script");
    }

    QTemporaryDir folder_;
};

void startToLogin(benchmark::State& state)
{
    const ProgramFolder folder;
    std::vector<double> starts;
    std::vector<double> alone;
    for (auto _ : state) {
        starts.push_back(timed([&] { folder.play("start.play"); }).clock);
        alone.push_back(timed([&] { folder.play("nothing.play"); }).clock);
        state.SetIterationTime(starts.back());
    }
    state.counters["start_and_play_s"] = median(starts);
    state.counters["play_alone_s"] = median(alone);
}
BENCHMARK(startToLogin)->UseManualTime()->Iterations(15)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
