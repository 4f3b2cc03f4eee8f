#include "support/storestate.h"

#include "support/sqlitefile.h"

#include <stdexcept>

namespace testsupport {

State stateOf(const std::filesystem::path& folder)
{
    State state;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".dat") {
            continue;
        }
        const std::string name = entry.path().filename().string() + ' ';
        SqliteFile file(entry.path(), SqliteFile::Collation::NameCompare);
        if (const std::string verdict = file.text("PRAGMA integrity_check"); verdict != "'ok'") {
            throw std::runtime_error(name + verdict);
        }
        file.exec("BEGIN IMMEDIATE; ROLLBACK"); // nobody has a lock on it, and it can be written to
        // A row that was left out moves the ids that a store gives; such a row is known by its file and what it says.
        for (const auto& table : file.query("SELECT name, sql LIKE '%AUTOINCREMENT%' FROM sqlite_master WHERE type = "
                                            "'table' AND name NOT LIKE 'sqlite%'")) {
            const std::string from = " FROM pragma_table_info(" + table[0] + ") WHERE ";
            const bool givesIds = table[1] == "1" && file.value("SELECT count(*)" + from + "name LIKE 'fileId'") == "1";
            const std::string key =
                givesIds ? "'fileId'" : file.value("SELECT ifnull(max(name), 'rowid')" + from + "pk");
            for (const auto& row : file.query("SELECT [" + key.substr(1, key.size() - 2) + "], * FROM " + table[0])) {
                std::string cells;
                for (std::size_t at = givesIds ? 2 : 1; at < row.size(); ++at) {
                    cells += row[at] + '|';
                }
                state[name + table[0] + row[0] + (givesIds ? cells : "")] += cells;
            }
        }
        for (const auto& row : file.query("SELECT type, name, sql FROM sqlite_master WHERE name NOT LIKE 'sqlite%'")) {
            state[name + row[0] + row[1]] = row[2];
        }
    }
    return state;
}

} // namespace testsupport
