#include "platform/widgets/system_desktop.h"

#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/text.h"
#include "platform/widgets/manual_window.h"
#include "platform/widgets/style.h"

#include <QApplication>
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
        if (!refresh(u"update-desktop-database"_s, data.filePath(u"applications"_s)))
            addToCache(data.filePath(u"applications/mimeinfo.cache"_s), type, id);
    }

    /// @return false when this machine has no such tool
    static bool refresh(const QString& tool, const QString& folder)
    {
        const QString program = QStandardPaths::findExecutable(tool);
        return !program.isEmpty() && QProcess::startDetached(program, {folder});
    }

    /// What the missing tool would write: desktops look up there which program opens a type.
    static void addToCache(const QString& path, const QString& type, const QString& id)
    {
        const QString heading = u"[MIME Cache]"_s;
        QStringList lines = readLines(path).value_or(QStringList());
        lines.removeIf([&](const QString& line) { return line.startsWith(type + u'='); });
        if (!lines.contains(heading))
            lines.prepend(heading);
        lines.insert(lines.indexOf(heading) + 1, u"%1=%2.desktop;"_s.arg(type, id));
        writeLines(path, lines);
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

    QString userFolder(const QString& application) override
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + application.toLower();
    }

    void open(const QString& target) override
    {
        const QString fileScheme = u"file://"_s;
        const QUrl url = target.startsWith(fileScheme, Qt::CaseInsensitive)
                             ? QUrl::fromLocalFile(resolvedPath(target.mid(fileScheme.size())))
                             : QUrl::fromUserInput(target);
        if (!QDesktopServices::openUrl(url))
            MsgBox(u"系统没有可以打开它的程序：\n\n%1"_s.arg(target));
    }

    void run(const QString& commandLine) override
    {
        if (const auto manual = manualOf(commandLine)) {
            if (!ManualWindow::open(manual->folder, manual->chapter))
                MsgBox(u"没找到使用说明！\n\n它应当在这个文件夹中：\n%1\n\n请重新安装本软件。"_s.arg(manual->folder));
            return;
        }
        QStringList parts = splitCommandLine(commandLine);
        if (parts.isEmpty())
            return;
        const QString program = parts.takeFirst();
        if (!QProcess::startDetached(program, parts, QFileInfo(program).absolutePath()))
            MsgBox(u"无法启动程序：\n\n%1"_s.arg(commandLine));
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

    void beep() override
    {
        QApplication::beep();
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
            const QString program = programPath(line.left(end));
            if (!program.isEmpty())
                return QStringList(program) + QProcess::splitCommand(line.mid(end));
        }
    return QProcess::splitCommand(line);
}

std::optional<ManualTarget> manualOf(const QString& commandLine)
{
    const QString viewer = u"hh.exe "_s;
    const QString pageSeparator = u"::/"_s;
    const QString bookSuffix = u".chm"_s;
    if (!commandLine.startsWith(viewer, Qt::CaseInsensitive))
        return {};
    QString book = commandLine.mid(viewer.size()).trimmed();
    ManualTarget target;
    if (const qsizetype at = book.indexOf(pageSeparator); at >= 0) {
        target.chapter = QFileInfo(book.mid(at + pageSeparator.size())).completeBaseName();
        book.truncate(at);
    }
    if (book.endsWith(bookSuffix, Qt::CaseInsensitive))
        book.chop(bookSuffix.size());
    target.folder = resolvedPath(book);
    return target;
}

std::unique_ptr<DesktopHost> systemDesktop()
{
    return std::make_unique<SystemDesktop>();
}
