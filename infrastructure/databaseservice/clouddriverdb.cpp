#include "databaseservice/clouddriverdb.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/handover/addresses.h"
#include "databaseservice/korvlog.h"
#include "databaseservice/tables/drivecolumns.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <sqlite3.h>
#include <utility>

namespace DatabaseService {

namespace {

using Drive = DriveDataColumns;

constexpr KorvLog log{31, 0x40001, "clouddriverdb"};

// The fragments of the statements, to the character.
constexpr const char* selectList =
    "select fileId, name, kind, mimeType, description, size, attachmentSize, hash, contentVersion, parentId, favorite, "
    "recycled, directlyRecycled, createdTime, modifiedTime, recycledTime, isSync, thumbnailDownloadLink, "
    "LCDImageDownloadLink, version, batchOper, localAbsolutePath, localFileSha256, deleteSrcPath, uploadTime, "
    "renameName, renameTime, moveParentId, moveTime, softDelete, softDeleteSrcPath, softDelTime, hardDelete, "
    "hardDelTime, localRestore, restoreTime, uploadBatchId, renameBatchId, moveBatchId, softDelBatchId, "
    "hardDelBatchId, restoreBatchId, newBatchId, autoUpload, riskFileSign, riskFileType, fileExtSign, needToDisplay, "
    "classIndex, data1, data2, data3, data4 from DriveDataTable";
constexpr const char* countHead = "select count(*) from DriveDataTable";
constexpr const char* joiner = " and ";
constexpr const char* live = " recycled = 0 and directlyRecycled = 0 and softDelBatchId = 0";
constexpr const char* folder = " mimeType = 'application/vnd.tessix-apps.folder'";
constexpr const char* file = " mimeType != 'application/vnd.tessix-apps.folder'";
constexpr const char* notMoving = " moveBatchId = 0";
constexpr const char* notRestoring = " restoreBatchId = 0";
constexpr const char* notHardDeleted = " hardDelBatchId = 0";
constexpr const char* display = " (needToDisplay = 0 or needToDisplay = 1)";

// The two steps of the row reader, in the select list's order.
constexpr auto firstColumns = [] {
    ColumnList<DriveDataTable> columns;
    for (const Column<DriveDataTable>* column : pick(Drive::table, Drive::All)) {
        if (column->name == "fileExtSign") {
            break;
        }
        columns.append(*column);
    }
    return columns;
}();
constexpr auto lastColumns =
    pick(Drive::table, "fileExtSign", "needToDisplay", "classIndex", "data1", "data2", "data3", "data4");
static_assert(firstColumns.size() + lastColumns.size() == pick(Drive::table, Drive::All).size());

std::wstring& databasePath()
{
    static auto& path = neverDestroyed(std::wstring());
    return path;
}

// The classes that views 1 to 5 show.
constexpr std::array classes{2, 4, 8, 16, 32};

bool isClassView(CLOUD_DB_VIEW_TYPE view)
{
    return view >= CLOUD_DB_VIEW_CLASS2 && view <= CLOUD_DB_VIEW_CLASS32;
}

std::string classCondition(CLOUD_DB_VIEW_TYPE view)
{
    return "where classIndex=" + std::to_string(classes[static_cast<std::size_t>(view - CLOUD_DB_VIEW_CLASS2)]) + ' ';
}

// Appends a formatted fragment; false, and nothing appended, when it cannot be formatted.
template <class... Values> bool appendFormatted(std::string& sql, const char* format, Values... values)
{
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), format, values...);
    if (length < 0 || static_cast<std::size_t>(length) >= text.size()) {
        return false;
    }
    sql.append(text.data(), static_cast<std::size_t>(length));
    return true;
}

// Times are printed as unsigned numbers, a negative one as the huge number that its bits are.
bool appendTime(std::string& sql, const char* comparison, int64 time)
{
    const std::string format = std::string(" recycledTime ") + comparison + " %" PRIu64 " ";
    return appendFormatted(sql, format.c_str(), static_cast<uint64>(time));
}

} // namespace

