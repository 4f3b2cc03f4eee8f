// The legacy file: what its readers make of each table, and of files that are not what they should be.

#include "databaseservice/keptconnections.h"
#include "databaseservice/v10.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/recordfields.h"
#include "support/storetest.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>

using namespace testsupport;
using namespace DatabaseService::V10;
using DatabaseService::ListKeptConnections;

namespace {

struct Table {
    std::string name;
    std::string kinds; ///< Text, Moment, Integer of 32 bits, Long one, Real, Double
    std::vector<std::string> columns;
    std::function<std::optional<Rows>()> read;

    bool isText(std::size_t at) const { return kinds[at] == 'T' || kinds[at] == 'M'; }
    bool isFraction(std::size_t at) const { return kinds[at] == 'R' || kinds[at] == 'D'; }

    std::string type(std::size_t at) const
    {
        const std::string text = name == "GalleryFile" ? "VARCHAR" : "TEXT";
        return std::map<char, std::string>{{'M', "DATETIME"}, {'R', "REAL"}, {'D', "DOUBLE"}, {'T', text}}
            .try_emplace(kinds[at], "INTEGER")
            .first->second;
    }

    /// Values that differ from column to column.
    std::vector<std::string> row() const
    {
        std::vector<std::string> values;
        for (std::size_t at = 0; at < columns.size(); ++at) {
            const std::string number = std::to_string(at + 100);
            values.push_back(isText(at)             ? textCell(columns[at] + " \xE5\x90\x8D")
                                 : isFraction(at)   ? number + ".5"
                                 : kinds[at] == 'L' ? "5000000" + number
                                                    : '-' + number);
        }
        return values;
    }

    std::string insert(const std::vector<std::string>& values) const
    {
        return "INSERT INTO " + name + " VALUES(" + joined(values) + ");";
    }

    /// The table anew without constraints, its columns of their own types or of another.
    std::string createPlain(const char* otherType = nullptr) const
    {
        std::vector<std::string> declared;
        for (std::size_t at = 0; at < columns.size(); ++at) {
            declared.push_back('"' + columns[at] + "\" " + (otherType != nullptr ? otherType : type(at)));
        }
        return "DROP TABLE IF EXISTS " + name + "; CREATE TABLE " + name + '(' + joined(declared) + ");";
    }
};

template <class Record, class Read>
Table table(const char* name, const char* kinds, const std::vector<RecordField<Record>>& fields, Read reader)
{
    const auto read = [=]() -> std::optional<Rows> {
        std::vector<Record> records;
        if (!reader(records)) {
            return std::nullopt;
        }
        return mapped(records, [&](const Record& record) {
            return mapped(fields, [&](const RecordField<Record>& field) { return field.cell(record); });
        });
    };
    return {name, kinds, mapped(fields, &RecordField<Record>::column), read};
}

// clang-format off
template <class T> std::vector<RecordField<T>> taskFields()
{
    auto fields = FIELDS(T, &T::Id, &T::FileName, &T::RelativePath, &T::AlbumId, &T::FileId, &T::UniqueId,
        &T::TotalLength, &T::Speed, &T::OldPosition, &T::Position, &T::LocalPath, &T::OriginalFileLocalPath,
        &T::TaskStatus, &T::TaskType, &T::StartTime, &T::EndTime, &T::RealTime, &T::IsFastUpload, &T::TransferId,
        &T::IsLocalFileDownload);
    if constexpr (std::is_same_v<T, UploadTask>) {
        fields.emplace_back("ServerPath", &T::ServerPath);
    }
    return fields;
}

template <class T> auto bothHalves(bool (*read)(std::vector<T>&, bool))
{
    return [read](std::vector<T>& records) { return read(records, true) && read(records, false); };
}

using G = GalleryFile;
using V = AlbumLocalVersion;
using P = UserProperties;
using L = UserLog;

// In the order in which they are laid down; nothing reads the second table of logs.
const Table tables[] = {
    table<G>("GalleryFile", "TTTTLLTTLTLTTIILTTITLTITITTIITMTTT",
        FIELDS(G, &G::UniqueId, &G::FileId, &G::VideoThumbId, &G::Hash, &G::CreateTime, &G::FirstUpdateTime,
        &G::ThumbFileId, &G::LcdFileId, &G::Size, &G::RecycleAlbumId, &G::RecycleTime, &G::Guid, &G::Expand,
        &G::GalleryState, &G::IsLocalUpload, &G::LocalUploadTime, &G::OriginalAlbumId, &G::ServerAlbumId, &G::Offset,
        &G::LocalPath, &G::OperateTime, &G::CoverUniqueId, &G::ContinuousType, &G::ContinuousName, &G::IsDeleted,
        &G::FileName, &G::AlbumId, &G::IsFavorite, &G::SavedFileType, &G::CheckSumn, &G::Sdsmtime,
        &G::VideoDownloadLocalPath, &G::PictureMetadata, &G::VideoMetadata), GetAllGalleryFile),
    table<V>("AlbumLocalVersion", "TTLTLILTTLTTT",
        FIELDS(V, &V::AlbumVersion, &V::AlbumListVersion, &V::LatestVersion, &V::ClearVersion, &V::UpdateTime,
        &V::HasDownAll, &V::TempVersion, &V::Cursor, &V::RecyCursor, &V::BriefingTime, &V::SyncToken,
        &V::CloudPhotoVersion, &V::FileCursor), GetAllAlbumLocalVersion),
    table<Album>("Album", "TTLTTTIT",
        FIELDS(Album, &Album::AlbumId, &Album::AlbumName, &Album::CreateTime, &Album::Lpath, &Album::AlbumType,
        &Album::Operation, &Album::IsDelete, &Album::Expand), GetAllAlbum),
    table<DownloadTask>("DownloadTask", "ITTTTTLILLTTIILLRITI", taskFields<DownloadTask>(),
                        bothHalves(GetAllDownloadTask)),
    table<TransferCompleteCloudTask>("TransferCompleteCloudTask", "ITTTTTLILLTTIILTRITI",
                                     taskFields<TransferCompleteCloudTask>(),
                                     bothHalves(GetAllTransferCompleteCloudTask)),
    table<UploadTask>("UploadTask", "ITTTTTLILLTTIITLRITIT", taskFields<UploadTask>(), GetAllUploadTask),
    table<P>("UserProperties", "ITT", FIELDS(P, &P::Id, &P::key, &P::Value), GetAllUserProperties),
    table<L>("UserLog", "ITTTTTTTTDDTTTTTLLTTTTDTI",
        FIELDS(L, &L::Id, &L::Time, &L::Action, &L::UserId, &L::DevId, &L::Code, &L::Info, &L::Extend, &L::TraceId,
        &L::UseTime, &L::StartTime, &L::Model, &L::Romversion, &L::Appversion, &L::Reqsize, &L::Rspsize, &L::Logversion,
        &L::TraceEndFlag, &L::CurModule, &L::Actiontype, &L::NextModule, &L::CountryCode, &L::ResidenceTime,
        &L::OprType, &L::IsMaintenanceLog), GetAllUserLog),
};
// clang-format on
const Table& gallery = tables[0];
const Table& uploads = tables[5];
const Table& userLog = tables[7];

struct Legacy : StoreTest {
    Legacy() { writeBytes(m_path, {}); }
    ~Legacy() override { InitDB(wide(path(L"missing"))); } // the path lasts as long as the process

