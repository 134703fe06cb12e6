/// \file
/// Pictures of what the cores of the scene do: transformations, switches, material groups, lights.

#include "platform/system/geometry/GeometryFixture.h"
#include "platform/system/geometry/SceneView.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

typedef test::RgbaImage::Pixel Pixel;

const Pixel black = {0, 0, 0, 0};
const Pixel red = {255, 0, 0, 255};
const Pixel green = {0, 255, 0, 255};

class CoresOnGl : public ::testing::Test
{
  protected:
    void SetUp() override { ASSERT_TRUE(osgInit(0, nullptr)); }
};

SimpleMaterialPtr unlit(const Color3f &color)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(color);
    material->setLit(false);
    endEditCP(material);
    return material;
}

/// Reflects what falls on it, evenly; without highlights.
SimpleMaterialPtr dull()
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(Color3f(1, 1, 1));
    endEditCP(material);
    return material;
}

NodePtr planeOf(const MaterialPtr &material, Real32 width, UInt16 steps = 1)
{
    const GeometryPtr geometry = makePlaneGeo(width, 2, steps, steps);
    geometry->setMaterial(material);
    endEditCP(geometry);
    return makeNodeFor(geometry);
}

NodePtr moved(const Vec3f &by, const NodePtr &child)
{
    TransformPtr transform;
    const NodePtr node = makeCoredNode<Transform>(&transform);
    Matrix matrix;
    matrix.setTranslate(by);
    transform->setMatrix(matrix);
    endEditCP(transform);
    node->addChild(child);
    endEditCP(node);
    return node;
}

/// The same picture from both actions.
test::RgbaImage renderAndDraw(SceneView &view)
{
    const test::RgbaImage rendered = view.render();
    EXPECT_EQ(view.draw().bytes, rendered.bytes) << "the two actions differ";
    return rendered;
}

TEST_F(CoresOnGl, TransformsPlaceWhatIsBelowThemAndNothingElse)
{
    HeldNode root(makeCoredNode<Group>());
    root->addChild(moved(Vec3f(-0.5f, 0, 0), planeOf(unlit(Color3f(1, 0, 0)), 0.5f)));
    root->addChild(
        moved(Vec3f(0.25f, 0, 0), moved(Vec3f(0.25f, 0, 0), planeOf(unlit(Color3f(0, 1, 0)), 0.5f))));
    SceneView view(root.ptr);
    const test::RgbaImage image = renderAndDraw(view);
    EXPECT_EQ(view.at(image, -0.5, 0), red);
    EXPECT_EQ(view.at(image, 0.5, 0), green);
    EXPECT_EQ(view.at(image, 0.01, 0), black);
    EXPECT_EQ(view.at(image, -0.95, 0), black);
}

TEST_F(CoresOnGl, ASwitchShowsItsChoice)
{
    SwitchPtr choice;
    HeldNode root(makeCoredNode<Switch>(&choice));
    root->addChild(moved(Vec3f(-0.5f, 0, 0), planeOf(unlit(Color3f(1, 0, 0)), 1)));
    root->addChild(moved(Vec3f(0.5f, 0, 0), planeOf(unlit(Color3f(0, 1, 0)), 1)));
    SceneView view(root.ptr);
    const struct
    {
        Int32 choice;
        Pixel left;
        Pixel right;
    } cases[] = {{Switch::NONE, black, black}, {0, red, black}, {1, black, green}, {2, black, black},
                 {Switch::ALL, red, green}};
    for(const auto &one : cases)
    {
        SCOPED_TRACE(one.choice);
        choice->setChoice(one.choice);
        endEditCP(choice, Switch::ChoiceFieldMask);
        const test::RgbaImage image = renderAndDraw(view);
        EXPECT_EQ(view.at(image, -0.5, 0), one.left);
        EXPECT_EQ(view.at(image, 0.5, 0), one.right);
    }
}

TEST_F(CoresOnGl, OfNestedMaterialGroupsTheOutermostHoldsAndEndsWithItsNode)
{
    MaterialGroupPtr outer, inner;
    HeldNode root(makeCoredNode<Group>());
    const NodePtr outerNode = makeCoredNode<MaterialGroup>(&outer);
    const NodePtr innerNode = makeCoredNode<MaterialGroup>(&inner);
    root->addChild(outerNode);
    outerNode->addChild(innerNode);
    innerNode->addChild(moved(Vec3f(-0.6f, 0, 0), planeOf(unlit(Color3f(1, 1, 1)), 0.6f)));
    outerNode->addChild(planeOf(unlit(Color3f(1, 1, 1)), 0.6f));
    root->addChild(moved(Vec3f(0.6f, 0, 0), planeOf(unlit(Color3f(1, 1, 1)), 0.6f)));
    outer->setMaterial(unlit(Color3f(1, 0, 0)));
    inner->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(outer);
    endEditCP(inner);
    SceneView view(root.ptr);
    const test::RgbaImage image = renderAndDraw(view);
    EXPECT_EQ(view.at(image, -0.6, 0), red);
    EXPECT_EQ(view.at(image, 0, 0), red);
    EXPECT_EQ(view.at(image, 0.6, 0), (Pixel{255, 255, 255, 255}));
}

