#include "admin/background.h"

#include "platform/base/files.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

QString fileNameFor(const QString& account)
{
    constexpr QStringView unsuitable = u"\\/:*?\"<>|%";
    QString name;
    for (const QChar c : account)
        if (c < u' ' || unsuitable.contains(c))
            name += u"%%1"_s.arg(c.unicode(), 2, 16, QChar(u'0')).toUpper();
        else
            name += c;
    return name;
}

} // namespace

QString operatorPicture(const QString& account)
{
    return gAppPath + u"image\\"_s + fileNameFor(account) + u".jpg"_s;
}

QString commonPicture()
{
    return gAppPath + u"syspic.dat"_s;
}

void dressFor(Background& background, const QString& account)
{
    // Decoration only: a picture that can't be read changes nothing of what is shown.
    if (const QString own = operatorPicture(account); fileExists(own)) {
        if (background.loadPicture(own))
            background.setCaptionVisible(true);
    } else if (!fileExists(commonPicture()) || background.loadPicture(commonPicture())) {
        background.setCaptionVisible(false);
    }
}

bool keepOperatorPicture(const QString& account, const QString& source)
{
    const QString target = resolvedPath(operatorPicture(account));
    QFile from(resolvedPath(source));
    if (!from.open(QIODevice::ReadOnly) || !QDir().mkpath(QFileInfo(target).path()))
        return false;
    QSaveFile to(target);
    if (!to.open(QIODevice::WriteOnly))
        return false;
    constexpr qint64 chunk = 1 << 20;
    while (!from.atEnd()) {
        const QByteArray bytes = from.read(chunk);
        if (bytes.isEmpty() || to.write(bytes) != bytes.size())
            return false;
    }
    return to.commit();
}

bool dropOperatorPicture(const QString& account)
{
    const QString own = operatorPicture(account);
    return !fileExists(own) || QFile::remove(resolvedPath(own));
}
