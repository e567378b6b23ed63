#pragma once

#include "vumo/data/NodePool.h"

#include <cstddef>
#include <memory>
#include <type_traits>

namespace vumo::Data
{
/// Allocates the nodes of a `std::map` or another container that takes them one by one.
///
/// Each container has a pool of its own, which goes where its nodes go: a copy of a container gets a new pool, a move
/// or a swap takes the pool along.
template <class T>
class NodeAllocator
{
public:
    using value_type = T;
    using propagate_on_container_copy_assignment = std::false_type;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;
    using is_always_equal = std::false_type;

    NodeAllocator() : mPool(std::make_shared<NodePool>()) {}

    // There is no move: what is moved from must still equal what it was.
    NodeAllocator(const NodeAllocator& other) = default;
    NodeAllocator& operator=(const NodeAllocator& other) = default;

    template <class U>
    NodeAllocator(const NodeAllocator<U>& other) : mPool(other.mPool)
    {
    }

    /// Throws `std::bad_alloc`, also for more than one node.
    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        return static_cast<T*>(mPool->take(count * sizeof(T)));
    }

    void deallocate(T* node, std::size_t) noexcept { mPool->giveBack(node); }

    NodePool& pool() const { return *mPool; }

    NodeAllocator select_on_container_copy_construction() const { return NodeAllocator(); }

    template <class U>
    bool operator==(const NodeAllocator<U>& other) const
    {
        return mPool == other.mPool;
    }

    template <class U>
    bool operator!=(const NodeAllocator<U>& other) const
    {
        return mPool != other.mPool;
    }

private:
    template <class U>
    friend class NodeAllocator;

    std::shared_ptr<NodePool> mPool; // shared by the copies of the allocator, for any type
};
} // namespace vumo::Data
