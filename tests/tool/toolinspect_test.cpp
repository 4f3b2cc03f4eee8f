#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

constexpr std::size_t pageSize = 4096;

/// What is asked of a file that somebody has sent: which it is, whether it is sound, what can be saved of it.
class ToolInspect : public ToolTest {
protected:
    ToolInspect()
    {
        fill({"a/1", "a/2", "b1", "b2"});
        EXPECT_EQ(onStore({"init", "--gallery", "g.dat"}).code, 0);
        EXPECT_EQ(scan().code, 0);
    }

    std::string path(const std::string& name) const { return platform::toUtf8(m_folder.path() / name); }
    /// A copy of a store's file under a name that tells nothing of it.
    std::string copy(const std::string& file, const std::string& name = "copy") const
    {
        writeBytes(m_folder.path() / name, bytesOf(store() / file));
        return path(name);
    }
    void zero(const std::string& file, std::size_t page) const
    {
        writeFile(utf8Path(file), bytesOf(utf8Path(file)).replace((page - 1) * pageSize, pageSize, pageSize, '\0'));
    }
    json lineOf(const Arguments& arguments) const { return linesOf(run(arguments)).at(0); }
};

TEST_F(ToolInspect, TheTablesTellWhichFileItIs)
{
    const std::tuple<std::string, std::string, std::string, std::string> cases[]{
        {"DriveModuleData.dat", "", "drive", ""},
        {"main.dat", "ALTER TABLE T_CloudFileTable DROP COLUMN imageRotate", "main", "lacks the column imageRotate"},
        {"g.dat", "ALTER TABLE Album ADD COLUMN more", "gallery", "has a column more, more"},
        {"FastAccess.dat", "CREATE TABLE other(x)", "shortcuts", "other is none of the library's"},
        {"transmission.dat", "", "transfers", "there is no table TransferTask"},
        {"g.dat",
         "DROP TABLE Album; DROP TABLE AlbumLocalVersion; DROP TABLE UploadTask; CREATE TABLE UserLog(Id, Time, "
         "Action, UserId, DevId, Code, Info, Extend, TraceId, UseTime, StartTime, Model, RomVersion, AppVersion); "
         "ALTER TABLE GalleryFile DROP COLUMN ContinuousNo; ALTER TABLE GalleryFile ADD COLUMN CoverUniqueId",
         "legacy", "there is no table Album"},
        {"FastAccess.dat", "DROP TABLE FastAccess; CREATE TABLE Album(AlbumId, Title, ArtistId)", "", ""},
    };
    for (const auto& [file, change, kind, schema] : cases) {
        SCOPED_TRACE(kind + " " + change);
        const std::string renamed = copy(file);
        SqliteFile(utf8Path(renamed)).exec(change);
        const std::string before = bytesOf(utf8Path(renamed));
        const json found = lineOf({"--json", "info", renamed});
        EXPECT_EQ(found["kind"], kind.empty() ? json() : json(kind));
        EXPECT_EQ(found["nameIndex"], kind == "drive" ? json("agrees") : json());
        EXPECT_TRUE(contains(found["schema"].dump(), schema));
        EXPECT_TRUE(bytesOf(utf8Path(renamed)) == before);
    }
    EXPECT_EQ(rows({"info"}).size(), 5U);

    { // A writer that has been interrupted: what it had finished counts.
        SqliteFile writer(storeFile());
        writer.exec("PRAGMA cache_size = 1; BEGIN; DELETE FROM DriveFullTask; "
                    "UPDATE DriveDataTable SET description = printf('%.*c', 9000, 'x')");
        copy("DriveModuleData.dat-journal", "copy-journal");
        const std::string interrupted = copy("DriveModuleData.dat");
        const auto before = bytesOf(utf8Path(interrupted));
        EXPECT_TRUE(contains(run({"check", interrupted}).out, "0 errors, 0 warnings, 1 note"));
        EXPECT_EQ(lineOf({"--json", "info", interrupted})["beside"].size(), 1U);
        EXPECT_TRUE(bytesOf(utf8Path(interrupted)) == before);
        fs::remove(m_folder.path() / "copy-journal");
    }
    EXPECT_TRUE(refused(run({"info", path("nowhere")}), "there is no such file or folder"));
    writeFile(store() / "main.dat", "this is no database, but long enough for one");
    fs::resize_file(storeFile(), 2 * pageSize);
    const Ran ran = onStore({"info"});
    EXPECT_EQ(ran.code, 1);
    EXPECT_TRUE(contains(ran.out, "is not a database") && contains(ran.out, "cut short, 8,192 of "));
    EXPECT_TRUE(contains(ran.out, "shortcut list")) << "the others are shown all the same";
}

