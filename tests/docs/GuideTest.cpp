// What the pages of docs/guide say is so.

#include "vumo/vumo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <numeric>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace vumo::Data;
using vumo::Ref;

/// Catches what a page's code prints.
class GuideTest : public ::testing::Test
{
protected:
    GuideTest() { std::cout.rdbuf(mPrinted.rdbuf()); }

    ~GuideTest() override
    {
        std::cout.rdbuf(mOutput);
        EXPECT_EQ(mPrinted.str(), "") << "is not shown";
    }

    void expectPrinted(const std::string& text)
    {
        EXPECT_EQ(mPrinted.str(), text);
        mPrinted.str("");
    }

private:
    std::streambuf* mOutput = std::cout.rdbuf();
    std::ostringstream mPrinted;
};

#include "guides.inc"
} // namespace
