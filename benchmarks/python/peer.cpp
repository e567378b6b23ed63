// The other side of the benchmarks of the package for Python: what a C++ program does in place of it.
//
//     vumo_python_peer SCENE
//
// Reads words from its input and answers each with the seconds of a processor that took: "open" reads all metadata,
// "gather" takes the values of a member at a million numbers from mapped storage.

#include "vumo/vumo.h"

#include <ctime>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace vumo::Data;

namespace
{
template <class Work>
double secondsOf(Work&& work)
{
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

double openScene(const std::string& fileName, std::unique_ptr<Accessor>& scene)
{
    scene.reset();
    std::string errors;
    const double seconds = secondsOf([&] { scene = Accessor::readFile(fileName, errors); });
    if (!scene)
        throw std::runtime_error(errors);
    return seconds;
}

double gatherSparse(Accessor& scene)
{
    const Stream& stream = *scene.associations()["Sparse"].findChannel("vertex")->findDataStream("sparse");
    const std::vector<unsigned int> indices = stream.numericIndices();
    const auto count = static_cast<unsigned int>(indices.size());
    std::unique_ptr<float[]> values;
    unsigned int found = 0;
    const double seconds = secondsOf([&] {
        values.reset(new float[count]); // fresh memory, as a new array of NumPy's has
        found = stream.getMemberValues("Weight", indices.data(), count, values.get());
    });
    if (found != count)
        throw std::runtime_error("elements are missing");
    return seconds;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try
    {
        std::unique_ptr<Accessor> scene;
        openScene(argv[1], scene);
        std::string word;
        while (std::cin >> word)
            std::cout << (word == "open" ? openScene(argv[1], scene) : gatherSparse(*scene)) << std::endl;
    }
    catch (const std::exception& exception)
    {
        std::cerr << exception.what() << "\n";
        return 1;
    }
    return 0;
}
