/// \file
/// The points that frame a volume.

#include "Outline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

using namespace viewer;

std::vector<bool> from(std::size_t lowest, std::size_t values)
{
    std::vector<bool> visible(values, false);
    std::fill(visible.begin() + static_cast<std::ptrdiff_t>(lowest), visible.end(), true);
    return visible;
}

TEST(Outline, OfAFullVolumeRunsAlongItsTwoSidesAcrossX)
{
    const std::vector<std::uint8_t> voxels(6 * 8 * 5, 9);
    const std::vector<Vec3> points = outlineOf({voxels.data(), 8, {6, 8, 5}}, from(1, 256));
    ASSERT_EQ(points.size(), 2u * 8u * 5u);
    for (std::size_t i = 0; i < points.size(); i += 2)
    {
        EXPECT_EQ(points[i][0], 0.0);
        EXPECT_EQ(points[i + 1][0], 6.0);
    }
    EXPECT_EQ(points.back(), (Vec3{6.0, 7.5, 4.5}));
}

TEST(Outline, OfALargeVolumeSomeRowsStandForAll)
{
    const std::vector<std::uint8_t> voxels(2 * 256 * 130, 9);
    const std::vector<Vec3> points = outlineOf({voxels.data(), 8, {2, 256, 130}}, from(1, 256));
    EXPECT_EQ(points.size(), 2u * 64u * 65u);
}

TEST(Outline, EndsLieAtTheFirstAndTheLastVisibleVoxelOfARow)
{
    std::vector<std::uint8_t> voxels(10, 0);
    voxels[3] = 50;
    voxels[5] = 10;
    voxels[7] = 60;
    voxels[9] = 49;
    const std::vector<Vec3> points = outlineOf({voxels.data(), 8, {10, 1, 1}}, from(50, 256));
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0], (Vec3{3.0, 0.5, 0.5}));
    EXPECT_EQ(points[1], (Vec3{8.0, 0.5, 0.5}));
}

TEST(Outline, SixteenBitsAreReadAtAnyAlignment)
{
    const std::vector<std::uint16_t> values{0, 255, 256, 0};
    std::vector<std::uint8_t> bytes(9);
    std::memcpy(bytes.data() + 1, values.data(), 8);
    const std::vector<Vec3> points = outlineOf({bytes.data() + 1, 16, {4, 1, 1}}, from(256, 65536));
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0][0], 2.0);
    EXPECT_EQ(points[1][0], 3.0);
}

TEST(Outline, OfWhatCannotBeSeenIsEmpty)
{
    const std::vector<std::uint8_t> voxels(64, 9);
    EXPECT_TRUE(outlineOf({voxels.data(), 8, {4, 4, 4}}, from(10, 256)).empty());
}

} // namespace
