#pragma once

#include "databaseservice/drivedatatable.h"

#include <filesystem>
#include <string>
#include <vector>

namespace benchmarks {

using DriveRecords = std::vector<DatabaseService::DriveDataTable>;

/// The drive operations that are measured, as one contender does them. `open` and `close` are not measured: they
/// say which store the next calls are about.
class Drive {
public:
    Drive() = default;
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;
    virtual ~Drive() = default;

    virtual const char* name() const = 0;

    virtual void open(const std::filesystem::path& folder) = 0;
    virtual void close() = 0;

    virtual void insert(const DriveRecords& records) = 0;
    virtual DriveRecords readAll() = 0;
    virtual DriveRecords children(const std::string& parentId) = 0;
    virtual DatabaseService::DriveDataTable byId(const std::string& fileId) = 0;
    virtual void updateMarkers(const DriveRecords& records) = 0;
};

} // namespace benchmarks