    /// A path as it is kept.
    static std::string shown(std::filesystem::path path)
    {
        std::string text = platform::toUtf8(path);
        std::replace(text.begin(), text.end(), '/', '\\');
        return text;
    }

    /// Whether each reader returns `expected`.
    static void expectAll(bool expected)
    {
        std::vector<UBAUserLog> records;
        EXPECT_EQ(GetAllUBAUserLog(records), expected);
        for (const Table& table : tables) {
            EXPECT_EQ(table.read().has_value(), expected) << table.name;
        }
    }

    const std::filesystem::path m_path = path(L"legacy \xE9.db");
    const std::wstring m_name = wide(m_path);
};

struct LegacyTables : Legacy {
    LegacyTables() { EXPECT_TRUE(InitDB(m_name)); }

    SqliteFile file{m_path};
};

} // namespace

TEST_F(LegacyTables, AreLaidDownAndReadWhole)
{
    std::string order;
    for (const Table& table : tables) {
        SCOPED_TRACE(table.name);
        order += table.name + ',';
        Rows kinds;
        for (std::size_t at = 0; at < table.columns.size(); ++at) {
            const char* const needed = at > 0 && &table == &gallery ? "0" : "1";
            kinds.push_back({textCell(table.columns[at]), textCell(table.type(at)), needed, at == 0 ? "1" : "0"});
        }
        EXPECT_EQ(file.query("SELECT name, type, \"notnull\", pk FROM pragma_table_info('" + table.name + "')"), kinds);
        EXPECT_EQ(table.read(), Rows());
        file.exec(table.insert(table.row()));
        EXPECT_EQ(table.read(), Rows{table.row()});
    }
    const std::string named = "FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'";
    EXPECT_EQ(file.value("SELECT group_concat(name, ',') " + named), textCell(order + "UBAUserLog"));
    EXPECT_EQ(file.value("SELECT count(*) " + named + " AND sql LIKE '%(Id INTEGER PRIMARY KEY AUTOINCREMENT %'"), "6");
    EXPECT_EQ(file.value("SELECT count(DISTINCT replace(sql, 'UBAUserLog', 'UserLog')) " + named +
                         " AND name LIKE '%UserLog'"),
              "1");
}

