#pragma once

namespace vumo::Debug
{
class Footprint;
class Print;
} // namespace vumo::Debug
