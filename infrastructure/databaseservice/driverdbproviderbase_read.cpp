#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/engine/connectionhold.h"
#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/parameterlistsource.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/handover/addresses.h"
#include "databaseservice/tables/drivecolumns.h"
#include "platform/scopeexit.h"
#include "platform/text.h"

#include <utility>

namespace DatabaseService {

namespace {

using Drive = DriveDataColumns;

constexpr auto allColumns = pick(Drive::table, Drive::All);
static_assert(allColumns.size() == 53);

constexpr auto columnsWithoutKey = pick(Drive::table, Drive::All & ~Drive::Key);
static_assert(columnsWithoutKey.size() == 52);

struct Page {
    std::string parentId;
    int64 count;
    int64 start;
};

} // namespace

DriveDataTable DriverDBProviderBase::GetDriveDataById(std::string fileId)
{
    static const auto& select = neverDestroyed(statementOf<std::string>(
        selectText(columnsWithoutKey, "FROM DriveDataTable WHERE fileId = :fileId ;"), ":fileId"));
    std::vector<DriveDataTable> rows;
    auto key = oneValue(select, fileId);
    readRecords(*this, select.sql, &key, columnsWithoutKey, rows);
    if (rows.empty()) {
        return {};
    }
    rows.front().SetFileid(fileId);
    return std::move(rows.front());
}

std::vector<DriveDataTable> DriverDBProviderBase::GetALLDriveData()
{
    static const auto& select = neverDestroyed(selectText(allColumns, "FROM DriveDataTable;"));
    std::vector<DriveDataTable> rows;
    readRecords(*this, select, nullptr, allColumns, rows);
    return rows;
}

std::vector<DriveDataTable> DriverDBProviderBase::GetDriveDataByParentId(std::string parentId)
{
    static const auto& select = neverDestroyed(statementOf<std::string>(
        selectText(allColumns, "FROM DriveDataTable WHERE parentId = :parentId;"), ":parentId"));
    std::vector<DriveDataTable> rows;
    auto parent = oneValue(select, parentId);
    readRecords(*this, select.sql, &parent, allColumns, rows);
    return rows;
}

std::vector<DriveDataTable> DriverDBProviderBase::GetDriveDataByWhereSql(std::string where, DatabaseBindParameter& bind)
{
    static const auto& select = neverDestroyed(selectText(allColumns, "FROM DriveDataTable WHERE "));
    std::vector<DriveDataTable> rows;
    std::list<DatabaseBindParameter> copy{bind};
    ParameterListSource values(copy);
    readRecords(*this, select + where, &values, allColumns, rows);
    return rows;
}

std::vector<std::shared_ptr<DriveDataTable>> DriverDBProviderBase::GetDriveDataByRawSQL(const std::string& sql)
{
    std::vector<std::shared_ptr<DriveDataTable>> rows;
    readRecords(*this, sql, nullptr, allColumns, rows);
    return rows;
}

std::vector<std::shared_ptr<DriveDataTable>> DriverDBProviderBase::GetFileMetadataByRawSQL(const std::string& sql)
{
    return GetDriveDataByRawSQL(sql);
}

void DriverDBProviderBase::GetFileMetadataByRawSQL(void* context, std::function<bool(uint64, int64)> visit)
{
    for (const DriveDataTable& record : GetALLDriveData()) {
        visit(reinterpret_cast<std::uintptr_t>(context), addressOf(&record));
    }
}

std::vector<std::string> DriverDBProviderBase::GetDriveDataNameByFieldId(const std::vector<std::string>& ids)
{
    static const auto& select =
        neverDestroyed(statementOf<std::string>("SELECT name FROM DriveDataTable WHERE fileId = :fileId;", ":fileId"));
    std::vector<std::string> names;
    WithStatement(select.sql, [&](sqlite3_stmt* statement) {
        for (const std::string& id : ids) {
            std::string& name = names.emplace_back();
            RowFunction first([&, waiting = true](CellReader& cells) mutable {
                if (std::exchange(waiting, false)) {
                    cells.nextText(name);
                }
            });
            auto key = oneValue(select, id);
            run(*this, {.stmt = statement, .elements = &key, .rows = &first});
        }
    });
    return names;
}

std::vector<bool> DriverDBProviderBase::CheckWhetherFileIdExistsInDriveData(const std::vector<std::string>& ids)
{
    std::vector<bool> exist;
    WithStatement("SELECT COUNT(fileId) FROM DriveDataTable WHERE fileId = :fileId ;", [&](sqlite3_stmt* statement) {
        for (const std::string& id : ids) {
            exist.push_back(CheckWhetherFileIdExistsInDriveData(platform::toWide(id), statement));
        }
    });
    return exist;
}

bool DriverDBProviderBase::CheckWhetherFileIdExistsInDriveData(const std::wstring& id, sqlite3_stmt* statement)
{
    static const auto& parameter = neverDestroyed(statementOf<std::wstring>({}, ":fileId"));
    auto key = oneValue(parameter, id);
    FirstCell count;
    run(*this, {.stmt = statement, .elements = &key, .rows = &count});
    return count.number() != 0;
}

// Runs `use` with a statement prepared on a connection of its own, unless the file cannot be opened or the statement
// not be prepared.
void DriverDBProviderBase::WithStatement(const std::string& sql, const std::function<void(sqlite3_stmt*)>& use)
{
    sqlite3* const db = GetDbConnection();
    if (db == nullptr) {
        return;
    }
    const platform::ScopeExit close([&] { CloseDatabase(db); });
    const ConnectionHold hold(db);
    sqlite3_stmt* const statement = PrepareSql(db, sql);
    if (statement == nullptr) {
        return;
    }
    const platform::ScopeExit finalize([&] { FinalizeStatment(statement); });
    use(statement);
}

int DriverDBProviderBase::CountDriverData()
{
    return static_cast<int>(readNumber(*this, "SELECT COUNT(fileId) FROM DriveDataTable"));
}

int DriverDBProviderBase::GetCountBySelectSQL(std::string& sql)
{
    FirstCell count;
    run(*this, {.sql = sql, .rows = &count});
    return count.isText() ? -1 : static_cast<int>(count.number());
}

bool DriverDBProviderBase::GetFolderSubFile(const std::string& parentId, std::vector<std::string>& files,
                                            std::vector<std::string>& folders, const unsigned& selNums,
                                            const unsigned& startPos)
{
    // The lower case of the second column and the text '0' stand in the statement as the client has always sent it.
    static const auto& select =
        neverDestroyed(Statement<Page>{"SELECT fileId, mimetype FROM DriveDataTable WHERE parentId = :parentId AND "
                                       "recycled='0' LIMIT :selNums OFFSET :startPos",
                                       {{":parentId", &bindMember<&Page::parentId>},
                                        {":selNums", &bindMember<&Page::count>},
                                        {":startPos", &bindMember<&Page::start>}}});
    const Page page{parentId, selNums, startPos};
    auto values = oneValue(select, page);
    RowFunction sort([&](CellReader& cells) {
        std::string id;
        std::string mimeType;
        cells.nextText(id);
        cells.nextText(mimeType);
        (mimeType == DriveDataTable::folderMimeType ? folders : files).push_back(std::move(id));
    });
    run(*this, {.sql = select.sql, .elements = &values, .rows = &sort});
    return true;
}

bool DriverDBProviderBase::GetSourcesFolder(const std::unordered_set<std::string>& sources,
                                            std::unordered_set<std::string>& folders)
{
    static const auto& select = neverDestroyed(statementOf<std::string>(
        "WITH RECURSIVE items(fileId, mimeType) AS ( SELECT fileId, mimeType FROM DriveDataTable WHERE fileId = "
        ":fileId UNION ALL SELECT DriveDataTable.fileId, DriveDataTable.mimeType FROM DriveDataTable JOIN items ON "
        "DriveDataTable.parentId = items.fileId) SELECT fileId FROM items WHERE mimeType = "
        "'application/vnd.tessix-apps.folder'",
        ":fileId"));
    RowFunction insert([&](CellReader& cells) {
        std::string id;
        cells.nextText(id);
        folders.insert(std::move(id));
    });
    for (const std::string& source : sources) {
        auto key = oneValue(select, source);
        run(*this, {.sql = select.sql, .elements = &key, .rows = &insert});
    }
    return true;
}

int DriverDBProviderBase::GetFilesChildNodeCount(const std::string& fileId)
{
    static const auto& select = neverDestroyed(statementOf<std::string>(
        "WITH RECURSIVE items(fileId, recycled) AS ( SELECT fileId, recycled FROM DriveDataTable WHERE fileId = "
        ":fileId UNION ALL SELECT DriveDataTable.fileId, DriveDataTable.recycled FROM DriveDataTable JOIN items ON "
        "DriveDataTable.parentId = items.fileId) SELECT COUNT(*) FROM items WHERE recycled = '0';",
        ":fileId"));
    auto key = oneValue(select, fileId);
    return static_cast<int>(readNumber(*this, select.sql, &key));
}

} // namespace DatabaseService
