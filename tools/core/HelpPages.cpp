#include "core/HelpPages.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <vector>

namespace
{
using Commands = std::vector<const CLI::App*>;
using Options = std::vector<const CLI::Option*>;

Commands commandsOf(const CLI::App& commandLine)
{
    return commandLine.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

/// Its words first, then what begins with a dash; hidden options are left out.
Options optionsOf(const CLI::App& command, bool isWord)
{
    return command.get_options([isWord](const CLI::Option* option) {
        return option->get_positional() == isWord && (isWord || !option->get_group().empty());
    });
}

/// "vumo get [OPTIONS] FILE ..."
std::string usageOf(const CLI::App& command)
{
    const bool isWhole = command.get_parent() == nullptr;
    const std::string name = isWhole ? command.get_name() : command.get_parent()->get_name() + " " + command.get_name();
    const std::string label = "Usage: ";
    const std::string usage = CLI::Formatter().make_usage(&command, name);
    return usage.substr(label.size(), usage.find_last_not_of('\n') + 1 - label.size());
}

/// "-o, --output OUT", or the name of a word.
std::string titleOf(const CLI::Option& option)
{
    if (option.get_positional())
        return option.get_name(true);
    const std::string names = CLI::detail::find_and_replace(option.get_name(false, true), ",", ", ");
    return option.get_type_name().empty() ? names : names + " " + option.get_type_name();
}

std::string descriptionOf(const CLI::Option& option)
{
    std::string text = option.get_description();
    for (const CLI::Option* const other : option.get_excludes())
        text += "; not with " + other->get_name();
    return text;
}

std::string sentence(const std::string& text)
{
    return text.empty() || text.back() == '.' ? text : text + ".";
}

/// With a backslash before each of the characters.
std::string escaped(const std::string& text, const std::string& characters)
{
    std::string result;
    for (const char character : text)
        result += (characters.find(character) == std::string::npos ? "" : "\\") + std::string(1, character);
    return result;
}

/// Text of a page, with options as code.
std::string markdownText(const std::string& text)
{
    return std::regex_replace(escaped(text, "*<_"), std::regex("--[a-z][a-z-]*"), "`$&`");
}

void addMarkdown(std::ostream& page, const CLI::App& command)
{
    page << "\n" << markdownText(sentence(command.get_description())) << "\n\n```\n" << usageOf(command) << "\n```\n\n";
    for (const bool isWord : {true, false})
    {
        for (const CLI::Option* const option : optionsOf(command, isWord))
            page << "- `" << titleOf(*option) << "`: " << markdownText(descriptionOf(*option)) << "\n";
    }
    if (command.get_parent() && !command.get_footer().empty())
        page << "\n" << markdownText(command.get_footer()) << "\n";
}

std::string markdown(const CLI::App& commandLine)
{
    std::ostringstream page;
    page << "# The command " << commandLine.get_name() << "\n\n<!-- Made by vumo --help-as markdown. -->\n";
    addMarkdown(page, commandLine);
    page << "\n" << markdownText(commandLine.get_footer()) << "\n";
    for (const CLI::App* const command : commandsOf(commandLine))
    {
        page << "\n## " << command->get_name() << "\n";
        addMarkdown(page, *command);
    }
    std::string text = page.str();
    text.pop_back();
    return text;
}

/// A line of text in a manual: no line of it is taken for a request, and dashes are those that are typed.
std::string manual(const std::string& text)
{
    const std::string inLine = CLI::detail::find_and_replace(escaped(text, "\\-"), "\\\\", "\\e");
    return "\\&" + CLI::detail::find_and_replace(inLine, "\n", "\n.br\n\\&");
}

void addManual(std::ostream& page, const CLI::App& command)
{
    for (const bool isWord : {true, false})
    {
        for (const CLI::Option* const option : optionsOf(command, isWord))
        {
            page << ".TP\n.B " << manual(titleOf(*option)) << "\n" << manual(descriptionOf(*option)) << "\n";
        }
    }
    if (!command.get_footer().empty())
        page << ".PP\n" << manual(command.get_footer()) << "\n";
}

std::string manualPage(const CLI::App& commandLine)
{
    std::ostringstream page;
    page << ".TH VUMO 1 \"\" \"" << commandLine.version() << "\" \"User Commands\"\n.SH NAME\n"
         << "vumo \\- reads and edits the metadata in scene files\n.SH SYNOPSIS\n.nf\n";
    for (const CLI::App* const command : commandsOf(commandLine))
        page << manual(usageOf(*command)) << "\n";
    page << ".fi\n.SH DESCRIPTION\n" << manual(commandLine.get_description()) << "\n";
    addManual(page, commandLine);
    page << ".SH COMMANDS\n";
    for (const CLI::App* const command : commandsOf(commandLine))
    {
        page << ".SS " << manual(command->get_name()) << "\n" << manual(sentence(command->get_description())) << "\n";
        addManual(page, *command);
    }
    return page.str() + ".SH SEE ALSO\nThe pages in the documentation of vumo, beginning with README.md.";
}

/// All names of what begins with a dash, with a blank after each.
std::string optionNames(const CLI::App& command)
{
    std::string names;
    for (const CLI::Option* const option : optionsOf(command, false))
    {
        for (const std::string& name : option->get_lnames())
            names += "--" + name + " ";
        for (const std::string& name : option->get_snames())
            names += "-" + name + " ";
    }
    return names;
}

/// Commands after the first word, then options; all else is left to bash, which knows the files.
std::string completion(const CLI::App& commandLine)
{
    std::ostringstream script;
    std::string names;
    for (const CLI::App* const command : commandsOf(commandLine))
        names += command->get_name() + " ";
    script << "# Completes the words of vumo in bash.\n_vumo()\n{\n    local word=${COMP_WORDS[COMP_CWORD]} words=\n"
           << "    if [ \"$COMP_CWORD\" = 1 ]; then\n        words='" << names << optionNames(commandLine) << "'\n"
           << "    elif [[ $word == -* ]]; then\n        case ${COMP_WORDS[1]} in\n";
    for (const CLI::App* const command : commandsOf(commandLine))
        script << "        " << command->get_name() << ") words='" << optionNames(*command) << "' ;;\n";
    script << "        esac\n    fi\n    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n}\n"
           << "complete -o default -F _vumo vumo";
    return script.str();
}
} // namespace

std::string helpAs(const CLI::App& commandLine, const std::string& form)
{
    using Maker = std::string (*)(const CLI::App&);
    static const std::map<std::string, Maker> makers = {
        {"bash", completion}, {"man", manualPage}, {"markdown", markdown}};
    const auto maker = makers.find(form);
    if (maker == makers.end())
        throw CLI::ValidationError("--help-as", "bash, man and markdown are its forms");
    return maker->second(commandLine);
}
