#pragma once

#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "tools/play_state.h"

#include <functional>

namespace play {

/// Answers the boxes from a session's queue. A box with one button answers itself and is kept; a question that nothing
/// answers ends the script.
class ScriptedDialogs : public DialogHost
{
public:
    /// @param turn one turn of the message loop, in which no line is played
    ScriptedDialogs(SessionState& state, const QString& programFolder, std::function<void()> turn);

    Answer show(const Box& box) override;
    std::optional<QString> input(const InputRequest& request) override;
    std::optional<QString> chooseFile(const FileRequest& request) override;
    void doEvents() override;
    std::optional<PrintJob> print(const PrintRequest& request) override;

private:
    /// The next queued answer; the script fails when there is none.
    QString take(const QString& title, const QString& text);

    SessionState& state_;
    QString programFolder_;
    std::function<void()> turn_;
};

/// The desktop around the program: the session's own settings, kept calls instead of started programs.
class ScriptedDesktop : public DesktopHost
{
public:
    /// @param end what happens when the program ends; must not return
    ScriptedDesktop(SessionState& state, const QString& sessionFolder, std::function<void()> end);

    QString setting(const QString& application, const QString& section, const QString& key,
                    const QString& preset) override;
    void saveSetting(const QString& application, const QString& section, const QString& key,
                     const QString& value) override;
    QString userFolder(const QString& application) override;
    void open(const QString& target) override;
    void run(const QString& commandLine) override;
    void registerClass(const QString& key, const QString& subkey, const QString& value) override;
    void beep() override;
    void endProcess() override;

private:
    SessionState& state_;
    QString sessionFolder_;
    SettingsFile settings_;
    std::function<void()> end_;
};

} // namespace play
