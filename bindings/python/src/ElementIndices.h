#pragma once

#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <string>
#include <vector>

/// Indices of elements of one stream, as they come from Python; see `StreamAddress`.
class ElementIndices
{
public:
    /// None stands for those of all elements. Throws `Index::eCreationErrors`.
    ElementIndices(const vumo::Data::Stream& stream, const pybind11::object& indices);

    std::size_t size() const { return mAreNumbers ? mNumbers.size() : mOthers.size(); }

    /// Whether they are plain numbers, for the calls that take many at once.
    bool areNumbers() const { return mAreNumbers; }
    const std::vector<unsigned int>& numbers() const { return mNumbers; }

    vumo::Data::Index operator[](std::size_t i) const
    {
        return mAreNumbers ? vumo::Data::Index(mNumbers[i]) : mOthers[i];
    }

    /// In Python: an array of uint32, or a list of texts.
    pybind11::object toPython() const;

private:
    void addAll(const vumo::Data::Stream& stream);

    const std::string mTypeName;
    const bool mAreNumbers;
    std::vector<unsigned int> mNumbers;
    std::vector<vumo::Data::Index> mOthers;
};
