#include "StreamAddress.h"

#include "MemberType.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace py = pybind11;
using namespace vumo::Data;

namespace
{
std::size_t byteSize(const Member& member)
{
    return std::size_t{Member::length(&member)} * Member::typeSize(Member::type(&member));
}

/// Calls `visit` with the place of a member's values in each element, in the order of the elements.
template <class Visit>
void visitValues(const Stream& stream, const Member& member, Visit&& visit)
{
    const StreamIterator end = stream.end();
    for (StreamIterator position = stream.begin(); position != end; ++position)
        visit(position->data() + Member::offset(&member));
}

/// The blocks of these elements.
std::vector<char*> blocksAt(const Stream& stream, const ElementIndices& indices)
{
    std::vector<char*> blocks;
    blocks.reserve(indices.size());
    for (std::size_t i = 0; i < indices.size(); ++i)
        blocks.push_back(stream.element(indices[i]).data());
    return blocks;
}

/// Copies a member's values of the elements at these indices, up to the first that is missing; strings are lent.
/// Returns of how many elements.
template <class T>
std::size_t copyValues(const Stream& stream, const Member& member, const ElementIndices& indices, T* values)
{
    if (indices.areNumbers())
    {
        return stream.getMemberValues(Member::name(&member), indices.numbers().data(),
                                      static_cast<unsigned int>(indices.size()), values);
    }
    std::size_t found = 0;
    const std::vector<char*> blocks = blocksAt(stream, indices);
    while (found < blocks.size() && blocks[found])
    {
        std::memcpy(values, blocks[found++] + Member::offset(&member), byteSize(member));
        values += byteSize(member) / sizeof(T);
    }
    return found;
}

/// Puts texts into the next places of a new array of objects.
void placeTexts(const char* const* texts, std::size_t count, PyObject**& place)
{
    for (std::size_t i = 0; i < count; ++i)
        *place++ = toPython(texts[i] ? texts[i] : "").release().ptr();
}

/// Lets a dense stream take elements at these numbers: dense storage would fill the gaps before them with elements that
/// nobody asked for, so a stream that gets gaps leaves it.
void makeRoom(Stream& stream, const ElementIndices& indices)
{
    std::vector<unsigned int> added;
    const unsigned int count = stream.elementCount();
    for (const unsigned int number : indices.numbers())
    {
        if (number >= count)
            added.push_back(number);
    }
    if (!stream.isDense() || added.empty())
        return;
    SceneFile::requireUnviewed(stream);
    std::sort(added.begin(), added.end());
    added.erase(std::unique(added.begin(), added.end()), added.end());
    if (added.back() - count + 1 != added.size())
        stream.useDenseStorage(false);
}
} // namespace

StreamAddress::StreamAddress(std::shared_ptr<SceneFile> scene, std::string node, std::string channel, std::string name)
    : mScene(std::move(scene)),
      mNode(std::move(node)),
      mChannel(std::move(channel)),
      mName(std::move(name))
{
}

Failure StreamAddress::notFound(const std::string& text) const
{
    return {Failure::kNotFound, text, mScene->fileName(), mNode};
}

/// Says which of the elements is not there.
void StreamAddress::refuseMissing(const Stream& stream, const ElementIndices& indices) const
{
    std::string index;
    for (std::size_t i = 0; i < indices.size() && index.empty(); ++i)
    {
        if (!stream.hasElement(indices[i]))
            index = indices[i].asString();
    }
    throw notFound("There is no element " + index + " in the stream " + mName + ".");
}

/// Makes the elements that are missing.
void StreamAddress::createMissing(Stream& stream, const ElementIndices& indices) const
{
    const Handle defaults(stream.structure());
    for (std::size_t i = 0; i < indices.size(); ++i)
    {
        if (!stream.hasElement(indices[i]) && !stream.setElement(indices[i], defaults))
            throw notFound("There can be no element " + indices[i].asString() + " in the stream " + mName + ".");
    }
}

bool StreamAddress::exists() const
{
    if (!mScene->hasNode(mNode))
        return false;
    const Channel* const channel = mScene->node(mNode).findChannel(mChannel);
    return channel && channel->findDataStream(mName);
}

const Stream& StreamAddress::stream() const
{
    return heldStream();
}

/// The stream, for what changes its storage and none of its values.
Stream& StreamAddress::heldStream() const
{
    const Channel* const channel = mScene->node(mNode).findChannel(mChannel);
    const Stream* const stream = channel ? channel->findDataStream(mName) : nullptr;
    if (!stream)
        throw notFound("There is no stream " + mName + " any more in the channel " + mChannel + " of " + mNode + ".");
    return const_cast<Stream&>(*stream);
}

