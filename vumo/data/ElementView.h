#pragma once

#include "vumo/data/Structure.h"

#include <cstddef>

namespace vumo::Data
{
/// The data blocks of elements of one structure that lie at equal distances in memory: those of a dense stream, or
/// those of an array of the caller's.
///
/// Borrows blocks and structure. That of a stream is valid until the stream grows, is cleared, moves to other storage
/// or is made unique, and until the last stream that shares its elements is gone.
class ElementView
{
public:
    /// Walks the blocks.
    class Iterator
    {
    public:
        Iterator(char* block, std::size_t stride) : mBlock(block), mStride(stride) {}

        char* operator*() const { return mBlock; }

        Iterator& operator++()
        {
            mBlock += mStride;
            return *this;
        }

        bool operator==(const Iterator& other) const { return mBlock == other.mBlock; }
        bool operator!=(const Iterator& other) const { return mBlock != other.mBlock; }

    private:
        char* mBlock;
        std::size_t mStride;
    };

    /// Empty.
    ElementView() = default;

    /// `count` blocks of the structure, the first of them at `first`, without gaps between them.
    ElementView(const Structure& structure, char* first, unsigned int count)
        : ElementView(structure, first, count, structure.totalSize())
    {
    }

    /// The same with `stride` bytes from each block to the next.
    ElementView(const Structure& structure, char* first, unsigned int count, std::size_t stride)
        : mStructure(&structure),
          mData(first),
          mStride(stride),
          mCount(first ? count : 0)
    {
    }

    /// Null for an empty view that was made without one.
    const Structure* structure() const { return mStructure; }

    /// The first block; null when the view is empty.
    char* data() const { return mData; }

    /// From one block to the next, in bytes.
    std::size_t stride() const { return mStride; }

    /// The bytes of a block that count.
    std::size_t elementSize() const { return mStructure ? mStructure->totalSize() : 0; }

    /// The number of elements.
    unsigned int size() const { return mCount; }
    bool empty() const { return mCount == 0; }

    /// The block of the i-th element; `i` is not checked.
    char* operator[](unsigned int i) const { return mData + i * mStride; }

    Iterator begin() const { return Iterator(mData, mStride); }
    Iterator end() const { return Iterator(mData + mCount * mStride, mStride); }

private:
    const Structure* mStructure = nullptr;
    char* mData = nullptr;
    std::size_t mStride = 0;
    unsigned int mCount = 0;
};
} // namespace vumo::Data
