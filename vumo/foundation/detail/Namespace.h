#pragma once

namespace vumo::detail
{
}

/// What serves all folders stands in `vumo::detail`, the helpers of the other folders in `vumo::Data::detail`. There
/// the former shall have their short names, too. This is the one place that says so; every header here includes it.
namespace vumo::Data::detail
{
using namespace vumo::detail;
} // namespace vumo::Data::detail
