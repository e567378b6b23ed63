#pragma once

#include <string>

namespace vumo::Data::detail
{
// How a step ends that failed. What the texts of `errors` go through: some kinds of messages replace what was there.

/// False, with the message appended to `errors`.
inline bool refuse(std::string& errors, const std::string& message)
{
    errors += message;
    return false;
}

/// False, with the message in place of what `errors` held.
inline bool replaceErrors(std::string& errors, const std::string& message)
{
    errors = message;
    return false;
}
} // namespace vumo::Data::detail
