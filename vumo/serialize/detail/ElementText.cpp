#include "vumo/serialize/detail/ElementText.h"

#include "vumo/data/detail/DataTypes.h"
#include "vumo/data/detail/ValueText.h"
#include "vumo/foundation/detail/Text.h"
#include "vumo/serialize/detail/LineReader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace vumo::Data::detail
{
namespace
{
using Traits = ValueInput::Traits;

void appendString(TextBuilder& line, const char* text)
{
    const std::size_t length = text ? std::strlen(text) : 0;
    char* out = line.room(2 * length + 2); // every character escaped, and two quotation marks
    *out++ = '"';
    for (std::size_t i = 0; i < length; ++i)
    {
        const bool isEscaped = text[i] == '"' || text[i] == '\\' || text[i] == '\n';
        if (isEscaped)
            *out++ = '\\';
        *out++ = text[i] == '\n' ? 'n' : text[i];
    }
    *out++ = '"';
    line.setEnd(out);
}

void appendStrings(TextBuilder& line, const char* values, unsigned int count)
{
    for (unsigned int i = 0; i < count; ++i)
    {
        if (i > 0)
            line.append(' ');
        appendString(line, loadScalar<char*>(values + i * sizeof(char*)));
    }
}

std::string placeOf(ValueInput& in)
{
    return " on or about character " + std::to_string(readPosition(in.stream()));
}

/// Says whether the character means something inside quotation marks, besides itself. All three are compared and joined
/// without a branch: branches on the letters of a text are mispredicted, and hardly any letter is special.
bool isSpecial(char c)
{
    return static_cast<int>(c == '"') | static_cast<int>(c == '\\') | static_cast<int>(c == '\0');
}

/// Appends what follows the backslash that was just read; what is no escape stands for itself, backslash included.
void readEscape(ValueInput& in, std::string& text)
{
    const Traits::int_type next = in.peek();
    const bool isEscape = next == '"' || next == '\\' || next == 'n';
    if (isEscape)
        in.get();
    text += !isEscape ? '\\' : next == 'n' ? '\n' : Traits::to_char_type(next);
}

/// Appends what follows the opening quotation mark and the `text` that was taken after it.
bool readQuoted(ValueInput& in, std::string& text, Messages& messages)
{
    for (;;)
    {
        text += in.takeUntil(isSpecial);
        const Traits::int_type c = in.get();
        if (c == '"')
            return true;
        if (Traits::eq_int_type(c, Traits::eof()))
        {
            messages.add("String element not terminated" + placeOf(in));
            return false;
        }
        if (c == '\0')
        {
            messages.add("String element" + placeOf(in) + " has a zero byte, where its value would end");
            return false;
        }
        if (c == '\\')
            readEscape(in, text);
        else
            text += Traits::to_char_type(c);
    }
}

/// Reads a string, which replaces the one at `target`, if there is one. There is text left.
bool readString(ValueInput& in, char* target, Messages& messages)
{
    const Traits::int_type first = in.peek();
    if (first != '"')
    {
        messages.add("String element" + placeOf(in) + " must be enclosed in double quotes instead of '" +
                     Traits::to_char_type(first) + "'");
        return false;
    }
    in.get();
    std::string_view text = in.takeUntil(isSpecial);
    std::string unescaped;
    if (in.peek() == '"')
        in.get(); // as most strings do, it lies in the input as it is
    else
    {
        unescaped = text;
        if (!readQuoted(in, unescaped, messages))
            return false;
        text = unescaped;
    }
    if (!in.isAtSeparator())
    {
        messages.add(entryMessage(Member::kString, 0, readPosition(in.stream()), ""));
        return false;
    }
    if (target)
        Member::replaceString(target, OwnedText(duplicateText(text)));
    return true;
}

bool readStrings(ValueInput& in, const MemberValues& values, Messages& messages)
{
    for (unsigned int i = 0; i < values.length; ++i)
    {
        if (!in.skipToText())
        {
            messages.add(entryMessage(Member::kString, 0, readPosition(in.stream()), ""));
            return false;
        }
        in.beginValue();
        if (!readString(in, values.data ? values.data + i * sizeof(char*) : nullptr, messages))
        {
            in.goBack(); // a quotation mark that is missing must not hide the other values of the line
            in.skipWord();
        }
    }
    return true;
}

/// Adds the message for the entry that was refused, and goes on after it. False when there is no text left.
bool passRefused(ValueInput& in, Member::eDataType type, ReadEntries& read, Messages& messages)
{
    const auto place = static_cast<unsigned int>(read.count % dataType(type).entries);
    messages.add(entryMessage(type, place, readPosition(in.stream()), read.word));
    if (read.isMissing)
        return false;
    in.skipWord();
    ++read.count;
    return true;
}

/// Reads the entries of numbers, booleans or matrices.
bool readNumbers(ValueInput& in, const MemberValues& values, Messages& messages)
{
    std::size_t next = 0;
    if (readPlainValues(in, values.type, values.length, values.data, next))
        return true; // as nearly all are, and no text of messages was made ready
    ReadEntries read;
    read.count = next;
    while (!readValues(in, values.type, values.length, values.data, read))
    {
        if (!passRefused(in, values.type, read, messages))
            return false;
    }
    return true;
}

/// The least length that the text of the values can have, good or bad: a character and a separator for each of them.
unsigned long long leastLength(Member::eDataType type, unsigned int length)
{
    constexpr unsigned long long kLeastEntry = 2;
    return kLeastEntry * dataType(type).entries * length;
}

/// A number that no reader takes back, and why.
struct RefusedNumber
{
    std::string text;
    const char* fault = "";
};

/// The first such number among values that have one.
RefusedNumber refusedNumber(const MemberValues& values, const NumberFormat& format)
{
    RefusedNumber refused;
    visitDataType(values.type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (std::is_floating_point_v<Scalar>)
        {
            constexpr Member::eDataType kType = std::is_same_v<Scalar, double> ? Member::kDouble : Member::kFloat;
            const char* number = values.data;
            TextBuilder text;
            // Ends, because one of the values is refused.
            while (appendValues(text, format, kType, number, 1))
            {
                text.clear();
                number += sizeof(Scalar);
            }
            const bool isFinite = std::isfinite(loadScalar<Scalar>(number));
            refused.text = text.text();
            refused.fault = !isFinite               ? "it is not finite"
                            : format.hasHexFloats() ? "it is in hexadecimal digits"
                                                    : "with so few digits it is beyond the range of its type";
        }
    });
    return refused;
}
} // namespace

