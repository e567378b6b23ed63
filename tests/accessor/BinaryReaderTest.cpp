#include "vumo/accessor/BinaryReader.h"

#include "tests/accessor/AccessorFixture.h"

#include <fstream>

namespace vumo::test
{
namespace
{
std::string structureChunk(const std::string& text)
{
    return chunk("DATS", "raw" + kZero + text + kZero);
}

std::string nodeChunk(const std::string& name, const std::string& text)
{
    return chunk("MTDA", name + kZero + "raw" + kZero + text + kZero);
}

/// The text of associations with that one value, of structure "Weight".
std::string weightText(const std::string& value)
{
    return "channel\nname vertex\nstream\nname weights\nindexType numeric\nstructure Weight\n0\n" + value +
           "\nendStream\nendChannel\nendAssociations\n";
}

const char* const kWeight = "name=Weight:float=Value";

class BinaryReaderTest : public AccessorFixture
{
protected:
    /// Reads a scene of one node with that trailer.
    bool read(const std::string& trailer, const std::set<std::string>* structureNames = nullptr,
              const std::set<std::string>* associationNames = nullptr)
    {
        mFile.setBytes(sceneWith(trailer));
        mErrors = "kept, ";
        mAccessor.clear();
        return mAccessor.read(mFile.name(), structureNames, associationNames, mErrors);
    }

    std::string weightOf(const std::string& node) const { return valueAt(mAccessor, node, "vertex", "weights", 0); }

    ScratchFile mFile{".ob"};
    OvriBinaryFileAccessor mAccessor;
    std::string mErrors;
};

TEST_F(BinaryReaderTest, SeekToTrailerStart_RefusesWhatDoesNotLeadToATrailer)
{
    // The size of the main chunk stands at 8, "BCSZ" at 480, the offset in it at 496; the file has 504 bytes.
    const struct
    {
        std::size_t position;
        std::string bytes;
        std::size_t length; // the file is cut there
        const char* message;
    } cases[] = {
        {0, "", 0, "Could not read file identification."},
        {0, "", 19, "Could not read file identification."},
        {0, "FOR4", 504, "Not a supported file type."},
        {16, "Ovrj", 504, "Not a supported file type."},
        {8, bigEndian(7, 8), 504, "Error seeking to the end of main chunk."},
        {8, bigEndian(~0ULL, 8), 504, "Error seeking to the end of main chunk."},
        {8, bigEndian(1ULL << 63, 8), 504, "Error seeking to the end of main chunk."},
        {8, bigEndian(8, 8), 504, "File does not end with trailer-size chunk."},
        {8, bigEndian(600, 8), 504, "Error reading the trailer-size chunk header."},
        {0, "", 495, "Error reading the trailer-size chunk header."},
        {480, "BCSX", 504, "File does not end with trailer-size chunk."},
        {488, bigEndian(8, 8), 504, "Invalid trailer-size chunk."},
        {488, bigEndian((1ULL << 32) + 4, 8), 504, "Invalid trailer-size chunk."},
        {0, "", 499, "Could not read trailer backward offset."},
        {496, bigEndian(19, 4), 504, "Could not seek to start of trailer."},
        {496, bigEndian(481, 4), 504, "Could not seek to start of trailer."},
        {496, bigEndian(501, 4), 504, "Could not seek to start of trailer."},
        {496, bigEndian(0xFFFFFFFF, 4), 504, "Could not seek to start of trailer."},
    };
    const std::string good = goldenBytes("binary_scene.hex");
    ASSERT_EQ(good.size(), 504U);
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(std::string(sample.message) + " at " + std::to_string(sample.position));
        std::string bytes = good;
        mFile.setBytes(bytes.replace(sample.position, sample.bytes.size(), sample.bytes).substr(0, sample.length));
        std::string errors = "replaced";
        EXPECT_FALSE(mAccessor.read(mFile.name(), errors));
        EXPECT_EQ(errors, sample.message);
        EXPECT_FALSE(mAccessor.isFileSupported(mFile.name()));
    }
    mFile.setBytes(good + "what may follow the main chunk");
    EXPECT_TRUE(mAccessor.isFileSupported(mFile.name()));
    EXPECT_FALSE(mAccessor.isFileSupported(""));
    EXPECT_FALSE(mAccessor.isFileSupported(mFile.name() + " not there"));
}

TEST_F(BinaryReaderTest, Read_NeedsAFile)
{
    std::string errors = "kept, ";
    EXPECT_FALSE(mAccessor.read("", errors));
    EXPECT_EQ(errors, "kept, Empty file name.");
    EXPECT_FALSE(mAccessor.read(mFile.name(), errors));
    EXPECT_EQ(errors, "File not valid.");
}

TEST_F(BinaryReaderTest, Read_RefusesChunksThatLie)
{
    const std::string tooLong = bigEndian(0, 4) + bigEndian(64, 8) + std::string(56, 'x');
    const std::string unpadded = bigEndian(0, 4) + bigEndian(5, 8) + "12345";
    const std::string endless = bigEndian(0, 4) + bigEndian(~0ULL, 8) + std::string(56, 'x');
    const struct
    {
        std::string trailer;
        const char* message;
        const char* place = "";
        std::size_t before = 0; // how much of the trailer stands before that
    } cases[] = {
        {example::cameraChunk() + "12345678", "Could not read chunk header.\n"},
        {"HOST" + tooLong, "Could not read host chunk.\n"},
        {"HOST" + unpadded, "Could not read host chunk.\n"},
        {"HOST" + endless, "Could not read host chunk.\n"},
        {"DATS" + tooLong, "Could not read data structure chunk.", "a structure"},
        {"DATS" + endless, "Could not read data structure chunk.", "a structure"},
        {chunk("DATS", ""), "Could not read data structure chunk.", "a structure"},
        {chunk("DATS", "raw"), "Could not read data structure chunk.", "a structure"},
        {chunk("DATS", "rare" + kZero + kWeight), "Could not find serializer for format rare", "structure 'Weight'"},
        {structureChunk("name=Weight"), "Structures must have a name and at least one member", "structure 'Weight'"},
        {structureChunk(kWeight) + structureChunk("name=Weight:double=Value"),
         "Structure \"Weight\" is declared twice, with different members.\n", "structure 'Weight'", 48},
        {"MTDA" + tooLong, "Could not read apply metadata chunk.", "metadata without a name"},
        {"SMTD" + unpadded, "Could not read apply metadata chunk.", "metadata without a name"},
        {structureChunk(kWeight) + nodeChunk("Body", weightText("1") + kZero + example::cameraChunk()),
         "Could not read apply metadata chunk.", "the metadata of node 'Body'", 48},
        {chunk("MTDA", "Body"), "Could not read apply metadata chunk.", "metadata without a name"},
        {chunk("MTDA", "Body" + kZero + "raw"), "Could not read apply metadata chunk.", "the metadata of node 'Body'"},
        {chunk("MTDA", "Body" + kZero + "rare" + kZero + weightText("1")), "Could not find serializer for format rare",
         "the metadata of node 'Body'"},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.message);
        EXPECT_FALSE(read(sample.trailer));
        std::string expected = std::string("kept, ") + sample.message;
        if (*sample.place)
        {
            const std::size_t position = sceneWith("").size() - 24 + sample.before;
            expected += expected.back() == '\n' ? "" : "\n";
            expected += std::string("in ") + sample.place + ", from byte " + std::to_string(position) + " of " +
                        mFile.name() + "\n";
        }
        EXPECT_EQ(mErrors, expected);
        EXPECT_TRUE(mAccessor.structures().empty());
        EXPECT_TRUE(mAccessor.associations().empty());
    }
    EXPECT_FALSE(read(structureChunk(kWeight) + nodeChunk("Body", weightText("1")) +
                      nodeChunk("Head", "channel\nname a\nstream\nname b\nstructure None\nendStream\nendChannel\n")));
    EXPECT_THAT(mErrors, testing::StartsWith("kept, Structure 'None' not found"));
    EXPECT_TRUE(mAccessor.associations().empty()) << "also without what was read before the failure";
}

