// The test volumes are what their names say.
#include "reference/Volumes.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace reference;

TEST(ReferenceVolumes, RampRunsFromZeroToTheTopAlongItsAxis)
{
    const Volume volume = rampVolume(3, 5, 4, 8, 1, 200);
    EXPECT_EQ(volume.at(2, 0, 3), 0);
    EXPECT_EQ(volume.at(0, 2, 0), 100);
    EXPECT_EQ(volume.at(1, 4, 2), 200);
}

TEST(ReferenceVolumes, SeedsDecideAndRepeat)
{
    const auto noise = [](std::uint32_t seed) { return noiseVolume(7, 9, 5, 16, 4095, seed).voxels; };
    EXPECT_EQ(noise(3), noise(3));
    EXPECT_NE(noise(3), noise(4));
    const std::vector<std::uint16_t> voxels = noise(3);
    EXPECT_LE(*std::max_element(voxels.begin(), voxels.end()), 4095);
    EXPECT_GT(*std::max_element(voxels.begin(), voxels.end()), 3900);
}

TEST(ReferenceVolumes, BlobReachesItsTopAndFadesToTheCorners)
{
    const Volume volume = blobVolume(20, 22, 18, 8, 250, 11);
    EXPECT_EQ(*std::max_element(volume.voxels.begin(), volume.voxels.end()), 250);
    EXPECT_LT(volume.at(0, 0, 0), 3);
    EXPECT_LT(volume.at(19, 21, 17), 3);
}

TEST(ReferenceVolumes, ShellIsHollow)
{
    const Volume volume = shellVolume(32, 32, 32, 16, 60000);
    EXPECT_EQ(volume.at(16, 16, 16), 0);
    EXPECT_GT(volume.at(16 + 11, 16, 16), 50000);
    EXPECT_EQ(volume.at(0, 0, 0), 0);
}

TEST(ReferenceVolumes, BytesFollowTheNumberOfBits)
{
    const Volume narrow = constantVolume(2, 3, 4, 8, 200);
    EXPECT_EQ(narrow.bytes(), std::vector<std::uint8_t>(24, 200));
    const Volume wide = constantVolume(2, 3, 4, 16, 0x1212);
    EXPECT_EQ(wide.bytes(), std::vector<std::uint8_t>(48, 0x12));
}
