#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Member.h"
#include "vumo/data/Structure.h"
#include "vumo/serialize/detail/Messages.h"

#include <istream>
#include <ostream>
#include <string>

namespace vumo::Data::detail
{
/// The text form of an element: its values in order, separated by blanks, strings in double quotes. Streams
/// are expected to use the classic locale; none of this touches the reference count of the structure.

/// The values of one member in an element's data block.
struct MemberValues
{
    Member::eDataType type;
    unsigned int length;
    char* data; // the first value, or null

    static MemberValues of(const Member* member, char* block);

    /// Those of the member that the handle is on; null data when there are none.
    static MemberValues of(Handle& handle);
};

/// Says that a member is not of the type that it should be, or of none.
std::string unrecognizedMessage(Member::eDataType type, unsigned int record);

/// Writes the values. An error for a type that is none, for values that are not there, and for numbers that
/// no reader takes back.
void writeMember(const MemberValues& values, unsigned int record, std::ostream& out, Messages& messages);

/// Writes the members one after the other; `block` is null only for an element without members.
void writeElement(const Structure& structure, char* block, unsigned int record, std::ostream& out, Messages& messages);

/// Reads the values up to the first that is bad, which is an error and is not stored. With null data it reads
/// all the same and stores nothing. Returns whether all were good.
bool readMember(const MemberValues& values, unsigned int record, std::istream& in, Messages& messages);

/// Reads the members up to the first bad value; null for `block` stores nothing.
bool readElement(const Structure& structure, char* block, unsigned int record, std::istream& in, Messages& messages);

/// Says whether a text of that length can possibly hold all values of an element.
bool couldHoldElement(const Structure& structure, std::string::size_type length);

/// Skips whitespace; returns whether there is text behind it, as there never is in an input that has failed.
bool skipToText(std::istream& in);
} // namespace vumo::Data::detail
