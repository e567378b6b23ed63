#include "vumo/data/Index.h"

#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"
#include "vumo/data/IndexType.h"
#include "vumo/data/detail/IndexOrder.h"
#include "vumo/data/detail/IndexText.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

#include <typeinfo>

namespace vumo::Data
{
namespace
{
using Creators = std::map<std::string, Index::Creator>;

constexpr char kNumericTypeName[] = "numeric";

Creators* newCreators()
{
    auto* const creators = new Creators;
    (*creators)[kNumericTypeName] = &Index::TypeCreator;
    return creators;
}
} // namespace

const vumo::ObjectCount Index::_objectsCreated = vumo::Counted<Index>::objectsCreated();
const vumo::ObjectCount Index::_objectsAlive = vumo::Counted<Index>::objectsAlive();

// The types that come with the library are registered here, beside the registry: in a static library
// nothing may refer to their own files, and a linker leaves out what nothing refers to.
const std::string IndexPair::myTypeName = "pair";
const bool IndexPair::myRegistration = Index::registerType(myTypeName, &CRTP_IndexType<IndexPair>::doCreate);
const std::string IndexString::myTypeName = "string";
const bool IndexString::myRegistration = Index::registerType(myTypeName, &CRTP_IndexType<IndexString>::doCreate);

Index::Index(Ref<IndexType> value) : mComplex(std::move(value))
{
    const IndexType* const form = mComplex.get();
    mIsText = form && typeid(*form) == typeid(IndexString);
}

Index::Index(const IndexType& value) : Index(Ref<IndexType>(value.clone())) {}

Index::Index(const std::string& text)
{
    detail::parseIndexNumbers(text, &mNumber, 1);
}

Index& Index::operator=(unsigned int number)
{
    mComplex = Ref<IndexType>();
    mNumber = number;
    return *this;
}

std::string Index::asString() const
{
    return mComplex ? mComplex->asString() : std::to_string(mNumber);
}

std::string Index::typeName() const
{
    return mComplex ? mComplex->typeName() : theTypeName();
}

std::string Index::theTypeName()
{
    return kNumericTypeName;
}

bool Index::supportsDenseMode() const
{
    return !mComplex || mComplex->supportsDenseMode();
}

unsigned int Index::denseSpaceBetween(const Index& other) const
{
    if (mComplex && other.mComplex)
        return mComplex->denseSpaceBetween(*other.mComplex);
    return mComplex || other.mComplex ? 0 : detail::placesBetween(mNumber, other.mNumber);
}

bool Index::isEqualComplex(const Index& other) const
{
    return mComplex && other.mComplex && *mComplex == *other.mComplex;
}

bool Index::isUnequalComplex(const Index& other) const
{
    return !mComplex || !other.mComplex || *mComplex != *other.mComplex;
}

bool Index::isLessComplex(const Index& other) const
{
    if (!mComplex || !other.mComplex)
        return static_cast<bool>(other.mComplex);
    if (mIsText && other.mIsText) // nothing can override how these compare, and searches do little else
        return static_cast<const IndexString&>(*mComplex).indexString() <
               static_cast<const IndexString&>(*other.mComplex).indexString();
    return *mComplex < *other.mComplex;
}

bool Index::isLessOrEqualComplex(const Index& other) const
{
    return other.mComplex && (!mComplex || *mComplex <= *other.mComplex);
}

bool Index::isGreaterComplex(const Index& other) const
{
    return mComplex && (!other.mComplex || *mComplex > *other.mComplex);
}

bool Index::isGreaterOrEqualComplex(const Index& other) const
{
    return mComplex && (!other.mComplex || *mComplex >= *other.mComplex);
}

std::map<std::string, Index::Creator>& Index::creators()
{
    static Creators* const creators = newCreators(); // never freed: static objects may still use it at exit
    return *creators;
}

bool Index::registerType(const std::string& name, Creator creator)
{
    // A null creator would be found, and called.
    return creator && creators().emplace(name, creator).second;
}

bool Index::deregisterType(const std::string& name)
{
    return name != kNumericTypeName && creators().erase(name) > 0;
}

Index::Creator Index::creator(const std::string& name)
{
    const auto found = creators().find(name);
    if (found == creators().end())
        throw eUnknownIndexType;
    return found->second;
}

Index Index::doCreate(const std::string& typeName, const std::string& text)
{
    return creator(typeName)(text);
}

Index Index::TypeCreator(const std::string& text)
{
    return Index(text);
}

bool Index::Debug(const Index* object, vumo::Debug::Print& request)
{
    if (object && !object->mComplex)
        request << object->mNumber;
    return true;
}

bool Index::Debug(const Index* object, vumo::Debug::Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::Data
