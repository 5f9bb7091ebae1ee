#include "platform/widgets/system_desktop.h"

#include "platform/base/files.h"
#include "platform/base/text.h"
#include "platform/widgets/style.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QIcon>
#include <QPixmap>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

const QString commandSubkey = u"shell\\open\\command"_s;
const QString fileArgument = u" %1"_s;

QString settingsFile(const QString& application)
{
    return u"%1/%2/settings.ini"_s.arg(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                                       application.toLower());
}

/// Keys are kept in small letters, since two spellings are one key.
QString settingsKey(const QString& section, const QString& key)
{
    return (section + u'/' + key).toLower().replace(u'\\', u'/');
}

/// An argument of a desktop entry's command, which has rules of its own: quoted whole, and the entry's text once more
/// escapes the backslash.
QString execArgument(QString text)
{
    for (const QChar special : {u'\\', u'"', u'`', u'$'})
        text.replace(special, u'\\' + QString(special));
    text.replace(u'\\', u"\\\\"_s).replace(u'%', u"%%"_s);
    return u'"' + text + u'"';
}

/// Registers a file type with the desktops that follow the shared MIME database.
class FileTypes
{
public:
    void set(const QString& key, const QString& subkey, const QString& value)
    {
        const QString name = subkey.isEmpty() ? key : key + u'\\' + subkey;
        values_[name.toLower()] = value;
        if (sameText(subkey, commandSubkey))
            write(key);
    }

private:
    QString value(const QString& name) const
    {
        const auto found = values_.find(name.toLower());
        return found == values_.end() ? QString() : found->second;
    }

    /// The command is the last value to come: description, icon and extension are known by then.
    void write(const QString& key) const
    {
        const QString id = key.toLower();
        const QString type = u"application/x-"_s + id;
        const QString description = value(key).toHtmlEscaped();
        QString globs;
        for (const auto& [name, held] : values_)
            if (name.startsWith(u'.') && sameText(held, key))
                globs += u"    <glob pattern=\"*%1\"/>\n"_s.arg(name.toHtmlEscaped());

        QString command = value(key + u'\\' + commandSubkey);
        if (command.endsWith(fileArgument))
            command.chop(fileArgument.size());

        const QDir data(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
        const QDir icons(data.filePath(u"icons/hicolor/64x64/mimetypes"_s));
        for (const QString& folder : {u"mime/packages"_s, u"applications"_s, u"icons/hicolor/64x64/mimetypes"_s})
            data.mkpath(folder);

        // Not checked, any of it: a user whose folders can't be written has no association, and no complaint.
        writeLines(data.filePath(u"mime/packages/%1.xml"_s.arg(id)),
                   {u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"_s,
                    u"<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">"_s,
                    u"  <mime-type type=\"%1\">"_s.arg(type), u"    <comment>%1</comment>"_s.arg(description),
                    u"    <icon name=\"application-x-%1\"/>"_s.arg(id), globs + u"  </mime-type>"_s,
                    u"</mime-info>"_s});
        writeLines(data.filePath(u"applications/%1.desktop"_s.arg(id)),
                   {u"[Desktop Entry]"_s, u"Type=Application"_s, u"Name=%1"_s.arg(value(key)),
                    u"Exec=%1 %f"_s.arg(execArgument(command)), u"Icon=application-x-%1"_s.arg(id),
                    u"MimeType=%1;"_s.arg(type), u"NoDisplay=true"_s});
        QPixmap picture = QIcon(resolvedPath(value(key + u"\\DefaultIcon"_s))).pixmap(64, 64);
        if (picture.isNull())
            picture = style::icon().pixmap(64, 64);
        picture.save(icons.filePath(u"application-x-%1.png"_s.arg(id)));

        refresh(u"update-mime-database"_s, data.filePath(u"mime"_s));
        refresh(u"update-desktop-database"_s, data.filePath(u"applications"_s));
    }

    static void refresh(const QString& tool, const QString& folder)
    {
        const QString program = QStandardPaths::findExecutable(tool);
        if (!program.isEmpty())
            QProcess::startDetached(program, {folder});
    }

    std::map<QString, QString> values_;
};

class SystemDesktop : public DesktopHost
{
public:
    QString setting(const QString& application, const QString& section, const QString& key,
                    const QString& preset) override
    {
        return QSettings(settingsFile(application), QSettings::IniFormat)
            .value(settingsKey(section, key), preset)
            .toString();
    }

    void saveSetting(const QString& application, const QString& section, const QString& key,
                     const QString& value) override
    {
        QSettings settings(settingsFile(application), QSettings::IniFormat);
        settings.setValue(settingsKey(section, key), value);
        settings.sync();
    }

    void open(const QString& target) override
    {
        const QString fileScheme = u"file://"_s;
        if (target.startsWith(fileScheme, Qt::CaseInsensitive))
            QDesktopServices::openUrl(QUrl::fromLocalFile(resolvedPath(target.mid(fileScheme.size()))));
        else
            QDesktopServices::openUrl(QUrl::fromUserInput(target));
    }

    void run(const QString& commandLine) override
    {
        QStringList parts = splitCommandLine(commandLine);
        if (parts.isEmpty())
            return;
        const QString program = parts.takeFirst();
        QProcess::startDetached(program, parts, QFileInfo(program).absolutePath());
    }

    void registerClass(const QString& key, const QString& subkey, const QString& value) override
    {
#ifdef Q_OS_WIN
        QSettings classes(u"HKEY_CLASSES_ROOT"_s, QSettings::NativeFormat);
        QString name = subkey.isEmpty() ? key : key + u'\\' + subkey;
        classes.setValue(name.replace(u'\\', u'/') + u"/."_s, value);
#else
        types_.set(key, subkey, value);
#endif
    }

    void endProcess() override
    {
        style::removeFiles();
        std::fflush(nullptr);
        std::_Exit(0);
    }

private:
    FileTypes types_;
};

} // namespace

QStringList splitCommandLine(const QString& commandLine)
{
    const QString line = commandLine.trimmed();
    if (!line.startsWith(u'"'))
        for (qsizetype end = line.size(); end > 0; end = line.lastIndexOf(u' ', end - 1)) {
            const QString program = resolvedPath(line.left(end));
            if (fileExists(program))
                return QStringList(program) + QProcess::splitCommand(line.mid(end));
        }
    return QProcess::splitCommand(line);
}

std::unique_ptr<DesktopHost> systemDesktop()
{
    return std::make_unique<SystemDesktop>();
}
