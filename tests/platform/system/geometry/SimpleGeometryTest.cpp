/// \file
/// The shapes of the makers against their closed forms.

#include "GeometryFixture.h"

#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMeshShapes.h>
#include <OpenSG/OSGSimpleGeometry.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <map>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

const double pi = 3.14159265358979323846;

struct Measures
{
    double area = 0;
    double volume = 0; ///< enclosed, positive if the triangles look outward
};

Measures measure(const Mesh &mesh)
{
    Measures measures;
    for(std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3)
    {
        const Pnt3f a = mesh.positions[mesh.triangles[i]];
        const Vec3f ab = mesh.positions[mesh.triangles[i + 1]] - a;
        const Vec3f ac = mesh.positions[mesh.triangles[i + 2]] - a;
        const Vec3f normal = ab.cross(ac);
        measures.area += 0.5 * normal.length();
        measures.volume += double((a - Pnt3f()).dot(normal)) / 6.0;
    }
    return measures;
}

/// Each edge must be there once in each direction; vertices are the same if their positions are so to the
/// bit.
bool isWatertight(const Mesh &mesh)
{
    typedef std::array<float, 3> Key;
    const auto key = [&mesh](UInt32 vertex) {
        const Pnt3f &p = mesh.positions[vertex];
        // Adding zero makes one of the two zeros.
        return Key{p[0] + 0.f, p[1] + 0.f, p[2] + 0.f};
    };
    std::map<std::pair<Key, Key>, int> edges;
    for(std::size_t i = 0; i < mesh.triangles.size(); i += 3)
        for(std::size_t k = 0; k < 3; ++k)
            ++edges[{key(mesh.triangles[i + k]), key(mesh.triangles[i + (k + 1) % 3])}];
    for(const auto &edge : edges)
    {
        const auto back = edges.find({edge.first.second, edge.first.first});
        if(edge.second != 1 || back == edges.end() || back->second != 1)
            return false;
    }
    return !edges.empty();
}

void expectSound(const Mesh &mesh)
{
    ASSERT_EQ(mesh.normals.size(), mesh.positions.size());
    ASSERT_EQ(mesh.texCoords.size(), mesh.positions.size());
    ASSERT_EQ(mesh.triangles.size() % 3, 0u);
    for(UInt32 vertex : mesh.triangles)
        ASSERT_LT(vertex, mesh.positions.size());
    for(const Vec3f &normal : mesh.normals)
        ASSERT_NEAR(normal.length(), 1.f, 1e-5f);
    // The normals are on the side that the triangles look to.
    for(std::size_t i = 0; i < mesh.triangles.size(); i += 3)
    {
        const Pnt3f a = mesh.positions[mesh.triangles[i]];
        const Vec3f face =
            (mesh.positions[mesh.triangles[i + 1]] - a).cross(mesh.positions[mesh.triangles[i + 2]] - a);
        for(std::size_t k = 0; k < 3; ++k)
            ASSERT_GT(face.dot(mesh.normals[mesh.triangles[i + k]]), 0.f) << "triangle " << i / 3;
    }
}

TEST(MeshShapesTest, APlaneHasItsAreaAndLooksAlongZ)
{
    const Mesh mesh = meshOfPlane(3, 2, 4, 5);
    expectSound(mesh);
    EXPECT_EQ(mesh.positions.size(), 30u);
    EXPECT_EQ(mesh.triangles.size(), 4u * 5u * 6u);
    EXPECT_NEAR(measure(mesh).area, 6, 1e-5);
    EXPECT_EQ(mesh.normals[7], Vec3f(0, 0, 1));
    for(std::size_t i = 0; i < mesh.positions.size(); ++i)
    {
        EXPECT_NEAR(mesh.texCoords[i][0], mesh.positions[i][0] / 3 + 0.5f, 1e-6f);
        EXPECT_NEAR(mesh.texCoords[i][1], mesh.positions[i][1] / 2 + 0.5f, 1e-6f);
        EXPECT_EQ(mesh.positions[i][2], 0.f);
    }
}

TEST(MeshShapesTest, ABoxIsClosedAndHasItsAreaAndVolume)
{
    for(const UInt32 steps : {1u, 2u, 3u, 7u})
    {
        SCOPED_TRACE(steps);
        const Mesh mesh = meshOfBox(2, 3, 5, steps, steps + 1, steps + 2);
        expectSound(mesh);
        EXPECT_TRUE(isWatertight(mesh));
        EXPECT_NEAR(measure(mesh).area, 62, 1e-4);
        EXPECT_NEAR(measure(mesh).volume, 30, 1e-4);
        for(const Vec3f &normal : mesh.normals)
            EXPECT_FLOAT_EQ(std::abs(normal[0]) + std::abs(normal[1]) + std::abs(normal[2]), 1.f);
    }
    EXPECT_EQ(meshOfBox(1, 1, 1, 1, 1, 1).positions.size(), 24u);
}

