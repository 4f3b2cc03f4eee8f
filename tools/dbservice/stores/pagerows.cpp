#include "stores/pagerows.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <optional>
#include <sqlite3.h>
#include <string>

namespace dbservice {

namespace {

constexpr std::size_t fileHeader = 100;
constexpr std::size_t linkSize = 4; ///< the number of the next page at the front of an overflow page

sqlite3_file* fileOf(const Database& database)
{
    sqlite3_file* file = nullptr;
    sqlite3_file_control(database.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

} // namespace

/// Takes numbers off the front of bytes. What is not there reads as 0 and is told by `failed`.
class PageRows::Reader {
public:
    Reader(const Bytes& bytes, std::size_t at) : m_bytes(bytes), m_at(at) { }

    bool failed() const { return m_failed; }
    std::size_t at() const { return m_at; }
    std::size_t left() const { return m_bytes.size() - std::min(m_at, m_bytes.size()); }

    std::uint64_t bigEndian(std::size_t size)
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8U | byte();
        }
        return value;
    }

    /// With the sign of its first bit.
    std::int64_t whole(std::size_t size)
    {
        const std::uint64_t value = bigEndian(size);
        const auto unused = static_cast<unsigned>(64 - 8 * size);
        return static_cast<std::int64_t>(value << unused) >> unused;
    }

    /// Seven bits a byte, and eight in the ninth.
    std::uint64_t variable()
    {
        std::uint64_t value = 0;
        for (int i = 0; i < 8; ++i) {
            const unsigned next = byte();
            value = value << 7U | (next & 0x7FU);
            if (next < 0x80) {
                return value;
            }
        }
        return value << 8U | byte();
    }

    std::string text(std::size_t size)
    {
        if (size > left()) {
            m_failed = true;
            return {};
        }
        const auto begin = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_at);
        m_at += size;
        return {begin, begin + static_cast<std::ptrdiff_t>(size)};
    }

private:
    unsigned byte()
    {
        m_failed = m_failed || left() == 0;
        return m_failed ? 0 : m_bytes[m_at++];
    }

    const Bytes& m_bytes;
    std::size_t m_at;
    bool m_failed = false;
};

