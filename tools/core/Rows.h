#pragma once

#include "core/Batch.h"
#include "core/Lines.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

/// What a command found, row by row, with the same columns in each: as lines of cells, or as an array of JSON objects.
class Rows
{
public:
    /// Nothing is an empty cell, and no member of an object.
    using Cell = std::variant<std::monostate, std::string, std::uint64_t>;

    /// Borrows the job. The columns are keys of the objects and titles of the lines; the array is a member of the job's
    /// object.
    Rows(const Job& job, const std::string& key, const std::vector<std::string>& columns);

    /// Hands over what is complete only now.
    ~Rows();
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    void add(const std::vector<Cell>& cells);

private:
    std::string objectOf(const std::vector<Cell>& cells) const;
    static Table::Row rowOf(const std::vector<Cell>& cells);

    const Job& mJob;
    const std::string mKey;
    const std::vector<std::string> mColumns;
    std::vector<std::string> mObjects;
    Lines mLines;
};
