#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/maindatabaseproviderbase.h"
#include "databaseservice/tables/maincolumns.h"

#include <utility>

namespace DatabaseService {

namespace {

using CloudFile = CloudFileColumns;

constexpr auto allColumns = pick(CloudFile::table, CloudFile::All);
static_assert(allColumns.size() == 26);

constexpr auto insertColumns = pick(CloudFile::table, CloudFile::Data);
static_assert(insertColumns.size() == 25);

constexpr auto newId = columnFrom<&T_CloudFileTable::id>("id", "newId");
constexpr auto updateKey = pick(CloudFile::table, newId);

std::string selectAll(const std::string& clause)
{
    static const auto& select = neverDestroyed(selectText(allColumns, "FROM T_CloudFileTable"));
    return select + clause;
}

} // namespace

void MainDatabaseProviderBase::InsertOneCloudDriveDataBatch(T_CloudFileTable& record)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO T_CloudFileTable (", insertColumns));
    writeRecords(*this, insert, std::vector{&record});
}

void MainDatabaseProviderBase::InsertCloudDriveDataBatch(std::vector<T_CloudFileTable>& records)
{
    // One transaction each: whoever reads meanwhile finds those that are done.
    for (T_CloudFileTable& record : records) {
        InsertOneCloudDriveDataBatch(record);
    }
}

void MainDatabaseProviderBase::DeleteCloudDriveDataBatchOrderBy(int& num)
{
    static const auto& select = neverDestroyed(
        statementOf<int>("SELECT id\n  FROM T_CloudFileTable\n  ORDER BY modifiedTime ASC\n  LIMIT :num;\n", ":num"));
    auto limit = oneValue(select, num);
    DeleteCloudFileRows(ReadIds(select.sql, limit));
}

void MainDatabaseProviderBase::DeleteAllCloudDriveDataBatch()
{
    Execute("DELETE FROM T_CloudFileTable");
}

std::vector<T_CloudFileTable> MainDatabaseProviderBase::GetAllCloudDriveDataBatch()
{
    std::vector<T_CloudFileTable> rows;
    readRecords(*this, selectAll(" order by modifiedTime desc"), nullptr, allColumns, rows);
    return rows;
}

T_CloudFileTable MainDatabaseProviderBase::GetCloudDriveDataBatch(std::string& fileId)
{
    static const auto& select =
        neverDestroyed(statementOf<std::string>(selectAll(" WHERE fileId = :fileId"), ":fileId"));
    std::vector<T_CloudFileTable> rows;
    auto key = oneValue(select, fileId);
    readRecords(*this, select.sql, &key, allColumns, rows);
    return rows.empty() ? T_CloudFileTable() : std::move(rows.front());
}

int MainDatabaseProviderBase::GetAllCloudDriveDataBatchNum()
{
    return static_cast<int>(readNumber(*this, "SELECT COUNT(*) FROM T_CloudFileTable;"));
}

bool MainDatabaseProviderBase::SelectOneCloudDriveData(std::string& fileId)
{
    static const auto& count = neverDestroyed(
        statementOf<std::string>("SELECT COUNT(*) FROM T_CloudFileTable WHERE fileId = :fileId;", ":fileId"));
    auto key = oneValue(count, fileId);
    return readNumber(*this, count.sql, &key) != 0;
}

void MainDatabaseProviderBase::DeleteOneCloudDriveDataBatchColumn(std::string& fileId)
{
    static const auto& select =
        neverDestroyed(statementOf<std::string>("SELECT id FROM T_CloudFileTable WHERE fileId = :fileId", ":fileId"));
    auto key = oneValue(select, fileId);
    if (const std::vector<int64> ids = ReadIds(select.sql, key); !ids.empty()) {
        DeleteCloudFileRows({ids.front()});
    }
}

void MainDatabaseProviderBase::DeleteSameColumnFromParentId(std::string& fileId)
{
    static const auto& remove = neverDestroyed(
        statementOf<std::string>("DELETE FROM T_CloudFileTable\n      WHERE parentId = :fileId;", ":fileId"));
    writeRecords(*this, remove, std::vector{&fileId});
}

std::vector<T_CloudFileTable> MainDatabaseProviderBase::SelectSameColumnFromParentId(std::string& id)
{
    static const auto& select =
        neverDestroyed(statementOf<std::string>(selectAll(" WHERE parentId = :fileID"), ":fileID"));
    std::vector<T_CloudFileTable> rows;
    auto parent = oneValue(select, id);
    readRecords(*this, select.sql, &parent, allColumns, rows);
    return rows;
}

void MainDatabaseProviderBase::UpdateCloudDriveVec(std::vector<T_CloudFileTable>& records)
{
    static const auto& update =
        neverDestroyed(updateStatement("UPDATE T_CloudFileTable", allColumns, "WHERE id = :newId", updateKey));
    writeRecords(*this, update, records);
}

void MainDatabaseProviderBase::UpdateCloudDriveDataSmallPicDown(T_CloudFileTable& record)
{
    std::vector records{record};
    UpdateCloudDriveVec(records);
}

void MainDatabaseProviderBase::UpdateSelectCloudDriveData(T_CloudFileTable& record)
{
    DeleteOneCloudDriveDataBatchColumn(record.fileId);
    InsertOneCloudDriveDataBatch(record);
}

void MainDatabaseProviderBase::UpdateSelectDelCloudDriveData(T_CloudFileTable& record)
{
    DeleteOneCloudDriveDataBatchColumn(record.fileId);
}

std::vector<int64> MainDatabaseProviderBase::ReadIds(const std::string& sql, ElementSource& elements)
{
    std::vector<int64> ids;
    RowFunction append([&](CellReader& cells) { ids.push_back(cells.nextInteger()); });
    run(*this, {.sql = sql, .elements = &elements, .rows = &append});
    return ids;
}

void MainDatabaseProviderBase::DeleteCloudFileRows(const std::vector<int64>& ids)
{
    static const auto& remove =
        neverDestroyed(statementOf<int64>("DELETE FROM T_CloudFileTable WHERE id = :id;", ":id"));
    writeRecords(*this, remove, ids);
}

} // namespace DatabaseService
