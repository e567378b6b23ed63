#include "vumo/accessor/detail/TextConversion.h"

#include "vumo/accessor/detail/PlainBytes.h"

#include <iconv.h>
#include <langinfo.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>

namespace vumo::Data::detail
{
namespace
{
/// The encoding of the current locale, as iconv names it.
constexpr const char* kLocaleEncoding = "";
constexpr const char* kUtf8 = "UTF-8";

/// Says whether isPlainByte() holds for all of the text, at the speed of memory.
bool isPlain(std::string_view text)
{
    unsigned char oddBits = 0;
    for (const char byte : text)
        oddBits |= oddBitsOf(byte);
    return oddBits == 0;
}

/// All characters that isPlain() allows.
std::string plainCharacters()
{
    std::string characters;
    for (int code = 0; code <= kLastAsciiCode; ++code)
    {
        if (isPlainByte(static_cast<char>(code)))
            characters += static_cast<char>(code);
    }
    return characters;
}

/// Owns an open conversion.
class Converter
{
public:
    explicit Converter(eTextDirection direction)
        : Converter(direction == eTextDirection::kToUtf8 ? kLocaleEncoding : kUtf8,
                    direction == eTextDirection::kToUtf8 ? kUtf8 : kLocaleEncoding)
    {
    }

    Converter(const char* from, const char* to) : mDescriptor(iconv_open(to, from))
    {
        if (!isOpen() && errno == ENOMEM)
            throw std::bad_alloc(); // there is such a conversion, so no text must go without it
    }

    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    ~Converter()
    {
        if (isOpen())
            iconv_close(mDescriptor);
    }

    // NOLINTNEXTLINE(performance-no-int-to-ptr): so POSIX has it
    bool isOpen() const { return mDescriptor != reinterpret_cast<iconv_t>(-1); }

    /// Says whether the conversion changes nothing.
    bool isTrivial() const
    {
#ifdef VUMO_HAVE_ICONVCTL
        int trivial = 0;
        return iconvctl(mDescriptor, ICONV_TRIVIALP, &trivial) == 0 && trivial != 0;
#else
        return std::strcmp(nl_langinfo(CODESET), kUtf8) == 0;
#endif
    }

    /// Says whether the conversion leaves texts alone for which isPlain() holds. That is much sooner known than done.
    bool keepsPlainText()
    {
        const std::string characters = plainCharacters();
        std::string converted;
        return convert(characters, converted) && converted == characters;
    }

    /// False when the text could not be converted to its end, or not without a loss.
    bool convert(std::string_view text, std::string& result)
    {
        result.resize(text.size() + kRoomToGrow);
        std::size_t written = 0;
        char* in = const_cast<char*>(text.data()); // iconv reads it only
        std::size_t inLeft = text.size();
        // The call without input writes what ends a text in an encoding that has states.
        if (!run(&in, &inLeft, result, written) || !run(nullptr, nullptr, result, written))
            return false;
        result.resize(written);
        return true;
    }

private:
    static constexpr std::size_t kRoomToGrow = 64;

    /// Converts behind the `written` bytes of `result`, which grows as needed.
    bool run(char** in, std::size_t* inLeft, std::string& result, std::size_t& written)
    {
        for (;;)
        {
            char* out = result.data() + written;
            std::size_t outLeft = result.size() - written;
            const std::size_t substitutes = iconv(mDescriptor, in, inLeft, &out, &outLeft);
            written = result.size() - outLeft;
            if (substitutes == 0)
                return true;
            if (substitutes != static_cast<std::size_t>(-1) || errno != E2BIG)
                return false;
            result.resize(result.size() * 2);
        }
    }

    iconv_t mDescriptor;
};

bool isUtf8(std::string_view text)
{
    Converter converter(kUtf8, kUtf8);
    std::string ignored;
    return converter.isOpen() && converter.convert(text, ignored);
}
} // namespace

bool convertString(std::string_view text, eTextDirection direction, std::string& converted)
{
    Converter converter(direction);
    if (!converter.isOpen() || converter.isTrivial() || (isPlain(text) && converter.keepsPlainText()))
        return false;
    return converter.convert(text, converted);
}

bool canChangeByRewriting()
{
    constexpr const char* kAscii = "ANSI_X3.4-1968"; // what it has not, it does not convert in either direction
    const Converter reading(eTextDirection::kFromUtf8);
    return reading.isOpen() && !reading.isTrivial() && std::strcmp(nl_langinfo(CODESET), kAscii) != 0;
}

bool isChangedByRewriting(std::string_view utf8)
{
    std::string converted;
    return !isPlain(utf8) && !convertString(utf8, eTextDirection::kFromUtf8, converted) &&
           convertString(utf8, eTextDirection::kToUtf8, converted) && isUtf8(utf8);
}

bool isConvertedBack(std::string_view text, std::string_view written)
{
    if (isPlain(text) && written == text)
        return true;
    std::string readBack;
    return (convertString(written, eTextDirection::kFromUtf8, readBack) ? readBack : written) == text;
}
} // namespace vumo::Data::detail
