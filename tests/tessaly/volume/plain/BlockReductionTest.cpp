#include "volume/BlockReduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace
{

using tessaly::Sides;

/// Walks the voxels of each block and the layer around it one by one.
template <class Voxel>
std::vector<Voxel> naiveRanges(const std::vector<Voxel> &voxels, const Sides &sides, int edge)
{
    std::vector<Voxel> ranges;
    const int width = static_cast<int>(sides[0]);
    const int height = static_cast<int>(sides[1]);
    const int depth = static_cast<int>(sides[2]);
    for(int bz = 0; bz < depth / edge; ++bz)
        for(int by = 0; by < height / edge; ++by)
            for(int bx = 0; bx < width / edge; ++bx) {
                Voxel low = std::numeric_limits<Voxel>::max();
                Voxel high = 0;
                for(int z = bz * edge - 1; z <= bz * edge + edge; ++z)
                    for(int y = by * edge - 1; y <= by * edge + edge; ++y)
                        for(int x = bx * edge - 1; x <= bx * edge + edge; ++x) {
                            if(x < 0 || y < 0 || z < 0 || x >= width || y >= height || z >= depth)
                                continue;
                            const Voxel voxel =
                                voxels[static_cast<std::size_t>((z * height + y) * width + x)];
                            low = std::min(low, voxel);
                            high = std::max(high, voxel);
                        }
                ranges.push_back(low);
                ranges.push_back(high);
            }
    return ranges;
}

template <class Voxel>
std::vector<Voxel> reduced(const std::vector<Voxel> &voxels, const Sides &sides, std::uint32_t edge)
{
    const std::size_t values = tessaly::voxelCount(tessaly::blockSides(sides, edge)) * 2;
    std::vector<Voxel> ranges(values + 8, Voxel(0x5a));
    tessaly::reduceBlocks(voxels.data(), sides, edge, ranges.data());
    for(std::size_t i = values; i < ranges.size(); ++i)
        EXPECT_EQ(ranges[i], Voxel(0x5a));
    ranges.resize(values);
    return ranges;
}

template <class Voxel>
void expectNaiveRanges(const Sides &sides, std::uint32_t edge, unsigned seed)
{
    SCOPED_TRACE(testing::Message() << sides[0] << " x " << sides[1] << " x " << sides[2] << ", edge " << edge
                                    << ", " << sizeof(Voxel) << " bytes, seed " << seed);
    std::mt19937 random(seed);
    std::vector<Voxel> voxels(tessaly::voxelCount(sides));
    // Mostly middle values, with rare extremes: so a block's range hangs on single voxels.
    for(auto &voxel : voxels) {
        const auto dice = random() % 200;
        const auto bits = static_cast<Voxel>(random());
        voxel = dice == 0 ? bits : static_cast<Voxel>(100 + bits % 3);
    }
    ASSERT_EQ(reduced(voxels, sides, edge), naiveRanges(voxels, sides, static_cast<int>(edge)));
}

TEST(BlockReduction, AVolumeOfOneBlockHasTheRangeOfAllVoxels)
{
    std::vector<std::uint8_t> voxels(512, 40);
    voxels[0] = 3;
    voxels[511] = 250;
    EXPECT_EQ(reduced(voxels, {8, 8, 8}, 8), (std::vector<std::uint8_t>{3, 250}));
}

TEST(BlockReduction, AVoxelBesideABorderCountsForBothBlocks)
{
    for(int axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        Sides sides = {8, 8, 8};
        sides[static_cast<std::size_t>(axis)] = 24;
        const std::size_t stride = axis == 0 ? 1 : axis == 1 ? 8 : 64;
        // The voxel's place along the axis and the greatest values that the three blocks must have.
        const std::vector<std::pair<std::size_t, std::vector<int>>> cases = {
            {0, {9, 1, 1}}, {6, {9, 1, 1}},  {7, {9, 9, 1}},  {8, {9, 9, 1}},
            {9, {1, 9, 1}}, {15, {1, 9, 9}}, {16, {1, 9, 9}}, {17, {1, 1, 9}}};
        for(const auto &[place, greatest] : cases) {
            std::vector<std::uint8_t> voxels(tessaly::voxelCount(sides), 1);
            voxels[place * stride] = 9;
            const auto ranges = reduced(voxels, sides, 8);
            ASSERT_EQ(ranges.size(), 6u);
            for(std::size_t block = 0; block < 3; ++block) {
                EXPECT_EQ(ranges[block * 2], 1) << place;
                EXPECT_EQ(ranges[block * 2 + 1], greatest[block]) << place;
            }
        }
    }
}

TEST(BlockReduction, PaddingVoxelsTakePartAsZero)
{
    const Sides sides = {10, 8, 8};
    const std::vector<std::uint8_t> voxels(tessaly::voxelCount(sides), 200);
    const Sides padded = tessaly::paddedSides(sides, 8);
    std::vector<std::uint8_t> whole(tessaly::voxelCount(padded));
    tessaly::copyPadded(voxels.data(), sides, 1, whole.data(), padded);
    EXPECT_EQ(tessaly::blockSides(padded, 8), (Sides{2, 1, 1}));
    EXPECT_EQ(reduced(whole, padded, 8), (std::vector<std::uint8_t>{200, 200, 0, 200}));
}

TEST(BlockReduction, AgreesWithTheNaiveWalkForManySizesAndEdges)
{
    unsigned seed = 1000;
    for(const Sides &blocks :
        {Sides{1, 1, 1}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {3, 4, 5}, {5, 3, 1}, {9, 2, 3}})
        for(std::uint32_t edge : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 11u, 16u}) {
            const Sides sides = {blocks[0] * edge, blocks[1] * edge, blocks[2] * edge};
            expectNaiveRanges<std::uint8_t>(sides, edge, ++seed);
            expectNaiveRanges<std::uint16_t>(sides, edge, ++seed);
        }
}

