#pragma once

#include "support/drivefields.h"
#include "support/enginelines.h"
#include "support/lists.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <algorithm>
#include <string>
#include <vector>

namespace testsupport {

/// A test with a drive store that is laid down, and a look at its file past the library.
struct DriveTest : StoreTest {
    DriveTest()
    {
        m_drive.InitDatabase();
        m_drive.trace.take();
    }

    /// The columns of a full read.
    std::vector<std::string> row(const std::string& id) const
    {
        const std::string columns = joined(driveColumns());
        return m_file.query("SELECT " + columns + " FROM DriveDataTable WHERE fileId = '" + id + '\'').at(0);
    }
    std::string ids() const { return m_file.value("SELECT group_concat(fileId) FROM DriveDataTable"); }

    /// The one statement since the last look, which has a transaction to itself.
    std::string statement(const std::string& begin = "BEGIN IMMEDIATE;")
    {
        const std::vector<std::string> trace = m_drive.trace.take();
        EXPECT_EQ(trace.size(), 3U);
        EXPECT_TRUE(trace.front().ends_with(':' + begin));
        EXPECT_TRUE(trace.back().ends_with(":COMMIT;"));
        return trace.at(1).substr(trace.at(1).find(':') + 1);
    }

    /// How many opens failed since the last look because the folder is missing.
    std::ptrdiff_t failedOpens()
    {
        return std::ranges::count_if(m_log.take(), [](auto& line) { return line.ends_with("datdoes not exist."); });
    }

    const EngineLines lines{"DriveModuleData.dat"};
    ObservedDrive m_drive;
    SqliteFile m_file{path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare};
};

} // namespace testsupport
