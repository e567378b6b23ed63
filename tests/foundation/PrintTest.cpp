#include "vumo/foundation/Print.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vumo::Debug
{
namespace
{
class PrintTest : public ::testing::Test
{
protected:
    std::string text() const { return mOut.str(); }

    std::ostringstream mOut;
    Print mPrint{mOut};
};

using PrintGoldenTest = PrintTest;

TEST_F(PrintGoldenTest, Sections_IndentAndHaveBracesUnlessPlain)
{
    mPrint.indent(1);
    mPrint.beginSection("Member List");
    mPrint << "x = " << 1 << "\n";
    mPrint.beginSection("Inner");
    mPrint.endSection();
    mPrint.endSection();
    EXPECT_EQ(mPrint.setSectionStyle(Print::kPlain), Print::kBraced);
    EXPECT_EQ(mPrint.setIndentString("-"), "    ");
    mPrint.beginSection("Plain");
    mPrint << "y\n";
    mPrint.endSection();
    mPrint << "after\n";
    EXPECT_EQ(text(), "    Member List\n"
                      "    {\n"
                      "        x = 1\n"
                      "        Inner\n"
                      "        {\n"
                      "        }\n"
                      "    }\n"
                      "-Plain\n"
                      "--y\n"
                      "-after\n");
}

TEST_F(PrintTest, SkipNextIndent_SuppressesExactlyOneIndentation)
{
    mPrint.setIndent(1);
    EXPECT_FALSE(mPrint.skipNextIndent(true));
    mPrint << "a\n";
    mPrint << "b\n";
    EXPECT_FALSE(mPrint.skipNextIndent(true));
    EXPECT_TRUE(mPrint.skipNextIndent(true));
    mPrint.beginSection("S"); // its brace is indented again
    EXPECT_EQ(text(), "a\n    b\nS\n    {\n");
}

TEST_F(PrintTest, Levels_AreSignedAndReturned)
{
    EXPECT_EQ(mPrint.indent(-3), 0);
    mPrint << "left\n";
    EXPECT_EQ(mPrint.setIndent(1), -3);
    EXPECT_EQ(mPrint.indent(1), 1);
    EXPECT_EQ(text(), "left\n");
}

TEST_F(PrintTest, Insertions_EachIndentAndWriteTheirType)
{
    char writable[] = "writable";
    mPrint << static_cast<const char*>(nullptr);
    mPrint << writable;
    mPrint << 'c';
    mPrint << static_cast<unsigned char>('u');
    mPrint << -1;
    mPrint << 4294967295U;
    mPrint << -9000000000LL;
    mPrint << 18446744073709551615ULL;
    mPrint << 0.5F;
    mPrint << 0.1234567;
    EXPECT_EQ(text(), "writablecu-14294967295-9000000000184467440737095516150.50.123457");
}

TEST_F(PrintTest, HexChars_AreTwoLowerCaseDigitsAndABlank)
{
    const unsigned char bytes[] = {0x00, 0x0F, 0xAB, 0xFF};
    mPrint.indent(1);
    mPrint.outputHexChars(4, bytes);
    mPrint.outputHexChars(0, nullptr);
    EXPECT_EQ(text(), "    00 0f ab ff     ");
}

TEST_F(PrintTest, Filters_AreFoundOverwrittenAndRemoved)
{
    int value = 7;
    EXPECT_FALSE(mPrint.findFilter("hex", value));
    EXPECT_EQ(value, 7);
    mPrint.addFilter("hex", 1);
    mPrint.addFilter("hex", -2);
    EXPECT_TRUE(mPrint.findFilter("hex", value));
    EXPECT_EQ(value, -2);
    mPrint.removeFilter("hex");
    mPrint.removeFilter("hex");
    EXPECT_FALSE(mPrint.findFilter("hex", value));
}

TEST_F(PrintTest, Copies_TakeEverythingButTheFilters)
{
    mPrint.setIndent(2);
    mPrint.setIndentString("*");
    mPrint.setSectionStyle(Print::kPlain);
    mPrint.skipNextIndent(true);
    mPrint.addFilter("hex", 1);
    const Print& itself = mPrint;
    mPrint = itself;
    int value = 0;
    EXPECT_TRUE(mPrint.findFilter("hex", value));
    Print copy(mPrint);
    std::ostringstream elsewhere;
    Print assigned(elsewhere);
    assigned.addFilter("type", 1);
    assigned = mPrint;
    for (Print* print : {&copy, &assigned})
    {
        EXPECT_FALSE(print->findFilter("hex", value));
        EXPECT_FALSE(print->findFilter("type", value));
        *print << "a\n";
        print->beginSection("S");
        *print << "b\n";
    }
    EXPECT_EQ(text(), "a\n**S\n***b\na\n**S\n***b\n");
    EXPECT_EQ(elsewhere.str(), "");
}
} // namespace
} // namespace vumo::Debug
