// Makes the table of readings that platform/base/pinyin.cpp includes from the Unihan database of the package
// `unicode-data`, at build time: for each character the syllables of all its readings, without tones.
//
//     make_readings BZIP2 Unihan_Readings.txt.bz2 readings.inc

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QSet>
#include <QTextStream>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr uint firstCharacter = 0x3400; // rarer characters than these two blocks stand in no name
constexpr uint lastCharacter = 0x9fff;
constexpr QStringView fields[] = {u"kMandarin", u"kHanyuPinlu", u"kXHC1983", u"kTGHZ2013", u"kHanyuPinyin"};

/// "lǜ" is "LV": what one types.
QString plainSyllable(const QString& reading)
{
    QString plain;
    for (const QChar c : reading.normalized(QString::NormalizationForm_D)) {
        if (c == u'\u0308' && plain.endsWith(u'U'))
            plain.back() = u'V';
        else if (c >= u'a' && c <= u'z')
            plain += c.toUpper();
        else if (!c.isMark())
            return {};
    }
    return plain;
}

/// A field's value: readings in a row, with a place in a dictionary before a colon or a frequency in brackets.
void takeReadings(const QString& value, QSet<QString>& readings)
{
    for (const QString& part : value.split(u' ', Qt::SkipEmptyParts))
        for (const QString& reading : part.section(u':', -1).section(u'(', 0, 0).split(u','))
            if (const QString plain = plainSyllable(reading); !plain.isEmpty())
                readings.insert(plain);
}

QByteArray unpacked(const QString& bzip2, const QString& path)
{
    QProcess process;
    process.start(bzip2, {u"-dc"_s, path});
    process.waitForFinished(-1);
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                                   : QByteArray();
}

void writeNumbers(QTextStream& out, const char* name, const QList<int>& numbers)
{
    out << "constexpr quint16 " << name << "[] = {";
    for (qsizetype i = 0; i < numbers.size(); ++i)
        out << (i % 24 == 0 ? "\n" : "") << numbers[i] << ',';
    out << "\n};\n";
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4) {
        std::fputs("make_readings BZIP2 Unihan_Readings.txt.bz2 readings.inc\n", stderr);
        return 2;
    }
    const QByteArray text = unpacked(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    QMap<uint, QSet<QString>> readings;
    for (const QByteArray& line : text.split('\n')) {
        const QStringList parts = QString::fromUtf8(line).split(u'\t');
        if (parts.size() != 3 || std::find(std::begin(fields), std::end(fields), parts[1]) == std::end(fields))
            continue;
        const uint character = parts[0].sliced(2).toUInt(nullptr, 16);
        if (character >= firstCharacter && character <= lastCharacter)
            takeReadings(parts[2], readings[character]);
    }
    if (readings.size() < 20'000) {
        std::fprintf(stderr, "%s has no readings\n", argv[2]);
        return 1;
    }

    QMap<QString, int> syllables; // their numbers begin with 1: 0 ends a set
    for (const QSet<QString>& set : readings)
        for (const QString& syllable : set)
            syllables[syllable] = 0;
    int count = 0;
    for (int& number : syllables)
        number = ++count;
    QList<int> sets{0}; // the empty one
    QMap<QList<int>, int> places;
    QList<int> setOf;
    for (uint character = firstCharacter; character <= lastCharacter; ++character) {
        QList<int> set;
        for (const QString& syllable : readings.value(character))
            set += syllables[syllable];
        std::sort(set.begin(), set.end());
        if (set.isEmpty()) {
            setOf += 0;
            continue;
        }
        if (!places.contains(set)) {
            places[set] = int(sets.size());
            sets += set;
            sets += 0;
        }
        setOf += places[set];
    }

    QFile file(QString::fromLocal8Bit(argv[3]));
    if (!file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "%s can't be written\n", argv[3]);
        return 1;
    }
    QTextStream out(&file);
    out << "constexpr char16_t firstCharacter = " << firstCharacter << ";\nconstexpr QStringView syllables[] = {u\"\"";
    for (auto it = syllables.cbegin(); it != syllables.cend(); ++it)
        out << ",u\"" << it.key() << '"';
    out << "};\n";
    writeNumbers(out, "sets", sets);
    writeNumbers(out, "setOf", setOf);
    out.flush();
    return file.error() == QFile::NoError && sets.size() < 0x10000 ? 0 : 1;
}
