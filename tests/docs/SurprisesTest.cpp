// What docs/surprises.md says is so.

#include "vumo/vumo.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace vumo::Data
{
namespace
{
class SurprisesTest : public ::testing::Test
{
protected:
    SurprisesTest()
    {
        stream.setElement(0U, Handle(*point));
        stream.setElement(1U, Handle(*point));
    }

    // As the page calls them.
    const Ref<Structure> point =
        Structure::make("Point", {{Member::kFloat, 1, "Weight"}, {Member::kString, 1, "Label"}});
    Stream stream{*point, "stream"};
};

#undef assert
#define assert(condition) EXPECT_TRUE(condition)
#include "surprises.inc"
} // namespace
} // namespace vumo::Data
