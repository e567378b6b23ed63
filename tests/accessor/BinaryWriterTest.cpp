#include "vumo/accessor/BinaryWriter.h"

#include "tests/accessor/AccessorFixture.h"
#include "tests/support/ScratchLocale.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/StructureSerializer.h"

namespace vumo::test
{
namespace
{
/// Takes the format "raw" of one kind away while it lives.
template <class Serializer>
class WithoutRawFormat
{
public:
    WithoutRawFormat() : mRaw(Serializer::formatByName("raw")) { Serializer::deregisterFormat(*mRaw); }

    ~WithoutRawFormat()
    {
        Serializer::registerFormat(*mRaw);
        Serializer::setDefaultFormat(mRaw);
    }

private:
    const Serializer* mRaw;
};

class BinaryWriterTest : public AccessorFixture
{
protected:
    Associations weights(const std::string& value) const
    {
        return associationsOf("vertex", "weights", *mWeight, 0, value);
    }

    /// Puts the metadata into the file, whatever can be read of it.
    bool replace(const std::string& fileName, const Accessor::StructureSet& structures,
                 const std::map<std::string, Associations>& associations)
    {
        OvriBinaryFileAccessor accessor;
        std::string ignored;
        accessor.read(fileName, ignored);
        accessor.setConflict(Accessor::kOverwrite);
        accessor.setStructures(structures);
        accessor.associations() = associations;
        return accessor.write(mErrors);
    }

    /// Puts metadata for "Body" and the scene into the file; on failure the file must be as it was.
    bool write()
    {
        const std::string before = mFile.bytes();
        mErrors = "kept, ";
        const bool isWritten = replace(mFile.name(), {mWeight.get()}, {{"Body", weights("0.5")}, {"", weights("1")}});
        EXPECT_EQ(isWritten, mErrors == "kept, ") << mErrors;
        EXPECT_TRUE(isWritten || mFile.bytes() == before);
        return isWritten;
    }

    /// The chunks that write() adds.
    std::string newMetadata() const
    {
        std::ostringstream out;
        out.width(99);
        EXPECT_TRUE(BinaryWriter::writeStructureChunk(out, *mWeight));
        EXPECT_TRUE(BinaryWriter::writeAssociationsChunk(out, "SMTD", "", weights("1")));
        EXPECT_TRUE(BinaryWriter::writeAssociationsChunk(out, "MTDA", "Body", weights("0.5")));
        return out.str();
    }

