#include "stores/salvage.h"

#include "stores/database.h"
#include "stores/pagerows.h"
#include "stores/storefile.h"
#include "terminal/failure.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>
#include <unordered_set>

namespace dbservice {

namespace {

/// A range of row numbers, both ends in it.
struct Range {
    std::int64_t first = std::numeric_limits<std::int64_t>::min();
    std::int64_t last = std::numeric_limits<std::int64_t>::max();
};

std::int64_t middle(const Range& range)
{
    const auto width = static_cast<std::uint64_t>(range.last) - static_cast<std::uint64_t>(range.first);
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(range.first) + width / 2);
}

/// Of the new file, beside the failures of the damaged one, which are borne.
class WriteFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Puts rows into a new table.
class RowWriter {
public:
    /// `columns` are those of the new table that the rows have, in their order; ahead of them is the row's number.
    RowWriter(Database& fresh, const TableShape& table, const std::vector<const ColumnShape*>& columns) : m_fresh(fresh)
    {
        const auto number = std::find_if(table.columns.begin(), table.columns.end(), [&](const ColumnShape& column) {
            return column.key == 1 && column.type == "INTEGER"; // which is the row's number
        });
        std::string names = number == table.columns.end() ? "rowid" : "";
        std::string values = number == table.columns.end() ? "?1" : "";
        const auto add = [&](const ColumnShape& column, const std::string& value) {
            names += (names.empty() ? "" : ", ") + inQuotes(column.name, '"');
            values += values.empty() ? "" : ", ";
            values += !column.notNull ? value : "IFNULL(" + value + ", " + (column.type == "TEXT" ? "''" : "0") + ")";
        };
        for (const ColumnShape& column : table.columns) {
            const auto found = std::find(columns.begin(), columns.end(), &column);
            if (found != columns.end()) {
                add(column, "?" + std::to_string(found - columns.begin() + 2));
            } else if (column.notNull && !column.hasDefault) {
                add(column, "NULL");
            }
        }
        m_insert = "INSERT INTO " + inQuotes(table.name, '"') + "(" + names + ") VALUES(" + values + ")";
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(fresh.handle(), m_insert.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            fail();
        }
        m_statement.reset(statement);
    }

    /// Whether the table takes the row: one with the key of another is refused.
    bool write(const Database::Row& row)
    {
        for (int column = 0; column < row.size(); ++column) {
            if (bind(row, column) != SQLITE_OK) {
                fail();
            }
        }
        const int code = sqlite3_step(m_statement.get());
        sqlite3_reset(m_statement.get());
        if (code != SQLITE_DONE && code != SQLITE_CONSTRAINT) {
            fail();
        }
        return code == SQLITE_DONE;
    }

    /// The same for the row's number and the values of its columns.
    bool write(const std::vector<Database::Value>& values)
    {
        try {
            m_fresh.run(m_insert, values);
            return true;
        } catch (const Failure&) {
            if (sqlite3_extended_errcode(m_fresh.handle()) % 256 != SQLITE_CONSTRAINT) {
                fail();
            }
            return false;
        }
    }

private:
    int bind(const Database::Row& row, int column)
    {
        sqlite3_stmt* const statement = m_statement.get();
        const int place = column + 1;
        const std::string_view bytes = row.text(column);
        switch (row.type(column)) {
        case SQLITE_INTEGER:
            return sqlite3_bind_int64(statement, place, row.number(column));
        case SQLITE_FLOAT:
            return sqlite3_bind_double(statement, place, row.real(column));
        case SQLITE_TEXT:
            return sqlite3_bind_text64(statement, place, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC,
                                       SQLITE_UTF8);
        case SQLITE_BLOB:
            return sqlite3_bind_blob64(statement, place, bytes.empty() ? "" : bytes.data(), bytes.size(),
                                       SQLITE_STATIC);
        default:
            return sqlite3_bind_null(statement, place);
        }
    }

    [[noreturn]] void fail() const
    {
        throw WriteFailure(std::string("cannot write the new file: ") + sqlite3_errmsg(m_fresh.handle()));
    }

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    Database& m_fresh;
    std::string m_insert;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

/// The rows of one table.
class TableSalvage {
public:
    TableSalvage(Database& damaged, const TableShape& there, const TableShape& table, Database& fresh)
        : m_damaged(damaged),
          m_there(there),
          m_table(there.name),
          m_name(inQuotes(there.name, '"')),
          m_columns(common(there, table)),
          m_writer(fresh, table, m_columns),
          m_select(select(m_columns, m_name))
    {
        m_found.table = table.name;
    }

