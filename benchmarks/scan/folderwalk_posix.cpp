#include "folderwalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <utility>
#include <vector>

namespace benchmarks {

namespace {

std::int64_t nanoseconds(const timespec& time)
{
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

WalkedEntry::Kind kindOf(mode_t mode)
{
    using Kind = WalkedEntry::Kind;
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return Kind::Folder;
    case S_IFLNK:
        return Kind::Link;
    case S_IFIFO:
        return Kind::Fifo;
    case S_IFSOCK:
        return Kind::Socket;
    case S_IFBLK:
        return Kind::Block;
    case S_IFCHR:
        return Kind::Character;
    default:
        return Kind::File;
    }
}

} // namespace

void walkFolder(const std::string& folder, const std::function<void(const WalkedEntry&)>& visit)
{
    std::vector<std::pair<std::string, std::int64_t>> waiting{{"", modifiedNanoseconds(folder)}};
    while (!waiting.empty()) {
        const auto [below, modified] = std::move(waiting.back());
        waiting.pop_back();
        const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir((folder + '/' + below).c_str()), ::closedir);
        if (open == nullptr) {
            continue;
        }
        std::string path = below.empty() ? below : below + '/';
        const std::size_t prefix = path.size();
        while (const dirent* const found = ::readdir(open.get())) {
            const std::string_view name = static_cast<const char*>(found->d_name);
            struct stat status { };
            if (name == "." || name == ".." ||
                ::fstatat(::dirfd(open.get()), name.data(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
                continue;
            }
            path.resize(prefix);
            path += name;
            WalkedEntry entry{path, name, below, modified, kindOf(status.st_mode), 0, nanoseconds(status.st_mtim)};
            entry.size = S_ISREG(status.st_mode) ? static_cast<std::int64_t>(status.st_size) : 0;
            visit(entry);
            if (entry.kind == WalkedEntry::Kind::Folder) {
                waiting.emplace_back(path, entry.modifiedNanoseconds);
            }
        }
    }
}

std::int64_t modifiedNanoseconds(const std::string& folder)
{
    struct stat status { };
    return ::stat(folder.c_str(), &status) == 0 ? nanoseconds(status.st_mtim) : 0;
}

} // namespace benchmarks
