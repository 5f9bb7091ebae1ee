#include "tools/play_state.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cstdio>

namespace play {

namespace {

QString stateFile(const QString& folder)
{
    return folder + u"/state.json"_s;
}

QString lineFile(const QString& folder)
{
    return folder + u"/line"_s;
}

bool writeJson(const QString& path, const QJsonObject& object)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(object).toJson()) >= 0 && file.commit();
}

QJsonObject readJson(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

QStringList texts(const QJsonValue& array)
{
    QStringList list;
    for (const auto& value : array.toArray())
        list += value.toString();
    return list;
}

void print(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8() + '\n';
    fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    fflush(stream);
}

} // namespace

QStringList WorkerOrder::arguments() const
{
    return {u"--worker"_s, script, scriptFile, programFolder, sessionFolder, shots, trace ? u"trace"_s : u"quiet"_s};
}

WorkerOrder WorkerOrder::fromArguments(const QStringList& arguments)
{
    return {arguments.value(1), arguments.value(2), arguments.value(3),
            arguments.value(4), arguments.value(5), arguments.value(6) == u"trace"};
}

bool SessionState::save(const QString& sessionFolder) const
{
    QJsonArray kept;
    for (const KeptBox& box : boxes)
        kept += QJsonObject{{u"text"_s, box.text}, {u"title"_s, box.title}, {u"error"_s, box.isError}};
    QJsonObject object{{u"next"_s, next},
                       {u"boxes"_s, kept},
                       {u"answers"_s, QJsonArray::fromStringList(answers)},
                       {u"shellCalls"_s, QJsonArray::fromStringList(shellCalls)}};
    if (claimedTitle)
        object.insert(u"claimedTitle"_s, *claimedTitle);
    if (clock)
        object.insert(u"clock"_s, clock->toString(Qt::ISODateWithMs));
    return writeJson(stateFile(sessionFolder), object);
}

SessionState SessionState::load(const QString& sessionFolder)
{
    const QJsonObject object = readJson(stateFile(sessionFolder));
    SessionState state;
    state.next = object.value(u"next"_s).toInteger();
    for (const auto& box : object.value(u"boxes"_s).toArray())
        state.boxes += {box[u"text"_s].toString(), box[u"title"_s].toString(), box[u"error"_s].toBool()};
    state.answers = texts(object.value(u"answers"_s));
    state.shellCalls = texts(object.value(u"shellCalls"_s));
    if (object.contains(u"claimedTitle"_s))
        state.claimedTitle = object.value(u"claimedTitle"_s).toString();
    if (object.contains(u"clock"_s))
        state.clock = QDateTime::fromString(object.value(u"clock"_s).toString(), Qt::ISODateWithMs);
    return state;
}

namespace {

QString settingName(const QString& application, const QString& section, const QString& key)
{
    return (application + u'/' + section + u'/' + key).toLower();
}

} // namespace

SettingsFile::SettingsFile(const QString& sessionFolder)
    : path_(sessionFolder + u"/settings.json"_s)
{
    const QJsonObject object = readJson(path_);
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        values_.insert(entry.key(), entry.value().toString());
}

std::optional<QString> SettingsFile::value(const QString& application, const QString& section, const QString& key) const
{
    const auto found = values_.find(settingName(application, section, key));
    return found == values_.end() ? std::nullopt : std::optional(*found);
}

bool SettingsFile::set(const QString& application, const QString& section, const QString& key, const QString& value)
{
    values_.insert(settingName(application, section, key), value);
    QJsonObject object;
    for (auto entry = values_.begin(); entry != values_.end(); ++entry)
        object.insert(entry.key(), entry.value());
    return writeJson(path_, object);
}

void noteLine(const QString& sessionFolder, int number)
{
    QFile file(lineFile(sessionFolder));
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(QByteArray::number(number));
}

int notedLine(const QString& sessionFolder)
{
    QFile file(lineFile(sessionFolder));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toInt() : 0;
}

void printLine(const QString& text)
{
    print(stdout, text);
}

void printFault(const QString& text)
{
    print(stderr, text);
}

QString oneLine(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').replace(u'\n', u"\\n"_s);
}

} // namespace play
