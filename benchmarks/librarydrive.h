#pragma once

#include "databaseservice/driverdbprovider.h"
#include "drive.h"

namespace benchmarks {

/// The library: each call is one call of the provider.
class LibraryDrive final : public Drive {
public:
    const char* name() const override { return "library"; }

    void open(const std::filesystem::path& folder) override;
    void close() override { }

    void insert(const DriveRecords& records) override { m_provider.InsertDriveDataBatch(records); }
    DriveRecords readAll() override { return m_provider.GetALLDriveData(); }
    DriveRecords children(const std::string& parentId) override { return m_provider.GetDriveDataByParentId(parentId); }
    DatabaseService::DriveDataTable byId(const std::string& fileId) override
    {
        return m_provider.GetDriveDataById(fileId);
    }
    void updateMarkers(const DriveRecords& records) override { m_provider.UpdateDriveOperData(records); }

    /// Lays down the store's tables and indexes.
    void create() { m_provider.InitDatabase(); }
    /// Leaves the record's table with nothing but its key.
    void dropIndexes();

private:
    DatabaseService::DriverDBProvider m_provider;
};

} // namespace benchmarks
