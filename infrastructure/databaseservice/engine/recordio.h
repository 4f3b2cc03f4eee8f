#pragma once

#include "databaseservice/engine/elementsource.h"
#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/engine/rowsink.h"
#include "databaseservice/engine/unitofwork.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace DatabaseService {

/// Records on their way into a statement, bound straight from the caller's memory. `Element` is the record itself or
/// a pointer to one, plain or shared; null pointers are passed over.
template <class Record, class Element> class RecordSource final : public ElementSource {
public:
    RecordSource(const Statement<Record>& statement, std::span<const Element> records)
        : m_statement(statement),
          m_records(records)
    {
    }

    bool Advance() override
    {
        do {
            m_current = m_next < m_records.size() ? address(m_records[m_next]) : nullptr;
        } while (m_next++ < m_records.size() && m_current == nullptr);
        return m_current != nullptr;
    }

    bool Bind(ParameterWriter& parameters) override
    {
        if (m_indexes.empty()) {
            for (const Parameter<Record>& parameter : m_statement.parameters) {
                m_indexes.push_back(parameters.index(parameter.name));
            }
        }
        const int* index = m_indexes.data();
        for (const Parameter<Record>& parameter : m_statement.parameters) {
            if (!parameter.bind(*m_current, parameters, *index++)) {
                return false;
            }
        }
        return true;
    }

private:
    static const Record* address(const Record& record) { return &record; }
    static const Record* address(const Record* record) { return record; }
    static const Record* address(const std::shared_ptr<Record>& record) { return record.get(); }

    const Statement<Record>& m_statement;
    std::span<const Element> m_records;
    std::size_t m_next = 0;
    const Record* m_current = nullptr;
    std::vector<int> m_indexes; // of the parameters in the prepared statement, in the statement's order
};

/// A single value for a statement that takes just one; it must outlive the source.
template <class Value> RecordSource<Value, Value> oneValue(const Statement<Value>& statement, const Value& value)
{
    return RecordSource<Value, Value>(statement, {&value, 1});
}

/// Rows on their way into records. `Element` is the record itself, a class derived from it or a shared pointer to one.
template <class Record, class Element> class RecordSink final : public RowSink {
public:
    RecordSink(const ColumnList<Record>& columns, std::vector<Element>& rows) : m_columns(columns), m_rows(rows) { }

    void Row(CellReader& cells) override
    {
        Record& record = append();
        for (const Column<Record>* column : m_columns) {
            column->read(record, cells);
        }
    }

private:
    // Up to here a list is copied so often while it grows that larger steps pay; beyond, memory counts.
    static constexpr std::size_t fastGrowth = 65536;

    Record& append()
    {
        if (m_rows.size() == m_rows.capacity() && m_rows.size() < fastGrowth) {
            m_rows.reserve(std::max<std::size_t>(8, 4 * m_rows.size()));
        }
        if constexpr (std::is_base_of_v<Record, Element>) {
            return m_rows.emplace_back();
        } else {
            return *m_rows.emplace_back(std::make_shared<Record>());
        }
    }

    const ColumnList<Record>& m_columns;
    std::vector<Element>& m_rows;
};

/// Hands each row to a function.
template <class Function> class RowFunction final : public RowSink {
public:
    explicit RowFunction(Function function) : m_function(std::move(function)) { }
    void Row(CellReader& cells) override { m_function(cells); }

private:
    Function m_function;
};

/// A batch straight from its records: `statement` runs once per record, in one transaction.
template <class Record, class Element>
bool writeRecords(DatabaseOperationBase& store, const Statement<Record>& statement, const std::vector<Element>& records)
{
    RecordSource<Record, Element> elements(statement, records);
    return run(store, {.sql = statement.sql, .elements = &elements});
}

/// Rows straight into records, which are appended. `elements` may be null.
template <class Record, class Element>
bool readRecords(DatabaseOperationBase& store, std::string_view sql, ElementSource* elements,
                 const ColumnList<Record>& columns, std::vector<Element>& records)
{
    RecordSink<Record, Element> rows(columns, records);
    return run(store, {.sql = sql, .elements = elements, .rows = &rows});
}

} // namespace DatabaseService
