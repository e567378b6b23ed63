#include "vumo/data/AssociationsIterator.h"

#include "vumo/data/Associations.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <stdexcept>

namespace vumo::Data
{
AssociationsIterator::AssociationsIterator(const Associations& associations, IterLocation location)
    : mImpl(associations.impl(), location)
{
}

Channel& AssociationsIterator::current(const char* operation) const
{
    if (!mImpl.valid())
        throw std::out_of_range(operation);
    return const_cast<Channel&>(*mImpl.position()); // sets hand out their entries as const
}

Channel& AssociationsIterator::operator*() const
{
    return current("AssociationsImpl::Iterator::operator*");
}

Channel* AssociationsIterator::operator->()
{
    return &current("AssociationsImpl::Iterator::operator->");
}

const Channel* AssociationsIterator::operator->() const
{
    return &current("const AssociationsImpl::Iterator::operator->");
}

AssociationsIterator& AssociationsIterator::operator++()
{
    mImpl.advance();
    return *this;
}

AssociationsIterator AssociationsIterator::operator++(int)
{
    return *this;
}

bool AssociationsIterator::Debug(const AssociationsIterator* object, vumo::Debug::Print& request)
{
    if (!object)
        return true;
    std::ostream& line = request << "AssociationsIterator ";
    if (object->valid())
        line << "positioned at Channel " << (**object).name() << ".";
    else
        line << "postioned at the end."; // spelled as it always was: users may look for it
    line << "\n";
    return true;
}

bool AssociationsIterator::Debug(const AssociationsIterator* object, vumo::Debug::Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}

bool AssociationsIteratorImpl::Debug(const AssociationsIteratorImpl* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::AssociationsIteratorImpl", object, request);
}

bool AssociationsIteratorImpl::Debug(const AssociationsIteratorImpl* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
