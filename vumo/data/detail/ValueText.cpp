#include "vumo/data/detail/ValueText.h"

#include "vumo/data/detail/DataTypes.h"

#include <cmath>
#include <limits>

namespace vumo::Data::detail
{
namespace
{
constexpr unsigned int kMatrixColumns = 4;

constexpr const char* kTypeWords[] = {"Boolean", "Double", "Double matrix", "Float",  "Float matrix",
                                      "Int8",    "Int16",  "Int32",         "Int64",  "String",
                                      "UInt8",   "UInt16", "UInt32",        "UInt64", "invalid"};

template <class T>
constexpr bool kIsNarrow = std::is_integral_v<T> && sizeof(T) < sizeof(std::int32_t);

template <class T>
void writeScalar(std::ostream& out, T value)
{
    if constexpr (std::is_same_v<T, bool>)
        out << (value ? "true" : "false");
    else if constexpr (kIsNarrow<T>)
        out << static_cast<int>(value);
    else
        out << value;
}

bool readBoolean(std::istream& in, char* entry, std::string& word)
{
    static constexpr const char* kTrue[] = {"1", "t", "T", "true", "True"};
    static constexpr const char* kFalse[] = {"0", "f", "F", "false", "False"};
    in >> word;
    for (const char* text : kTrue)
    {
        if (word == text)
        {
            *entry = 1;
            return true;
        }
    }
    for (const char* text : kFalse)
    {
        if (word == text)
        {
            *entry = 0;
            return true;
        }
    }
    return false;
}

template <class T>
bool readNarrow(std::istream& in, char* entry)
{
    std::int32_t wide = 0;
    if (!(in >> wide) || wide < std::numeric_limits<T>::min() || wide > std::numeric_limits<T>::max())
        return false;
    storeScalar(entry, static_cast<T>(wide));
    return true;
}

template <class T>
bool readWide(std::istream& in, char* entry)
{
    T value = loadScalar<T>(entry); // an extraction that cannot begin leaves it as it is
    in >> value;
    storeScalar(entry, value);
    if constexpr (std::is_floating_point_v<T>)
    {
        if (std::isinf(value))
            in.setstate(std::ios::failbit); // refused however the standard library reports an overflow
    }
    return !in.fail();
}
} // namespace

unsigned int entryCount(Member::eDataType type)
{
    unsigned int count = 0;
    visitDataType(type, [&](auto layout) { count = layout.kEntries; });
    return count;
}

void writeValue(std::ostream& out, Member::eDataType type, const char* value)
{
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        for (unsigned int i = 0; i < layout.kEntries; ++i)
        {
            if (i > 0)
                out << ' ';
            writeScalar(out, loadScalar<Scalar>(value + i * sizeof(Scalar)));
        }
    });
}

bool readEntry(std::istream& in, Member::eDataType type, char* entry, std::string& word)
{
    bool accepted = false;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (std::is_same_v<Scalar, bool>)
            accepted = readBoolean(in, entry, word);
        else if constexpr (kIsNarrow<Scalar>)
            accepted = readNarrow<Scalar>(in, entry);
        else if constexpr (!std::is_pointer_v<Scalar>)
            accepted = readWide<Scalar>(in, entry);
    });
    return accepted;
}

char* entryAddress(Member::eDataType type, char* value, unsigned int i)
{
    return value + Member::typeSize(type) / entryCount(type) * i;
}

std::string entryMessage(Member::eDataType type, unsigned int i, long long character, const std::string& word)
{
    const std::string what = typeWord(type);
    const std::string where = " on or about character " + std::to_string(character);
    if (type == Member::kBoolean)
        return what + where + " has invalid value '" + word + "'. Use 't', 'true', '1', 'f', 'false', '0' only.";
    if (entryCount(type) > 1)
    {
        return what + where + " has invalid value at row " + std::to_string(i / kMatrixColumns) + ", column " +
               std::to_string(i % kMatrixColumns);
    }
    return what + " value" + where + " is invalid";
}

const char* typeWord(Member::eDataType type)
{
    return kTypeWords[type < Member::kInvalidType ? type : Member::kInvalidType];
}

long long readPosition(std::istream& in)
{
    return in.rdbuf() ? static_cast<long long>(in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in)) : -1;
}
} // namespace vumo::Data::detail
