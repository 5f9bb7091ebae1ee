#pragma once

#include <QList>
#include <QString>

#include <string>
#include <vector>

/// Finds records by what somebody remembers of them: a part of the code, of the name or of a further text such as the
/// model, or the name by its sound (see pinyin). Capitals and width don't matter. All texts are in memory, one behind
/// the other, so that 100,000 records are looked through between two keys.
class FindIndex
{
public:
    /// Records are counted in the order of adding.
    void add(QStringView code, QStringView name, QStringView further = {});
    void clear();
    qsizetype size() const { return qsizetype(entries_.size()); }
    QString code(qsizetype record) const; ///< as it was added

    /// The records that all words typed lead to, the best first: the code itself, then codes that begin so, names that
    /// sound so from their beginning, names that begin so, texts that have it in them, names that sound so further in.
    /// Among equals the order is that of adding.
    QList<qsizetype> find(QStringView typed, qsizetype most) const;

private:
    enum Rank { Same, CodeBegins, SoundBegins, NameBegins, Within, SoundWithin, None };
    /// A record's texts in `texts_`, by their lengths, a separator behind each; last the code as it was added.
    struct Entry
    {
        quint32 start;
        quint16 code;
        quint16 name;
        quint16 further;
        quint16 written;
    };
    struct Word
    {
        QString text;
        bool letters; ///< may be a sound
    };

    Rank rank(const Entry& entry, const Word& word) const;

    std::u16string texts_;
    std::vector<Entry> entries_;
};
