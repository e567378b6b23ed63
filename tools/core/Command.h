#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
}

/// A word of a command line that is no option.
struct Word
{
    const char* name; ///< for several, it ends in "..."
    const char* description;
};

/// What can be said to one command on the command line: its words, in their order, and its options. All places that
/// values go to are borrowed.
///
/// The names of an option stand together: "-o,--output". Its type is what stands for the value in the help.
class Command
{
public:
    /// Borrows what the parser knows of the command.
    explicit Command(CLI::App& parser) : mParser(&parser) {}

    CLI::App& parser() const { return *mParser; }

    void addWord(const Word& word, bool isRequired);
    void addWord(const Word& word, std::string& value);

    /// A flag, alone or not together with another one.
    void addFlag(const std::string& names, bool& value, const std::string& description,
                 const std::string& excluded = "");

    /// A flag that stands for the last word that must be given.
    void addFlagForWord(const std::string& names, bool& value, const std::string& description);

    /// An option with a text.
    void addOption(const std::string& names, std::string& value, const std::string& type,
                   const std::string& description);

    /// Likewise one that stands for the last word that must be given.
    void addOptionForWord(const std::string& names, std::string& value, const std::string& type,
                          const std::string& description);

    /// An option with one of these texts.
    void addChoice(const std::string& names, std::string& value, const std::vector<std::string>& choices,
                   const std::string& description);

    /// An option with a number between these.
    void addNumber(const std::string& names, double& value, double least, double most, const std::string& type,
                   const std::string& description);
    void addNumber(const std::string& names, unsigned int& value, unsigned int least, unsigned int most,
                   const std::string& type, const std::string& description);

    /// An option that may be given several times, each time with up to so many values, which are taken as they stand.
    void addList(const std::string& names, std::vector<std::string>& values, const std::string& type,
                 const std::string& description, int most = 1);

private:
    CLI::App* mParser;
};