void CloudDriverDb::InitDatabasePath(std::wstring path)
{
    databasePath() = std::move(path);
}

CloudDriverDb::CloudDriverDb() : CommonSqliteDb(30000)
{
    if (!databasePath().empty()) {
        OpenUnicodePath(databasePath().c_str());
    }
}

void CloudDriverDb::OpenAfter(sqlite3* db)
{
    if (std::string error; !DriverDBProviderBase::BindNameCompare(db, error)) {
        log(__LINE__, "CloudDriverDb::OpenAfter", "bindname[%s]", error.c_str());
    }
}

void CloudDriverDb::AddDisplayQuery(std::string& sql)
{
    if (!GlobalParamWrapper::GetInstance()->GetEnableShowLostDiskFile()) {
        sql.append(joiner).append(display);
    }
}

// A limit that cannot be formatted is left off.
void CloudDriverDb::AddLimitQuery(std::string& sql, int offset, int count)
{
    appendFormatted(sql, " limit %u, %u ", static_cast<unsigned>(offset), static_cast<unsigned>(count));
}

void CloudDriverDb::AddSortTypeQuery(std::string& sql, CLOUD_DB_SORT_TYPE sort)
{
    const std::string key = " name COLLATE " + DriverDBProviderBase::GetNameCompareName();
    switch (sort) {
    case CLOUD_DB_SORT_MODIFIED_ASC:
        sql += " order by modifiedTime," + key + ' ';
        break;
    case CLOUD_DB_SORT_MODIFIED_DESC:
        sql += " order by modifiedTime desc," + key + ' ';
        break;
    case CLOUD_DB_SORT_SIZE_ASC:
        sql += " order by size," + key + ' ';
        break;
    case CLOUD_DB_SORT_SIZE_DESC:
        sql += " order by size desc," + key + ' ';
        break;
    case CLOUD_DB_SORT_NAME_DESC:
        sql += " order by " + key + " desc ";
        break;
    case CLOUD_DB_SORT_NAME_ASC:
        sql += " order by " + key + ' ';
        break;
    case CLOUD_DB_SORT_EXT_ASC:
        sql += " order by fileExtSign," + key + ' ';
        break;
    case CLOUD_DB_SORT_EXT_DESC:
        sql += " order by fileExtSign desc," + key + ' ';
        break;
    }
}

bool CloudDriverDb::QueryChildFolder(std::string parentId, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                                     std::vector<DriveDataTable>& out)
{
    return QueryChildren(parentId, folder, offset, count, sort, out);
}

bool CloudDriverDb::QueryChildFile(std::string parentId, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                                   std::vector<DriveDataTable>& out)
{
    return QueryChildren(parentId, file, offset, count, sort, out);
}

bool CloudDriverDb::QueryChildren(const std::string& parentId, const char* kind, int offset, int count,
                                  CLOUD_DB_SORT_TYPE sort, std::vector<DriveDataTable>& out)
{
    std::string sql = selectList;
    if (!parentId.empty()) {
        sql += " where parentId = '" + parentId + "' ";
        sql.append(joiner).append(kind).append(joiner).append(live).append(joiner).append(notMoving);
    } else {
        sql += " where directlyRecycled=1 ";
        sql.append(joiner).append(kind).append(joiner).append(notRestoring).append(joiner).append(notHardDeleted);
        sql += joiner;
        if (!appendTime(sql, ">", GetRecycleMaxValidTime())) {
            return false;
        }
    }
    AddDisplayQuery(sql);
    AddSortTypeQuery(sql, sort);
    AddLimitQuery(sql, offset, count);
    Collect(sql, out);
    return true;
}

bool CloudDriverDb::QueryRecycleExpiredFile(int offset, int count, int64 time, std::vector<DriveDataTable>& out)
{
    std::string sql = selectList;
    sql += " where directlyRecycled=1 ";
    sql.append(joiner).append(notRestoring).append(joiner).append(notHardDeleted).append(joiner);
    if (!appendTime(sql, "<=", time)) {
        return false;
    }
    AddLimitQuery(sql, offset, count);
    Collect(sql, out);
    return true;
}

