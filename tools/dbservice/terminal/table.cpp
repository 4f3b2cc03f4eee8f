#include "terminal/table.h"

#include "terminal/displaytext.h"

#include <algorithm>
#include <ostream>

namespace dbservice {

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns))
{
    std::vector<std::string> titles;
    for (const Column& column : m_columns) {
        titles.push_back(column.title);
    }
    add(std::move(titles));
}

void Table::add(std::vector<std::string> cells)
{
    cells.resize(m_columns.size());
    for (std::string& cell : cells) {
        cell = inCell(cell);
    }
    m_rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out, int width) const
{
    std::vector<int> widths(m_columns.size());
    for (const std::vector<std::string>& row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], cellWidth(row[i]));
        }
    }
    for (const std::vector<std::string>& row : m_rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string gap(static_cast<std::size_t>(widths[i] - cellWidth(row[i])), ' ');
            line += i == 0 ? "" : "  ";
            line += m_columns[i].align == Align::Right ? gap + row[i] : row[i] + gap;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << (width > 0 ? fitted(line, width) : line) << '\n';
    }
}

} // namespace dbservice
