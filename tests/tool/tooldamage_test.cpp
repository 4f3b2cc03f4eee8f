// Stores that are not well. A run is right, or it fails within seconds, with the file and the reason in its last line.

#include "support/lists.h"
#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace fs = std::filesystem;
using namespace testsupport;
using Clock = std::chrono::steady_clock;

namespace {

/// A command that shows what is in a table.
struct Shown {
    std::string file;
    std::string table;
    std::string command;
    bool readsAsBefore = false; ///< the same columns as a command above
};

const Shown shown[]{
    {"DriveModuleData.dat", "DriveDataTable", "--json ls"},
    {"DriveModuleData.dat", "DriveDataTable", "--json count"},
    {"DriveModuleData.dat", "DriveDataTable", "--json view other", true},
    {"DriveModuleData.dat", "DriveDataTable", "--json recycle", true},
    {"DriveModuleData.dat", "DriveDataTable", "stat /b1", true},
    {"DriveModuleData.dat", "DriveDataTable", "pending", true},
    {"DriveModuleData.dat", "DriveDataTable", "ls --all", true},
    {"DriveModuleData.dat", "DriveDataTable", "find b", true},
    {"DriveModuleData.dat", "DriveDataTable", "query SELECT*FROM(DriveDataTable)", true},
    {"DriveModuleData.dat", "DriveConfTable", "config"},
    {"DriveModuleData.dat", "DriveFullTask", "config"},
    {"main.dat", "UserProperties", "properties list"},
    {"main.dat", "UserLogTable", "logs", true},
    {"FastAccess.dat", "FastAccess", "shortcuts list"},
    {"transmission.dat", "UploadTaskTable", "transfers list"},
    {"transmission.dat", "DownloadTaskTable", "transfers list"},
    {"transmission.dat", "CompletedTaskTable", "transfers list"},
    {"transmission.dat", "TransferTask", "transfers list"},
    {"g.dat", "GalleryFile", "gallery counts --gallery g.dat"},
    {"g.dat", "GalleryFile", "gallery show id-1 --gallery g.dat"},
};

std::string unquoted(const std::string& cell)
{
    return cell.substr(1, cell.size() - 2);
}

class ToolDamage : public ToolTest {
protected:
    ToolDamage()
    {
        fill({"a/1", "a/2", "b1", "b2"});
        EXPECT_EQ(scan().code, 0);
        succeed({"init --gallery g.dat", "properties set k v", "shortcuts add --title t",
                 "transfers add upload --name n", "transfers add download --name n", "transfers add completed --name n",
                 "transfers add task --name n --unique-id q"});
        // The end of a value that fills pages of its own, which looks like text when it is zeros.
        changeStore("UPDATE DriveDataTable SET data1 = printf('%.*c', 9000, 'x') WHERE name = 'b1'; "
                    "INSERT INTO DriveFullTask(fileId) VALUES('f')");
        SqliteFile(store() / "g.dat").fill(1);
    }

    /// Runs a line, in which @ stands for the folder to read from.
    Ran runLine(const std::string& line) const
    {
        Arguments words = split(line);
        std::ranges::replace(words, "@", source().string());
        return onStore(words);
    }

