#pragma once

#include "expertconnection.h"
#include "harness.h"
#include "statementtrace.h"
#include "storetables.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace benchmarks {

/// The stores beside the drive under the library and under an expert, both with a connection per call. Holds the
/// stores' folder and the records for as long as its operations are used.
class StoreWorkload {
public:
    StoreWorkload(std::size_t rows, const std::filesystem::path& folder);

    std::vector<Operation> operations();

private:
    Operation lookingUpGalleryFiles();
    Operation readingUserLog();
    Operation insertingChangesOneByOne();
    Operation starting();

    void openStores();

    std::filesystem::path m_folder;
    TableWorkload<DatabaseService::GalleryFileTable> m_gallery;
    TableWorkload<DatabaseService::T_CloudFileTable> m_changes;
    TableWorkload<DatabaseService::UserLog> m_log;
    std::vector<DatabaseService::GalleryFileTable> m_files;
    std::vector<DatabaseService::T_CloudFileTable> m_fewChanges;
    std::vector<StatementTrace::Step> m_startSteps;
    std::size_t m_done = 0;
    ExpertConnection m_expertGallery{ExpertConnection::Kind::PerCall};
    ExpertConnection m_expertMain{ExpertConnection::Kind::PerCall};
    ExpertConnection m_keptExpert{ExpertConnection::Kind::Kept};
    ExpertConnection m_keptExpertDrive;
};

} // namespace benchmarks
