#include "vumo/accessor/detail/MetadataRead.h"

#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/detail/Quoted.h"

#include <algorithm>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// The name of the structure that a stream lacks, going by a message about the stream; empty for all others.
std::string_view lackIn(std::string_view message)
{
    constexpr std::string_view kStart = "Structure '";
    constexpr std::string_view kEnd = "' not found";
    if (!startsWith(message, kStart) || !endsWith(message, kEnd))
        return {};
    message.remove_prefix(kStart.size());
    message.remove_suffix(kEnd.size());
    return message;
}

/// Says whether the message only sums up those before it.
bool isSummary(std::string_view message)
{
    return message.find(" found, ") != std::string_view::npos && endsWith(message, " not created");
}

/// The name in the text of a structure that is faulty elsewhere; empty when it shows none.
std::string nameIn(std::string_view structureText)
{
    constexpr std::string_view kWord = "name=";
    if (!startsWith(structureText, kWord))
        return "";
    return std::string(structureText.substr(kWord.size(), structureText.find(':') - kWord.size()));
}
} // namespace

MetadataRead::MetadataRead(AccessorState& state, const std::set<std::string>* structureNames,
                           const std::set<std::string>* associationNames)
    : mState(state),
      mBlocks(state.found.blocks),
      mStructureFilter(structureNames),
      mAssociationFilter(associationNames)
{
    state.found = {};
}

std::size_t MetadataRead::add(FileBlock&& block)
{
    mBlocks.push_back(std::move(block));
    return mBlocks.size() - 1;
}

bool MetadataRead::wantsAssociations(std::size_t number)
{
    FileBlock& block = mBlocks[number];
    const bool isWanted = mAssociationFilter.accept(block.name);
    block.state = isWanted ? FileBlock::kRead : FileBlock::kUnread;
    return isWanted;
}

void MetadataRead::readStructure(std::size_t number, std::string_view text, bool mayDiffer)
{
    FileBlock& block = mBlocks[number];
    std::string messages;
    // Nobody else knows the new structure yet; what is not registered is freed with the reference.
    const Ref<Structure> structure(deserializeStructure(block.format, text, messages));
    if (!structure)
        return refuseStructure(block, text, messages);
    block.name = structure->name();
    if (!mStructureFilter.accept(block.name))
    {
        block.state = FileBlock::kUnread;
        return;
    }
    const Structure* const registered = Structure::structureByName(structure->name());
    if (!registered)
        Structure::registerStructure(*structure);
    else if (mayDiffer || *registered == *structure)
        block.state = FileBlock::kOutdone;
    else
        addFault(block, "Structure \"" + block.name + "\" is declared twice, with different members.\n",
                 "structure " + vumo::detail::quoted(block.name));
}

void MetadataRead::readAssociations(std::size_t number, std::string_view text)
{
    const FileBlock& block = mBlocks[number];
    std::string messages;
    Associations associations;
    if (deserializeAssociations(block.format, text, associations, messages))
        mState.associations[block.name] = associations;
    else if (isLackOfStructures(messages))
        ++mMoreLacking;
    else
        refuseBlock(number, messages, true);
}

void MetadataRead::refuseBlock(std::size_t number, const std::string& messages, bool hasName)
{
    const FileBlock& block = mBlocks[number];
    if (block.kind == FileBlock::kStructure)
        addFault(block, messages, "a structure");
    else
        addFault(block, messages, hasName ? "the metadata of " + nodeText(block.name) : "metadata without a name");
}

void MetadataRead::refuseStructure(const FileBlock& block, std::string_view text, const std::string& messages)
{
    const std::string name = nameIn(text);
    addFault(block, messages, name.empty() ? "a structure" : "structure " + vumo::detail::quoted(name));
    if (!name.empty())
        mLacking.insert(name);
}

void MetadataRead::addFault(const FileBlock& block, const std::string& messages, const std::string& what)
{
    const bool endsLine = !messages.empty() && messages.back() == '\n';
    mFaults.push_back({block.position, messages + (endsLine ? "" : "\n") + "in " + what + ", from byte " +
                                           std::to_string(block.position) + " of " + mState.fileName + "\n"});
}

/// Says whether nothing is wrong but that structures are missing of which that was told already. Takes note of those of
/// which it is told now.
bool MetadataRead::isLackOfStructures(const std::string& messages)
{
    bool isKnown = true;
    for (std::string_view rest = messages; !rest.empty();)
    {
        const std::string_view message = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), message.size() + 1));
        const std::string_view lack = lackIn(message);
        if (lack.empty())
            isKnown = isKnown && isSummary(message);
        else if (mLacking.count(lack) == 0)
        {
            mLacking.emplace(lack);
            isKnown = false;
        }
    }
    return isKnown;
}

bool MetadataRead::finish(std::string& errors)
{
    std::sort(mFaults.begin(), mFaults.end(), [](const Fault& a, const Fault& b) { return a.position < b.position; });
    for (const Fault& fault : mFaults)
        errors += fault.messages;
    if (mMoreLacking == 1)
        errors += "The metadata of 1 more node cannot be read for lack of such a structure.\n";
    else if (mMoreLacking > 1)
        errors += "The metadata of " + std::to_string(mMoreLacking) +
                  " more nodes cannot be read for lack of such structures.\n";
    return mFaults.empty() && mMoreLacking == 0;
}
} // namespace vumo::Data::detail
