#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/StreamIterator.h"

namespace vumo::Data
{
/// The elements of a stream in index order, for a loop over indices and elements:
///
///     for (auto [index, element] : stream.elements())
///         element.set(0, weightOf(index));
///
/// Borrows the stream's storage. The handle is that of a `StreamIterator`: valid until the next step.
class StreamElements
{
public:
    /// A copy of the index, and a handle that is borrowed until the next step.
    struct Element
    {
        Index index;
        Handle& handle;
    };

    /// What a loop over a range needs, and nothing else.
    class Iterator
    {
    public:
        explicit Iterator(const StreamIterator& position) : mPosition(position) {}

        Element operator*() { return {mPosition.index(), *mPosition}; }

        Iterator& operator++()
        {
            ++mPosition;
            return *this;
        }

        bool operator!=(const Iterator& other) const { return mPosition != other.mPosition; }

    private:
        StreamIterator mPosition;
    };

    StreamElements(const StreamIterator& begin, const StreamIterator& end) : mBegin(begin), mEnd(end) {}

    Iterator begin() const { return Iterator(mBegin); }
    Iterator end() const { return Iterator(mEnd); }

private:
    StreamIterator mBegin;
    StreamIterator mEnd;
};
} // namespace vumo::Data
