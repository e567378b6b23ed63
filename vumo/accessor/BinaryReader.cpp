#include "vumo/accessor/BinaryReader.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/BinaryLayout.h"
#include "vumo/accessor/detail/ChunkCursor.h"
#include "vumo/accessor/detail/LocaleEncoding.h"
#include "vumo/accessor/detail/MetadataRead.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <algorithm>
#include <istream>
#include <limits>
#include <string_view>
#include <utility>

namespace vumo::Data
{
namespace
{
using namespace detail;

using Binary = AccessorOvri::Binary;

/// Reads exactly `size` bytes.
bool readBytes(std::istream& in, std::uint64_t size, std::string& bytes)
{
    bytes.resize(size); // a few bytes: callers ask for heads only
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
        return replaceErrors(errors, "Could not read file identification.");
    if (head.compare(0, kTagSize, Binary::getFormChunkName()) != 0 ||
        head.compare(kHeaderSize, kGroupTypeSize, Binary::getMainFormChunkType()) != 0)
        return replaceErrors(errors, "Not a supported file type.");
    mainSize = readBigEndian<std::uint64_t>(head.data() + kSizeOffset);
    return true;
}

/// Reads, from the chunk that the stream stands at, how far back from its end the trailer starts.
bool readBackwardOffset(std::istream& in, std::uint64_t& offset, std::string& errors)
{
    std::string bytes;
    if (!readBytes(in, kHeaderSize, bytes))
        return replaceErrors(errors, "Error reading the trailer-size chunk header.");
    if (bytes.compare(0, kTagSize, Binary::getBackwardChunkSizeChunkName()) != 0)
        return replaceErrors(errors, "File does not end with trailer-size chunk.");
    if (readBigEndian<std::uint64_t>(bytes.data() + kSizeOffset) != kBackwardOffsetSize)
        return replaceErrors(errors, "Invalid trailer-size chunk.");
    if (!readBytes(in, kBackwardOffsetSize, bytes))
        return replaceErrors(errors, "Could not read trailer backward offset.");
    offset = readBigEndian<std::uint32_t>(bytes.data());
    return true;
}

/// Takes the text in front of the first zero byte off the data, with that. False when there is none.
bool takeText(std::string_view& data, std::string_view& text)
{
    const std::size_t end = data.find('\0');
    if (end == std::string_view::npos)
        return false;
    text = data.substr(0, end);
    data.remove_prefix(end + 1);
    return true;
}

/// Takes all data as the last text, less its zero byte, which may be missing. False when there is a zero byte before
/// that: then the chunk holds more than its text, such as another chunk.
bool takeLastText(std::string_view data, std::string_view& text)
{
    if (!data.empty() && data.back() == '\0')
        data.remove_suffix(1);
    text = data;
    return text.find('\0') == std::string_view::npos;
}

/// Reads the chunks of one trailer.
class TrailerReader
{
public:
    /// The trailer starts at that position of the file. Borrows all.
    TrailerReader(ChunkCursor& chunks, std::uint64_t start, MetadataRead& read)
        : mChunks(chunks),
          mPosition(start),
          mRead(read)
    {
    }

    /// False, with the reason appended to `errors`, when the walk over the chunks has to end.
    bool readAll(std::string& errors)
    {
        while (!mChunks.atEnd())
        {
            if (!mChunks.readHeader())
                return refuse(errors, "Could not read chunk header.\n");
            if (!readChunk(errors))
                return false;
            mPosition += kHeaderSize + mChunks.paddedSize();
        }
        if (!mHasStructure)
            mRead.leaveToHost();
        return true;
    }

private:
    bool readChunk(std::string& errors)
    {
        if (mChunks.header().mTag == Binary::getMetaDataStructureChunkName())
            return readStructure();
        if (BinaryReader::isApplyMetadataChunk(mChunks.header()))
            return readAssociations();
        return mChunks.skipData() || refuse(errors, "Could not read host chunk.\n");
    }

    FileBlock blockOf(FileBlock::eKind kind, std::string_view data) const
    {
        FileBlock block;
        block.kind = kind;
        block.position = mPosition;
        block.length = kHeaderSize + mChunks.paddedSize();
        if (!mRead.onlyLists()) // nobody asks whether it has changed
            block.checksum = blockChecksum({mChunks.headerBytes(), data});
        return block;
    }

    bool readStructure()
    {
        std::string_view data;
        std::string_view format;
        std::string_view text;
        if (!mHasStructure)
            mRead.leaveToHost();
        mHasStructure = true;
        const bool isWhole = mChunks.readData(data);
        FileBlock block = blockOf(FileBlock::kStructure, data);
        const bool hasTexts = isWhole && takeText(data, format) && takeLastText(data, text);
        block.format = format;
        const std::size_t number = mRead.add(std::move(block));
        if (isWhole && !mRead.wantsStructures())
            mRead.skip(number);
        else if (hasTexts)
            mRead.readStructure(number, inLocale(text));
        else
            mRead.refuseBlock(number, "Could not read data structure chunk.");
        return isWhole;
    }

