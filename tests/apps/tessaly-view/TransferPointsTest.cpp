/// \file
/// The tables of a transfer function, entry by entry.

#include "TransferPoints.h"

#include <OpenSG/OSGReal16.h>

#include <gtest/gtest.h>

namespace
{

using namespace viewer;

TEST(TransferTables, TheFullRampIsInterpolatedUpToTheEntryBelowTheEnd)
{
    const TransferPoints ramp{{{0, 0}, {1, 1}}, {{0, 0, 0, 0}, {1, 1, 1, 1}}};
    const std::vector<std::uint8_t> bytes = byteTable(ramp);
    ASSERT_EQ(bytes.size(), 1024u);
    for (std::size_t c = 0; c < 4; ++c)
    {
        EXPECT_EQ(bytes[c], 0);
        EXPECT_EQ(bytes[4 * 128 + c], 127) << "128 / 256 of 255, cut";
        EXPECT_EQ(bytes[4 * 255 + c], 254);
    }
    const std::vector<std::uint16_t> halves = halfTable(ramp);
    ASSERT_EQ(halves.size(), 4u * 65536u);
    EXPECT_EQ(osg::Real16::toReal32(halves[4 * 32768]), 0.5f);
    EXPECT_EQ(osg::Real16::toReal32(halves[4 * 16384 + 3]), 0.25f);
    EXPECT_EQ(osg::Real16::toReal32(halves[0]), 0.0f);
}

TEST(TransferTables, AStepIsSharp)
{
    const TransferPoints step{{{0, 0}, {0.5f, 0}, {0.5f, 1}, {1, 1}}, {{0, 1, 0, 0}, {1, 1, 0, 0}}};
    const std::vector<std::uint8_t> bytes = byteTable(step);
    for (std::size_t i = 0; i < 256; ++i)
    {
        EXPECT_EQ(bytes[4 * i + 3], i < 128 ? 0 : 255) << i;
        EXPECT_EQ(bytes[4 * i], 255);
        EXPECT_EQ(bytes[4 * i + 1], 0);
    }
}

TEST(TransferTables, OpacitiesThatEndBelowOneHoldForAllEntriesAndColoursForTheRest)
{
    const TransferPoints half{{{0, 0}, {0.5f, 1}}, {{0, 0, 0, 0}, {0.5f, 0, 1, 0}}};
    const std::vector<std::uint8_t> bytes = byteTable(half);
    for (std::size_t i = 0; i < 256; ++i)
    {
        EXPECT_EQ(bytes[4 * i + 3], 255) << i;
        EXPECT_EQ(bytes[4 * i + 1] == 255, i >= 128) << i;
    }
}

TEST(TransferTables, EntriesAheadOfTheFirstPointTakeItsValue)
{
    const TransferPoints late{{{0.25f, 0.5f}, {1, 0.5f}}, {{0.25f, 1, 1, 1}, {1, 0, 0, 0}}};
    const std::vector<std::uint8_t> bytes = byteTable(late);
    EXPECT_EQ(bytes[3], 127);
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[4 * 64], 255);
    EXPECT_LT(bytes[4 * 66], 255);
}

TEST(PointAt, IsStraightBetweenThePointsAndGoesOnOutside)
{
    const std::vector<OpacityPoint> opacity{{0.25f, 0.5f}, {0.75f, 1.0f}};
    EXPECT_EQ(pointAt(opacity, 0.5f), (OpacityPoint{0.5f, 0.75f}));
    EXPECT_EQ(pointAt(opacity, 0.25f), (OpacityPoint{0.25f, 0.5f}));
    EXPECT_EQ(pointAt(opacity, 0.0f), (OpacityPoint{0.0f, 0.5f}));
    EXPECT_EQ(pointAt(opacity, 1.0f), (OpacityPoint{1.0f, 1.0f}));
    const std::vector<ColorPoint> color{{0.0f, 0.0f, 1.0f, 0.5f}, {1.0f, 1.0f, 0.0f, 0.5f}};
    EXPECT_EQ(pointAt(color, 0.25f), (ColorPoint{0.25f, 0.25f, 0.75f, 0.5f}));
}

TEST(PointAt, OfSeveralPointsInOnePlaceTheLastCounts)
{
    const std::vector<OpacityPoint> step{{0.0f, 0.0f}, {0.5f, 0.25f}, {0.5f, 0.75f}, {1.0f, 1.0f}};
    EXPECT_EQ(pointAt(step, 0.5f), (OpacityPoint{0.5f, 0.75f}));
    EXPECT_EQ(pointAt(step, 0.25f), (OpacityPoint{0.25f, 0.125f}));
}

} // namespace
