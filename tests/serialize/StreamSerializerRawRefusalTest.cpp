#include "tests/support/SerializeFixtures.h"
#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"
#include "vumo/serialize/StreamSerializerRaw.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace vumo::Data
{
namespace
{
using namespace std::string_literals;

/// An index that does not write the text that it is made of.
class ShoutedIndex : public IndexString
{
public:
    using IndexString::IndexString;
    IndexType* clone() const override { return new ShoutedIndex(*this); }
    std::string asString() const override { return indexString() + "!"; }
};

/// Writes what would not be read back as it was, and sees that it is written all the same.
class StreamSerializerRawRefusalTest : public test::SerializeFixture
{
protected:
    const StreamSerializerRaw& mFormat = *StreamSerializerRaw::theFormat();

    struct Sample
    {
        std::string message; // "~" in it stands for " of stream 'S' cannot be read back: "
        std::string name = "S";
        std::string indexType = "string";
        Index index = IndexString("x");
        std::vector<double> numbers = {0, 1, 2, 3};
        std::string label = "";
        std::string data = "0 1 2 3 \"\""; // what these values are written as
    };

    static Stream streamOf(const Sample& sample)
    {
        Stream stream(*Structure::structureByName("P"), sample.name);
        stream.setIndexType(sample.indexType);
        Handle element(stream.structure());
        std::memcpy(element.asDouble(), &sample.numbers[0], sizeof(double));
        element.setPositionByMemberName("f");
        for (std::size_t i = 0; i < 3; ++i)
            element.asFloat()[i] = static_cast<float>(sample.numbers[i + 1]);
        test::setText(element, "s", sample.label);
        stream.setElement(sample.index, element);
        return stream;
    }

    void expectRefused(const Sample& sample) const
    {
        std::string message = sample.message;
        const std::string::size_type mark = message.find('~');
        if (mark != std::string::npos)
            message.replace(mark, 1, " of stream 'S' cannot be read back: ");
        SCOPED_TRACE(message);
        std::ostringstream out;
        std::string errors = "before\n";
        EXPECT_EQ(mFormat.write(streamOf(sample), out, errors), 1);
        EXPECT_EQ(errors, "before\n" + message + "\n1 error found, Stream may not be written correctly\n");
        EXPECT_EQ(out.str(), "name " + sample.name + "\nindexType " + sample.indexType + "\nstructure P\n" +
                                 sample.index.asString() + "\n" + sample.data + "\nendStream\n");
    }

    static Sample named(const std::string& name, const std::string& message) { return {message, name}; }

    static Sample indexed(const std::string& indexType, const Index& index, const std::string& message)
    {
        return {message, "S", indexType, index};
    }
};

TEST_F(StreamSerializerRawRefusalTest, Write_NamesWhatIsWrongWithNamesAndIndices)
{
    registered("name=P:double=d:float[3]=f:string=s");
    Index::registerType("alias", &Index::TypeCreator);
    Index::registerType("deaf", [](const std::string&) -> Index { throw std::runtime_error("no"); });
    Index::registerType("mute", [](const std::string&) -> Index { throw 0; });
    const auto text = [](const std::string& index, const std::string& message) {
        return indexed("string", Index(IndexString(index)), message);
    };
    const Sample samples[] = {
        named(" S", "Stream name ' S' at record 1 of stream ' S' cannot be read back: it has whitespace at an end"),
        named("S\r", "Stream name 'S\\x0D' at record 1 of stream 'S\\x0D' cannot be read back: it has whitespace at an "
                     "end"),
        named("S\nT", "Stream name 'S\\nT' at record 1 of stream 'S\\nT' cannot be read back: it has a line break"),
        named("S\0T"s, "Stream name 'S\\x00T' at record 1 of stream 'S\\x00T' cannot be read back: it has a zero byte"),
        named(std::string(1019, 'n'), "Stream name '" + std::string(80, 'n') + "...' at record 1 of stream '" +
                                          std::string(80, 'n') +
                                          "...' cannot be read back: its line is longer than 1023 characters"),
        text("", "Index '' at record 4~it is empty"),
        text("endStream", "Index 'endStream' at record 4~it reads as a keyword"),
        text("name x", "Index 'name x' at record 4~it reads as a keyword"),
        text("indexType\tx", "Index 'indexType\\x09x' at record 4~it reads as a keyword"),
        text("structure", "Index 'structure' at record 4~it reads as a keyword"),
        text("x ", "Index 'x ' at record 4~it has whitespace at an end"),
        text("\vx", "Index '\\x0Bx' at record 4~it has whitespace at an end"),
        text("x\n", "Index 'x\\n' at record 4~it has a line break"),
        text("x\ny", "Index 'x\\ny' at record 4~it has a line break"),
        text("x\0"s, "Index 'x\\x00' at record 4~it has a zero byte"),
        text(std::string(1024, '-'),
             "Index '" + std::string(80, '-') + "...' at record 4~its line is longer than 1023 characters"),
        indexed("numeric", IndexPair(1, 2), "Index '1 2' at record 4~it is not one of type 'numeric'"),
        indexed("pair", 7U, "Index '7' at record 4~it is not one of type 'pair'"),
        indexed("string", 7U, "Index '7' at record 4~it is not one of type 'string'"),
        indexed("string", ShoutedIndex("x"), "Index 'x!' at record 4~it is not one of type 'string'"),
        indexed("deaf", 7U, "Index '7' at record 4~it is not one of type 'deaf'"),
        indexed("mute", 7U, "Index '7' at record 4~it is not one of type 'mute'"),
    };
    for (const Sample& sample : samples)
        expectRefused(sample);

    std::string errors;
    std::ostringstream out;
    EXPECT_EQ(mFormat.write(streamOf(indexed("alias", 7U, "")), out, errors), 0) << errors;
    const Stream orphan = streamOf(indexed("alias", 7U, ""));
    Index::creators().erase("alias");
    Index::creators().erase("deaf");
    Index::creators().erase("mute");
    EXPECT_EQ(mFormat.write(orphan, out, errors), 2);
    EXPECT_EQ(
        errors.find("Index type 'alias' at record 2 of stream 'S' cannot be read back: no such type is registered\n"
                    "Index '7' at record 4"),
        0U);
}

TEST_F(StreamSerializerRawRefusalTest, Write_NamesWhatIsWrongWithValues)
{
    registered("name=P:double=d:float[3]=f:string=s");
    const double infinity = std::numeric_limits<double>::infinity();
    const std::string fits(1013, 's'); // a line of 1,023 characters
    Sample samples[] = {
        {"Value inf of member 'd' at index 'x' at record 5~it is not finite"},
        {"Value -inf of member 'f' at index 'x' at record 5~it is not finite"},
        {"Value nan of member 'f' at index 'x' at record 5~it is not finite"},
        {"Text of member 's' at index 'x' at record 5~its line is longer than 1023 characters"},
    };
    samples[0].numbers[0] = infinity;
    samples[0].data = "inf 1 2 3 \"\"";
    samples[1].numbers[2] = -infinity;
    samples[1].data = "0 1 -inf 3 \"\"";
    samples[2].numbers[3] = std::nan("");
    samples[2].data = "0 1 2 nan \"\"";
    samples[3].label = fits + "s";
    samples[3].data = "0 1 2 3 \"" + fits + "s\"";
    for (const Sample& sample : samples)
        expectRefused(sample);

    Sample good;
    good.label = fits;
    std::ostringstream out;
    std::string errors;
    EXPECT_EQ(mFormat.write(streamOf(good), out, errors), 0) << errors;
    out << std::hexfloat;
    EXPECT_EQ(mFormat.write(streamOf({}), out, errors), 2);
    out << std::defaultfloat;
    EXPECT_EQ(
        errors.find("Value 0x0p+0 of member 'd' at index 'x' at record 5 of stream 'S' cannot be read back: it is in "
                    "hexadecimal digits\nValue 0x1p+0 of member 'f'"),
        0U)
        << errors;
    samples[0].numbers = {infinity, infinity, 0, 0};
    samples[0].label = fits;
    errors.clear();
    EXPECT_EQ(mFormat.write(streamOf(samples[0]), out, errors), 3) << "each fault of a line counts: " << errors;

    Handle matrix(registered("name=M:flt4x4[2]=m"));
    matrix.asFloatMatrix4x4()[31] = std::nanf("");
    errors.clear();
    EXPECT_EQ(mFormat.writeMember(matrix, 9, out, errors), 1);
    EXPECT_EQ(errors, "Value nan at record 9 cannot be read back: it is not finite\n");
}
} // namespace
} // namespace vumo::Data
