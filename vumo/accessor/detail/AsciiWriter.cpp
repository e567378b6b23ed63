#include "vumo/accessor/detail/AsciiWriter.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/AsciiStatements.h"
#include "vumo/accessor/detail/AsciiText.h"
#include "vumo/accessor/detail/FileInput.h"
#include "vumo/accessor/detail/MetadataReplacer.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/accessor/detail/SceneUpdate.h"
#include "vumo/foundation/detail/Characters.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
using Ascii = AccessorOvri::Ascii;

std::string inQuotes(const std::string& text)
{
    return "\"" + text + "\"";
}

/// What the character is called that cannot stand in a quoted text without an escape; null for all others.
const char* faultInQuotes(char character)
{
    if (character == '"')
        return "a double quote";
    if (character == '\\')
        return "a backslash";
    return isControl(character) ? "a control character" : nullptr;
}

/// The node's name as the target of a statement. A name with blanks needs quotes; any other stands as it is.
std::string targetText(const std::string& name)
{
    return name.find_first_of(kBlanks) == std::string::npos ? name : inQuotes(name);
}

/// What the name has that no target can carry; null when there is nothing.
const char* faultAsTarget(const std::string& name)
{
    const bool isQuoted = targetText(name) != name;
    const struct
    {
        std::string_view text;
        bool isFault;
        const char* what;
    } rows[] = {
        {std::string_view("\0", 1), true, "a zero byte"}, // where many readers of scripts end a line
        {"\n", true, "a line break"},
        {"\"", true, "a double quote"},
        {"\\", isQuoted, "a blank and a backslash"}, // between quotes a script takes it for an escape
        {";", !isQuoted, "a \";\""},
        {"//", !isQuoted, "a \"//\""},
    };
    for (const auto& row : rows)
    {
        if (row.isFault && name.find(row.text) != std::string::npos)
            return row.what;
    }
    return name == Ascii::getApplyMetadataCommandSceneFlag() ? "the form of the scene's flag" : nullptr;
}

/// Appends the statement that declares the structure. False, with the reason appended to `errors`, when it has no text,
/// or one that would not stay inside its quotes.
bool appendStructure(const Structure& structure, std::string& out, std::string& errors)
{
    std::string text;
    if (!serializeStructure(structure, text, errors))
        return false;
    std::string value;
    for (const char character : text)
    {
        if (character == '\n')
            value += "\\n";
        else if (const char* const fault = faultInQuotes(character))
            return refuse(errors, structureMessage(structure, std::string("a name has ") + fault));
        else
            value += character;
    }
    out += Ascii::getDataStructureCommandName() + " " + Ascii::getDataStructureCommandFormatFlag() + " " +
           inQuotes(kFormatWritten) + " " + Ascii::getDataStructureCommandAsStringFlag() + " " + inQuotes(value) +
           ";\n";
    return true;
}

/// Appends the statement that applies the associations to the node of that name, or to the scene. Appends nothing for
/// empty ones. False, with the reasons appended to `errors`, when they cannot be written, or when the name would not be
/// read back or could be taken for something else. `text` is memory for the text without escapes.
bool appendAssociations(const std::string& nodeName, const Associations& associations, eNumbers numbers,
                        std::string& text, std::string& out, std::string& errors)
{
    if (associations.empty())
        return true;
    const bool isScene = nodeName == AccessorOvri::getSceneAssociationsName();
    const char* const fault = isScene ? nullptr : faultAsTarget(nodeName);
    if (fault) // the associations are looked at all the same: one write reports all that is wrong with a node
        errors += std::string("Its name has ") + fault + ", which a statement cannot carry.\n";
    text.clear();
    text.reserve(out.capacity() - out.size()); // where room was made for as much as the file has
    if (!serializeAssociations(associations, numbers, text, errors) || fault)
        return false;
    out += Ascii::getApplyMetadataCommandName() + " " + Ascii::getApplyMetadataCommandFormatFlag() + " " +
           inQuotes(kFormatWritten) + " " + Ascii::getApplyMetadataCommandValueFlag() + " \"";
    if (!appendEscapedValue(text, out))
        return refuse(errors,
                      "A name, an index or a value has bytes that are no character of the locale, and that would "
                      "not be read back.\n");
    out += "\" \n\t\t" + (isScene ? Ascii::getApplyMetadataCommandSceneFlag() : targetText(nodeName)) + ";\n";
    return true;
}

void measure(std::string_view written, FileBlock& block)
{
    written.remove_suffix(1); // its newline
    block.length = written.size();
    block.checksum = blockChecksum({written});
}

MetadataForm statementForm()
{
    // The texts of all nodes take the same memory, made at once: growing in steps costs 3 % of a write.
    return {appendStructure,
            [text = std::string()](const std::string& nodeName, const Associations& associations, eNumbers numbers,
                                   std::string& out, std::string& errors) mutable {
                return appendAssociations(nodeName, associations, numbers, text, out, errors);
            },
            measure,
            false, // isSceneFirst
            false, // isStructureBefore
            "Could not write structure chunk to file.",
            "Could not write node associations statement to file.",
            "Could not write scene associations statement to file."};
}

