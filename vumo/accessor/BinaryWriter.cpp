#include "vumo/accessor/BinaryWriter.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/BinaryReader.h"
#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/BinaryLayout.h"
#include "vumo/accessor/detail/ChunkCursor.h"
#include "vumo/accessor/detail/FileInput.h"
#include "vumo/accessor/detail/LocaleEncoding.h"
#include "vumo/accessor/detail/MetadataReplacer.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/accessor/detail/SceneUpdate.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <cstdint>
#include <istream>
#include <limits>
#include <ostream>
#include <string_view>
#include <utility>

namespace vumo::Data
{
namespace
{
using namespace detail;

using Binary = AccessorOvri::Binary;

/// With longer trailers the offset from its end back to its start would not fit its 32 bits.
constexpr std::uint64_t kLongestTrailer = std::numeric_limits<std::uint32_t>::max() - kHeaderSize - kBackwardOffsetSize;

/// A chunk that is built at the end of a string.
class ChunkBuilder
{
public:
    /// Appends the header. Borrows the string.
    ChunkBuilder(const std::string& tag, std::string& bytes) : mBytes(bytes), mSizePosition(bytes.size() + kSizeOffset)
    {
        mBytes += tag;
        mBytes.append(kHeaderSize - kTagSize, '\0');
    }

    /// The text has no zero byte itself: a reader would take it for the end.
    void appendZeroTerminated(const std::string& text) { mBytes.append(text.c_str(), text.size() + 1); }

    /// Sets the size, now that the data stand after the header, and appends the padding.
    void end()
    {
        const std::uint64_t size = mBytes.size() - mSizePosition - (kHeaderSize - kSizeOffset);
        const std::string number = bigEndian(size);
        mBytes.replace(mSizePosition, number.size(), number).append(paddingOf(size), '\0');
    }

    /// Turns what stands from `begin` on into UTF-8, and ends the data with its zero byte. False when a reader would
    /// not turn that into the same text.
    bool endWithText(std::size_t begin, const LocaleEncoding& encoding)
    {
        const std::string_view text = std::string_view(mBytes).substr(begin);
        std::string converted;
        const bool isConverted = encoding.toUtf8(text, converted);
        const bool isReadBack = encoding.isReadBack(text, isConverted ? converted : text);
        if (isConverted)
            mBytes.replace(begin, std::string::npos, converted);
        mBytes += '\0';
        end();
        return isReadBack;
    }

private:
    std::string& mBytes;
    const std::size_t mSizePosition;
};

/// What is wrong with a text that is not the same when a reader has converted it back.
constexpr char kNotConverted[] = "the encoding of the locale cannot be converted to UTF-8 and back without a loss";

bool appendStructureChunk(const Structure& structure, const LocaleEncoding& encoding, std::string& out,
                          std::string& errors)
{
    ChunkBuilder chunk(Binary::getMetaDataStructureChunkName(), out);
    chunk.appendZeroTerminated(kFormatWritten);
    const std::size_t text = out.size();
    if (!serializeStructure(structure, out, errors))
        return false;
    if (chunk.endWithText(text, encoding))
        return true;
    return refuse(errors, structureMessage(structure, kNotConverted));
}

bool hasStreams(const Associations& associations)
{
    bool hasAny = false;
    for (const Channel& channel : associations)
        hasAny = hasAny || !channel.empty();
    return hasAny;
}

bool appendAssociationsChunk(const std::string& tag, const std::string& name, const Associations& associations,
                             eNumbers numbers, const LocaleEncoding& encoding, std::string& out, std::string& errors)
{
    // A chunk without streams would say nothing, and come without a structure. The next writer, which knows metadata by
    // its first structure, would keep the chunk for one of the host's and write another.
    if (!hasStreams(associations))
        return true;
    if (name.find('\0') != std::string::npos)
        return refuse(errors, "Its name has a zero byte, where it would end.\n");
    ChunkBuilder chunk(tag, out);
    chunk.appendZeroTerminated(name);
    chunk.appendZeroTerminated(kFormatWritten);
    const std::size_t text = out.size();
    if (!serializeAssociations(associations, numbers, out, errors))
        return false;
    if (chunk.endWithText(text, encoding))
        return true;
    return refuse(errors, std::string("A text cannot be read back: ") + kNotConverted + ".\n");
}

bool writeBytes(std::ostream& out, const std::string& bytes)
{
    return out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).good();
}

/// The scene's trailer as it stands in a file; positions in bytes from the start of the file.
struct Trailer
{
    std::uint64_t mMainSizePosition = 0;
    std::uint64_t mSizePosition = 0;
    std::uint64_t mEnd = 0; // of its chunks: where "BCSZ" stands

    std::uint64_t start() const { return mSizePosition + kGroupSizeToStart; }
    std::uint64_t length() const { return mEnd - start(); }
    std::uint64_t mainChunkEnd() const { return mEnd + kBackwardChunkSize; }

