#pragma once

#include "filelook.h"
#include "legacymigration.h"
#include "rowmatch.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace migration {

/// How far a run has come. Each row counts once when it is read and once when it is settled.
class Steps {
public:
    Steps(Progress progress, int64 rows) : m_progress(std::move(progress)), m_all(std::max<int64>(2 * rows, 1)) { }

    void done(int64 rows, std::string_view table)
    {
        m_done += rows;
        if (m_progress) {
            m_progress(static_cast<double>(std::min(m_done, m_all)) / static_cast<double>(m_all), table);
        }
    }

private:
    Progress m_progress;
    int64 m_all;
    int64 m_done = 0;
};

/// The store cannot be used, and going on makes no sense.
class StoreFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Carries one table over and tells all of it in the report, also when it ends with a `StoreFailure`.
template <class Table> class TableMove {
public:
    /// `legacyRows` is nothing where they cannot be counted.
    TableMove(const Plan& plan, FileLook& legacy, std::optional<int64> legacyRows, FileLook& store, Steps& steps,
              TableReport& report)
        : m_plan(plan),
          m_legacy(legacy),
          m_legacyRows(legacyRows),
          m_store(store),
          m_steps(steps),
          m_report(report)
    {
    }

    /// Whether the store took every row that was meant for it.
    bool run()
    {
        m_report.legacyTable = Table::legacyTable;
        m_report.table = Table::table;
        read();
        countLosses();
        try {
            if (!m_rows.empty()) {
                match();
                write();
            }
        } catch (const StoreFailure&) {
            settle();
            throw;
        }
        settle();
        return m_refused == 0;
    }

private:
    using Legacy = typename Table::Legacy;
    using Current = typename Table::Current;
    using Compare = Comparison<Table>;
    using RuleType = typename Compare::RuleType;
    using Match = std::conditional_t<Compare::numbered, NumberedMatch<Table>, KeyedMatch<Table>>;

    // The store gets so many rows in one transaction. Those behind them stay in memory as they were read, so that
    // smaller batches need less memory; larger ones go through the store's index less often.
    static constexpr std::size_t fewestBatchRows = 16'384;
    static constexpr std::size_t batches = 6;

    void trouble(const std::string& text) { m_report.trouble += (m_report.trouble.empty() ? "" : "; ") + text; }

    void read()
    {
        if (m_legacyRows == 0) {
            return;
        }
        m_rows.reserve(static_cast<std::size_t>(m_legacyRows.value_or(0)));
        try {
            Table::read(m_rows);
        } catch (const std::invalid_argument& error) {
            trouble(std::string("a time that is no number ended the table (") + error.what() + ")");
        } catch (const std::out_of_range& error) {
            trouble(std::string("a time beyond all numbers ended the table (") + error.what() + ")");
        }
        m_report.read = static_cast<int64>(m_rows.size());
        m_report.inLegacy = std::max(m_legacyRows.value_or(0), m_report.read);
        if (!m_legacyRows) {
            trouble("the legacy file is damaged here, and its rows cannot be counted");
        } else if (m_report.read < *m_legacyRows && m_report.trouble.empty()) {
            trouble("the legacy file is damaged here, or of another shape");
        }
        if constexpr (requires { Table::mend(m_rows, m_legacy); }) {
            m_report.mended = Table::mend(m_rows, m_legacy);
        }
        m_steps.done(m_report.inLegacy, Table::table);
    }

    void countLosses()
    {
        std::string scratch;
        for (const RuleType& rule : Table::rules) {
            if ((rule.traits & RuleType::Dropped) != 0) {
                const auto filled = std::ranges::count_if(
                    m_rows, [&](const Legacy& row) { return rule.look(row, scratch).value.holdsSomething(); });
                if (filled > 0) {
                    m_report.dropped.emplace_back(rule.column, filled);
                }
            }
        }
        constexpr bool lossy = std::ranges::any_of(
            Table::rules, [](const RuleType& rule) { return (rule.traits & RuleType::Lossy) != 0; });
        for (std::size_t i = 0; lossy && i < m_rows.size(); ++i) {
            const Legacy& row = m_rows[i];
            bool clamped = false;
            bool notANumber = false;
            for (const RuleType& rule : Table::rules) {
                if ((rule.traits & RuleType::Lossy) != 0) {
                    const Loss loss = rule.look(row, scratch).loss;
                    clamped = clamped || loss == Loss::Clamped;
                    notANumber = notANumber || loss == Loss::NotANumber;
                }
            }
            m_report.clamped += clamped;
            m_report.notNumbers += notANumber;
        }
    }

    void match()
    {
        Match match(m_rows, m_plan.replace);
        m_before = m_store.countRows(Table::table).value_or(-1);
        if (m_before > 0) {
            int64 seen = 0;
            const bool whole = m_store.scan(Compare::columns(), std::string(Table::table), [&](sqlite3_stmt* stored) {
                match.storeHolds(stored);
                ++seen;
            });
            m_before = whole ? seen : -1;
        }
        if (m_before < 0) {
            throw StoreFailure("the table " + std::string(Table::table) +
                               " cannot be read in the store: it is damaged, of another shape or locked");
        }
        m_fates = match.finish();
        m_order = match.order();
        if constexpr (requires { Table::isReserved(m_rows.front()); }) {
            for (std::size_t row = 0; row < m_rows.size(); ++row) {
                m_fates[row] = Table::isReserved(m_rows[row]) ? Fate::Kept : m_fates[row];
            }
        }
        if constexpr (Compare::numbered) {
            // A table with AUTOINCREMENT has a row of this name where it remembers the highest id that it ever had.
            const auto above = m_store.hasTable("sqlite_sequence")
                ? m_store.number("SELECT seq FROM sqlite_sequence WHERE name = '" + std::string(Table::table) + '\'')
                : std::nullopt;
            m_freeIds.emplace(match.freeIds(above.value_or(0)));
        }
        m_report.kept = std::ranges::count(m_fates, Fate::Kept);
        m_report.alreadyThere = m_report.kept + std::ranges::count(m_fates, Fate::There);
    }

    void write()
    {
        const bool writes = !m_plan.dryRun;
        const auto meant =
            static_cast<std::size_t>(std::ranges::count_if(m_fates, [](Fate fate) { return fate <= Fate::Replace; }));
        const std::size_t batchRows = std::max(fewestBatchRows, meant / batches + 1);
        m_batch.reserve(writes ? std::min(meant, batchRows) : 0);
        for (const std::size_t row : m_order) {
            const Fate fate = m_fates[row];
            if (fate > Fate::Replace) {
                continue;
            }
            m_sent.replaced += fate == Fate::Replace;
            m_sent.renumbered += fate == Fate::Renumber;
            ++m_sent.rows;
            if (writes) {
                convert(m_rows[row], fate);
                if (m_batch.size() == batchRows) {
                    flush();
                }
            }
        }
        if (writes) {
            flush();
        } else {
            m_landed = m_sent;
        }
    }

    void convert(Legacy& row, Fate fate)
    {
        Current& current = m_batch.emplace_back();
        for (const RuleType& rule : Table::rules) {
            if (rule.move != nullptr) {
                rule.move(row, current);
            }
        }
        if constexpr (Compare::numbered) {
            Table::setId(current, fate == Fate::Renumber ? m_freeIds->next() : int64{row.Id});
        }
    }

    /// Writes what has gathered and sees by counting how much of it the store took.
    void flush()
    {
        if (m_batch.empty()) {
            return;
        }
        const auto rows = static_cast<int64>(m_batch.size());
        const bool committed = Table::write(m_batch, m_plan.replace);
        m_batch.clear();
        const std::optional<int64> now = m_store.countRows(Table::table);
        const int64 added = now.value_or(m_before) - m_before;
        const int64 wanted = m_sent.rows - m_sent.replaced;
        const int64 refused = std::max<int64>(wanted - added, 0);
        const int64 refusedNow = refused - std::exchange(m_refused, refused);
        m_landed = m_sent;
        m_landed.rows -= refused;
        m_stepped += rows;
        m_steps.done(rows, Table::table);
        if (!committed || !now || (refusedNow > 0 && refusedNow == rows)) {
            throw StoreFailure("the store took no rows of " + std::string(Table::table) +
                               ": it is full, damaged, read-only or of another shape");
        }
    }

    /// What the report says of rows follows from what was found and what landed.
    void settle()
    {
        m_report.written = m_landed.rows;
        m_report.replaced = m_landed.replaced;
        m_report.renumbered = m_landed.renumbered;
        m_report.failed = m_report.read - m_report.written - m_report.alreadyThere;
        if (const auto shared = std::ranges::count(m_fates, Fate::Lost); shared > 0) {
            trouble(std::to_string(shared) + " of its rows have the key of a later row");
        }
        if (m_refused > 0) {
            trouble("the store refused " + std::to_string(m_refused) + " of its rows");
        }
        m_steps.done(m_report.inLegacy - m_stepped, Table::table);
    }

    struct Sent {
        int64 rows = 0;
        int64 replaced = 0;
        int64 renumbered = 0;
    };

    const Plan& m_plan;
    FileLook& m_legacy;
    std::optional<int64> m_legacyRows;
    FileLook& m_store;
    Steps& m_steps;
    TableReport& m_report;
    std::vector<Legacy> m_rows;
    std::vector<Fate> m_fates;
    std::vector<std::size_t> m_order; // in which rows are written
    std::optional<FreeIds> m_freeIds;
    std::vector<Current> m_batch;
    int64 m_before = 0;
    int64 m_refused = 0;
    int64 m_stepped = 0;
    Sent m_sent;
    Sent m_landed;
};

} // namespace migration
