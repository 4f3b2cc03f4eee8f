#pragma once

#include "harness.h"
#include "transfertables.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace benchmarks {

/// The transfer store under the library and under an expert, both with a connection per call.
class TransferWorkload {
public:
    TransferWorkload(std::size_t rows, const std::filesystem::path& folder);

    std::vector<Operation> operations();

private:
    TableWorkload<DatabaseService::TransmissionDB::CompletedTaskProperty> m_completed;
    TableWorkload<DatabaseService::TransmissionDB::DownloadTaskProperty> m_downloads;
    TableWorkload<DatabaseService::TransmissionDB::UploadTaskProperty> m_uploads;
    TableWorkload<DatabaseService::TransmissionDB::DbTransferTask> m_tasks;
};

} // namespace benchmarks
