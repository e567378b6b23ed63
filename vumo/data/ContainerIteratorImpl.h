#pragma once

#include "vumo/data/IterLocation.h"

#include <memory>

namespace vumo::Data
{
/// A position in the set of a `ChannelImpl` or an `AssociationsImpl`: what the iterators over both have
/// alike. Borrows the container; valid until the entry at its position is removed.
///
/// Container has a type `Set` and a method `entries()` that gives it.
template <class Container>
class ContainerIteratorImpl
{
public:
    using Position = typename Container::Set::const_iterator;

    /// Without a container the iterator is at the end of nothing.
    ContainerIteratorImpl(const Container* container, IterLocation location) : mContainer(container)
    {
        if (!container)
            return;
        mEnd = container->entries().end();
        mPosition = std::make_unique<Position>(location == kIterBegin ? container->entries().begin() : mEnd);
    }

    ContainerIteratorImpl(const ContainerIteratorImpl& other)
        : mContainer(other.mContainer),
          mEnd(other.mEnd),
          mPosition(other.mPosition ? std::make_unique<Position>(*other.mPosition) : nullptr)
    {
    }

    ContainerIteratorImpl& operator=(const ContainerIteratorImpl& other)
    {
        ContainerIteratorImpl copy(other);
        mContainer = copy.mContainer;
        mEnd = copy.mEnd;
        mPosition.swap(copy.mPosition);
        return *this;
    }

    ~ContainerIteratorImpl() = default;

    bool operator==(const ContainerIteratorImpl& other) const
    {
        if (mContainer != other.mContainer || mEnd != other.mEnd)
            return false;
        if (!mPosition || !other.mPosition)
            return !mPosition && !other.mPosition;
        return *mPosition == *other.mPosition;
    }

    bool operator!=(const ContainerIteratorImpl& other) const { return !(*this == other); }

    /// Says whether the position is at an entry.
    bool valid() const { return mContainer && mPosition && *mPosition != mEnd; }

    /// The position in the set; call it only while valid().
    Position position() const { return *mPosition; }

    /// Steps to the next entry; stays at the end.
    void advance()
    {
        if (valid())
            ++*mPosition;
    }

private:
    const Container* mContainer;
    Position mEnd{};
    std::unique_ptr<Position> mPosition;
};
} // namespace vumo::Data
