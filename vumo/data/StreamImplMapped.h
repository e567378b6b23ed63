#pragma once

#include "vumo/data/NodeAllocator.h"
#include "vumo/data/StreamImpl.h"
#include "vumo/foundation/Counted.h"

#include <map>
#include <utility>

namespace vumo::Data
{
/// The storage that every stream starts with: an ordered map from index to element.
///
/// Suits sparse numbers, and is the only one for complex indices. Each entry owns its element's block.
class VUMO_EXPORT StreamImplMapped : public StreamImpl,
                                     public vumo::Debug::CRTP_Debug<StreamImplMapped, vumo::Debug::Print>,
                                     public vumo::Debug::CRTP_Debug<StreamImplMapped, vumo::Debug::Footprint>,
                                     private Counted<StreamImplMapped>
{
public:
    StreamImplMapped();
    StreamImplMapped(const Structure& structure, const std::string& name);

    /// Takes structure, name, index type and flag of any storage, but no elements.
    explicit StreamImplMapped(const StreamImpl& other);

    /// Copies the elements, too.
    StreamImplMapped(const StreamImplMapped& other);
    StreamImplMapped& operator=(const StreamImplMapped& other);

    StreamImpl* clone() const override;
    StreamIteratorImpl* begin() override;
    StreamIteratorImpl* end() override;
    StreamIteratorImpl* cbegin() const override;
    StreamIteratorImpl* cend() const override;
    unsigned int elementCount() const override;
    bool setElement(Index index, const Handle& handle) override;
    Handle element(Index index) override;
    bool hasElement(Index index) const override;

    /// False when there is no element at `from`; replaces the one at `to`.
    bool reindexElement(Index from, Index to) override;

    /// False when either element is missing.
    bool swapElements(Index a, Index b) override;

    /// True also when there was none.
    bool removeElement(Index index) override;

    /// Only notes the range, for the debug output; elements are neither touched nor limited by it.
    bool setElementRange(Index first, Index last) override;
    bool clear() override;

    /// Puts an element of default values at that index, in place of the one that may be there, and returns its
    /// block, to be filled; null for a structure of size 0, whose element exists all the same. Borrowed until the
    /// element is removed or replaced. Indices in ascending order are added without a search.
    char* newElement(Index&& index);

    /// The block of the element at that index; null where there is none, and for a structure of size 0.
    char* elementBlock(const Index& index) const;

    using vumo::Debug::CRTP_Debug<StreamImplMapped, vumo::Debug::Print>::debug;
    using vumo::Debug::CRTP_Debug<StreamImplMapped, vumo::Debug::Footprint>::debug;

    static bool Debug(const StreamImplMapped* object, vumo::Debug::Print& request);
    static bool Debug(const StreamImplMapped* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class StreamMappedIteratorImpl;

    /// Owns its block, and so does a copy, which makes a copied map one of independent elements.
    class Element : public Handle
    {
    public:
        using Handle::Handle;
        Element(const Element& other) : Handle(other) { makeUnique(); }
        Element& operator=(const Element&) = delete;
        ~Element() = default;
    };

    /// What a search is for, so that it is told from the indices that are stored.
    struct Sought
    {
        const Index& index;
    };

    struct Order
    {
        using is_transparent = void;
        bool operator()(const Index& left, const Index& right) const { return left < right; }
        bool operator()(const Sought& left, const Index& stored) const { return left.index < stored; }
        bool operator()(const Index& stored, const Sought& right) const;
    };

    using Elements = std::map<Index, Element, Order, NodeAllocator<std::pair<const Index, Element>>>;

    /// Before the first element comes: says where elements with such indices are to lie, and sees to the structure of
    /// the end.
    void prepareElementsFor(const Index& first);

    /// Says whether no element comes at or after that index.
    bool isBeyondLast(const Index& index) const;

    /// Puts the block at that index, in place of the one that may be there; owns it whatever happens.
    Handle& storeBlock(Index&& index, char* block);

    /// The entry of that index, made without data if there was none.
    Handle& slot(Index&& index);

    Elements mElements;
    Handle mEndHandle; // without data: what a walk over the elements ends at
    Index mLowestValidIndex = 0U;
    Index mHighestValidIndex = 0U;
};
} // namespace vumo::Data
