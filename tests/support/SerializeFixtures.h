#pragma once

#include "vumo/data/Associations.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace vumo
{
namespace Fixtures
{
inline std::string goldenText(const std::string& name)
{
    std::ifstream file(std::string(VUMO_GOLDEN_DIR) + "/" + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    EXPECT_TRUE(file.good()) << name;
    return text.str();
}

/// Starts each test with an empty registry of structures; ends it with one, and with no object more than before.
class SerializeFixture : public ::testing::Test
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

    void SetUp() override
    {
        Data::Structure::deleteAllStructures();
        mAliveBefore = objectsAlive();
    }

    void TearDown() override
    {
        Data::Structure::deleteAllStructures();
        EXPECT_EQ(objectsAlive(), mAliveBefore) << "structures, streams, channels, associations, handles, indices";
    }

private:
    using Counters = std::array<unsigned long long, 6>;

    static Counters objectsAlive()
    {
        return {Data::Structure::_objectsAlive,    Data::Stream::_objectsAlive, Data::Channel::_objectsAlive,
                Data::Associations::_objectsAlive, Data::Handle::_objectsAlive, Data::Index::_objectsAlive};
    }

    Counters mAliveBefore = {};
};

/// Makes a decimal comma and grouped thousands the global rule for as long as it lives.
class CommaLocale
{
public:
    CommaLocale() : mBefore(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::locale::global(mBefore); }

private:
    class Punctuation : public std::numpunct<char>
    {
    protected:
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
    };

    std::locale mBefore;
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
} // namespace Fixtures
} // namespace vumo
