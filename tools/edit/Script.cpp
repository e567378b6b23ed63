#include "edit/Script.h"

#include "core/Nearest.h"
#include "core/Text.h"
#include "edit/Assignment.h"
#include "edit/Selected.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Script.h"
#include "vumo/data/StreamIterator.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <algorithm>
#include <sstream>

using namespace vumo::Data;
using vumo::codec::scriptWord;

namespace
{
struct Verb
{
    const char* name;
    Edit::eVerb verb;
};

constexpr Verb kVerbs[] = {{"set", Edit::kSet}, {"rm", Edit::kRemove}, {"cp", Edit::kCopy}, {"mv", Edit::kMove}};

[[noreturn]] void refuse(const std::string& text)
{
    throw Failure(kWrongUsage, text);
}

Edit::eVerb verbOf(const std::string& name)
{
    std::vector<std::string> names;
    for (const Verb& verb : kVerbs)
    {
        if (name == verb.name)
            return verb.verb;
        names.emplace_back(verb.name);
    }
    refuse(inQuotes(name) + " is none of the commands set, rm, cp and mv" + didYouMean(name, names));
}

/// Takes the words of one command apart.
class CommandParser
{
public:
    explicit CommandParser(const std::vector<std::string>& words) : mWords(words) {}

    Edit parse()
    {
        mEdit.verb = verbOf(mWords[0]);
        for (mAt = 1; mAt < mWords.size(); ++mAt)
        {
            if (!mHasEnded && mWords[mAt] == "--")
                mHasEnded = true;
            else if (isOption(mAt))
                takeOption();
            else
                mEdit.words.push_back(mWords[mAt]);
        }
        mEdit.check();
        return mEdit;
    }

private:
    bool isOption(std::size_t at) const { return !mHasEnded && mWords[at].size() > 1 && mWords[at][0] == '-'; }

    void takeOption()
    {
        const bool isSet = mEdit.verb == Edit::kSet;
        const bool isRemove = mEdit.verb == Edit::kRemove;
        const bool isTransfer = mEdit.verb == Edit::kCopy || mEdit.verb == Edit::kMove;
        const std::string::size_type equals = mWords[mAt].find('=');
        const std::string name = mWords[mAt].substr(0, equals);
        if (isSet && mWords[mAt] == "--add")
            mEdit.add = true;
        else if (isSet && name == "--structure")
            mEdit.structure = value(equals);
        else if (isRemove && name == "--structure")
            mEdit.structures.push_back(value(equals));
        else if (isRemove && mWords[mAt] == "--unused")
            mEdit.allUnused = true;
        else if (isSet && name == "--index-type")
            mEdit.indexType = value(equals);
        else if (isTransfer && name == "--merge")
            mEdit.merge = mergeOf(value(equals));
        else if (isTransfer && name == "--as")
            for (mEdit.newWords.push_back(value(equals)); mAt + 1 < mWords.size() && !isOption(mAt + 1);)
                mEdit.newWords.push_back(mWords[++mAt]);
        else
            refuse(inQuotes(mWords[mAt]) + " is no option of " + mWords[0] + " in a script; \"--\" ends options");
    }

    /// What follows the "=" in the word, or the next word.
    std::string value(std::string::size_type equals)
    {
        if (equals != std::string::npos)
            return mWords[mAt].substr(equals + 1);
        if (++mAt == mWords.size())
            refuse(inQuotes(mWords[mAt - 1]) + " has no value");
        return mWords[mAt];
    }

    const std::vector<std::string>& mWords;
    std::size_t mAt = 0;
    bool mHasEnded = false;
    Edit mEdit;
};

void printLine(std::ostream& out, const std::vector<std::string>& words)
{
    for (const std::string& word : words)
        out << (&word == &words.front() ? "" : " ") << scriptWord(word);
    out << "\n";
}

void printStructure(std::ostream& out, const Structure& structure)
{
    std::ostringstream text;
    StructureSerializerRaw::theFormat()->write(structure, text);
    printLine(out, {"set", "--add", "--structure", text.str()});
}

void printStream(std::ostream& out, const std::string& node, const std::string& channel, const Stream& stream)
{
    printLine(out, {"set", "--add", "--structure", stream.structure().name(), "--index-type", stream.indexType(), "--",
                    node, channel, stream.name()});
    for (StreamIterator element = stream.cbegin(); element != stream.cend(); ++element)
    {
        std::vector<std::string> words = {
            "set", "--add", "--", node, channel, stream.name(), element.index().asString()};
        for (unsigned int i = 0; element->setPositionByMemberIndex(i); ++i)
        {
            for (const std::string& text : assignmentsOf(*stream.structure().member(i), *element))
                words.push_back(text);
        }
        printLine(out, words);
    }
}
} // namespace

Edit::eMerge mergeOf(const std::string& word)
{
    if (word != "keep" && word != "replace" && word != "fail")
        refuse("--merge is keep, replace or fail, not " + inQuotes(word));
    return word == "keep" ? Edit::kKeep : word == "replace" ? Edit::kReplace : Edit::kFail;
}

std::vector<Edit> readScript(std::istream& in, const std::string& name)
{
    vumo::codec::ScriptReader reader(in);
    std::vector<Edit> edits;
    try
    {
        for (std::vector<std::string> words; reader.next(words);)
            edits.push_back(CommandParser(words).parse());
    }
    catch (const vumo::codec::CodecError& error)
    {
        throw Failure(kWrongUsage, name + ": " + error.what());
    }
    catch (const Failure& failure)
    {
        throw Failure(kWrongUsage, name + ": line " + std::to_string(reader.line()) + ": " + failure.what());
    }
    return edits;
}

void printScript(const Job& job, const SceneFile& scene)
{
    const vumo::codec::Metadata metadata = selected(scene, job.session.selection());
    for (const auto& structure : metadata.structures)
        printStructure(job.out, *structure.second);
    for (const auto& [node, channels] : metadata.nodes)
    {
        for (const Channel& channel : channels)
        {
            for (const Stream* const stream : channel)
                printStream(job.out, node, channel.name(), *stream);
        }
    }
}
