#pragma once

#include "stores/storeshape.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbservice {

class Database;

/// What could be saved of a table.
struct SavedTable {
    std::string table;
    std::int64_t saved = 0;
    std::int64_t lost = 0;             ///< rows that an index tells of, or that the new table has refused
    bool mayLackMore = false;          ///< whether there may be rows of which nothing tells
    std::vector<std::string> lostKeys; ///< of the lost rows, as far as they are known
};

struct Salvage {
    std::vector<SavedTable> tables;
    std::vector<std::string> leftOut; ///< tables that are none of the library's
    bool knowsGivenIds = true;        ///< whether ids that were given before cannot be given again
};

/// Lays the library's tables of a kind down in a new file and carries over what can be read of a damaged one. Around a
/// damage it reads by ranges of row numbers from both sides, asks the table's indexes which rows there were, and looks
/// for those on every page of the file.
///
/// Throws a `Failure` where the damaged file does not even tell its tables, and where the new one cannot be written.
Salvage salvage(Database& damaged, const StoreShape& shape, const StoreKind& kind, Database& fresh);

} // namespace dbservice
