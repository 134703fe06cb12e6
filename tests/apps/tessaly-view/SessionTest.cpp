/// \file
/// The session in this process: frames, and changes between them.

#include "Program.h"
#include "Session.h"
#include "StdoutGuard.h"

#include "support/Png.h"

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGEGLContext.h>
#include <OpenSG/OSGGL.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <utility>

namespace
{

using namespace viewer;

class SessionTest : public program::ProgramTest
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

    /// Opens and loads what the options name.
    void open(Session &session, const Options &o, std::vector<std::string> *notices = nullptr)
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        std::string error;
        Scan scan;
        ASSERT_TRUE(session.open(o.width, o.height, error)) << error;
        ASSERT_TRUE(scan.read(o.input, error)) << error;
        const auto note = [&](const std::string &line)
        {
            ASSERT_NE(notices, nullptr) << line;
            notices->push_back(line);
        };
        ASSERT_TRUE(session.load(std::move(scan), o, note, error)) << error;
    }

    test::RgbaImage picture(Session &session)
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        std::string error;
        test::RgbaImage image;
        EXPECT_TRUE(session.write(path("picture.png"), error)) << error;
        EXPECT_TRUE(test::readPng(path("picture.png"), image));
        return image;
    }

    /// The picture of a session of its own.
    test::RgbaImage fresh(const Options &o)
    {
        Session session;
        open(session, o);
        return picture(session);
    }

    /// How many bytes differ by more than the rounding of a float that was reached in two ways.
    static std::size_t differing(const test::RgbaImage &a, const test::RgbaImage &b)
    {
        EXPECT_EQ(a.bytes.size(), b.bytes.size());
        std::size_t count = 0;
        for (std::size_t i = 0; i < a.bytes.size(); ++i)
        {
            count += std::abs(int(a.bytes[i]) - int(b.bytes[i])) > 1;
        }
        return count;
    }

    /// A tetrahedron in front of the ball.
    void writeMesh()
    {
        std::ofstream(path("mesh.ply"))
            << "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
               "property float z\nelement face 4\nproperty list uchar int vertex_indices\n"
               "end_header\n0 0 30\n30 0 -10\n-10 25 -10\n-10 -25 -10\n"
               "3 0 1 2\n3 0 2 3\n3 0 3 1\n3 1 3 2\n";
    }

    Options options;
};

TEST_F(SessionTest, AfterThePictureAFurtherFrameChangesNothing)
{
    Session session;
    open(session, options);
    EXPECT_FALSE(session.settled());
    const test::RgbaImage first = picture(session);
    EXPECT_TRUE(session.settled());
    const test::RgbaImage second = picture(session);
    EXPECT_EQ(first.bytes, second.bytes);
    EXPECT_NE(first.at(32, 24), first.at(0, 0));
}

TEST_F(SessionTest, CameraAndTransferFunctionMayChangeBetweenFrames)
{
    Session session;
    open(session, options);
    const test::RgbaImage before = picture(session);

    CameraRequest farAway;
    farAway.position = Vec3{500, 0, 0};
    session.setCamera(farAway);
    EXPECT_NE(picture(session).bytes, before.bytes);

    session.setCamera(CameraRequest());
    EXPECT_EQ(picture(session).bytes, before.bytes);

    session.setTransferFunction({{{0, 0}, {1, 0}}, {{0, 0, 0, 0}, {1, 1, 1, 1}}});
    const test::RgbaImage nothing = picture(session);
    EXPECT_EQ(nothing.at(32, 24), nothing.at(0, 0)) << "nothing is visible";
}

TEST_F(SessionTest, TwoSessionsTakeTurnsAndDrawTheSame)
{
    Session a;
    Session b;
    open(a, options);
    open(b, options);
    const test::RgbaImage first = picture(a);
    EXPECT_EQ(picture(b).bytes, first.bytes);
    EXPECT_EQ(picture(a).bytes, first.bytes);
}

