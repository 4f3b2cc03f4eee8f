#include "databaseservice/v10.h"

#include "databaseservice/datamigrationdb.h"
#include "databaseservice/engine/failurelog.h"
#include "databaseservice/engine/keepconnection.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/tables/legacycolumns.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "platform/text.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace DatabaseService::V10 {

namespace {

sqlite3* s_legacyConnection = nullptr; // of the call at hand; null when it could not be opened

DataMigrationDB& migrationDb()
{
    static auto& s_migrationDb = neverDestroyed(DataMigrationDB());
    return s_migrationDb;
}

// UTF-8, folders end in a backslash.
std::string& legacyDbPath()
{
    static auto& s_legacyDbPath = neverDestroyed(std::string());
    return s_legacyDbPath;
}

template <class Columns> bool create(std::string_view table)
{
    return run(migrationDb(),
               {.db = s_legacyConnection,
                .sql = createTable("CREATE TABLE IF NOT EXISTS " + std::string(table) + " (", Columns::table)});
}

bool PrepareLegacyTables(const std::wstring& path)
{
    s_legacyConnection = migrationDb().OpenLegacyDatabase(path);
    if (s_legacyConnection == nullptr) {
        return false;
    }
    if (!create<GalleryFileColumns>("GalleryFile")) {
        // The engine's lines do not tell the file.
        logFailure(__LINE__, "DatabaseService::V10::PrepareLegacyTables",
                   L"no table could be laid down in the legacy file " + path);
        return false;
    }
    create<AlbumLocalVersionColumns>("AlbumLocalVersion");
    create<AlbumColumns>("Album");
    create<DownloadTaskColumns>("DownloadTask");
    create<TransferCompleteCloudTaskColumns>("TransferCompleteCloudTask");
    create<UploadTaskColumns>("UploadTask");
    create<UserPropertiesColumns>("UserProperties");
    create<UserLogColumns>("UserLog");
    create<UserLogColumns>("UBAUserLog");
    return true;
}

bool ReopenLegacyDatabase()
{
    return PrepareLegacyTables(platform::toWide(legacyDbPath()));
}

/// At the end of each call that opened it: from there on the connection may be closed by others.
void keepLegacyConnection()
{
    if (sqlite3* const done = std::exchange(s_legacyConnection, nullptr); done != nullptr) {
        keepConnection(done, legacyDbPath(), "the reader of the legacy file leaves its connections open");
    }
}

/// Rows into records, up to the first that throws. What it threw waits for the end of the transaction.
template <class Record, class Element> class LegacyRows final : public RowSink {
public:
    LegacyRows(const ColumnList<Record>& columns, std::vector<Element>& records)
        : m_rows(columns, records),
          m_records(records)
    {
    }

    void Row(CellReader& cells) override
    {
        if (m_thrown != nullptr) {
            return;
        }
        const std::size_t whole = m_records.size();
        try {
            m_rows.Row(cells);
        } catch (...) {
            m_thrown = std::current_exception();
            m_records.resize(whole);
        }
    }

    void rethrow() const
    {
        if (m_thrown != nullptr) {
            std::rethrow_exception(m_thrown);
        }
    }

private:
    RecordSink<Record, Element> m_rows;
    std::vector<Element>& m_records;
    std::exception_ptr m_thrown;
};

template <class Record, class Element>
bool read(const ColumnList<Record>& columns, const std::string& from, std::vector<Element>& records)
{
    if (legacyDbPath().empty()) {
        return false;
    }
    const platform::ScopeExit keep(keepLegacyConnection);
    ReopenLegacyDatabase();
    if (s_legacyConnection == nullptr) {
        return false;
    }
    LegacyRows<Record, Element> rows(columns, records);
    const bool committed =
        run(migrationDb(), {.db = s_legacyConnection, .sql = selectText(columns, from), .rows = &rows});
    rows.rethrow();
    return committed;
}

const char* whereTaskType(bool isOne)
{
    return isOne ? " WHERE TaskType = 1" : " WHERE TaskType != 1";
}

} // namespace

bool InitDB(std::wstring path)
{
    if (path.empty()) {
        return true;
    }
    std::replace(path.begin(), path.end(), L'/', L'\\');
    legacyDbPath() = platform::toUtf8(path);
    // What will be opened is asked for: text that is not Unicode is not the same afterwards.
    if (!platform::exists(platform::fromBackslashes(platform::toWide(legacyDbPath())))) {
        legacyDbPath().clear();
        return false;
    }
    const platform::ScopeExit keep(keepLegacyConnection);
    return ReopenLegacyDatabase();
}

bool GetAllGalleryFile(std::vector<GalleryFile>& records)
{
    return read(GalleryFileColumns::selected, "FROM GalleryFile;", records);
}

bool GetAllAlbumLocalVersion(std::vector<AlbumLocalVersion>& records)
{
    return read(AlbumLocalVersionColumns::selected, "FROM AlbumLocalVersion;", records);
}

bool GetAllAlbum(std::vector<Album>& records)
{
    return read(AlbumColumns::selected, "FROM Album;", records);
}

bool GetAllDownloadTask(std::vector<DownloadTask>& records, bool taskTypeIsOne)
{
    return read(DownloadTaskColumns::selected, std::string("FROM DownloadTask") + whereTaskType(taskTypeIsOne),
                records);
}

bool GetAllTransferCompleteCloudTask(std::vector<TransferCompleteCloudTask>& records, bool taskTypeIsOne)
{
    return read(TransferCompleteCloudTaskColumns::selected,
                std::string("FROM TransferCompleteCloudTask") + whereTaskType(taskTypeIsOne), records);
}

bool GetAllUploadTask(std::vector<UploadTask>& records)
{
    return read(UploadTaskColumns::selected, "FROM UploadTask;", records);
}

bool GetAllUserProperties(std::vector<UserProperties>& records)
{
    return read(UserPropertiesColumns::selected, "FROM UserProperties;", records);
}

bool GetAllUserLog(std::vector<UserLog>& records)
{
    return read(UserLogColumns::selected, "FROM UserLog;", records);
}

// The other log table, too: clients get the rows of `UserLog` from both.
bool GetAllUBAUserLog(std::vector<UBAUserLog>& records)
{
    return read(UserLogColumns::selected, "FROM UserLog;", records);
}

} // namespace DatabaseService::V10
