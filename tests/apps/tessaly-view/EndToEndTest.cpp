/// \file
/// The program from a file to a picture, and from a wrong file to a line.

#include "Program.h"

#include "support/Png.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace
{

using namespace program;

constexpr std::array<int, 3> sides{48, 40, 36};

/// 0.07, 0.08, 0.11 of 255, rounded.
constexpr int background[3] = {18, 20, 28};

int away(const test::RgbaImage &picture, int x, int y, const int *color)
{
    const test::RgbaImage::Pixel p = picture.at(x, y);
    int most = 0;
    for (int c = 0; c < 3; ++c)
    {
        most = std::max(most, std::abs(int(p[static_cast<std::size_t>(c)]) - color[c]));
    }
    return most;
}

/// How many pixels are not of the background.
int drawn(const test::RgbaImage &picture, const int *color = background)
{
    int count = 0;
    for (int y = 0; y < picture.height; ++y)
    {
        for (int x = 0; x < picture.width; ++x)
        {
            count += away(picture, x, y, color) > 3;
        }
    }
    return count;
}

class EndToEnd : public ProgramTest
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        writeNifti("ball.nii.gz", sides, {1, 1, 1}, 8, ball(sides, 8, 150));
    }

    test::RgbaImage picture(const std::string &name) const
    {
        test::RgbaImage image;
        EXPECT_TRUE(test::readPng(path(name), image)) << name;
        return image;
    }

    /// Draws and expects nothing to be said but where the picture is.
    test::RgbaImage draw(std::vector<std::string> more, const std::string &scan = "ball.nii.gz") const
    {
        std::vector<std::string> arguments{scan, "-o", "out.png", "--size", "96,64"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, "out.png: 96 x 64 pixels\n");
        return picture("out.png");
    }
};

/// What a ball looks like: in the middle something, at the corners the background, and no more than frames
/// leave it.
void expectBall(const test::RgbaImage &p, const int *color = background)
{
    ASSERT_EQ(p.width, 96);
    ASSERT_EQ(p.height, 64);
    EXPECT_LE(away(p, 0, 0, color), 1);
    EXPECT_LE(away(p, 95, 0, color), 1);
    EXPECT_LE(away(p, 0, 63, color), 1);
    EXPECT_LE(away(p, 95, 63, color), 1);
    EXPECT_GT(away(p, 48, 32, color), 40);
    // The picture's height is 64, a frame takes 0.9 of it: a disc of 57 pixels has 2600 of them.
    EXPECT_GT(drawn(p, color), 1800);
    EXPECT_LT(drawn(p, color), 3000);
}

TEST_F(EndToEnd, AVolumeBecomesAPictureOfItsOwnTransferFunction)
{
    expectBall(draw({}));
}

TEST_F(EndToEnd, VolumesOf16BitsAndOf12BitsInThemLookAlikeWithBytesSwappedToo)
{
    writeNifti("full.nii", sides, {1, 1, 1}, 16, ball(sides, 2048, 38400));
    writeNifti("twelve.nii", sides, {1, 1, 1}, 16, ball(sides, 128, 2400));
    writeNifti("swapped.nii", sides, {1, 1, 1}, 16,
               [](int x, int y, int z)
               {
                   const int v = ball(sides, 2048, 38400)(x, y, z);
                   return (v >> 8) | ((v & 255) << 8);
               });
    expectBall(draw({}, "full.nii"));
    expectBall(draw({}, "twelve.nii"));
    expectBall(draw({"--swapped"}, "swapped.nii"));
}

TEST_F(EndToEnd, EveryWayOfDrawingGivesAPicture)
{
    const std::vector<std::vector<std::string>> ways = {
        {"--shading", "dvr"},
        {"--shading", "mip"},
        {"--shading", "xray"},
        {"--ray", "interleaved"},
        {"--geometry", "box"},
        {"--traversal", "block"},
        {"--normals", "pre"},
        {"--normals", "sobel"},
        {"--pre-integrated"},
        {"--gradient-modulation", "--retained-opacity", "0.5", "--boundary-opacity", "0.5",
         "--opacity-factor", "1"},
        {"--step", "0.01"},
    };
    for (const std::vector<std::string> &way : ways)
    {
        SCOPED_TRACE(way.back());
        const test::RgbaImage p = draw(way);
        EXPECT_LE(away(p, 0, 63, background), 1);
        EXPECT_GT(drawn(p), 1500);
    }
}

