#include "command.h"
#include "databaseservice/gallerydbprovider.h"
#include "gallery/galleryimport.h"
#include "gallery/galleryname.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/databasefiles.h"
#include "stores/session.h"
#include "stores/tablelist.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <array>
#include <iostream>
#include <set>
#include <string>

namespace dbservice {

using DatabaseService::GalleryFileTable;
namespace store = DatabaseService::GalleryDBProvider;

namespace {

struct CountedTable {
    const char* name;
    int (*count)();
};

constexpr std::array countedTables{
    CountedTable{"Album", store::CountAlbumTable},
    CountedTable{"AlbumLocalVersion", store::CountAlbumVersionTable},
    CountedTable{"GalleryFile", store::CountGalleryFileTable},
    CountedTable{"DownloadTask", store::CountDownloadTaskTable},
    CountedTable{"TransferCompleteCloudTask", store::CountTransferCompleteCloudTaskTable},
    CountedTable{"UploadTask", store::CountUploadTaskTable},
};

using FileField = MemberField<GalleryFileTable>;

constexpr std::array fileFields{
    FileField{"UniqueId", &GalleryFileTable::UniqueId},
    FileField{"FileId", &GalleryFileTable::FileId},
    FileField{"VideoThumbId", &GalleryFileTable::VideoThumbId},
    FileField{"Hash", &GalleryFileTable::Hash},
    FileField{"CreateTime", &GalleryFileTable::CreateTime, Shown::Time},
    FileField{"FirstUpdateTime", &GalleryFileTable::FirstUpdateTime, Shown::Time},
    FileField{"ThumbFileId", &GalleryFileTable::ThumbFileId},
    FileField{"LcdFileId", &GalleryFileTable::LcdFileId},
    FileField{"Size", &GalleryFileTable::Size, Shown::Bytes},
    FileField{"RecycleAlbumId", &GalleryFileTable::RecycleAlbumId},
    FileField{"RecycleTime", &GalleryFileTable::RecycleTime, Shown::Time},
    FileField{"Guid", &GalleryFileTable::Guid},
    FileField{"Expand", &GalleryFileTable::Expand},
    FileField{"GalleryState", &GalleryFileTable::GalleryState},
    FileField{"IsLocalUpload", &GalleryFileTable::IsLocalUpload},
    FileField{"Offset", &GalleryFileTable::Offset},
    FileField{"LocalPath", &GalleryFileTable::LocalPath},
    FileField{"OperateTime", &GalleryFileTable::OperateTime},
    FileField{"ContinuousNo", &GalleryFileTable::ContinuousNo},
    FileField{"ContinuousType", &GalleryFileTable::ContinuousType},
    FileField{"ContinuousName", &GalleryFileTable::ContinuousName},
    FileField{"IsDeleted", &GalleryFileTable::IsDeleted},
    FileField{"FileName", &GalleryFileTable::FileName},
    FileField{"AlbumId", &GalleryFileTable::AlbumId},
    FileField{"IsFavorite", &GalleryFileTable::IsFavorite},
    FileField{"SavedFileType", &GalleryFileTable::SavedFileType},
    FileField{"CheckSumn", &GalleryFileTable::CheckSumn},
    FileField{"Sdsmtime", &GalleryFileTable::Sdsmtime},
    FileField{"PictureMetadata", &GalleryFileTable::PictureMetadata},
    FileField{"VideoMetadata", &GalleryFileTable::VideoMetadata},
};

struct GalleryOptions {
    std::string name;
    std::string id;
    std::string folder;
    bool all = false;
    TablePage page;
};

/// Opens the store for reading, and gives the names of the counted tables that are in it. The library lays down the
/// others as soon as it is given the name, therefore in a copy.
std::set<std::string> openToRead(Session& session, const std::string& name)
{
    const std::filesystem::path file = pathFromArgument(name);
    session.readStore(file, ReadableStore::Copy::Always);
    StoreFile content(file);
    std::set<std::string> tables;
    for (const CountedTable& table : countedTables) {
        if (content.hasTable(table.name)) {
            tables.insert(table.name);
        }
    }
    store::InitGalleryDatabase(platform::toWide(name));
    session.stopIfFailed("open the gallery");
    return tables;
}

int counts(Session& session, const GalleryOptions& options)
{
    const std::set<std::string> present = openToRead(session, options.name);
    Table table({{"Table"}, {"Rows", Table::Align::Right}});
    Json json;
    for (const CountedTable& counted : countedTables) {
        const bool missing = !present.contains(counted.name);
        const int rows = missing ? 0 : counted.count();
        table.add({counted.name, missing ? "no table" : grouped(rows)});
        json[counted.name] = missing ? Json() : Json(rows);
    }
    session.stopIfFailed("count the gallery's rows");
    if (session.json()) {
        std::cout << toLine(json) << '\n';
    } else {
        table.print(std::cout, Session::outputWidth());
    }
    return 0;
}

int show(Session& session, const GalleryOptions& options)
{
    openToRead(session, options.name);
    std::string id = options.id;
    const GalleryFileTable row = store::GetGalleryFileOneData(id);
    session.stopIfFailed("read the gallery");
    if (row.UniqueId != id) {
        throw Failure("cannot find " + id + " in the gallery");
    }
    if (session.json()) {
        std::cout << toLine(toJson(fileFields, row)) << '\n';
        return 0;
    }
    toTable(fileFields, row, options.all).print(std::cout, Session::outputWidth());
    return 0;
}

/// The files in the store's folder that hold a gallery, whatever they are called.
int listGalleries(Session& session)
{
    Table table({{"Gallery"}, {"Files", Table::Align::Right}, {"Albums", Table::Align::Right}});
    for (const std::filesystem::path& name : databaseFilesIn(session.storeFolder())) {
        Database& database = session.openToRead(session.storeFolder() / name);
        const std::vector<std::string> tables = database.tables();
        const auto rowsOf = [&](const char* counted) {
            const bool isThere = std::find(tables.begin(), tables.end(), counted) != tables.end();
            return isThere ? database.number(std::string("SELECT count(*) FROM ") + counted) : 0;
        };
        if (std::find(tables.begin(), tables.end(), "GalleryFile") == tables.end()) {
            continue;
        }
        const std::int64_t files = rowsOf("GalleryFile");
        const std::int64_t albums = rowsOf("Album");
        table.add({platform::toUtf8(name), grouped(files), grouped(albums)});
        if (session.json()) {
            std::cout << toLine({{"gallery", platform::toUtf8(name)}, {"GalleryFile", files}, {"Album", albums}})
                      << '\n';
        }
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
    return 0;
}

int list(Session& session, const GalleryOptions& options)
{
    if (options.name.empty()) {
        return listGalleries(session);
    }
    const std::vector<ListedTable> tables{
        {"GalleryFile",
         {{"UniqueId"}, {"Size", Shown::Bytes}, {"CreateTime", Shown::Time}, {"FileName"}, {"LocalPath"}},
         "FileName COLLATE NameCompare, UniqueId"}};
    listTables(session, session.openToRead(session.storeFolder() / pathFromArgument(options.name)), tables,
               options.page);
    return 0;
}

void showImport(const Session& session, const SourceFolder& source, const GalleryImport::Counts& done)
{
    const std::string folder = platform::toUtf8(source.absolute({}));
    const int files = store::CountGalleryFileTable();
    const int albums = store::CountAlbumTable();
    if (session.json()) {
        std::cout << toLine({{"source", folder},
                             {"albums", done.albums},
                             {"files", done.files},
                             {"bytes", done.bytes},
                             {"written", done.written},
                             {"unchanged", done.unchanged},
                             {"failed", done.failed + done.failedAlbums},
                             {"odd", source.odd()},
                             {"lost", source.lost()},
                             {"Album", albums},
                             {"GalleryFile", files}})
                  << '\n';
        return;
    }
    std::cout << "Imported " << printable(folder) << ": " << counted(done.albums, "album", "albums") << ", "
              << counted(done.files, "picture or video", "pictures and videos") << ", " << humanSize(done.bytes)
              << " read\n";
    Table table({{"Rows"}, {"", Table::Align::Right}});
    table.add({"written", grouped(done.written)});
    table.add({"unchanged", grouped(done.unchanged)});
    table.add({"failed", grouped(done.failed + done.failedAlbums)});
    table.add({"files in the store", grouped(files)});
    table.add({"albums in the store", grouped(albums)});
    table.print(std::cout, Session::outputWidth());
}

int import(Session& session, const GalleryOptions& options)
{
    SourceFolder source(pathFromArgument(options.folder), session.storeFolder(), session.reporter(),
                        GalleryImport::wants);
    session.makeStoreFolder();
    const std::filesystem::path file = pathFromArgument(options.name);
    session.makeStore(file);
    store::InitGalleryDatabase(platform::toWide(options.name));
    session.stopIfFailed("lay down the gallery");
    GalleryImport import(session, file, source);
    import.run();
    const GalleryImport::Counts& done = import.counts();
    showImport(session, source, done);
    const std::int64_t failedRows = done.failed + done.failedAlbums;
    if (failedRows > 0) {
        session.reporter().error("cannot import everything: " + counted(failedRows, "row is", "rows are") +
                                 " not in the store as they should be");
    }
    if (source.lost() > 0) {
        session.reporter().error(
            "cannot import everything: " + counted(source.lost(), "entry or folder was", "entries or folders were") +
            " lost, see the warnings above");
    }
    return failedRows > 0 || source.lost() > 0 ? failed : 0;
}

} // namespace

Command galleryCommand()
{
    const Argument name = argument<&GalleryOptions::name>(galleryName(true));
    return {
        .name = "gallery",
        .group = group::otherStores,
        .summary = "Show the gallery, and fill it with the pictures and videos of a real folder",
        .example = "dbservice gallery counts --gallery gallery.dat",
        .parts =
            {
                {
                    .name = "counts",
                    .summary = "Show how many rows each table holds",
                    .arguments = {name},
                    .example = "dbservice gallery counts --gallery gallery.dat",
                    .run = counts,
                },
                {
                    .name = "list",
                    .summary = "List the pictures and videos by name, page by page, or the galleries there are",
                    .arguments = {argument<&GalleryOptions::name>(galleryName(false)),
                                  within<&GalleryOptions::page>(tablePageOptions())},
                    .details = "Without --gallery the galleries in the store's folder are listed, with their rows.\n"
                               "With --json each line is a row with its table and all stored columns, or a gallery.",
                    .example = "dbservice gallery list --gallery gallery.dat --count 20",
                    .run = list,
                },
                {
                    .name = "show",
                    .summary = "Show the row of one picture or video",
                    .arguments = {name, text<&GalleryOptions::id>("ID", "Its UniqueId", {.required = true}),
                                  argument<&GalleryOptions::all>("--all", "Show the fields that are empty or 0 too")},
                    .details = "Times are UTC.\n"
                               "With --json the keys are the stored columns.",
                    .example = "dbservice gallery show 5fd9a04c --gallery gallery.dat",
                    .run = show,
                },
                {
                    .name = "import",
                    .summary = "Record the pictures and videos of a real folder",
                    .arguments = {name,
                                  argument<&GalleryOptions::folder>("FOLDER", "The folder to read",
                                                                    {.required = true})},
                    .details =
                        "Makes the store where it is missing. Each folder that holds pictures or videos becomes an "
                        "album. A file is\n"
                        "known by its path: another import of it changes its row, and rows of files that are gone "
                        "stay. Files are\n"
                        "read to hash them, unless size and time are those of the last import. Links are not "
                        "followed.\n"
                        "Hash is the file's 128 bits of XXH3, times are in seconds since 1970 UTC, Sdsmtime is the "
                        "modification time\n"
                        "in nanoseconds. Files that cannot be read and rows that do not land make the exit code 1.",
                    .example = "dbservice gallery import ~/Pictures --gallery gallery.dat",
                    .run = import,
                },
            },
    };
}

} // namespace dbservice
