#include "core/Lines.h"

Lines::Lines(const Job& job) : mJob(job), mIsAligned(!job.json && StandardOutput::isTerminal()) {}

Lines::~Lines()
{
    mTable.print(mJob.out, 0);
}

void Lines::addTitles(const Table::Row& titles)
{
    if (mIsAligned)
        mTable.add(titles);
}

void Lines::add(const Table::Row& row)
{
    if (mIsAligned)
        return mTable.add(row);
    std::string line;
    for (const std::string& cell : row)
        line.append(cell).append(1, '\t');
    if (!row.empty())
        line.back() = mJob.session.lineEnd();
    mJob.out << line;
}
