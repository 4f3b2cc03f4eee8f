#include "support/faultydisk.h"

#include <array>
#include <cstdlib>
#include <sqlite3.h>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

FaultyDisk::Fault plannedFault = FaultyDisk::Fault::None;
std::int64_t faultAt = 0;
std::int64_t changesSoFar = 0;

bool active = false;
sqlite3_vfs* systemDisk = nullptr; // from the first object on: connections may outlive it
sqlite3_vfs faultyDisk;

/// The functions of a file, the system's and ours. SQLite has a set of them for each way to lock a file.
struct FileFunctions {
    const sqlite3_io_methods* original = nullptr;
    sqlite3_io_methods faulty{};
};
std::array<FileFunctions, 4> knownFunctions;

bool fails()
{
    ++changesSoFar;
    const bool due = plannedFault != FaultyDisk::Fault::None && changesSoFar >= faultAt;
    if (due && plannedFault == FaultyDisk::Fault::Kill) {
        std::_Exit(FaultyDisk::killedCode);
    }
    return due;
}

const sqlite3_io_methods& originalOf(const sqlite3_file* file)
{
    for (const FileFunctions& functions : knownFunctions) {
        if (file->pMethods == &functions.faulty) {
            return *functions.original;
        }
    }
    std::abort();
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset)
{
    return fails() ? SQLITE_FULL : originalOf(file).xWrite(file, bytes, count, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    fails(); // a full disk can still be given back space
    return originalOf(file).xTruncate(file, size);
}

int flushFile(sqlite3_file* /*file*/, int /*flags*/)
{
    return SQLITE_OK;
}

int openFile(sqlite3_vfs* /*disk*/, const char* name, sqlite3_file* file, int flags, int* openedAs)
{
    const int code = systemDisk->xOpen(systemDisk, name, file, flags, openedAs);
    if (file->pMethods == nullptr) {
        return code;
    }
    for (FileFunctions& functions : knownFunctions) {
        if (functions.original == nullptr) {
            functions.original = file->pMethods;
            functions.faulty = *file->pMethods;
            functions.faulty.xWrite = writeFile;
            functions.faulty.xTruncate = truncateFile;
            functions.faulty.xSync = flushFile;
        }
        if (functions.original == file->pMethods) {
            file->pMethods = &functions.faulty;
            return code;
        }
    }
    std::abort();
}

int deleteFile(sqlite3_vfs* /*disk*/, const char* name, int /*flushFolder*/)
{
    fails();
    return systemDisk->xDelete(systemDisk, name, 0);
}

} // namespace

FaultyDisk::FaultyDisk(Fault fault, std::int64_t atChange)
{
    if (std::exchange(active, true)) {
        throw std::logic_error("there is a faulty disk already");
    }
    plannedFault = fault;
    faultAt = atChange;
    changesSoFar = 0;
    systemDisk = sqlite3_vfs_find(nullptr);
    faultyDisk = *systemDisk;
    faultyDisk.zName = "faulty";
    faultyDisk.pNext = nullptr;
    faultyDisk.xOpen = openFile;
    faultyDisk.xDelete = deleteFile;
    sqlite3_vfs_register(&faultyDisk, 1);
}

FaultyDisk::~FaultyDisk()
{
    plannedFault = Fault::None;
    sqlite3_vfs_unregister(&faultyDisk);
    sqlite3_vfs_register(systemDisk, 1);
    active = false;
}

std::int64_t FaultyDisk::changes()
{
    return changesSoFar;
}

} // namespace testsupport
