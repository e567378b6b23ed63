#include "Commands.h"
#include "Failure.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace
{
enum eExitCode : int
{
    kDone = 0,
    kDataAtFault = 1,
    kWrongUsage = 2
};

/// What the command line names; each command uses its share.
struct Arguments
{
    std::string file;
    Address address;
    std::string index;
    std::vector<std::string> assignments;
    bool withValues = false;
    bool add = false;
    std::string digits = "exact";

    vumo::Data::eNumbers numbers() const { return digits == "six" ? vumo::Data::kSixDigits : vumo::Data::kExact; }
};

void addAddress(CLI::App& command, Arguments& arguments)
{
    command.add_option("FILE", arguments.file, "the scene file")->required();
    command.add_option("NODE", arguments.address.node, "the node's name; \"\" for the scene itself")->required();
    command.add_option("CHANNEL", arguments.address.channel, "the channel's name")->required();
    command.add_option("STREAM", arguments.address.stream, "the stream's name")->required();
}

void addDigits(CLI::App& command, Arguments& arguments, const std::string& verb)
{
    command.add_option("--digits", arguments.digits, verb + " floating-point numbers exactly, or with six digits")
        ->check(CLI::IsMember({"exact", "six"}).description(""))
        ->type_name("exact|six");
}

void addShow(CLI::App& app, Arguments& arguments)
{
    CLI::App* const command = app.add_subcommand("show", "Show what metadata a scene file holds");
    command->add_option("FILE", arguments.file, "the scene file")->required();
    command->add_flag("--values", arguments.withValues, "show all elements, too");
    addDigits(*command, arguments, "show");
    command->callback([&] { show(arguments.file, arguments.withValues, arguments.numbers()); });
}

void addGet(CLI::App& app, Arguments& arguments)
{
    CLI::App* const command = app.add_subcommand("get", "Print one element, or all elements of a stream");
    addAddress(*command, arguments);
    CLI::Option* const index = command->add_option("INDEX", arguments.index, "the element's index");
    addDigits(*command, arguments, "print");
    command->callback([&, index] {
        get(arguments.file, arguments.address, *index ? &arguments.index : nullptr, arguments.numbers());
    });
}

void addSet(CLI::App& app, Arguments& arguments)
{
    CLI::App* const command = app.add_subcommand("set", "Change values of one element, in place");
    addAddress(*command, arguments);
    command->add_option("INDEX", arguments.index, "the element's index")->required();
    command
        ->add_option("MEMBER=VALUE", arguments.assignments,
                     "all values of a member, separated by blanks, or MEMBER[i]=VALUE for one of them; the value of a "
                     "string is taken as it stands")
        ->required();
    command->add_flag("--add", arguments.add, "add the element if there is none");
    addDigits(*command, arguments, "save all");
    command->callback([&] {
        set(arguments.file, arguments.address, arguments.index, arguments.assignments, arguments.add,
            arguments.numbers());
    });
}

int report(const std::string& text, eExitCode code)
{
    std::cerr << "vumo: " << message(text) << (text.empty() || text.back() != '\n' ? "\n" : "");
    return code;
}

int run(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Reads and edits the metadata in scene files, without loading the scene.", "vumo");
    app.require_subcommand(1);
    app.set_version_flag("--version", "vumo " VUMO_VERSION);
    app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
        return "vumo: " + CLI::FailureMessage::simple(failed, error);
    });
    addShow(app, arguments);
    addGet(app, arguments);
    addSet(app, arguments);
    app.footer("Exit codes: 0 done, 1 the file or the data is at fault, 2 wrong usage.");
    // The parser itself would only miss a command, without a word about what stands in its place.
    const auto isNamed = [argv](const CLI::App* command) { return command->get_name() == argv[1]; };
    if (argc > 1 && argv[1][0] != '-' && app.get_subcommands(isNamed).empty())
        throw WrongUsage("there is no command " + quoted(argv[1]) + "; vumo --help lists those that there are");
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error) == 0 ? kDone : kWrongUsage;
    }
    std::cout.flush();
    return std::cout ? kDone : report("could not write the output", kDataAtFault);
}
} // namespace

int main(int argc, char** argv)
{
    try
    {
        // The C locale stays in force: texts then pass to and from the file byte for byte, in its UTF-8.
        return run(argc, argv);
    }
    catch (const WrongUsage& error)
    {
        return report(error.what(), kWrongUsage);
    }
    catch (const std::exception& error)
    {
        return report(error.what(), kDataAtFault);
    }
}