TEST_F(ToolInspect, CheckTellsWhatIsWrong)
{
    const std::tuple<std::string, std::string, std::string, std::string> cases[]{
        {"DriveModuleData.dat", "", "", ""},
        {"DriveModuleData.dat", "parentId = 'nowhere'", "warning", "its folder nowhere has no row"},
        {"DriveModuleData.dat", "parentId = ''", "error", "a second root"},
        {"DriveModuleData.dat", "parentId = fileId", "error", "it is below itself"},
        {"DriveModuleData.dat", "parentId = (SELECT fileId FROM DriveDataTable WHERE name = 'b2')", "warning",
         "is a file"},
        {"DriveModuleData.dat", "fileId = ''", "error", "its id is empty"},
        {"DriveModuleData.dat", "size = x'00'", "error", "size: 1 row holds a binary value"},
        {"DriveModuleData.dat", "size = 'big'", "warning", "size: 1 row holds a text"},
        {"DriveModuleData.dat", "version = 1.5", "warning", "version: 1 row holds a number with a fraction"},
        {"DriveModuleData.dat", "recycled = NULL", "warning", "recycled: 1 row holds NULL"},
        {"DriveModuleData.dat", "kind = NULL", "note", "kind: 1 row holds NULL"},
        {"DriveModuleData.dat", "localAbsolutePath = NULL, device = NULL", "", ""},
        {"DriveModuleData.dat", "hardDelete = 1", "warning", "hardDelBatchId is 0"},
        {"DriveModuleData.dat", "moveParentId = 'x'", "note", "moveBatchId is 0"},
        {"DriveModuleData.dat", "moveBatchId = 7, moveParentId = 'x'", "warning", "waits to go to the folder x"},
        {"DriveModuleData.dat", "renameBatchId = 7", "warning", "renameName does not tell"},
        {"DriveModuleData.dat", "DROP INDEX sizeIndex", "warning", "there is no index sizeIndex"},
        {"DriveModuleData.dat", "ALTER TABLE DriveDataTable DROP COLUMN data4", "error", "lacks the column data4"},
        {"main.dat", "CREATE TABLE more(x)", "note", "none of the library's"},
        {"FastAccess.dat", "DROP TABLE FastAccess", "note", "no table of the library's"},
    };
    for (const auto& [file, change, severity, what] : cases) {
        SCOPED_TRACE(file + " " + change);
        const std::string renamed = copy(file);
        const bool isStatement = change.empty() || isupper(static_cast<unsigned char>(change[0])) != 0;
        SqliteFile(utf8Path(renamed), SqliteFile::Collation::NameCompare)
            .exec(isStatement ? change : "UPDATE DriveDataTable SET " + change + " WHERE name = 'b1'");
        const std::string before = bytesOf(utf8Path(renamed));
        const Ran ran = run({"--json", "check", renamed});
        EXPECT_EQ(ran.code, severity == "error" ? 1 : 0) << ran.out;
        EXPECT_TRUE(bytesOf(utf8Path(renamed)) == before);
        EXPECT_EQ(linesOf(ran).at(0).value("severity", ""), severity) << ran.out;
        EXPECT_TRUE(contains(ran.out, what));
    }

    const std::string damaged = copy("g.dat");
    zero(damaged, 3);
    EXPECT_TRUE(contains(run({"check", damaged}).out, "damaged: page 3 holds only zeros"));
    SqliteFile other(storeFile());
    other.exec("BEGIN IMMEDIATE");
    EXPECT_TRUE(contains(onStore({"check"}).out, "another program is writing to it now"));
    EXPECT_EQ(onStore({"check"}).code, 0);
    other.exec("COMMIT; BEGIN EXCLUSIVE");
    EXPECT_TRUE(contains(onStore({"--wait", "0.1", "check"}).out, "locked by another program for 0.10 seconds"));
}

TEST_F(ToolInspect, RepairMakesIndexesAnewAndNothingElse)
{
    const std::string file = copy("DriveModuleData.dat");
    const auto rowsOf = [&] {
        return SqliteFile(utf8Path(file)).text("SELECT rowid, * FROM DriveDataTable NOT INDEXED");
    };
    {
        SqliteFile foreign(utf8Path(file)); // whose order is another
        sqlite3_create_collation(foreign.handle(), "NameCompare", SQLITE_UTF8, nullptr,
                                 [](void*, int, const void* left, int, const void* right) {
                                     return *static_cast<const char*>(right) - *static_cast<const char*>(left);
                                 });
        foreign.exec("REINDEX nameIndex; DROP INDEX sizeIndex; DROP INDEX parentIdIndex; "
                     "CREATE INDEX parentIdIndex ON DriveDataTable(kind)");
    }
    const std::string before = bytesOf(utf8Path(file));
    const std::string rowsBefore = rowsOf();
    {
        SqliteFile other(utf8Path(file));
        other.exec("BEGIN IMMEDIATE");
        const Ran ran = run({"--wait", "0.1", "check", "--repair", file});
        EXPECT_TRUE(ended(ran, 1, "locked by another program") && contains(ran.err, "the file is as it was"));
    }
    EXPECT_TRUE(bytesOf(utf8Path(file)) == before);
    writeFile(utf8Path(file + ".before-repair"), "taken");
    const json repaired = lineOf({"--json", "check", "--repair", file});
    EXPECT_EQ(repaired["copy"], file + ".before-repair-2");
    constexpr std::size_t header = 100; // where SQLite counts its own work
    EXPECT_TRUE(bytesOf(utf8Path(file + ".before-repair-2")).substr(header) == before.substr(header));
    EXPECT_EQ(rowsOf(), rowsBefore);
    EXPECT_EQ(run({"check", file}).out, "0 errors, 0 warnings, 0 notes in 1 file\n");
}

