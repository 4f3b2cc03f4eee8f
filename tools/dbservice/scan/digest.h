#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace dbservice {

/// 128 bits that are the same for the same bytes, and for no others that anybody will meet.
struct Digest {
    std::uint64_t high;
    std::uint64_t low;
    bool operator==(const Digest&) const = default;
    bool operator<(const Digest& other) const { return high != other.high ? high < other.high : low < other.low; }
};

Digest digestOf(std::string_view bytes);

/// 32 hexadecimal digits. They sort as the digests do.
std::string textOf(const Digest& digest);

/// The same for the same name or path, as the system has it.
Digest digestOfPath(const std::filesystem::path::string_type& path);
/// Its text.
std::string idOf(const std::filesystem::path::string_type& path);

/// 32 hexadecimal digits of what is in a file. Nothing when it cannot be read to its end.
std::optional<std::string> contentHash(const std::filesystem::path& file);

} // namespace dbservice
