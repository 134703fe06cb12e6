/// \file
/// The scene in this process: frames, changes between frames, and what reaches the console.

#include "ConsoleLog.h"
#include "Program.h"
#include "StdoutGuard.h"
#include "ViewerScene.h"

#include "support/Png.h"

#include <OpenSG/OSGConfig.h>
#include <Tessaly/Tessaly.h>

#include <cstdio>
#include <sstream>

namespace
{

using namespace viewer;

class Scene : public program::ProgramTest
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        osg::osgInit(0, nullptr);
        osg::initTessalyExtention();
        const std::array<int, 3> sides{40, 40, 40};
        writeNifti("ball.nii", sides, {1, 1, 1}, 8, program::ball(sides, 8, 150));
        options.input = path("ball.nii");
        options.width = 64;
        options.height = 48;
    }

    void build(ViewerScene &scene)
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        std::string error;
        ASSERT_TRUE(scene.read(options.input, error)) << error;
        ASSERT_TRUE(scene.build(options, nullptr, error)) << error;
        ASSERT_TRUE(scene.open(error)) << error;
    }

    test::RgbaImage picture(ViewerScene &scene, const std::string &name)
    {
        std::string error;
        test::RgbaImage image;
        EXPECT_TRUE(scene.write(path(name), error)) << error;
        EXPECT_TRUE(test::readPng(path(name), image));
        return image;
    }

    Options options;
};

TEST_F(Scene, AfterTheFramesToThePictureAFurtherOneChangesNothing)
{
    ViewerScene scene;
    ASSERT_NO_FATAL_FAILURE(build(scene));
    for (int frame = 0; frame < ViewerScene::framesToPicture; ++frame)
    {
        scene.draw();
    }
    const test::RgbaImage first = picture(scene, "a.png");
    scene.draw();
    const test::RgbaImage second = picture(scene, "b.png");
    EXPECT_EQ(first.bytes, second.bytes);
    EXPECT_NE(first.at(32, 24), first.at(0, 0));
}

TEST_F(Scene, CameraAndTransferFunctionMayChangeBetweenFrames)
{
    ViewerScene scene;
    ASSERT_NO_FATAL_FAILURE(build(scene));
    scene.draw();
    scene.draw();
    const test::RgbaImage before = picture(scene, "a.png");

    CameraRequest farAway;
    farAway.position = Vec3{500, 0, 0};
    scene.setCamera(farAway);
    scene.draw();
    EXPECT_NE(picture(scene, "b.png").bytes, before.bytes);

    scene.setCamera(CameraRequest());
    scene.draw();
    EXPECT_EQ(picture(scene, "c.png").bytes, before.bytes);

    scene.setTransferFunction({{{0, 0}, {1, 0}}, {{0, 0, 0, 0}, {1, 1, 1, 1}}});
    scene.draw();
    const test::RgbaImage nothing = picture(scene, "d.png");
    EXPECT_EQ(nothing.at(32, 24), nothing.at(0, 0)) << "nothing is visible";
}

TEST_F(Scene, TwoScenesInOneProcessDrawTheSame)
{
    test::RgbaImage pictures[2];
    for (test::RgbaImage &p : pictures)
    {
        ViewerScene scene;
        ASSERT_NO_FATAL_FAILURE(build(scene));
        scene.draw();
        scene.draw();
        p = picture(scene, "a.png");
    }
    EXPECT_EQ(pictures[0].bytes, pictures[1].bytes);
}

TEST(ConsoleLog, WarningsAreShownAndNoticesOnlyWhereAsked)
{
    const auto shown = [](Chatter chatter)
    {
        std::ostringstream out;
        int cleared = 0;
        {
            ConsoleLog log(out, chatter, [&] { ++cleared; });
            FLOG(("going on\n"));
            FFATAL(("it broke\n"));
            FWARNING(("it may break\n"));
            FNOTICE(("by the way\n"));
            FINFO(("details\n"));
        }
        return out.str() + std::to_string(cleared);
    };
    EXPECT_EQ(shown(Chatter::Quiet), "0");
    EXPECT_EQ(shown(Chatter::Normal),
              "tessaly-view: error: it broke\ntessaly-view: warning: it may break\n2");
    EXPECT_EQ(shown(Chatter::Verbose),
              "going on\ntessaly-view: error: it broke\ntessaly-view: warning: it may break\nby the way\n4");
}

TEST(ConsoleLog, WhatIsHeldBackIsDroppedOrReleased)
{
    std::ostringstream out;
    ConsoleLog log(out, Chatter::Normal, [] {});
    log.hold();
    FWARNING(("first\nline\n"));
    FWARNING(("second\n"));
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(log.drop(), "first line");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(log.drop(), "");

    log.hold();
    FWARNING(("third\n"));
    log.release();
    EXPECT_EQ(out.str(), "tessaly-view: warning: third\n");
}

TEST(StdoutGuard, KeepsStandardOutputCleanAndGivesItBack)
{
    testing::internal::CaptureStdout();
    std::printf("before\n");
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        std::printf("swallowed\n");
    }
    std::printf("after\n");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\nafter\n");
}

} // namespace
