#include <gtest/gtest.h>

#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>

#include "../geometry/GeometryFixture.h"
#include "SceneShapes.h"

using namespace osg;
using namespace scenefile_test;

namespace
{

/// A format without files: its scene is a square, and what it says is chosen by the file's name.
class SquareFileType : public SceneFileType
{
  public:
    SquareFileType() : SceneFileType("Square", {"square", "tiny.square"}) {}

    bool readFile(const std::string &fileName, SceneData &scene, std::string &error) const override
    {
        scene = sceneOf(makeSquare());
        scene.notices = {fileName + ": first", fileName + ": second"};
        if(fileName == "bad.square")
            scene.meshes[0].triangles[0] = 4;
        error = fileName + ": refused";
        return fileName != "no.square";
    }
};

SquareFileType &squares()
{
    static SquareFileType type;
    return type;
}

class SceneFileHandlerTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        osgInit(0, nullptr);
        SceneFileHandler::the().addSceneFileType(squares());
    }
};

TEST_F(SceneFileHandlerTest, FormatsAreFoundBySuffixInLettersOfEitherCase)
{
    SceneFileHandler &handler = SceneFileHandler::the();
    const auto nameOf = [&](const Char8 *name)
    {
        const SceneFileType *type = handler.getFileType(name);
        return type ? type->getName() : "none";
    };
    EXPECT_EQ(nameOf("/some/where/a.gltf"), "glTF");
    EXPECT_EQ(nameOf("a.GLB"), "glTF");
    EXPECT_EQ(nameOf("a.b.Obj"), "OBJ");
    EXPECT_EQ(nameOf("ply"), "PLY");
    EXPECT_EQ(nameOf("a.stl"), "STL");
    EXPECT_EQ(nameOf("a.stl.gz"), "none");
    EXPECT_EQ(nameOf("astl"), "none");
    EXPECT_EQ(nameOf(""), "none");
    EXPECT_EQ(nameOf(nullptr), "none");
}

TEST_F(SceneFileHandlerTest, AFormatIsAddedOnceByName)
{
    EXPECT_FALSE(SceneFileHandler::the().addSceneFileType(squares()));
    EXPECT_EQ(SceneFileHandler::the().getFileType("a.tiny.square"), &squares());
    const std::list<std::string> suffixes = SceneFileHandler::the().getSuffixList();
    EXPECT_EQ(suffixes,
              (std::list<std::string>{"gltf", "glb", "obj", "ply", "stl", "square", "tiny.square"}));
}

TEST_F(SceneFileHandlerTest, FormatsTellWhetherTheBuildHasThem)
{
    const bool built = findFormatModule("ASSIMP")->built;
    const std::list<SceneFileHandler::Format> formats = SceneFileHandler::the().getFormats();
    ASSERT_EQ(formats.size(), 5u);
    EXPECT_EQ(formats.front().name, "glTF");
    EXPECT_EQ(formats.front().suffixes, (std::list<std::string>{"gltf", "glb"}));
    EXPECT_EQ(formats.front().built, built);
    EXPECT_EQ(formats.front().library, "assimp");
    EXPECT_EQ(formats.back().name, "Square");
    EXPECT_TRUE(formats.back().built);
    EXPECT_EQ(formats.back().library, "");
}

TEST_F(SceneFileHandlerTest, AFilesSceneComesWithItsNotices)
{
    LogCapture log;
    const geometry_test::HeldNode root(SceneFileHandler::the().read("a.square"));
    ASSERT_TRUE(root.ptr != NullFC);
    EXPECT_EQ(root->getNChildren(), 1u);
    EXPECT_EQ(log.text(LOG_NOTICE), "a.square: first\na.square: second\n");
    EXPECT_EQ(log.count(), 2u);
}

TEST_F(SceneFileHandlerTest, EachFailureIsOneWarning)
{
    const auto warningOf = [](const Char8 *name)
    {
        LogCapture log;
        EXPECT_TRUE(SceneFileHandler::the().read(name) == NullFC);
        EXPECT_EQ(log.count(), 1u);
        return log.text(LOG_WARNING);
    };
    EXPECT_EQ(warningOf(nullptr), "no name of a scene file\n");
    EXPECT_EQ(warningOf("a.xyz"), "a.xyz: no scene format has this name\n");
    EXPECT_EQ(warningOf("no.square"), "no.square: refused\n");
    EXPECT_EQ(warningOf("bad.square"), "bad.square: mesh 0: a triangle uses position 4 of 4\n");
}

TEST_F(SceneFileHandlerTest, WhatABuildOrAnInstallationLacksIsNamed)
{
    const FormatModule notBuilt = {"ASSIMP", "meshes", "assimp", false};
    const FormatModule notInstalled = {"NOSUCHMODULE", "meshes", "assimp", true};
    const ModuleSceneFileType without("A", {"a"}, notBuilt), missing("B", {"b"}, notInstalled);
    SceneData scene;
    std::string error;
    EXPECT_FALSE(without.readFile("x.a", scene, error));
    EXPECT_EQ(error, "x.a: this build does not read meshes, it was configured without assimp");
    EXPECT_FALSE(missing.readFile("x.b", scene, error));
    EXPECT_EQ(error, "x.b: meshes need OSGFormats/OSGFormatNOSUCHMODULE.so, which is not installed");
}

} // namespace
