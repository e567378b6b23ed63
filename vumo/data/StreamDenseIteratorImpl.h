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
class VUMO_EXPORT StreamDenseIteratorImpl : public StreamIteratorImpl
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

    /// Steps to the next element of a storage of no derived class, which could have slots of its own. False, with
    /// nothing done, when there is none, or the handle has a block to release.
    bool step()
    {
        const unsigned int next = mPosition + 1;
        char* const address = next < mStream->mCount ? mStream->slotInUse(next) : nullptr;
        if (!address || mOwnHandle->ownsData())
            return false;
        mPosition = next;
        mOwnHandle->pointToData(address, false);
        mInvalid = false;
        return true;
    }

    /// Points the handle at a slot; the iterator is invalid where that has no address.
    void pointTo(char* slot)
    {
        mOwnHandle->pointToData(slot, false);
        mInvalid = !slot;
    }

    std::unique_ptr<Handle> mOwnHandle;
    const StreamImplDense* mStream; // borrowed
    unsigned int mPosition;
};
} // namespace vumo::Data
