#include "vumo/data/StreamImplDense.h"

#include "vumo/data/StreamDenseIteratorImpl.h"
#include "vumo/data/detail/DataTypes.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"
#include "vumo/foundation/detail/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <utility>

namespace vumo::Data
{
namespace
{
constexpr unsigned long long kPageSize = 4096;
constexpr unsigned int kNoSlot = StreamIteratorImpl::kEndIndex; // can be an index, but not be counted

/// Three halves of `n`, or a number that no index exceeds where tripling `n` would wrap.
unsigned long long threeHalves(unsigned int n)
{
    const unsigned long long tripled = 3ULL * n;
    return tripled > std::numeric_limits<unsigned int>::max() ? 0 : tripled / 2;
}

/// The number of slots to grow to so that `i` fits, by half of what there is or from one page; 0 where
/// 32 bits do not hold it.
unsigned long long grownSize(unsigned int allocated, unsigned long long elementSize, unsigned int i)
{
    unsigned long long size = 0;
    if (allocated >= 2)
        size = threeHalves(allocated);
    else if (elementSize <= kPageSize)
        size = kPageSize / elementSize;
    return size > i ? size : threeHalves(i);
}
} // namespace

const vumo::ObjectCount StreamImplDense::_objectsCreated = vumo::Counted<StreamImplDense>::objectsCreated();
const vumo::ObjectCount StreamImplDense::_objectsAlive = vumo::Counted<StreamImplDense>::objectsAlive();

StreamImplDense::StreamImplDense() = default;

StreamImplDense::StreamImplDense(const Structure& structure, const std::string& name) : StreamImpl(structure, name) {}

StreamImplDense::StreamImplDense(const StreamImpl& other) : StreamImpl(other) {}

StreamImplDense::StreamImplDense(const StreamImplDense& other) : StreamImplDense(static_cast<const StreamImpl&>(other))
{
    copyBlock(other); // when it fails half-way the destructor releases what there is
}

StreamImplDense& StreamImplDense::operator=(const StreamImplDense& other)
{
    if (this == &other)
        return *this;
    StreamImplDense copy(other);
    StreamImpl::operator=(other);
    swapBlock(copy);
    return *this;
}

StreamImplDense::~StreamImplDense()
{
    releaseBlock();
}

StreamImpl* StreamImplDense::clone() const
{
    return new StreamImplDense(*this);
}

StreamIteratorImpl* StreamImplDense::begin()
{
    return cbegin();
}

StreamIteratorImpl* StreamImplDense::end()
{
    return cend();
}

StreamIteratorImpl* StreamImplDense::cbegin() const
{
    return new StreamDenseIteratorImpl(*this, kIterBegin);
}

StreamIteratorImpl* StreamImplDense::cend() const
{
    return new StreamDenseIteratorImpl(*this, kIterEnd);
}

unsigned int StreamImplDense::elementCount() const
{
    return mCount;
}

bool StreamImplDense::setElement(Index index, const Handle& handle)
{
    const unsigned int i = index.index();
    if (!handle.usesStructure(structure()) || i == kNoSlot)
        return false;
    char* const dest = slot(i);
    if (dest && i == filledSlots() && handle.hasData()) // the usual case, for which storeElement() asks too much
    {
        appendElement(i, dest, handle);
        return true;
    }
    if (dest)
        return storeElement(i, dest, handle);
    Handle kept(handle);
    kept.makeUnique(); // growing may move the element that the handle borrows
    ensureSpaceForElement(std::move(index));
    return storeElement(i, slot(i), kept);
}

bool StreamImplDense::storeElement(unsigned int i, char* dest, const Handle& handle)
{
    const bool isItself = dest && dest == handle.data(); // must not be destroyed before it is copied
    if (dest && handle.hasData() && i >= filledSlots())
    {
        fillSlots(i); // those that are skipped
        appendElement(i, dest, handle);
        return true;
    }
    if (dest && handle.hasData() && !isItself)
        structure().destroyChunk(dest);
    if (!isItself && !copyElementFromHandle(dest, handle))
        return false;
    mCount = std::max(mCount, i + 1);
    return true;
}

/// To the first slot that is not filled: there is nothing to release.
void StreamImplDense::appendElement(unsigned int i, char* dest, const Handle& handle)
{
    structure().fillWithDuplicateChunk(dest, handle.data());
    setFilledSlots(i + 1);
    mCount = std::max(mCount, i + 1);
}

Handle StreamImplDense::element(Index index)
{
    const unsigned int i = index.index();
    return Handle(structure(), i < mCount ? slot(i) : nullptr);
}

bool StreamImplDense::hasElement(Index index) const
{
    return index.index() < mCount;
}

bool StreamImplDense::reindexElement(Index from, Index to)
{
    const unsigned int source = from.index();
    const unsigned int target = to.index();
    if (source >= mCount || target == kNoSlot)
        return false;
    if (source != target) // an element that is moved onto itself is only reset
    {
        ensureSpaceForElement(to);
        if (!storeElement(target, slot(target), Handle(structure(), slot(source))))
            return false;
    }
    return resetElement(source);
}

bool StreamImplDense::swapElements(Index a, Index b)
{
    if (!hasElement(a) || !hasElement(b))
        return false;
    const unsigned long long size = structure().totalSize();
    char* const first = slot(a.index());
    char* const second = slot(b.index());
    if (size == 0)
        return true;
    if (!first || !second)
        return false;
    if (first != second)
        std::swap_ranges(first, first + size, second); // strings go with their pointers
    return true;
}

bool StreamImplDense::removeElement(Index index)
{
    return !hasElement(index) || resetElement(index.index());
}

bool StreamImplDense::resetElement(unsigned int i)
{
    if (structure().totalSize() == 0)
        return true;
    char* const element = slot(i);
    if (!element)
        return false;
    structure().destroyChunk(element);
    structure().fillWithDefaultChunk(element);
    return true;
}

bool StreamImplDense::setElementRange(Index first, Index last)
{
    const unsigned int n = last.index() - first.index() + 1;
    if (mCount == n)
        return true;
    if (n == 0)
        return false; // shrinking would leave n - 1 elements
    if (mCount < n)
    {
        const bool fits = ensureSpaceForElement(Index(n)); // asks for one slot more than is used
        if (structure().totalSize() > 0 && !slot(n - 1))
            return false; // a count without memory would promise elements that nobody can read
        fillSlots(n);
        mCount = n;
        return fits;
    }
    for (unsigned int i = n; i < mCount; ++i)
        resetElement(i); // a stream that grows again starts with default values
    mCount = n - 1;      // the element there keeps its data, but counts no more
    return true;
}

bool StreamImplDense::clear()
{
    releaseBlock();
    return true;
}

Index StreamImplDense::indexOfPhysicalElement(unsigned int slot) const
{
    return Index(slot < mCount ? slot : kNoSlot);
}

unsigned int StreamImplDense::physicalElementCount() const
{
    return hasStaleBlock() ? 0 : mAllocated;
}

char* StreamImplDense::elementAddr(Index index) const
{
    char* const address = slot(index.index());
    if (address && filledSlots() < mAllocated) // from here all slots can be seen
    {
        static std::mutex theMutex;
        const std::lock_guard<std::mutex> lock(theMutex); // other threads may read elements meanwhile, and ask likewise
        fillSlots(mAllocated);
    }
    return address;
}

ElementView StreamImplDense::elementView() const
{
    char* const first = mCount > 0 ? slot(0) : nullptr;
    if (!first || elementAddr(0) != first) // a derived class has addresses of its own
        return ElementView();
    return ElementView(structure(), first, mCount, mStride);
}

bool StreamImplDense::ensureSpaceForElement(Index index)
{
    const unsigned int i = index.index();
    if (hasStaleBlock())
    {
        releaseBlock();
        mAllocated = 0;
    }
    if (i < mAllocated)
        return mData != nullptr; // clear() leaves the number of slots without their block
    if (structure().totalSize() == 0)
        return true;
    return reallocate(grownSize(mAllocated, structure().totalSize(), i)) && mAllocated > i;
}

bool StreamImplDense::reallocate(unsigned long long slots)
{
    if (!mData)
        rememberLayout();
    const unsigned long long mostSlots = std::numeric_limits<std::size_t>::max() / mStride;
    if (slots == 0 || slots < mAllocated || slots > mostSlots) // the rule gave no size, or less than there is
        return false;
    // Zero bits are the default of every type, and fresh memory that is wanted so need not be written.
    char* const data = static_cast<char*>(mData ? std::realloc(mData, slots * mStride) : std::calloc(slots, mStride));
    if (!data)
        return false;
    const bool isZero = !mData;
    mData = data;
    mAllocated = static_cast<unsigned int>(slots);
    if (isZero)
        setFilledSlots(mAllocated);
    return true;
}

/// Gives default values to the slots before `end` that have none yet.
void StreamImplDense::fillSlots(unsigned int end) const
{
    const unsigned int filled = filledSlots();
    if (!mData || filled >= end)
        return;
    structure().fillWithDefaultChunks(mData + mStride * filled, end - filled);
    setFilledSlots(end);
}

void StreamImplDense::rememberLayout()
{
    mStride = structure().totalSize();
    mBlockMembers.clear();
    for (unsigned int i = 0; i < structure().memberCount(); ++i)
        mBlockMembers.push_back(*structure().member(i));
}

/// Says whether the block was made by the layout that the structure has now. Size alone does not tell: a string could
/// lie where a number was.
bool StreamImplDense::fitsLayout() const
{
    return mStride == structure().totalSize() && mBlockMembers.size() == structure().memberCount() &&
           std::equal(mBlockMembers.begin(), mBlockMembers.end(), structure().member(0));
}

void StreamImplDense::copyBlock(const StreamImplDense& other)
{
    mCount = other.mCount;
    if (!other.mData || other.hasStaleBlock())
    {
        mAllocated = other.mData ? 0 : other.mAllocated;
        return;
    }
    mStride = other.mStride;
    mBlockMembers = other.mBlockMembers;
    mData = static_cast<char*>(std::malloc(mStride * other.mAllocated));
    if (!mData)
        throw std::bad_alloc();
    mAllocated = other.mAllocated;
    // Piece by piece, so that what is copied is still at hand when its strings follow.
    const auto slotsPerPiece = static_cast<unsigned int>(std::max(kPageSize / mStride, 1ULL));
    for (const unsigned int end = other.filledSlots(); filledSlots() < end;)
        copySlots(other, std::min(slotsPerPiece, end - filledSlots()));
}

/// Copies the slots after the last that is filled.
void StreamImplDense::copySlots(const StreamImplDense& other, unsigned int count)
{
    const unsigned int first = filledSlots();
    std::memcpy(mData + mStride * first, other.mData + mStride * first, mStride * count);
    try
    {
        visitStrings(first, count, [](char* string) {
            if (const char* const text = loadScalar<char*>(string))
                storeScalar(string, detail::duplicateText(text));
        });
    }
    catch (...)
    {
        visitStrings(first, count, [&](char* string) {
            char* const text = loadScalar<char*>(string);
            if (text != loadScalar<char*>(other.mData + (string - mData))) // the rest are still the other's
                std::free(text);
        });
        throw;
    }
    setFilledSlots(first + count);
}

void StreamImplDense::swapBlock(StreamImplDense& other)
{
    std::swap(mCount, other.mCount);
    std::swap(mAllocated, other.mAllocated);
    mFilled = other.mFilled.exchange(mFilled);
    std::swap(mData, other.mData);
    std::swap(mStride, other.mStride);
    mBlockMembers.swap(other.mBlockMembers);
}

void StreamImplDense::releaseBlock()
{
    if (!mData)
        return;
    visitStrings(0, filledSlots(), [](char* string) { std::free(loadScalar<char*>(string)); });
    std::free(mData);
    mData = nullptr;
    setFilledSlots(0);
}

/// Calls `visit` with the address of each string of so many slots.
template <class Visitor>
void StreamImplDense::visitStrings(unsigned int firstSlot, unsigned int slotCount, Visitor&& visit) const
{
    for (const Member& member : mBlockMembers)
    {
        const unsigned int count = Member::type(&member) == Member::kString ? Member::length(&member) : 0;
        for (unsigned int k = 0; k < count; ++k)
        {
            char* const first = mData + mStride * firstSlot + Member::offset(&member, k);
            for (unsigned int i = 0; i < slotCount; ++i)
                visit(first + mStride * i);
        }
    }
}

bool StreamImplDense::Debug(const StreamImplDense* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<StreamImplDense>("vumo::Data::StreamImplDense", request);
    request.beginSection("Data Stream");
    request << "Highest valid index = " << object->mCount << "\n";
    request << "Number allocated    = " << object->physicalElementCount() << "\n";
    request.beginSection("Stream Elements");
    for (unsigned int i = 0; i < object->mCount; ++i)
    {
        const Handle element(object->structure(), object->slot(i));
        request << "Index (" << i << "), Handle (";
        request.skipNextIndent(true);
        Handle::Debug(&element, request);
        request.skipNextIndent(true);
        request << ")\n";
    }
    request.endSection();
    request.endSection();
    return true;
}

bool StreamImplDense::Debug(const StreamImplDense* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<StreamImplDense>(request);
    request.addObject(object, sizeof(*object));
    if (object->mData)
        request.addMember(object->mData, object->mAllocated * object->mStride);
    return true;
}
} // namespace vumo::Data
