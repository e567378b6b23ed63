#include "examples/scene/Scene.h"

namespace example
{
namespace
{
/// A statement that makes the node, and one that sets the coordinates of its vertices.
void writeNode(const std::string& name, unsigned int vertices, std::ostream& out)
{
    out << "createNode mesh -n \"" << name << "\";\n\tsetAttr -s " << vertices << " \".vt[0:" << vertices - 1
        << "]\"\n";
    for (unsigned int i = 0; i < vertices; ++i)
        out << "\t\t" << 3 * i << " " << 3 * i + 1 << " " << 3 * i + 2 << (i + 1 < vertices ? "\n" : ";\n");
}
} // namespace

bool writeAsciiScene(const Scene& scene, std::ostream& out)
{
    out << "//Ovri ASCII 2024 scene\n"
           "//Name: example.oa\n"
           "requires ovri \"2024\";\n"
           "currentUnit -l centimeter -a degree -t film;\n";
    for (const std::string& name : scene.mNodes)
        writeNode(name, scene.mVerticesPerNode, out);
    out << "select -ne :time1;\n"
           "\tsetAttr \".o\" 1;\n"
           "// End of example.oa\n";
    return out.flush().good();
}
} // namespace example
