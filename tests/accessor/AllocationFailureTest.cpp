#include "tests/accessor/AccessorFixture.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace
{
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

/// How many allocations of this program succeed before one fails.
std::size_t theAllocationsLeft = kNever;

/// Whether the one that fails came.
bool hasFailed()
{
    return theAllocationsLeft == kNever;
}
} // namespace

// Not inlined: g++ would see malloc's block given to delete, and warn.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    const bool fails = theAllocationsLeft == 0;
    if (theAllocationsLeft != kNever)
        --theAllocationsLeft; // beyond 0 that is kNever: only one fails
    void* const block = fails ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

namespace vumo::test
{
namespace
{
using AllocationFailureTest = AccessorFixture;

/// Runs the action with one of its allocations failing, counted from 0. False when the action says so or throws.
template <class Action>
bool succeedsWithout(std::size_t allocation, const Action& action)
{
    bool isDone = false;
    theAllocationsLeft = allocation;
    try
    {
        isDone = action();
    }
    catch (const std::bad_alloc&)
    {
        EXPECT_TRUE(hasFailed());
    }
    return isDone;
}

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
            bool isDone = succeedsWithout(n, [&] { return accessor->read(file.name(), errors); });
            isOver = !hasFailed();
            theAllocationsLeft = kNever;
            EXPECT_TRUE(Structure::allStructures().empty());
            EXPECT_EQ(accessor->structures().size(), isDone ? 3U : 0U);
            EXPECT_EQ(accessor->associations().size(), isDone ? 3U : 0U);

            const auto editor = readScene(file.name());
            setValue(*editor->associations()["body"].channel("edge").dataStream("creases"), IndexPair(0, 2), "0.125");
            isDone = succeedsWithout(n, [&] { return editor->write(errors); });
            isOver = isOver && !hasFailed();
            theAllocationsLeft = kNever;
            EXPECT_EQ(file.bytes(), isDone ? edited : scene);
        }
    }
}
} // namespace
} // namespace vumo::test
