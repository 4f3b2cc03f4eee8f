#include "legacysample.h"

#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/v10.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace legacysample {

namespace {

using DatabaseService::int64;
using DatabaseService::uint64;

/// The file on a connection that does without all safety: it is made in one go.
class SampleFile {
public:
    explicit SampleFile(const fs::path& file)
    {
        const int code = sqlite3_open(platform::toUtf8(file).c_str(), &m_db);
        m_owner.reset(m_db);
        if (code != SQLITE_OK) {
            fail();
        }
        exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -200000; BEGIN");
    }

    void exec(const char* sql)
    {
        if (sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
            fail();
        }
    }

    sqlite3* handle() const { return m_db; }

    [[noreturn]] void fail() const
    {
        throw std::runtime_error(std::string("the sample cannot be written: ") + sqlite3_errmsg(m_db));
    }

private:
    sqlite3* m_db = nullptr;
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> m_owner{nullptr, &sqlite3_close};
};

/// Rows of one table, all columns in their order.
class Rows {
public:
    Rows(SampleFile& file, const std::string& table) : m_file(file)
    {
        sqlite3_stmt* prepared = nullptr;
        const auto prepare = [&](const std::string& sql) {
            if (sqlite3_prepare_v2(file.handle(), sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
                file.fail();
            }
            m_insert.reset(prepared);
        };
        prepare("SELECT * FROM " + table);
        std::string values = "?";
        for (int column = 1; column < sqlite3_column_count(prepared); ++column) {
            values += ",?";
        }
        prepare("INSERT INTO " + table + " VALUES (" + values + ")");
    }

    template <class... Cells> void add(const Cells&... cells)
    {
        int index = 0;
        (bind(++index, cells), ...);
        sqlite3_step(m_insert.get());
        if (sqlite3_reset(m_insert.get()) != SQLITE_OK || index != sqlite3_bind_parameter_count(m_insert.get())) {
            m_file.fail();
        }
    }

private:
    void bind(int index, std::integral auto number) { sqlite3_bind_int64(m_insert.get(), index, int64{number}); }
    void bind(int index, double number) { sqlite3_bind_double(m_insert.get(), index, number); }
    void bind(int index, std::string_view text)
    {
        sqlite3_bind_text(m_insert.get(), index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }

    SampleFile& m_file;
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> m_insert{nullptr, &sqlite3_finalize};
};

/// Digits that look like chance and are the same every time.
class Digits {
public:
    std::string_view next(std::size_t length)
    {
        for (std::size_t i = 0; i < length; i += 16) {
            std::snprintf(m_text.data() + i, 17, "%016llx", static_cast<unsigned long long>(number()));
        }
        return {m_text.data(), length};
    }

    uint64 number()
    {
        uint64 mixed = m_state += 0x9E3779B97F4A7C15U;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

private:
    uint64 m_state = 0;
    std::array<char, 81> m_text{};
};

constexpr int64 firstTime = 1'577'836'800'000;

void addGalleryFiles(SampleFile& file, int64 rows)
{
    Rows table(file, "GalleryFile");
    Digits digits;
    for (int64 i = 0; i < rows; ++i) {
        const std::string number = std::to_string(i);
        const int64 time = firstTime + i * 1000;
        const bool video = i % 10 == 0;
        const std::string name = (video ? "VID_" : "IMG_") + number + (video ? ".mp4" : ".jpg");
        const std::string uniqueId(digits.next(32));
        const std::string fileId(digits.next(40));
        const std::string album = "album-" + std::to_string(i % (rows / 1000 + 1));
        const std::string path = "D:\\Cloud Pictures\\" + album + '\\' + name;
        table.add(uniqueId, fileId, video ? fileId : std::string(), digits.next(64), time, time + 500,
                  "thumb-" + number, "lcd-" + number, 2'000'000 + i % 1'000'000, "", 0, uniqueId, "{\"rotate\":0}", 1,
                  i % 2, i % 7 == 0 ? time : 0, i % 7 == 0 ? album : std::string(), album, 0, path, time, "", 0, "", 0,
                  name, album, i % 20 == 0, video ? 2 : 1, digits.next(16), "2020-01-01 00:00:00", "",
                  video ? "" : R"({"width":4032,"height":3024,"model":"Camera"})", video ? "{\"duration\":12}" : "");
    }
}

void addAlbums(SampleFile& file, int64 rows)
{
    Rows albums(file, "Album");
    for (int64 i = 0; i <= rows / 1000; ++i) {
        const std::string id = "album-" + std::to_string(i);
        albums.add(id, "Album " + std::to_string(i), firstTime + i, "/Pictures/" + id, "1", "0", 0, "");
    }
    Rows(file, "AlbumLocalVersion")
        .add("version-1", "17", 123'456, "0", firstTime, 1, 123'457, "cursor", "recycled", firstTime, "token", "3",
             "file cursor");
}

void addTasks(SampleFile& file, int64 rows)
{
    Rows downloads(file, "DownloadTask");
    Rows completed(file, "TransferCompleteCloudTask");
    Rows uploads(file, "UploadTask");
    for (int64 i = 1; i <= rows / 100 + 3; ++i) {
        const std::string number = std::to_string(i);
        const std::string name = "IMG_" + number + ".jpg";
        const std::string path = "D:\\Cloud Pictures\\" + name;
        const std::string fileId = "file-" + number;
        const std::string uniqueId = "unique-" + number;
        downloads.add(i, name, "Cloud Pictures", "album-0", fileId, uniqueId, 3'000'000, 0, 0, 1'000'000, path, "", 2,
                      i % 3, firstTime, 0, 0.5, 0, "", 0);
        completed.add(i, name, "", "", fileId, uniqueId, 3'000'000, 0, 0, 0, path, "", 5, i % 3, firstTime,
                      std::to_string(firstTime + i), 0.0, 0, "", 0);
        uploads.add(i, name, "", "album-0", fileId, uniqueId, 3'000'000, 0, 0, 500'000, path, path, 2, i % 3,
                    std::to_string(firstTime), 0, 0.0, 1, "transfer-" + number, 0, "/Pictures/" + name);
    }
}

void addLogs(SampleFile& file, const std::string& log, int64 rows)
{
    Rows table(file, log);
    for (int64 i = 1; i <= rows; ++i) {
        table.add(i, "2020-01-01 00:00:0" + std::to_string(i % 10), "open", "user", "device", "0", "", "",
                  "trace-" + std::to_string(i), 1.5, 2.25, "model", "rom", "10.1", "12", "34", 1, i % 2, "gallery",
                  "click", "viewer", "de", 60.75, "1", 0);
    }
}

void addProperties(SampleFile& file)
{
    Rows table(file, "UserProperties");
    int64 id = 0;
    for (const auto& [key, value] : {std::pair{"Theme", "light"}, std::pair{"Language", "de-DE"},
                                     std::pair{"SyncCloudFolder", "D:\\Cloud"}, std::pair{"AutoStart", "1"}}) {
        table.add(++id, key, value);
    }
}

/// What a file may hold and no client of ours would have written.
constexpr std::array uglyRows{
    // Nothing but a key: NULL in all other columns.
    "INSERT INTO GalleryFile (UniqueId) VALUES ('ugly-null')",
    // A NULL where the reader has no cell for it; the texts behind it move.
    "INSERT INTO GalleryFile (UniqueId, FileName, VideoDownloadLocalPath, PictureMetadata, VideoMetadata) "
    "VALUES ('ugly-shifted', 'shifted.jpg', 'D:\\video', '{\"picture\":1}', '{\"video\":1}')",
    // Text for numbers and numbers for text.
    "INSERT INTO GalleryFile (UniqueId, FileId, CreateTime, Size, RecycleTime, GalleryState, Offset, FileName, "
    "IsDeleted, Sdsmtime) VALUES (4711, 42, 'yesterday', '12 MB', 1.5, 'new', '', 815, 'no', 20200101)",
    // A blob is no cell either; all that is behind it moves.
    "INSERT INTO GalleryFile (UniqueId, FileId, FileName, Sdsmtime) VALUES ('ugly-blob', x'00FF', 'blob.jpg', '')",
    "INSERT INTO GalleryFile (UniqueId, FileId, FileName, Sdsmtime) VALUES (x'01', 'ugly-blob-key', 'blob.jpg', '')",
    // Numbers at the limits and beyond 32 bits.
    "INSERT INTO GalleryFile (UniqueId, CreateTime, Size, GalleryState, OperateTime, IsFavorite, Sdsmtime) VALUES "
    "('ugly-huge', 9223372036854775807, -9223372036854775808, 4294967298, -9223372036854775808, 2147483648, '')",
    // Keys that are one after the reader's hands: it stops at a NUL and repairs what is not UTF-8.
    "INSERT INTO GalleryFile (UniqueId, FileName, Sdsmtime) VALUES ('ugly-nul' || char(0) || '1', 'first.jpg', '')",
    "INSERT INTO GalleryFile (UniqueId, FileName, Sdsmtime) VALUES ('ugly-nul' || char(0) || '2', "
    "'nul' || char(0) || '.jpg', '')",
    "INSERT INTO GalleryFile (UniqueId, FileName, Sdsmtime) VALUES (CAST(x'75676C792DFF' AS TEXT), 'ff.jpg', '')",
    "INSERT INTO GalleryFile (UniqueId, FileName, Sdsmtime) VALUES (CAST(x'75676C792DFE' AS TEXT), "
    "CAST(x'C328' AS TEXT), '')",
    "INSERT INTO GalleryFile (UniqueId, FileName, Sdsmtime) VALUES ('', 'no key.jpg', '')",
    "INSERT INTO Album VALUES ('', 'no key', 'today', CAST(x'FF' AS TEXT), 5, 'a' || char(0) || 'b', "
    "9223372036854775807, '')",
    "INSERT INTO AlbumLocalVersion VALUES ('', '', 5000000000, '', 'never', 1, -5000000000, '', '', "
    "9223372036854775807, '', '', '')",
    // Ids beyond 32 bits, which become ids of others, and positions of large files.
    "INSERT INTO DownloadTask VALUES (4294967297, 'huge.bin', '', '', '', 'ugly-download', 9223372036854775807, "
    "'fast', "
    "0, 1099511627776, '', '', 0, 1, 0, 0, 'abc', 0, '', 0)",
    "INSERT INTO UploadTask VALUES (4294967297, 'huge.bin', '', '', '', 'ugly-upload', 1.5, 0, 0, -1099511627776, '', "
    "'', 'waiting', 1, 'noon', 9223372036854775807, 1e300, 0, '', 0, '')",
    // Ends that are times, words, dates, and beyond all numbers.
    "INSERT INTO TransferCompleteCloudTask SELECT 4294967295 + row_number() OVER (), 'end.jpg', '', '', '', "
    "'ugly-end ' || column1, 0, 0, 0, 0, '', '', 0, 1, 0, column1, 0, 0, '', 0 FROM (VALUES (''), (' 12 '), ('-5'), "
    "('1577836800000.75'), ('1.5e12'), ('99999999999999999999'), ('12 o''clock'), ('2020-01-01 00:00:00'), ('noon'))",
    // Settings: one twice with different values, one twice with the same, and without a key.
    "INSERT INTO UserProperties ([key], Value) VALUES ('Twice', 'old'), ('Twice', 'new'), ('Again', '1'), "
    "('Again', '1'), ('', 'no key'), (CAST(x'FF' AS TEXT), 'a' || char(0) || 'b')",
    // An id beyond 32 bits, numbers beyond them, times as the reader takes them; then one that ends the table.
    "INSERT INTO UserLog SELECT 4294967297, 'ugly-id', Action, UserId, DevId, Code, Info, Extend, TraceId, -1.9, "
    "1e300, "
    "Model, Romversion, Appversion, Reqsize, Rspsize, 5000000000, 'yes', CurModule, Actiontype, NextModule, "
    "CountryCode, "
    "'0x10', OprType, 4294967298 FROM UserLog WHERE Id = 1",
    "INSERT INTO UserLog SELECT 4294967298, 'ugly-soon', Action, UserId, DevId, Code, Info, Extend, TraceId, 'soon', "
    "StartTime, Model, Romversion, Appversion, Reqsize, Rspsize, 1, 1, CurModule, Actiontype, NextModule, CountryCode, "
    "1, OprType, 0 FROM UserLog WHERE Id = 1",
    "INSERT INTO UserLog SELECT 4294967299, 'ugly-behind', Action, UserId, DevId, Code, Info, Extend, TraceId, "
    "UseTime, "
    "StartTime, Model, Romversion, Appversion, Reqsize, Rspsize, 1, 1, CurModule, Actiontype, NextModule, CountryCode, "
    "ResidenceTime, OprType, 0 FROM UserLog WHERE Id = 1",
};

} // namespace

void write(const fs::path& file, int64 rows, Content content)
{
    fs::remove(file);
    std::ofstream(file).close(); // the reader lays down tables in files that are there
    if (!DatabaseService::V10::InitDB(platform::toWide(platform::toUtf8(file)))) {
        throw std::runtime_error("the sample cannot be written: no tables could be laid down");
    }
    SampleFile sample(file);
    addGalleryFiles(sample, rows);
    addAlbums(sample, rows);
    addTasks(sample, rows);
    addProperties(sample);
    addLogs(sample, "UserLog", rows / 10 + 3);
    if (content == Content::Ugly) {
        addLogs(sample, "UBAUserLog", rows / 50 + 3); // which no reader reaches
        for (const char* const row : uglyRows) {
            sample.exec(row);
        }
    }
    sample.exec("COMMIT");
}

void putInTheWay(const std::wstring& galleryName)
{
    namespace mainstore = DatabaseService::MainDatabaseProvider;
    namespace gallery = DatabaseService::GalleryDBProvider;

    mainstore::InitMainDatabase();
    mainstore::UpdateUserProperties(L"Theme", L"dark");
    std::vector<DatabaseService::UserLog> logs(2);
    logs[0].id = 1;
    logs[0].action = "stands where a legacy record wants to go";
    logs[1] = logs[0];
    logs[1].id = 900'000'000;
    mainstore::InsertUserUserLog(logs);

    gallery::InitGalleryDatabase(galleryName);
    DatabaseService::AlbumTable album;
    album.AlbumId = "album-0";
    album.AlbumName = "Renamed since";
    std::vector albums{album};
    gallery::InsertAlbumTable(albums);
    DatabaseService::DownloadTaskTable task;
    task.Id = 1;
    task.UniqueId = "another task";
    std::vector tasks{task};
    gallery::InsertDownloadTaskTable(tasks);
}

} // namespace legacysample
