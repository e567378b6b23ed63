// Writes a small scene file, in place of any file of that name, the way the host does; then attaches metadata to
// it the way a plug-in does:
//
//     vumo_write_scene FILE
//
// The file's extension decides its kind: "oa" for an ASCII scene, "ob" for a binary one. What attaches the metadata
// does not have to know.

#include "examples/scene/Scene.h"
#include "vumo/vumo.h"

#include <cstdint>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

using namespace vumo::Data;

namespace
{
/// The scene as it comes from the host: geometry, and no metadata yet.
void writeBareScene(const std::string& fileName)
{
    example::Scene scene;
    scene.mNodes = {"World", "Body", "Head"};
    scene.mTrailer = example::cameraChunk() + example::pluginChunk();

    const std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(fileName);
    if (!accessor)
        throw std::runtime_error("is neither an \"oa\" nor an \"ob\" file by its name");
    const bool isAscii = dynamic_cast<OvriAsciiFileAccessor*>(accessor.get()) != nullptr;
    std::ofstream file(fileName, std::ios::binary);
    if (isAscii ? !example::writeAsciiScene(scene, file) : !example::writeScene(scene, file))
        throw std::runtime_error("could not be written");
}

/// Sets one value of a member. The value has the member's own type: a float is not converted to a double.
template <class T>
void set(Handle& element, const char* member, const T& value, unsigned int i = 0)
{
    if (!element.setPositionByMemberName(member) || !element.set(i, value))
        throw std::runtime_error(std::string("has no such member: ") + member);
}

/// A weight for each vertex or face: a stream with plain numbers as indices.
Stream makeWeights(const Structure& structure)
{
    Stream stream(structure, "weights");
    const float weights[] = {0, 0.25F, 0.5F, 1};
    for (unsigned int i = 0; i < 4; ++i)
    {
        Handle element(structure);
        set(element, "Weight", weights[i]);
        set(element, "Locked", i == 0);
        stream.setElement(i, element);
    }
    return stream;
}

/// The seams of a garment, each between two vertices: the indices are pairs.
Stream makeSeams(const Structure& structure)
{
    Stream stream(structure, "seams");
    stream.setIndexType(IndexPair::myTypeName);
    Handle element(structure);
    set(element, "Stitch", "zig-zag, the \"good\" one");
    set(element, "Offset", 0.125, 0);
    set(element, "Offset", -2.5, 2);
    stream.setElement(IndexPair(0, 3), element);
    stream.setElement(IndexPair(1, 2), element); // stores a copy
    return stream;
}

/// What the artists say about the scene, by their names: the indices are strings.
Stream makeNotes(const Structure& structure)
{
    Stream stream(structure, "notes");
    stream.setIndexType(IndexString::myTypeName);
    Handle element(structure);
    set(element, "Text", "The collar clips at frame 12.\nAsk Lee.");
    set(element, "Revision", std::numeric_limits<std::uint64_t>::max());
    stream.setElement(IndexString("ann"), element);
    return stream;
}

void addStream(Associations& associations, const char* channelName, const Stream& stream)
{
    Channel channel = associations.channel(channelName); // shares the stored one, made when there is none
    channel.setDataStream(stream);
}

void attachMetadata(const std::string& fileName)
{
    // Read first: writing replaces all metadata of the file by what the accessor holds.
    std::string errors;
    const std::unique_ptr<Accessor> accessor = Accessor::readFile(fileName, errors);
    if (!accessor)
        throw std::runtime_error(errors);

    // Held from here on. Whatever refers to a structure holds it as well, and the last one to let go deletes it.
    const auto weight =
        Structure::make("VertexWeight", {{Member::kFloat, 1, "Weight"}, {Member::kBoolean, 1, "Locked"}});
    const auto seam = Structure::make("Seam", {{Member::kString, 1, "Stitch"}, {Member::kDouble, 3, "Offset"}});
    const auto note = Structure::make("Note", {{Member::kString, 1, "Text"}, {Member::kUInt64, 1, "Revision"}});

    addStream(accessor->associations()["Body"], "vertex", makeWeights(*weight));
    addStream(accessor->associations()["Body"], "edge", makeSeams(*seam));
    addStream(accessor->associations()["Head"], "face", makeWeights(*weight));
    addStream(accessor->associations()[AccessorOvri::getSceneAssociationsName()], "scene", makeNotes(*note));

    if (!accessor->write(errors)) // with the structures that the streams use
        throw std::runtime_error(errors);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::cerr << "usage: vumo_write_scene FILE.oa|FILE.ob\n";
        return 1;
    }
    const std::string fileName = argv[1];
    try
    {
        writeBareScene(fileName);
        attachMetadata(fileName);
    }
    catch (const std::exception& error)
    {
        std::cerr << fileName << ": " << error.what() << '\n';
        return 1;
    }
    return 0;
}
