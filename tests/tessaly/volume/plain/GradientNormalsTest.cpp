#include "volume/GradientNormals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{

using tessaly::Sides;
using Bytes = std::vector<std::uint8_t>;

Bytes written(const Bytes &voxels, const Sides &sides, const std::string &channels)
{
    const std::size_t size = voxels.size() * channels.size();
    Bytes pixels(size + 8, 0x5a);
    EXPECT_TRUE(tessaly::writeGradientChannels(voxels.data(), sides, channels, pixels.data()));
    for(std::size_t i = size; i < pixels.size(); ++i)
        EXPECT_EQ(pixels[i], 0x5a);
    pixels.resize(size);
    return pixels;
}

TEST(GradientNormals, AConstantVolumeIs127InsideAndDiffersOnTheBorder)
{
    const Sides sides = {5, 4, 6};
    const Bytes pixels = written(Bytes(tessaly::voxelCount(sides), 200), sides, "xyz");
    std::size_t i = 0;
    for(std::uint32_t z = 0; z < 6; ++z)
        for(std::uint32_t y = 0; y < 4; ++y)
            for(std::uint32_t x = 0; x < 5; ++x, i += 3) {
                const bool inside = x > 0 && x < 4 && y > 0 && y < 3 && z > 0 && z < 5;
                const bool flat = pixels[i] == 127 && pixels[i + 1] == 127 && pixels[i + 2] == 127;
                ASSERT_EQ(flat, inside) << x << ' ' << y << ' ' << z;
            }
}

TEST(GradientNormals, AMissingNeighbourIsZeroSoFacesPointOutwards)
{
    const Sides sides = {5, 5, 5};
    const Bytes pixels = written(Bytes(125, 200), sides, "xyz");
    const auto at = [&](std::size_t x, std::size_t y, std::size_t z) {
        return &pixels[((z * 5 + y) * 5 + x) * 3];
    };
    // 0 - 200 on the lower face, 200 - 0 on the upper one.
    EXPECT_EQ(at(0, 2, 2)[0], 0);
    EXPECT_EQ(at(4, 2, 2)[0], 254);
    EXPECT_EQ(at(2, 0, 2)[1], 0);
    EXPECT_EQ(at(2, 4, 2)[1], 254);
    EXPECT_EQ(at(2, 2, 0)[2], 0);
    EXPECT_EQ(at(2, 2, 4)[2], 254);
    EXPECT_EQ(at(0, 2, 2)[1], 127);
    // On an edge the gradient is a diagonal: -127 / sqrt(2) + 127 is 37.2.
    EXPECT_EQ(at(0, 0, 2)[0], 37);
    EXPECT_EQ(at(0, 0, 2)[1], 37);
}

TEST(GradientNormals, TheGradientPointsToLowerValues)
{
    Bytes voxels;
    for(int z = 0; z < 3; ++z)
        for(int y = 0; y < 3; ++y)
            for(int x = 0; x < 3; ++x)
                voxels.push_back(static_cast<std::uint8_t>(10 + x * 20));
    const Bytes pixels = written(voxels, {3, 3, 3}, "xyz");
    EXPECT_EQ(pixels[13 * 3], 0);
    EXPECT_EQ(pixels[13 * 3 + 1], 127);
    EXPECT_EQ(pixels[13 * 3 + 2], 127);
}

TEST(GradientNormals, ScalarChannelsGiveTheVoxelWithAndWithoutItsBorder)
{
    const Sides sides = {4, 3, 3};
    Bytes voxels(36);
    for(std::size_t i = 0; i < 36; ++i)
        voxels[i] = static_cast<std::uint8_t>(i + 100);
    const Bytes pixels = written(voxels, sides, "sS");
    for(std::size_t i = 0; i < 36; ++i) {
        EXPECT_EQ(pixels[i * 2], voxels[i]);
        const bool inner = i == 17 || i == 18;
        EXPECT_EQ(pixels[i * 2 + 1], inner ? voxels[i] : 0) << i;
    }
}

TEST(GradientNormals, ChannelsKeepTheirOrder)
{
    const Bytes voxels(27, 50);
    const Bytes pixels = written(voxels, {3, 3, 3}, "sxy");
    // The middle of the lower x face.
    EXPECT_EQ(pixels[12 * 3], 50);
    EXPECT_EQ(pixels[12 * 3 + 1], 0);
    EXPECT_EQ(pixels[12 * 3 + 2], 127);
}

TEST(GradientNormals, TheLengthChannelIs255ForEveryLengthOfBytes)
{
    Bytes voxels(27, 0);
    voxels[12] = 255;
    voxels[10] = 255;
    voxels[4] = 255;
    for(std::uint8_t byte : written(voxels, {3, 3, 3}, "g"))
        EXPECT_EQ(byte, 255);
}

/// Polar angle and azimuth of the middle voxel of 27, given its six neighbours.
Bytes anglesOf(int before[3], int behind[3])
{
    Bytes voxels(27, 0);
    const std::size_t strides[3] = {1, 3, 9};
    for(std::size_t axis = 0; axis < 3; ++axis) {
        voxels[13 - strides[axis]] = static_cast<std::uint8_t>(before[axis]);
        voxels[13 + strides[axis]] = static_cast<std::uint8_t>(behind[axis]);
    }
    const Bytes pixels = written(voxels, {3, 3, 3}, "tp");
    return {pixels[26], pixels[27]};
}

