#include "migration/legacymigration.h"

#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "legacysample/legacysample.h"
#include "support/faultydisk.h"
#include "support/filebytes.h"
#include "support/process.h"
#include "support/storetest.h"

#include <algorithm>
#include <map>
#include <optional>

namespace fs = std::filesystem;

using namespace testsupport;
using migration::Report;
using migration::TableReport;

namespace {

constexpr int sampleRows = 40;

/// What a report says of a table, in this order.
const std::vector<int64_t TableReport::*> numbers{
    &TableReport::inLegacy, &TableReport::read,       &TableReport::written, &TableReport::alreadyThere,
    &TableReport::kept,     &TableReport::renumbered, &TableReport::failed,  &TableReport::inStore,
    &TableReport::clamped,  &TableReport::notNumbers, &TableReport::mended,
};

using Summary = std::map<std::string, std::vector<int64_t>>;

Summary summaryOf(const Report& report)
{
    Summary summary;
    for (const TableReport& table : report.tables) {
        for (const auto number : numbers) {
            summary[std::string(table.table)].push_back(table.*number);
        }
    }
    return summary;
}

struct Migration : StoreTest {
    Migration() : m_disk(std::in_place)
    {
        useStore(m_store);
        m_plan.legacyFile = sample();
    }

    void useStore(const fs::path& store)
    {
        fs::create_directory(store);
        useFolder(store);
        m_plan.mainFile = store / "main.dat";
        m_plan.galleryFile = store / "gallery.dat";
    }

    /// One file for all tests of the process, which only read it.
    static fs::path sample()
    {
        static const TestFolder folder;
        static const fs::path file = [] {
            legacysample::write(folder.path() / "legacy.dat", sampleRows);
            return folder.path() / "legacy.dat";
        }();
        return file;
    }

    fs::path copyOfSample(const std::string& name) const
    {
        fs::copy_file(sample(), m_folder.path() / name);
        return m_folder.path() / name;
    }

    /// Overwrites the page with the last of the ordinary pictures.
    static void damageFiles(const fs::path& file)
    {
        std::string bytes = bytesOf(file);
        bytes.replace(bytes.rfind("IMG_39.jpg") / 4096 * 4096, 4096, 4096, '\xEE');
        writeBytes(file, bytes);
    }

    Report run() const { return migration::run(m_plan); }
    Report runAgain()
    {
        m_plan.again = true;
        return run();
    }

    std::string errorOf(const fs::path& legacy)
    {
        m_plan.legacyFile = legacy;
        try {
            run();
        } catch (const migration::Error& error) {
            return error.what();
        }
        return {};
    }

    std::string inGallery(const std::string& query) const { return SqliteFile(m_plan.galleryFile).value(query); }

    /// Every table of both files with its number of rows.
    std::map<std::string, std::string> counts() const
    {
        std::map<std::string, std::string> counts;
        for (const fs::path& name : {m_plan.mainFile, m_plan.galleryFile}) {
            SqliteFile file(name);
            for (const auto& row : file.query("SELECT name FROM sqlite_master WHERE type = 'table'")) {
                counts[name.stem().string() + row[0]] = file.value("SELECT COUNT(*) FROM " + row[0]);
            }
        }
        return counts;
    }

    std::optional<FaultyDisk> m_disk; // for its speed
    const fs::path m_store = m_folder.path() / "store";
    migration::Plan m_plan;
};

} // namespace

