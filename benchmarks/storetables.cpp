#include "storetables.h"

#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/tables/gallerycolumns.h"
#include "databaseservice/tables/maincolumns.h"
#include "enginetable.h"
#include "random.h"

#include <fmt/format.h>
#include <memory>

namespace benchmarks {

using namespace DatabaseService;

namespace {

constexpr auto galleryColumns = pick(GalleryFileColumns::table, GalleryFileColumns::All);
constexpr auto changeColumns = pick(CloudFileColumns::table, CloudFileColumns::All);
constexpr auto logColumns = pick(UserLogColumns::table, UserLogColumns::All);

constexpr std::int64_t firstTime = 1'600'000'000'000; // milliseconds

GalleryFileTable galleryFile(Random& random, std::size_t number)
{
    GalleryFileTable file;
    file.UniqueId = fmt::format("{}{:010}", random.letters(hexAlphabet, 22), number);
    file.FileId = random.letters(idAlphabet, 30);
    file.ThumbFileId = random.letters(idAlphabet, 30);
    file.LcdFileId = random.letters(idAlphabet, 30);
    file.Hash = random.letters(hexAlphabet, 64);
    file.CreateTime = firstTime + static_cast<std::int64_t>(number) * 1000;
    file.FirstUpdateTime = file.CreateTime + 5000;
    file.Size = static_cast<std::int64_t>(500'000 + random.below(6'000'000));
    file.Guid = random.letters(hexAlphabet, 32);
    file.GalleryState = 2;
    file.LocalPath = fmt::format(R"(C:\Users\someone\Pictures\Camera\IMG_{:08}.JPG)", number);
    file.OperateTime = std::to_string(file.CreateTime);
    file.FileName = fmt::format("IMG_{:08}.JPG", number);
    file.AlbumId = fmt::format("album-{}", random.below(40));
    file.IsFavorite = random.oneIn(20) ? 1 : 0;
    file.CheckSumn = random.letters(hexAlphabet, 16);
    file.Sdsmtime = std::to_string(file.FirstUpdateTime);
    file.PictureMetadata = fmt::format(R"({{"width":4032,"height":3024,"iso":{},"model":"Camera {}"}})",
                                       100 + random.below(3200), random.below(12));
    return file;
}

T_CloudFileTable change(Random& random, std::size_t number, std::size_t rows)
{
    T_CloudFileTable file;
    file.id = static_cast<std::int64_t>(number + 1);
    file.fileId = random.letters(idAlphabet, 30);
    file.deleted = "false";
    file.changeType = "file";
    file.fromDevice = "desktop";
    file.kind = "drive#change";
    file.fileName = file.localFileName = fmt::format("IMG_{:08}.JPG", number);
    file.mimeType = "image/jpeg";
    file.parentId = file.localParentId = random.letters(idAlphabet, 30);
    file.parentFolder = file.localParentFolder = fmt::format("/Photos/{}", 2000 + random.below(24));
    file.createdTime = firstTime;
    file.modifiedTime = firstTime + static_cast<std::int64_t>(rows - number); // the order of a read
    file.localModifiedTime = file.modifiedTime;
    file.size = static_cast<std::int64_t>(random.below(6'000'000));
    file.thunbnailDownloadLink = fmt::format("/thumbnails/{}?size=small", file.fileId);
    file.status = 1;
    return file;
}

UserLog logRecord(Random& random, std::size_t number)
{
    UserLog record;
    record.id = static_cast<std::int64_t>(number + 1);
    record.time = fmt::format("2024-03-{:02} {:02}:{:02}:{:02}", 1 + random.below(28), random.below(24),
                              random.below(60), random.below(60));
    record.action = fmt::format("action.{}", random.below(200));
    record.userId = "1234567890";
    record.devId = random.letters(hexAlphabet, 32);
    record.code = "0";
    record.info = R"({"result":"ok","from":"list"})";
    record.traceId = random.letters(hexAlphabet, 32);
    record.useTime = static_cast<double>(random.below(4000));
    record.startTime = static_cast<double>(firstTime + static_cast<std::int64_t>(number));
    record.model = "Desktop";
    record.romversion = "11.0";
    record.appversion = "13.2.0.300";
    record.reqsize = std::to_string(random.below(4096));
    record.rspsize = std::to_string(random.below(65536));
    record.logversion = 3;
    record.curModule = "drive";
    record.actionType = "click";
    record.nextModule = "gallery";
    record.countryCode = "DE";
    record.residenceTime = static_cast<double>(random.below(60));
    record.oprType = "1";
    return record;
}

} // namespace

TableSubject<GalleryFileTable> galleryFiles(std::size_t rows)
{
    using Table = EngineTable<GalleryFileColumns, GalleryFileTable>;
    const auto reader =
        std::make_shared<Table>(L"gallery.dat", insertStatement("INSERT OR REPLACE INTO GalleryFile (", galleryColumns),
                                selectText(galleryColumns, "FROM GalleryFile;"), galleryColumns);
    TableSubject<GalleryFileTable> subject;
    subject.name = "gallery";
    subject.title = "gallery files";
    subject.file = "gallery.dat";
    subject.records = madeUp(rows, galleryFile);
    subject.create = [] { GalleryDBProvider::InitGalleryDatabase(L"gallery.dat"); };
    subject.insert = consuming<GalleryFileTable>(
        [](std::vector<GalleryFileTable> records) { GalleryDBProvider::InsertGalleryFileTable(records); });
    subject.readAll = [reader] { return reader->readAll(); };
    subject.insertText = reader->insertText();
    subject.selectText = reader->selectText();
    return subject;
}

TableSubject<T_CloudFileTable> cloudFileChanges(std::size_t rows)
{
    using Table = EngineTable<CloudFileColumns, T_CloudFileTable>;
    const auto writer = std::make_shared<Table>(
        L"main.dat", insertStatement("INSERT INTO T_CloudFileTable (", changeColumns),
        selectText(changeColumns, "FROM T_CloudFileTable order by modifiedTime desc"), changeColumns);
    TableSubject<T_CloudFileTable> subject;
    subject.name = "changes";
    subject.title = "changes of files";
    subject.file = "main.dat";
    subject.records = madeUp(rows, [rows](Random& random, std::size_t number) { return change(random, number, rows); });
    subject.create = [] { MainDatabaseProvider::InitMainDatabase(); };
    subject.insert = consuming<T_CloudFileTable>(
        [writer](const std::vector<T_CloudFileTable>& records) { writer->insert(records); });
    subject.readAll = [] { return MainDatabaseProvider::GetAllCloudDriveDataBatch(); };
    subject.insertText = writer->insertText();
    subject.selectText = writer->selectText();
    return subject;
}

TableSubject<UserLog> userLogs(std::size_t rows)
{
    TableSubject<UserLog> subject;
    subject.name = "log";
    subject.title = "log records";
    subject.file = "main.dat";
    subject.records = madeUp(rows, logRecord);
    subject.create = [] { MainDatabaseProvider::InitMainDatabase(); };
    subject.insert = consuming<UserLog>(
        [](std::vector<UserLog> records) { MainDatabaseProvider::InsertUserUserLog(std::move(records)); });
    subject.insertText = insertStatement("INSERT INTO UserLogTable (", logColumns).sql;
    subject.selectText = selectText(logColumns, "FROM UserLogTable;");
    return subject;
}

} // namespace benchmarks
