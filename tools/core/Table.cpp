#include "core/Table.h"

#include "core/Text.h"

#include <algorithm>
#include <ostream>
#include <utility>

void Table::add(Row row)
{
    mWidths.resize(std::max(mWidths.size(), row.size()));
    for (Row::size_type i = 0; i < row.size(); ++i)
        mWidths[i] = std::max(mWidths[i], columns(row[i]));
    mRows.push_back(std::move(row));
}

void Table::print(std::ostream& out, std::string::size_type indent) const
{
    constexpr std::string::size_type kGap = 2;
    for (const Row& row : mRows)
    {
        std::string::size_type pad = indent;
        for (Row::size_type i = 0; i < row.size(); ++i)
        {
            out << std::string(pad, ' ') << row[i];
            pad = mWidths[i] - columns(row[i]) + kGap;
        }
        out << "\n";
    }
}
