/// \file
/// Droplets that are stamped into a surface map.

#include "DropletScene.h"

#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSolidBackground.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

struct Sources
{
    Stage stage;
    Held<NodePtr> object{makeObject()};
    DropletFlow flow;
    DropletSources &sources;

    Sources(int width, int height)
        : flow(object, NullFC, width, height, 0, NullFC), sources(*flow.getSources())
    {
        sources.createSplat(1.570796f);
    }
    Map map() { return stage.read(flow.getSurfaceMap(1)); }
};

/// The height of half a ball around (x, y), in shares of the map, with a diameter.
double ball(double x, double y, double centreX, double centreY, double diameter)
{
    const double u = (x - centreX) / diameter * 2, v = (y - centreY) / diameter * 2;
    return std::sqrt(std::max(0.0, 1 - u * u - v * v));
}

} // namespace

TEST(DropletSources, StampHalfBallsWhereTheyAreToldTo)
{
    // On maps that are not square too, a droplet is a share of either side.
    for(const auto &[width, height] : {std::pair{64, 64}, {96, 40}})
    {
        Sources s(width, height);
        s.sources.addSource(Vec4f(0.3f, 0.6f, 0.4f, 1.0f));
        s.sources.addSource(Vec4f(0.8f, 0.25f, 0.2f, 0.5f));
        s.sources.render(false);
        const Map map = s.map();
        for(int y = 0; y < height; ++y)
            for(int x = 0; x < width; ++x)
            {
                const double u = (x + 0.5) / width, v = (y + 0.5) / height;
                const double expected = ball(u, v, 0.3, 0.6, 0.4) + 0.5 * ball(u, v, 0.8, 0.25, 0.2);
                // At the rim the ball is steep: between two pixels of the splat it falls by an eighth.
                const bool rim = expected < 0.35;
                ASSERT_NEAR(map.at(x, y)[2], expected, rim ? 0.13 : 0.012) << x << ", " << y;
                ASSERT_EQ(map.at(x, y)[0], 0.0f);
                ASSERT_EQ(map.at(x, y)[1], 0.0f);
            }
    }
}