TEST_F(Migration, ReportTellsOfEveryTable)
{
    legacysample::putInTheWay(L"gallery.dat");
    std::vector<double> progress;
    const Report report = migration::run(m_plan, [&](double done, std::string_view) { progress.push_back(done); });

    const Summary expected{
        // legacy, read, written, there, kept, renumbered, failed, in store, clamped, not numbers, mended
        {"GalleryFile", {51, 51, 49, 0, 0, 0, 2, 49, 0, 0, 3}},
        {"AlbumLocalVersion", {2, 2, 2, 0, 0, 0, 0, 2, 1, 0, 0}},
        {"Album", {2, 2, 1, 1, 1, 0, 0, 2, 0, 0, 0}},
        {"DownloadTask", {4, 4, 4, 0, 0, 2, 0, 5, 1, 0, 0}},
        {"TransferCompleteCloudTask", {12, 12, 12, 0, 0, 3, 0, 12, 1, 3, 0}},
        {"UploadTask", {4, 4, 4, 0, 0, 1, 0, 4, 1, 0, 0}},
        {"UserProperties", {10, 10, 7, 2, 1, 0, 1, 9, 0, 0, 0}}, // with the one that remembers
        {"UserLogTable", {10, 8, 8, 0, 0, 2, 0, 10, 1, 0, 0}},
        {"UBAUserLog", {10, 8, 8, 0, 0, 1, 0, 8, 1, 0, 0}},
    };
    EXPECT_EQ(summaryOf(report), expected);
    EXPECT_EQ(report.outOfReach, 3);
    EXPECT_EQ(report.lost, 2 + 1 + 2 + 2 + 3);
    EXPECT_TRUE(report.remembered);
    EXPECT_FALSE(report.isWhole());
    EXPECT_EQ(report.tables[7].trouble, "a time that is no number ended the table (invalid stod argument)");
    EXPECT_EQ(report.tables[0].trouble, "2 of its rows have the key of a later row");
    using Dropped = decltype(report.tables[0].dropped);
    EXPECT_EQ(
        report.tables[0].dropped,
        (Dropped{
            {"LocalUploadTime", 6}, {"OriginalAlbumId", 6}, {"ServerAlbumId", 40}, {"VideoDownloadLocalPath", 1}}));
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_EQ(progress.back(), 1);
}