    /// Of the trailer group with `length` bytes of chunks.
    static std::uint64_t groupSize(std::uint64_t length) { return kGroupTypeSize + length + kBackwardChunkSize; }
};

/// Says whether the trailer's start lies where its group's header says, as the header does not have to agree
/// for reading.
bool hasGroupHeader(std::istream& in, const Trailer& trailer)
{
    std::string header(kHeaderSize, '\0');
    in.seekg(static_cast<std::streamoff>(trailer.mSizePosition - kSizeOffset));
    in.read(header.data(), static_cast<std::streamsize>(header.size()));
    return in && header.compare(0, kTagSize, Binary::getFormChunkName()) == 0 &&
           readBigEndian<std::uint64_t>(header.data() + kSizeOffset) == Trailer::groupSize(trailer.length());
}

bool endsWithMainChunk(std::istream& in, const Trailer& trailer)
{
    in.seekg(0, std::ios::end);
    // The padding that ends the file may be missing: writing mends that, and nothing is lost.
    return in && static_cast<std::uint64_t>(in.tellg()) <= trailer.mainChunkEnd();
}

/// Says whether nothing speaks against rewriting the trailer. Leaves the stream at its start.
bool canRewrite(std::istream& in, const Trailer& trailer, std::string& errors)
{
    if (!hasGroupHeader(in, trailer))
        return refuse(errors, "Could not find the trailer group before the trailer.\n");
    if (!endsWithMainChunk(in, trailer))
        return refuse(errors, "File does not end with its main chunk.\n");
    if (!in.seekg(static_cast<std::streamoff>(trailer.start())))
        return refuse(errors, "Could not seek to trailer start.");
    return true;
}

constexpr char kChangedByRewriting[] =
    "The file holds metadata with characters that the encoding of this locale does not have. Write it in a locale that "
    "has them, such as one of UTF-8.\n";

/// Passes over a chunk of metadata.
bool takeBlock(ChunkCursor& chunks, const LocaleEncoding& encoding, BlockPlace& place)
{
    if (!encoding.canChangeByRewriting())
        return chunks.sumData(place.checksum);
    std::string_view data;
    if (!chunks.readData(data))
        return false;
    place.checksum = blockChecksum({chunks.headerBytes(), data});
    if (!data.empty() && data.back() == '\0')
        data.remove_suffix(1);
    const std::string_view text = data.substr(data.rfind('\0') + 1); // after name and format, which are not converted
    if (encoding.changesByRewriting(text))
        place.mustStay = kChangedByRewriting;
    return true;
}

/// What a header that cannot be read is called, by where it stands.
const char* headerFault(bool isAfterStructure, bool isAfterHost)
{
    if (!isAfterStructure)
        return "Error reading chunk header before metadata.";
    return isAfterHost ? "Error skipping backward size chunk." : "Error skipping existing metadata chunks.";
}

/// Finds the chunks of metadata, with their checksums. The first structure is the first one; after
/// it the host may have put chunks of its own, between runs of metadata, too.
bool findRegion(std::istream& in, const Trailer& trailer, const LocaleEncoding& encoding, FileRegion& region,
                std::string& errors)
{
    ChunkCursor chunks(in, trailer.length(), ChunkCursor::kWindowToSkip);
    std::uint64_t position = trailer.start();
    bool isAfterHost = false; // and that after metadata
    while (!chunks.atEnd())
    {
        const bool isAfterStructure = !region.blocks.empty();
        if (!chunks.readHeader())
            return refuse(errors, headerFault(isAfterStructure, isAfterHost));
        BlockPlace place;
        place.begin = position;
        position += kHeaderSize + chunks.paddedSize();
        place.end = position;
        const bool isStructure = chunks.header().mTag == Binary::getMetaDataStructureChunkName();
        const bool isMetadata =
            isStructure || (isAfterStructure && BinaryReader::isApplyMetadataChunk(chunks.header()));
        if (!isMetadata && !chunks.skipData())
            return refuse(errors, "Error reading chunk before metadata.");
        if (isMetadata && !takeBlock(chunks, encoding, place))
            return refuse(errors, isAfterStructure ? "Error skipping existing metadata chunks."
                                                   : "Error skipping data structure chunk.");
        if (isMetadata)
            region.blocks.push_back(place);
        isAfterHost |= isAfterStructure && !isMetadata;
    }
    region.end = trailer.mEnd;
    region.insertion = region.blocks.empty() ? region.end : region.blocks.front().begin;
    return true;
}

void measure(std::string_view written, FileBlock& block)
{
    const auto size = readBigEndian<std::uint64_t>(written.data() + kSizeOffset);
    block.length = written.size();
    block.checksum = blockChecksum({written.substr(0, kHeaderSize), written.substr(kHeaderSize, size)});
}

/// The form of chunks. Borrows the encoding.
MetadataForm chunkForm(const LocaleEncoding& encoding)
{
    const auto appendStructure = [&encoding](const Structure& structure, std::string& out, std::string& errors) {
        return appendStructureChunk(structure, encoding, out, errors);
    };
    const auto appendAssociations = [&encoding](const std::string& nodeName, const Associations& associations,
                                                eNumbers numbers, std::string& out, std::string& errors) {
        const bool isScene = nodeName == AccessorOvri::getSceneAssociationsName();
        const std::string& tag =
            isScene ? Binary::getApplySceneMetaDataChunkName() : Binary::getApplyNodeMetaDataChunkName();
        return appendAssociationsChunk(tag, nodeName, associations, numbers, encoding, out, errors);
    };
    return {appendStructure,
            appendAssociations,
            measure,
            true, // isSceneFirst
            true, // isStructureBefore
            "Could not write structure chunk to in-memory trailer.",
            "Could not write node associations chunk to in-memory trailer.",
            "Could not write scene associations chunk to in-memory trailer."};
}

/// Reads what stands between two positions.
bool readBytes(std::istream& in, std::uint64_t from, std::uint64_t to, char* bytes)
{
    return in.seekg(static_cast<std::streamoff>(from)) && in.read(bytes, static_cast<std::streamsize>(to - from));
}

std::string backwardChunk(std::uint32_t offset)
{
    std::string bytes;
    ChunkBuilder chunk(Binary::getBackwardChunkSizeChunkName(), bytes);
    bytes += bigEndian(offset);
    chunk.end();
    return bytes;
}

/// Changes the trailer's chunks, and all that depends on their length.
bool replaceInTrailer(SceneUpdate& update, Trailer trailer, Replacement& replacement, FileBlocks&& written,
                      std::string& errors)
{
    const std::uint64_t oldEnd = trailer.mEnd;
    trailer.mEnd = replacement.newPlaceOf(oldEnd);
    const std::uint64_t length = trailer.length();
    if (length > kLongestTrailer)
        return refuse(errors, "Failed to write the backward chunk size.");
    const auto offset = static_cast<std::uint32_t>(length + kHeaderSize + kBackwardOffsetSize);
    FileChange change(trailer.mainChunkEnd(), "Could not truncate the file.");
    const std::string groupSize = bigEndian(Trailer::groupSize(length));
    const std::string backward = backwardChunk(offset);
    const std::string mainSize = bigEndian(trailer.mainChunkEnd() - kHeaderSize);
    change.add({trailer.mSizePosition, groupSize, "Failed to seek to the trailer size position.",
                "Failed to write the new trailer size."});
    if (!replacement.addTo(change, oldEnd, update.file().size(), "Failed to seek to the trailer data start.",
                           "Failed to write the new trailer."))
        return false;
    change.add({trailer.mEnd, backward, "Failed to write the backward chunk size.",
                "Failed to write the backward chunk size."});
    change.add({trailer.mMainSizePosition, mainSize, "Failed to the main chunk size position.",
                "Failed to write the new main chunk size."});
    return update.run(change, std::move(written), errors);
}
} // namespace