MemberValues MemberValues::of(Handle& handle)
{
    const Member::eDataType type = handle.dataType();
    return {type, handle.dataLength(), static_cast<char*>(handle.asType(type))};
}

std::string unrecognizedMessage(Member::eDataType type, unsigned int record)
{
    return "Member at record " + std::to_string(record) + " not recognized as a " + Member::typeName(type);
}

bool appendMember(TextBuilder& line, const NumberFormat& format, const MemberValues& values)
{
    if (values.type >= Member::kInvalidType || !values.data)
        return false;
    if (values.type != Member::kString)
        return appendValues(line, format, values.type, values.data, values.length);
    appendStrings(line, values.data, values.length);
    return true;
}

std::string refusedMessage(const MemberValues& values, const NumberFormat& format, const std::string& place,
                           unsigned int record, const LineOwner& owner)
{
    if (values.type >= Member::kInvalidType || !values.data)
        return unrecognizedMessage(values.type, record);
    const RefusedNumber number = refusedNumber(values, format);
    return notReadBackMessage("Value " + number.text + place, record, owner, number.fault);
}

bool readMember(const MemberValues& values, unsigned int record, ValueInput& in, Messages& messages)
{
    if (values.type >= Member::kInvalidType)
    {
        messages.add(unrecognizedMessage(values.type, record));
        return true;
    }
    return values.type == Member::kString ? readStrings(in, values, messages) : readNumbers(in, values, messages);
}

ElementText::ElementText(const Structure& structure, std::size_t longestText)
{
    mMembers.reserve(std::min(structure.memberCount(), kMaxLineLength)); // more are not looked up for a line
    for (unsigned int i = 0; i < structure.memberCount() && fitsInto(longestText); ++i)
    {
        const Member* const member = structure.member(i);
        mMembers.push_back({Member::type(member), Member::length(member), Member::offset(member)});
        mLeastLength += leastLength(mMembers.back().type, mMembers.back().length);
    }
}

bool ElementText::append(TextBuilder& line, const NumberFormat& format, char* block) const
{
    bool isReadBack = true;
    for (const Place& member : mMembers)
    {
        if (&member != mMembers.data())
            line.append(' ');
        isReadBack = appendMember(line, format, valuesOf(member, block)) && isReadBack;
    }
    return isReadBack;
}

bool ElementText::read(char* block, unsigned int record, ValueInput& in, Messages& messages) const
{
    const int errorsBefore = messages.count();
    for (const Place& member : mMembers)
    {
        if (!readMember(valuesOf(member, block), record, in, messages))
            break;
    }
    return messages.count() == errorsBefore;
}

MemberValues ElementText::valuesOf(const Place& member, char* block)
{
    return {member.type, member.length, block ? block + member.offset : nullptr};
}
} // namespace vumo::Data::detail
