#pragma once

#include "rule.h"
#include "value.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Which rows the store holds already.
namespace migration {

/// What is to become of a row that was read.
enum class Fate : std::uint8_t {
    Open,     ///< not looked at yet
    New,      ///< goes into the store
    Renumber, ///< the same, under another id
    Replace,  ///< takes the place of the store's
    There,    ///< the store holds it
    Kept,     ///< the store holds it with other values, which stay
    Lost,     ///< has the key of a later row
};

/// Compares the rows of a table with one another and with those that the store holds.
template <class Table> class Comparison {
public:
    using Legacy = typename Table::Legacy;
    using RuleType = typename std::remove_cvref_t<decltype(Table::rules)>::value_type;

    static constexpr bool numbered = requires { Table::idColumn; };
    static constexpr bool hasKey =
        std::ranges::any_of(Table::rules, [](const RuleType& rule) { return (rule.traits & RuleType::Key) != 0; });

    enum class By { Key, All };

    static std::uint64_t digest(const Legacy& row, By by)
    {
        Digest digest;
        std::string scratch;
        forEach(by, [&](const RuleType& rule, int) {
            digest.add(rule.look(row, scratch).value);
            return true;
        });
        return digest.value();
    }

    static std::uint64_t digest(sqlite3_stmt* stored, By by)
    {
        Digest digest;
        forEach(by, [&](const RuleType&, int column) {
            digest.add(Value::stored(stored, column));
            return true;
        });
        return digest.value();
    }

    static bool equal(const Legacy& row, sqlite3_stmt* stored, By by)
    {
        std::string scratch;
        return forEach(by, [&](const RuleType& rule, int column) {
            return rule.look(row, scratch).value == Value::stored(stored, column);
        });
    }

    static bool equal(const Legacy& row, const Legacy& other, By by)
    {
        std::string scratch;
        std::string otherScratch;
        return forEach(by, [&](const RuleType& rule, int) {
            return rule.look(row, scratch).value == rule.look(other, otherScratch).value;
        });
    }

    /// Of a table with a text for a key, which is its first column.
    static std::string_view key(const Legacy& row)
    {
        static_assert((Table::rules.front().traits & RuleType::Key) != 0);
        std::string unused;
        return Table::rules.front().look(row, unused).value.text;
    }

    static Value key(sqlite3_stmt* stored) { return Value::stored(stored, 1); }

    /// As `FileLook::scan` wants them.
    static std::string columns()
    {
        std::string all;
        if constexpr (numbered) {
            all = Table::idColumn;
        }
        for (const RuleType& rule : Table::rules) {
            if ((rule.traits & RuleType::Dropped) == 0) {
                all += (all.empty() ? "" : ",") + std::string(rule.column);
            }
        }
        return all;
    }

    static int64 idOf(sqlite3_stmt* stored) { return Value::stored(stored, 1).number; }

private:
    /// Calls `visit` with each rule and the column of the scan until one call gives false.
    template <class Visit> static bool forEach(By by, const Visit& visit)
    {
        int column = numbered ? 2 : 1;
        for (const RuleType& rule : Table::rules) {
            if ((rule.traits & RuleType::Dropped) != 0) {
                continue;
            }
            if ((by == By::All || !hasKey || (rule.traits & RuleType::Key) != 0) && !visit(rule, column)) {
                return false;
            }
            ++column;
        }
        return true;
    }
};

/// Rows by a number that many of them may share.
class RowsByNumber {
public:
    struct Entry {
        std::uint64_t number;
        int64 id;
        std::size_t row;
        auto operator<=>(const Entry&) const = default; // NOLINT(modernize-use-nullptr): a mistake of clang-tidy 14
    };

    void reserve(std::size_t rows) { m_entries.reserve(rows); }
    void add(const Entry& entry) { m_entries.push_back(entry); }
    void sort() { std::sort(m_entries.begin(), m_entries.end()); }

    std::span<Entry> with(std::uint64_t number)
    {
        const auto first = std::ranges::lower_bound(m_entries, number, {}, &Entry::number);
        return {first, std::ranges::upper_bound(m_entries, number, {}, &Entry::number)};
    }

