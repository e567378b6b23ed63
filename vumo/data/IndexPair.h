#pragma once

#include "vumo/data/CRTP_IndexType.h"
#include "vumo/foundation/CRTP_Debug.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <string>

namespace vumo::Data
{
/// An index of two numbers, for data that is addressed by two coordinates such as a face and a vertex.
class VUMO_EXPORT IndexPair : public CRTP_IndexType<IndexPair>,
                              public vumo::Debug::CRTP_Debug<IndexPair, vumo::Debug::Print>,
                              public vumo::Debug::CRTP_Debug<IndexPair, vumo::Debug::Footprint>,
                              private Counted<IndexPair>
{
public:
    /// Leaves both numbers unset.
    IndexPair() = default;
    IndexPair(unsigned int first, unsigned int second);

    /// Reads "first second": decimal digits between blanks, tabs or carriage returns.
    /// Throws `Index::eCreationErrors`.
    explicit IndexPair(const std::string& text);

    void getIndexPair(unsigned int& first, unsigned int& second) const;

    std::string asString() const override;
    bool supportsDenseMode() const override;

    /// The product of the places between the firsts and between the seconds, in 32-bit arithmetic.
    unsigned int denseSpaceBetween(const IndexType& other) const override;

    bool operator==(const IndexType& other) const override;
    bool operator!=(const IndexType& other) const override;
    bool operator<(const IndexType& other) const override;
    bool operator<=(const IndexType& other) const override;
    bool operator>(const IndexType& other) const override;
    bool operator>=(const IndexType& other) const override;

    /// The first numbers decide; the second ones do where those are equal.
    virtual bool operator==(const IndexPair& other) const;
    virtual bool operator!=(const IndexPair& other) const;
    virtual bool operator<(const IndexPair& other) const;
    virtual bool operator<=(const IndexPair& other) const;
    virtual bool operator>(const IndexPair& other) const;
    virtual bool operator>=(const IndexPair& other) const;

    using vumo::Debug::CRTP_Debug<IndexPair, vumo::Debug::Print>::debug;
    using vumo::Debug::CRTP_Debug<IndexPair, vumo::Debug::Footprint>::debug;

    static bool Debug(const IndexPair* object, vumo::Debug::Print& request);
    static bool Debug(const IndexPair* object, vumo::Debug::Footprint& request);

    static const std::string myTypeName;
    static const bool myRegistration;
    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    unsigned int mFirst;
    unsigned int mSecond;
};
} // namespace vumo::Data
