#include "tests/support/DataFixtures.h"
#include "vumo/vumo.h"

namespace vumo
{
namespace
{
using namespace Data;

/// T declares both statics itself, and tells something of its static data to both or to none.
template <class T>
void expectDebugStatics()
{
    bool (*const print)(const T*, Debug::Print&) = &T::Debug;
    bool (*const measure)(const T*, Debug::Footprint&) = &T::Debug;
    std::ostringstream text;
    Debug::Print request(text);
    Debug::Footprint footprint;
    EXPECT_TRUE(print(nullptr, request) && measure(nullptr, footprint));
    EXPECT_EQ(text.str().empty(), footprint.totalSize() == 0) << text.str();
}

template <class... T>
void expectAllDebugStatics()
{
    (expectDebugStatics<T>(), ...);
}

TEST(DebugTest, EveryClass_DescribesItsStaticData)
{
    expectAllDebugStatics<RefCounted, Checkpointed, Debug::Print, Debug::Footprint, Debug::Count, Member, Structure,
                          StructureIterator, Handle, Attach, AttachDirectly, Index, IndexType,
                          CRTP_IndexType<IndexPair>, IndexPair, IndexString, Stream, StreamImpl, StreamImplDense,
                          StreamImplMapped, StreamIterator, StreamIteratorImpl, StreamDenseIteratorImpl,
                          StreamMappedIteratorImpl, Channel, ChannelImpl, ChannelIterator, ChannelIteratorImpl,
                          Associations, AssociationsImpl, AssociationsIterator, AssociationsIteratorImpl>();
    expectAllDebugStatics<SerializerRaw, StructureSerializer, StructureSerializerRaw, StructureSerializerDebug,
                          StreamSerializer, StreamSerializerRaw, ChannelSerializer, ChannelSerializerRaw,
                          AssociationsSerializer, AssociationsSerializerRaw,
                          SerializerInitializer<StreamSerializerRaw>>();
    expectAllDebugStatics<Accessor, AccessorFactoryBase, AccessorFactory<OvriAsciiFileAccessor>, OvriAsciiFileAccessor,
                          OvriBinaryFileAccessor, BinaryReader, BinaryWriter, AccessorOvri, AccessorOvri::Ascii,
                          AccessorOvri::Binary, AccessorOvri::ExternalContent>();
    EXPECT_EQ(test::printed<StreamSerializer>(nullptr), "Registered Formats\n{\n    raw (default)\n}\n");
    EXPECT_EQ(test::printed<AccessorFactoryBase>(nullptr), "Extensions of Scene Files\n{\n    oa\n    ob\n}\n");
}

TEST(DebugTest, AnObjectWithNothingToTell_SaysWhatItIsAndHowLarge)
{
    const StreamIterator position;
    EXPECT_EQ(test::printed(&position), "vumo::Data::StreamIterator\n");
    EXPECT_EQ(test::footprintOf(&position).totalSize(), sizeof(position));
    const auto* const format = StreamSerializerRaw::theFormat();
    EXPECT_EQ(test::printed<StreamSerializer>(format), "Format 'raw'\n");
    EXPECT_EQ(test::footprintOf(format).totalSize(), sizeof(*format));
}
} // namespace
} // namespace vumo
