#include "clientservices/globalparamwrapper.h"
#include "databaseservice/drivedatatable.h"
#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <chrono>
#include <iomanip>
#include <numeric>
#include <string_view>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

using Tool = ToolTest;

TEST_F(Tool, SaysWhatIsWrongWithTheCommandLineAndTheStore)
{
    const std::string folder = platform::toUtf8(m_folder.path());
    const std::string source = folder + "/source";
    for (const char* name : {"DriveModuleData.dat", "main.dat", "transmission.dat"}) {
        writeFile(m_folder.path() / "foreign" / name, "this is no database, but long enough for one");
    }
    fs::create_directories(m_folder.path() / "foreign" / "FastAccess.dat");
    writeFile(m_folder.path() / "foreign" / "g", "");
    writeFile(m_folder.path() / "empty" / "DriveModuleData.dat", "");
    fs::create_directories(m_folder.path() / "odd" / "DriveModuleData.dat");
    fs::create_directories(m_folder.path() / "other");
    SqliteFile(m_folder.path() / "other" / "FastAccess.dat").exec("CREATE TABLE other(x)");
    fill({"file"});

    std::vector<std::tuple<std::string, Arguments, int, std::string>> cases{
        {"", {}, 2, "no command"},
        {"", {"frobnicate"}, 2, "frobnicate"},
        {"", {"ls", "--frobnicate"}, 2, "--frobnicate\nTry `dbservice ls --help`."},
        {"", {"view", "3"}, 2, "CLASS"},
        {"", {"recyle"}, 2, "; did you mean `recycle`?\nTry `dbservice --help`."},
        {"", {"ls", "--ofsfet=3"}, 2, "; did you mean `--offset`?\nTry `dbservice ls --help`."},
        {"", {"transfers", "lsit"}, 2, "; did you mean `list`?\nTry `dbservice transfers --help`."},
        {"", {"ls"}, 1, "--folder STORE"},
        {"nowhere", {"ls"}, 1, "does not exist"},
        {"nowhere", {"reset", "--all", "--yes"}, 1, "does not exist"},
        {"source", {"ls"}, 1, "there is no DriveModuleData.dat"},
        {"source", {"reindex"}, 1, "there is no DriveModuleData.dat"},
        {"source", {"--log", folder + "/odd", "init"}, 1, "cannot write the log file"},
        {"source", {"--trace", folder + "/none/x", "init"}, 1, "cannot write the trace file"},
        {"source", {"query", "x", "--csv", "--json"}, 2, "at once\nTry `dbservice query --help`."},
        {"source", {"properties", "set", "key"}, 2, "VALUE"},
        {"source", {"gallery", "counts"}, 2, "--gallery"},
        {"source", {"reset"}, 2, "--all"},
        {"source", {"reset", "--user", "--gallery", "g"}, 2, "--user"},
        {"source", {"reset", "--all", "--yes"}, 1, "holds no store files"},
        {"source", {"reset", "--gallery", "g", "--yes"}, 1, "there is no g in"},
        {"source", {"reset", "--user", "--yes"}, 1, "there is no transmission.dat in"},
        {"source", {"properties", "set", "k", "v"}, 1, "there is no main.dat in"},
        {"source", {"shortcuts", "add", "--title", "x"}, 1, "there is no FastAccess.dat in"},
        {"source", {"transfers", "list"}, 1, "there is no transmission.dat in"},
        {"source", {"gallery", "counts", "--gallery", "g"}, 1, "there is no g in"},
        {"source", {"gallery", "import", folder + "/nowhere", "--gallery", "g"}, 1, "cannot read the folder"},
        {"source/file", {"ls"}, 1, "is not a folder"},
        {"new", {"scan", source + "/file"}, 1, "cannot read the folder"},
        {"empty", {"count"}, 1, "is empty"},
        {"odd", {"count"}, 1, "is not a file"},
        {"other", {"shortcuts", "list"}, 1, "FastAccess.dat has no table FastAccess"},
        {"foreign", {"count"}, 1, "is not a database"},
        {"foreign", {"init"}, 1, "is not a database"},
        {"foreign", {"scan", source}, 1, "is not a database"},
        {"foreign", {"properties", "get", "k"}, 1, "is not a database"},
        {"foreign", {"shortcuts", "remove", "1"}, 1, "is not a file"},
        {"foreign", {"transfers", "simulate", "1"}, 1, "is not a database"},
        {"foreign", {"gallery", "show", "x", "--gallery", "g"}, 1, "is empty"},
        {"foreign", {"reset", "--all", "--yes"}, 1, "is a database that can be read"},
    };
    for (const std::string name : {"", "a/b", "..", "a\\b", "c:d", "MAIN.dat", "g.dat-journal", "main.dat "}) {
        cases.push_back({"source", {"init", "--gallery", name}, 2, "--gallery"});
    }
    if constexpr (onPosix) {
        cases.push_back({"source", {"init", "--gallery", "g\xFF"}, 2, "UTF-8"});
        cases.push_back({"source", {"properties", "set", "k", "\xFF"}, 2, "UTF-8"});
    }
    for (auto& [where, arguments, code, told] : cases) {
        SCOPED_TRACE(where + ' ' + testing::PrintToString(arguments));
        if (!where.empty()) {
            arguments.insert(arguments.begin(), {"--folder", folder + '/' + where});
        }
        const Ran ran = run(arguments);
        EXPECT_TRUE(ended(ran, code, told));
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(ran.err.rfind("dbservice: ", 0), 0U) << ran.err;
    }
    EXPECT_EQ(contents(source).size(), 1U);
    EXPECT_FALSE(fs::exists(m_folder.path() / "new"));
    const Ran version = run({"--version"});
    EXPECT_TRUE(version.code == 0 && contains(version.out, "SQLite 3."));
}

