#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Member.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/detail/NumberFormat.h"
#include "vumo/foundation/detail/TextBuilder.h"
#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/detail/Messages.h"
#include "vumo/serialize/detail/ReadBack.h"

#include <cstddef>
#include <limits>
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

/// Appends the values to the line. False for a type that is none, for values that are not there, and for numbers that
/// no reader takes back.
bool appendMember(TextBuilder& line, const NumberFormat& format, const MemberValues& values);

/// The message for values that appendMember() refused. `place` says which they are: " of member 'weight'", say.
std::string refusedMessage(const MemberValues& values, const NumberFormat& format, const std::string& place,
                           unsigned int record, const LineOwner& owner);

/// Reads the values. One that is bad is an error and is not stored, and the next one starts after the word in which it
/// began. With null data it reads all the same and stores nothing. The first value that is missing is the last error:
/// then it returns false.
bool readMember(const MemberValues& values, unsigned int record, ValueInput& in, Messages& messages);

/// Writes and reads the elements of a structure, whose members it looks up once.
class ElementText
{
public:
    static constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max() - 1; // fitsInto() adds one

    /// Keeps no pointer to the structure, which must not change meanwhile.
    ///
    /// `longestText` is the length of the longest text that is going to be read. No more members are looked up than it
    /// takes to know that this is too short for them all: a stream is not to pay for a structure of very many members.
    explicit ElementText(const Structure& structure, std::size_t longestText = kAnyLength);

    unsigned int memberCount() const { return static_cast<unsigned int>(mMembers.size()); }

    /// The values of that member in an element's data block; null data without one.
    MemberValues valuesOf(unsigned int member, char* block) const { return valuesOf(mMembers[member], block); }

    /// Appends the members to the line; `block` is null only for an element without members. False when
    /// appendMember() refused one of them.
    bool append(TextBuilder& line, const NumberFormat& format, char* block) const;

    /// Reads the members, each as readMember() does; null for `block` stores nothing. Returns whether all values were
    /// good.
    bool read(char* block, unsigned int record, ValueInput& in, Messages& messages) const;

    /// Says whether a line of that length can possibly hold all values of an element.
    bool fitsInto(std::size_t length) const { return mLeastLength <= length + 1; } // no separator follows the last one

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
