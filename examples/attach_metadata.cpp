// A host object that carries its metadata itself, and what sharing means for it:
//
//     vumo_attach_metadata

#include "vumo/vumo.h"

#include <iostream>
#include <string>
#include <utility>

using namespace vumo::Data;

namespace
{
/// An object of the host's. Deriving from AttachDirectly gives it metadata(), editableMetadata(), setMetadata()
/// and deleteMetadata(); copying the object shares the metadata.
class Mesh : public AttachDirectly
{
public:
    explicit Mesh(std::string name) : mName(std::move(name)) {}

    const std::string& name() const { return mName; }
    void rename(const std::string& name) { mName = name; }

private:
    std::string mName;
};

/// A weight for each of three vertices.
Stream makeWeights(const Structure& structure)
{
    Stream stream(structure, "weights");
    for (unsigned int vertex = 0; vertex < 3; ++vertex)
    {
        Handle element(structure); // on the first member, with default values
        element.set(0, 0.5F * static_cast<float>(vertex));
        stream.setElement(vertex, element);
    }
    return stream;
}

float weightOf(const Mesh& mesh, unsigned int vertex)
{
    const Channel* const channel = mesh.metadata()->findChannel("vertex");
    return channel->findDataStream("weights")->element(vertex).get<float>().value();
}

void setWeight(Mesh& mesh, unsigned int vertex, float weight)
{
    Channel channel = mesh.editableMetadata()->channel("vertex");
    channel.dataStream("weights")->element(vertex).set(0, weight);
}

void report(const Mesh& body, const Mesh& copy)
{
    std::cout << body.name() << ": " << weightOf(body, 1) << ", " << copy.name() << ": " << weightOf(copy, 1) << "\n";
}
} // namespace

int main()
{
    const vumo::Ref<Structure> weight = Structure::make("VertexWeight", {{Member::kFloat, 1, "Weight"}});

    Mesh body("body");
    Associations metadata;
    metadata.channel("vertex").setDataStream(makeWeights(*weight));
    body.setMetadata(metadata); // the object shares it from here on

    // A copy shares the metadata of the original: an edit of one is seen by both.
    Mesh copy(body);
    copy.rename("copy");
    setWeight(copy, 1, 0.75F);
    report(body, copy);

    // makeUnique() gives the copy metadata of its own. Nothing does so by itself.
    copy.editableMetadata()->makeUnique();
    setWeight(copy, 1, 1.0F);
    report(body, copy);

    vumo::Debug::Footprint footprint;
    Associations::Debug(body.metadata(), footprint);
    vumo::Debug::Print print(std::cout);
    vumo::Debug::Footprint::Debug(&footprint, print);
    return 0;
}