TEST(BlockReduction, AgreesWithTheNaiveWalkForWideRows)
{
    expectNaiveRanges<std::uint8_t>({136, 16, 24}, 8, 1);
    expectNaiveRanges<std::uint8_t>({264, 24, 16}, 8, 2);
    expectNaiveRanges<std::uint16_t>({136, 24, 24}, 8, 3);
    expectNaiveRanges<std::uint16_t>({520, 8, 16}, 8, 4);
}

TEST(BlockReduction, WhatIsLeftBehindTheLastBlockCountsAsItsNeighbour)
{
    expectNaiveRanges<std::uint8_t>({17, 19, 23}, 8, 5);
    expectNaiveRanges<std::uint16_t>({9, 8, 15}, 4, 6);
}

TEST(BlockReduction, WithoutAWholeBlockNothingIsDone)
{
    const std::vector<std::uint8_t> voxels(343, 1);
    std::uint8_t untouched = 42;
    tessaly::reduceBlocks(voxels.data(), {7, 7, 7}, 8, &untouched);
    tessaly::reduceBlocks(voxels.data(), {7, 7, 7}, 0, &untouched);
    tessaly::reduceBlocks(static_cast<const std::uint8_t *>(nullptr), {0, 0, 0}, 8, &untouched);
    EXPECT_EQ(untouched, 42);
    EXPECT_EQ(tessaly::blockSides({7, 8, 9}, 0), (Sides{0, 0, 0}));
}

template <class Voxel>
int verdict(Voxel low, Voxel high, const std::vector<float> &sums)
{
    const Voxel range[2] = {low, high};
    std::uint8_t result = 1;
    tessaly::judgeBlocks(range, 1, sums.data(), sums.size(), &result);
    return result;
}

/// The running sum of a table with the given opacity from one value to another, both included.
std::vector<float> sumsOf(std::size_t count, std::size_t first, std::size_t last, float opacity)
{
    std::vector<float> sums(count);
    float sum = 0.0f;
    for(std::size_t value = 0; value < count; ++value) {
        sum += value >= first && value <= last ? opacity : 0.0f;
        sums[value] = sum;
    }
    return sums;
}

TEST(BlockVerdict, WithoutOpacityOnlyBlocksOfZerosAreSampled)
{
    const std::vector<float> bytes(256, 0.0f);
    EXPECT_EQ(verdict<std::uint8_t>(10, 20, bytes), 0);
    EXPECT_EQ(verdict<std::uint8_t>(0, 255, bytes), 0);
    EXPECT_EQ(verdict<std::uint8_t>(7, 7, bytes), 0);
    EXPECT_EQ(verdict<std::uint8_t>(0, 0, bytes), 255);

    const std::vector<float> words(65536, 0.0f);
    EXPECT_EQ(verdict<std::uint16_t>(1000, 65535, words), 0);
    EXPECT_EQ(verdict<std::uint16_t>(7, 7, words), 0);
    EXPECT_EQ(verdict<std::uint16_t>(0, 0, words), 255);
}

