#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace testsupport {

/// Nothing of what is no file.
inline std::string bytesOf(const std::filesystem::path& file)
{
    if (!std::filesystem::is_regular_file(file)) {
        return {};
    }
    std::ifstream stream(file, std::ios::binary);
    return (std::ostringstream() << stream.rdbuf()).str(); // faster by far where nothing is optimised
}

/// Takes the place of what is there.
inline void writeBytes(const std::filesystem::path& file, const std::string& bytes)
{
    std::filesystem::remove_all(file);
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace testsupport
