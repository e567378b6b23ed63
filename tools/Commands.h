#pragma once

#include "vumo/data/Numbers.h"

#include <string>
#include <vector>

/// Where an element is found in a scene file. An empty node name means the scene's own metadata.
struct Address
{
    std::string node;
    std::string channel;
    std::string stream;
};

/// Each command does one thing to one file and throws `Failure` or `WrongUsage` when it can't.

/// Prints the structures that the file declares, then the channels and streams of the scene and its nodes, and names
/// what cannot be read.
void show(const std::string& fileName, bool withValues, vumo::Data::eNumbers numbers);

/// Prints one element, or all elements of the stream when the index is null.
void get(const std::string& fileName, const Address& address, const std::string* index, vumo::Data::eNumbers numbers);

/// Sets members of one element and rewrites the file in place. Each assignment is MEMBER=VALUE, for all values
/// of the member, or MEMBER[i]=VALUE for one of them. Without `add` the element must exist. All floating-point numbers
/// of the node are saved with such digits; the metadata of other nodes stays byte by byte.
void set(const std::string& fileName, const Address& address, const std::string& index,
         const std::vector<std::string>& assignments, bool add, vumo::Data::eNumbers numbers);
