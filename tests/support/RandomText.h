#pragma once

#include "tests/support/Random.h"
#include "vumo/data/Associations.h"
#include "vumo/data/IndexString.h"

#include <iterator>
#include <string>

namespace vumo::test
{
/// A text of a few pieces, many of which are trouble for some format: separators, keywords, control characters, zero
/// bytes, bytes that are no characters.
inline std::string randomText(Random& random)
{
    using namespace std::string_literals;
    static const std::string kPieces[] = {
        "a"s,     "b"s,         "7"s,           " "s,         "\t"s,         "\n"s,      "\r"s,      "\v"s,
        "\f"s,    "\0"s,        "\x01"s,        "\x1B"s,      "\x7F"s,       "\""s,      "\\"s,      ":"s,
        "="s,     "["s,         "]"s,           ";"s,         "//"s,         "-scn"s,    "\\n"s,     "name"s,
        "name "s, "structure"s, "indexType\t"s, "endStream"s, "stream"s,     "channel"s, "é"s,       "日"s,
        "\xFF"s,  "\x80"s,      "\x85"s,        "\xA0"s,      "endChannel"s, "Zoë"s,     "\xE6\x97"s};
    std::string text;
    for (unsigned int pieces = random.below(4); pieces > 0; --pieces)
        text += kPieces[random.below(std::size(kPieces))];
    return text;
}

/// A text without zero bytes, which no C string can hold.
inline std::string randomValue(Random& random)
{
    const std::string text = randomText(random);
    return text.c_str();
}

/// Puts a text where it cannot be taken for two.
inline void appendDelimited(std::string& content, const std::string& text)
{
    content += std::to_string(text.size()) + "<" + text + ">";
}

/// All that the associations hold, in a text of its own kind.
inline std::string contentOf(const Data::Associations& associations)
{
    std::string content;
    for (const Data::Channel& channel : associations)
    {
        appendDelimited(content += "\nchannel ", channel.name());
        for (const Data::Stream* const stream : channel)
        {
            appendDelimited(content += "\nstream ", stream->name());
            appendDelimited(content, stream->indexType());
            appendDelimited(content, stream->structure().name());
            for (Data::StreamIterator element = stream->begin(); element.valid(); ++element)
            {
                appendDelimited(content += "\nelement ", element.index().asString());
                for (unsigned int i = 0; element->setPositionByMemberIndex(i); ++i)
                {
                    for (unsigned int k = 0; k < element->dataLength(); ++k)
                        appendDelimited(content, element->str(k));
                }
            }
        }
    }
    return content;
}

/// One channel of two streams of the structure, which has strings only, with texts of all sorts.
inline Data::Associations randomAssociations(Random& random, const Data::Structure& structure)
{
    Data::Associations associations;
    Data::Channel channel = associations.channel(randomText(random));
    for (int streams = 0; streams < 2; ++streams)
    {
        Data::Stream stream(structure, randomText(random));
        stream.setIndexType(Data::IndexString::myTypeName);
        for (unsigned int elements = random.below(3); elements > 0; --elements)
        {
            Data::Handle element(structure);
            std::string errors;
            for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
                element.fromStr(randomValue(random), 0, errors);
            stream.setElement(Data::Index(Data::IndexString(randomText(random))), element);
        }
        channel.setDataStream(stream);
    }
    return associations;
}
} // namespace vumo::test