TEST(MeshShapesTest, ACylinderIsAPrismOverARegularPolygon)
{
    const UInt32 n = 9;
    const Mesh mesh = meshOfConicalFrustum(4, 2, 2, n, true, true, true);
    expectSound(mesh);
    EXPECT_TRUE(isWatertight(mesh));
    const double base = n / 2.0 * 4 * std::sin(2 * pi / n);
    EXPECT_NEAR(measure(mesh).volume, base * 4, 1e-4);
    EXPECT_NEAR(measure(mesh).area, 2 * base + n * 2 * 2 * std::sin(pi / n) * 4, 1e-4);
    const Mesh side = meshOfConicalFrustum(4, 2, 2, n, true, false, false);
    EXPECT_FALSE(isWatertight(side));
    EXPECT_NEAR(measure(side).area, n * 2 * 2 * std::sin(pi / n) * 4, 1e-4);
}

TEST(MeshShapesTest, AConeIsClosedWithoutATop)
{
    const UInt32 n = 16;
    const Mesh mesh = meshOfConicalFrustum(3, 0, 2, n, true, true, true);
    expectSound(mesh);
    EXPECT_TRUE(isWatertight(mesh));
    EXPECT_NEAR(measure(mesh).volume, n / 2.0 * 4 * std::sin(2 * pi / n) * 3 / 3, 1e-4);
    EXPECT_EQ(mesh.triangles.size(), 3u * (n + n));
}

TEST(MeshShapesTest, AFrustumLiesBetweenItsTwoPolygons)
{
    const UInt32 n = 12;
    const Mesh mesh = meshOfConicalFrustum(3, 1, 2, n, true, true, true);
    expectSound(mesh);
    EXPECT_TRUE(isWatertight(mesh));
    const double polygon = n / 2.0 * std::sin(2 * pi / n);
    EXPECT_NEAR(measure(mesh).volume, polygon * 3 * (1 + 2 + 4) / 3.0, 1e-4);
}

TEST(MeshShapesTest, ATorusIsClosedAndComesNearItsVolume)
{
    const Mesh mesh = meshOfTorus(0.5f, 2, 60, 80);
    expectSound(mesh);
    EXPECT_TRUE(isWatertight(mesh));
    // Inscribed polygons: less than the round torus by the polygons' shares, to the second order.
    const double round = 2 * pi * pi * 2 * 0.25;
    const auto share = [](double n) { return std::sin(2 * pi / n) * n / (2 * pi); };
    EXPECT_NEAR(measure(mesh).volume / round, share(60) * share(80), 1e-4);
    for(std::size_t i = 0; i < mesh.positions.size(); ++i)
    {
        const double ring = std::hypot(mesh.positions[i][0], mesh.positions[i][1]) - 2;
        EXPECT_NEAR(std::hypot(ring, mesh.positions[i][2]), 0.5, 1e-5);
    }
}

TEST(MeshShapesTest, SpheresAreClosedAndEveryVertexIsAtTheRadius)
{
    for(const bool divided : {false, true})
    {
        SCOPED_TRACE(divided);
        const Mesh mesh = divided ? meshOfSphere(3, 2) : meshOfLatLongSphere(32, 48, 2);
        expectSound(mesh);
        EXPECT_TRUE(isWatertight(mesh));
        for(std::size_t i = 0; i < mesh.positions.size(); ++i)
        {
            const Vec3f at = mesh.positions[i] - Pnt3f();
            EXPECT_NEAR(at.length(), 2, 1e-5);
            EXPECT_LT((at * 0.5f - mesh.normals[i]).length(), 1e-6f);
        }
        EXPECT_NEAR(measure(mesh).area / (4 * pi * 4), 1, 0.02);
        EXPECT_LT(measure(mesh).area, 4 * pi * 4);
        EXPECT_NEAR(measure(mesh).volume / (4 * pi * 8 / 3), 1, 0.02);
    }
}

