#include "platform/base/finding.h"

#include "platform/base/pinyin.h"
#include "platform/base/width.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr qsizetype longestText = 1000;
constexpr char16_t between = u'\n'; ///< stands in no word

QString comparable(QStringView text)
{
    return plainWidth(text.first(std::min(text.size(), longestText)).toString()).toUpper();
}

} // namespace

void FindIndex::add(QStringView code, QStringView name, QStringView further)
{
    const auto take = [this](const QString& text) {
        texts_.append(reinterpret_cast<const char16_t*>(text.utf16()), size_t(text.size()));
        texts_ += between;
        return quint16(text.size());
    };
    Entry entry{};
    entry.start = quint32(texts_.size());
    entry.code = take(comparable(code));
    entry.name = take(comparable(name));
    entry.further = take(comparable(further));
    entry.written = take(code.first(std::min(code.size(), longestText)).toString());
    entries_.push_back(entry);
}

void FindIndex::clear()
{
    texts_.clear();
    entries_.clear();
}

QString FindIndex::code(qsizetype record) const
{
    const Entry& entry = entries_[size_t(record)];
    const qsizetype at = qsizetype(entry.start) + entry.code + entry.name + entry.further + 3;
    return QStringView(texts_).sliced(at, entry.written).toString();
}

FindIndex::Rank FindIndex::rank(const Entry& entry, const Word& word) const
{
    const QStringView text = word.text;
    const QStringView all = QStringView(texts_).sliced(entry.start, entry.code + entry.name + entry.further + 2);
    const QStringView code = all.first(entry.code);
    const QStringView name = all.sliced(entry.code + 1, entry.name);
    if (code.startsWith(text))
        return code.size() == text.size() ? Same : CodeBegins;
    const char16_t first = text.front().unicode();
    const quint32 initial = first >= u'A' && first <= u'Z' ? 1u << (first - u'A') : 0;
    const auto soundsFrom = [&](qsizetype i) {
        return (name[i] == first || (pinyin::initials(name[i]) & initial) != 0) &&
               pinyin::beginsAs(name.sliced(i), text);
    };
    if (word.letters && !name.isEmpty() && soundsFrom(0))
        return SoundBegins;
    if (name.startsWith(text))
        return NameBegins;
    // By hand: the toolkit prepares each search anew, which costs more than looking through such short texts.
    const char16_t* const begin = all.utf16();
    for (qsizetype at = 0; at + text.size() <= all.size(); ++at)
        if (begin[at] == first && std::equal(text.begin(), text.end(), all.begin() + at))
            return Within;
    for (qsizetype i = 1; word.letters && i < name.size(); ++i)
        if (soundsFrom(i))
            return SoundWithin;
    return None;
}

QList<qsizetype> FindIndex::find(QStringView typed, qsizetype most) const
{
    QList<Word> words;
    for (const QString& word : comparable(typed).simplified().split(u' ', Qt::SkipEmptyParts))
        words += {word, std::any_of(word.begin(), word.end(), [](QChar c) { return c >= u'A' && c <= u'Z'; })};
    if (words.isEmpty())
        return {};
    std::array<QList<qsizetype>, None> found;
    for (size_t record = 0; record < entries_.size(); ++record) {
        int worst = Same;
        for (const Word& word : words)
            if (worst != None)
                worst = std::max<int>(worst, rank(entries_[record], word));
        if (worst != None && found[size_t(worst)].size() < most)
            found[size_t(worst)] += qsizetype(record);
    }
    QList<qsizetype> best;
    for (const QList<qsizetype>& records : found)
        best += records.first(std::min(records.size(), most - best.size()));
    return best;
}
