#pragma once

#include "tests/support/CommaLocale.h"
#include "tests/support/DataFixtures.h"
#include "tests/support/Golden.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

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

/// The messages that the format gives for an input that breaks behind the text.
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

template <class Format>
std::string descriptionOf(const Format& format)
{
    std::ostringstream out;
    EXPECT_EQ(&format.getFormatDescription(out), &out);
    return out.str();
}
} // namespace vumo::test
