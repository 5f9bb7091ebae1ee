#include "tools/play_script.h"

#include "platform/base/date.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QStringDecoder>

namespace play {

namespace {

/// What a command takes, one letter an operand. An operand that may be missing has its letter in small.
/// C control, F form, N number from 0, T text, K key, S on or off, W word or quoted word, P path (the rest of the
/// line), M clock, D date, Q "statement => text".
struct CommandRow
{
    const char* name;
    const char* operands;
};

// clang-format off
constexpr CommandRow commandRows[] = {
    {"clock", "M"},            {"set-up", "WP"},         {"remove", "P"},          {"open", "t"},
    {"do", "C"},               {"type", "CT"},           {"keys", "T"},            {"key", "K"},
    {"press", "CK"},           {"leave", "C"},           {"choose", "CT"},         {"tick", "CS"},
    {"date", "CD"},            {"tab", "CN"},            {"row", "CN"},            {"dbl", "Cn"},
    {"cell", "CNNT"},          {"click-cell", "CNN"},    {"close", "F"},           {"answer", "T"},
    {"wait", "F"},             {"beside", "P"},          {"idle", "N"},            {"crash", ""},
    {"clipboard", "T"},
    {"expect", "CT"},          {"expect-has", "CT"},     {"expect-cell", "CNNT"},  {"expect-rows", "CN"},
    {"expect-items", "CN"},    {"expect-box", "T"},      {"expect-box-has", "T"},  {"expect-title", "T"},
    {"expect-no-box", ""},     {"expect-on", "C"},       {"expect-off", "C"},      {"expect-visible", "C"},
    {"expect-hidden", "C"},    {"expect-enabled", "C"},  {"expect-disabled", "C"}, {"expect-col-visible", "CN"},
    {"expect-col-hidden", "CN"}, {"expect-focus", "C"},  {"expect-open", "F"},     {"expect-closed", "F"},
    {"expect-sql", "Q"},       {"expect-file", "P"},     {"expect-no-file", "P"},  {"expect-shell", "T"},
    {"expect-ended", ""},      {"expect-page", "T"},     {"expect-pages", "N"},
    {"sql", "T"},              {"dump", "C"},            {"shot", "P"},            {"pdf", "P"},
    {"say", "T"},              {"size", "NN"},           {"end", ""},
};
// clang-format on

const char* operandsOf(const QString& command)
{
    for (const CommandRow& row : commandRows)
        if (command == QLatin1StringView(row.name))
            return row.operands;
    return nullptr;
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

/// Full-width blanks stay: they are part of captions.
QStringView cut(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

QString takeWord(QStringView& rest)
{
    qsizetype end = 0;
    while (end < rest.size() && !isBlank(rest[end]))
        ++end;
    const QString word = rest.first(end).toString();
    rest = cut(rest.sliced(end));
    return word;
}

/// A path that holds blanks may stand in quotes before another operand.
QString takePath(QStringView& rest)
{
    if (rest.startsWith(u'"')) {
        const qsizetype end = rest.indexOf(u'"', 1);
        if (end > 1) {
            const QString path = rest.sliced(1, end - 1).toString();
            rest = cut(rest.sliced(end + 1));
            return path;
        }
    }
    return takeWord(rest);
}

QString takeRest(QStringView& rest)
{
    const QString text = rest.toString();
    rest = {};
    return text;
}

QString withoutQuotes(const QString& path)
{
    return path.size() > 2 && path.startsWith(u'"') && path.endsWith(u'"') ? path.sliced(1, path.size() - 2) : path;
}

bool isNumber(const QString& word)
{
    bool ok = false;
    return word.toInt(&ok) >= 0 && ok;
}

using Operands = std::variant<QStringList, QString>;

QString expectedBut(const QString& expected, const QString& got)
{
    return u"expected "_s + expected + u", got "_s + (got.isEmpty() ? u"nothing"_s : u'"' + got + u'"');
}

/// One operand off the front of `rest`, added to `taken`; the fault if it isn't what it has to be.
std::optional<QString> takeOperand(char kind, QStringView& rest, QStringList& taken)
{
    switch (kind) {
    case 'C':
    case 'F': {
        const QString word = takeWord(rest);
        const auto path = controlPath(word);
        if (!path || (kind == 'F' && !path->control.isEmpty()))
            return expectedBut(kind == 'F' ? u"a form"_s : u"a control as FORM.CONTROL"_s, word);
        taken += word;
        return {};
    }
    case 'N': {
        const QString word = takeWord(rest);
        if (!isNumber(word))
            return expectedBut(u"a number from 0"_s, word);
        taken += word;
        return {};
    }
    case 'K': {
        const QString name = takeRest(rest);
        if (!keyNamed(name))
            return expectedBut(u"a key"_s, name);
        taken += name;
        return {};
    }
    case 'S': {
        const QString state = takeRest(rest);
        if (state != u"on" && state != u"off")
            return expectedBut(u"on or off"_s, state);
        taken += state;
        return {};
    }
    case 'M': {
        const QString moment = takeRest(rest);
        if (!clockMoment(moment, QDateTime::currentDateTime()))
            return expectedBut(u"DATE, DATE TIME, +1d, +2h or +30s"_s, moment);
        taken += moment;
        return {};
    }
    case 'D': {
        const QString date = takeRest(rest);
        if (!IsDate(date))
            return expectedBut(u"a date"_s, date);
        taken += date;
        return {};
    }
    case 'Q': {
        const QString text = takeRest(rest);
        const qsizetype arrow = text.indexOf(u"=>"_s);
        const QString statement = cut(QStringView(text).first(qMax(arrow, qsizetype(0)))).toString();
        const QString value = arrow < 0 ? QString() : cut(QStringView(text).sliced(arrow + 2)).toString();
        if (statement.isEmpty() || value.isEmpty())
            return expectedBut(u"STATEMENT => TEXT"_s, text);
        taken += {unescaped(statement), unescaped(value)};
        return {};
    }
    case 'W':
    case 'P': {
        const QString path = kind == 'W' ? takePath(rest) : withoutQuotes(takeRest(rest));
        if (path.isEmpty())
            return expectedBut(u"a path"_s, path);
        taken += path;
        return {};
    }
    default: // 'T'
        if (rest.isEmpty())
            return expectedBut(u"a text (\"\" for the empty one)"_s, QString());
        taken += unescaped(takeRest(rest));
        return {};
    }
}

} // namespace

std::variant<std::optional<Line>, QString> readLine(const QString& source, int number)
{
    QStringView rest = cut(source);
    if (rest.isEmpty() || rest.startsWith(u'#'))
        return std::optional<Line>();
    Line line;
    line.number = number;
    line.source = rest.toString();
    line.command = takeWord(rest);
    const char* kinds = operandsOf(line.command);
    if (!kinds)
        return expectedBut(u"a command"_s, line.command);
    for (; *kinds; ++kinds) {
        const bool optional = *kinds >= 'a';
        if (optional && rest.isEmpty())
            break;
        if (const auto fault = takeOperand(optional ? char(*kinds - 'a' + 'A') : *kinds, rest, line.operands))
            return *fault;
    }
    if (!rest.isEmpty())
        return expectedBut(u"the end of the line"_s, rest.toString());
    return std::optional<Line>(line);
}

std::variant<Script, QString> readScript(const QString& path, const QString& name)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return name + u":0: expected a script, got "_s + file.errorString();
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(file.readAll());
    if (decoder.hasError())
        return name + u":0: expected UTF-8 text, got other bytes"_s;

    Script script;
    script.name = name;
    QStringList sources = text.split(u'\n');
    if (sources.last().isEmpty())
        sources.removeLast();
    for (QString& source : sources) {
        if (source.endsWith(u'\r'))
            source.chop(1);
        const auto read = readLine(source, ++script.lastNumber);
        if (const auto* fault = std::get_if<QString>(&read))
            return name + u':' + QString::number(script.lastNumber) + u": "_s + *fault;
        if (const auto& line = std::get<0>(read))
            script.lines += *line;
    }
    return script;
}

QStringList commandNames()
{
    QStringList names;
    for (const CommandRow& row : commandRows)
        names += QString::fromLatin1(row.name);
    return names;
}

QString unescaped(const QString& text)
{
    if (text == u"\"\"")
        return {};
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar next = text[i] == u'\\' && i + 1 < text.size() ? text[i + 1] : QChar();
        const qsizetype which = next.isNull() ? -1 : QStringView(u"nts\\").indexOf(next);
        if (which >= 0) {
            plain += u"\n\t \\"[which];
            ++i;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

std::optional<ControlPath> controlPath(const QString& text)
{
    static const QRegularExpression shape(u"^(\\w+)(?:#([1-9]\\d*))?(?:\\.(\\S+))?$"_s,
                                          QRegularExpression::UseUnicodePropertiesOption);
    const auto match = shape.match(text);
    if (!match.hasMatch())
        return {};
    return ControlPath{match.captured(1), match.captured(2).toInt(), match.captured(3)};
}

std::optional<Key> keyNamed(const QString& name)
{
    static const QHash<QString, Qt::Key> named = [] {
        QHash<QString, Qt::Key> keys{
            {u"enter"_s, Qt::Key_Return},
            {u"return"_s, Qt::Key_Return},
            {u"tab"_s, Qt::Key_Tab},
            {u"esc"_s, Qt::Key_Escape},
            {u"escape"_s, Qt::Key_Escape},
            {u"space"_s, Qt::Key_Space},
            {u"up"_s, Qt::Key_Up},
            {u"down"_s, Qt::Key_Down},
            {u"left"_s, Qt::Key_Left},
            {u"right"_s, Qt::Key_Right},
            {u"home"_s, Qt::Key_Home},
            {u"end"_s, Qt::Key_End},
            {u"pgup"_s, Qt::Key_PageUp},
            {u"pageup"_s, Qt::Key_PageUp},
            {u"pgdown"_s, Qt::Key_PageDown},
            {u"pagedown"_s, Qt::Key_PageDown},
            {u"del"_s, Qt::Key_Delete},
            {u"delete"_s, Qt::Key_Delete},
            {u"ins"_s, Qt::Key_Insert},
            {u"insert"_s, Qt::Key_Insert},
            {u"backspace"_s, Qt::Key_Backspace},
            {u"menu"_s, Qt::Key_Menu},
            {u"alt"_s, Qt::Key_Alt},
            {u"plus"_s, Qt::Key_Plus},
            {u"backtab"_s, Qt::Key_Backtab},
        };
        for (int i = 1; i <= 12; ++i)
            keys.insert(u"f"_s + QString::number(i), Qt::Key(Qt::Key_F1 + i - 1));
        return keys;
    }();

    Key key;
    QString rest = name.toLower();
    const std::pair<QString, Qt::KeyboardModifier> prefixes[] = {
        {u"ctrl+"_s, Qt::ControlModifier}, {u"alt+"_s, Qt::AltModifier}, {u"shift+"_s, Qt::ShiftModifier}};
    for (bool found = true; found;) {
        found = false;
        for (const auto& [prefix, modifier] : prefixes)
            if (rest.size() > prefix.size() && rest.startsWith(prefix)) {
                key.modifiers |= modifier;
                rest = rest.sliced(prefix.size());
                found = true;
            }
    }
    if (rest.size() == 1 && rest[0] > u' ' && rest[0] < u'\x7f') {
        key.key = Qt::Key(rest[0].toUpper().unicode());
        if (!(key.modifiers & (Qt::ControlModifier | Qt::AltModifier)))
            key.text = key.modifiers & Qt::ShiftModifier ? rest.toUpper() : name.right(1);
        return key;
    }
    key.key = named.value(rest, Qt::Key_unknown);
    if (key.key == Qt::Key_unknown)
        return {};
    if (key.key == Qt::Key_Tab && key.modifiers & Qt::ShiftModifier)
        key.key = Qt::Key_Backtab;
    static const QHash<Qt::Key, QString> typed{
        {Qt::Key_Return, u"\r"_s}, {Qt::Key_Tab, u"\t"_s}, {Qt::Key_Space, u" "_s}, {Qt::Key_Plus, u"+"_s}};
    if (!(key.modifiers & (Qt::ControlModifier | Qt::AltModifier)))
        key.text = typed.value(key.key);
    return key;
}

std::optional<QDateTime> clockMoment(const QString& operand, const QDateTime& now)
{
    static const QRegularExpression step(u"^\\+(\\d{1,6})([dhs])$"_s);
    if (const auto match = step.match(operand); match.hasMatch()) {
        const qint64 count = match.captured(1).toLongLong();
        switch (match.captured(2).at(0).unicode()) {
        case u'd':
            return now.addDays(count);
        case u'h':
            return now.addSecs(count * 3600);
        default:
            return now.addSecs(count);
        }
    }
    return parseMoment(operand);
}

} // namespace play
