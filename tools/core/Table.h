#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// Rows of cells, printed in aligned columns.
class Table
{
public:
    using Row = std::vector<std::string>;

    void add(Row row);

    /// Prints each row on a line of its own, after `indent` blanks.
    void print(std::ostream& out, std::string::size_type indent) const;

private:
    std::vector<Row> mRows;
    std::vector<std::string::size_type> mWidths;
};
