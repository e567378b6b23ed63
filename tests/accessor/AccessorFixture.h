#pragma once

#include "examples/scene/Chunks.h"
#include "examples/scene/Scene.h"
#include "tests/support/DataFixtures.h"
#include "tests/support/Golden.h"
#include "tests/support/ScratchFile.h"
#include "vumo/vumo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>

namespace vumo::test
{
using namespace vumo::Data;
using example::bigEndian;
using example::chunk;

const std::string kZero(1, '\0');

/// Sees that a test takes back what it registers, beside what every test with data is checked for.
class AccessorFixture : public DataTest
{
protected:
    ~AccessorFixture() override { EXPECT_TRUE(Structure::allStructures().empty()); }
};

/// A structure with one float member "Value".
inline Ref<Structure> valueStructure(const char* name)
{
    return Structure::make(name, {{Member::kFloat, 1, "Value"}});
}

inline void setValue(Stream& stream, const Index& index, const std::string& value)
{
    Handle element(stream.structure());
    std::string errors;
    element.fromStr(value, 0, errors);
    EXPECT_TRUE(stream.setElement(index, element)) << errors;
}

/// One channel with one stream with one element.
inline Associations associationsOf(const char* channelName, const char* streamName, const Structure& structure,
                                   const Index& index, const std::string& value)
{
    Stream stream(structure, streamName);
    stream.setIndexType(index.typeName());
    setValue(stream, index, value);
    Associations associations;
    associations.channel(channelName).setDataStream(stream);
    return associations;
}

/// The text of the first value of an element; why there is none, if so.
inline std::string valueAt(const Accessor& accessor, const std::string& name, const char* channelName,
                           const char* streamName, const Index& index)
{
    const auto entry = accessor.associations().find(name);
    if (entry == accessor.associations().end())
        return "no such name";
    const Channel* channel = entry->second.findChannel(channelName);
    const Stream* stream = channel ? channel->findDataStream(streamName) : nullptr;
    return stream && stream->hasElement(index) ? stream->element(index).str(0) : "no such element";
}

/// A scene of one node with that trailer, as bytes.
inline std::string sceneWith(const std::string& trailer)
{
    example::Scene scene;
    scene.mNodes = {"Body"};
    scene.mVerticesPerNode = 1;
    scene.mTrailer = trailer;
    std::ostringstream out;
    EXPECT_TRUE(example::writeScene(scene, out));
    return out.str();
}

/// A golden scene of each kind, and what a script of its own made of it by one edit.
struct RichScene
{
    const char* ending;
    std::string bytes;
    std::string edited;
};

inline const RichScene kRichScenes[] = {
    {".oa", goldenText("rich.oa"), goldenText("rich_edited.oa")},
    {".ob", goldenBytes("rich.ob.hex"), goldenBytes("rich_edited.ob.hex")},
};

/// Makes that edit, too.
inline void edit(Accessor& accessor)
{
    setValue(*accessor.associations()["body"].channel("edge").dataStream("creases"), IndexPair(0, 2), "0.125");
}

/// What this process has read from files so far.
struct ReadCount
{
    std::uint64_t bytes = 0;
    std::uint64_t calls = 0;
};

inline ReadCount readsByProcess()
{
    std::ifstream file("/proc/self/io");
    std::map<std::string, std::uint64_t> counts;
    std::string word;
    while (file >> word)
        file >> counts[word];
    EXPECT_EQ(counts.count("rchar:"), 1U);
    return {counts["rchar:"], counts["syscr:"]};
}

inline std::uint64_t bytesReadByProcess()
{
    return readsByProcess().bytes;
}

/// An accessor for the file; null, having failed the test, when it could not be read.
inline std::unique_ptr<Accessor> readScene(const std::string& fileName)
{
    std::string errors;
    std::unique_ptr<Accessor> accessor = Accessor::readFile(fileName, errors);
    EXPECT_TRUE(accessor) << errors;
    EXPECT_EQ(errors, "");
    return accessor;
}

/// Gives a node of the file, or its scene, these associations. Says why it could not, or nothing.
inline std::string attach(const std::string& fileName, const std::string& node, const Associations& associations)
{
    const auto accessor = readScene(fileName);
    accessor->associations()[node] = associations;
    std::string errors;
    const bool isWritten = accessor->write(errors);
    EXPECT_EQ(isWritten, errors.empty());
    return errors;
}
} // namespace vumo::test
