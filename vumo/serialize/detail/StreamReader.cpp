#include "vumo/serialize/detail/StreamReader.h"

#include "vumo/serialize/SerializerRaw.h"

#include <new>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
/// The registered structure of that name or null.
const Structure* findStructure(const std::string& name)
{
    const bool hasZero = name.find('\0') != std::string::npos; // its C string is the name of another
    return hasZero ? nullptr : Structure::structureByName(name.c_str());
}
} // namespace

std::unique_ptr<Stream> StreamReader::read(std::string& errors)
{
    while (mLines.nextFilled() && !isLastLine())
    {
        if (!mStorage && readHeaderLine())
            continue; // with an element made, a line that reads as a header line is an index
        mHasIndexLine = true;
        if (!readIndexAndData())
            break;
    }
    requireHeader();
    if (mLines.isBroken())
        mMessages.add("Error in stream while reading" + atRecord());
    if (mMessages.report("Stream not created", errors) > 0)
        return nullptr;
    return std::make_unique<Stream>(&storage()); // made here, when there are no elements
}

bool StreamReader::readHeaderLine()
{
    static constexpr struct
    {
        SerializerRaw::eKeyword keyword;
        void (StreamReader::*accept)(const std::string&);
    } kHeaderLines[] = {
        {SerializerRaw::kStreamName, &StreamReader::acceptName},
        {SerializerRaw::kIndexType, &StreamReader::acceptIndexType},
        {SerializerRaw::kStructure, &StreamReader::acceptStructure},
    };
    for (const auto& header : kHeaderLines)
    {
        std::string value;
        if (isKeywordLine(mLines.text(), SerializerRaw::keyword(header.keyword), value))
        {
            (this->*header.accept)(value);
            return true;
        }
    }
    return false;
}

void StreamReader::acceptName(const std::string& name)
{
    mHasName = true;
    if (isLineUsable())
        mName = name;
}

void StreamReader::acceptIndexType(const std::string& name)
{
    mIndexType = name;
    mIndexCreator = nullptr; // that of the type before, when an index was refused in between
    mHasUsableIndexType = isLineUsable() && Index::creators().count(name) > 0;
    if (!mHasUsableIndexType && !mLines.isTooLong()) // what is too long is told, and its name is cut
        mMessages.add("Creator for index type '" + name + "' not found");
}

void StreamReader::acceptStructure(const std::string& name)
{
    mHasStructure = true;
    mElementText.reset(); // that of the structure before, likewise
    mStructure = isLineUsable() ? findStructure(name) : nullptr;
    if (!mStructure && !mLines.isTooLong())
        mMessages.add("Structure '" + name + "' not found");
}

bool StreamReader::readIndexAndData()
{
    mIndexText = mLines.text();
    const unsigned int record = mLines.record();
    std::optional<Index> index = parseIndex();
    if (mStructure && mStructure->empty())
    {
        // An element without values has a blank data line, which is passed over like any other.
        if (index)
            storage().newElement(std::move(*index));
        return true;
    }
    if (!mLines.nextFilled() || isLastLine())
    {
        if (mStructure) // without one nobody knows whether its elements have data lines
            mMessages.add("Index '" + mIndexText + "'" + atRecord(record) + " has no data line");
        return false;
    }
    if (isLineUsable() && index && mStructure)
        readDataLine(std::move(*index));
    return true;
}

std::optional<Index> StreamReader::parseIndex()
{
    if (!isLineUsable())
        return std::nullopt;
    if (!mHasName)
        mMessages.add("Index data encountered before Stream name specified" + atRecord());
    if (!mHasStructure)
        mMessages.add("Index data encountered before Structure name specified" + atRecord());
    if (!mHasName || !mHasStructure || !mHasUsableIndexType)
        return std::nullopt; // the message says what is missing; those about its indices would only follow from it
    try
    {
        return createIndex();
    }
    catch (Index::eCreationErrors code)
    {
        refuseIndex(code);
    }
    catch (const std::bad_alloc&)
    {
        throw; // says nothing about the text
    }
    catch (...)
    {
        refuseIndex(Index::eIllegalIndexText); // the index types of users may throw what they like
    }
    return std::nullopt;
}

Index StreamReader::createIndex()
{
    if (!mIndexCreator)
        mIndexCreator = Index::creator(mIndexType);
    return mIndexCreator(mIndexText);
}

void StreamReader::refuseIndex(Index::eCreationErrors code)
{
    mMessages.add("Value '" + mIndexText + "' on or about character " + std::to_string(mLines.position()) +
                  " is not a legal index (code " + std::to_string(code) + ") of type " + mIndexType);
}

void StreamReader::readDataLine(Index&& index)
{
    mValues.restart(mLines.text(), mLines.position());
    if (!mElementText)
        mElementText = std::make_unique<ElementText>(*mStructure, kMaxLineLength);
    StreamImplMapped& elements = storage();
    if (!mElementText->fitsInto(mLines.text().size()))
    {
        // Nothing is allocated by the size that a structure promises; this finds what is bad and the first missing
        // value.
        mElementText->read(nullptr, mLines.record(), mValues, mMessages);
        return;
    }
    char* const block = elements.newElement(std::move(index)); // half filled after an error, but then nobody sees it
    if (!mElementText->read(block, mLines.record(), mValues, mMessages))
        return;
    if (mValues.skipToText())
    {
        std::string rest;
        std::getline(mValues.stream(), rest);
        const long long end = readPosition(mValues.stream());
        const long long position = end < 0 ? end : end - static_cast<long long>(rest.size());
        mMessages.add("Text '" + rest + "' on or about character " + std::to_string(position) +
                      " is left over behind the last value" + atRecord());
    }
}

void StreamReader::requireHeader()
{
    if (mHasIndexLine)
        return; // what is missing was said where an index stood
    if (!mHasName)
        mMessages.add("Stream name not specified" + atRecord());
    if (!mHasStructure)
        mMessages.add("Structure name not specified" + atRecord());
}

StreamImplMapped& StreamReader::storage()
{
    if (!mStorage)
    {
        mStorage = Ref<StreamImplMapped>(new StreamImplMapped(*mStructure, mName));
        mStorage->setIndexType(mIndexType);
    }
    return *mStorage;
}

bool StreamReader::isLastLine() const
{
    return !mLines.isTooLong() && mLines.text() == SerializerRaw::keyword(SerializerRaw::kEndStream);
}

bool StreamReader::isLineUsable()
{
    if (mLines.isTooLong())
        mMessages.add(mLines.tooLongMessage());
    return !mLines.isTooLong();
}

std::string StreamReader::atRecord(unsigned int record)
{
    return " at record " + std::to_string(record);
}
} // namespace vumo::Data::detail