TEST_F(CoresOnGl, AMaterialGroupHoldsItsMaterial)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    addRefCP(material);
    const MaterialGroupPtr group = MaterialGroup::create();
    addRefCP(group);
    group->setMaterial(material);
    EXPECT_EQ(material.getRefCount(), 2);
    group->setMaterial(material);
    EXPECT_EQ(material.getRefCount(), 2);
    subRefCP(group);
    EXPECT_EQ(material.getRefCount(), 1);
    subRefCP(material);
}

// A dull white surface gets the cosine between its normal and the light's direction.
TEST_F(CoresOnGl, ADirectionalLightShinesOnWhatIsBelowItByTheCosine)
{
    DirectionalLightPtr light;
    HeldNode root(makeCoredNode<Group>());
    const NodePtr lit = makeCoredNode<DirectionalLight>(&light);
    light->setSpecular(0, 0, 0, 1);
    root->addChild(lit);
    lit->addChild(moved(Vec3f(-0.5f, 0, 0), planeOf(dull(), 1)));
    root->addChild(moved(Vec3f(0.5f, 0, 0), planeOf(dull(), 1)));
    SceneView view(root.ptr);
    for(const double degrees : {0.0, 30.0, 60.0, 120.0})
    {
        SCOPED_TRACE(degrees);
        const double angle = degrees * 3.14159265358979 / 180;
        light->setDirection(Vec3f(Real32(std::sin(angle)), 0, Real32(std::cos(angle))));
        endEditCP(light);
        const test::RgbaImage image = renderAndDraw(view);
        EXPECT_NEAR(view.at(image, -0.5, 0)[0], 255 * std::max(0.0, std::cos(angle)), 1.01) << "rounding";
        EXPECT_EQ(view.at(image, 0.5, 0)[0], 0) << "not below the light's node";
    }
    light->setOn(false);
    endEditCP(light);
    EXPECT_EQ(view.at(renderAndDraw(view), -0.5, 0)[0], 0);
}

TEST_F(CoresOnGl, ALightIsWhereItsBeaconIs)
{
    DirectionalLightPtr light;
    HeldNode root(makeCoredNode<DirectionalLight>(&light));
    light->setSpecular(0, 0, 0, 1);
    TransformPtr turn;
    HeldNode beacon(makeCoredNode<Transform>(&turn));
    root->addChild(planeOf(dull(), 2));
    root->addChild(beacon.ptr);
    EXPECT_EQ(beacon.ptr.getRefCount(), 2);
    light->setBeacon(beacon.ptr);
    EXPECT_EQ(beacon.ptr.getRefCount(), 3);
    endEditCP(light);
    SceneView view(root.ptr);
    EXPECT_NEAR(view.at(renderAndDraw(view), 0, 0)[0], 255, 1);
    Matrix matrix;
    matrix.setRotate(Quaternion(Vec3f(0, 1, 0), 3.14159265f / 3));
    turn->setMatrix(matrix);
    endEditCP(turn);
    EXPECT_NEAR(view.at(renderAndDraw(view), 0, 0)[0], 127.5, 1.01);
    light->setBeacon(NullFC);
    EXPECT_EQ(beacon.ptr.getRefCount(), 2);
    endEditCP(light);
    EXPECT_NEAR(view.at(renderAndDraw(view), 0, 0)[0], 255, 1);
}

// OpenGL 1.1, 2.13.1: cosine over the attenuation polynomial, per vertex. A vertex lies at each pixel read.
TEST_F(CoresOnGl, APointLightFallsOffWithTheDistance)
{
    PointLightPtr light;
    HeldNode root(makeCoredNode<PointLight>(&light));
    light->setSpecular(0, 0, 0, 1);
    light->setPosition(Pnt3f(0.25f, 0, 0.5f));
    light->setConstantAttenuation(1);
    light->setLinearAttenuation(0.5f);
    light->setQuadraticAttenuation(0.25f);
    endEditCP(light);
    root->addChild(planeOf(dull(), 2, 128));
    SceneView view(root.ptr);
    const test::RgbaImage image = renderAndDraw(view);
    for(const double x : {-0.75, -0.25, 0.25, 0.5})
    {
        const double at = (int((x + 1) / 2 * 64) + 0.5) / 32 - 1; // the middle of the pixel
        const double y = 0.5 / 32;
        const double distance = std::sqrt((at - 0.25) * (at - 0.25) + y * y + 0.25);
        const double expected = 0.5 / distance / (1 + 0.5 * distance + 0.25 * distance * distance);
        EXPECT_NEAR(view.at(image, x, 0)[0], 255 * expected, 1.5) << x;
    }
}

TEST_F(CoresOnGl, ASpotLightEndsAtItsCutOff)
{
    SpotLightPtr light;
    HeldNode root(makeCoredNode<SpotLight>(&light));
    light->setSpecular(0, 0, 0, 1);
    light->setPosition(Pnt3f(0, 0, 1));
    light->setDirection(Vec3f(0, 0, -1));
    light->setSpotCutOff(0.4636476f); // half a unit at the distance of one
    endEditCP(light);
    root->addChild(planeOf(dull(), 2, 64));
    SceneView view(root.ptr);
    const test::RgbaImage image = renderAndDraw(view);
    EXPECT_GT(view.at(image, 0, 0)[0], 250);
    EXPECT_GT(view.at(image, 0.44, 0)[0], 200);
    EXPECT_GT(view.at(image, 0, -0.44)[0], 200);
    EXPECT_EQ(view.at(image, 0.56, 0)[0], 0);
    EXPECT_EQ(view.at(image, -0.5, 0.5)[0], 0);
}

} // namespace
