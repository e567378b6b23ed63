#include "vumo/accessor/detail/MetadataReplacer.h"

#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/Quoted.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace vumo::Data::detail
{
namespace
{
/// Puts the metadata of an accessor among blocks of a file that stay.
class MetadataReplacer : private MetadataWriter
{
public:
    MetadataReplacer(const MetadataForm& form, const AccessorState& metadata, const FileRegion& region,
                     Replacement& replacement, FileBlocks& written, std::string& errors)
        : MetadataWriter(form, metadata, replacement, written, errors),
          mBlocks(metadata.found.blocks.begin() + static_cast<std::ptrdiff_t>(metadata.found.ofHost),
                  metadata.found.blocks.end()),
          mRegion(region)
    {
        for (const Structure* const structure : mStructures)
            mNewStructures[structure->name()] = structure;
        for (const auto& [structure, user] : mMore)
            mNewStructures[structure->name()] = structure;
    }

    bool run()
    {
        plan();
        if (!keepsLayouts())
            return false;
        for (std::size_t i = 0; i < mBlocks.size(); ++i)
        {
            if ((i == mStructuresEnd && !writeNewStructures()) || !replaceBlock(i))
                return false;
        }
        return (mBlocks.size() != mStructuresEnd || writeNewStructures()) && writeNewEntries();
    }

private:
    const Structure* newStructure(const std::string& name) const
    {
        const auto found = mNewStructures.find(name);
        return found == mNewStructures.end() ? nullptr : found->second;
    }

    void plan()
    {
        for (std::size_t i = 0; i < mBlocks.size(); ++i)
        {
            const FileBlock& block = mBlocks[i];
            if (block.kind == FileBlock::kStructure)
            {
                mStructuresEnd = i + 1;
                if (block.state != FileBlock::kOutdone)
                    mStructurePlaces.emplace(block.name, i);
            }
            else if (block.state == FileBlock::kUnread && mAssociations.count(block.name) == 0)
                mKeepsAssociations = true;
        }
    }

    /// What is kept was written for the layouts that the file has.
    bool keepsLayouts()
    {
        for (const FileBlock& block : mBlocks)
        {
            const Structure* const structure = block.layout ? newStructure(block.name) : nullptr;
            if (!mKeepsAssociations || !structure || *structure == *block.layout)
                continue;
            mErrors +=
                "Structure " + quoted(block.name) +
                " differs from the structure of that name in the file, which metadata may use that was not read.\n";
            return fail(mForm.structureFailed);
        }
        return true;
    }

    bool stays(const FileBlock& block) const
    {
        if (block.state == FileBlock::kOutdone)
            return false;
        const bool isUnread = block.state == FileBlock::kUnread;
        if (block.kind == FileBlock::kStructure)
            return !newStructure(block.name) && (isUnread || mKeepsAssociations);
        return mAssociations.count(block.name) == 0 && isUnread;
    }

    bool replaceBlock(std::size_t i)
    {
        const FileBlock& block = mBlocks[i];
        const BlockPlace& place = mRegion.blocks[i];
        if (stays(block))
        {
            mWritten.blocks.push_back(block);
            mWritten.blocks.back().position = mReplacement.newPlaceOf(place.begin);
            return true;
        }
        if (place.mustStay)
            return refuse(mErrors, place.mustStay);
        if (!mReplacement.cut(place.begin, place.end))
            return false;
        if (block.state == FileBlock::kOutdone)
            return true;
        if (block.kind == FileBlock::kStructure)
            return !newStructure(block.name) || writeStructure(*newStructure(block.name));
        const auto entry = mAssociations.find(block.name);
        return entry == mAssociations.end() || !canStandAt(i, entry->second) || writeEntryOnce(*entry);
    }

    /// Says whether all structures that the associations use stand before the block of that number, if they have to.
    bool canStandAt(std::size_t i, const Associations& associations) const
    {
        if (!mForm.isStructureBefore || i >= mStructuresEnd)
            return true;
        for (const Channel& channel : associations)
        {
            for (const Stream* const stream : channel)
            {
                const auto place = mStructurePlaces.find(stream->structure().name());
                if (place == mStructurePlaces.end() || place->second >= i)
                    return false;
            }
        }
        return true;
    }

    bool writeEntryOnce(const AssociationsMap::value_type& entry)
    {
        mDoneEntries.insert(&entry.second);
        return writeEntry(entry);
    }

    /// Makes room after so many blocks.
    bool openAfter(std::size_t count)
    {
        const std::uint64_t place = count > 0                ? mRegion.blocks[count - 1].end
                                    : mRegion.blocks.empty() ? mRegion.insertion
                                                             : mRegion.blocks[0].begin;
        const bool isAfterOld = mReplacement.staysUntil(place);
        if (!mReplacement.cut(place, place))
            return false;
        if (!mRegion.endsLine && count == mRegion.blocks.size() && isAfterOld)
            mOut += '\n';
        return true;
    }

    bool writeNewStructures()
    {
        return std::all_of(mNewStructures.begin(), mNewStructures.end(), [this](const auto& added) {
            const bool hasPlace = mStructurePlaces.count(added.first) > 0;
            return hasPlace || (openAfter(mStructuresEnd) && writeStructure(*added.second));
        });
    }

    bool writeNewEntries()
    {
        std::vector<AssociationsMap::const_iterator> entries;
        for (auto entry = mAssociations.begin(); entry != mAssociations.end(); ++entry)
        {
            if (mDoneEntries.count(&entry->second) == 0 && !entry->second.empty())
                entries.push_back(entry);
        }
        if (!entries.empty() && entries.front() == mScene && !mForm.isSceneFirst)
            std::rotate(entries.begin(), entries.begin() + 1, entries.end());
        return std::all_of(entries.begin(), entries.end(),
                           [this](const auto& entry) { return openAfter(mBlocks.size()) && writeEntryOnce(*entry); });
    }

    const std::vector<FileBlock> mBlocks; // that writing replaces
    const FileRegion& mRegion;
    std::map<std::string, const Structure*> mNewStructures;
    std::map<std::string, std::size_t> mStructurePlaces; // of the structures that have one in the file
    std::size_t mStructuresEnd = 0;                      // how many blocks there are up to the last structure
    bool mKeepsAssociations = false;
    std::set<const Associations*> mDoneEntries;
};

/// Says whether every block is that of the read, so that metadata can go into the places of what was read.
bool isFileThatWasRead(const FileBlocks& found, const FileRegion& region)
{
    return std::equal(found.blocks.begin() + static_cast<std::ptrdiff_t>(found.ofHost), found.blocks.end(),
                      region.blocks.begin(), region.blocks.end(),
                      [](const FileBlock& read, const BlockPlace& now) { return read.checksum == now.checksum; });
}

/// The blocks that are left to the host, as the first of all that will be in the file.
FileBlocks blocksOfHost(const FileBlocks& found)
{
    FileBlocks host;
    host.areKept = found.areKept;
    host.ofHost = found.ofHost;
    host.blocks.assign(found.blocks.begin(), found.blocks.begin() + static_cast<std::ptrdiff_t>(found.ofHost));
    return host;
}

/// Takes all blocks out and puts all metadata in.
bool replaceAll(const MetadataForm& form, const AccessorState& metadata, const FileRegion& region,
                Replacement& replacement, FileBlocks& written, std::string& errors)
{
    // The new metadata is seldom much longer; growing in steps would take twice the memory.
    if (!region.blocks.empty())
        replacement.bytes().reserve(region.end - region.blocks.front().begin);
    const auto isBefore = [&](const BlockPlace& place) { return place.begin < region.insertion; };
    const auto after = std::find_if_not(region.blocks.begin(), region.blocks.end(), isBefore);
    const auto cut = [&](const BlockPlace& place) {
        return place.mustStay ? refuse(errors, place.mustStay) : replacement.cut(place.begin, place.end);
    };
    return std::all_of(region.blocks.begin(), after, cut) && replacement.cut(region.insertion, region.insertion) &&
           MetadataWriter(form, metadata, replacement, written, errors).writeAll() &&
           std::all_of(after, region.blocks.end(), cut);
}
} // namespace

bool replaceMetadata(const MetadataForm& form, const AccessorState& metadata, const FileRegion& region,
                     Replacement& replacement, FileBlocks& written, std::string& errors)
{
    const bool isSame = metadata.found.areKept && isFileThatWasRead(metadata.found, region);
    if (metadata.found.hasKept() && !isSame) // other metadata may have the same checksum
        return refuse(errors, changedMessage(metadata.fileName));
    written = blocksOfHost(metadata.found);
    if (isSame)
        return MetadataReplacer(form, metadata, region, replacement, written, errors).run();
    return replaceAll(form, metadata, region, replacement, written, errors);
}
} // namespace vumo::Data::detail
