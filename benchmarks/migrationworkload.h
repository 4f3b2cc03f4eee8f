#pragma once

#include "databaseservice/gallerytables.h"
#include "expertconnection.h"
#include "harness.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace benchmarks {

/// The gallery's files of the earlier client generation on their way into the gallery store: the migration as it is,
/// with its look at what is there and its counts, beside an expert who also reads the whole table into the same
/// records, converts and inserts them, and beside one who copies row by row and holds none.
class MigrationWorkload {
public:
    MigrationWorkload(std::size_t rows, const std::filesystem::path& folder);

    std::vector<Operation> operations();

private:
    void writeLegacyFile();
    void openStores();
    void migrate();
    void readConvertInsert();
    void copyRowByRow();
    std::size_t checkRows();

    std::size_t m_rows;
    std::filesystem::path m_legacyFile;
    std::filesystem::path m_folder;
    ExpertConnection m_legacy{ExpertConnection::Kind::PerCall};
    ExpertConnection m_gallery{ExpertConnection::Kind::PerCall};
};

} // namespace benchmarks
