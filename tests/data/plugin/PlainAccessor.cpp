// A kind of files that a plug-in brings, which can be read only: a structure, and after it the associations of a scene.

#include "vumo/accessor/AccessorFactory.h"
#include "vumo/accessor/AccessorOvri.h"
#include "vumo/foundation/Ref.h"

#include <fstream>
#include <iterator>

namespace vumo::Data
{
namespace
{
class PlainAccessor : public Accessor
{
protected:
    bool performRead(const std::set<std::string>* /*structureNames*/, const std::set<std::string>* associationNames,
                     std::string& errors) override
    {
        std::ifstream in(fileName());
        std::string line;
        std::getline(in, line);
        const Ref<const Structure> structure(AccessorOvri::deserializeStructure("raw", line, errors));
        if (!structure)
            return false;
        Structure::registerStructure(const_cast<Structure&>(*structure));
        const std::string text(std::istreambuf_iterator<char>(in), {});
        const std::string scene = AccessorOvri::getSceneAssociationsName();
        return (associationNames && associationNames->count(scene) == 0) ||
               AccessorOvri::deserializeAssociations("raw", text, associations()[scene], errors);
    }
};

const AccessorFactory<PlainAccessor> theFactory("plain");
} // namespace
} // namespace vumo::Data
