#include <gtest/gtest.h>

#include <random>

#include "OSGAssimpReader.h"
#include "SceneFiles.h"

using namespace osg;
using namespace assimp_test;

/// What assimp loses when it throws out of a damaged file is not to be found here.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libassimp.so\n";
}

namespace
{

struct Sample
{
    const char *name, *format, *file;
    std::string bytes;
};

std::vector<Sample> samples()
{
    return {{"StlText", "STL", "a.stl", asciiStl()},     {"StlBinary", "STL", "a.stl", binaryStl()},
            {"PlyText", "PLY", "a.ply", asciiPly()},     {"PlyLittle", "PLY", "a.ply", binaryPly(false)},
            {"PlyBig", "PLY", "a.ply", binaryPly(true)}, {"Obj", "OBJ", "a.obj", cubeObj("cube.mtl")},
            {"Gltf", "glTF", "a.gltf", embeddedGltf()},  {"Glb", "glTF", "a.glb", cubeGlb()},
            {"Mtl", "OBJ", "cube.mtl", cubeMtl()}};
}

class DamageTest : public ::testing::TestWithParam<Sample>
{
  protected:
    /// Whatever the bytes are: either a proper scene or one line that names the file.
    void expectSaneEnd(const std::string &bytes)
    {
        const Sample &sample = GetParam();
        if(std::string(sample.name) == "Obj")
            folder.write("cube.mtl", cubeMtl());
        const std::string written = folder.write(sample.file, bytes);
        const std::string path =
            std::string(sample.name) == "Mtl" ? folder.write("a.obj", cubeObj("cube.mtl")) : written;
        SceneData scene;
        std::string error;
        if(readAssimpScene(sample.format, path, scene, error))
        {
            ++good;
            EXPECT_EQ(findSceneFault(scene), "");
            std::size_t corners = 0;
            for(const SceneMesh &mesh : scene.meshes)
                corners += mesh.triangles.size();
            EXPECT_LE(corners, 10000u);
            return;
        }
        ++refused;
        EXPECT_EQ(error.compare(0, path.size() + 2, path + ": "), 0) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_GT(error.size(), path.size() + 2);
    }

    Folder folder;
    int good = 0, refused = 0;
};

TEST_P(DamageTest, EachTruncationEndsInASceneOrOneLine)
{
    const std::string whole = GetParam().bytes;
    for(std::size_t size = 0; size < whole.size(); ++size)
        expectSaneEnd(whole.substr(0, size));
    RecordProperty("read", good);
    RecordProperty("refused", refused);
}

TEST_P(DamageTest, FlippedBytesEndInASceneOrOneLine)
{
    const unsigned seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for(int round = 0; round < 600; ++round)
    {
        std::string bytes = GetParam().bytes;
        for(unsigned flips = 1 + random() % 4; flips > 0; --flips)
            bytes[random() % bytes.size()] = char(random());
        expectSaneEnd(bytes);
    }
    RecordProperty("read", good);
    RecordProperty("refused", refused);
}

TEST_P(DamageTest, DigitsThatBecomeOthersEndInASceneOrOneLine)
{
    const unsigned seed = 20261122;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::size_t> places;
    for(std::size_t i = 0; i < GetParam().bytes.size(); ++i)
        if(GetParam().bytes[i] >= '0' && GetParam().bytes[i] <= '9')
            places.push_back(i);
    for(int round = 0; round < 250 && !places.empty(); ++round)
    {
        std::string bytes = GetParam().bytes;
        const std::size_t at = places[random() % places.size()];
        const std::string instead[] = {"9", "-1", "99999999", "4294967295", "1e38", "nan", ""};
        bytes.replace(at, 1, instead[random() % 7]);
        expectSaneEnd(bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, DamageTest, ::testing::ValuesIn(samples()),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace
