#include "vumo/accessor/AccessorFactoryBase.h"

#include <cctype>

namespace vumo::Data
{
AccessorFactoryBase::Registry& AccessorFactoryBase::registry()
{
    static Registry theRegistry = [] {
        Registry registry;
        registry.max_load_factor(1.0F);
        return registry;
    }();
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
    for (auto entry = registry().begin(); entry != registry().end();)
    {
        if (entry->second == this)
            entry = registry().erase(entry);
        else
            ++entry;
    }
}
} // namespace vumo::Data
