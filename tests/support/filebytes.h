#pragma once

#include <filesystem>
#include <fstream>
#include <map>
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

inline std::string utf8Name(const std::filesystem::path& path)
{
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

/// Every entry of a folder by its name.
inline std::map<std::string, std::string> contents(const std::filesystem::path& folder)
{
    std::map<std::string, std::string> entries;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        entries[utf8Name(entry.path().filename())] = bytesOf(entry.path());
    }
    return entries;
}

/// Every file in a folder and in those below it, by its path from there with slashes.
inline std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder)
{
    std::map<std::string, std::string> files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, missing)) {
        if (entry.is_regular_file()) {
            files[utf8Name(entry.path().lexically_relative(folder))] = bytesOf(entry.path());
        }
    }
    return files;
}

/// Takes the place of what is there.
inline void writeBytes(const std::filesystem::path& file, const std::string& bytes)
{
    std::filesystem::remove_all(file);
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace testsupport
