#include "vumo/serialize/AssociationsSerializerRaw.h"

#include "vumo/foundation/detail/Quoted.h"
#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/ChannelSerializerRaw.h"
#include "vumo/serialize/detail/FormatInstance.h"
#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/LineWriter.h"
#include "vumo/serialize/detail/Messages.h"
#include "vumo/serialize/detail/ReadBack.h"

#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace vumo::Data
{
namespace
{
constexpr char kDescription[] = "The raw format consists of a list of channels and a marker\n"
                                "indicating the end of the Associations data. Each channel\n"
                                "starts with the literal channel indicator text and the name\n"
                                "of the association type to which the channel is attached:\n"
                                "\tchannel {ASSOCIATION_TYPE}\n"
                                "This is followed by channel data as described by the\n"
                                "raw channel format type.\n"
                                "terminated with a line containing the literal text:\n"
                                "\tendAssociations\n"
                                "Any text after the terminator will not be read.\n"
                                "\n"
                                "Here is a sample of associations with 3 channels:\n"
                                "\tchannel face\n"
                                "\t{CHANNEL_DATA_IN_RAW_FORMAT}[0]\n"
                                "\tchannel vertex\n"
                                "\t{CHANNEL_DATA_IN_RAW_FORMAT}[1]\n"
                                "\tchannel edge\n"
                                "\t{CHANNEL_DATA_IN_RAW_FORMAT}[2]\n"
                                "\tendAssociations\n"
                                "See the documentation for the raw\n"
                                "channel serialization format for a detailed description\n"
                                "of the {CHANNEL_DATA_IN_RAW_FORMAT} lines.\n";

std::string placeOf(std::istream& in)
{
    return " on or about character " + std::to_string(detail::readPosition(in));
}

/// An input that failed before, or whose buffer fails, is not at its end, but no good.
bool isAtEnd(std::istream& in)
{
    using Traits = std::istream::traits_type;
    const bool hasNothing = in.eof() || (in.good() && Traits::eq_int_type(in.peek(), Traits::eof()));
    return hasNothing && !in.bad();
}

/// Reads a word by the classic rules, whatever width, flags and locale the input has.
bool readWord(std::istream& in, detail::ValueInput& input, std::string& word)
{
    input.stream().clear(in.rdstate()); // a channel was read since
    input.stream() >> word;
    input.handOnState(in); // the next question is whether the input is at its end
    return !in.fail();
}

/// The names of the channels that are written.
std::vector<std::string_view> channelNames(const Associations& associations)
{
    std::vector<std::string_view> names;
    for (AssociationsIterator position = associations.begin(); position.valid(); ++position)
    {
        if (!position->empty())
            names.push_back(position->name());
    }
    return names;
}

void readChannel(std::istream& in, Associations& associations, detail::Messages& messages)
{
    detail::LineReader restOfLine(in); // a name may follow "channel"; the one that counts is in the channel
    if (restOfLine.next() && restOfLine.isTooLong())
        messages.add(restOfLine.tooLongMessage());
    const std::unique_ptr<Channel> channel(ChannelSerializerRaw::theFormat()->read(in, messages.text()));
    if (channel)
        associations.setChannel(*channel);
    else
        messages.countErrors(1);
}
} // namespace

std::atomic<AssociationsSerializerRaw*> AssociationsSerializerRaw::theInstance = nullptr;

AssociationsSerializerRaw* AssociationsSerializerRaw::theFormat()
{
    return detail::theOnly(theInstance);
}

AssociationsSerializerRaw::AssociationsSerializerRaw()
{
    setDefaultFormat(this);
}

const char* AssociationsSerializerRaw::formatType() const
{
    return keyword(kFormatName);
}

AssociationsSerializerRaw::~AssociationsSerializerRaw() = default;

Associations* AssociationsSerializerRaw::read(std::istream& in, std::string& errors) const
{
    detail::Messages messages;
    detail::ValueInput input(in);
    std::unique_ptr<Associations> associations(Associations::create());
    while (!isAtEnd(in))
    {
        std::string word;
        if (!readWord(in, input, word))
        {
            messages.add("Missing Associations keyword" + placeOf(in));
            break;
        }
        if (word == keyword(kEndAssociations))
            break;
        if (word != keyword(kChannel))
        {
            messages.add("Unrecognized keyword '" + word + "'" + placeOf(in));
            break;
        }
        readChannel(in, *associations, messages);
    }
    return messages.report("Associations not created", errors) > 0 ? nullptr : associations.release();
}

int AssociationsSerializerRaw::write(const Associations& associations, std::ostream& out, std::string& errors) const
{
    detail::Messages messages;
    detail::LineWriter lines(out, messages);
    const std::set<std::string_view> repeated = detail::repeatedNames(channelNames(associations));
    bool isFailureTold = false; // that of the output, by a channel
    for (AssociationsIterator position = associations.begin(); position.valid(); ++position)
    {
        if (position->empty())
            continue;
        if (repeated.count(position->name()) > 0)
            lines.refuse("Channel " + detail::quoted(position->name()), "another one has its name");
        lines.write(keyword(kChannel));
        messages.countErrors(ChannelSerializerRaw::theFormat()->write(*position, out, messages.text()));
        isFailureTold = !out;
    }
    lines.write(keyword(kEndAssociations));
    if (!out && !isFailureTold)
        messages.add("Error in associations while writing.");
    return messages.report("Associations may not be written correctly", errors);
}

std::ostream& AssociationsSerializerRaw::getFormatDescription(std::ostream& out) const
{
    return out << kDescription;
}

bool AssociationsSerializerRaw::Debug(const AssociationsSerializerRaw* object, vumo::Debug::Print& request)
{
    return detail::debugFormat("vumo::Data::AssociationsSerializerRaw", object, theInstance, request);
}

bool AssociationsSerializerRaw::Debug(const AssociationsSerializerRaw* object, vumo::Debug::Footprint& request)
{
    return detail::debugFormat(object, theInstance, request);
}
} // namespace vumo::Data
