#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

const std::string gallery = "Bilder \xE5\x86\x99.dat";

class ToolStores : public ToolTest {
protected:
    fs::path file(const std::string& name) const { return store() / utf8Path(name); }
    std::string value(const std::string& of, const std::string& sql) const { return SqliteFile(file(of)).value(sql); }

    void init() const { ASSERT_EQ(onStore({"init", "--gallery", gallery}).code, 0); }
    Ran import(const Arguments& before = {}) const
    {
        return onStore({"--json", "gallery", "import", platform::toUtf8(source()), "--gallery", gallery}, before);
    }
    json counts() const { return rows({"gallery", "counts", "--gallery", gallery}).at(0); }
    json shown(const std::string& fileName) const
    {
        const std::string id = value(gallery, "SELECT UniqueId FROM GalleryFile WHERE FileName = '" + fileName + "'");
        return rows({"gallery", "show", id.substr(1, id.size() - 2), "--gallery", gallery}).at(0);
    }

    /// A run with a terminal, and `answer` typed into it. What it says is all in `out`.
    Ran answer(const std::string& answer, const Arguments& arguments) const
    {
        return onStore(arguments, {"sh", "-c", "echo " + answer + " | script -qec \"$*\" /dev/null", "sh"});
    }
};

/// What an import says: albums, files, written, unchanged, failed, lost.
std::vector<int> numbersOf(const Ran& import)
{
    const json result = json::parse(import.out);
    return {result["albums"],    result["files"],  result["written"],
            result["unchanged"], result["failed"], result["lost"]};
}

TEST_F(ToolStores, InitStartsEveryStore)
{
    fs::create_directories(store());
    writeFile(file("FastAccess.dat"), "this is no database, but long enough for one");
    EXPECT_TRUE(contains(onStore({"init", "--gallery", gallery}).err, "is not a database"));
    EXPECT_EQ(contents(store()).size(), 1U) << "nothing is made before all are looked at";
    fs::remove(file("FastAccess.dat"));

    init();
    changeStore("INSERT INTO UserProperties VALUES('k', 'v')", "main.dat");
    const std::pair<std::string, std::string> stores[]{
        {"DriveModuleData.dat", "DriveConfTable,DriveDataTable,DriveFolderSync,DriveFullTask"},
        {"main.dat", "T_CloudFileTable,T_NotepadCard,T_WaitHandleCardItem,UBAUserLog,UserLogTable,UserProperties"},
        {gallery, "Album,AlbumLocalVersion,DownloadTask,GalleryFile,TransferCompleteCloudTask,UploadTask"},
        {"FastAccess.dat", "FastAccess"},
        {"transmission.dat", "CompletedTaskTable,DownloadTaskTable,UploadTaskTable"}};
    const std::vector<json> shown = rows({"init", "--gallery", gallery});
    ASSERT_EQ(shown.size(), std::size(stores));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_EQ(utf8Path(shown[i]["file"]), file(stores[i].first));
        EXPECT_EQ(SqliteFile(file(stores[i].first)).tables(), stores[i].second);
        for (const auto& [table, rowCount] : shown[i]["tables"].items()) {
            EXPECT_TRUE(contains(stores[i].second, table));
            EXPECT_EQ(rowCount, table == "UserProperties" ? 1 : 0);
        }
    }
    EXPECT_EQ(rows({"init"}).size(), 4U);
    EXPECT_TRUE(contains(onStore({"init"}).out, "UserProperties           1\n"));
}

TEST_F(ToolStores, PropertiesGoInAndComeOutAsTheyAre)
{
    init();
    const std::vector<std::string> texts{
        R"(it's "quoted" `x` \ %s; --)", "\xE5\x86\x99 \xF0\x9F\x93\xB7", "-5", "two\nlines\t", "", "[a,b]"};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(onStore({"properties", "set", "--", text, "first"}).code, 0);
        const json expected{{"Key", text}, {"Value", text}};
        EXPECT_EQ(rows({"properties", "set", "--", text, text}), (std::vector{expected}));
        EXPECT_EQ(rows({"properties", "get", "--", text}), (std::vector{expected}));
    }
    EXPECT_EQ(rows({"properties", "list"}).size(), texts.size());
    EXPECT_EQ(onStore({"properties", "get", "two\nlines\t"}).out, "two\\nlines\\t\n");
    EXPECT_TRUE(contains(onStore({"properties", "get", "none"}).err, "cannot find the property none"));

    changeStore("CREATE TRIGGER refuse BEFORE INSERT ON UserProperties BEGIN SELECT RAISE(IGNORE); END;", "main.dat");
    EXPECT_TRUE(refused(onStore({"properties", "set", "bad", "better"}), "cannot set the property bad"));
    EXPECT_EQ(rows({"properties", "remove-all", "--yes"}).at(0)["removed"], texts.size());
    EXPECT_EQ(rows({"properties", "list"}).size(), 0U);
}