    const Ref<Structure> mWeight = valueStructure("Weight");
    ScratchFile mFile{".ob"};
    std::string mErrors;
};

TEST_F(BinaryWriterTest, Chunks_AreWrittenAsAWholeOrNotAtAll)
{
    std::ostringstream nothing;
    EXPECT_TRUE(BinaryWriter::writeAssociationsChunk(nothing, "MTDA", "Body", Associations()));
    EXPECT_EQ(nothing.str(), "");
    EXPECT_FALSE(BinaryWriter::writeAssociationsChunk(nothing, "MTDA", "Bo" + kZero + "dy", weights("1")));
    EXPECT_EQ(nothing.str(), "");

    nothing.setstate(std::ios::failbit);
    EXPECT_FALSE(BinaryWriter::writeStructureChunk(nothing, *mWeight));
    EXPECT_FALSE(BinaryWriter::writeAssociationsChunk(nothing, "MTDA", "Body", weights("1")));
}

TEST_F(BinaryWriterTest, Write_KeepsEveryHostChunkInItsOrder)
{
    const std::string a = example::cameraChunk();
    const std::string b = example::pluginChunk();
    const std::string structure = chunk("DATS", "anything");
    const std::string node = chunk("MTDA", "old metadata is not even looked into");
    const std::string scene = chunk("SMTD", "");
    const struct
    {
        const char* what;
        std::string old;
        std::string before;
        std::string after;
    } cases[] = {
        {"an empty trailer", "", "", ""},
        {"no metadata yet", a + b, a + b, ""},
        {"around the metadata", a + structure + scene + node + b, a, b},
        {"two runs of metadata", a + structure + node + b + structure + node + a, a, b + a},
        {"no structure: not known as metadata", a + scene + node, a + scene + node, ""},
        {"associations before the first structure", node + structure + node + b, node, b},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.what);
        mFile.setBytes(sceneWith(sample.old));
        ASSERT_TRUE(write()) << mErrors;
        const std::string once = mFile.bytes();
        EXPECT_EQ(once, sceneWith(sample.before + newMetadata() + sample.after));
        ASSERT_TRUE(write()) << mErrors;
        EXPECT_EQ(mFile.bytes(), once);
    }
}

TEST_F(BinaryWriterTest, Write_LeavesOutEntriesWithoutStreams)
{
    // Without a structure in front of them they would stay for good, and multiply.
    mFile.setBytes(sceneWith(""));
    const auto accessor = readScene(mFile.name());
    accessor->associations()["Body"].channel("vertex");
    ASSERT_TRUE(accessor->write(mErrors)) << mErrors;
    EXPECT_EQ(mFile.bytes(), sceneWith(""));
}

TEST_F(BinaryWriterTest, Write_RefusesATrailerThatLies)
{
    const std::string tooLong = bigEndian(0, 4) + bigEndian(64, 8) + std::string(56, 'x');
    const std::string structure = chunk("DATS", "");
    const std::string rest = "12345678";
    const struct
    {
        std::string trailer;
        const char* message;
    } cases[] = {
        {example::cameraChunk() + rest, "Error reading chunk header before metadata."},
        {"HOST" + tooLong, "Error reading chunk before metadata."},
        {"MTDA" + tooLong, "Error reading chunk before metadata."},
        {"DATS" + tooLong, "Error skipping data structure chunk."},
        {structure + rest, "Error skipping existing metadata chunks."},
        {structure + "SMTD" + tooLong, "Error skipping existing metadata chunks."},
        {structure + "HOST" + tooLong, "Error reading chunk before metadata."},
        {structure + example::cameraChunk() + rest, "Error skipping backward size chunk."},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.message);
        mFile.setBytes(sceneWith(sample.trailer));
        EXPECT_FALSE(write());
        EXPECT_EQ(mErrors, std::string("kept, ") + sample.message);
    }
}

TEST_F(BinaryWriterTest, Write_RefusesAFileWhoseEndsDoNotMeet)
{
    const std::string good = goldenBytes("binary_scene.hex");
    const struct
    {
        const char* what;
        std::string bytes;
        const char* message;
    } cases[] = {
        {"no group before the trailer", std::string(good).replace(68, 4, "FOR4"),
         "kept, Could not find the trailer group before the trailer.\n"},
        {"a group of another size", std::string(good).replace(76, 8, bigEndian(421, 8)),
         "kept, Could not find the trailer group before the trailer.\n"},
        {"an offset to another chunk", std::string(good).replace(496, 4, bigEndian(388, 4)),
         "kept, Could not find the trailer group before the trailer.\n"},
        {"bytes after the main chunk", good + "x", "kept, File does not end with its main chunk.\n"},
        {"not a scene", "Some text, longer than an identification.", "Not a supported file type."},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.what);
        mFile.setBytes(sample.bytes);
        EXPECT_FALSE(write());
        EXPECT_EQ(mErrors, sample.message);
    }
    const std::string missing = mFile.name() + " not there";
    mErrors.clear();
    EXPECT_FALSE(replace(missing, {}, {}));
    EXPECT_EQ(mErrors, "Could not open " + missing + " for writing.");
    for (const char* const name : {"oa", "ob"})
    {
        mErrors.clear();
        EXPECT_FALSE(Accessor::accessorByExtension(name)->write(mErrors));
        EXPECT_EQ(mErrors, "The accessor has no file to write to: read one first.\nCould not open  for writing.");
    }
}

