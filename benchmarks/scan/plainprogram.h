#pragma once

#include <string>

namespace benchmarks {

/// What somebody would write for this one job, against the system's calls and SQLite's C interface: nothing is looked
/// at twice, nothing is reported, and nobody else can use the store meanwhile. Failures throw `std::runtime_error`.
class PlainProgram {
public:
    /// The file of a store that is laid down already.
    explicit PlainProgram(std::string store) : m_store(std::move(store)) { }

    /// Fills the drive store with the rows that `dbservice scan` makes of the folder, in one transaction and with each
    /// row put into the indexes that are there.
    void fill(const std::string& folder) const;
    /// Walks the folder, and reads all columns of all rows into memory that it uses again.
    void walkAndRead(const std::string& folder) const;
    /// The statements of `dbservice count`.
    void count() const;
    /// That of `dbservice stat /`.
    void countBelowRoot() const;
    /// Fills the gallery with the rows that `dbservice gallery import` makes of the folder, in one transaction.
    void fillGallery(const std::string& folder) const;

private:
    std::string m_store;
};

/// Throws unless the two stores hold the same rows in a table, and the tool's has all indexes of the other.
void requireSameRows(const std::string& tools, const std::string& other, const std::string& table);

} // namespace benchmarks
