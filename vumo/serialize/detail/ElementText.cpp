#include "vumo/serialize/detail/ElementText.h"

#include "vumo/data/detail/DataTypes.h"
#include "vumo/data/detail/Text.h"
#include "vumo/data/detail/ValueText.h"
#include "vumo/serialize/detail/ClassicText.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <type_traits>

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
    return std::isspace(Traits::to_char_type(c), std::locale::classic());
}

bool isAtSeparator(std::istream& in)
{
    const Traits::int_type next = in.rdbuf()->sgetc();
    return isEnd(next) || isSpace(next);
}

void writeString(std::ostream& out, const char* text)
{
    out.put('"');
    for (; text && *text != '\0'; ++text)
    {
        if (*text == '"' || *text == '\\')
            out.put('\\');
        if (*text == '\n')
            out << "\\n";
        else
            out.put(*text);
    }
    out.put('"');
}

/// Says whether readers take back what `out` makes of the value: no infinity and no NaN, for example.
bool canBeReadBack(const std::ostream& out, Member::eDataType type, const char* value)
{
    bool readable = true;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (std::is_floating_point_v<Scalar>)
        {
            readable = !ClassicText::hasHexFloats(out);
            for (unsigned int i = 0; readable && i < layout.kEntries; ++i)
                readable = std::isfinite(loadScalar<Scalar>(value + i * sizeof(Scalar)));
        }
    });
    return readable;
}

/// What follows the backslash that was just read; what is no escape stands for itself, backslash included.
std::string readEscape(std::streambuf& chars)
{
    switch (chars.sgetc())
    {
    case '"':
        chars.sbumpc();
        return "\"";
    case '\\':
        chars.sbumpc();
        return "\\";
    case 'n':
        chars.sbumpc();
        return "\n";
    default:
        return "\\";
    }
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
            text += readEscape(chars);
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
bool readEntries(std::istream& in, Member::eDataType type, char* target, Messages& messages)
{
    const unsigned int entrySize = Member::typeSize(type) / entryCount(type);
    for (unsigned int i = 0; i < entryCount(type); ++i)
    {
        char entry[sizeof(double)] = {}; // read aside, so that a bad one is not stored
        std::string word;
        if (!readEntry(in, type, entry, word) || !isAtSeparator(in))
        {
            messages.add(entryMessage(type, i, readPosition(in), word));
            return false;
        }
        if (target)
            std::memcpy(entryAddress(type, target, i), entry, entrySize);
    }
    return true;
}
} // namespace

MemberValues MemberValues::of(const Member* member, char* block)
{
    return {Member::type(member), Member::length(member), block ? block + Member::offset(member) : nullptr};
}

MemberValues MemberValues::of(Handle& handle)
{
    const Member::eDataType type = handle.dataType();
    return {type, handle.dataLength(), static_cast<char*>(handle.asType(type))};
}

std::string unrecognizedMessage(Member::eDataType type, unsigned int record)
{
    return "Member at record " + std::to_string(record) + " not recognized as a " + Member::typeName(type);
}

void writeMember(const MemberValues& values, unsigned int record, std::ostream& out, Messages& messages)
{
    if (values.type >= Member::kInvalidType || !values.data)
    {
        messages.add(unrecognizedMessage(values.type, record));
        return;
    }
    bool readable = true;
    for (unsigned int i = 0; i < values.length; ++i)
    {
        const char* const value = values.data + std::size_t(i) * Member::typeSize(values.type);
        if (i > 0)
            out.put(' ');
        if (values.type == Member::kString)
            writeString(out, loadScalar<char*>(value));
        else
            writeValue(out, values.type, value);
        readable = readable && canBeReadBack(out, values.type, value);
    }
    if (!readable)
        messages.add("Member at record " + std::to_string(record) + " has a value that cannot be read back");
}

void writeElement(const Structure& structure, char* block, unsigned int record, std::ostream& out, Messages& messages)
{
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        if (i > 0)
            out.put(' ');
        writeMember(MemberValues::of(structure.member(i), block), record, out, messages);
    }
}

bool readMember(const MemberValues& values, unsigned int record, std::istream& in, Messages& messages)
{
    if (values.type >= Member::kInvalidType)
    {
        messages.add(unrecognizedMessage(values.type, record));
        return false;
    }
    for (unsigned int i = 0; i < values.length; ++i)
    {
        char* const target = values.data ? values.data + std::size_t(i) * Member::typeSize(values.type) : nullptr;
        const bool good = values.type == Member::kString ? readString(in, target, messages)
                                                         : readEntries(in, values.type, target, messages);
        if (!good)
            return false;
    }
    return true;
}

bool readElement(const Structure& structure, char* block, unsigned int record, std::istream& in, Messages& messages)
{
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        if (!readMember(MemberValues::of(structure.member(i), block), record, in, messages))
            return false;
    }
    return true;
}

bool couldHoldElement(const Structure& structure, std::string::size_type length)
{
    // The least that a value takes: a character or two quotation marks, and a separator but for the last one.
    constexpr unsigned int kLeastEntry = 2;
    constexpr unsigned int kLeastString = 3;
    unsigned long long least = 0;
    for (unsigned int i = 0; i < structure.memberCount() && least <= length + 1; ++i)
    {
        const Member* const member = structure.member(i);
        const Member::eDataType type = Member::type(member);
        const unsigned long long value = type == Member::kString ? kLeastString : kLeastEntry * entryCount(type);
        least += value * Member::length(member);
    }
    return least <= length + 1;
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
