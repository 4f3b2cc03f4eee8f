#pragma once

#include "clientservices/globalparamwrapper.h"
#include "expertcells.h"
#include "expertconnection.h"
#include "harness.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace benchmarks {

/// A table that is written in batches and read whole, as the library does both, and the statements with which an
/// expert does the same; `Members<Record>` ties what they bind and read.
template <class Record> struct TableSubject {
    std::string name;  ///< of its operations on the command line, before what they do
    std::string title; ///< the same for people
    std::filesystem::path file;
    std::vector<Record> records; ///< in the order in which the table gives them back
    std::function<void()> create;
    std::function<void(std::vector<Record>)> insert;
    std::function<std::vector<Record>()> readAll; ///< empty if the library offers none
    std::string insertText;
    std::string selectText;
    double insertTarget = 1.08;
    double readTarget = 1.10;
};

/// The expert's side of such a table: text bound in place by position, cells put straight into the members.
template <class Record> class ExpertTable {
public:
    void open(const std::filesystem::path& file) { m_connection.open(file); }

    void insert(const std::string& sql, const std::vector<Record>& records)
    {
        m_connection.transaction("BEGIN IMMEDIATE;", sql, [&](sqlite3_stmt* stmt) {
            m_connection.runForEach(
                stmt, records, [](sqlite3_stmt* one, const Record& record) { return bindAll(one, membersOf(record)); });
        });
    }

    std::vector<Record> readAll(const std::string& sql)
    {
        std::vector<Record> records;
        m_connection.transaction("BEGIN DEFERRED", sql, [&](sqlite3_stmt* stmt) {
            m_connection.forEachRow(
                stmt, [&](sqlite3_stmt* row) { benchmarks::readAll(row, membersOf(records.emplace_back())); });
        });
        return records;
    }

private:
    ExpertConnection m_connection{ExpertConnection::Kind::PerCall};
};

/// The table under the library and under an expert. What one side wrote the other reads back.
template <class Record> class TableWorkload {
public:
    TableWorkload(TableSubject<Record> subject, const std::filesystem::path& folder)
        : m_subject(std::move(subject)),
          m_fresh(folder / (m_subject.name + "-fresh")),
          m_full(folder / (m_subject.name + "-full"))
    {
    }

    std::vector<Operation> operations()
    {
        const auto libraryInsert = [this] { m_subject.insert(std::exchange(m_input, {})); };
        const auto expertInsert = [this] {
            const std::vector<Record> records = std::exchange(m_input, {});
            m_expert.insert(m_subject.insertText, records);
        };
        const auto expertRead = [this] { m_result = m_expert.readAll(m_subject.selectText); };
        if (!m_subject.readAll) {
            return {inserting(libraryInsert, expertRead, expertInsert, expertRead)};
        }
        const auto libraryRead = [this] { m_result = m_subject.readAll(); };
        return {inserting(libraryInsert, expertRead, expertInsert, libraryRead), reading(libraryRead, expertRead)};
    }

private:
    using Step = std::function<void()>;

    Operation inserting(const Step& library, const Step& checkLibrary, const Step& expert, const Step& checkExpert)
    {
        const auto contender = [this](const char* name, const Step& insert, const Step& readBack) {
            return Contender{name,
                             [this] {
                                 openFresh();
                                 m_input = m_subject.records;
                             },
                             insert,
                             [this, readBack] {
                                 readBack();
                                 const std::size_t rows = requireRecords();
                                 std::filesystem::remove_all(m_fresh);
                                 return rows;
                             }};
        };
        return {m_subject.name + "-insert",
                m_subject.title + ", insert",
                m_subject.insertTarget,
                {contender("library", library, checkLibrary), contender("expert", expert, checkExpert)},
                {}};
    }

    Operation reading(const Step& library, const Step& expert)
    {
        const auto contender = [this](const char* name, const Step& read) {
            return Contender{name, [this] { openFull(); }, read, [this] { return requireRecords(); }};
        };
        return {m_subject.name + "-read-all",
                m_subject.title + ", read all",
                m_subject.readTarget,
                {contender("library", library), contender("expert", expert)},
                {}};
    }

    void open(const std::filesystem::path& folder)
    {
        GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.generic_wstring());
        m_expert.open(folder / m_subject.file);
    }

    void openFresh()
    {
        std::filesystem::remove_all(m_fresh);
        std::filesystem::create_directory(m_fresh);
        open(m_fresh);
        m_subject.create();
    }

    void openFull()
    {
        const bool isNew = std::filesystem::create_directory(m_full);
        open(m_full);
        if (isNew) {
            m_subject.create();
            m_subject.insert(m_subject.records);
        }
    }

    std::size_t requireRecords()
    {
        const std::vector<Record> result = std::exchange(m_result, {});
        const auto same = [](const Record& one, const Record& other) { return membersOf(one) == membersOf(other); };
        if (!std::equal(result.begin(), result.end(), m_subject.records.begin(), m_subject.records.end(), same)) {
            throw std::runtime_error(m_subject.title + ": the rows are not those that were written");
        }
        return result.size();
    }

    TableSubject<Record> m_subject;
    std::filesystem::path m_fresh;
    std::filesystem::path m_full;
    std::vector<Record> m_input; ///< what the next insert takes over, and frees
    std::vector<Record> m_result;
    ExpertTable<Record> m_expert;
};

} // namespace benchmarks
