// A row of the drive that a map changes: its id, then name and value of each entry, one a line.
#include "databaseservice/driverdbprovider.h"
#include "fuzzing.h"
#include "support/sqlitefile.h"

/// Id, name and content of each cell that is not as in the sample. NULL, 0 and an empty text count as the same.
static testsupport::Rows changes()
{
    testsupport::SqliteFile file("DriveModuleData.dat", testsupport::SqliteFile::Collation::NameCompare);
    file.exec("ATTACH '/fuzz/samples/store/DriveModuleData.dat' AS old");
    static const std::string query = file.value(
        "SELECT group_concat(replace('SELECT fileId, ''@'', n.@ FROM main.DriveDataTable n JOIN old.DriveDataTable o "
        "USING (fileId) WHERE ifnull(nullif(n.@, ''''), 0) IS NOT ifnull(nullif(o.@, ''''), 0)', '@', name), "
        "' UNION ALL ') FROM pragma_table_info('DriveDataTable') WHERE name <> 'fileId'");
    fuzzing::expect(file.value("PRAGMA integrity_check") == "'ok'", "the file is damaged");
    return file.query(query.substr(1, query.size() - 2));
}

void fuzzing::attempt(const std::string& input)
{
    constexpr std::string_view known =
        "' batchOper uploadTime renameName renameTime moveParentId moveTime softDelete deleteSrcPath softDeleteSrcPath "
        "softDelTime hardDelete hardDelTime localRestore restoreTime parentId name version '";
    startAnew();
    std::istringstream lines(input);
    std::string id, name, value;
    std::getline(lines, id);
    std::unordered_map<std::string, std::string> values;
    while (std::getline(std::getline(lines, name), value)) {
        values[name] = value;
    }
    DatabaseService::DriverDBProvider drive;
    expect(drive.UpdateDriveData(id, values), "a writer gave false");
    drive.ExecuteSQL(control ? "UPDATE DriveDataTable SET size = 7" : "SELECT 1");
    for (const auto& cell : changes()) {
        const std::string column = cell[1].substr(1, cell[1].size() - 2);
        const bool named = values.contains(column) && known.find(' ' + column + ' ') != std::string::npos;
        expect(named && cell[0] == testsupport::textCell(id), "also changed: " + cell[0] + column);
    }
}
