// The extension module vumo._vumo: scenes, streams and structures as the package's Python needs them. What users meet
// is written in Python on top of it; _vumo.pyi has the types.

#include "Failure.h"
#include "SceneFile.h"
#include "StreamAddress.h"
#include "Text.h"
#include "vumo/data/Channel.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace py = pybind11;
using namespace vumo::Data;

namespace
{
using MemberTuple = std::tuple<Text, std::string, unsigned int>;
using FaultTuple = std::tuple<bool, Text, std::uint64_t, Text>;

std::vector<std::string> bytesOf(const std::vector<Text>& texts)
{
    std::vector<std::string> result;
    result.reserve(texts.size());
    for (const Text& text : texts)
        result.push_back(text.bytes);
    return result;
}

/// A structure, which the object in Python references.
struct Layout
{
    vumo::Ref<const Structure> structure;
};

Layout makeLayout(const Text& name, const std::vector<MemberTuple>& members)
{
    const vumo::Ref<Structure> structure(new Structure(name.bytes.c_str()));
    for (const auto& [memberName, typeName, dimension] : members)
    {
        if (!structure->addMember(Member::typeFromName(typeName.c_str()), dimension, memberName.bytes.c_str()))
            throw py::value_error("A member needs a name of its own, a type and at least one value.");
    }
    return {vumo::Ref<const Structure>(structure.get())};
}

/// Name, type, dimension and offset of each member.
py::list membersOf(const Layout& layout)
{
    py::list result;
    for (unsigned int i = 0; i < layout.structure->memberCount(); ++i)
    {
        const Member* const member = layout.structure->member(i);
        result.append(py::make_tuple(toPython(Member::name(member)), Member::typeName(Member::type(member)),
                                     Member::length(member), Member::offset(member)));
    }
    return result;
}

std::shared_ptr<SceneFile> openScene(const py::bytes& path, const std::optional<std::vector<Text>>& nodes,
                                     bool isWritable, bool isExact, bool overwrites, bool isDurable,
                                     unsigned int lockWait)
{
    SceneFile::Options options;
    options.isWritable = isWritable;
    options.numbers = isExact ? kExact : kSixDigits;
    options.conflict = overwrites ? Accessor::kOverwrite : Accessor::kRefuse;
    options.durability = isDurable ? Accessor::kJournal : Accessor::kMemoryOnly;
    options.lockWait = lockWait;
    std::optional<std::vector<std::string>> names;
    if (nodes)
        names = bytesOf(*nodes);
    return std::make_shared<SceneFile>(path, names, options);
}

/// All blocks of the file that cannot be read: whether each is a structure, its name, where it stands, and why.
std::vector<FaultTuple> faultsOf(const std::string& fileName)
{
    std::vector<FaultTuple> faults;
    const std::unique_ptr<Accessor> accessor = Failure::newAccessor(fileName);
    std::string errors;
    accessor->setUnread(Accessor::kKeep);
    if (!accessor->read(fileName, errors))
        throw Failure::of(*accessor, errors);
    for (const UnreadBlock& block : accessor->unread())
        faults.emplace_back(block.kind == UnreadBlock::kStructure, Text{block.name}, block.position, Text{block.why});
    return faults;
}

std::vector<Text> channelsOf(SceneFile& scene, const Text& node)
{
    std::vector<Text> names;
    for (const Channel& channel : scene.node(node.bytes))
        names.push_back({channel.name()});
    return names;
}

std::vector<Text> streamsOf(SceneFile& scene, const Text& node, const Text& channel)
{
    const Channel* const found = scene.node(node.bytes).findChannel(channel.bytes);
    if (!found)
        throw Failure{Failure::kNotFound,
                      "There is no channel " + channel.bytes + " any more in the node " + node.bytes + ".",
                      scene.fileName(), node.bytes};
    std::vector<Text> names;
    for (const Stream* const stream : *found)
        names.push_back({stream->name()});
    return names;
}

/// The metaclass of classes in Python: pybind11's own only matters for static properties, of which there are none, and
/// differs from what a stub says.
py::metaclass plainType()
{
    return py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type));
}

