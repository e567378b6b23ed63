#include "vumo/accessor/BinaryReader.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/BinaryLayout.h"
#include "vumo/accessor/detail/ChunkCursor.h"
#include "vumo/accessor/detail/NameFilter.h"
#include "vumo/accessor/detail/TextConversion.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <limits>

namespace vumo::Data
{
namespace
{
using namespace detail;

using Binary = AccessorOvri::Binary;

bool failWith(std::string& errors, const char* message)
{
    errors = message;
    return false;
}

/// Reads exactly `size` bytes.
bool readBytes(std::istream& in, std::uint64_t size, std::string& bytes)
{
    bytes.resize(size);
    return static_cast<bool>(in.read(bytes.data(), static_cast<std::streamsize>(size)));
}

bool seekTo(std::istream& in, std::uint64_t position)
{
    return position <= static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max()) &&
           in.seekg(static_cast<std::streamoff>(position));
}

/// Reads the size of the main chunk from the head of the file.
bool readMainSize(std::istream& in, std::uint64_t& mainSize, std::string& errors)
{
    std::string head;
    if (!readBytes(in, kGroupHeadSize, head))
        return failWith(errors, "Could not read file identification.");
    if (head.compare(0, kTagSize, Binary::getFormChunkName()) != 0 ||
        head.compare(kHeaderSize, kGroupTypeSize, Binary::getMainFormChunkType()) != 0)
        return failWith(errors, "Not a supported file type.");
    mainSize = readBigEndian<std::uint64_t>(head.data() + kSizeOffset);
    return true;
}

/// Reads, from the chunk that the stream stands at, how far back from its end the trailer starts.
bool readBackwardOffset(std::istream& in, std::uint64_t& offset, std::string& errors)
{
    std::string bytes;
    if (!readBytes(in, kHeaderSize, bytes))
        return failWith(errors, "Error reading the trailer-size chunk header.");
    if (bytes.compare(0, kTagSize, Binary::getBackwardChunkSizeChunkName()) != 0)
        return failWith(errors, "File does not end with trailer-size chunk.");
    if (readBigEndian<std::uint64_t>(bytes.data() + kSizeOffset) != kBackwardOffsetSize)
        return failWith(errors, "Invalid trailer-size chunk.");
    if (!readBytes(in, kBackwardOffsetSize, bytes))
        return failWith(errors, "Could not read trailer backward offset.");
    offset = readBigEndian<std::uint32_t>(bytes.data());
    return true;
}

/// Takes the text at `position` up to its zero byte, and moves behind that. False when there is none.
bool takeText(const std::string& data, std::size_t& position, std::string& text)
{
    const std::size_t end = data.find('\0', position);
    if (end == std::string::npos)
        return false;
    text.assign(data, position, end - position);
    position = end + 1;
    return true;
}

/// Takes the last text, from `position` to the end, less its zero byte, which may be missing. False when there
/// is a zero byte before that: then the chunk holds more than its text, such as another chunk.
bool takeLastText(const std::string& data, std::size_t position, std::string& text)
{
    text.assign(data, position, std::string::npos);
    if (!text.empty() && text.back() == '\0')
        text.pop_back();
    return text.find('\0') == std::string::npos;
}

std::string fromUtf8(const std::string& text)
{
    return convertString(text, eTextDirection::kFromUtf8);
}

/// Reads the wanted chunks of one trailer.
class TrailerReader
{
public:
    TrailerReader(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                  std::map<std::string, Associations>& associations, std::string& errors)
        : mStructureFilter(structureNames),
          mAssociationFilter(associationNames),
          mAssociations(associations),
          mErrors(errors)
    {
    }

    bool read(ChunkCursor& chunks)
    {
        while (!chunks.atEnd())
        {
            if (!chunks.readHeader())
                return fail("Could not read chunk header.");
            if (!readChunk(chunks))
                return false;
        }
        return true;
    }

private:
    bool readChunk(ChunkCursor& chunks)
    {
        if (chunks.header().mTag == Binary::getMetaDataStructureChunkName() && !mStructureFilter.isExhausted())
            return readStructure(chunks);
        if (BinaryReader::isApplyMetadataChunk(chunks.header()))
            return readAssociations(chunks);
        return chunks.skipData() || fail("Could not read host chunk.");
    }

