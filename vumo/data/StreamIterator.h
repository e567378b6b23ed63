#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/StreamDenseIteratorImpl.h"
#include "vumo/data/StreamIteratorImpl.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <memory>

namespace vumo::Data
{
/// Walks the elements of a stream in index order, whatever its storage.
///
/// A default-constructed iterator walks nothing: it is not valid, equals no iterator, itself included, and
/// throws `std::runtime_error` when used. Must not outlive the stream's implementation.
class VUMO_EXPORT StreamIterator
{
public:
    StreamIterator();

    /// Takes ownership.
    explicit StreamIterator(StreamIteratorImpl* impl);
    StreamIterator(const StreamIterator& other);
    StreamIterator& operator=(const StreamIterator& other);
    ~StreamIterator();

    /// The handle on the current element; valid until the iterator moves. Throws `std::out_of_range`
    /// where there is none.
    Handle& operator*() { return hasPlainHandle() ? *mImpl->mHandle : handleOfImpl(); }
    const Handle& operator*() const { return hasPlainHandle() ? *mImpl->mHandle : *constImpl(); }
    Handle* operator->() { return hasPlainHandle() ? mImpl->mHandle : handlePointerOfImpl(); }
    const Handle* operator->() const { return hasPlainHandle() ? mImpl->mHandle : constImpl().operator->(); }

    Index index() const;

    StreamIterator& operator++()
    {
        const bool hasStepped = mImpl && mImpl->mIsPlainDense && plainDense().step();
        if (!hasStepped)
            stepImpl();
        return *this;
    }

    /// Steps on and returns an iterator at the position before.
    StreamIterator operator++(int);

    bool valid() const { return mImpl && ((mImpl->mIsPlain && !mImpl->mInvalid) || isImplValid()); }

    /// Borrowed from the iterator. Throws `std::runtime_error` when there is none.
    StreamIteratorImpl* impl();
    const StreamIteratorImpl* impl() const;

    bool operator==(const StreamIterator& other) const;
    bool operator!=(const StreamIterator& other) const { return !(*this == other); }

    static bool Debug(const StreamIterator* object, vumo::Debug::Print& request);
    static bool Debug(const StreamIterator* object, vumo::Debug::Footprint& request);

private:
    bool hasPlainHandle() const { return mImpl && mImpl->mIsPlain && mImpl->mHandle; }
    StreamDenseIteratorImpl& plainDense() { return static_cast<StreamDenseIteratorImpl&>(*mImpl); }

    // The ways that a loop over a dense stream does not take. Were they not known to be cold, it would keep what it
    // adds up in memory for their sake.
    [[gnu::cold]] void stepImpl();
    [[gnu::cold]] bool isImplValid() const;
    [[gnu::cold]] Handle& handleOfImpl();
    [[gnu::cold]] Handle* handlePointerOfImpl();
    [[gnu::cold]] const StreamIteratorImpl& constImpl() const;

    std::unique_ptr<StreamIteratorImpl> mImpl;
};
} // namespace vumo::Data
