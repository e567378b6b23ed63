#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/RefCounted.h"

#include <string>

namespace vumo::Data
{
/// An index that is more than one number: the base of what an `Index` can hold beside a plain number.
///
/// Derive from `CRTP_IndexType<T>`, which supplies clone(), typeName() and the creator to be registered.
/// Values are never changed once an Index holds them. Values of different classes are never equal; their
/// classes follow `std::type_info::before`, which is fixed for the life of the process.
class VUMO_EXPORT IndexType : public RefCounted
{
public:
    IndexType();
    IndexType(const IndexType& other);
    IndexType& operator=(const IndexType& other) = default;
    ~IndexType() override;

    /// A new copy of the same class, held by nobody.
    virtual IndexType* clone() const = 0;

    /// The text form, which the type's creator reads back.
    virtual std::string asString() const = 0;

    /// Says whether values of the type could address dense storage, and how many places would lie from
    /// this value to the other, both included; 0 where that has no meaning.
    virtual bool supportsDenseMode() const = 0;
    virtual unsigned int denseSpaceBetween(const IndexType& other) const = 0;

    virtual bool operator==(const IndexType& other) const = 0;
    virtual bool operator!=(const IndexType& other) const = 0;
    virtual bool operator<(const IndexType& other) const = 0;
    virtual bool operator<=(const IndexType& other) const = 0;
    virtual bool operator>(const IndexType& other) const = 0;
    virtual bool operator>=(const IndexType& other) const = 0;

    /// The name under which the type is registered.
    virtual std::string typeName() const = 0;

    static bool Debug(const IndexType* object, vumo::Debug::Print& request);
    static bool Debug(const IndexType* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
