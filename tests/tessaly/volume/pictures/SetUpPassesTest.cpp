/// \file
/// What the passes leave in the textures: where rays start, their direction and length, the opaque scene.

#include "Subjects.h"
#include "VolumeStage.h"

#include <OpenSG/OSGBaseInitFunctions.h>

#include <cmath>

using namespace reference;
using test::StageTexture;
using test::VolumeStage;

namespace
{

constexpr int side = 48;

// The rasteriser puts corners on a grid of 1/256 pixel. A pixel here spans less than 0.04 of the volume, and
// faces seen at a flat angle several times that.
constexpr float pointSlack = 1e-3f;

class SetUpPasses : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }

    SetUpPasses() : stage(side, side) {}

    /// Draws the scene, and reads what the passes have left.
    Picture draw(const Scene &scene)
    {
        stage.show(scene);
        picture = stage.picture();
        front = stage.floats(StageTexture::Front, 4);
        back = stage.floats(StageTexture::Back, 4);
        return render(scene);
    }

    static float off(const float *actual, const Vec4f &expected)
    {
        return std::max({std::abs(actual[0] - expected.x), std::abs(actual[1] - expected.y),
                         std::abs(actual[2] - expected.z)});
    }

    VolumeStage stage;
    test::RgbaImage picture;
    std::vector<float> front;
    std::vector<float> back;
};

/// The scenes that the tests go through: both geometries, from outside and within, without and with opaque
/// boxes.
std::vector<Scene> setUps()
{
    std::vector<Scene> scenes;
    for(int which = 0; which < 8; ++which)
    {
        Scene scene = test::sceneOf(which % 2 == 0 ? 8 : 16, side);
        scene.geometry = which / 2 % 2 == 0 ? GeometryType::Box : GeometryType::Boundary;
        scene.camera = which / 4 == 0 ? test::outside() : test::inside();
        if(which % 2 == 0)
            scene.boxes = test::twoBoxes();
        scenes.push_back(scene);
    }
    return scenes;
}

TEST_F(SetUpPasses, LeaveEntryPointsAndCoverageInTheFrontTexture)
{
    for(const Scene &scene : setUps())
    {
        const Picture expected = draw(scene);
        int judged = 0;
        int far = 0;
        int covered = 0;
        float worst = 0.0f;
        for(std::size_t at = 0; at < expected.front.size(); ++at)
        {
            if(expected.reasons[at] & Edge)
                continue;
            ++judged;
            const float *const entry = &front[4 * at];
            EXPECT_EQ(entry[3], expected.front[at].w) << "coverage of pixel " << at;
            covered += entry[3] == 1.0f ? 1 : 0;
            const float difference = off(entry, expected.front[at]);
            worst = std::max(worst, difference);
            far += difference > pointSlack ? 1 : 0;
        }
        EXPECT_GT(judged, side * side * 3 / 4);
        EXPECT_GT(covered, side * side / 8);
        EXPECT_EQ(far, 0) << "worst " << worst;
    }
}

TEST_F(SetUpPasses, LeaveDirectionsAndLengthsCutAtTheSceneInTheBackTexture)
{
    int cut = 0;
    for(const Scene &scene : setUps())
    {
        const Picture expected = draw(scene);
        Scene empty = scene;
        empty.boxes.clear();
        const Picture uncut = render(empty);
        int judged = 0;
        int far = 0;
        float worst = 0.0f;
        for(std::size_t at = 0; at < expected.back.size(); ++at)
        {
            if(expected.reasons[at] & Edge)
                continue;
            ++judged;
            const float *const ray = &back[4 * at];
            const Vec4f &wanted = expected.back[at];
            cut += wanted.w < uncut.back[at].w - 0.05f && ray[3] < uncut.back[at].w - 0.05f ? 1 : 0;
            // The direction of a short way through the volume is known less well.
            const float slack = pointSlack * std::max(1.0f, 1.0f / std::max(0.02f, uncut.back[at].w));
            const float difference =
                std::max(off(ray, wanted) / slack, std::abs(ray[3] - wanted.w) / (2 * pointSlack));
            worst = std::max(worst, difference);
            far += difference > 1.0f ? 1 : 0;
        }
        EXPECT_GT(judged, side * side * 3 / 4);
        EXPECT_EQ(far, 0) << "worst, in tolerances: " << worst;
    }
    EXPECT_GT(cut, 200) << "pixels at which the scene ends a ray";
}

TEST_F(SetUpPasses, LeaveColourAndDepthOfTheSceneWithoutTheVolume)
{
    Scene scene = test::sceneOf(8, side);
    scene.boxes = test::twoBoxes();
    const Picture expected = draw(scene);
    const std::vector<float> colors = stage.floats(StageTexture::SceneColor, 4);
    const std::vector<float> depths = stage.floats(StageTexture::SceneDepth, 1);
    int boxes = 0;
    for(std::size_t at = 0; at < expected.sceneColor.size(); ++at)
    {
        if(expected.reasons[at] & Edge)
            continue;
        const Color &color = expected.sceneColor[at];
        // Half floats.
        EXPECT_NEAR(colors[4 * at], color.r, 1e-3f);
        EXPECT_NEAR(colors[4 * at + 1], color.g, 1e-3f);
        EXPECT_NEAR(colors[4 * at + 2], color.b, 1e-3f);
        EXPECT_NEAR(depths[at], expected.sceneDepth[at], 2e-5f);
        boxes += depths[at] < 1.0f ? 1 : 0;
    }
    EXPECT_GT(boxes, 100);
}

