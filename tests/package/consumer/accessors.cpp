#include <vumo/accessor/Accessor.h>

#include <iostream>

int main()
{
    const bool hasBinaryScenes = vumo::Data::Accessor::supportedExtensions().count("ob") == 1;
    std::cout << (hasBinaryScenes ? "OK" : "no accessor for \"ob\"") << '\n';
    return hasBinaryScenes ? 0 : 1;
}