TEST(BlockVerdict, ABlockOfZerosIsSampledWhateverTheOpacityOfZero)
{
    for(float opacity : {0.0f, 1e-6f, 1e-5f, 1e-4f, 1.0f, 255.0f}) {
        EXPECT_EQ(verdict<std::uint8_t>(0, 0, sumsOf(256, 0, 0, opacity)), 255);
        EXPECT_EQ(verdict<std::uint16_t>(0, 0, sumsOf(65536, 0, 0, opacity)), 255);
    }
}

TEST(BlockVerdict, OpacityBelowARangeKeepsA16BitBlockAndDropsAnEightBitOne)
{
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 10, 10, 1.0f)), 0);
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 10, 10, 1.0f)), 255);
}

TEST(BlockVerdict, OpacityInARangeKeepsItsBlock)
{
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 25, 25, 1.0f)), 255);
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 30, 30, 1.0f)), 255);
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 31, 31, 1.0f)), 0);
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 30, 30, 1.0f)), 255);
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 31, 31, 1.0f)), 0);
}

TEST(BlockVerdict, OpacityAtTheLeastValueAloneDoesNotCount)
{
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 20, 20, 1.0f)), 0);
    // In 16 bits the sum up to the greatest value is not 0, which keeps the block.
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 20, 20, 1.0f)), 255);
}

TEST(BlockVerdict, RangesAreMeasuredAgainstAMillionth)
{
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 25, 25, 0.9e-6f)), 0);
    EXPECT_EQ(verdict<std::uint8_t>(20, 30, sumsOf(256, 25, 25, 1.1e-6f)), 255);
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 25, 25, 1.1e-6f)), 255);
    // In 16 bits any opacity that is not 0 counts.
    EXPECT_EQ(verdict<std::uint16_t>(20, 30, sumsOf(65536, 25, 25, 1e-30f)), 255);
}

TEST(BlockVerdict, SingleValuesAreMeasuredAgainstATenThousandth)
{
    EXPECT_EQ(verdict<std::uint8_t>(5, 5, sumsOf(256, 5, 5, 0.9e-4f)), 0);
    EXPECT_EQ(verdict<std::uint8_t>(5, 5, sumsOf(256, 5, 5, 1.1e-4f)), 255);
    EXPECT_EQ(verdict<std::uint8_t>(5, 5, sumsOf(256, 4, 4, 1.0f)), 0);
    EXPECT_EQ(verdict<std::uint8_t>(255, 255, sumsOf(256, 255, 255, 1.0f)), 255);
    EXPECT_EQ(verdict<std::uint16_t>(5, 5, sumsOf(65536, 5, 5, 0.9e-4f)), 0);
    EXPECT_EQ(verdict<std::uint16_t>(5, 5, sumsOf(65536, 5, 5, 1.1e-4f)), 255);
    EXPECT_EQ(verdict<std::uint16_t>(5, 5, sumsOf(65536, 4, 4, 1.0f)), 0);
}

TEST(BlockVerdict, AShortSumIsReadOnlyToItsEnd)
{
    const std::vector<float> visible = sumsOf(256, 255, 255, 1.0f);
    EXPECT_EQ(verdict<std::uint16_t>(10, 60000, visible), 255);
    EXPECT_EQ(verdict<std::uint16_t>(50000, 50000, visible), 0);
    const std::vector<float> invisible(256, 0.0f);
    EXPECT_EQ(verdict<std::uint16_t>(10, 60000, invisible), 0);
    EXPECT_EQ(verdict<std::uint8_t>(10, 20, {}), 255);
}

TEST(BlockVerdict, EveryBlockIsJudgedInItsPlace)
{
    const std::vector<float> sums = sumsOf(256, 25, 25, 1.0f);
    const std::vector<std::uint8_t> ranges = {0, 0, 1, 2, 20, 30, 25, 25, 26, 26};
    std::vector<std::uint8_t> verdicts(6, 77);
    tessaly::judgeBlocks(ranges.data(), 5, sums.data(), sums.size(), verdicts.data());
    EXPECT_EQ(verdicts, (std::vector<std::uint8_t>{255, 0, 255, 255, 0, 77}));
}

} // namespace
