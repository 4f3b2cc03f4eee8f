#include "databaseservice/driverdbprovider.h"
#include "support/tooltest.h"

#include <set>

using namespace testsupport;
using nlohmann::json;

namespace {

using Names = std::vector<std::string>;

/// A scanned tree: /a/b/c, /a/one, /a/it's, /z/one and /z/two.
class ToolDrive : public ToolTest {
protected:
    ToolDrive()
    {
        fill({"a/b/c", "a/one", "a/it's", "z/one", "z/two"});
        EXPECT_EQ(scan().code, 0);
    }

    /// What waits, as "operation path" and, after an arrow, where it leads.
    Names pending() const
    {
        Names found;
        for (const json& line : rows({"pending"})) {
            found.push_back(line["operation"].get<std::string>() + " " + line["path"].get<std::string>());
            if (const std::string target = line["target"]; !target.empty()) {
                found.back() += " > " + target;
            }
        }
        return found;
    }

    void expectDone(const Arguments& arguments, const std::string& operation) const
    {
        const std::vector<json> lines = rows(arguments);
        ASSERT_EQ(lines.size(), 1U) << testing::PrintToString(arguments);
        EXPECT_EQ(lines[0]["operation"], operation) << testing::PrintToString(arguments);
        EXPECT_EQ(row("id:" + lines[0]["fileId"].get<std::string>())["name"], lines[0]["name"]);
    }
};

TEST_F(ToolDrive, ListsShowWhatIsPending)
{
    expectDone({"mkdir", "/a/new 10"}, "new");
    expectDone({"mkdir", "/a/new 10/sub/"}, "new");
    EXPECT_EQ(names({"ls", "/a"}), (Names{"b", "new 10", "it's", "one"}));
    const json made = row("/a/new 10");
    EXPECT_NE(made["newBatchId"], 0);
    EXPECT_EQ(made["mimeType"], std::string(DatabaseService::DriveDataTable::folderMimeType));

    expectDone({"rename", "/a/b", "new 9"}, "rename");
    EXPECT_EQ(names({"ls", "/a"}), (Names{"new 9", "new 10", "it's", "one"}));
    EXPECT_EQ(row("/a/new 9")["renameName"], "new 9");
    EXPECT_EQ(names({"ls", "/a/new 9"}), (Names{"c"}));

    // A name is free again as soon as its row is on its way elsewhere, and the path means the new row.
    expectDone({"mv", "/a/it's", "/"}, "move");
    expectDone({"mv", "/z/two", "/a/new 10"}, "move");
    EXPECT_EQ(names({"ls", "/z"}), (Names{"one"}));
    EXPECT_EQ(names({"view", "other"}).size(), 5U);
    expectDone({"mkdir", "/z/two"}, "new");
    EXPECT_NE(row("/z/two")["newBatchId"], 0);

    const std::vector<json> removed = rows({"rm", "/a/one", "/z", "a//one"});
    ASSERT_EQ(removed.size(), 2U);
    EXPECT_EQ(removed[0]["softDelBatchId"], removed[1]["softDelBatchId"]);
    EXPECT_EQ(removed[0]["softDeleteSrcPath"], "/a/one");
    EXPECT_NE(removed[0]["softDelTime"], 0);
    EXPECT_EQ(names({"ls"}), (Names{"a"}));
    EXPECT_EQ(pending(),
              (Names{"new /a/new 10", "new /a/new 10/sub", "new /z/two", "rename /a/new 9 > new 9", "move /a/it's > /",
                     "move /z/two > /a/new 10", "bin /a/one", "bin /z"}));

    // Until the client has synchronised, what was done can be undone.
    expectDone({"restore", "/z"}, "withdrawn");
    expectDone({"mv", "/a/it's", "/a"}, "withdrawn");
    EXPECT_EQ(names({"ls"}), (Names{"a", "z"}));
    EXPECT_EQ(names({"ls", "/a"}), (Names{"new 9", "new 10", "it's"}));

    // What a client does with pending deletions when it synchronises.
    changeStore("UPDATE DriveDataTable SET recycled = 1, directlyRecycled = 1, softDelete = 0, softDelBatchId = 0, "
                "recycledTime = softDelTime WHERE softDelBatchId <> 0");
    EXPECT_EQ(names({"recycle"}), Names{"one"});
    expectDone({"mkdir", "/a/one"}, "new");
    EXPECT_EQ(onStore({"restore", "/a/one"}).code, 1); // the name is taken
    expectDone({"rename", "/a/one", "other"}, "rename");
    expectDone({"rm", "--final", "/a/one"}, "final"); // the one in the bin, now that the path has no other
    expectDone({"restore", "/a/one"}, "restore");
    EXPECT_EQ(names({"recycle"}), Names{});
    EXPECT_EQ(names({"ls", "/a"}), (Names{"new 9", "new 10", "other", "it's"}));
    expectDone({"rm", "--final", "/a/it's"}, "final");
    EXPECT_EQ(names({"ls", "/a"}).back(), "it's");
    const Names all = pending();
    EXPECT_EQ(Names(all.end() - 2, all.end()), (Names{"final /a/it's", "restore /a/one"}));

    std::set<json> batches;
    for (const json& line : rows({"pending"})) {
        EXPECT_TRUE(batches.insert(line["batchId"]).second) << line;
    }
    EXPECT_TRUE(contains(onStore({"pending"}).out, std::to_string(all.size()) + " operations on"));
}

TEST_F(ToolDrive, RefusesWhatCannotBe)
{
    succeed({"mkdir /gone", "mkdir /gone/in", "mkdir /gone/in/it", "rm /gone/in/it", "rm /gone", "mv /a/b /z"});
    changeStore(
        "INSERT INTO DriveDataTable(fileId, name, parentId, recycled, directlyRecycled, restoreBatchId) VALUES "
        "('along', 'along', 'bin', 1, 0, 0), ('returns', 'returns', 'bin', 1, 1, 5), "
        "('bin', 'bin', 'top', 1, 1, 0);"
        // A circle, which no walk may follow for ever.
        "INSERT INTO DriveDataTable(fileId, name, parentId, mimeType, recycled, directlyRecycled, newBatchId) "
        "SELECT column1, column1, column2, mimeType, 0, 0, 9 FROM DriveDataTable, (VALUES ('x', 'y'), ('y', 'x')) "
        "WHERE name = 'z'");
    EXPECT_EQ(pending().size(), 9U);
    const auto before = contents(store());
    using Case = std::pair<Arguments, std::string>;
    for (const auto& [arguments, told] : {
             Case{{"mkdir", "/"}, "does not end in a name"},
             {{"mkdir", "id:new"}, "does not end in a name"},
             {{"mkdir", "/a"}, "something of the name a"},
             {{"mkdir", "/z/b"}, "something of the name b"}, // on its way there
             {{"mkdir", "/a/one/new"}, "is not a folder"},
             {{"mkdir", "/gone/in/new"}, "above it is deleted"},
             {{"rename", "/", "new"}, "the root"},
             {{"rename", "/a/one", "a/b"}, "is no name"},
             {{"rename", "/a/one", "it's"}, "something of the name it's"},
             {{"rename", "/gone", "new"}, "waits for its deletion"},
             {{"rename", "id:along", "new"}, "in the bin"},
             {{"mv", "/", "/a"}, "the root"},
             {{"mv", "/z", "/a/b"}, "itself or below it"}, // which is on its way into /z
             {{"mv", "id:x", "id:y"}, "itself or below it"},
             {{"mv", "/a/one", "/a"}, "already"},
             {{"mv", "/a/b", "/z"}, "already"},
             {{"mv", "/a/one", "/z"}, "something of the name one"},
             {{"mv", "/a/one", "/gone"}, "is deleted"},
             {{"rm", "/a/one", "/none"}, "cannot find /none"},
             {{"rm", "/gone"}, "waits for its deletion"},
             {{"rm", "/gone/in"}, "above it is deleted"},
             {{"rm", "--final", "id:returns"}, "its return"},
             {{"rm", "[/a,/z]"}, "cannot find /["}, // one path, not two
             {{"restore", "/a/one"}, "cannot find /a/one"},
             {{"restore", "/gone/in/it"}, "above it is deleted"},
             {{"restore", "id:along"}, "restore that one"},
             {{"restore", "id:returns"}, "its return"},
         }) {
        EXPECT_TRUE(refused(onStore(arguments), told)) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(contents(store()), before);
    EXPECT_EQ(run({"--folder", m_folder.path().string() + "/source", "mkdir", "/x"}).code, 1);
    EXPECT_FALSE(std::filesystem::exists(source() / "DriveModuleData.dat"));
}

TEST_F(ToolDrive, AScanLeavesAloneWhatIsPending)
{
    succeed({"mkdir /a/new", "rename /a/one 1", "rename /z/one 2", "rm /a/it's", "rm --final /z/two"});
    changeStore("UPDATE DriveDataTable SET data2 = 1 WHERE name = 'new'"); // by a scan that was cut off
    const Names before = pending();
    // One renamed row stays on disk and the other goes; the folder of the second goes as well.
    writeFile(source() / "a" / "one", "longer");
    std::filesystem::remove(source() / "a" / "it's");
    std::filesystem::remove_all(source() / "z");
    const Ran ran = scan();
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_EQ(numbers(ran)[3], 1); // z itself
    EXPECT_EQ(row("/a/1")["size"], 6);
    EXPECT_EQ(row("/a/new")["data2"], "");
    EXPECT_EQ(numbers(scan())[4], 2);
    Names after = pending();
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.front(), before.front());
    // What is below a folder without a row is known by the folder's id, in both directions.
    EXPECT_EQ(after.back().find("final id:"), 0U) << after.back();
    EXPECT_EQ(row(after.back().substr(6))["name"], "two");
}

// A trigger stands for another program that writes at the same time, and for a disk that loses what is written.
TEST_F(ToolDrive, FailsWhenARowIsNotAsWritten)
{
    changeStore("CREATE TRIGGER undo AFTER UPDATE OF softDelBatchId ON DriveDataTable BEGIN "
                "UPDATE DriveDataTable SET softDelTime = 1 WHERE fileId = NEW.fileId; END;"
                "CREATE TRIGGER drop_it AFTER INSERT ON DriveDataTable BEGIN "
                "DELETE FROM DriveDataTable WHERE fileId = NEW.fileId; END;");
    for (const Arguments& command : {Arguments{"rm", "/a/one"}, {"mkdir", "/new"}}) {
        EXPECT_TRUE(refused(onStore(command), "is not as it should be"));
    }
}

TEST_F(ToolDrive, ShowsTheConfigurationAndTheTasks)
{
    EXPECT_EQ(rows({"config"}).at(0), (json{{"DriveConfTable", nullptr}, {"DriveFullTask", json::array()}}));
    changeStore("INSERT INTO DriveConfTable(id, isFirstStart, startCursor, lastFullSyncTimestamp) VALUES "
                "(7, 1, 'here', 1700000000123), (8, 0, '', 0);"
                "INSERT INTO DriveFullTask(fileId, cursor, state, updateTime) VALUES ('folder', 'next', 3, 9)");
    const json shown = rows({"config"}).at(0);
    EXPECT_EQ(shown["DriveConfTable"].size(), 23U);
    EXPECT_TRUE(holds(shown["DriveConfTable"], {{"startCursor", "here"}, {"lastFullSyncTimestamp", 1700000000123}}));
    EXPECT_EQ(shown["DriveFullTask"].dump(),
              R"([{"cursor":"next","data1":"","data2":"","data3":"","data4":"","fileId":"folder","state":3,)"
              R"("updateTime":9}])");
    const Ran table = onStore({"config"});
    EXPECT_TRUE(contains(table.out, "startCursor"));
    EXPECT_EQ(table.out.find("SyncRootPath"), std::string::npos);
    EXPECT_TRUE(contains(table.err, "2 configurations"));
}

} // namespace
