#include "support/sqlitefile.h"
#include "support/tooltest.h"

using namespace testsupport;
using nlohmann::json;

namespace {

class ToolTransfers : public ToolTest {
protected:
    ToolTransfers() { EXPECT_EQ(onStore({"init"}).code, 0); }

    Rows query(const std::string& sql) const { return SqliteFile(store() / "transmission.dat").query(sql); }
    void change(const std::string& sql) const { changeStore(sql, "transmission.dat"); }
    /// Has rows passed over, which stands for what makes a writer fail in silence.
    void ignore(const std::string& what) const
    {
        change("CREATE TRIGGER \"" + what + "\" BEFORE " + what + " BEGIN SELECT RAISE(IGNORE); END");
    }
};

TEST_F(ToolTransfers, SimulationsLoseNothing)
{
    change("INSERT INTO UploadTaskTable(id, fileName) VALUES(7, 'kept'), (-1, 'odd')");
    for (const auto& [transfers, threads] : {std::pair("500", "4"), {"11", "3"}, {"1", "5"}}) {
        EXPECT_EQ(rows({"transfers", "simulate", transfers, "--threads", threads}).at(0)["wrong"], json::array());
    }
    EXPECT_EQ(query("SELECT COUNT(*), MIN(id), MAX(id) FROM UploadTaskTable WHERE uploadOffset = totalLength"),
              (Rows{{"257", "8", "264"}}));
    EXPECT_EQ(query("SELECT COUNT(*), COUNT(DISTINCT fileId) FROM CompletedTaskTable"), (Rows{{"255", "255"}}));
    EXPECT_EQ(rows({"transfers", "list"}).size(), 257U + 2U + 255U);
}

TEST_F(ToolTransfers, ASimulationTellsWhatIsWrong)
{
    ignore("INSERT ON UploadTaskTable WHEN NEW.id = 3");
    ignore("UPDATE ON UploadTaskTable WHEN NEW.id = 4");
    ignore("DELETE ON DownloadTaskTable WHEN OLD.id = 2");
    ignore("INSERT ON CompletedTaskTable WHEN NEW.fileId LIKE '%-1'");
    change("CREATE TRIGGER twice AFTER INSERT ON CompletedTaskTable WHEN NEW.fileId LIKE '%-2' BEGIN "
           "INSERT INTO CompletedTaskTable(fileId) VALUES(NEW.fileId); END");
    const Ran ran = onStore({"--json", "transfers", "simulate", "10"});
    EXPECT_EQ(ran.code, 1);
    EXPECT_EQ(json::parse(ran.out)["wrong"].size(), 5U) << ran.out;
    for (const char* told : {"5 rows are not", "upload 3 is missing", "upload 4 is not at its end", "-1 is missing",
                             "-2 is there 2 times", "download 2 is still there"}) {
        EXPECT_TRUE(contains(ran.err, told));
    }
}

// A value of its own in each column, written without the library.
TEST_F(ToolTransfers, ListsEveryColumn)
{
    ASSERT_EQ(onStore({"transfers", "add", "task", "--name", "x", "--unique-id", "u"}).code, 0); // makes the table
    change("DELETE FROM TransferTask");
    for (const std::string table : {"UploadTaskTable", "DownloadTaskTable", "CompletedTaskTable", "TransferTask"}) {
        json expected{{"table", table}};
        std::string values;
        for (const std::vector<std::string>& column : query("PRAGMA table_info(" + table + ")")) {
            const std::string name = column[1].substr(1, column[1].size() - 2);
            const int number = name.starts_with("is") ? 1 : 100 + std::stoi(column[0]);
            const bool isText = column[2] == "'TEXT'";
            expected[name] = isText ? json("it's " + name) : json(number);
            values += (values.empty() ? "" : ",") + (isText ? "'it''s " + name + '\'' : std::to_string(number));
        }
        change("INSERT INTO " + table + " VALUES(" + values + ")");
        EXPECT_EQ(rows({"transfers", "list"}).back(), expected);
    }
    EXPECT_EQ(rows({"transfers", "list", "--uploads", "--tasks"}).size(), 2U);
    change("INSERT INTO DownloadTaskTable(taskType) VALUES(NULL), (5000000000)");
    EXPECT_TRUE(ended(onStore({"transfers", "list"}), 1, "no 2 rows"));
}

TEST_F(ToolTransfers, AddsRowsAndSaysWhenNot)
{
    const std::string name = "it's \xE5\x86\x99\"; --";
    Arguments arguments{"transfers", "add", "", "--name", name, "--size", "5000000000"};
    for (const std::string kind : {"upload", "download", "completed"}) {
        arguments[2] = kind;
        const json added = rows(arguments).at(0);
        EXPECT_EQ(added["fileName"].get<std::string>() + added["totalLength"].dump(), name + "5000000000");
        EXPECT_EQ(rows({"transfers", "list"}).back(), added);
    }
    ignore("INSERT ON CompletedTaskTable");
    EXPECT_TRUE(contains(onStore(arguments).err, "cannot find the new transfer"));
    arguments[2] = "task";
    arguments.insert(arguments.end(), {"--unique-id", name});
    EXPECT_EQ(rows(arguments).at(0)["FileName"], name);
    EXPECT_EQ(onStore(arguments).code, 1); // its key is taken
    EXPECT_EQ(rows({"transfers", "add", "upload", "--name", "x", "--id", "41"}).at(0)["id"], 41);
    EXPECT_EQ(rows({"transfers", "add", "upload", "--name", "x"}).at(0)["id"], 42);
    EXPECT_EQ(onStore({"transfers", "add", "upload", "--name", "y", "--id", "41"}).code, 1);
}

TEST_F(ToolTransfers, LocksAndAChangeOfUser)
{
    ASSERT_EQ(onStore({"transfers", "simulate", "3"}).code, 0);
    const auto before = contents(store());
    {
        SqliteFile other(store() / "transmission.dat");
        other.exec("BEGIN EXCLUSIVE");
        EXPECT_EQ(rows({"transfers", "list"}).size(), 3U);
        EXPECT_TRUE(refused(onStore({"transfers", "simulate", "3"}),
                            "transmission.dat: locked by another program for 3 seconds"));
    }
    EXPECT_EQ(contents(store()), before);
    EXPECT_EQ(rows({"reset", "--user", "--yes"}),
              (std::vector{json{{"file", "transmission.dat"}, {"tables", 3}, {"rows", 3}}}));
    for (const auto& [name, content] : contents(store())) {
        EXPECT_EQ(content == before.at(name), name != "transmission.dat") << name;
    }
}

} // namespace
