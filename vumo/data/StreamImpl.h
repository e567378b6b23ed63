#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/CRTP_Debug.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/RefCounted.h"

#include <string>

namespace vumo::Data
{
class StreamIteratorImpl;

/// What stands behind a `Stream`: its name, structure and index type, and a storage for its elements.
///
/// Derived classes are the storages. Whoever makes one directly calls ref() on it and later unref().
class VUMO_EXPORT StreamImpl : public RefCounted,
                               public vumo::Debug::CRTP_Debug<StreamImpl, vumo::Debug::Print>,
                               public vumo::Debug::CRTP_Debug<StreamImpl, vumo::Debug::Footprint>,
                               private Counted<StreamImpl>
{
public:
    /// Named "Stream", with a new, empty structure of its own.
    StreamImpl();
    StreamImpl(const Structure& structure, const std::string& name);
    StreamImpl(const StreamImpl& other);
    StreamImpl& operator=(const StreamImpl& other);

    /// A new copy of the same class, elements included, held by nobody.
    virtual StreamImpl* clone() const = 0;

    /// Each is owned by the caller and must not outlive the storage.
    virtual StreamIteratorImpl* begin() = 0;
    virtual StreamIteratorImpl* end() = 0;
    virtual StreamIteratorImpl* cbegin() const = 0;
    virtual StreamIteratorImpl* cend() const = 0;

    virtual unsigned int elementCount() const = 0;

    /// Takes over the elements at the numbers from 0 up to the other's elementCount(); elements at other
    /// numbers or at complex indices are left out. False when one could not be set; the walk ends there.
    virtual bool mergeStream(const StreamImpl& other);

    /// Returns the flag before. It only travels with the stream; no storage consults it.
    virtual bool setUseDefaults(bool useDefaults);
    virtual bool useDefaults() const;

    /// Stores a copy of the handle's element. False, with nothing changed, when the handle is on another
    /// structure or has no data (an element of size 0 needs none). The handle may be on this stream.
    virtual bool setElement(Index index, const Handle& handle) = 0;

    /// Borrows the stored element; a handle without data when there is none.
    virtual Handle element(Index index) = 0;
    virtual bool hasElement(Index index) const = 0;
    virtual bool reindexElement(Index from, Index to) = 0;
    virtual bool swapElements(Index a, Index b) = 0;
    virtual bool removeElement(Index index) = 0;
    virtual bool setElementRange(Index first, Index last) = 0;
    virtual bool clear() = 0;

    /// Referenced by the stream.
    const Structure& structure() const { return *mStructure; }

    /// False, with nothing changed, when there are elements.
    bool setStructure(const Structure& structure);

    const std::string& name() const { return mName; }
    void setName(const std::string& name);

    const std::string& indexType() const { return mIndexType; }

    /// False, with nothing changed, when there are elements. Throws `Index::eUnknownIndexType`.
    bool setIndexType(const std::string& typeName);

    /// Deep-copies the handle's element to `dest`, whose former contents are not released. False when
    /// either is null; an element of size 0 needs neither.
    bool copyElementFromHandle(void* dest, const Handle& handle) const
    {
        if (structure().totalSize() == 0) // such an element has no block, and is copied all the same
            return true;
        if (!dest || !handle.hasData())
            return false;
        structure().fillWithDuplicateChunk(static_cast<char*>(dest), handle.data());
        return true;
    }

    using vumo::Debug::CRTP_Debug<StreamImpl, vumo::Debug::Print>::debug;
    using vumo::Debug::CRTP_Debug<StreamImpl, vumo::Debug::Footprint>::debug;

    /// The line that names the stream, its structure and its index type.
    static bool Debug(const StreamImpl* object, vumo::Debug::Print& request);
    static bool Debug(const StreamImpl* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    Ref<const Structure> mStructure; // never null
    std::string mName;
    std::string mIndexType;
    bool mUseDefaults = false;
};
} // namespace vumo::Data