    std::vector<Entry>& entries() { return m_entries; }

private:
    std::vector<Entry> m_entries;
};

/// The rows of a table with a text for a key, in the order of the keys.
template <class Table> class RowsByKey {
public:
    using Rows = std::vector<typename Table::Legacy>;

    struct Entry {
        std::uint64_t front; // the first letters, which most often tell
        std::size_t row;
    };

    explicit RowsByKey(const Rows& rows) : m_rows(rows)
    {
        m_entries.reserve(rows.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            m_entries.push_back({frontOf(key(row)), row});
        }
        std::ranges::sort(m_entries, [this](const Entry& left, const Entry& right) {
            const int order = compare(left, right.front, key(right.row));
            return order != 0 ? order < 0 : left.row < right.row;
        });
    }

    const std::vector<Entry>& entries() const { return m_entries; }

    std::span<const Entry> with(std::string_view text) const
    {
        const std::uint64_t front = frontOf(text);
        const auto first = std::ranges::partition_point(
            m_entries, [&](const Entry& entry) { return compare(entry, front, text) < 0; });
        const auto end =
            std::find_if(first, m_entries.end(), [&](const Entry& entry) { return compare(entry, front, text) != 0; });
        return {first, end};
    }

    /// Whether both have the same key.
    bool areAlike(const Entry& left, const Entry& right) const
    {
        return compare(left, right.front, key(right.row)) == 0;
    }

private:
    std::string_view key(std::size_t row) const { return Comparison<Table>::key(m_rows[row]); }

    int compare(const Entry& entry, std::uint64_t front, std::string_view text) const
    {
        return entry.front != front ? (entry.front < front ? -1 : 1) : key(entry.row).compare(text);
    }

    static std::uint64_t frontOf(std::string_view text)
    {
        std::uint64_t front = 0;
        for (std::size_t i = 0; i < sizeof front; ++i) {
            front = (front << 8) | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0);
        }
        return front;
    }

    const Rows& m_rows;
    std::vector<Entry> m_entries;
};

/// For a table whose key tells what a row is. Of rows that share their key the last one counts.
template <class Table> class KeyedMatch {
public:
    using Rows = std::vector<typename Table::Legacy>;

    KeyedMatch(const Rows& rows, bool replace)
        : m_rows(rows),
          m_fates(rows.size(), Fate::Open),
          m_replace(replace),
          m_byKey(rows)
    {
        // Those of one key stand in the order in which they were read.
        const auto& entries = m_byKey.entries();
        const Entry* last = nullptr;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (last != nullptr && m_byKey.areAlike(*entry, *last)) {
                const bool same = Compare::equal(m_rows[entry->row], m_rows[last->row], By::All);
                m_fates[entry->row] = same ? Fate::There : Fate::Lost;
            } else {
                last = &*entry;
            }
        }
    }

    void storeHolds(sqlite3_stmt* stored)
    {
        for (const Entry& entry : m_byKey.with(Compare::key(stored).text)) {
            if (m_fates[entry.row] == Fate::Open && Compare::equal(m_rows[entry.row], stored, By::Key)) {
                m_fates[entry.row] = Compare::equal(m_rows[entry.row], stored, By::All) ? Fate::There
                    : m_replace                                                         ? Fate::Replace
                                                                                        : Fate::Kept;
                return;
            }
        }
    }

    std::vector<Fate> finish()
    {
        std::ranges::replace(m_fates, Fate::Open, Fate::New);
        return std::move(m_fates);
    }

    /// The store finds the place of a key in an index. Keys in their order come to the places one after the other.
    std::vector<std::size_t> order() const
    {
        std::vector<std::size_t> rows(m_rows.size());
        std::ranges::transform(m_byKey.entries(), rows.begin(), &Entry::row);
        return rows;
    }

private:
    using Compare = Comparison<Table>;
    using By = typename Compare::By;
    using Entry = typename RowsByKey<Table>::Entry;

    const Rows& m_rows;
    std::vector<Fate> m_fates;
    bool m_replace;
    RowsByKey<Table> m_byKey;
};

