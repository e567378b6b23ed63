#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Stream.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/serialize/SerializerRaw.h"
#include "vumo/serialize/StreamSerializer.h"

#include <atomic>
#include <iosfwd>
#include <string>

namespace vumo::Data
{
/// The format "raw" of streams: lines of at most 1023 characters that name the stream, its index type and its
/// structure, two lines for each element, its index and its values, and the line "endStream".
///
///     name Weights
///     indexType numeric
///     structure Bone
///     0
///     0.25 "Left \"arm\"" true
///     endStream
///
/// Numbers are those of the classic locale, whatever locale is in use. How exact they are is up to the stream
/// written to: six digits unless it was given another precision, and with `precision(17)` all of a double.
///
/// Reading finds structures and index types by their registered names. Writing writes everything, but what
/// reading would not give back is an error: a line that is too long, a name or an index with a newline or a zero byte
/// in it or whitespace at an end, an index that is empty, reads as a keyword or is not of the stream's index type, a
/// number that is not finite. Its message names the place and the reason. Null strings come back as empty ones. An
/// element of a structure without members has a blank data line, which reading does not insist on.
class VUMO_EXPORT StreamSerializerRaw : public StreamSerializer, private SerializerRaw
{
public:
    /// The one format, made with the first call, which also makes it the default.
    static StreamSerializerRaw* theFormat();

    /// Makes the new object the default.
    StreamSerializerRaw();

    const char* formatType() const override;
    ~StreamSerializerRaw() override;

    /// Reads to the line "endStream" and nothing after it, or to the end of the input.
    Stream* read(std::istream& in, std::string& errors) const override;

    int write(const Stream& stream, std::ostream& out, std::string& errors) const override;
    std::ostream& getFormatDescription(std::ostream& out) const override;

    /// Each of these treats the data of one element, whose data line is the given record, and returns the
    /// number of errors, which are appended to `errors` without a summary.

    /// Writes the values of the member that the handle is on.
    int writeMember(Handle& handle, unsigned int record, std::ostream& out, std::string& errors) const;

    /// Reads the values of the member that the handle is on. One that is bad keeps what was stored; the next one
    /// starts after the word in which it began, so that one call reports all that are bad. Where the input ends, the
    /// first value that is missing is the last one reported. The input is left failed if any extraction failed.
    int readMember(std::istream& in, unsigned int record, Handle& handle, std::string& errors) const;

    /// Reads the values of all members in this way. The handle must be on that structure.
    int readStructure(const Structure& structure, std::istream& in, unsigned int record, Handle& handle,
                      std::string& errors) const;

    static bool Debug(const StreamSerializerRaw* object, vumo::Debug::Print& request);
    static bool Debug(const StreamSerializerRaw* object, vumo::Debug::Footprint& request);

private:
    static std::atomic<StreamSerializerRaw*> theInstance;
};
} // namespace vumo::Data
