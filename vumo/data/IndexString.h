#pragma once

#include "vumo/data/CRTP_IndexType.h"
#include "vumo/foundation/CRTP_Debug.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <string>

namespace vumo::Data
{
/// An index that is a text, for data that is addressed by name. Any text is an index, the empty one too.
class VUMO_EXPORT IndexString : public CRTP_IndexType<IndexString>,
                                public vumo::Debug::CRTP_Debug<IndexString, vumo::Debug::Print>,
                                public vumo::Debug::CRTP_Debug<IndexString, vumo::Debug::Footprint>,
                                private Counted<IndexString>
{
public:
    IndexString() = default;
    explicit IndexString(const std::string& text);
    IndexString& operator=(const std::string& text);

    const std::string& indexString() const { return mText; }

    std::string asString() const override;

    /// False, and no places lie between texts.
    bool supportsDenseMode() const override;
    unsigned int denseSpaceBetween(const IndexType& other) const override;

    bool operator==(const IndexType& other) const override;
    bool operator!=(const IndexType& other) const override;
    bool operator<(const IndexType& other) const override;
    bool operator<=(const IndexType& other) const override;
    bool operator>(const IndexType& other) const override;
    bool operator>=(const IndexType& other) const override;

    /// Byte by byte, then the shorter text first.
    virtual bool operator==(const IndexString& other) const;
    virtual bool operator!=(const IndexString& other) const;
    virtual bool operator<(const IndexString& other) const;
    virtual bool operator<=(const IndexString& other) const;
    virtual bool operator>(const IndexString& other) const;
    virtual bool operator>=(const IndexString& other) const;

    using vumo::Debug::CRTP_Debug<IndexString, vumo::Debug::Print>::debug;
    using vumo::Debug::CRTP_Debug<IndexString, vumo::Debug::Footprint>::debug;

    static bool Debug(const IndexString* object, vumo::Debug::Print& request);
    static bool Debug(const IndexString* object, vumo::Debug::Footprint& request);

    static const std::string myTypeName;
    static const bool myRegistration;
    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    std::string mText;
};
} // namespace vumo::Data
