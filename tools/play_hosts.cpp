#include "tools/play_hosts.h"

#include "platform/base/files.h"
#include "tools/play_player.h"

#include <QDir>

namespace play {

namespace {

void printBox(const QString& title, const QString& text, const QString& answer)
{
    printLine(u"box [%1] %2 -> %3"_s.arg(oneLine(title), oneLine(text), oneLine(answer)));
}

/// Such an answer belongs to another sort of box.
[[noreturn]] void refuse(const QString& sort, const QString& text, const QString& answer)
{
    fail(u"%1 for \"%2\""_s.arg(sort, oneLine(text)), u"the answer \"%1\""_s.arg(oneLine(answer)));
}

} // namespace

ScriptedDialogs::ScriptedDialogs(SessionState& state, const QString& programFolder, std::function<void()> turn)
    : state_(state)
    , programFolder_(programFolder)
    , turn_(std::move(turn))
{}

QString ScriptedDialogs::take(const QString& title, const QString& text)
{
    if (state_.answers.isEmpty()) {
        printBox(title, text, u"?"_s);
        fail(u"an answer queued for [%1] \"%2\""_s.arg(oneLine(title), oneLine(text)), u"none"_s);
    }
    const QString answer = state_.answers.takeFirst();
    printBox(title, text, answer);
    return answer;
}

Answer ScriptedDialogs::show(const Box& box)
{
    KeptBox kept{box.text, box.title, box.kind == BoxKind::Error};
    if (box.buttons == BoxButtons::Ok) {
        printBox(box.title, box.text, u"ok"_s);
        state_.boxes += kept;
        return Answer::Ok;
    }
    const QString answer = take(box.title, box.text);
    state_.boxes += kept;
    if (answer != u"yes" && answer != u"no")
        refuse(u"yes or no"_s, box.text, answer);
    return answer == u"yes" ? Answer::Yes : Answer::No;
}

std::optional<QString> ScriptedDialogs::input(const InputRequest& request)
{
    const QString answer = take(request.title, request.prompt);
    state_.boxes += {request.prompt, request.title, false};
    if (answer == u"yes" || answer == u"no")
        refuse(u"a text, ok or cancel"_s, request.prompt, answer);
    if (answer == u"cancel")
        return {};
    return answer == u"ok" ? request.preset : answer;
}

std::optional<QString> ScriptedDialogs::chooseFile(const FileRequest& request)
{
    const QString answer = take(request.title, request.fileName);
    if (answer == u"yes" || answer == u"no")
        refuse(u"a path, ok or cancel"_s, request.title, answer);
    if (answer == u"cancel")
        return {};
    const QString path = QDir(programFolder_).absoluteFilePath(localPath(answer == u"ok" ? request.fileName : answer));
    return QDir::toNativeSeparators(QDir::cleanPath(path));
}

std::optional<PrintJob> ScriptedDialogs::print(const PrintRequest& request)
{
    const QString answer = take(request.title, request.job.printer);
    if (answer == u"yes" || answer == u"no")
        refuse(u"a PDF file, ok or cancel"_s, request.title, answer);
    if (answer == u"cancel")
        return {};
    PrintJob job = request.job;
    if (answer != u"ok")
        job.file = QDir::toNativeSeparators(QDir(programFolder_).absoluteFilePath(localPath(answer)));
    return job;
}

void ScriptedDialogs::doEvents()
{
    turn_();
}

ScriptedDesktop::ScriptedDesktop(SessionState& state, const QString& sessionFolder, std::function<void()> end)
    : state_(state)
    , sessionFolder_(sessionFolder)
    , settings_(sessionFolder)
    , end_(std::move(end))
{}

QString ScriptedDesktop::setting(const QString& application, const QString& section, const QString& key,
                                 const QString& preset)
{
    return settings_.value(application, section, key).value_or(preset);
}

void ScriptedDesktop::saveSetting(const QString& application, const QString& section, const QString& key,
                                  const QString& value)
{
    if (!settings_.set(application, section, key, value))
        fail(u"the session's settings to be written"_s, u"a failure to write"_s);
}

QString ScriptedDesktop::userFolder(const QString&)
{
    return sessionFolder_ + u"/user"_s;
}

void ScriptedDesktop::open(const QString& target)
{
    state_.shellCalls += target;
}

void ScriptedDesktop::run(const QString& commandLine)
{
    state_.shellCalls += commandLine;
}

void ScriptedDesktop::registerClass(const QString&, const QString&, const QString&)
{
    // A session leaves the file types of the machine alone.
}

void ScriptedDesktop::beep()
{
    state_.shellCalls += u"beep"_s;
}

void ScriptedDesktop::endProcess()
{
    end_();
}

} // namespace play
