#pragma once

#include "vumo/accessor/AccessorFactoryBase.h"
#include "vumo/foundation/DebugFwd.h"

#include <memory>
#include <string>

namespace vumo::Data
{
/// Makes accessors of type T. One static object registers them:
///
///     static const AccessorFactory<MyAccessor> myFactory("ext");
template <class T>
class AccessorFactory : public AccessorFactoryBase
{
public:
    explicit AccessorFactory(const std::string& extension) : AccessorFactoryBase(extension) {}

    std::unique_ptr<Accessor> create() const override { return std::make_unique<T>(); }

    static bool Debug(const AccessorFactory* object, vumo::Debug::Print& request)
    {
        return !object || AccessorFactoryBase::Debug(object, request);
    }

    static bool Debug(const AccessorFactory* object, vumo::Debug::Footprint& request)
    {
        return !object || AccessorFactoryBase::Debug(object, request);
    }
};
} // namespace vumo::Data