// What becomes of each ugly row, and of what stood in the way.
TEST_F(Migration, UglyRowsComeOverAsFarAsTheyCan)
{
    legacysample::putInTheWay(L"gallery.dat");
    run();
    const std::pair<const char*, const char*> cases[]{
        {"SELECT FileId, CreateTime, Sdsmtime, OperateTime, ContinuousNo, VideoMetadata FROM GalleryFile "
         "WHERE UniqueId = 'ugly-null'",
         "''|0|''|'0'|0|''"},
        {"SELECT FileName, Sdsmtime, PictureMetadata, VideoMetadata FROM GalleryFile WHERE UniqueId = 'ugly-shifted'",
         R"('shifted.jpg'|''|'{"picture":1}'|'{"video":1}')"},
        {"SELECT FileId, CreateTime, Size, RecycleTime, GalleryState, FileName, IsDeleted, Sdsmtime FROM GalleryFile "
         "WHERE UniqueId = '4711'",
         "'42'|0|0|0|0|'815'|0|'20200101'"},
        {"SELECT CreateTime, Size, GalleryState, OperateTime, IsFavorite FROM GalleryFile WHERE UniqueId = 'ugly-huge'",
         "9223372036854775807|-9223372036854775808|2|'-9223372036854775808'|-2147483648"},
        {"SELECT UniqueId, FileName FROM GalleryFile WHERE UniqueId IN ('ugly-nul', 'ugly-' || char(65533), '', "
         "'ugly-blob-key') ORDER BY UniqueId",
         "''|'no key.jpg'\n'ugly-blob-key'|''\n'ugly-nul'|'nul'\n'ugly-\uFFFD'|'\uFFFD('"},
        {"SELECT AlbumName, CreateTime, Lpath, AlbumType, Operation, IsDelete FROM Album ORDER BY AlbumId",
         "'no key'|0|'\uFFFD'|'5'|'a'|-1\n'Renamed since'|0|''|''|''|0"},
        {"SELECT LatestVersion, TempVersion, UpdateTime, BriefingTime FROM AlbumLocalVersion ORDER BY 1",
         "123456|123457|1577836800000|'1577836800000'\n2147483647|-2147483648|0|'9223372036854775807'"},
        {"SELECT Id, UniqueId, TotalLength, Position FROM DownloadTask ORDER BY Id",
         "1|'another task'|0|0\n2|'unique-2'|3000000|1000000\n3|'unique-3'|3000000|1000000\n"
         "4|'unique-1'|3000000|1000000\n5|'ugly-download'|9223372036854775807|2147483647"},
        {"SELECT Id, Position, TaskStatus, StartTime, EndTime FROM UploadTask WHERE UniqueId = 'ugly-upload'",
         "4|-2147483648|0|'noon'|'9223372036854775807'"},
        {"SELECT substr(UniqueId, 10), EndTime FROM TransferCompleteCloudTask WHERE FileName = 'end.jpg' "
         "ORDER BY EndTime, UniqueId",
         "'-5'|-5\n''|0\n'noon'|0\n' 12 '|12\n'12 o'clock'|12\n'2020-01-01 00:00:00'|2020\n'1.5e12'|1500000000000\n"
         "'1577836800000.75'|1577836800000\n'99999999999999999999'|9223372036854775807"},
        {"SELECT Key, Value FROM UserProperties WHERE Key != 'LegacyMigration' ORDER BY Key",
         "''|'no key'\n'Again'|'1'\n'AutoStart'|'1'\n'Language'|'de-DE'\n'SyncCloudFolder'|'D:\\Cloud'\n"
         "'Theme'|'dark'\n'Twice'|'new'\n'\uFFFD'|'a'"},
        {"SELECT id, time, substr(action, 1, 6), useTime, logversion FROM UserLogTable WHERE id NOT BETWEEN 2 AND 7 "
         "ORDER BY id",
         "1|''|'stands'|0.0|0\n900000000|''|'stands'|0.0|0\n900000001|'2020-01-01 00:00:01'|'open'|1.0|1\n"
         "900000002|'ugly-id'|'open'|-1.0|2147483647"},
        {"SELECT id, startTime, traceEndFlag, residenceTime, isMainteranceLog FROM UBAUserLog WHERE time = 'ugly-id'",
         "8|9.22337203685478e+18|0|16.0|2"},
    };
    SqliteFile store(m_plan.galleryFile);
    store.exec("ATTACH '" + platform::toUtf8(m_plan.mainFile) + "' AS others");
    for (const auto& [query, rows] : cases) {
        EXPECT_EQ(store.text(query), rows) << query;
    }
}

TEST_F(Migration, SecondRunLeavesEverythingAsItWas)
{
    legacysample::putInTheWay(L"gallery.dat");
    const Report first = run();
    const auto before = counts();
    const auto earlier = run().earlierRun;
    ASSERT_TRUE(earlier);
    EXPECT_NE(earlier->find(" read=101 written=95 lost=10"), std::string::npos) << *earlier;

    const Report second = runAgain();
    EXPECT_EQ(counts(), before);
    EXPECT_EQ(second.lost, first.lost);
    for (std::size_t i = 0; i < second.tables.size(); ++i) {
        EXPECT_EQ(second.tables[i].written, 0) << second.tables[i].table;
        EXPECT_EQ(second.tables[i].alreadyThere, first.tables[i].written + first.tables[i].alreadyThere);
    }

    // What has changed in the store since stays, unless it is to be replaced.
    SqliteFile(m_plan.galleryFile)
        .exec("UPDATE GalleryFile SET FileName = 'changed' WHERE UniqueId = 'ugly-null';"
              "UPDATE DownloadTask SET Position = 7 WHERE Id = 2");
    EXPECT_EQ(runAgain().tables[0].kept, 1);
    EXPECT_EQ(inGallery("SELECT FileName FROM GalleryFile WHERE UniqueId = 'ugly-null'"), "'changed'");
    m_plan.replace = true;
    const Report replacing = runAgain();
    EXPECT_EQ(replacing.tables[0].replaced, 1);
    EXPECT_EQ(replacing.tables[3].replaced, 1);
    EXPECT_EQ(counts(), before);
    EXPECT_EQ(inGallery("SELECT FileName FROM GalleryFile WHERE UniqueId = 'ugly-null'"), "''");
    EXPECT_EQ(inGallery("SELECT Position FROM DownloadTask WHERE Id = 2"), "1000000");
    EXPECT_EQ(SqliteFile(m_plan.mainFile).value("SELECT Value FROM UserProperties WHERE Key = 'Theme'"), "'light'");
}

