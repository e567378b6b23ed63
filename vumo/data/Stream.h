#pragma once

#include "vumo/data/ElementView.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/MemberView.h"
#include "vumo/data/StreamElements.h"
#include "vumo/data/StreamImpl.h"
#include "vumo/data/StreamIterator.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/Ref.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace vumo::Data
{
/// A named, indexed list of elements that all follow one structure.
///
/// A Stream is a cheap front: copies share the elements, and a change made through one is seen by all.
/// Nothing copies on its own when modified; call makeUnique() before changing a stream that may be shared.
/// Threads may use different streams at once, read the elements that they share, and write to disjoint ones through
/// views; whoever changes more than that locks.
///
/// Starts in mapped storage, an ordered map that suits sparse numbers and complex indices;
/// useDenseStorage(true) moves the elements to one contiguous block. Structure and index type can change
/// only while there are no elements.
class VUMO_EXPORT Stream : private Counted<Stream>
{
public:
    /// Named "Stream", with a new, empty structure of its own.
    Stream();

    /// References the structure, copies the name.
    Stream(const Structure& structure, const std::string& name);

    /// References a storage made elsewhere, new or shared. Throws `std::invalid_argument` for null.
    explicit Stream(StreamImpl* impl);
    Stream(const Stream& other) = default;
    Stream& operator=(const Stream& other);

    /// Gives this stream elements of its own when it shares them. Returns whether it had to copy.
    bool makeUnique();

    unsigned int elementCount() const;

    /// Stores a copy of the handle's element, creating or replacing the one at that index. False, with
    /// nothing changed, when the handle is not on this stream's very structure() or has no data.
    /// A number is handed to the storage as it is: an index that is moved on costs a tenth of all.
    bool setElement(Index index, const Handle& handle);
    bool setElement(unsigned int index, const Handle& handle) { return mImpl->setElement(index, handle); }

    /// Borrows the stored element, to be read and written; a handle without data when there is none. Valid
    /// until the element is removed or replaced or, in dense storage, until the stream grows.
    Handle element(Index index) const;
    Handle element(unsigned int index) const { return mImpl->element(index); }
    bool hasElement(Index index) const;

    /// True also when there was none. Dense storage resets the element to default values instead.
    bool removeElement(Index index);

    /// Moves the element, replacing the one at `to`. False when there is none at `from`.
    bool reindexElement(Index from, Index to);
    bool swapElements(Index a, Index b);

    /// Mapped storage notes the range; dense storage takes its length as the new size of the stream.
    bool setElementRange(Index first, Index last);
    bool clear();

    StreamIterator begin() const;
    StreamIterator end() const;
    StreamIterator cbegin() const { return begin(); }
    StreamIterator cend() const { return end(); }

    /// Indices and elements, for a loop over both.
    StreamElements elements() const { return {begin(), end()}; }

    /// All elements of a dense stream at once: their blocks, or the values of one member. T is the type of a value,
    /// `const` to read only; see `MemberView`. Empty in mapped storage, without elements, and where no member has the
    /// name and type.
    ElementView elementView() const;

    template <class T>
    MemberView<T> memberView(const char* memberName) const;

    /// Several elements at numbers, in one call: `indices` are as many as `elements`.
    ///
    /// setElements() stores a copy of each block, as setElement() does one after the other, and returns how many it
    /// stored; it ends at the first that is refused, which is the first of all when they are of another structure than
    /// this stream's very structure(). The blocks must not be this stream's.
    unsigned int setElements(const unsigned int* indices, const ElementView& elements);

    /// Copies each element over the block at its place, which gets default values where there is none; returns how
    /// many elements there were. None, with nothing copied, when the blocks are of another structure.
    unsigned int getElements(const unsigned int* indices, const ElementView& elements) const;

    /// One member's values of several elements, one element's after the other's. `T` is the type of a value, that of
    /// a string `const char*`; nothing happens where no member has the name and type.
    ///
    /// setMemberValues() makes the elements that are missing, with default values in their other members, copies
    /// strings, which may be the stream's own, and returns how many elements it wrote to. getMemberValues() lends
    /// strings, null ones included, gives default values where there is no element, and returns how many elements
    /// there were.
    template <class T>
    unsigned int setMemberValues(const char* memberName, const unsigned int* indices, unsigned int count,
                                 const T* values);
    template <class T>
    unsigned int getMemberValues(const char* memberName, const unsigned int* indices, unsigned int count,
                                 T* values) const;

    /// The numbers at which there are elements, in ascending order.
    std::vector<unsigned int> numericIndices() const;

    const std::string& name() const;

    /// Referenced by the stream.
    const Structure& structure() const;

    /// False, with nothing changed, when there are elements.
    bool setStructure(const Structure& structure);

    /// Puts the stream on another structure that is equal to its own, so that data can move between files, each of
    /// which has structures of its own. The elements stay, as a copy: streams that shared them keep the old structure.
    /// False, with nothing changed, when the structures are not equal.
    bool rebase(const Structure& structure);

    /// The name of the type of the stream's indices, "numeric" for plain numbers.
    const std::string& indexType() const;

    /// False, with nothing changed, when there are elements and the name is another. A stream whose index
    /// type changes is in mapped storage afterwards. Throws `Index::eUnknownIndexType`.
    bool setIndexType(const std::string& typeName);

    /// Moves the elements to dense storage, or back to mapped storage. True when nothing had to be done or
    /// the stream was empty; false when elements were moved, although they were. False, too, with nothing
    /// changed, when dense storage has no place for one of them.
    ///
    /// Only structure, name and elements travel: the index type becomes "numeric" and the use-defaults flag
    /// false. BEWARE: dense storage reads every complex index as 0, so of the elements at complex indices
    /// only the last one survives the move.
    bool useDenseStorage(bool useDense);

    bool isDense() const;

    /// Returns the flag before. It travels with copies of the stream; nothing in the library consults it.
    bool setUseDefaults(bool useDefaults);
    bool useDefaults() const;

    /// Takes over the other stream's elements at the numbers from 0 up to its elementCount(), replacing
    /// those that are here; its elements at other numbers or at complex indices are left out. False when
    /// one could not be set, as all are refused whose stream is not on this one's very structure(): rebase() it first.
    /// The merge ends there.
    bool mergeStream(const Stream& other);

    /// Honours the filters that `Handle` knows, for its elements.
    static bool Debug(const Stream* object, vumo::Debug::Print& request);
    static bool Debug(const Stream* object, vumo::Debug::Footprint& request);

    /// The name of the filter that asks for the raw bytes of the elements, when not 0.
    static const std::string kDebugHex;

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class ChannelImpl; // renames the streams that it holds

    /// The first member of that name or null.
    const Member* findMember(const char* name) const;

    /// The blocks of these elements, null where there is none.
    std::vector<char*> elementBlocks(const unsigned int* indices, unsigned int count) const;
    void createMissingElements(const unsigned int* indices, unsigned int count);

    /// setMemberValues() for a member of strings.
    unsigned int setStrings(const Member& member, const unsigned int* indices, unsigned int count,
                            const char* const* values);

    Ref<StreamImpl> mImpl; // never null
};

template <class T>
MemberView<T> Stream::memberView(const char* memberName) const
{
    const ElementView elements = elementView();
    const Member* const member = findMember(memberName);
    const unsigned int valueCount = MemberTypes<std::remove_const_t<T>>::valueCount(member);
    if (valueCount == 0 || elements.empty())
        return MemberView<T>();
    return MemberView<T>(elements.data() + Member::offset(member), elements.stride(), valueCount, elements.size());
}

template <class T>
unsigned int Stream::setMemberValues(const char* memberName, const unsigned int* indices, unsigned int count,
                                     const T* values)
{
    const Member* const member = findMember(memberName);
    const unsigned int valueCount = MemberTypes<T>::valueCount(member);
    if (valueCount == 0)
        return 0;
    if constexpr (std::is_pointer_v<T>)
        return setStrings(*member, indices, count, values);
    else
    {
        createMissingElements(indices, count);
        unsigned int written = 0;
        for (char* const block : elementBlocks(indices, count))
        {
            if (block)
            {
                typename MemberView<T>::Values(block + Member::offset(member), valueCount).set(values);
                ++written;
            }
            values += valueCount;
        }
        return written;
    }
}

template <class T>
unsigned int Stream::getMemberValues(const char* memberName, const unsigned int* indices, unsigned int count,
                                     T* values) const
{
    const Member* const member = findMember(memberName);
    const unsigned int valueCount = MemberTypes<T>::valueCount(member);
    if (valueCount == 0)
        return 0;
    unsigned int found = 0;
    for (char* const block : elementBlocks(indices, count))
    {
        if (block)
        {
            typename MemberView<T>::Values(block + Member::offset(member), valueCount).get(values);
            ++found;
        }
        else
        {
            std::fill_n(values, valueCount, T());
        }
        values += valueCount;
    }
    return found;
}
} // namespace vumo::Data
