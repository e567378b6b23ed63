#include "edit/Transfer.h"

#include "core/Elements.h"
#include "core/Text.h"
#include "edit/Parts.h"

#include <vector>

using namespace vumo::Data;

namespace
{
/// A copy or a move.
class Transfer
{
public:
    Transfer(const Edit& edit, SceneFile& from, SceneFile& to)
        : mEdit(edit),
          mFrom(from),
          mTo(to),
          mSource(edit.from()),
          mTarget(edit.to()),
          mIsMove(edit.verb == Edit::kMove)
    {
    }

    void run()
    {
        Associations& source = mFrom.node(mSource.node);
        if (mSource.index)
            return putElement();
        if (mSource.stream)
            mFrom.stream(mSource); // says what is missing
        else if (mSource.channel)
            mFrom.channel(mSource);
        Associations& target = nodeToEdit(mTo, mTarget.node);
        if (mSource.stream)
            putStream(Channel(*source.findChannel(*mSource.channel)), *mSource.stream, target, *mTarget.channel,
                      *mTarget.stream);
        else if (mSource.channel)
            putChannel(source, *mSource.channel, target, *mTarget.channel);
        else
            putNode(source, target);
    }

private:
    void putNode(Associations& source, Associations& target)
    {
        std::vector<std::string> names;
        for (const Channel& channel : source)
            names.push_back(channel.name());
        for (const std::string& name : names)
            putChannel(source, name, target, name);
    }

    void putChannel(Associations& source, const std::string& name, Associations& target, const std::string& newName)
    {
        Channel channel = *source.findChannel(name);
        std::vector<std::string> names;
        for (const Stream* const stream : channel)
            names.push_back(stream->name());
        target.channel(newName);
        for (const std::string& streamName : names)
            putStream(channel, streamName, target, newName, streamName);
        if (mIsMove && channel.empty())
            source.removeChannel(name);
    }

    void putStream(Channel channel, const std::string& name, Associations& target, const std::string& newChannel,
                   const std::string& newName)
    {
        const bool isPut =
            ::putStream(mTo, *channel.findDataStream(name), newName, target.channel(newChannel), mEdit.merge);
        if (isPut && mIsMove)
            channel.removeDataStream(name);
    }

    void putElement()
    {
        const Stream& source = mFrom.stream(mSource);
        const Index index = indexFrom(mFrom, source, *mSource.index);
        Stream carrier(source.structure(), source.name()); // of this element alone, to change its structure
        carrier.setIndexType(source.indexType());
        carrier.setElement(index, elementAt(mFrom, source, *mSource.index));

        Stream& target = targetStream(source);
        const Index newIndex = indexFrom(mTo, target, *mTarget.index);
        if (target.hasElement(newIndex) &&
            !mayReplace(mTo, mEdit.merge, "the element at index " + inQuotes(*mTarget.index)))
            return;
        if (!carrier.rebase(target.structure()))
            throw mTo.failure(kNotWritten, "stream " + inQuotes(target.name()) + " is of another structure");
        target.setElement(newIndex, carrier.element(index));
        if (mIsMove)
            streamToEdit(mFrom, mSource).removeElement(index);
    }

    /// The stream that the element goes to; a new one like the source where there is none.
    Stream& targetStream(const Stream& source)
    {
        Channel channel = nodeToEdit(mTo, mTarget.node).channel(*mTarget.channel);
        if (!channel.findDataStream(*mTarget.stream))
        {
            Stream stream(source.structure(), *mTarget.stream);
            stream.setIndexType(source.indexType());
            channel.setDataStream(stream);
        }
        return streamToEdit(mTo, mTarget);
    }

    const Edit& mEdit;
    SceneFile& mFrom;
    SceneFile& mTo;
    const Address mSource;
    const Address mTarget;
    const bool mIsMove;
};
} // namespace

void transfer(const Edit& edit, SceneFile& from, SceneFile& to)
{
    Transfer(edit, from, to).run();
}
