#include "vumo/serialize/SerializerInitializer.h"

#include "tests/support/Golden.h"
#include "vumo/serialize/AssociationsSerializerRaw.h"
#include "vumo/serialize/ChannelSerializerRaw.h"
#include "vumo/serialize/StreamSerializerRaw.h"
#include "vumo/serialize/StructureSerializerDebug.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

namespace vumo::Data
{
namespace
{
template <class Serializer, class RawFormat>
struct Kind
{
    using Base = Serializer;
    using Raw = RawFormat;

    /// A second format of the kind; becomes the default when made, as every raw one does.
    class Other : public RawFormat
    {
    public:
        static Other* theFormat()
        {
            static Other other;
            return &other;
        }

        const char* formatType() const override { return "other"; }
    };
};

template <class T>
class SerializerInitializerTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        T::Base::setDefaultFormat(T::Raw::theFormat());
        EXPECT_EQ(T::Base::allFormats().size(), 1U);
    }
};

using Kinds =
    ::testing::Types<Kind<StructureSerializer, StructureSerializerRaw>, Kind<StreamSerializer, StreamSerializerRaw>,
                     Kind<ChannelSerializer, ChannelSerializerRaw>,
                     Kind<AssociationsSerializer, AssociationsSerializerRaw>>;
TYPED_TEST_SUITE(SerializerInitializerTest, Kinds);

TYPED_TEST(SerializerInitializerTest, LoadingTheLibrary_RegistersTheRawFormatAsTheDefault)
{
    using Base = typename TypeParam::Base;
    const Base* const raw = TypeParam::Raw::theFormat();
    EXPECT_STREQ(raw->formatType(), "raw");
    EXPECT_EQ(Base::formatByName("raw"), raw);
    EXPECT_EQ(Base::defaultFormat(), raw);
    EXPECT_EQ(&Base::allFormats(), &Base::allFormatsToEdit());
    for (const char* name : {"", "Raw", "ra", "raw ", "debug"})
        EXPECT_EQ(Base::formatByName(name), nullptr) << name;
}

TYPED_TEST(SerializerInitializerTest, Deregister_MakesTheFirstFormatLeftTheDefault)
{
    using Base = typename TypeParam::Base;
    const Base* const raw = TypeParam::Raw::theFormat();
    const typename TypeParam::Other other;
    EXPECT_EQ(Base::defaultFormat(), &other);
    EXPECT_EQ(Base::formatByName("other"), nullptr) << "a default need not be registered";

    Base::registerFormat(other);
    Base::registerFormat(&other);
    EXPECT_EQ(Base::allFormats().size(), 2U);
    EXPECT_EQ(Base::formatByName("other"), &other);

    Base::allFormatsToEdit().insert(nullptr);
    Base::deregisterFormat(other);
    EXPECT_EQ(Base::formatByName("other"), nullptr);
    EXPECT_EQ(Base::defaultFormat(), raw) << "not the null entry before it";
    Base::deregisterFormat(*raw);
    EXPECT_EQ(Base::defaultFormat(), nullptr);
    EXPECT_EQ(Base::formatByName("raw"), nullptr);

    Base::setDefaultFormat(&other);
    Base::deregisterFormat(*raw);
    EXPECT_EQ(Base::defaultFormat(), &other) << "only the default's own deregistration replaces it";
    Base::allFormatsToEdit().erase(nullptr);
    Base::registerFormat(raw);
    Base::registerFormat(nullptr);
    Base::deregisterFormat(nullptr);
    EXPECT_EQ(Base::allFormats(), std::set<const Base*>{raw});
    Base::setDefaultFormat(nullptr);
    Base::deregisterFormat(nullptr);
    Base::deregisterFormat(&other);
    EXPECT_EQ(Base::defaultFormat(), nullptr);
    Base::setDefaultFormat(&other);
    Base::deregisterFormat(&other);
    EXPECT_EQ(Base::defaultFormat(), raw);
}

TYPED_TEST(SerializerInitializerTest, ADestroyedFormat_IsNeitherRegisteredNorTheDefault)
{
    using Base = typename TypeParam::Base;
    {
        const typename TypeParam::Other other;
        Base::registerFormat(other);
        EXPECT_EQ(Base::defaultFormat(), &other);
    }
    EXPECT_EQ(Base::defaultFormat(), TypeParam::Raw::theFormat());
    EXPECT_EQ(Base::allFormats().size(), 1U);
}

TYPED_TEST(SerializerInitializerTest, AnInitializer_RegistersForAsLongAsItLives)
{
    using Other = typename TypeParam::Other;
    using Base = typename TypeParam::Base;
    {
        const SerializerInitializer<Other> initializer;
        EXPECT_EQ(Base::formatByName("other"), Other::theFormat());
    }
    EXPECT_EQ(Base::formatByName("other"), nullptr);
}

TEST(SerializerGoldenTest, GetFormatDescription_IsTheGoldenText)
{
    const auto descriptionOf = [](const auto* format) {
        std::ostringstream out;
        EXPECT_EQ(&format->getFormatDescription(out), &out);
        return out.str();
    };
    const std::pair<std::string, const char*> cases[] = {
        {descriptionOf(StructureSerializerRaw::theFormat()), "structure"},
        {descriptionOf(StreamSerializerRaw::theFormat()), "stream"},
        {descriptionOf(ChannelSerializerRaw::theFormat()), "channel"},
        {descriptionOf(AssociationsSerializerRaw::theFormat()), "associations"},
    };
    for (const auto& [description, kind] : cases)
        EXPECT_EQ(description, test::goldenText(kind + std::string("_raw_description.txt")));
    EXPECT_EQ(descriptionOf(StructureSerializerDebug::theFormat()),
              "\nThe Debug format will be self-explanatory\nas it dumps all of the  information about\n"
              "the structure in a verbose format.");
}
} // namespace
} // namespace vumo::Data
