// What is asked of store files with statements and by comparing them.

#include "platform/paths.h"
#include "support/lists.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

class ToolQuery : public ToolTest {
protected:
    ToolQuery()
    {
        fill({"b.txt", "A10.txt", "a9.txt"});
        EXPECT_EQ(scan().code, 0);
        EXPECT_EQ(onStore({"init"}).code, 0);
    }
};

TEST_F(ToolQuery, AReadingStatementRunsAndNothingElse)
{
    const std::string endless = "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) ";
    const std::string byName = "SELECT name FROM DriveDataTable WHERE name <> '' ORDER BY name COLLATE NameCompare";
    const std::string count = "SELECT count(*) FROM json_each('[1,2]'), pragma_table_info('DriveFullTask')";
    const std::string shortcuts = platform::toUtf8(store() / "FastAccess.dat");
    const std::tuple<std::string, Arguments, int, std::string> cases[]{
        {byName, {"--csv"}, 0, "name\r\na9.txt\r\nA10.txt\r\nb.txt\r\n"},
        {"SELECT 'a,\"' t, '' e, NULL n, x'0a' b;", {"--csv"}, 0, "t,e,n,b\r\n\"a,\"\"\",\"\",,X'0A'\r\n"},
        {"SELECT 1 a, 2.5 a, x'0a' b, NULL c -- x", {"--json"}, 0, R"({"a":1,"a:2":2.5,"b":"X'0A'","c":null})"},
        {count + " -- it's", {}, 0, "16\n"},
        {"SELECT count(*) n FROM FastAccess", {"--file", shortcuts}, 0, "n\n0\n"},
        {"PRAGMA integrity_check", {}, 0, "\nok\n"},
        {"EXPLAIN QUERY PLAN SELECT * FROM DriveDataTable", {}, 0, "SCAN"},
        {endless + "SELECT x FROM c", {"--count", "2"}, 0, "x\n1\n2\n"},
        {endless + "SELECT max(x) FROM c", {"--seconds", "0.1"}, 1, "longer than 0.10 seconds; --seconds"},
        {"SELECT nix FROM DriveDataTable", {}, 1, "no such column: nix; `SELECT sql"},
        {"SELEC", {}, 1, "syntax error"},
        {"SELECT zeroblob(2000000000)", {}, 1, "too big"},
        {"", {}, 2, "it is empty"},
        {"SELECT 1; SELECT 2", {}, 2, "more than one statement"},
        {"DELETE FROM DriveDataTable RETURNING 1", {}, 2, "more than read"},
        {"UPDATE sqlite_master SET sql = '' RETURNING 1", {}, 1, "may not be modified"},
        {"EXPLAIN DELETE FROM DriveDataTable", {}, 2, "more than read"},
        {"CREATE TEMP TABLE t(x)", {}, 2, "more than read"},
        {"ATTACH 'new' AS new", {}, 2, "more than read"},
        {"VACUUM INTO 'new'", {}, 2, "would write"},
        {"BEGIN EXCLUSIVE", {}, 2, "more than read"},
        {"PRAGMA user_version = 3", {}, 2, "the pragma user_version"},
        {"PRAGMA query_only = 0", {}, 2, "the pragma query_only"},
        {"SELECT * FROM pragma_user_version(3)", {}, 1, "too many arguments"},
        {"SELECT load_extension('x')", {}, 2, "the function load_extension"},
    };
    const auto before = contents(store());
    for (const auto& [statement, options, code, told] : cases) {
        SCOPED_TRACE(statement);
        Arguments arguments{"query", statement};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Ran ran = onStore(arguments);
        EXPECT_EQ(ran.code, code) << ran.err;
        EXPECT_TRUE(contains(code == 0 ? ran.out : ran.err, told));
    }
    EXPECT_EQ(contents(store()), before);
}

