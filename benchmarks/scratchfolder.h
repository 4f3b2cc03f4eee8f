#pragma once

#include <cstdint>
#include <filesystem>

namespace benchmarks {

/// A new folder for stores, removed with all it holds at the end: on the memory file system where there is one with
/// room for `bytes`, else among the temporary files.
class ScratchFolder {
public:
    explicit ScratchFolder(std::uintmax_t bytes);
    /// The same in a folder of the caller's choice.
    explicit ScratchFolder(const std::filesystem::path& parent);
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    const std::filesystem::path& path() const { return m_path; }
    bool inMemory() const { return m_inMemory; }

private:
    void makeIn(const std::filesystem::path& parent);

    bool m_inMemory;
    std::filesystem::path m_path;
};

} // namespace benchmarks
