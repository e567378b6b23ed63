#pragma once

#include <optional>
#include <string>
#include <vector>

/// Where something is found in a scene file, by exact names. An empty node name means the scene's own metadata.
struct Address
{
    /// From the first words, at most one for each part.
    explicit Address(const std::vector<std::string>& words = {});

    std::string node;
    std::optional<std::string> channel;
    std::optional<std::string> stream;
    std::optional<std::string> index;
    std::optional<std::string> member;
};

/// Patterns for the names of what a command works on, as `fnmatch` knows them; no patterns let every name pass.
struct Selection
{
    std::vector<std::string> nodes;
    std::vector<std::string> channels;
    std::vector<std::string> streams;

    bool isAll() const { return nodes.empty() && channels.empty() && streams.empty(); }
    bool passes(const std::string& node, const std::string& channel, const std::string& stream) const;

    static bool passes(const std::vector<std::string>& patterns, const std::string& name);
};