TEST(DropletSources, AddToWhatIsThere)
{
    Sources s(32, 32);
    Map before(32, 32);
    for(auto &cell : before.cells)
        cell = {0.5f, -2.0f, 0.25f, 0};
    s.stage.write(s.flow.getSurfaceMap(1), before);
    s.sources.addSource(Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
    s.sources.render(false);
    Map map = s.map();
    EXPECT_NEAR(map.at(16, 16)[2], 1.25f, 0.01f);
    EXPECT_EQ(map.at(2, 2)[2], 0.25f);
    EXPECT_EQ(map.at(16, 16)[0], 0.5f);
    EXPECT_EQ(map.at(16, 16)[1], -2.0f);
    s.sources.render(false);
    EXPECT_NEAR(s.map().at(16, 16)[2], 2.25f, 0.02f);
}

TEST(DropletSources, WithoutDropletsNothingHappensUnlessTheMapIsToBeCleared)
{
    Sources s(16, 16);
    Map before(16, 16);
    before.at(3, 4) = {1, 2, 0.5f, 0};
    s.stage.write(s.flow.getSurfaceMap(1), before);
    s.sources.render(false);
    EXPECT_TRUE(s.sources.getViewport() == NullFC);
    EXPECT_EQ(s.map().at(3, 4)[1], 2.0f);
    s.sources.render(true);
    for(const auto &cell : s.map().cells)
        ASSERT_EQ(cell, (std::array<float, 4>{0, 0, 0, 0}));
}

TEST(DropletSources, ClearEmptiesTheMapAndThenStamps)
{
    Sources s(32, 32);
    Map before(32, 32);
    for(auto &cell : before.cells)
        cell = {1, 2, 0.5f, 0};
    s.stage.write(s.flow.getSurfaceMap(1), before);
    s.sources.addSource(Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
    s.sources.render(true);
    const Map map = s.map();
    EXPECT_NEAR(map.at(16, 16)[2], 1.0f, 0.01f);
    EXPECT_EQ(map.at(16, 16)[0], 0.0f);
    EXPECT_EQ(map.at(1, 1)[2], 0.0f);
    s.sources.clearSources();
    EXPECT_TRUE(s.sources.getDrops().empty());
    s.sources.render(true);
    EXPECT_EQ(s.map().volume(), 0.0);
}

TEST(DropletSources, KeepOneViewportWithTheBackgroundOfTheCall)
{
    Sources s(32, 16);
    s.sources.addSource(Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
    s.sources.render(false);
    const FBOViewportPtr viewport = s.sources.getViewport();
    ASSERT_TRUE(viewport != NullFC);
    EXPECT_TRUE(PassiveBackgroundPtr::dcast(viewport->getBackground()) != NullFC);
    EXPECT_EQ(viewport->getStorageWidth(), 32);
    EXPECT_EQ(viewport->getStorageHeight(), 16);
    EXPECT_EQ(viewport->getRight(), 31.0f);
    EXPECT_EQ(viewport->getTop(), 15.0f);
    const NodePtr root = viewport->getRoot();
    EXPECT_EQ(root->getChild(0)->getNChildren(), 1u);
    s.sources.addSource(Vec4f(0.1f, 0.5f, 0.5f, 1.0f));
    s.sources.render(true);
    EXPECT_EQ(s.sources.getViewport(), viewport);
    EXPECT_EQ(viewport->getRoot()->getChild(0)->getNChildren(), 2u);
    const SolidBackgroundPtr black = SolidBackgroundPtr::dcast(viewport->getBackground());
    ASSERT_TRUE(black != NullFC);
    EXPECT_EQ(black->getColor(), Color3f(0, 0, 0));
    // Nothing changed: the same tree again.
    const NodePtr same = viewport->getRoot();
    s.sources.render(true);
    EXPECT_EQ(viewport->getRoot(), same);
}

TEST(DropletSources, AnAngleWithoutADropletLogsALineAndAddsNothing)
{
    Sources s(16, 16);
    LogCapture log;
    s.sources.createSplat(0.0f);
    EXPECT_EQ(log.text(LOG_WARNING),
              "DropletSources::createSplat: with a contact angle of 0 there is no droplet\n");
    s.sources.addSource(Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
    s.sources.render(false);
    EXPECT_EQ(s.map().volume(), 0.0);
    const TextureChunkPtr splat = s.sources.getSplat();
    s.sources.createSplat(1.0f);
    EXPECT_EQ(s.sources.getSplat(), splat);
    s.sources.render(false);
    EXPECT_GT(s.map().volume(), 1.0);
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
}

TEST(DropletContext, MakesTheViewportOfATarget)
{
    Stage stage;
    DropletFlowContext *const context = DropletFlowContext::get();
    EXPECT_EQ(DropletFlowContext::get(), context);
    EXPECT_EQ(context->getWindow(), stage.window.ptr);
    EXPECT_EQ(context->getAction(), stage.action.get());
    const Held<NodePtr> root(makeCoredNode<Group>());
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, 64, 64, 0, NullFC);
    const Held<FBOViewportPtr> viewport(context->makeViewport(root, flow.getSurfaceMap(0), NullFC));
    const PerspectiveCameraPtr camera = PerspectiveCameraPtr::dcast(viewport->getCamera());
    ASSERT_TRUE(camera != NullFC);
    EXPECT_EQ(camera->getAspect(), 1.0f);
    EXPECT_EQ(camera->getNear(), 0.01f);
    EXPECT_EQ(camera->getFar(), 100.0f);
    EXPECT_FLOAT_EQ(camera->getFov(), 2.0f * std::atan(0.5f));
    Matrix beacon, expected;
    camera->getBeacon()->getToWorld(beacon);
    expected.setTranslate(0, 0, 1);
    EXPECT_EQ(beacon, expected);
    EXPECT_EQ(SolidBackgroundPtr::dcast(viewport->getBackground())->getColor(), Color3f(0.5f, 0.5f, 0.5f));
    EXPECT_EQ(viewport->getLeft(), 0.0f);
    EXPECT_EQ(viewport->getRight(), 63.0f);
    EXPECT_EQ(viewport->getBottom(), 0.0f);
    EXPECT_EQ(viewport->getTop(), 63.0f);
    EXPECT_EQ(viewport->getStorageWidth(), 64);
    EXPECT_EQ(viewport->getParent(), stage.window.ptr);
    EXPECT_EQ(viewport->getRoot(), root.ptr);
    ASSERT_EQ(viewport->getTextures().size(), 1u);
    EXPECT_EQ(viewport->getTextures(0), flow.getSurfaceMap(0));
    const Held<BackgroundPtr> own{BackgroundPtr(PassiveBackground::create())};
    const Held<FBOViewportPtr> other(context->makeViewport(root, flow.getSurfaceMap(0), own));
    EXPECT_EQ(other->getBackground(), own.ptr);
}
