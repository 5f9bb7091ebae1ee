#include "platform/base/desktop.h"

namespace {

std::function<void()> beforeEnd;

std::unique_ptr<DesktopHost> currentDesktop;

DesktopHost& desktop()
{
    Q_ASSERT_X(currentDesktop, "desktop", "no desktop host is set");
    return *currentDesktop;
}

} // namespace

void setDesktopHost(std::unique_ptr<DesktopHost> host)
{
    currentDesktop = std::move(host);
}

QString GetSetting(const QString& application, const QString& section, const QString& key, const QString& preset)
{
    return desktop().setting(application, section, key, preset);
}

void SaveSetting(const QString& application, const QString& section, const QString& key, const QString& value)
{
    desktop().saveSetting(application, section, key, value);
}

QString userFolder(const QString& application)
{
    return currentDesktop ? currentDesktop->userFolder(application) : QString();
}

void ShellExecute(const QString& target)
{
    desktop().open(target);
}

void Shell(const QString& commandLine)
{
    desktop().run(commandLine);
}

void registerClass(const QString& key, const QString& subkey, const QString& value)
{
    desktop().registerClass(key, subkey, value);
}

void Beep()
{
    desktop().beep();
}

void endProcess()
{
    if (beforeEnd)
        beforeEnd();
    desktop().endProcess();
}

void setBeforeEnd(std::function<void()> hook)
{
    beforeEnd = std::move(hook);
}
