/// \file
/// The window as a person finds it: mouse, keys, files dropped, and what is seen.

#include "ViewerProcess.h"

#include "support/PixelCompare.h"
#include "support/Png.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include <unistd.h>

namespace
{

using namespace viewer;
using program::ball;

class ViewerWindow : public program::WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        writeNifti("ball.nii", sides, {1, 1, 1.25f}, 8, ball(sides, 8, 150));
    }

    /// The picture that the program draws without a display, of the state that was saved.
    test::RgbaImage repeated()
    {
        test::RgbaImage image;
        const program::Outcome outcome = run({"--load-state", "end.ini", "-o", "repeated.png"});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_TRUE(test::readPng(path("repeated.png"), image));
        return image;
    }

    static double distance(const Options &o) { return length(*o.camera.position - *o.camera.focalPoint); }

    static constexpr std::array<int, 3> sides{48, 40, 36};
};

TEST_F(ViewerWindow, ShowsThePictureThatIsDrawnWithoutADisplay)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--opaque", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage shown = atRest();
    const Options state = quit();
    EXPECT_EQ(state.input, "ball.nii");
    EXPECT_TRUE(state.opaque.enabled);
    // The same driver by another road; what a state keeps of the camera is its place, not how it was found.
    EXPECT_TRUE(test::imagesMatch(shown, repeated(), {1, 0.001, 0.1}));
}

TEST_F(ViewerWindow, ALeftDragTurnsAroundTheMiddleAndTheStateRepeatsThePicture)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--opaque", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage before = atRest();
    drag(1, 320, 240, 440, 180);
    const test::RgbaImage behind = atRest();
    EXPECT_FALSE(test::imagesMatch(behind, before, {8, 0.02}));
    const Options state = quit();
    ASSERT_TRUE(state.camera.position && state.camera.focalPoint);
    EXPECT_TRUE(test::imagesMatch(behind, repeated(), {1, 0.001, 0.1}));
}

TEST_F(ViewerWindow, MiddleAndShiftDragMoveSidewaysAndWheelAndRightDragChangeTheDistance)
{
    const std::vector<std::string> arguments{"ball.nii", "--no-panel",           "--camera-position",
                                             "200,0,0",  "--camera-focal-point", "0,0,0"};
    ASSERT_NO_FATAL_FAILURE(start(arguments, "ball.nii - Tessaly"));
    const double height = 2.0 * 200.0 * std::tan(15.0 * 3.14159265358979323846 / 180.0);

    // A quarter of the height to the right: the camera goes left, which is -y from +x.
    drag(2, 320, 240, 440, 240);
    atRest();
    Options state = quit();
    EXPECT_NEAR((*state.camera.focalPoint)[1], -0.25 * height, 1e-6);
    EXPECT_NEAR((*state.camera.focalPoint)[2], 0.0, 1e-6);
    EXPECT_NEAR(distance(state), 200.0, 1e-6);

    ASSERT_NO_FATAL_FAILURE(start(arguments, "ball.nii - Tessaly"));
    person->pressKey(0xffe1); // Shift
    drag(1, 320, 240, 320, 360);
    person->releaseKey(0xffe1);
    atRest();
    state = quit();
    EXPECT_NEAR((*state.camera.focalPoint)[2], 0.25 * height, 1e-6) << "what is seen goes down with the hand";

    ASSERT_NO_FATAL_FAILURE(start(arguments, "ball.nii - Tessaly"));
    person->moveTo(window, 320, 240);
    person->wheel(3);
    atRest();
    state = quit();
    EXPECT_NEAR(distance(state), 200.0 * 0.9 * 0.9 * 0.9, 1e-6);
    EXPECT_EQ(*state.camera.focalPoint, (Vec3{0, 0, 0}));

    ASSERT_NO_FATAL_FAILURE(start(arguments, "ball.nii - Tessaly"));
    drag(3, 320, 240, 320, 360);
    atRest();
    EXPECT_NEAR(distance(quit()), 200.0 * std::exp(0.5), 1e-6);
}