TEST_F(SessionTest, EveryOptionChangedLaterGivesThePictureOfOneThatBeganWithIt)
{
    writeMesh();
    const std::vector<std::pair<const char *, std::function<void(Options &)>>> changes = {
        {"dvr", [](Options &o) { o.shading = Shading::Dvr; }},
        {"mip", [](Options &o) { o.shading = Shading::Mip; }},
        {"xray", [](Options &o) { o.shading = Shading::Xray; }},
        {"material",
         [](Options &o) {
             o.material = {{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}, {0.7, 0.8, 0.9}, Material::defaultShininess};
         }},
        {"shininess",
         [](Options &o)
         {
             o.material.specular = {1, 1, 1};
             o.material.shininess = 0.9;
         }},
        {"shininess and geometry",
         [](Options &o)
         {
             o.material.specular = {1, 1, 1};
             o.material.shininess = 0.02;
             o.geometry = BoundingGeometry::Box;
         }},
        {"step", [](Options &o) { o.step = 0.02; }},
        {"ray", [](Options &o) { o.ray = Ray::Interleaved; }},
        {"geometry", [](Options &o) { o.geometry = BoundingGeometry::Box; }},
        {"traversal", [](Options &o) { o.traversal = Traversal::Block; }},
        {"precomputed normals", [](Options &o) { o.normals = Normals::Precomputed; }},
        {"sobel normals", [](Options &o) { o.normals = Normals::Sobel; }},
        {"pre-integrated", [](Options &o) { o.preIntegrated = true; }},
        {"gradient modulation",
         [](Options &o) {
             o.gradientModulation = {true, 0.2, 3.0, 0.7};
         }},
        {"a box", [](Options &o) { o.opaque.enabled = true; }},
        {"another box",
         [](Options &o) {
             o.opaque = {true, "", {0.1, 2, 0.1}, {0.3, 0, 0}, {1, 0, 0}};
         }},
        {"a mesh",
         [this](Options &o)
         {
             o.opaque.enabled = true;
             o.opaque.file = path("mesh.ply");
         }},
        {"background",
         [](Options &o) {
             o.background = {0.5, 0.25, 1};
         }},
        {"camera", [](Options &o) { o.camera.azimuth = 70; }},
        {"preset", [](Options &o) { o.preset = "microscopy"; }},
        {"points",
         [](Options &o)
         {
             // The camera stays where it is until it is asked for anew.
             o.points = TransferPoints{{{0, 0}, {1, 1}}, {{0, 0, 1, 0}, {1, 1, 0, 0}}};
             o.camera.azimuth = 5;
         }},
    };
    const test::RgbaImage plain = fresh(options);
    Session session;
    open(session, options);
    for (const auto &[name, change] : changes)
    {
        SCOPED_TRACE(name);
        Options changed = options;
        change(changed);
        std::string error;
        ASSERT_TRUE(session.apply(changed, error)) << error;
        const test::RgbaImage live = picture(session);
        EXPECT_EQ(differing(live, fresh(changed)), 0u);
        if (std::string(name) != "traversal") // which leaps over what isn't seen
        {
            EXPECT_NE(live.bytes, plain.bytes) << "the change shows";
        }
        ASSERT_TRUE(session.apply(options, error)) << error;
        EXPECT_EQ(differing(picture(session), plain), 0u) << "and back";
    }
}

TEST_F(SessionTest, AnotherSizeGivesThePictureOfThatSize)
{
    Session session;
    open(session, options);
    picture(session);
    Options larger = options;
    larger.width = 96;
    larger.height = 96;
    std::string error;
    ASSERT_TRUE(session.apply(larger, error)) << error;
    const test::RgbaImage live = picture(session);
    EXPECT_EQ(live.width, 96);
    EXPECT_EQ(live.height, 96);
    EXPECT_EQ(live.bytes, fresh(larger).bytes);
    session.resize(64, 48);
    EXPECT_EQ(picture(session).bytes, fresh(options).bytes);
}

