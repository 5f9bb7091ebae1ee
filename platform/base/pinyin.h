#pragma once

#include <QString>

/// How Chinese characters are read, all their readings without tones, from the table that the build makes of the Unihan
/// database. Syllables and what is compared with them are capitals, "ü" is "V".
namespace pinyin {

/// Bit 0 for A to bit 25 for Z: the letters with which a reading of the character begins; 0 for what isn't one.
quint32 initials(QChar c);

/// Whether somebody who types this means a text that begins so: each character by its initial or by a whole reading,
/// the last one also by the beginning of one, in any mixture ("CHUIZ" and "CZ" for 锤子). Other characters of the text
/// stand for themselves and may be left out.
bool beginsAs(QStringView text, QStringView typed);

} // namespace pinyin
