#include "stores/storewatch.h"

#include "platform/neverdestroyed.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <list>
#include <map>
#include <mutex>
#include <set>
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

using Clock = std::chrono::steady_clock;

/// The lock that writers of a file with a write-ahead log take, beside SQLite's own lock levels.
constexpr int logWriteLock = 100;

/// The functions of an open file: the system's, and those with ours in place of some. SQLite has a set of them for
/// each way to lock a file.
struct FileFunctions {
    sqlite3_io_methods watched{}; // first: a file points to it
    const sqlite3_io_methods* system = nullptr;
};

struct OpenFile {
    std::string name;
    unsigned pageSize = 0;
    unsigned firstFreePage = 0;
    struct Refusals {
        Clock::time_point since;
        Clock::time_point last;
        bool told = false;
    };
    std::map<int, Refusals> refused{}; ///< by lock
};

fs::path toPath(const std::string& utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

unsigned bigEndian(const unsigned char* bytes, int count)
{
    unsigned number = 0;
    for (int i = 0; i < count; ++i) {
        number = number << 8U | bytes[i];
    }
    return number;
}

/// Whether a code that SQLite tells is about one statement or about nothing bad: its text, the shape of a table, a row
/// that it refuses, a lock, a note, a statement that the tool itself ended.
bool isBearable(int code)
{
    switch (code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ERROR:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_INTERRUPT:
    case SQLITE_SCHEMA:
    case SQLITE_TOOBIG:
    case SQLITE_CONSTRAINT:
    case SQLITE_AUTH:
    case SQLITE_NOTICE:
    case SQLITE_WARNING:
        return true;
    default:
        return false;
    }
}

/// Whether a message is of the layer that calls the system, which tells of what SQLite can do without, too. Where it
/// cannot, a message about the statement follows.
bool isOfSystemLayer(std::string_view message)
{
    return message.starts_with("os_") || message.starts_with("cannot open file at line");
}

/// What is known of a thread.
struct ThreadNotes {
    std::string file; ///< that it locked or opened last: what SQLite says next on it is about that
    StoreWatch::Fault complaint;
    std::int64_t steps = 0; ///< of the statement that it began last
};

/// How far a statement may go: further than any of the tool's or the library's, for which a few hundred steps of
/// SQLite's machine for each row are many. What goes on is a trigger that has no end, or as good as none.
constexpr std::int64_t stepsOfAny = 100'000'000;
constexpr std::int64_t stepsOfByte = 1'000; ///< of the file, in addition
constexpr int stepsBetweenLooks = 100'000;

/// Those of the thread that asks. They outlive it: MinGW may free what is a thread's own before it is destroyed.
ThreadNotes& notes()
{
    static auto& all = platform::neverDestroyed(new std::pair<std::mutex, std::list<ThreadNotes>>);
    thread_local ThreadNotes* mine = nullptr;
    if (mine == nullptr) {
        const std::lock_guard lock(all.first);
        mine = &all.second.emplace_back();
    }
    return *mine;
}

thread_local StoreWatch::Bearing* bearing = nullptr;
thread_local bool copiesPages = false;

/// A statement's text follows some reasons, in quotes.
std::string withoutStatement(const std::string& message)
{
    return message.substr(0, message.find(" in \""));
}

} // namespace

struct StoreWatch::Impl {
    mutable std::mutex mutex;
    std::chrono::milliseconds limit{0};
    std::function<void(const fs::path&)> onWait;
    std::optional<Fault> fault{};
    std::list<FileFunctions> functions;
    std::unordered_map<sqlite3_file*, OpenFile> files;
    std::map<std::pair<std::string, int>, Clock::time_point> granted; ///< when this process last got a file's lock
    std::set<std::string> givenUp;
    std::atomic<bool> endless = false; ///< a statement was
    sqlite3_vfs* system = nullptr;
    sqlite3_vfs watched{};

    void report(const Fault& found)
    {
        const std::lock_guard lock(mutex);
        keep(found);
    }

    void keep(const Fault& found)
    {
        std::optional<Fault>& first = bearing == nullptr ? fault : bearing->m_fault;
        if (!first) {
            first = found;
        }
    }

