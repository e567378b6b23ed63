#pragma once

#include "tests/support/DataFixtures.h"
#include "tests/support/Golden.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <type_traits>
#include <utility>

namespace vumo::test
{
/// Reads structures from their raw text.
class SerializeFixture : public DataTest
{
protected:
    /// Registers the structure of that raw text. Lives until the end of the test.
    static const Data::Structure& registered(const std::string& text)
    {
        std::istringstream in(text);
        std::string errors;
        Data::Structure* const structure = Data::StructureSerializerRaw::theFormat()->read(in, errors);
        EXPECT_EQ(errors, "");
        EXPECT_TRUE(Data::Structure::registerStructure(*structure));
        return *structure;
    }
};

/// Gives a text and then breaks, as a file does whose disk fails.
class BreakingBuffer : public std::streambuf
{
public:
    explicit BreakingBuffer(const std::string& text) : mText(text)
    {
        setg(mText.data(), mText.data(), mText.data() + mText.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("cannot be read"); }

private:
    std::string mText;
};

/// The messages that the format gives for an input that breaks after the text.
template <class Format>
std::string errorsOfBrokenInput(const Format& format, const std::string& text)
{
    BreakingBuffer buffer(text);
    std::istream in(&buffer);
    std::string errors;
    EXPECT_EQ(format.read(in, errors), nullptr);
    return errors;
}

/// What a format makes of an object, or of a text.
template <class Format, class T>
std::string writtenBy(const Format& format, const T& object)
{
    std::ostringstream out;
    std::string errors;
    EXPECT_EQ(format.write(object, out, errors), 0);
    EXPECT_EQ(errors, "");
    return out.str();
}

/// Has a raw format at hand.
template <class Format>
class RawFormatFixture : public SerializeFixture
{
protected:
    using Read = std::remove_pointer_t<decltype(std::declval<Format>().read(std::declval<std::istream&>(),
                                                                            std::declval<std::string&>()))>;

    static std::unique_ptr<Read> read(const std::string& text, std::string& errors)
    {
        std::istringstream in(text);
        return std::unique_ptr<Read>(Format::theFormat()->read(in, errors));
    }

    /// What is read from the text, written again; the messages when there is none.
    std::string reread(const std::string& text) const
    {
        std::string errors;
        const auto object = read(text, errors);
        EXPECT_EQ(object == nullptr, !errors.empty());
        return object ? writtenBy(mFormat, *object) : errors;
    }

    const Format& mFormat = *Format::theFormat();
};
} // namespace vumo::test
