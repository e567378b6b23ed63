#include <vumo/vumo.h>

#include <iostream>

int main()
{
    vumo::Data::Structure* structure = vumo::Data::Structure::create();
    structure->ref();
    const bool added = structure->addMember(vumo::Data::Member::kFloat, 3, "Position");
    structure->unref();
    std::cout << (added ? "OK" : "the structure took no member") << '\n';
    return added ? 0 : 1;
}
