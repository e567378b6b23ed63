#include "vumo/data/detail/ValueInput.h"

#include <algorithm>

namespace vumo::Data::detail
{
std::string_view ValueInput::nextWords() const
{
    if (!mText || !mStream.good())
        return {};
    const std::string_view rest = mText->rest();
    const auto begin = std::find_if_not(rest.begin(), rest.end(), isClassicSpace);
    return rest.substr(static_cast<std::size_t>(begin - rest.begin()));
}

std::string_view ValueInput::takePlainWord()
{
    const std::string_view words = nextWords();
    const auto end = std::find_if(words.begin(), words.end(), isClassicSpace);
    const std::string_view word = words.substr(0, static_cast<std::size_t>(end - words.begin()));
    if (!word.empty())
        mText->skipTo(word.data() + word.size());
    return word;
}
} // namespace vumo::Data::detail
