#pragma once

#include "vumo/data/Channel.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/RefCounted.h"

#include <atomic>
#include <set>
#include <string>

namespace vumo::Data
{
/// What stands behind an `Associations`: its channels.
class VUMO_EXPORT AssociationsImpl : public RefCounted, private Counted<AssociationsImpl>
{
public:
    /// Orders channels by name, byte by byte.
    struct VUMO_EXPORT ChannelCompare
    {
        using is_transparent = void;
        bool operator()(const Channel& left, const Channel& right) const { return left.name() < right.name(); }
        bool operator()(const Channel& left, const std::string& right) const { return left.name() < right; }
        bool operator()(const std::string& left, const Channel& right) const { return left < right.name(); }
    };

    /// Names are unique, but for one case that must lose nothing: a rename through a channel that another
    /// object shares can give two entries one name.
    using Set = std::multiset<Channel, ChannelCompare>;

    AssociationsImpl();

    /// Copies the set; each channel goes on sharing its implementation.
    AssociationsImpl(const AssociationsImpl& other);
    AssociationsImpl& operator=(const AssociationsImpl&) = delete;

    /// Makes every channel unique. Returns whether one had to be copied.
    bool makeUnique();

    /// In name order.
    const Set& entries() const { return mChannels; }

    Channel channel(const std::string& name);
    Channel* findChannel(const std::string& name) const;
    Channel* channelAt(unsigned int n) const;
    void setChannel(const Channel& channel);
    bool removeChannel(const std::string& name);
    bool renameChannel(const std::string& oldName, const std::string& newName);

    static bool Debug(const AssociationsImpl* object, vumo::Debug::Print& request);
    static bool Debug(const AssociationsImpl* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    Set mChannels;
    mutable std::atomic<unsigned long long>
        mOrderedAt; // the rename count at which the order was last known to be right
};
} // namespace vumo::Data
