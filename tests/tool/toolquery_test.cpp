// What is asked of store files with statements and by comparing them.

#include "platform/paths.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace testsupport;
using nlohmann::json;

namespace {

class ToolQuery : public ToolTest {
protected:
    ToolQuery()
    {
        for (const char* name : {"b.txt", "A10.txt", "a9.txt"}) {
            writeFile(source() / name, name);
        }
        EXPECT_EQ(scan().code, 0);
        EXPECT_EQ(onStore({"init"}).code, 0);
    }
};

TEST_F(ToolQuery, AReadingStatementRunsAndNothingElse)
{
    const std::string endless = "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) ";
    const std::string byName = "SELECT name FROM DriveDataTable WHERE name <> '' ORDER BY name COLLATE NameCompare";
    const std::string count = "SELECT count(*) FROM json_each('[1,2]'), pragma_table_info('DriveFullTask')";
    const std::tuple<std::string, Arguments, int, std::string> cases[]{
        {byName, {"--csv"}, 0, "name\r\na9.txt\r\nA10.txt\r\nb.txt\r\n"},
        {"SELECT 'a,\"' t, '' e, NULL n, x'0a' b;", {"--csv"}, 0, "t,e,n,b\r\n\"a,\"\"\",\"\",,X'0A'\r\n"},
        {"SELECT 1 a, 2.5 a, x'0a' b, NULL c -- x", {"--json"}, 0, R"({"a":1,"a:2":2.5,"b":"X'0A'","c":null})"},
        {count + " -- it's", {}, 0, "16\n"},
        {"PRAGMA integrity_check", {}, 0, "\nok\n"},
        {"EXPLAIN QUERY PLAN SELECT * FROM DriveDataTable", {}, 0, "SCAN"},
        {endless + "SELECT x FROM c", {"--count", "2"}, 0, "x\n1\n2\n"},
        {endless + "SELECT max(x) FROM c", {"--seconds", "0.1"}, 1, "longer than 0.10 seconds; --seconds"},
        {"SELECT nix FROM DriveDataTable", {}, 1, "no such column: nix; `SELECT sql"},
        {"SELEC", {}, 1, "syntax error"},
        {"SELECT zeroblob(2000000000)", {}, 1, "too big"},
        {"SELECT 1", {"--csv", "--json"}, 2, "at once"},
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
    EXPECT_TRUE(contains(
        onStore({"query", "SELECT count(*) n FROM FastAccess", "--file", platform::toUtf8(store() / "FastAccess.dat")})
            .out,
        "n\n0\n"));
}

TEST_F(ToolQuery, TwoCopiesAreComparedRowByRow)
{
    const fs::path other = m_folder.path() / "other.db";
    const std::string names[]{platform::toUtf8(storeFile()), platform::toUtf8(other)};
    const auto compared = [&](const std::string& change) {
        fs::copy_file(storeFile(), other, fs::copy_options::overwrite_existing);
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

} // namespace
