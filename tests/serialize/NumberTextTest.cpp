// Numbers are written and read by code of our own wherever they are plain. It has to give what plain formatting and
// extraction by a stream give, which is checked here for as many numbers of each type as VUMO_TEST_NUMBERS says.

#include "tests/support/RandomNumbers.h"
#include "tests/support/SerializeFixtures.h"
#include "vumo/serialize/StreamSerializerRaw.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <locale>
#include <memory>
#include <vector>

namespace vumo::Data
{
namespace
{
constexpr unsigned int kDefaultCount = 20000;

unsigned int numberCount()
{
    const char* const text = std::getenv("VUMO_TEST_NUMBERS");
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : kDefaultCount;
}

template <class T>
struct TypeText
{
    const char* name;
    const char* word;
};

const TypeText<double> kDouble = {"double", "Double"};
const TypeText<float> kFloat = {"float", "Float"};
const TypeText<std::int8_t> kInt8 = {"int8", "Int8"};
const TypeText<std::int16_t> kInt16 = {"int16", "Int16"};
const TypeText<std::int32_t> kInt32 = {"int32", "Int32"};
const TypeText<std::int64_t> kInt64 = {"int64", "Int64"};
const TypeText<std::uint8_t> kUInt8 = {"uint8", "UInt8"};
const TypeText<std::uint16_t> kUInt16 = {"uint16", "UInt16"};
const TypeText<std::uint32_t> kUInt32 = {"uint32", "UInt32"};
const TypeText<std::uint64_t> kUInt64 = {"uint64", "UInt64"};

/// Reads one number from a stream, as the text forms are meant to; false leaves in `value` what is stored then.
template <class T>
bool extract(std::istream& in, T& value)
{
    if constexpr (sizeof(T) < sizeof(std::int32_t))
    {
        std::int32_t wide = 0;
        if (!(in >> wide) || wide < std::numeric_limits<T>::min() || wide > std::numeric_limits<T>::max())
            return false;
        value = static_cast<T>(wide);
        return true;
    }
    else
        return !(in >> value).fail();
}

template <class T>
std::string bytesOf(const T& value)
{
    std::string bytes(sizeof(value), '\0');
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

class NumberTextSlowTest : public test::SerializeFixture
{
protected:
    NumberTextSlowTest()
    {
        mIn.imbue(std::locale::classic());
        mOut.imbue(std::locale::classic());
    }

    std::istream& inputOn(const std::string& text)
    {
        mIn.clear();
        mIn.str(text);
        return mIn;
    }

    static std::string invalid(const char* word, long long character)
    {
        return std::string(word) + " value on or about character " + std::to_string(character) + " is invalid\n";
    }

    template <class T>
    void handlesReadAsStreamsDo(const TypeText<T>& type)
    {
        SCOPED_TRACE(type.name);
        Handle handle(registered(std::string("name=H") + type.name + ":" + type.name + "=m"));
        T expected{};
        for (unsigned int n = numberCount(); n > 0; --n)
        {
            const std::string text = mNumbers.token();
            std::istream& in = inputOn(text);
            const bool good = extract(in, expected);
            const long long position =
                in.fail() ? 0 : static_cast<long long>(in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in)) + 1;
            std::string errors;
            const int count = handle.fromStr(text, 0, errors);
            ASSERT_EQ(count, good ? 0 : 1) << text;
            ASSERT_EQ(errors, good ? "" : invalid(type.word, position)) << text;
            ASSERT_EQ(std::memcmp(handle.data(), &expected, sizeof(expected)), 0) << text;
        }
    }

    /// Reads three numbers from a line; what is wrong with them, if anything, and where.
    template <class T>
    std::string extractLine(const TypeText<T>& type, const std::string& line, long long start, std::string& bytes)
    {
        constexpr auto kEnd = std::char_traits<char>::eof();
        std::istream& in = inputOn(line);
        std::string errors;
        bool hasText = true;
        for (int i = 0; i < 3 && hasText; ++i)
        {
            hasText = !(in >> std::ws).eof();
            T value{};
            const bool good = extract(in, value);
            const auto isInWord = [&in] { return in.rdbuf()->sgetc() != kEnd && !std::isspace(in.rdbuf()->sgetc()); };
            if (!good || isInWord())
                errors += invalid(type.word, start + in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
            bytes += bytesOf(value);
            in.clear();
            while (isInWord())
                in.rdbuf()->sbumpc();
        }
        if (!errors.empty() || (in >> std::ws).eof())
            return errors;
        const auto offset = static_cast<long long>(in.tellg());
        return "Text '" + line.substr(static_cast<std::size_t>(offset)) + "' on or about character " +
               std::to_string(start + offset) + " is left over behind the last value";
    }

    /// Reads streams of 100 elements, so that most of them have errors: all of these must be told, with their places.
    template <class T>
    void serializersReadAsStreamsDo(const TypeText<T>& type)
    {
        SCOPED_TRACE(type.name);
        registered(std::string("name=S") + type.name + ":" + type.name + "[3]=m");
        for (unsigned int done = 0; done < numberCount(); done += 300)
        {
            const bool isOdd = mNumbers.below(2) == 0;
            std::string text = std::string("name S\nstructure S") + type.name + "\n";
            std::string errors;
            std::string bytes;
            unsigned int errorCount = 0;
            for (unsigned int i = 0; i < 100; ++i)
            {
                text += std::to_string(i) + "\n";
                const std::string line = isOdd ? mNumbers.oddLine() : mNumbers.template plainLine<T>();
                std::string error = extractLine(type, line, static_cast<long long>(text.size()), bytes);
                if (error.find("left over") != std::string::npos)
                    error += " at record " + std::to_string(4 + 2 * i) + "\n";
                errorCount += static_cast<unsigned int>(std::count(error.begin(), error.end(), '\n'));
                errors += error;
                text += line + "\n";
            }
            if (errorCount > 0)
                errors += std::to_string(errorCount) + (errorCount > 1 ? " errors" : " error") +
                          " found, Stream not created\n";
            checkRead(text, errors, bytes);
            ASSERT_FALSE(HasFatalFailure());
        }
    }

    void checkRead(const std::string& text, const std::string& errors, const std::string& bytes)
    {
        std::istringstream in(text);
        std::string found;
        const std::unique_ptr<Stream> stream(StreamSerializerRaw::theFormat()->read(in, found));
        ASSERT_EQ(found, errors) << text;
        if (!stream)
            return;
        std::string stored;
        for (StreamIterator position = stream->begin(); position.valid(); ++position)
            stored.append(static_cast<const char*>(position->data()), stream->structure().totalSize());
        ASSERT_EQ(stored, bytes) << text;
    }

    template <class T>
    void numbersAreWrittenAsStreamsDo(const TypeText<T>& type)
    {
        SCOPED_TRACE(type.name);
        Handle handle(registered(std::string("name=W") + type.name + ":" + type.name + "=m"));
        mOut.flags(std::ios::fmtflags());
        mOut.precision(6);
        for (unsigned int n = numberCount(); n > 0; --n)
        {
            const T value = mNumbers.value<T>();
            std::memcpy(handle.data(), &value, sizeof(value));
            mOut.str("");
            if constexpr (sizeof(T) == 1)
                mOut << static_cast<int>(value);
            else
                mOut << value;
            ASSERT_EQ(handle.str(0), mOut.str());
        }
    }

    template <class T>
    void floatsAreWrittenInAllFormats(const TypeText<T>& type)
    {
        SCOPED_TRACE(type.name);
        Handle handle(registered(std::string("name=F") + type.name + ":" + type.name + "=m"));
        std::ostringstream out;
        for (unsigned int n = numberCount(); n > 0; --n)
        {
            const T value = mNumbers.value<T>();
            std::memcpy(handle.data(), &value, sizeof(value));
            mNumbers.chooseFormat(mOut);
            mOut.str("");
            mOut << value;
            out.str("");
            out.flags(mOut.flags());
            out.precision(mOut.precision());
            std::string errors;
            const bool isHex = (out.flags() & std::ios::floatfield) == std::ios::floatfield;
            const int count = StreamSerializerRaw::theFormat()->writeMember(handle, 9, out, errors);
            ASSERT_EQ(out.str(), mOut.str()) << "precision " << out.precision() << ", flags " << out.flags();
            T readBack{}; // refused where the digits that are left go beyond the type's range
            ASSERT_EQ(count, !isHex && extract(inputOn(out.str()), readBack) ? 0 : 1) << out.str();
        }
    }

    /// Any bits, so that all powers of ten come up, and numbers at the ends of their type.
    template <class T>
    T anyFloat()
    {
        using Limits = std::numeric_limits<T>;
        static constexpr T kEnds[] = {Limits::max(), Limits::min(), Limits::denorm_min(), T(0)};
        const T end = kEnds[mNumbers.below(4)];
        return mNumbers.below(1000) == 0 ? (mNumbers.below(2) == 0 ? end : -end) : mNumbers.fromBits<T>();
    }

    /// The text with the fewest digits, from six on, that reads back; its digits are found by trying.
    template <class T>
    static std::string shortestText(T value)
    {
        char text[32];
        int digits = 6;
        T readBack{};
        do
        {
            std::snprintf(text, sizeof(text), "%.*g", digits++, static_cast<double>(value));
            readBack = sizeof(T) == sizeof(float) ? static_cast<T>(std::strtof(text, nullptr))
                                                  : static_cast<T>(std::strtod(text, nullptr));
        }
        while (bytesOf(readBack) != bytesOf(value));
        return text;
    }

    template <class T>
    void exactFloatsReadBack(const TypeText<T>& type)
    {
        SCOPED_TRACE(type.name);
        Handle written(registered(std::string("name=E") + type.name + ":" + type.name + "=m"));
        Handle read(written);
        read.makeUnique();
        std::ostringstream out;
        out << exactNumbers << std::fixed << std::setprecision(2); // which do not count
        std::string errors;
        for (unsigned int n = numberCount(); n > 0; --n)
        {
            const T value = anyFloat<T>();
            if (!std::isfinite(value))
                continue;
            std::memcpy(written.data(), &value, sizeof(value));
            out.str("");
            ASSERT_EQ(StreamSerializerRaw::theFormat()->writeMember(written, 9, out, errors), 0) << value;
            ASSERT_EQ(out.str(), written.str(0, kExact));
            const std::string shortest = shortestText(value);
            // Of a power of two the nearest number with so few digits may be a neighbour's, and another one may do.
            if (out.str().size() >= shortest.size())
            {
                ASSERT_EQ(out.str(), shortest);
            }
            ASSERT_EQ(StreamSerializerRaw::theFormat()->readMember(inputOn(out.str()), 9, read, errors), 0);
            ASSERT_EQ(std::memcmp(written.data(), read.data(), sizeof(value)), 0) << out.str();
        }
    }

    test::RandomNumbers mNumbers;
    std::istringstream mIn;
    std::ostringstream mOut;
};

/// Calls `check` for every type of number.
template <class Check>
void forEachType(Check check)
{
    check(kDouble);
    check(kFloat);
    check(kInt8);
    check(kInt16);
    check(kInt32);
    check(kInt64);
    check(kUInt8);
    check(kUInt16);
    check(kUInt32);
    check(kUInt64);
}

TEST_F(NumberTextSlowTest, FromStr_TakesWhatExtractionTakes)
{
    SCOPED_TRACE(mNumbers.seedText());
    forEachType([this](const auto& type) { handlesReadAsStreamsDo(type); });
}

TEST_F(NumberTextSlowTest, Read_TakesWhatExtractionTakesAndNamesThePlaces)
{
    SCOPED_TRACE(mNumbers.seedText());
    forEachType([this](const auto& type) { serializersReadAsStreamsDo(type); });
}

TEST_F(NumberTextSlowTest, Str_IsWhatDefaultFormattingGives)
{
    SCOPED_TRACE(mNumbers.seedText());
    forEachType([this](const auto& type) { numbersAreWrittenAsStreamsDo(type); });
}

TEST_F(NumberTextSlowTest, WriteMember_FormatsFloatsAsTheOutputAsks)
{
    SCOPED_TRACE(mNumbers.seedText());
    floatsAreWrittenInAllFormats(kDouble);
    floatsAreWrittenInAllFormats(kFloat);
}

TEST_F(NumberTextSlowTest, ExactNumbers_ReadBackToTheSameBitsAndHaveNoDigitTooMany)
{
    SCOPED_TRACE(mNumbers.seedText());
    exactFloatsReadBack(kDouble);
    exactFloatsReadBack(kFloat);
}

TEST_F(NumberTextSlowTest, ExactNumbers_AreLaidOutAsSixDigitsAre)
{
    const struct
    {
        double value;
        const char* text;
    } cases[] = {{99999, "99999"},
                 {100000, "100000"},
                 {0.001, "0.001"},
                 {0.0009, "0.0009"},
                 {1e6, "1e+06"},
                 {1234567, "1234567"},
                 {0.1, "0.1"},
                 {0.1F, "0.10000000149011612"},
                 {12345678.5, "12345678.5"},
                 {0.00012345678, "0.00012345678"},
                 {0.000012345678, "1.2345678e-05"},
                 {-1.0 / 3, "-0.3333333333333333"},
                 {1.7976931348623157e308, "1.7976931348623157e+308"},
                 {5e-324, "4.94066e-324"},
                 {-0.0, "-0"}};
    Handle handle(registered("name=L:double=m"));
    for (const auto& entry : cases)
    {
        std::memcpy(handle.data(), &entry.value, sizeof(entry.value));
        EXPECT_EQ(handle.str(0, kExact), entry.text);
    }
    const Structure& wide = registered("name=W:double[60]=m");
    Stream stream(wide, "s");
    Handle element(wide);
    for (unsigned int i = 0; i < 60; ++i)
        element.set(i, 1.0 / (i + 3));
    stream.setElement(0U, element);
    for (const bool isExact : {false, true})
    {
        std::ostringstream text;
        text << (isExact ? exactNumbers : sixDigits);
        std::string errors;
        StreamSerializerRaw::theFormat()->write(stream, text, errors);
        EXPECT_EQ(errors.find("longer than 1023 characters with exact numbers\n") != std::string::npos, isExact)
            << errors;
        EXPECT_EQ(errors.empty(), !isExact);
    }

    std::ostringstream out;
    out << exactNumbers << sixDigits << std::scientific << std::setprecision(1);
    std::string errors;
    StreamSerializerRaw::theFormat()->writeMember(handle, 1, out, errors);
    EXPECT_EQ(out.str(), "-0.0e+00") << "what the output was told otherwise counts again";
}
} // namespace
} // namespace vumo::Data
