#pragma once

#include "vumo/data/Index.h"
#include "vumo/data/IndexType.h"
#include "vumo/foundation/DebugFwd.h"

#include <string>

namespace vumo::Data
{
/// What every index type has alike, for a class T that derives from it.
///
/// T has a copy constructor, a constructor from its text form, which throws `Index::eCreationErrors`, and
/// the statics `myTypeName` and `myRegistration`, the latter initialised with
/// `Index::registerType(myTypeName, &CRTP_IndexType<T>::doCreate)`. A type that may go before the library does is
/// registered by an `IndexTypeRegistrar<T>` instead.
template <class T>
class CRTP_IndexType : public IndexType
{
public:
    IndexType* clone() const override { return new T(static_cast<const T&>(*this)); }

    std::string typeName() const override { return T::myTypeName; }

    /// An index that holds the T of that text.
    static Index doCreate(const std::string& text) { return Index::adopt(new T(text)); }

    static bool Debug(const CRTP_IndexType* object, vumo::Debug::Print& request)
    {
        return IndexType::Debug(object, request);
    }

    static bool Debug(const CRTP_IndexType* object, vumo::Debug::Footprint& request)
    {
        return IndexType::Debug(object, request);
    }
};
} // namespace vumo::Data
