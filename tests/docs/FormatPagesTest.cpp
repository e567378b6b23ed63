#include "tests/support/Golden.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vumo::test
{
namespace
{
/// A fenced block of a page, and the golden file that the comment line before it names.
struct Example
{
    std::string golden;
    std::string text;
};

std::vector<Example> examplesIn(const std::filesystem::path& page)
{
    const std::string marker = "<!-- golden: ";
    std::vector<Example> examples;
    std::ifstream in(page, std::ios::binary);
    for (std::string line; std::getline(in, line);)
    {
        if (line.compare(0, marker.size(), marker) != 0)
            continue;
        Example example;
        example.golden = line.substr(marker.size(), line.find(' ', marker.size()) - marker.size());
        std::getline(in, line);
        EXPECT_EQ(line, "```text");
        while (std::getline(in, line) && line != "```")
            example.text += line + "\n";
        examples.push_back(example);
    }
    return examples;
}

TEST(FormatPagesGoldenTest, Examples_StandInTheirGoldenFiles)
{
    for (const auto& page : std::filesystem::directory_iterator(VUMO_FORMATS_DIR))
    {
        if (page.path().extension() != ".md")
            continue;
        SCOPED_TRACE(page.path().filename());
        const std::vector<Example> examples = examplesIn(page.path());
        EXPECT_EQ(examples.empty(), page.path().filename() == "README.md");
        for (const Example& example : examples)
        {
            EXPECT_FALSE(example.text.empty());
            EXPECT_NE(goldenText(example.golden).find(example.text), std::string::npos)
                << example.golden << " does not hold\n"
                << example.text;
        }
    }
}
} // namespace
} // namespace vumo::test
