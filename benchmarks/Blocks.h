#pragma once

#include "benchmarks/Records.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace bench
{
/// The record as a plain block of memory, laid out as the library lays out an element of recordStructure().
struct Block
{
    std::int32_t id;
    float origin[3];
    char* label; ///< made by strdup; null for a record without one
    bool flag;
    double weight;
};

/// By strdup, where there is one.
inline char* copyOfLabel(const char* label)
{
    return label ? strdup(label) : nullptr;
}

/// A block with a label of its own, which lies outside of it.
class OwnedBlock
{
public:
    explicit OwnedBlock(const Block& block) : mBlock(block) { mBlock.label = copyOfLabel(block.label); }
    OwnedBlock(const OwnedBlock& other) : OwnedBlock(other.mBlock) {}
    OwnedBlock& operator=(const OwnedBlock&) = delete;
    ~OwnedBlock() { std::free(mBlock.label); }

    const Block& block() const { return mBlock; }

private:
    Block mBlock;
};

inline Block blockAt(const char* data)
{
    Block block;
    std::memcpy(&block, data, sizeof(block));
    return block;
}

/// Blocks and their labels side by side in memory: the source of what is stored, and itself a peer of dense storage.
class BlockArray
{
public:
    BlockArray() = default;
    explicit BlockArray(const std::vector<Record>& records);
    BlockArray(const BlockArray& other);
    BlockArray& operator=(const BlockArray&) = delete;
    ~BlockArray();

    /// Copies the block and its label.
    void push_back(const Block& block)
    {
        mBlocks.push_back(block);
        mBlocks.back().label = copyOfLabel(block.label);
    }

    std::size_t size() const { return mBlocks.size(); }
    const Block& operator[](std::size_t i) const { return mBlocks[i]; }

    /// To be lent to a `Handle`, which wants to be able to change it.
    char* data(std::size_t i) const { return reinterpret_cast<char*>(const_cast<Block*>(&mBlocks[i])); }

private:
    std::vector<Block> mBlocks;
};

/// What one writes by hand for sparse records of any layout: a map of blocks, which own their labels.
template <class Key>
class BlockMap
{
public:
    using Map = std::map<Key, std::unique_ptr<char[]>>;

    BlockMap() = default;
    BlockMap(const BlockMap&) = delete;
    BlockMap& operator=(const BlockMap&) = delete;

    ~BlockMap()
    {
        for (const auto& entry : mMap)
            std::free(blockAt(entry.second.get()).label);
    }

    Map& map() { return mMap; }

    std::uint64_t digest() const
    {
        Digest digest;
        for (const auto& [key, data] : mMap)
        {
            digest.add(key);
            digest.addRecord(blockAt(data.get()));
        }
        return digest.sum();
    }

private:
    Map mMap;
};

/// A new block with a label of its own.
std::unique_ptr<char[]> duplicate(const Block& block);

std::uint64_t digestOf(const BlockArray& blocks);
} // namespace bench
