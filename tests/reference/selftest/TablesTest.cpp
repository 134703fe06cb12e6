// The reference's tables against hand-made numbers.
#include "reference/Tables.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace reference;

TEST(ReferenceHalf, KeepsElevenBitsAndRoundsTiesToEven)
{
    EXPECT_EQ(throughHalf(0.5f), 0.5f);
    EXPECT_EQ(throughHalf(1.0f / 3.0f), 0.333251953125f);
    EXPECT_EQ(throughHalf(1.0f + std::ldexp(1.0f, -11)), 1.0f);
    EXPECT_EQ(throughHalf(1.0f + 3.0f * std::ldexp(1.0f, -11)), 1.0f + std::ldexp(1.0f, -9));
    EXPECT_EQ(throughHalf(-2.0f), -2.0f);
}

TEST(ReferenceHalf, EndsAtTheSubnormalUnitAndAtInfinity)
{
    EXPECT_EQ(throughHalf(std::ldexp(1.0f, -24)), std::ldexp(1.0f, -24));
    EXPECT_EQ(throughHalf(std::ldexp(1.0f, -26)), 0.0f);
    EXPECT_EQ(throughHalf(65504.0f), 65504.0f);
    EXPECT_TRUE(std::isinf(throughHalf(65520.0f)));
}

TEST(ReferenceVoxels, TwelveBitDataIsBroughtToSixteenBits)
{
    Volume volume = constantVolume(2, 2, 2, 16, 100);
    volume.voxels[3] = 4095;
    const Volume twelve = normalised(volume, false);
    EXPECT_EQ(twelve.voxels[0], 1600);
    EXPECT_EQ(twelve.voxels[3], 65520);
    volume.voxels[3] = 4096;
    EXPECT_EQ(normalised(volume, false).voxels, volume.voxels);
}

TEST(ReferenceVoxels, SwappedBytesCountAfterTheExchangeAndOnlyInSixteenBits)
{
    Volume volume = constantVolume(2, 2, 2, 16, 0x0010);
    EXPECT_EQ(normalised(volume, true).voxels[0], 0x1000);
    volume = constantVolume(2, 2, 2, 16, 0x0100);
    EXPECT_EQ(normalised(volume, true).voxels[0], 0x0010);
    volume = constantVolume(2, 2, 2, 8, 77);
    EXPECT_EQ(normalised(volume, true).voxels[0], 77);
}

TEST(ReferenceVoxels, PaddingAddsZerosBehindTheVoxels)
{
    bool changed = false;
    const Volume grown = padded(constantVolume(10, 8, 8, 8, 9), changed);
    EXPECT_TRUE(changed);
    EXPECT_EQ(grown.width, 16);
    EXPECT_EQ(grown.at(9, 7, 7), 9);
    EXPECT_EQ(grown.at(10, 0, 0), 0);
    padded(constantVolume(16, 8, 8, 8, 9), changed);
    EXPECT_FALSE(changed);
}

TEST(ReferenceTransfer, DefaultPointsEndOneBelowTheTop)
{
    const std::vector<Entry> table = transferTable({}, 8);
    ASSERT_EQ(table.size(), 256u);
    for(int channel = 0; channel < 4; ++channel)
    {
        EXPECT_EQ(table[0][channel], 0.0);
        EXPECT_EQ(table[128][channel], 127.0);
        EXPECT_EQ(table[255][channel], 254.0);
    }
}

TEST(ReferenceTransfer, OpacityThatEndsEarlyFillsTheWholeChannelButColourOnlyTheRest)
{
    TransferSource source;
    source.alphaPoints = {{0.0f, 0.0f}, {0.5f, 1.0f}};
    source.colorPoints = {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 1.0f, 0.5f, 0.25f}};
    const std::vector<Entry> table = transferTable(source, 8);
    EXPECT_EQ(table[0][3], 255.0);
    EXPECT_EQ(table[64][3], 255.0);
    EXPECT_EQ(table[64][0], 127.0);
    EXPECT_EQ(table[200][0], 255.0);
    EXPECT_EQ(table[200][1], 127.0);
}

TEST(ReferenceTransfer, WideTableHoldsHalfFloatsOfTheRamp)
{
    const std::vector<Entry> table = transferTable({}, 16);
    ASSERT_EQ(table.size(), 65536u);
    EXPECT_EQ(table[32768][3], 0.5);
    EXPECT_EQ(table[16384][0], 0.25);
    EXPECT_EQ(table[65535][3], 1.0); // 65535 / 65536 is nearer to 1 than to the half float below it
}

TEST(ReferenceTransfer, RunningSumOfFullOpacityEndsAt65280)
{
    TransferSource source;
    source.alphaPoints = {{0.0f, 1.0f}, {1.0f, 1.0f}};
    EXPECT_EQ(opacitySum(transferTable(source, 8))[255], 65280.0f);
}

