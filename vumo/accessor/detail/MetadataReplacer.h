#pragma once

#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/FileRegion.h"
#include "vumo/accessor/detail/MetadataWriter.h"
#include "vumo/accessor/detail/Replacement.h"

#include <string>

namespace vumo::Data::detail
{
/// Makes the new bytes of a region. All metadata of the accessor is written in that form, also the structures that
/// streams use beyond those of the accessor. It goes to the insertion and all blocks go; or, where unread blocks are
/// kept, it goes into the place of what was read.
///
/// Gives in `written` which metadata the file will have then. False, with the reasons and
/// the form's sentence appended to `errors`, at the first piece that cannot be written so that it can be read again,
/// or when it does not go with what is kept.
bool replaceMetadata(const MetadataForm& form, const AccessorState& metadata, const FileRegion& region,
                     Replacement& replacement, FileBlocks& written, std::string& errors);
} // namespace vumo::Data::detail