// Each command is listed in a help, and its own help ends with an example that it understands.
TEST_F(Tool, HelpEndsWithAnExampleThatIsUnderstood)
{
    int examples = 0;
    std::vector<Arguments> commands{{}};
    while (!commands.empty()) {
        const Arguments command = commands.back();
        commands.pop_back();
        SCOPED_TRACE(testing::PrintToString(command));
        Arguments asked = command;
        asked.push_back("--help");
        const Ran ran = run(asked);
        EXPECT_TRUE(ended(ran, 0, ""));
        std::istringstream help(ran.out);
        std::string line;
        while (std::getline(help, line) && line != "Example:") {
            if (line.starts_with("  ") && std::islower(line[2]) != 0) {
                commands.push_back(command);
                commands.back().push_back(line.substr(2, line.find(' ', 2) - 2));
            }
        }
        if (std::getline(help, line)) {
            std::istringstream words(line.substr(line.find("dbservice ") + 10));
            Arguments example;
            for (std::string word; words >> std::quoted(word);) {
                example.push_back(word);
            }
            EXPECT_NE(onStore(example).code, 2) << line;
            ++examples;
        } else {
            EXPECT_EQ(command, Arguments{});
        }
    }
    EXPECT_GT(examples, 30);
    EXPECT_TRUE(contains(run({"--help"}).out, "Exit code"));
}

TEST_F(Tool, TheManualAndTheCompletionAreSound)
{
    const std::string manual = run({"--man"}).out;
    for (const char* part :
         {".TH DBSERVICE", ".SS dbservice transfers add upload\n", ".B \\-\\-sort ORDER\n", "\\(ti/"}) {
        EXPECT_TRUE(contains(manual, part));
    }
    EXPECT_FALSE(contains(run({"--help"}).out, "--man"));
    if constexpr (onPosix) {
        const Ran formatted =
            run({"--man"}, {"sh", "-c", R"("$0" "$@" | if command -v groff; then groff -man -Tutf8 -ww -z; fi)"});
        EXPECT_EQ(formatted.err, "");
        const std::pair<std::string, std::string> cases[]{
            {"ren", "rename"},     {"ls --so", "--sort"},      {"--json ls --sort -m", "-modified"},
            {"view p", "picture"}, {"rec", "recover recycle"}, {"--folder x transfers add up", "upload"},
            {"ls --count ", ""},   {"--folder ", ""}};
        for (const auto& [typed, completed] : cases) {
            SCOPED_TRACE(typed);
            const std::string words = typed + (typed.ends_with(' ') ? "''" : "");
            const std::string script = "eval \"$(\"$0\" --bash-completion)\"; COMP_WORDS=(dbservice " + words +
                "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _dbservice; printf '%s\\n' ${COMPREPLY[*]} | sort | xargs";
            const Ran ran = run({}, {"bash", "-c", script});
            EXPECT_EQ(ran.out, completed + '\n') << ran.err;
        }
    }
}

TEST_F(Tool, FindsTheStoreByOptionEnvironmentOrCurrentFolder)
{
    ASSERT_TRUE(ended(onStore({"init"}), 0, "made the folder"));
    const fs::path before = fs::current_path();
    fs::current_path(store());
    EXPECT_EQ(run({"count"}).code, 0);
    fs::current_path(before);
    const EnvironmentVariable named("DBSERVICE_FOLDER", platform::toUtf8(store()));
    EXPECT_EQ(run({"count"}).code, 0);
    const EnvironmentVariable missing("DBSERVICE_FOLDER", "/nowhere");
    EXPECT_EQ(run({"count"}).code, 1);
    EXPECT_EQ(onStore({"count"}).code, 0);
}

