#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/engine/recordio.h"

#include <string>
#include <utility>
#include <vector>

namespace benchmarks {

/// What the library's engine makes of a table's description, for operations that no store offers: a provider writes
/// and reads in just this way.
template <class Columns, class Record> class EngineTable final : public DatabaseService::DatabaseOperationBase {
public:
    EngineTable(const std::wstring& file, DatabaseService::Statement<Record> insert, std::string select,
                DatabaseService::ColumnList<Record> columns)
        : DatabaseOperationBase(file),
          m_insert(std::move(insert)),
          m_select(std::move(select)),
          m_columns(columns)
    {
    }

    bool InitDatabase() override { return true; }

    void insert(const std::vector<Record>& records) { writeRecords(*this, m_insert, records); }

    std::vector<Record> readAll()
    {
        std::vector<Record> records;
        readRecords(*this, m_select, nullptr, m_columns, records);
        return records;
    }

    const std::string& insertText() const { return m_insert.sql; }
    const std::string& selectText() const { return m_select; }

private:
    DatabaseService::Statement<Record> m_insert;
    std::string m_select;
    DatabaseService::ColumnList<Record> m_columns;
};

} // namespace benchmarks
