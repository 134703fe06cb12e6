/// \file
/// Volumes made smaller: which factors, and what the voxels become.

#include "VolumeReduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace
{

using namespace viewer;
using Sides = std::array<int, 3>;

TEST(VolumeReduction, AVolumeWithinTheLimitsStays)
{
    EXPECT_EQ(reductionFactors({512, 512, 300}, 2, {512, 512ull * 512 * 300 * 2}), (Sides{1, 1, 1}));
    EXPECT_EQ(reductionFactors({5000, 5000, 5000}, 2, {}), (Sides{1, 1, 1})) << "no limit";
}

TEST(VolumeReduction, OnlyTheAxisThatIsTooLongIsReducedForGl)
{
    EXPECT_EQ(reductionFactors({2049, 100, 2048}, 1, {2048, 0}), (Sides{2, 1, 1}));
    EXPECT_EQ(reductionFactors({6000, 2048, 4097}, 1, {2048, 0}), (Sides{3, 1, 3}));
}

TEST(VolumeReduction, MemoryIsSavedAlongTheLongestAxisFirst)
{
    EXPECT_EQ(reductionFactors({400, 100, 100}, 1, {0, 100ull * 100 * 200}), (Sides{2, 1, 1}));
    EXPECT_EQ(reductionFactors({100, 100, 100}, 2, {0, 250000}), (Sides{2, 2, 2}));
}

TEST(VolumeReduction, ALimitThatCannotBeKeptEndsAtTwoVoxelsAlongEachAxis)
{
    const Sides sides{7, 5, 3};
    EXPECT_EQ(reducedSides(sides, reductionFactors(sides, 1, {0, 1})), (Sides{2, 2, 2}));
    EXPECT_EQ(reductionFactors({2, 2, 2}, 4, {1, 1}), (Sides{1, 1, 1}));
}

TEST(VolumeReduction, WhatIsLeftOverAtTheEndMakesOneVoxelMore)
{
    EXPECT_EQ(reducedSides({7, 8, 9}, {2, 4, 5}), (Sides{4, 2, 2}));
}

TEST(VolumeReduction, ABlockBecomesItsRoundedMean)
{
    const std::vector<std::uint8_t> voxels{0, 1, 10, 3, 3, 11, 100, 101, 255, 101, 101, 254};
    // 3 x 2 x 2 voxels in blocks of 2 x 2 x 1.
    EXPECT_EQ(reducedVoxels(voxels.data(), 8, {3, 2, 2}, {2, 2, 1}),
              (std::vector<std::uint8_t>{2, 11, 101, 255}));
}

TEST(VolumeReduction, SixteenBitVoxelsAreAveragedAsSuchAtAnyAlignment)
{
    const std::uint16_t values[] = {65535, 65533, 256, 255};
    std::vector<std::uint8_t> bytes(1 + sizeof(values));
    std::memcpy(bytes.data() + 1, values, sizeof(values));
    const std::vector<std::uint8_t> result = reducedVoxels(bytes.data() + 1, 16, {2, 2, 1}, {2, 1, 1});
    std::uint16_t means[2];
    ASSERT_EQ(result.size(), sizeof(means));
    std::memcpy(means, result.data(), sizeof(means));
    EXPECT_EQ(means[0], 65534);
    EXPECT_EQ(means[1], 256) << "a half goes up";
}

TEST(VolumeReduction, AgreesWithANaiveMeanOverSeededVolumes)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < 20; ++round)
    {
        SCOPED_TRACE(round);
        const auto number = [&](int low, int high)
        { return std::uniform_int_distribution<int>(low, high)(random); };
        const Sides sides{number(2, 13), number(2, 13), number(2, 13)};
        const Sides factors{number(1, 5), number(1, 5), number(1, 5)};
        const Sides small = reducedSides(sides, factors);
        std::vector<std::uint8_t> voxels(static_cast<std::size_t>(sides[0] * sides[1] * sides[2]));
        for (std::uint8_t &voxel : voxels)
        {
            voxel = static_cast<std::uint8_t>(number(0, 255));
        }
        std::vector<double> sums(static_cast<std::size_t>(small[0] * small[1] * small[2]), 0.0);
        std::vector<double> counts(sums.size(), 0.0);
        for (int z = 0; z < sides[2]; ++z)
        {
            for (int y = 0; y < sides[1]; ++y)
            {
                for (int x = 0; x < sides[0]; ++x)
                {
                    const std::size_t block = static_cast<std::size_t>(
                        x / factors[0] + small[0] * (y / factors[1] + small[1] * (z / factors[2])));
                    sums[block] += voxels[static_cast<std::size_t>(x + sides[0] * (y + sides[1] * z))];
                    counts[block] += 1.0;
                }
            }
        }
        const std::vector<std::uint8_t> result = reducedVoxels(voxels.data(), 8, sides, factors);
        ASSERT_EQ(result.size(), sums.size());
        for (std::size_t i = 0; i < sums.size(); ++i)
        {
            EXPECT_EQ(result[i], static_cast<int>(std::floor(sums[i] / counts[i] + 0.5))) << i;
        }
    }
}

} // namespace
