#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Member.h"
#include "vumo/data/Structure.h"
#include "vumo/data/detail/NumberFormat.h"
#include "vumo/data/detail/TextBuilder.h"
#include "vumo/data/detail/ValueInput.h"
#include "vumo/serialize/detail/Messages.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vumo::Data::detail
{
/// The text form of an element: its values in order, separated by blanks, strings in double quotes. Inputs are
/// expected to use the classic locale; none of this touches the reference count of the structure.

/// The values of one member in an element's data block.
struct MemberValues
{
    Member::eDataType type;
    unsigned int length;
    char* data; // the first value, or null

    /// Those of the member that the handle is on; null data when there are none.
    static MemberValues of(Handle& handle);
};

/// Says that a member is not of the type that it should be, or of none.
std::string unrecognizedMessage(Member::eDataType type, unsigned int record);

/// Appends the values to the line. An error for a type that is none, for values that are not there, and for numbers
/// that no reader takes back.
void appendMember(TextBuilder& line, const NumberFormat& format, const MemberValues& values, unsigned int record,
                  Messages& messages);

/// Reads the values up to the first that is bad, which is an error and is not stored. With null data it reads
/// all the same and stores nothing. Returns whether all were good.
bool readMember(const MemberValues& values, unsigned int record, ValueInput& in, Messages& messages);

/// Writes and reads the elements of a structure, whose members it looks up once.
class ElementText
{
public:
    /// Keeps no pointer to the structure, which must not change meanwhile.
    explicit ElementText(const Structure& structure);

    /// Appends the members to the line; `block` is null only for an element without members.
    void append(TextBuilder& line, const NumberFormat& format, char* block, unsigned int record,
                Messages& messages) const;

    /// Reads the members up to the first bad value; null for `block` stores nothing.
    bool read(char* block, unsigned int record, ValueInput& in, Messages& messages) const;

    /// Says whether a line of that length can possibly hold all values of an element.
    bool fitsInto(std::size_t length) const { return mLeastLength <= length + 1; } // no separator behind the last one

private:
    struct Place
    {
        Member::eDataType type;
        unsigned int length;
        unsigned long long offset;
    };

    static MemberValues valuesOf(const Place& member, char* block);

    std::vector<Place> mMembers;
    unsigned long long mLeastLength = 0;
};
} // namespace vumo::Data::detail
