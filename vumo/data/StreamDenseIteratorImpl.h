#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/IterLocation.h"
#include "vumo/data/StreamIteratorImpl.h"

#include <memory>

namespace vumo::Data
{
class StreamImplDense;

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
    /// The address of the current slot or null.
    char* slot() const;

    /// Points the handle at the current slot; the iterator is invalid where the slot has no address.
    void pointToSlot();

    std::unique_ptr<Handle> mOwnHandle;
    const StreamImplDense* mStream; // borrowed
    unsigned int mPosition;
    bool mIsPlain; // the stream is of no derived class, which could have slots of its own
};
} // namespace vumo::Data