TEST_F(LegacyTables, RowsAreAppendedAndChosenAsTheReaderSays)
{
    for (const std::string table : {"DownloadTask", "TransferCompleteCloudTask"}) {
        for (const char* type : {"1", "0", "-1", "4294967297", "'text'", "1.5"}) {
            file.exec("INSERT INTO " + table + " VALUES(NULL,'','','','','',0,0,0,0,'','',0," + type +
                      ",0,0,0,0,'',0)");
        }
    }
    for (const bool isOne : {true, false}) {
        std::vector<DownloadTask> downloads;
        std::vector<TransferCompleteCloudTask> transfers;
        EXPECT_TRUE(GetAllDownloadTask(downloads, isOne) && GetAllTransferCompleteCloudTask(transfers, isOne));
        EXPECT_EQ(downloads.size(), isOne ? 1U : 5U);
        EXPECT_EQ(transfers.size(), downloads.size());
        EXPECT_EQ(std::pair(downloads.at(0).Id, transfers.at(0).Id), isOne ? std::pair(1, 1) : std::pair(2, 2));
    }
    file.exec(tables[2].insert(tables[2].row()) + userLog.insert(userLog.row()));
    std::vector<Album> albums(1);
    EXPECT_TRUE(GetAllAlbum(albums) && GetAllAlbum(albums));
    EXPECT_EQ(albums.size(), 3U);

    file.exec("INSERT INTO UBAUserLog SELECT * FROM UserLog; UPDATE UBAUserLog SET Time = 'never read'");
    std::vector<UBAUserLog> records;
    EXPECT_TRUE(GetAllUBAUserLog(records));
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(textCell(records[0].Time), userLog.row()[1]);
    EXPECT_EQ(records[0].ResidenceTime, 122.5);
}

TEST_F(LegacyTables, CellsOfTheWrongKindAndNullsAreEmpty)
{
    for (const Table& table : tables) {
        SCOPED_TRACE(table.name);
        file.exec(table.createPlain("")); // values stay as they are given
        Rows expected;
        std::vector<std::string> nulls;
        std::vector<std::string> nothing;
        for (std::size_t at = 0; at < table.columns.size(); ++at) {
            const std::string empty = table.isText(at) ? textCell("") : std::string("0");
            const bool chooses = table.columns[at] == "TaskType";
            nulls.emplace_back(chooses ? "2" : "NULL");
            nothing.push_back(chooses ? "2" : empty);
            if (table.kinds[at] != 'D') {
                auto values = table.row();
                values[at] = table.isText(at) ? "7" : table.isFraction(at) ? "8" : "'7'";
                file.exec(table.insert(values));
                values[at] = empty;
                expected.push_back(values);
            }
        }
        EXPECT_EQ(table.read(), expected) << "the cursor moves on";

        file.exec(table.createPlain() + table.insert(nulls));
        if (&table == &userLog) {
            EXPECT_THROW(table.read(), std::invalid_argument);
        } else {
            EXPECT_EQ(table.read(), Rows{nothing});
        }
    }
}

