#include "databaseservice/fastaccessdbprovider.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/engine/failurelog.h"
#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/handover/addresses.h"
#include "databaseservice/storefiles.h"
#include "databaseservice/tables/fastaccesscolumns.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <memory>

namespace DatabaseService::FastAccessDBProvider {

namespace {

using Table = FastAccessColumns;

constexpr auto createdColumns = pick(Table::table, Table::Key | Table::Data);

constexpr auto writtenColumns = pick(Table::table, Table::Data | Table::Added);
static_assert(writtenColumns.size() == 10);

constexpr auto keyColumn = pick(Table::table, Table::Key);

// The word of SQL stands in quotes here and in brackets elsewhere, as the client has always sent it.
constexpr auto quotedIndex = columnFrom<&FastAccessTable::Index>("\"Index\"", "Index");
constexpr auto readColumns = pick(Table::table, "Id", quotedIndex, "DataType", "IconPath", "Title", "Tip", "UpdataTime",
                                  "FilePath", "FileId", "ParentId", "Rotate");

constexpr auto iconPathColumn = pick(Table::table, "IconPath");

FastAccessTableProvider& provider()
{
    static auto& instance = neverDestroyed(FastAccessTableProvider());
    return instance;
}

FastAccessTableProvider& upToDateProvider()
{
    provider().EnsureFastAccessTable();
    return provider();
}

} // namespace

FastAccessTableProvider::FastAccessTableProvider() : DatabaseOperationBase(shortcutStoreFile) { }

bool FastAccessTableProvider::InitDatabase()
{
    return true;
}

void FastAccessTableProvider::EnsureFastAccessTable()
{
    static const auto& create = neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS FastAccess (", createdColumns));
    Execute(create);
    // In lower case although the column is not: LIKE takes no regard of it.
    AddColumnIfMissing("rotate");
}

void FastAccessTableProvider::AddColumnIfMissing(const std::string& name)
{
    const int64 found =
        readNumber(*this, "SELECT COUNT(*) FROM SQLITE_MASTER WHERE NAME = 'FastAccess' AND SQL LIKE '%" + name + "%'");
    if (found == 0) {
        Execute("ALTER TABLE FastAccess ADD COLUMN Rotate INTEGER DEFAULT 0;");
    }
}

bool FastAccessTableProvider::GetAllFastAccessRows(std::vector<FastAccessTable>& rows)
{
    static const auto& select = neverDestroyed(selectText(readColumns, "FROM FastAccess ORDER BY \"Index\" DESC;"));
    return readRecords(*this, select, nullptr, readColumns, rows);
}

bool FastAccessTableProvider::InsertFastAccessRow(FastAccessTable* record)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO FastAccess (", writtenColumns));
    if (record == nullptr) {
        logFailure(__LINE__, "DatabaseService::FastAccessDBProvider::FastAccessTableProvider::InsertFastAccessRow",
                   "a null record was left out");
        return false;
    }
    const bool committed = writeRecords(*this, insert, std::vector{record});
    // Whatever became of the insert; callers have it from the highest id.
    record->Id = static_cast<std::int32_t>(readNumber(*this, "SELECT MAX(Id) FROM FastAccess"));
    return committed;
}

bool FastAccessTableProvider::DeleteFastAccessRow(int id)
{
    static const auto& remove = neverDestroyed(statementOf<int>("DELETE FROM FastAccess WHERE Id = :Id ;", ":Id"));
    return writeRecords(*this, remove, std::vector{id});
}

bool FastAccessTableProvider::UpdateFastAccessRow(const FastAccessTable* record)
{
    static const auto& update =
        neverDestroyed(updateStatement("UPDATE FastAccess", writtenColumns, "WHERE Id = :Id;", keyColumn));
    if (record == nullptr) {
        logFailure(__LINE__, "DatabaseService::FastAccessDBProvider::FastAccessTableProvider::UpdateFastAccessRow",
                   "a null record was left out");
        return false;
    }
    return writeRecords(*this, update, std::vector{record});
}

std::wstring FastAccessTableProvider::GetFastAccessIconPath(int id)
{
    // Asks for more than is read, as the client has always done.
    static const auto& select =
        neverDestroyed(statementOf<int>("SELECT IconPath, Title, Tip, Rotate FROM FastAccess WHERE Id = :Id;", ":Id"));
    std::vector<FastAccessTable> rows;
    auto key = oneValue(select, id);
    readRecords(*this, select.sql, &key, iconPathColumn, rows);
    return rows.empty() ? std::wstring() : platform::toWide(rows.front().IconPath);
}

bool FastAccessTableProvider::DropTable()
{
    return Execute("drop table FastAccess;");
}

bool InitFastAccessDB()
{
    upToDateProvider();
    return true;
}

bool GetAllFastAccessData(std::function<void(uint64, int64)> callback)
{
    FastAccessTableProvider& store = upToDateProvider();
    if (!callback) {
        logFailure(__LINE__, "DatabaseService::FastAccessDBProvider::GetAllFastAccessData",
                   "nothing was read: there is no callback to take it");
        return true;
    }
    std::vector<FastAccessTable> rows;
    store.GetAllFastAccessRows(rows);
    std::vector<std::unique_ptr<FastAccessTable>> records;
    records.reserve(rows.size());
    for (FastAccessTable& row : rows) {
        records.push_back(std::make_unique<FastAccessTable>(std::move(row)));
    }
    auto handedOver = std::make_unique<std::vector<FastAccessTable*>>(records.size());
    std::transform(records.begin(), records.end(), handedOver->begin(), [](auto& record) { return record.release(); });
    callback(0, addressOf(handedOver.release()));
    return true;
}

bool InsertFastAccessData(FastAccessTable* record, std::function<void(uint64, int64)> callback)
{
    upToDateProvider().InsertFastAccessRow(record);
    if (callback) {
        callback(0, addressOf(record));
    }
    return true;
}

bool DeleteFastAccessData(int id)
{
    FastAccessTableProvider& store = upToDateProvider();
    if (const std::wstring icon = store.GetFastAccessIconPath(id); icon.find(L"FastAccess") != std::wstring::npos) {
        const std::wstring path = GlobalParamWrapper::GetInstance()->GetUserCachePath() + icon;
        if (const unsigned long error = platform::deleteFile(path); error != 0) {
            logFailure(__LINE__, "DatabaseService::FastAccessDBProvider::DeleteFastAccessData",
                       "delete fail,error:" + std::to_string(error) + ',' + platform::toUtf8(path));
        }
    }
    store.DeleteFastAccessRow(id);
    return true;
}

bool UpdateFastAccessData(const FastAccessTable* record)
{
    upToDateProvider().UpdateFastAccessRow(record);
    return true;
}

void DropFastAccessTable()
{
    upToDateProvider().DropTable();
}

} // namespace DatabaseService::FastAccessDBProvider
