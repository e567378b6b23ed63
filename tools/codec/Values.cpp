#include "tools/codec/Values.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Json.h"

#include <charconv>
#include <cmath>
#include <sstream>
#include <system_error>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
constexpr unsigned int kMatrixRows = 4;

bool isMatrix(Member::eDataType type)
{
    return type == Member::kDoubleMatrix4x4 || type == Member::kFloatMatrix4x4;
}

[[noreturn]] void refuse(const Handle& handle, const std::string& text)
{
    throw CodecError(jsonText(text) + " is no " + Member::typeName(handle.dataType()));
}

/// Takes a plus sign, as the text formats do.
const char* withoutPlus(const std::string& text)
{
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return text.c_str() + (hasPlus ? 1 : 0);
}

template <class T>
void setNumber(Handle& handle, unsigned int i, const std::string& text)
{
    T value = 0;
    const char* const end = text.c_str() + text.size();
    const std::from_chars_result result = std::from_chars(withoutPlus(text), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(static_cast<double>(value)))
        refuse(handle, text);
    handle.set<T>(i, value);
}

void setBoolean(Handle& handle, unsigned int i, const std::string& text)
{
    for (const char* const word : {"true", "True", "t", "T", "1", "false", "False", "f", "F", "0"})
    {
        if (text == word)
        {
            handle.set<bool>(i, std::string("tT1").find(text[0]) != std::string::npos);
            return;
        }
    }
    refuse(handle, text);
}

void setText(Handle& handle, unsigned int i, const std::string& text)
{
    if (!handle.set(i, text))
        throw CodecError("a text with a zero byte cannot be stored");
}

/// By the number of the data type.
constexpr void (*kSetters[])(Handle&, unsigned int, const std::string&) = {
    setBoolean,
    setNumber<double>,
    setNumber<double>,
    setNumber<float>,
    setNumber<float>,
    setNumber<std::int8_t>,
    setNumber<std::int16_t>,
    setNumber<std::int32_t>,
    setNumber<std::int64_t>,
    setText,
    setNumber<std::uint8_t>,
    setNumber<std::uint16_t>,
    setNumber<std::uint32_t>,
    setNumber<std::uint64_t>,
};
} // namespace

std::vector<unsigned int> shapeOf(const Member& member)
{
    std::vector<unsigned int> shape;
    if (Member::length(&member) != 1)
        shape.push_back(Member::length(&member));
    if (isMatrix(Member::type(&member)))
        shape.insert(shape.end(), {kMatrixRows, kMatrixRows});
    return shape;
}

std::uint64_t valueCount(const Member& member)
{
    std::uint64_t count = 1;
    for (const unsigned int length : shapeOf(member))
        count *= length;
    return count;
}

std::vector<std::string> numberTexts(const Handle& handle)
{
    std::vector<std::string> texts;
    for (unsigned int i = 0; i < handle.dataLength(); ++i)
    {
        const std::string text = handle.str(i, kExact);
        if (text.find_first_of("nN") != std::string::npos) // "nan" or "inf", in any of the entries
            throw CodecError("the value " + text + " is not finite, and cannot be stored");
        std::istringstream entries(text);
        for (std::string entry; isMatrix(handle.dataType()) && entries >> entry;)
            texts.push_back(entry);
        if (!isMatrix(handle.dataType()))
            texts.push_back(text);
    }
    return texts;
}

void setValue(Handle& handle, unsigned int i, const std::string& text)
{
    kSetters[handle.dataType()](handle, i, text);
}
} // namespace vumo::codec
