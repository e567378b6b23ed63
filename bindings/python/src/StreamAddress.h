#pragma once

#include "ElementIndices.h"
#include "Failure.h"
#include "SceneFile.h"
#include "Text.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The place of a stream in a scene, and all that Python does with the stream there.
///
/// It is looked up at each use: whatever becomes of the stream, this stays safe to use. Indices come as an array of
/// uint32, (n,) for numbers and (n, 2) for pairs, or else as a list of texts; None means all elements in their order.
class StreamAddress
{
public:
    StreamAddress(std::shared_ptr<SceneFile> scene, std::string node, std::string channel, std::string name);

    const std::shared_ptr<SceneFile>& scene() const { return mScene; }
    const std::string& node() const { return mNode; }
    const std::string& channel() const { return mChannel; }
    const std::string& name() const { return mName; }

    /// Puts a new stream there, of `size` elements of default values if it has numbers as indices.
    void create(const vumo::Data::Structure& structure, const std::string& indexType, unsigned int size);

    /// Puts a copy of another stream there, which shares its elements until one of both is edited.
    void copy(const StreamAddress& source);

    bool exists() const;
    const vumo::Data::Structure& structure() const { return stream().structure(); }
    const std::string& indexType() const { return stream().indexType(); }
    unsigned int elementCount() const { return stream().elementCount(); }

    /// Says whether the elements lie in one block, at the numbers from 0; moves them there if their numbers allow it.
    bool makeDense();

    /// Gives the stream that many elements at the numbers from 0; new ones have default values.
    void resize(unsigned int size);

    pybind11::object indices() const;
    bool hasElement(const pybind11::object& index) const;

    /// Makes these elements, with default values, where they are missing.
    void addElements(const pybind11::object& places);
    void removeElement(const pybind11::object& index);

    /// An array that looks at the values of one member of a dense stream, and writes to them where the scene can be
    /// written to. Not for strings.
    pybind11::array view(const Text& member);

    /// The same for whole elements, laid out as `layout` says. Read only if there are strings: a copied
    /// record would share them.
    pybind11::array records(const pybind11::dtype& layout, bool hasStrings);

    /// A new array of one member's values. A `KeyError` when there is no element at one of the indices.
    pybind11::array gather(const Text& member, const pybind11::object& indices) const;

    /// Stores values of the member's own type, in the order of the indices, and makes the elements that are missing.
    void scatter(const Text& member, const pybind11::object& indices, const pybind11::array& values);

    /// The same for strings; `values` is a flat list of texts and None.
    void scatterStrings(const Text& member, const pybind11::object& indices, const pybind11::list& values);

private:
    Failure notFound(const std::string& text) const;
    [[noreturn]] void refuseMissing(const vumo::Data::Stream& stream, const ElementIndices& indices) const;
    void createMissing(vumo::Data::Stream& stream, const ElementIndices& indices) const;
    const vumo::Data::Stream& stream() const;
    vumo::Data::Stream& heldStream() const;
    vumo::Data::Stream& edit();
    const vumo::Data::Member& member(const Text& memberName) const;
    pybind11::array arrayOver(const pybind11::dtype& type, std::vector<pybind11::ssize_t> shape, std::size_t offset,
                              bool isWritable);

    const std::shared_ptr<SceneFile> mScene;
    const std::string mNode;
    const std::string mChannel;
    const std::string mName;
};