Stream& StreamAddress::edit()
{
    mScene->requireWritable();
    heldStream(); // edit() would make one
    return mScene->editNode(mNode).edit(mChannel, mName);
}

void StreamAddress::create(const Structure& structure, const std::string& indexType, unsigned int size)
{
    Stream stream(mScene->adopt(structure), mName);
    stream.setIndexType(indexType);
    if (indexType == Index::theTypeName())
        stream.useDenseStorage(true);
    if (size > 0 && !stream.setElementRange(0, size - 1))
        throw std::bad_alloc();
    if (exists())
        SceneFile::requireUnviewed(this->stream());
    mScene->editNode(mNode).channel(mChannel).setDataStream(stream);
}

void StreamAddress::copy(const StreamAddress& source)
{
    Stream copied(source.stream());
    if (exists() && mScene == source.mScene && &stream() == &source.stream())
        return;
    if (exists())
        SceneFile::requireUnviewed(stream());
    // What arrays write to must not be shared, nor what gets another name.
    if (SceneFile::isViewed(copied) || mName != copied.name())
        copied.makeUnique();
    Channel renaming;
    renaming.setDataStream(copied);
    renaming.renameDataStream(copied.name(), std::string(mName));
    copied.rebase(mScene->adopt(copied.structure()));
    mScene->editNode(mNode).channel(mChannel).setDataStream(copied);
}

bool StreamAddress::makeDense()
{
    Stream& stream = heldStream();
    if (stream.isDense())
        return true;
    if (stream.indexType() != Index::theTypeName() || stream.structure().totalSize() == 0)
        return false;
    mScene->workUnlocked([&stream] {
        const std::vector<unsigned int> numbers = stream.numericIndices();
        if (numbers.size() != stream.elementCount() || (!numbers.empty() && numbers.back() != numbers.size() - 1))
            return;
        const bool useDefaults = stream.useDefaults();
        stream.useDenseStorage(true);
        stream.setUseDefaults(useDefaults);
    });
    return stream.isDense();
}

void StreamAddress::resize(unsigned int size)
{
    Stream& stream = edit();
    if (stream.elementCount() == size)
        return;
    SceneFile::requireUnviewed(stream);
    if (size == 0)
        return create(stream.structure(), stream.indexType(), 0);
    if (!makeDense())
        throw py::value_error("Only a stream whose indices are the numbers from 0 can be resized.");
    // Shrinking leaves one element less than it is asked for, and gives that one back when asked again.
    stream.setElementRange(0, size - 1);
    stream.setElementRange(0, size - 1);
    if (stream.elementCount() != size)
        throw std::bad_alloc();
}

py::object StreamAddress::indices() const
{
    return ElementIndices(stream(), py::none()).toPython();
}

bool StreamAddress::hasElement(const py::object& index) const
{
    const ElementIndices indices(stream(), index);
    return indices.size() == 1 && stream().hasElement(indices[0]);
}

void StreamAddress::addElements(const py::object& places)
{
    const ElementIndices indices(stream(), places);
    Stream& target = edit();
    makeRoom(target, indices);
    createMissing(target, indices);
}

void StreamAddress::removeElement(const py::object& index)
{
    const ElementIndices indices(stream(), index);
    if (!hasElement(index))
        refuseMissing(stream(), indices);
    Stream& stream = edit();
    SceneFile::requireUnviewed(stream);
    stream.useDenseStorage(false); // dense storage would only reset the element
    stream.removeElement(indices[0]);
}

const Member& StreamAddress::member(const Text& memberName) const
{
    const Structure& layout = structure();
    for (unsigned int i = 0; i < layout.memberCount(); ++i)
    {
        if (memberName.bytes == Member::name(layout.member(i)))
            return *layout.member(i);
    }
    throw notFound("The structure " + std::string(layout.name()) + " has no member " + memberName.bytes + ".");
}

/// An array over the elements of the dense stream. The first dimension steps from element to element.
py::array StreamAddress::arrayOver(const py::dtype& type, std::vector<py::ssize_t> shape, std::size_t offset,
                                   bool isWritable)
{
    const Stream& viewed = mScene->isWritable() ? edit() : stream();
    const ElementView elements = viewed.elementView();
    if (elements.empty())
        return py::array(type, std::move(shape));
    std::vector<py::ssize_t> strides(shape.size(), type.itemsize());
    for (std::size_t i = shape.size() - 1; i > 1; --i)
        strides[i - 1] = strides[i] * shape[i];
    strides[0] = static_cast<py::ssize_t>(elements.stride());
    py::array array(type, std::move(shape), std::move(strides), elements.data() + offset,
                    mScene->viewOf(mNode, viewed));
    if (!isWritable || !mScene->isWritable())
        array.attr("setflags")(py::arg("write") = false);
    return array;
}

