#include "Commands.h"
#include "Elements.h"
#include "SceneFile.h"

#include <iostream>

using namespace vumo::Data;

void get(const std::string& fileName, const Address& address, const std::string* index)
{
    SceneFile scene(fileName, SceneFile::kLook);
    const Stream& stream = scene.stream(address);
    if (index)
        memberTable(stream.structure(), elementAt(scene, stream, *index)).print(std::cout, 0);
    else
        elementTable(stream).print(std::cout, 0);
}
