#include "benchmarks/Streams.h"

#include "vumo/foundation/Ref.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/StructureSerializer.h"

#include <cstddef>
#include <sstream>
#include <string_view>

using namespace vumo::Data;

namespace bench
{
namespace
{
const Structure* makeRecordStructure()
{
    Structure* const structure = Structure::create();
    structure->ref(); // for the life of the process
    structure->setName("Record");
    structure->addMember(Member::kInt32, 1, "ID");
    structure->addMember(Member::kFloat, 3, "Origin");
    structure->addMember(Member::kString, 1, "Label");
    structure->addMember(Member::kBoolean, 1, "Flag");
    structure->addMember(Member::kDouble, 1, "Weight");
    const bool isBlock = structure->totalSize() == sizeof(Block) &&
                         Member::offset(structure->member(1)) == offsetof(Block, origin) &&
                         Member::offset(structure->member(2)) == offsetof(Block, label) &&
                         Member::offset(structure->member(3)) == offsetof(Block, flag) &&
                         Member::offset(structure->member(4)) == offsetof(Block, weight);
    if (!isBlock || !Structure::registerStructure(*structure))
        throw WrongResult("the structure of the records is not laid out like a Block");
    return structure;
}

void addIndex(const Index& index, Digest& digest)
{
    if (index.typeName() == Index::theTypeName())
        digest.add(static_cast<std::uint64_t>(index.index()));
    else
        digest.add(std::string_view(index.asString()));
}

const AssociationsSerializer& rawFormat()
{
    return *AssociationsSerializer::formatByName("raw");
}
} // namespace

const Structure& recordStructure()
{
    static const Structure* const theStructure = makeRecordStructure();
    return *theStructure;
}

Stream emptyStream(Storage storage)
{
    Stream stream(recordStructure(), "points");
    stream.useDenseStorage(storage == Storage::kDense);
    return stream;
}

Stream streamOf(const BlockArray& blocks, Storage storage)
{
    Stream stream = emptyStream(storage);
    Handle handle(recordStructure(), nullptr);
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        handle.pointToData(blocks.data(i), false);
        stream.setElement(static_cast<unsigned int>(i), handle);
    }
    return stream;
}

Associations associationsOf(const Stream& stream)
{
    Associations associations;
    associations.channel("vertex").setDataStream(stream);
    return associations;
}

const Stream& streamIn(const Associations& associations)
{
    const Channel* const channel = associations.findChannel("vertex");
    const Stream* const stream = channel ? channel->findDataStream("points") : nullptr;
    if (!stream)
        throw WrongResult("the stream is lost");
    return *stream;
}

std::uint64_t digestOf(const Stream& stream)
{
    Digest digest;
    for (StreamIterator position = stream.begin(); position.valid(); ++position)
    {
        addIndex(position.index(), digest);
        digest.addRecord(blockAt(position->data()));
    }
    return digest.sum();
}

void writeRaw(const Associations& associations, std::ostream& out)
{
    std::string errors;
    if (rawFormat().write(associations, out, errors) != 0)
        throw WrongResult("the library does not write: " + errors);
}

std::unique_ptr<Associations> readRaw(std::istream& in)
{
    std::string errors;
    std::unique_ptr<Associations> associations(rawFormat().read(in, errors));
    if (!associations || !errors.empty())
        throw WrongResult("the library does not read: " + errors);
    return associations;
}

std::string recordStructureText()
{
    std::ostringstream out;
    if (StructureSerializer::formatByName("raw")->write(recordStructure(), out) != 0)
        throw WrongResult("the library does not write the structure");
    return out.str();
}

void readRawStructure(std::istream& in)
{
    std::string errors;
    const vumo::Ref<const Structure> structure(StructureSerializer::formatByName("raw")->read(in, errors));
    if (!structure || *structure != recordStructure())
        throw WrongResult("the library does not read the structure: " + errors);
}
} // namespace bench