    SavedTable run()
    {
        if (const std::optional<Range> gap = readFromBothSides({})) {
            m_found.mayLackMore = !askIndexes();
            if (m_found.mayLackMore) {
                halve(*gap);
            }
            readKnown();
            readPages();
        }
        m_found.lost += static_cast<std::int64_t>(
            std::count_if(m_known.begin(), m_known.end(), [&](const auto& known) { return isLost(known); }));
        for (const auto& [row, key] : m_known) {
            if (isLost({row, key}) && !key.empty()) {
                m_found.lostKeys.push_back(key);
            }
        }
        return std::move(m_found);
    }

private:
    static std::vector<const ColumnShape*> common(const TableShape& there, const TableShape& table)
    {
        std::vector<const ColumnShape*> columns;
        for (const ColumnShape& column : table.columns) {
            if (there.column(column.name) != nullptr) {
                columns.push_back(&column);
            }
        }
        return columns;
    }

    static std::string select(const std::vector<const ColumnShape*>& columns, const std::string& table)
    {
        std::string text = "SELECT rowid";
        for (const ColumnShape* column : columns) {
            text += ", " + inQuotes(column->name, '"');
        }
        return text + " FROM " + table + " NOT INDEXED WHERE rowid ";
    }

    bool isLost(const std::pair<std::int64_t, std::string>& known) const { return !m_seen.contains(known.first); }

    /// Reads rows up to the first that cannot be read, and whether there was none such.
    bool read(const std::string& condition, const std::vector<Database::Value>& values)
    {
        try {
            m_damaged.run(m_select + condition, values, [this](const Database::Row& row) {
                m_last = row.number(0);
                if (m_seen.insert(m_last).second) {
                    ++(m_writer.write(row) ? m_found.saved : m_found.lost);
                }
            });
            return true;
        } catch (const Failure&) {
            return false;
        }
    }

    /// What is between the first row from either side that cannot be read; nothing if all can.
    std::optional<Range> readFromBothSides(Range range)
    {
        m_last = range.first;
        if (read("BETWEEN ? AND ? ORDER BY rowid", {range.first, range.last})) {
            return std::nullopt;
        }
        range.first = m_seen.contains(m_last) && m_last < range.last ? m_last + 1 : range.first;
        m_last = range.last;
        read("BETWEEN ? AND ? ORDER BY rowid DESC", {range.first, range.last});
        range.last = m_seen.contains(m_last) && m_last > range.first ? m_last - 1 : range.last;
        return range;
    }

    /// Reads what is left between damaged places, the widest ranges first. A row that cannot be read and a number
    /// without a row look the same and cost the same, so that there is a limit.
    void halve(const Range& gap)
    {
        constexpr int limit = 4000;
        std::deque<Range> ranges{gap};
        for (int reads = 0; !ranges.empty() && reads < limit; ++reads) {
            const std::optional<Range> rest = readFromBothSides(ranges.front());
            ranges.pop_front();
            if (rest && rest->first < rest->last) {
                ranges.push_back({rest->first, middle(*rest)});
                ranges.push_back({middle(*rest) + 1, rest->last});
            }
        }
    }

    /// Asks every index for the numbers of the rows. Whether one of them could be read to its end.
    bool askIndexes()
    {
        bool whole = false;
        std::vector<std::pair<std::string, std::string>> indexes; // with the key's column
        try {
            m_damaged.run("SELECT list.name, IIF(list.origin = 'pk', info.name, '') FROM pragma_index_list(?) AS list, "
                          "pragma_index_info(list.name) AS info WHERE info.seqno = 0",
                          {m_table}, [&](const Database::Row& row) {
                              indexes.emplace_back(std::string(row.text(0)), std::string(row.text(1)));
                          });
        } catch (const Failure&) { // then nobody is to be asked
        }
        for (const auto& [index, column] : indexes) {
            const std::string key = column.empty() ? "''" : inQuotes(column, '"');
            try {
                m_damaged.run("SELECT rowid, " + key + " FROM " + m_name + " INDEXED BY " + inQuotes(index, '"'), {},
                              [this](const Database::Row& row) {
                                  std::string& known = m_known[row.number(0)];
                                  known = known.empty() ? row.text(1) : known;
                              });
                whole = true;
            } catch (const Failure&) { // what it has told up to there counts
            }
        }
        return whole;
    }

