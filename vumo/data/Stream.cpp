#include "vumo/data/Stream.h"

#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamImplMapped.h"
#include "vumo/data/detail/NamedSet.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/OwnedText.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"
#include "vumo/foundation/detail/Text.h"

#include <stdexcept>
#include <utility>

namespace vumo::Data
{
namespace
{
/// The storage of a stream, if it is one of the library's: these can do more than the interface of all storages says.
/// Both are null for any other.
struct Storage
{
    explicit Storage(StreamImpl* impl)
        : dense(dynamic_cast<StreamImplDense*>(impl)),
          mapped(dense ? nullptr : dynamic_cast<StreamImplMapped*>(impl))
    {
    }

    StreamImplDense* const dense;
    StreamImplMapped* const mapped;
};

/// Lets a storage describe itself: called for any StreamImpl, debug() only gives the line that all have alike.
template <class Request>
bool debugStorage(StreamImpl* impl, Request& request)
{
    const Storage storage(impl);
    if (storage.dense)
        return storage.dense->debug(request);
    return storage.mapped ? storage.mapped->debug(request) : impl->debug(request);
}
} // namespace

const std::string Stream::kDebugHex = "hex";

const vumo::ObjectCount Stream::_objectsCreated = vumo::Counted<Stream>::objectsCreated();
const vumo::ObjectCount Stream::_objectsAlive = vumo::Counted<Stream>::objectsAlive();

Stream::Stream() : mImpl(new StreamImplMapped()) {}

Stream::Stream(const Structure& structure, const std::string& name) : mImpl(new StreamImplMapped(structure, name)) {}

Stream::Stream(StreamImpl* impl) : mImpl(impl)
{
    if (!impl)
        throw std::invalid_argument("Null implementation of a Stream.");
}

Stream& Stream::operator=(const Stream& other)
{
    if (name() != other.name())
        ++detail::theRenameCount; // a channel may hold this object, in the order of names
    mImpl = other.mImpl;
    return *this;
}

bool Stream::makeUnique()
{
    if (!mImpl->isShared())
        return false;
    mImpl = Ref<StreamImpl>(mImpl->clone());
    return true;
}

unsigned int Stream::elementCount() const
{
    return mImpl->elementCount();
}

bool Stream::setElement(Index index, const Handle& handle)
{
    return mImpl->setElement(std::move(index), handle);
}

Handle Stream::element(Index index) const
{
    return mImpl->element(std::move(index));
}

bool Stream::hasElement(Index index) const
{
    return mImpl->hasElement(std::move(index));
}

bool Stream::removeElement(Index index)
{
    return mImpl->removeElement(std::move(index));
}

bool Stream::reindexElement(Index from, Index to)
{
    return mImpl->reindexElement(std::move(from), std::move(to));
}

bool Stream::swapElements(Index a, Index b)
{
    return mImpl->swapElements(std::move(a), std::move(b));
}

bool Stream::setElementRange(Index first, Index last)
{
    return mImpl->setElementRange(std::move(first), std::move(last));
}

bool Stream::clear()
{
    return mImpl->clear();
}

StreamIterator Stream::begin() const
{
    return StreamIterator(mImpl->begin());
}

StreamIterator Stream::end() const
{
    return StreamIterator(mImpl->end());
}

ElementView Stream::elementView() const
{
    const StreamImplDense* const dense = Storage(mImpl.get()).dense;
    return dense ? dense->elementView() : ElementView();
}

unsigned int Stream::setElements(const unsigned int* indices, const ElementView& elements)
{
    if (elements.empty())
        return 0;
    Handle handle(*elements.structure(), nullptr); // one for all: each would reference the structure
    for (unsigned int i = 0; i < elements.size(); ++i)
    {
        handle.pointToData(elements[i], false);
        if (!mImpl->setElement(indices[i], handle))
            return i;
    }
    return elements.size();
}

unsigned int Stream::getElements(const unsigned int* indices, const ElementView& elements) const
{
    if (elements.structure() != &structure())
        return 0;
    unsigned int found = 0;
    const std::vector<char*> sources = elementBlocks(indices, elements.size());
    for (unsigned int i = 0; i < elements.size(); ++i)
    {
        char* const dest = elements[i];
        const char* const source = sources[i];
        found += source ? 1 : 0;
        if (source == dest) // the block is the element itself
            continue;
        structure().destroyChunk(dest);
        if (source)
            structure().fillWithDuplicateChunk(dest, source);
        else
            structure().fillWithDefaultChunk(dest);
    }
    return found;
}

std::vector<unsigned int> Stream::numericIndices() const
{
    std::vector<unsigned int> indices;
    indices.reserve(elementCount());
    const StreamIterator last = end();
    for (StreamIterator position = begin(); position != last; ++position) // elements without size are never valid()
    {
        const Index index = position.index();
        if (index.isNumber())
            indices.push_back(index.index());
    }
    return indices;
}

const Member* Stream::findMember(const char* name) const
{
    for (unsigned int i = 0; i < structure().memberCount(); ++i)
    {
        const Member* const member = structure().member(i);
        if (name && detail::equalTexts(Member::name(member), name))
            return member;
    }
    return nullptr;
}

std::vector<char*> Stream::elementBlocks(const unsigned int* indices, unsigned int count) const
{
    // A handle for each would reference the structure: the storages of the library can be asked without.
    std::vector<char*> blocks(count);
    const Storage storage(mImpl.get());
    for (unsigned int i = 0; i < count; ++i)
    {
        if (storage.mapped)
            blocks[i] = storage.mapped->elementBlock(indices[i]);
        else if (storage.dense)
            blocks[i] = indices[i] < storage.dense->elementCount() ? storage.dense->elementAddr(indices[i]) : nullptr;
        else
            blocks[i] = mImpl->element(indices[i]).data();
    }
    return blocks;
}

void Stream::createMissingElements(const unsigned int* indices, unsigned int count)
{
    StreamImplMapped* const mapped = Storage(mImpl.get()).mapped;
    const Handle defaults(structure()); // other storages take elements from handles only
    for (unsigned int i = 0; i < count; ++i)
    {
        if (mapped && !mapped->elementBlock(indices[i]))
            mapped->newElement(indices[i]);
        else if (!mapped && !mImpl->hasElement(indices[i]))
            mImpl->setElement(indices[i], defaults);
    }
}

unsigned int Stream::setStrings(const Member& member, const unsigned int* indices, unsigned int count,
                                const char* const* values)
{
    const std::size_t perElement = Member::length(&member);
    std::vector<OwnedText> texts(count * perElement); // all copied before any of the stream's is released
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i].reset(detail::duplicateText(values[i]));

