#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/IterLocation.h"
#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamIteratorImpl.h"

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

private:
    friend class StreamIterator;

    /// What operator++ does for a storage of no derived class, which could have slots of its own.
    void step()
    {
        if (mPosition >= mStream->mCount)
            return;
        ++mPosition;
        pointTo(mPosition < mStream->mCount ? mStream->slot(mPosition) : nullptr);
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
