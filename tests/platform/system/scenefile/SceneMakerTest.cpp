#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGName.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneMaker.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTransform.h>

#include "../geometry/GeometryFixture.h"
#include "../geometry/SceneView.h"
#include "SceneShapes.h"

using namespace osg;
using namespace scenefile_test;
using geometry_test::HeldNode;
using geometry_test::SceneView;

namespace
{

class SceneMakerTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }

    static GeometryPtr geometryOf(const NodePtr &node) { return GeometryPtr::dcast(node->getCore()); }
    static SimpleMaterialPtr materialOf(const NodePtr &node)
    {
        return SimpleMaterialPtr::dcast(geometryOf(node)->getMaterial());
    }

    /// Two squares of two materials, placed by nested nodes; the second square stands twice.
    static SceneData twoSquares()
    {
        SceneData scene = sceneOf(makeSquare());
        scene.materials.resize(2);
        scene.materials[0].name = "red";
        scene.materials[0].diffuse = Color3f(1, 0, 0);
        scene.materials[1].name = "glass";
        scene.materials[1].diffuse = Color3f(0, 0, 1);
        scene.materials[1].opacity = 0.25f;
        scene.materials[1].shininess = 1000;
        scene.meshes[0].name = "wall";
        scene.meshes[0].material = 0;
        scene.meshes.push_back(makeSquare());
        scene.meshes[1].material = 1;
        scene.meshes.emplace_back();
        scene.nodes.resize(3);
        scene.nodes[0].name = "root";
        scene.nodes[0].children = {1, 2};
        scene.nodes[0].matrix.setTranslate(10, 0, 0);
        scene.nodes[1].meshes = {1, 2};
        scene.nodes[1].matrix.setTranslate(0, 20, 0);
        scene.nodes[2].meshes = {1};
        scene.nodes[2].matrix.setScale(2);
        return scene;
    }
};

TEST_F(SceneMakerTest, NodesBecomeTransformsAndMeshesGeometriesBelowThem)
{
    const HeldNode root(makeScene(twoSquares()));
    ASSERT_TRUE(root.ptr != NullFC);
    EXPECT_STREQ(getName(root.ptr), "root");
    EXPECT_TRUE(TransformPtr::dcast(root->getCore()) != NullFC);
    ASSERT_EQ(root->getNChildren(), 3u);
    EXPECT_STREQ(getName(root->getChild(0)), "wall");
    ASSERT_EQ(root->getChild(1)->getNChildren(), 1u) << "the empty mesh is left out";
    EXPECT_EQ(getName(root->getChild(1)), nullptr);

    const GeometryPtr wall = geometryOf(root->getChild(0));
    ASSERT_TRUE(wall != NullFC);
    ASSERT_EQ(wall->getTypes()->getSize(), 1u);
    EXPECT_EQ(wall->getTypes()->getValue(0), GL_TRIANGLES);
    EXPECT_EQ(wall->getLengths()->getValue(0), 6u);
    EXPECT_EQ(wall->getPositions()->getSize(), 4u);
    EXPECT_EQ(wall->getIndices()->getSize(), 6u);
    EXPECT_TRUE(wall->getNormals() == NullFC);
    EXPECT_TRUE(wall->getColors() == NullFC);
    EXPECT_TRUE(wall->getTexCoords() == NullFC);
}

TEST_F(SceneMakerTest, BoxesFollowTheTransformations)
{
    const HeldNode root(makeScene(twoSquares()));
    DynamicVolume box;
    root->getChild(1)->getWorldVolume(box);
    Pnt3f low, high;
    box.getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(10, 20, 0));
    EXPECT_EQ(high, Pnt3f(11, 21, 0));
    root->getWorldVolume(box);
    box.getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(10, 0, 0));
    EXPECT_EQ(high, Pnt3f(12, 21, 0));
}

TEST_F(SceneMakerTest, CoresAndMaterialsAreShared)
{
    const HeldNode root(makeScene(twoSquares()));
    const NodePtr first = root->getChild(1)->getChild(0), second = root->getChild(2)->getChild(0);
    EXPECT_TRUE(first->getCore() == second->getCore());
    const SimpleMaterialPtr glass = materialOf(first), red = materialOf(root->getChild(0));
    ASSERT_TRUE(glass != NullFC && red != NullFC);
    EXPECT_STREQ(getName(glass), "glass");
    EXPECT_FLOAT_EQ(glass->getTransparency(), 0.75f);
    EXPECT_FLOAT_EQ(glass->getShininess(), 128.f);
    EXPECT_TRUE(glass->isTransparent());
    EXPECT_FALSE(red->isTransparent());
    EXPECT_EQ(red->getDiffuse(), Color3f(1, 0, 0));
    EXPECT_EQ(red->getColorMaterial(), GLenum(GL_NONE));
}

