#include "commands/Commands.h"
#include "core/BlockText.h"
#include "core/Elements.h"
#include "core/Listing.h"
#include "core/Rows.h"
#include "core/SceneFile.h"
#include "core/Text.h"
#include "core/Unmatched.h"
#include "vumo/data/Channel.h"
#include "vumo/data/StreamIterator.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <sstream>

using namespace vumo::Data;

namespace
{
struct DiffOptions
{
    std::string a;
    std::string b;
    double tolerance = -1; ///< nothing is that near
};

/// Things by their names.
template <class Part>
using Parts = std::map<std::string, const Part*>;

Parts<Structure> structuresOf(const SceneFile& scene)
{
    Parts<Structure> parts;
    for (const Structure* const structure : scene.metadata().structures())
        parts[structure->name()] = structure;
    return parts;
}

Parts<Associations> nodesOf(const SceneFile& scene)
{
    Parts<Associations> parts;
    for (const auto& [name, channels] : scene.metadata().associations())
        parts[name] = &channels;
    return parts;
}

/// The values of the handle's current member; a string alone is as it stands.
std::string plainText(const Handle& handle)
{
    const bool isString = handle.dataType() == Member::kString && handle.dataLength() == 1;
    return isString ? handle.str(0, kExact) : cellText(handle, {0, handle.dataLength()});
}

/// Says whether all numbers in one text are as near to those in the other.
bool areNear(const std::string& a, const std::string& b, double tolerance)
{
    std::istringstream numbers(a);
    std::istringstream others(b);
    for (std::string number, other; numbers >> number && others >> other;)
    {
        const long double step = std::strtold(number.c_str(), nullptr) - std::strtold(other.c_str(), nullptr);
        if (!(std::abs(step) <= tolerance))
            return false;
    }
    return true;
}

/// Compares what two scenes hold, and adds a row for each difference: "-" for what only A has, "+" for what only B has,
/// "~" for what differs.
class Comparison
{
public:
    /// Borrows the job.
    Comparison(const Job& job, double tolerance)
        : mSelection(job.session.selection()),
          mTolerance(tolerance),
          mRows(job, "differences", {"change", "kind", "node", "channel", "stream", "index", "member", "a", "b"})
    {
    }

    /// True when there are differences.
    bool compare(const SceneFile& a, const SceneFile& b)
    {
        if (mSelection.isAll())
        {
            compareParts("structure", 0, structuresOf(a), structuresOf(b), [this](const auto& one, const auto& other) {
                compareTexts("structure", layoutText(one), layoutText(other));
            });
            compareUnreadable(a, b);
        }
        compareParts("node", 0, nodesOf(a), nodesOf(b),
                     [this](const auto& one, const auto& other) { compareNodes(one, other); });
        return mHasFound;
    }

private:
    void add(const char* change, const std::string& kind, const Rows::Cell& a = {}, const Rows::Cell& b = {})
    {
        std::vector<Rows::Cell> cells = {change, kind};
        cells.insert(cells.end(), mAddress.begin(), mAddress.end());
        cells.insert(cells.end(), {a, b});
        mRows.add(cells);
        mHasFound = true;
    }

    void compareTexts(const char* kind, const std::string& a, const std::string& b)
    {
        if (a != b)
            add("~", kind, a, b);
    }

    /// Compares two sets of things, whose names are a part of the address.
    template <class Part, class Compare>
    void compareParts(const std::string& kind, std::size_t level, const Parts<Part>& a, const Parts<Part>& b,
                      const Compare& compare)
    {
        Parts<Part> all = a;
        all.insert(b.begin(), b.end());
        for (const auto& [name, part] : all)
        {
            mAddress[level] = name;
            const auto one = a.find(name);
            const auto other = b.find(name);
            if (one != a.end() && other != b.end())
                compare(*one->second, *other->second);
            else
                add(one != a.end() ? "-" : "+", kind);
        }
        mAddress[level].emplace<std::monostate>();
    }

    /// Byte by byte.
    void compareUnreadable(const SceneFile& a, const SceneFile& b)
    {
        const auto blocksOf = [](const std::vector<UnreadBlock>& unread) {
            Parts<UnreadBlock> parts;
            for (const UnreadBlock& block : unread)
            {
                const bool isNode = block.kind == UnreadBlock::kAssociations; // such a structure has no name
                parts[isNode ? block.name : "structure " + std::to_string(parts.size())] = &block;
            }
            return parts;
        };
        const std::vector<UnreadBlock> unread = a.metadata().unread();
        const std::vector<UnreadBlock> others = b.metadata().unread();
        compareParts("unreadable", 0, blocksOf(unread), blocksOf(others), [&](const auto& one, const auto& other) {
            if (blockBytes(a, one) != blockBytes(b, other))
                add("~", "unreadable");
        });
    }