TEST(ReferencePreintegration, ConstantSourceAveragesToItself)
{
    TransferSource source;
    for(int i = 0; i < 256; ++i)
        source.bytes.insert(source.bytes.end(), {255, 0, 51, 102});
    const std::vector<Entry> pairs = pairTable(transferTable(source, 8));
    for(const int at : {0, 5 * 256 + 5, 7 * 256 + 200, 200 * 256 + 7})
    {
        EXPECT_EQ(pairs[at][0], throughHalf(0.4f));
        EXPECT_EQ(pairs[at][1], 0.0f);
        EXPECT_EQ(pairs[at][2], throughHalf(0.08f));
        EXPECT_EQ(pairs[at][3], throughHalf(0.4f));
    }
}

TEST(ReferencePreintegration, PairsAreSymmetricAndRampsAverageToTheirMiddle)
{
    const std::vector<Entry> pairs = pairTable(transferTable({}, 8));
    EXPECT_EQ(pairs[10 * 256 + 90], pairs[90 * 256 + 10]);
    // Entries 10 to 90 of the ramp are k * 255 / 256 cut, which is k - 1 (entry 0 is 0): the middle is 49.
    EXPECT_NEAR(pairs[10 * 256 + 90][3], 49.0 / 255.0, 1e-4);
    const double top = 254.0 / 255.0;
    EXPECT_EQ(pairs[65535][0], throughHalf(static_cast<float>(top * top)));
}

TEST(ReferencePreintegration, IntegralOfFullOpacityIsTheIndex)
{
    TransferSource source;
    source.alphaPoints = {{0.0f, 1.0f}, {1.0f, 1.0f}};
    const std::vector<Entry> integral = integralTable(transferTable(source, 16));
    EXPECT_EQ(integral[0][3], 0.0);
    EXPECT_EQ(integral[1][3], 1.0);
    EXPECT_EQ(integral[65535][3], 65535.0);
}

namespace
{

// Opacity of 255 at `value` and none elsewhere.
std::vector<float> peakSum(int value)
{
    TransferSource source;
    source.bytes.assign(1024, 0);
    source.bytes[value * 4 + 3] = 255;
    return opacitySum(transferTable(source, 8));
}

}

TEST(ReferenceBlocks, VerdictFollowsTheThreeOddRules)
{
    const std::vector<float> none(256, 0.0f);
    // Blocks of zeros are always sampled; constant blocks need opacity of their own value.
    EXPECT_EQ(blockVerdicts(constantVolume(8, 8, 8, 8, 0), none).verdicts[0], 255);
    EXPECT_EQ(blockVerdicts(constantVolume(8, 8, 8, 8, 9), none).verdicts[0], 0);
    EXPECT_EQ(blockVerdicts(constantVolume(8, 8, 8, 8, 9), peakSum(9)).verdicts[0], 255);
    // The lowest value is no part of the interval.
    Volume two = constantVolume(8, 8, 8, 8, 20);
    two.voxels[0] = 30;
    EXPECT_EQ(blockVerdicts(two, peakSum(20)).verdicts[0], 0);
    EXPECT_EQ(blockVerdicts(two, peakSum(21)).verdicts[0], 255);
    EXPECT_EQ(blockVerdicts(two, peakSum(10)).verdicts[0], 0);
    // With 16 bits any opacity below the greatest value keeps the block.
    two.bits = 16;
    std::vector<float> wide(65536, 1.0f);
    for(int v = 0; v < 10; ++v)
        wide[v] = 0.0f;
    EXPECT_EQ(blockVerdicts(two, wide).verdicts[0], 255);
    EXPECT_EQ(blockVerdicts(two, std::vector<float>(65536, 0.0f)).verdicts[0], 0);
}

TEST(ReferenceBlocks, BorderVoxelCountsInBothBlocks)
{
    Volume volume = constantVolume(24, 8, 8, 8, 1);
    volume.voxels[volume.index(8, 4, 4)] = 200;
    const BlockGrid grid = blockVerdicts(volume, peakSum(150));
    EXPECT_EQ(grid.verdicts, (std::vector<std::uint8_t>{255, 255, 0}));
}

TEST(ReferenceNormals, ConstantVolumeHasEmptyGradientsInsideAndOutwardOnesAtItsRim)
{
    const Volume volume = constantVolume(5, 5, 5, 8, 200);
    const std::vector<std::uint8_t> bytes = normalBytes(volume);
    const std::size_t inner = volume.index(2, 2, 2) * 3;
    EXPECT_EQ(bytes[inner], 127);
    EXPECT_EQ(bytes[inner + 1], 127);
    const std::size_t low = volume.index(0, 2, 2) * 3;
    EXPECT_EQ(bytes[low], 0); // 0 before, 200 behind: towards lower values
    const std::size_t high = volume.index(4, 2, 2) * 3;
    EXPECT_EQ(bytes[high], 254);
}

TEST(ReferenceNormals, SixteenBitVoxelsCountAsTheNearestOf256Fractions)
{
    const Volume narrow = cloudVolume(9, 8, 7, 8, 255, 3, 5);
    Volume wide = narrow;
    wide.bits = 16;
    for(std::uint16_t &voxel : wide.voxels)
        voxel = static_cast<std::uint16_t>(voxel * 257 + (voxel % 2 == 0 ? 128 : -128));
    EXPECT_EQ(normalBytes(wide), normalBytes(narrow));
}
