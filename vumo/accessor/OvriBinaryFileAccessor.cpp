#include "vumo/accessor/OvriBinaryFileAccessor.h"

#include "vumo/accessor/BinaryReader.h"
#include "vumo/accessor/BinaryWriter.h"
#include "vumo/accessor/detail/FileInput.h"
#include "vumo/accessor/detail/MetadataRead.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <cstdint>

namespace vumo::Data
{
namespace
{
bool isScene(std::istream& in)
{
    std::uint64_t mainSizePosition = 0;
    std::uint64_t trailerSizePosition = 0;
    std::uint64_t trailerEnd = 0;
    std::string ignored;
    return BinaryReader::seekToTrailerStart(in, mainSizePosition, trailerSizePosition, trailerEnd, ignored);
}
} // namespace

bool OvriBinaryFileAccessor::write(std::string& errors) const
{
    return BinaryWriter::writeMetadata(state(), errors);
}

bool OvriBinaryFileAccessor::isFileSupported(const std::string& fileName) const
{
    const detail::File file(fileName, detail::File::eMode::kRead);
    detail::FileInput in(file);
    return isScene(in);
}

bool OvriBinaryFileAccessor::performRead(const std::set<std::string>* structureNames,
                                         const std::set<std::string>* associationNames, std::string& errors)
{
    if (fileName().empty())
    {
        state().fail(Failure::kNoFile);
        return detail::refuse(errors, "Empty file name.");
    }
    const detail::File file(fileName(), detail::File::eMode::kRead);
    detail::FileInput in(file);
    detail::MetadataRead read(state(), detail::MetadataRead::eOrder::kForward, structureNames, associationNames);
    if (BinaryReader::readMetadata(in, read, errors))
        return true;
    if (!file.isOpen())
        state().failure = detail::openFailure(file);
    in.clear();
    in.seekg(0);
    return state().fail(isScene(in) ? Failure::kMalformed : Failure::kNotScene, file.error());
}

bool OvriBinaryFileAccessor::Debug(const OvriBinaryFileAccessor* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::OvriBinaryFileAccessor", object, request);
}

bool OvriBinaryFileAccessor::Debug(const OvriBinaryFileAccessor* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
