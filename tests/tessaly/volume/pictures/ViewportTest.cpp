/// \file
/// When the passes run, and what they follow.

#include "Subjects.h"
#include "VolumeStage.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGroup.h>

#include <cstdlib>

using namespace reference;
using test::StageTexture;
using test::VolumeStage;

namespace
{

constexpr int side = 48;

class VolumeViewportPicture : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }
    void SetUp() override { ::unsetenv("DEBUG_VOLUME"); }
    void TearDown() override { ::unsetenv("DEBUG_VOLUME"); }
};

TEST_F(VolumeViewportPicture, IsThereFromTheSecondFrameOnWhileTheFirstOnlyPrepares)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    scene.boxes = test::twoBoxes();
    stage.show(scene);
    int visits = 0;
    stage.action->registerEnterFunction(osg::VolumeNode::getClassType(),
                                        [&](osg::NodeCore *core, osg::Action *action)
                                        {
                                            ++visits;
                                            return static_cast<osg::VolumeNode *>(core)->renderEnter(action);
                                        });
    stage.frame();
    EXPECT_EQ(visits, 1) << "the view alone";
    const test::RgbaImage second = stage.frame();
    EXPECT_EQ(visits, 3) << "the scene pass and the view";
    EXPECT_TRUE(test::agrees(second, render(scene), "second-frame"));
    EXPECT_EQ(second.bytes, stage.frame().bytes) << "nothing has changed";
}

TEST_F(VolumeViewportPicture, StaysThatOfTheLastEnabledFrameWhileDisabled)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    scene.boxes = test::twoBoxes();
    stage.show(scene);
    const test::RgbaImage enabled = stage.picture();
    const std::vector<float> front = stage.floats(StageTexture::Front, 4);

    osg::beginEditCP(stage.passes);
    stage.passes->setEnabled(false);
    osg::endEditCP(stage.passes, osg::VolumeViewport::EnabledFieldMask);
    scene.camera = test::lookingFrom({-1.5, 0.4, 2.0}, {0.0, 0.0, 0.0});
    scene.boxes.clear();
    stage.show(scene);
    EXPECT_EQ(stage.frame().bytes, enabled.bytes);
    EXPECT_EQ(stage.floats(StageTexture::Front, 4), front);

    osg::beginEditCP(stage.passes);
    stage.passes->setEnabled(true);
    osg::endEditCP(stage.passes, osg::VolumeViewport::EnabledFieldMask);
    EXPECT_TRUE(test::agrees(stage.frame(), render(scene), "enabled-again"));
}

TEST_F(VolumeViewportPicture, FollowsTheSizeOfTheWindow)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(16, side);
    scene.boxes = test::twoBoxes();
    scene.ray = RayType::Interleaved;
    const std::pair<int, int> sizes[] = {{48, 48}, {61, 37}, {31, 64}, {80, 16}, {48, 48}};
    for(const auto &[width, height] : sizes)
    {
        scene.width = width;
        scene.height = height;
        EXPECT_TRUE(stage.matches(scene, "size-" + std::to_string(width)));
        for(const StageTexture texture :
            {StageTexture::Front, StageTexture::Back, StageTexture::SceneColor, StageTexture::SceneDepth})
            EXPECT_EQ(stage.sizeOf(texture), std::make_pair(width, height));
    }
}

TEST_F(VolumeViewportPicture, FollowsTheLastViewportWhereThatIsNotTheWholeWindow)
{
    VolumeStage stage(80, 60);
    Scene scene = test::sceneOf(8, 40);
    scene.boxes = test::twoBoxes();
    scene.width = 80;
    scene.height = 60;
    stage.show(scene);
    stage.frame();
    osg::beginEditCP(stage.view);
    stage.view->setSize(0, 0, 39, 29);
    osg::endEditCP(stage.view);
    const test::RgbaImage window = stage.frame();
    EXPECT_EQ(stage.passes->getPixelWidth(), 40);
    EXPECT_EQ(stage.passes->getPixelHeight(), 30);
    EXPECT_EQ(stage.sizeOf(StageTexture::Back), std::make_pair(40, 30));
    test::RgbaImage part(40, 30);
    for(int y = 0; y < 30; ++y)
        for(int x = 0; x < 40; ++x)
            part.set(x, y, window.at(x, y));
    scene.width = 40;
    scene.height = 30;
    EXPECT_TRUE(test::agrees(part, render(scene), "part-of-the-window"));
}

