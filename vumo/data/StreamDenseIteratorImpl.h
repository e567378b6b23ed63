#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/IterLocation.h"
#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamIteratorImpl.h"
#include "vumo/foundation/DebugFwd.h"

#include <memory>

namespace vumo::Data
{
/// Walks the slots of a dense storage that are in use, those that were never set included. Growing the
/// storage invalidates the current handle until the iterator moves.
class VUMO_EXPORT StreamDenseIteratorImpl final : public StreamIteratorImpl
{
public:
    StreamDenseIteratorImpl(const StreamImplDense& stream, IterLocation location);
    StreamDenseIteratorImpl(const StreamDenseIteratorImpl& other);
    ~StreamDenseIteratorImpl() override;

    StreamIteratorImpl& operator++() override;
    StreamIteratorImpl* operator++(int) override;
    bool valid() const override;
    StreamIteratorImpl* clone() const override;
    Index index() const override;
    const StreamImpl* myStream() const override;

    static bool Debug(const StreamDenseIteratorImpl* object, vumo::Debug::Print& request);
    static bool Debug(const StreamDenseIteratorImpl* object, vumo::Debug::Footprint& request);

private:
    friend class StreamIterator;

    /// Steps from an element in the block of the storage to the next one. False, with nothing done, when there is none,
    /// or the handle has a block to release: operator++() sees to these, and to storages with slots of their own.
    bool stepInBlock()
    {
        const unsigned int next = mPosition + 1;
        char* const address = next < mStream->mCount ? mStream->slotInUse(next) : nullptr;
        if (!address || mOwnHandle->ownsData())
            return false;
        mPosition = next;
        mOwnHandle->pointToData(address, false);
        return true;
    }

    /// Points the handle at a slot; the iterator is invalid where that has no address.
    void pointTo(char* slot)
    {
        if (mOwnHandle)
            mOwnHandle->pointToData(slot, false);
        mInvalid = !slot;
    }

    std::unique_ptr<Handle> mOwnHandle; // null where the walk began at the end
    const StreamImplDense* mStream;     // borrowed
    unsigned int mPosition;
};
} // namespace vumo::Data