TEST_F(ToolStores, ShortcutsAreAddedListedAndRemoved)
{
    init();
    const std::string title = "it's \xE5\x86\x99";
    const json added = rows({"shortcuts", "add", "--title",  title, "--tip",   "t",  "--icon", "i", "--path",   "/p",
                             "--id",      "f",   "--parent", "q",   "--index", "-3", "--type", "4", "--rotate", "90"})
                           .at(0);
    json expected{{"Id", 1},    {"Index", -3},      {"DataType", 4}, {"IconPath", "i"}, {"Title", title},
                  {"Tip", "t"}, {"FilePath", "/p"}, {"FileId", "f"}, {"ParentId", "q"}, {"Rotate", 90}};
    expected["UpdataTime"] = added["UpdataTime"];
    EXPECT_EQ(added, expected);
    EXPECT_EQ(std::to_string(added.size()),
              value("FastAccess.dat", "SELECT count(*) FROM pragma_table_info('FastAccess')"));
    EXPECT_GT(added["UpdataTime"], 1'600'000'000);

    const fs::path cache = m_folder.path() / "cache";
    const std::string slash = platform::toUtf8(cache) + '/';
    for (const char* icon : {"FastAccess/own.png", "../FastAccess-foreign.png"}) {
        writeFile(cache / icon, "icon");
        EXPECT_EQ(onStore({"shortcuts", "add", "--title", "x", "--index", "7", "--icon", icon}).code, 0);
    }
    const std::vector<json> listed = rows({"shortcuts", "list"});
    ASSERT_EQ(listed.size(), 3U);
    EXPECT_EQ(listed[2], added); // the highest index first
    EXPECT_TRUE(contains(onStore({"shortcuts", "list"}).out, " 1     -3  it's"));

    EXPECT_TRUE(contains(onStore({"shortcuts", "remove", "2"}).err, "--cache PATH"));
    EXPECT_TRUE(contains(onStore({"shortcuts", "remove", "3", "--cache", slash}).err, "outside the cache"));
    EXPECT_EQ(rows({"shortcuts", "list"}).size(), 3U);
    EXPECT_EQ(onStore({"shortcuts", "remove", "2", "--cache", slash}).code, 0);
    EXPECT_FALSE(fs::exists(cache / "FastAccess" / "own.png"));
    EXPECT_TRUE(fs::exists(m_folder.path() / "FastAccess-foreign.png"));
    EXPECT_EQ(rows({"shortcuts", "remove", "1"}).at(0), added);
    EXPECT_TRUE(contains(onStore({"shortcuts", "remove", "1"}).err, "cannot find the shortcut 1"));
    EXPECT_EQ(rows({"shortcuts", "list"}).size(), 1U);
}

TEST_F(ToolStores, AGalleryIsImportedOnceAndBroughtUpToDate)
{
    fill({"p1.jpg", "2024/p1.jpg", "2024/it's \xE5\x86\x99.PNG", "2024/deep/film.mp4", "texts/a.txt"});
    int files = 4;
    if constexpr (onPosix) {
        writeFile(source() / "2024" / "bad\xFF.jpg", "x");
        writeFile(source() / "texts" / "bad\xFF.txt", "x");
        fs::create_symlink("p1.jpg", source() / "link.jpg");
        ASSERT_EQ(runProgram({"mkfifo", platform::toUtf8(source() / "pipe.jpg")}), 0);
        ++files;
    }
    const Ran first = import(); // lays the file down, too
    ASSERT_EQ(first.code, 0) << first.err;
    EXPECT_EQ(numbersOf(first), (std::vector{3, files, files, 0, 0, 0}));
    EXPECT_EQ(json::parse(first.out)["odd"], onPosix ? 1 : 0);
    EXPECT_EQ(numbersOf(import()), (std::vector{3, files, 0, files, 0, 0}));
    const json expected{{"Album", 3},        {"AlbumLocalVersion", 0},         {"GalleryFile", files},
                        {"DownloadTask", 0}, {"TransferCompleteCloudTask", 0}, {"UploadTask", 0}};
    EXPECT_EQ(counts(), expected);

    const json film = shown("film.mp4");
    const Rows columns = SqliteFile(file(gallery)).query("SELECT name, type FROM pragma_table_info('GalleryFile')");
    EXPECT_EQ(film.size(), columns.size());
    for (const std::vector<std::string>& column : columns) {
        const std::string key = column[0].substr(1, column[0].size() - 2);
        ASSERT_TRUE(film.contains(key)) << key;
        EXPECT_EQ(film[key].is_string(), column[1] == "'TEXT'") << key;
    }
    EXPECT_EQ(film["Size"], 18);
    EXPECT_EQ(film["LocalPath"], platform::toUtf8(fs::canonical(source()) / "2024" / "deep" / "film.mp4"));
    EXPECT_EQ(SqliteFile(file(gallery)).text("SELECT AlbumName, Lpath FROM Album ORDER BY Lpath"),
              "'source'|'/'\n'2024'|'/2024'\n'deep'|'/2024/deep'");
    EXPECT_EQ(value(gallery, "SELECT COUNT(DISTINCT Hash) FROM GalleryFile"), std::to_string(files));

    // An album stays as the client left it. A changed file is written again, keeps what the client knows of it, and
    // takes its new hash.
    changeStore("UPDATE GalleryFile SET FileId = 'cloud', IsFavorite = 1 WHERE FileName = 'film.mp4';"
                "UPDATE Album SET AlbumType = 'own' WHERE AlbumName = 'deep'",
                gallery);
    writeFile(source() / "2024" / "deep" / "film.mp4", "longer than it was");
    EXPECT_EQ(numbersOf(import()), (std::vector{3, files, 1, files - 1, 0, 0}));
    const json changed = shown("film.mp4");
    EXPECT_NE(changed["Hash"], film["Hash"]);
    EXPECT_TRUE(holds(changed, {{"UniqueId", film["UniqueId"]}, {"FileId", "cloud"}, {"IsFavorite", 1}}));
    EXPECT_EQ(value(gallery, "SELECT COUNT(*) FROM Album WHERE AlbumType = 'own'"), "1");
    EXPECT_EQ(counts(), expected);

    // The same names below another folder are other files.
    fs::create_directories(m_folder.path() / "other" / "2024");
    fs::copy_file(source() / "p1.jpg", m_folder.path() / "other" / "p1.jpg");
    EXPECT_EQ(onStore({"gallery", "import", platform::toUtf8(m_folder.path() / "other"), "--gallery", gallery}).code,
              0);
    EXPECT_TRUE(holds(counts(), {{"GalleryFile", files + 1}, {"Album", 4}}));
    EXPECT_TRUE(contains(onStore({"gallery", "show", "none", "--gallery", gallery}).err, "cannot find none"));
}

// Triggers that pass over rows stand for what makes a writer fail in silence.
TEST_F(ToolStores, AnImportTellsWhatDidNotLand)
{
    fill({"p1.jpg", "p2.jpg", "closed.jpg"});
    init();
    const auto refuse = [&](const std::string& table, const std::string& when) {
        changeStore("CREATE TRIGGER refuse" + table + " BEFORE INSERT ON " + table + " WHEN " + when +
                        " BEGIN SELECT RAISE(IGNORE); END;",
                    gallery);
    };
    refuse("GalleryFile", "NEW.FileName = 'p2.jpg'");
    refuse("Album", "1");
    fs::permissions(source() / "closed.jpg", onPosix ? fs::perms::none : fs::perms::all);
    const int lost = onPosix ? 1 : 0;
    const Ran ran = import(withoutPrivileges());
    EXPECT_TRUE(ended(ran, 1, "2 rows are not in the store"));
    EXPECT_EQ(numbersOf(ran), (std::vector{1, 3 - lost, 2 - lost, 0, 2, lost})) << ran.err;
    EXPECT_EQ(ran.err.find("closed.jpg: cannot be read") != std::string::npos, onPosix) << ran.err;

    changeStore("DROP TRIGGER refuseGalleryFile; DELETE FROM GalleryFile;", gallery);
    refuse("GalleryFile", "1");
    EXPECT_TRUE(refused(import(), "none is in the store"));
}

// FastAccess.dat lacks its newest column and the gallery a table, which the library adds before it reads.
TEST_F(ToolStores, ShowingChangesNoByte)
{
    init();
    succeed({"shortcuts add --title x", "properties set k v"});
    changeStore("ALTER TABLE FastAccess DROP COLUMN Rotate", "FastAccess.dat");
    changeStore("DROP TABLE UploadTask", gallery);
    SqliteFile(file(gallery)).fill(1);
    const auto before = contents(store());
    if constexpr (onPosix) {
        fs::permissions(store(), fs::perms::owner_read | fs::perms::owner_exec);
    }
    for (const Arguments& command : {Arguments{"properties", "list"},
                                     {"properties", "get", "k"},
                                     {"shortcuts", "list"},
                                     {"transfers", "list"},
                                     {"gallery", "counts", "--gallery", gallery},
                                     {"gallery", "show", "id-1", "--gallery", gallery}}) {
        for (const Arguments& starter : {Arguments{}, withoutPrivileges()}) {
            const Ran ran = onStore(command, starter);
            EXPECT_EQ(ran.code, 0) << ran.err;
        }
        EXPECT_EQ(contents(store()), before) << testing::PrintToString(command);
    }
    EXPECT_TRUE(holds(counts(), {{"UploadTask", nullptr}, {"Album", 1}}));
    if constexpr (onPosix) {
        EXPECT_TRUE(refused(onStore({"properties", "set", "k", "w"}, withoutPrivileges()), "warning: main.dat: "));
        EXPECT_EQ(import(withoutPrivileges()).code, 1);
        fs::permissions(store(), fs::perms::owner_all);
        EXPECT_EQ(contents(store()), before);
    }
}

TEST_F(ToolStores, AnInterruptedCommandLeavesNoCopy)
{
    if constexpr (onPosix) {
        ASSERT_EQ(onStore({"init"}).code, 0);
        changeStore("INSERT INTO FastAccess(Title) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                    "WHERE i < 1000) SELECT hex(zeroblob(500)) FROM n",
                    "FastAccess.dat");
        fs::remove(temporary());
        EXPECT_TRUE(contains(onStore({"shortcuts", "list"}).err, "(TMPDIR=" + platform::toUtf8(temporary()) + ")"));
        fs::create_directory(temporary());
        // The list is longer than a pipe, so that the command still runs when its first line is there.
        const std::string interrupt = "pipe=$TMPDIR.$0; mkfifo \"$pipe\"; \"$@\" >\"$pipe\" & exec 3<\"$pipe\"; "
                                      "read line <&3; ls \"$TMPDIR\"; if [ $0 = PIPE ]; then exec 3<&-; "
                                      "else kill -s $0 $!; fi; wait $!";
        for (const auto& [name, number] : std::map<std::string, int>{{"HUP", 1}, {"PIPE", 13}, {"TERM", 15}}) {
            const Ran ran = onStore({"shortcuts", "list"}, {"sh", "-c", interrupt, name});
            EXPECT_EQ(ran.code, 128 + number) << ran.err;
            EXPECT_TRUE(contains(ran.out, "dbservice-"));
            EXPECT_TRUE(fs::is_empty(temporary())) << name;
        }
    }
}

