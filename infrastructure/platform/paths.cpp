#include "platform/paths.h"

namespace platform {

bool exists(const std::wstring& path) noexcept
{
    try {
        std::error_code ignored;
        const std::filesystem::file_type type = std::filesystem::status(toPath(path), ignored).type();
        return type != std::filesystem::file_type::none && type != std::filesystem::file_type::not_found &&
            type != std::filesystem::file_type::unknown;
    } catch (...) {
        return false;
    }
}

} // namespace platform