TEST_F(Tool, RecordsAnUglyFolder)
{
    std::vector<std::string> names{"plain.txt",
                                   "it's \xC3\xA4 \xCE\xB1\xCE\xB2 \xE5\x86\x99\xE7\x9C\x9F \xD8\xB9\xD8\xB1.jpg",
                                   "\xF0\x9F\x93\xB7 100%_[a,b] $HOME `x`.PNG", ".hidden", "folder with blanks/file"};
    std::string deep = "deep";
    for (int level = 0; level < 100; ++level) {
        deep += "/d";
    }
    if constexpr (onPosix) {
        names.insert(names.end(), {"say \"hi\"\nbye\x1b[31m\\.txt", "id:1", "-rf"});
    }
    fill(names);
    fs::create_directories(source() / deep);
    // The source, the folder with blanks, those of `deep`, and what only POSIX has.
    const int entries = static_cast<int>(names.size()) + 1 + 1 + 101 + (onPosix ? 5 : 0);
    if constexpr (onPosix) {
        writeFile(source() / "latin\xE9", "x");
        writeFile(source() / "latin\xE8", "x");
        fs::create_symlink("loop", source() / "loop");
        fs::create_directory_symlink("../..", source() / "folder with blanks" / "up");
        ASSERT_EQ(runProgram({"mkfifo", platform::toUtf8(source() / "pipe.jpg")}), 0);
    }

    const Ran first = scan(onPosix ? Arguments{"env", "-u", "TERM", "LC_ALL=C"} : Arguments{});
    ASSERT_EQ(first.code, 0) << first.err;
    EXPECT_EQ(numbers(first), (std::vector{entries, 0, 0, 0, 0, entries}));
    EXPECT_EQ(json::parse(first.out)["odd"], onPosix ? 4 : 0) << first.err;
    const std::map<std::string, double> seconds = json::parse(first.out)["seconds"];
    EXPECT_NEAR(std::accumulate(seconds.begin(), seconds.end(), -2 * seconds.at("total"),
                                [](double sum, const auto& step) { return sum + step.second; }),
                0, 1e-6);
    EXPECT_EQ(first.err.find('\x1b'), std::string::npos);
    EXPECT_EQ(numbers(scan()), (std::vector{0, 0, entries, 0, 0, entries}));

    names.push_back(deep);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const json found = row("/" + name);
        EXPECT_EQ(found["name"], name.substr(name.rfind('/') + 1));
        EXPECT_EQ(found["localAbsolutePath"],
                  platform::toUtf8(fs::canonical(source()) / utf8Path(name).make_preferred()));
        EXPECT_EQ(row("id:" + found["fileId"].get<std::string>()), found);
    }
    EXPECT_EQ(row("/")["subtree"], entries);
    EXPECT_EQ(row("/deep/d/./../d")["subtree"], 100);
    EXPECT_EQ(row("/")["parentId"], "");
    EXPECT_TRUE(holds(row(names[2]),
                      {{"mimeType", "image/png"}, {"classIndex", 2}, {"needToDisplay", 1}, {"size", names[2].size()}}));
    if constexpr (onPosix) {
        EXPECT_EQ(row("/pipe.jpg")["mimeType"], "inode/fifo");
        EXPECT_EQ(row("/folder with blanks/up")["subtree"], 1) << "a link is not followed";
        EXPECT_TRUE(refused(onStore({"stat", "/latin\xE9"}), " id:"));
        EXPECT_TRUE(contains(onStore({"ls"}).out, "$'say \"hi\"\\nbye\\x1b[31m\\\\.txt'\n"));
    }
}

