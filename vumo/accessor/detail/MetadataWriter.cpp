#include "vumo/accessor/detail/MetadataWriter.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/Quoted.h"

namespace vumo::Data::detail
{
namespace
{
using AssociationsMap = std::map<std::string, Associations>;

std::string textOf(const Channel& channel, const Stream& stream)
{
    return "stream " + quoted(stream.name()) + " in channel " + quoted(channel.name());
}

/// Writes all metadata of a file. Structures that streams use though nobody named them are written after the others:
/// without them their elements could not be read again.
class MetadataWriter
{
public:
    MetadataWriter(const MetadataForm& form, const AccessorState& metadata, std::string& out, std::string& errors)
        : mForm(form),
          mStructures(metadata.structures),
          mAssociations(metadata.associations),
          mScene(mAssociations.find(AccessorOvri::getSceneAssociationsName())),
          mNumbers(metadata.numbers),
          mOut(out),
          mErrors(errors)
    {
    }

    bool write()
    {
        findMoreStructures();
        return writeStructures() && (mForm.isSceneFirst ? writeScene() && writeNodes() : writeNodes() && writeScene());
    }

private:
    /// The first stream that uses a structure.
    struct User
    {
        const std::string* node;
        std::string text;
    };

    void findMoreStructures()
    {
        for (const auto& [node, associations] : mAssociations)
        {
            for (const Channel& channel : associations)
            {
                for (const Stream* const stream : channel)
                {
                    const Structure* const used = &stream->structure();
                    if (mStructures.count(used) == 0 && mMore.count(used) == 0)
                        mMore[used] = {&node, textOf(channel, *stream)};
                }
            }
        }
    }

    bool writeStructures()
    {
        for (const Structure* const structure : mStructures)
        {
            if (!mForm.appendStructure(*structure, mOut, mErrors))
                return fail(mForm.structureFailed);
        }
        for (const auto& [structure, user] : mMore)
        {
            std::string faults;
            if (mForm.appendStructure(*structure, mOut, faults))
                continue;
            mErrors += messagesOf(*user.node, faults + "It is the structure of " + user.text + ".\n");
            return fail(mForm.structureFailed);
        }
        return true;
    }

    bool writeScene() { return mScene == mAssociations.end() || writeEntry(*mScene) || fail(mForm.sceneFailed); }

    bool writeNodes()
    {
        for (auto entry = mAssociations.begin(); entry != mAssociations.end(); ++entry)
        {
            if (entry != mScene && !writeEntry(*entry))
                return fail(mForm.nodeFailed);
        }
        return true;
    }

    /// The metadata of one node, or of the scene. Reports all that is wrong with it.
    bool writeEntry(const AssociationsMap::value_type& entry)
    {
        std::string faults; // collected first, as the heading with the node's name comes before them
        const bool isClear = usesOneStructureOfAName(entry.second, faults);
        const bool isWritten = mForm.appendAssociations(entry.first, entry.second, mNumbers, mOut, faults);
        mErrors += messagesOf(entry.first, faults);
        return isClear && isWritten;
    }

    /// Says whether the structure that is written under the name of a stream's structure always is an equal one.
    bool usesOneStructureOfAName(const Associations& associations, std::string& faults) const
    {
        bool isClear = true;
        for (const Channel& channel : associations)
        {
            for (const Stream* const stream : channel)
            {
                const Structure& used = stream->structure();
                const auto given = mStructures.find(&used);
                if (used == (given != mStructures.end() ? **given : *mMore.find(&used)->first))
                    continue;
                isClear = false;
                faults += "Structure " + quoted(used.name()) + " of " + textOf(channel, *stream) +
                          " differs from the structure of that name that is to be written.\n";
            }
        }
        return isClear;
    }

    bool fail(const char* message) { return refuse(mErrors, message); }

    const MetadataForm& mForm;
    const Accessor::StructureSet& mStructures;
    const AssociationsMap& mAssociations;
    const AssociationsMap::const_iterator mScene;
    const eNumbers mNumbers;
    std::map<const Structure*, User, Accessor::StructureNameLessThan> mMore; // that no caller named
    std::string& mOut;
    std::string& mErrors;
};
} // namespace

bool appendMetadata(const MetadataForm& form, const AccessorState& metadata, std::string& out, std::string& errors)
{
    return MetadataWriter(form, metadata, out, errors).write();
}
} // namespace vumo::Data::detail
