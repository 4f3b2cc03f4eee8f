// The one table of what the stores can do, for every program here.

#include "harness.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/clouddriverdb.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/dropalltables.h"
#include "databaseservice/fastaccessdbmodule.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/maindbsqlprovider.h"
#include "databaseservice/transdbconn.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"
#include "databaseservice/v10.h"
#include "platform/neverdestroyed.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "support/heldmodule.h"
#include "support/numberedrecords.h"

#include <algorithm>

using namespace DatabaseService;
using namespace DatabaseService::TransmissionDB;
using namespace testsupport;
namespace Main = DatabaseService::MainDatabaseProvider;
namespace Gallery = DatabaseService::GalleryDBProvider;
namespace Fast = DatabaseService::FastAccessDBProvider;
using platform::neverDestroyed;
using D = DriverDBProvider;
using Fm = FastAccessDB::FastAccessDBModule;
using Tm = TransmissionDBModule;
using Completed = CompletedTaskProperty;
using Download = DownloadTaskProperty;
using Upload = UploadTaskProperty;
using DriveRows = std::vector<DriveDataTable>;

namespace reliability {

namespace {

// What a call returned, as text.
// clang-format off
std::string shown(const std::string& value) { return value + ';'; }
std::string shown(const std::wstring& value) { return shown(platform::toUtf8(value)); }
// clang-format on
template <class Value> std::string shown(const Value& value)
{
    if constexpr (std::is_arithmetic_v<Value>) {
        return shown(std::to_string(value));
    } else if constexpr (requires { value.GetFileid(); }) {
        return shown(value.GetFileid() + value.GetName());
    } else if constexpr (requires { value.UniqueId; }) {
        return shown(value.UniqueId);
    } else if constexpr (requires { value.value; }) {
        return shown(value.value);
    } else if constexpr (requires { value.fileId; }) {
        return shown(value.fileId);
    } else if constexpr (requires { value.begin(); }) {
        std::string all;
        for (const auto& element : value) {
            all += shown(element);
        }
        return all;
    } else {
        return "row;";
    }
}

template <class Function>
Operation op(const char* store, const char* name, Function call, bool onOtherThread = false, bool silent = false)
{
    const auto run = [call] {
        if constexpr (std::is_void_v<decltype(call())>) {
            call();
            return std::string();
        } else {
            return shown(call());
        }
    };
    return {store, name, run, onOtherThread, silent};
}

std::filesystem::path file(const char* name)
{
    return platform::toPath(GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder()) / name;
}

TransDbConnThread& transfers()
{
    return *TransDbConnThread::GetInstance();
}

/// A call that fills a list.
template <class Record, class Call> auto reading(Call call)
{
    return [call] {
        std::vector<Record> records;
        call(records);
        return records;
    };
}

template <class Query> Operation list(const char* name, Query query)
{
    const auto call = reading<DriveDataTable>([query](DriveRows& rows) {
        CloudDriverDb::InitDatabasePath(file("DriveModuleData.dat").wstring());
        query(lent(CloudDriverDb()), rows);
    });
    return op("drive", name, call, false, true);
}

template <class Record> Operation legacy(const char* name, bool (*read)(std::vector<Record>&))
{
    const auto call = reading<Record>([read](std::vector<Record>& records) {
        V10::InitDB(file("legacy.dat").wstring());
        read(records);
    });
    return op("legacy", name, call);
}
template <class Record, bool (*read)(std::vector<Record>&, bool)> bool readOthers(std::vector<Record>& records)
{
    return read(records, false);
}

/// Posts, and waits until it is handled.
template <class Module> Operation posted(const char* store, const char* name, void (*post)(Module&))
{
    const auto call = [post] {
        static auto& module = neverDestroyed(new HeldModule<Module>);
        post(module);
        module.hold();
        module.goOn();
    };
    return op(store, name, call, true);
}

const auto readShortcuts = [](auto& rows) { Fast::FastAccessTableProvider().GetAllFastAccessRows(rows); };

} // namespace

// clang-format off
const std::vector<Store>& stores()
{
    static auto& all = neverDestroyed(std::vector<Store>{
        {"drive", "DriveModuleData.dat", "SELECT substr(fileId, 4) + 0 FROM DriveDataTable", [] { D().InitDatabase(); },
         [] { D().InsertDriveDataBatch(many<DriveDataTable>(0, 40)); D().InsertFullTaskBatch(lent(many<DriveFullTask>(0, 6)));
              D().InsertDriverConfItem(lent(one<DriveConfTable>(1))); },
         [](int number) { DriveDataTable row = one<DriveDataTable>(number); row.SetFileid(id(number)); D().InsertDriveData(row); },
         [] { return D().GetALLDriveData().size(); }},
        {"main", "main.dat", "SELECT substr(Key, 4) + 0 FROM UserProperties", Main::InitMainDatabase,
         [] { Main::InsertUserProperties(lent(many<UserProperties>(0, 8))); Main::InsertCloudDriveDataBatch(lent(many<T_CloudFileTable>(1, 9)));
              Main::InsertNotepadCardItem(1, text(1)); Main::InsertWaitHandleCardItem(1, text(1)); },
         [](int number) { Main::InsertUserProperties(platform::toWide(id(number)), L"v"); },
         [] { return Main::GetAllUserProperties().size(); }},
        {"gallery", "gallery.dat", "SELECT substr(AlbumId, 4) + 0 FROM Album", [] { Gallery::InitGalleryDatabase(L"gallery.dat"); },
         [] { Gallery::InsertGalleryFileTable(lent(many<GalleryFileTable>(0, 12))); Gallery::InsertAlbumTable(lent(many<AlbumTable>(0, 4))); },
         [](int number) { Gallery::InsertAlbumTable(lent(std::vector{AlbumTable{id(number), text(number), 0, "", "", "", 0, ""}})); },
         [] { return static_cast<std::size_t>(Gallery::CountAlbumTable()); }},
        {"shortcuts", "FastAccess.dat", "SELECT UpdataTime FROM FastAccess", [] { Fast::InitFastAccessDB(); },
         [] { std::ranges::for_each(lent(many<FastAccessTable>(1, 9)), [](auto& row) { Fast::InsertFastAccessData(&row, {}); }); },
         [](int number) { Fast::InsertFastAccessData(&lent(one<FastAccessTable>(number)), {}); },
         [] { return reading<FastAccessTable>(readShortcuts)().size(); }},
        {"transfers", "transmission.dat", "SELECT totalLength FROM CompletedTaskTable", [] { TransDbConn::DeleteTasksFromTransferTask(77); },
         [] { transfers().InsertCompletedTasks(many<Completed>(1, 9)); transfers().InsertDownloadTasks(shared<Download>(1, 9));
              transfers().InsertUploadTasks(many<Upload>(1, 9));
              transfers().ExecuteSQL("INSERT INTO TransferTask(UniqueId, TaskStatus, ModuleType, TransferType) VALUES ('id-1', 1, 0, 0), "
                                     "('id-2', 2, 0, 0), ('id-3', 3, 0, 0), ('id-4', 4, 0, 0)"); },
         [](int number) { Completed row = one<Completed>(number); row.totalLength = number; transfers().InsertCompletedTasks({row}); },
         [] { return reading<Completed>([](auto& rows) { transfers().GetAllCompletedTasks(rows, 0, 0); })().size(); }},
    });
    return all;
}

void setUp(const std::string& name)
{
    if (const auto store = std::ranges::find(stores(), name, &Store::name); store != stores().end()) {
        store->create();
        store->fill();
    } else if (name == "legacy") {
        SqliteFile older(file("legacy.dat"));
        older.exec("CREATE TABLE before(a)");
        V10::InitDB(file("legacy.dat").wstring());
        CloseKeptConnections();
        older.fill(20);
    } else if (name == "older") {
        SqliteFile(file("main.dat")).exec("CREATE TABLE before(a); INSERT INTO before VALUES(1)");
    }
}

const std::vector<Operation>& operations()
{
    static auto& known = neverDestroyed([] {
    std::vector<Operation> all{
        // --- starts and resets
        op("", "drive InitDatabase", [] { D().InitDatabase(); }),
        op("", "InitDataBase", [] { InitDataBase(GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder(), L"gallery.dat"); }),
        op("", "transfers InitDatabase", [] { transfers().InitDatabase(); }),
        op("older", "CreateTables", [] { return MainDBSQLProvider::GetInstance().CreateTables(lent(platform::toUtf8(file("main.dat")))); }),
        op("main", "DropAllTables", [] { DropAllTables::GetInstance()->DropAllTablesBasedOnDBName("main.dat"); }),
        op("main", "DeleteMainDBTable", [] { Main::DeleteMainDBTable(); }),
        op("gallery", "ResetGalleryDatabase", [] { Gallery::ResetGalleryDatabase(L"gallery.dat"); }),
        op("shortcuts", "DropFastAccessTable", [] { Fast::DropFastAccessTable(); }),
        op("transfers", "DeleteTable", [] { return TransDbConn::DeleteTable(L""); }),
        // --- the drive's writers
        op("drive", "InsertDriveData", [] { return D().InsertDriveData(one<DriveDataTable>(100)); }),
        op("drive", "InsertDriveDataBatch", [] { return D().InsertDriveDataBatch(many<DriveDataTable>(100, 112)); }),
        op("drive", "InsertDriveDataBatch with a lost row", [] { return D().InsertDriveDataBatch(many<DriveDataTable>(38, 44)); }),
        op("drive", "ReplaceDriveAllData", [] { return D().ReplaceDriveAllData(many<DriveDataTable>(1035, 1045)); }),
        op("drive", "UpdateDriveData", [] { return D().UpdateDriveData(one<DriveDataTable>(1007)); }),
        op("drive", "UpdateDriveData shared", [] { return D().UpdateDriveData(shared<DriveDataTable>(1003, 1008)); }),
        op("drive", "UpdateDriveData by names", [] { return D().UpdateDriveData("id-5", {{"name", text(900)}, {"version", "17"}}); }),
        op("drive", "UpdateCloudContentStatusByIds", [] { return D().UpdateCloudContentStatusByIds({{"id-1", 4}, {"id-20", 5}}); }),
        op("drive", "DeleteDriveDataById", [] { return D().DeleteDriveDataById(ids(2, 9)); }),
        op("drive", "DeleteAllDriveData", [] { return D().DeleteAllDriveData(); }),
        op("drive", "ExecuteSQLList", [] { return D().ExecuteSQLList(lent(std::vector<std::string>{"UPDATE DriveDataTable SET size = size + 1", "DELETE FROM DriveFullTask"})); }),
        op("drive", "NewDirDriveDataById", [] { return D().NewDirDriveDataById(many<DriveDataTable>(1001, 1004)); }),
        op("drive", "SetDriveDataSyncFlag", [] { D().SetDriveDataSyncFlag({"id-10", "id-20"}); }),
        op("drive", "DelDriveDataBySyncFlag", [] { D().SetDriveDataSyncFlag({"id-30"}); D().DelDriveDataBySyncFlag({"id-30"}); }),
        op("drive", "InsertDriverConfItem", [] { D().InsertDriverConfItem(lent(one<DriveConfTable>(2))); }),
        op("drive", "UpdateIsFirstStartInDriverConf", [] { return D().UpdateIsFirstStartInDriverConf(1, 7); }),
        op("drive", "UpdateStartCursorInDriverConf", [] { return D().UpdateStartCursorInDriverConf(1, text(14)); }),
        op("drive", "RelaceFullTaskBatch", [] { return D().RelaceFullTaskBatch(lent(many<DriveFullTask>(1004, 1009))); }),
        op("drive", "UpdateStateInFullSyncTask", [] { return D().UpdateStateInFullSyncTask("id-2", 9); }),
        op("drive", "DeleteFullTaskBatch", [] { return D().DeleteFullTaskBatch(ids(1, 4)); }),
        // --- the drive's readers
        op("drive", "GetDriveDataById", [] { return D().GetDriveDataById("id-7"); }),
        op("drive", "GetALLDriveData", [] { return D().GetALLDriveData(); }),
        op("drive", "GetDriveDataByParentId", [] { return D().GetDriveDataByParentId("id-10"); }),
        op("drive", "GetDriveDataNameByFieldId", [] { return D().GetDriveDataNameByFieldId(ids(1, 9)); }),
        op("drive", "CheckWhetherFileIdExistsInDriveData", [] { return D().CheckWhetherFileIdExistsInDriveData(ids(37, 42)).size(); }),
        op("drive", "CountDriverData", [] { return D().CountDriverData(); }),
        op("drive", "GetFolderSubFile", reading<std::string>([](auto& rows) { D().GetFolderSubFile("id-10", rows, lent(std::vector<std::string>()), 5, 0); })),
        op("drive", "GetFilesChildNodeCount", [] { return D().GetFilesChildNodeCount("root"); }),
        op("drive", "GetDriverConfItem", [] { return shown(D().GetDriverConfItem().second.startCursor); }),
        op("drive", "GetFullTask", [] { return D().GetFullTask(); }),
        list("QueryChildFile", [](CloudDriverDb& lists, DriveRows& rows) { lists.QueryChildFile("id-10", 0, 9, CLOUD_DB_SORT_NAME_ASC, rows); }),
        list("GetTotalNumber", [](CloudDriverDb& lists, DriveRows& rows) { rows.resize(static_cast<std::size_t>(lists.GetTotalNumber())); }),
        list("UpdateRecycleChild", [](CloudDriverDb& lists, DriveRows&) { lists.UpdateRecycleChild("id-10", 1); }),
        // --- settings, logs, changes, cards
        op("main", "InsertUserProperties", [] { Main::InsertUserProperties(lent(many<UserProperties>(20, 32))); }),
        op("main", "UpdateUserProperties", [] { Main::UpdateUserProperties(lent(many<UserProperties>(1004, 1012))); }),
        op("main", "DeleteAllUserProperties", [] { Main::DeleteAllUserProperties(); }),
        op("main", "GetAllUserProperties", [] { return Main::GetAllUserProperties(); }),
        op("main", "GetUserPropertieByKey", [] { return Main::GetUserPropertieByKey(L"id-3"); }),
        op("main", "InsertUserUserLog", [] { Main::InsertUserUserLog(many<UserLog>(1, 9)); }),
        op("main", "InsertUserUBAUserLog", [] { Main::InsertUserUBAUserLog(many<UBAUserLog>(1, 9)); }),
        op("main", "InsertCloudDriveDataBatch", [] { Main::InsertCloudDriveDataBatch(lent(many<T_CloudFileTable>(20, 24))); }),
        op("main", "UpdateCloudDriveVec", [] { Main::UpdateCloudDriveVec(lent(many<T_CloudFileTable>(1002, 1008))); }),
        op("main", "UpdateSelectCloudDriveData", [] { Main::UpdateSelectCloudDriveData(lent(one<T_CloudFileTable>(1003))); }),
        op("main", "DeleteCloudDriveDataBatchOrderBy", [] { Main::DeleteCloudDriveDataBatchOrderBy(lent(3)); }),
        op("main", "DeleteSameColumnFromParentId", [] { Main::DeleteSameColumnFromParentId(lent(id(1))); }),
        op("main", "GetAllCloudDriveDataBatch", [] { return Main::GetAllCloudDriveDataBatch(); }),
        op("main", "SelectOneCloudDriveData", [] { return Main::SelectOneCloudDriveData(lent(id(4))); }),
        op("main", "InsertNotepadCardItem", [] { Main::InsertNotepadCardItem(1, text(21)); }),
        op("main", "RemoveWaitHandleCardItem", [] { Main::RemoveWaitHandleCardItem(); }),
        op("main", "GetNotepadCardItem", reading<T_NotepadCard>(Main::GetNotepadCardItem)),
        // --- gallery
        op("gallery", "InsertGalleryFileTable", [] { return Gallery::InsertGalleryFileTable(lent(many<GalleryFileTable>(1008, 1020))); }),
        op("gallery", "InsertAlbumTable", [] { return Gallery::InsertAlbumTable(lent(many<AlbumTable>(1002, 1008))); }),
        op("gallery", "InsertAlbumVersionTable", [] { return Gallery::InsertAlbumVersionTable(lent(many<AlbumVersionTable>(1, 5))); }),
        op("gallery", "InsertDownloadTaskTable", [] { Gallery::InsertDownloadTaskTable(lent(many<DownloadTaskTable>(1, 9))); }),
        op("gallery", "InsertUploadTaskTable", [] { Gallery::InsertUploadTaskTable(lent(many<UploadTaskTable>(1, 9))); }),
        op("gallery", "InsertTransferCompleteCloudTaskTable", [] { Gallery::InsertTransferCompleteCloudTaskTable(lent(many<TransferCompleteCloudTaskTable>(1, 9))); }),
        op("gallery", "CountGalleryFileTable", [] { return Gallery::CountGalleryFileTable(); }),
        op("gallery", "GetGalleryFileOneData", [] { return Gallery::GetGalleryFileOneData(lent(id(7))).FileName; }),
        // --- shortcuts
        op("shortcuts", "InsertFastAccessData", [] { Fast::InsertFastAccessData(&lent(one<FastAccessTable>(14)), {}); }),
        op("shortcuts", "UpdateFastAccessData", [] { Fast::UpdateFastAccessData(&lent(one<FastAccessTable>(1003))); }),
        op("shortcuts", "DeleteFastAccessData", [] { Fast::DeleteFastAccessData(4); }),
        op("shortcuts", "GetAllFastAccessRows", reading<FastAccessTable>(readShortcuts)),
        posted<Fm>("shortcuts", "posted InsertFastAccessData", +[](Fm& m) { static auto& row = neverDestroyed(one<FastAccessTable>(14)); m.InsertFastAccessData(&row, {}); }),
        posted<Fm>("shortcuts", "posted UpdateFastAccessData", +[](Fm& m) { static auto& row = neverDestroyed(one<FastAccessTable>(1005)); m.UpdateFastAccessData(row); }),
        posted<Fm>("shortcuts", "posted DeleteFastAccessData", +[](Fm& m) { m.DeleteFastAccessData(3); }),
        // --- transfers
        op("transfers", "InsertCompletedTasks", [] { transfers().InsertCompletedTasks(many<Completed>(20, 30)); }),
        op("transfers", "UpdateCompletedTasks", [] { transfers().UpdateCompletedTasks(many<Completed>(1003, 1008)); }),
        op("transfers", "DeleteCompletedTasks", [] { transfers().DeleteCompletedTasks({2, 3, 5}); }),
        op("transfers", "InsertDownloadTasks", [] { transfers().InsertDownloadTasks(shared<Download>(20, 30)); }),
        op("transfers", "UpdateDownloadTasks", [] { transfers().UpdateDownloadTasks(many<Download>(1003, 1008)); }),
        op("transfers", "InsertUploadTasks", [] { transfers().InsertUploadTasks(many<Upload>(20, 30)); }),
        op("transfers", "UpdateUploadTaskSliceInfo", [] { transfers().UpdateUploadTaskSliceInfo(4, text(21)); }),
        op("transfers", "DeleteUploadTask", [] { transfers().DeleteUploadTask(); }),
        op("transfers", "UpdateTask", [] { transfers().UpdateTask(lent(many<DbTransferTask, std::list<DbTransferTask>>(1001, 1004))); }),
        op("transfers", "DeleteTasks", [] { transfers().DeleteTasks(2); }),
        op("transfers", "GetAllTask", reading<DbTransferTask>([](auto& rows) { transfers().GetAllTask(rows, 0, 0); })),
        op("transfers", "GetAllDownloadTasks", reading<Download>([](auto& rows) { transfers().GetAllDownloadTasks(rows, 0); })),
        op("transfers", "TransDbConn GetAllCompletedTasks", reading<Completed>([](auto& rows) { TransDbConn::GetAllCompletedTasks(rows, 0, 0); })),
        op("transfers", "CountDownloadTaskUnDone", [] { return transfers().CountDownloadTaskUnDone(); }),
        posted<Tm>("transfers", "posted UpdateCompletedTask", +[](Tm& m) { m.UpdateCompletedTask(lent(many<Completed, std::list<std::shared_ptr<Completed>>>(1003, 1008))); }),
        posted<Tm>("transfers", "posted DeleteDownloadTask", +[](Tm& m) { m.DeleteDownloadTask(lent(std::list<int>{2, 5, 7})); }),
        posted<Tm>("transfers", "posted InsertUploadTask", +[](Tm& m) { m.InsertUploadTask(lent(many<Upload, std::list<std::shared_ptr<Upload>>>(20, 30))); }),
        posted<Tm>("transfers", "posted ExecuteSQL", +[](Tm& m) { m.ExecuteSQL("UPDATE TransferTask SET TaskStatus = 9"); }),
        // --- the earlier generation's file
        legacy("GetAllGalleryFile", V10::GetAllGalleryFile), legacy("GetAllAlbum", V10::GetAllAlbum),
        legacy("GetAllAlbumLocalVersion", V10::GetAllAlbumLocalVersion),
        legacy("GetAllDownloadTask", readOthers<V10::DownloadTask, V10::GetAllDownloadTask>),
        legacy("GetAllTransferCompleteCloudTask", readOthers<V10::TransferCompleteCloudTask, V10::GetAllTransferCompleteCloudTask>),
        legacy("GetAllUploadTask", V10::GetAllUploadTask), legacy("GetAllUserProperties", V10::GetAllUserProperties),
        legacy("GetAllUserLog", V10::GetAllUserLog),
    };
        for (const auto& [name, update] : std::initializer_list<std::pair<const char*, bool (D::*)(const DriveRows&)>>{
                 {"UpdateDriveAllData", &D::UpdateDriveAllData}, {"UpdateDriveBaseData", &D::UpdateDriveBaseData},
                 {"UpdateDriveSimpleData", &D::UpdateDriveSimpleData}, {"UpdateDriveOperData", &D::UpdateDriveOperData},
                 {"UpdateSimpleAllData", &D::UpdateSimpleAllData}, {"UpdateFileLocalInfo", &D::UpdateFileLocalInfo},
                 {"RenameDriveDataById", &D::RenameDriveDataById}, {"MoveDriveDataToParent", &D::MoveDriveDataToParent},
                 {"SoftDeleteDriveDataById", &D::SoftDeleteDriveDataById}, {"HardDeleteDriveDataById", &D::HardDeleteDriveDataById},
                 {"RestoreDriveDataById", &D::RestoreDriveDataById}, {"UploadDriveDataById", &D::UploadDriveDataById}}) {
            all.push_back(op("drive", name, [call = update] { return (D().*call)(many<DriveDataTable>(1003, 1008)); }));
        }
        return all;
    }());
    return known;
}

} // namespace reliability
