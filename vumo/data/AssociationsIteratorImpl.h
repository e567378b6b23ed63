#pragma once

#include "vumo/data/AssociationsImpl.h"
#include "vumo/data/ContainerIteratorImpl.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
/// What stands behind an `AssociationsIterator`: a position among the channels of an associations object.
class VUMO_EXPORT AssociationsIteratorImpl : public ContainerIteratorImpl<AssociationsImpl>
{
public:
    using ContainerIteratorImpl<AssociationsImpl>::ContainerIteratorImpl;

    static bool Debug(const AssociationsIteratorImpl* object, vumo::Debug::Print& request);
    static bool Debug(const AssociationsIteratorImpl* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