    /// The rows that an index tells of, one by one.
    void readKnown()
    {
        for (const auto& [row, key] : m_known) {
            if (!m_seen.contains(row)) {
                read("= ?", {row});
            }
        }
    }

    /// The rows that no way leads to any more, because a page on it is gone. One on a page without a way is taken for
    /// one of this table when an index tells its number and its key.
    void readPages()
    {
        const auto keyAt = std::find_if(m_there.columns.begin(), m_there.columns.end(),
                                        [](const ColumnShape& column) { return column.key == 1; }) -
            m_there.columns.begin();
        const bool isLacking = std::any_of(m_known.begin(), m_known.end(), [this](const auto& known) {
            return isLost(known) && !known.second.empty();
        });
        if (!isLacking) {
            return;
        }
        PageRows(m_damaged).forEach([&](std::int64_t number, const std::vector<Database::Value>& values) {
            const auto known = m_known.find(number);
            const auto place = static_cast<std::size_t>(keyAt);
            if (known == m_known.end() || known->second.empty() || m_seen.contains(number) || place >= values.size() ||
                values.size() > m_there.columns.size() || values[place] != Database::Value(known->second)) {
                return;
            }
            m_seen.insert(number);
            ++(m_writer.write(ordered(number, values)) ? m_found.saved : m_found.lost);
        });
    }

    /// A row of the file as the writer takes it.
    std::vector<Database::Value> ordered(std::int64_t number, const std::vector<Database::Value>& values) const
    {
        std::vector<Database::Value> row{number};
        for (const ColumnShape* column : m_columns) {
            const auto place = static_cast<std::size_t>(m_there.column(column->name) - m_there.columns.data());
            row.push_back(place < values.size() ? values[place] : Database::Value());
        }
        return row;
    }

    Database& m_damaged;
    const TableShape& m_there;
    const std::string m_table;
    const std::string m_name; ///< in quotes
    const std::vector<const ColumnShape*> m_columns;
    RowWriter m_writer;
    const std::string m_select;
    std::int64_t m_last = 0;
    std::unordered_set<std::int64_t> m_seen;
    std::map<std::int64_t, std::string> m_known; ///< by an index; with the key if it is told
    SavedTable m_found;
};

/// An id that was given once is not given again, not even after its row has gone.
bool carryGivenIds(Database& damaged, Database& fresh)
{
    if (fresh.number("SELECT COUNT(*) FROM sqlite_master WHERE name = 'sqlite_sequence'") == 0) {
        return true;
    }
    std::vector<std::pair<std::string, std::int64_t>> given;
    try {
        damaged.run("SELECT name, seq FROM sqlite_sequence", {},
                    [&](const Database::Row& row) { given.emplace_back(std::string(row.text(0)), row.number(1)); });
    } catch (const Failure&) {
        return false;
    }
    for (const auto& [table, last] : given) {
        const std::vector<Database::Value> values{table, last};
        if (fresh.number("SELECT COUNT(*) FROM sqlite_sequence WHERE name = ?", {table}) > 0) {
            fresh.run("UPDATE sqlite_sequence SET seq = MAX(seq, ?2) WHERE name = ?1", values);
        } else if (fresh.number("SELECT COUNT(*) FROM sqlite_master WHERE name = ?", {table}) > 0) {
            fresh.run("INSERT INTO sqlite_sequence(name, seq) VALUES(?1, ?2)", values);
        }
    }
    return true;
}

} // namespace

Salvage salvage(Database& damaged, const StoreShape& shape, const StoreKind& kind, Database& fresh)
{
    const StoreShape& library = shapeOfLibrary(kind);
    Salvage found;
    fresh.run("BEGIN");
    for (const TableShape& table : library.tables) {
        fresh.run(table.sql);
    }
    try {
        for (const TableShape& table : library.tables) {
            if (const TableShape* const there = shape.table(table.name)) {
                found.tables.push_back(TableSalvage(damaged, *there, table, fresh).run());
            }
        }
    } catch (const WriteFailure& failure) {
        throw Failure(failure.what());
    }
    for (const TableShape& table : shape.tables) {
        if (library.table(table.name) == nullptr) {
            found.leftOut.push_back(table.name);
        }
    }
    found.knowsGivenIds = carryGivenIds(damaged, fresh);
    for (const IndexShape& index : library.indexes) {
        fresh.run(index.sql);
    }
    fresh.run("COMMIT");
    return found;
}

} // namespace dbservice
