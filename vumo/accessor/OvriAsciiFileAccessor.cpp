#include "vumo/accessor/OvriAsciiFileAccessor.h"

#include "vumo/accessor/detail/AsciiReader.h"
#include "vumo/accessor/detail/AsciiWriter.h"
#include "vumo/accessor/detail/FileInput.h"
#include "vumo/accessor/detail/MetadataRead.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
namespace
{
bool isScene(std::istream& in)
{
    std::string ignored;
    return detail::AsciiReader::checkHeader(in, ignored);
}
} // namespace

bool OvriAsciiFileAccessor::write(std::string& errors) const
{
    return detail::AsciiWriter::writeMetadata(state(), errors);
}

bool OvriAsciiFileAccessor::isFileSupported(const std::string& fileName) const
{
    const detail::File file(fileName, detail::File::eMode::kRead);
    detail::FileInput in(file);
    return isScene(in);
}

bool OvriAsciiFileAccessor::performRead(const std::set<std::string>* structureNames,
                                        const std::set<std::string>* associationNames, std::string& errors)
{
    if (fileName().empty())
    {
        state().fail(Failure::kNoFile);
        return detail::replaceErrors(errors, "Empty file name.");
    }
    const detail::File file(fileName(), detail::File::eMode::kRead);
    detail::FileInput in(file);
    if (!in)
    {
        state().failure = detail::openFailure(file);
        return detail::replaceErrors(errors, "Could not open " + fileName());
    }
    detail::MetadataRead read(state(), detail::MetadataRead::eOrder::kBackward, structureNames, associationNames);
    if (detail::AsciiReader::readMetadata(in, read, errors))
        return true;
    in.clear();
    in.seekg(0);
    return state().fail(isScene(in) ? Failure::kMalformed : Failure::kNotScene, file.error());
}

bool OvriAsciiFileAccessor::Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::OvriAsciiFileAccessor", object, request);
}

bool OvriAsciiFileAccessor::Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
