#pragma once

#include "platform/base/desktop.h"
#include "platform/base/text.h"

#include <QHash>
#include <QStringList>

/// A desktop that opens nothing and keeps its settings in memory, for tests. It notes what was asked of it.
class MemoryDesktop : public DesktopHost
{
public:
    /// Sets a fresh one as the host; it lives until the next one is set.
    static MemoryDesktop& install()
    {
        auto host = std::make_unique<MemoryDesktop>();
        MemoryDesktop& result = *host;
        setDesktopHost(std::move(host));
        return result;
    }

    QString setting(const QString& application, const QString& section, const QString& key,
                    const QString& preset) override
    {
        return settings.value(name(application, section, key), preset);
    }
    void saveSetting(const QString& application, const QString& section, const QString& key,
                     const QString& value) override
    {
        settings[name(application, section, key)] = value;
    }
    QString userFolder(const QString&) override { return folder; }
    void open(const QString& target) override { opened += target; }
    void run(const QString& commandLine) override { started += commandLine; }
    void registerClass(const QString& key, const QString& subkey, const QString& value) override
    {
        classes += u"%1|%2|%3"_s.arg(key, subkey, value);
    }
    void beep() override { ++beeps; }
    void endProcess() override { ++ends; }

    QHash<QString, QString> settings; ///< by "application/section/key" in small letters
    QString folder;                   ///< for the user's own files
    QStringList opened;
    QStringList started;
    QStringList classes; ///< "key|subkey|value"
    int beeps = 0;
    int ends = 0;

private:
    static QString name(const QString& application, const QString& section, const QString& key)
    {
        return u"%1/%2/%3"_s.arg(application, section, key).toLower();
    }
};
