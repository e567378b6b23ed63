#include "ElementIndices.h"

#include "Text.h"
#include "vumo/data/IndexPair.h"

#include <pybind11/numpy.h>

#include <cstdint>

namespace py = pybind11;
using namespace vumo::Data;

namespace
{
using Numbers = py::array_t<std::uint32_t, py::array::c_style | py::array::forcecast>;

constexpr py::ssize_t kPairSize = 2;
} // namespace

ElementIndices::ElementIndices(const Stream& stream, const py::object& indices)
    : mTypeName(stream.indexType()),
      mAreNumbers(mTypeName == Index::theTypeName())
{
    if (indices.is_none())
    {
        addAll(stream);
    }
    else if (mAreNumbers)
    {
        const Numbers numbers(indices);
        mNumbers.assign(numbers.data(), numbers.data() + numbers.size());
    }
    else if (mTypeName == IndexPair::myTypeName)
    {
        const Numbers pairs(indices);
        for (py::ssize_t i = 0; i + 1 < pairs.size(); i += kPairSize)
            mOthers.emplace_back(IndexPair(pairs.data()[i], pairs.data()[i + 1]));
    }
    else
    {
        for (const py::handle text : indices)
            mOthers.push_back(Index::doCreate(mTypeName, text.cast<Text>().bytes));
    }
}

void ElementIndices::addAll(const Stream& stream)
{
    if (mAreNumbers)
    {
        mNumbers = stream.numericIndices();
        return;
    }
    mOthers.reserve(stream.elementCount());
    const StreamIterator end = stream.end();
    for (StreamIterator position = stream.begin(); position != end; ++position)
        mOthers.push_back(position.index());
}

py::object ElementIndices::toPython() const
{
    if (mAreNumbers)
        return py::array_t<std::uint32_t>(static_cast<py::ssize_t>(mNumbers.size()), mNumbers.data());
    if (mTypeName != IndexPair::myTypeName)
    {
        py::list texts;
        for (const Index& index : mOthers)
            texts.append(::toPython(index.asString()));
        return std::move(texts);
    }
    py::array_t<std::uint32_t> pairs({static_cast<py::ssize_t>(mOthers.size()), kPairSize});
    std::uint32_t* next = pairs.mutable_data();
    for (Index index : mOthers)
    {
        IndexType* const value = index; // of a stream from a file it is a pair
        if (const auto* const pair = dynamic_cast<const IndexPair*>(value))
            pair->getIndexPair(next[0], next[1]);
        next += kPairSize;
    }
    return std::move(pairs);
}