TEST(GradientNormals, AnglesAreFractionsOfTheirRange)
{
    struct Case
    {
        int before[3];
        int behind[3];
        Bytes angles;
    };
    // An azimuth on the axis is a quarter turn, 63.75 of 255; half of a polar range is 127.5.
    const Case cases[] = {
        {{0, 0, 9}, {0, 0, 0}, {0, 63}},    {{0, 0, 0}, {0, 0, 9}, {255, 63}},
        {{0, 0, 0}, {0, 0, 0}, {127, 63}},  {{9, 0, 0}, {0, 0, 0}, {127, 0}},
        {{0, 9, 0}, {0, 0, 0}, {127, 63}},  {{0, 0, 0}, {9, 0, 0}, {127, 127}},
        {{0, 0, 0}, {0, 9, 0}, {127, 191}},
    };
    for(const Case &one : cases) {
        int before[3] = {one.before[0], one.before[1], one.before[2]};
        int behind[3] = {one.behind[0], one.behind[1], one.behind[2]};
        EXPECT_EQ(anglesOf(before, behind), one.angles)
            << before[0] << before[1] << before[2] << behind[0] << behind[1] << behind[2];
    }
}

TEST(GradientNormals, AgreesWithANaivePassInDoublePrecision)
{
    const unsigned seed = 31;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for(const Sides &sides : {Sides{1, 1, 1}, {2, 1, 3}, {1, 5, 1}, {7, 6, 5}, {33, 4, 3}}) {
        Bytes voxels(tessaly::voxelCount(sides));
        for(auto &voxel : voxels)
            voxel = static_cast<std::uint8_t>(random());
        const Bytes pixels = written(voxels, sides, "xyz");
        const Bytes angles = written(voxels, sides, "tpS");

        const int size[3] = {static_cast<int>(sides[0]), static_cast<int>(sides[1]),
                             static_cast<int>(sides[2])};
        const auto voxel = [&](int x, int y, int z) {
            if(x < 0 || y < 0 || z < 0 || x >= size[0] || y >= size[1] || z >= size[2])
                return 0;
            return static_cast<int>(voxels[static_cast<std::size_t>((z * size[1] + y) * size[0] + x)]);
        };
        std::size_t pixel = 0;
        for(int z = 0; z < size[2]; ++z)
            for(int y = 0; y < size[1]; ++y)
                for(int x = 0; x < size[0]; ++x, ++pixel) {
                    const double d[3] = {double(voxel(x - 1, y, z) - voxel(x + 1, y, z)),
                                         double(voxel(x, y - 1, z) - voxel(x, y + 1, z)),
                                         double(voxel(x, y, z - 1) - voxel(x, y, z + 1))};
                    const double length = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
                    double n[3];
                    for(int axis = 0; axis < 3; ++axis) {
                        n[axis] = length > 0 ? d[axis] / length : 0.0;
                        // A cut of a value that single precision puts on the other side of a whole number
                        // moves by one.
                        ASSERT_NEAR(pixels[pixel * 3 + static_cast<std::size_t>(axis)],
                                    std::floor(n[axis] * 127 + 127), 1.0);
                        ASSERT_NEAR(pixels[pixel * 3 + static_cast<std::size_t>(axis)], n[axis] * 127 + 126.5,
                                    0.5001);
                    }
                    const double pi = std::acos(-1.0);
                    double phi = n[0] == 0 && n[1] == 0 ? pi / 2 : std::atan2(n[1], n[0]);
                    phi += phi < 0 ? 2 * pi : 0.0;
                    ASSERT_NEAR(angles[pixel * 3], std::acos(n[2]) / pi * 255 - 0.5, 0.501);
                    ASSERT_NEAR(angles[pixel * 3 + 1], phi / (2 * pi) * 255 - 0.5, 0.51);
                    const bool outer = x == 0 || y == 0 || z == 0 || x == size[0] - 1 || y == size[1] - 1 ||
                                       z == size[2] - 1;
                    ASSERT_EQ(angles[pixel * 3 + 2], outer ? 0 : voxel(x, y, z));
                }
    }
}

TEST(GradientNormals, TheNumberOfChannelsDecidesThePixelFormat)
{
    EXPECT_EQ(tessaly::pixelFormatOfChannels(0), 0u);
    EXPECT_EQ(tessaly::pixelFormatOfChannels(1), 6409u);
    EXPECT_EQ(tessaly::pixelFormatOfChannels(2), 6410u);
    EXPECT_EQ(tessaly::pixelFormatOfChannels(3), 6407u);
    EXPECT_EQ(tessaly::pixelFormatOfChannels(4), 6408u);
    EXPECT_EQ(tessaly::pixelFormatOfChannels(5), 0u);
}

TEST(GradientNormals, OtherNumbersAndNamesOfChannelsWriteNothing)
{
    const Bytes voxels(8, 1);
    for(const char *channels : {"", "xyzgt", "xq", "X", "x y"}) {
        Bytes pixels(64, 0x5a);
        EXPECT_FALSE(tessaly::writeGradientChannels(voxels.data(), {2, 2, 2}, channels, pixels.data()))
            << channels;
        EXPECT_EQ(pixels, Bytes(64, 0x5a));
    }
    EXPECT_TRUE(tessaly::areGradientChannels("sSxyzgtp"));
    EXPECT_FALSE(tessaly::areGradientChannels("xG"));
}

} // namespace