/// Ids that no row has.
class FreeIds {
public:
    /// `taken` is sorted. New ids go on behind the highest and behind `above`, and up to `highest`.
    FreeIds(std::vector<int64> taken, int64 above, int64 highest) : m_taken(std::move(taken)), m_highest(highest)
    {
        m_last = std::max({int64{0}, above, m_taken.empty() ? 0 : m_taken.back()});
    }

    int64 next()
    {
        if (m_last < m_highest) {
            return ++m_last;
        }
        // No room above: the gaps below, from 1 on.
        while (std::ranges::binary_search(m_taken, ++m_gap)) { }
        return m_gap;
    }

private:
    std::vector<int64> m_taken;
    int64 m_highest;
    int64 m_last;
    int64 m_gap = 0;
};

/// For a table whose key is a number that says nothing of what a row is. A row is in the store if it stands there
/// under its id, with the same key columns, or with all its values under any id. Rows that are alike in everything
/// are counted off against each other.
template <class Table> class NumberedMatch {
public:
    using Rows = std::vector<typename Table::Legacy>;

    NumberedMatch(const Rows& rows, bool replace) : m_rows(rows), m_fates(rows.size(), Fate::Open), m_replace(replace)
    {
        m_byId.reserve(rows.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            m_byId.add({static_cast<std::uint64_t>(rows[row].Id), rows[row].Id, row});
        }
        m_byId.sort();
    }

    void storeHolds(sqlite3_stmt* stored)
    {
        const int64 id = Compare::idOf(stored);
        m_taken.push_back(id);
        for (const Entry& entry : m_byId.with(static_cast<std::uint64_t>(id))) {
            if (m_fates[entry.row] == Fate::Open && Compare::equal(m_rows[entry.row], stored, By::Key)) {
                m_fates[entry.row] = Compare::equal(m_rows[entry.row], stored, By::All) ? Fate::There
                    : m_replace                                                         ? Fate::Replace
                                                                                        : Fate::Kept;
                return;
            }
        }
        if (m_byContent.entries().empty()) {
            indexContent();
        }
        const std::span<Entry> alike = m_byContent.with(Compare::digest(stored, By::All));
        // The first entry's id, which nobody needs any more, says how many at the front are settled.
        for (std::size_t i = alike.empty() ? 0 : static_cast<std::size_t>(alike.front().id); i < alike.size(); ++i) {
            if (m_fates[alike[i].row] == Fate::Open && Compare::equal(m_rows[alike[i].row], stored, By::All)) {
                m_fates[alike[i].row] = Fate::There;
                return;
            }
            if (m_fates[alike[i].row] != Fate::Open && alike.front().id == static_cast<int64>(i)) {
                alike.front().id = static_cast<int64>(i) + 1;
            }
        }
    }

    std::vector<Fate> finish()
    {
        std::ranges::sort(m_taken);
        std::vector<int64> kept;
        for (const Entry& entry : m_byId.entries()) {
            if (m_fates[entry.row] == Fate::Open) {
                const bool taken =
                    std::ranges::binary_search(m_taken, entry.id) || (!kept.empty() && kept.back() == entry.id);
                m_fates[entry.row] = taken ? Fate::Renumber : Fate::New;
                if (!taken) {
                    kept.push_back(entry.id);
                }
            }
        }
        m_taken.insert(m_taken.end(), kept.begin(), kept.end());
        std::ranges::sort(m_taken);
        return std::move(m_fates);
    }

    /// As they were read.
    std::vector<std::size_t> order() const
    {
        std::vector<std::size_t> rows(m_rows.size());
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        return rows;
    }

    /// After `finish`.
    FreeIds freeIds(int64 above) { return FreeIds(std::move(m_taken), above, Table::highestId); }

private:
    using Compare = Comparison<Table>;
    using By = typename Compare::By;
    using Entry = RowsByNumber::Entry;

    void indexContent()
    {
        m_byContent.reserve(m_rows.size());
        for (std::size_t row = 0; row < m_rows.size(); ++row) {
            m_byContent.add({Compare::digest(m_rows[row], By::All), 0, row});
        }
        m_byContent.sort();
    }

    const Rows& m_rows;
    std::vector<Fate> m_fates;
    bool m_replace;
    RowsByNumber m_byId;
    RowsByNumber m_byContent;
    std::vector<int64> m_taken;
};

} // namespace migration
