#include "vumo/serialize/detail/LineReader.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/ValueInput.h"

#include <cstring>
#include <limits>

namespace vumo::Data::detail
{
bool isKeywordLine(std::string_view line, const char* keyword, std::string& text)
{
    const std::string_view::size_type length = std::strlen(keyword);
    if (line.substr(0, length) != keyword)
        return false;
    const std::string_view::size_type begin = line.find_first_not_of(kBlanks, length);
    if (begin == length)
        return false; // a longer word
    text = begin == std::string_view::npos ? std::string_view() : line.substr(begin);
    return true;
}

bool LineReader::next()
{
    // Alone, it is enough to ask once: for a file that is a call of the system, and some buffers drop what they hold.
    mOffset += mConsumed;
    if (mUse == kShared || mRecord == 0)
    {
        mStart = readPosition(mIn);
        mOffset = 0;
    }
    if (!takeLine() && !copyLine())
        return false;
    mText = trimmed(mLine);
    ++mRecord;
    return true;
}

bool LineReader::takeLine()
{
    if (mUse == kShared || !mWindow.next(mLine, kMaxLineLength))
        return false;
    mConsumed = static_cast<std::streamsize>(mLine.size()) + 1;
    mTooLong = false;
    return true;
}

bool LineReader::copyLine()
{
    mIn.getline(mCopy, sizeof(mCopy));
    mConsumed = mIn.gcount();
    mTooLong = mIn.fail() && mConsumed == kMaxLineLength; // a full buffer and the end are failures alike
    if (mIn.fail() && !mTooLong)
        return false;

    const bool hasNewline = !mTooLong && !mIn.eof();
    mLine = {mCopy, static_cast<std::string_view::size_type>(mConsumed) - (hasNewline ? 1 : 0)};
    if (mTooLong)
    {
        // getline() fails for good when its buffer is full. The end and a broken input stay what they are.
        mIn.clear(mIn.rdstate() & ~std::ios::failbit);
        mIn.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        mConsumed += mIn.gcount();
    }
    return true;
}

bool LineReader::nextFilled()
{
    while (next())
    {
        if (mTooLong || !mText.empty())
            return true;
    }
    return false;
}

std::string LineReader::tooLongMessage() const
{
    return "Line at record " + std::to_string(mRecord) + " on or about character " + std::to_string(position()) +
           " is longer than " + std::to_string(kMaxLineLength) + " characters";
}
} // namespace vumo::Data::detail
