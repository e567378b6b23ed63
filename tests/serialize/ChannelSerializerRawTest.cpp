#include "vumo/serialize/ChannelSerializerRaw.h"

#include "tests/support/SerializeFixtures.h"

#include <memory>

namespace vumo::Data
{
namespace
{
using ChannelSerializerRawTest = test::RawFormatFixture<ChannelSerializerRaw>;
using ChannelSerializerRawGoldenTest = ChannelSerializerRawTest;

const std::string kStreamLines = "indexType numeric\nstructure P\n0\n7\nendStream\n";

TEST_F(ChannelSerializerRawGoldenTest, Read_GivesTheGoldenTextBack)
{
    registered("name=Label:string=text");
    registered("name=Weight:float=weight");
    const std::string text = test::goldenText("channel_raw.txt");
    EXPECT_EQ(reread(text), text);
}

TEST_F(ChannelSerializerRawTest, Write_GivesTheStreamsInTheirOrder)
{
    const Structure& structure = registered("name=P:int32=a");
    Channel channel("face");
    EXPECT_EQ(test::writtenBy(mFormat, channel), "name face\nendChannel\n");
    channel.setDataStream(Stream(structure, "b"));
    channel.setDataStream(Stream(structure, "B"));
    const std::string empty = "\nindexType numeric\nstructure P\nendStream\n";
    const std::string text = "name face\nstream\nname B" + empty + "stream\nname b" + empty + "endChannel\n";
    EXPECT_EQ(test::writtenBy(mFormat, channel), text);
    EXPECT_EQ(reread(text), text);
}

TEST_F(ChannelSerializerRawTest, Read_TakesLooselyWrittenText)
{
    registered("name=P:int32=a");
    const std::string canonical = "name two words\nstream\nname A\n" + kStreamLines + "endChannel\n";
    const std::string stream = "\n\tstream \r\n name A\n" + kStreamLines;
    EXPECT_EQ(reread("\n\n name \t two words\r\n" + stream + "\n endChannel"), canonical);
    EXPECT_EQ(reread("name x\n" + stream + "name two words\nendChannel\nbogus\n"), canonical) << "a late name";
    EXPECT_EQ(reread("endChannel\n"), "name Unnamed\nendChannel\n");
    EXPECT_EQ(reread("name\nendChannel\n"), "name \nendChannel\n");
}

TEST_F(ChannelSerializerRawTest, Read_ReportsEveryFaultInItsOrder)
{
    registered("name=P:int32=a");
    const std::string missing = "Missing Channel keyword on or about character ";
    const struct
    {
        std::string text;
        std::string errors;
    } cases[] = {
        {"", missing + "0\n1 error"},
        {"name face\nendChannels",
         "Unrecognized keyword 'endChannels' on or about character 10\n" + missing + "21\n2 errors"},
        {"name face\n  bogus word\nindexType numeric\nendChannel\n",
         "Unrecognized keyword 'bogus' on or about character 12\n"
         "Unrecognized keyword 'indexType' on or about character 23\n2 errors"},
        {"stream\nname A\nstructure Q\nendStream\nstream\nname B\n0\nendChannel\n",
         "Structure 'Q' not found\n1 error found, Stream not created\n"
         "Index data encountered before Structure name specified at record 2\n"
         "1 error found, Stream not created\n" +
             missing + "63\n3 errors"},
        {"name " + std::string(1019, 'n') + "\nendChannel\n",
         "Line at record 1 on or about character 0 is longer than 1023 characters\n1 error"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), row.errors + " found, Channel not created\n") << row.text;
}

TEST_F(ChannelSerializerRawTest, Write_ReportsFaultsOfNamesInTheirOrder)
{
    Channel channel("face ");
    channel.setDataStream(Stream(registered("name=P:int32=a"), " A"));
    std::ostringstream out;
    std::string errors = "before\n";
    EXPECT_EQ(mFormat.write(channel, out, errors), 2);
    EXPECT_EQ(errors,
              "before\nChannel name 'face ' at record 1 of channel 'face ' cannot be read back: it has whitespace "
              "at an end\n"
              "Stream name ' A' at record 1 of stream ' A' in channel 'face ' cannot be read back: it has "
              "whitespace at an end\n"
              "1 error found, Stream may not be written correctly\n"
              "2 errors found, Channel may not be written correctly\n");
    EXPECT_EQ(out.str(), "name face \nstream\nname  A\nindexType numeric\nstructure P\nendStream\nendChannel\n");
    for (const std::string& name : {std::string("a\nb"), std::string("a\0b", 3), std::string(1019, 'n')})
        EXPECT_EQ(mFormat.write(Channel(name), out, errors), 1) << name;
}

TEST_F(ChannelSerializerRawTest, Write_CountsStreamsThatWereGivenOneName)
{
    const Structure& structure = registered("name=P:int32=a");
    Channel channel("face");
    Channel other("other");
    Stream* const shared = channel.setDataStream(Stream(structure, "A"));
    channel.setDataStream(Stream(structure, "B"));
    other.setDataStream(*shared);
    ASSERT_TRUE(other.renameDataStream("A", "B"));
    std::ostringstream out;
    std::string errors;
    EXPECT_EQ(mFormat.write(channel, out, errors), 2);
    EXPECT_EQ(errors, "Stream 'B' at record 2 of channel 'face' cannot be read back: another one has its name\n"
                      "Stream 'B' at record 3 of channel 'face' cannot be read back: another one has its name\n"
                      "2 errors found, Channel may not be written correctly\n");
    const std::string stream = "stream\nname B\nindexType numeric\nstructure P\nendStream\n";
    EXPECT_EQ(out.str(), "name face\n" + stream + stream + "endChannel\n");
}

TEST_F(ChannelSerializerRawTest, Write_CountsAFailedOutputOnce)
{
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    std::string errors;
    Channel channel("face");
    EXPECT_EQ(mFormat.write(channel, out, errors), 1);
    EXPECT_EQ(errors, "Error in channel while writing.\n1 error found, Channel may not be written correctly\n");
    channel.setDataStream(Stream(registered("name=P:int32=a"), "A"));
    EXPECT_EQ(mFormat.write(channel, out, errors), 1);
}
} // namespace
} // namespace vumo::Data
