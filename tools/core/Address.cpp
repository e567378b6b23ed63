#include "core/Address.h"

#include <fnmatch.h>

#include <algorithm>

Address::Address(const std::vector<std::string>& words)
{
    if (!words.empty())
        node = words.front();
    std::optional<std::string>* const parts[] = {&channel, &stream, &index, &member};
    for (std::size_t i = 1; i < words.size() && i <= std::size(parts); ++i)
        *parts[i - 1] = words[i];
}

bool Selection::passes(const std::string& node, const std::string& channel, const std::string& stream) const
{
    return passes(nodes, node) && passes(channels, channel) && passes(streams, stream);
}

bool Selection::passes(const std::vector<std::string>& patterns, const std::string& name)
{
    const auto matches = [&](const std::string& pattern) { return fnmatch(pattern.c_str(), name.c_str(), 0) == 0; };
    return patterns.empty() || std::any_of(patterns.begin(), patterns.end(), matches);
}