    /// What SQLite is to get for an answer of the system about a lock.
    int judge(sqlite3_file* file, int lock, int code)
    {
        std::unique_lock guard(mutex);
        OpenFile& open = files[file];
        notes().file = open.name;
        const Clock::time_point now = Clock::now();
        Clock::time_point& lastGrant = granted[{open.name, lock}];
        if (code != SQLITE_BUSY) {
            open.refused.erase(lock);
            lastGrant = now;
            return code;
        }
        constexpr auto pause = std::chrono::seconds(2); // nobody who waits asks as seldom as that
        constexpr auto noticed = std::chrono::milliseconds(500);
        OpenFile::Refusals& refusals = open.refused[lock];
        if (now - refusals.last > pause) {
            refusals = {now, now};
        }
        refusals.last = now;
        // Other threads of this process may have had it meanwhile, and then nobody else keeps it.
        const Clock::duration waited = now - std::max(refusals.since, lastGrant);
        if (waited >= limit) {
            const double seconds = std::round(std::chrono::duration<double>(limit).count() * 100) / 100;
            const std::string number =
                seconds == std::floor(seconds) ? grouped(std::llround(seconds)) : twoDecimals(seconds);
            givenUp.insert(open.name);
            keep({toPath(open.name),
                  "locked by another program for " + number + (number == "1" ? " second" : " seconds") +
                      "; --wait SECONDS waits longer",
                  true});
            return SQLITE_IOERR_LOCK;
        }
        if (waited >= noticed && !std::exchange(refusals.told, true) && onWait) {
            const auto tell = onWait;
            const fs::path path = toPath(open.name);
            guard.unlock();
            tell(path);
        }
        return code;
    }

    /// Whether a statement that has come so far is to be ended, as is then each one that follows and goes far.
    bool isEndless(sqlite3* db)
    {
        const std::int64_t steps = notes().steps += stepsBetweenLooks;
        if (endless || steps < stepsOfAny) {
            return endless;
        }
        const char* const name = sqlite3_db_filename(db, "main");
        const fs::path file = toPath(name == nullptr ? "" : name);
        std::error_code unknown;
        const std::uintmax_t size = fs::file_size(file, unknown);
        if (!unknown && (steps - stepsOfAny) / stepsOfByte < static_cast<std::int64_t>(size)) {
            return false;
        }
        report({file,
                "a statement on it has no end, as a trigger of the file may do; "
                "`SELECT sql FROM sqlite_master` tells them",
                false});
        return endless = true;
    }

    bool hasGivenUp(sqlite3_file* file)
    {
        const std::lock_guard guard(mutex);
        return givenUp.contains(files[file].name);
    }

    /// Whether what was read from a database file is a page in use that cannot be one.
    bool isZeroedPage(sqlite3_file* file, const unsigned char* bytes, int count, sqlite3_int64 offset)
    {
        constexpr int smallestPage = 512;
        constexpr int freePageAt = 32;
        const bool empty =
            count >= smallestPage && std::all_of(bytes, bytes + count, [](auto byte) { return byte == 0; });
        if (!empty && offset > freePageAt) {
            return false;
        }
        const std::lock_guard guard(mutex);
        OpenFile& open = files[file];
        if (offset == 0 && count >= 18) {
            const unsigned stored = bigEndian(bytes + 16, 2);
            open.pageSize = stored == 1 ? 65536 : stored;
        }
        if (offset <= freePageAt && offset + count >= freePageAt + 4) {
            open.firstFreePage = bigEndian(bytes + freePageAt - offset, 4);
        }
        if (!empty || open.pageSize == 0 || copiesPages) {
            return false;
        }
        const auto page = static_cast<unsigned>(offset / open.pageSize) + 1;
        if (page == open.firstFreePage) {
            return false; // the only free page of a file may be such
        }
        keep({toPath(open.name), "damaged: page " + std::to_string(page) + " holds only zeros", false});
        return true;
    }
};

namespace {

StoreWatch::Impl* watch = nullptr; // as long as the process: connections may outlive everything else

const sqlite3_io_methods& systemOf(const sqlite3_file* file)
{
    return *reinterpret_cast<const FileFunctions*>(file->pMethods)->system;
}

int closeFile(sqlite3_file* file)
{
    const sqlite3_io_methods& system = systemOf(file);
    {
        const std::lock_guard guard(watch->mutex);
        watch->files.erase(file);
    }
    return system.xClose(file);
}

int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset)
{
    const int code = systemOf(file).xRead(file, bytes, count, offset);
    return code == SQLITE_OK && watch->isZeroedPage(file, static_cast<const unsigned char*>(bytes), count, offset)
        ? SQLITE_CORRUPT
        : code;
}

int lockFile(sqlite3_file* file, int level)
{
    return watch->hasGivenUp(file) ? SQLITE_IOERR_LOCK : watch->judge(file, level, systemOf(file).xLock(file, level));
}

int lockLog(sqlite3_file* file, int offset, int count, int flags)
{
    const sqlite3_io_methods& system = systemOf(file);
    if (offset != 0 || flags != (SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE)) {
        return system.xShmLock(file, offset, count, flags);
    }
    return watch->hasGivenUp(file) ? SQLITE_IOERR_LOCK
                                   : watch->judge(file, logWriteLock, system.xShmLock(file, offset, count, flags));
}

