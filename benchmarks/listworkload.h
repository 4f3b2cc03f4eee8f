#pragma once

#include "databaseservice/clouddriverdb.h"
#include "driverecords.h"
#include "expertdrive.h"
#include "harness.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace benchmarks {

/// The client's file lists under the library and under an expert, each with one connection that stays open. Holds the
/// store's folder and the records for as long as its operations are used.
class ListWorkload {
public:
    ListWorkload(std::size_t rows, const std::filesystem::path& folder);

    std::vector<Operation> operations();

private:
    using Lists = DatabaseService::CloudDriverDb;
    using Counts = std::vector<std::int64_t>;
    using Filter = std::function<bool(const DatabaseService::DriveDataTable&)>;
    using Order = std::function<int(const DatabaseService::DriveDataTable&, const DatabaseService::DriveDataTable&)>;

    Operation lists(const std::string& name, const std::string& title, std::size_t times,
                    const std::function<void(Lists&, DriveRecords&)>& library, const std::string& sql,
                    DriveRecords expected);
    Operation counts(const std::function<Counts(Lists&)>& library, const std::vector<std::string>& sql,
                     Counts expected);
    Operation operation(const std::string& name, const std::string& title, const std::function<void()>& runLibrary,
                        const std::function<void()>& runExpert, const std::function<std::size_t()>& check);

    DriveRecords firstPage(const Filter& filter, const Order& order) const;
    std::int64_t countOf(const Filter& filter) const;
    void fill();

    DriveTree m_tree;
    std::filesystem::path m_folder;
    bool m_filled = false;
    DriveRecords m_page;
    Counts m_counts;
    std::unique_ptr<Lists> m_library;
    ExpertDrive m_expert{ExpertConnection::Kind::Kept};
};

} // namespace benchmarks
