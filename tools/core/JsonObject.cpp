#include "core/JsonObject.h"

JsonObject& JsonObject::add(std::string_view key, std::string_view json)
{
    mMembers.append(mMembers.empty() ? "\"" : ", \"").append(key).append("\": ").append(json);
    return *this;
}

JsonObject& JsonObject::add(const JsonObject& other)
{
    mMembers.append(mMembers.empty() || other.mMembers.empty() ? "" : ", ").append(other.mMembers);
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, unsigned long long number)
{
    return add(key, std::to_string(number));
}

JsonObject& JsonObject::addText(std::string_view key, const std::string& text)
{
    return add(key, vumo::codec::jsonText(text));
}

std::string jsonArray(const std::vector<std::string>& values)
{
    std::string items;
    for (const std::string& value : values)
        items.append(items.empty() ? "" : ", ").append(value);
    return "[" + items + "]";
}