TEST_F(BinaryWriterTest, Write_NamesWhatCouldNotBeSerialized)
{
    mFile.setBytes(sceneWith(""));
    {
        const WithoutRawFormat<StructureSerializer> guard;
        EXPECT_FALSE(write());
        EXPECT_EQ(mErrors, "kept, Could not write structure chunk to in-memory trailer.");
    }
    {
        const WithoutRawFormat<AssociationsSerializer> guard;
        EXPECT_FALSE(write());
        EXPECT_EQ(mErrors, "kept, Could not write scene associations chunk to in-memory trailer.");
        mErrors.clear();
        EXPECT_FALSE(replace(mFile.name(), {mWeight.get()}, {{"Body", weights("1")}}));
        EXPECT_EQ(mErrors, "Could not write node associations chunk to in-memory trailer.");
    }
    EXPECT_TRUE(write());
}

TEST_F(BinaryWriterTest, Texts_AreUtf8InTheFileAndInTheLocalesEncodingOutside)
{
    const std::string utf8 = "\xC3\xA9";
    const std::string latin1 = "\xE9";
    const Ref<Structure> note = Structure::make("Note", {{Member::kString, 1, "Text"}});
    mFile.setBytes(sceneWith(""));

    const auto bytesInFile = [&](const std::string& value) {
        const Associations notes = associationsOf("scene", "notes", *note, 0, value);
        EXPECT_TRUE(replace(mFile.name(), {note.get()}, {{"", notes}})) << mErrors;
        const std::string bytes = mFile.bytes();
        const std::size_t begin = bytes.find('"') + 1;
        return bytes.substr(begin, bytes.find('"', begin) - begin);
    };
    EXPECT_EQ(bytesInFile(latin1), latin1) << "what cannot be converted stays as it is";
    EXPECT_EQ(valueAt(*readScene(mFile.name()), "", "scene", "notes", 0), latin1);

    const ScratchLocale locale("ISO-8859-1");
    if (!locale.isSet())
        GTEST_SKIP() << "localedef cannot make a locale here";
    std::string many;
    std::string manyUtf8;
    for (int i = 0; i < 500; ++i)
    {
        many += latin1;
        manyUtf8 += utf8;
    }
    EXPECT_EQ(bytesInFile(many), manyUtf8);
    EXPECT_EQ(valueAt(*readScene(mFile.name()), "", "scene", "notes", 0), many);
}

TEST_F(BinaryWriterTest, Texts_ThatTheLocaleCannotExpressAreNotTakenForOthers)
{
    const std::string japanese = "\xE6\x97\xA5";
    const std::string zero(1, '\0');
    const std::string note = "raw" + zero + "name=Note:string=" + japanese + zero;
    const std::string empty = japanese + zero + "raw" + zero + "endAssociations\n" + zero;
    const struct
    {
        std::string trailer;
        std::string error;
    } cases[] = {
        {chunk("DATS", "raw" + zero + "name=Note:string=a") + chunk("MTDA", empty), ""}, // names are not converted
        {chunk("DATS", note), "The file holds metadata with characters that the encoding of this locale does not have. "
                              "Write it in a locale that has them, such as one of UTF-8.\n"},
    };
    const ScratchLocale locale("ISO-8859-1");
    if (!locale.isSet())
        GTEST_SKIP() << "localedef cannot make a locale here";
    for (const auto& [trailer, error] : cases)
    {
        mFile.setBytes(sceneWith(trailer));
        const std::string before = mFile.bytes();
        mErrors.clear();
        EXPECT_EQ(readScene(mFile.name())->write(mErrors), error.empty());
        EXPECT_EQ(mErrors, error);
        EXPECT_EQ(mFile.bytes() == before, !error.empty());
    }
}
} // namespace
} // namespace vumo::test
