#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <string>
#include <string_view>

namespace vumo::detail
{
/// The text between single quotes, fit for a line of a message: control characters as "\n" or "\x00", and what is very
/// long cut short.
std::string quoted(std::string_view text);
} // namespace vumo::detail
