#include "examples/scene/Chunks.h"

namespace example
{
std::string bigEndian(std::uint64_t number, unsigned int width)
{
    std::string bytes(width, '\0');
    for (unsigned int i = 0; i < width; ++i)
        bytes[width - 1 - i] = static_cast<char>(number >> (8 * i) & 0xFF);
    return bytes;
}

std::string chunkHeader(const std::string& tag, std::uint64_t dataSize)
{
    return tag + bigEndian(0, 4) + bigEndian(dataSize, 8);
}

std::string chunk(const std::string& tag, const std::string& data)
{
    return chunkHeader(tag, data.size()) + data + std::string((8 - data.size() % 8) % 8, '\0');
}

std::string group(const std::string& type, const std::string& children)
{
    return chunk("FOR8", type + children);
}
} // namespace example
