#include "benchmarks/peers/MeshProperty.h"

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>

namespace bench
{
namespace
{
using OpenMesh::Vec3f;

void add(const Vec3f& vector, Sum3& sum)
{
    for (unsigned int i = 0; i < 3; ++i)
        sum[i] += static_cast<double>(vector[i]);
}
} // namespace

struct MeshProperty::Mesh
{
    OpenMesh::PolyMesh_ArrayKernelT<> mesh;
    OpenMesh::VPropHandleT<Vec3f> normal;
};

MeshProperty::MeshProperty(std::size_t vertices) : mMesh(std::make_unique<Mesh>())
{
    mMesh->mesh.add_property(mMesh->normal, "normal");
    for (std::size_t i = 0; i < vertices; ++i)
        mMesh->mesh.add_vertex(Vec3f(0, 0, 0));
}

MeshProperty::~MeshProperty() = default;

void MeshProperty::fill(const std::vector<float>& coordinates)
{
    const float* next = coordinates.data();
    for (const auto vertex : mMesh->mesh.vertices())
    {
        mMesh->mesh.property(mMesh->normal, vertex) = Vec3f(next);
        next += 3;
    }
}

Sum3 MeshProperty::sum() const
{
    Sum3 sum{};
    for (const auto vertex : mMesh->mesh.vertices())
        add(mMesh->mesh.property(mMesh->normal, vertex), sum);
    return sum;
}

Sum3 MeshProperty::copy(Stopwatch& watch) const
{
    std::unique_ptr<OpenMesh::PropertyT<Vec3f>> copied;
    watch.time([&] { copied.reset(mMesh->mesh.property(mMesh->normal).clone()); });
    Sum3 sum{};
    for (const Vec3f& vector : copied->data_vector())
        add(vector, sum);
    return sum;
}
} // namespace bench
