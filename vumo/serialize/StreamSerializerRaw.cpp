#include "vumo/serialize/StreamSerializerRaw.h"

#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/detail/ElementText.h"
#include "vumo/serialize/detail/FormatInstance.h"
#include "vumo/serialize/detail/Messages.h"
#include "vumo/serialize/detail/StreamReader.h"
#include "vumo/serialize/detail/StreamWriter.h"

namespace vumo::Data
{
namespace
{
constexpr char kDescription[] = "The raw format consists of a structure name and a series \n"
                                "of values. The first two lines consist of the name of the stream:\n"
                                "\tname {STREAM_NAME}\n"
                                "optionally followed by an index type (numeric if omitted):\n"
                                "\tindexType {INDEX_TYPE}\n"
                                "and then the name of the structure it uses to define its data:\n"
                                "\tstructure {STRUCTURE_NAME}\n"
                                "This is followed by pairs of lines of data, one per element:\n"
                                "\t{INDEX}\n"
                                "\t{DATA_AT_INDEX}\n"
                                "terminated with a line containing the literal text:\n"
                                "\tendStream\n"
                                "Any text after the terminator will not be read.\n"
                                "\n"
                                "The format of {INDEX} varies with the type of Index this Stream\n"
                                "has been defined to accept. In the simplest case it is a number\n"
                                "corresponding to the array index of the Metadata element. In\n"
                                "more complex cases it could be a number pair, a string, or even\n"
                                "a point or vector in space.\n"
                                "\n"
                                "The {DATA_AT_INDEX} is a space-separated series of values,\n"
                                "one per structure member. If a data member has length greater\n"
                                "than one then each value appears in order together.\n"
                                "\n"
                                "Numeric values are formatted as normal, boolean values can be\n"
                                "0, f, F, false, False, 1, t, T, true, or True with the obvious\n"
                                "meanings. String values must be enclosed in double quotation\n"
                                "marks (\") and quotation marks and newlines within the string\n"
                                "must be escaped using the backslash character (\\\", \\n), as\n"
                                "is the backslash itself (\\\\) Matrix elements are printed in\n"
                                "row-major order (R1C1 R1C2 R1C3 R1C4 R2C1 R2C2...)\n"
                                "\n"
                                "Here is a sample of a stream 'S1' that uses a structure named\n"
                                "'X1' with member types integer, string, float[3], and boolean\n"
                                "\tS1\n"
                                "\tX1\n"
                                "\t0\n"
                                "\t12 \"Shoulder\" 0.0 1.0 0.5 true\n"
                                "\t3\n"
                                "\t88 \"Shoulder\" -12.3 8.0 2.2 true\n"
                                "\t4\n"
                                "\t1 \"Bicep\" 17.0 -1.0 3.5 false\n"
                                "\tendStream\n";
} // namespace

std::atomic<StreamSerializerRaw*> StreamSerializerRaw::theInstance = nullptr;

StreamSerializerRaw* StreamSerializerRaw::theFormat()
{
    return detail::theOnly(theInstance);
}

StreamSerializerRaw::StreamSerializerRaw()
{
    setDefaultFormat(this);
}

const char* StreamSerializerRaw::formatType() const
{
    return keyword(kFormatName);
}

StreamSerializerRaw::~StreamSerializerRaw() = default;

Stream* StreamSerializerRaw::read(std::istream& in, std::string& errors) const
{
    return detail::StreamReader(in).read(errors).release();
}

int StreamSerializerRaw::write(const Stream& stream, std::ostream& out, std::string& errors) const
{
    return detail::StreamWriter(stream, out).write(errors);
}

std::ostream& StreamSerializerRaw::getFormatDescription(std::ostream& out) const
{
    return out << kDescription;
}

int StreamSerializerRaw::writeMember(Handle& handle, unsigned int record, std::ostream& out, std::string& errors) const
{
    detail::Messages messages;
    detail::TextBuilder values;
    const detail::NumberFormat format(out);
    const detail::MemberValues member = detail::MemberValues::of(handle);
    if (!detail::appendMember(values, format, member))
        messages.add(detail::refusedMessage(member, format, "", record, {}));
    out.write(values.text().data(), static_cast<std::streamsize>(values.text().size()));
    return messages.appendTo(errors);
}

int StreamSerializerRaw::readMember(std::istream& in, unsigned int record, Handle& handle, std::string& errors) const
{
    detail::Messages messages;
    const detail::MemberValues values = detail::MemberValues::of(handle);
    if (!values.data)
    {
        messages.add(detail::unrecognizedMessage(values.type, record));
        return messages.appendTo(errors);
    }
    detail::ValueInput input(in);
    detail::readMember(values, record, input, messages);
    input.handOnState(in);
    return messages.appendTo(errors);
}

int StreamSerializerRaw::readStructure(const Structure& structure, std::istream& in, unsigned int record,
                                       Handle& handle, std::string& errors) const
{
    detail::Messages messages;
    const bool hasPlace = handle.usesStructure(structure) && (handle.hasData() || structure.empty());
    if (!hasPlace)
    {
        messages.add("Element at record " + std::to_string(record) + " is not one of Structure '" + structure.name() +
                     "'");
        return messages.appendTo(errors);
    }
    detail::ValueInput input(in);
    detail::ElementText(structure).read(handle.data(), record, input, messages);
    input.handOnState(in);
    return messages.appendTo(errors);
}

bool StreamSerializerRaw::Debug(const StreamSerializerRaw* object, vumo::Debug::Print& request)
{
    return detail::debugFormat("vumo::Data::StreamSerializerRaw", object, theInstance, request);
}

bool StreamSerializerRaw::Debug(const StreamSerializerRaw* object, vumo::Debug::Footprint& request)
{
    return detail::debugFormat(object, theInstance, request);
}
} // namespace vumo::Data
