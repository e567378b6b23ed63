#pragma once

#include "vumo/data/Index.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
class Handle;
class StreamImpl;

/// What stands behind a `StreamIterator`: a position in one storage. Borrows the storage.
class VUMO_EXPORT StreamIteratorImpl
{
public:
    StreamIteratorImpl& operator=(const StreamIteratorImpl&) = delete;

    /// The index of every position that is not at an element.
    static constexpr unsigned int kEndIndex = 0xFFFFFFFF;

    virtual ~StreamIteratorImpl();

    /// The handle on the current element; valid until the iterator moves. Each throws `std::out_of_range`
    /// when there is none. At an end that was stepped to, the handle has no data.
    virtual Handle& operator*();
    virtual const Handle& operator*() const;
    virtual Handle* operator->();
    virtual const Handle* operator->() const;

    /// Steps to the next element; stays at the end.
    virtual StreamIteratorImpl& operator++() = 0;

    /// Steps on and returns a new iterator, owned by the caller, at the position before.
    virtual StreamIteratorImpl* operator++(int) = 0;

    /// Says whether the position is at an element.
    virtual bool valid() const = 0;

    /// A new copy, owned by the caller.
    virtual StreamIteratorImpl* clone() const = 0;
    virtual Index index() const = 0;
    virtual const StreamImpl* myStream() const = 0;

    bool operator==(const StreamIteratorImpl& other) const;
    bool operator!=(const StreamIteratorImpl& other) const { return !(*this == other); }

    static bool Debug(const StreamIteratorImpl* object, vumo::Debug::Print& request);
    static bool Debug(const StreamIteratorImpl* object, vumo::Debug::Footprint& request);

protected:
    StreamIteratorImpl() = default;
    StreamIteratorImpl(const StreamIteratorImpl& other) : mHandle(other.mHandle), mInvalid(other.mInvalid) {}

    Handle* mHandle = nullptr; // borrowed; null: no current handle
    bool mInvalid = true;

private:
    // What `StreamIterator` may do without a virtual call. A derived class says so about itself, if it is final.
    enum class eShortWay : unsigned char
    {
        kNone,
        kHandle, // take mHandle, while not mInvalid
        kBlock   // that, and step in the block of a storage that is exactly a StreamImplDense
    };

    friend class StreamDenseIteratorImpl;
    friend class StreamIterator;
    friend class StreamMappedIteratorImpl;

    eShortWay mShortWay = eShortWay::kNone; // not copied here, where the copy may be a part of any class
};
} // namespace vumo::Data
