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
    for (Table::Row::size_type i = 0; i < row.size(); ++i)
        mJob.out << (i == 0 ? "" : "\t") << row[i];
    mJob.out << mJob.session.lineEnd();
}
