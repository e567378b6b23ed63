#pragma once

#include "vumo/data/Stream.h"

#include <optional>
#include <string>
#include <vector>

/// The least and the greatest value of a numeric member, as exact JSON numbers.
struct Extremes
{
    std::string least;
    std::string greatest;
};

/// Those of each member of the stream's structure, among all values in all elements; none for members of texts and of
/// truth values, and where there is no finite value.
std::vector<std::optional<Extremes>> extremesOf(const vumo::Data::Stream& stream);
