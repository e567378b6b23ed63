#pragma once

#include "vumo/foundation/Export.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace vumo::Data
{
/// Memory for the nodes of one container, which are all of one size. They lie close together in slabs, each as large
/// as all before it, up to a limit. What is given back is used again; all of it is freed with the pool.
///
/// Not safe to use from several threads at once.
class VUMO_EXPORT NodePool
{
public:
    NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;

    /// Memory for a node. The first one says how large all are: a multiple of a pointer's size. Throws
    /// `std::bad_alloc`, also for a node of another size.
    void* take(std::size_t size);

    /// Takes back what take() gave.
    void giveBack(void* node) noexcept;

private:
    /// What stands in a node that is free.
    struct Link
    {
        Link* next;
    };

    void setNodeSize(std::size_t size);
    void addSlab();

    std::size_t mNodeSize = 0; // not known before the first
    Link* mFree = nullptr;
    char* mNext = nullptr; // in the last slab, not yet used
    char* mEnd = nullptr;
    std::size_t mTotal = 0; // bytes of all slabs
    std::vector<std::unique_ptr<char[]>> mSlabs;
};
} // namespace vumo::Data
