#include "databaseservice/engine/recordio.h"
#include "databaseservice/maindatabaseproviderbase.h"
#include "databaseservice/tables/maincolumns.h"

namespace DatabaseService {

namespace {

constexpr auto allColumns = pick(UserLogColumns::table, UserLogColumns::All);
static_assert(allColumns.size() == 25);

} // namespace

void MainDatabaseProviderBase::GetAllUserLog()
{
    // It reads the other log than its name says, and for nobody; what callers get of it is the line of a failure.
    static const auto& select = neverDestroyed(selectText(allColumns, "FROM UBAUserLog;"));
    RowFunction dropped([](CellReader&) {});
    Execute(nullptr, nullptr, select, nullptr, &dropped);
}

void MainDatabaseProviderBase::InsertUserUserLog(std::vector<UserLog> records)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UserLogTable (", allColumns));
    WriteRecords(insert, records);
}

void MainDatabaseProviderBase::InsertUserUBAUserLog(std::vector<UBAUserLog> records)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UBAUserLog (", allColumns));
    WriteRecords(insert, records);
}

} // namespace DatabaseService
