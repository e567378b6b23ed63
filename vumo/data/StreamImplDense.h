#pragma once

#include "vumo/data/ElementView.h"
#include "vumo/data/StreamImpl.h"
#include "vumo/foundation/Counted.h"

#include <atomic>
#include <vector>

namespace vumo::Data
{
/// A storage for numeric indices from 0 upward with few gaps: all elements in one contiguous block.
///
/// Every element below the count exists; those that were never set, or were removed, hold default values.
/// A complex index is read as its number, 0. After clear() the count stays and there is no block: handles
/// then have no data.
class VUMO_EXPORT StreamImplDense : public StreamImpl,
                                    public vumo::Debug::CRTP_Debug<StreamImplDense, vumo::Debug::Print>,
                                    public vumo::Debug::CRTP_Debug<StreamImplDense, vumo::Debug::Footprint>,
                                    private Counted<StreamImplDense>
{
public:
    StreamImplDense();
    StreamImplDense(const Structure& structure, const std::string& name);

    /// Takes structure, name, index type and flag of any storage, but no elements.
    explicit StreamImplDense(const StreamImpl& other);

    /// Copies the elements, too.
    StreamImplDense(const StreamImplDense& other);
    StreamImplDense& operator=(const StreamImplDense& other);
    ~StreamImplDense() override;

    StreamImpl* clone() const override;
    StreamIteratorImpl* begin() override;
    StreamIteratorImpl* end() override;
    StreamIteratorImpl* cbegin() const override;
    StreamIteratorImpl* cend() const override;

    /// One more than the highest index in use.
    unsigned int elementCount() const override;
    bool setElement(Index index, const Handle& handle) override;
    Handle element(Index index) override;
    bool hasElement(Index index) const override;

    /// Copies the element and leaves default values at `from`, also when both are the same.
    bool reindexElement(Index from, Index to) override;

    /// False when either element is missing.
    bool swapElements(Index a, Index b) override;

    /// Resets the element to its default values; it goes on to exist. True also when there was none.
    bool removeElement(Index index) override;

    /// Sets the size of the stream to n = last - first + 1 elements: growing leaves it at n, shrinking at
    /// n - 1. False, with nothing changed, for n = 0 while there are elements, and
    /// where the block does not come to cover n.
    bool setElementRange(Index first, Index last) override;

    /// Releases the block with all elements; count and allocated number keep their values.
    bool clear() override;

    /// The index of a slot in use; 4294967295 for any other.
    virtual Index indexOfPhysicalElement(unsigned int slot) const;

    /// The number of slots allocated.
    virtual unsigned int physicalElementCount() const;

    /// The start of an element's data block or null; borrowed until the storage grows.
    virtual char* elementAddr(Index index) const;

    /// Grows the block by half, or more if the index asks for it. New slots hold default values. False when the index
    /// does not fit afterwards; nothing has changed then, except that a growth that falls short of the index (it can,
    /// for elements of 4096 bytes and more) is kept.
    virtual bool ensureSpaceForElement(Index index);

    /// The blocks of all elements. Empty without a block, and for a derived class that keeps elements elsewhere.
    ElementView elementView() const;

    using vumo::Debug::CRTP_Debug<StreamImplDense, vumo::Debug::Print>::debug;
    using vumo::Debug::CRTP_Debug<StreamImplDense, vumo::Debug::Footprint>::debug;

    static bool Debug(const StreamImplDense* object, vumo::Debug::Print& request);
    static bool Debug(const StreamImplDense* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class StreamDenseIteratorImpl;

    bool hasStaleBlock() const { return mData && mCount == 0 && !fitsLayout(); }
    bool fitsLayout() const;
    void rememberLayout();

    /// The address of that slot or null.
    char* slot(unsigned int i) const { return hasStaleBlock() ? nullptr : slotInUse(i); }

    /// The same where there are elements.
    char* slotInUse(unsigned int i) const { return i < mAllocated && mData ? mData + mStride * i : nullptr; }

    bool reallocate(unsigned long long slots);
    void fillSlots(unsigned int end) const;

    unsigned int filledSlots() const { return mFilled.load(std::memory_order_acquire); }
    void setFilledSlots(unsigned int count) const { mFilled.store(count, std::memory_order_release); }
    bool resetElement(unsigned int i);
    bool storeElement(unsigned int i, char* dest, const Handle& handle);
    void appendElement(unsigned int i, char* dest, const Handle& handle);
    void copyBlock(const StreamImplDense& other);
    void copySlots(const StreamImplDense& other, unsigned int count);

    template <class Visitor>
    void visitStrings(unsigned int firstSlot, unsigned int slotCount, Visitor&& visit) const;
    void swapBlock(StreamImplDense& other);
    void releaseBlock();

    unsigned int mCount = 0;
    unsigned int mAllocated = 0;
    char* mData = nullptr; // from realloc

    // The slots before this hold values. Those after it, which are no elements, get theirs when they become some or
    // somebody asks for an address: most are set next, and a pass over them before that takes a fifth of the time.
    mutable std::atomic<unsigned int> mFilled = 0;

    // The layout by which the block was made. The structure may be another one, or have grown, once there
    // are no elements.
    unsigned long long mStride = 0;
    std::vector<Member> mBlockMembers;
};
} // namespace vumo::Data
