#include "support/faultydisk.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <sqlite3.h>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

using Call = FaultyDisk::Call;
using Functions = sqlite3_io_methods;

FaultyDisk::Hook activeHook;
std::atomic<std::int64_t> changesSoFar = 0;
std::atomic<int> databasesOpen = 0;
std::atomic<int> databasesLocked = 0;

bool active = false;
sqlite3_vfs* systemDisk = nullptr; // from the first object on: connections may outlive it
sqlite3_vfs faultyDisk;

/// A file as SQLite has it. The system's own lies behind it.
struct OpenFile {
    sqlite3_file forSqlite{};
    const char* name = ""; ///< lives as long as the file
    bool isDatabase = false;
    int lock = SQLITE_LOCK_NONE;

    sqlite3_file* systems() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

OpenFile& ours(sqlite3_file* file)
{
    return *reinterpret_cast<OpenFile*>(file);
}

bool isChange(Call call)
{
    return call == Call::Write || call == Call::Truncate || call == Call::Delete;
}

/// Has the request carried out unless the hook answers otherwise.
template <class CarryOut> int ask(const FaultyDisk::Request& request, CarryOut carryOut)
{
    changesSoFar += isChange(request.call);
    const int code = activeHook ? activeHook(request) : SQLITE_OK;
    return code == SQLITE_OK ? carryOut() : code == SQLITE_DONE ? SQLITE_OK : code;
}

/// A function of a file, as the system has it.
template <auto function, class... Arguments> auto forward(sqlite3_file* file, Arguments... arguments)
{
    sqlite3_file* const systems = ours(file).systems();
    return (systems->pMethods->*function)(systems, arguments...);
}

template <auto function, class... Arguments>
int askAndForward(FaultyDisk::Request request, sqlite3_file* file, Arguments... arguments)
{
    request.file = ours(file).name;
    return ask(request, [&] { return forward<function>(file, arguments...); });
}

/// The same for one that is asked about with nothing but the kind of the call.
template <Call call, auto function, class... Arguments> int asking(sqlite3_file* file, Arguments... arguments)
{
    return askAndForward<function>({.call = call}, file, arguments...);
}

int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset)
{
    return askAndForward<&Functions::xRead>({.call = Call::Read, .place = offset}, file, bytes, count, offset);
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset)
{
    const std::string_view text(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
    return askAndForward<&Functions::xWrite>({.call = Call::Write, .place = offset, .bytes = text}, file, bytes, count,
                                             offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    return askAndForward<&Functions::xTruncate>({.call = Call::Truncate, .place = size}, file, size);
}

int flushFile(sqlite3_file* file, int /*flags*/)
{
    return ask({.call = Call::Flush, .file = ours(file).name}, [] { return SQLITE_OK; });
}

void setLock(OpenFile& file, int level)
{
    databasesLocked += file.isDatabase ? (level > SQLITE_LOCK_NONE) - (file.lock > SQLITE_LOCK_NONE) : 0;
    file.lock = level;
}

template <Call call, auto function> int changeLock(sqlite3_file* file, int level)
{
    const int code = asking<call, function>(file, level);
    if (code == SQLITE_OK) {
        setLock(ours(file), level);
    }
    return code;
}

int closeFile(sqlite3_file* file)
{
    setLock(ours(file), SQLITE_LOCK_NONE);
    databasesOpen -= ours(file).isDatabase;
    return forward<&Functions::xClose>(file);
}

// clang-format off
/// Of the second version, which does not map files into memory: reads would come past us.
const Functions functions{
    2, closeFile, readFile, writeFile, truncateFile, flushFile, asking<Call::Size, &Functions::xFileSize>,
    changeLock<Call::Lock, &Functions::xLock>, changeLock<Call::Unlock, &Functions::xUnlock>,
    asking<Call::Reserved, &Functions::xCheckReservedLock>, forward<&Functions::xFileControl>,
    forward<&Functions::xSectorSize>, forward<&Functions::xDeviceCharacteristics>, forward<&Functions::xShmMap>,
    forward<&Functions::xShmLock>, forward<&Functions::xShmBarrier>, forward<&Functions::xShmUnmap>, nullptr, nullptr};
// clang-format on

int openFile(sqlite3_vfs* /*disk*/, const char* name, sqlite3_file* place, int flags, int* openedAs)
{
    auto& file = *new (place) OpenFile{{}, name == nullptr ? "" : name, (flags & SQLITE_OPEN_MAIN_DB) != 0};
    return ask({.call = Call::Open, .file = file.name, .flags = flags}, [&] {
        const int code = systemDisk->xOpen(systemDisk, name, file.systems(), flags, openedAs);
        if (file.systems()->pMethods != nullptr) {
            file.forSqlite.pMethods = &functions;
            databasesOpen += file.isDatabase;
        }
        return code;
    });
}

int deleteFile(sqlite3_vfs* /*disk*/, const char* name, int /*flushFolder*/)
{
    return ask({.call = Call::Delete, .file = name}, [&] { return systemDisk->xDelete(systemDisk, name, 0); });
}

int existsFile(sqlite3_vfs* /*disk*/, const char* name, int flags, int* answer)
{
    return ask({.call = Call::Exists, .file = name},
               [&] { return systemDisk->xAccess(systemDisk, name, flags, answer); });
}

} // namespace

FaultyDisk::FaultyDisk(Fault fault, std::int64_t atChange)
    : FaultyDisk([fault, atChange](const Request& request) {
          if (fault == Fault::None || !isChange(request.call) || changesSoFar < atChange) {
              return SQLITE_OK;
          }
          if (fault == Fault::Kill) {
              std::_Exit(killedCode);
          }
          return request.call == Call::Write ? SQLITE_FULL : SQLITE_OK; // a full disk can still be given back space
      })
{
}

FaultyDisk::FaultyDisk(Hook hook)
{
    if (std::exchange(active, true)) {
        throw std::logic_error("there is a faulty disk already");
    }
    activeHook = std::move(hook);
    changesSoFar = 0;
    systemDisk = sqlite3_vfs_find(nullptr);
    faultyDisk = *systemDisk;
    faultyDisk.szOsFile += static_cast<int>(sizeof(OpenFile));
    faultyDisk.zName = "faulty";
    faultyDisk.pNext = nullptr;
    faultyDisk.xOpen = openFile;
    faultyDisk.xDelete = deleteFile;
    faultyDisk.xAccess = existsFile;
    sqlite3_vfs_register(&faultyDisk, 1);
}

FaultyDisk::~FaultyDisk()
{
    activeHook = nullptr;
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
    return databasesOpen;
}

int FaultyDisk::lockedDatabases()
{
    return databasesLocked;
}

} // namespace testsupport
