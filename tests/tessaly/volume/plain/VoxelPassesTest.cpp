#include "volume/VoxelPasses.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

using tessaly::Sides;

TEST(VoxelPasses, DataBelow4096IsTakenAs12BitAndMultipliedBy16)
{
    std::vector<std::uint16_t> voxels = {0, 1, 17, 4095};
    EXPECT_TRUE(tessaly::normaliseSixteenBits(voxels.data(), voxels.size(), false));
    EXPECT_EQ(voxels, (std::vector<std::uint16_t>{0, 16, 272, 65520}));
}

TEST(VoxelPasses, DataThatReaches4096StaysUnchanged)
{
    std::vector<std::uint16_t> voxels = {0, 1, 4096, 17};
    EXPECT_FALSE(tessaly::normaliseSixteenBits(voxels.data(), voxels.size(), false));
    EXPECT_EQ(voxels, (std::vector<std::uint16_t>{0, 1, 4096, 17}));
}

TEST(VoxelPasses, TheDecisionSeesSwappedVoxels)
{
    // 0x0010 would be 12-bit data, but swapped it is 0x1000.
    std::vector<std::uint16_t> wide = {0x0010, 0x0100};
    EXPECT_FALSE(tessaly::normaliseSixteenBits(wide.data(), wide.size(), true));
    EXPECT_EQ(wide, (std::vector<std::uint16_t>{0x1000, 0x0001}));

    // 0xff0f would be 16-bit data, but swapped it is 0x0fff.
    std::vector<std::uint16_t> narrow = {0xff0f, 0x0100};
    EXPECT_TRUE(tessaly::normaliseSixteenBits(narrow.data(), narrow.size(), true));
    EXPECT_EQ(narrow, (std::vector<std::uint16_t>{0xfff0, 0x0010}));
}

TEST(VoxelPasses, ASecondRunScalesAgainWhileTheMaximumIsLow)
{
    std::vector<std::uint16_t> voxels = {15};
    EXPECT_TRUE(tessaly::normaliseSixteenBits(voxels.data(), 1, false));
    EXPECT_TRUE(tessaly::normaliseSixteenBits(voxels.data(), 1, false));
    EXPECT_TRUE(tessaly::normaliseSixteenBits(voxels.data(), 1, false));
    EXPECT_FALSE(tessaly::normaliseSixteenBits(voxels.data(), 1, false));
    EXPECT_EQ(voxels[0], 15u * 16u * 16u * 16u);
}

TEST(VoxelPasses, NoVoxelsCountAs12Bit)
{
    EXPECT_TRUE(tessaly::normaliseSixteenBits(nullptr, 0, true));
    EXPECT_EQ(tessaly::swapAndFindMaximum(nullptr, 0, false), 0);
}

TEST(VoxelPasses, SwapAndMaximumAgreeWithBytesTakenOneByOne)
{
    const unsigned seed = 20131;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for(std::size_t count : {1u, 31u, 1000u}) {
        std::vector<std::uint16_t> voxels(count);
        std::vector<std::uint16_t> expected(count);
        std::uint16_t greatest = 0;
        for(std::size_t i = 0; i < count; ++i) {
            const auto low = static_cast<unsigned>(random() % 256);
            const auto high = static_cast<unsigned>(random() % 256);
            voxels[i] = static_cast<std::uint16_t>(high * 256 + low);
            expected[i] = static_cast<std::uint16_t>(low * 256 + high);
            greatest = std::max(greatest, expected[i]);
        }
        EXPECT_EQ(tessaly::swapAndFindMaximum(voxels.data(), count, true), greatest);
        EXPECT_EQ(voxels, expected);
        EXPECT_EQ(tessaly::swapAndFindMaximum(voxels.data(), count, false), greatest);
        EXPECT_EQ(voxels, expected);
    }
}