TEST_F(ViewerWindow, KeysTurnToTheAxesAndBackToTheFirstView)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--opaque", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage first = atRest();
    key("x");
    const test::RgbaImage x = atRest();
    key("z");
    const test::RgbaImage z = atRest();
    person->pressKey(0xffe1);
    key("z");
    person->releaseKey(0xffe1);
    const test::RgbaImage below = atRest();
    EXPECT_NE(x.bytes, first.bytes);
    EXPECT_NE(z.bytes, x.bytes);
    EXPECT_NE(below.bytes, z.bytes);
    key("r");
    EXPECT_EQ(atRest().bytes, first.bytes);
    key("y");
    atRest();
    const Options state = quit();
    const Vec3 offset = *state.camera.position - *state.camera.focalPoint;
    EXPECT_NEAR(offset[0], 0.0, 1e-9);
    EXPECT_GT(offset[1], 0.0);
    EXPECT_NEAR(offset[2], 0.0, 1e-9);
}

TEST_F(ViewerWindow, TheOpaqueObjectComesAndGoesByKey)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage without = atRest();
    key("o");
    const test::RgbaImage with = atRest();
    EXPECT_NE(with.bytes, without.bytes);
    key("o");
    EXPECT_TRUE(test::imagesMatch(atRest(), without, {1, 0.0}));
    EXPECT_FALSE(quit().opaque.enabled);
}

TEST_F(ViewerWindow, HelpAndPanelComeAndGoByKey)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage bare = atRest();
    key("h");
    const test::RgbaImage help = atRest();
    EXPECT_FALSE(test::imagesMatch(help, bare, {8, 0.05}, "help"));
    key("h");
    EXPECT_EQ(atRest().bytes, bare.bytes);
    key("Tab");
    const test::RgbaImage panel = atRest();
    EXPECT_NE(panel.at(20, height - 20), bare.at(20, height - 20)) << "the panel's upper left corner";
    EXPECT_EQ(panel.at(width - 20, 20), bare.at(width - 20, 20));
    key("Tab");
    EXPECT_EQ(atRest().bytes, bare.bytes);
    quit();
}

TEST_F(ViewerWindow, AScreenshotIsTheRefinedPictureWithoutThePanelAndOverwritesNothing)
{
    std::ofstream(path("tessaly.png")) << "somebody's picture";
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii"}, "ball.nii - Tessaly"));
    key("p");
    atRest();
    quit();
    test::RgbaImage shot;
    ASSERT_TRUE(test::readPng(path("tessaly-001.png"), shot));
    std::string kept;
    std::getline(std::ifstream(path("tessaly.png")), kept);
    EXPECT_EQ(kept, "somebody's picture");
    EXPECT_TRUE(test::imagesMatch(shot, repeated(), {1, 0.001, 0.1}));
}

TEST_F(ViewerWindow, APointOfTheCurveIsAddedDraggedAndRemovedWithTheMouse)
{
    const std::vector<std::string> arguments{
        "ball.nii", "--opacity-points", "0,0,0.2,0,1,0.8", "--color-points", "0,1,0,0,1,1,1,1", "--shading",
        "dvr"};
    ASSERT_NO_FATAL_FAILURE(start(arguments, "ball.nii - Tessaly"));
    const test::RgbaImage before = atRest();
    // The curve lies below the title and two lines of text.
    const int left = 30;
    const int bottom = 220;
    drag(1, left + 160, bottom - 100, left + 200, bottom - 20);
    const test::RgbaImage behind = atRest();
    EXPECT_NE(before.at(440, height / 2), behind.at(440, height / 2)) << "the ball looks otherwise";
    Options state = quit();
    ASSERT_TRUE(state.points);
    ASSERT_EQ(state.points->opacity.size(), 4u);
    const OpacityPoint added = state.points->opacity[2];
    EXPECT_GT(added.position, 0.2f);
    EXPECT_LT(added.opacity, 0.3f) << "it was dragged down";

    // Its place in the window, out of where it was dragged to.
    ASSERT_NO_FATAL_FAILURE(start({"--load-state", "end.ini"}, "ball.nii - Tessaly"));
    click(left + 200, bottom - 20, 3);
    atRest();
    state = quit();
    ASSERT_TRUE(state.points);
    EXPECT_EQ(state.points->opacity.size(), 3u);
}

