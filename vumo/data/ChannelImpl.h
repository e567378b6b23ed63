#pragma once

#include "vumo/data/Index.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/RefCounted.h"

#include <atomic>
#include <set>
#include <string>

namespace vumo::Data
{
class Stream;

/// What stands behind a `Channel`: its name and the streams it owns.
class VUMO_EXPORT ChannelImpl : public RefCounted, private Counted<ChannelImpl>
{
public:
    /// Orders streams by name, byte by byte. Throws `std::invalid_argument` for a null stream.
    struct VUMO_EXPORT StreamCompare
    {
        using is_transparent = void;
        bool operator()(const Stream* left, const Stream* right) const;
        bool operator()(const Stream* left, const std::string& right) const;
        bool operator()(const std::string& left, const Stream* right) const;
    };

    /// Names are unique, but for one case that must lose nothing: a rename through a stream that another
    /// channel shares can give two entries one name.
    using Set = std::multiset<Stream*, StreamCompare>;

    explicit ChannelImpl(const std::string& name = "Unnamed");

    /// Copies the name and makes new streams that share the elements of the other's.
    ChannelImpl(const ChannelImpl& other);
    ChannelImpl& operator=(const ChannelImpl&) = delete;
    ~ChannelImpl() override;

    /// Gives every stream elements of its own. Returns whether one had to be copied.
    bool makeUnique();

    const std::string& name() const { return mName; }
    void setName(const std::string& name);

    /// Owned by the channel, in name order.
    const Set& entries() const { return mStreams; }

    Stream* setDataStream(const Stream& stream);
    Stream* findDataStream(const std::string& name) const;
    Stream* dataStream(unsigned int n) const;
    bool removeDataStream(const std::string& name);
    bool renameDataStream(const std::string& oldName, const std::string& newName);
    bool addElement(const Index& index);
    bool removeElement(const Index& index);

    static bool Debug(const ChannelImpl* object, vumo::Debug::Print& request);
    static bool Debug(const ChannelImpl* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    Set mStreams;
    std::string mName;
    mutable std::atomic<unsigned long long>
        mOrderedAt; // the rename count at which the order was last known to be right
};
} // namespace vumo::Data
