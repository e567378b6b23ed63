#include "vumo/serialize/SerializerRaw.h"

#include <gmock/gmock.h>

#include <iterator>
#include <string>
#include <vector>

namespace vumo::Data
{
namespace
{
using ::testing::ElementsAre;
using namespace std::string_literals;

TEST(SerializerRawTest, Keyword_GivesTheTextOfEachNumber)
{
    const char* const texts[] = {"=",   "endAssociations", "endChannel", "channel", "name",      "indexType", ":",
                                 "raw", "endStream",       "stream",     "name",    "structure", "name",      "????"};
    for (unsigned int k = 0; k < std::size(texts); ++k)
        EXPECT_STREQ(SerializerRaw::keyword(static_cast<SerializerRaw::eKeyword>(k)), texts[k]) << k;
    EXPECT_STREQ(SerializerRaw::keyword(static_cast<SerializerRaw::eKeyword>(4294967295U)), "????");
}

struct TextCase
{
    std::string before;
    std::string after;
};

TEST(SerializerRawTest, CollapseWhitespace_TrimsBothEndsAndNoMore)
{
    const TextCase cases[] = {
        {"", ""},       {" \t\n\v\f\r ", ""}, {"  a b  ", "a b"}, {"a \t b", "a \t b"},
        {"\ra\n", "a"}, {" \xA0 ", "\xA0"},   {" a\0 "s, "a\0"s},
    };
    for (const TextCase& row : cases)
    {
        std::string text = row.before;
        EXPECT_EQ(SerializerRaw::collapseWhitespace(text), row.after);
        EXPECT_EQ(text, row.after);
    }
}

TEST(SerializerRawTest, StandardizeSeparators_KeepsTheLastOfARunAsAColon)
{
    const TextCase cases[] = {
        {"", ""},
        {"\n", ":"},
        {":", ":"},
        {"\n:\n", ":"},
        {"a\n\n:b\nc", "a:b:c"},
        {":a", ":a"},
        {"a: :b", "a: :b"},
        {"a::", "a:"},
        {"a\r\n\r\nb", "a\r:\r:b"},
    };
    for (const TextCase& row : cases)
    {
        std::string text = row.before;
        EXPECT_EQ(SerializerRaw::standardizeSeparators(text), row.after);
        EXPECT_EQ(text, row.after);
    }
}

TEST(SerializerRawTest, SplitString_AppendsWhatLineReadsWouldGive)
{
    std::vector<std::string> pieces = {"before"};
    EXPECT_EQ(&SerializerRaw::splitString("a::b:", ':', pieces), &pieces);
    EXPECT_THAT(pieces, ElementsAre("before", "a", "", "b"));

    std::vector<std::string> none;
    EXPECT_THAT(SerializerRaw::splitString("", ':', none), ElementsAre());
    EXPECT_THAT(SerializerRaw::splitString(":", ':', none), ElementsAre(""));
}
} // namespace
} // namespace vumo::Data
