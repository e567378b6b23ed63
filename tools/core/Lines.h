#pragma once

#include "core/Batch.h"
#include "core/Table.h"

/// Lines of cells: in aligned columns under titles on a terminal; elsewhere one tabulator between two cells, without
/// titles, so that scripts can split them.
class Lines
{
public:
    /// Borrows the job.
    explicit Lines(const Job& job);

    /// Prints what is to be aligned.
    ~Lines();
    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;

    void addTitles(const Table::Row& titles);
    void add(const Table::Row& row);

private:
    const Job& mJob;
    const bool mIsAligned;
    Table mTable;
};
