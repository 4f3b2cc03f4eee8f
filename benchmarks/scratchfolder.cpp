#include "scratchfolder.h"

#include <random>
#include <string>
#include <system_error>

namespace benchmarks {

namespace {

const std::filesystem::path memoryFileSystem = "/dev/shm";

bool hasRoom(const std::filesystem::path& folder, std::uintmax_t bytes)
{
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(folder, error);
    return !error && space.available >= bytes;
}

} // namespace

ScratchFolder::ScratchFolder(std::uintmax_t bytes) : m_inMemory(hasRoom(memoryFileSystem, bytes))
{
    makeIn(m_inMemory ? memoryFileSystem : std::filesystem::temp_directory_path());
}

ScratchFolder::ScratchFolder(const std::filesystem::path& parent) : m_inMemory(false)
{
    makeIn(parent);
}

void ScratchFolder::makeIn(const std::filesystem::path& parent)
{
    std::random_device random;
    do {
        m_path = parent / ("databaseservice-benchmark-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace benchmarks
