#include "tests/support/Allocations.h"
#include "tests/support/SerializeFixtures.h"
#include "vumo/serialize/ChannelSerializerRaw.h"

#include <memory>

namespace vumo::Data
{
namespace
{
using HostileTextTest = test::SerializeFixture;

std::string structureOf(unsigned int members)
{
    std::string text = "name=" + std::to_string(members);
    for (unsigned int i = 0; i < members; ++i)
        text += ":bool=member" + std::to_string(i);
    return text;
}

/// A channel of many streams of that structure, each with these lines.
std::string channelOf(unsigned int members, const std::string& lines)
{
    std::string text = "name many\n";
    for (int i = 0; i < 100; ++i)
        text += "stream\nname " + std::to_string(i) + "\nstructure " + std::to_string(members) + "\n" + lines +
                "endStream\n";
    return text + "endChannel\n";
}

/// What reading the channel takes, and writing what was read, if anything was.
std::size_t bytesAllocatedFor(const std::string& text, std::string& errors)
{
    const std::size_t before = test::bytesAllocated();
    std::istringstream in(text);
    const std::unique_ptr<Channel> channel(ChannelSerializerRaw::theFormat()->read(in, errors));
    std::ostringstream out;
    if (channel)
    {
        EXPECT_EQ(ChannelSerializerRaw::theFormat()->write(*channel, out, errors), 0);
    }
    return test::bytesAllocated() - before;
}

TEST_F(HostileTextTest, AStream_DoesNotPayForTheMembersOfItsStructure)
{
    constexpr unsigned int kWide = 20'000;
    constexpr unsigned int kTooWideForALine = 513;
    registered(structureOf(kWide));
    registered(structureOf(kTooWideForALine));
    for (const std::string lines : {"", "0\n1 1\n"})
    {
        SCOPED_TRACE(lines);
        std::string errors;
        std::string errorsOfWide;
        const std::size_t bytes = bytesAllocatedFor(channelOf(kTooWideForALine, lines), errors);
        EXPECT_LT(bytesAllocatedFor(channelOf(kWide, lines), errorsOfWide), 2 * bytes);
        EXPECT_EQ(errors.empty(), lines.empty());
        EXPECT_EQ(errorsOfWide.empty(), lines.empty());
    }
}
} // namespace
} // namespace vumo::Data