TEST_F(ToolQuery, TwoCopiesAreComparedRowByRow)
{
    const fs::path other = m_folder.path() / "other.db";
    const std::string names[]{platform::toUtf8(storeFile()), platform::toUtf8(other)};
    const auto compared = [&](const std::string& change) {
        writeBytes(other, bytesOf(storeFile()));
        SqliteFile(other, SqliteFile::Collation::NameCompare).exec(change);
        std::string said;
        for (json line : rows({"diff", names[0], names[1]})) {
            if (line.contains("same")) {
                for (const char* unimportant : {"before", "after", "columnsCame", "columnsWent"}) {
                    said += line[unimportant] == true || line[unimportant].empty() ? "" : line.dump() + "\n";
                }
                continue;
            }
            line.erase("row"); // has all columns
            said += line.dump() + "\n";
        }
        return said;
    };
    changeStore(
        "CREATE TABLE keyed(a UNIQUE, b TEXT NOT NULL UNIQUE COLLATE NOCASE, c); CREATE TABLE bare(x); "
        "INSERT INTO keyed VALUES(NULL, 'B', 1), (NULL, 'a', 2), (3, 'c', x'00'); INSERT INTO bare VALUES(1), (2);"
        "CREATE TABLE pairs(a, b, c, PRIMARY KEY(b, a)) WITHOUT ROWID; "
        "INSERT INTO pairs VALUES(2, 1.5, 'p'), (9007199254740993, 'x', 'q'), (9007199254740992, 'x', 'r')");
    const std::pair<std::string, std::string> cases[]{
        {"", ""},
        {"UPDATE keyed SET c = c + 1 WHERE b = 'A'",
         R"({"change":"changed","columns":{"c":{"new":3,"old":2}},"key":{"b":"a"},"table":"keyed"})"},
        {"UPDATE keyed SET c = '1' WHERE b = 'b'", R"("columns":{"c":{"new":"1","old":1}})"},
        {"UPDATE keyed SET c = '\n' WHERE b = 'c'", R"("columns":{"c":{"new":)"},
        {"DELETE FROM bare WHERE x = 1", R"({"change":"went","key":{"rowid":1},"table":"bare"})"},
        {"INSERT INTO bare VALUES(3)", R"({"change":"came","key":{"rowid":3},"table":"bare"})"},
        {"DELETE FROM pairs WHERE c = 'r'",
         R"({"change":"went","key":{"a":9007199254740992,"b":"x"},"table":"pairs"})"},
        {"ALTER TABLE bare ADD COLUMN y", R"("columnsCame":["y"])"},
        {"ALTER TABLE bare RENAME x TO y", R"("columnsWent":["x"])"},
        {"DROP TABLE bare", R"("went":2)"},
        {"CREATE TABLE new(x)", R"("before":false)"},
    };
    for (const auto& [change, told] : cases) {
        SCOPED_TRACE(change);
        const std::string said = compared(change);
        EXPECT_TRUE(contains(said, told));
        EXPECT_EQ(said.empty(), change.empty()) << said;
    }
    compared(
        "UPDATE DriveDataTable SET size = 8 WHERE name = 'b.txt'; DELETE FROM DriveDataTable WHERE name = 'a9.txt'");
    const Ran shown = onStore({"diff", names[0], names[1]});
    EXPECT_TRUE(contains(shown.out, " name='b.txt': size 5 -> 8\n"));
    EXPECT_TRUE(contains(shown.out, "DriveDataTable      0     1        1     2\n"));
    EXPECT_TRUE(contains(onStore({"diff", names[0], names[0], "--summary"}).out, "No differences"));

    const std::string folder = platform::toUtf8(m_folder.path() / "copies");
    fs::copy(store(), folder);
    fs::remove(utf8Path(folder) / "main.dat");
    EXPECT_TRUE(contains(onStore({"diff", folder, platform::toUtf8(store())}).err, "holds main.dat"));
    EXPECT_TRUE(refused(onStore({"diff", folder, names[0]}), "is not a file"));
    EXPECT_TRUE(refused(onStore({"diff", folder, platform::toUtf8(source())}), "no stores of the same name"));
}

std::string lower(std::string text)
{
    for (char& letter : text) {
        letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
    }
    return text;
}

/// The words of a text, in lower case: runs of three letters and more, with a vowel where they are ASCII.
std::set<std::string> wordsOf(std::string text)
{
    std::ranges::replace_if(
        text, [](unsigned char letter) { return letter < 0x80 && std::isalpha(letter) == 0; }, ' ');
    const std::vector<std::string> runs = split(lower(text));
    std::set<std::string> words(runs.begin(), runs.end());
    std::erase_if(words, [](const std::string& word) {
        return word.size() < 3 || word.find_first_of("aeiou\xC3\xD0\xE5\xE6") == std::string::npos;
    });
    return words;
}

