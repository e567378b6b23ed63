#include "vumo/accessor/Accessor.h"

#include "vumo/accessor/AccessorFactory.h"
#include "vumo/accessor/BinaryReader.h"
#include "vumo/accessor/OvriAsciiFileAccessor.h"
#include "vumo/accessor/OvriBinaryFileAccessor.h"
#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/AsciiReader.h"
#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/FileRecovery.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/data/detail/StructureRegistry.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>
#include <typeinfo>

namespace vumo::Data
{
namespace
{
/// One factory for each kind of scene file. They stand beside the function that looks factories up, because
/// a linker takes from a static library only the object files that something refers to.
const AccessorFactory<OvriAsciiFileAccessor> theAsciiFactory("oa");
const AccessorFactory<OvriBinaryFileAccessor> theBinaryFactory("ob");

/// Notices when somebody writes to a file while it is read, which takes no lock: what was read may then be neither the
/// old file nor the new one.
class WriteWatch
{
public:
    /// Begins to watch the file, of which nothing was read yet. Borrows the place.
    explicit WriteWatch(const detail::UndoPlace& place) : mPlace(place), mBefore(place.file) {}

    /// Says whether the file was written to since, or is being written to with an undo record. A file that was replaced
    /// as a whole was not: it is read as the one or as the other.
    bool hasSeenWriting() const
    {
        const detail::FileStamp now(mPlace.file);
        if (now.number != mBefore.number || now.device != mBefore.device)
            return false;
        return now.size != mBefore.size || now.seconds != mBefore.seconds || now.nanoseconds != mBefore.nanoseconds ||
               detail::mayBeHalfWritten(mPlace);
    }

private:
    const detail::UndoPlace& mPlace;
    const detail::FileStamp mBefore;
};

/// Asks for the cost of a write while it lives: whatever is thrown, the next write is one again.
class CostRequest
{
public:
    /// Borrows both.
    CostRequest(Accessor::WriteCost*& place, Accessor::WriteCost& cost) : mPlace(place) { place = &cost; }
    CostRequest(const CostRequest&) = delete;
    CostRequest& operator=(const CostRequest&) = delete;
    ~CostRequest() { mPlace = nullptr; }

private:
    Accessor::WriteCost*& mPlace;
};

/// Takes note of those structures that are read by now, with the nodes that use them.
void noteStructures(const Accessor::StructureSet& structures, std::vector<detail::FileBlock>& blocks)
{
    for (detail::FileBlock& block : blocks)
    {
        if (block.layout && block.state == detail::FileBlock::kUnread && structures.count(block.layout.get()) > 0)
            block.state = detail::FileBlock::kRead;
    }
}

/// An accessor for the file; null, with the reason appended to `errors`, when there is none for its extension.
std::unique_ptr<Accessor> newAccessor(const std::string& fileName, std::string& errors)
{
    std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(fileName);
    if (!accessor)
        errors += "No factory registered for type of file \"" + fileName + "\"";
    return accessor;
}
/// Says whether the library itself reads and writes such files.
bool isOfKnownKind(const Accessor& accessor)
{
    return dynamic_cast<const OvriAsciiFileAccessor*>(&accessor) != nullptr ||
           dynamic_cast<const OvriBinaryFileAccessor*>(&accessor) != nullptr;
}
} // namespace

struct Accessor::Impl : detail::AccessorState
{
};

bool Accessor::StructureNameLessThan::operator()(const Structure* a, const Structure* b) const
{
    if (!a || !b)
        throw std::invalid_argument("Null Structure found in StructureSet.");
    return std::strcmp(a->name(), b->name()) < 0;
}

std::string Accessor::Failure::systemReason() const
{
    return detail::systemReason(systemError);
}

Accessor::Accessor() : mImpl(std::make_unique<Impl>()) {}

Accessor::~Accessor()
{
    for (const Structure* structure : mImpl->structures)
        structure->unref();
}

bool Accessor::write(std::string& errors) const
{
    errors += typeid(*this).name();
    errors += " does not implement write";
    return false;
}

bool Accessor::estimateWrite(WriteCost& cost, std::string& errors) const
{
    cost = {};
    if (!isOfKnownKind(*this)) // its write() would change the file
        return detail::refuse(errors, "Files like " + fileName() + " can be written, but no write can be estimated.\n");
    const CostRequest request(mImpl->cost, cost);
    return write(errors);
}

bool Accessor::isFileSupported(const std::string& /*fileName*/) const
{
    return true;
}

void Accessor::setDurability(eDurability durability)
{
    mImpl->durability = durability;
}

Accessor::eDurability Accessor::durability() const
{
    return mImpl->durability;
}

void Accessor::setNumbers(eNumbers numbers)
{
    mImpl->numbers = numbers;
}

eNumbers Accessor::numbers() const
{
    return mImpl->numbers;
}

void Accessor::setUnread(eUnread unread)
{
    mImpl->unread = unread;
}

std::vector<UnreadBlock> Accessor::unread() const
{
    std::vector<UnreadBlock> unread;
    for (const detail::FileBlock& block : mImpl->found.blocks)
    {
        if (mImpl->found.areKept && block.state == detail::FileBlock::kUnread)
            unread.push_back(block);
    }
    return unread;
}

void Accessor::setListing(eListing listing)
{
    mImpl->listing = listing;
}

Accessor::eListing Accessor::listing() const
{
    return mImpl->listing;
}

const std::vector<ListedBlock>& Accessor::listed() const
{
    return mImpl->listed;
}

void Accessor::setConflict(eConflict conflict)
{
    mImpl->conflict = conflict;
}

Accessor::eConflict Accessor::conflict() const
{
    return mImpl->conflict;
}

std::uint64_t Accessor::checksum() const
{
    return mImpl->checksum;
}

const Accessor::Failure& Accessor::failure() const
{
    return mImpl->failure;
}

void Accessor::setLockWait(unsigned int milliseconds)
{
    mImpl->lockWait = milliseconds;
}

unsigned int Accessor::lockWait() const
{
    return mImpl->lockWait;
}

bool Accessor::read(const std::string& fileName, std::string& errors)
{
    return read(fileName, nullptr, nullptr, errors);
}

bool Accessor::read(const std::string& fileName, const std::set<std::string>* structureNames,
                    const std::set<std::string>* associationNames, std::string& errors)
{
    // Empty, and gone on every way out: the structures of the program and those of the file do not meet, nor do those
    // of files that other threads read.
    const detail::OwnRegistry registry;
    try
    {
        mImpl->fileName = fileName;
        mImpl->structures.clear(); // without releasing them: callers of an earlier read may use them still
        mImpl->associations.clear();
        mImpl->found = {};
        mImpl->listed.clear();
        mImpl->checksum = 0;
        mImpl->failure = {};
        const detail::LockWait wait(mImpl->lockWait);
        const std::string given = errors;
        bool isRead = readOnce(structureNames, associationNames, wait, errors);
        while (mImpl->failure.kind == Failure::kLocked && wait.pause())
        {
            errors = given;
            Structure::deleteAllStructures();
            mImpl->associations.clear();
            mImpl->listed.clear();
            mImpl->failure = {};
            isRead = readOnce(structureNames, associationNames, wait, errors);
        }
        if (isRead)
            keepRegisteredStructures();
        else
            forget();
        return isRead;
    }
    catch (...)
    {
        forget();
        throw;
    }
}

/// Tries to read. What is read while somebody else is writing is worth nothing.
bool Accessor::readOnce(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                        const detail::LockWait& wait, std::string& errors)
{
    const detail::UndoPlace place(fileName());
    if (!detail::recover(place, wait, mImpl->failure, errors))
        return false;
    const WriteWatch watch(place); // from here on only: recovering writes, too
    const bool isRead = performRead(structureNames, associationNames, errors);
    if (mImpl->listing == kListOnly)
        mImpl->found = {}; // none of it was read, and none is to be kept
    mImpl->checksum = mImpl->listing == kListOnly ? 0 : mImpl->found.checksum();
    if (watch.hasSeenWriting())
    {
        mImpl->failure = {Failure::kLocked};
        return detail::refuse(errors, fileName() + " is being written by somebody else.\n");
    }
    return isRead || mImpl->fail(Failure::kMalformed);
}

/// Holds nothing, and knows nothing about the file.
void Accessor::forget()
{
    clear();
    mImpl->listed.clear();
    mImpl->checksum = 0;
}

std::uint64_t Accessor::findCharacter(const UnreadBlock& block, std::uint64_t character) const
{
    const detail::File file(fileName(), detail::File::eMode::kRead);
    const bool isThere = file.isOpen() && block.position <= file.size() && block.length <= file.size() - block.position;
    std::string bytes(isThere ? block.length : 0, '\0');
    bytes.resize(isThere ? file.read(block.position, bytes.data(), bytes.size()) : 0);
    const bool isChunk = !bytes.empty() && std::isupper(static_cast<unsigned char>(bytes.front())); // of its tag
    return block.position + (isChunk ? BinaryReader::findCharacter(bytes, character)
                                     : detail::AsciiReader::findCharacter(bytes, character));
}

bool Accessor::readMore(const std::set<std::string>& names, std::string& errors)
{
    std::vector<detail::FileBlock>& blocks = mImpl->found.blocks;
    if (!mImpl->found.areKept)
        return detail::refuse(errors, "No read has left metadata in " + fileName() + " to be kept.\n");
    const std::unique_ptr<Accessor> more = newAccessor(fileName(), errors);
    if (!more)
        return false;
    more->setUnread(kKeep);
    more->setLockWait(lockWait());
    const bool isRead = more->read(fileName(), nullptr, &names, errors);
    mImpl->failure = more->failure();
    if (!isRead)
        return false;
    const std::vector<detail::FileBlock>& now = more->mImpl->found.blocks;
    const auto isSame = [](const detail::FileBlock& a, const detail::FileBlock& b) { return a.checksum == b.checksum; };
    if (!std::equal(blocks.begin(), blocks.end(), now.begin(), now.end(), isSame))
    {
        mImpl->failure = {Failure::kChanged};
        return detail::refuse(errors, detail::changedMessage(fileName()));
    }
    std::string faults;
    for (const detail::FileBlock& block : now)
    {
        if (block.state == detail::FileBlock::kUnread && block.kind == UnreadBlock::kAssociations &&
            names.count(block.name) > 0)
            faults += detail::placedMessages(block.why, "the metadata of " + detail::nodeText(block.name),
                                             block.position, fileName());
    }
    if (!faults.empty())
    {
        mImpl->failure = {Failure::kMalformed};
        return detail::refuse(errors, faults);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        if (blocks[i].state == detail::FileBlock::kUnread && now[i].state == detail::FileBlock::kRead &&
            blocks[i].kind == UnreadBlock::kAssociations)
            takeOver(blocks[i], more->mImpl->associations[blocks[i].name]);
    }
    noteStructures(structures(), blocks);
    return true;
}

/// Adds associations that were left in the file, with the structures that they use. What the caller has put there goes
/// ahead.
void Accessor::takeOver(detail::FileBlock& block, const Associations& associations)
{
    block.state = detail::FileBlock::kRead;
    block.why.clear();
    if (!mImpl->associations.emplace(block.name, associations).second)
        return;
    StructureSet structures = mImpl->structures;
    for (const Channel& channel : associations)
    {
        for (const Stream* const stream : channel)
            structures.insert(&stream->structure());
    }
    setStructures(structures);
}

void Accessor::keepRegisteredStructures()
{
    const std::set<Structure*>& registered = Structure::allStructures();
    setStructures(StructureSet(registered.begin(), registered.end()));
}

const std::string& Accessor::fileName() const
{
    return mImpl->fileName;
}

const Accessor::StructureSet& Accessor::structures() const
{
    return mImpl->structures;
}

void Accessor::setStructures(const StructureSet& structures)
{
    if (&structures == &mImpl->structures)
        return;
    // A set never compares its only element, so a null may have come in.
    if (std::find(structures.begin(), structures.end(), nullptr) != structures.end())
        throw std::invalid_argument("Null Structure found in StructureSet.");

    StructureSet replaced = structures; // all that can throw comes before the first reference
    for (const Structure* structure : replaced)
        structure->ref();
    replaced.swap(mImpl->structures);
    for (const Structure* structure : replaced)
        structure->unref();
}

const std::map<std::string, Associations>& Accessor::associations() const
{
    return mImpl->associations;
}

std::map<std::string, Associations>& Accessor::associations()
{
    return mImpl->associations;
}

detail::AccessorState& Accessor::state() const
{
    return *mImpl;
}

void Accessor::clear()
{
    setStructures(StructureSet());
    mImpl->associations.clear();
    mImpl->found = {};
}

std::set<std::string> Accessor::supportedExtensions()
{
    std::set<std::string> extensions;
    for (const auto& [extension, factory] : AccessorFactoryBase::registry())
        extensions.insert(extension);
    return extensions;
}

std::unique_ptr<Accessor> Accessor::accessorByExtension(const std::string& fileName)
{
    const std::size_t dot = fileName.rfind('.');
    const std::string extension = dot == std::string::npos ? fileName : fileName.substr(dot + 1);
    const auto factory = AccessorFactoryBase::registry().find(AccessorFactoryBase::lowerCase(extension));
    return factory == AccessorFactoryBase::registry().end() ? nullptr : factory->second->create();
}

std::unique_ptr<Accessor> Accessor::readFile(const std::string& fileName, std::string& errors)
{
    std::unique_ptr<Accessor> accessor = newAccessor(fileName, errors);
    if (!accessor || !accessor->read(fileName, errors))
        return nullptr;
    return accessor;
}

bool Accessor::list(const std::string& fileName, std::vector<ListedBlock>& entries, std::string& errors)
{
    entries.clear();
    const std::unique_ptr<Accessor> accessor = newAccessor(fileName, errors);
    if (!accessor)
        return false;
    accessor->setListing(kListOnly);
    if (!accessor->read(fileName, errors))
        return false;
    if (!isOfKnownKind(*accessor))
        return detail::refuse(errors, "Files like " + fileName + " can be read, but not listed.\n");
    entries.swap(accessor->mImpl->listed);
    return true;
}

bool Accessor::recover(const std::string& fileName, std::string& errors)
{
    Failure ignored;
    return detail::recover(detail::UndoPlace(fileName), detail::LockWait(0), ignored, errors);
}

bool Accessor::Debug(const Accessor* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::Accessor", object, request);
}

bool Accessor::Debug(const Accessor* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
