#include "support/faultydisk.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <sqlite3.h>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

using Call = FaultyDisk::Call;

FaultyDisk::Hook hook;
std::atomic<std::int64_t> changesSoFar = 0;

bool active = false;
sqlite3_vfs* systemDisk = nullptr; // from the first object on: connections may outlive it
sqlite3_vfs faultyDisk;

/// The functions of a file, the system's and ours. SQLite has a set of them for each way to lock a file.
struct FileFunctions {
    const sqlite3_io_methods* original = nullptr;
    sqlite3_io_methods faulty{};
};
std::array<FileFunctions, 4> knownFunctions;

struct OpenFile {
    std::string name;
    bool isDatabase;
    int lock = SQLITE_LOCK_NONE;
};
std::mutex openFilesMutex;
std::map<const sqlite3_file*, OpenFile> openFiles;

OpenFile& openFileOf(const sqlite3_file* file)
{
    const std::lock_guard lock(openFilesMutex);
    return openFiles.at(file);
}

int ask(const FaultyDisk::Request& request)
{
    changesSoFar += request.call == Call::Write || request.call == Call::Truncate || request.call == Call::Delete;
    return hook ? hook(request) : SQLITE_OK;
}

/// What SQLite is told of a request that was not carried out.
int told(int code)
{
    return code == SQLITE_DONE ? SQLITE_OK : code;
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

/// The file without our functions, since what is below us may look for its own in their place.
class Below {
public:
    explicit Below(sqlite3_file* file) : m_file(file), m_ours(file->pMethods) { file->pMethods = &originalOf(file); }
    Below(const Below&) = delete;
    Below& operator=(const Below&) = delete;
    ~Below() { m_file->pMethods = m_ours; }

    const sqlite3_io_methods* functions() const { return m_file->pMethods; }

private:
    sqlite3_file* m_file;
    const sqlite3_io_methods* m_ours;
};

/// A function of a file that asks with nothing but the kind of the call.
template <Call call, auto member, class... Arguments> int asking(sqlite3_file* file, Arguments... arguments)
{
    const int code = ask({.call = call, .file = openFileOf(file).name});
    return code == SQLITE_OK ? (Below(file).functions()->*member)(file, arguments...) : code;
}

int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset)
{
    const int code = ask({.call = Call::Read, .file = openFileOf(file).name, .place = offset});
    return code == SQLITE_OK ? Below(file).functions()->xRead(file, bytes, count, offset) : code;
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset)
{
    const std::string_view text(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
    const int code = ask({.call = Call::Write, .file = openFileOf(file).name, .place = offset, .bytes = text});
    return code == SQLITE_OK ? Below(file).functions()->xWrite(file, bytes, count, offset) : told(code);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    const int code = ask({.call = Call::Truncate, .file = openFileOf(file).name, .place = size});
    return code == SQLITE_OK ? Below(file).functions()->xTruncate(file, size) : told(code);
}

int flushFile(sqlite3_file* file, int /*flags*/)
{
    return told(ask({.call = Call::Flush, .file = openFileOf(file).name}));
}

template <Call call, auto member> int changeLock(sqlite3_file* file, int level)
{
    const int code = asking<call, member>(file, level);
    if (code == SQLITE_OK) {
        openFileOf(file).lock = level;
    }
    return code;
}

int closeFile(sqlite3_file* file)
{
    const sqlite3_io_methods& original = originalOf(file);
    {
        const std::lock_guard lock(openFilesMutex);
        openFiles.erase(file);
    }
    file->pMethods = &original;
    return original.xClose(file);
}

/// Puts our functions before those of the file.
void standBetween(sqlite3_file* file, const char* name, bool isDatabase)
{
    const std::lock_guard lock(openFilesMutex);
    openFiles[file] = {name, isDatabase};
    for (FileFunctions& functions : knownFunctions) {
        if (functions.original == nullptr) {
            functions.original = file->pMethods;
            functions.faulty = *file->pMethods;
            functions.faulty.xClose = closeFile;
            functions.faulty.xRead = readFile;
            functions.faulty.xWrite = writeFile;
            functions.faulty.xTruncate = truncateFile;
            functions.faulty.xSync = flushFile;
            functions.faulty.xFileSize = asking<Call::Size, &sqlite3_io_methods::xFileSize, sqlite3_int64*>;
            functions.faulty.xLock = changeLock<Call::Lock, &sqlite3_io_methods::xLock>;
            functions.faulty.xUnlock = changeLock<Call::Unlock, &sqlite3_io_methods::xUnlock>;
            functions.faulty.xCheckReservedLock = asking<Call::Reserved, &sqlite3_io_methods::xCheckReservedLock, int*>;
        }
        if (functions.original == file->pMethods) {
            file->pMethods = &functions.faulty;
            return;
        }
    }
    std::abort();
}

int openFile(sqlite3_vfs* /*disk*/, const char* name, sqlite3_file* file, int flags, int* openedAs)
{
    file->pMethods = nullptr;
    int code = ask({.call = Call::Open, .file = name == nullptr ? "" : name, .flags = flags});
    if (code == SQLITE_OK) {
        code = systemDisk->xOpen(systemDisk, name, file, flags, openedAs);
    }
    if (file->pMethods != nullptr) {
        try {
            standBetween(file, name == nullptr ? "" : name, (flags & SQLITE_OPEN_MAIN_DB) != 0);
        } catch (const std::bad_alloc&) {
            file->pMethods->xClose(file);
            file->pMethods = nullptr;
            return SQLITE_NOMEM;
        }
    }
    return code;
}

int deleteFile(sqlite3_vfs* /*disk*/, const char* name, int /*flushFolder*/)
{
    const int code = ask({.call = Call::Delete, .file = name});
    return code == SQLITE_OK ? systemDisk->xDelete(systemDisk, name, 0) : told(code);
}

int existsFile(sqlite3_vfs* /*disk*/, const char* name, int flags, int* answer)
{
    const int code = ask({.call = Call::Exists, .file = name});
    return code == SQLITE_OK ? systemDisk->xAccess(systemDisk, name, flags, answer) : code;
}

int countDatabases(int lockedAtLeast)
{
    const std::lock_guard lock(openFilesMutex);
    return static_cast<int>(std::ranges::count_if(openFiles, [lockedAtLeast](const auto& entry) {
        return entry.second.isDatabase && entry.second.lock >= lockedAtLeast;
    }));
}

} // namespace

