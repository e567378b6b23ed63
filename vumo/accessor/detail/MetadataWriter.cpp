#include "vumo/accessor/detail/MetadataWriter.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/detail/Quoted.h"

#include <algorithm>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
std::string textOf(const Channel& channel, const Stream& stream)
{
    return "stream " + quoted(stream.name()) + " in channel " + quoted(channel.name());
}
} // namespace

MetadataWriter::MetadataWriter(const MetadataForm& form, const AccessorState& metadata, Replacement& replacement,
                               FileBlocks& written, std::string& errors)
    : mForm(form),
      mStructures(metadata.structures),
      mAssociations(metadata.associations),
      mScene(mAssociations.find(AccessorOvri::getSceneAssociationsName())),
      mNumbers(metadata.numbers),
      mReplacement(replacement),
      mOut(replacement.bytes()),
      mWritten(written),
      mErrors(errors)
{
    findMoreStructures();
}

bool MetadataWriter::writeAll()
{
    return writeStructures() && (mForm.isSceneFirst ? writeScene() && writeNodes() : writeNodes() && writeScene());
}

void MetadataWriter::findMoreStructures()
{
    for (const auto& [node, associations] : mAssociations)
    {
        for (const Channel& channel : associations)
        {
            for (const Stream* const stream : channel)
            {
                const Structure* const used = &stream->structure();
                if (mStructures.count(used) == 0 && mMore.count(used) == 0)
                    mMore[used] = {&node, textOf(channel, *stream)};
            }
        }
    }
}

bool MetadataWriter::writeStructures()
{
    return std::all_of(mStructures.begin(), mStructures.end(),
                       [this](const Structure* structure) { return writeStructure(*structure); }) &&
           std::all_of(mMore.begin(), mMore.end(), [this](const auto& used) { return writeStructure(*used.first); });
}

bool MetadataWriter::writeStructure(const Structure& structure)
{
    std::string faults;
    const std::size_t begin = mOut.size();
    if (mForm.appendStructure(structure, mOut, faults))
    {
        addWritten(FileBlock::kStructure, structure.name(), begin);
        mWritten.blocks.back().layout = Ref<const Structure>(&structure);
        return true;
    }
    const auto more = mMore.find(&structure);
    if (more != mMore.end())
        faults = messagesOf(*more->second.node, faults + "It is the structure of " + more->second.text + ".\n");
    mErrors += faults;
    return fail(mForm.structureFailed);
}

bool MetadataWriter::writeScene()
{
    return mScene == mAssociations.end() || writeEntry(*mScene);
}

bool MetadataWriter::writeNodes()
{
    for (auto entry = mAssociations.begin(); entry != mAssociations.end(); ++entry)
    {
        if (entry != mScene && !writeEntry(*entry))
            return false;
    }
    return true;
}

bool MetadataWriter::writeEntry(const AssociationsMap::value_type& entry)
{
    std::string faults; // collected first, as the heading with the node's name comes before them
    const bool isClear = usesOneStructureOfAName(entry.second, faults);
    const std::size_t begin = mOut.size();
    const bool isWritten = mForm.appendAssociations(entry.first, entry.second, mNumbers, mOut, faults);
    mErrors += messagesOf(entry.first, faults);
    if (isWritten && mOut.size() > begin)
        addWritten(FileBlock::kAssociations, entry.first, begin);
    const bool isScene = entry.first == AccessorOvri::getSceneAssociationsName();
    return (isClear && isWritten) || fail(isScene ? mForm.sceneFailed : mForm.nodeFailed);
}

bool MetadataWriter::usesOneStructureOfAName(const Associations& associations, std::string& faults) const
{
    bool isClear = true;
    for (const Channel& channel : associations)
    {
        for (const Stream* const stream : channel)
        {
            const Structure& used = stream->structure();
            const auto given = mStructures.find(&used);
            if (used == (given != mStructures.end() ? **given : *mMore.find(&used)->first))
                continue;
            isClear = false;
            faults += "Structure " + quoted(used.name()) + " of " + textOf(channel, *stream) +
                      " differs from the structure of that name that is to be written.\n";
        }
    }
    return isClear;
}

void MetadataWriter::addWritten(FileBlock::eKind kind, const std::string& name, std::size_t begin)
{
    FileBlock block;
    block.kind = kind;
    block.name = name;
    block.format = kFormatWritten;
    block.position = mReplacement.newPlaceOfByte(begin);
    mForm.measure(std::string_view(mOut).substr(begin), block);
    mWritten.blocks.push_back(std::move(block));
}

bool MetadataWriter::fail(const char* message)
{
    return refuse(mErrors, message);
}
} // namespace vumo::Data::detail
