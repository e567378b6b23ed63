#include "vumo/data/StreamImpl.h"

#include "vumo/data/detail/NamedSet.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
const vumo::ObjectCount StreamImpl::_objectsCreated = vumo::Counted<StreamImpl>::objectsCreated();
const vumo::ObjectCount StreamImpl::_objectsAlive = vumo::Counted<StreamImpl>::objectsAlive();

StreamImpl::StreamImpl() : StreamImpl(*Structure::create(), "Stream") {}

StreamImpl::StreamImpl(const Structure& structure, const std::string& name)
    : mStructure(&structure),
      mName(name),
      mIndexType(Index::theTypeName())
{
}

StreamImpl::StreamImpl(const StreamImpl& other) = default;

StreamImpl& StreamImpl::operator=(const StreamImpl& other)
{
    std::string name = other.mName;
    std::string indexType = other.mIndexType;
    mStructure = other.mStructure; // from here on nothing fails: derived classes keep elements of that structure
    mName.swap(name);
    ++detail::theRenameCount;
    mIndexType.swap(indexType);
    mUseDefaults = other.mUseDefaults;
    return *this;
}

bool StreamImpl::mergeStream(const StreamImpl& other)
{
    auto& source = const_cast<StreamImpl&>(other);   // its handles can be written through; these are not
    const unsigned int count = other.elementCount(); // before it grows: it may be this stream
    for (unsigned int i = 0; i < count; ++i)
    {
        const Handle handle = source.element(Index(i));
        if (handle.hasData() && !setElement(Index(i), handle))
            return false;
    }
    return true;
}

bool StreamImpl::setUseDefaults(bool useDefaults)
{
    const bool before = mUseDefaults;
    mUseDefaults = useDefaults;
    return before;
}

bool StreamImpl::useDefaults() const
{
    return mUseDefaults;
}

bool StreamImpl::setStructure(const Structure& structure)
{
    if (elementCount() > 0)
        return false;
    mStructure = Ref<const Structure>(&structure);
    return true;
}

void StreamImpl::setName(const std::string& name)
{
    mName = name;
    ++detail::theRenameCount;
}

bool StreamImpl::setIndexType(const std::string& typeName)
{
    Index::creator(typeName); // throws for a type that nobody knows, before anything has changed
    if (elementCount() > 0)
        return false;
    clear(); // a storage may keep memory without elements
    mIndexType = typeName;
    return true;
}

bool StreamImpl::Debug(const StreamImpl* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<StreamImpl>("vumo::Data::StreamImpl", request);
    request << "Data Stream '" << object->mName << "' uses structure '" << object->structure().name()
            << "' with index type '" << object->mIndexType << "'\n";
    return true;
}

bool StreamImpl::Debug(const StreamImpl* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<StreamImpl>(request);
    request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::Data