bool CloudDriverDb::QueryTypeFile(CLOUD_DB_VIEW_TYPE view, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                                  std::vector<DriveDataTable>& out)
{
    if (!isClassView(view)) {
        return false;
    }
    std::string sql = std::string(selectList) + ' ' + classCondition(view);
    sql.append(joiner).append(file).append(joiner).append(live);
    AddDisplayQuery(sql);
    AddSortTypeQuery(sql, sort);
    AddLimitQuery(sql, offset, count);
    Collect(sql, out);
    return true;
}

void CloudDriverDb::QueryRecycleFolder(const std::string& parentId, std::vector<DriveDataTable>& out)
{
    std::string sql = std::string(selectList) + " where parentId = '" + parentId + "' ";
    sql.append(joiner).append(folder).append(joiner).append(" directlyRecycled=0 ");
    Collect(sql, out);
}

void CloudDriverDb::UpdateRecycleChild(const std::string& parentId, int recycled)
{
    if (parentId.empty()) {
        return;
    }
    std::array<char, 259> sql{};
    const int length = std::snprintf(sql.data(), sql.size(),
                                     "update DriveDataTable set recycled=%d where parentId='%s' and directlyRecycled=0",
                                     recycled, parentId.c_str());
    if (length >= 0 && static_cast<std::size_t>(length) < sql.size()) {
        ExcuteSql(sql.data());
    }
}

bool CloudDriverDb::QueryFileInfo(const std::string& fileId, DriveDataTable& out)
{
    if (fileId.empty()) {
        return false;
    }
    std::vector<DriveDataTable> rows;
    Collect(std::string(selectList) + " where fileId='" + fileId + "'", rows);
    if (rows.empty()) {
        return false;
    }
    out = std::move(rows.front());
    return true;
}

bool CloudDriverDb::GetDuplicateName(const std::string& parentId, const std::string& name)
{
    std::string conditions = " where parentId = '" + parentId + "' ";
    conditions.append(joiner).append(live).append(joiner).append(notMoving).append(joiner);
    conditions += " name = '" + name + "' ";
    return Count(conditions) > 0;
}

bool CloudDriverDb::GetSqlResult(const char* sql, std::vector<DriveDataTable>& out)
{
    if (sql == nullptr) {
        return false;
    }
    Collect(sql, out);
    return true;
}

bool CloudDriverDb::GetFirstSyncFolder(DriveFullTask& out)
{
    std::vector<DriveFullTask> rows;
    QuerySqlResult(
        "select fileId,cursor,state,updateTime,data1,data2,data3,data4 from DriveFolderSync order by updateTime desc "
        "limit 1",
        [this](sqlite3_stmt*& statement, int64 context) { GetFolderResult(statement, context); }, addressOf(&rows));
    if (rows.empty()) {
        return false;
    }
    out = std::move(rows.front());
    return true;
}

int64 CloudDriverDb::GetFullTaskStatus(const std::string& fileId)
{
    if (fileId.empty()) {
        return -1;
    }
    return QueryTotalCount(("select state from DriveFullTask  where fileId='" + fileId + "' limit 1").c_str(), -1);
}

int64 CloudDriverDb::GetTotalNumber()
{
    return Count(std::string(" where ") + live);
}

int64 CloudDriverDb::GetTotalFolderNumber()
{
    return Count(std::string(" where ") + live + joiner + folder);
}

int64 CloudDriverDb::GetRecycleTotalNumber()
{
    return Count(" where recycled = 1");
}

int64 CloudDriverDb::GetRecycleFolderNumber()
{
    return Count(std::string(" where recycled = 1") + joiner + folder);
}

int64 CloudDriverDb::GetSubAllNumber(std::string parentId)
{
    return parentId.empty() ? 0 : Count(" where parentId = '" + parentId + "' ");
}

int64 CloudDriverDb::GetSubFolderNumber(std::string parentId)
{
    return parentId.empty() ? 0 : CountChildren(parentId, folder);
}

