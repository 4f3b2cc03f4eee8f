#pragma once

#include "drive.h"
#include "expertconnection.h"

#include <array>
#include <cstdint>
#include <string>

namespace benchmarks {

/// The same operations by an expert who writes for this one table: the same statements as the library, text bound in
/// place by position, cells put straight into the members of the very same record type.
class ExpertDrive final : public Drive {
public:
    explicit ExpertDrive(ExpertConnection::Kind connection);

    const char* name() const override { return m_connection.isKept() ? "expert with a kept connection" : "expert"; }

    void open(const std::filesystem::path& folder) override;
    void close() override;

    void insert(const DriveRecords& records) override;
    DriveRecords readAll() override;
    DriveRecords children(const std::string& parentId) override;
    DatabaseService::DriveDataTable byId(const std::string& fileId) override;
    void updateMarkers(const DriveRecords& records) override;

    /// For a kept connection: any text, prepared for this one time as the library's lists do it. The statement selects
    /// all columns of the record in their order; rows are appended.
    void select(const std::string& sql, DriveRecords& records);
    std::int64_t count(const std::string& sql);

private:
    enum Text { Insert, ReadAll, Children, ById, UpdateMarkers, TextCount };

    void readRows(sqlite3_stmt* stmt, DriveRecords& records);

    ExpertConnection m_connection;
    std::array<std::string, TextCount> m_texts;
};

} // namespace benchmarks
