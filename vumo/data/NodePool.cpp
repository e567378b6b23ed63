#include "vumo/data/NodePool.h"

#include <algorithm>
#include <new>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif

namespace vumo::Data
{
namespace
{
constexpr std::size_t kFirstSlab = 4;                       // nodes: many streams hold no more
constexpr std::size_t kLargestSlab = std::size_t(64) << 10; // bounds what lies unused in a full container
} // namespace

void* NodePool::take(std::size_t size)
{
    if (size == 0 || size != mNodeSize)
        setNodeSize(size);
    if (mPlacement == ePlacement::kApart)
        return ::operator new(size);
    if (mFree)
    {
        Link* const node = mFree;
        ASAN_UNPOISON_MEMORY_REGION(node, mNodeSize);
        mFree = node->next;
        return node;
    }
    if (mNext == mEnd)
        addSlab();
    char* const node = mNext;
    mNext += mNodeSize;
    return node;
}

void NodePool::giveBack(void* node) noexcept
{
    if (mPlacement == ePlacement::kApart)
        return ::operator delete(node);
    mFree = new (node) Link{mFree};
    ASAN_POISON_MEMORY_REGION(node, mNodeSize); // to whoever still uses it, it is as good as freed
}

void NodePool::setNodeSize(std::size_t size)
{
    if (mNodeSize > 0 || size == 0 || size % sizeof(Link) != 0) // a free node holds a link, aligned
        throw std::bad_alloc();
    mNodeSize = size;
}

void NodePool::addSlab()
{
    const std::size_t wanted = std::max(std::min(mTotal, kLargestSlab), kFirstSlab * mNodeSize);
    const std::size_t size = wanted / mNodeSize * mNodeSize;
    mSlabs.push_back(std::unique_ptr<char[]>(new char[size])); // not zeroed
    mNext = mSlabs.back().get();
    mEnd = mNext + size;
    mTotal += size;
}
} // namespace vumo::Data