py::array StreamAddress::view(const Text& memberName)
{
    const Member& wanted = member(memberName);
    py::array array;
    visitNumbers(Member::type(&wanted), [&](auto value) {
        array =
            arrayOver(py::dtype::of<decltype(value)>(), shapeOf(wanted, elementCount()), Member::offset(&wanted), true);
    });
    return array;
}

py::array StreamAddress::records(const py::dtype& layout, bool hasStrings)
{
    return arrayOver(layout, {static_cast<py::ssize_t>(elementCount())}, 0, !hasStrings);
}

py::array StreamAddress::gather(const Text& memberName, const py::object& indices) const
{
    const Stream& source = stream();
    const Member& wanted = member(memberName);
    const bool areAll = indices.is_none();
    const ElementIndices places(source, areAll ? py::object(py::list()) : indices);
    const std::size_t count = areAll ? source.elementCount() : places.size();
    py::array array;
    if (Member::type(&wanted) == Member::kString)
    {
        array = py::array(py::dtype("O"), shapeOf(wanted, count)); // of null pointers
        auto* place = static_cast<PyObject**>(array.mutable_data());
        if (areAll)
        {
            visitValues(source, wanted, [&](const char* values) {
                placeTexts(reinterpret_cast<const char* const*>(values), Member::length(&wanted), place);
            });
            return array;
        }
        std::vector<const char*> texts(places.size() * Member::length(&wanted));
        if (copyValues(source, wanted, places, texts.data()) < places.size())
            refuseMissing(source, places);
        placeTexts(texts.data(), texts.size(), place);
        return array;
    }
    visitNumbers(Member::type(&wanted), [&](auto value) {
        array = py::array(py::dtype::of<decltype(value)>(), shapeOf(wanted, count));
        auto* place = static_cast<decltype(value)*>(array.mutable_data());
        if (!areAll)
        {
            if (copyValues(source, wanted, places, place) < places.size())
                refuseMissing(source, places);
            return;
        }
        visitValues(source, wanted, [&](const char* values) {
            std::memcpy(place, values, byteSize(wanted));
            place += byteSize(wanted) / sizeof value;
        });
    });
    return array;
}

void StreamAddress::scatter(const Text& memberName, const py::object& indices, const py::array& values)
{
    const ElementIndices places(stream(), indices);
    Stream& target = edit();
    const Member& wanted = member(memberName);
    if (static_cast<std::size_t>(values.nbytes()) != places.size() * byteSize(wanted))
        throw py::value_error("There are not as many values as the elements take.");
    makeRoom(target, places);
    if (!places.areNumbers())
    {
        createMissing(target, places);
        const auto* next = static_cast<const char*>(values.data());
        for (char* const block : blocksAt(target, places))
        {
            std::memcpy(block + Member::offset(&wanted), next, byteSize(wanted));
            next += byteSize(wanted);
        }
        return;
    }
    visitNumbers(Member::type(&wanted), [&](auto value) {
        const auto count = static_cast<unsigned int>(places.size());
        const auto* const given = static_cast<const decltype(value)*>(values.data());
        if (target.setMemberValues(Member::name(&wanted), places.numbers().data(), count, given) < count)
            throw std::bad_alloc();
    });
}

void StreamAddress::scatterStrings(const Text& memberName, const py::object& indices, const py::list& values)
{
    const ElementIndices places(stream(), indices);
    Stream& target = edit();
    const Member& wanted = member(memberName);
    const unsigned int length = Member::length(&wanted);
    if (values.size() != places.size() * length)
        throw py::value_error("There are not as many strings as the elements take.");
    std::vector<Text> texts(values.size());
    std::vector<const char*> pointers(values.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        if (values[i].is_none())
            continue;
        if (!PyUnicode_Check(values[i].ptr()))
            throw py::type_error("A string member takes str or None.");
        texts[i] = values[i].cast<Text>();
        if (texts[i].bytes.find('\0') != std::string::npos)
            throw py::value_error("A string with a zero character cannot be stored.");
        pointers[i] = texts[i].bytes.c_str();
    }
    makeRoom(target, places);
    if (places.areNumbers())
    {
        const auto count = static_cast<unsigned int>(places.size());
        if (target.setMemberValues(Member::name(&wanted), places.numbers().data(), count, pointers.data()) < count)
            throw std::bad_alloc();
        return;
    }
    createMissing(target, places);
    const std::vector<char*> blocks = blocksAt(target, places);
    for (std::size_t i = 0; i < pointers.size(); ++i)
    {
        char* const block = blocks[i / length];
        Member::replaceString(block + Member::offset(&wanted, static_cast<unsigned int>(i % length)), pointers[i]);
    }
}