TEST(MeshShapesTest, AnUndividedSphereIsAnIcosahedron)
{
    const Mesh mesh = meshOfSphere(0, 1);
    EXPECT_EQ(mesh.triangles.size(), 60u);
    EXPECT_TRUE(isWatertight(mesh));
    // Of an icosahedron with the circumscribed radius 1, by its edge.
    const double edge = 1 / std::sin(2 * pi / 5);
    EXPECT_NEAR(measure(mesh).area, 5 * std::sqrt(3.0) * edge * edge, 1e-5);
    EXPECT_NEAR(measure(mesh).volume, 5.0 / 12 * (3 + std::sqrt(5.0)) * edge * edge * edge, 1e-5);
}

TEST(MeshShapesTest, EachDivisionMakesFourTrianglesOfOneAndNoneRunsBackAcrossTheTexture)
{
    std::size_t triangles = 20;
    for(UInt32 depth = 0; depth < 5; ++depth, triangles *= 4)
    {
        const Mesh mesh = meshOfSphere(depth, 1);
        EXPECT_EQ(mesh.triangles.size(), 3 * triangles);
        for(std::size_t i = 0; i < mesh.triangles.size(); i += 3)
            for(std::size_t k = 0; k < 3; ++k)
                EXPECT_LE(std::abs(mesh.texCoords[mesh.triangles[i + k]][0] -
                                   mesh.texCoords[mesh.triangles[i + (k + 1) % 3]][0]),
                          0.5f);
    }
}

class SimpleGeometryTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

TEST_F(SimpleGeometryTest, TheMakersGiveAnIndexedGeometryWithTheDefaultMaterial)
{
    HeldGeometry plane(makePlaneGeo(1, 1, 1, 1));
    EXPECT_EQ(plane->getPositions()->getSize(), 4u);
    EXPECT_EQ(plane->getNormals()->getSize(), 4u);
    EXPECT_EQ(plane->getTexCoords()->getSize(), 4u);
    EXPECT_EQ(plane->getIndices()->getSize(), 6u);
    EXPECT_EQ(plane->getTypes()->getValue(0), UInt32(GL_TRIANGLES));
    EXPECT_EQ(plane->getLengths()->getValue(0), 6u);
    EXPECT_TRUE(plane->isSingleIndex());
    EXPECT_TRUE(plane->getMaterial() == getDefaultMaterial());
    EXPECT_EQ(plane->calcMappingIndex(Geometry::MapColor), 0) << "colours may be added";
    EXPECT_EQ(plane.ptr.getRefCount(), 1) << "the makers keep no reference";
}

TEST_F(SimpleGeometryTest, TheNodeOfABoxHasTheBoxAsItsVolume)
{
    HeldNode node(makeBox(400, 24, 24, 1, 1, 1));
    Pnt3f low, high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-200, -12, -12));
    EXPECT_EQ(high, Pnt3f(200, 12, 12));
    EXPECT_EQ(node.ptr.getRefCount(), 1);
    EXPECT_EQ(node->getCore().getRefCount(), 1);
}

TEST_F(SimpleGeometryTest, EveryMakerGivesANode)
{
    for(const NodePtr &made : {makePlane(1, 1, 1, 1), makeBox(1, 1, 1, 1, 1, 1), makeCone(1, 1, 8),
                               makeCylinder(1, 1, 8), makeConicalFrustum(1, 1, 2, 8), makeTorus(1, 2, 8, 8),
                               makeSphere(1, 1), makeLatLongSphere(8, 8, 1)})
    {
        ASSERT_TRUE(made != NullFC);
        HeldNode node(made);
        EXPECT_TRUE(GeometryPtr::dcast(node->getCore()) != NullFC);
        EXPECT_FALSE(node->getVolume(true).isEmpty());
    }
}

TEST_F(SimpleGeometryTest, ShapesWithoutStepsAreRefusedWithAWarning)
{
    LogCapture log;
    EXPECT_TRUE(makePlane(1, 1, 0, 1) == NullFC);
    EXPECT_TRUE(makeBox(1, 1, 1, 1, 0, 1) == NullFC);
    EXPECT_TRUE(makeCone(1, 1, 2) == NullFC);
    EXPECT_TRUE(makeCylinder(0, 1, 8) == NullFC);
    EXPECT_TRUE(makeTorus(1, 2, 2, 8) == NullFC);
    EXPECT_TRUE(makeSphere(11, 1) == NullFC);
    EXPECT_TRUE(makeLatLongSphere(1, 8, 1) == NullFC);
    EXPECT_EQ(log.count(LOG_WARNING), 7u);
    EXPECT_TRUE(log.contains(LOG_WARNING, "makePlane: hor and vert must be 1 or more"));
}

} // namespace
