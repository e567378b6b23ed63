#include "vumo/accessor/AccessorFactoryBase.h"

#include "vumo/foundation/detail/DebugObject.h"

#include <cctype>

namespace vumo::Data
{
AccessorFactoryBase::Registry& AccessorFactoryBase::registry()
{
    // Made by the first factory, in whatever order the statics of the library are made.
    static Registry theRegistry; // with the maximum load factor that it has by default, 1.0
    return theRegistry;
}

std::string AccessorFactoryBase::lowerCase(std::string extension)
{
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

AccessorFactoryBase::AccessorFactoryBase(const std::string& extension)
{
    if (!extension.empty())
        registry().emplace(lowerCase(extension), this);
}

AccessorFactoryBase::~AccessorFactoryBase()
{
    // By its value, as the extension may be another factory's that was there first.
    for (auto entry = registry().begin(); entry != registry().end();)
    {
        if (entry->second == this)
            entry = registry().erase(entry);
        else
            ++entry;
    }
}

bool AccessorFactoryBase::Debug(const AccessorFactoryBase* object, vumo::Debug::Print& request)
{
    if (object)
        return vumo::detail::debugObject("vumo::Data::AccessorFactoryBase", object, request);
    request.beginSection("Extensions of Scene Files");
    for (const std::string& extension : Accessor::supportedExtensions())
        request << extension.c_str() << "\n";
    request.endSection();
    return true;
}

bool AccessorFactoryBase::Debug(const AccessorFactoryBase* object, vumo::Debug::Footprint& request)
{
    if (!object)
        request.addMember(&registry(), sizeof(Registry) + registry().size() * sizeof(Registry::value_type));
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
