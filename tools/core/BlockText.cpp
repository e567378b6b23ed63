#include "core/BlockText.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <vector>

using namespace vumo::Data;

namespace
{
/// The number that the messages give for the character at which something is wrong.
bool findCharacter(const std::string& messages, std::uint64_t& character)
{
    static const std::string theWords = "on or about character ";
    constexpr std::size_t kMostDigits = 18;
    const std::size_t at = messages.find(theWords);
    if (at == std::string::npos)
        return false;
    const std::size_t digits = at + theWords.size();
    const std::size_t end = std::min(messages.find_first_not_of("0123456789", digits), messages.size());
    if (end == digits || end > digits + kMostDigits)
        return false;
    character = std::stoull(messages.substr(digits, end - digits));
    return true;
}

/// Where the lines of the block's text begin, and its end. In statements of ASCII scenes, which begin with a letter in
/// lower case, line feeds are escaped.
std::vector<std::size_t> lineBegins(const std::string& bytes)
{
    const bool isStatement = std::islower(static_cast<unsigned char>(bytes[0])) != 0;
    std::vector<std::size_t> begins = {0};
    for (std::size_t at = 0; at < bytes.size(); ++at)
    {
        if (!isStatement && bytes[at] == '\n')
            begins.push_back(at + 1);
        if (isStatement && bytes[at] == '\\' && bytes[++at] == 'n') // what is escaped otherwise is passed over
            begins.push_back(at + 1);
    }
    begins.push_back(bytes.size());
    return begins;
}
} // namespace

std::string blockBytes(const SceneFile& scene, const MetadataBlock& block)
{
    std::ifstream in(scene.name(), std::ios::binary);
    in.seekg(static_cast<std::streamoff>(block.position));
    std::string bytes(block.length, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

BlockPlace placeOfFault(const SceneFile& scene, const UnreadBlock& block)
{
    constexpr std::size_t kMostAround = 30;
    std::uint64_t character = 0;
    if (!findCharacter(block.why, character))
        return {};
    const std::uint64_t position = scene.metadata().findCharacter(block, character);
    const std::string bytes = blockBytes(scene, block);
    if (position < block.position || position - block.position >= bytes.size())
        return {};
    const std::size_t place = position - block.position;
    const std::vector<std::size_t> begins = lineBegins(bytes);
    const auto next = std::upper_bound(begins.begin(), begins.end() - 1, place);
    const std::size_t begin = std::max(*std::prev(next), place - std::min(place, kMostAround));
    const std::size_t end = std::min(*next, place + kMostAround);
    std::string text = bytes.substr(begin, end - begin);
    for (const std::string lineEnd : {"\n", "\\n"})
    {
        if (text.size() >= lineEnd.size() && text.compare(text.size() - lineEnd.size(), lineEnd.size(), lineEnd) == 0)
            text.resize(text.size() - lineEnd.size());
    }
    return {static_cast<std::uint64_t>(next - begins.begin()), text};
}