    createMissingElements(indices, count);
    unsigned int written = 0;
    auto next = texts.begin();
    for (char* const block : elementBlocks(indices, count))
    {
        for (unsigned int i = 0; block && i < perElement; ++i)
            Member::replaceString(block + Member::offset(&member, i), std::move(next[i]));
        next += static_cast<std::ptrdiff_t>(perElement);
        written += block ? 1 : 0;
    }
    return written;
}

const std::string& Stream::name() const
{
    return mImpl->name();
}

const Structure& Stream::structure() const
{
    return mImpl->structure();
}

bool Stream::setStructure(const Structure& structure)
{
    return mImpl->setStructure(structure);
}

bool Stream::rebase(const Structure& structure)
{
    if (&structure == &this->structure())
        return true;
    if (structure != this->structure())
        return false;
    const Ref<StreamImpl> rebased(isDense() ? static_cast<StreamImpl*>(new StreamImplDense(*mImpl))
                                            : new StreamImplMapped(*mImpl)); // without elements
    rebased->setStructure(structure);
    Handle handle(structure, nullptr);
    for (auto [index, element] : elements())
    {
        handle.pointToData(element.data(), false);
        if (!rebased->setElement(index, handle))
            return false;
    }
    mImpl = rebased;
    return true;
}

const std::string& Stream::indexType() const
{
    return mImpl->indexType();
}

bool Stream::setIndexType(const std::string& typeName)
{
    Index::creator(typeName);             // throws for a type that nobody knows, before anything has changed
    const Ref<StreamImpl> before = mImpl; // `typeName` may be a part of it
    if (typeName == indexType())
        return true;
    if (elementCount() > 0)
        return false;
    if (!Storage(mImpl.get()).mapped)
        mImpl = Ref<StreamImpl>(new StreamImplMapped(*mImpl));
    return mImpl->setIndexType(typeName);
}

bool Stream::isDense() const
{
    return Storage(mImpl.get()).dense != nullptr;
}

bool Stream::useDenseStorage(bool useDense)
{
    if (isDense() == useDense)
        return true;

    const bool wasEmpty = elementCount() == 0;
    StreamImpl* const impl = useDense ? static_cast<StreamImpl*>(new StreamImplDense(structure(), name()))
                                      : new StreamImplMapped(structure(), name());
    const Ref<StreamImpl> converted(impl);
    const StreamIterator last = end();
    for (StreamIterator position = begin(); position != last; ++position)
    {
        const bool isKept = converted->setElement(position.index(), *position);
        if (!isKept && position->hasData())
            return false; // there is no place for it: the stream keeps the storage that it has
    }
    mImpl = converted;
    return wasEmpty;
}

bool Stream::setUseDefaults(bool useDefaults)
{
    return mImpl->setUseDefaults(useDefaults);
}

bool Stream::useDefaults() const
{
    return mImpl->useDefaults();
}

bool Stream::mergeStream(const Stream& other)
{
    return mImpl->mergeStream(*other.mImpl);
}

bool Stream::Debug(const Stream* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<Stream>("vumo::Data::Stream", request);
    StreamImpl::Debug(object->mImpl.get(), request);
    return debugStorage(object->mImpl.get(), request);
}

bool Stream::Debug(const Stream* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<Stream>(request);
    request.addObject(object, sizeof(*object));
    return debugStorage(object->mImpl.get(), request);
}
} // namespace vumo::Data