namespace {

constexpr std::uint64_t firstText = 13; ///< of the types of values; from here on odd ones are texts

/// The value of a type; nothing for a binary value and for a type that there is not.
template <class Reader> std::optional<Database::Value> readValue(Reader& reader, std::uint64_t type)
{
    switch (type) {
    case 0:
        return std::monostate();
    case 1:
    case 2:
    case 3:
    case 4:
        return reader.whole(static_cast<std::size_t>(type));
    case 5:
        return reader.whole(6);
    case 6:
        return reader.whole(8);
    case 7:
        return std::bit_cast<double>(reader.bigEndian(8));
    case 8:
    case 9:
        return static_cast<std::int64_t>(type - 8);
    default:
        if (type < firstText || type % 2 == 0) {
            return std::nullopt;
        }
        return reader.text(static_cast<std::size_t>((type - firstText) / 2));
    }
}

/// Types first, then values, and nothing else. Nothing where that is not so.
template <class Reader, class Bytes> std::optional<std::vector<Database::Value>> readRecord(const Bytes& payload)
{
    Reader types(payload, 0);
    const auto typesEnd = static_cast<std::size_t>(types.variable());
    Reader values(payload, typesEnd);
    std::vector<Database::Value> record;
    while (!types.failed() && types.at() < typesEnd) {
        std::optional<Database::Value> value = readValue(values, types.variable());
        if (!value) {
            return std::nullopt;
        }
        record.push_back(std::move(*value));
    }
    const bool fits = !types.failed() && types.at() == typesEnd && !values.failed() && values.left() == 0;
    return fits ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace

PageRows::PageRows(Database& database) : m_database(database)
{
    sqlite3_file* const file = fileOf(database);
    sqlite3_int64 size = 0;
    Bytes header(fileHeader);
    if (file == nullptr || file->pMethods == nullptr || file->pMethods->xFileSize(file, &size) != SQLITE_OK ||
        file->pMethods->xRead(file, header.data(), static_cast<int>(fileHeader), 0) != SQLITE_OK) {
        return;
    }
    constexpr std::size_t pageSizeAt = 16;
    constexpr std::size_t logAt = 18; // two versions, which are 2 for a write-ahead log
    constexpr std::size_t reservedAt = 20;
    constexpr std::size_t freePagesAt = 32;
    constexpr std::size_t encodingAt = 56;
    constexpr std::int64_t smallestPage = 512;
    const auto stored = static_cast<std::int64_t>(Reader(header, pageSizeAt).bigEndian(2));
    const std::int64_t pageSize = stored == 1 ? 65536 : stored;
    if (header[logAt] == 2 || Reader(header, encodingAt).bigEndian(4) != 1 || pageSize < smallestPage) {
        return;
    }
    m_pageSize = pageSize;
    m_usable = static_cast<std::size_t>(pageSize) - header[reservedAt];
    m_pages = static_cast<std::uint32_t>(size / pageSize);
    findFreePages(static_cast<std::uint32_t>(Reader(header, freePagesAt).bigEndian(4)));
}

bool PageRows::readPage(std::uint32_t number, Bytes& page) const
{
    sqlite3_file* const file = fileOf(m_database);
    page.resize(static_cast<std::size_t>(m_pageSize));
    return number >= 1 && number <= m_pages &&
        file->pMethods->xRead(file, page.data(), static_cast<int>(m_pageSize), (number - 1) * m_pageSize) == SQLITE_OK;
}

/// They may hold rows that were deleted. A list of pages, each with the numbers of others.
void PageRows::findFreePages(std::uint32_t firstTrunk)
{
    Bytes page;
    for (std::uint32_t trunk = firstTrunk; m_free.insert(trunk).second && readPage(trunk, page);) {
        Reader reader(page, 0);
        trunk = static_cast<std::uint32_t>(reader.bigEndian(4));
        for (std::uint64_t count = reader.bigEndian(4); count > 0 && !reader.failed(); --count) {
            m_free.insert(static_cast<std::uint32_t>(reader.bigEndian(4)));
        }
    }
}

void PageRows::forEach(const OnRow& onRow)
{
    constexpr unsigned char tableLeaf = 0x0D;
    Bytes page;
    for (std::uint32_t number = 1; number <= m_pages; ++number) {
        const std::size_t header = number == 1 ? fileHeader : 0;
        if (!m_free.contains(number) && readPage(number, page) && page[header] == tableLeaf) {
            page.resize(m_usable);
            readLeaf(page, header, onRow);
        }
    }
}

void PageRows::readLeaf(const Bytes& page, std::size_t header, const OnRow& onRow) const
{
    constexpr std::size_t countAt = 3;
    constexpr std::size_t cellsAt = 8;
    Reader places(page, header + cellsAt);
    for (std::uint64_t count = Reader(page, header + countAt).bigEndian(2); count > 0 && !places.failed(); --count) {
        Reader cell(page, static_cast<std::size_t>(places.bigEndian(2)));
        const auto size = static_cast<std::size_t>(cell.variable());
        const auto number = static_cast<std::int64_t>(cell.variable());
        Bytes payload;
        if (!cell.failed() && readPayload(page, cell, size, payload)) {
            if (const auto record = readRecord<Reader>(payload)) {
                onRow(number, *record);
            }
        }
    }
}

/// A row that is too long for its page goes on on a chain of others.
bool PageRows::readPayload(const Bytes& page, Reader& cell, std::size_t size, Bytes& payload) const
{
    constexpr std::size_t cellOverhead = 35;
    constexpr std::size_t indexOverhead = 23;
    if (size > static_cast<std::size_t>(m_pages) * m_usable) {
        return false;
    }
    std::size_t here = size;
    if (size > m_usable - cellOverhead) {
        const std::size_t least = (m_usable - 12) * 32 / 255 - indexOverhead;
        const std::size_t most = least + (size - least) % (m_usable - linkSize);
        here = most <= m_usable - cellOverhead ? most : least;
    }
    if (here > cell.left()) {
        return false;
    }
    const auto begin = page.begin() + static_cast<std::ptrdiff_t>(cell.at());
    payload.assign(begin, begin + static_cast<std::ptrdiff_t>(here));
    std::uint64_t next = 0;
    if (here < size) {
        next = Reader(page, cell.at() + here).bigEndian(linkSize);
    }
    Bytes further;
    while (payload.size() < size) {
        if (!readPage(static_cast<std::uint32_t>(next), further)) {
            return false;
        }
        const std::size_t part = std::min(size - payload.size(), m_usable - linkSize);
        payload.insert(payload.end(), further.begin() + linkSize,
                       further.begin() + static_cast<std::ptrdiff_t>(linkSize + part));
        next = Reader(further, 0).bigEndian(linkSize);
    }
    return true;
}

} // namespace dbservice
