#pragma once

#include "drive.h"

#include <array>
#include <cstdint>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace benchmarks {

/// The same operations by somebody who knows the C interface of SQLite well and writes for this one table: the same
/// statements (prepared with the legacy `sqlite3_prepare`, too), opens, transactions and commits as the library, text
/// bound in place by position, cells put straight into the members of the very same record type. What he leaves out is
/// what the library promises beyond that: other storage classes than the declared ones, ill-formed text, lines in a
/// log.
///
/// With `Connection::Kept` he opens once and keeps each statement that he has prepared.
///
/// Failures throw `std::runtime_error`.
class ExpertDrive final : public Drive {
public:
    enum class Connection { PerCall, Kept };

    explicit ExpertDrive(Connection connection);
    ~ExpertDrive() override;

    const char* name() const override { return m_kept ? "expert with a kept connection" : "expert"; }

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

    void connect();
    void disconnect();
    void exec(const char* sql);
    void check(bool good) const;
    sqlite3_stmt* prepare(const std::string& sql);
    template <class Body> void transaction(const char* begin, Text text, Body body);
    template <std::size_t FirstColumn, class Row> void forEachRow(sqlite3_stmt* stmt, Row row);

    const bool m_kept;
    std::string m_path;
    std::array<std::string, TextCount> m_texts;
    sqlite3* m_db = nullptr;
    std::array<sqlite3_stmt*, TextCount> m_statements{};
};

} // namespace benchmarks
