#include "platform/base/pinyin.h"

#include <array>
#include <iterator>

namespace pinyin {

namespace {

#include <readings.inc> // made by tools/make_readings

/// The numbers of a character's syllables, 0 behind the last.
const quint16* readingsOf(QChar c)
{
    const int place = int(c.unicode()) - int(firstCharacter);
    return sets + (place < 0 || place >= int(std::size(setOf)) ? 0 : setOf[place]);
}

} // namespace

quint32 initials(QChar c)
{
    static const auto masks = [] {
        std::array<quint32, std::size(setOf)> made{};
        for (size_t i = 0; i < made.size(); ++i)
            for (const quint16* reading = sets + setOf[i]; *reading; ++reading)
                made[i] |= 1u << (syllables[*reading].front().unicode() - u'A');
        return made;
    }();
    const size_t place = size_t(c.unicode()) - firstCharacter;
    return place < masks.size() ? masks[place] : 0;
}

bool beginsAs(QStringView text, QStringView typed)
{
    if (typed.isEmpty())
        return true;
    for (; !text.isEmpty(); text = text.sliced(1)) {
        const quint16* reading = readingsOf(text.front());
        if (*reading == 0) {
            if (text.front() == typed.front() && beginsAs(text.sliced(1), typed.sliced(1)))
                return true;
            continue; // left out
        }
        for (; *reading; ++reading) {
            const QStringView syllable = syllables[*reading];
            if (syllable.front() != typed.front())
                continue;
            if (syllable.startsWith(typed) || beginsAs(text.sliced(1), typed.sliced(1)))
                return true;
            const bool digraph = syllable.size() > 1 && syllable[1] == u'H'; // ZH, CH, SH are initials too
            if (digraph && typed.size() > 2 && typed[1] == u'H' && beginsAs(text.sliced(1), typed.sliced(2)))
                return true;
            if (typed.startsWith(syllable) && beginsAs(text.sliced(1), typed.sliced(syllable.size())))
                return true;
        }
        return false;
    }
    return false;
}

} // namespace pinyin
