#pragma once

#include "databaseservice/driverdbprovider.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace dbservice {

/// What is in any store's file, whatever it should hold: a file in the folder where the library opens its files.
/// Failures are what the library logs.
class StoreFile : private DatabaseService::DriverDBProvider { // the provider that knows how names are sorted
public:
    explicit StoreFile(const std::filesystem::path& fileName);

    /// The names of the tables, as they were made one after the other, without SQLite's own.
    std::vector<std::string> tables();
    /// Throws a `Failure` where something else has the name, such as a view.
    bool hasTable(const std::string& table);
    int countRows(const std::string& table);

    // What comes from a person goes into these only when it is quoted.

    /// The number that a query gives.
    int number(std::string query);
    /// The first cells of the rows that a query gives.
    std::vector<std::string> texts(const std::string& query);

private:
    std::string m_name;
};

/// A text for a statement: between marks, with each mark in it doubled.
std::string inQuotes(std::string_view text, char mark);

/// "cut short, 4,096 of 8,192 bytes" if a database has fewer bytes than its header tells; else empty.
std::string cutShort(const std::filesystem::path& file);

} // namespace dbservice
