#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "OSGAssimpReader.h"
#include "SceneFiles.h"
#include "platform/system/scenefile/SceneShapes.h"

using namespace osg;
using namespace assimp_test;
using scenefile_test::areaOf;
using scenefile_test::volumeOf;

namespace
{

class AssimpReaderTest : public ::testing::Test
{
  protected:
    bool read(const std::string &format, const std::string &path)
    {
        scene = SceneData();
        error.clear();
        name = path;
        return readAssimpScene(format, path, scene, error);
    }
    /// The message behind the file's name.
    std::string fault() const
    {
        EXPECT_EQ(error.compare(0, name.size() + 2, name + ": "), 0) << error;
        return error.substr(std::min(error.size(), name.size() + 2));
    }
    /// The sum over all meshes.
    double area() const
    {
        double sum = 0;
        for(const SceneMesh &mesh : scene.meshes)
            sum += areaOf(mesh);
        return sum;
    }
    double volume() const
    {
        double sum = 0;
        for(const SceneMesh &mesh : scene.meshes)
            sum += volumeOf(mesh);
        return sum;
    }
    /// Each normal is one of the six axes' and points out of the unit cube.
    void expectFlatSides() const
    {
        for(const SceneMesh &mesh : scene.meshes)
        {
            ASSERT_EQ(mesh.normals.size(), mesh.positions.size());
            for(std::size_t i = 0; i < mesh.positions.size(); ++i)
            {
                const Vec3f &n = mesh.normals[i];
                const Pnt3f &p = mesh.positions[i];
                EXPECT_NEAR(std::max({std::abs(n.x()), std::abs(n.y()), std::abs(n.z())}), 1, 1e-6);
                EXPECT_NEAR(n.x() * (p.x() - 0.5f) + n.y() * (p.y() - 0.5f) + n.z() * (p.z() - 0.5f), 0.5,
                            1e-6);
            }
        }
    }
    void expectCube(std::size_t vertices)
    {
        ASSERT_EQ(scene.meshes.size(), 1u);
        EXPECT_EQ(scene.meshes[0].triangles.size(), 36u);
        EXPECT_EQ(scene.meshes[0].positions.size(), vertices);
        EXPECT_NEAR(area(), 6, 1e-5);
        EXPECT_NEAR(volume(), 1, 1e-5);
        expectFlatSides();
        EXPECT_TRUE(scene.notices.empty());
        EXPECT_EQ(findSceneFault(scene), "");
    }

