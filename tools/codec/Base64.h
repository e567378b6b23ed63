#pragma once

#include <string>

namespace vumo::codec
{
/// Any bytes in the letters of RFC 4648, with padding and without line breaks.
std::string toBase64(const std::string& bytes);

/// The bytes again. Throws a `CodecError` for any text that toBase64() would not write.
std::string fromBase64(const std::string& text);
} // namespace vumo::codec