bool BinaryWriter::writeStructureChunk(std::ostream& out, const Structure& structure)
{
    std::string bytes;
    std::string ignored;
    return appendStructureChunk(structure, LocaleEncoding(), bytes, ignored) && writeBytes(out, bytes);
}

bool BinaryWriter::writeAssociationsChunk(std::ostream& out, const std::string& tag, const std::string& name,
                                          const Associations& associations, std::string* errors)
{
    std::string bytes;
    std::string faults;
    const bool isBuilt = appendAssociationsChunk(tag, name, associations, kSixDigits, LocaleEncoding(), bytes, faults);
    if (errors)
        *errors += messagesOf(name, faults);
    return isBuilt && (bytes.empty() || writeBytes(out, bytes));
}

bool BinaryWriter::writeMetadata(AccessorState& metadata, std::string& errors)
{
    SceneUpdate update(metadata);
    if (!update.begin(errors))
        return false;
    FileInput in(update.file());
    Trailer trailer;
    FileRegion region;
    Replacement replacement([&](std::uint64_t from, std::uint64_t to, char* bytes) {
        return readBytes(in, from, to, bytes) || refuse(errors, "Error reading chunk before metadata.");
    });
    const LocaleEncoding encoding;
    FileBlocks written;
    if (!BinaryReader::seekToTrailerStart(in, trailer.mMainSizePosition, trailer.mSizePosition, trailer.mEnd, errors))
        return update.failAs(Accessor::Failure::kNotScene);
    if (!canRewrite(in, trailer, errors) || !findRegion(in, trailer, encoding, region, errors))
        return update.failAs(Accessor::Failure::kMalformed);
    if (!update.checkUnchanged(region.checksum(), errors))
        return false;
    return (replaceMetadata(chunkForm(encoding), metadata, region, replacement, written, errors) &&
            replaceInTrailer(update, trailer, replacement, std::move(written), errors)) ||
           update.failAs(Accessor::Failure::kRefused);
}

bool BinaryWriter::Debug(const BinaryWriter* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::BinaryWriter", object, request);
}

bool BinaryWriter::Debug(const BinaryWriter* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
