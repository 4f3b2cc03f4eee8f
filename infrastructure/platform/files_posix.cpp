#include "platform/files.h"

#include "platform/paths.h"
#include "platform/text.h"

#include <cerrno>
#include <string_view>
#include <unistd.h>

namespace platform {

namespace {

// Follows the text and steps back to the last asterisk when it fails behind it.
bool matches(std::wstring_view pattern, std::wstring_view name)
{
    std::size_t at = 0;
    std::size_t here = 0;
    std::size_t asterisk = std::wstring_view::npos;
    std::size_t retry = 0;
    while (here < name.size()) {
        if (at < pattern.size() && pattern[at] == L'*') {
            asterisk = at++;
            retry = here;
        } else if (at < pattern.size() && (pattern[at] == L'?' || pattern[at] == name[here])) {
            ++at;
            ++here;
        } else if (asterisk != std::wstring_view::npos) {
            at = asterisk + 1;
            here = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', at) == std::wstring_view::npos;
}

} // namespace

std::vector<FoundFile> findFiles(const std::wstring& pattern)
{
    const std::size_t slash = pattern.rfind(folderSeparator);
    const std::wstring folder = slash == std::wstring::npos ? L"." : pattern.substr(0, slash + 1);
    std::wstring names = slash == std::wstring::npos ? pattern : pattern.substr(slash + 1);
    if (names == L"*.*") {
        names = L"*";
    }
    std::vector<FoundFile> found;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(toPath(folder), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string bytes = entry->path().filename().native();
        const std::wstring name = toWide(bytes);
        if (matches(names, name)) {
            std::error_code ignored;
            found.push_back({name, entry->is_directory(ignored), isUtf8(bytes)});
        }
    }
    return found;
}

unsigned long deleteFile(const std::wstring& path)
{
    return unlink(toPath(path).c_str()) == 0 ? 0 : static_cast<unsigned long>(errno);
}

} // namespace platform
