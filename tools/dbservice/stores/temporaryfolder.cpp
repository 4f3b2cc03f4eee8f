#include "stores/temporaryfolder.h"

#include "platform/environment.h"
#include "platform/paths.h"
#include "terminal/failure.h"

#include <mutex>
#include <random>
#include <set>
#include <string>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct Folders {
    std::mutex mutex;
    std::set<fs::path> paths;
};

/// Never destroyed, since a process can be told to end while it exits.
Folders& folders()
{
    static auto& made = *new Folders;
    return made;
}

void removeFolder(const fs::path& path)
{
    std::error_code error;
    // Another thread may put a file into the folder behind the removal's back.
    for (int attempt = 0; attempt < 10; ++attempt) {
        fs::remove_all(path, error);
        if (!error) {
            return;
        }
    }
    // Where files cannot be removed while a connection is open, they shall at least hold nothing.
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

TemporaryFolder::~TemporaryFolder()
{
    Folders& all = folders();
    const std::lock_guard lock(all.mutex);
    removeFolder(m_path);
    all.paths.erase(m_path);
}

void TemporaryFolder::removeAllForGood()
{
    Folders& all = folders();
    all.mutex.lock(); // and never unlocked
    for (const fs::path& path : all.paths) {
        removeFolder(path);
    }
}

} // namespace dbservice