    bool readAssociations()
    {
        std::string_view data;
        std::string_view name;
        std::string_view format;
        std::string_view text;
        const bool isWhole = mChunks.readData(data);
        FileBlock block = blockOf(FileBlock::kAssociations, data);
        const bool hasName = isWhole && takeText(data, name);
        const bool hasTexts = hasName && takeText(data, format) && takeLastText(data, text);
        block.name = name;
        block.format = format;
        const std::size_t number = mRead.add(std::move(block));
        if (!hasTexts)
            mRead.refuseBlock(number, "Could not read apply metadata chunk.", hasName);
        else if (mRead.wantsAssociations(number))
            mRead.readAssociations(number, inLocale(text));
        return isWhole;
    }

    /// The text in the encoding of the locale, until the next call.
    std::string_view inLocale(std::string_view text)
    {
        return mEncoding.fromUtf8(text, mConverted) ? mConverted : text;
    }

    ChunkCursor& mChunks;
    std::uint64_t mPosition; // of the chunk in the file
    bool mHasStructure = false;
    MetadataRead& mRead;
    const LocaleEncoding mEncoding;
    std::string mConverted;
};
} // namespace

bool BinaryReader::seekToTrailerStart(std::istream& in, std::uint64_t& mainSizePosition,
                                      std::uint64_t& trailerSizePosition, std::uint64_t& trailerEnd,
                                      std::string& errors)
{
    if (!in)
        return replaceErrors(errors, "File not valid.");
    std::uint64_t mainSize = 0;
    if (!readMainSize(in, mainSize, errors))
        return false;

    constexpr std::uint64_t kEndBeforeSize = kBackwardChunkSize - kHeaderSize; // the size leaves out the header
    if (mainSize < kEndBeforeSize || !seekTo(in, mainSize - kEndBeforeSize))
        return replaceErrors(errors, "Error seeking to the end of main chunk.");
    std::uint64_t offset = 0;
    if (!readBackwardOffset(in, offset, errors))
        return false;

    // The chunks of the trailer lie between the main chunk's head and the chunk that was just read. Everything is
    // compared before it is subtracted: the numbers come from the file, and differences must not wrap around.
    const std::uint64_t end = mainSize - kEndBeforeSize;
    const std::uint64_t offsetEnd = end + kHeaderSize + kBackwardOffsetSize;
    if (offset < offsetEnd - end || offset > offsetEnd || offsetEnd - offset < kGroupHeadSize ||
        !seekTo(in, offsetEnd - offset))
        return replaceErrors(errors, "Could not seek to start of trailer.");

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

bool BinaryReader::readMetadata(std::istream& in, MetadataRead& read, std::string& errors)
{
    std::uint64_t mainSizePosition = 0;
    std::uint64_t trailerSizePosition = 0;
    std::uint64_t trailerEnd = 0;
    if (!seekToTrailerStart(in, mainSizePosition, trailerSizePosition, trailerEnd, errors))
        return false;
    const std::uint64_t start = trailerSizePosition + kGroupSizeToStart;
    ChunkCursor chunks(in, trailerEnd - start, ChunkCursor::kWindowToRead);
    std::string damage;
    const bool isWhole = TrailerReader(chunks, start, read).readAll(damage);
    const bool isRead = read.finish(errors);
    errors += damage; // after the faults that stand before it in the file
    return isRead && isWhole;
}

std::size_t BinaryReader::findCharacter(std::string_view chunk, std::size_t character)
{
    const bool isStructure = chunk.substr(0, kTagSize) == Binary::getMetaDataStructureChunkName();
    std::string_view text = chunk.substr(std::min<std::size_t>(kHeaderSize, chunk.size()));
    std::string_view ignored;
    if ((!isStructure && !takeText(text, ignored)) || !takeText(text, ignored))
        return 0;
    const LocaleEncoding encoding;
    std::string converted;
    const bool isConverted = encoding.fromUtf8(text.substr(0, text.find('\0')), converted);
    std::size_t begin = 0;
    while (isConverted && begin < text.size())
    {
        std::size_t end = begin + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) // it goes on
            ++end;
        const std::string_view one = text.substr(begin, end - begin);
        const std::size_t size = encoding.fromUtf8(one, converted) ? converted.size() : one.size();
        if (character < size)
            break;
        character -= size;
        begin = end;
    }
    const std::size_t place = isConverted ? begin : character;
    return static_cast<std::size_t>(text.data() - chunk.data()) + std::min(place, text.size());
}

bool BinaryReader::Debug(const BinaryReader* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::BinaryReader", object, request);
}

bool BinaryReader::Debug(const BinaryReader* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
