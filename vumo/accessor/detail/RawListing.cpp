#include "vumo/accessor/detail/RawListing.h"

#include "vumo/data/Channel.h"
#include "vumo/foundation/detail/Characters.h"
#include "vumo/serialize/SerializerRaw.h"

#include <algorithm>

namespace vumo::Data::detail
{
namespace
{
/// What follows the word and the blanks after it, as the readers take it.
std::string_view restAfter(std::string_view word, std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(kBlanks, word.size()), text.size()));
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
        if (mElementLines > 0 && isSurelyFilled(line.front()))
        {
            takeElementLine(line.size());
            return true;
        }
        const std::string_view text = trimmed(line.substr(0, line.find('\n')));
        if (text.empty())
            return true;
        if (mIsInStream)
        {
            takeStreamLine(text, line.size());
            return true;
        }
        const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
        if (word == SerializerRaw::keyword(SerializerRaw::kEndAssociations))
            return false;
        if (word == SerializerRaw::keyword(SerializerRaw::kChannel))
            mChannels.emplace_back().name = Channel().name(); // unless it says something else
        if (mChannels.empty())
            return true;
        if (word == SerializerRaw::keyword(SerializerRaw::kChannelName))
            mChannels.back().name = restAfter(word, text);
        mIsInStream = text == SerializerRaw::keyword(SerializerRaw::kStream);
        if (mIsInStream)
            mChannels.back().streams.emplace_back().indexType = "numeric"; // likewise
        return true;
    }

private:
    /// Nearly all lines of elements are told by this from "endStream", and from empty ones.
    static bool isSurelyFilled(char first) { return first != 'e' && !isClassicSpace(first); }

    void takeElementLine(std::size_t size)
    {
        ListedBlock::Stream& stream = mChannels.back().streams.back();
        stream.bytes += size;
        ++mElementLines;
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
            takeElementLine(size);
    }

    static bool takeHeaderLine(std::string_view text, ListedBlock::Stream& stream)
    {
        const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
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
        const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
        text.remove_prefix(line.size());
        hasMore = lister.take(line);
    }
    return channels;
}
} // namespace vumo::Data::detail