TEST_F(SessionTest, AnotherScanTakesThePlaceOfTheFirst)
{
    const std::array<int, 3> sides{24, 48, 32};
    writeNifti("other.nii", sides, {1, 1, 2}, 16, program::ball(sides, 80, 3000));
    Options other = options;
    other.input = path("other.nii");
    Session session;
    open(session, options);
    picture(session);
    const auto show = [&](const Options &o)
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        Scan scan;
        std::string error;
        ASSERT_TRUE(scan.read(o.input, error)) << error;
        ASSERT_TRUE(session.load(std::move(scan), o, {}, error)) << error;
    };
    show(other);
    EXPECT_EQ(session.facts().voxels, sides);
    EXPECT_EQ(picture(session).bytes, fresh(other).bytes);
    show(options);
    EXPECT_EQ(picture(session).bytes, fresh(options).bytes);
}

TEST_F(SessionTest, WhatCannotBeDoneIsToldAndLeavesThePicture)
{
    Session session;
    open(session, options);
    const test::RgbaImage before = picture(session);
    std::string error;

    Options wrong = options;
    wrong.transferFunction = path("none.txt");
    EXPECT_FALSE(session.apply(wrong, error));
    EXPECT_EQ(error, path("none.txt") + ": No such file or directory");
    EXPECT_EQ(picture(session).bytes, before.bytes);

    wrong = options;
    wrong.opaque.enabled = true;
    wrong.opaque.file = path("none.ply");
    EXPECT_FALSE(session.apply(wrong, error));
    EXPECT_EQ(error, path("none.ply") + ": could not be read");
    EXPECT_EQ(picture(session).bytes, before.bytes);
    EXPECT_FALSE(session.options().opaque.enabled);
}

TEST_F(SessionTest, APresetInHounsfieldUnitsNeedsAScanThatSaysWhatItsValuesStandFor)
{
    osg::ImagePtr image = osg::Image::create();
    const std::vector<std::uint8_t> voxels(8, 1);
    ASSERT_TRUE(image->set(osg::Image::OSG_L_PF, 2, 2, 2, 1, 1, 0.0, voxels.data()));
    Scan scan;
    std::string error;
    ASSERT_TRUE(scan.take(image, "the array", error)) << error;
    Session session;
    ASSERT_TRUE(session.open(16, 16, error)) << error;
    options.preset = "ct-bone";
    const StdoutGuard guard(StdoutGuard::To::Nowhere);
    EXPECT_FALSE(session.load(std::move(scan), options, {}, error));
    EXPECT_EQ(error,
              "preset ct-bone needs Hounsfield units, the volume does not say what its values stand for");
    EXPECT_FALSE(session.loaded());
}

TEST_F(SessionTest, ValuesThatAreTakenForHounsfieldUnitsAreToldUnlessTheFileNamesThem)
{
    for (const bool named : {false, true})
    {
        osg::ImagePtr image = osg::Image::create();
        const std::vector<std::uint8_t> voxels(8, 200);
        ASSERT_TRUE(image->set(osg::Image::OSG_L_PF, 2, 2, 2, 1, 1, 0.0, voxels.data()));
        image->setAttachmentField("ValueScale", "10 -1000");
        if (named)
        {
            image->setAttachmentField("ValueUnit", "HU");
        }
        Scan scan;
        std::string error;
        std::string said;
        ASSERT_TRUE(scan.take(image, "array", error)) << error;
        Session session;
        ASSERT_TRUE(session.open(16, 16, error)) << error;
        options.preset = "ct-bone";
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        ASSERT_TRUE(session.load(
            std::move(scan), options, [&](const std::string &line) { said = line; }, error))
            << error;
        EXPECT_EQ(
            said,
            named ? ""
                  : "array: its values are taken for Hounsfield units, the file does not name their unit");
        // 150 units are stored as 115.
        EXPECT_NEAR(session.points().opacity[1].position, 115.0 / 256.0, 1e-6);
    }
}