int64 CloudDriverDb::GetSubFileNumber(std::string parentId)
{
    return CountChildren(parentId, file);
}

int64 CloudDriverDb::CountChildren(const std::string& parentId, const char* kind)
{
    std::string conditions = " where parentId = '" + parentId + "'";
    conditions.append(joiner).append(kind).append(joiner).append(live).append(joiner).append(notMoving);
    AddDisplayQuery(conditions);
    return Count(conditions);
}

void CloudDriverDb::GetFolderChildNumber(std::string parentId, int64& folders, int64& files)
{
    folders = GetSubFolderNumber(parentId);
    files = GetSubFileNumber(parentId);
}

void CloudDriverDb::GetRecycleChildNumber(int64& folders, int64& files)
{
    const auto inBin = [](const char* kind) {
        return std::string(" where  directlyRecycled=1") + joiner + kind + joiner + notRestoring + joiner +
            notHardDeleted;
    };
    // Expired folders count although the list leaves them out, and expired files do not; callers rely on both.
    std::string conditions = inBin(folder);
    AddDisplayQuery(conditions);
    folders = Count(conditions);

    conditions = inBin(file) + joiner;
    if (appendTime(conditions, ">", GetRecycleMaxValidTime())) {
        AddDisplayQuery(conditions);
        files = Count(conditions);
    }
}

int64 CloudDriverDb::GetTypeTotalNumber(CLOUD_DB_VIEW_TYPE view)
{
    std::string conditions = " ";
    if (isClassView(view)) {
        conditions += classCondition(view);
        conditions.append(joiner).append(file).append(joiner).append(live);
    } else if (view == CLOUD_DB_VIEW_RECYCLE) {
        conditions += "where directlyRecycled=1 ";
    } else {
        return 0;
    }
    AddDisplayQuery(conditions);
    return Count(conditions);
}

void CloudDriverDb::Collect(const std::string& sql, std::vector<DriveDataTable>& out)
{
    QuerySqlResult(
        sql.c_str(), [this](sqlite3_stmt*& statement, int64 context) { GetAllResult(statement, context); },
        addressOf(&out));
}

int64 CloudDriverDb::Count(const std::string& conditions)
{
    return QueryTotalCount((countHead + conditions).c_str(), 0);
}

void CloudDriverDb::InitFieldFromDbStep1(sqlite3_stmt*& statement, DriveDataTable& record, int& column)
{
    for (const Column<DriveDataTable>* field : firstColumns) {
        field->load(record, statement, column++);
    }
}

void CloudDriverDb::InitFieldFromDbStep2(sqlite3_stmt*& statement, DriveDataTable& record, int& column)
{
    for (const Column<DriveDataTable>* field : lastColumns) {
        field->load(record, statement, column++);
    }
}

void CloudDriverDb::GetAllResult(sqlite3_stmt*& statement, int64 context)
{
    auto& rows = *reinterpret_cast<std::vector<DriveDataTable>*>(static_cast<std::intptr_t>(context));
    DriveDataTable& record = rows.emplace_back();
    int column = 0;
    InitFieldFromDbStep1(statement, record, column);
    InitFieldFromDbStep2(statement, record, column);
}

void CloudDriverDb::GetFolderResult(sqlite3_stmt*& statement, int64 context)
{
    auto& rows = *reinterpret_cast<std::vector<DriveFullTask>*>(static_cast<std::intptr_t>(context));
    DriveFullTask& task = rows.emplace_back();
    int column = 0;
    for (const Column<DriveFullTask>& field : DriveFullTaskColumns::table) {
        field.load(task, statement, column++);
    }
}

int64 CloudDriverDb::GetRecycleMaxValidTime() const
{
    // The retention is kept from the first call for the life of the process.
    static const int64 retention = int64{GlobalParamWrapper::GetInstance()->GetRecyFileAutoDelInterval()} * 86400;
    return GlobalParamWrapper::GetInstance()->GetServerTime() - retention;
}

} // namespace DatabaseService