TEST_F(Tool, PagesInEveryOrderWithFoldersFirst)
{
    const fs::file_time_type start = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const char* name : {"D1", "d2", "d10"}) {
        fs::create_directories(source() / name);
    }
    using File = std::tuple<const char*, std::size_t, int>;
    for (const auto& [name, size, seconds] : {File("a10.txt", 2000, 10), {"a2.jpg", 3000, 20}, {"B.mp3", 2000, 30}}) {
        writeFile(source() / name, std::string(size, 'x'));
        fs::last_write_time(source() / name, start + std::chrono::seconds(seconds));
    }
    ASSERT_EQ(scan().code, 0);
    // Not every system lets a program set the time of a folder.
    changeStore("UPDATE DriveDataTable SET modifiedTime = CASE name WHEN 'D1' THEN 3 WHEN 'd2' THEN 1 ELSE 2 END "
                "WHERE name IN ('D1', 'd2', 'd10')");

    const std::map<std::string, std::vector<std::string>> orders{
        {"name", {"D1", "d2", "d10", "a2.jpg", "a10.txt", "B.mp3"}},
        {"-name", {"d10", "d2", "D1", "B.mp3", "a10.txt", "a2.jpg"}},
        {"size", {"D1", "d2", "d10", "a10.txt", "B.mp3", "a2.jpg"}},
        {"-size", {"D1", "d2", "d10", "a2.jpg", "a10.txt", "B.mp3"}},
        {"modified", {"d2", "d10", "D1", "a10.txt", "a2.jpg", "B.mp3"}},
        {"-modified", {"D1", "d10", "d2", "B.mp3", "a2.jpg", "a10.txt"}},
        {"ext", {"D1", "d2", "d10", "a2.jpg", "B.mp3", "a10.txt"}},
        {"-ext", {"D1", "d2", "d10", "a10.txt", "B.mp3", "a2.jpg"}},
    };
    for (const auto& [sort, expected] : orders) {
        std::vector<std::string> seen;
        for (const char* const offset : {"0", "4"}) { // a page that ends among the files, and the rest
            const std::vector<std::string> page = names({"ls", "--sort", sort, "--count", "4", "--offset", offset});
            seen.insert(seen.end(), page.begin(), page.end());
        }
        EXPECT_EQ(seen, expected) << sort;
    }

    const Ran page = onStore({"ls", "--count", "2", "--offset", "2"});
    EXPECT_TRUE(contains(page.out, "3-4 of 6: 3 folders, 3 files"));
    EXPECT_TRUE(contains(page.err, "--offset 4"));
    EXPECT_EQ(onStore({"ls", "--count", "4", "--offset", "2"}).err, "");
    EXPECT_TRUE(contains(onStore({"ls", "--offset", "4294967295", "--count", "4294967295"}).out, "none of 6"));
    EXPECT_TRUE(contains(onStore({"ls", "/a10.txt"}).out, "1.9 KiB"));
    for (const std::string path : {"/none", "/a10.txt/none", "id:none", "/' OR 1=1 --"}) {
        EXPECT_EQ(onStore({"ls", path}).code, 1) << path;
    }

    const json classes{{"2", 1}, {"4", 0}, {"8", 1}, {"16", 1}, {"32", 0}};
    EXPECT_TRUE(holds(rows({"count"}).at(0), {{"folders", 4}, {"files", 3}, {"classIndex", classes}}));
    EXPECT_EQ(rows({"count", "/"}).at(0), (json{{"all", 6}, {"folders", 3}, {"files", 3}, {"listed", 6}}));
    EXPECT_EQ(onStore({"count", "/a2.jpg"}).code, 1);
}

TEST_F(Tool, ShowsClassesTheBinAndFoldersWithoutARow)
{
    ASSERT_EQ(onStore({"init"}).code, 0);
    const std::string now = std::to_string(GlobalParamWrapper::GetInstance()->GetServerTime());
    const std::string folder = DatabaseService::DriveDataTable::folderMimeType;
    changeStore(
        "INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, classIndex, needToDisplay, recycled, "
        "recycledTime) "
        "VALUES ('1', 'p3', 'top', 'image/png', 2, 1, 0, 0), ('2', 'p1', 'top', 'image/png', 2, 1, 0, 0), "
        "('3', 'p2', 'top', 'image/png', 2, 1, 0, 0), ('4', 'hidden', 'top', 'image/png', 2, 2, 0, 0), "
        "('5', 'film', 'top', 'video/mp4', 4, 1, 0, 0), ('it''s', 'it''s', 'top', 'folder', 0, 1, 0, 0), "
        "('6', 'child', 'it''s', 'text/plain', 0, 1, 0, 0), ('7', 'bin2', 'top', 'folder', 0, 1, 1, 5), "
        "('8', 'bin1', 'top', 'text/plain', 0, 1, 1, 86400), ('9', 'bin10', 'top', 'folder', 0, 1, 1, 20 * 86400), "
        "('10', 'old folder', 'top', 'folder', 0, 1, 1, 31 * 86400), "
        "('11', 'old file', 'top', 'text/plain', 0, 1, 1, 40 * 86400), "
        "('12', 'restored', 'top', 'text/plain', 0, 1, 1, 5)");
    changeStore("UPDATE DriveDataTable SET mimeType = '" + folder + "' WHERE mimeType = 'folder'");
    changeStore(
        "UPDATE DriveDataTable SET recycledTime = " + now +
        " - recycledTime, directlyRecycled = recycled, "
        "softDelBatchId = 0, moveBatchId = 0, hardDelBatchId = 0, restoreBatchId = iif(name = 'restored', 7, 0)");

    using Names = std::vector<std::string>;
    EXPECT_EQ(names({"view", "picture"}), (Names{"p1", "p2", "p3"}));
    EXPECT_EQ(names({"view", "2", "--sort", "-name", "--offset", "1", "--count", "1"}), (Names{"p2"}));
    EXPECT_EQ(names({"view", "video"}), (Names{"film"}));
    EXPECT_TRUE(contains(onStore({"view", "picture", "--count", "2"}).out, "1-2 of 3: pictures"));
    EXPECT_EQ(onStore({"view", "pictures"}).code, 2);

    EXPECT_EQ(names({"recycle"}), (Names{"bin2", "bin10", "bin1"}));
    EXPECT_EQ(names({"recycle", "--sort", "-name", "--offset", "1", "--count", "2"}), (Names{"bin2", "bin1"}));
    EXPECT_EQ(names({"recycle", "--expired"}).size(), 2U);
    EXPECT_EQ(names({"recycle", "--expired", "--offset", "1"}).size(), 1U);
    EXPECT_TRUE(contains(onStore({"recycle"}).out, "1-3 of 3: 2 folders, 1 file; 2 more expired"));
    EXPECT_EQ(onStore({"recycle", "--expired", "--sort", "size"}).code, 2);

    EXPECT_EQ(names({"ls", "id:top"}), (Names{"it's", "film", "p1", "p2", "p3"}));
    for (const char* command : {"ls", "count"}) {
        EXPECT_TRUE(refused(onStore({command, "id:it's"}), "id:it's: the id holds a quote"));
    }
    EXPECT_EQ(row("id:it's")["name"], "it's");

    EXPECT_EQ(rows({"count", "id:top"}).at(0), (json{{"all", 12}, {"folders", 1}, {"files", 4}, {"listed", 5}}));
    const json expected{{"rows", 13},           {"total", 7}, {"folders", 1},    {"files", 6},   {"recycled", 6},
                        {"recycledFolders", 3}, {"bin", 6},   {"binFolders", 3}, {"binFiles", 1}};
    EXPECT_TRUE(holds(rows({"count"}).at(0), expected));
}