TEST_F(Migration, DryRunReportsTheSameAndWritesNothing)
{
    legacysample::putInTheWay(L"gallery.dat");
    const auto bytes = [&] {
        return bytesOf(m_plan.mainFile) + bytesOf(m_plan.galleryFile) + bytesOf(m_plan.legacyFile);
    };
    const std::string before = bytes();
    m_plan.dryRun = true;
    Report rehearsal = run();
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(rehearsal.remembered);
    m_plan.dryRun = false;
    const Report report = run();
    for (std::size_t i = 0; i < report.tables.size(); ++i) {
        rehearsal.tables[i].inStore = report.tables[i].inStore; // the one number that has to differ
    }
    EXPECT_EQ(summaryOf(rehearsal), summaryOf(report));
    EXPECT_NE(bytes(), before);
}

TEST_F(Migration, RefusesWhatIsNoLegacyFileAndTouchesNoStore)
{
    const fs::path folder = m_folder.path();
    const std::string sampleBytes = bytesOf(sample());
    writeBytes(folder / "empty", "");
    writeBytes(folder / "cut", sampleBytes.substr(0, sampleBytes.size() / 2));
    writeBytes(folder / "cut at its end", sampleBytes.substr(0, sampleBytes.size() - 10));
    SqliteFile(folder / "other").exec("CREATE TABLE Something (a)");
    SqliteFile(folder / "today").exec("CREATE TABLE GalleryFile (UniqueId TEXT PRIMARY KEY, ContinuousNo INTEGER)");
    const std::string damaged = "it is no database, damaged, cut short or locked";
    const std::string none = "it has none of the tables of the earlier client generation";
    const std::string today = "its table GalleryFile lacks the column CoverUniqueId, so it comes from another program "
                              "or is one of today's stores";
    for (const auto& [name, reason] : {std::pair("missing", std::string("there is no such file")),
                                       {"store", "it is not a file"},
                                       {"empty", none},
                                       {"other", none},
                                       {"cut", damaged},
                                       {"cut at its end", damaged},
                                       {"today", today}}) {
        SCOPED_TRACE(name);
        const std::string before = bytesOf(folder / name);
        EXPECT_EQ(errorOf(folder / name), reason);
        EXPECT_EQ(bytesOf(folder / name), before);
    }
    EXPECT_TRUE(fs::is_empty(m_store));
    m_plan.galleryFile = copyOfSample("store/gallery.dat");
    EXPECT_EQ(errorOf(m_plan.galleryFile), "it is the store's own file gallery.dat");
    writeBytes(m_plan.mainFile, "no database");
    EXPECT_EQ(errorOf(sample()), "the store's file main.dat cannot be read: it is no database, damaged or locked");
    m_log.take();
}

TEST_F(Migration, DamageInTheLegacyFileCostsTheTableItIsIn)
{
    m_plan.legacyFile = copyOfSample("damaged.dat");
    damageFiles(m_plan.legacyFile);
    const Report report = run();
    const TableReport& files = report.tables.front();
    EXPECT_EQ(files.trouble, "the legacy file is damaged here, or of another shape");
    EXPECT_EQ(files.inLegacy, 51);
    EXPECT_GT(files.read, 0);
    EXPECT_EQ(files.written, files.read);
    EXPECT_EQ(report.tables[1].written, 2);
    EXPECT_FALSE(report.isWhole());
    m_log.take();
}

