#include "stores/storelook.h"

#include "platform/paths.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "stores/storewatch.h"
#include "terminal/failure.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

bool isStoreName(const fs::path& file)
{
    const std::string name = platform::toUtf8(file.filename());
    return name.ends_with(".dat") ||
        std::find(storeFileNames.begin(), storeFileNames.end(), name) != storeFileNames.end();
}

bool isEmpty(const fs::path& file)
{
    std::error_code error;
    return fs::file_size(file, error) == 0 && !error;
}

void look(Session& session, StoreLook& found)
{
    Database& database = session.openToRead(found.file);
    const StoreShape shape = shapeOf(database);
    found.kind = kindOf(shape);
    if (found.kind != nullptr) {
        found.differences = differences(shape, *found.kind);
    }
    for (const TableShape& table : shape.tables) {
        found.rows.emplace_back(table.name,
                                database.number("SELECT COUNT(*) FROM " + inQuotes(table.name, '"') + " NOT INDEXED"));
    }
    if (found.kind != nullptr && shapeOfLibrary(*found.kind).index("nameIndex") != nullptr) {
        found.names = examineNameIndex(database);
    }
}

} // namespace

std::string whatStopped(const fs::path& file, const std::function<void()>& work)
{
    const StoreWatch::Bearing bearing;
    std::string reason;
    try {
        work();
    } catch (const Failure& failure) {
        reason = failure.what();
    }
    if (!bearing.fault()) {
        return reason;
    }
    const std::string cut = bearing.fault()->isLock ? "" : cutShort(file);
    return cut.empty() ? bearing.fault()->reason : cut;
}

StoreLook lookAtStore(Session& session, const fs::path& file)
{
    StoreLook found;
    found.file = file;
    std::error_code ignored;
    found.size = fs::file_size(file, ignored);
    found.beside = journalsOf(file);
    found.trouble = whatStopped(file, [&] { look(session, found); });
    return found;
}

std::vector<fs::path> databasesIn(const fs::path& folder)
{
    std::vector<fs::path> files;
    std::error_code error;
    for (auto entry = fs::directory_iterator(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        const bool isFile = entry->is_regular_file(ignored);
        if (isFile && (isStoreName(entry->path()) || (isDatabase(entry->path()) && !isEmpty(entry->path())))) {
            files.push_back(entry->path());
        }
    }
    if (error) {
        throw Failure("cannot look into the folder " + platform::toUtf8(folder) + ": " + error.message());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<fs::path> databasesMeant(const Session& session, const std::string& named)
{
    const fs::path path = named.empty() ? session.storeFolder() : pathFromArgument(named);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        throw Failure("cannot look at " + platform::toUtf8(path) + ": " +
                      (fs::status_known(status) ? "there is no such file or folder" : error.message()));
    }
    if (!fs::is_directory(status)) {
        return {path};
    }
    std::vector<fs::path> files = databasesIn(path);
    if (files.empty()) {
        throw Failure("cannot find a store: no file in " + platform::toUtf8(path) + " is a database");
    }
    return files;
}

std::vector<fs::path> storesMeant(const Session& session, const std::string& named)
{
    std::vector<fs::path> files = databasesMeant(session, named);
    std::error_code ignored;
    if (named.empty() || fs::is_directory(pathFromArgument(named), ignored)) {
        std::erase_if(files, [](const fs::path& file) { return file.extension() != ".dat"; });
    }
    return files;
}

std::vector<std::pair<fs::path, std::uintmax_t>> journalsOf(const fs::path& file)
{
    std::vector<std::pair<fs::path, std::uintmax_t>> found;
    for (const char* suffix : {"-journal", "-wal"}) {
        std::error_code error;
        const fs::path journal = fs::path(file) += suffix;
        const std::uintmax_t size = fs::file_size(journal, error);
        if (!error) {
            found.emplace_back(journal, size);
        }
    }
    return found;
}

} // namespace dbservice
