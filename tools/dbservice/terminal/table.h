#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace dbservice {

/// Rows of text under a heading, aligned by what a terminal shows. Cells are escaped on their way in.
class Table {
public:
    enum class Align { Left, Right };
    struct Column {
        std::string title;
        Align align = Align::Left;
    };

    explicit Table(std::vector<Column> columns);

    void add(std::vector<std::string> cells);
    /// Lines longer than `width` cells are cut; 0 stands for no limit.
    void print(std::ostream& out, int width) const;

private:
    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace dbservice
