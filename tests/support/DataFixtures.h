#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

#include <gtest/gtest.h>

#include <cstring>
#include <locale>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

namespace vumo::test
{
using Data::Handle;
using Data::Index;
using Data::Member;
using Data::Stream;
using Data::Structure;

/// A record whose elements are 17 bytes long, so that every second label lies misaligned.
inline Ref<Structure> recordStructure()
{
    return Structure::make("Record",
                           {{Member::kUInt8, 1, "number"}, {Member::kString, 1, "label"}, {Member::kUInt8, 1, "flag"}});
}

/// Stores a text form in a value of the named member.
inline void setText(Handle& handle, const char* member, const std::string& text, unsigned int i = 0)
{
    std::string errors;
    ASSERT_TRUE(handle.setPositionByMemberName(member)) << member;
    EXPECT_EQ(handle.fromStr(text, i, errors), 0) << errors;
}

/// The text form of the first value of the named member.
inline std::string textOf(Handle handle, const char* member)
{
    return handle.setPositionByMemberName(member) ? handle.str(0) : "no such member";
}

/// An element of recordStructure(), owned by the handle.
inline Handle record(const Structure& structure, unsigned int number, const std::string& label)
{
    Handle handle(structure);
    setText(handle, "number", std::to_string(number));
    setText(handle, "label", label);
    return handle;
}

/// An element of recordStructure() as "number label", or "none" where there is no data.
inline std::string recordText(const Handle& handle)
{
    return handle.hasData() ? textOf(handle, "number") + " " + textOf(handle, "label") : "none";
}

inline std::string recordText(const Stream& stream, const Index& index)
{
    return recordText(stream.element(index));
}

/// What the class of `object` prints about it.
template <class T>
std::string printed(const T* object)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    vumo::Debug::Print request(out);
    EXPECT_TRUE(T::Debug(object, request));
    return out.str();
}

/// The same with "ADDRESS" in place of every address.
template <class T>
std::string printedWithoutAddresses(const T* object)
{
    std::string text = printed(object);
    for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at))
        text.replace(at, text.find_first_not_of("0123456789abcdefx", at) - at, "ADDRESS");
    return text;
}

/// What the class of `object` counts for it.
template <class T>
vumo::Debug::Footprint footprintOf(const T* object)
{
    vumo::Debug::Footprint request;
    EXPECT_TRUE(T::Debug(object, request));
    return request;
}

/// The numbers of living objects of all counted classes, as a text that names those that differ.
inline std::string livingObjects()
{
    using namespace vumo::Data;
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << "Member " << Member::_objectsAlive << ", Structure " << Structure::_objectsAlive << ", Handle "
        << Handle::_objectsAlive << ", Index " << Index::_objectsAlive << ", IndexPair " << IndexPair::_objectsAlive
        << ", IndexString " << IndexString::_objectsAlive << ", Stream " << Stream::_objectsAlive << ", StreamImpl "
        << StreamImpl::_objectsAlive << ", Channel " << Channel::_objectsAlive << ", ChannelImpl "
        << ChannelImpl::_objectsAlive << ", Associations " << Associations::_objectsAlive << ", AssociationsImpl "
        << AssociationsImpl::_objectsAlive;
    return out.str();
}

/// Gives each test an empty structure registry, puts the former one back, and sees that whatever the test
/// and its fixture made is gone.
class DataTest : public ::testing::Test
{
protected:
    DataTest() : mLivingBefore(livingObjects()) { mRegistry.swap(Structure::allStructures()); }

    ~DataTest() override
    {
        Structure::deleteAllStructures();
        mRegistry.swap(Structure::allStructures());
        EXPECT_EQ(livingObjects(), mLivingBefore);
    }

private:
    std::set<Structure*> mRegistry;
    std::string mLivingBefore;
};

/// Has the structure of records at hand, too.
class RecordTest : public DataTest
{
protected:
    Ref<Structure> mRecord = recordStructure();
};

/// What kind of exception `action` throws, and its message.
template <class Action>
std::string thrownBy(Action&& action)
{
    try
    {
        action();
    }
    catch (const std::out_of_range& error)
    {
        return std::string("out_of_range: ") + error.what();
    }
    catch (const std::invalid_argument& error)
    {
        return std::string("invalid_argument: ") + error.what();
    }
    catch (const std::runtime_error& error)
    {
        return std::string("runtime_error: ") + error.what();
    }
    catch (Index::eCreationErrors error)
    {
        return "eCreationErrors: " + std::to_string(error);
    }
    return "nothing";
}
} // namespace vumo::test