    Folder folder;
    SceneData scene;
    std::string error, name;
};

TEST_F(AssimpReaderTest, StlOfTextIsRead)
{
    ASSERT_TRUE(read("STL", folder.write("a.stl", asciiStl()))) << error;
    expectCube(24);
}

TEST_F(AssimpReaderTest, BinaryStlIsRead)
{
    ASSERT_TRUE(read("STL", folder.write("a.STL", binaryStl()))) << error;
    expectCube(24);
}

TEST_F(AssimpReaderTest, PlyOfTextIsRead)
{
    ASSERT_TRUE(read("PLY", folder.write("a.ply", asciiPly()))) << error;
    expectCube(24);
}

TEST_F(AssimpReaderTest, BinaryPlyIsReadInBothByteOrdersWithItsColours)
{
    for(const bool bigEndian : {false, true})
    {
        ASSERT_TRUE(read("PLY", folder.write("a.ply", binaryPly(bigEndian)))) << error;
        expectCube(24);
        const SceneMesh &mesh = scene.meshes[0];
        ASSERT_EQ(mesh.colors.size(), mesh.positions.size());
        for(std::size_t i = 0; i < mesh.positions.size(); ++i)
        {
            const Pnt3f &p = mesh.positions[i];
            EXPECT_EQ(mesh.colors[i], Color4f(p.x(), p.y(), p.z(), 1));
        }
    }
}

TEST_F(AssimpReaderTest, AnObjOfTwoMaterialsIsTwoMeshes)
{
    folder.write("cube.mtl", cubeMtl());
    ASSERT_TRUE(read("OBJ", folder.write("a.obj", cubeObj("cube.mtl")))) << error;
    ASSERT_EQ(scene.meshes.size(), 2u);
    expectFlatSides();
    EXPECT_NEAR(volume(), 1, 1e-5);
    for(const SceneMesh &mesh : scene.meshes)
    {
        const SceneMaterial &material = scene.materials.at(std::size_t(mesh.material));
        if(material.name == "cover")
        {
            EXPECT_NEAR(areaOf(mesh), 2, 1e-6);
            EXPECT_EQ(material.ambient, Color3f(0.1f, 0.2f, 0.3f));
            EXPECT_EQ(material.diffuse, Color3f(1, 0.5f, 0));
            EXPECT_EQ(material.specular, Color3f(0.25f, 0.25f, 0.25f));
            EXPECT_FLOAT_EQ(material.shininess, 32);
            EXPECT_FLOAT_EQ(material.opacity, 0.5f);
        }
        else
        {
            EXPECT_EQ(material.name, "side");
            EXPECT_NEAR(areaOf(mesh), 4, 1e-6);
            EXPECT_EQ(material.diffuse, Color3f(0, 0, 1));
            EXPECT_EQ(material.emission, Color3f(0, 0.125f, 0));
            EXPECT_FLOAT_EQ(material.opacity, 1);
        }
    }
    EXPECT_EQ(scene.notices, std::vector<std::string>{name + ": textures are not read: bricks.png"});
}

TEST_F(AssimpReaderTest, AMissingMaterialFileIsNamed)
{
    ASSERT_TRUE(read("OBJ", folder.write("a.obj", cubeObj("gone.mtl")))) << error;
    ASSERT_EQ(scene.notices.size(), 1u);
    EXPECT_NE(scene.notices[0].find("gone.mtl, which can't be opened"), std::string::npos)
        << scene.notices[0];
    EXPECT_NEAR(area(), 6, 1e-5);
}

TEST_F(AssimpReaderTest, ObjNormalsAndTextureCoordinatesStay)
{
    ASSERT_TRUE(read("OBJ", folder.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0.25\nvt 1 0\nvt 0 1\n"
                                                  "vn 0 3 4\nf 1/1/1 2/2/1 3/3/1\n")))
        << error;
    ASSERT_EQ(scene.meshes.at(0).positions.size(), 3u);
    EXPECT_LT((scene.meshes[0].normals.at(0) - Vec3f(0, 0.6f, 0.8f)).length(), 1e-6f);
    EXPECT_EQ(scene.meshes[0].texCoords.at(0), Vec2f(0, 0.25f));
}

