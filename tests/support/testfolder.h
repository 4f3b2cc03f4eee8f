#pragma once

#include <filesystem>
#include <random>

namespace testsupport {

/// A fresh, empty folder for one test, removed with all it holds at the end.
class TestFolder {
public:
    TestFolder()
    {
        std::random_device random;
        do {
            m_path = std::filesystem::temp_directory_path() / ("databaseservice-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }

    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    ~TestFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace testsupport