TEST_F(ViewerWindow, AWidgetOfThePanelChangesTheOptions)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--shading", "dvr"}, "ball.nii - Tessaly"));
    const test::RgbaImage before = atRest();
    // The check box of gradient modulation stands below the list of shadings.
    click(28, 412);
    const test::RgbaImage behind = atRest();
    EXPECT_NE(before.bytes, behind.bytes);
    EXPECT_TRUE(quit().gradientModulation.enabled);
}

TEST_F(ViewerWindow, AResizedWindowShowsAPictureOfItsSize)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--opaque", "--no-panel"}, "ball.nii - Tessaly"));
    person->resizeWindow(window, 500, 300);
    until("the new size", [&] { return now().width == 500; });
    const test::RgbaImage shown = atRest();
    const Options state = quit();
    EXPECT_EQ(state.width, 500);
    EXPECT_EQ(state.height, 300);
    EXPECT_TRUE(test::imagesMatch(shown, repeated(), {1, 0.001, 0.1}));
}

TEST_F(ViewerWindow, FilesThatAreDroppedAreShown)
{
    writeNifti("other one \xc3\xbc.nii", {24, 24, 60}, {1, 1, 1}, 16, ball({24, 24, 60}, 80, 3000));
    std::ofstream(path("red.txt")) << "2\n0 0\n1 1\n2\n0 1 0 0\n1 1 0 0\n";
    std::ofstream(path("junk.xyz")) << "x";
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--no-panel"}, "ball.nii - Tessaly"));
    const test::RgbaImage first = atRest();
    ASSERT_TRUE(person->dropFiles(window, {path("other one \xc3\xbc.nii")}, 300, 200));
    until("another title", [&] { return person->titleOf(window) == "other one \xc3\xbc.nii - Tessaly"; });
    const test::RgbaImage second = atRest();
    EXPECT_NE(second.bytes, first.bytes);
    ASSERT_TRUE(person->dropFiles(window, {path("red.txt")}, 300, 200));
    const test::RgbaImage red = atRest();
    const test::RgbaImage::Pixel middle = red.at(width / 2, height / 2);
    EXPECT_GT(middle[0], 2 * middle[1]) << "the function was taken";
    ASSERT_TRUE(person->dropFiles(window, {path("junk.xyz")}, 300, 200));
    EXPECT_EQ(atRest().bytes, red.bytes) << "what can't be shown leaves the picture";
    const Options state = quit();
    EXPECT_EQ(state.input, path("other one \xc3\xbc.nii"));
    EXPECT_TRUE(test::imagesMatch(red, repeated(), {1, 0.001, 0.1}));
}

TEST_F(ViewerWindow, AnEmptyWindowWaitsForAScan)
{
    ASSERT_NO_FATAL_FAILURE(start({}, "Tessaly"));
    const test::RgbaImage empty = atRest();
    ASSERT_TRUE(person->dropFiles(window, {path("ball.nii")}, 300, 200));
    until("the title of the scan", [&] { return person->titleOf(window) == "ball.nii - Tessaly"; });
    EXPECT_NE(atRest().bytes, empty.bytes);
    quit();
}

TEST_F(ViewerWindow, TheCloseButtonEndsTheProgramAndTheStateIsSaved)
{
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii"}, "ball.nii - Tessaly"));
    person->closeWindow(window);
    EXPECT_EQ(wait(), 0);
    EXPECT_TRUE(exists("end.ini"));
}

TEST_F(ViewerWindow, WhileTheHandMovesThePictureIsCoarserAndBehindItRefined)
{
    // Slow enough that full detail can't follow: a fine step in a lit volume.
    ASSERT_NO_FATAL_FAILURE(start({"ball.nii", "--no-panel", "--step", "0.0005"}, "ball.nii - Tessaly"));
    const test::RgbaImage before = atRest();
    person->moveTo(window, 320, 240);
    person->press(1);
    test::RgbaImage moving;
    for (int i = 0; i < 20; ++i)
    {
        person->moveTo(window, 320 + (i % 2), 240);
        usleep(50000);
        moving = now();
    }
    EXPECT_GT(test::differenceOf(moving, before).mean, 0.02);
    EXPECT_TRUE(test::imagesMatch(moving, before, {40, 0.1})) << "but not another picture";
    person->moveTo(window, 320, 240);
    person->release(1);
    EXPECT_TRUE(test::imagesMatch(atRest(), before, {2, 0.001}));
    quit();
}

} // namespace
