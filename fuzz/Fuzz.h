#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// What every target has: the function that is called with each input. Ends the process on a fault.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vumo::fuzz
{
inline std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process, with a message, unless the condition holds.
void require(bool condition, const std::string& message);

/// Registers, once, structures of every data type, among them one that is empty and one of many terabytes.
void registerStructures();

/// The "raw" text of associations; false when the writer counted errors.
bool textOf(const Data::Associations& associations, std::string& text, Data::eNumbers numbers = Data::kSixDigits);
} // namespace vumo::fuzz
