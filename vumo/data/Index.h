#pragma once

#include "vumo/data/IndexType.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/Ref.h"

#include <map>
#include <string>
#include <utility>

namespace vumo::Data
{
/// The address of an element in a stream: a plain number, or a value of an index type such as "pair".
///
/// Indices are totally ordered, numbers first. The complex value is shared by assignment and copied by
/// copy construction; it is never changed, so the two cannot be told apart.
class VUMO_EXPORT Index : private Counted<Index>
{
public:
    /// Thrown, as they are, for texts that make no index.
    enum eCreationErrors : int
    {
        eUnknownIndexType,  ///< no creator is registered under that name
        eIllegalIndexText,  ///< a character that the type does not allow, or no readable number
        eTrailingIndexText, ///< more than the type's numbers
    };

    using Creator = Index (*)(const std::string& text);

    Index(unsigned int number) : mNumber(number) {}

    /// Holds a copy of the value.
    Index(const IndexType& value);

    /// The number of that text: decimal digits, with blanks, tabs or carriage returns around them.
    /// Throws `eCreationErrors`.
    Index(const std::string& text);
    Index(const Index& other)
        : vumo::Counted<Index>(other),
          mNumber(other.mNumber),
          mIsText(other.mIsText),
          mComplex(other.mComplex ? other.mComplex->clone() : nullptr)
    {
    }

    /// Takes the complex value over; `other` is a number afterwards.
    Index(Index&& other) noexcept = default;

    Index& operator=(const Index& other) = default;
    Index& operator=(Index&& other) noexcept = default;
    Index& operator=(unsigned int number);
    ~Index() = default;

    /// An index that holds the value itself, which is new and held by nobody else.
    static Index adopt(IndexType* value) { return Index(Ref<IndexType>(value)); }

    /// The number; 0 for a complex index.
    unsigned int index() const { return mComplex ? 0 : mNumber; }
    operator unsigned int() const { return index(); }

    bool isNumber() const { return !mComplex; }

    /// The complex value, which the index owns, or null.
    operator IndexType*() { return mComplex.get(); }

    std::string asString() const;

    /// The name under which the creator of such an index is registered; "numeric" for a number.
    std::string typeName() const;
    static std::string theTypeName();

    bool supportsDenseMode() const;

    /// How many places lie from this index to the other, both included, in 32-bit arithmetic; 0 between
    /// a number and a complex index.
    unsigned int denseSpaceBetween(const Index& other) const;

    bool operator==(const Index& other) const
    {
        return areNumbers(other) ? mNumber == other.mNumber : isEqualComplex(other);
    }

    bool operator!=(const Index& other) const
    {
        return areNumbers(other) ? mNumber != other.mNumber : isUnequalComplex(other);
    }

    bool operator<(const Index& other) const
    {
        return areNumbers(other) ? mNumber < other.mNumber : isLessComplex(other);
    }

    bool operator<=(const Index& other) const
    {
        return areNumbers(other) ? mNumber <= other.mNumber : isLessOrEqualComplex(other);
    }

    bool operator>(const Index& other) const
    {
        return areNumbers(other) ? mNumber > other.mNumber : isGreaterComplex(other);
    }

    bool operator>=(const Index& other) const
    {
        return areNumbers(other) ? mNumber >= other.mNumber : isGreaterOrEqualComplex(other);
    }

    /// The registry of index types, by name.
    static std::map<std::string, Creator>& creators();

    /// False, with nothing changed, when the name is taken or the creator null.
    static bool registerType(const std::string& name, Creator creator);

    /// False, with nothing changed, when there is none of that name, and for "numeric". Streams of the type keep their
    /// elements, but are neither written nor read while there is none.
    static bool deregisterType(const std::string& name);

    /// Throws `eUnknownIndexType`.
    static Creator creator(const std::string& name);

    /// The index of that type and text. Throws `eCreationErrors`.
    static Index doCreate(const std::string& typeName, const std::string& text);

    /// The creator of "numeric".
    static Index TypeCreator(const std::string& text);

    static bool Debug(const Index* object, vumo::Debug::Print& request);
    static bool Debug(const Index* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    explicit Index(Ref<IndexType> value);

    bool areNumbers(const Index& other) const { return !mComplex && !other.mComplex; }

    // The comparisons where one of both is complex, at least. Where both are, each asks the operator of its own name: a
    // type is free to define them apart.
    bool isEqualComplex(const Index& other) const;
    bool isUnequalComplex(const Index& other) const;
    bool isLessComplex(const Index& other) const;
    bool isLessOrEqualComplex(const Index& other) const;
    bool isGreaterComplex(const Index& other) const;
    bool isGreaterOrEqualComplex(const Index& other) const;

    unsigned int mNumber = 0;
    bool mIsText = false;    // is the complex value, if there is one, exactly an IndexString?
    Ref<IndexType> mComplex; // null: the index is a number
};
} // namespace vumo::Data
