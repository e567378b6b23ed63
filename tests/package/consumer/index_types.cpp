#include <vumo/data/Index.h>

#include <iostream>

int main()
{
    for (const char* name : {"numeric", "pair", "string"})
    {
        if (vumo::Data::Index::creators().count(name) == 0)
        {
            std::cout << "no index type \"" << name << "\"\n";
            return 1;
        }
    }
    std::cout << "OK\n";
    return 0;
}