TEST_F(SessionTest, ADragOfTheTransferFunctionShowsInTheNextFrameWithoutTheVoxelsGoingUpAgain)
{
    Session session;
    open(session, options);
    const test::RgbaImage before = picture(session);

    // The voxels on the GPU are replaced behind the library's back: were they brought up again, the ball
    // would be back.
    using Replace =
        void (*)(GLenum, GLint, GLint, GLint, GLint, GLsizei, GLsizei, GLsizei, GLenum, GLenum, const void *);
    const auto replace = reinterpret_cast<Replace>(osg::EGLContextHandle::getProcAddress("glTexSubImage3D"));
    ASSERT_NE(replace, nullptr);
    const std::vector<std::uint8_t> nothing(40 * 40 * 40, 1);
    int replaced = 0;
    for (GLuint name = 1; name < 100; ++name)
    {
        GLint width = 0;
        while (glGetError() != GL_NO_ERROR)
        {
        }
        glBindTexture(GL_TEXTURE_3D, name);
        if (glGetError() == GL_NO_ERROR && glIsTexture(name))
        {
            glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, GL_TEXTURE_WIDTH, &width);
        }
        if (width == 40)
        {
            glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
            replace(GL_TEXTURE_3D, 0, 0, 0, 0, 40, 40, 40, GL_LUMINANCE, GL_UNSIGNED_BYTE, nothing.data());
            ++replaced;
        }
    }
    glBindTexture(GL_TEXTURE_3D, 0);
    ASSERT_EQ(replaced, 1) << "there is one texture of voxels";

    TransferPoints points = session.points();
    points.opacity[2].opacity = 0.6f;
    session.setTransferFunction(points);
    session.draw();
    EXPECT_TRUE(session.settled()) << "one frame is enough";
    const test::RgbaImage behind = picture(session);
    EXPECT_EQ(behind.at(32, 24), behind.at(0, 0)) << "the ball is gone for good";
    EXPECT_NE(before.at(32, 24), before.at(0, 0));
}

TEST_F(SessionTest, LessDetailIsASmallerPictureInTheCornerAndEndsWithThePicture)
{
    Session session;
    open(session, options);
    const test::RgbaImage before = picture(session);
    session.setDetail({2.0, 2});
    EXPECT_FALSE(session.settled());
    std::vector<std::uint8_t> pixels(64 * 48 * 4);
    for (int frame = 0; frame < 2; ++frame)
    {
        session.draw([&] { glReadPixels(0, 0, 64, 48, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data()); });
    }
    const auto red = [&](int x, int y) { return int(pixels[static_cast<std::size_t>(4 * (x + 64 * y))]); };
    EXPECT_GT(red(16, 12), red(1, 1) + 30) << "the ball is in the middle of the lower left quarter";
    EXPECT_EQ(picture(session).bytes, before.bytes);
}

TEST_F(SessionTest, TheTimesOfAFrameAddUp)
{
    Session session;
    open(session, options);
    picture(session);
    FrameTimes times;
    session.draw([] {}, &times);
    EXPECT_GT(times.passes, 0.0);
    EXPECT_GT(times.rays, 0.0);
    EXPECT_NEAR(times.total, times.prepare + times.passes + times.rays + times.over, 1e-9);
}

