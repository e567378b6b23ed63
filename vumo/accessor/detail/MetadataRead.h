#pragma once

#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/NameFilter.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// One read of the metadata of a scene file. A reader finds the blocks of its kind of file and adds them; this class
/// reads those that are wanted, and goes on after a faulty one, so that all faults are told at once.
///
/// Where unread blocks are kept, one that cannot be read is no fault, unless it is incomplete.
///
/// Each fault is told by its messages and a line with its place. Nodes that fail for nothing but structures of which
/// that was told already are only counted.
class MetadataRead
{
public:
    /// In which order blocks are added: either way the last one of a name in the file counts, but of structures the
    /// first one where that comes first, and then the others must be equal.
    enum class eOrder
    {
        kForward,
        kBackward
    };

    /// Null sets want every name. Structures are registered with `Structure::registerStructure`; associations and the
    /// blocks that are found go into the state, which is borrowed.
    MetadataRead(AccessorState& state, eOrder order, const std::set<std::string>* structureNames,
                 const std::set<std::string>* associationNames);

    bool keepsUnread() const { return mState.found.areKept; }

    /// Says whether nothing is read but what blocks there are, so that all are wanted, in any order.
    bool onlyLists() const { return mState.listing == Accessor::kListOnly; }

    /// Adds a block that was found and gives its number.
    std::size_t add(FileBlock&& block);

    /// The host keeps the blocks that were found so far.
    void leaveToHost() { mState.found.ofHost = mBlocks.size(); }

    /// Says whether further structures can matter.
    bool wantsStructures() const { return keepsUnread() || onlyLists() || !mStructureFilter.isExhausted(); }

    /// Says whether the associations of that number are wanted. With a filter only the first ones of a name are, unless
    /// unread blocks are kept.
    bool wantsAssociations(std::size_t number);

    /// Reads the text, in the encoding of the locale, of the structure of that number.
    void readStructure(std::size_t number, std::string_view text);

    /// Likewise of associations; those that are read last count. To be called in the order of the file.
    void readAssociations(std::size_t number, std::string_view text);

    /// Takes note of a block that is incomplete.
    void refuseBlock(std::size_t number, const std::string& messages, bool hasName = false);

    /// Says that a structure of which nothing is known is not wanted.
    void skip(std::size_t number) { mBlocks[number].state = FileBlock::kUnread; }

    /// Ends the read. False, with all faults appended to `errors` in the order of the file, when there was one.
    bool finish(std::string& errors);

private:
    struct Fault
    {
        std::uint64_t position;
        std::string messages;
    };

    bool isWanted(NameFilter& filter, const std::string& name) const;
    bool countsSoFar(std::size_t number);
    void takeStructure(FileBlock& block, Structure& structure);
    void refuseStructure(FileBlock& block, std::string_view text, const std::string& messages);
    static ListedBlock listed(const FileBlock& block, std::string_view text);
    static void leaveUnread(FileBlock& block, const std::string& why);
    void addFault(const FileBlock& block, const std::string& messages, const std::string& what);
    bool isLackOfStructures(const std::string& messages);

    AccessorState& mState;
    std::vector<FileBlock>& mBlocks;
    NameFilter mStructureFilter;
    NameFilter mAssociationFilter;
    const eOrder mOrder;
    std::map<std::string, std::size_t> mNumbers;     // of the associations that count, where unread blocks are kept
    std::map<std::string, Ref<Structure>> mLeftOut;  // structures that no filter wants, likewise
    std::map<std::string, ListedBlock> mListedNodes; // of the associations that are read, where that is to be listed
    std::vector<Fault> mFaults;
    std::set<std::string, std::less<>> mLacking; // structures that were told to be missing or faulty
    std::size_t mMoreLacking = 0;                // nodes that fail for those alone
};
} // namespace vumo::Data::detail
