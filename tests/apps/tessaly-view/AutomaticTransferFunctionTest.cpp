/// \file
/// What holds for a transfer function that nobody chose.

#include "AutomaticTransferFunction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace
{

using namespace viewer;

/// Noise around `center`, cut to what a voxel can be.
std::size_t around(std::mt19937 &random, double center, double spread, std::size_t values)
{
    std::normal_distribution<double> noise(center, spread);
    const double value = std::round(noise(random));
    return static_cast<std::size_t>(std::min(std::max(value, 0.0), static_cast<double>(values - 1)));
}

/// A head in noisy air: 70 % air, then fluid, grey and white matter, and a little bright fat.
Histogram head(std::size_t values, double unit, unsigned seed)
{
    std::mt19937 random(seed);
    Histogram h;
    h.counts.assign(values, 0);
    const auto add = [&](int n, double center, double spread)
    {
        for (int i = 0; i < n; ++i)
        {
            ++h.counts[around(random, center * unit, spread * unit, values)];
            ++h.total;
        }
    };
    add(70000, 6, 3);
    add(3000, 45, 8);
    add(12000, 90, 8);
    add(13000, 125, 7);
    add(2000, 190, 20);
    return h;
}

void expectWellFormed(const TransferPoints &points)
{
    ASSERT_FALSE(points.opacity.empty());
    ASSERT_FALSE(points.color.empty());
    EXPECT_EQ(points.opacity.front().position, 0.0f);
    EXPECT_EQ(points.color.front().position, 0.0f);
    EXPECT_EQ(points.opacity.back().position, 1.0f);
    EXPECT_EQ(points.color.back().position, 1.0f);
    for (std::size_t i = 1; i < points.opacity.size(); ++i)
    {
        EXPECT_LE(points.opacity[i - 1].position, points.opacity[i].position);
        EXPECT_LE(points.opacity[i - 1].opacity, points.opacity[i].opacity);
    }
    for (std::size_t i = 1; i < points.color.size(); ++i)
    {
        EXPECT_LE(points.color[i - 1].position, points.color[i].position);
        EXPECT_LE(points.color[i - 1].red, points.color[i].red);
        EXPECT_LE(points.color[i - 1].green, points.color[i].green);
        EXPECT_LE(points.color[i - 1].blue, points.color[i].blue);
    }
    for (const OpacityPoint &p : points.opacity)
    {
        EXPECT_GE(p.opacity, 0.0f);
        EXPECT_LE(p.opacity, 1.0f);
    }
    for (const ColorPoint &p : points.color)
    {
        EXPECT_GE(std::min({p.red, p.green, p.blue}), 0.0f);
        EXPECT_LE(std::max({p.red, p.green, p.blue}), 1.0f);
    }
}

TEST(AutomaticTransferFunction, ListsRunFromZeroToOneAndNeverFall)
{
    for (unsigned seed = 1; seed <= 5; ++seed)
    {
        SCOPED_TRACE(seed);
        expectWellFormed(automaticTransferFunction(head(256, 1.0, seed)));
        expectWellFormed(automaticTransferFunction(head(65536, 256.0, seed)));
    }
}

TEST(AutomaticTransferFunction, TheAirAroundAHeadIsTransparentAndItsMatterIsNot)
{
    const std::vector<std::uint8_t> table = byteTable(automaticTransferFunction(head(256, 1.0, 3)));
    for (std::size_t value = 0; value <= 18; ++value)
    {
        EXPECT_EQ(table[4 * value + 3], 0) << "air of " << value;
    }
    EXPECT_GT(table[4 * 90 + 3], 60) << "grey matter";
    EXPECT_GT(table[4 * 125 + 3], 120) << "white matter";
    EXPECT_GT(table[4 * 200 + 3], 200) << "fat";
    for (std::size_t value = 1; value < 256; ++value)
    {
        EXPECT_GE(table[4 * value + 3], table[4 * (value - 1) + 3]);
    }
}

TEST(AutomaticTransferFunction, TheSameHeadOfSixteenBitsLooksTheSame)
{
    const std::vector<std::uint8_t> bytes = byteTable(automaticTransferFunction(head(256, 1.0, 3)));
    const TransferPoints points = automaticTransferFunction(head(65536, 256.0, 3));
    const std::vector<std::uint8_t> coarse = byteTable(points);
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        EXPECT_NEAR(bytes[i], coarse[i], 16) << "entry " << i / 4 << " channel " << i % 4;
    }
}

TEST(AutomaticTransferFunction, HistogramsOfFewValuesAreServedToo)
{
    Histogram h;
    h.counts.assign(256, 0);
    expectWellFormed(automaticTransferFunction(h));
    h.counts[255] = 10;
    expectWellFormed(automaticTransferFunction(h));
    h.counts[0] = 10;
    expectWellFormed(automaticTransferFunction(h));
    const std::vector<std::uint8_t> table = byteTable(automaticTransferFunction(h));
    EXPECT_EQ(table[3], 0);
    EXPECT_GT(table[4 * 255 + 3], 100);
}

} // namespace