TEST_F(BinaryReaderTest, Read_SkipsLargeChunksOfTheHostWithoutReadingThem)
{
    // Metadata in front of them, between them and after them, of which one does not fit into what is read at once.
    const std::string large(5 << 20, 'x');
    const std::string host = chunk("HOST", large + large + large);
    const std::string trailer = structureChunk(kWeight) + host + nodeChunk("Body", weightText("1")) +
                                nodeChunk("Large", weightText("2") + large) + host + nodeChunk("Head", weightText("3"));
    const std::set<std::string> names = {"Body", "Large", "Head"};
    mFile.setBytes(sceneWith(trailer));
    const std::uint64_t before = bytesReadByProcess();
    ASSERT_TRUE(mAccessor.read(mFile.name(), nullptr, &names, mErrors)) << mErrors;
    EXPECT_LT(bytesReadByProcess() - before, 3 * large.size());
    EXPECT_EQ(weightOf("Body"), "1");
    EXPECT_EQ(weightOf("Large"), "2");
    EXPECT_EQ(weightOf("Head"), "3");
    mAccessor.clear();
}

TEST_F(BinaryReaderTest, Read_TakesTheLastOfOneNameAndToleratesAMissingFinalZero)
{
    ASSERT_TRUE(read(chunk("DATS", "raw" + kZero + kWeight) + structureChunk(kWeight) +
                     nodeChunk("Body", weightText("1")) + example::cameraChunk() +
                     chunk("MTDA", "Body" + kZero + "raw" + kZero + weightText("2"))))
        << mErrors;
    EXPECT_EQ(mErrors, "kept, ");
    EXPECT_EQ(weightOf("Body"), "2");
    EXPECT_EQ(mAccessor.structures().size(), 1U);
    mAccessor.clear();
}

TEST_F(BinaryReaderTest, Read_FiltersTakeEachWantedNameOnceAndLookNoFurther)
{
    const std::string unreadable = "nonsense";
    const std::string trailer = structureChunk("name=Other:float=Value") + structureChunk(kWeight) +
                                structureChunk(unreadable) + nodeChunk("Head", unreadable) +
                                nodeChunk("Body", weightText("1")) + nodeChunk("Body", unreadable);
    const std::set<std::string> weight = {"Weight"};
    const std::set<std::string> bodyAndGhost = {"Body", "Ghost"};
    const std::set<std::string> nothing;

    ASSERT_TRUE(read(trailer, &weight, &bodyAndGhost)) << mErrors;
    EXPECT_EQ(mAccessor.structures().size(), 1U);
    EXPECT_EQ(mAccessor.associations().size(), 1U);
    EXPECT_EQ(weightOf("Body"), "1");

    ASSERT_TRUE(read(trailer, &nothing, &nothing)) << mErrors;
    EXPECT_TRUE(mAccessor.structures().empty());
    EXPECT_TRUE(mAccessor.associations().empty());

    EXPECT_FALSE(read(trailer, &nothing, &bodyAndGhost)) << "the structure that the wanted stream uses is left out";
    EXPECT_FALSE(read(trailer, &weight, nullptr)) << "all associations are wanted, those of Head are unreadable";
    EXPECT_FALSE(read(trailer, nullptr, &nothing)) << "all structures are wanted, one is unreadable";
    EXPECT_EQ(weight.size(), 1U);
    mAccessor.clear();
}
} // namespace
} // namespace vumo::test
