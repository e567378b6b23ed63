#pragma once

#include "tests/support/ScratchFile.h"

#include <cctype>
#include <sstream>
#include <stdexcept>
#include <string>

namespace vumo::test
{
/// The bytes of a file of tests/golden as it is.
inline std::string goldenText(const std::string& fileName)
{
    const std::string text = bytesOf(VUMO_GOLDEN_DIR "/" + fileName);
    if (text.empty())
        throw std::runtime_error("no golden file " + fileName);
    return text;
}

/// The bytes that a file of tests/golden spells out: two hex digits for each, or plain text between double
/// quotes; "#" starts a comment.
inline std::string goldenBytes(const std::string& fileName)
{
    std::istringstream file(goldenText(fileName));
    std::string bytes;
    for (std::string line; std::getline(file, line);)
    {
        for (std::size_t i = 0; i < line.size() && line[i] != '#'; ++i)
        {
            if (line[i] == '"')
            {
                const std::size_t end = line.find('"', i + 1);
                bytes += line.substr(i + 1, end - i - 1);
                i = end;
            }
            else if (std::isxdigit(static_cast<unsigned char>(line[i])))
            {
                bytes += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
                ++i;
            }
        }
    }
    return bytes;
}
} // namespace vumo::test
