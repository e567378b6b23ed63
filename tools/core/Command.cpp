#include "core/Command.h"

#include "core/Text.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

namespace
{
/// What must be given comes first, so the last of that may be left out.
void leaveOutLastWord(CLI::App& parser)
{
    CLI::Option* last = nullptr;
    for (CLI::Option* const option : parser.get_options())
        last = option->get_positional() && option->get_required() ? option : last;
    last->required(false);
}

/// Says what is wrong with a text that is no number between these. The parser's own check lets "nan" pass.
std::string numberFault(const std::string& text, double least, double most)
{
    double number = 0;
    if (CLI::detail::lexical_cast(text, number) && number >= least && number <= most)
        return "";
    std::ostringstream fault;
    fault << inQuotes(text) << " is no number from " << least;
    if (std::isinf(most))
        fault << " on";
    else
        fault << " to " << std::setprecision(std::numeric_limits<double>::digits10) << most;
    return fault.str();
}

template <class Number>
void addNumberTo(CLI::App& parser, const std::string& names, Number& value, double least, double most,
                 const std::string& type, const std::string& description)
{
    parser.add_option(names, value, description)
        ->check([least, most](const std::string& text) { return numberFault(text, least, most); })
        ->type_name(type);
}
} // namespace

void Command::addWord(const Word& word, bool isRequired)
{
    constexpr std::string::size_type kDots = 3;
    const std::string name = word.name;
    const bool isSeveral = name.size() > kDots && name.compare(name.size() - kDots, kDots, "...") == 0;
    CLI::Option* const option =
        mParser->add_option(isSeveral ? name.substr(0, name.size() - kDots) : name, word.description);
    // So many are expected, rather than extra ones allowed, so that no word is taken for a list.
    constexpr int kMany = CLI::detail::expected_max_vector_size;
    if (isSeveral)
        option->expected(kMany, kMany)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    option->allow_extra_args(false)->required(isRequired);
}

void Command::addWord(const Word& word, std::string& value)
{
    mParser->add_option(word.name, value, word.description)->required();
}

void Command::addFlag(const std::string& names, bool& value, const std::string& description,
                      const std::string& excluded)
{
    CLI::Option* const flag = mParser->add_flag(names, value, description);
    if (!excluded.empty())
        flag->excludes(mParser->get_option(excluded));
}

void Command::addFlagForWord(const std::string& names, bool& value, const std::string& description)
{
    const auto take = [&value, parser = mParser] {
        value = true;
        leaveOutLastWord(*parser);
    };
    mParser->add_flag_callback(names, take, description);
}

void Command::addOption(const std::string& names, std::string& value, const std::string& type,
                        const std::string& description)
{
    mParser->add_option(names, value, description)->type_name(type);
}

void Command::addOptionForWord(const std::string& names, std::string& value, const std::string& type,
                               const std::string& description)
{
    const auto take = [&value, parser = mParser](const std::string& text) {
        value = text;
        leaveOutLastWord(*parser);
    };
    mParser->add_option_function<std::string>(names, take, description)->type_name(type);
}

void Command::addChoice(const std::string& names, std::string& value, const std::vector<std::string>& choices,
                        const std::string& description)
{
    mParser->add_option(names, value, description)
        ->check(CLI::IsMember(choices).description(""))
        ->type_name(CLI::detail::join(choices, "|"));
}

void Command::addNumber(const std::string& names, double& value, double least, double most, const std::string& type,
                        const std::string& description)
{
    addNumberTo(*mParser, names, value, least, most, type, description);
}

void Command::addNumber(const std::string& names, unsigned int& value, unsigned int least, unsigned int most,
                        const std::string& type, const std::string& description)
{
    addNumberTo(*mParser, names, value, least, most, type, description);
}

void Command::addList(const std::string& names, std::vector<std::string>& values, const std::string& type,
                      const std::string& description, int most)
{
    // The parser would take a value in brackets for a list of values.
    mParser->add_option(names, values, description)
        ->expected(1, most)
        ->take_all()
        ->allow_extra_args(false)
        ->type_name(type);
}
