#pragma once

#include <QString>

/// A lock between processes on a file of its own, which exists only while somebody holds it. It goes with the process,
/// however that ends. Unlike the classic locks of POSIX it is not lost when another descriptor of the file is closed.
class LockFile
{
public:
    enum class Hold { Shared, Exclusive };
    enum class Outcome {
        Held,
        Refused, ///< another holder is in the way
        Failed   ///< the file can't be made or locked: a read-only folder, a file system without locks
    };

    LockFile() = default;
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// Does not wait for other holders. A lock held before is given up first.
    /// @param like the file whose permissions a new lock file gets, so that whoever may write the one may lock it
    Outcome take(const QString& path, Hold hold, const QString& like);
    /// Gives the lock up; the last holder removes the file.
    void release();

    /// Whether locks in that folder keep anybody out: a file that one handle has locked must be refused to a second
    /// one. Some network folders grant every lock. True where no lock is granted at all.
    static bool worksIn(const QString& folder);

private:
    QString path_;
#ifdef Q_OS_WIN
    void* handle_ = nullptr;
#else
    int descriptor_ = -1;
#endif
};
