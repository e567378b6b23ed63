#pragma once

#include "core/Address.h"
#include "core/Failure.h"
#include "core/Session.h"
#include "vumo/accessor/Accessor.h"
#include "vumo/data/Stream.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// A scene file and its metadata. What is not read stays in the file as it is, and numbers stay exact. Whatever fails
/// throws a `Failure` that names the file once.
class SceneFile
{
public:
    enum eUse
    {
        kLook,
        kEdit,   ///< the file must be writable, too
        kRestore ///< likewise, and that an interrupted save was undone is told by others
    };

    /// What is to be said about a scene that isEmpty().
    static constexpr const char* kNoMetadata =
        "there is no metadata yet; set --add and import make some, or a program that uses the library";

    /// Sees that the file can be used; reads nothing.
    SceneFile(const Session& session, const std::string& fileName, eUse use = kLook);

    /// The name of the undo record that a save leaves which is interrupted, by whatever link the file is named. Empty
    /// when nothing stands there.
    static std::string undoRecordOf(const std::string& fileName);

    /// What the file holds, block by block, without parsing values; what was read is forgotten. Of a kind of files that
    /// a plug-in brings all is read, and nothing is known of the text that it stands in: the blocks have no format.
    /// They are there until the next read.
    const std::vector<vumo::Data::ListedBlock>& list();

    /// Reads the metadata of these nodes, or of all for null. Tells if a save was undone for it that was interrupted.
    void read(const std::set<std::string>* nodes = nullptr);

    /// Reads the metadata of one node.
    void readNode(const std::string& node);

    /// Reads the metadata of the nodes whose names pass.
    void readSelected(const std::vector<std::string>& patterns);

    vumo::Data::Accessor& metadata() { return *mAccessor; }
    const vumo::Data::Accessor& metadata() const { return *mAccessor; }
    const std::string& name() const { return mFileName; }

    bool isEmpty() const;

    /// A checksum of the metadata as they were read, in so many hexadecimal digits.
    static constexpr int kTailDigits = 16;
    std::string tail() const;

    /// What a block is called that cannot be read, and why it cannot; ends with a newline.
    static std::string unreadableText(const vumo::Data::UnreadBlock& block);

    /// Tells what cannot be read of what was to be read. Returns kBadInput if there is any, else kDone.
    eExitCode tellUnreadable(Session& session) const;

    /// What is at that address, owned by the metadata. A `Failure` names the nearest names of what there is.
    vumo::Data::Associations& node(const std::string& name);
    vumo::Data::Channel& channel(const Address& address);
    vumo::Data::Stream& stream(const Address& address);

    /// Writes the metadata back into the file.
    void write();

    /// What that would do to it.
    vumo::Data::Accessor::WriteCost estimateWrite() const;

    /// A failure of this file.
    Failure failure(eExitCode code, const std::string& message) const;

private:
    Failure writeFailure(const std::string& messages) const;
    Failure readFailure(const std::string& messages) const;

    const Session* mSession;
    std::string mFileName;
    eUse mUse;
    std::unique_ptr<vumo::Data::Accessor> mAccessor;
    std::vector<vumo::Data::ListedBlock> mListing; // of a plug-in's kind of files
};
