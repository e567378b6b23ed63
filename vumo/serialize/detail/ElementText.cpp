#include "vumo/serialize/detail/ElementText.h"

#include "vumo/data/detail/DataTypes.h"
#include "vumo/data/detail/Text.h"
#include "vumo/data/detail/ValueText.h"
#include "vumo/serialize/detail/LineReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace vumo::Data::detail
{
namespace
{
using Traits = std::istream::traits_type;

bool isEnd(Traits::int_type c)
{
    return Traits::eq_int_type(c, Traits::eof());
}

bool isSpace(Traits::int_type c)
{
    return isClassicSpace(Traits::to_char_type(c));
}

bool isAtSeparator(std::istream& in)
{
    const Traits::int_type next = in.rdbuf()->sgetc();
    return isEnd(next) || isSpace(next);
}

void appendString(TextBuilder& line, const char* text)
{
    const std::size_t length = text ? std::strlen(text) : 0;
    char* out = line.room(2 * length + 2);
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

/// Appends what follows the backslash that was just read; what is no escape stands for itself, backslash included.
void readEscape(std::streambuf& chars, std::string& text)
{
    const Traits::int_type next = chars.sgetc();
    const bool isEscape = next == '"' || next == '\\' || next == 'n';
    if (isEscape)
        chars.sbumpc();
    text += !isEscape ? '\\' : next == 'n' ? '\n' : Traits::to_char_type(next);
}

std::string placeOf(std::istream& in)
{
    return " on or about character " + std::to_string(readPosition(in));
}

/// Reads what follows the opening quotation mark.
bool readQuoted(std::istream& in, std::string& text, Messages& messages)
{
    std::streambuf& chars = *in.rdbuf();
    for (Traits::int_type c = chars.sbumpc(); c != '"'; c = chars.sbumpc())
    {
        if (isEnd(c))
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
            readEscape(chars, text);
        else
            text += Traits::to_char_type(c);
    }
    return true;
}

/// Reads a string, which replaces the one at `target`.
bool readString(std::istream& in, char* target, Messages& messages)
{
    std::string text;
    if (skipToText(in))
    {
        const Traits::int_type first = in.rdbuf()->sgetc();
        if (first != '"')
        {
            messages.add("String element" + placeOf(in) + " must be enclosed in double quotes instead of '" +
                         Traits::to_char_type(first) + "'");
            return false;
        }
        in.rdbuf()->sbumpc();
        if (!readQuoted(in, text, messages))
            return false;
        if (isAtSeparator(in))
        {
            if (target)
            {
                std::free(loadScalar<char*>(target));
                storeScalar(target, duplicateText(text.c_str()));
            }
            return true;
        }
    }
    messages.add(entryMessage(Member::kString, 0, readPosition(in), text));
    return false;
}

/// Reads the entries of a number, a boolean or a matrix.
bool readEntries(ValueInput& in, Member::eDataType type, char* target, Messages& messages)
{
    const unsigned int count = entryCount(type);
    const unsigned int entrySize = Member::typeSize(type) / count;
    for (unsigned int i = 0; i < count; ++i)
    {
        char entry[sizeof(double)] = {}; // read aside, so that a bad one is not stored
        std::string word;
        if (!readEntry(in, type, entry, word) || !isAtSeparator(in.stream()))
        {
            messages.add(entryMessage(type, i, readPosition(in.stream()), word));
            return false;
        }
        if (target)
            std::memcpy(target + std::size_t(i) * entrySize, entry, entrySize);
    }
    return true;
}

/// The least length that the text of the values can have: a character or two quotation marks, and a separator, for
/// each of them.
unsigned long long leastLength(Member::eDataType type, unsigned int length)
{
    constexpr unsigned int kLeastEntry = 2;
    constexpr unsigned int kLeastString = 3;
    const unsigned long long value = type == Member::kString ? kLeastString : kLeastEntry * entryCount(type);
    return value * length;
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

void appendMember(TextBuilder& line, const NumberFormat& format, const MemberValues& values, unsigned int record,
                  Messages& messages)
{
    if (values.type >= Member::kInvalidType || !values.data)
    {
        messages.add(unrecognizedMessage(values.type, record));
        return;
    }
    if (values.type == Member::kString)
        appendStrings(line, values.data, values.length);
    else if (!appendValues(line, format, values.type, values.data, values.length))
        messages.add("Member at record " + std::to_string(record) + " has a value that cannot be read back");
}

bool readMember(const MemberValues& values, unsigned int record, ValueInput& in, Messages& messages)
{
    if (values.type >= Member::kInvalidType)
    {
        messages.add(unrecognizedMessage(values.type, record));
        return false;
    }
    const std::size_t size = Member::typeSize(values.type);
    for (unsigned int i = 0; i < values.length; ++i)
    {
        char* const target = values.data ? values.data + i * size : nullptr;
        const bool good = values.type == Member::kString ? readString(in.stream(), target, messages)
                                                         : readEntries(in, values.type, target, messages);
        if (!good)
            return false;
    }
    return true;
}

ElementText::ElementText(const Structure& structure)
{
    mMembers.reserve(structure.memberCount());
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        const Member* const member = structure.member(i);
        mMembers.push_back({Member::type(member), Member::length(member), Member::offset(member)});
        if (mLeastLength <= kMaxLineLength + 1)
            mLeastLength += leastLength(mMembers.back().type, mMembers.back().length);
    }
}

void ElementText::append(TextBuilder& line, const NumberFormat& format, char* block, unsigned int record,
                         Messages& messages) const
{
    for (const Place& member : mMembers)
    {
        if (&member != mMembers.data())
            line.append(' ');
        appendMember(line, format, valuesOf(member, block), record, messages);
    }
}

bool ElementText::read(char* block, unsigned int record, ValueInput& in, Messages& messages) const
{
    return std::all_of(mMembers.begin(), mMembers.end(),
                       [&](const Place& member) { return readMember(valuesOf(member, block), record, in, messages); });
}

MemberValues ElementText::valuesOf(const Place& member, char* block)
{
    return {member.type, member.length, block ? block + member.offset : nullptr};
}

bool skipToText(std::istream& in)
{
    if (!in.good())
        return false;
    std::streambuf& chars = *in.rdbuf();
    while (!isEnd(chars.sgetc()) && isSpace(chars.sgetc()))
        chars.sbumpc();
    return !isEnd(chars.sgetc());
}
} // namespace vumo::Data::detail