TEST(VoxelPasses, OnlySingleChannelFormatsOfOtherThan16BitDataAreKept)
{
    for(std::uint32_t type : {5121u, 5125u, 5126u}) {
        EXPECT_EQ(tessaly::singleChannelFormat(type, 6409), 6409u);
        EXPECT_EQ(tessaly::singleChannelFormat(type, 32841), 32841u);
        EXPECT_EQ(tessaly::singleChannelFormat(type, 6406), 6406u);
        EXPECT_EQ(tessaly::singleChannelFormat(type, 6407), 6409u);
        EXPECT_EQ(tessaly::singleChannelFormat(type, 6410), 6409u);
    }
    EXPECT_EQ(tessaly::singleChannelFormat(5123, 6406), 6409u);
    EXPECT_EQ(tessaly::singleChannelFormat(5123, 32841), 6409u);
}

TEST(VoxelPasses, SliceThicknessIsReadFromThreeNumbers)
{
    using Thickness = std::array<float, 3>;
    EXPECT_EQ(tessaly::parseSliceThickness("1.500000 0.250000 3.000000"), (Thickness{1.5f, 0.25f, 3.0f}));
    EXPECT_EQ(tessaly::parseSliceThickness(" 2\t1e-1\n4 and more"), (Thickness{2.0f, 0.1f, 4.0f}));
}

