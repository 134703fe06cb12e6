// Single rays and single samples of the reference against numbers done by hand.
#include "reference/RayCaster.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace reference;

namespace
{

const BlockGrid oneBlock = {{1, 1, 1}, {255}};
const Vec3f toEye = {0.0f, 0.0f, 1.0f};

// A ray down the z axis from height z, so short that it takes one sample.
RayResult oneSample(const Scene &scene, float z, const Turn &turn = {})
{
    const std::vector<Entry> table = transferTable(scene.transfer, scene.volume.bits);
    const RayCaster caster(scene, scene.volume, false, table, oneBlock, toEye);
    return caster.cast({0.45f, 0.55f, z, 1.0f}, {0.0f, 0.0f, -1.0f, 1e-6f}, 0, 0, turn);
}

}

TEST(ReferenceRay, SamplesLieOnAGridFromWhereTheLineEntersTheCube)
{
    Scene scene;
    scene.volume = rampVolume(16, 16, 16, 8, 2, 240);
    scene.shading = ShadingType::Mip;
    scene.stepSize = 0.1f;
    // Entries between 0.8 and 0.7 below the face at 1 all begin at 0.8, one step or less before them.
    for(const float z : {0.79f, 0.75f, 0.71f})
    {
        const RayResult ray = oneSample(scene, z);
        EXPECT_EQ(ray.samples, 1);
        EXPECT_NEAR(ray.color.w, (0.8 * 16.0 - 0.5) / 15.0 * 240.0 / 255.0, 1e-4) << z;
        EXPECT_FALSE(ray.startDoubtful);
    }
}

TEST(ReferenceRay, EntryOnTheFaceBeginsOneStepBeforeItOrOnIt)
{
    Scene scene;
    scene.volume = constantVolume(16, 16, 16, 8, 255);
    scene.shading = ShadingType::Mip;
    scene.stepSize = 0.015625f; // a quarter voxel
    const RayResult before = oneSample(scene, 1.0f);
    EXPECT_TRUE(before.startDoubtful);
    EXPECT_NEAR(before.color.w, 0.25, 1e-5); // three quarters of a voxel behind the last one's middle
    const RayResult onIt = oneSample(scene, 1.0f, {true, false, false});
    EXPECT_NEAR(onIt.color.w, 0.5, 1e-5);
}

TEST(ReferenceRay, WideTableMixesTwoRowsHalfAndHalf)
{
    Scene scene;
    scene.volume = constantVolume(16, 16, 16, 16, 40000);
    scene.stepSize = 0.005f; // the step at which opacity is not corrected
    const RayResult ray = oneSample(scene, 0.5f);
    // The row's coordinate is a texel's border: rows 155 and 156 count half each.
    const double scaled = 40000.0 / 65535.0 * 256.0;
    const double column = (scaled - 156.0) * 256.0 - 0.5;
    const double alpha = (155.5 * 256.0 + column) / 65536.0;
    EXPECT_NEAR(ray.color.w, alpha, 2e-4);
    EXPECT_NEAR(ray.color.x, alpha * alpha, 4e-4);
}

TEST(ReferenceRay, PairTableAveragesFromThePreviousValue)
{
    Scene scene;
    scene.volume = constantVolume(16, 16, 16, 8, 100);
    scene.stepSize = 0.005f;
    scene.preintegrated = true;
    // Before the first sample the previous value is 0. The ramp's bytes are k - 1, their integral (k - 1)^2
    // / 2.
    const double k = 100.0 / 255.0 * 256.0 - 0.5;
    const RayResult ray = oneSample(scene, 0.5f);
    EXPECT_NEAR(ray.color.w, (k - 1.0) * (k - 1.0) / 2.0 / k / 255.0, 2e-4);
    // The colour is weighted by opacity: the integral of (k - 1)^2.
    EXPECT_NEAR(ray.color.x, std::pow(k - 1.0, 3.0) / 3.0 / k / 65025.0, 2e-4);
}

TEST(ReferenceRay, WideIntegralAveragesFromThePreviousValue)
{
    Scene scene;
    scene.volume = constantVolume(16, 16, 16, 16, 40000);
    scene.stepSize = 0.005f;
    scene.preintegrated = true;
    const double value = 40000.0 / 65535.0;
    const RayResult ray = oneSample(scene, 0.5f);
    EXPECT_NEAR(ray.color.w, value / 2.0, 2e-4);
    EXPECT_NEAR(ray.color.x, value * value / 3.0, 2e-4);
}

TEST(ReferenceRay, SkippingLandsOnTheFirstGridPointOfTheNextBlock)
{
    Scene scene;
    scene.volume = constantVolume(32, 32, 32, 8, 100);
    scene.shading = ShadingType::Mip;
    scene.traversal = TraversalType::BlockSkipping;
    scene.stepSize = 0.01f;
    const float length = 0.895f;                 // the last grid point before it is the 89th
    const Vec3f slope = {0.96f, 0.168f, 0.224f}; // of length 1
    for(const float way : {1.0f, -1.0f})
    {
        // The first two of four layers in x are empty, seen along the ray.
        BlockGrid blocks = {{4, 1, 1}, {0, 0, 255, 255}};
        if(way < 0.0f)
            blocks.verdicts = {255, 255, 0, 0};
        const RayCaster caster(scene, scene.volume, false, transferTable({}, 8), blocks, toEye);
        const float from = way > 0.0f ? 0.0255f : 1.0f - 0.0255f;
        const RayResult ray = caster.cast({from, 0.45f, 0.45f, 1.0f},
                                          {way * slope[0], way * slope[1], way * slope[2], length}, 0, 0, {});
        // The line enters the cube 2.656 steps before the ray does; the start moves back onto that grid.
        const double steps = 0.0255 / 0.96 / 0.01;
        const double back = (1.0 - (std::ceil(steps) - steps)) * 0.01;
        const double toBlock = (0.5 - 0.0255) / 0.96 + back;
        const int skippedSteps = static_cast<int>(std::ceil(toBlock / 0.01));
        EXPECT_EQ(ray.samples, 90 - skippedSteps) << way;
        EXPECT_FALSE(ray.undefined);
    }
}

TEST(ReferenceRay, SceneColourPassesThroughHalfFloats)
{
    Scene scene;
    scene.volume = constantVolume(8, 8, 8, 8, 0);
    scene.background = {0.3f, 0.6f, 0.1f};
    scene.width = 3;
    scene.height = 2;
    const Picture picture = render(scene);
    ASSERT_EQ(picture.pixels.size(), 6u);
    EXPECT_EQ(picture.sceneColor[0].r, throughHalf(0.3f));
    EXPECT_NE(picture.sceneColor[0].r, 0.3f);
    EXPECT_EQ(picture.sceneColor[5].b, throughHalf(0.1f));
}
