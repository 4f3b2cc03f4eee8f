#pragma once

#include "databaseservice/maindatabaseprovider.h"
#include "support/enginelines.h"
#include "support/storetest.h"

#include <string>
#include <vector>

namespace testsupport {

namespace Main = DatabaseService::MainDatabaseProvider;

/// A test with a fresh `main.dat`.
class MainStoreTest : public StoreTest {
protected:
    MainStoreTest()
    {
        Main::InitMainDatabase();
        m_log.take();
    }

    /// Whether the store was opened so many times since the last look, and nothing failed.
    testing::AssertionResult openedTimes(std::size_t times)
    {
        return m_log.linesWere({times, ExpectedLine{"DatabaseOperationBase::OpenDatabase", "OpenDataBase:*", 1}});
    }

    /// A table's columns in runs of one type: a line per run, such as "TEXT NOT NULL: a b".
    static std::string columns(SqliteFile& file, const std::string& table)
    {
        std::string text;
        std::string type;
        for (const auto& row : file.query("SELECT name, type || iif(\"notnull\", ' NOT NULL', '') || "
                                          "iif(pk, ' KEY', '') FROM pragma_table_info('" +
                                          table + "')")) {
            if (row[1] != type) {
                type = row[1];
                text += (text.empty() ? "" : "\n") + type.substr(1, type.size() - 2) + ':';
            }
            text += ' ' + row[0].substr(1, row[0].size() - 2);
        }
        return text;
    }

    static std::string tables(SqliteFile& file)
    {
        return file.value("SELECT group_concat(name) FROM (SELECT name FROM sqlite_master WHERE type = 'table' AND "
                          "name <> 'sqlite_sequence' ORDER BY name)");
    }

    const EngineLines lines{"main.dat"};
    const std::string allTables =
        "'T_CloudFileTable,T_NotepadCard,T_WaitHandleCardItem,UBAUserLog,UserLogTable,UserProperties'";
    SqliteFile m_file{path(L"main.dat")};
};

} // namespace testsupport
