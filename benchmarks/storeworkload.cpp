#include "storeworkload.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/tables/gallerycolumns.h"
#include "databaseservice/tables/maincolumns.h"
#include "expertcells.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace benchmarks {

using namespace DatabaseService;

namespace {

constexpr const wchar_t* galleryName = L"gallery.dat";

void requireRows(std::size_t rows, std::size_t expected)
{
    if (rows != expected) {
        throw std::runtime_error(fmt::format("{} rows in place of {}", rows, expected));
    }
}

} // namespace

StoreWorkload::StoreWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_folder(folder / "stores"),
      m_gallery(galleryFiles(rows), folder),
      m_changes(cloudFileChanges(rows), folder),
      m_log(userLogs(rows), folder),
      m_files(galleryFiles(std::min<std::size_t>(2000, rows)).records),
      m_fewChanges(cloudFileChanges(std::min<std::size_t>(2000, rows)).records),
      m_keptExpertDrive(ExpertConnection::Kind::Kept, addNameCompare)
{
}

std::vector<Operation> StoreWorkload::operations()
{
    std::vector<Operation> all;
    for (const std::vector<Operation>& some :
         {m_gallery.operations(), std::vector{lookingUpGalleryFiles()}, m_changes.operations(),
          std::vector{insertingChangesOneByOne()}, m_log.operations(), std::vector{readingUserLog(), starting()}}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// A folder with all stores, the files of the lookup and the records of the log in them.
void StoreWorkload::openStores()
{
    const bool isNew = std::filesystem::create_directory(m_folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(m_folder.generic_wstring());
    if (isNew) {
        InitDataBase(m_folder.generic_wstring(), galleryName);
        DriverDBProvider().InitDatabase();
        GalleryDBProvider::InsertGalleryFileTable(m_files);
        std::vector<UBAUserLog> records;
        for (const UserLog& record : userLogs(m_files.size()).records) {
            static_cast<UserLogFields&>(records.emplace_back()) = record;
        }
        MainDatabaseProvider::InsertUserUBAUserLog(std::move(records));
    }
    m_expertGallery.open(m_folder / galleryName);
    m_expertMain.open(m_folder / "main.dat");
}

Operation StoreWorkload::lookingUpGalleryFiles()
{
    static const std::string select = selectText(pick(GalleryFileColumns::table, GalleryFileColumns::All),
                                                 "FROM GalleryFile WHERE UniqueId = :UniqueId;");
    const auto contender = [this](const char* name, const std::function<GalleryFileTable(std::string&)>& find) {
        return Contender{name,
                         [this] {
                             openStores();
                             m_done = 0;
                         },
                         [this, find] {
                             for (GalleryFileTable& file : m_files) {
                                 m_done += static_cast<std::size_t>(find(file.UniqueId).Sdsmtime == file.Sdsmtime);
                             }
                         },
                         [this] {
                             requireRows(m_done, m_files.size());
                             return m_done;
                         }};
    };
    const auto expert = [this](std::string& id) {
        GalleryFileTable file;
        m_expertGallery.transaction("BEGIN DEFERRED", select, [&](sqlite3_stmt* stmt) {
            m_expertGallery.require(bindCell(stmt, 1, id));
            m_expertGallery.forEachRow(stmt, [&](sqlite3_stmt* row) { readAll(row, membersOf(file)); });
        });
        return file;
    };
    return {"gallery-by-id",
            fmt::format("one gallery file by id, {} times", m_files.size()),
            1.05,
            {contender("library", &GalleryDBProvider::GetGalleryFileOneData), contender("expert", expert)},
            {}};
}

Operation StoreWorkload::readingUserLog()
{
    static const std::string select = selectText(pick(UserLogColumns::table, UserLogColumns::All), "FROM UBAUserLog;");
    const auto contender = [this](const char* name, const std::function<void()>& read) {
        return Contender{name, [this] { openStores(); }, read, [this] { return m_files.size(); }};
    };
    const auto expert = [this] {
        m_expertMain.transaction("BEGIN DEFERRED", select, [&](sqlite3_stmt* stmt) {
            m_expertMain.forEachRow(stmt, [](sqlite3_stmt* /*row*/) {});
        });
    };
    return {"log-check",
            fmt::format("step through {} log records", m_files.size()),
            1.10,
            {contender("library", &MainDatabaseProvider::GetAllUserLog), contender("expert", expert)},
            {}};
}

// The library commits each record by itself, and so does the expert.
Operation StoreWorkload::insertingChangesOneByOne()
{
    static const std::string insert =
        insertStatement("INSERT INTO T_CloudFileTable (", pick(CloudFileColumns::table, CloudFileColumns::Data)).sql;
    const auto contender = [this](const char* name, const std::function<void()>& write) {
        return Contender{name,
                         [this] {
                             openStores();
                             MainDatabaseProvider::DeleteAllCloudDriveDataBatch();
                         },
                         write,
                         [this] {
                             const auto rows =
                                 static_cast<std::size_t>(MainDatabaseProvider::GetAllCloudDriveDataBatchNum());
                             requireRows(rows, m_fewChanges.size());
                             return rows;
                         }};
    };
    const auto library = [this] { MainDatabaseProvider::InsertCloudDriveDataBatch(m_fewChanges); };
    const auto expert = [this] {
        for (const T_CloudFileTable& record : m_fewChanges) {
            m_expertMain.transaction("BEGIN IMMEDIATE;", insert, [&](sqlite3_stmt* stmt) {
                m_expertMain.check(sqlite3_reset(stmt));
                m_expertMain.require(bindAll(stmt, withoutFirst(membersOf(record))));
                m_expertMain.require(sqlite3_step(stmt) == SQLITE_DONE);
            });
        }
    };
    return {"changes-insert-each",
            fmt::format("changes of files, {} commits", m_fewChanges.size()),
            1.08,
            {contender("library", library), contender("expert", expert)},
            {}};
}

// The expert knows which statements a start runs on which file from having watched one.
Operation StoreWorkload::starting()
{
    const auto library = [this] {
        InitDataBase(m_folder.generic_wstring(), galleryName);
        DriverDBProvider().InitDatabase();
    };
    const auto prepare = [this, library] {
        openStores();
        if (m_startSteps.empty()) {
            const StatementTrace trace;
            library();
            m_startSteps = trace.steps();
        }
    };
    const auto expert = [this] {
        ExpertConnection* connection = &m_keptExpert;
        for (const StatementTrace::Step& step : m_startSteps) {
            if (step.isOpen) {
                connection->close();
                connection = step.text.ends_with("DriveModuleData.dat") ? &m_keptExpertDrive : &m_keptExpert;
                connection->open(platform::toPath(platform::toWide(step.text)));
            } else {
                connection->execute(step.text.c_str());
            }
        }
        connection->close();
    };
    const auto opens = [this] {
        return static_cast<std::size_t>(std::count_if(m_startSteps.begin(), m_startSteps.end(),
                                                      [](const StatementTrace::Step& step) { return step.isOpen; }));
    };
    return {"start",
            "start of the stores",
            1.10,
            {{"library", prepare, library, opens}, {"expert", prepare, expert, opens}},
            {}};
}

} // namespace benchmarks
