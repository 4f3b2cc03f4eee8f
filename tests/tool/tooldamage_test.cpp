// Stores that are not well. A run is right, or it fails within seconds, with the file and the reason in its last line.

#include "support/sqlitefile.h"
#include "support/tooltest.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using namespace testsupport;
using Clock = std::chrono::steady_clock;

namespace {

using Arguments = std::vector<std::string>;

/// A command that shows what is in a table.
struct Shown {
    std::string file;
    std::string table;
    Arguments command;
    bool readsAsBefore = false; ///< the same columns as a command above
};

const std::vector<Shown> shown{
    {"DriveModuleData.dat", "DriveDataTable", {"--json", "ls"}},
    {"DriveModuleData.dat", "DriveDataTable", {"--json", "count"}},
    {"DriveModuleData.dat", "DriveDataTable", {"--json", "view", "other"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"--json", "recycle"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"stat", "/b1"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"pending"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"ls", "--all"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"find", "b"}, true},
    {"DriveModuleData.dat", "DriveDataTable", {"query", "SELECT * FROM DriveDataTable"}, true},
    {"DriveModuleData.dat", "DriveConfTable", {"config"}},
    {"DriveModuleData.dat", "DriveFullTask", {"config"}},
    {"main.dat", "UserProperties", {"properties", "list"}},
    {"main.dat", "UserLogTable", {"logs"}, true},
    {"FastAccess.dat", "FastAccess", {"shortcuts", "list"}},
    {"transmission.dat", "UploadTaskTable", {"transfers", "list"}},
    {"transmission.dat", "DownloadTaskTable", {"transfers", "list"}},
    {"transmission.dat", "CompletedTaskTable", {"transfers", "list"}},
    {"transmission.dat", "TransferTask", {"transfers", "list"}},
    {"g.dat", "GalleryFile", {"gallery", "counts", "--gallery", "g.dat"}},
    {"g.dat", "GalleryFile", {"gallery", "show", "u", "--gallery", "g.dat"}},
};

std::string unquoted(const std::string& cell)
{
    return cell.substr(1, cell.size() - 2);
}

class ToolDamage : public ToolTest {
protected:
    ToolDamage()
    {
        for (const char* name : {"a/1", "a/2", "b1", "b2"}) {
            writeFile(source() / name, "x");
        }
        const std::vector<Arguments> commands{{"init", "--gallery", "g.dat"},
                                              {"scan", source().string()},
                                              {"properties", "set", "k", "v"},
                                              {"shortcuts", "add", "--title", "t"},
                                              {"transfers", "add", "upload", "--name", "n"},
                                              {"transfers", "add", "download", "--name", "n"},
                                              {"transfers", "add", "completed", "--name", "n"},
                                              {"transfers", "add", "task", "--name", "n", "--unique-id", "q"}};
        for (const Arguments& command : commands) {
            EXPECT_EQ(onStore(command).code, 0) << testing::PrintToString(command);
        }
        // The end of a value that fills pages of its own, which looks like text when it is zeros.
        changeStore("UPDATE DriveDataTable SET data1 = printf('%.*c', 9000, 'x') WHERE name = 'b1'; "
                    "INSERT INTO DriveFullTask(fileId) VALUES('f')");
        SqliteFile(store() / "g.dat")
            .exec("INSERT INTO GalleryFile SELECT 'u','','','',0,0,'','',0,'',0,'','',0,0,0,'','',0,0,'',0,'','',0,0,"
                  "'','','',''");
    }

