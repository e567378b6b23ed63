#include "vumo/accessor/detail/MetadataWriter.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/foundation/detail/Quoted.h"

namespace vumo::Data::detail
{
namespace
{
using AssociationsMap = std::map<std::string, Associations>;

/// Walks over all metadata of a file once.
class MetadataWriter
{
public:
    MetadataWriter(const MetadataForm& form, const Accessor::StructureSet& structures,
                   const AssociationsMap& associations, std::string& out, std::string& errors)
        : mForm(form),
          mStructures(structures),
          mAssociations(associations),
          mScene(associations.find(AccessorOvri::getSceneAssociationsName())),
          mOut(out),
          mErrors(errors)
    {
    }

    bool write()
    {
        return writeStructures() && (mForm.isSceneFirst ? writeScene() && writeNodes() : writeNodes() && writeScene());
    }

private:
    bool writeStructures()
    {
        for (const Structure* const structure : mStructures)
        {
            if (!mForm.appendStructure(*structure, mOut, mErrors))
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
        std::string faults;
        const bool isComplete = usesOnlyWhatIsWritten(entry.second, faults);
        const bool isWritten = mForm.appendAssociations(entry.first, entry.second, mOut, faults);
        mErrors += messagesOf(entry.first, faults);
        return isComplete && isWritten;
    }

    /// Says whether the structure of every stream is written, as elements cannot be read without it.
    bool usesOnlyWhatIsWritten(const Associations& associations, std::string& faults) const
    {
        bool isComplete = true;
        for (const Channel& channel : associations)
        {
            for (const Stream* const stream : channel)
            {
                const auto found = mStructures.find(&stream->structure());
                const bool isFound = found != mStructures.end();
                if (isFound && **found == stream->structure())
                    continue;
                isComplete = false;
                faults += "Structure " + quoted(stream->structure().name()) + " of stream " + quoted(stream->name()) +
                          " in channel " + quoted(channel.name()) +
                          (isFound ? " differs from the structure of that name that is to be written.\n"
                                   : " is not among the structures to be written.\n");
            }
        }
        return isComplete;
    }

    bool fail(const char* message)
    {
        mErrors += message;
        return false;
    }

    const MetadataForm& mForm;
    const Accessor::StructureSet& mStructures;
    const AssociationsMap& mAssociations;
    const AssociationsMap::const_iterator mScene;
    std::string& mOut;
    std::string& mErrors;
};
} // namespace

bool appendMetadata(const MetadataForm& form, const Accessor::StructureSet& structures,
                    const std::map<std::string, Associations>& associations, std::string& out, std::string& errors)
{
    return MetadataWriter(form, structures, associations, out, errors).write();
}
} // namespace vumo::Data::detail
