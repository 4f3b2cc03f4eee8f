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

} // namespace