TEST(VoxelPasses, MissingAndBrokenThicknessesAreOne)
{
    using Thickness = std::array<float, 3>;
    EXPECT_EQ(tessaly::parseSliceThickness(nullptr), (Thickness{1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(tessaly::parseSliceThickness(""), (Thickness{1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(tessaly::parseSliceThickness("2"), (Thickness{2.0f, 1.0f, 1.0f}));
    EXPECT_EQ(tessaly::parseSliceThickness("2 x 3"), (Thickness{2.0f, 1.0f, 1.0f}));
}

TEST(VoxelPasses, TheLongestSideOfAVolumeOfUnitThicknessHasLengthFour)
{
    const auto size = tessaly::objectSize({1.0f, 1.0f, 1.0f}, {100, 60, 30});
    EXPECT_EQ(size[0], 4.0f);
    EXPECT_FLOAT_EQ(size[1], 2.4f);
    EXPECT_FLOAT_EQ(size[2], 1.2f);
}

TEST(VoxelPasses, ThicknessStretchesTheSizePerAxis)
{
    const auto size = tessaly::objectSize({1.0f, 0.5f, 3.0f}, {64, 64, 32});
    EXPECT_EQ(size, (std::array<float, 3>{4.0f, 2.0f, 6.0f}));
}

TEST(VoxelPasses, AnEmptyVolumeHasSizeZero)
{
    EXPECT_EQ(tessaly::objectSize({1.0f, 1.0f, 1.0f}, {0, 0, 0}), (std::array<float, 3>{0.0f, 0.0f, 0.0f}));
}

TEST(VoxelPasses, SidesArePaddedToTheNextMultiple)
{
    EXPECT_EQ(tessaly::paddedSides({100, 60, 30}, 8), (Sides{104, 64, 32}));
    EXPECT_EQ(tessaly::paddedSides({64, 64, 64}, 8), (Sides{64, 64, 64}));
    EXPECT_EQ(tessaly::paddedSides({1, 7, 9}, 8), (Sides{8, 8, 16}));
    EXPECT_EQ(tessaly::paddedSides({0, 5, 6}, 5), (Sides{0, 5, 10}));
    EXPECT_EQ(tessaly::paddedSides({3, 4, 5}, 0), (Sides{3, 4, 5}));
}

template <class Voxel>
void expectPadded(const Sides &sides, std::uint32_t edge)
{
    std::vector<Voxel> voxels(tessaly::voxelCount(sides));
    for(std::size_t i = 0; i < voxels.size(); ++i)
        voxels[i] = static_cast<Voxel>(i * 7 + 1);
    const Sides padded = tessaly::paddedSides(sides, edge);
    std::vector<Voxel> result(tessaly::voxelCount(padded), Voxel(99));
    tessaly::copyPadded(reinterpret_cast<const std::uint8_t *>(voxels.data()), sides, sizeof(Voxel),
                        reinterpret_cast<std::uint8_t *>(result.data()), padded);

    for(std::uint32_t z = 0; z < padded[2]; ++z)
        for(std::uint32_t y = 0; y < padded[1]; ++y)
            for(std::uint32_t x = 0; x < padded[0]; ++x) {
                const bool old = x < sides[0] && y < sides[1] && z < sides[2];
                const Voxel expected = old ? voxels[(z * sides[1] + y) * sides[0] + x] : Voxel(0);
                ASSERT_EQ(result[(z * padded[1] + y) * padded[0] + x], expected) << x << ' ' << y << ' ' << z;
            }
}

TEST(VoxelPasses, PaddingKeepsCoordinatesAndFillsWithZero)
{
    expectPadded<std::uint8_t>({10, 8, 8}, 8);
    expectPadded<std::uint8_t>({3, 5, 7}, 4);
    expectPadded<std::uint16_t>({13, 9, 3}, 8);
    expectPadded<std::uint16_t>({8, 8, 8}, 8);
}

TEST(VoxelPasses, PaddingOfAnEmptyVolumeIsZero)
{
    std::uint8_t one = 7;
    tessaly::copyPadded(nullptr, {0, 0, 0}, 1, &one, {1, 1, 1});
    EXPECT_EQ(one, 0);
    tessaly::copyPadded(nullptr, {0, 0, 0}, 1, nullptr, {0, 0, 0});
}

/// Takes a corner of the unit cube through the matrix.
std::array<float, 3> placed(const std::array<float, 16> &matrix, float x, float y, float z)
{
    std::array<float, 3> point;
    for(std::size_t row = 0; row < 3; ++row)
        point[row] = matrix[row] * x + matrix[4 + row] * y + matrix[8 + row] * z + matrix[12 + row];
    return point;
}

void expectBox(const std::array<float, 16> &matrix, float x, float y, float z)
{
    const auto low = placed(matrix, 0.0f, 0.0f, 0.0f);
    const auto high = placed(matrix, 1.0f, 1.0f, 1.0f);
    const std::array<float, 3> extent = {x, y, z};
    for(std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_FLOAT_EQ(low[axis], -extent[axis] / 2);
        EXPECT_FLOAT_EQ(high[axis], extent[axis] / 2);
    }
    EXPECT_EQ(matrix[15], 1.0f);
    for(std::size_t i : {1, 2, 3, 4, 6, 7, 8, 9, 11})
        EXPECT_EQ(matrix[i], 0.0f) << i;
}

TEST(PlacementMatrix, DimensionsGiveTheExtentWhateverTheThickness)
{
    expectBox(
        tessaly::placementMatrix({4.0f, 2.4f, 1.2f}, {2.0f, 1.0f, 1.0f}, {100, 60, 30}, {1.0f, 1.0f, 1.0f}),
        2, 1, 1);
    expectBox(
        tessaly::placementMatrix({4.0f, 2.4f, 9.0f}, {2.0f, 1.0f, 1.0f}, {100, 60, 30}, {5.0f, 7.0f, 9.0f}),
        2, 1, 1);
}

TEST(PlacementMatrix, OneNegativeDimensionFallsBackToVoxelsTimesThicknessOnAllAxes)
{
    for(const std::array<float, 3> &dimensions : {std::array<float, 3>{-1.0f, 1.0f, 1.0f},
                                                  {1.0f, -1.0f, 1.0f},
                                                  {1.0f, 1.0f, -0.5f},
                                                  {-1.0f, -1.0f, -1.0f}})
        expectBox(tessaly::placementMatrix({4.0f, 2.4f, 1.2f}, dimensions, {100, 60, 30}, {1.0f, 0.5f, 2.0f}),
                  100, 30, 60);
}

TEST(PlacementMatrix, ADimensionOfZeroCounts)
{
    expectBox(tessaly::placementMatrix({4.0f, 4.0f, 4.0f}, {0.0f, 1.0f, 2.0f}, {8, 8, 8}, {1.0f, 1.0f, 1.0f}),
              0, 1, 2);
}

} // namespace
