#include "Commands.h"
#include "Elements.h"
#include "SceneFile.h"

#include <iostream>

using namespace vumo::Data;

void get(const std::string& fileName, const Address& address, const std::string* index, eNumbers numbers)
{
    SceneFile scene(fileName, SceneFile::kLook, &address.node);
    const Stream& stream = scene.stream(address);
    if (index)
        memberTable(stream.structure(), elementAt(scene, stream, *index), numbers).print(std::cout, 0);
    else
        elementTable(stream, numbers).print(std::cout, 0);
}
