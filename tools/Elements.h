#pragma once

#include "SceneFile.h"
#include "Table.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"

#include <string>

/// The index that `text` means for the stream; throws a `Failure` when it means none.
vumo::Data::Index indexFrom(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& text);

/// The element at the index that `text` means, borrowed; throws a `Failure` when there is none.
vumo::Data::Handle elementAt(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& text);

/// All elements, a row each: the index, then the values of each member, under a row of titles.
Table elementTable(const vumo::Data::Stream& stream, vumo::Data::eNumbers numbers);

/// One element, a row for each member: its name and its values.
Table memberTable(const vumo::Data::Structure& structure, vumo::Data::Handle element, vumo::Data::eNumbers numbers);
