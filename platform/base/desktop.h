#pragma once

#include <QString>

#include <functional>
#include <memory>

/// What the program asks of the desktop around it: per-user settings, programs and pages to open, the file
/// association, the end of the process. One replaceable host, as with the boxes.

class DesktopHost
{
public:
    virtual ~DesktopHost() = default;
    /// Keys and sections are compared without regard to case.
    virtual QString setting(const QString& application, const QString& section, const QString& key,
                            const QString& preset) = 0;
    virtual void saveSetting(const QString& application, const QString& section, const QString& key,
                             const QString& value) = 0;
    /// Where this user's own files of the program go that are no settings, outside all shared folders; "" where a host
    /// has no such place. It need not exist.
    virtual QString userFolder(const QString&) { return {}; }
    virtual void open(const QString& target) = 0;     ///< a folder, page or mail address
    virtual void run(const QString& commandLine) = 0; ///< a program, its arguments behind a blank
    /// One text value of the class root of file types.
    virtual void registerClass(const QString& key, const QString& subkey, const QString& value) = 0;
    virtual void beep() {}         ///< for who doesn't look at the screen
    virtual void endProcess() = 0; ///< does not return in the program
};

/// Whoever starts a session sets one: the program `systemDesktop`, tests and `play` their own.
void setDesktopHost(std::unique_ptr<DesktopHost> host);

QString GetSetting(const QString& application, const QString& section, const QString& key, const QString& preset = {});
void SaveSetting(const QString& application, const QString& section, const QString& key, const QString& value);
QString userFolder(const QString& application);
/// Opens a folder ("file://..."), a web page or a mail message.
void ShellExecute(const QString& target);
void Shell(const QString& commandLine);
void registerClass(const QString& key, const QString& subkey, const QString& value);
void Beep();
/// Ends the process at once, with no closing step but that hook. Only under a test's host does it return.
void endProcess();
/// What must not outlive the process: files that tell others of it.
void setBeforeEnd(std::function<void()> hook);
