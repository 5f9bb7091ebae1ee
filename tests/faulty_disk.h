#pragma once

#include <algorithm>
#include <cstring>
#include <sqlcipher/sqlite3.h>

/// A layer between the engine and the file system, which counts what costs and fails when it is told to. Files that
/// were opened while it existed must be closed before it goes.
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
    int failFrom = -1; ///< the write from which all fail; -1 none does
    int failWith = SQLITE_FULL;
    void heal() { failFrom = -1; }

private:
    struct File
    {
        sqlite3_file face;
        FaultyDisk* disk;
        sqlite3_io_methods methods;
        sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    };
    static File* of(sqlite3_file* file) { return reinterpret_cast<File*>(file); }
    template <auto Method, typename... Arguments>
    static int pass(sqlite3_file* file, Arguments... arguments)
    {
        sqlite3_file* real = of(file)->real();
        return (real->pMethods->*Method)(real, arguments...);
    }

    static int open(sqlite3_vfs* layer, const char* name, sqlite3_file* file, int flags, int* outFlags)
    {
        auto* disk = static_cast<FaultyDisk*>(layer->pAppData);
        File* mine = new (file) File{{nullptr}, disk, {}};
        std::memset(static_cast<void*>(mine->real()), 0, size_t(disk->base_->szOsFile));
        const int code = disk->base_->xOpen(disk->base_, name, mine->real(), flags, outFlags);
        if (!mine->real()->pMethods)
            return code;
        using Methods = sqlite3_io_methods;
        Methods& methods = mine->methods;
        methods.iVersion = 1; // no shared memory, no memory mapping: everything goes through here
        methods.xClose = pass<&Methods::xClose>;
        methods.xRead = pass<&Methods::xRead, void*, int, sqlite3_int64>;
        methods.xWrite = [](sqlite3_file* to, const void* bytes, int count, sqlite3_int64 at) {
            FaultyDisk& d = *of(to)->disk;
            const int write = d.writes++;
            return d.failFrom >= 0 && write >= d.failFrom
                       ? d.failWith
                       : pass<&Methods::xWrite, const void*, int, sqlite3_int64>(to, bytes, count, at);
        };
        methods.xTruncate = pass<&Methods::xTruncate, sqlite3_int64>;
        methods.xSync = [](sqlite3_file* to, int how) {
            ++of(to)->disk->syncs;
            return pass<&Methods::xSync, int>(to, how);
        };
        methods.xFileSize = pass<&Methods::xFileSize, sqlite3_int64*>;
        methods.xLock = pass<&Methods::xLock, int>;
        methods.xUnlock = pass<&Methods::xUnlock, int>;
        methods.xCheckReservedLock = pass<&Methods::xCheckReservedLock, int*>;
        methods.xFileControl = pass<&Methods::xFileControl, int, void*>;
        methods.xSectorSize = pass<&Methods::xSectorSize>;
        methods.xDeviceCharacteristics = pass<&Methods::xDeviceCharacteristics>;
        mine->face.pMethods = &methods;
        return code;
    }

    sqlite3_vfs* base_;
    sqlite3_vfs layer_;
};
