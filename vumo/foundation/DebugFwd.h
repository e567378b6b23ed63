#pragma once

namespace vumo
{
namespace Debug
{
class Footprint;
class Print;
} // namespace Debug
} // namespace vumo