/// The message for a search for the metadata that failed, by what of the tail it had found.
const char* searchFault(const std::istream& file, const AsciiTail& tail)
{
    const bool isRead = file.eof(); // a read that failed; of a seek that failed there is no such sign
    if (tail.trailer < 0)
        return isRead ? "Could not read trailer." : "Could not seek to trailer start.";
    return isRead ? "Failed reading line while searching metadata start."
                  : "Could not seek to the first metadata block.";
}

/// Reads a file from its start towards its end, in blocks however small the parts are that are asked for.
class ForwardBlocks
{
public:
    /// Borrows the stream.
    explicit ForwardBlocks(std::istream& in) : mIn(in) {}

    /// Gives the checksum of what stands between two positions. False when that cannot be read.
    bool sum(std::streamoff from, std::streamoff to, std::uint64_t& checksum)
    {
        BlockChecksum sum;
        while (from < to)
        {
            const std::streamoff held = mBegin + static_cast<std::streamoff>(mBytes.size()) - from;
            if (held <= 0 && !load(from))
                return false;
            const auto piece = std::string_view(mBytes).substr(static_cast<std::size_t>(from - mBegin),
                                                               static_cast<std::size_t>(to - from));
            sum.add(piece);
            from += static_cast<std::streamoff>(piece.size());
        }
        checksum = sum.value();
        return true;
    }

private:
    bool load(std::streamoff position)
    {
        constexpr std::size_t kBlockSize = 64 << 10;
        mBytes.resize(kBlockSize);
        mIn.seekg(position);
        mIn.read(mBytes.data(), static_cast<std::streamsize>(mBytes.size()));
        mBytes.resize(static_cast<std::size_t>(mIn.gcount()));
        mIn.clear(); // the last block meets the end of the file
        mBegin = position;
        return !mBytes.empty();
    }

    std::istream& mIn;
    std::streamoff mBegin = 0; // of the block that is held
    std::string mBytes;
};

/// Finds the statements, with their checksums, and the trailer line. The checksums are made on a second way, as the
/// search would have to hold a statement as a whole.
bool findRegion(std::istream& file, FileRegion& region, std::string& errors)
{
    AsciiTail tail;
    std::string ignored;
    if (!tail.measure(file) || !findAsciiTail(file, tail, {}, ignored))
        return refuse(errors, searchFault(file, tail));
    const bool allComplete = std::all_of(tail.statements.begin(), tail.statements.end(),
                                         [](const AsciiStatement& statement) { return statement.isComplete(); });
    if (!allComplete)
        return refuse(errors, "Failed reading line while searching metadata end.");
    if (tail.trailer < 0)
        return refuse(errors, "Could not find trailer prefix.");
    ForwardBlocks blocks(file);
    for (auto statement = tail.statements.rbegin(); statement != tail.statements.rend(); ++statement)
    {
        BlockPlace& place = region.blocks.emplace_back();
        place.begin = static_cast<std::uint64_t>(statement->begin);
        place.end = static_cast<std::uint64_t>(statement->next);
        if (!blocks.sum(statement->begin, statement->end, place.checksum))
            return refuse(errors, "Failed reading line while searching metadata end.");
    }
    region.endsLine = tail.statements.empty() || tail.statements.front().next > tail.statements.front().end;
    region.insertion = static_cast<std::uint64_t>(tail.trailer);
    region.end = static_cast<std::uint64_t>(tail.size);
    return true;
}

/// Reads what stands between two positions.
bool readBytes(std::istream& file, std::uint64_t from, std::uint64_t to, char* bytes, std::string& errors)
{
    if (!file.seekg(static_cast<std::streamoff>(from)))
        errors += "Failed to seek to the trailer position.";
    else if (!file.read(bytes, static_cast<std::streamsize>(to - from)))
        errors += "Failed to read the file trailer.";
    return static_cast<bool>(file);
}
} // namespace

bool AsciiWriter::writeMetadata(AccessorState& metadata, std::string& errors)
{
    SceneUpdate update(metadata);
    if (!update.begin(errors))
        return false;
    FileInput in(update.file());
    FileRegion region;
    Replacement replacement(
        [&](std::uint64_t from, std::uint64_t to, char* bytes) { return readBytes(in, from, to, bytes, errors); });
    FileBlocks written;
    if (!findRegion(in, region, errors))
        return update.failAs(Accessor::Failure::kMalformed);
    if (!update.checkUnchanged(region.checksum(), errors))
        return false;
    if (!replaceMetadata(statementForm(), metadata, region, replacement, written, errors))
        return update.failAs(Accessor::Failure::kRefused);
    FileChange change(replacement.newPlaceOf(region.end), "Could not truncate the file.");
    if (!replacement.addTo(change, region.end, region.end, "Could not seek to metadata start.",
                           "Failed to append the file trailer."))
        return update.failAs(Accessor::Failure::kRefused);
    return update.run(change, std::move(written), errors);
}
} // namespace vumo::Data::detail
