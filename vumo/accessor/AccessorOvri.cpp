#include "vumo/accessor/AccessorOvri.h"

#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
const std::string& AccessorOvri::Ascii::getHeaderPrefix()
{
    static const std::string theWord = "//Ovri ASCII";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getTrailerPrefix()
{
    static const std::string theWord = "// End of";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getApplyMetadataCommandName()
{
    static const std::string theWord = "applyMetadata";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getApplyMetadataCommandFormatFlag()
{
    static const std::string theWord = "-fmt";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getApplyMetadataCommandSceneFlag()
{
    static const std::string theWord = "-scn";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getApplyMetadataCommandValueFlag()
{
    static const std::string theWord = "-v";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getDataStructureCommandName()
{
    static const std::string theWord = "dataStructure";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getDataStructureCommandFormatFlag()
{
    static const std::string theWord = "-fmt";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getDataStructureCommandAsStringFlag()
{
    static const std::string theWord = "-as";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getConnectAttrCommandName()
{
    static const std::string theWord = "connectAttr";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getCreateNodeCommandName()
{
    static const std::string theWord = "createNode";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getSetAttrCommandName()
{
    static const std::string theWord = "setAttr";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getRelationshipCommandName()
{
    static const std::string theWord = "relationship";
    return theWord;
}

const std::string& AccessorOvri::Ascii::getSelectCommandName()
{
    static const std::string theWord = "select";
    return theWord;
}

const std::string& AccessorOvri::Binary::getFormChunkName()
{
    static const std::string theTag = "FOR8";
    return theTag;
}

const std::string& AccessorOvri::Binary::getMainFormChunkType()
{
    static const std::string theType = "Ovri";
    return theType;
}

const std::string& AccessorOvri::Binary::getMetaDataStructureChunkName()
{
    static const std::string theTag = "DATS";
    return theTag;
}

const std::string& AccessorOvri::Binary::getApplyNodeMetaDataChunkName()
{
    static const std::string theTag = "MTDA";
    return theTag;
}

const std::string& AccessorOvri::Binary::getApplySceneMetaDataChunkName()
{
    static const std::string theTag = "SMTD";
    return theTag;
}

const std::string& AccessorOvri::Binary::getBackwardChunkSizeChunkName()
{
    static const std::string theTag = "BCSZ";
    return theTag;
}

const std::string& AccessorOvri::getSceneAssociationsName()
{
    static const std::string theName;
    return theName;
}

bool AccessorOvri::truncateFile(const std::string& fileName, std::uint64_t length)
{
    return detail::File::truncate(fileName, length);
}

const Structure* AccessorOvri::deserializeStructure(const std::string& format, const std::string& text,
                                                    std::string& errors)
{
    return detail::deserializeStructure(format, text, errors);
}

bool AccessorOvri::deserializeAssociations(const std::string& format, const std::string& text, Associations& result,
                                           std::string& errors)
{
    return detail::deserializeAssociations(format, text, result, errors);
}

bool AccessorOvri::Debug(const AccessorOvri* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::AccessorOvri", object, request);
}

bool AccessorOvri::Debug(const AccessorOvri* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}

bool AccessorOvri::Ascii::Debug(const Ascii* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::AccessorOvri::Ascii", object, request);
}

bool AccessorOvri::Ascii::Debug(const Ascii* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}

bool AccessorOvri::Binary::Debug(const Binary* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::AccessorOvri::Binary", object, request);
}

bool AccessorOvri::Binary::Debug(const Binary* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}

bool AccessorOvri::ExternalContent::Debug(const ExternalContent* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::AccessorOvri::ExternalContent", object, request);
}

bool AccessorOvri::ExternalContent::Debug(const ExternalContent* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
