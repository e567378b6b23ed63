#include "benchmarks/Blocks.h"

namespace bench
{
BlockArray::BlockArray(const std::vector<Record>& records)
{
    mBlocks.reserve(records.size());
    for (const Record& record : records)
    {
        const float(&origin)[3] = record.origin;
        mBlocks.push_back({record.id,
                           {origin[0], origin[1], origin[2]},
                           copyOfLabel(record.label.empty() ? nullptr : record.label.c_str()),
                           record.flag,
                           record.weight});
    }
}

BlockArray::BlockArray(const BlockArray& other) : mBlocks(other.mBlocks)
{
    for (Block& block : mBlocks)
        block.label = copyOfLabel(block.label);
}

BlockArray::~BlockArray()
{
    for (const Block& block : mBlocks)
        std::free(block.label);
}

std::unique_ptr<char[]> duplicate(const Block& block)
{
    std::unique_ptr<char[]> data(new char[sizeof(Block)]);
    Block copy = block;
    copy.label = copyOfLabel(block.label);
    std::memcpy(data.get(), &copy, sizeof(copy));
    return data;
}

std::uint64_t digestOf(const BlockArray& blocks)
{
    Digest digest;
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        digest.add(static_cast<std::uint64_t>(i));
        digest.addRecord(blocks[i]);
    }
    return digest.sum();
}
} // namespace bench
