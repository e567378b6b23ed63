#include "vumo/data/detail/ValueText.h"

#include "vumo/data/detail/DataTypes.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace vumo::Data::detail
{
namespace
{
constexpr unsigned int kMatrixColumns = 4;

template <class T>
constexpr bool kIsNarrow = std::is_integral_v<T> && sizeof(T) < sizeof(std::int32_t);

/// Returns whether it can be read back.
template <class T>
bool appendFloat(TextBuilder& text, const NumberFormat& format, T value)
{
    const std::size_t begin = text.text().size();
    format.append(text, value);
    if (std::abs(value) <= std::numeric_limits<T>::max() / 2)
        return !format.hasHexFloats();
    if (!std::isfinite(value) || format.hasHexFloats())
        return false;
    // Rounded to a few digits, the largest numbers may lie beyond the range of their type.
    const std::string_view written = text.text().substr(begin);
    T readBack{};
    return std::from_chars(written.data(), written.data() + written.size(), readBack).ec == std::errc();
}

/// Returns whether it can be read back.
template <class T>
bool appendScalar(TextBuilder& text, const NumberFormat& format, T value)
{
    if constexpr (std::is_floating_point_v<T>)
        return appendFloat(text, format, value);
    else if constexpr (std::is_same_v<T, bool>)
        text.append(value ? std::string_view("true") : std::string_view("false"));
    else
        format.append(text, value);
    return true;
}

/// Returns whether all can be read back.
template <class T>
bool appendScalars(TextBuilder& text, const NumberFormat& format, const char* values, std::size_t count)
{
    bool readable = true;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (i > 0)
            text.append(' ');
        readable = appendScalar(text, format, loadScalar<T>(values + i * sizeof(T))) && readable;
    }
    return readable;
}

bool extract(ValueInput& in, bool& value, std::string& word)
{
    static constexpr struct
    {
        std::string_view text;
        bool value;
    } kWords[] = {{"true", true}, {"false", false}, {"1", true},  {"t", true},  {"T", true},
                  {"True", true}, {"0", false},     {"f", false}, {"F", false}, {"False", false}};
    std::string_view text = in.takePlainWord();
    if (text.empty())
    {
        word.clear(); // an extraction that cannot begin leaves it as it is
        in.stream() >> word;
        text = word;
    }
    for (const auto& candidate : kWords)
    {
        if (text == candidate.text)
        {
            value = candidate.value;
            return true;
        }
    }
    word = std::string(text);
    return false;
}

template <class T>
bool extractNarrow(ValueInput& in, T& value)
{
    std::int32_t wide = 0;
    const bool isNumber = in.takePlainNumber(wide) || in.stream() >> wide;
    if (!isNumber || wide < std::numeric_limits<T>::min() || wide > std::numeric_limits<T>::max())
        return false;
    value = static_cast<T>(wide);
    return true;
}

template <class T>
bool extractWide(ValueInput& in, T& value)
{
    in.stream() >> value;
    if constexpr (std::is_floating_point_v<T>)
    {
        if (std::isinf(value))
            in.stream().setstate(std::ios::failbit); // refused however the standard library reports an overflow
    }
    return !in.stream().fail();
}

/// The short way for those texts that are acceptable without doubt; takes nothing of others.
template <class T>
bool takePlain(ValueInput& in, T& value)
{
    if constexpr (std::is_same_v<T, bool>)
    {
        value = in.takePlainWord("true");
        return value || in.takePlainWord("false");
    }
    else if constexpr (kIsNarrow<T>)
        return false;
    else
        return in.takePlainNumber(value);
}

/// Extracts one number that takePlain() has left. Of one that is refused a wide type keeps what the extraction left, a
/// narrow one nothing.
template <class T>
bool extract(ValueInput& in, T& value, std::string&)
{
    if constexpr (kIsNarrow<T>)
        return extractNarrow(in, value);
    else
        return extractWide(in, value);
}

/// Extracts an entry that nothing but whitespace follows.
template <class T>
bool extractAlone(ValueInput& in, T& value, ReadEntries& read)
{
    read.isMissing = !in.skipToText();
    return extract(in, value, read.word) && in.isAtSeparator();
}

/// Reads entries up to the first that is not plain; returns how many.
template <class T>
std::size_t readPlainScalars(ValueInput& in, std::size_t entries, char* target)
{
    std::size_t next = 0;
    for (T value{}; next < entries && takePlain(in, value); ++next)
    {
        if (target)
            storeScalar(target + next * sizeof(T), value);
    }
    return next;
}

template <class T>
bool readScalars(ValueInput& in, std::size_t entries, char* target, ReadEntries& read)
{
    std::size_t next = read.count;
    for (; next < entries; ++next)
    {
        T value{};
        if (!extractAlone(in, value, read))
            break;
        if (target)
            storeScalar(target + next * sizeof(T), value);
    }
    read.count = next;
    return next == entries;
}
} // namespace

bool appendValues(TextBuilder& text, const NumberFormat& format, Member::eDataType type, const char* values,
                  unsigned int count)
{
    bool readable = true;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (!std::is_pointer_v<Scalar>)
            readable = appendScalars<Scalar>(text, format, values, std::size_t(count) * layout.kEntries);
    });
    return readable;
}

bool readEntry(ValueInput& in, Member::eDataType type, char* entry, std::string& word)
{
    bool accepted = false;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (!std::is_pointer_v<Scalar>)
        {
            auto value = loadScalar<Scalar>(entry); // an extraction that cannot begin leaves it as it is
            accepted = takePlain(in, value) || extract(in, value, word);
            if (accepted || !(std::is_same_v<Scalar, bool> || kIsNarrow<Scalar>))
                storeScalar(entry, value);
        }
    });
    return accepted;
}

bool readValues(ValueInput& in, Member::eDataType type, unsigned int count, char* target, ReadEntries& read)
{
    bool accepted = false;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (!std::is_pointer_v<Scalar>)
            accepted = readScalars<Scalar>(in, std::size_t(count) * layout.kEntries, target, read);
    });
    return accepted;
}

bool readPlainValues(ValueInput& in, Member::eDataType type, unsigned int count, char* target, std::size_t& next)
{
    bool areAllPlain = false;
    visitDataType(type, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        if constexpr (!std::is_pointer_v<Scalar>)
        {
            const std::size_t entries = std::size_t(count) * layout.kEntries;
            next = readPlainScalars<Scalar>(in, entries, target);
            areAllPlain = next == entries;
        }
    });
    return areAllPlain;
}

char* entryAddress(Member::eDataType type, char* value, unsigned int i)
{
    return value + std::size_t(dataType(type).size / dataType(type).entries) * i;
}

std::string entryMessage(Member::eDataType type, unsigned int i, long long character, const std::string& word)
{
    const std::string what = dataType(type).word;
    const std::string where = " on or about character " + std::to_string(character);
    if (type == Member::kBoolean)
        return what + where + " has invalid value '" + word + "'. Use 't', 'true', '1', 'f', 'false', '0' only.";
    if (dataType(type).entries > 1)
    {
        return what + where + " has invalid value at row " + std::to_string(i / kMatrixColumns) + ", column " +
               std::to_string(i % kMatrixColumns);
    }
    return what + " value" + where + " is invalid";
}
} // namespace vumo::Data::detail
