#include "platform/filestatus.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace platform {

namespace {

std::int64_t nanoseconds(const timespec& time)
{
    constexpr std::int64_t perSecond = 1'000'000'000;
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / perSecond - 1;
    const auto seconds = static_cast<std::int64_t>(time.tv_sec);
    if (seconds > limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (seconds < -limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return seconds * perSecond + time.tv_nsec;
}

FileKind kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileKind::Regular;
    case S_IFDIR:
        return FileKind::Folder;
    case S_IFLNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

/// Nothing where the folder's entry does not tell.
std::optional<FileKind> kindOf(const dirent& entry)
{
    switch (entry.d_type) {
    case DT_UNKNOWN:
        return std::nullopt;
    case DT_REG:
        return FileKind::Regular;
    case DT_DIR:
        return FileKind::Folder;
    case DT_LNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

FileStatus statusOf(const struct stat& found)
{
    FileStatus status;
    status.kind = kindOf(found.st_mode);
    status.size = status.kind == FileKind::Regular ? static_cast<std::int64_t>(found.st_size) : 0;
    status.modifiedNanoseconds = nanoseconds(found.st_mtim);
    status.createdNanoseconds = status.modifiedNanoseconds;
    return status;
}

} // namespace

FileStatus readStatus(const std::filesystem::path& path, std::error_code& error) noexcept
{
    error.clear();
    struct stat found { };
    if (::lstat(path.c_str(), &found) != 0) {
        error.assign(errno, std::generic_category());
        return {};
    }
    return statusOf(found);
}

// From the open folder on, so that the system does not walk the whole path for each entry.
void readFolder(const std::filesystem::path& folder, const WantEntry& wanted, const VisitEntry& visit,
                std::error_code& error)
{
    const auto fail = [&error] { error.assign(errno, std::generic_category()); };
    error.clear();
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), ::closedir);
    if (open == nullptr) {
        fail();
        return;
    }
    std::string name;
    errno = 0;
    while (const dirent* const entry = ::readdir(open.get())) {
        name = static_cast<const char*>(entry->d_name);
        const std::optional<FileKind> kind = kindOf(*entry);
        if (name != "." && name != ".." && (!kind || !wanted || wanted(name, *kind))) {
            struct stat found { };
            std::error_code refused;
            if (::fstatat(::dirfd(open.get()), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
                refused.assign(errno, std::generic_category());
            }
            const FileStatus status = refused ? FileStatus{} : statusOf(found);
            if (kind || refused || !wanted || wanted(name, status.kind)) {
                visit(name, status, refused);
            }
        }
        errno = 0;
    }
    if (errno != 0) {
        fail();
    }
}

} // namespace platform
