#include "vumo/accessor/detail/MetadataRead.h"

#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/RawListing.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/serialize/SerializerRaw.h"

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

/// The name in the text of a structure, by the rules of its reader; empty when it shows none.
std::string nameIn(std::string_view structureText)
{
    std::string_view name;
    while (!structureText.empty())
    {
        const std::string_view field = structureText.substr(0, structureText.find_first_of(":\n"));
        structureText.remove_prefix(std::min(field.size() + 1, structureText.size()));
        const std::string_view type = field.substr(0, field.find('='));
        const std::string_view rest = field.substr(std::min(type.size() + 1, field.size()));
        if (trimmed(type) == SerializerRaw::keyword(SerializerRaw::kStructureName) &&
            rest.find('=') == std::string_view::npos)
            name = trimmed(rest); // the last one counts
    }
    return std::string(name);
}
} // namespace

MetadataRead::MetadataRead(AccessorState& state, eOrder order, const std::set<std::string>* structureNames,
                           const std::set<std::string>* associationNames)
    : mState(state),
      mBlocks(state.found.blocks),
      mStructureFilter(structureNames),
      mAssociationFilter(associationNames),
      mOrder(order)
{
    state.found = {};
    state.found.areKept = state.unread == Accessor::kKeep;
}

std::size_t MetadataRead::add(FileBlock&& block)
{
    mBlocks.push_back(std::move(block));
    return mBlocks.size() - 1;
}

bool MetadataRead::isWanted(NameFilter& filter, const std::string& name) const
{
    return keepsUnread() ? filter.wants(name) : filter.accept(name);
}

bool MetadataRead::wantsAssociations(std::size_t number)
{
    FileBlock& block = mBlocks[number];
    if (onlyLists())
        return true;
    if (keepsUnread() && !countsSoFar(number))
    {
        block.state = FileBlock::kOutdone;
        return false;
    }
    const bool isRead = isWanted(mAssociationFilter, block.name);
    if (!isRead)
        block.state = FileBlock::kUnread;
    return isRead;
}

/// Says whether these count, going by what was found so far. They do not when others of their name do; where they take
/// the place of others, those are forgotten.
bool MetadataRead::countsSoFar(std::size_t number)
{
    // Writers put names in order, so nearly all go to one end of the map.
    const auto likely = mOrder == eOrder::kForward ? mNumbers.end() : mNumbers.begin();
    const auto other = mNumbers.try_emplace(likely, mBlocks[number].name, number);
    if (other->second == number)
        return true;
    if (mOrder == eOrder::kBackward)
        return false;
    mBlocks[other->second].state = FileBlock::kOutdone;
    mState.associations.erase(other->first);
    mListedNodes.erase(other->first);
    other->second = number;
    return true;
}

/// The format of the texts that can be listed is the one that is written.
ListedBlock MetadataRead::listed(const FileBlock& block, std::string_view text)
{
    ListedBlock listed;
    static_cast<MetadataBlock&>(listed) = static_cast<const MetadataBlock&>(block);
    const bool isKnown = block.format == kFormatWritten;
    if (isKnown && block.kind == FileBlock::kStructure)
        listed.name = nameIn(text);
    else if (isKnown)
        listed.channels = listChannels(text);
    return listed;
}

void MetadataRead::readStructure(std::size_t number, std::string_view text)
{
    FileBlock& block = mBlocks[number];
    if (onlyLists())
    {
        mState.listed.push_back(listed(block, text));
        return;
    }
    std::string messages;
    // Nobody else knows the new structure yet; what is not registered is freed with the reference.
    const Ref<Structure> structure(deserializeStructure(block.format, text, messages));
    if (!structure)
        return refuseStructure(block, text, messages);
    block.name = structure->name();
    takeStructure(block, *structure);
    if (mState.listing == Accessor::kListRead && block.state == FileBlock::kRead)
        mState.listed.push_back(listed(block, text));
}

void MetadataRead::takeStructure(FileBlock& block, Structure& structure)
{
    const bool isRead = isWanted(mStructureFilter, block.name);
    if (!isRead)
        block.state = FileBlock::kUnread;
    if (!isRead && !keepsUnread())
        return;
    const auto leftOut = mLeftOut.find(block.name);
    const Structure* const earlier =
        leftOut != mLeftOut.end() ? leftOut->second.get() : Structure::structureByName(block.name.c_str());
    if (earlier)
        block.state = FileBlock::kOutdone;
    if (earlier && mOrder == eOrder::kForward && *earlier != structure)
        addFault(block, "Structure \"" + block.name + "\" is declared twice, with different members.\n",
                 "structure " + vumo::detail::quoted(block.name));
    if (earlier)
        return;
    if (keepsUnread())
        block.layout = Ref<const Structure>(&structure);
    if (isRead)
        Structure::registerStructure(structure);
    else
        mLeftOut.emplace(block.name, &structure);
}

void MetadataRead::readAssociations(std::size_t number, std::string_view text)
{
    FileBlock& block = mBlocks[number];
    if (onlyLists())
    {
        mState.listed.push_back(listed(block, text));
        return;
    }
    std::string messages;
    Associations associations;
    if (deserializeAssociations(block.format, text, associations, messages))
    {
        mState.associations[block.name] = associations;
        if (mState.listing == Accessor::kListRead)
            mListedNodes[block.name] = listed(block, text);
    }
    else if (keepsUnread())
        leaveUnread(block, messages);
    else if (isLackOfStructures(messages))
        ++mMoreLacking;
    else
        refuseBlock(number, messages, true);
}

void MetadataRead::leaveUnread(FileBlock& block, const std::string& why)
{
    block.state = FileBlock::kUnread;
    block.why = why;
}

void MetadataRead::refuseBlock(std::size_t number, const std::string& messages, bool hasName)
{
    const FileBlock& block = mBlocks[number];
    if (block.kind == FileBlock::kStructure)
        addFault(block, messages, "a structure");
    else
        addFault(block, messages, hasName ? "the metadata of " + nodeText(block.name) : "metadata without a name");
}

void MetadataRead::refuseStructure(FileBlock& block, std::string_view text, const std::string& messages)
{
    if (keepsUnread())
        return leaveUnread(block, messages);
    const std::string name = nameIn(text);
    addFault(block, messages, name.empty() ? "a structure" : "structure " + vumo::detail::quoted(name));
    if (!name.empty())
        mLacking.insert(name);
}

void MetadataRead::addFault(const FileBlock& block, const std::string& messages, const std::string& what)
{
    mFaults.push_back({block.position, placedMessages(messages, what, block.position, mState.fileName)});
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
    if (mOrder == eOrder::kBackward)
        std::reverse(mBlocks.begin(), mBlocks.end());
    for (auto& [name, listed] : mListedNodes)
        mState.listed.push_back(std::move(listed));
    const auto standsBefore = [](const auto& a, const auto& b) { return a.position < b.position; };
    std::sort(mState.listed.begin(), mState.listed.end(), standsBefore);
    std::sort(mFaults.begin(), mFaults.end(), standsBefore);
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
