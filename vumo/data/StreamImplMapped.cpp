#include "vumo/data/StreamImplMapped.h"

#include "vumo/data/StreamMappedIteratorImpl.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <iterator>
#include <tuple>
#include <utility>

namespace vumo::Data
{
const vumo::ObjectCount StreamImplMapped::_objectsCreated = vumo::Counted<StreamImplMapped>::objectsCreated();
const vumo::ObjectCount StreamImplMapped::_objectsAlive = vumo::Counted<StreamImplMapped>::objectsAlive();

/// A search for a complex index waits for every node and then for the value that its index refers to. Just before an
/// index, its node has the links to the two nodes where the search may go on: asked for now, they arrive while it waits
/// for the value, which saves a third of its time. Asking for an address is no access: one that is no link does no
/// harm.
inline bool StreamImplMapped::Order::operator()(const Index& stored, const Sought& right) const
{
    if (!right.index.isNumber())
    {
        const void* const* const links = reinterpret_cast<const void* const*>(&stored);
        __builtin_prefetch(links[-1]);
        __builtin_prefetch(links[-2]);
    }
    return stored < right.index;
}

StreamImplMapped::StreamImplMapped() : mEndHandle(structure(), nullptr) {}

StreamImplMapped::StreamImplMapped(const Structure& structure, const std::string& name)
    : StreamImpl(structure, name),
      mEndHandle(structure, nullptr)
{
}

StreamImplMapped::StreamImplMapped(const StreamImpl& other) : StreamImpl(other), mEndHandle(structure(), nullptr) {}

StreamImplMapped::StreamImplMapped(const StreamImplMapped& other)
    : StreamImpl(other),
      vumo::Counted<StreamImplMapped>(other),
      mEndHandle(structure(), nullptr),
      mLowestValidIndex(other.mLowestValidIndex),
      mHighestValidIndex(other.mHighestValidIndex)
{
    // In ascending order the new nodes lie in the order in which they are walked; the map's own copy follows its
    // branches.
    if (!other.mElements.empty())
        prepareElementsFor(other.mElements.begin()->first);
    for (const auto& [index, element] : other.mElements)
        mElements.emplace_hint(mElements.end(), index, element);
}

StreamImplMapped& StreamImplMapped::operator=(const StreamImplMapped& other)
{
    if (this == &other)
        return *this;
    StreamImplMapped copy(other);
    StreamImpl::operator=(other);
    mElements.swap(copy.mElements);
    mEndHandle = copy.mEndHandle;
    mLowestValidIndex = other.mLowestValidIndex;
    mHighestValidIndex = other.mHighestValidIndex;
    return *this;
}

StreamImpl* StreamImplMapped::clone() const
{
    return new StreamImplMapped(*this);
}

StreamIteratorImpl* StreamImplMapped::begin()
{
    return cbegin();
}

StreamIteratorImpl* StreamImplMapped::end()
{
    return cend();
}

StreamIteratorImpl* StreamImplMapped::cbegin() const
{
    return new StreamMappedIteratorImpl(*this, kIterBegin);
}

StreamIteratorImpl* StreamImplMapped::cend() const
{
    return new StreamMappedIteratorImpl(*this, kIterEnd);
}

unsigned int StreamImplMapped::elementCount() const
{
    return static_cast<unsigned int>(mElements.size());
}

bool StreamImplMapped::setElement(Index index, const Handle& handle)
{
    if (!handle.usesStructure(structure()) || (!handle.hasData() && structure().totalSize() > 0))
        return false;
    char* const block = structure().duplicateChunk(handle.data()); // before the element it may borrow from is released
    const unsigned int position = handle.memberIndex();
    storeBlock(std::move(index), block).setPositionByMemberIndex(position); // as a copy of the handle would be
    return true;
}

Handle StreamImplMapped::element(Index index)
{
    const auto found = mElements.find(Sought{index});
    return found == mElements.end() ? Handle(structure(), nullptr) : found->second;
}

bool StreamImplMapped::hasElement(Index index) const
{
    return mElements.count(Sought{index}) > 0;
}

bool StreamImplMapped::reindexElement(Index from, Index to)
{
    const auto source = mElements.find(Sought{from});
    if (source == mElements.end())
        return false;
    if (from == to)
        return true;
    slot(std::move(to)).swap(source->second);
    mElements.erase(source); // and with it what was at `to` before
    return true;
}

bool StreamImplMapped::swapElements(Index a, Index b)
{
    const auto first = mElements.find(Sought{a});
    const auto second = mElements.find(Sought{b});
    if (first == mElements.end() || second == mElements.end())
        return false;
    if (first != second)
        first->second.swap(second->second);
    return true;
}

bool StreamImplMapped::removeElement(Index index)
{
    mElements.erase(index);
    return true;
}

bool StreamImplMapped::setElementRange(Index first, Index last)
{
    mLowestValidIndex = first;
    mHighestValidIndex = last;
    return true;
}

bool StreamImplMapped::clear()
{
    mElements.clear();
    return true;
}

char* StreamImplMapped::newElement(Index&& index)
{
    Handle& stored = storeBlock(std::move(index), structure().allocateDefaultChunk());
    stored.setPositionByMemberIndex(0); // the entry may be an old one, left at another member
    return stored.data();
}

char* StreamImplMapped::elementBlock(const Index& index) const
{
    const auto found = isBeyondLast(index) ? mElements.end() : mElements.find(Sought{index});
    return found == mElements.end() ? nullptr : found->second.data();
}

bool StreamImplMapped::isBeyondLast(const Index& index) const
{
    return mElements.empty() || std::prev(mElements.end())->first < index;
}

Handle& StreamImplMapped::storeBlock(Index&& index, char* block)
{
    try
    {
        Handle& stored = slot(std::move(index));
        stored.pointToData(block, true);
        return stored;
    }
    catch (...)
    {
        if (block)
            structure().destroyChunk(block);
        delete[] block;
        throw;
    }
}

Handle& StreamImplMapped::slot(Index&& index)
{
    if (mElements.empty())
        prepareElementsFor(index);
    // Ascending indices need no search.
    const auto place = isBeyondLast(index) ? mElements.end() : mElements.lower_bound(Sought{index});
    if (place != mElements.end() && !(index < place->first))
        return place->second;
    return mElements
        .emplace_hint(place, std::piecewise_construct, std::forward_as_tuple(std::move(index)),
                      std::forward_as_tuple(structure(), nullptr))
        ->second;
}

void StreamImplMapped::prepareElementsFor(const Index& first)
{
    if (!mEndHandle.usesStructure(structure())) // which can be replaced while there are no elements
        mEndHandle = Handle(structure(), nullptr);
    // A search reads the value of a complex index at every node on its way. Nodes from the heap lie beside their
    // values; those of numbers, which have no value elsewhere, lie beside each other.
    mElements.get_allocator().pool().setPlacement(first.isNumber() ? NodePool::ePlacement::kTogether
                                                                   : NodePool::ePlacement::kApart);
}

bool StreamImplMapped::Debug(const StreamImplMapped* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<StreamImplMapped>("vumo::Data::StreamImplMapped", request);
    request.beginSection("Data Stream (Mapped)");
    request << "PTR: " << static_cast<const void*>(object) << "\n";
    request << "Lowest valid index = " << object->mLowestValidIndex.asString() << "\n";
    request << "Highest valid index = " << object->mHighestValidIndex.asString() << "\n";
    request.beginSection("Stream Elements");
    request << "Element count = " << object->elementCount() << "\n";
    for (const auto& entry : object->mElements)
    {
        request << "Index (" << entry.first.asString() << "), Handle (";
        request.skipNextIndent(true);
        Handle::Debug(&entry.second, request);
        request.skipNextIndent(true);
        request << ")\n";
    }
    request.endSection();
    request.endSection();
    return true;
}

bool StreamImplMapped::Debug(const StreamImplMapped* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<StreamImplMapped>(request);
    request.addObject(object, sizeof(*object));
    for (const auto& entry : object->mElements)
    {
        Index::Debug(&entry.first, request);
        Handle::Debug(&entry.second, request);
    }
    return true;
}
} // namespace vumo::Data
