#include "support/faultyvfs.h"

#include <sqlite3.h>

#include <cstddef>
#include <cstring>

namespace testsupport {

namespace {

struct State {
    int failAt = 0;
    int calls = 0;
    FaultyDisk::Fault fault = FaultyDisk::Fault::DiskFull;
    sqlite3_vfs *real = nullptr;
    sqlite3_vfs layer{};
    sqlite3_io_methods methods{};
};

State &state()
{
    static State s;
    return s;
}

struct File {
    sqlite3_file base;
    sqlite3_file *real; ///< stands behind this struct in the same memory
};

sqlite3_file *real(sqlite3_file *file)
{
    return reinterpret_cast<File *>(file)->real;
}

/// Counts a call that the current fault concerns; true where it is to fail.
bool fails(bool isSync)
{
    State &s = state();
    if (isSync != (s.fault == FaultyDisk::Fault::SyncError))
        return false;
    ++s.calls;
    return s.failAt > 0 && s.calls >= s.failAt;
}

int writeFile(sqlite3_file *file, const void *bytes, int size, sqlite3_int64 offset)
{
    if (!fails(false))
        return real(file)->pMethods->xWrite(real(file), bytes, size, offset);
    switch (state().fault) {
    case FaultyDisk::Fault::DiskFull:
        return SQLITE_FULL;
    case FaultyDisk::Fault::ShortWrite:
        real(file)->pMethods->xWrite(real(file), bytes, size / 2, offset);
        return SQLITE_FULL;
    default:
        return SQLITE_IOERR_WRITE;
    }
}

int syncFile(sqlite3_file *file, int flags)
{
    return fails(true) ? SQLITE_IOERR_FSYNC : real(file)->pMethods->xSync(real(file), flags);
}

int closeFile(sqlite3_file *file)
{
    return real(file)->pMethods->xClose(real(file));
}
int readFile(sqlite3_file *file, void *bytes, int size, sqlite3_int64 offset)
{
    return real(file)->pMethods->xRead(real(file), bytes, size, offset);
}
int truncateFile(sqlite3_file *file, sqlite3_int64 size)
{
    return real(file)->pMethods->xTruncate(real(file), size);
}
int fileSize(sqlite3_file *file, sqlite3_int64 *size)
{
    return real(file)->pMethods->xFileSize(real(file), size);
}
int lockFile(sqlite3_file *file, int level)
{
    return real(file)->pMethods->xLock(real(file), level);
}
int unlockFile(sqlite3_file *file, int level)
{
    return real(file)->pMethods->xUnlock(real(file), level);
}
int checkLock(sqlite3_file *file, int *held)
{
    return real(file)->pMethods->xCheckReservedLock(real(file), held);
}
int control(sqlite3_file *file, int what, void *argument)
{
    return real(file)->pMethods->xFileControl(real(file), what, argument);
}
int sectorSize(sqlite3_file *file)
{
    return real(file)->pMethods->xSectorSize(real(file));
}
int characteristics(sqlite3_file *file)
{
    return real(file)->pMethods->xDeviceCharacteristics(real(file));
}

int openFile(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    auto *wrapped = reinterpret_cast<File *>(file);
    wrapped->real = reinterpret_cast<sqlite3_file *>(wrapped + 1);
    if (state().real == nullptr)
        return SQLITE_CANTOPEN;
    const int code = state().real->xOpen(state().real, name, wrapped->real, flags, outFlags);
    wrapped->base.pMethods = wrapped->real->pMethods != nullptr ? &state().methods : nullptr;
    return code;
}

} // namespace

FaultyDisk::FaultyDisk()
{
    State &s = state();
    s.real = sqlite3_vfs_find(nullptr);
    s.layer = *s.real;
    s.layer.zName = "faulty";
    s.layer.szOsFile = static_cast<int>(sizeof(File)) + s.real->szOsFile;
    s.layer.xOpen = openFile;
    s.methods = {1,        closeFile,  readFile,  writeFile, truncateFile, syncFile,        fileSize,
                 lockFile, unlockFile, checkLock, control,   sectorSize,   characteristics, nullptr,
                 nullptr,  nullptr,    nullptr,   nullptr,   nullptr};
    sqlite3_vfs_register(&s.layer, 1);
}

FaultyDisk::~FaultyDisk()
{
    State &s = state();
    sqlite3_vfs_unregister(&s.layer);
    sqlite3_vfs_register(s.real, 1);
}

void FaultyDisk::failFrom(int at, Fault fault)
{
    state().failAt = at;
    state().calls = 0;
    state().fault = fault;
}

int FaultyDisk::calls()
{
    return state().calls;
}

} // namespace testsupport
