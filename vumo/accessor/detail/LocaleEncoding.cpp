#include "vumo/accessor/detail/LocaleEncoding.h"

#include "vumo/accessor/detail/PlainBytes.h"

#include <iconv.h>
#include <langinfo.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
/// The encoding of the current locale, as iconv names it.
constexpr const char* kLocaleEncoding = "";
constexpr const char* kUtf8 = "UTF-8";
constexpr const char* kAscii = "ANSI_X3.4-1968"; // the name that the system has for it

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

bool isLocaleIn(const char* encoding)
{
    return std::strcmp(nl_langinfo(CODESET), encoding) == 0;
}
} // namespace

/// Owns an open conversion.
class LocaleEncoding::Converter
{
public:
    /// Null where there is no such conversion, or where it changes nothing.
    static std::unique_ptr<Converter> open(const char* from, const char* to)
    {
        if (isLocaleIn(kUtf8))
            return nullptr; // an open one need not be asked
        auto converter = std::make_unique<Converter>(from, to);
        if (!converter->isOpen() || converter->isTrivial())
            return nullptr;
        converter->learnWhatIsPlain();
        return converter;
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

    bool isOpen() const { return reinterpret_cast<std::intptr_t>(mDescriptor) != -1; } // as iconv_open() has it

    /// Finds out whether texts for which isPlain() holds stay as they are: that is much sooner known than done.
    void learnWhatIsPlain()
    {
        const std::string characters = plainCharacters();
        std::string converted;
        mKeepsPlainText = convert(characters, converted) && converted == characters;
    }

    bool keeps(std::string_view text) const { return mKeepsPlainText && isPlain(text); }

    /// False when the text could not be converted to its end, or not without a loss.
    bool convert(std::string_view text, std::string& result)
    {
        result.resize(text.size() + kRoomToGrow);
        std::size_t written = 0;
        char* in = const_cast<char*>(text.data()); // iconv reads it only
        std::size_t inLeft = text.size();
        // Forgets a text before that was not converted to its end.
        iconv(mDescriptor, nullptr, nullptr, nullptr, nullptr);
        // The call without input writes what ends a text in an encoding that has states.
        if (!run(&in, &inLeft, result, written) || !run(nullptr, nullptr, result, written))
            return false;
        result.resize(written);
        return true;
    }

private:
    static constexpr std::size_t kRoomToGrow = 64; // most texts get no longer, so one call will do

    bool isTrivial() const
    {
#ifdef VUMO_HAVE_ICONVCTL
        int trivial = 0;
        return iconvctl(mDescriptor, ICONV_TRIVIALP, &trivial) == 0 && trivial != 0;
#else
        return false; // only that of UTF-8 to itself is, which is not opened
#endif
    }

    /// Converts to the end of the `written` bytes of `result`, which grows as needed.
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
    bool mKeepsPlainText = false;
};

LocaleEncoding::LocaleEncoding() : mIsAscii(isLocaleIn(kAscii)) {}

LocaleEncoding::~LocaleEncoding() = default;

bool LocaleEncoding::convert(Way& way, const char* from, const char* to, std::string_view text,
                             std::string& converted) const
{
    if (mIsAscii && isPlain(text))
        return false; // what most scenes have alone: opening takes as long as parsing a hundred records
    if (!way)
        way = Converter::open(from, to);
    Converter* const converter = way->get();
    return converter && !converter->keeps(text) && converter->convert(text, converted);
}

bool LocaleEncoding::toUtf8(std::string_view text, std::string& converted) const
{
    return convert(mToUtf8, kLocaleEncoding, kUtf8, text, converted);
}

bool LocaleEncoding::fromUtf8(std::string_view text, std::string& converted) const
{
    return convert(mFromUtf8, kUtf8, kLocaleEncoding, text, converted);
}

bool LocaleEncoding::isReadBack(std::string_view text, std::string_view written) const
{
    if (isPlain(text) && written == text)
        return true; // nothing was converted, and nothing needs to be
    std::string converted;
    return (fromUtf8(written, converted) ? converted : written) == text;
}

bool LocaleEncoding::canChangeByRewriting() const
{
    return !mIsAscii && !isLocaleIn(kUtf8);
}

bool LocaleEncoding::changesByRewriting(std::string_view utf8) const
{
    std::string converted;
    if (isPlain(utf8) || fromUtf8(utf8, converted) || !toUtf8(utf8, converted))
        return false;
    Converter check(kUtf8, kUtf8); // bytes that are no UTF-8 were never characters: nothing becomes of them
    return check.isOpen() && check.convert(utf8, converted);
}
} // namespace vumo::Data::detail
