#include "core/Unreadable.h"

#include "core/Rows.h"
#include "core/Text.h"

using namespace vumo::Data;

void addUnreadable(const Job& job, const SceneFile& scene)
{
    Rows rows(job, "unreadable", {"block", "name", "format", "position", "length", "why"});
    for (const UnreadBlock& block : scene.metadata().unread())
    {
        const char* const kind = block.kind == UnreadBlock::kStructure ? "structure" : "node";
        if (!block.why.empty())
            rows.add({kind, block.name, block.format, block.position, block.length, withoutLineEnd(block.why)});
    }
}
