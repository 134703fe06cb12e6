// Whole pictures of the reference against closed forms and against one another.
#include "reference/RayCaster.h"
#include "reference/Reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace reference;

namespace
{

// A cube of edge 1, seen from far away through a narrow angle: rays are almost parallel to z.
Scene narrowScene(const Volume &volume)
{
    Scene scene;
    scene.volume = volume;
    scene.dimensions = {1.0, 1.0, 1.0};
    scene.geometry = GeometryType::Box;
    scene.camera.beaconToWorld = translation(0.0, 0.0, 50.0);
    scene.camera.fov = 2.0 * std::atan(0.6 / 50.0);
    scene.camera.nearPlane = 10.0;
    scene.camera.farPlane = 100.0;
    scene.width = 25;
    scene.height = 25;
    return scene;
}

// A tilted view of a cube of edge 2 in which no ray runs along an axis.
Scene tiltedScene(const Volume &volume)
{
    Scene scene;
    scene.volume = volume;
    scene.dimensions = {2.0, 2.0, 2.0};
    scene.camera.beaconToWorld = lookAt({1.7, 1.3, 3.1}, {0.05, 0.02, 0.0}, {0.0, 1.0, 0.0});
    scene.camera.fov = 0.8;
    scene.camera.nearPlane = 0.5;
    scene.camera.farPlane = 20.0;
    scene.width = 48;
    scene.height = 40;
    scene.background = {0.25f, 0.5f, 0.125f};
    return scene;
}

// The same colour and opacity for every value.
TransferSource flatTransfer(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha)
{
    TransferSource source;
    for(int i = 0; i < 256; ++i)
        source.bytes.insert(source.bytes.end(), {red, green, blue, alpha});
    return source;
}

// Opacity and white colour only for the upper half of the values.
TransferSource upperHalf()
{
    TransferSource source;
    for(int i = 0; i < 256; ++i)
    {
        const auto value = static_cast<std::uint8_t>(i < 128 ? 0 : 2 * (i - 128));
        source.bytes.insert(source.bytes.end(), {255, value, 64, value});
    }
    return source;
}

float greatest(const Color &a, const Color &b)
{
    return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

// The picture as a window would show it.
std::vector<std::uint8_t> shown(const Picture &picture)
{
    std::vector<std::uint8_t> bytes;
    for(const Color &color : picture.pixels)
        for(const float channel : {color.r, color.g, color.b})
            bytes.push_back(static_cast<std::uint8_t>(std::lround(channel * 255.0f)));
    return bytes;
}

}

TEST(ReferencePicture, ConstantOpacityFollowsTheClosedForm)
{
    for(const bool preintegrated : {false, true})
        for(const float step : {0.004f, 0.01f})
        {
            Scene scene = narrowScene(constantVolume(16, 16, 16, 8, 100));
            scene.transfer = flatTransfer(255, 128, 0, 3);
            scene.preintegrated = preintegrated;
            scene.stepSize = step;
            scene.background = {0.25f, 0.25f, 0.25f};
            const Picture picture = render(scene);
            const std::size_t at = picture.index(12, 12);
            const int samples = picture.samples[at];
            EXPECT_NEAR(samples, 1.0 / step, 1.0);
            const double alpha = 1.0 - std::pow(1.0 - 3.0 / 255.0, samples * step * 200.0);
            // The table of pairs keeps half floats of opacity and of weighted colour.
            const double slack = preintegrated ? 2e-3 : 1e-4;
            EXPECT_NEAR(picture.pixels[at].r, 0.25 * (1.0 - alpha) + alpha * alpha, slack);
            EXPECT_NEAR(picture.pixels[at].g, 0.25 * (1.0 - alpha) + alpha * alpha * 128.0 / 255.0, slack);
            EXPECT_NEAR(picture.pixels[at].b, 0.25 * (1.0 - alpha), slack);
            EXPECT_FALSE(picture.reasons[at] & (Undefined | Edge | TexturePrecision));
        }
}

TEST(ReferencePicture, WidePreintegrationOfAConstantVolumeFollowsTheClosedForm)
{
    Scene scene = narrowScene(constantVolume(16, 16, 16, 16, 30000));
    for(int i = 0; i < 65536; ++i)
        scene.transfer.halves.insert(scene.transfer.halves.end(), {1.0f, 0.5f, 0.0f, 0.015625f});
    for(const bool preintegrated : {false, true})
    {
        scene.preintegrated = preintegrated;
        const Picture picture = render(scene);
        const std::size_t at = picture.index(12, 12);
        const double alpha = 1.0 - std::pow(1.0 - 0.015625, picture.samples[at] * 0.8);
        EXPECT_NEAR(picture.pixels[at].r, alpha * alpha, 3e-3) << preintegrated;
        EXPECT_NEAR(picture.pixels[at].g, 0.5 * alpha * alpha, 3e-3) << preintegrated;
    }
}

TEST(ReferencePicture, RayEndsEarlyAtTheOpacityThreshold)
{
    Scene scene = narrowScene(constantVolume(16, 16, 16, 8, 100));
    scene.transfer = flatTransfer(255, 255, 255, 51);
    const Picture picture = render(scene);
    const std::size_t at = picture.index(12, 12);
    // (1 - 0.2) to the power 0.8 n falls to 0.02 at n = 21.9.
    EXPECT_EQ(picture.samples[at], 22);
}

TEST(ReferencePicture, MaximumOfARampAcrossTheViewIsTheRamp)
{
    Scene scene = narrowScene(rampVolume(16, 16, 16, 8, 0, 240));
    scene.shading = ShadingType::Mip;
    const Picture picture = render(scene);
    for(int x = 4; x < 21; ++x)
    {
        const std::size_t at = picture.index(x, 12);
        const float inVolume = picture.front[at].x; // rays lean outwards by 1 part in 100 at most
        const double ramp = std::clamp((inVolume * 16.0 - 0.5) / 15.0, 0.0, 1.0) * 240.0 / 255.0;
        EXPECT_NEAR(picture.pixels[at].r, ramp * 1.0, 0.012) << x;
        EXPECT_EQ(picture.pixels[at].r, picture.pixels[at].b);
    }
}

TEST(ReferencePicture, XRaySumIsTheLineIntegral)
{
    Scene scene = narrowScene(constantVolume(16, 16, 16, 8, 64));
    scene.shading = ShadingType::XRay;
    scene.stepSize = 0.001f;
    const Picture picture = render(scene);
    // The outer half voxels fade to half their value towards the border's 0.
    const double integral = 64.0 / 255.0 * (1.0 - 0.25 / 16.0);
    EXPECT_NEAR(picture.pixels[picture.index(12, 12)].g, 2.0 * integral, 2.0 * 64.0 / 255.0 * 0.0015);
}

TEST(ReferencePicture, PaddedEightBitVolumesAreClampedToTheEdgeAndOthersToTheBorder)
{
    // Only x has padding, so that the face towards the eye shows the wrap alone.
    const auto face = [](int width, int bits, std::uint16_t value) {
        Scene scene = narrowScene(constantVolume(width, 16, 16, bits, value));
        scene.shading = ShadingType::XRay;
        scene.stepSize = 0.001f;
        const Picture picture = render(scene);
        return picture.pixels[picture.index(9, 12)].r;
    };
    const double whole = 2.0 * 64.0 / 255.0;
    EXPECT_NEAR(face(15, 8, 64), whole, whole * 0.0015);
    EXPECT_NEAR(face(16, 8, 64), whole * (1.0 - 0.25 / 16.0), whole * 0.0015);
    EXPECT_NEAR(face(15, 16, 64 * 257), whole * (1.0 - 0.25 / 16.0), whole * 0.0015);
}

TEST(ReferencePicture, InterleavedRaysStartAtFourOffsets)
{
    Scene scene = narrowScene(constantVolume(8, 8, 8, 8, 10));
    scene.shading = ShadingType::Mip;
    scene.ray = RayType::Interleaved;
    scene.stepSize = 0.0078125f;
    const BlockGrid blocks = {{1, 1, 1}, {255}};
    const RayCaster caster(scene, scene.volume, false, transferTable({}, 8), blocks, {0.0f, 0.0f, 1.0f});
    const float expected[2][2] = {{0.375f, 0.625f}, {0.875f, 1.125f}}; // by x, then by y
    for(int x = 0; x < 2; ++x)
        for(int y = 0; y < 2; ++y)
        {
            // The shortest ray that takes 5 samples is 5 steps and the offset long.
            int thousandths = 5000;
            const auto samples = [&] {
                const float length = static_cast<float>(thousandths) / 1000.0f * scene.stepSize;
                return caster.cast({0.5f, 0.5f, 0.75f, 1.0f}, {0.0f, 0.6f, -0.8f, length}, 6 + x, 4 + y, {})
                    .samples;
            };
            while(samples() < 5 && thousandths < 8000)
                ++thousandths;
            EXPECT_NEAR(thousandths / 1000.0f - 5.0f, expected[x][y], 0.0015f) << x << ' ' << y;
        }
}

TEST(ReferencePicture, SimpleTraversalStopsAt1764AndTakesAtLeastOneSample)
{
    Scene scene = narrowScene(constantVolume(8, 8, 8, 8, 10));
    scene.shading = ShadingType::Mip;
    scene.stepSize = 0.0005f;
    Picture picture = render(scene);
    EXPECT_EQ(picture.samples[picture.index(12, 12)], 1764);
    scene.stepSize = 3.0f;
    picture = render(scene);
    EXPECT_EQ(picture.samples[picture.index(12, 12)], 1);
    EXPECT_EQ(picture.samples[picture.index(0, 0)], 0);
}

TEST(ReferencePicture, BlockTraversalStopsAt2040)
{
    Scene scene = narrowScene(constantVolume(8, 8, 8, 8, 10));
    scene.shading = ShadingType::Mip;
    scene.traversal = TraversalType::BlockSkipping;
    scene.stepSize = 0.0004f;
    const Picture picture = render(scene);
    EXPECT_EQ(picture.samples[picture.index(12, 12)], 2040);
}

TEST(ReferencePicture, EmptyBlocksTakeNoSample)
{
    Scene scene = tiltedScene(constantVolume(16, 16, 16, 8, 10));
    scene.transfer = upperHalf();
    scene.geometry = GeometryType::Box;
    scene.traversal = TraversalType::BlockSkipping;
    const Picture picture = render(scene);
    for(std::size_t at = 0; at < picture.pixels.size(); ++at)
    {
        EXPECT_EQ(picture.samples[at], 0);
        EXPECT_EQ(greatest(picture.pixels[at], scene.background), 0.0f);
    }
    scene.geometry = GeometryType::Boundary;
    const Picture bounded = render(scene);
    EXPECT_EQ(
        std::count_if(bounded.front.begin(), bounded.front.end(), [](const Vec4f &f) { return f.w > 0.0f; }),
        0);
}

TEST(ReferencePicture, SkippingEmptySpaceDoesNotChangeThePicture)
{
    // Three roads to the same picture, from two sides: all samples, blocks skipped, rays started at visible
    // blocks.
    for(const double side : {1.0, -1.0})
    {
        Scene scene = tiltedScene(blobVolume(40, 48, 32, 8, 255, 17));
        scene.width = 96;
        scene.height = 80;
        scene.camera.beaconToWorld =
            lookAt({side * 1.7, side * 1.3, side * 3.1}, {0.05, 0.02, 0.0}, {0.0, 1.0, 0.0});
        scene.transfer = upperHalf();
        scene.geometry = GeometryType::Box;
        const Picture all = render(scene);
        scene.traversal = TraversalType::BlockSkipping;
        const Picture skipped = render(scene);
        scene.traversal = TraversalType::Simple;
        scene.geometry = GeometryType::Boundary;
        const Picture bounded = render(scene);
        long long taken = 0;
        long long takenSkipping = 0;
        int lit = 0;
        int off = 0;
        for(std::size_t at = 0; at < all.pixels.size(); ++at)
        {
            taken += all.samples[at];
            takenSkipping += skipped.samples[at];
            lit += greatest(all.pixels[at], scene.background) > 0.05f;
            if((skipped.reasons[at] | bounded.reasons[at]) & Undefined)
                continue;
            off += greatest(all.pixels[at], skipped.pixels[at]) > 1.0f / 255.0f;
            off += greatest(all.pixels[at], bounded.pixels[at]) > 1.0f / 255.0f;
        }
        EXPECT_GT(lit, 100);
        EXPECT_EQ(off, 0);
        EXPECT_LT(takenSkipping, taken / 2);
    }
}

TEST(ReferencePicture, LightAlongTheNormalGivesAllThreeTerms)
{
    // Values fall towards the eye, so the normal looks at it, and the light stands behind the eye.
    Volume volume = rampVolume(16, 16, 16, 8, 2, 240);
    std::reverse(volume.voxels.begin(), volume.voxels.end());
    Scene scene = narrowScene(volume);
    scene.shading = ShadingType::LitDvr;
    scene.transfer = flatTransfer(102, 51, 0, 51);
    scene.light.diffuse = {1.0f, 0.5f, 1.0f};
    scene.light.specular = {0.25f, 0.25f, 0.125f};
    for(const NormalType normal :
        {NormalType::Precomputed, NormalType::CentralDifferences, NormalType::Sobel})
    {
        scene.normal = normal;
        const Picture picture = render(scene);
        const std::size_t at = picture.index(12, 12);
        const int samples = picture.samples[at];
        EXPECT_LT(samples, 40);
        const double alpha = 1.0 - std::pow(0.8, 0.8 * samples);
        // The normal bytes' zero stands for a little below zero, which dims the highlight.
        const double slack = normal == NormalType::Precomputed ? 5e-3 : 1e-3;
        const double red = 0.4 * (0.5 + 0.75) + 0.25;
        const double green = 0.2 * (0.5 + 0.75 * 0.5) + 0.25;
        EXPECT_NEAR(picture.pixels[at].r, red * alpha * alpha, slack);
        EXPECT_NEAR(picture.pixels[at].g, green * alpha * alpha, slack);
        EXPECT_NEAR(picture.pixels[at].b, 0.125 * alpha * alpha, slack);
    }
}

TEST(ReferencePicture, LightFromBehindLeavesTheEmissiveTerm)
{
    // Values rise towards the eye: normals look away. The padding in x clamps the texture to its edge, so
    // that no rim turns a gradient round.
    Scene scene = narrowScene(rampVolume(15, 16, 16, 8, 2, 240));
    scene.shading = ShadingType::LitDvr;
    scene.transfer = flatTransfer(255, 255, 255, 51);
    const Picture picture = render(scene);
    const std::size_t at = picture.index(11, 12);
    const double alpha = 1.0 - std::pow(0.8, 0.8 * picture.samples[at]);
    EXPECT_NEAR(picture.pixels[at].r, 0.5 * alpha * alpha, 1e-3);
}

TEST(ReferencePicture, GradientModulationOfOneChangesNothing)
{
    Scene scene = narrowScene(rampVolume(16, 16, 16, 8, 0, 240));
    scene.transfer = flatTransfer(255, 255, 255, 3);
    const Picture plain = render(scene);
    scene.gradientModulation = true;
    scene.kgc = 1.0f;
    scene.kgs = 0.0f;
    const Picture same = render(scene);
    const std::size_t at = plain.index(12, 12);
    EXPECT_GT(plain.pixels[at].r, 0.5f);
    EXPECT_NEAR(plain.pixels[at].r, same.pixels[at].r, 1e-6f);
}

TEST(ReferencePicture, GradientModulationScalesByThePowerOfTheRawMagnitude)
{
    // Slope 16 per voxel in x alone: 15 voxels are padded to 16, which clamps the texture to its edge in z.
    Scene scene = narrowScene(rampVolume(15, 16, 16, 8, 0, 224));
    scene.transfer = flatTransfer(255, 255, 255, 3);
    scene.gradientModulation = true;
    scene.kgc = 0.125f;
    scene.kgs = 20.0f;
    scene.kge = 2.0f;
    for(const bool sobel : {false, true})
    {
        scene.normal = sobel ? NormalType::Sobel : NormalType::CentralDifferences;
        const Picture picture = render(scene);
        const std::size_t at = picture.index(10, 12);
        const double slope = 2.0 * 16.0 / 255.0;
        const double magnitude = sobel ? slope * 16.0 / 32.0 : slope / 6.0;
        const double perSample =
            (1.0 - std::pow(1.0 - 3.0 / 255.0, 0.8)) * (0.125 + 20.0 * magnitude * magnitude);
        const double alpha = 1.0 - std::pow(1.0 - perSample, picture.samples[at]);
        EXPECT_NEAR(picture.pixels[at].r, alpha * alpha, 1e-4) << sobel;
        EXPECT_GT(picture.pixels[at].r, 0.05f);
    }
}

TEST(ReferencePicture, ZeroGradientsUnderLightAreMarkedUndefined)
{
    Scene scene = narrowScene(constantVolume(16, 16, 16, 8, 100));
    scene.transfer = flatTransfer(255, 255, 255, 3);
    scene.shading = ShadingType::LitDvr;
    const Picture lit = render(scene);
    EXPECT_TRUE(lit.reasons[lit.index(12, 12)] & Undefined);
    scene.shading = ShadingType::Dvr;
    const Picture plain = render(scene);
    EXPECT_FALSE(plain.reasons[plain.index(12, 12)] & Undefined);
}

TEST(ReferencePicture, RayAlongAnAxisBesideAnEmptyBlockIsMarkedUndefined)
{
    Volume volume = constantVolume(16, 16, 16, 8, 0);
    for(std::size_t n = 0; n < volume.voxels.size() / 2; ++n)
        volume.voxels[n] = 100;
    Scene scene = narrowScene(volume);
    scene.transfer = flatTransfer(255, 255, 255, 0);
    scene.traversal = TraversalType::BlockSkipping;
    const Picture picture = render(scene);
    EXPECT_TRUE(picture.reasons[picture.index(12, 12)] & Undefined);
    EXPECT_FALSE(picture.reasons[picture.index(9, 7)] & Undefined);
}

TEST(ReferencePicture, RoundingAtTheEntryFaceOffersASecondColour)
{
    Scene scene = narrowScene(constantVolume(15, 16, 16, 8, 100));
    scene.stepSize = 0.1f;
    scene.transfer = flatTransfer(255, 255, 255, 3);
    scene.traversal = TraversalType::BlockSkipping;
    const Picture picture = render(scene);
    const std::size_t at = picture.index(9, 11);
    ASSERT_TRUE(picture.reasons[at] & Alternative);
    // One sample more or fewer of a corrected opacity.
    const auto color = [](int samples) {
        const double alpha = 1.0 - std::pow(1.0 - 3.0 / 255.0, samples * 20.0);
        return alpha * alpha;
    };
    const int samples = picture.samples[at];
    EXPECT_NEAR(picture.pixels[at].r, color(samples), 1e-4);
    for(int n = 0; n < picture.alternatives[at].count; ++n)
    {
        const float other = picture.alternatives[at].colors[n].r;
        EXPECT_LT(std::min(std::abs(other - color(samples - 1)), std::abs(other - color(samples + 1))), 1e-4);
    }
}

TEST(ReferencePicture, ComparisonFindsWhatDiffersAndOnlyThat)
{
    Scene scene = tiltedScene(cloudVolume(24, 20, 28, 16, 4000, 5, 7));
    const Picture picture = render(scene);
    std::vector<std::uint8_t> bytes = shown(picture);
    Comparison same = compare(picture, bytes.data(), 3, 1.0f);
    EXPECT_GT(same.judged, 1000);
    EXPECT_EQ(same.agreeing, same.judged);
    EXPECT_LE(same.worst, 0.5f / 255.0f + 1e-5f);
    const std::size_t at = picture.index(24, 20);
    ASSERT_FALSE(picture.reasons[at] & (Undefined | Edge | TexturePrecision));
    bytes[at * 3 + 1] = static_cast<std::uint8_t>(bytes[at * 3 + 1] ^ 0x80);
    const Comparison spoilt = compare(picture, bytes.data(), 3, 2.0f);
    EXPECT_EQ(spoilt.agreeing, spoilt.judged - 1);
    EXPECT_EQ(spoilt.worstX, 24);
    EXPECT_EQ(spoilt.worstY, 20);
    EXPECT_GT(spoilt.worst, 0.4f);
    EXPECT_EQ(compare(Picture(), bytes.data(), 3, 2.0f).share(), 0.0);
}

TEST(ReferencePicture, WhatRoundingMovesIsMarked)
{
    // A camera moved by a few millionths stands for the rounding of another machine: but for the marked
    // pixels the picture must stay.
    for(int kind = 0; kind < 32; ++kind)
    {
        const bool wide = (kind & 1) != 0;
        Scene scene = tiltedScene(cloudVolume(30, 24, 26, wide ? 16 : 8, wide ? 65000 : 255, 6, 100u + kind));
        scene.preintegrated = (kind & 2) != 0;
        scene.shading = (kind & 4) != 0 ? ShadingType::LitDvr : ShadingType::Dvr;
        scene.traversal = (kind & 8) != 0 ? TraversalType::BlockSkipping : TraversalType::Simple;
        scene.geometry = (kind & 8) != 0 ? GeometryType::Boundary : GeometryType::Box;
        scene.ray = (kind & 16) != 0 ? RayType::Interleaved : RayType::Simple;
        scene.stepSize = 0.02f;
        OpaqueBox box;
        box.toWorld = rotation(1, 0.4) * rotation(0, 0.3);
        box.color = {0.9f, 0.1f, 0.2f};
        scene.boxes = {box};
        const Picture picture = render(scene);
        scene.camera.beaconToWorld = translation(2e-6, -1e-6, 3e-6) * scene.camera.beaconToWorld;
        const std::vector<std::uint8_t> bytes = shown(render(scene));
        const Comparison comparison = compare(picture, bytes.data(), 3, 1.0f);
        EXPECT_GE(comparison.share(), 0.999) << "kind " << kind << ", worst " << comparison.worst * 255.0f
                                             << " at " << comparison.worstX << ' ' << comparison.worstY;
        EXPECT_GT(comparison.judged, 48 * 40 / 2)
            << "kind " << kind << ": " << comparison.undefined << " undefined, " << comparison.edge
            << " edge, " << comparison.precision << " imprecise";
    }
}

TEST(ReferencePicture, UnknownVoxelsGiveAnEmptyPicture)
{
    Scene scene = narrowScene(constantVolume(8, 8, 8, 32, 1));
    EXPECT_TRUE(render(scene).pixels.empty());
    scene.volume = Volume();
    EXPECT_TRUE(render(scene).pixels.empty());
}
