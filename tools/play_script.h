#pragma once

#include "platform/base/text.h"

#include <QDateTime>
#include <QStringList>

#include <optional>
#include <variant>

namespace play {

/// One command of a script, its operands taken apart and checked.
struct Line
{
    int number = 0; ///< as an editor counts, from 1
    QString source; ///< as it is written, for `--trace`
    QString command;
    QStringList operands; ///< texts with their escapes resolved; a missing optional operand is missing here
    int integer(qsizetype operand) const { return operands.at(operand).toInt(); }
};

struct Script
{
    QString name;
    QList<Line> lines;
    int lastNumber = 0; ///< of the file's last line
};

/// A script under the name that it is told by, or the one line that says what is wrong with it: "SCRIPT:LINE: expected
/// ..., got ...".
std::variant<Script, QString> readScript(const QString& path, const QString& name);
/// Reads one line; nothing for blank and comment lines.
/// @return the line, or what was expected and what stands there
std::variant<std::optional<Line>, QString> readLine(const QString& source, int number);

/// All commands, for those who carry them out.
QStringList commandNames();

/// The line break, tab, blank and backslash escapes of a script's texts; "" alone is the empty text. A backslash
/// before anything else stands for itself, so that most paths can be written plainly.
QString unescaped(const QString& text);

/// The part of `FORM.CONTROL` before the first point, and the rest ("" for a form alone).
struct ControlPath
{
    QString form;
    int instance = 0; ///< 0: the newest; n: the n-th oldest
    QString control;
};
std::optional<ControlPath> controlPath(const QString& text);

struct Key
{
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers modifiers;
    QString text; ///< what the key types
};
/// "Enter", "Ctrl+S", "F4", "a"; nothing for what is no key.
std::optional<Key> keyNamed(const QString& name);

/// The moment that a clock operand leads to: "2004-1-1", "2004-1-1 9:05", "+1d", "+2h", "+30s".
std::optional<QDateTime> clockMoment(const QString& operand, const QDateTime& now);

} // namespace play
