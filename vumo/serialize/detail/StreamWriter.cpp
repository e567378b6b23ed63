#include "vumo/serialize/detail/StreamWriter.h"

#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/serialize/SerializerRaw.h"
#include "vumo/serialize/detail/LineReader.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <typeinfo>

namespace vumo::Data::detail
{
namespace
{
/// Says whether the reader would take the index for a header line, if it is the first, or for the end.
bool isTakenForKeyword(const std::string& index, bool isFirst)
{
    constexpr SerializerRaw::eKeyword kHeaders[] = {SerializerRaw::kStreamName, SerializerRaw::kIndexType,
                                                    SerializerRaw::kStructure};
    if (index == SerializerRaw::keyword(SerializerRaw::kEndStream))
        return true;
    return isFirst && std::any_of(std::begin(kHeaders), std::end(kHeaders), [&](SerializerRaw::eKeyword header) {
               std::string text;
               return isKeywordLine(index, SerializerRaw::keyword(header), text);
           });
}

/// Says whether the index is a T, and of that type: of a derived class the text may be anything.
template <class T>
bool isExactly(Index& index, const std::string& type)
{
    const IndexType* const value = index;
    return value && typeid(*value) == typeid(T) && type == T::myTypeName;
}
} // namespace

StreamWriter::StreamWriter(const Stream& stream, std::ostream& out, const std::string* channel)
    : mStream(stream),
      mOut(out),
      mLines(out, mMessages, {&stream.name(), channel}, LineWriter::kAlone),
      mFormat(out)
{
}

int StreamWriter::write(std::string& errors)
{
    writeHeader();
    writeElements();
    mLines.write(SerializerRaw::keyword(SerializerRaw::kEndStream));
    mLines.finish();
    if (!mOut)
        mMessages.add("Error in stream while writing.");
    return mMessages.report("Stream may not be written correctly", errors);
}

void StreamWriter::writeHeader()
{
    mLines.writeName(SerializerRaw::keyword(SerializerRaw::kStreamName), "Stream name", mStream.name());
    if (Index::creators().count(mStream.indexType()) == 0)
        mLines.refuse("Index type " + quoted(mStream.indexType()), "no such type is registered");
    mLines.writeName(SerializerRaw::keyword(SerializerRaw::kIndexType), "Index type", mStream.indexType());
    mLines.writeName(SerializerRaw::keyword(SerializerRaw::kStructure), "Structure name", mStream.structure().name());
}

void StreamWriter::writeElements()
{
    const bool isNumeric = mStream.indexType() == Index::theTypeName();
    const StreamIterator last = mStream.end();
    for (StreamIterator position = mStream.begin(); position != last; ++position) // elements may have no size
    {
        if (!mElements) // not before: a stream without elements does not pay for the members of its structure
            mElements.emplace(mStream.structure());
        Index index = position.index();
        if (isNumeric && !static_cast<IndexType*>(index))
        {
            mFormat.append(mLines.line(), index.index()); // always read back
            mLines.endFirstOfTwo();
        }
        else
            writeIndex(index);
        writeData(index, position->data());
        mIsFirst = false;
    }
}

void StreamWriter::writeIndex(Index& index)
{
    const std::string text = index.asString();
    mLines.line().append(text);
    const std::string fault = indexFault(index, text);
    if (!fault.empty())
        mLines.refuse("Index " + quoted(text), fault);
    mLines.endLine();
}

std::string StreamWriter::indexFault(Index& index, const std::string& text) const
{
    if (text.empty())
        return "it is empty";
    if (isTakenForKeyword(text, mIsFirst))
        return "it reads as a keyword";
    if (const char* const fault = nameFault(text))
        return fault;
    if (mLines.isTooLong())
        return tooLongFault();
    return isRecreated(index, text) ? "" : "it is not one of type " + quoted(mStream.indexType());
}

/// Says whether the reader, which knows the type by its name alone, makes that index of its text.
bool StreamWriter::isRecreated(Index& index, const std::string& text) const
{
    const std::string& type = mStream.indexType();
    if (isExactly<IndexString>(index, type) || isExactly<IndexPair>(index, type))
        return true; // their texts tell all of them, so it is not tried: most indices are of these types
    try
    {
        return Index::doCreate(type, text) == index;
    }
    catch (const std::bad_alloc&)
    {
        throw; // says nothing about the index
    }
    catch (...)
    {
        return false; // the index types of users may throw what they like
    }
}

void StreamWriter::writeData(const Index& index, char* block)
{
    const bool isReadBack = mElements->append(mLines.line(), mFormat, block);
    if (!isReadBack || mLines.isTooLong())
        reportData(index, block);
    mLines.endLine();
}

/// Goes through the line member by member once more, to name the member; lines are seldom refused, so that writing does
/// not keep track of it.
void StreamWriter::reportData(const Index& index, char* block)
{
    const std::string element = " at index " + quoted(index.asString());
    TextBuilder line;
    bool wasTooLong = false;
    for (unsigned int i = 0; i < mElements->memberCount(); ++i)
    {
        const MemberValues values = mElements->valuesOf(i, block);
        const std::string member = " of member " + quoted(Member::name(mStream.structure().member(i)));
        if (i > 0)
            line.append(' ');
        if (!appendMember(line, mFormat, values))
            mMessages.add(refusedMessage(values, mFormat, member + element, mLines.record(), mLines.owner()));
        const bool isTooLong = line.text().size() > kMaxLineLength;
        if (isTooLong && !wasTooLong)
            mLines.refuse("Text" + member + element, tooLongFault() + (mFormat.isExact() ? " with exact numbers" : ""));
        wasTooLong = isTooLong;
    }
}
} // namespace vumo::Data::detail
