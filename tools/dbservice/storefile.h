#pragma once

#include "databaseservice/driverdbprovider.h"

#include <filesystem>
#include <string>
#include <vector>

namespace dbservice {

/// What is in any store's file, whatever it should hold: a file in the folder where the library opens its files.
/// Failures are what the library logs.
class StoreFile : private DatabaseService::DriverDBProvider { // the provider that knows how names are sorted
public:
    explicit StoreFile(const std::filesystem::path& fileName);

    /// The names of the tables, as they were made one after the other, without SQLite's own.
    std::vector<std::string> tables();
    int countRows(const std::string& table);
    /// The number that a query gives. What comes from a person must not be pasted into it.
    int number(std::string query);
};

} // namespace dbservice
