#include "vumo/accessor/detail/RawListing.h"

#include "vumo/data/Channel.h"
#include "vumo/foundation/detail/Characters.h"
#include "vumo/serialize/SerializerRaw.h"

#include <algorithm>

namespace vumo::Data::detail
{
namespace
{
/// The text up to its first blank. Words are short, and such a search costs less than one for any of kBlanks.
std::string_view firstWord(std::string_view text)
{
    const auto isBlank = [](char c) { return c == kBlanks[0] || c == kBlanks[1]; };
    return text.substr(0, static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isBlank) - text.begin()));
}

/// What follows the word and the blanks after it, as the readers take it.
std::string_view restAfter(std::string_view word, std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(kBlanks, word.size()), text.size()));
}

/// Where the line ends that begins there, with its newline.
std::size_t lineEnd(std::string_view text, std::size_t begin)
{
    return std::min(text.find('\n', begin), text.size() - 1) + 1;
}

/// Takes lines one by one, and adds to the channels what they say.
class Lister
{
public:
    /// Borrows the channels.
    explicit Lister(std::vector<ListedBlock::Channel>& channels) : mChannels(channels) {}

    /// The line comes with its end. False after the last one.
    bool take(std::string_view line)
    {
        const std::string_view text = trimmed(line.substr(0, line.find('\n')));
        if (text.empty())
            return true;
        if (mIsInStream)
        {
            takeStreamLine(text, line.size());
            return true;
        }
        static const std::string theUnnamed = Channel().name();
        const std::string_view word = firstWord(text);
        if (word == SerializerRaw::keyword(SerializerRaw::kEndAssociations))
            return false;
        if (word == SerializerRaw::keyword(SerializerRaw::kChannel))
            mChannels.emplace_back().name = theUnnamed; // unless it says something else
        if (mChannels.empty())
            return true;
        if (word == SerializerRaw::keyword(SerializerRaw::kChannelName))
            mChannels.back().name = restAfter(word, text);
        mIsInStream = text == SerializerRaw::keyword(SerializerRaw::kStream);
        if (mIsInStream)
            mChannels.back().streams.emplace_back().indexType = "numeric"; // likewise
        return true;
    }

    /// Takes the lines of elements that the text begins with, at one go, and gives their size in bytes: nearly all of a
    /// text.
    std::size_t takeElementLines(std::string_view text)
    {
        std::size_t size = 0;
        std::uint64_t lines = 0;
        while (mElementLines > 0 && size < text.size() && isSurelyFilled(text[size]))
        {
            size = lineEnd(text, size);
            ++lines;
        }
        addElementLines(lines, size);
        return size;
    }

private:
    /// Nearly all lines of elements are told by this from "endStream", and from empty ones.
    static bool isSurelyFilled(char first) { return first != 'e' && !isClassicSpace(first); }

    void addElementLines(std::uint64_t lines, std::size_t size)
    {
        if (lines == 0)
            return;
        ListedBlock::Stream& stream = mChannels.back().streams.back();
        stream.bytes += size;
        mElementLines += lines;
        stream.elements = (mElementLines + 1) / 2; // a line with the index, and one with the values
    }

    /// Of a stream the lines in front of its first element say what it is.
    void takeStreamLine(std::string_view text, std::size_t size)
    {
        ListedBlock::Stream& stream = mChannels.back().streams.back();
        if (text == SerializerRaw::keyword(SerializerRaw::kEndStream))
        {
            mIsInStream = false;
            mElementLines = 0;
            return;
        }
        if (mElementLines > 0 || !takeHeaderLine(text, stream))
            addElementLines(1, size);
    }

    static bool takeHeaderLine(std::string_view text, ListedBlock::Stream& stream)
    {
        const std::string_view word = firstWord(text);
        const std::string_view value = restAfter(word, text);
        std::string* const field = word == SerializerRaw::keyword(SerializerRaw::kStreamName)  ? &stream.name
                                   : word == SerializerRaw::keyword(SerializerRaw::kIndexType) ? &stream.indexType
                                   : word == SerializerRaw::keyword(SerializerRaw::kStructure) ? &stream.structure
                                                                                               : nullptr;
        if (field)
            *field = value;
        return field != nullptr;
    }

    std::vector<ListedBlock::Channel>& mChannels;
    bool mIsInStream = false;
    std::uint64_t mElementLines = 0;
};
} // namespace

std::vector<ListedBlock::Channel> listChannels(std::string_view text)
{
    std::vector<ListedBlock::Channel> channels;
    Lister lister(channels);
    bool hasMore = true;
    while (hasMore && !text.empty())
    {
        const std::string_view line = text.substr(0, lineEnd(text, 0));
        hasMore = lister.take(line);
        text.remove_prefix(line.size());
        text.remove_prefix(lister.takeElementLines(text));
    }
    return channels;
}
} // namespace vumo::Data::detail
