/// \file
/// Several windows that show a volume, and changes between frames.

#include "Subjects.h"
#include "VolumeStage.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGBaseInitFunctions.h>

using namespace reference;
using test::VolumeStage;

namespace
{

constexpr int side = 48;

class VolumeWindows : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }
};

/// Another handler's textures take the place of the present ones at the viewport's next frame.
void announce(const osg::VolumeViewportPtr &passes)
{
    osg::beginEditCP(passes, osg::VolumeViewport::VolumeNodesFieldMask);
    osg::endEditCP(passes, osg::VolumeViewport::VolumeNodesFieldMask);
}

TEST_F(VolumeWindows, ShowTheSameVoxelsEachFromItsOwnSideAndInItsOwnStyle)
{
    Scene scene = test::sceneOf(8, side);
    scene.boxes = test::twoBoxes();
    Scene other = scene;
    other.camera = test::lookingFrom({-1.9, 0.6, 1.4}, {0.0, 0.0, 0.0});
    other.shading = ShadingType::Mip;
    other.width = 37;
    other.height = 52;

    VolumeStage first(side, side);
    VolumeStage second(37, 52);
    EXPECT_TRUE(first.matches(scene, "first-alone"));
    second.show(other);
    osg::beginEditCP(second.volume, osg::VolumeNode::VoxelsFieldMask);
    second.volume->setVoxels(first.volume->getVoxels());
    osg::endEditCP(second.volume, osg::VolumeNode::VoxelsFieldMask);
    for(int frame = 0; frame < 3; ++frame)
    {
        EXPECT_TRUE(test::agrees(second.picture(), render(other), "second"));
        EXPECT_TRUE(test::agrees(first.picture(), render(scene), "first"));
    }
    EXPECT_EQ(first.chunkOf(test::StageTexture::Voxels), second.chunkOf(test::StageTexture::Voxels));
}

TEST_F(VolumeWindows, TakeOneVolumeNodeOverFromOneAnother)
{
    Scene scene = test::sceneOf(8, side);
    scene.boxes = test::twoBoxes();
    VolumeStage stage(side, side);
    EXPECT_TRUE(stage.matches(scene, "owner"));

    const osg::VolumeViewportPtr passes = osg::VolumeViewport::create();
    osg::beginEditCP(passes);
    passes->setCamera(stage.camera);
    passes->setRoot(stage.root);
    passes->setBackground(stage.background);
    passes->getVolumeNodes().push_back(stage.volume);
    osg::endEditCP(passes);
    const osg::ViewportPtr view = osg::Viewport::create();
    osg::beginEditCP(view);
    view->setCamera(stage.camera);
    view->setRoot(stage.root);
    view->setBackground(stage.background);
    view->setSize(0, 0, 1, 1);
    osg::endEditCP(view);
    const osg::EGLWindowPtr window = osg::EGLWindow::create();
    osg::addRefCP(window);
    window->resize(64, 32);
    window->addPort(passes);
    window->addPort(view);
    window->init();
    const osg::LogCapture log;
    Scene wide = scene;
    wide.width = 64;
    wide.height = 32;
    for(int round = 0; round < 2; ++round)
    {
        // The handler has the textures of the viewport that heard of the node last.
        announce(passes);
        window->activate();
        window->render(stage.action);
        window->render(stage.action);
        EXPECT_TRUE(test::agrees(test::readPixels(0, 0, 64, 32), render(wide), "taken"));
        announce(stage.passes);
        EXPECT_TRUE(test::agrees(stage.picture(), render(scene), "taken-back"));
    }
    EXPECT_EQ(test::complaintsIn(log), "");
    window->deactivate();
    osg::subRefCP(window);
}

TEST_F(VolumeWindows, ShowAChangedTransferFunctionInTheNextFrameWithoutTheVoxelsBeingSentAgain)
{
    for(const int bits : {8, 16})
    {
        VolumeStage stage(side, side);
        Scene scene = test::sceneOf(bits, side);
        EXPECT_TRUE(stage.matches(scene, "table-before"));
        const osg::UInt32 transfers = stage.chunkOf(test::StageTexture::Voxels)->getNumTransfers();
        EXPECT_EQ(transfers, 1u);
        for(std::uint8_t &byte : scene.transfer.bytes)
            byte = std::uint8_t(byte / 2 + 5);
        for(float &value : scene.transfer.halves)
            value = value * 0.5f + 0.01f;
        stage.show(scene);
        EXPECT_TRUE(test::agrees(stage.frame(), render(scene), "table-after"));
        scene.transfer = TransferSource();
        stage.show(scene);
        EXPECT_TRUE(test::agrees(stage.frame(), render(scene), "table-gone"));
        EXPECT_EQ(stage.chunkOf(test::StageTexture::Voxels)->getNumTransfers(), transfers);
    }
}

TEST_F(VolumeWindows, CompileNothingAndSendNoVoxelsWhileOnlyTheCameraMoves)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    EXPECT_TRUE(stage.matches(scene, "still"));
    const osg::UInt32 compiles = stage.program()->getNumCompiles();
    const osg::UInt32 transfers = stage.chunkOf(test::StageTexture::Voxels)->getNumTransfers();
    for(int step = 1; step < 6; ++step)
    {
        scene.camera = test::lookingFrom({0.9 - 0.4 * step, 1.0, 2.3}, {0.03, 0.05, 0.0});
        scene.camera.nearPlane = 0.2 + 0.1 * step;
        EXPECT_TRUE(stage.matches(scene, "moving-" + std::to_string(step)));
    }
    EXPECT_EQ(stage.program()->getNumCompiles(), compiles);
    EXPECT_EQ(stage.chunkOf(test::StageTexture::Voxels)->getNumTransfers(), transfers);
}

} // namespace
