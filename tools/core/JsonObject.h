#pragma once

#include "tools/codec/Json.h"

#include <string>
#include <string_view>
#include <vector>

/// The text of a JSON object, member by member.
class JsonObject
{
public:
    /// Adds a member of that value, which is JSON itself. The key is plain letters.
    JsonObject& add(std::string_view key, std::string_view json);
    JsonObject& add(std::string_view key, unsigned long long number);
    JsonObject& addText(std::string_view key, const std::string& text);

    /// Adds the members of the other object.
    JsonObject& add(const JsonObject& other);

    std::string text() const { return '{' + mMembers + '}'; }

    /// The text between the braces.
    const std::string& members() const { return mMembers; }

private:
    std::string mMembers;
};

/// The text of a JSON array of these values, which are JSON themselves.
std::string jsonArray(const std::vector<std::string>& values);