int openFile(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* file, int flags, int* openedAs)
{
    const bool isDatabase = (flags & SQLITE_OPEN_MAIN_DB) != 0 && name != nullptr;
    if (isDatabase) {
        notes().file = name;
    }
    const int code = watch->system->xOpen(watch->system, name, file, flags, openedAs);
    if (code != SQLITE_OK || !isDatabase) {
        return code;
    }
    const std::lock_guard guard(watch->mutex);
    watch->files[file] = {name};
    auto known = std::find_if(watch->functions.begin(), watch->functions.end(),
                              [&](const FileFunctions& functions) { return functions.system == file->pMethods; });
    if (known == watch->functions.end()) {
        FileFunctions& added = watch->functions.emplace_back();
        added.system = file->pMethods;
        added.watched = *file->pMethods;
        added.watched.iVersion = std::min(added.watched.iVersion, 2); // without memory that is the file, past `xRead`
        added.watched.xClose = closeFile;
        added.watched.xRead = readFile;
        added.watched.xLock = lockFile;
        added.watched.xShmLock = lockLog;
        known = std::prev(watch->functions.end());
    }
    file->pMethods = &known->watched;
    return code;
}

void hear(void* /*unused*/, int code, const char* message)
{
    StoreWatch::Fault& complaint = notes().complaint;
    complaint = {toPath(notes().file), StoreWatch::explained(withoutStatement(message)), false};
    if (!isBearable(code) && !isOfSystemLayer(message)) {
        const bool damaged = (code & 0xFF) == SQLITE_CORRUPT;
        complaint.reason = (damaged ? "damaged: " : "") + std::string(sqlite3_errstr(code));
        watch->report(complaint);
    }
}

/// Called for triggers, too, with a comment.
int beginStatement(unsigned /*event*/, void* /*unused*/, void* /*statement*/, void* text)
{
    if (!std::string_view(static_cast<const char*>(text)).starts_with("--")) {
        notes().steps = 0;
    }
    return 0;
}

int restrictConnection(sqlite3* db, char** /*message*/, const sqlite3_api_routines* /*api*/)
{
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_trace_v2(db, SQLITE_TRACE_STMT, beginStatement, nullptr);
    sqlite3_progress_handler(
        db, stepsBetweenLooks,
        [](void* connection) { return watch->isEndless(static_cast<sqlite3*>(connection)) ? 1 : 0; }, db);
    return SQLITE_OK;
}

} // namespace

StoreWatch& StoreWatch::instance()
{
    static StoreWatch theOne;
    return theOne;
}

StoreWatch::StoreWatch() : m_impl(platform::neverDestroyed(new Impl))
{
    watch = &m_impl;
    const bool hears =
        sqlite3_config(SQLITE_CONFIG_LOG, hear, nullptr) == SQLITE_OK && sqlite3_initialize() == SQLITE_OK;
    m_impl.system = sqlite3_vfs_find(nullptr);
    if (!hears || m_impl.system == nullptr) {
        throw std::runtime_error("cannot set SQLite up");
    }
    m_impl.watched = *m_impl.system;
    m_impl.watched.zName = "watched";
    m_impl.watched.pNext = nullptr;
    m_impl.watched.xOpen = openFile;
    sqlite3_vfs_register(&m_impl.watched, 1);
    // SQLite takes the function under this type, and calls it with the arguments that it has.
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(restrictConnection));
}

void StoreWatch::begin(std::chrono::milliseconds limit, std::function<void(const fs::path&)> onWait)
{
    const std::lock_guard guard(m_impl.mutex);
    m_impl.fault.reset();
    m_impl.givenUp.clear();
    m_impl.endless = false;
    m_impl.limit = limit;
    m_impl.onWait = std::move(onWait);
}

void StoreWatch::end()
{
    const std::lock_guard guard(m_impl.mutex);
    m_impl.onWait = nullptr;
}

std::optional<StoreWatch::Fault> StoreWatch::fault() const
{
    const std::lock_guard guard(m_impl.mutex);
    return m_impl.fault;
}

void StoreWatch::report(const Fault& fault)
{
    m_impl.report(fault);
}

std::string StoreWatch::explained(const std::string& message)
{
    const bool changed = message.find("database schema has changed") != std::string::npos;
    return message + (changed ? ", as another program is writing to it" : "");
}

StoreWatch::CopiesPages::CopiesPages()
{
    copiesPages = true;
}

StoreWatch::CopiesPages::~CopiesPages()
{
    copiesPages = false;
}

StoreWatch::Fault StoreWatch::lastComplaint()
{
    return notes().complaint;
}

StoreWatch::Bearing::Bearing()
{
    bearing = this;
}

StoreWatch::Bearing::~Bearing()
{
    bearing = nullptr;
}

} // namespace dbservice