// Rows that are in the store must not be taken for missing because they cannot be read.
TEST_F(Migration, DamageInTheStoreEndsTheRun)
{
    run();
    damageFiles(m_plan.galleryFile);
    const Report report = runAgain();
    EXPECT_EQ(report.stopped,
              "the table GalleryFile cannot be read in the store: it is damaged, of another shape or locked");
    for (const TableReport& table : report.tables) {
        EXPECT_EQ(table.written, 0);
    }
    EXPECT_EQ(report.lost, 51 + 2 + 2 + 4 + 12 + 4 + 10 + 10 + 10 + 3);
    m_log.take();
}

TEST_F(Migration, RefusedRowIsCountedAndTheRunNotRemembered)
{
    legacysample::putInTheWay(L"gallery.dat");
    SqliteFile(m_plan.galleryFile)
        .exec("CREATE TRIGGER refuse BEFORE INSERT ON GalleryFile WHEN NEW.UniqueId = 'ugly-huge' BEGIN SELECT "
              "RAISE(ABORT, 'no'); END");
    const Report report = run();
    EXPECT_EQ(report.tables[0].failed, 3);
    EXPECT_EQ(report.tables[0].written, 48);
    EXPECT_EQ(report.tables[1].written, 2);
    EXPECT_FALSE(report.remembered);
    m_log.take();
}

// Wherever the disk fills up: the run says that it lost rows, and once there is room, another one brings all of them.
TEST_F(Migration, FullDiskOnTheWay)
{
    const auto runWith = [this](FaultyDisk::Fault fault, std::int64_t atChange) {
        m_disk.reset();
        m_disk.emplace(fault, atChange);
        return run();
    };
    runWith(FaultyDisk::Fault::None, 0);
    const std::int64_t changes = FaultyDisk::changes();
    const auto undisturbed = counts();
    for (std::int64_t part = 1; part < 8; ++part) {
        SCOPED_TRACE(part);
        // Failed commits leave connections open, and with them files that not every system lets go of.
        useStore(m_folder.path() / std::to_string(part));
        const Report failed = runWith(FaultyDisk::Fault::Full, changes * part / 8);
        EXPECT_FALSE(failed.remembered);
        EXPECT_FALSE(failed.isWhole());
        m_log.take();
        EXPECT_TRUE(runWith(FaultyDisk::Fault::None, 0).remembered);
        EXPECT_EQ(counts(), undisturbed);
        m_log.take();
    }
}

// A hundred kills, spread over all changes that a run makes to its files; and a few where a table is large enough to
// come over in several batches.
TEST_F(Migration, KilledAnywhereASecondRunEndsAsOneUndisturbed)
{
    const fs::path large = m_folder.path() / "large.dat";
    legacysample::write(large, 17'000);
    const auto migrate = [&](const fs::path& legacy, const std::string& killAt) {
        std::vector<std::string> command{MIGRATION_PROGRAM, platform::toUtf8(legacy), platform::toUtf8(m_store),
                                         "gallery.dat"};
        if (!killAt.empty()) {
            command.push_back(killAt);
        }
        return runProgram(command, m_folder.path() / "output", m_folder.path() / "errors");
    };
    const fs::path inTheWay = m_folder.path() / "in-the-way";
    legacysample::putInTheWay(L"gallery.dat");
    fs::rename(m_store, inTheWay);
    for (const auto& [legacy, kills] : {std::pair{sample(), 100}, std::pair{large, 4}}) {
        fs::remove_all(m_store);
        fs::copy(inTheWay, m_store);
        ASSERT_EQ(migrate(legacy, {}), 0);
        const std::int64_t changes = std::stoll(bytesOf(m_folder.path() / "output"));
        ASSERT_GT(changes, kills);
        const auto undisturbed = counts();
        for (int kill = 0; kill < kills; ++kill) {
            const std::string change = std::to_string(1 + changes * kill / kills);
            SCOPED_TRACE(platform::toUtf8(legacy) + " " + change);
            fs::remove_all(m_store);
            fs::copy(inTheWay, m_store);
            ASSERT_EQ(migrate(legacy, change), FaultyDisk::killedCode);
            ASSERT_EQ(migrate(legacy, {}), 0);
            EXPECT_EQ(counts(), undisturbed);
        }
    }
}
