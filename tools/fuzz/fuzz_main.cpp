/// Feeds changed pieces of a corpus to what reads foreign input: fuzz CORPUS [--runs N] [--seed N] [TARGET...]
/// Each input is kept in fuzz-TARGET.input of the present folder while it runs, so that a crash can be looked at with
/// fuzz CORPUS --input FILE TARGET. A coverage-guided run is made with the preset `fuzz`.

#include "platform/base/text.h"
#include "platform/widgets/style.h"
#include "tools/fuzz/fuzz_targets.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>

#include <cstdio>

namespace {

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A few changes, each at a random place: what breaks readers is seldom far from what is right.
QByteArray changed(const QList<QByteArray>& corpus, const QList<QByteArray>& words, QRandomGenerator& random)
{
    constexpr qsizetype longest = 64 * 1024;
    const auto any = [&random](qsizetype below) { return below > 0 ? qsizetype(random.bounded(quint32(below))) : 0; };
    QByteArray input = corpus.isEmpty() ? QByteArray() : corpus[any(corpus.size())];
    for (qsizetype changes = 1 + any(6); changes > 0; --changes) {
        const qsizetype at = any(input.size() + 1);
        const qsizetype length = 1 + any(16);
        switch (any(6)) {
        case 0:
            if (at < input.size())
                input[at] = char(input[at] ^ (1 << any(8)));
            break;
        case 1:
            input.remove(at, length);
            break;
        case 2:
            input.insert(at, input.mid(any(input.size()), length));
            break;
        case 3:
            if (!words.isEmpty())
                input.insert(at, words[any(words.size())]);
            break;
        case 4:
            input.insert(at, char(random.bounded(256)));
            break;
        default:
            if (!corpus.isEmpty())
                input = input.first(at) + corpus[any(corpus.size())].mid(any(input.size()));
        }
    }
    return input.first(std::min(input.size(), longest));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    style::apply(application);

    QStringList arguments = QCoreApplication::arguments().mid(1);
    const auto take = [&arguments](const QString& option, const QString& preset) {
        const qsizetype at = arguments.indexOf(option);
        if (at < 0 || at + 1 >= arguments.size())
            return preset;
        const QString value = arguments[at + 1];
        arguments.remove(at, 2);
        return value;
    };
    const int runs = take(u"--runs"_s, u"2000"_s).toInt();
    const quint32 seed = take(u"--seed"_s, u"1"_s).toUInt();
    const QString single = take(u"--input"_s, {});
    if (arguments.isEmpty()) {
        std::fputs("fuzz CORPUS [--runs N] [--seed N] [--input FILE] [TARGET...]\n", stderr);
        return 2;
    }
    const QString corpusFolder = arguments.takeFirst();

    int played = 0;
    for (const FuzzTarget& target : fuzzTargets()) {
        const QString name = QString::fromLatin1(target.name);
        if (!arguments.isEmpty() && !arguments.contains(name))
            continue;
        ++played;
        if (!single.isEmpty()) {
            target.run(bytesOf(single));
            continue;
        }
        QList<QByteArray> corpus;
        const QDir folder(QDir(corpusFolder).filePath(name));
        for (const QString& file : folder.entryList(QDir::Files, QDir::Name))
            corpus.append(bytesOf(folder.filePath(file)));
        for (const QByteArray& input : std::as_const(corpus))
            target.run(input);
        QRandomGenerator random(seed);
        QElapsedTimer clock;
        clock.start();
        const QString kept = u"fuzz-"_s + name + u".input"_s;
        for (int i = 0; i < runs; ++i) {
            const QByteArray input = changed(corpus, target.words, random);
            QFile file(kept);
            if (!file.open(QIODevice::WriteOnly) || file.write(input) != input.size()) {
                std::fprintf(stderr, "%s can't be written\n", qPrintable(kept));
                return 1;
            }
            file.close();
            target.run(input);
        }
        QFile::remove(kept);
        std::printf("%-12s %3lld files, %d inputs, %lld ms\n", target.name, qlonglong(corpus.size()), runs,
                    qlonglong(clock.elapsed()));
    }
    if (played == 0) {
        std::fputs("no such target\n", stderr);
        return 2;
    }
    return 0;
}
