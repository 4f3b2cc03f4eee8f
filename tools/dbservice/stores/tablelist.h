#pragma once

#include "command.h"
#include "terminal/recordfields.h"

#include <string>
#include <vector>

namespace dbservice {

class Database;
class Session;

/// A table as people read it.
struct ListedTable {
    struct Column {
        const char* name = nullptr;
        Shown shown = Shown::Plain;
    };

    const char* name = nullptr;
    std::vector<Column> columns; ///< one that a file lacks, as an older one may, is left empty
    const char* order = nullptr; ///< as in ORDER BY
};

struct TablePage {
    unsigned offset = 0;
    unsigned count = 100;
};

/// The options --offset and --count.
Arguments tablePageOptions();

/// Prints a page of each table, and which part of the table it is. With JSON a row has its table and all its columns.
void listTables(Session& session, Database& database, const std::vector<ListedTable>& tables, const TablePage& page);

} // namespace dbservice
