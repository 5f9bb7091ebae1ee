#pragma once

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <sqlcipher/sqlite3.h>
#include <string>
#include <utility>
#include <vector>

/// A layer between the engine and the file system, which counts what costs, fails when it is told to, and can lose its
/// power. Files that were opened while it existed must be closed before it goes.
class FaultyDisk
{
public:
    FaultyDisk()
        : base_(sqlite3_vfs_find(nullptr))
        , layer_(*base_)
    {
        layer_.zName = "faulty";
        layer_.szOsFile = int(sizeof(File)) + base_->szOsFile;
        layer_.pAppData = this;
        layer_.xOpen = open;
        layer_.xAccess = access;
        layer_.xDelete = remove;
        sqlite3_vfs_register(&layer_, 1);
    }
    ~FaultyDisk()
    {
        sqlite3_vfs_register(base_, 1);
        sqlite3_vfs_unregister(&layer_);
    }
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;

    int syncs = 0;
    int writes = 0;
    int operations = 0; ///< writes, truncations, syncs and deletions
    int failFrom = -1;  ///< the write from which all fail; -1 none does
    int failOnce = -1;  ///< the operation that fails; those behind it come off
    int failWith = SQLITE_FULL;
    int goneFrom = -1;   ///< the operation from which nothing answers any more, reading and locking included
    bool missed = false; ///< something was asked of it while it was gone
    std::function<void(int operation)> before; ///< called before each operation
    void heal() { failFrom = failOnce = goneFrom = cutAt_ = -1; }

    /// From now on what isn't synced is remembered, and from that operation on nothing reaches the disk any more.
    void cutPowerAt(int operation)
    {
        files_.clear();
        cutAt_ = operation;
    }
    /// The same from here on, with what is remembered.
    void cutPower() { cutAt_ = operations; }
    bool isCut() const { return cutAt_ >= 0 && operations > cutAt_; }
    /// Leaves in the file system what a power cut leaves there: of each file what was synced, and of the rest nothing,
    /// or, by chance, any part of it in any order. All files must be closed.
    void losePower(std::mt19937* chance = nullptr)
    {
        for (auto& [path, file] : files_)
            file.lose(path, chance);
        files_.clear();
        heal();
    }

private:
    using Bytes = std::vector<char>;
    struct Change
    {
        sqlite3_int64 size; ///< of the file until then
        sqlite3_int64 at;
        Bytes before; ///< what stood there, as far as the file went
        Bytes after;  ///< nothing for a truncation to `at`
    };
    /// What of a file a power cut can still undo.
    struct Unsynced
    {
        std::vector<Change> changes;
        bool created = false;
        std::optional<Bytes> removed; ///< content of the file of that name that went before

        void lose(const std::string& path, std::mt19937* chance)
        {
            const auto luck = [chance] { return chance && (*chance)() % 2 == 0; };
            if (std::filesystem::exists(path)) {
                for (auto change = changes.rbegin(); change != changes.rend(); ++change)
                    undo(path, *change);
                for (const Change& change : changes)
                    if (luck())
                        redo(path, change, *chance);
                if (created && !luck())
                    std::filesystem::remove(path);
            }
            if (removed && !std::filesystem::exists(path) && !luck())
                std::ofstream(path, std::ios::binary).write(removed->data(), std::streamsize(removed->size()));
        }

    private:
        static void put(const std::string& path, sqlite3_int64 at, const Bytes& bytes, size_t count)
        {
            std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
            file.seekp(at);
            file.write(bytes.data(), std::streamsize(count));
        }
        static void undo(const std::string& path, const Change& change)
        {
            put(path, change.at, change.before, change.before.size());
            std::filesystem::resize_file(path, std::uintmax_t(change.size));
        }
        static void redo(const std::string& path, const Change& change, std::mt19937& chance)
        {
            constexpr size_t sector = 512; // what a disk writes whole
            if (change.after.empty())
                return std::filesystem::resize_file(path, std::uintmax_t(change.at));
            const size_t sectors = (change.after.size() + sector - 1) / sector;
            const size_t count = std::min((1 + chance() % sectors) * sector, change.after.size());
            put(path, change.at, change.after, count);
        }
    };

    struct File
    {
        sqlite3_file face;
        FaultyDisk* disk;
        sqlite3_io_methods methods;
        const char* name; ///< the engine keeps it until the file is closed; null for a temporary one
        sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    };
    static File* of(sqlite3_file* file) { return reinterpret_cast<File*>(file); }
    template <auto Method, typename... Arguments>
    static int pass(sqlite3_file* file, Arguments... arguments)
    {
        sqlite3_file* real = of(file)->real();
        return (real->pMethods->*Method)(real, arguments...);
    }
    /// What changes nothing fails only while the disk is gone.
    template <auto Method, int failure, typename... Arguments>
    static int reach(sqlite3_file* file, Arguments... arguments)
    {
        return of(file)->disk->isGone() ? failure : pass<Method, Arguments...>(file, arguments...);
    }

    bool isGone()
    {
        const bool gone = goneFrom >= 0 && operations >= goneFrom;
        missed |= gone;
        return gone;
    }
    bool fails()
    {
        const bool gone = isGone();
        const int operation = operations++;
        if (before)
            before(operation);
        return gone || operation == failOnce || (cutAt_ >= 0 && operation >= cutAt_);
    }
    bool remembers(const char* name) const { return name && cutAt_ >= 0; }

