#pragma once

#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/rowsink.h"
#include "databaseservice/engine/unitofwork.h"
#include "platform/leadinginteger.h"

#include <string>
#include <string_view>
#include <utility>

namespace DatabaseService {

/// The first cell of the first row; the others are passed over.
class FirstCell final : public RowSink {
public:
    void Row(CellReader& cells) override
    {
        if (std::exchange(m_waiting, false)) {
            m_kind = cells.next();
            if (m_kind == CellReader::Kind::Integer) {
                m_number = cells.integer();
            } else if (m_kind == CellReader::Kind::Text) {
                m_text = cells.text();
            }
        }
    }

    bool isText() const { return m_kind == CellReader::Kind::Text; }
    /// Of text the number at its front; 0 without a cell.
    int64 number() const { return isText() ? platform::leadingInteger(std::string_view(m_text)) : m_number; }
    /// Empty if the cell is no text, or there is none.
    const std::string& text() const { return m_text; }

private:
    bool m_waiting = true;
    CellReader::Kind m_kind = CellReader::Kind::None;
    int64 m_number = 0;
    std::string m_text;
};

/// The first cell of the first row if it is a number, otherwise 0.
inline int64 readNumber(DatabaseOperationBase& store, std::string_view sql, ElementSource* elements = nullptr)
{
    FirstCell cell;
    run(store, {.sql = sql, .elements = elements, .rows = &cell});
    return cell.number();
}

} // namespace DatabaseService
