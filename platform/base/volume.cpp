#include "platform/base/volume.h"

#include "platform/base/text.h"

#include <algorithm>
#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <QStorageInfo>
#endif

namespace {

// 9p is missing on purpose: it is how virtual machines reach the disk of the computer that they run on.
constexpr QStringView networkFileSystems[] = {u"nfs",    u"nfs4",     u"cifs",  u"smb",   u"smb2",   u"smb3",
                                              u"smbfs",  u"smbnetfs", u"sshfs", u"davfs", u"davfs2", u"gvfsd-fuse",
                                              u"afs",    u"coda",     u"ncp",   u"ncpfs", u"ceph",   u"glusterfs",
                                              u"lustre", u"beegfs",   u"rclone"};

#ifdef Q_OS_WIN
QString machineFileSystem(const QString& folder)
{
    const QString drive = folder.first(qMin(folder.size(), qsizetype(3)));
    return GetDriveTypeW(reinterpret_cast<const wchar_t*>(drive.utf16())) == DRIVE_REMOTE ? u"cifs"_s : QString();
}
#else
QString machineFileSystem(const QString& folder)
{
    return QString::fromLatin1(QStorageInfo(folder).fileSystemType());
}
#endif

FileSystemProbe& fileSystemProbe()
{
    static FileSystemProbe probe = machineFileSystem;
    return probe;
}

} // namespace

bool isOnNetwork(const QString& folder)
{
    if (folder.startsWith(u'\\') || folder.startsWith(u"//"_s))
        return true;
    QString type = fileSystemProbe()(folder).toLower();
    if (type.startsWith(u"fuse."_s)) // by the program behind it
        type.remove(0, 5);
    return std::ranges::find(networkFileSystems, type) != std::end(networkFileSystems);
}

void setFileSystemProbe(FileSystemProbe probe)
{
    fileSystemProbe() = probe ? std::move(probe) : machineFileSystem;
}
