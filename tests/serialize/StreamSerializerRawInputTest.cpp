#include "tests/support/SerializeFixtures.h"
#include "vumo/serialize/StreamSerializerRaw.h"

#include <cstddef>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>

namespace vumo::Data
{
namespace
{
using namespace std::string_literals;

/// Reads streams from inputs of all kinds.
class StreamSerializerRawInputTest : public test::SerializeFixture
{
protected:
    const StreamSerializerRaw& mFormat = *StreamSerializerRaw::theFormat();
};

/// Gives a text in pieces of one size, each at a place of its own, so that nothing stays readable for long.
class PiecewiseBuffer : public std::streambuf
{
public:
    PiecewiseBuffer(const std::string& text, std::size_t size) : mText(text), mSize(size) {}

protected:
    int_type underflow() override
    {
        mPiece = std::make_unique<std::string>(mText.substr(mNext, mSize));
        mNext += mPiece->size();
        setg(mPiece->data(), mPiece->data(), mPiece->data() + mPiece->size());
        return mPiece->empty() ? traits_type::eof() : traits_type::to_int_type(mPiece->front());
    }

    pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override
    {
        return pos_type(off_type(mNext) - (egptr() - gptr()));
    }

private:
    std::string mText;
    std::size_t mSize;
    std::size_t mNext = 0;
    std::unique_ptr<std::string> mPiece;
};

TEST_F(StreamSerializerRawInputTest, Read_IsTheSameHoweverMuchTheBufferHolds)
{
    registered("name=P:float=f:string=s");
    static constexpr std::size_t kSizes[] = {1, 2, 3, 5, 7, 10, 64, 100, 1000, 1023, 1024, 1025, 5000};
    const std::string head = "name S\nindexType numeric\nstructure P\n";
    const std::string good = head + "0\n1.5 \"a \\\"b\"\n70\n-2e+10 \"\"\n";
    const std::string tooLong = "5\n" + std::string(1500, '7') + "\n";
    const struct
    {
        std::string text;
        std::string result;
    } cases[] = {
        {"0\n1\nendStream\nrest\n", "Index data encountered before Stream name specified at record 1\n"
                                    "Index data encountered before Structure name specified at record 1\n"
                                    "2 errors found, Stream not created\n"},
        {good + "endStream\nrest\n", good + "endStream\n"},
        {good + "71\n\n\n 3 \"x\" \r\nendStream\nrest\n", good + "71\n3 \"x\"\nendStream\n"},
        {good + "9\nx y\n9\n1 \"\" 2 3\nx\n1\nendStream\nrest\n",
         "Float value on or about character 66 is invalid\n"
         "String element on or about character 68 must be enclosed in double quotes instead of 'y'\n"
         "Text '2 3' on or about character 77 is left over behind the last value at record 11\n"
         "Value 'x' on or about character 81 is not a legal index (code 1) of type numeric\n"
         "4 errors found, Stream not created\n"},
        {head + tooLong + "x\n1 \"\"\nendStream\nrest\n",
         "Line at record 5 on or about character 39 is longer than 1023 characters\n"
         "Value 'x' on or about character 1540 is not a legal index (code 1) of type numeric\n"
         "2 errors found, Stream not created\n"},
    };
    for (const auto& row : cases)
    {
        for (const std::size_t size : kSizes)
        {
            SCOPED_TRACE(size);
            PiecewiseBuffer buffer(row.text, size);
            std::istream in(&buffer);
            std::string errors = "before\n";
            const std::unique_ptr<Stream> stream(mFormat.read(in, errors));
            EXPECT_EQ(in.gcount(), 10) << "the last line";
            EXPECT_EQ(stream ? test::writtenBy(mFormat, *stream) : errors, (stream ? "" : "before\n") + row.result);
            std::string rest;
            std::getline(in, rest);
            EXPECT_EQ(rest, "rest");
        }
    }
}

/// Throws when it is asked where it stands, as filters do that cannot tell.
class PipeBuffer : public std::stringbuf
{
public:
    using std::stringbuf::stringbuf;

protected:
    pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override { throw std::ios::failure("a pipe"); }
};

TEST_F(StreamSerializerRawInputTest, Read_KnowsNoPlacesInAnInputThatCannotTell)
{
    registered("name=P:int32=a");
    PipeBuffer buffer("name S\nstructure P\nx\n1\n2\n1 2\nendStream\nrest\n");
    std::istream in(&buffer);
    std::string errors;
    EXPECT_EQ(mFormat.read(in, errors), nullptr);
    EXPECT_EQ(errors, "Value 'x' on or about character -1 is not a legal index (code 1) of type numeric\n"
                      "Text '2' on or about character -1 is left over behind the last value at record 6\n"
                      "2 errors found, Stream not created\n");
    std::string rest;
    std::getline(in, rest);
    EXPECT_EQ(rest, "rest");
}

TEST_F(StreamSerializerRawInputTest, Read_TakesABreakOfTheInputForNoEnd)
{
    registered("name=P:int32=a");
    EXPECT_EQ(test::errorsOfBrokenInput(mFormat, "name S\nstructure P\n0\n7\n"),
              "Error in stream while reading at record 4\n1 error found, Stream not created\n");
}
} // namespace
} // namespace vumo::Data