TEST_F(SetUpPasses, FollowTheClosedFormForAViewAlongAnAxis)
{
    // An odd side: the ray of the pixel in the middle runs along -z.
    Scene scene = test::sceneOf(8, 33);
    scene.geometry = GeometryType::Box;
    scene.nodeToWorld = identity();
    scene.dimensions = {2.0, 2.0, 2.0};
    scene.camera = test::lookingFrom({0.0, 0.0, 4.0}, {0.0, 0.0, 0.0});
    draw(scene);
    const std::size_t middle = 4 * (16 * 33 + 16);
    const float entry[4] = {0.5f, 0.5f, 1.0f, 1.0f};
    const float ray[4] = {0.0f, 0.0f, -1.0f, 1.0f};
    for(std::size_t i = 0; i < 4; ++i)
    {
        EXPECT_NEAR(front[middle + i], entry[i], 1e-4f) << i;
        EXPECT_NEAR(back[middle + i], ray[i], 1e-4f) << i;
    }

    // A wall through the volume at z = -0.5 of -1 to 1, a quarter of the way before the end.
    OpaqueBox wall;
    wall.low = {-3.0, -3.0, -0.6};
    wall.high = {3.0, 3.0, -0.5};
    scene.boxes = {wall};
    draw(scene);
    EXPECT_NEAR(back[middle + 3], 0.75f, 1e-3f);

    // The same wall nearer than the volume.
    wall.low[2] = 1.1;
    wall.high[2] = 1.2;
    wall.color = {0.2f, 0.4f, 0.6f};
    scene.boxes = {wall};
    draw(scene);
    EXPECT_EQ(back[middle + 3], 0.0f);
    EXPECT_EQ(picture.at(16, 16), (test::RgbaImage::Pixel{51, 102, 153, 255}));

    // Behind the volume it changes nothing.
    wall.low[2] = -2.0;
    wall.high[2] = -1.9;
    scene.boxes = {wall};
    draw(scene);
    EXPECT_NEAR(back[middle + 3], 1.0f, 1e-4f);

    // An empty scene has the depth of the far plane.
    scene.boxes.clear();
    draw(scene);
    EXPECT_EQ(stage.floats(StageTexture::SceneDepth, 1)[middle / 4], 1.0f);
    EXPECT_NEAR(back[middle + 3], 1.0f, 1e-4f);
}

TEST_F(SetUpPasses, StartRaysOnTheNearPlaneWhereTheCameraIsInTheVolume)
{
    Scene scene = test::sceneOf(8, 33);
    scene.geometry = GeometryType::Box;
    scene.nodeToWorld = identity();
    scene.dimensions = {2.0, 2.0, 2.0};
    scene.camera = test::lookingFrom({0.0, 0.0, 0.6}, {0.0, 0.0, 0.0});
    scene.camera.nearPlane = 0.1;
    draw(scene);
    const std::size_t middle = 4 * (16 * 33 + 16);
    // The near plane lies at z = 0.5 of -1 to 1.
    EXPECT_NEAR(front[middle + 2], 0.75f, 1e-5f);
    EXPECT_EQ(front[middle + 3], 1.0f);
    EXPECT_NEAR(back[middle + 3], 0.75f, 1e-4f);
    EXPECT_NEAR(back[middle + 2], -1.0f, 1e-5f);
}

TEST_F(SetUpPasses, LeaveNoRayWhereTheGeometryCoversNothing)
{
    Scene scene = test::sceneOf(8, 33);
    scene.camera = test::lookingFrom({0.0, 0.0, 9.0}, {0.0, 0.0, 0.0});
    const Picture expected = draw(scene);
    // The corner looks past the volume: the near plane's point, not covered, and a back texture as it was
    // cleared.
    EXPECT_LT(off(front.data(), expected.front[0]), 1e-4f);
    for(const float value : {front[3], back[0], back[1], back[2], back[3]})
        EXPECT_EQ(value, 0.0f);
    EXPECT_EQ(picture.at(0, 0), (test::RgbaImage::Pixel{32, 64, 128, 255}));
}

TEST_F(SetUpPasses, EndRaysThroughTheGapsOfTheBoundaryAtItsFarthestFace)
{
    // Two slabs of blocks with an empty one between.
    Scene scene = test::sceneOf(8, 33);
    scene.volume = constantVolume(24, 24, 48, 8, 10);
    for(int z = 0; z < 48; ++z)
        for(int y = 0; y < 24; ++y)
            for(int x = 0; x < 24; ++x)
                if(z < 12 || z > 35)
                    scene.volume.voxels[scene.volume.index(x, y, z)] = 200;
    scene.nodeToWorld = identity();
    scene.dimensions = {2.0, 2.0, 2.0};
    scene.geometry = GeometryType::Boundary;
    scene.camera = test::lookingFrom({0.0, 0.0, 4.0}, {0.0, 0.0, 0.0});
    EXPECT_TRUE(stage.matches(scene, "slabs"));
    const std::size_t middle = 4 * (16 * 33 + 16);
    EXPECT_NEAR(stage.floats(StageTexture::Front, 4)[middle + 2], 1.0f, 1e-4f);
    EXPECT_NEAR(stage.floats(StageTexture::Back, 4)[middle + 3], 1.0f, 1e-4f);
}

} // namespace
