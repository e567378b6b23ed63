#include "tests/support/Golden.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
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

/// The texts in backticks that stand in the first column of the tables of messages, or of their parts.
std::vector<std::string> messagesIn(const std::filesystem::path& page)
{
    const std::regex texts("`([^`]*)`");
    std::vector<std::string> messages;
    bool isInTable = false;
    std::ifstream in(page);
    for (std::string line; std::getline(in, line);)
    {
        if (line == "| Message | |" || line == "| Reason | |")
            isInTable = true;
        isInTable = isInTable && line[0] == '|';
        if (!isInTable)
            continue;
        const std::string column = line.substr(0, line.find(" | "));
        for (std::sregex_iterator text(column.begin(), column.end(), texts); text != std::sregex_iterator(); ++text)
            messages.push_back(text->str(1));
    }
    return messages;
}

/// All sources of a folder, with literals that go on in the next line put together.
std::string sourcesOf(const std::string& folder)
{
    std::string sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path());
        sources.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return std::regex_replace(sources, std::regex("\"\\s*\n\\s*\""), "");
}

TEST(FormatPagesTest, Messages_StandInSourcesOrTests)
{
    const std::string root = VUMO_FORMATS_DIR "/../../";
    const std::string sources = sourcesOf(root + "vumo") + sourcesOf(root + "tests");
    const std::regex placeholder("'[^']*'|\"[^\"]*\"|-?[0-9]+|scene\\.o[ab](\\.vumo-undo)?| x$|: |\\.$");
    std::size_t count = 0;
    for (const auto& page : std::filesystem::directory_iterator(VUMO_FORMATS_DIR))
    {
        for (const std::string& message : messagesIn(page.path()))
        {
            ++count;
            for (std::sregex_token_iterator part(message.begin(), message.end(), placeholder, -1), end; part != end;
                 ++part)
                EXPECT_NE(sources.find(*part), std::string::npos) << page.path() << ": " << message << ": " << *part;
        }
    }
    EXPECT_GT(count, 100U);
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