TEST_F(ToolQuery, ARedactedCopyHoldsNoWordOfTheStores)
{
    const std::string names[]{"IMG_7.jpg",
                              "IMG_70.jpg",
                              "IMG_7a.jpg",
                              "Same Letter.txt",
                              "same letter.TXT",
                              ".secret",
                              "_draft 2024",
                              "2024 holiday/007.png",
                              "2024 holiday/7.png",
                              "Mother's Day.backup",
                              "\xD0\x96urnal.pdf",
                              "\xD0\x9F\xD0\xB8\xD1\x81\xD1\x8C\xD0\xBC\xD0\xBE.txt",
                              "\xE5\x86\x99\xE7\x9C\x9F/\xE6\x9D\xB1.png"};
    std::string content;
    for (const std::string& name : names) {
        writeFile(source() / utf8Path(name), content += 'x'); // sizes tell them apart
    }
    ASSERT_EQ(scan().code, 0);
    ASSERT_EQ(onStore({"init", "--gallery", "Eve's gallery.dat"}).code, 0);
    ASSERT_EQ(onStore({"properties", "set", "greeting", "dear diary C:\\Users\\eve\\IMG_7.jpg"}).code, 0);
    ASSERT_EQ(onStore({"transfers", "add", "upload", "--name", "IMG_7.jpg", "--path", "/home/eve/IMG_7.jpg"}).code, 0);
    changeStore("CREATE TABLE other(a INTEGER PRIMARY KEY AUTOINCREMENT, b BLOB UNIQUE, c CHECK(c <> 'x')); "
                "INSERT INTO other VALUES(7, x'536563726574', 'confidential'), (8, 'confidential', 3.5); "
                "PRAGMA secure_delete = 0; CREATE TABLE gone(t); INSERT INTO gone VALUES('eliminated' || "
                "zeroblob(9000)); DROP TABLE gone");
    ASSERT_TRUE(contains(bytesOf(storeFile()), "eliminated"));
    const fs::path copy = m_folder.path() / "copy";
    const Ran copied = onStore({"copy-out", platform::toUtf8(copy), "--redact"});
    ASSERT_EQ(copied.code, 0) << copied.err;

    std::string bytes;
    std::string kept = "root";
    for (const auto& [name, held] : contents(copy)) {
        bytes += lower(held) + '\n' + lower(name);
        for (const std::vector<std::string>& object :
             SqliteFile(copy / name).query("SELECT sql, name FROM sqlite_master")) {
            kept += '\n' + lower(object[1]);
            const std::string sql = lower(object[0].substr(1, object[0].size() - 2));
            const std::size_t at = bytes.find(sql);
            bytes.erase(at == std::string::npos ? 0 : at, at == std::string::npos ? 0 : sql.size());
        }
    }
    std::string secrets = "eliminated ";
    for (const auto& [name, ignored] : contents(store())) {
        SqliteFile file(store() / utf8Path(name));
        for (const std::vector<std::string>& table :
             file.query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'")) {
            for (const std::vector<std::string>& row : file.query("SELECT * FROM " + table[0])) {
                for (const std::string& cell : row) {
                    const bool isKept = !cell.starts_with("'") || cell.starts_with("'application/") ||
                        cell.starts_with("'image/") || cell.starts_with("'text/") || cell == "'drive#file'" ||
                        cell.ends_with("Table'");
                    secrets += isKept ? "" : cell;
                }
            }
        }
    }
    const std::set<std::string> words = wordsOf(secrets);
    EXPECT_GT(words.size(), 30U);
    for (const std::string& word : words) { // an id of hexadecimal digits may have one with a table's name in common
        EXPECT_TRUE(bytes.find(word) == std::string::npos || kept.find(word) != std::string::npos) << word;
    }

    const std::string folder = platform::toUtf8(copy);
    const std::string queries[]{
        "SELECT size, mimeType FROM DriveDataTable ORDER BY name COLLATE NameCompare, size",
        "SELECT count(*) FROM DriveDataTable AS child JOIN DriveDataTable AS parent ON child.parentId = parent.fileId",
        ("SELECT count(DISTINCT name), count(DISTINCT name COLLATE NameCompare) FROM DriveDataTable "
         "WHERE name NOT LIKE '%.png'"),
        "SELECT a, typeof(b), typeof(c), length(b) > 0 FROM other",
        "SELECT seq FROM sqlite_sequence",
        "SELECT name, sql FROM sqlite_master ORDER BY name",
        "PRAGMA integrity_check"};
    for (const std::string& query : queries) {
        EXPECT_EQ(run({"--folder", folder, "query", query}).out, onStore({"query", query}).out);
    }
    const auto one = [](const fs::path& file, const std::string& query) { return SqliteFile(file).value(query); };
    const std::string name = one(copy / "DriveModuleData.dat", "SELECT name FROM DriveDataTable WHERE size = 1");
    EXPECT_EQ(name.size(), std::string("'KQ7ZW2.jpg'").size());
    EXPECT_EQ(one(copy / "transmission.dat", "SELECT fileName FROM UploadTaskTable"), name);
    EXPECT_TRUE(contains(one(copy / "main.dat", "SELECT Value FROM UserProperties"), "\\" + name.substr(1)));
    EXPECT_TRUE(fs::exists(copy / "gallery1.dat"));

    if (one(storeFile(), "SELECT count(*) FROM pragma_module_list WHERE name = 'fts5'") == "1") {
        changeStore("CREATE VIRTUAL TABLE words USING fts5(t)");
        EXPECT_TRUE(refused(onStore({"copy-out", folder + "2", "--redact"}), "it holds a virtual table"));
    }
    EXPECT_TRUE(refused(onStore({"copy-out", folder}), "is there already"));
    EXPECT_FALSE(fs::exists(folder + "2"));
    writeFile(store() / "FastAccess.dat", "this is no database");
    EXPECT_EQ(onStore({"copy-out", folder + "3"}).code, 1);
    EXPECT_TRUE(fs::exists(utf8Path(folder + "3") / "main.dat"));
}