TEST_F(ToolStores, ResetAsksAndDropsWhatItSays)
{
    init();
    fill({"p.jpg"});
    ASSERT_EQ(import().code, 0);
    succeed({"properties set k v"});
    const auto before = contents(store());
    for (const Arguments& command : {Arguments{"reset", "--gallery", gallery},
                                     {"reset", "--all"},
                                     {"reset", "--user"},
                                     {"properties", "remove-all"}}) {
        EXPECT_TRUE(ended(onStore(command), 2, "--yes"));
    }
    if constexpr (onPosix) {
        const Ran refused = answer("n", {"reset", "--all"});
        EXPECT_EQ(refused.code, 1);
        EXPECT_TRUE(contains(refused.out, "main.dat (6 tables, 1 row)"));
        EXPECT_TRUE(contains(refused.out, "nothing has been changed"));
        EXPECT_EQ(contents(store()), before);
        EXPECT_EQ(answer("y", {"properties", "remove-all"}).code, 0);
        EXPECT_EQ(rows({"properties", "list"}).size(), 0U);
    }

    EXPECT_EQ(rows({"reset", "--gallery", gallery, "--yes"}),
              (std::vector{json{{"file", gallery}, {"tables", 6}, {"rows", 2}}}));
    EXPECT_TRUE(counts()["GalleryFile"].is_null());
    EXPECT_EQ(value("main.dat", "SELECT COUNT(*) FROM sqlite_master WHERE name = 'UserProperties'"), "1");

    changeStore("CREATE TABLE plain(x); CREATE TABLE \"two words\"(x);", "more.dat");
    changeStore("CREATE TABLE plain(x)", "kept.DAT");
    writeFile(file("text.dat"), "this is no database, but long enough for one");
    const Ran all = onStore({"--json", "reset", "--all", "--yes"});
    EXPECT_TRUE(ended(all, 1, "1 table is still there"));
    EXPECT_TRUE(contains(all.err, "text.dat"));
    EXPECT_TRUE(contains(all.out, R"({"file":"more.dat","tables":1,"rows":0})"));
    EXPECT_EQ(value("kept.DAT", "SELECT COUNT(*) FROM sqlite_master"), "1");
    fs::remove(file("more.dat"));
    fs::remove(file("text.dat"));
    for (const json& line : rows({"reset", "--all", "--yes"})) {
        EXPECT_EQ(line["tables"], 0);
    }
    EXPECT_EQ(onStore({"properties", "list"}).code, 1);
    init();
    EXPECT_EQ(rows({"properties", "list"}).size(), 0U);
}

} // namespace