    bool readStructure(ChunkCursor& chunks)
    {
        std::string data;
        std::string format;
        std::string text;
        std::size_t position = 0;
        if (!chunks.readData(data) || !takeText(data, position, format) || !takeLastText(data, position, text))
            return fail("Could not read data structure chunk.");
        // Nobody else knows the new structure yet; what is not registered is freed with the reference.
        const Ref<Structure> structure(
            const_cast<Structure*>(AccessorOvri::deserializeStructure(format, fromUtf8(text), mErrors)));
        if (!structure)
            return false;
        return !mStructureFilter.accept(structure->name()) || registerStructure(*structure);
    }

    bool registerStructure(Structure& structure)
    {
        const Structure* registered = Structure::structureByName(structure.name());
        if (registered && *registered != structure)
            return fail(std::string("Structure \"") + structure.name() +
                        "\" is declared twice, with different members.");
        Structure::registerStructure(structure);
        return true;
    }

    bool readAssociations(ChunkCursor& chunks)
    {
        std::string data;
        std::string name;
        std::string format;
        std::string text;
        std::size_t position = 0;
        if (!chunks.readData(data) || !takeText(data, position, name) || !takeText(data, position, format) ||
            !takeLastText(data, position, text))
            return fail("Could not read apply metadata chunk.");
        if (!mAssociationFilter.accept(name))
            return true;
        Associations associations;
        if (!AccessorOvri::deserializeAssociations(format, fromUtf8(text), associations, mErrors))
            return false;
        mAssociations[name] = associations;
        return true;
    }

    bool fail(const std::string& message)
    {
        mErrors += message;
        return false;
    }

    NameFilter mStructureFilter;
    NameFilter mAssociationFilter;
    std::map<std::string, Associations>& mAssociations;
    std::string& mErrors;
};
} // namespace

bool BinaryReader::seekToTrailerStart(std::istream& in, std::uint64_t& mainSizePosition,
                                      std::uint64_t& trailerSizePosition, std::uint64_t& trailerEnd,
                                      std::string& errors)
{
    if (!in)
        return failWith(errors, "File not valid.");
    std::uint64_t mainSize = 0;
    if (!readMainSize(in, mainSize, errors))
        return false;

    constexpr std::uint64_t kEndBeforeSize = kBackwardChunkSize - kHeaderSize; // the size leaves out the header
    if (mainSize < kEndBeforeSize || !seekTo(in, mainSize - kEndBeforeSize))
        return failWith(errors, "Error seeking to the end of main chunk.");
    std::uint64_t offset = 0;
    if (!readBackwardOffset(in, offset, errors))
        return false;

    // The chunks of the trailer lie between the main chunk's head and the chunk that was just read.
    const std::uint64_t end = mainSize - kEndBeforeSize;
    const std::uint64_t offsetEnd = end + kHeaderSize + kBackwardOffsetSize;
    if (offset < offsetEnd - end || offset > offsetEnd || offsetEnd - offset < kGroupHeadSize ||
        !seekTo(in, offsetEnd - offset))
        return failWith(errors, "Could not seek to start of trailer.");

    mainSizePosition = kSizeOffset;
    trailerSizePosition = offsetEnd - offset - kGroupSizeToStart;
    trailerEnd = end;
    return true;
}

bool BinaryReader::isApplyMetadataChunk(const BinaryChunkHeader& header)
{
    return header.mTag == Binary::getApplyNodeMetaDataChunkName() ||
           header.mTag == Binary::getApplySceneMetaDataChunkName();
}

bool BinaryReader::readMetadata(std::istream& in, const std::set<std::string>* structureNames,
                                const std::set<std::string>* associationNames,
                                std::map<std::string, Associations>& associations, std::string& errors)
{
    std::uint64_t mainSizePosition = 0;
    std::uint64_t trailerSizePosition = 0;
    std::uint64_t trailerEnd = 0;
    if (!seekToTrailerStart(in, mainSizePosition, trailerSizePosition, trailerEnd, errors))
        return false;
    ChunkCursor chunks(in, trailerEnd - (trailerSizePosition + kGroupSizeToStart));
    return TrailerReader(structureNames, associationNames, associations, errors).read(chunks);
}
} // namespace vumo::Data
