#include "vumo/serialize/ChannelSerializerRaw.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/StreamSerializerRaw.h"
#include "vumo/serialize/detail/FormatInstance.h"
#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/LineWriter.h"
#include "vumo/serialize/detail/Messages.h"
#include "vumo/serialize/detail/ReadBack.h"
#include "vumo/serialize/detail/StreamWriter.h"

#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace vumo::Data
{
namespace
{
constexpr char kDescription[] = "The raw format consists of a Channel name followed by an optional index\n"
                                " type followed by a list of streams and a marker which indicates\n"
                                " the end of the channel data. The stream data consists of two or\n"
                                "more lines in the following pattern:\n"
                                "\tstream\n"
                                "\t{FORMATTED_STREAM_DATA}\n"
                                "terminated with a line containing the literal text:\n"
                                "\tendChannel\n"
                                "Any text after the terminator will not be read.\n"
                                "If the index type is omitted a standard numerical index is used.\n"
                                "\n"
                                "Here is a sample of a channel 'C1' with two streams:\n"
                                "\tname C1\n"
                                "\tstream\n"
                                "\t{FORMATTED_STREAM_DATA}\n"
                                "\tstream\n"
                                "\t{FORMATTED_STREAM_DATA}\n"
                                "\tendChannel\n"
                                "\n"
                                "See the documentation for the raw stream serialization\n"
                                "format for a detailed description of the \n"
                                "{FORMATTED_STREAM_DATA} lines.\n";

/// The word at the start of a line.
std::string firstWord(std::string_view line)
{
    return std::string(line.substr(0, line.find_first_of(detail::kBlanks)));
}

/// A channel of that name with the streams of another. A channel gets its name when it is made, and the line that tells
/// it may follow the streams.
std::unique_ptr<Channel> withName(const Channel& channel, const std::string& name)
{
    auto result = std::make_unique<Channel>(name);
    for (ChannelIterator position = channel.begin(); position.valid(); ++position)
        result->setDataStream(**position);
    return result;
}

std::vector<std::string_view> streamNames(const Channel& channel)
{
    std::vector<std::string_view> names;
    for (ChannelIterator position = channel.begin(); position.valid(); ++position)
    {
        if (*position)
            names.push_back((*position)->name());
    }
    return names;
}

void readStream(std::istream& in, Channel& channel, detail::Messages& messages)
{
    const std::unique_ptr<Stream> stream(StreamSerializerRaw::theFormat()->read(in, messages.text()));
    if (stream)
        channel.setDataStream(*stream);
    else
        messages.countErrors(1);
}
} // namespace

std::atomic<ChannelSerializerRaw*> ChannelSerializerRaw::theInstance = nullptr;

ChannelSerializerRaw* ChannelSerializerRaw::theFormat()
{
    return detail::theOnly(theInstance);
}

ChannelSerializerRaw::ChannelSerializerRaw()
{
    setDefaultFormat(this);
}

const char* ChannelSerializerRaw::formatType() const
{
    return keyword(kFormatName);
}

ChannelSerializerRaw::~ChannelSerializerRaw() = default;

Channel* ChannelSerializerRaw::read(std::istream& in, std::string& errors) const
{
    detail::Messages messages;
    detail::LineReader lines(in);
    Channel channel;
    std::string name = channel.name();
    bool hasEnded = false;
    while (!hasEnded && lines.nextFilled())
    {
        if (lines.isTooLong())
            messages.add(lines.tooLongMessage());
        else if (lines.text() == keyword(kStream))
            readStream(in, channel, messages);
        else if (lines.text() == keyword(kEndChannel))
            hasEnded = true;
        else if (!detail::isKeywordLine(lines.text(), keyword(kChannelName), name))
            messages.add("Unrecognized keyword '" + firstWord(lines.text()) + "' on or about character " +
                         std::to_string(lines.position()));
    }
    if (!hasEnded)
        messages.add("Missing Channel keyword on or about character " + std::to_string(detail::readPosition(in)));
    return messages.report("Channel not created", errors) > 0 ? nullptr : withName(channel, name).release();
}

int ChannelSerializerRaw::write(const Channel& channel, std::ostream& out, std::string& errors) const
{
    const std::string& name = channel.name();
    detail::Messages messages;
    detail::LineWriter lines(out, messages, {nullptr, &name});
    lines.writeName(keyword(kChannelName), "Channel name", name);
    const std::set<std::string_view> repeated = detail::repeatedNames(streamNames(channel));
    bool isFailureTold = false; // that of the output, by a stream
    unsigned int i = 0;
    for (ChannelIterator position = channel.begin(); position.valid(); ++position, ++i)
    {
        const Stream* const stream = *position;
        if (!stream)
        {
            messages.note("Null stream at element " + std::to_string(i) + " will be skipped.");
            continue;
        }
        if (repeated.count(stream->name()) > 0)
            lines.refuse("Stream " + detail::quoted(stream->name()), "another one has its name");
        lines.write(keyword(kStream));
        messages.countErrors(detail::StreamWriter(*stream, out, &name).write(messages.text()));
        isFailureTold = !out;
    }
    lines.write(keyword(kEndChannel));
    if (!out && !isFailureTold)
        messages.add("Error in channel while writing.");
    return messages.report("Channel may not be written correctly", errors);
}

std::ostream& ChannelSerializerRaw::getFormatDescription(std::ostream& out) const
{
    return out << kDescription;
}

bool ChannelSerializerRaw::Debug(const ChannelSerializerRaw* object, vumo::Debug::Print& request)
{
    return detail::debugFormat("vumo::Data::ChannelSerializerRaw", object, theInstance, request);
}

bool ChannelSerializerRaw::Debug(const ChannelSerializerRaw* object, vumo::Debug::Footprint& request)
{
    return detail::debugFormat(object, theInstance, request);
}
} // namespace vumo::Data
