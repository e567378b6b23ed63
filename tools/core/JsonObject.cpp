#include "core/JsonObject.h"

JsonObject& JsonObject::add(const std::string& key, const std::string& json)
{
    mMembers += (mMembers.empty() ? "\"" : ", \"") + key + "\": " + json;
    return *this;
}

JsonObject& JsonObject::add(const JsonObject& other)
{
    mMembers += (mMembers.empty() || other.mMembers.empty() ? "" : ", ") + other.mMembers;
    return *this;
}

JsonObject& JsonObject::add(const std::string& key, unsigned long long number)
{
    return add(key, std::to_string(number));
}

JsonObject& JsonObject::addText(const std::string& key, const std::string& text)
{
    return add(key, vumo::codec::jsonText(text));
}

std::string jsonArray(const std::vector<std::string>& values)
{
    std::string items;
    for (const std::string& value : values)
        items += (items.empty() ? "" : ", ") + value;
    return "[" + items + "]";
}
