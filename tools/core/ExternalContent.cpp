#include "core/ExternalContent.h"

#include "vumo/accessor/AccessorOvri.h"

#include <unistd.h>

using namespace vumo::Data;

ExternalEntry::ExternalEntry(StreamIterator& element) : index(element.index().asString())
{
    AccessorOvri::ExternalContent::getEntry(*element, node, key, unresolvedPath, resolvedPath, roles);
}

bool ExternalEntry::isMissing(const std::string& sceneFile) const
{
    std::string path = resolvedPath.empty() ? unresolvedPath : resolvedPath;
    if (path.empty())
        return true;
    if (path.front() != '/')
        path.insert(0, sceneFile, 0, sceneFile.rfind('/') + 1); // nothing of a scene file without a slash
    return access(path.c_str(), F_OK) != 0;
}

JsonObject ExternalEntry::json(const std::string& sceneFile) const
{
    std::vector<std::string> texts;
    for (const std::string& role : roles)
        texts.push_back(vumo::codec::jsonText(role));
    JsonObject object;
    object.addText("index", index).addText("node", node).addText("key", key);
    object.addText("unresolvedPath", unresolvedPath).addText("resolvedPath", resolvedPath);
    return object.add("roles", jsonArray(texts)).add("missing", isMissing(sceneFile) ? "true" : "false");
}

std::vector<ExternalEntry> externalEntries(const Stream* table)
{
    std::vector<ExternalEntry> entries;
    if (!table)
        return entries;
    for (StreamIterator element = table->cbegin(); element != table->cend(); ++element)
        entries.emplace_back(element);
    return entries;
}