TEST_F(ToolQuery, ACopyIsWholeWhateverGoesOn)
{
    const std::string folder = platform::toUtf8(m_folder.path() / "copy");
    const auto expectCopied = [&] {
        const auto before = contents(store());
        ASSERT_EQ(onStore({"copy-out", folder}).code, 0);
        EXPECT_EQ(contents(store()), before);
        EXPECT_EQ(contents(utf8Path(folder)).size(), 4U);
        const std::string query = "SELECT size FROM DriveDataTable WHERE name = 'b.txt'";
        EXPECT_EQ(run({"--folder", folder, "query", "--csv", query}).out, "size\r\n5\r\n");
        fs::remove_all(utf8Path(folder));
    };
    expectCopied();
    {
        SqliteFile client(storeFile(), SqliteFile::Collation::NameCompare);
        client.exec("PRAGMA cache_size = 1; BEGIN; UPDATE DriveDataTable SET size = 7");
        expectCopied();
        client.exec("COMMIT; BEGIN EXCLUSIVE");
        EXPECT_TRUE(
            refused(onStore({"--wait", "0.1", "copy-out", folder}), "DriveModuleData.dat: locked by another program"));
        EXPECT_TRUE(refused(onStore({"--wait", "0.1", "query", "SELECT * FROM DriveDataTable"}), "locked"));
    }
    const std::string bytes = bytesOf(storeFile());
    writeFile(storeFile(), std::string(bytes).replace(4096, 4096, 4096, '\0'));
    ASSERT_EQ(onStore({"copy-out", folder}).code, 0);
    EXPECT_EQ(bytesOf(utf8Path(folder) / "DriveModuleData.dat").substr(4096), bytesOf(storeFile()).substr(4096));
    EXPECT_TRUE(refused(onStore({"copy-out", folder + "2", "--redact"}), "damaged: page 2"));
    EXPECT_FALSE(fs::exists(folder + "2"));
}

// The rows of a folder that its list leaves out are shown with the reason, which is the list's own condition.
TEST_F(ToolQuery, WhatAListMissesIsFoundWithTheReason)
{
    const std::pair<std::string, std::string> reasons[]{{"recycled = 1", "is in the bin"},
                                                        {"directlyRecycled = 1", "was put into the bin"},
                                                        {"softDelBatchId = 7", "waits for the bin"},
                                                        {"moveBatchId = 7", "waits to move"},
                                                        {"needToDisplay = 2", "is not to be displayed"},
                                                        {"needToDisplay = NULL", "is not to be displayed"},
                                                        {"recycled = NULL", "is in the bin (recycled = NULL)"},
                                                        {"mimeType = NULL", "is neither"},
                                                        {"hardDelBatchId = 7", ""},
                                                        {"restoreBatchId = 7", ""}};
    for (const auto& [change, reason] : reasons) {
        SCOPED_TRACE(change);
        changeStore("CREATE TABLE kept AS SELECT * FROM DriveDataTable; UPDATE DriveDataTable SET " + change +
                    " WHERE name = 'b.txt'");
        const std::size_t listed = names({"ls"}).size();
        EXPECT_EQ(listed, reason.empty() ? 3U : 2U);
        const std::vector<json> all = rows({"ls", "--all"});
        ASSERT_EQ(all.size(), 3U);
        for (const json& shown : {all.back(), rows({"find", "B.T"}).at(0)}) {
            EXPECT_EQ(shown["name"], "b.txt");
            EXPECT_EQ(shown["hidden"].size(), reason.empty() ? 0U : 1U);
            EXPECT_TRUE(contains(shown["hidden"].dump(), reason));
        }
        EXPECT_TRUE(contains(onStore({"ls", "--all"}).out, reason.empty() ? "3 in its list, 0" : "2 in its list, 1"));
        changeStore("DELETE FROM DriveDataTable; INSERT INTO DriveDataTable SELECT * FROM kept; DROP TABLE kept");
    }
    EXPECT_EQ(names({"ls", "--all", "--sort", "-size", "--offset", "1"}),
              (std::vector<std::string>{"a9.txt", "b.txt"}));
    EXPECT_EQ(names({"ls", "--all", "--sort", "-name", "--count", "1"}), std::vector<std::string>{"b.txt"});
}