TEST_F(VolumeViewportPicture, IsMadeAnewInTheFrameOfAnotherCamera)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    stage.show(scene);
    stage.picture();
    const osg::UInt32 textures[] = {stage.chunkOf(StageTexture::Front)->getGLId(),
                                    stage.chunkOf(StageTexture::SceneDepth)->getGLId()};

    scene.camera = test::lookingFrom({-2.0, 0.5, 1.6}, {0.0, 0.1, 0.0});
    scene.camera.fov = 0.9;
    osg::TransformPtr eye;
    const osg::NodePtr beacon = osg::makeCoredNode<osg::Transform>(&eye);
    osg::beginEditCP(eye);
    eye->setMatrix(test::matrixOf(scene.camera.beaconToWorld));
    osg::endEditCP(eye);
    osg::beginEditCP(stage.root, osg::Node::ChildrenFieldMask);
    stage.root->addChild(beacon);
    osg::endEditCP(stage.root, osg::Node::ChildrenFieldMask);
    const osg::PerspectiveCameraPtr camera = osg::PerspectiveCamera::create();
    osg::beginEditCP(camera);
    camera->setBeacon(beacon);
    camera->setFov(0.9f);
    camera->setNear(0.2f);
    camera->setFar(12.0f);
    osg::endEditCP(camera);
    osg::beginEditCP(stage.passes, osg::VolumeViewport::CameraFieldMask);
    stage.passes->setCamera(camera);
    osg::endEditCP(stage.passes, osg::VolumeViewport::CameraFieldMask);
    osg::beginEditCP(stage.view, osg::Viewport::CameraFieldMask);
    stage.view->setCamera(camera);
    osg::endEditCP(stage.view, osg::Viewport::CameraFieldMask);

    EXPECT_TRUE(test::agrees(stage.frame(), render(scene), "another-camera"));
    EXPECT_NE(stage.chunkOf(StageTexture::Front)->getGLId(), textures[0]);
    EXPECT_NE(stage.chunkOf(StageTexture::SceneDepth)->getGLId(), textures[1]);
}

TEST_F(VolumeViewportPicture, GetsFourThumbnailsOnceWhereTheyAreAskedFor)
{
    // The strip of a process's first volume viewport stands at the right edge, and all others at the left.
    VolumeStage other(side, side);
    const Scene scene = test::sceneOf(8, 64);
    other.show(test::sceneOf(8, side));
    other.picture();

    VolumeStage stage(64, 64);
    stage.show(scene);
    const test::RgbaImage plain = stage.picture();
    ::setenv("DEBUG_VOLUME", "", 1);
    const test::RgbaImage shown = stage.frame();
    EXPECT_EQ(stage.view->getForegrounds().size(), 4u);
    stage.frame();
    EXPECT_EQ(stage.view->getForegrounds().size(), 4u) << "appended once";
    ::unsetenv("DEBUG_VOLUME");
    EXPECT_EQ(stage.frame().bytes, shown.bytes) << "they stay";

    const std::vector<float> textures[] = {stage.floats(StageTexture::Front, 4),
                                           stage.floats(StageTexture::Back, 4),
                                           stage.floats(StageTexture::SceneColor, 4)};
    for(int y = 0; y < 64; ++y)
    {
        for(int x = 16; x < 64; ++x)
            ASSERT_EQ(shown.at(x, y), plain.at(x, y)) << x << ' ' << y;
        for(int x = 0; x < 16 && y < 48; ++x)
        {
            // A quarter of the size, nearest texels: the one at 4 x + 2 of the texture.
            const std::vector<float> &texture = textures[y / 16];
            const std::size_t at = 4 * std::size_t((4 * (y % 16) + 2) * 64 + 4 * x + 2);
            for(std::size_t channel = 0; channel < 3; ++channel)
            {
                const float value = std::min(1.0f, std::max(0.0f, texture[at + channel]));
                ASSERT_NEAR(shown.at(x, y)[channel], value * 255.0f, 1.0f) << x << ' ' << y << ' ' << channel;
            }
        }
    }
}

