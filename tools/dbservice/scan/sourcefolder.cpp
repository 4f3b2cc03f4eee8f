#include "scan/sourcefolder.h"

#include "platform/paths.h"
#include "platform/text.h"
#include "scan/digest.h"
#include "stores/session.h"
#include "terminal/failure.h"
#include "terminal/reporter.h"

#include <algorithm>

namespace fs = std::filesystem;
namespace constants = DatabaseService::ClientConstants;

namespace dbservice {

namespace {

bool isAbsent(const std::error_code& error)
{
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

std::string_view specialMimeType(const fs::path& path)
{
    std::error_code ignored;
    switch (fs::symlink_status(path, ignored).type()) {
    case fs::file_type::fifo:
        return constants::fifoMimeType;
    case fs::file_type::socket:
        return constants::socketMimeType;
    case fs::file_type::block:
        return constants::blockDeviceMimeType;
    case fs::file_type::character:
        return constants::characterDeviceMimeType;
    default:
        return constants::unknownMimeType;
    }
}

bool isAtOrAbove(const fs::path& above, const fs::path& below)
{
    return std::mismatch(above.begin(), above.end(), below.begin(), below.end()).first == above.end();
}

/// What `platform::toUtf8` makes of a path, without a path.
template <class Text> std::string shown(const Text& name)
{
    if constexpr (sizeof name.front() == 1) {
        return platform::repairUtf8(name);
    } else {
        return platform::toUtf8(name);
    }
}

/// By its name alone.
bool isStoreFile(const fs::path& file)
{
    const std::string name = platform::toUtf8(file.filename());
    return std::any_of(storeFileNames.begin(), storeFileNames.end(), [&](std::string_view store) {
        const std::string_view rest = std::string_view(name).substr(std::min(store.size(), name.size()));
        return name.starts_with(store) && (rest.empty() || rest == "-journal" || rest == "-wal" || rest == "-shm");
    });
}

} // namespace

std::int64_t wholeSeconds(std::int64_t nanoseconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    return nanoseconds / second - (nanoseconds % second < 0 ? 1 : 0);
}

SourceFolder::SourceFolder(const fs::path& source, const fs::path& storeFolder, Reporter& reporter, Wanted wanted)
    : m_reporter(reporter),
      m_wanted(std::move(wanted))
{
    std::error_code error;
    m_source = fs::canonical(source, error);
    if (!error) {
        fs::directory_iterator(m_source, error);
    }
    if (error) {
        throw Failure("cannot read the folder " + platform::toUtf8(source) + ": " + error.message());
    }
    m_storeFolder = fs::weakly_canonical(storeFolder, error);
}

DiskEntry SourceFolder::self() const
{
    DiskEntry entry;
    entry.name = m_source.has_filename() ? m_source.filename().native() : m_source.native();
    entry.shownName = shown(entry.name);
    entry.key = digestOfPath({});
    std::error_code error;
    entry.status = platform::readStatus(m_source, error);
    if (error) {
        throw Failure("cannot read the folder " + platform::toUtf8(m_source) + ": " + error.message());
    }
    entry.mimeType = constants::folderMimeType;
    return entry;
}

std::optional<std::vector<DiskEntry>> SourceFolder::list(const NativeText& folder)
{
    std::vector<DiskEntry> entries;
    const fs::path path = absolute(folder);
    const bool holdsStore = path == m_storeFolder;
    m_below = folder;
    if (!folder.empty()) {
        m_below += '/';
    }
    const std::size_t prefix = m_below.size();
    const auto visit = [&](const NativeText& name, const platform::FileStatus& status, const std::error_code& refused) {
        m_below.resize(prefix);
        m_below += name;
        if (holdsStore && isStoreFile(fs::path(name))) {
            return;
        }
        if (std::optional<DiskEntry> entry = examine(name, status, refused)) {
            entries.push_back(std::move(*entry));
        }
    };
    platform::WantEntry wanted;
    if (m_wanted) {
        wanted = [this](const NativeText& name, platform::FileKind kind) { return wants(name, kind); };
    }
    std::error_code error;
    platform::readFolder(path, wanted, visit, error);
    if (error) {
        warnLost(path, "cannot read this folder (" + error.message() + "); what the store holds of it stays");
        return std::nullopt;
    }
    return entries;
}

fs::path SourceFolder::absolute(const NativeText& below) const
{
    return below.empty() ? m_source : m_source / fs::path(below).make_preferred();
}

std::optional<DiskEntry> SourceFolder::examine(const NativeText& name, const platform::FileStatus& status,
                                               const std::error_code& error)
{
    DiskEntry entry;
    entry.name = name;
    entry.shownName = shown(name);
    entry.key = digestOfPath(m_below);
    entry.status = status;
    if (error) {
        if (isAbsent(error)) {
            warnLost(current(), "vanished during the walk");
            return std::nullopt;
        }
        warnLost(current(), "cannot look at this entry (" + error.message() + "); what the store holds of it stays");
        entry.examined = false;
        return entry;
    }
    switch (entry.status.kind) {
    case platform::FileKind::Folder:
        entry.mimeType = constants::folderMimeType;
        break;
    case platform::FileKind::Regular:
        if (const constants::KnownExtension* const known = constants::findExtension(entry.shownName)) {
            entry.mimeType = known->mimeType;
            entry.group = known->group;
        } else {
            entry.mimeType = constants::unknownMimeType;
        }
        break;
    case platform::FileKind::Link:
        entry.mimeType = constants::linkMimeType;
        break;
    case platform::FileKind::Other:
        entry.mimeType = specialMimeType(current());
        break;
    }
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    if (entry.shownName.find(replacement) != std::string::npos && !isUnicode(fs::path(name))) {
        warnOdd(current(), "the name is not UTF-8, recorded with what is wrong replaced");
    }
    if (entry.status.kind == platform::FileKind::Link) {
        checkLink(current());
    }
    return entry;
}

std::string SourceFolder::shownPrefix(const NativeText& folder) const
{
    return platform::toUtf8(absolute(folder) / fs::path());
}

bool SourceFolder::wants(const NativeText& name, platform::FileKind kind) const
{
    using Kind = platform::FileKind;
    const bool isFile = kind == Kind::Regular;
    return kind == Kind::Folder ||
        m_wanted(kind, isFile ? constants::groupOf(shown(name)) : constants::ExtensionGroup::Unknown);
}

void SourceFolder::checkLink(const fs::path& link)
{
    std::error_code error;
    const fs::file_status status = fs::status(link, error);
    if (!error && fs::exists(status) && !fs::is_directory(status)) {
        return; // nearly always, and to find the place that a link leads to takes many more looks
    }
    const fs::path target = fs::canonical(link, error);
    if (isAbsent(error)) {
        warnOdd(link, "the link leads nowhere");
    } else if (error == std::errc::too_many_symbolic_link_levels) {
        warnOdd(link, "the link leads back to itself");
    } else if (!error && isAtOrAbove(target, link.parent_path())) {
        warnOdd(link, "the link leads to a folder above it");
    }
}

void SourceFolder::warnOdd(const fs::path& path, const std::string& what)
{
    ++m_odd;
    m_reporter.warning(platform::toUtf8(path) + ": " + what);
}

void SourceFolder::warnLost(const fs::path& path, const std::string& what)
{
    ++m_lost;
    m_reporter.warning(platform::toUtf8(path) + ": " + what);
}

} // namespace dbservice
