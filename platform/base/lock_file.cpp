#include "platform/base/lock_file.h"

#include "platform/base/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>

#ifdef Q_OS_WIN
#include <utility>
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

// The last holder locks the file exclusively for the moment in which it removes it; whoever comes just then tries
// again.
constexpr int lockAttempts = 5;

} // namespace

bool LockFile::worksIn(const QString& folder)
{
    const QString probe = QDir(folder).filePath(u"lock-probe-%1"_s.arg(QCoreApplication::applicationPid()));
    LockFile first;
    LockFile second;
    return first.take(probe, Hold::Exclusive, folder) != Outcome::Held ||
           second.take(probe, Hold::Exclusive, folder) != Outcome::Held;
}

LockFile::~LockFile()
{
    release();
}

#ifdef Q_OS_WIN

LockFile::Outcome LockFile::take(const QString& path, Hold hold, const QString&)
{
    release();
    for (int attempt = 0; attempt < lockAttempts; ++attempt) {
        const HANDLE file = CreateFileW(reinterpret_cast<const wchar_t*>(path.utf16()), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return Outcome::Failed;
        OVERLAPPED at = {};
        const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (hold == Hold::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
        if (LockFileEx(file, flags, 0, 1, 0, &at)) {
            handle_ = file;
            path_ = path;
            return Outcome::Held;
        }
        const bool refused = GetLastError() == ERROR_LOCK_VIOLATION || GetLastError() == ERROR_IO_PENDING;
        CloseHandle(file);
        if (!refused)
            return Outcome::Failed;
        QThread::msleep(1);
    }
    return Outcome::Refused;
}

void LockFile::release()
{
    if (!handle_)
        return;
    CloseHandle(std::exchange(handle_, nullptr));
    DeleteFileW(reinterpret_cast<const wchar_t*>(path_.utf16())); // fails as long as another holder has it open
}

#else

namespace {

int setLock(int descriptor, bool exclusive)
{
#ifdef F_OFD_SETLK
    struct flock request = {};
    request.l_type = exclusive ? F_WRLCK : F_RDLCK;
    request.l_whence = SEEK_SET;
    return fcntl(descriptor, F_OFD_SETLK, &request);
#else
    return flock(descriptor, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB);
#endif
}

/// Whether the path still leads to that open file: its last holder may have removed it meanwhile.
bool stillAt(const char* path, int descriptor)
{
    struct stat open = {};
    struct stat named = {};
    return fstat(descriptor, &open) == 0 && stat(path, &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

LockFile::Outcome LockFile::take(const QString& path, Hold hold, const QString& like)
{
    release();
    const QByteArray name = QFile::encodeName(path);
    Outcome outcome = Outcome::Refused;
    for (int attempt = 0; attempt < lockAttempts; ++attempt) {
        int descriptor = open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            struct stat model = {};
            // When this fails other users of the folder may be kept out, which they are told; no reason to refuse ours.
            if (stat(QFile::encodeName(like).constData(), &model) == 0)
                (void)fchmod(descriptor, model.st_mode & 0666);
        } else {
            descriptor = open(name.constData(), O_RDWR | O_CLOEXEC);
            if (descriptor < 0 && errno == EACCES && hold == Hold::Shared)
                descriptor = open(name.constData(), O_RDONLY | O_CLOEXEC);
            if (descriptor < 0 && errno == ENOENT) { // removed just now, or a folder where nothing can be made
                outcome = Outcome::Failed;
                continue;
            }
        }
        if (descriptor < 0)
            return Outcome::Failed;
        if (setLock(descriptor, hold == Hold::Exclusive) == 0) {
            if (stillAt(name.constData(), descriptor)) {
                descriptor_ = descriptor;
                path_ = path;
                return Outcome::Held;
            }
        } else if (errno == EAGAIN || errno == EACCES || errno == EWOULDBLOCK) {
            outcome = Outcome::Refused;
            QThread::msleep(1);
        } else {
            close(descriptor);
            return Outcome::Failed;
        }
        close(descriptor);
    }
    return outcome;
}

void LockFile::release()
{
    if (descriptor_ < 0)
        return;
    const QByteArray name = QFile::encodeName(path_);
    if (setLock(descriptor_, true) == 0 && stillAt(name.constData(), descriptor_))
        unlink(name.constData());
    close(descriptor_);
    descriptor_ = -1;
}

#endif
