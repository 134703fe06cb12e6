#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "SceneShapes.h"

using namespace osg;
using namespace scenefile_test;

namespace
{

const Real32 NaN = std::numeric_limits<Real32>::quiet_NaN();
const Real32 Sixty = 1.0471976f;

TEST(SceneDataTest, AProperSceneHasNoFault)
{
    EXPECT_EQ(findSceneFault(sceneOf(makeCube())), "");
    SceneData empty;
    empty.nodes.emplace_back();
    EXPECT_EQ(findSceneFault(empty), "");
}

TEST(SceneDataTest, EachFaultIsToldWithItsPlace)
{
    EXPECT_EQ(findSceneFault(SceneData()), "there are no nodes");
    SceneData scene = sceneOf(makeSquare());
    scene.meshes[0].name = "wall";
    scene.meshes[0].triangles[4] = 4;
    EXPECT_EQ(findSceneFault(scene), "mesh 0 (\"wall\"): a triangle uses position 4 of 4");
    scene = sceneOf(makeSquare());
    scene.meshes[0].triangles.pop_back();
    EXPECT_EQ(findSceneFault(scene), "mesh 0: 5 indices make no triangles");
    scene = sceneOf(makeSquare());
    scene.meshes[0].positions[2] = Pnt3f(0, NaN, 0);
    EXPECT_EQ(findSceneFault(scene), "mesh 0: position 2 is not finite");
    scene = sceneOf(makeSquare());
    scene.meshes[0].normals.assign(3, Vec3f(0, 0, 1));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: 4 positions, but 3 normals");
    scene.meshes[0].normals.assign(4, Vec3f(0, 0, NaN));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: normal 0 is not finite");
    scene = sceneOf(makeSquare());
    scene.meshes[0].colors.assign(5, Color4f(1, 1, 1, 1));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: 4 positions, but 5 colours");
    scene.meshes[0].colors.assign(4, Color4f(1, 1, 1, NaN));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: colour 0 is not finite");
    scene = sceneOf(makeSquare());
    scene.meshes[0].texCoords.assign(1, Vec2f(0, 0));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: 4 positions, but 1 texture coordinates");
    scene.meshes[0].texCoords.assign(4, Vec2f(NaN, 0));
    EXPECT_EQ(findSceneFault(scene), "mesh 0: texture coordinate 0 is not finite");
    scene = sceneOf(makeSquare());
    scene.meshes[0].material = 0;
    EXPECT_EQ(findSceneFault(scene), "mesh 0: it uses material 0 of 0");
    scene.meshes[0].material = -2;
    EXPECT_EQ(findSceneFault(scene), "mesh 0: it uses material -2 of 0");
    scene = sceneOf(makeSquare());
    scene.nodes[0].meshes.push_back(1);
    EXPECT_EQ(findSceneFault(scene), "node 0: it shows mesh 1 of 1");
    scene = sceneOf(makeSquare());
    scene.nodes[0].children.push_back(1);
    EXPECT_EQ(findSceneFault(scene), "node 0: its child is node 1 of 1");
    scene = sceneOf(makeSquare());
    scene.nodes[0].matrix[3][1] = std::numeric_limits<Real32>::infinity();
    EXPECT_EQ(findSceneFault(scene), "node 0: its matrix is not finite");
}

TEST(SceneDataTest, RingsAndSharedNodesAreFaults)
{
    SceneData scene;
    scene.nodes.resize(3);
    scene.nodes[0].children = {1};
    scene.nodes[1].children = {2};
    scene.nodes[2].children = {1};
    scene.nodes[1].name = "ring";
    EXPECT_EQ(findSceneFault(scene), "node 1 (\"ring\") is below two nodes or below itself");
    scene.nodes[2].children = {0};
    EXPECT_EQ(findSceneFault(scene), "node 0 is below two nodes or below itself");
    scene.nodes[2].children = {2};
    EXPECT_EQ(findSceneFault(scene), "node 2 is below two nodes or below itself");
    scene.nodes[0].children = {1, 2};
    scene.nodes[2].children.clear();
    EXPECT_EQ(findSceneFault(scene), "node 2 is below two nodes or below itself");
}

TEST(SceneDataTest, NodesMayBeNestedAsDeepAsTheLimitAndNoDeeper)
{
    SceneData scene;
    scene.nodes.resize(MaxSceneDepth + 1);
    for(UInt32 i = 0; i < MaxSceneDepth; ++i)
        scene.nodes[i].children = {i + 1};
    EXPECT_EQ(findSceneFault(scene), "");
    scene.nodes.emplace_back();
    scene.nodes[MaxSceneDepth].children = {MaxSceneDepth + 1};
    EXPECT_EQ(findSceneFault(scene), "nodes are nested deeper than 500");
}

TEST(SceneNormalsTest, ACubeKeepsItsEdges)
{
    SceneMesh cube = makeCube();
    addSmoothNormals(cube, Sixty);
    ASSERT_EQ(cube.normals.size(), 36u);
    for(std::size_t t = 0; t < 36; t += 3)
    {
        const Vec3f across =
            (cornerOf(cube, t + 1) - cornerOf(cube, t)).cross(cornerOf(cube, t + 2) - cornerOf(cube, t));
        for(std::size_t i = t; i < t + 3; ++i)
            EXPECT_LT((cube.normals[cube.triangles[i]] - across).length(), 1e-6f) << "corner " << i;
    }
    joinSceneVertices(cube);
    EXPECT_EQ(cube.positions.size(), 24u);
    EXPECT_EQ(cube.normals.size(), 24u);
    EXPECT_NEAR(areaOf(cube), 6, 1e-6);
    EXPECT_NEAR(volumeOf(cube), 1, 1e-6);
}

TEST(SceneNormalsTest, ACreaseAngleBeyondTheEdgesRoundsTheCubesCorners)
{
    SceneMesh cube = makeCube();
    addSmoothNormals(cube, 1.6f);
    joinSceneVertices(cube);
    // Weighted by the angles each side counts once, however its square is cut.
    ASSERT_EQ(cube.positions.size(), 8u);
    for(std::size_t i = 0; i < 8; ++i)
    {
        const Pnt3f &p = cube.positions[i];
        const Vec3f diagonal = Vec3f(p.x() - 0.5f, p.y() - 0.5f, p.z() - 0.5f) * (2 / std::sqrt(3.f));
        EXPECT_LT((cube.normals[i] - diagonal).length(), 1e-5f);
    }
}

TEST(SceneNormalsTest, ACylindersSideIsSmoothAndItsRimIsNot)
{
    const int sides = 24;
    SceneMesh mesh;
    mesh.positions.push_back(Pnt3f(0, 0, 1));
    for(int i = 0; i < sides; ++i)
        for(int end = 0; end < 2; ++end)
            mesh.positions.push_back(Pnt3f(float(std::cos(2 * M_PI * i / sides)),
                                           float(std::sin(2 * M_PI * i / sides)), float(end)));
    for(int i = 0; i < sides; ++i)
    {
        const UInt32 a = UInt32(1 + 2 * i), b = UInt32(1 + 2 * ((i + 1) % sides));
        mesh.triangles.insert(mesh.triangles.end(), {a, b, b + 1, a, b + 1, a + 1, 0, a + 1, b + 1});
    }
    addSmoothNormals(mesh, Sixty);
    for(std::size_t corner = 0; corner < mesh.triangles.size(); ++corner)
    {
        const Pnt3f &p = mesh.positions[corner];
        const bool cover = corner % 9 >= 6;
        const Vec3f expected = cover ? Vec3f(0, 0, 1) : Vec3f(p.x(), p.y(), 0);
        EXPECT_LT((mesh.normals[corner] - expected).length(), 2e-3f) << "corner " << corner;
    }
}

TEST(SceneNormalsTest, TrianglesWithoutAreaHaveNormalsOfLengthOne)
{
    SceneMesh mesh;
    mesh.positions = {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {2, 1, 1}};
    mesh.triangles = {0, 1, 2, 0, 3, 0};
    addSmoothNormals(mesh, Sixty);
    ASSERT_EQ(mesh.normals.size(), 6u);
    for(const Vec3f &normal : mesh.normals)
        EXPECT_FLOAT_EQ(normal.length(), 1.f);
}

TEST(SceneNormalsTest, ManyTrianglesAtOnePlaceTakeNoLongTime)
{
    SceneMesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    for(int i = 0; i < 200000; ++i)
        mesh.triangles.insert(mesh.triangles.end(), {0, 1, 2});
    const auto start = std::chrono::steady_clock::now();
    addSmoothNormals(mesh, Sixty);
    joinSceneVertices(mesh);
    // Comparing each with each would be 10^11 steps.
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 20.0);
    EXPECT_EQ(mesh.positions.size(), 3u);
}

TEST(SceneJoinTest, OnlyVerticesThatAreAlikeInEverythingAreJoined)
{
    SceneMesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}, {1, 1, 0}, {0, 1, 0}, {9, 9, 9}};
    mesh.triangles = {0, 1, 2, 3, 4, 5};
    SceneMesh colored = mesh;
    joinSceneVertices(mesh);
    EXPECT_EQ(mesh.positions.size(), 4u); // the unused one is gone too
    EXPECT_EQ(mesh.triangles, (std::vector<UInt32>{0, 1, 2, 0, 2, 3}));
    EXPECT_NEAR(areaOf(mesh), 1, 1e-6);

    colored.colors.assign(7, Color4f(1, 0, 0, 1));
    colored.colors[4] = Color4f(1, 0, 0, 0.5f);
    colored.texCoords.assign(7, Vec2f(0, 0));
    colored.texCoords[3] = Vec2f(0, 1);
    joinSceneVertices(colored);
    EXPECT_EQ(colored.triangles, (std::vector<UInt32>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(colored.colors[4], Color4f(1, 0, 0, 0.5f));
    EXPECT_EQ(colored.texCoords[3], Vec2f(0, 1));
    EXPECT_TRUE(colored.normals.empty());
}

} // namespace
