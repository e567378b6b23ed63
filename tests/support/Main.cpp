// The main program of the tests. They run in the locale that the program starts in, "C"; --locale=NAME asks for
// another one: a locale of the system, or one that is made here, "comma" or an encoding such as "GBK".
#include "tests/support/CommaLocale.h"
#include "tests/support/ScratchLocale.h"

#include <gmock/gmock.h>

#include <clocale>
#include <iostream>
#include <optional>
#include <string>

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    const std::string option = "--locale=";
    const std::string argument = argc > 1 ? argv[1] : option;
    if (argument.compare(0, option.size(), option) != 0)
    {
        std::cerr << "unknown argument " << argument << "\n";
        return 2;
    }
    const std::string name = argument.substr(option.size());
    std::optional<vumo::test::CommaLocale> comma;
    std::optional<vumo::test::ScratchLocale> made;
    if (name == "comma")
        comma.emplace();
    else if (!name.empty() && !std::setlocale(LC_ALL, name.c_str()))
        made.emplace(name);
    if (made && !made->isSet())
    {
        std::cerr << "there is no locale " << name << "\n";
        return 2;
    }
    return RUN_ALL_TESTS();
}
