#pragma once

#include "tests/support/RandomNumbers.h"
#include "tests/support/RandomText.h"
#include "vumo/data/Associations.h"
#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace vumo::test
{
/// Metadata of any structures, index types, names and finite values.
class RandomMetadata : public RandomNumbers
{
public:
    Ref<Data::Structure> structure()
    {
        const Ref<Data::Structure> result(Data::Structure::create());
        result->setName(randomValue(*this).c_str());
        while (result->empty() || below(3) > 0)
        {
            const auto type = static_cast<Data::Member::eDataType>(below(Data::Member::kInvalidType));
            result->addMember(type, below(2) == 0 ? 1 : 1 + below(3), randomValue(*this).c_str());
        }
        return result;
    }

    Data::Stream stream(const Data::Structure& structure)
    {
        static const char* const kIndexTypes[] = {"numeric", "pair", "string"};
        Data::Stream result(structure, randomText(*this));
        result.setIndexType(kIndexTypes[below(3)]);
        for (unsigned int elements = below(4); elements > 0; --elements)
        {
            Data::Handle element(structure);
            for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
                fill(element);
            result.setElement(index(result.indexType()), element);
        }
        return result;
    }

    std::map<std::string, Data::Associations> nodes()
    {
        std::vector<Ref<Data::Structure>> structures;
        std::map<std::string, Data::Associations> result;
        for (unsigned int streams = below(6); streams > 0; --streams)
        {
            Data::Associations& node = result[randomText(*this)];
            Data::Channel channel = node.channel(randomText(*this));
            if (structures.empty() || below(2) == 0)
                addUnlessTaken(structures, structure());
            channel.setDataStream(stream(*structures[below(static_cast<unsigned int>(structures.size()))]));
        }
        return result;
    }

private:
    static void addUnlessTaken(std::vector<Ref<Data::Structure>>& structures, const Ref<Data::Structure>& added)
    {
        for (const Ref<Data::Structure>& structure : structures)
        {
            if (std::string(structure->name()) == added->name())
                return;
        }
        structures.push_back(added);
    }

    Data::Index index(const std::string& type)
    {
        if (type == "numeric")
            return value<unsigned int>();
        if (type == "pair")
            return Data::IndexPair(value<unsigned int>(), value<unsigned int>());
        return Data::IndexString(randomText(*this));
    }

    /// Sets all values of the current member.
    void fill(Data::Handle& element)
    {
        using Data::Member;
        for (unsigned int i = 0; i < element.values<double>().size(); ++i)
            element.set(i, finite<double>());
        for (unsigned int i = 0; i < element.values<float>().size(); ++i)
            element.set(i, finite<float>());
        for (unsigned int i = 0; i < element.values<char*>().size(); ++i)
            element.set(i, below(5) == 0 ? nullptr : randomValue(*this).c_str());
        for (unsigned int i = 0; i < element.values<bool>().size(); ++i)
            element.set(i, below(2) == 0);
        if (element.dataType() < Member::kInt8 || element.dataType() == Member::kString)
            return;
        const std::size_t size = std::size_t(Member::typeSize(element.dataType())) * element.dataLength();
        for (std::size_t i = 0; i < size; ++i)
            static_cast<char*>(element.asType(element.dataType()))[i] = static_cast<char>(value<int>());
    }

    template <class T>
    T finite()
    {
        const T number = value<T>();
        return std::isfinite(number) ? number : static_cast<T>(-0.0);
    }
};
} // namespace vumo::test