TEST_F(EndToEnd, TheBackgroundIsTheOneAskedFor)
{
    const int green[3] = {51, 255, 102};
    expectBall(draw({"--background", "0.2,1,0.4"}), green);
}

TEST_F(EndToEnd, AnOpaqueBoxStopsTheRaysThatReachIt)
{
    // A plate as large as the volume's side, pure blue, between its middle and the viewer.
    const test::RgbaImage ahead =
        draw({"--camera-position", "150,0,0", "--opaque", "--opaque-size", "0.02,1,1", "--opaque-center",
              "0.45,0,0", "--opaque-color", "0,0,1"});
    const test::RgbaImage::Pixel front = ahead.at(48, 32);
    EXPECT_GT(front[2], front[0] + 60) << "ahead of the ball the plate hides it";

    const test::RgbaImage behind =
        draw({"--camera-position", "150,0,0", "--opaque", "--opaque-size", "0.02,1,1", "--opaque-center",
              "-0.45,0,0", "--opaque-color", "0,0,1"});
    const test::RgbaImage::Pixel back = behind.at(48, 32);
    EXPECT_GT(back[0], back[2]) << "behind it the ball hides the plate";
}

TEST_F(EndToEnd, CameraOptionsMoveThePicture)
{
    const int small = drawn(draw({"--zoom", "0.5"}));
    const int whole = drawn(draw({}));
    EXPECT_NEAR(static_cast<double>(whole) / small, 4.0, 0.6);
    EXPECT_EQ(drawn(draw({"--camera-position", "150,0,0", "--camera-focal-point", "300,0,0"})), 0);
}

TEST_F(EndToEnd, SpacingStretchesTheVolume)
{
    writeNifti("tall.nii", sides, {1, 1, 3}, 8, ball(sides, 8, 150));
    const test::RgbaImage p = draw({"--camera-position", "400,0,0"}, "tall.nii");
    int width = 0;
    int height = 0;
    for (int x = 0; x < p.width; ++x)
    {
        width += away(p, x, 32, background) > 20;
    }
    for (int y = 0; y < p.height; ++y)
    {
        height += away(p, 48, y, background) > 20;
    }
    // 0.8 of 40 mm across, 0.8 of 108 mm upwards.
    EXPECT_NEAR(static_cast<double>(height) / width, 2.7, 0.4);
}

TEST_F(EndToEnd, ATransferFunctionFileIsUsed)
{
    std::ofstream(path("red.txt")) << "4  0 0  0.25 0  0.25 1  1 1\n2  0 1 0 0  1 1 0 0\n";
    const test::RgbaImage p = draw({"--transfer-function", "red.txt", "--shading", "dvr"});
    const test::RgbaImage::Pixel middle = p.at(48, 32);
    EXPECT_GT(middle[0], 200);
    EXPECT_LT(middle[1], 30);
    EXPECT_LT(middle[2], 30);
}

TEST_F(EndToEnd, QuietSaysNothing)
{
    const Outcome outcome = run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--quiet"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(exists("out.png"));
}

TEST_F(EndToEnd, VerboseTellsOnStandardErrorWhatHappens)
{
    const Outcome outcome = run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--verbose"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "out.png: 32 x 32 pixels\n");
    EXPECT_NE(outcome.err.find("8Bit\n"), std::string::npos);
    EXPECT_NE(outcome.err.find("New volume texture was set..."), std::string::npos);
}

