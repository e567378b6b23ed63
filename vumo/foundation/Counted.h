#pragma once

#include "vumo/foundation/ObjectCount.h"
#include "vumo/foundation/ObjectShard.h"

#include <type_traits>

namespace vumo::Data
{
class Associations;
class AssociationsImpl;
class Channel;
class ChannelImpl;
class Handle;
class Index;
class IndexPair;
class IndexString;
class Member;
class Stream;
class StreamImpl;
class StreamImplDense;
class StreamImplMapped;
class Structure;
} // namespace vumo::Data

namespace vumo
{
/// Counts the objects of class T, in whatever threads, for its statics `_objectsCreated` and `_objectsAlive`. An empty
/// base, to be derived from privately, which takes no room; the statics are T's own, so that `T::_objectsAlive` names
/// one thing only.
///
/// All such counting goes through here.
template <class T>
class Counted
{
protected:
    Counted() noexcept { ObjectShard::countCreated(place()); }
    Counted(const Counted&) noexcept : Counted() {}
    Counted& operator=(const Counted&) noexcept = default;
    ~Counted() { ObjectShard::countDestroyed(place()); }

    /// What the statics of T are initialised with.
    static constexpr ObjectCount objectsCreated() { return {ObjectCount::kCreated, place()}; }
    static constexpr ObjectCount objectsAlive() { return {ObjectCount::kAlive, place()}; }

private:
    /// The place of T among the following.
    template <class... Classes>
    static constexpr unsigned int placeAmong()
    {
        static_assert(sizeof...(Classes) == ObjectShard::kPlaces && (std::is_same_v<T, Classes> || ...));
        unsigned int place = 0;
        static_cast<void>(((std::is_same_v<T, Classes> || (++place, false)) || ...));
        return place;
    }

    static constexpr unsigned int place()
    {
        using namespace Data;
        return placeAmong<Associations, AssociationsImpl, Channel, ChannelImpl, Handle, Index, IndexPair, IndexString,
                          Member, Stream, StreamImpl, StreamImplDense, StreamImplMapped, Structure>();
    }
};
} // namespace vumo
