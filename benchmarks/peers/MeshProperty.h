#pragma once

#include "benchmarks/Comparison.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace bench
{
using Sum3 = std::array<double, 3>;

/// A property of the vertices of an OpenMesh mesh: a vector of three floats.
class MeshProperty
{
public:
    explicit MeshProperty(std::size_t vertices);
    ~MeshProperty();

    void fill(const std::vector<float>& coordinates);
    Sum3 sum() const;

    /// Times a copy and returns its sum.
    Sum3 copy(Stopwatch& watch) const;

private:
    struct Mesh;

    std::unique_ptr<Mesh> mMesh;
};
} // namespace bench