TEST_F(ToolInspect, RecoverSavesWhatCanBeRead)
{
    const std::string out = path("out");
    const std::string all = "SELECT rowid, * FROM DriveDataTable NOT INDEXED";
    changeStore("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 60) "
                "INSERT INTO DriveDataTable(fileId, name) SELECT 'row ' || i, printf('%.*c', IIF(i % 20 = 0, 9000, "
                "300), 'x') FROM n");
    const Rows whole = SqliteFile(storeFile()).query(all);
    const auto recover = [&](const std::string& damaged) -> std::optional<std::pair<std::size_t, std::size_t>> {
        fs::remove(utf8Path(out));
        const Ran ran = run({"--json", "recover", damaged, out});
        for (const auto& [name, bytes] : contents(m_folder.path())) {
            EXPECT_FALSE(name.starts_with("out.partial")) << name;
        }
        if (!fs::exists(utf8Path(out))) {
            EXPECT_TRUE(refused(ran, "nothing has been made"));
            return std::nullopt;
        }
        std::size_t saved = 0;
        std::size_t lost = 0;
        for (const json& line : linesOf(ran)) {
            if (line["table"] == "DriveDataTable") {
                saved = line["saved"];
                lost = line["lost"];
            }
        }
        const bool isLoss = ran.err.find("cannot save all") != std::string::npos;
        EXPECT_EQ(ran.code, isLoss ? 1 : 0);
        EXPECT_TRUE(isLoss || lost == 0) << ran.err;
        const Rows rows = SqliteFile(utf8Path(out)).query(all);
        EXPECT_EQ(rows.size(), saved);
        for (const std::vector<std::string>& row : rows) {
            EXPECT_NE(std::find(whole.begin(), whole.end(), row), whole.end());
        }
        return std::pair(saved, lost);
    };
    const std::string root =
        SqliteFile(storeFile()).value("SELECT rootpage FROM sqlite_master WHERE name = 'DriveDataTable'");
    std::size_t made = 0;
    std::size_t partly = 0;
    const std::size_t pages = fs::file_size(storeFile()) / pageSize;
    for (std::size_t page = 1; page <= pages; ++page) {
        SCOPED_TRACE("page " + std::to_string(page));
        const std::string damaged = copy("DriveModuleData.dat");
        zero(damaged, page);
        const std::string before = bytesOf(utf8Path(damaged));
        if (const auto found = recover(damaged)) {
            const auto [saved, lost] = *found;
            ++made;
            partly += saved > 0 && lost > 0 ? 1 : 0;
            EXPECT_EQ(saved + lost, whole.size());
            EXPECT_TRUE(lost == 0 || std::to_string(page) != root) << "the rows are on other pages";
        }
        EXPECT_TRUE(bytesOf(utf8Path(damaged)) == before);
    }
    EXPECT_EQ(made, pages - 1) << "without the first page nothing tells the tables";
    EXPECT_GT(partly, 2U);

    const std::string cut = copy("DriveModuleData.dat");
    fs::resize_file(utf8Path(cut), (pages - 3) * pageSize);
    EXPECT_GT(recover(cut).value_or(std::pair(0, 0)).first, 0U);
    EXPECT_TRUE(refused(run({"recover", cut, out}), "nothing is overwritten"));
    EXPECT_TRUE(contains(run({"info", out}).out, "as this library lays it down"));

    const std::string older = copy("FastAccess.dat");
    SqliteFile(utf8Path(older))
        .exec("INSERT INTO FastAccess(Id, Title) VALUES(7, 't'); DELETE FROM FastAccess; "
              "ALTER TABLE FastAccess DROP COLUMN Rotate; INSERT INTO FastAccess(Id) VALUES(3)");
    fs::remove(utf8Path(out));
    EXPECT_EQ(run({"recover", older, out}).code, 0);
    EXPECT_EQ(SqliteFile(utf8Path(out)).text("SELECT Id, Rotate, seq FROM FastAccess, sqlite_sequence"), "3|0|7");

    SqliteFile other(utf8Path(older));
    other.exec("BEGIN EXCLUSIVE");
    EXPECT_TRUE(refused(run({"--wait", "0.1", "recover", older, path("none")}), "locked by another program"));
    other.exec("DROP TABLE FastAccess; COMMIT");
    EXPECT_TRUE(refused(run({"recover", older, path("none")}), "no table of the library's"));
    EXPECT_FALSE(fs::exists(utf8Path(path("none"))));
}

} // namespace
