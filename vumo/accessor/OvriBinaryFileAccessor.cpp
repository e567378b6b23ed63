#include "vumo/accessor/OvriBinaryFileAccessor.h"

#include "vumo/accessor/BinaryReader.h"
#include "vumo/accessor/BinaryWriter.h"

#include <cstdint>
#include <fstream>

namespace vumo::Data
{
bool OvriBinaryFileAccessor::write(std::string& errors) const
{
    return BinaryWriter::writeMetadata(fileName(), structures(), associations(), errors);
}

bool OvriBinaryFileAccessor::isFileSupported(const std::string& fileName) const
{
    std::ifstream file(fileName, std::ios::binary);
    std::uint64_t mainSizePosition = 0;
    std::uint64_t trailerSizePosition = 0;
    std::uint64_t trailerEnd = 0;
    std::string errors;
    return BinaryReader::seekToTrailerStart(file, mainSizePosition, trailerSizePosition, trailerEnd, errors);
}

bool OvriBinaryFileAccessor::performRead(const std::set<std::string>* structureNames,
                                         const std::set<std::string>* associationNames, std::string& errors)
{
    if (fileName().empty())
    {
        errors += "Empty file name.";
        return false;
    }
    std::ifstream file(fileName(), std::ios::binary);
    return BinaryReader::readMetadata(file, structureNames, associationNames, associations(), errors);
}
} // namespace vumo::Data
