#include "vumo/data/Structure.h"

#include "vumo/data/ScalarAccess.h"
#include "vumo/data/detail/StructureRegistry.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/Text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace vumo::Data
{
namespace
{
constexpr char kDefaultName[] = "structure";

/// Marks a member without a place. No layout reaches it, unlike the 4294967295 of a missing member.
constexpr unsigned long long kUnplaced = std::numeric_limits<unsigned long long>::max();

unsigned long long roundUp(unsigned long long value, unsigned int alignment)
{
    return alignment > 1 ? (value + alignment - 1) / alignment * alignment : value;
}

std::string hexByte(char byte)
{
    char text[3];
    std::snprintf(text, sizeof(text), "%02x", static_cast<unsigned int>(static_cast<unsigned char>(byte)));
    return text;
}

/// One line of a hex dump: sixteen places, "--" for those at and after `size`.
std::string hexLine(const char* data, unsigned long long begin, unsigned long long size)
{
    constexpr unsigned int kBytesPerLine = 16;
    std::string line;
    for (unsigned int i = 0; i < kBytesPerLine; ++i)
    {
        if (i > 0)
            line += i == kBytesPerLine / 2 ? "   " : " ";
        line += begin + i < size ? hexByte(data[begin + i]) : "--";
    }
    return line;
}

bool isAcceptable(const Structure::NewMember& member)
{
    return member.type != Member::kInvalidType && member.dimension > 0 && member.name && *member.name != '\0';
}

void printDefaultData(const char* data, unsigned long long size, vumo::Debug::Print& request)
{
    request.beginSection("Default Value Memory Block");
    if (!data)
        request << "No default values provided\n";
    for (unsigned long long begin = 0; data && begin < size; begin += 16)
        request << hexLine(data, begin, size).c_str() << "\n";
    request.endSection();
}

void printDataTypes(vumo::Debug::Print& request)
{
    request.beginSection("Recognized Data Types");
    for (unsigned int i = 0; i < Member::kInvalidType; ++i)
    {
        const auto type = static_cast<Member::eDataType>(i);
        request << "[" << i << "] = " << Member::typeName(type) << ", size = " << Member::typeSize(type)
                << "bytes, alignment = " << Member::typeAlignment(type) << "bytes\n";
    }
    request << "[" << Member::kInvalidType << "] = " << Member::typeName(Member::kInvalidType) << "\n";
    request.endSection();
}

void printClass(vumo::Debug::Print& request)
{
    request.beginSection("vumo::Data::Structure Static Data");
    request << "Default structure name = " << kDefaultName << "\n";
    printDataTypes(request);
    detail::StructureRegistry::describe(request);
    request.endSection();
}

void measureClass(vumo::Debug::Footprint& request)
{
    const std::set<Structure*>& registry = Structure::allStructures();
    request.addMember(&registry, sizeof(registry));
    request.addMember(kDefaultName, sizeof(kDefaultName));
    for (Structure* const& structure : registry)
        request.addMember(&structure, sizeof(structure));
    for (unsigned int type = 0; type <= Member::kInvalidType; ++type)
    {
        const char* const name = Member::typeName(static_cast<Member::eDataType>(type));
        request.addMember(name, std::strlen(name) + 1);
    }
}
} // namespace

const vumo::ObjectCount Structure::_objectsCreated = vumo::Counted<Structure>::objectsCreated();
const vumo::ObjectCount Structure::_objectsAlive = vumo::Counted<Structure>::objectsAlive();

Structure* Structure::create()
{
    return new Structure();
}

Ref<Structure> Structure::make(const char* name, const std::vector<NewMember>& members)
{
    const Ref<Structure> structure(new Structure(name));
    return structure->addMembers(members) == members.size() ? structure : Ref<Structure>();
}

Structure::Structure() : Structure(nullptr) {}

Structure::Structure(const char* name)
    : RefCounted(kApart), // streams and handles of several threads count in it
      mName(detail::duplicateText(name ? name : kDefaultName))
{
    objectChanged(); // getting its name is a change of its own
}

Structure::Structure(const Structure& other)
    : RefCounted(kApart),
      Checkpointed(other),
      vumo::Counted<Structure>(other),
      mName(detail::duplicateText(kDefaultName)) // a name is never null, not even while it is assigned
{
    *this = other;
}

Structure& Structure::operator=(const Structure& other)
{
    if (this == &other)
        return *this;

    // All that can fail comes before the first change.
    auto members = std::make_unique<Member[]>(other.mMemberCount);
    std::copy_n(other.mMembers.get(), other.mMemberCount, members.get());
    std::unique_ptr<char[]> defaults(other.mDefaultData ? other.duplicateChunk(other.mDefaultData) : nullptr);
    mStrings.reserve(other.mStrings.size());
    setName(other.name()); // a change of the object

    dropDefaultData();
    mMembers = std::move(members);
    mMemberCount = other.mMemberCount;
    mDefaultData = defaults.release();
    computeLayout();
    return *this;
}

Structure::~Structure()
{
    objectChanged();
    mBeingDestroyed = true; // a handle that takes and releases a reference now would delete it again
    dropDefaultData();
    mMembers.reset();
    mTotalSize = 0;
    mMemberCount = 0;
    mStrings.clear();
}

bool Structure::operator==(const Structure& other) const
{
    if (this == &other)
        return true;
    return detail::equalTexts(name(), other.name()) && totalSize() == other.totalSize() &&
           mMemberCount == other.mMemberCount &&
           std::equal(mMembers.get(), mMembers.get() + mMemberCount, other.mMembers.get());
}

void Structure::setName(const char* name)
{
    objectChanged();
    detail::StructureRegistry::renaming(*this);
    if (name != mName.get())
        mName.reset(detail::duplicateText(name ? name : kDefaultName)); // copied before the old one is freed
}

const Member* Structure::findMember(const char* name) const
{
    for (unsigned int i = 0; i < mMemberCount; ++i)
    {
        if (detail::equalTexts(mMembers[i].mName.get(), name))
            return &mMembers[i];
    }
    return nullptr;
}

bool Structure::addMember(Member::eDataType type, unsigned int dimension, const char* name)
{
    const NewMember added = {type, dimension, name};
    if (!isAcceptable(added) || findMember(name))
        return false;
    appendMembers({&added});
    return true;
}

unsigned int Structure::addMembers(const std::vector<NewMember>& newMembers)
{
    std::set<std::string_view> names; // not hashed: they may be chosen by whoever wrote a file
    for (unsigned int i = 0; i < mMemberCount; ++i)
        names.insert(mMembers[i].mName.get());
    std::vector<const NewMember*> accepted;
    for (const NewMember& added : newMembers)
    {
        if (isAcceptable(added) && names.insert(added.name).second)
            accepted.push_back(&added);
    }
    if (!accepted.empty())
        appendMembers(accepted);
    return static_cast<unsigned int>(accepted.size());
}

void Structure::appendMembers(const std::vector<const NewMember*>& accepted)
{
    const auto addedCount = static_cast<unsigned int>(accepted.size());
    auto members = std::make_unique<Member[]>(mMemberCount + addedCount);
    mStrings.reserve(mStrings.size() + addedCount);
    for (unsigned int i = 0; i < addedCount; ++i)
    {
        Member& added = members[mMemberCount + i];
        added.mName.reset(detail::duplicateText(accepted[i]->name));
        added.mType = accepted[i]->type;
        added.mDimension = accepted[i]->dimension;
        added.mOffset = kUnplaced;
    }
    for (unsigned int i = 0; i < mMemberCount; ++i)
    {
        members[i].mType = mMembers[i].mType; // one by one, because an assignment would copy the name
        members[i].mDimension = mMembers[i].mDimension;
        members[i].mOffset = mMembers[i].mOffset;
        members[i].mName = std::move(mMembers[i].mName);
    }

    objectChanged();
    dropDefaultData(); // it has no room for the new members
    mMembers = std::move(members);
    mMemberCount += addedCount;
    computeLayout();
}

StructureIterator Structure::begin() const
{
    return StructureIterator(*this, kIterBegin);
}

StructureIterator Structure::end() const
{
    return StructureIterator(*this, kIterEnd);
}

/// Gives each member that has no offset yet the next aligned one; those that have one keep it.
void Structure::computeLayout()
{
    unsigned long long end = 0;
    mStrings.clear();
    for (unsigned int i = 0; i < mMemberCount; ++i)
    {
        Member& member = mMembers[i];
        if (member.mOffset == kUnplaced)
            member.mOffset = roundUp(end, Member::typeAlignment(member.mType));
        end = member.mOffset + static_cast<unsigned long long>(Member::typeSize(member.mType)) * member.mDimension;
        if (member.mType == Member::kString)
            mStrings.push_back({member.mOffset, end});
    }
    // The first member decides, not the largest alignment: files written with one rule must read with it.
    mTotalSize = empty() ? 0 : roundUp(end, Member::typeAlignment(mMembers[0].mType));
}

void Structure::dropDefaultData()
{
    if (mDefaultData)
        destroyChunk(mDefaultData);
    delete[] mDefaultData.exchange(nullptr);
}

char* Structure::newDefaultChunk() const
{
    char* const data = new char[totalSize()];
    fillWithDefaultChunk(data);
    return data;
}

const char* Structure::defaultData() const
{
    if (!mDefaultData && totalSize() > 0)
    {
        char* present = nullptr;
        std::unique_ptr<char[]> made(newDefaultChunk());
        if (mDefaultData.compare_exchange_strong(present, made.get())) // else another thread was first
            static_cast<void>(made.release());
    }
    return mDefaultData;
}

void Structure::fillWithDefaultChunks(char* data, unsigned long long count) const
{
    if (totalSize() > 0 && count > 0)
        std::memset(data, 0, totalSize() * count); // zero bits are the default of every type
}

char* Structure::allocateDefaultChunk() const
{
    if (!defaultData()) // which is there from now on
        return nullptr;
    return newDefaultChunk();
}

char* Structure::duplicateChunk(const char* src) const
{
    if (totalSize() == 0)
        return nullptr;
    std::unique_ptr<char[]> copy(new char[totalSize()]);
    fillWithDuplicateChunk(copy.get(), src);
    return copy.release();
}

template <class Visitor>
void Structure::visitStrings(char* data, Visitor&& visit) const
{
    for (const StringRun& run : mStrings)
    {
        for (unsigned long long offset = run.begin; offset != run.end; offset += sizeof(char*))
            visit(data + offset);
    }
}

void Structure::duplicateStrings(char* dest, const char* src) const
{
    try
    {
        visitStrings(dest, [](char* string) {
            if (const char* const text = loadScalar<char*>(string))
                storeScalar(string, detail::duplicateText(text));
        });
    }
    catch (...)
    {
        visitStrings(dest, [&](char* string) {
            char* const text = loadScalar<char*>(string);
            if (text != loadScalar<char*>(src + (string - dest))) // the others are still those of `src`
                std::free(text);
        });
        fillWithDefaultChunk(dest);
        throw;
    }
}

void Structure::destroyStrings(char* data) const
{
    visitStrings(data, [](char* string) {
        if (char* const text = loadScalar<char*>(string))
        {
            std::free(text);
            storeScalar<char*>(string, nullptr);
        }
    });
}

bool Structure::chunkIsDefault(const char* data) const
{
    return chunkMemberIsDefault(data, nullptr);
}

bool Structure::chunkMemberIsDefault(const char* data, const char* memberName) const
{
    if (!data)
        return false;
    if (memberName)
    {
        const Member* const member = findMember(memberName);
        return member && member->isDefault(data);
    }
    return std::all_of(mMembers.get(), mMembers.get() + mMemberCount,
                       [&](const Member& member) { return member.isDefault(data); });
}

std::set<Structure*>& Structure::allStructures()
{
    return detail::StructureRegistry::structures();
}

bool Structure::registerStructure(Structure& structure)
{
    return detail::StructureRegistry::add(structure);
}

bool Structure::deregisterStructure(Structure& structure)
{
    return detail::StructureRegistry::remove(structure);
}

Structure* Structure::structureByName(const char* name)
{
    return detail::StructureRegistry::find(name);
}

void Structure::deleteAllStructures()
{
    detail::StructureRegistry::clear();
}

bool Structure::Debug(const Structure* object, vumo::Debug::Print& request)
{
    if (!object)
    {
        printClass(request);
        return true;
    }
    request << "Structure '" << object->name() << "'\n";
    request << "Total Size = " << object->totalSize() << "\n";
    request.beginSection("Member List");
    for (unsigned int i = 0; i < object->mMemberCount; ++i)
    {
        request << "Member[" << i << "] = ";
        request.skipNextIndent(true);
        Member::Debug(&object->mMembers[i], request);
    }
    request.endSection();
    printDefaultData(object->mDefaultData, object->totalSize(), request); // not made for the sake of a print
    return true;
}

bool Structure::Debug(const Structure* object, vumo::Debug::Footprint& request)
{
    if (!object)
    {
        measureClass(request);
        return true;
    }
    request.addObject(object, sizeof(*object));
    if (!object->empty())
        request.addMember(object->mMembers.get(), object->mMemberCount * sizeof(Member));
    for (unsigned int i = 0; i < object->mMemberCount; ++i)
    {
        const char* const name = Member::name(&object->mMembers[i]);
        if (name)
            request.addMember(name, std::strlen(name) + 1);
    }
    request.addMember(object->name(), std::strlen(object->name()) + 1);
    if (object->mDefaultData)
        request.addMember(object->mDefaultData, object->totalSize());
    return true;
}
} // namespace vumo::Data
