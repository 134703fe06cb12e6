#include <gtest/gtest.h>

#include <memory>

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGName.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGTransform.h>

#include "SceneFiles.h"
#include "platform/system/geometry/GeometryFixture.h"
#include "platform/system/geometry/SceneView.h"

using namespace osg;
using namespace assimp_test;
using geometry_test::HeldNode;
using geometry_test::SceneView;

namespace
{

/// Files on their whole way: the handler, the module, the scene graph.
class LoadedSceneTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }

    Folder folder;
};

TEST_F(LoadedSceneTest, EachFormatIsReadThroughItsModule)
{
    folder.write("cube.mtl", cubeMtl());
    for(const std::string &path : {folder.write("a.stl", binaryStl()), folder.write("a.ply", asciiPly()),
                                   folder.write("a.obj", cubeObj("cube.mtl"))})
    {
        LogCapture log;
        const HeldNode root(SceneFileHandler::the().read(path.c_str()));
        ASSERT_TRUE(root.ptr != NullFC) << log.text();
        EXPECT_EQ(log.count(LOG_WARNING), 0u);
        DynamicVolume box;
        root->getWorldVolume(box);
        Pnt3f low, high;
        box.getBounds(low, high);
        EXPECT_EQ(low, Pnt3f(0, 0, 0)) << path;
        EXPECT_EQ(high, Pnt3f(1, 1, 1)) << path;
    }
}

TEST_F(LoadedSceneTest, AGltfSceneStandsWhereItsMatricesPutIt)
{
    const std::string path = folder.write("a.glb", cubeGlb());
    LogCapture log;
    const HeldNode root(SceneFileHandler::the().read(path.c_str()));
    ASSERT_TRUE(root.ptr != NullFC) << log.text();
    EXPECT_EQ(log.text(), path + ": textures are not read: rust.png\n");
    // The cube at (1, 2, 3), and the one of twice its size there, turned: x is 10 - y, y is x.
    DynamicVolume box;
    root->getWorldVolume(box);
    Pnt3f low, high;
    box.getBounds(low, high);
    EXPECT_TRUE(low.equals(Pnt3f(6, 1, 3), 1e-5f)) << low;
    EXPECT_TRUE(high.equals(Pnt3f(8, 3, 5), 1e-5f)) << high;

    IntersectAction action(Line(Pnt3f(6.5f, 2.5f, 20), Vec3f(0, 0, -1)));
    action.apply(root.ptr);
    ASSERT_TRUE(action.didHit());
    EXPECT_NEAR(action.getHitT(), 15, 1e-4);
    EXPECT_TRUE(action.getHitNormal().equals(Vec3f(0, 0, 1), 1e-4f));
    EXPECT_STREQ(getName(action.getHitObject()->getParent()), "scaled");
    EXPECT_GE(action.getHitTriangle(), 0);
}

TEST_F(LoadedSceneTest, ADamagedFileIsOneWarningAndNoScene)
{
    const std::string path = folder.write("a.stl", binaryStl().substr(0, 134));
    LogCapture log;
    EXPECT_TRUE(SceneFileHandler::the().read(path.c_str()) == NullFC);
    EXPECT_EQ(log.text(), path + ": the STL header promises 12 triangles, the file holds 1\n");
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
}

TEST_F(LoadedSceneTest, ALoadedCubesSidesHaveTheirColours)
{
    // Emission as there is no light: the covers in red, the sides in green. Seen from ahead, half a side to
    // the right of the middle: a red square from 0 to 0.5, and the dark all around.
    folder.write("two.mtl",
                 "newmtl cover\nKa 0 0 0\nKd 0 0 0\nKe 1 0 0\nnewmtl side\nKa 0 0 0\nKd 0 0 0\nKe 0 1 0\n");
    const std::string path = folder.write("a.obj", cubeObj("two.mtl"));
    const NodePtr root = SceneFileHandler::the().read(path.c_str());
    ASSERT_TRUE(root != NullFC);
    TransformPtr place;
    const HeldNode scene(makeCoredNode<Transform>(&place));
    // Turned about y by 30 degrees: the front has the width cos 30, the side beyond it that of sin 30; both
    // halved.
    const float c = 0.8660254f, s = 0.5f;
    place->setMatrix(Matrix(c / 2, 0, -s / 2, 0, 0, 0.5f, 0, 0, s / 2, 0, c / 2, 0, 0, 0, 0, 1));
    endEditCP(place);
    scene->addChild(root);
    SceneView view(scene.ptr, 128);
    const test::RgbaImage picture = view.render();
    // x of the corners: (0, z = 1) at -0.25, (1, 1) at 0.183, (1, 0) at 0.433.
    const test::RgbaImage::Pixel red = {255, 0, 0, 255}, green = {0, 255, 0, 255};
    const auto rgb = [](const test::RgbaImage::Pixel &p) { return std::array<int, 3>{p[0], p[1], p[2]}; };
    EXPECT_EQ(rgb(view.at(picture, -0.2, 0.25)), rgb(red));
    EXPECT_EQ(rgb(view.at(picture, 0.15, 0.05)), rgb(red));
    EXPECT_EQ(rgb(view.at(picture, 0.22, 0.45)), rgb(green));
    EXPECT_EQ(rgb(view.at(picture, 0.4, 0.05)), rgb(green));
    for(const auto &outside : {std::pair<double, double>{-0.3, 0.25}, {0.5, 0.25}, {0.1, -0.05}, {0.1, 0.55}})
        EXPECT_EQ(rgb(view.at(picture, outside.first, outside.second)), (std::array<int, 3>{0, 0, 0}));
}

} // namespace