TEST_F(EndToEnd, InfoTellsWhatWasReadAndDrawsNothing)
{
    writeNifti("scan.nii", {4, 3, 2}, {0.5f, 1, 2}, 16, [](int x, int, int) { return x == 3 ? 1000 : 10; });
    const Outcome outcome = run({"scan.nii", "--info", "-o", "out.png"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "file        scan.nii\n"
                           "voxels      4 x 3 x 2\n"
                           "type        16 bits\n"
                           "spacing     0.5 x 1 x 2\n"
                           "extent      2 x 3 x 4\n"
                           "memory      0.0 MiB\n"
                           "values      10 to 1000\n"
                           "background  up to 504\n");
    EXPECT_FALSE(exists("out.png"));
}

TEST_F(EndToEnd, WrongFilesAreToldInOneLineAndLeaveNoPicture)
{
    writeNifti("cut.nii", sides, {1, 1, 1}, 8, ball(sides, 8, 150), 5000);
    writeNifti("flat.nii", {4, 4, 1}, {1, 1, 1}, 8, [](int, int, int) { return 1; });
    std::ofstream(path("junk.nii")) << "this is no scan";
    std::ofstream(path("empty.nii.gz"));
    std::ofstream(path("scan.mha")) << "x";
    std::ofstream(path("broken.txt")) << "2\n0 0\n1 many\n";

    struct Case
    {
        std::vector<std::string> arguments;
        std::string line; ///< the whole line, or its begin where it ends in '*'
    };
    const std::vector<Case> cases = {
        {{"no.nii", "-o", "out.png"}, "tessaly-view: no.nii: No such file or directory"},
        {{".", "-o", "out.png"}, "tessaly-view: .: no DICOM files in this folder"},
        {{"scan.mha", "-o", "out.png"},
         "tessaly-view: scan.mha: unknown suffix, volumes end in .nii, .nii.gz, .dat, .tif, .tiff, .nrrd, "
         ".nhdr, .dcm or "
         ".ima"},
        {{"cut.nii", "-o", "out.png"}, "tessaly-view: *cut.nii"},
        {{"junk.nii", "-o", "out.png"}, "tessaly-view: *junk.nii"},
        {{"empty.nii.gz", "-o", "out.png"}, "tessaly-view: *empty.nii.gz"},
        {{"flat.nii", "-o", "out.png"},
         "tessaly-view: flat.nii: has 4 x 4 x 1 voxels, a volume has at least 2 along each axis"},
        {{"ball.nii.gz", "-o", "no/out.png"}, "tessaly-view: no: No such file or directory"},
        {{"ball.nii.gz", "-o", "out.jpg"}, "tessaly-view: out.jpg: unknown suffix, pictures end in .png"},
        {{"ball.nii.gz", "-o", "out.png", "--transfer-function", "none.txt"},
         "tessaly-view: none.txt: No such file or directory"},
        {{"ball.nii.gz", "-o", "out.png", "--transfer-function", "broken.txt"},
         "tessaly-view: broken.txt:3: the opacity of opacity point 2 is 'many', not a number"},
    };
    for (const Case &wrong : cases)
    {
        SCOPED_TRACE(wrong.line);
        const Outcome outcome = run(wrong.arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        const std::size_t star = wrong.line.find('*');
        if (star == std::string::npos)
        {
            EXPECT_EQ(outcome.err, wrong.line + "\n");
        }
        else
        {
            EXPECT_EQ(outcome.err.rfind(wrong.line.substr(0, star), 0), 0u) << outcome.err;
            EXPECT_NE(outcome.err.find(wrong.line.substr(star + 1)), std::string::npos) << outcome.err;
        }
        EXPECT_FALSE(exists("out.png"));
    }
}

TEST_F(EndToEnd, AWrongCommandLineEndsWithStatusTwo)
{
    const Outcome outcome = run({"ball.nii.gz", "-o", "out.png", "--step", "0"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "tessaly-view: --step: 0 is out of range, it must be 0.0001 to 1\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(EndToEnd, AWarningOfATransferFunctionFileDoesNotStopTheProgram)
{
    std::ofstream(path("short.txt")) << "2 0 0 0.5 1 1 1 1 1 1";
    const Outcome outcome =
        run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--transfer-function", "short.txt"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.err,
        "tessaly-view: warning: short.txt: the opacity points end below position 1, so the last opacity "
        "holds for all values\n");
}

TEST_F(EndToEnd, ATurntableGoesAllAround)
{
    const Outcome outcome =
        run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--opaque", "--turntable", "4"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "out-000.png: 32 x 32 pixels\nout-001.png: 32 x 32 pixels\nout-002.png: 32 x 32 pixels\n"
              "out-003.png: 32 x 32 pixels\n");
    EXPECT_FALSE(exists("out.png"));
    for (int i = 0; i < 4; ++i)
    {
        const std::string turned = "out-00" + std::to_string(i) + ".png";
        const Outcome single = run({"ball.nii.gz", "-o", "one.png", "--size", "32,32", "--opaque",
                                    "--azimuth", std::to_string(90 * i)});
        EXPECT_EQ(single.status, 0);
        test::RgbaImage a;
        test::RgbaImage b;
        ASSERT_TRUE(test::readPng(path(turned), a));
        ASSERT_TRUE(test::readPng(path("one.png"), b));
        EXPECT_EQ(a.bytes, b.bytes) << turned;
    }
}

TEST_F(EndToEnd, ASavedStateRepeatsThePicture)
{
    const Outcome first = run({"ball.nii.gz", "-o", "a.png", "--size", "48,32", "--preset", "microscopy",
                               "--azimuth", "33", "--opaque", "--step", "0.01", "--save-state", "state.ini"});
    EXPECT_EQ(first.status, 0) << first.err;
    const Outcome second = run({"--load-state", "state.ini", "-o", "b.png"});
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.out, "b.png: 48 x 32 pixels\n");
    test::RgbaImage a;
    test::RgbaImage b;
    ASSERT_TRUE(test::readPng(path("a.png"), a));
    ASSERT_TRUE(test::readPng(path("b.png"), b));
    EXPECT_EQ(a.bytes, b.bytes);
}

TEST_F(EndToEnd, ASavedTransferFunctionIsTheOneOfThePicture)
{
    EXPECT_EQ(
        run({"ball.nii.gz", "-o", "a.png", "--size", "48,32", "--save-transfer-function", "tf.txt"}).status,
        0);
    EXPECT_EQ(run({"ball.nii.gz", "-o", "b.png", "--size", "48,32", "--transfer-function", "tf.txt"}).status,
              0);
    test::RgbaImage a;
    test::RgbaImage b;
    ASSERT_TRUE(test::readPng(path("a.png"), a));
    ASSERT_TRUE(test::readPng(path("b.png"), b));
    EXPECT_EQ(a.bytes, b.bytes);
    const Outcome nowhere =
        run({"ball.nii.gz", "-o", "c.png", "--size", "48,32", "--save-transfer-function", "no/tf.txt"});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.err, "tessaly-view: no: No such file or directory\n");
    EXPECT_FALSE(exists("c.png")) << "what can't be written is found ahead of the work";
}

TEST_F(EndToEnd, AReducedVolumeIsToldWithBothSizes)
{
    const Outcome outcome = run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--max-memory", "0.01"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("tessaly-view: ball.nii.gz: 48 x 40 x 36 voxels reduced to "),
              std::string::npos)
        << outcome.err;
    EXPECT_NE(outcome.err.find(", --max-memory allows 0.01 MiB\n"), std::string::npos) << outcome.err;
    EXPECT_EQ(run({"ball.nii.gz", "-o", "out.png", "--size", "32,32", "--max-memory", "0.01", "-q"}).err, "");
}

TEST_F(EndToEnd, WithoutADisplayThereIsNoWindowAndAPictureAllTheSame)
{
    // Tests run without DISPLAY, as a machine without a screen does.
    ASSERT_EQ(std::getenv("DISPLAY"), nullptr);
    const Outcome window = run({"ball.nii.gz"});
    EXPECT_EQ(window.status, 1);
    EXPECT_NE(window.err.find("DISPLAY"), std::string::npos) << window.err;
    EXPECT_NE(window.err.find("tessaly-view: no window could be opened; --output FILE draws without one\n"),
              std::string::npos)
        << window.err;
    EXPECT_EQ(run({"ball.nii.gz", "-o", "out.png", "--size", "32,32"}).status, 0);
}

} // namespace