TEST_F(AssimpReaderTest, PointsAndLinesAreLeftOutAndCounted)
{
    ASSERT_TRUE(read("OBJ", folder.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nl 1 2\nl 2 3\np 1\n")))
        << error;
    EXPECT_NEAR(area(), 0.5, 1e-6);
    EXPECT_EQ(scene.notices, std::vector<std::string>{name + ": 1 point and 2 lines are left out"});
    EXPECT_FALSE(read("OBJ", folder.write("b.obj", "v 0 0 0\nv 1 0 0\nl 1 2\n")));
    EXPECT_EQ(fault(), "has points or lines, but no triangles");
}

TEST_F(AssimpReaderTest, GltfIsAHierarchyWhoseMatricesStay)
{
    folder.write("cube.bin", cubeBuffer());
    for(const std::string &path :
        {folder.write("a.gltf", embeddedGltf()), folder.write("b.gltf", cubeGltf("cube.bin")),
         folder.write("c.glb", cubeGlb())})
    {
        ASSERT_TRUE(read("glTF", path)) << error;
        EXPECT_EQ(findSceneFault(scene), "");
        ASSERT_EQ(scene.meshes.size(), 1u);
        EXPECT_NEAR(area(), 6, 1e-5);
        EXPECT_NEAR(volume(), 1, 1e-5);
        expectFlatSides();

        // A corner of the innermost cube, by hand: (1, 0, 0) * 2 + (1, 2, 3), then turned by 90 degrees about
        // z and moved by 10.
        UInt32 node = 0;
        Matrix toWorld = scene.nodes[0].matrix;
        while(scene.nodes[node].name != "scaled")
        {
            ASSERT_EQ(scene.nodes[node].children.size(), 1u);
            node = scene.nodes[node].children[0];
            toWorld.mult(scene.nodes[node].matrix);
        }
        Pnt3f corner(1, 0, 0);
        toWorld.mult(corner, corner);
        EXPECT_TRUE(corner.equals(Pnt3f(10 - 2, 3, 3), 1e-5f)) << corner;
        EXPECT_EQ(scene.nodes[node].meshes, std::vector<UInt32>{0});

        const SceneMaterial &steel = scene.materials.at(std::size_t(scene.meshes[0].material));
        EXPECT_EQ(steel.name, "steel");
        EXPECT_EQ(steel.diffuse, Color3f(0.25f, 0.5f, 0.75f));
        EXPECT_EQ(steel.ambient, steel.diffuse);
        EXPECT_EQ(steel.emission, Color3f(0, 0, 0.5f));
        EXPECT_FLOAT_EQ(steel.opacity, 0.5f);
        EXPECT_EQ(scene.notices, std::vector<std::string>{name + ": textures are not read: rust.png"});
    }
}

TEST_F(AssimpReaderTest, TheAlphaOfAnOpaqueGltfMaterialDoesNotCount)
{
    ASSERT_TRUE(read("glTF", folder.write("a.gltf", replaced(embeddedGltf(), "BLEND", "OPAQUE")))) << error;
    EXPECT_FLOAT_EQ(scene.materials.at(0).opacity, 1);
}

TEST_F(AssimpReaderTest, GltfVertexColoursAreFactorsOfTheBaseColour)
{
    std::string data = cubeBuffer();
    for(int i = 0; i < 8; ++i)
        for(const float v : {1.f, 0.5f, 0.f, 0.5f})
            append(data, v);
    std::string text = cubeGltf("data:application/octet-stream;base64," + base64(data));
    text = replaced(text, "\"POSITION\": 0", "\"POSITION\": 0, \"COLOR_0\": 2");
    text = replaced(text, "\"type\": \"SCALAR\"}",
                    "\"type\": \"SCALAR\"}, {\"bufferView\": 2, \"componentType\": 5126,"
                    " \"count\": 8, \"type\": \"VEC4\"}");
    text = replaced(text, "\"byteLength\": 72}",
                    "\"byteLength\": 72}, {\"buffer\": 0, \"byteOffset\": 168,"
                    " \"byteLength\": 128}");
    text = replaced(text, "\"byteLength\": 168", "\"byteLength\": 296");
    ASSERT_TRUE(read("glTF", folder.write("a.gltf", text))) << error;
    ASSERT_FALSE(scene.meshes.at(0).colors.empty());
    EXPECT_EQ(scene.meshes[0].colors[0], Color4f(0.25f, 0.25f, 0, 0.5f));
}

TEST_F(AssimpReaderTest, DamageIsToldInOneLineThatNamesTheFile)
{
    EXPECT_FALSE(read("STL", "/no/such/file.stl"));
    EXPECT_EQ(error, "/no/such/file.stl: can't be opened: No such file or directory");
    EXPECT_FALSE(read("STL", folder.write("a.stl", binaryStl().substr(0, 284))));
    EXPECT_EQ(fault(), "the STL header promises 12 triangles, the file holds 4");
    std::string nan = binaryStl();
    nan.replace(84 + 12, 4, std::string("\x00\x00\xc0\x7f", 4));
    EXPECT_FALSE(read("STL", folder.write("b.stl", nan)));
    EXPECT_EQ(fault(), "mesh 0: position 0 is not finite");
    EXPECT_FALSE(read("PLY", folder.write("a.ply", replaced(asciiPly(), "vertex 8", "vertex 99999999"))));
    EXPECT_EQ(fault(), "the PLY header promises 99999999 of \"vertex\", the file ends before");
    EXPECT_FALSE(read(
        "glTF", folder.write("a.gltf", replaced(embeddedGltf(), "\"children\": [2]", "\"children\": [1]"))));
    EXPECT_EQ(fault(), "node 1 is below two nodes");
    EXPECT_FALSE(read("OBJ", folder.write("a.obj", "v 0 0 0\n")));
    EXPECT_FALSE(fault().empty());
    EXPECT_FALSE(read("OBJ", folder.write("b.obj", "")));
    EXPECT_FALSE(fault().empty());
}

TEST_F(AssimpReaderTest, AFileOfMoreThanFourGibibytesIsRefusedUnread)
{
    const std::string path = folder.write("huge.stl", "");
    if(::truncate(path.c_str(), (off_t(4) << 30) + 1) != 0)
        FAIL() << "no file with a hole can be made";
    EXPECT_FALSE(read("STL", path));
    EXPECT_EQ(fault(), "4294967297 bytes are over the limit of 4294967296");
}

TEST_F(AssimpReaderTest, ABufferThatIsNoRegularFileIsNotOpened)
{
    EXPECT_FALSE(read("glTF", folder.write("a.gltf", cubeGltf("/dev/zero"))));
    EXPECT_FALSE(fault().empty());
}

} // namespace
