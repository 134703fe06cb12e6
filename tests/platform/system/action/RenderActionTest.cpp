#include <gtest/gtest.h>

#include <memory>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include "support/ReadBack.h"

OSG_USING_NAMESPACE

namespace
{

constexpr int side = 64;

/// A window that shows `root` from z = 5 along -z.
struct RenderActionTest : public testing::Test
{
    EGLWindowPtr window;
    NodePtr root;
    std::unique_ptr<RenderAction> action;

    void SetUp() override
    {
        osgInit(0, nullptr);
        root = makeCoredNode<Group>();
        TransformPtr eye;
        const NodePtr beacon = makeCoredNode<Transform>(&eye);
        eye->getMatrix().setTranslate(0, 0, 5);
        endEditCP(eye);
        root->addChild(beacon);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.8f);
        camera->setNear(0.1f);
        camera->setFar(100);
        const ViewportPtr view = Viewport::create();
        view->setCamera(camera);
        view->setRoot(root);
        view->setBackground(SolidBackground::create());
        window = EGLWindow::create();
        addRefCP(window);
        window->resize(side, side);
        window->addPort(view);
        window->init();
        action.reset(RenderAction::create());
    }

    void TearDown() override
    {
        ASSERT_TRUE(window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        subRefCP(window);
    }

    std::vector<int> middle()
    {
        window->render(action.get());
        window->activate();
        return at(side / 2, side / 2);
    }

    std::vector<int> at(int x, int y)
    {
        UInt8 pixel[4];
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        return {pixel[0], pixel[1], pixel[2]};
    }

    static SimpleMaterialPtr paint(Real32 red, Real32 green, Real32 blue, Real32 transparency = 0, Int32 key = 0)
    {
        const SimpleMaterialPtr material = SimpleMaterial::create();
        material->setLit(false);
        material->setDiffuse(Color3f(red, green, blue));
        material->setTransparency(transparency);
        material->setSortKey(key);
        endEditCP(material);
        return material;
    }

    /// A square of side 1 across the z axis at `z`.
    NodePtr square(Real32 z, const MaterialPtr &material)
    {
        const GeometryPtr geometry = makePlaneGeo(1, 1, 1, 1);
        geometry->setMaterial(material);
        endEditCP(geometry);
        TransformPtr place;
        const NodePtr node = makeCoredNode<Transform>(&place);
        place->getMatrix().setTranslate(0, 0, z);
        endEditCP(place);
        node->addChild(makeNodeFor(geometry));
        root->addChild(node);
        return node;
    }
};

TEST_F(RenderActionTest, WhatIsOpaqueIsDrawnAheadOfWhatIsTransparent)
{
    square(1, paint(0, 1, 0, 0.5f));
    square(0, paint(1, 0, 0));
    const std::vector<int> colour = middle();
    EXPECT_NEAR(colour[0], 128, 2);
    EXPECT_NEAR(colour[1], 128, 2);
}

TEST_F(RenderActionTest, TransparentThingsAreDrawnFromFarToNear)
{
    square(1, paint(0, 1, 0, 0.5f));
    square(0, paint(1, 0, 0, 0.5f));
    square(-1, paint(0, 0, 1, 0.5f));
    const std::vector<int> colour = middle();
    EXPECT_NEAR(colour[0], 64, 2);
    EXPECT_NEAR(colour[1], 128, 2);
    EXPECT_NEAR(colour[2], 32, 2);
}

TEST_F(RenderActionTest, WithoutSortingTransparentThingsKeepTheOrderOfTheScene)
{
    square(1, paint(0, 1, 0, 0.5f));
    square(0, paint(1, 0, 0, 0.5f));
    action->setSortTrans(false);
    const std::vector<int> colour = middle();
    EXPECT_NEAR(colour[0], 128, 2);
    EXPECT_NEAR(colour[1], 64, 2);
}

TEST_F(RenderActionTest, TransparentThingsWriteDepthOnlyWhenAsked)
{
    square(1, paint(0, 1, 0, 0.5f, 0));
    square(0, paint(1, 0, 0, 0, 1));
    EXPECT_NEAR(middle()[0], 255, 1) << "drawn later, by its key, and not hidden by a depth that was not written";
    action->setZWriteTrans(true);
    EXPECT_NEAR(middle()[0], 0, 1);
}

TEST_F(RenderActionTest, SortKeysComeBeforeTransparencyAndOrder)
{
    // Without a depth test the last that is drawn wins.
    action->setZWriteTrans(false);
    square(1, paint(0, 1, 0, 0.5f, -5));
    square(1, paint(0, 0, 1, 0.5f, 7));
    square(1, paint(1, 0, 0, 0.5f, 3));
    const std::vector<int> colour = middle();
    EXPECT_NEAR(colour[2], 128, 2);
    EXPECT_NEAR(colour[0], 64, 2);
    EXPECT_NEAR(colour[1], 32, 2);
}

TEST_F(RenderActionTest, OpaqueThingsAreGroupedByStateInTheOrderOfTheirFirstAppearance)
{
    const SimpleMaterialPtr red = paint(1, 0, 0);
    const SimpleMaterialPtr green = paint(0, 1, 0);
    square(0, red);
    square(0, green);
    square(0, red);
    // At the same depth GL_LEQUAL lets the later one win: the reds are drawn together, then the green.
    EXPECT_EQ(middle(), (std::vector<int>{0, 255, 0}));
    EXPECT_EQ(action->getStatistics()->getElem(RenderAction::statNMaterials)->get(), 2);
    EXPECT_EQ(action->getStatistics()->getElem(RenderAction::statNGeometries)->get(), 3);
}

TEST_F(RenderActionTest, TheOutermostMaterialGroupHolds)
{
    const NodePtr box = square(0, paint(1, 0, 0));
    MaterialGroupPtr outer;
    MaterialGroupPtr inner;
    const NodePtr outerNode = makeCoredNode<MaterialGroup>(&outer);
    const NodePtr innerNode = makeCoredNode<MaterialGroup>(&inner);
    outer->setMaterial(paint(0, 1, 0));
    inner->setMaterial(paint(0, 0, 1));
    endEditCP(outer);
    endEditCP(inner);
    innerNode->addChild(box);
    outerNode->addChild(innerNode);
    root->addChild(outerNode);
    EXPECT_EQ(middle(), (std::vector<int>{0, 255, 0}));
}

TEST_F(RenderActionTest, NodesOutsideOfTheFrustumAreCulled)
{
    square(0, paint(1, 0, 0));
    square(50, paint(0, 1, 0));
    EXPECT_EQ(middle(), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(action->getStatistics()->getElem(RenderAction::statNGeometries)->get(), 1);
    EXPECT_GE(action->getStatistics()->getElem(DrawActionBase::statCulledNodes)->get(), 1);
    action->getStatistics()->reset();
    action->setFrustumCulling(false);
    EXPECT_EQ(middle(), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(action->getStatistics()->getElem(RenderAction::statNGeometries)->get(), 2);
    EXPECT_EQ(action->getStatistics()->getElem(DrawActionBase::statCullTestedNodes)->get(), 0);
}

TEST_F(RenderActionTest, AMovedNodeComesBackIntoTheFrustum)
{
    const NodePtr node = square(50, paint(1, 0, 0));
    EXPECT_EQ(middle(), (std::vector<int>{0, 0, 0}));
    const TransformPtr place = TransformPtr::dcast(node->getCore());
    place->getMatrix().setTranslate(0, 0, 0);
    endEditCP(place, Transform::MatrixFieldMask);
    EXPECT_EQ(middle(), (std::vector<int>{255, 0, 0}));
}

TEST_F(RenderActionTest, ALightShinesOnWhatIsBelowIt)
{
    const SimpleMaterialPtr white = SimpleMaterial::create();
    white->setDiffuse(Color3f(1, 1, 1));
    white->setAmbient(Color3f(0, 0, 0));
    white->setSpecular(Color3f(0, 0, 0));
    endEditCP(white);
    DirectionalLightPtr light;
    const NodePtr lit = makeCoredNode<DirectionalLight>(&light);
    light->setDiffuse(Color4f(0.5f, 0.25f, 1, 1));
    light->setDirection(Vec3f(0, 0, 1));
    endEditCP(light);
    const NodePtr inside = square(0, white);
    lit->addChild(inside);
    const NodePtr outside = square(0.5f, white);
    const TransformPtr aside = TransformPtr::dcast(outside->getCore());
    aside->getMatrix().setTranslate(1.2f, 0, 0);
    endEditCP(aside, Transform::MatrixFieldMask);
    root->addChild(lit);
    const std::vector<int> colour = middle();
    EXPECT_NEAR(colour[0], 128, 2);
    EXPECT_NEAR(colour[1], 64, 2);
    EXPECT_NEAR(colour[2], 255, 2);
    // tan(0.4) * 5 is half the height of the picture at z = 0.
    const int x = side / 2 + int(1.2 / (5 * 0.42279) * side / 2);
    EXPECT_EQ(at(x, side / 2), (std::vector<int>{0, 0, 0})) << "not below the light, and nothing else shines";
}

TEST_F(RenderActionTest, TheMaskTellsWhichLightsAreOn)
{
    const MaterialPtr material = paint(1, 1, 1);
    std::vector<UInt32> masks;
    Material::DrawFunctor functor = [&masks](DrawActionBase *drawing) {
        masks.push_back(drawing->getActiveLightsMask());
        return Action::Continue;
    };
    // Two lights, one below the other, and a switched-off one.
    DirectionalLightPtr off;
    const NodePtr offNode = makeCoredNode<DirectionalLight>(&off);
    off->setOn(false);
    const NodePtr first = makeCoredNode<DirectionalLight>();
    const NodePtr second = makeCoredNode<DirectionalLight>();
    root->addChild(offNode);
    offNode->addChild(first);
    first->addChild(second);
    action->setFrustumCulling(false);
    const RenderAction::Functor enter = [&](NodeCore *, Action *traversal) {
        dynamic_cast<RenderAction *>(traversal)->dropFunctor(functor, material.getCPtr());
        return Action::Continue;
    };
    for(const NodePtr &node : {offNode, first, second})
        node->addChild(makeCoredNode<Group>());
    action->registerEnterFunction(Group::getClassType(), [&](NodeCore *core, Action *traversal) {
        return traversal->getActNode() == root ? Action::Continue : enter(core, traversal);
    });
    window->render(action.get());
    EXPECT_EQ(masks, (std::vector<UInt32>{3, 1, 0}));
    EXPECT_EQ(action->getActiveLightsMask(), 0u);
}

TEST_F(RenderActionTest, MoreLightsThanGLHasAreLeftOut)
{
    const MaterialPtr material = paint(1, 1, 1);
    std::vector<UInt32> masks;
    Material::DrawFunctor functor = [&masks](DrawActionBase *drawing) {
        masks.push_back(drawing->getActiveLightsMask());
        EXPECT_TRUE(glIsEnabled(GL_LIGHT7));
        return Action::Continue;
    };
    NodePtr node = root;
    for(int i = 0; i < 12; ++i)
    {
        const NodePtr light = makeCoredNode<DirectionalLight>();
        node->addChild(light);
        node = light;
    }
    const NodePtr lit = makeCoredNode<Group>();
    node->addChild(lit);
    action->setFrustumCulling(false);
    action->registerEnterFunction(Group::getClassType(), [&](NodeCore *, Action *traversal) {
        if(traversal->getActNode() == lit)
            dynamic_cast<RenderAction *>(traversal)->dropFunctor(functor, material.getCPtr());
        return Action::Continue;
    });
    window->render(action.get());
    EXPECT_EQ(masks, std::vector<UInt32>{0xFF}) << "eight of the twelve";
}

TEST_F(RenderActionTest, TheFlagsAreKept)
{
    EXPECT_FALSE(action->getEffectsPass());
    EXPECT_FALSE(action->getZWriteTrans());
    EXPECT_TRUE(action->getSortTrans());
    action->setEffectsPass(true);
    action->setZWriteTrans(true);
    RenderAction::setPrototype(action.get());
    const std::unique_ptr<RenderAction> copy(RenderAction::create());
    RenderAction::setPrototype(nullptr);
    EXPECT_TRUE(copy->getEffectsPass());
    EXPECT_TRUE(copy->getZWriteTrans());
}

} // namespace
