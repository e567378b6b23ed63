#include "vumo/data/StructureIterator.h"

#include "vumo/data/Structure.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <stdexcept>

namespace vumo::Data
{
namespace
{
constexpr unsigned int kEndIndex = 0xFFFFFFFF;
} // namespace

// The structure is held by nothing else and dies with its last iterator.
StructureIterator::StructureIterator() : StructureIterator(*Structure::create(), kIterEnd) {}

StructureIterator::StructureIterator(const Structure& structure, IterLocation location)
    : mIndex(location == kIterBegin && !structure.empty() ? 0 : kEndIndex),
      mStructure(&structure)
{
    structure.refFromIterator();
}

StructureIterator::StructureIterator(const StructureIterator& other)
    : mIndex(other.mIndex),
      mStructure(other.mStructure)
{
    mStructure->refFromIterator();
}

StructureIterator& StructureIterator::operator=(const StructureIterator& other)
{
    const Structure* const before = mStructure;
    mIndex = other.mIndex;
    mStructure = other.mStructure;
    mStructure->refFromIterator(); // first: both may be the same structure, held by this iterator alone
    before->unrefFromIterator();
    return *this;
}

StructureIterator::~StructureIterator()
{
    mStructure->unrefFromIterator();
}

Member* StructureIterator::member() const
{
    return mIndex < mStructure->memberCount() ? &mStructure->mMembers[mIndex] : nullptr;
}

Member& StructureIterator::operator*()
{
    if (Member* const current = member())
        return *current;
    throw std::out_of_range("Member");
}

const Member& StructureIterator::operator*() const
{
    if (const Member* const current = member())
        return *current;
    throw std::out_of_range("Const Member");
}

Member* StructureIterator::operator->()
{
    return &**this;
}

const Member* StructureIterator::operator->() const
{
    return &**this;
}

StructureIterator& StructureIterator::operator++()
{
    if (mIndex != kEndIndex && ++mIndex >= mStructure->memberCount())
        mIndex = kEndIndex;
    return *this;
}

StructureIterator StructureIterator::operator++(int)
{
    return *this;
}

bool StructureIterator::operator==(const StructureIterator& other) const
{
    return mStructure == other.mStructure && mIndex == other.mIndex;
}

bool StructureIterator::valid() const
{
    return mIndex != kEndIndex;
}

bool StructureIterator::Debug(const StructureIterator* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::StructureIterator", object, request);
}

bool StructureIterator::Debug(const StructureIterator* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