    void compareNodes(const Associations& a, const Associations& b)
    {
        const auto channelsOf = [this](const Associations& channels) {
            Parts<Channel> parts;
            for (const Channel& channel : channels)
            {
                if (Selection::passes(mSelection.channels, channel.name()))
                    parts[channel.name()] = &channel;
            }
            return parts;
        };
        compareParts("channel", 1, channelsOf(a), channelsOf(b),
                     [this](const auto& one, const auto& other) { compareChannels(one, other); });
    }

    void compareChannels(const Channel& a, const Channel& b)
    {
        const auto streamsOf = [this](const Channel& channel) {
            Parts<Stream> parts;
            for (const Stream* const stream : channel)
            {
                if (Selection::passes(mSelection.streams, stream->name()))
                    parts[stream->name()] = stream;
            }
            return parts;
        };
        compareParts("stream", 2, streamsOf(a), streamsOf(b),
                     [this](const auto& one, const auto& other) { compareStreams(one, other); });
    }

    /// The elements of streams of other layouts are not compared.
    void compareStreams(const Stream& a, const Stream& b)
    {
        const std::string one = layoutText(a.structure());
        const std::string other = layoutText(b.structure());
        compareTexts("layout", one, other);
        compareTexts("index type", a.indexType(), b.indexType());
        if (one == other && a.indexType() == b.indexType())
            compareElements(a, b);
    }

    void compareElements(const Stream& a, const Stream& b)
    {
        StreamIterator one = a.cbegin();
        StreamIterator other = b.cbegin();
        while (one != a.cend() || other != b.cend())
        {
            const bool isInA = one != a.cend() && (other == b.cend() || !(other.index() < one.index()));
            const bool isInB = other != b.cend() && (one == a.cend() || !(one.index() < other.index()));
            mAddress[3] = (isInA ? one : other).index().asString();
            if (isInA && isInB)
                compareValues(*one, *other, a.structure());
            else
                add(isInA ? "-" : "+", "element");
            if (isInA)
                ++one;
            if (isInB)
                ++other;
        }
        mAddress[3].emplace<std::monostate>();
    }

    void compareValues(Handle a, Handle b, const Structure& structure)
    {
        for (unsigned int i = 0; a.setPositionByMemberIndex(i) && b.setPositionByMemberIndex(i); ++i)
        {
            if (areSame(a, b, *structure.member(i)))
                continue;
            mAddress[4] = std::string(Member::name(structure.member(i)));
            add("~", "value", plainText(a), plainText(b));
            mAddress[4].emplace<std::monostate>();
        }
    }

    bool areSame(const Handle& a, const Handle& b, const Member& member) const
    {
        const Member::eDataType type = Member::type(&member);
        const std::size_t size = std::size_t{Member::typeSize(type)} * Member::length(&member);
        if (type != Member::kString &&
            std::memcmp(a.data() + Member::offset(&member), b.data() + Member::offset(&member), size) == 0)
            return true;
        const std::string one = plainText(a);
        const std::string other = plainText(b);
        const bool isNumber = type != Member::kString && type != Member::kBoolean;
        return one == other || (isNumber && areNear(one, other, mTolerance));
    }

    const Selection& mSelection;
    const double mTolerance;
    Rows mRows;
    std::array<Rows::Cell, 5> mAddress; // node, or structure; channel, stream, index, member
    bool mHasFound = false;
};

eExitCode diff(Job& job, const DiffOptions& options)
{
    SceneFile a(job.session, options.a);
    SceneFile b(job.session, options.b);
    a.readSelected(job.session.selection().nodes);
    b.readSelected(job.session.selection().nodes);
    std::vector<ListedBlock> known = listingOf(a.metadata());
    const std::vector<ListedBlock> others = listingOf(b.metadata());
    known.insert(known.end(), others.begin(), others.end());
    tellUnmatched(job.session, known);
    return Comparison(job, options.tolerance).compare(a, b) ? kNo : kDone;
}
} // namespace

void addDiff(Session& session)
{
    Command command = session.addCommand("diff", "Compare two scenes, a line for each difference");
    const auto options = std::make_shared<DiffOptions>();
    command.addWord({"A", "a scene file"}, options->a);
    command.addWord({"B", "the other one"}, options->b);
    command.addNumber("--tolerance", options->tolerance, 0, std::numeric_limits<double>::infinity(), "NUMBER",
                      "take numbers for the same that are so near to each other");
    session.addSelection(command);
    session.addLockWait(command);
    session.addJson(command);
    session.setWork(
        command, [&session, options] { return once(session, [&options](Job& job) { return diff(job, *options); }); });
}
