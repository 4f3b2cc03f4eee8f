#pragma once

#include "support/drivefields.h"
#include "support/lists.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <functional>
#include <string>
#include <vector>

namespace testsupport {

/// An update of rows of the drive's table by one statement.
struct DriveUpdate {
    const char* name;
    std::function<bool(DatabaseService::DriverDBProvider&, const DatabaseService::DriveDataTable&)> call;
    std::string columns; ///< in the statement's order, with "=" and the parameter where that is not the namesake
    std::string tail = "WHERE fileId = :fileId";
};

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

    /// Fills a row, has `update` change it from a record that differs in every member, and compares statement and row
    /// with what it names. An update by `helpData` gets the row's id there.
    void expectExactly(const DriveUpdate& update);

    ObservedDrive m_drive;
    SqliteFile m_file{path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare};
};

} // namespace testsupport