/// Ends this process, with 0 if the thumbnails of its first volume viewport stand at the right edge.
[[noreturn]] void exitByPlaceOfThumbnails()
{
    osg::osgInit(0, nullptr);
    VolumeStage stage(64, 64);
    Scene scene = test::sceneOf(8, 64);
    scene.boxes = test::twoBoxes();
    stage.show(scene);
    const test::RgbaImage plain = stage.picture();
    ::setenv("DEBUG_VOLUME", "1", 1);
    const test::RgbaImage shown = stage.frame();
    int changed[4] = {};
    for(int y = 0; y < 64; ++y)
    {
        for(int x = 0; x < 64; ++x)
            changed[x / 16] += shown.at(x, y) != plain.at(x, y) ? 1 : 0;
    }
    std::_Exit(changed[0] == 0 && changed[1] == 0 && changed[2] == 0 && changed[3] > 512 ? 0 : 1);
}

TEST(VolumeThumbnailsDeathTest, OfTheFirstVolumeViewportOfAProcessStandAtTheRightEdge)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process of its own
    EXPECT_EXIT(exitByPlaceOfThumbnails(), ::testing::ExitedWithCode(0), "");
}

TEST_F(VolumeViewportPicture, DoesNothingInAFrameOfADrawAction)
{
    VolumeStage stage(side, side);
    const Scene scene = test::sceneOf(8, side);
    stage.show(scene);
    osg::DrawAction *const action = osg::DrawAction::create();
    const osg::LogCapture log;
    stage.window->activate();
    stage.window->draw(action);
    stage.window->draw(action);
    delete action;
    EXPECT_EQ(test::complaintsIn(log), "");
    EXPECT_EQ(stage.volumeHead->getNChildren(), 0u) << "nothing has been attached";
    EXPECT_TRUE(test::agrees(stage.picture(), render(scene), "after-draw-action"));
}

TEST_F(VolumeViewportPicture, ShowsNewVoxelsOnceTheViewportHasHeardOfTheNodeAgain)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    EXPECT_TRUE(stage.matches(scene, "old-voxels"));
    const osg::LogCapture log;
    scene.volume = blobVolume(17, 40, 25, 8, 250, 77);
    osg::beginEditCP(stage.volume);
    stage.volume->setVoxels(test::voxelTexture(scene.volume));
    osg::endEditCP(stage.volume, osg::VolumeNode::VoxelsFieldMask);
    // The new handler has no textures yet: these frames show nothing that is promised, and do no harm.
    stage.frame();
    stage.frame();
    EXPECT_EQ(stage.volumeHead->getNChildren(), 1u);
    osg::beginEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    osg::endEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    EXPECT_TRUE(test::agrees(stage.frame(), render(scene), "new-voxels"));
    EXPECT_EQ(stage.volumeHead->getNChildren(), 1u);
    EXPECT_EQ(test::complaintsIn(log), "");
}

TEST_F(VolumeViewportPicture, FailsQuietlyForANodeThatIsNoVolumeAndGoesOnWhenItIsGone)
{
    VolumeStage stage(side, side);
    const Scene scene = test::sceneOf(8, side);
    stage.show(scene);
    const osg::NodeCorePtr group = osg::Group::create();
    osg::beginEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    stage.passes->getVolumeNodes().push_back(group);
    osg::endEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    const osg::LogCapture log;
    stage.frame();
    stage.frame();
    EXPECT_EQ(stage.volumeHead->getNChildren(), 0u);
    osg::beginEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    stage.passes->getVolumeNodes().erase(stage.passes->getVolumeNodes().find(group));
    osg::endEditCP(stage.passes, osg::VolumeViewport::VolumeNodesFieldMask);
    EXPECT_TRUE(test::agrees(stage.picture(), render(scene), "group-gone"));
    EXPECT_EQ(test::complaintsIn(log), "");
}

TEST_F(VolumeViewportPicture, ReplacesTheChildrenOfTheVolumesNode)
{
    VolumeStage stage(side, side);
    osg::beginEditCP(stage.volumeHead, osg::Node::ChildrenFieldMask);
    stage.volumeHead->addChild(osg::makeNodeFor(osg::Group::create()));
    stage.volumeHead->addChild(osg::makeNodeFor(osg::Group::create()));
    osg::endEditCP(stage.volumeHead, osg::Node::ChildrenFieldMask);
    const Scene scene = test::sceneOf(8, side);
    EXPECT_TRUE(stage.matches(scene, "children"));
    EXPECT_EQ(stage.volumeHead->getNChildren(), 1u);
}

} // namespace
