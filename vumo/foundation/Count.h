#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Debug
{
/// A number that a class reports about itself.
class VUMO_EXPORT Count
{
public:
    Count() = default;

    Count& operator=(unsigned long value)
    {
        mValue = value;
        return *this;
    }

    unsigned long long value() const { return mValue; }

    static bool Debug(const Count* object, Print& request);
    static bool Debug(const Count* object, Footprint& request);

private:
    unsigned long long mValue = 0;
};
} // namespace vumo::Debug
