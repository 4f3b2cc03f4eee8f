#pragma once

#include <filesystem>

namespace DatabaseService {
class DriverDBProvider;
}

namespace dbservice {

class Database;

enum class NameIndex {
    Absent, ///< or not sorted by `NameCompare`, so that no order of names is stored
    Agrees,
    Disagrees
};

/// Whether the stored index of names is in this build's order. Reads all of the index, and writes nothing. What the
/// library logs as a failure meanwhile makes the answer worthless.
NameIndex examineNameIndex();

/// The same of a file that is open, with a `Failure` when it cannot be read.
NameIndex examineNameIndex(Database& database);

/// The same of the drive store's file, without a look when nobody has written to it since the last one.
NameIndex examineNameIndexUnlessMarked(const std::filesystem::path& file);

/// Brings the stored index of names into this build's order.
void rebuildNameIndex(DatabaseService::DriverDBProvider& drive);

} // namespace dbservice
