#pragma once

#include "support/drivefields.h"
#include "support/lists.h"
#include "support/observed.h"
#include "support/storetest.h"

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
    std::vector<std::string> row(const std::string& id);
    std::string ids() { return m_file.value("SELECT group_concat(fileId) FROM DriveDataTable"); }

    /// The one statement since the last look, which has a transaction to itself.
    std::string statement(const std::string& begin = "BEGIN IMMEDIATE;");

    /// How many opens failed since the last look because the folder is missing.
    std::ptrdiff_t failedOpens();

    ObservedDrive m_drive;
    SqliteFile m_file{path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare};
};

} // namespace testsupport