    /// The run fails and shows nothing but the reason, which is in the last line with the file.
    void expectRefused(const Ran& ran, const std::string& file, const std::string& reason) const
    {
        EXPECT_TRUE(refused(ran, "dbservice: "));
        const std::string last = ran.err.substr(ran.err.rfind("dbservice: "));
        EXPECT_TRUE(contains(last, file) && contains(last, reason)) << ran.err;
    }
};

TEST_F(ToolDamage, AZeroedPageIsToldWhereItMatters)
{
    int right = 0;
    int refused = 0;
    for (const auto& [file, table, command, readsAsBefore] : shown) {
        const std::string good = runLine(command).out;
        const std::string bytes = bytesOf(store() / file);
        for (std::size_t page = 0; page < bytes.size() / 4096; ++page) {
            SCOPED_TRACE(file + " page " + std::to_string(page + 1) + " " + command);
            writeFile(store() / file, std::string(bytes).replace(page * 4096, 4096, 4096, '\0'));
            const Ran ran = runLine(command);
            if (ran.code == 0) {
                EXPECT_EQ(ran.out, good);
                ++right;
            } else {
                expectRefused(ran, file, page == 0 ? "is not a database" : "damaged: page " + std::to_string(page + 1));
                ++refused;
            }
        }
        writeFile(store() / file, bytes);
    }
    EXPECT_GT(right, 50);
    EXPECT_GT(refused, 50);

    fs::resize_file(storeFile(), 8192);
    expectRefused(onStore({"ls"}), "DriveModuleData.dat", "cut short, 8,192 of ");
}

TEST_F(ToolDamage, WhatATableLacksIsTold)
{
    for (const auto& [file, table, command, readsAsBefore] : shown) {
        if (readsAsBefore) {
            continue;
        }
        const std::string good = runLine(command).out;
        const std::string bytes = bytesOf(store() / file);
        const std::string columns = " FROM pragma_table_info('" + table + "')";
        for (const std::vector<std::string>& left : SqliteFile(store() / file).query("SELECT name" + columns)) {
            SCOPED_TRACE(table + " without " + left[0] + " " + command);
            const std::string others =
                SqliteFile(store() / file)
                    .value("SELECT group_concat('[' || name || ']')" + columns + " WHERE name <> " + left[0]);
            changeStore("CREATE TABLE new AS SELECT " + unquoted(others) + " FROM " + table + "; DROP TABLE " + table +
                            "; ALTER TABLE new RENAME TO " + table,
                        file);
            const Ran ran = runLine(command);
            if (ran.code == 0) {
                EXPECT_EQ(ran.out, good);
            } else {
                expectRefused(ran, file, table + " lacks the column " + unquoted(left[0]) + "\n");
            }
            writeFile(store() / file, bytes);
        }
        SCOPED_TRACE(table);
        const std::string old = "ALTER TABLE " + table + " RENAME TO old";
        for (const std::string& change : {old, old + "; CREATE VIEW " + table + " AS SELECT * FROM old"}) {
            changeStore(change, file);
            const Ran ran = runLine(command);
            EXPECT_TRUE(ran.code == 1 || ran.out.find("no table") != std::string::npos) << ran.out;
            EXPECT_TRUE(ran.code == 0 || ran.err.find("cannot find id-1 ") != std::string::npos ||
                        ran.err.find(file, ran.err.rfind("dbservice: ")) != std::string::npos)
                << ran.err;
            writeFile(store() / file, bytes);
        }
    }
}

TEST_F(ToolDamage, NoCommandWaitsForALockWithoutEnd)
{
    // What writes is refused under any lock, what reads in place under an exclusive one, and what reads a copy never.
    const std::map<std::string, std::vector<std::string>> writers{
        {"DriveModuleData.dat",
         {"mkdir /n", "rename /b1 n", "rm /b1", "mv /b1 /a", "restore /b1", "scan @", "reindex", "reset --all --yes"}},
        {"main.dat", {"properties set k w", "properties remove-all --yes"}},
        {"FastAccess.dat", {"shortcuts add --title t", "shortcuts remove 1", "init"}},
        {"transmission.dat", {"transfers simulate 2", "reset --user --yes"}},
        {"g.dat", {"gallery import @ --gallery g.dat", "reset --gallery g.dat --yes"}},
    };
    std::vector<std::tuple<std::string, std::string, std::string>> cases; // with the locks that refuse it
    for (const auto& [file, lines] : writers) {
        for (const std::string& line : lines) {
            cases.emplace_back(file, line, "EXCLUSIVE IMMEDIATE DEFERRED");
        }
    }
    for (const auto& [file, table, line, readsAsBefore] : shown) {
        cases.emplace_back(file, line, file == "DriveModuleData.dat" || file == "main.dat" ? "EXCLUSIVE" : "");
    }
    for (const std::string lock : {"EXCLUSIVE", "IMMEDIATE", "DEFERRED"}) {
        for (const auto& [file, line, refusing] : cases) {
            SCOPED_TRACE(lock + " " + line);
            const auto before = contents(store());
            {
                SqliteFile other(store() / file);
                other.exec("BEGIN " + lock + "; SELECT COUNT(*) FROM sqlite_master");
                const Clock::time_point start = Clock::now();
                const Ran ran = runLine("--wait 0.3 " + line);
                EXPECT_LT(Clock::now() - start, std::chrono::seconds(20));
                if (refusing.find(lock) != std::string::npos) {
                    expectRefused(ran, file, file + ": locked by another program for 0.30 seconds");
                } else {
                    EXPECT_EQ(ran.code, 0) << ran.err;
                }
            }
            EXPECT_TRUE(contents(store()).at(file) == before.at(file));
            for (const auto& [name, bytes] : before) {
                writeFile(store() / name, bytes); // those that were not locked have changed
            }
        }
    }

    SqliteFile other(storeFile());
    other.exec("BEGIN EXCLUSIVE");
    std::thread release([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        other.exec("ROLLBACK");
    });
    const Ran ran = onStore({"--wait", "60", "mkdir", "/n"});
    release.join();
    EXPECT_TRUE(ended(ran, 0, "waiting for "));
}

} // namespace
