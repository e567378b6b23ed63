#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/IterLocation.h"
#include "vumo/data/StreamImplMapped.h"
#include "vumo/data/StreamIteratorImpl.h"
#include "vumo/foundation/DebugFwd.h"

namespace vumo::Data
{
/// Walks a mapped storage in index order. Removing the element at its position invalidates it.
class VUMO_EXPORT StreamMappedIteratorImpl final : public StreamIteratorImpl
{
public:
    StreamMappedIteratorImpl(const StreamImplMapped& stream, IterLocation location);
    StreamMappedIteratorImpl(const StreamMappedIteratorImpl& other);

    StreamIteratorImpl& operator++() override;
    StreamIteratorImpl* operator++(int) override;
    bool valid() const override;
    StreamIteratorImpl* clone() const override;
    Index index() const override;
    const StreamImpl* myStream() const override;

    static bool Debug(const StreamMappedIteratorImpl* object, vumo::Debug::Print& request);
    static bool Debug(const StreamMappedIteratorImpl* object, vumo::Debug::Footprint& request);

private:
    StreamImplMapped* mStream; // borrowed
    StreamImplMapped::Elements::iterator mPosition;
};
} // namespace vumo::Data
