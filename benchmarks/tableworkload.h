#pragma once

#include "clientservices/globalparamwrapper.h"
#include "expertcells.h"
#include "expertconnection.h"
#include "harness.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace benchmarks {

/// Whether all members of all records are equal.
template <class Record> bool sameRecords(const std::vector<Record>& left, const std::vector<Record>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const Record& one, const Record& other) { return membersOf(one) == membersOf(other); });
}

/// What a contender runs: it frees the records that it was made with.
using Run = std::function<void()>;

/// Runs `function` once over the records and frees them.
template <class Record, class Function> std::function<Run(std::vector<Record>)> consuming(Function function)
{
    return [function](std::vector<Record> records) {
        return Run([function, records = std::move(records)]() mutable { function(std::exchange(records, {})); });
    };
}

/// A table that is written in batches and read whole, as the library does both, and the statements with which an
/// expert does the same; `Members<Record>` ties what they read.
template <class Record> struct TableSubject {
    using Records = std::vector<Record>;

    std::string name;  ///< of its operations on the command line, before what they do
    std::string title; ///< the same for people
    std::filesystem::path file;
    Records records; ///< in the order in which the table gives them back
    std::function<void()> create;

    std::function<Run(Records)> insert;
    std::string insertText;
    bool givesKey = false; ///< the store makes the key, the first member, and the statement leaves it out
    double insertTarget = 1.08;

    /// Empty without an operation that rewrites many rows. The statement's last parameter is the key.
    std::function<Run(Records)> update;
    std::string updateText;
    Records changed; ///< the records afterwards

    std::function<Records()> readAll; ///< empty if the library offers none
    std::string selectText;
    std::vector<std::int64_t> selectValues; ///< of its parameters
    double readTarget = 1.10;
};

/// The expert's side of such a table: text bound in place by position, cells put straight into the members.
template <class Record> class ExpertTable {
public:
    using Records = std::vector<Record>;

    void open(const std::filesystem::path& file) { m_connection.open(file); }

    void insert(const std::string& sql, const Records& records, bool givesKey)
    {
        write(sql, records, [givesKey](sqlite3_stmt* stmt, const Record& record) {
            return givesKey ? bindAll(stmt, withoutFirst(membersOf(record))) : bindAll(stmt, membersOf(record));
        });
    }

    void update(const std::string& sql, const Records& records)
    {
        write(sql, records, [](sqlite3_stmt* stmt, const Record& record) {
            constexpr int last = std::tuple_size_v<decltype(membersOf(record))>;
            return bindAll(stmt, withoutFirst(membersOf(record))) &&
                bindCell(stmt, last, std::get<0>(membersOf(record)));
        });
    }

    Records readAll(const std::string& sql, const std::vector<std::int64_t>& values)
    {
        Records records;
        m_connection.transaction("BEGIN DEFERRED", sql, [&](sqlite3_stmt* stmt) {
            for (int index = 0; const std::int64_t value : values) {
                m_connection.require(bindCell(stmt, ++index, value));
            }
            m_connection.forEachRow(
                stmt, [&](sqlite3_stmt* row) { benchmarks::readAll(row, membersOf(records.emplace_back())); });
        });
        return records;
    }

private:
    template <class Bind> void write(const std::string& sql, const Records& records, Bind bind)
    {
        m_connection.transaction("BEGIN IMMEDIATE;", sql,
                                 [&](sqlite3_stmt* stmt) { m_connection.runForEach(stmt, records, bind); });
    }

    ExpertConnection m_connection{ExpertConnection::Kind::PerCall};
};

/// The table under the library and under an expert. What one side wrote the other reads back.
template <class Record> class TableWorkload {
public:
    using Records = std::vector<Record>;

    TableWorkload(TableSubject<Record> subject, const std::filesystem::path& folder)
        : m_subject(std::move(subject)),
          m_fresh(folder / (m_subject.name + "-fresh")),
          m_full(folder / (m_subject.name + "-full"))
    {
    }

    std::vector<Operation> operations()
    {
        const auto expertRead = [this] { return m_expert.readAll(m_subject.selectText, m_subject.selectValues); };
        const Read libraryRead = m_subject.readAll ? m_subject.readAll : Read(expertRead);
        const auto expertInsert = consuming<Record>(
            [this](const Records& records) { m_expert.insert(m_subject.insertText, records, m_subject.givesKey); });
        const auto expertUpdate =
            consuming<Record>([this](const Records& records) { m_expert.update(m_subject.updateText, records); });
        std::vector<Operation> operations;
        if (m_subject.insert) {
            operations.push_back({m_subject.name + "-insert",
                                  m_subject.title + ", insert",
                                  m_subject.insertTarget,
                                  {writing("library", m_subject.insert, m_subject.records, false, expertRead),
                                   writing("expert", expertInsert, m_subject.records, false, libraryRead)},
                                  {}});
        }
        if (m_subject.update) {
            operations.push_back({m_subject.name + "-update",
                                  m_subject.title + ", update",
                                  m_subject.insertTarget,
                                  {writing("library", m_subject.update, m_subject.changed, true, expertRead),
                                   writing("expert", expertUpdate, m_subject.changed, true, libraryRead)},
                                  {}});
        }
        if (m_subject.readAll) {
            operations.push_back({m_subject.name + "-read-all",
                                  m_subject.title + ", read all",
                                  m_subject.readTarget,
                                  {reading("library", libraryRead), reading("expert", expertRead)},
                                  {}});
        }
        return operations;
    }

private:
    using Read = std::function<Records()>;

    Contender writing(const char* name, const std::function<Run(Records)>& make, const Records& records, bool fill,
                      const Read& readBack)
    {
        return {name,
                [this, make, &records, fill] {
                    openFresh(fill);
                    m_run = make(records);
                },
                [this] { m_run(); },
                [this, &records, readBack] {
                    m_run = nullptr;
                    const std::size_t rows = requireEqual(readBack(), records);
                    std::filesystem::remove_all(m_fresh);
                    return rows;
                }};
    }

    Contender reading(const char* name, const Read& read)
    {
        return {name, [this] { openFull(); }, [this, read] { m_result = read(); },
                [this] { return requireEqual(std::exchange(m_result, {}), m_subject.records); }};
    }

    void open(const std::filesystem::path& folder)
    {
        GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.generic_wstring());
        m_expert.open(folder / m_subject.file);
    }

    void openFresh(bool fill)
    {
        std::filesystem::remove_all(m_fresh);
        std::filesystem::create_directory(m_fresh);
        open(m_fresh);
        m_subject.create();
        if (fill) {
            m_expert.insert(m_subject.insertText, m_subject.records, m_subject.givesKey);
        }
    }

    void openFull()
    {
        const bool isNew = std::filesystem::create_directory(m_full);
        open(m_full);
        if (isNew) {
            m_subject.create();
            m_expert.insert(m_subject.insertText, m_subject.records, m_subject.givesKey);
        }
    }

    std::size_t requireEqual(const Records& result, const Records& expected)
    {
        if (!sameRecords(result, expected)) {
            throw std::runtime_error(m_subject.title + ": the rows are not those that were written");
        }
        return result.size();
    }

    TableSubject<Record> m_subject;
    std::filesystem::path m_fresh;
    std::filesystem::path m_full;
    Run m_run;
    Records m_result;
    ExpertTable<Record> m_expert;
};

} // namespace benchmarks