TEST_F(SceneMakerTest, VertexColoursMakeAMaterialOfTheirOwn)
{
    SceneData scene = sceneOf(makeSquare());
    scene.materials.resize(1);
    scene.materials[0].opacity = 0.5f;
    scene.meshes.assign(3, makeSquare());
    for(SceneMesh &mesh : scene.meshes)
        mesh.material = 0;
    scene.meshes[1].colors.assign(4, Color4f(0, 1, 0, 1));
    scene.meshes[2].colors.assign(4, Color4f(0, 1, 0, 0.5f));
    scene.nodes[0].meshes = {0, 1, 2};
    const HeldNode root(makeScene(scene));
    EXPECT_EQ(materialOf(root->getChild(0))->getColorMaterial(), GLenum(GL_NONE));
    EXPECT_EQ(materialOf(root->getChild(1))->getColorMaterial(), GLenum(GL_AMBIENT_AND_DIFFUSE));
    EXPECT_TRUE(materialOf(root->getChild(2))->isTransparent());
    const auto alphaOf = [&](UInt32 child, UInt32 vertex) {
        return GeoColors4fPtr::dcast(geometryOf(root->getChild(child))->getColors())
            ->getField()[vertex]
            .alpha();
    };
    EXPECT_FLOAT_EQ(alphaOf(1, 0), 0.5f);
    EXPECT_FLOAT_EQ(alphaOf(2, 3), 0.25f);
}

TEST_F(SceneMakerTest, AMeshWithoutAMaterialHasTheDefaultOne)
{
    const HeldNode root(makeScene(sceneOf(makeSquare())));
    EXPECT_TRUE(geometryOf(root->getChild(0))->getMaterial() == getDefaultMaterial());
}

TEST_F(SceneMakerTest, AFaultIsOneWarningAndNoScene)
{
    SceneData scene = sceneOf(makeSquare());
    scene.meshes[0].triangles[0] = 77;
    LogCapture log;
    EXPECT_TRUE(makeScene(scene) == NullFC);
    EXPECT_EQ(log.text(LOG_WARNING), "makeScene: mesh 0: a triangle uses position 77 of 4\n");
    EXPECT_EQ(log.count(), 1u);
    log.clear();
    EXPECT_TRUE(makeScene(scene, "a.obj") == NullFC);
    EXPECT_EQ(log.text(LOG_WARNING), "a.obj: mesh 0: a triangle uses position 77 of 4\n");
}

TEST_F(SceneMakerTest, ScenesArePickedWhereTheyStand)
{
    const HeldNode root(makeScene(twoSquares()));
    IntersectAction action(Line(Pnt3f(10.75f, 20.25f, 5), Vec3f(0, 0, -1)));
    action.apply(root.ptr);
    ASSERT_TRUE(action.didHit());
    EXPECT_NEAR(action.getHitT(), 5, 1e-5);
    EXPECT_TRUE(action.getHitObject() == root->getChild(1)->getChild(0));
    EXPECT_EQ(action.getHitTriangle(), 0);
}

TEST_F(SceneMakerTest, AScenesPixelsAreItsColours)
{
    // Emission alone, as there is no light: a left half in red, behind a right half in green by half.
    SceneData scene = sceneOf(makeSquare());
    scene.materials.resize(2);
    scene.materials[0].ambient = scene.materials[0].diffuse = Color3f(0, 0, 0);
    scene.materials[1] = scene.materials[0];
    scene.materials[0].emission = Color3f(1, 0, 0);
    scene.materials[1].emission = Color3f(0, 1, 0);
    scene.materials[1].opacity = 0.5f;
    scene.meshes[0].material = 0;
    addSmoothNormals(scene.meshes[0], 1);
    scene.meshes.push_back(scene.meshes[0]);
    scene.meshes[1].material = 1;
    scene.nodes.resize(3);
    scene.nodes[0].meshes.clear();
    scene.nodes[0].children = {1, 2};
    scene.nodes[1].meshes = {0};
    scene.nodes[1].matrix = Matrix(1, 0, 0, -1, 0, 2, 0, -1, 0, 0, 1, 0, 0, 0, 0, 1);
    scene.nodes[2].meshes = {1};
    scene.nodes[2].matrix = Matrix(1, 0, 0, -0.5f, 0, 1, 0, -0.5f, 0, 0, 1, 1, 0, 0, 0, 1);
    const HeldNode root(makeScene(scene));
    SceneView view(root.ptr);
    const test::RgbaImage picture = view.render();
    const auto near = [](const test::RgbaImage::Pixel &a, int r, int g, int b)
    { return std::abs(a[0] - r) <= 1 && std::abs(a[1] - g) <= 1 && std::abs(a[2] - b) <= 1; };
    EXPECT_TRUE(near(view.at(picture, -0.75, 0), 255, 0, 0));
    EXPECT_TRUE(near(view.at(picture, -0.25, 0), 128, 128, 0));
    EXPECT_TRUE(near(view.at(picture, 0.25, 0), 0, 128, 0));
    EXPECT_TRUE(near(view.at(picture, 0.75, 0), 0, 0, 0));
    EXPECT_TRUE(near(view.at(picture, 0.25, 0.75), 0, 0, 0));
}

} // namespace
