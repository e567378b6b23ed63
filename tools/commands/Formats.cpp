#include "commands/Commands.h"
#include "core/Rows.h"
#include "vumo/accessor/Accessor.h"
#include "vumo/data/Index.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/ChannelSerializer.h"
#include "vumo/serialize/StreamSerializer.h"
#include "vumo/serialize/StructureSerializer.h"

#include <CLI/CLI.hpp>

#include <set>

using namespace vumo::Data;

namespace
{
template <class Serializer>
void addFormatsOf(Rows& rows, const char* kind)
{
    const auto isDefault = [](const std::string& name) {
        const Serializer* const format = Serializer::defaultFormat();
        return format && name == format->formatType();
    };
    std::set<std::string> names;
    for (const Serializer* const format : Serializer::allFormats())
        names.insert(format->formatType());
    for (const std::string& name : names)
        rows.add({kind, name, isDefault(name) ? Rows::Cell("default") : Rows::Cell()});
}

eExitCode formats(Job& job)
{
    Rows rows(job, "formats", {"kind", "name", "default"});
    for (const std::string& extension : Accessor::supportedExtensions())
        rows.add({"extension", extension, {}});
    for (const auto& [name, creator] : Index::creators())
        rows.add({"index type", name, name == Index::theTypeName() ? Rows::Cell("default") : Rows::Cell()});
    addFormatsOf<StructureSerializer>(rows, "structure format");
    addFormatsOf<StreamSerializer>(rows, "stream format");
    addFormatsOf<ChannelSerializer>(rows, "channel format");
    addFormatsOf<AssociationsSerializer>(rows, "associations format");
    return kDone;
}
} // namespace

void addFormats(Session& session)
{
    Command command = session.addCommand("formats", "List the kinds of scenes, index types and text formats");
    session.addJson(command);
    session.setWork(command, [&session] { return once(session, formats); });
}