// A build whose order of names is that of the bytes has written the store.
TEST_F(Tool, WritesNoStoreWithNamesInAnotherOrder)
{
    const auto byBytes = [](void* /*user*/, int leftSize, const void* left, int rightSize, const void* right) {
        return std::string_view(static_cast<const char*>(left), static_cast<std::size_t>(leftSize))
            .compare({static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
    };
    writeFile(source() / "file", "x");
    // The second pair is equal in this build's order, and stands in the index in the order of row numbers.
    for (const std::string values : {"('1', 'c9'), ('2', 'c10')", "('1', 'a'), ('2', 'A')"}) {
        fs::remove_all(store());
        ASSERT_EQ(onStore({"init"}).code, 0);
        ASSERT_EQ(onStore({"init"}).code, 0); // has looked at the index, and remembers it
        {
            SqliteFile file(storeFile());
            sqlite3_create_collation(file.handle(), "NameCompare", SQLITE_UTF8, nullptr, byBytes);
            file.exec("INSERT INTO DriveDataTable(fileId, name) VALUES " + values);
        }
        const std::map<std::string, std::string> before = contents(store());
        for (const Ran& refused : {onStore({"init"}), scan(), onStore({"rename", "id:1", "x"})}) {
            EXPECT_TRUE(ended(refused, 1, "`dbservice reindex`"));
        }
        EXPECT_EQ(rows({"count"}).at(0)["rows"], 2);
        EXPECT_TRUE(contains(onStore({"view", "other"}).err, "`dbservice reindex`"));
        EXPECT_EQ(contents(store()), before);

        EXPECT_EQ(rows({"reindex"}).at(0)["agreedBefore"], false);
        EXPECT_EQ(onStore({"init"}).code, 0);
        EXPECT_EQ(rows({"reindex"}).at(0)["agreedBefore"], true);
    }

    changeStore("DROP INDEX nameIndex");
    EXPECT_EQ(onStore({"reindex"}).code, 1);
    EXPECT_EQ(onStore({"init"}).code, 0);
    EXPECT_EQ(rows({"reindex"}).at(0)["rows"], 2);
}

TEST_F(Tool, ASecondScanBringsTheTreeUpToDate)
{
    fill({"keep.txt", "same-size.txt", "gone.txt", "gone/a", "gone/sub/b", "to-folder", "to-file/c", "to-file/sub/d",
          "old-name", "untouched/e", "untouched/f", "binned", "moving"});
    ASSERT_EQ(numbers(scan()), (std::vector{19, 0, 0, 0, 0, 19}));
    changeStore("UPDATE DriveDataTable SET localFileSha256 = 'sha', hash = 'h', favorite = 1, data1 = 'mine', "
                "renameName = 'new', renameTime = 5, renameBatchId = 6, version = 1234567890123 "
                "WHERE name IN ('keep.txt', 'same-size.txt');"
                "UPDATE DriveDataTable SET recycled = 1 WHERE name = 'binned';"
                "UPDATE DriveDataTable SET moveBatchId = 7 WHERE name = 'moving';");
    const json keptBefore = row("/keep.txt");

    writeFile(source() / "same-size.txt", "SAME-SIZE.TXT");
    fs::last_write_time(source() / "same-size.txt",
                        fs::last_write_time(source() / "same-size.txt") + std::chrono::microseconds(5));
    for (const char* name : {"gone.txt", "gone", "to-folder", "to-file", "binned", "moving"}) {
        fs::remove_all(source() / name);
    }
    fill({"new.txt", "new/g", "to-folder/h", "to-file"});
    fs::rename(source() / "old-name", source() / "new-name");

    // Added: new.txt, new, new/g, to-folder/h, new-name. Changed: the source (its time), same-size.txt and the two
    // that became something else. Removed: gone.txt, four of gone, three below to-file, old-name.
    const Ran second = scan();
    EXPECT_EQ(second.code, 0) << second.err;
    EXPECT_EQ(numbers(second), (std::vector{5, 4, 4, 9, 2, 15}));
    EXPECT_EQ(numbers(scan()), (std::vector{0, 0, 13, 0, 2, 15}));

    EXPECT_EQ(row("/keep.txt"), keptBefore);
    const json changed = row("/same-size.txt");
    EXPECT_NE(changed["contentVersion"], keptBefore["contentVersion"]);
    for (const char* column : {"localFileSha256", "hash", "favorite", "data1", "data2", "renameName", "renameTime",
                               "renameBatchId", "version", "needToDisplay"}) {
        EXPECT_EQ(changed[column], keptBefore[column]) << column;
    }
    EXPECT_EQ(row("/to-folder")["subtree"], 2);
    EXPECT_EQ(row("/to-file")["subtree"], 1);
    EXPECT_EQ(row("/moving")["moveBatchId"], 7);
    EXPECT_EQ(rows({"count"}).at(0)["recycled"], 1);
    EXPECT_EQ(row("/")["subtree"], 14); // all but the one in the bin
}

// What runs that were cut off, or a client, can leave behind: marks, rows without their parent, rows elsewhere.
TEST_F(Tool, AScanMendsWhatOthersLeft)
{
    fill({"a/b/c", "a/b/gone", "d", "e"});
    ASSERT_EQ(scan().code, 0);
    fs::remove(source() / "a" / "b" / "gone");
    changeStore("UPDATE DriveDataTable SET data2 = 1 WHERE name IN ('d', 'gone');"
                "UPDATE DriveDataTable SET parentId = (SELECT fileId FROM DriveDataTable WHERE name = 'a') "
                "WHERE name = 'e';"
                "DELETE FROM DriveDataTable WHERE name = 'b';");
    const Ran mended = scan();
    EXPECT_EQ(mended.code, 0) << mended.err;
    EXPECT_EQ(numbers(mended), (std::vector{1, 1, 4, 1, 0, 6}));
    EXPECT_EQ(row("/d")["data2"], "");
    EXPECT_EQ(row("/e")["name"], "e");
    EXPECT_EQ(row("/")["subtree"], 6);
}

// Of the rows, which come in the order of their keys, some are there, and no index is.
TEST_F(Tool, CompletesAFirstScanThatWasCutOff)
{
    fill({"a/b/c", "a/d", "e/f", "g", "h/i"});
    const std::string indexes = "SELECT name FROM sqlite_master WHERE type = 'index' ORDER BY name";
    ASSERT_EQ(numbers(scan()), (std::vector{10, 0, 0, 0, 0, 10}));
    const std::string before = SqliteFile(storeFile()).text(indexes);
    changeStore("DROP INDEX nameIndex; DROP INDEX mimeTypeIndex; DROP INDEX sizeIndex; DROP INDEX modifiedTimeIndex;"
                "DROP INDEX fileExtSignIndex; DROP INDEX parentIdIndex;"
                "DELETE FROM DriveDataTable WHERE parentId <> '' AND fileId > '8'");
    const int left = rows({"count"}).at(0)["rows"];
    EXPECT_EQ(numbers(scan()), (std::vector{10 - left, 0, left, 0, 0, 10}));
    EXPECT_EQ(row("/")["subtree"], 10);
    EXPECT_EQ(SqliteFile(storeFile()).text(indexes), before);
}

// The store has /a/x below another folder, which is gone. What is swept with that folder is still on the disk.
TEST_F(Tool, FindsAgainWhatWentWithAFolderThatIsGone)
{
    fill({"a/x/f", "g/h"});
    ASSERT_EQ(scan().code, 0);
    fs::remove_all(source() / "g");
    changeStore("UPDATE DriveDataTable SET parentId = (SELECT fileId FROM DriveDataTable WHERE name = 'g') "
                "WHERE name = 'x'");
    EXPECT_EQ(numbers(scan()), (std::vector{2, 1, 1, 4, 0, 4}));
    EXPECT_EQ(row("/a/x/f")["size"], 5);
}

TEST_F(Tool, RefusesTheTreeOfAnotherSource)
{
    ASSERT_EQ(scan().code, 0);
    const std::map<std::string, std::string> before = contents(store());
    const fs::path other = m_folder.path() / "other";
    writeFile(other / "file", "");
    EXPECT_TRUE(refused(onStore({"scan", platform::toUtf8(other)}), "it holds the tree of"));
    EXPECT_EQ(contents(store()), before);

    changeStore("UPDATE DriveDataTable SET fileId = 'a client''s own'");
    EXPECT_TRUE(contains(scan().err, "no scan has written"));
}

// The library reads the values behind a binary one in each other's place.
TEST_F(Tool, AScanWritesBackNoRowThatIsReadWrong)
{
    writeFile(source() / "folder" / "file", "x");
    ASSERT_EQ(scan().code, 0);
    writeFile(source() / "folder" / "new", "x");
    for (const std::string column : {"kind", "uploadTime", "device"}) {
        for (const std::string rows : {"1", "name = 'folder'", "name = 'file'"}) {
            changeStore("UPDATE DriveDataTable SET " + column + " = x'00' WHERE " + rows);
            const std::string binary = "SELECT COUNT(*) FROM DriveDataTable WHERE " + column + " = x'00'";
            const std::string before = SqliteFile(storeFile()).value(binary);
            EXPECT_TRUE(ended(scan(), 1, "a binary value in the column " + column));
            EXPECT_EQ(SqliteFile(storeFile()).value(binary), before);
            changeStore("UPDATE DriveDataTable SET " + column + " = NULL");
        }
    }
}

TEST_F(Tool, LeavesTheStoreItselfOutOfTheTree)
{
    const Ran inside = onStore({"--json", "scan", platform::toUtf8(m_folder.path())});
    ASSERT_EQ(inside.code, 0) << inside.err;
    EXPECT_EQ(row("/store")["subtree"], 1);
}

TEST_F(Tool, KeepsWhatItCannotReadAndSaysSo)
{
    if constexpr (onPosix) {
        fill({"closed/inner/file", "listed/file"});
        ASSERT_EQ(numbers(scan()), (std::vector{6, 0, 0, 0, 0, 6}));
        fs::remove_all(source() / "closed" / "inner");
        fs::permissions(source() / "closed", fs::perms::none);
        fs::permissions(source() / "listed", fs::perms::owner_read);
        const Ran ran = scan(withoutPrivileges());
        EXPECT_TRUE(ended(ran, 1, "/closed: cannot read this folder"));
        EXPECT_EQ(json::parse(ran.out)["lost"], 2) << ran.err;
        EXPECT_EQ(row("/closed/inner/file")["size"], 17);
        EXPECT_EQ(row("/listed/file")["size"], 11);
        fs::permissions(store(), fs::perms::none);
        EXPECT_TRUE(contains(onStore({"ls"}, withoutPrivileges()).err, "DriveModuleData.dat: Permission denied"));
        fs::permissions(store(), fs::perms::owner_all);
        fs::permissions(source() / "closed", fs::perms::owner_all);
        fs::permissions(source() / "listed", fs::perms::owner_all);
        EXPECT_EQ(numbers(scan())[3], 2);
    }
}

// A journal with what must be undone lies beside the file, or the file asks for a write-ahead log.
TEST_F(Tool, ShowingChangesNoByte)
{
    for (int i = 0; i < 300; ++i) {
        fill({"file" + std::to_string(i)});
    }
    ASSERT_EQ(scan().code, 0);
    const fs::path real = m_folder.path() / "real";
    const fs::path copy = m_folder.path() / "copy";
    const auto look = [&](const std::string& what, int size = 5) {
        SCOPED_TRACE(what);
        const std::map<std::string, std::string> before = contents(store());
        succeed({"ls", "count", "recycle", "pending", "config"});
        EXPECT_TRUE(holds(row("/file7"), {{"name", "file7"}, {"size", size}}));
        const Ran copied = onStore({"copy-out", platform::toUtf8(copy)});
        EXPECT_EQ(copied.code, 0);
        EXPECT_EQ(copied.err, "");
        EXPECT_EQ(contents(copy).size(), 1U);
        EXPECT_EQ(
            SqliteFile(copy / storeFile().filename()).value("SELECT size FROM DriveDataTable WHERE name = 'file7'"),
            std::to_string(size));
        fs::remove_all(copy);
        EXPECT_EQ(contents(store()), before);
    };
    look("plain");

    fs::rename(store(), real);
    fs::create_directories(store());
    {
        SqliteFile writer(real / "DriveModuleData.dat", SqliteFile::Collation::NameCompare);
        writer.exec("PRAGMA cache_size = 5; BEGIN; UPDATE DriveDataTable SET name = 'half written', size = 7;");
        for (const char* name : {"DriveModuleData.dat", "DriveModuleData.dat-journal"}) {
            fs::copy_file(real / name, store() / name);
        }
    }
    ASSERT_NE(bytesOf(storeFile()), bytesOf(real / "DriveModuleData.dat"));
    look("hot journal");

    SqliteFile(real / "DriveModuleData.dat").exec("PRAGMA journal_mode = WAL;");
    fs::remove_all(store());
    fs::create_directories(store());
    fs::copy_file(real / "DriveModuleData.dat", storeFile());
    look("write-ahead log, closed");
    {
        SqliteFile writer(real / "DriveModuleData.dat", SqliteFile::Collation::NameCompare);
        writer.exec("UPDATE DriveDataTable SET size = 77 WHERE name = 'file7';");
        fs::copy_file(real / "DriveModuleData.dat-wal", store() / "DriveModuleData.dat-wal");
    }
    look("write-ahead log with rows in it", 77);
}

TEST_F(Tool, FailuresOfTheLibraryReachThePerson)
{
    fs::create_directories(store());
    SqliteFile(storeFile()).exec("CREATE TABLE other(x)");
    const std::string log = platform::toUtf8(m_folder.path() / "log.txt");
    const std::string warning = "dbservice: warning: DriveModuleData.dat: ";
    EXPECT_TRUE(refused(onStore({"--log", log, "--quiet", "count"}), warning + "sqlite3_prepare failed"));
    EXPECT_TRUE(contains(bytesOf(log), "sqlite3_prepare failed"));
    EXPECT_TRUE(refused(onStore({"ls", "id:x"}), warning + "sqlite3_prepare failed"));

    changeStore("CREATE TABLE DriveDataTable(fileId TEXT)");
    EXPECT_TRUE(ended(onStore({"count"}), 1, warning + " failed, errcode=1,errDesc[no such column: recycled]"));

    fs::remove_all(store());
    ASSERT_EQ(scan().code, 0);
    changeStore("INSERT INTO DriveDataTable(fileId, parentId, recycled) VALUES ('x', 'y', 0), ('y', 'x', 0), "
                "('z', 'none', 0);");
    EXPECT_TRUE(contains(onStore({"stat", "id:x"}).err, "its own ancestor"));
    EXPECT_TRUE(contains(onStore({"ls", "id:x"}).err, "warning: the folder id:y is below itself"));
    EXPECT_TRUE(contains(onStore({"stat", "id:z"}).err, "warning: the folder id:none has no row"));
}

// A slice for each call, and its stages below it.
TEST_F(Tool, TracesWhatCallsTake)
{
    writeFile(source() / "a", "x");
    const std::string trace = platform::toUtf8(m_folder.path() / "trace.json");
    ASSERT_EQ(onStore({"--trace", trace, "scan", platform::toUtf8(source())}).code, 0);
    std::map<std::string, int> slices;
    for (const json& slice : json::parse(bytesOf(trace))) {
        EXPECT_EQ(slice["ph"], "X");
        EXPECT_GE(slice["dur"], 0);
        ++slices[slice.contains("args") ? "calls on " + slice["args"]["store"].get<std::string>()
                                        : slice["name"].get<std::string>()];
    }
    for (const char* const name : {"calls on DriveModuleData.dat", "open", "work", "commit"}) {
        EXPECT_GT(slices[name], 0) << name;
    }
}

// A table that refuses updates stands for a full disk: nothing may be swept when rows could not be written.
TEST_F(Tool, AFailedScanRemovesNothing)
{
    fill({"changed", "gone"});
    ASSERT_EQ(scan().code, 0);
    changeStore("CREATE TRIGGER refuse BEFORE UPDATE OF name ON DriveDataTable BEGIN "
                "SELECT RAISE(ABORT, 'refused'); END;");
    writeFile(source() / "changed", "longer than it was");
    fs::remove(source() / "gone");
    EXPECT_TRUE(refused(scan(), "refused"));
    EXPECT_EQ(rows({"count"}).at(0)["rows"], 3);
    changeStore("DROP TRIGGER refuse");
    EXPECT_EQ(numbers(scan()), (std::vector{0, 2, 0, 1, 0, 2}));
}

} // namespace