    /// The run fails and shows nothing but the reason, which is in the last line with the file.
    void expectRefused(const Ran& ran, const std::string& file, const std::string& reason) const
    {
        const std::string last = ran.err.substr(ran.err.rfind("dbservice: "));
        EXPECT_EQ(ran.code, 1);
        EXPECT_EQ(ran.out, "");
        EXPECT_NE(last.find((store() / file).filename().string()), std::string::npos) << ran.err;
        EXPECT_NE(last.find(reason), std::string::npos) << ran.err;
    }
};

TEST_F(ToolDamage, AZeroedPageIsToldWhereItMatters)
{
    int right = 0;
    int refused = 0;
    for (const auto& [file, table, command, readsAsBefore] : shown) {
        const std::string good = onStore(command).out;
        const std::string bytes = bytesOf(store() / file);
        for (std::size_t page = 0; page < bytes.size() / 4096; ++page) {
            SCOPED_TRACE(file + " page " + std::to_string(page + 1) + " " + testing::PrintToString(command));
            writeFile(store() / file, std::string(bytes).replace(page * 4096, 4096, 4096, '\0'));
            const Ran ran = onStore(command);
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
        const std::string good = onStore(command).out;
        const std::string bytes = bytesOf(store() / file);
        const Rows columns = SqliteFile(store() / file).query("PRAGMA table_info(" + table + ")");
        for (const std::vector<std::string>& left : columns) {
            std::string names;
            std::string declared;
            for (const std::vector<std::string>& column : columns) {
                if (column != left) {
                    names += (names.empty() ? "[" : ",[") + unquoted(column[1]) + "]";
                    declared += (declared.empty() ? "[" : ",[") + unquoted(column[1]) + "] " + unquoted(column[2]);
                }
            }
            SCOPED_TRACE(table + " without " + left[1] + " " + testing::PrintToString(command));
            SqliteFile(store() / file, SqliteFile::Collation::NameCompare)
                .exec("CREATE TABLE new(" + declared + "); INSERT INTO new SELECT " + names + " FROM " + table +
                      "; DROP TABLE " + table + "; ALTER TABLE new RENAME TO " + table);
            const Ran ran = onStore(command);
            if (ran.code == 0) {
                EXPECT_EQ(ran.out, good);
            } else {
                expectRefused(ran, file, table + " lacks the column " + unquoted(left[1]) + "\n");
            }
            writeFile(store() / file, bytes);
        }
        SCOPED_TRACE(table);
        const std::string old = "ALTER TABLE " + table + " RENAME TO old";
        for (const std::string& change : {old, old + "; CREATE VIEW " + table + " AS SELECT * FROM old"}) {
            SqliteFile(store() / file, SqliteFile::Collation::NameCompare).exec(change);
            const Ran ran = onStore(command);
            EXPECT_TRUE(ran.code == 1 || ran.out.find("no table") != std::string::npos) << ran.out;
            EXPECT_TRUE(ran.code == 0 || ran.err.find("cannot find u ") != std::string::npos ||
                        ran.err.find(file, ran.err.rfind("dbservice: ")) != std::string::npos)
                << ran.err;
            writeFile(store() / file, bytes);
        }
    }
}

TEST_F(ToolDamage, NoCommandWaitsForALockWithoutEnd)
{
    enum class Kind { Reads, ReadsCopy, Writes };
    struct Case {
        std::string file;
        Arguments command;
        Kind kind;
    };
    std::vector<Case> cases{
        {"DriveModuleData.dat", {"mkdir", "/n"}, Kind::Writes},
        {"DriveModuleData.dat", {"rename", "/b1", "n"}, Kind::Writes},
        {"DriveModuleData.dat", {"rm", "/b1"}, Kind::Writes},
        {"DriveModuleData.dat", {"mv", "/b1", "/a"}, Kind::Writes},
        {"DriveModuleData.dat", {"restore", "/b1"}, Kind::Writes},
        {"DriveModuleData.dat", {"scan", source().string()}, Kind::Writes},
        {"DriveModuleData.dat", {"reindex"}, Kind::Writes},
        {"DriveModuleData.dat", {"reset", "--all", "--yes"}, Kind::Writes},
        {"main.dat", {"properties", "set", "k", "w"}, Kind::Writes},
        {"main.dat", {"properties", "remove-all", "--yes"}, Kind::Writes},
        {"FastAccess.dat", {"shortcuts", "add", "--title", "t"}, Kind::Writes},
        {"FastAccess.dat", {"shortcuts", "remove", "1"}, Kind::Writes},
        {"FastAccess.dat", {"init"}, Kind::Writes},
        {"transmission.dat", {"transfers", "simulate", "2"}, Kind::Writes},
        {"transmission.dat", {"reset", "--user", "--yes"}, Kind::Writes},
        {"g.dat", {"gallery", "import", source().string(), "--gallery", "g.dat"}, Kind::Writes},
        {"g.dat", {"reset", "--gallery", "g.dat", "--yes"}, Kind::Writes},
    };
    for (const auto& [file, table, command, readsAsBefore] : shown) {
        const bool inPlace = file == "DriveModuleData.dat" || file == "main.dat";
        cases.push_back({file, command, inPlace ? Kind::Reads : Kind::ReadsCopy});
    }
    for (const std::string lock : {"EXCLUSIVE", "IMMEDIATE", "DEFERRED; SELECT COUNT(*) FROM sqlite_master"}) {
        for (const auto& [file, command, kind] : cases) {
            SCOPED_TRACE(lock + " " + testing::PrintToString(command));
            const auto before = contents(store());
            {
                SqliteFile other(store() / file);
                other.exec("BEGIN " + lock);
                const Clock::time_point start = Clock::now();
                Arguments arguments{"--wait", "0.3"};
                arguments.insert(arguments.end(), command.begin(), command.end());
                const Ran ran = onStore(arguments);
                EXPECT_LT(Clock::now() - start, std::chrono::seconds(20));
                if (kind == Kind::Writes || (kind == Kind::Reads && lock == "EXCLUSIVE")) {
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
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.err.find("waiting for "), std::string::npos) << ran.err;
}

} // namespace
