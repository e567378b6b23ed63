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
    JsonObject object;
    Table::Row row;
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        if (const std::string* const text = std::get_if<std::string>(&cells[i]))
        {
            object.addText(mColumns[i], *text);
            row.push_back(escaped(*text));
        }
        else if (const std::uint64_t* const number = std::get_if<std::uint64_t>(&cells[i]))
        {
            object.add(mColumns[i], *number);
            row.push_back(std::to_string(*number));
        }
        else
        {
            row.emplace_back();
        }
    }
    if (mJob.json)
        mObjects.push_back(object.text());
    else
        mLines.add(row);
}
