#include "stores/temporaryfolder.h"

#include "databaseservice/keptconnections.h"
#include "platform/environment.h"
#include "platform/neverdestroyed.h"
#include "platform/paths.h"
#include "terminal/failure.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct Folders {
    std::mutex mutex;
    std::set<fs::path> paths;
};

/// A process can be told to end while it exits.
Folders& folders()
{
    static auto& made = platform::neverDestroyed(new Folders);
    return made;
}

void removeFolder(const fs::path& path, int attempts)
{
    std::error_code error;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        fs::remove_all(path, error);
        if (!error) {
            return;
        }
    }
    // Where a connection is open all the time, its file shall at least hold nothing.
    for (auto entry = fs::directory_iterator(path, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        fs::resize_file(entry->path(), 0, ignored);
    }
}

/// The system's folder for temporary files.
fs::path parentFolder()
{
    std::error_code error;
    fs::path folder = fs::temp_directory_path(error);
    if (error) {
        std::string told;
        for (const char* name : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
            const std::string value = platform::environmentVariable(name);
            told += value.empty() ? "" : std::string(told.empty() ? " (" : ", ") + name + '=' + value;
        }
        throw Failure("cannot find the folder for temporary files" + told + (told.empty() ? "" : ")") + ": " +
                      error.message());
    }
    return folder;
}

} // namespace

TemporaryFolder::TemporaryFolder()
{
    const fs::path parent = parentFolder();
    std::error_code error;
    std::random_device random;
    Folders& all = folders();
    const std::lock_guard lock(all.mutex);
    do {
        m_path = parent / ("dbservice-" + std::to_string(random()));
    } while (!fs::create_directory(m_path, error) && !error);
    if (error) {
        throw Failure("cannot make a temporary folder in " + platform::toUtf8(parent) + ": " + error.message());
    }
    all.paths.insert(m_path);
    fs::permissions(m_path, fs::perms::owner_all, error);
}

bool TemporaryFolder::addCopy(const fs::path& file, const fs::path& name)
{
    constexpr std::streamsize pieceSize = 256 << 10;
    std::vector<char> piece(static_cast<std::size_t>(pieceSize));
    const auto require = [&](bool well) {
        if (!well) {
            const std::error_code error(errno, std::generic_category());
            throw Failure("cannot copy " + platform::toUtf8(file) + " to " + platform::toUtf8(m_path) + ": " +
                          error.message());
        }
    };
    std::ifstream from(file, std::ios::binary);
    if (!from.is_open() && errno == ENOENT) {
        return false;
    }
    require(from.is_open());
    std::ios::openmode mode = std::ios::binary | std::ios::trunc;
    do {
        from.read(piece.data(), pieceSize);
        require(!from.bad());
        // Between two pieces the copy is closed, so that it can be removed on every system.
        const std::lock_guard lock(folders().mutex);
        std::ofstream to(m_path / name, mode);
        to.write(piece.data(), from.gcount());
        to.close();
        require(to.good());
        mode = std::ios::binary | std::ios::app;
    } while (from);
    return true;
}

TemporaryFolder::~TemporaryFolder()
{
    // The reader of the legacy file leaves its connections open, and not every system removes an open file.
    DatabaseService::CloseKeptConnections();
    Folders& all = folders();
    const std::lock_guard lock(all.mutex);
    removeFolder(m_path, 1);
    all.paths.erase(m_path);
}

void TemporaryFolder::removeAllForGood()
{
    Folders& all = folders();
    all.mutex.lock(); // and never unlocked
    // Other threads go on, and may have a file open now or put one into the folder behind the removal's back.
    constexpr int attempts = 50;
    for (const fs::path& path : all.paths) {
        removeFolder(path, attempts);
    }
}

} // namespace dbservice