FaultyDisk::FaultyDisk(Fault fault, std::int64_t atChange)
    : FaultyDisk([fault, atChange](const Request& request) {
          const bool isChange =
              request.call == Call::Write || request.call == Call::Truncate || request.call == Call::Delete;
          if (fault == Fault::None || !isChange || changesSoFar < atChange) {
              return SQLITE_OK;
          }
          if (fault == Fault::Kill) {
              std::_Exit(killedCode);
          }
          return request.call == Call::Write ? SQLITE_FULL : SQLITE_OK; // a full disk can still be given back space
      })
{
}

FaultyDisk::FaultyDisk(Hook ours)
{
    if (std::exchange(active, true)) {
        throw std::logic_error("there is a faulty disk already");
    }
    hook = std::move(ours);
    changesSoFar = 0;
    systemDisk = sqlite3_vfs_find(nullptr);
    faultyDisk = *systemDisk;
    faultyDisk.zName = "faulty";
    faultyDisk.pNext = nullptr;
    faultyDisk.xOpen = openFile;
    faultyDisk.xDelete = deleteFile;
    faultyDisk.xAccess = existsFile;
    sqlite3_vfs_register(&faultyDisk, 1);
}

FaultyDisk::~FaultyDisk()
{
    hook = nullptr;
    sqlite3_vfs_unregister(&faultyDisk);
    sqlite3_vfs_register(systemDisk, 1);
    active = false;
}

std::int64_t FaultyDisk::changes()
{
    return changesSoFar;
}

int FaultyDisk::openDatabases()
{
    return countDatabases(SQLITE_LOCK_NONE);
}

int FaultyDisk::lockedDatabases()
{
    return countDatabases(SQLITE_LOCK_SHARED);
}

} // namespace testsupport
