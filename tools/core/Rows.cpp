#include "core/Rows.h"

#include "core/Text.h"

Rows::Rows(const Job& job, const std::string& key, const std::vector<std::string>& columns)
    : mJob(job),
      mKey(key),
      mColumns(columns),
      mLines(job)
{
    mLines.addTitles(columns);
}

Rows::~Rows()
{
    if (mJob.json)
        mJob.json->add(mKey, jsonArray(mObjects));
}

void Rows::add(const std::vector<Cell>& cells)
{
    if (mJob.json)
        mObjects.push_back(objectOf(cells));
    else
        mLines.add(rowOf(cells));
}

std::string Rows::objectOf(const std::vector<Cell>& cells) const
{
    JsonObject object;
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        if (const std::string* const text = std::get_if<std::string>(&cells[i]))
            object.addText(mColumns[i], *text);
        else if (const std::uint64_t* const number = std::get_if<std::uint64_t>(&cells[i]))
            object.add(mColumns[i], *number);
    }
    return object.text();
}

Table::Row Rows::rowOf(const std::vector<Cell>& cells)
{
    Table::Row row;
    row.reserve(cells.size());
    for (const Cell& cell : cells)
    {
        const std::string* const text = std::get_if<std::string>(&cell);
        const std::uint64_t* const number = std::get_if<std::uint64_t>(&cell);
        row.push_back(text ? escaped(*text) : number ? std::to_string(*number) : "");
    }
    return row;
}
