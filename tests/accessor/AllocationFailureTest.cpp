#include "tests/accessor/AccessorFixture.h"
#include "tests/support/Allocations.h"

namespace vumo::test
{
namespace
{
using AllocationFailureTest = AccessorFixture;

TEST_F(AllocationFailureTest, ALackOfMemoryLosesNothing)
{
    const struct
    {
        const char* ending;
        std::string scene;
        std::string edited;
    } cases[] = {
        {".oa", goldenText("rich.oa"), goldenText("rich_edited.oa")},
        {".ob", goldenBytes("rich.ob.hex"), goldenBytes("rich_edited.ob.hex")},
    };
    for (const auto& [ending, scene, edited] : cases)
    {
        const ScratchFile file(ending);
        bool isOver = false;
        for (std::size_t n = 0; !isOver && !HasFailure(); ++n)
        {
            SCOPED_TRACE(ending + std::to_string(n));
            file.setBytes(scene);
            const auto accessor = Accessor::accessorByExtension(file.name());
            std::string errors;
            bool hasFailedToRead = false;
            bool isDone = succeedsWithout(n, hasFailedToRead, [&] { return accessor->read(file.name(), errors); });
            EXPECT_TRUE(Structure::allStructures().empty());
            EXPECT_EQ(accessor->structures().size(), isDone ? 3U : 0U);
            EXPECT_EQ(accessor->associations().size(), isDone ? 3U : 0U);

            const auto editor = readScene(file.name());
            setValue(*editor->associations()["body"].channel("edge").dataStream("creases"), IndexPair(0, 2), "0.125");
            bool hasFailedToWrite = false;
            isDone = succeedsWithout(n, hasFailedToWrite, [&] { return editor->write(errors); });
            isOver = !hasFailedToRead && !hasFailedToWrite;
            EXPECT_EQ(file.bytes(), isDone ? edited : scene);
        }
    }
}
} // namespace
} // namespace vumo::test
