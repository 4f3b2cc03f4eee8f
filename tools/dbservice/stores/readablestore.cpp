#include "stores/readablestore.h"

#include "platform/filestatus.h"
#include "platform/paths.h"
#include "terminal/failure.h"

#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

/// The part of the database header that tells what the file is: a magic text, and from byte 18 on the version
/// numbers for writing and reading, which are 2 for a write-ahead log.
using Header = std::array<char, 20>;

constexpr const char* theStore = "the store";

constexpr std::string_view magic{"SQLite format 3\0", 16};

/// Without the first bytes for an empty file. Throws for what is no database.
bool readHeader(const fs::path& file, Header& header, const std::string& called = theStore)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::is_regular_file(status)) {
        throw Failure("cannot read " + called + ": " + platform::toUtf8(file) + " is not a file");
    }
    std::ifstream stream(file, std::ios::binary);
    header.fill('\0');
    stream.read(header.data(), static_cast<std::streamsize>(header.size()));
    if (!stream.is_open() || stream.bad()) {
        throw Failure("cannot read " + called + ": " + platform::toUtf8(file) + " cannot be opened for reading");
    }
    if (stream.gcount() == 0) {
        return false;
    }
    if (std::string_view(header.data(), magic.size()) != magic) {
        throw Failure("cannot read " + called + ": " + platform::toUtf8(file) +
                      " is not a database (it is damaged, encrypted or something else)");
    }
    return true;
}

/// Throws where the system does not say, as in a folder without permission.
bool isThere(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (!fs::status_known(status)) {
        throw Failure("cannot look at " + platform::toUtf8(path) + ": " + error.message());
    }
    return fs::exists(status);
}

fs::path withSuffix(fs::path path, const char* suffix)
{
    path += suffix;
    return path;
}

/// The file itself, without links on the way: a journal lies beside the file and not beside a link. Throws unless it
/// is a database.
fs::path locateStoreFile(const fs::path& folder, const fs::path& fileName, Header& header,
                         const std::string& called = theStore)
{
    if (!isThere(folder / fileName)) {
        throw Failure("cannot read " + called + ": there is no " + platform::toUtf8(fileName) + " in " +
                      platform::toUtf8(folder));
    }
    std::error_code error;
    fs::path file = fs::canonical(folder / fileName, error);
    if (error) {
        throw Failure("cannot read " + called + ": " + platform::toUtf8(folder / fileName) + ": " + error.message());
    }
    if (!readHeader(file, header, called)) {
        throw Failure("cannot read " + called + ": " + platform::toUtf8(file) + " is empty");
    }
    return file;
}

} // namespace

bool isDatabase(const fs::path& file)
{
    try {
        Header header;
        readHeader(file, header);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

void requireDatabaseOrNothing(const fs::path& file)
{
    Header header;
    if (isThere(file)) {
        readHeader(file, header);
    }
}

void requireStoreFile(const fs::path& folder, const fs::path& fileName)
{
    Header header;
    locateStoreFile(folder, fileName, header);
}

ReadableStore::ReadableStore(const fs::path& folder, const fs::path& fileName, Copy copied, const std::string& called)
    : m_folder(folder)
{
    Header header;
    const fs::path file = locateStoreFile(folder, fileName, header, called);
    const bool writeAheadLog = header[18] == 2 || header[19] == 2;
    if (copied == Copy::Always || writeAheadLog || isThere(withSuffix(file, "-journal")) ||
        isThere(withSuffix(file, "-wal"))) {
        m_copy.emplace();
        makeCopy(file, fileName, called);
    }
}

void ReadableStore::makeCopy(const fs::path& file, const fs::path& fileName, const std::string& called)
{
    const std::array<fs::path, 3> sources{file, withSuffix(file, "-journal"), withSuffix(file, "-wal")};
    const fs::path copied = m_copy->path() / fileName;
    const std::array<fs::path, 3> targets{copied, withSuffix(copied, "-journal"), withSuffix(copied, "-wal")};
    // The file goes first: a journal that is still there afterwards undoes whatever a writer did meanwhile. If
    // anything changed on the way, file and journal may not belong together, so the copy is made again.
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::array<platform::FileStatus, 3> before;
        std::error_code error;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            before[i] = platform::readStatus(sources[i], error);
        }
        for (std::size_t i = 0; i < sources.size(); ++i) {
            fs::remove(targets[i]);
            m_copy->addCopy(sources[i], targets[i].filename());
        }
        bool same = true;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const platform::FileStatus after = platform::readStatus(sources[i], error);
            same = same && after.kind == before[i].kind && after.size == before[i].size &&
                after.modifiedNanoseconds == before[i].modifiedNanoseconds;
        }
        if (same) {
            return;
        }
    }
    throw Failure("cannot read " + called + ": " + platform::toUtf8(file) + " is being written all the time");
}

} // namespace dbservice