TEST_F(ToolQuery, NamesAreFoundByPattern)
{
    fill({"\xD0\x96ub/aa.txt", "x[1].txt", "Abc"});
    ASSERT_EQ(scan().code, 0);
    const std::pair<std::string, std::vector<std::string>> cases[]{
        {"a?.TXT", {"a9.txt", "aa.txt"}},
        {"a*", {"a9.txt", "A10.txt", "aa.txt", "Abc"}},
        {"a* --case", {"a9.txt", "aa.txt"}},
        {"[!a-w]*", {"x[1].txt", "\xD0\x96ub"}},
        {"x\\[1]*", {"x[1].txt"}},
        {"x[[]1*", {"x[1].txt"}},
        {"\xD0\xB6U", {"\xD0\x96ub"}},
        {"*.*.*", {}},
        {".t --offset 1 --count 2", {"A10.txt", "aa.txt"}},
        {"[", {"x[1].txt"}},
        {"*b*c*", {"Abc"}},
        {"b", {"Abc", "b.txt", "\xD0\x96ub"}},
    };
    for (const auto& [line, found] : cases) {
        EXPECT_EQ(names(split("find " + line)), found) << line;
    }
    EXPECT_EQ(rows({"find", "aa.txt"}).at(0)["path"], "/\xD0\x96ub/aa.txt");
    EXPECT_EQ(rows({"view", "document"}).at(2)["path"], "/\xD0\x96ub/aa.txt");
    EXPECT_TRUE(contains(onStore({"stat", "/"}).out, "rows, 40 bytes (40 B)\n"));
    changeStore("UPDATE DriveDataTable SET modifiedTime = 1700000000123 WHERE name = 'b.txt'");
    EXPECT_TRUE(contains(onStore({"stat", "/b.txt"}).out, "2023-11-14 22:13:20 UTC (1700000000123)"));
}

TEST_F(ToolQuery, RowsThatTheLibraryKeepsToItselfAreListed)
{
    succeed({"init --gallery g.dat"});
    SqliteFile main(store() / "main.dat");
    main.fill(2);
    main.exec("UPDATE UBAUserLog SET startTime = 1700000000123");
    changeStore("INSERT INTO GalleryFile SELECT "
                "'u','','','',0,0,'','',9,'',0,'','',0,0,0,'','',0,0,'',0,'p.jpg','',0,0,'','','',''",
                "g.dat");
    const std::tuple<Arguments, std::size_t, std::string, std::string> cases[]{
        {{"logs"}, 4, R"("table":"UserLogTable")", "2023-11-14 22:13:20 UTC (1700000000123)"},
        {{"changes"}, 2, R"("fileName":"id-2")", "T_CloudFileTable: 1-2 of 2"},
        {{"changes", "--offset", "1"}, 1, R"("fileName":"id-1")", "T_CloudFileTable: 2-2 of 2"},
        {{"cards"}, 4, R"("table":"T_NotepadCard","value":"id-1")", "2    id-2"},
        {{"gallery", "list"}, 1, R"({"Album":0,"GalleryFile":1,"gallery":"g.dat"})", "g.dat        1       0"},
        {{"gallery", "list", "--gallery", "g.dat"}, 1, R"("FileName":"p.jpg")", "9 bytes"}};
    const auto expectAll = [&] {
        for (const auto& [command, count, first, table] : cases) {
            SCOPED_TRACE(testing::PrintToString(command));
            const std::vector<json> listed = rows(command);
            ASSERT_EQ(listed.size(), count);
            EXPECT_TRUE(contains(listed.front().dump(), first));
            EXPECT_TRUE(contains(onStore(command).out, table));
        }
    };
    expectAll();
    main.exec("ALTER TABLE T_CloudFileTable DROP COLUMN imageRotate; ALTER TABLE T_CloudFileTable DROP COLUMN status");
    expectAll();
    main.exec("DROP TABLE T_NotepadCard");
    EXPECT_TRUE(contains(onStore({"cards"}).out, "T_NotepadCard: no table\nkey"));
    main.exec("DROP TABLE T_WaitHandleCardItem");
    EXPECT_TRUE(refused(onStore({"cards"}), "main.dat has no such table"));
}

} // namespace