TEST_F(SessionTest, AVolumeOfAnySizeIsWholeAndHasItsMiddleAtTheOrigin)
{
    // The library pads volumes to whole blocks of 8 voxels.
    options.width = 96;
    options.height = 96;
    options.camera.position = Vec3{60, 0, 0};
    options.camera.focalPoint = Vec3{0, 0, 0};
    options.camera.viewAngle = 30.0;
    options.points = TransferPoints{{{0, 0}, {0.3f, 0}, {0.5f, 1}, {1, 1}}, {{0, 1, 0.5f, 0}, {1, 1, 1, 1}}};
    for (const int side : {16, 17, 20, 23, 24})
    {
        SCOPED_TRACE(side);
        const std::array<int, 3> sides{side, side, side};
        const float spacing = 20.0f / static_cast<float>(side); // a ball of radius 8, whatever the voxels
        writeNifti("any.nii", sides, {spacing, spacing, spacing}, 8, program::ball(sides, 0, 150));
        options.input = path("any.nii");
        const test::RgbaImage image = fresh(options);
        int low[2] = {96, 96};
        int high[2] = {-1, -1};
        for (int y = 0; y < 96; ++y)
        {
            for (int x = 0; x < 96; ++x)
            {
                const bool seen = image.at(x, y) != image.at(0, 0);
                const int place[2] = {x, y};
                for (int axis = 0; seen && axis < 2; ++axis)
                {
                    low[axis] = std::min(low[axis], place[axis]);
                    high[axis] = std::max(high[axis], place[axis]);
                }
                const double away = std::hypot(x - 47.5, y - 47.5);
                EXPECT_TRUE(seen || away > 19.0) << "a hole at " << x << ", " << y;
            }
        }
        // The ball is 48 pixels high; a voxel at its edge is 3.
        for (int axis = 0; axis < 2; ++axis)
        {
            EXPECT_NEAR(low[axis] + high[axis], 95, 3) << axis;
            EXPECT_NEAR(high[axis] - low[axis], 48, 6) << axis;
        }
    }
}

TEST_F(SessionTest, AVolumeOverTheMemoryLimitIsReducedAndLooksTheSameFromAfar)
{
    options.points = TransferPoints{{{0, 0}, {0.3f, 0}, {0.6f, 1}, {1, 1}}, {{0, 1, 0.5f, 0}, {1, 1, 1, 1}}};
    options.maxMemory = 8000.0 / (1 << 20); // 20 voxels along each axis
    std::vector<std::string> notices;
    Session session;
    open(session, options, &notices);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0],
              path("ball.nii") +
                  ": 40 x 40 x 40 voxels reduced to 20 x 20 x 20, --max-memory allows 0.00763 MiB");
    EXPECT_EQ(session.facts().extent, (Vec3{40, 40, 40}));
    const test::RgbaImage small = picture(session);
    options.maxMemory = 0.0;
    const test::RgbaImage whole = fresh(options);
    double sum = 0.0;
    for (std::size_t i = 0; i < whole.bytes.size(); ++i)
    {
        sum += std::abs(int(small.bytes[i]) - int(whole.bytes[i]));
    }
    EXPECT_LT(sum / static_cast<double>(whole.bytes.size()), 8.0)
        << "edges are softer, the picture is the same";
    EXPECT_GT(sum, 0.0);
}

TEST_F(SessionTest, AVolumeLongerThanGlTakesIsReducedAndDrawn)
{
    GLint largest = 0;
    {
        Session probe;
        std::string error;
        ASSERT_TRUE(probe.open(16, 16, error)) << error;
        glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &largest);
    }
    ASSERT_GE(largest, 16);
    const std::array<int, 3> sides{largest + 2, 8, 8};
    writeNifti("long.nii", sides, {1, 100, 100}, 8,
               [&](int x, int, int) { return x > largest / 3 ? 200 : 5; });
    options.input = path("long.nii");
    std::vector<std::string> notices;
    Session session;
    open(session, options, &notices);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0], options.input + ": " + std::to_string(largest + 2) + " x 8 x 8 voxels reduced to " +
                              std::to_string(largest / 2 + 1) + " x 8 x 8, this machine's GL takes " +
                              std::to_string(largest) + " along an axis");
    const test::RgbaImage image = picture(session);
    std::size_t lit = 0;
    for (int y = 0; y < 48; ++y)
    {
        for (int x = 0; x < 64; ++x)
        {
            lit += image.at(x, y) != image.at(0, 0);
        }
    }
    EXPECT_GT(lit, 200u) << "no black picture";
}

} // namespace