    /// Before bytes change: what a power cut could bring back.
    void remember(sqlite3_file* file, sqlite3_int64 at, const char* bytes, int count)
    {
        File* mine = of(file);
        if (!remembers(mine->name))
            return;
        sqlite3_int64 size = 0;
        pass<&sqlite3_io_methods::xFileSize, sqlite3_int64*>(file, &size);
        Change change{size, at, {}, {}};
        if (bytes)
            change.after.assign(bytes, bytes + count);
        const sqlite3_int64 end = bytes ? std::min(size, at + count) : size;
        if (end > at) {
            change.before.resize(size_t(end - at));
            pass<&sqlite3_io_methods::xRead, void*, int, sqlite3_int64>(file, change.before.data(), int(end - at), at);
        }
        files_[mine->name].changes.push_back(std::move(change));
    }

    static int write(sqlite3_file* to, const void* bytes, int count, sqlite3_int64 at)
    {
        FaultyDisk& d = *of(to)->disk;
        const int write = d.writes++;
        if (d.fails() || (d.failFrom >= 0 && write >= d.failFrom))
            return d.goneFrom >= 0 ? SQLITE_IOERR_WRITE : d.failWith;
        d.remember(to, at, static_cast<const char*>(bytes), count);
        return pass<&sqlite3_io_methods::xWrite, const void*, int, sqlite3_int64>(to, bytes, count, at);
    }
    static int truncate(sqlite3_file* file, sqlite3_int64 size)
    {
        FaultyDisk& d = *of(file)->disk;
        if (d.fails())
            return SQLITE_IOERR_TRUNCATE;
        d.remember(file, size, nullptr, 0);
        return pass<&sqlite3_io_methods::xTruncate, sqlite3_int64>(file, size);
    }
    static int sync(sqlite3_file* file, int how)
    {
        FaultyDisk& d = *of(file)->disk;
        ++d.syncs;
        if (d.fails())
            return SQLITE_IOERR_FSYNC;
        const int code = pass<&sqlite3_io_methods::xSync, int>(file, how);
        if (of(file)->name && code == SQLITE_OK) {
            Unsynced& mine = d.files_[of(file)->name];
            mine.changes.clear();
            if (std::exchange(mine.created, false)) // a new file's first sync is one of its folder too
                for (auto& [path, other] : d.files_)
                    other.removed.reset();
        }
        return code;
    }
    static int remove(sqlite3_vfs* layer, const char* name, int syncFolder)
    {
        auto* disk = static_cast<FaultyDisk*>(layer->pAppData);
        if (disk->fails())
            return SQLITE_IOERR_DELETE;
        if (disk->remembers(name) && !syncFolder) {
            std::ifstream file(name, std::ios::binary);
            disk->files_[name] = {{}, false, Bytes(std::istreambuf_iterator<char>(file), {})};
        } else {
            disk->files_.erase(name);
        }
        return disk->base_->xDelete(disk->base_, name, syncFolder);
    }

    static int access(sqlite3_vfs* layer, const char* name, int flags, int* result)
    {
        auto* disk = static_cast<FaultyDisk*>(layer->pAppData);
        return disk->isGone() ? SQLITE_IOERR_ACCESS : disk->base_->xAccess(disk->base_, name, flags, result);
    }

    static int open(sqlite3_vfs* layer, const char* name, sqlite3_file* file, int flags, int* outFlags)
    {
        auto* disk = static_cast<FaultyDisk*>(layer->pAppData);
        File* mine = new (file) File{{nullptr}, disk, {}, name};
        std::memset(static_cast<void*>(mine->real()), 0, size_t(disk->base_->szOsFile));
        if (disk->isGone())
            return SQLITE_CANTOPEN;
        if (disk->remembers(name) && !std::filesystem::exists(name)) {
            if (disk->isCut())
                return SQLITE_CANTOPEN;
            disk->files_[name].created = true;
        }
        const int code = disk->base_->xOpen(disk->base_, name, mine->real(), flags, outFlags);
        if (!mine->real()->pMethods)
            return code;
        using Methods = sqlite3_io_methods;
        Methods& methods = mine->methods;
        methods.iVersion = 1; // no shared memory, no memory mapping: everything goes through here
        methods.xClose = pass<&Methods::xClose>;
        methods.xRead = reach<&Methods::xRead, SQLITE_IOERR_READ, void*, int, sqlite3_int64>;
        methods.xWrite = write;
        methods.xTruncate = truncate;
        methods.xSync = sync;
        methods.xFileSize = reach<&Methods::xFileSize, SQLITE_IOERR_FSTAT, sqlite3_int64*>;
        methods.xLock = reach<&Methods::xLock, SQLITE_IOERR_LOCK, int>;
        methods.xUnlock = pass<&Methods::xUnlock, int>;
        methods.xCheckReservedLock = reach<&Methods::xCheckReservedLock, SQLITE_IOERR_CHECKRESERVEDLOCK, int*>;
        methods.xFileControl = pass<&Methods::xFileControl, int, void*>;
        methods.xSectorSize = pass<&Methods::xSectorSize>;
        methods.xDeviceCharacteristics = pass<&Methods::xDeviceCharacteristics>;
        mine->face.pMethods = &methods;
        return code;
    }

    sqlite3_vfs* base_;
    sqlite3_vfs layer_;
    int cutAt_ = -1; ///< the operation at which the power goes
    std::map<std::string, Unsynced> files_;
};