TEST_F(LegacyTables, TimesAndRealNumbers)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const std::string none = "invalid: invalid stod argument";
    const std::string beyond = "out of range: stod argument out of range";
    struct Case {
        std::string text;
        double value;
        std::string thrown{};
    };
    // clang-format off
    const Case cases[]{
        {"12.5", 12.5}, {" \t\n\v\f\r+7,5", 7}, {"-.5e1x", -5}, {"1e+", 1}, {"1e39", 1e39}, {"5e-324", 5e-324},
        {"0e999999999999999999999", 0}, {"0x1.8p3", 12}, {"-0X.8", -0.5}, {"0x", 0}, {"0x-1", 0}, {"0xinf", 0},
        {"Inf", infinite}, {"-infinity and beyond", -infinite}, {"nan(1)x", std::nan("")},
        {"", 0, none}, {" ", 0, none}, {"abc", 0, none}, {"+-5", 0, none}, {"--5", 0, none}, {".e5", 0, none},
        {"\xC2\xA0" "5", 0, none}, {"1e999", infinite, beyond}, {"-1e999999999999999999999", -infinite, beyond},
        {std::string(400, '9'), infinite, beyond}, {"0." + std::string(400, '0') + '1', 0, beyond},
        {"2e-324", 0, beyond}, {"0x1p1024", infinite, beyond}, {"0x1p-1076", 0, beyond},
    };
    // clang-format on
    const auto same = [](double left, double right) {
        return left == right || (std::isnan(left) && std::isnan(right));
    };
    file.exec(userLog.createPlain("TEXT") + uploads.createPlain("TEXT"));
    file.exec("PRAGMA busy_timeout = 0"); // nothing stays locked
    const auto readLogs = [&](const std::vector<std::string>& values, std::vector<UserLog>& logs) {
        file.exec("DELETE FROM UserLog;" + userLog.insert(userLog.row()) + userLog.insert(values) +
                  userLog.insert(userLog.row()));
        try {
            EXPECT_TRUE(GetAllUserLog(logs));
        } catch (const std::invalid_argument& error) {
            return "invalid: " + std::string(error.what());
        } catch (const std::out_of_range& error) {
            return "out of range: " + std::string(error.what());
        }
        return std::string();
    };
    const auto withText = [](const Table& table, std::size_t column, const std::string& text) {
        std::vector<std::string> values = table.row();
        values[column] = textCell(text);
        return values;
    };
    for (const auto& [text, value, thrown] : cases) {
        SCOPED_TRACE(text);
        for (const auto& [column, member] :
             {std::pair(9U, &UserLog::UseTime), {10, &UserLog::StartTime}, {22, &UserLog::ResidenceTime}}) {
            std::vector<UserLog> logs;
            EXPECT_EQ(readLogs(withText(userLog, column, text), logs), thrown);
            ASSERT_EQ(logs.size(), thrown.empty() ? 3U : 1U) << "rows before a bad one stay";
            EXPECT_TRUE(!thrown.empty() || same(logs[1].*member, value));
        }
        file.exec("DELETE FROM UploadTask;" + uploads.insert(withText(uploads, 16, text)));
        std::vector<UploadTask> tasks;
        EXPECT_TRUE(GetAllUploadTask(tasks));
        EXPECT_TRUE(same(tasks.at(0).RealTime, static_cast<float>(value))) << tasks[0].RealTime;
    }
}

TEST_F(Legacy, WithoutAFileTheReadersAreOff)
{
    EXPECT_FALSE(InitDB(wide(path(L"missing/legacy.db"))));
    EXPECT_TRUE(InitDB({}));
    expectAll(false);
    EXPECT_TRUE(InitDB(m_name));
    EXPECT_TRUE(InitDB({})) << "changes nothing";
    expectAll(true);
    EXPECT_FALSE(std::filesystem::exists(path(L"missing")));
}

TEST_F(Legacy, EachConnectionIsKeptAndItsPathHasBackslashes)
{
    std::filesystem::create_directory(path(L"sub"));
    writeBytes(path(L"sub/legacy.db"), {});
    for (const wchar_t* rest : {L"/sub/legacy.db", L"/sub\\legacy.db"}) {
        const std::size_t before = ListKeptConnections().size();
        EXPECT_TRUE(InitDB(wide(m_folder.path()) + rest));
        EXPECT_EQ(tables[2].read(), Rows());
        const auto kept = ListKeptConnections();
        ASSERT_EQ(kept.size(), before + 2);
        EXPECT_EQ(platform::toUtf8(kept.back().database), shown(path(L"sub/legacy.db")));
        EXPECT_EQ(kept.back().reason, "the reader of the legacy file leaves its connections open");
    }
    EXPECT_GT(std::filesystem::file_size(path(L"sub/legacy.db")), 0U);
}

TEST_F(Legacy, FilesThatAreNone)
{
    const std::size_t kept = ListKeptConnections().size();
    const auto file = path(L"sub/legacy.db");
    std::filesystem::create_directories(file);
    std::vector<Album> albums;
    EXPECT_FALSE(InitDB(wide(file))) << "a folder";
    EXPECT_FALSE(GetAllAlbum(albums));
    const ExpectedLine open{"DatabaseService::V10::DataMigrationDB::OpenLegacyDatabase",
                            "the legacy file " + shown(file) + " could not be opened: unable to open database file"};
    EXPECT_TRUE(m_log.failuresWere({open, open}));
    EXPECT_EQ(ListKeptConnections().size(), kept) << "a failed open leaves nothing";
    std::filesystem::remove_all(path(L"sub"));
    EXPECT_TRUE(GetAllAlbum(albums)) << "file and folder are created";
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
    EXPECT_TRUE(m_log.failuresWere({}));

    const std::string foreign = "\x89PNG" + std::string(5000, 'p');
    writeBytes(m_path, foreign);
    const ExpectedLine prepare = EngineLines("").prepare;
    const ExpectedLine unusable{"DatabaseService::V10::PrepareLegacyTables",
                                "no table could be laid down in the legacy file " + shown(m_path)};
    EXPECT_FALSE(InitDB(m_name));
    EXPECT_FALSE(GetAllAlbum(albums));
    EXPECT_TRUE(m_log.failuresWere({prepare, unusable, prepare, unusable, prepare}));
    EXPECT_EQ(bytesOf(m_path), foreign);
}
