#pragma once

#include <string>

namespace benchmarks {

/// What somebody would write for this one job, against the system's calls and SQLite's C interface: nothing is looked
/// at twice, nothing is reported, and nobody else can use the store meanwhile. Failures throw `std::runtime_error`.
class PlainProgram {
public:
    explicit PlainProgram(std::string store) : m_store(std::move(store)) { }

    /// Fills a new store with the rows that `dbservice scan` makes of the folder, under all six indexes and in one
    /// transaction.
    void fill(const std::string& folder) const;
    /// Walks the folder, and reads all columns of all rows into memory that it uses again.
    void walkAndRead(const std::string& folder) const;
    /// The statements of `dbservice count`.
    void count() const;
    /// Those of `dbservice stat /`.
    void countBelowRoot() const;

private:
    std::string m_store;
};

/// Throws unless the two stores hold the same rows and the same indexes. The tool's store is the first.
void requireSameRows(const std::string& store, const std::string& other);

} // namespace benchmarks