void defineScene(py::module_& module)
{
    py::class_<SceneFile, std::shared_ptr<SceneFile>>(module, "SceneFile", plainType())
        .def(py::init(&openScene), py::arg("path"), py::arg("nodes"), py::arg("writable"), py::arg("exact"),
             py::arg("overwrite"), py::arg("durable"), py::arg("lock_wait"))
        .def_property_readonly("writable", &SceneFile::isWritable)
        .def_property_readonly("closed", &SceneFile::isClosed)
        .def_property_readonly("edited", &SceneFile::isEdited)
        .def_property_readonly("checksum", &SceneFile::checksum)
        .def("save", &SceneFile::save)
        .def("estimate_save",
             [](SceneFile& scene) {
                 const Accessor::WriteCost cost = scene.estimateSave();
                 return py::make_tuple(cost.position, cost.bytes, cost.oldLength, cost.newLength);
             })
        .def("close", &SceneFile::close)
        .def("nodes",
             [](const SceneFile& scene) {
                 std::vector<Text> names;
                 for (const std::string& name : scene.nodes())
                     names.push_back({name});
                 return names;
             })
        .def("has_node", [](const SceneFile& scene, const Text& name) { return scene.hasNode(name.bytes); })
        .def("load",
             [](SceneFile& scene, const std::vector<Text>& names) {
                 const std::vector<std::string> wanted = bytesOf(names);
                 scene.load(std::set<std::string>(wanted.begin(), wanted.end()));
             })
        .def("channels", &channelsOf)
        .def("streams", &streamsOf)
        .def("add_node", [](SceneFile& scene, const Text& node) { scene.addNode(node.bytes); })
        .def("add_channel", [](SceneFile& scene, const Text& node,
                               const Text& channel) { scene.editNode(node.bytes).channel(channel.bytes); })
        .def("remove_node", [](SceneFile& scene, const Text& node) { scene.removeNode(node.bytes); })
        .def("remove_channel", [](SceneFile& scene, const Text& node,
                                  const Text& channel) { scene.removeChannel(node.bytes, channel.bytes); })
        .def("remove_stream", [](SceneFile& scene, const Text& node, const Text& channel,
                                 const Text& stream) { scene.removeStream(node.bytes, channel.bytes, stream.bytes); })
        .def("declare", [](SceneFile& scene, const Layout& layout) { scene.declare(*layout.structure); })
        .def("undeclare", [](SceneFile& scene, const Text& name) { scene.undeclare(name.bytes); })
        .def("structures", [](const SceneFile& scene) {
            std::vector<Layout> layouts;
            for (const auto& [name, structure] : scene.structures())
                layouts.push_back({vumo::Ref<const Structure>(structure)});
            return layouts;
        });
}

void defineStream(py::module_& module)
{
    py::class_<StreamAddress>(module, "StreamAddress", plainType())
        .def(py::init([](const std::shared_ptr<SceneFile>& scene, const Text& node, const Text& channel,
                         const Text& name) { return StreamAddress(scene, node.bytes, channel.bytes, name.bytes); }))
        .def("create", [](StreamAddress& stream, const Layout& layout, const std::string& indexType,
                          unsigned int size) { stream.create(*layout.structure, indexType, size); })
        .def("copy", &StreamAddress::copy)
        .def("exists", &StreamAddress::exists)
        .def_property_readonly(
            "structure",
            [](const StreamAddress& stream) { return Layout{vumo::Ref<const Structure>(&stream.structure())}; })
        .def_property_readonly("index_type", &StreamAddress::indexType)
        .def("__len__", &StreamAddress::elementCount)
        .def("make_dense", &StreamAddress::makeDense)
        .def("resize", &StreamAddress::resize)
        .def("indices", &StreamAddress::indices)
        .def("has_element", &StreamAddress::hasElement)
        .def("add_elements", &StreamAddress::addElements)
        .def("remove_element", &StreamAddress::removeElement)
        .def("view", &StreamAddress::view)
        .def("records", &StreamAddress::records)
        .def("gather", &StreamAddress::gather)
        .def("scatter", &StreamAddress::scatter)
        .def("scatter_strings", &StreamAddress::scatterStrings);
}
} // namespace

PYBIND11_MODULE(_vumo, module)
{
    registerFailures();
    module.attr("__version__") = VUMO_VERSION;
    py::class_<Layout>(module, "Layout", plainType())
        .def(py::init(&makeLayout), py::arg("name"), py::arg("members"))
        .def_property_readonly("name", [](const Layout& layout) { return Text{layout.structure->name()}; })
        .def_property_readonly("members", &membersOf)
        .def_property_readonly("size", [](const Layout& layout) { return layout.structure->totalSize(); })
        .def("__eq__", [](const Layout& a, const Layout& b) { return *a.structure == *b.structure; });
    defineScene(module);
    defineStream(module);
    module.def("faults", [](const py::bytes& path) {
        const std::string fileName = path;
        const py::gil_scoped_release unlocked;
        return faultsOf(fileName);
    });
}
