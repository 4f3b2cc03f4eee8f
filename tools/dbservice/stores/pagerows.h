#pragma once

#include "stores/database.h"

#include <cstdint>
#include <functional>
#include <set>
#include <vector>

namespace dbservice {

/// The rows on the leaves of a database file's tables, page by page, whether a way leads to the page or not. Which
/// table a row is of is for others to tell. Rows with a binary value, rows that go on on a page that is gone, and free
/// pages are left out.
///
/// Nothing is found in a file with a write-ahead log, whose pages are not all in the file, and in one of another
/// encoding than UTF-8.
class PageRows {
public:
    /// With the row's number, and the values as they are stored: NULL for a column that is the number, and none for
    /// columns that were added later.
    using OnRow = std::function<void(std::int64_t number, const std::vector<Database::Value>& values)>;

    explicit PageRows(Database& database);

    void forEach(const OnRow& onRow);

private:
    using Bytes = std::vector<unsigned char>;
    class Reader;

    bool readPage(std::uint32_t number, Bytes& page) const;
    void findFreePages(std::uint32_t firstTrunk);
    void readLeaf(const Bytes& page, std::size_t header, const OnRow& onRow) const;
    bool readPayload(const Bytes& page, Reader& cell, std::size_t size, Bytes& payload) const;

    Database& m_database;
    std::int64_t m_pageSize = 0; ///< 0 where nothing is to be found
    std::size_t m_usable = 0;
    std::uint32_t m_pages = 0;
    std::set<std::uint32_t> m_free;
};

} // namespace dbservice
